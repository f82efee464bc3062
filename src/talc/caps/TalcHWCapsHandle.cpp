#include <iterator>
#include <utility>

#include "caps/HwcMerge.h"
#include "caps/TalcHWCaps.h"
#include "caps/TextBuffer.h"
#include "talccaps.h"

using TalcPathPrivate::ClearBuffer;
using TalcPathPrivate::CopyCut;
using TalcPathPrivate::CopyWhole;
using TalcPathPrivate::HWCapsConditionBlock;
using TalcPathPrivate::Range;
using TalcPathPrivate::TalcHWCaps;
using TalcPathPrivate::TextList;
using TalcPathPrivate::Variant;
using TalcPathPrivate::variant_cast;

namespace TalcPath {

TalcHWCapsHandle::TalcHWCapsHandle(std::string_view name, std::weak_ptr<TalcHWCaps> caps)
    : name_(name), caps_(std::move(caps)) {}

const std::string& TalcHWCapsHandle::GetHardwareType() const {
  const TalcHWCaps* const caps = Target();
  return caps == nullptr ? name_ : caps->hardwareType;
}

const HWCapsConditionBlock& TalcHWCapsHandle::BlockOf(const TalcHWCapsCondition* condition) {
  static const HWCapsConditionBlock defaultBlock;
  return condition == nullptr ? defaultBlock : *condition->block_;
}

const Variant* TalcHWCapsHandle::FindProperty(std::string_view name, const TalcHWCapsCondition* condition) const {
  const TalcHWCaps* const caps = Target();
  return caps == nullptr ? nullptr : caps->FindProperty(name, BlockOf(condition));
}

const Variant* TalcHWCapsHandle::FindValue(std::string_view command, std::string_view parameter,
                                           const TalcHWCapsCondition* condition) const {
  const TalcHWCaps* const caps = Target();
  return caps == nullptr ? nullptr : caps->FindCommandValue(command, parameter, BlockOf(condition));
}

std::uint32_t TalcHWCapsHandle::GetPropertyCount(const TalcHWCapsCondition* condition) const {
  const TalcHWCaps* const caps = Target();
  const TalcHWCaps::Properties* const properties = caps == nullptr ? nullptr : caps->PropertiesOf(BlockOf(condition));
  return properties == nullptr ? 0 : static_cast<std::uint32_t>(properties->size());
}

bool TalcHWCapsHandle::GetNthPropertyName(std::int32_t n, char* buffer, std::uint32_t size,
                                          const TalcHWCapsCondition* condition) const {
  if (!ClearBuffer(buffer, size) || n < 0 || static_cast<std::uint32_t>(n) >= GetPropertyCount(condition)) return false;
  return CopyWhole(std::next(Target()->PropertiesOf(BlockOf(condition))->begin(), n)->first, buffer, size);
}

bool TalcHWCapsHandle::PropertyExists(std::string_view name, const TalcHWCapsCondition* condition) const {
  return !name.empty() && FindProperty(name, condition) != nullptr;
}

bool TalcHWCapsHandle::IsPropertyString(std::string_view name, const TalcHWCapsCondition* condition) const {
  return variant_cast<std::string>(FindProperty(name, condition)) != nullptr;
}

bool TalcHWCapsHandle::IsPropertyInteger(std::string_view name, const TalcHWCapsCondition* condition) const {
  return variant_cast<std::int32_t>(FindProperty(name, condition)) != nullptr;
}

bool TalcHWCapsHandle::GetPropertyAsString(std::string_view name, std::uint32_t size, char* buffer,
                                           const TalcHWCapsCondition* condition) const {
  const auto* const text = variant_cast<std::string>(FindProperty(name, condition));
  if (!ClearBuffer(buffer, size) || text == nullptr) return false;
  CopyCut(*text, buffer, size);
  return true;
}

bool TalcHWCapsHandle::GetPropertyAsInteger(std::string_view name, std::int32_t* value,
                                            const TalcHWCapsCondition* condition) const {
  const auto* const number = variant_cast<std::int32_t>(FindProperty(name, condition));
  if (number == nullptr || value == nullptr) return false;
  *value = *number;
  return true;
}

bool TalcHWCapsHandle::HasNamedBlock(std::string_view keyname) const {
  const TalcHWCaps* const caps = Target();
  return caps != nullptr && caps->FindBlock(keyname) != nullptr;
}

std::uint32_t TalcHWCapsHandle::GetNamedBlockCount() const {
  const TalcHWCaps* const caps = Target();
  return caps == nullptr ? 0 : static_cast<std::uint32_t>(caps->Blocks().size());
}

bool TalcHWCapsHandle::GetNthBlockKeyname(std::int32_t n, char* buffer, std::uint32_t size) const {
  if (!ClearBuffer(buffer, size) || n < 0 || static_cast<std::uint32_t>(n) >= GetNamedBlockCount()) return false;
  return CopyWhole(Target()->Blocks()[static_cast<std::uint32_t>(n)]->keyname, buffer, size);
}

TalcHWCapsCondition TalcHWCapsHandle::GetBlockByName(std::string_view keyname) const {
  const TalcHWCaps* const caps = Target();
  const HWCapsConditionBlock* const block = caps == nullptr ? nullptr : caps->FindBlock(keyname);
  TalcHWCapsCondition condition;
  if (block != nullptr) *condition.block_ = *block;
  return condition;
}

bool TalcHWCapsHandle::CommandHasValues(std::string_view command, std::string_view parameter,
                                        const TalcHWCapsCondition* condition) const {
  return FindValue(command, parameter, condition) != nullptr;
}

bool TalcHWCapsHandle::AreCommandValuesRange(std::string_view command, std::string_view parameter,
                                             const TalcHWCapsCondition* condition) const {
  return variant_cast<Range>(FindValue(command, parameter, condition)) != nullptr;
}

bool TalcHWCapsHandle::AreCommandValuesSymbols(std::string_view command, std::string_view parameter,
                                               const TalcHWCapsCondition* condition) const {
  return variant_cast<TextList>(FindValue(command, parameter, condition)) != nullptr;
}

bool TalcHWCapsHandle::GetCommandParameterRange(std::string_view command, std::string_view parameter, std::int32_t* low,
                                                std::int32_t* high, const TalcHWCapsCondition* condition) const {
  const auto* const range = variant_cast<Range>(FindValue(command, parameter, condition));
  if (range == nullptr || low == nullptr || high == nullptr) return false;
  *low = range->first;
  *high = range->second;
  return true;
}

bool TalcHWCapsHandle::GetCommandParameterSymbolCount(std::string_view command, std::string_view parameter,
                                                      std::uint32_t* count,
                                                      const TalcHWCapsCondition* condition) const {
  const auto* const symbols = variant_cast<TextList>(FindValue(command, parameter, condition));
  if (symbols == nullptr || count == nullptr) return false;
  *count = static_cast<std::uint32_t>(symbols->size());
  return true;
}

bool TalcHWCapsHandle::GetCommandParameterNthSymbolValue(std::string_view command, std::string_view parameter,
                                                         std::int32_t n, std::uint32_t size, char* buffer,
                                                         const TalcHWCapsCondition* condition) const {
  const auto* const symbols = variant_cast<TextList>(FindValue(command, parameter, condition));
  if (!ClearBuffer(buffer, size) || symbols == nullptr) return false;
  if (n < 0 || static_cast<std::uint32_t>(n) >= symbols->size()) return false;
  CopyCut((*symbols)[static_cast<std::uint32_t>(n)], buffer, size);
  return true;
}

bool TalcHWCapsHandle::HasOverrideTimeout(std::string_view command) const {
  const TalcHWCaps* const caps = Target();
  return caps != nullptr && caps->overrideTimeouts.find(command) != caps->overrideTimeouts.end();
}

bool TalcHWCapsHandle::GetOverrideTimeout(std::string_view command, std::uint32_t* milliseconds) const {
  if (!HasOverrideTimeout(command) || milliseconds == nullptr) return false;
  *milliseconds = Target()->overrideTimeouts.find(command)->second;
  return true;
}

bool TalcHWCapsHandle::ApplyOverrideTimeouts() const {
  const TalcHWCaps* const caps = Target();
  return caps != nullptr && caps->ApplyOverrideTimeouts();
}

bool TalcHWCapsHandle::Merge(const TalcHWCapsHandle& option) const {
  TalcHWCaps* const caps = Target();
  const TalcHWCaps* const other = option.Target();
  return caps != nullptr && other != nullptr && MergeHwc(*caps, *other);
}

}  // namespace TalcPath
