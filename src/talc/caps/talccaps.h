#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

// Behind the handles; of no concern to users.
namespace TalcPathPrivate {
class HWCapsConditionBlock;
class TalcHWCaps;
class Variant;
}  // namespace TalcPathPrivate

/// What hardware can do: properties by name, and the values that parameters of commands may have.
///
/// Capabilities are read from text at the library's start, those of one hardware type from each. Some hold always: they
/// stand in the default block. Others hold under conditions, which are numbers of parameters: they stand in a block of
/// their own, which may have a name. Conditions are keys: none is ever compared with the state of the hardware. Who
/// asks what holds in a situation makes a condition object that tells it, and only the block with exactly these
/// conditions answers; the default block does not stand in for it.
///
///     TalcPath::TalcHWCapsHandle caps = TalcPath::TalcHWCapsManager::GetByName("Trelvane");
///     TalcPath::TalcHWCapsCondition hue;
///     hue.AddSymbolCondition("VideoIOControl", "InputOrOutput", "VIOCtrl_Input");
///     hue.AddSymbolCondition("VideoIOControl", "Type", "VIOCtrl_Composite");
///     hue.AddSymbolCondition("VideoIOControl", "Control", "VIOCtrl_Hue");
///     std::int32_t low = 0, high = 0;
///     caps.GetCommandParameterRange("VideoIOControl", "Value", &low, &high, &hue);   // 0, 63
///
/// Texts are given into buffers of the caller. Each is filled with zeros first, and its size, in bytes, counts the
/// terminator. A null buffer and one of size 0 make a query answer false.
namespace TalcPath {

/// A set of conditions: for parameters of commands the number that each is to have. At first there is none, which is
/// what the default block has.
class TalcHWCapsCondition {
 public:
  TalcHWCapsCondition();
  TalcHWCapsCondition(const TalcHWCapsCondition& other);
  TalcHWCapsCondition& operator=(const TalcHWCapsCondition& other);
  ~TalcHWCapsCondition();

  /// Both replace a condition on the same parameter. False when the dictionary has no such command or its definition no
  /// such parameter; the second one also when the definition has no such symbol, whose number is what is stored.
  bool AddIntegerCondition(std::string_view command, std::string_view parameter, std::int32_t value);
  bool AddSymbolCondition(std::string_view command, std::string_view parameter, std::string_view symbol);
  void RemoveCondition(std::string_view command, std::string_view parameter);

  /// Of all commands together.
  std::uint32_t GetConditionCount() const;
  /// Counts from 0, in the order of the names of commands and parameters. The symbol is empty for a condition that was
  /// given as a number. False beyond the last, for a null pointer, and when a text does not fit its buffer.
  bool GetNthCondition(std::int32_t n, char* command, std::uint32_t commandSize, char* parameter,
                       std::uint32_t parameterSize, char* symbol, std::uint32_t symbolSize, std::int32_t* value) const;
  bool HasCondition(std::string_view command, std::string_view parameter) const;
  bool GetConditionValue(std::string_view command, std::string_view parameter, std::int32_t* value) const;

  /// The same parameters with the same numbers.
  bool IsEqual(const TalcHWCapsCondition& other) const;

 private:
  friend class TalcHWCapsHandle;

  std::unique_ptr<TalcPathPrivate::HWCapsConditionBlock> block_;
};

/// The capabilities of one type of hardware. A handle is a value that owns nothing: the library keeps what stands
/// behind it until its stop, after which the handle is as one for a type that is not known.
///
/// One for a type that is not known is called "EMPTY", and answers false, 0 or an empty text.
///
/// Where a condition is asked for, null is the default block. The queries whose names end in `Under` take null for no
/// answer instead.
class TalcHWCapsHandle {
 public:
  TalcHWCapsHandle() = default;

  /// What was asked for.
  const std::string& GetName() const { return name_; }
  /// As the text has it.
  const std::string& GetHardwareType() const;

  // ---- Properties, each a word or a number

  std::uint32_t GetPropertyCount(const TalcHWCapsCondition* condition = nullptr) const;
  /// Counts from 0, in the order of names. False beyond the last and when the name does not fit.
  bool GetNthPropertyName(std::int32_t n, char* buffer, std::uint32_t size,
                          const TalcHWCapsCondition* condition = nullptr) const;
  bool PropertyExists(std::string_view name, const TalcHWCapsCondition* condition = nullptr) const;
  bool IsPropertyString(std::string_view name, const TalcHWCapsCondition* condition = nullptr) const;
  bool IsPropertyInteger(std::string_view name, const TalcHWCapsCondition* condition = nullptr) const;
  /// Copies what fits. False unless the property is a word.
  bool GetPropertyAsString(std::string_view name, std::uint32_t size, char* buffer,
                           const TalcHWCapsCondition* condition = nullptr) const;
  /// False unless the property is a number.
  bool GetPropertyAsInteger(std::string_view name, std::int32_t* value,
                            const TalcHWCapsCondition* condition = nullptr) const;

  // ---- Blocks with names

  /// The empty name is that of the default block, which is there.
  bool HasNamedBlock(std::string_view keyname) const;
  /// Without the default block.
  std::uint32_t GetNamedBlockCount() const;
  /// Counts from 0, in the order of the text. False beyond the last and when the name does not fit.
  bool GetNthBlockKeyname(std::int32_t n, char* buffer, std::uint32_t size) const;
  /// The conditions of that block; none when there is no such block.
  TalcHWCapsCondition GetBlockByName(std::string_view keyname) const;

  // ---- Values that parameters of commands may have: a range of numbers, or a list of symbols

  bool CommandHasValues(std::string_view command, std::string_view parameter,
                        const TalcHWCapsCondition* condition = nullptr) const;
  bool AreCommandValuesRange(std::string_view command, std::string_view parameter,
                             const TalcHWCapsCondition* condition = nullptr) const;
  bool AreCommandValuesSymbols(std::string_view command, std::string_view parameter,
                               const TalcHWCapsCondition* condition = nullptr) const;
  /// Both ends belong to the range. False unless it is one.
  bool GetCommandParameterRange(std::string_view command, std::string_view parameter, std::int32_t* low,
                                std::int32_t* high, const TalcHWCapsCondition* condition = nullptr) const;
  /// False unless there is a list.
  bool GetCommandParameterSymbolCount(std::string_view command, std::string_view parameter, std::uint32_t* count,
                                      const TalcHWCapsCondition* condition = nullptr) const;
  /// Counts from 0, in the order of the text. Copies what fits. False beyond the last.
  bool GetCommandParameterNthSymbolValue(std::string_view command, std::string_view parameter, std::int32_t n,
                                         std::uint32_t size, char* buffer,
                                         const TalcHWCapsCondition* condition = nullptr) const;

  // The same under a condition that must be there.

  bool CommandHasValuesUnder(std::string_view command, std::string_view parameter,
                             const TalcHWCapsCondition* condition) const {
    return condition != nullptr && CommandHasValues(command, parameter, condition);
  }
  bool AreCommandValuesRangeUnder(std::string_view command, std::string_view parameter,
                                  const TalcHWCapsCondition* condition) const {
    return condition != nullptr && AreCommandValuesRange(command, parameter, condition);
  }
  bool AreCommandValuesSymbolsUnder(std::string_view command, std::string_view parameter,
                                    const TalcHWCapsCondition* condition) const {
    return condition != nullptr && AreCommandValuesSymbols(command, parameter, condition);
  }
  bool GetCommandParameterRangeUnder(std::string_view command, std::string_view parameter, std::int32_t* low,
                                     std::int32_t* high, const TalcHWCapsCondition* condition) const {
    return condition != nullptr && GetCommandParameterRange(command, parameter, low, high, condition);
  }
  bool GetCommandParameterSymbolCountUnder(std::string_view command, std::string_view parameter, std::uint32_t* count,
                                           const TalcHWCapsCondition* condition) const {
    return condition != nullptr && GetCommandParameterSymbolCount(command, parameter, count, condition);
  }
  /// Leaves the buffer alone without a condition.
  bool GetCommandParameterNthSymbolValueUnder(std::string_view command, std::string_view parameter, std::int32_t n,
                                              std::uint32_t size, char* buffer,
                                              const TalcHWCapsCondition* condition) const {
    return condition != nullptr && GetCommandParameterNthSymbolValue(command, parameter, n, size, buffer, condition);
  }

  // ---- Time-outs of commands in place of the transport's own, in milliseconds

  bool HasOverrideTimeout(std::string_view command) const;
  bool GetOverrideTimeout(std::string_view command, std::uint32_t* milliseconds) const;
  /// Stores each in its command's definition, in the order of names. False at the first command that the dictionary
  /// does not have, where it stops.
  bool ApplyOverrideTimeouts() const;

  /// Takes over what the capabilities of an option say: of two time-outs the longer one, all its blocks, its
  /// properties in place of these, its symbols in addition to these, and its ranges. False, with a line of the log, at
  /// the first thing that does not fit, such as a block whose name is there already; what was taken over stays.
  bool Merge(const TalcHWCapsHandle& option) const;

 private:
  friend class TalcHWCapsManager;

  TalcHWCapsHandle(std::string_view name, std::weak_ptr<TalcPathPrivate::TalcHWCaps> caps);
  /// Null for a type that is not known, and after the library's stop.
  TalcPathPrivate::TalcHWCaps* Target() const { return caps_.lock().get(); }
  static const TalcPathPrivate::HWCapsConditionBlock& BlockOf(const TalcHWCapsCondition* condition);
  const TalcPathPrivate::Variant* FindProperty(std::string_view name, const TalcHWCapsCondition* condition) const;
  const TalcPathPrivate::Variant* FindValue(std::string_view command, std::string_view parameter,
                                            const TalcHWCapsCondition* condition) const;

  std::string name_ = "EMPTY";
  std::weak_ptr<TalcPathPrivate::TalcHWCaps> caps_;
};

}  // namespace TalcPath
