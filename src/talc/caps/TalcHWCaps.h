#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "caps/BlockTable.h"
#include "caps/ConditionBlock.h"
#include "dictionary/Variant.h"

namespace TalcPathPrivate {

/// What one type of hardware can do: properties by name, and for parameters of commands the range or the symbols that
/// they may have, each under the conditions of a block; and time-outs of commands in place of the transport's own.
///
/// Filled by `ReadHwc` and by merging. Conditions are never compared with the state of any hardware: see
/// `HWCapsConditionBlock`.
class TalcHWCaps {
 public:
  using Block = HWCapsConditionBlock;
  using Properties = std::map<std::string, Variant, std::less<>>;

  /// By parameter, a `Range` or a `TextList` under each block that has one.
  using ParameterValues = std::map<std::string, BlockTable<Variant>, std::less<>>;
  using CommandValues = std::map<std::string, ParameterValues, std::less<>>;
  using OverrideTimeouts = std::map<std::string, std::uint32_t, std::less<>>;

  TalcHWCaps() { sameBlocks_.insert(&defaultBlock_); }
  TalcHWCaps(const TalcHWCaps&) = delete;
  TalcHWCaps& operator=(const TalcHWCaps&) = delete;

  std::string fileName;
  std::string hardwareType;
  /// In milliseconds.
  OverrideTimeouts overrideTimeouts;

  // ---- Blocks

  const Block& DefaultBlock() const { return defaultBlock_; }
  /// The others, in the order of the file.
  const std::vector<std::unique_ptr<Block>>& Blocks() const { return blocks_; }
  const Block& AppendBlock(Block block = {});
  /// The default block for an empty name; null for one that no block has.
  const Block* FindBlock(std::string_view keyname) const;
  /// The first own block with these conditions, or null.
  const Block* FindSameBlock(const Block& block) const;
  /// The name of the own block with these conditions, or "ERROR_ERROR_ERROR", which is the name of none.
  std::string KeynameOf(const Block& block) const;

  // ---- Properties, each a text or a signed number

  /// Those under a block with these conditions, or null.
  const Properties* PropertiesOf(const Block& block) const;
  /// The value, or null.
  const Variant* FindProperty(std::string_view name, const Block& block) const;
  /// False when the block has the property already.
  bool AddProperty(std::string_view name, Variant value, const Block& block);
  /// Stores it in place of one that is there. False without such a block.
  bool SetProperty(std::string_view name, Variant value, const Block& block);
  void RemoveProperty(std::string_view name, const Block& block);
  std::size_t OverallPropertyCount() const;
  /// Counts all blocks' properties together. False for a `n` beyond the last.
  bool GetNthOverallProperty(std::size_t n, std::string& name, const Block*& block) const;

  // ---- Values of commands' parameters

  const CommandValues& AllCommandValues() const { return commandValues_; }
  /// The value, or null.
  const Variant* FindCommandValue(std::string_view command, std::string_view parameter, const Block& block) const;
  /// False when the parameter has a value under these conditions already, and without such a block.
  bool AddCommandValue(std::string_view command, std::string_view parameter, Variant value, const Block& block);
  /// Adds a range under the block of that name. False for an empty command or parameter, too.
  bool SetCmdParamRanges(std::string_view command, std::string_view parameter, std::int32_t low, std::int32_t high,
                         std::string_view keyname);
  /// Adds a symbol to the parameter's list, unless it is there; a range is given up for a new list, and meant to be.
  /// False without a block of that name.
  bool AddCmdParamSymbolValue(std::string_view command, std::string_view parameter, std::string_view symbol,
                              std::string_view keyname);
  std::size_t OverallCmdParamCount() const;
  /// Counts all values together, in the order of commands and parameters. False for a `n` beyond the last.
  bool GetNthOverallCmdParam(std::size_t n, std::string& command, std::string& parameter, const Block*& block) const;

  // ---- Time-outs

  bool GetNthOverride(std::size_t n, std::string& command, std::uint32_t& milliseconds) const;
  /// Stores each in the definition of its command. False at the first command that is not defined, where it stops.
  bool ApplyOverrideTimeouts() const;

 private:
  struct ByConditions {
    bool operator()(const Block* one, const Block* other) const { return std::is_lt(one->CompareConditions(*other)); }
  };

  Variant* FindStored(std::string_view command, std::string_view parameter, const Block& block);
  /// A value that is there.
  void RemoveCommandValue(std::string_view command, std::string_view parameter, const Block& block);

  Block defaultBlock_;
  std::vector<std::unique_ptr<Block>> blocks_;
  /// Of all own blocks with the same conditions the first one, which stands for them as a key of the tables.
  std::set<const Block*, ByConditions> sameBlocks_;
  BlockTable<Properties> properties_;
  CommandValues commandValues_;
};

}  // namespace TalcPathPrivate
