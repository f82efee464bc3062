#include "caps/HwcMerge.h"

#include <algorithm>
#include <string>

#include "caps/TalcHWCaps.h"
#include "dictionary/Log.h"

namespace TalcPathPrivate {
namespace {

using Block = HWCapsConditionBlock;

bool Refuse(const char* reason, const TalcHWCaps& option) {
  LogAlways("\n\nERROR - ", reason, " trying to merge options file : ", option.fileName);
  return false;
}

void MergeOverrides(TalcHWCaps& caps, const TalcHWCaps& option) {
  for (const auto& [command, milliseconds] : option.overrideTimeouts) {
    std::uint32_t& own = caps.overrideTimeouts.try_emplace(command, milliseconds).first->second;
    own = std::max(own, milliseconds);
  }
}

bool MergeBlocks(TalcHWCaps& caps, const TalcHWCaps& option) {
  for (const auto& block : option.Blocks())
    // An empty name is that of the default block, and so is there.
    if (caps.FindBlock(block->keyname) != nullptr) return Refuse("duplicate Condition list key found", option);
  for (const auto& block : option.Blocks())
    if (caps.FindSameBlock(*block) == nullptr) caps.AppendBlock(*block);
  return true;
}

bool MergeProperties(TalcHWCaps& caps, const TalcHWCaps& option, const Block& block) {
  const TalcHWCaps::Properties* const properties = option.PropertiesOf(block);
  if (properties == nullptr) return true;
  for (const auto& [name, value] : *properties) {
    const bool isText = value.As<std::string>() != nullptr;
    if (!isText && value.As<std::int32_t>() == nullptr) return Refuse("IsPropertyInteger failed", option);
    if (!caps.SetProperty(name, value, block))
      return Refuse(isText ? "SetStringProperty failed" : "SetIntegerProperty failed", option);
  }
  return true;
}

bool MergeCommandValue(TalcHWCaps& caps, const TalcHWCaps& option, std::size_t n) {
  std::string command;
  std::string parameter;
  const Block* block = nullptr;
  if (!option.GetNthOverallCmdParam(n, command, parameter, block))
    return Refuse("GetNthOverallCmdParam failed", option);
  const Variant* const value = option.FindCommandValue(command, parameter, *block);
  const std::string keyname = caps.KeynameOf(*block);
  if (const TextList* const symbols = variant_cast<TextList>(value)) {
    for (const std::string& symbol : *symbols)
      if (!caps.AddCmdParamSymbolValue(command, parameter, symbol, keyname))
        return Refuse("AddCmdParamSymbolValue failed", option);
  } else if (const Range* const range = variant_cast<Range>(value)) {
    if (!caps.SetCmdParamRanges(command, parameter, range->first, range->second, keyname))
      return Refuse("SetCmdParamRanges failed", option);
  }
  return true;
}

}  // namespace

bool MergeHwc(TalcHWCaps& caps, const TalcHWCaps& option) {
  MergeOverrides(caps, option);
  if (!MergeBlocks(caps, option) || !MergeProperties(caps, option, option.DefaultBlock())) return false;
  for (const auto& block : option.Blocks())
    if (!MergeProperties(caps, option, *block)) return false;
  for (std::size_t n = option.OverallCmdParamCount(); n > 0; --n)
    if (!MergeCommandValue(caps, option, n - 1)) return false;
  return true;
}

}  // namespace TalcPathPrivate
