#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace TalcPathPrivate {

/// A condition on one parameter of a command: the value that it is to have.
struct HWCapsConditionRecord {
  std::string parameter;
  /// Of the command's definition; empty where the condition was given as a number.
  std::string symbol;
  std::int32_t value = 0;
};

/// A set of conditions, and a name. Blocks are keys: who asks for what holds under some conditions names exactly these,
/// and only a block with the same ones answers. One without conditions is the default block.
class HWCapsConditionBlock {
 public:
  using Parameters = std::map<std::string, HWCapsConditionRecord, std::less<>>;
  using Commands = std::map<std::string, Parameters, std::less<>>;

  /// Both replace a condition on the same parameter. False unless the dictionary has the command, its definition the
  /// parameter, and in the second case the symbol, whose number is kept with it.
  bool AddIntegerCondition(std::string_view command, std::string_view parameter, std::int32_t value);
  bool AddSymbolCondition(std::string_view command, std::string_view parameter, std::string_view symbol);
  void RemoveCondition(std::string_view command, std::string_view parameter);

  /// Parameters of all commands together.
  std::size_t ConditionCount() const;
  /// The record, or null.
  const HWCapsConditionRecord* Find(std::string_view command, std::string_view parameter) const;
  /// In the order of their names.
  const Commands& Conditions() const { return commands_; }

  /// The same parameters with the same numbers. Neither the name of the block counts, nor those of symbols.
  bool HasSameConditions(const HWCapsConditionBlock& other) const { return std::is_eq(CompareConditions(other)); }
  /// An order in which those with the same conditions are equal.
  std::strong_ordering CompareConditions(const HWCapsConditionBlock& other) const;

  std::string keyname;

 private:
  Commands commands_;
};

}  // namespace TalcPathPrivate
