#include "caps/TalcHWCaps.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "talcpath.h"

namespace TalcPathPrivate {
namespace {

constexpr std::string_view kNoKeyname = "ERROR_ERROR_ERROR";

}  // namespace

const HWCapsConditionBlock& TalcHWCaps::AppendBlock(Block block) {
  const Block& own = *blocks_.emplace_back(std::make_unique<Block>(std::move(block)));
  sameBlocks_.insert(&own);
  return own;
}

const HWCapsConditionBlock* TalcHWCaps::FindBlock(std::string_view keyname) const {
  if (keyname.empty()) return &defaultBlock_;
  for (const auto& block : blocks_)
    if (block->keyname == keyname) return block.get();
  return nullptr;
}

const HWCapsConditionBlock* TalcHWCaps::FindSameBlock(const Block& block) const {
  const auto same = sameBlocks_.find(&block);
  return same == sameBlocks_.end() ? nullptr : *same;
}

std::string TalcHWCaps::KeynameOf(const Block& block) const {
  const Block* const own = FindSameBlock(block);
  return own == nullptr ? std::string(kNoKeyname) : own->keyname;
}

const TalcHWCaps::Properties* TalcHWCaps::PropertiesOf(const Block& block) const {
  return properties_.Find(FindSameBlock(block));
}

const Variant* TalcHWCaps::FindProperty(std::string_view name, const Block& block) const {
  const Properties* const properties = PropertiesOf(block);
  if (properties == nullptr) return nullptr;
  const auto property = properties->find(name);
  return property == properties->end() ? nullptr : &property->second;
}

bool TalcHWCaps::AddProperty(std::string_view name, Variant value, const Block& block) {
  return FindProperty(name, block) == nullptr && SetProperty(name, std::move(value), block);
}

bool TalcHWCaps::SetProperty(std::string_view name, Variant value, const Block& block) {
  const Block* const own = FindSameBlock(block);
  if (own == nullptr) return false;
  Properties* const stored = properties_.Find(own);
  Properties& properties = stored != nullptr ? *stored : properties_.Add(own, {});
  properties.insert_or_assign(std::string(name), std::move(value));
  return true;
}

void TalcHWCaps::RemoveProperty(std::string_view name, const Block& block) {
  Properties* const properties = properties_.Find(FindSameBlock(block));
  if (properties == nullptr) return;
  const auto property = properties->find(name);
  if (property != properties->end()) properties->erase(property);
}

std::size_t TalcHWCaps::OverallPropertyCount() const {
  std::size_t count = 0;
  for (const auto& [properties, block] : properties_)
    count += properties.size();
  return count;
}

bool TalcHWCaps::GetNthOverallProperty(std::size_t n, std::string& name, const Block*& block) const {
  for (const auto& [properties, owner] : properties_) {
    if (n >= properties.size()) {
      n -= properties.size();
      continue;
    }
    name = std::next(properties.begin(), static_cast<std::ptrdiff_t>(n))->first;
    block = owner;
    return true;
  }
  return false;
}

Variant* TalcHWCaps::FindStored(std::string_view command, std::string_view parameter, const Block& block) {
  const auto parameters = commandValues_.find(command);
  if (parameters == commandValues_.end()) return nullptr;
  const auto values = parameters->second.find(parameter);
  return values == parameters->second.end() ? nullptr : values->second.Find(FindSameBlock(block));
}

const Variant* TalcHWCaps::FindCommandValue(std::string_view command, std::string_view parameter,
                                            const Block& block) const {
  return const_cast<TalcHWCaps*>(this)->FindStored(command, parameter, block);
}

bool TalcHWCaps::AddCommandValue(std::string_view command, std::string_view parameter, Variant value,
                                 const Block& block) {
  const Block* const own = FindSameBlock(block);
  if (own == nullptr || FindCommandValue(command, parameter, block) != nullptr) return false;
  commandValues_[std::string(command)][std::string(parameter)].Add(own, std::move(value));
  return true;
}

bool TalcHWCaps::SetCmdParamRanges(std::string_view command, std::string_view parameter, std::int32_t low,
                                   std::int32_t high, std::string_view keyname) {
  const Block* const block = FindBlock(keyname);
  if (command.empty() || parameter.empty() || block == nullptr) return false;
  return AddCommandValue(command, parameter, Variant(Range(low, high)), *block);
}

bool TalcHWCaps::AddCmdParamSymbolValue(std::string_view command, std::string_view parameter, std::string_view symbol,
                                        std::string_view keyname) {
  const Block* const block = FindBlock(keyname);
  if (block == nullptr) return false;
  Variant* const stored = FindStored(command, parameter, *block);
  TextList* const symbols = variant_cast<TextList>(stored);
  if (symbols == nullptr) {
    if (stored != nullptr) RemoveCommandValue(command, parameter, *block);
    return AddCommandValue(command, parameter, Variant(TextList{std::string(symbol)}), *block);
  }
  if (std::find(symbols->begin(), symbols->end(), symbol) == symbols->end()) symbols->emplace_back(symbol);
  return true;
}

void TalcHWCaps::RemoveCommandValue(std::string_view command, std::string_view parameter, const Block& block) {
  commandValues_.find(command)->second.find(parameter)->second.Remove(FindSameBlock(block));
}

std::size_t TalcHWCaps::OverallCmdParamCount() const {
  std::size_t count = 0;
  for (const auto& [command, parameters] : commandValues_)
    for (const auto& [parameter, values] : parameters)
      count += values.size();
  return count;
}

bool TalcHWCaps::GetNthOverallCmdParam(std::size_t n, std::string& command, std::string& parameter,
                                       const Block*& block) const {
  for (const auto& [commandName, parameters] : commandValues_) {
    for (const auto& [parameterName, values] : parameters) {
      if (n >= values.size()) {
        n -= values.size();
        continue;
      }
      command = commandName;
      parameter = parameterName;
      block = values[n].block;
      return true;
    }
  }
  return false;
}

bool TalcHWCaps::GetNthOverride(std::size_t n, std::string& command, std::uint32_t& milliseconds) const {
  if (n >= overrideTimeouts.size()) return false;
  const auto& entry = *std::next(overrideTimeouts.begin(), static_cast<std::ptrdiff_t>(n));
  command = entry.first;
  milliseconds = entry.second;
  return true;
}

bool TalcHWCaps::ApplyOverrideTimeouts() const {
  return std::all_of(overrideTimeouts.begin(), overrideTimeouts.end(), [](const auto& each) {
    return TalcPath::SetOverrideTimeoutMillisec(each.first.c_str(), each.second);
  });
}

}  // namespace TalcPathPrivate
