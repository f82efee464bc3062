#include "caps/TalcHWCaps.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "dictionary/DefinedCommands.h"

namespace TalcPathPrivate {
namespace {

constexpr std::string_view kNoKeyname = "ERROR_ERROR_ERROR";

}  // namespace

HWCapsConditionBlock& TalcHWCaps::AppendBlock(Block block) {
  blocks_.push_back(std::make_unique<Block>(std::move(block)));
  return *blocks_.back();
}

const HWCapsConditionBlock* TalcHWCaps::FindBlock(std::string_view keyname) const {
  if (keyname.empty()) return &defaultBlock_;
  for (const auto& block : blocks_)
    if (block->keyname == keyname) return block.get();
  return nullptr;
}

const HWCapsConditionBlock* TalcHWCaps::FindSameBlock(const Block& block) const {
  if (block.ConditionCount() == 0) return &defaultBlock_;
  for (const auto& own : blocks_)
    if (own->HasSameConditions(block)) return own.get();
  return nullptr;
}

std::string TalcHWCaps::KeynameOf(const Block& block) const {
  const Block* const own = FindSameBlock(block);
  return own == nullptr ? std::string(kNoKeyname) : own->keyname;
}

TalcHWCaps::PropertyTable* TalcHWCaps::FindTable(const Block& block) {
  for (PropertyTable& table : propertyTables_)
    if (table.block->HasSameConditions(block)) return &table;
  return nullptr;
}

TalcHWCaps::PropertyTable* TalcHWCaps::FindOrAddTable(const Block& block) {
  if (PropertyTable* const table = FindTable(block)) return table;
  const Block* const own = FindSameBlock(block);
  return own == nullptr ? nullptr : &propertyTables_.emplace_back(PropertyTable{own, {}});
}

const TalcHWCaps::Properties* TalcHWCaps::PropertiesOf(const Block& block) const {
  const PropertyTable* const table = const_cast<TalcHWCaps*>(this)->FindTable(block);
  return table == nullptr ? nullptr : &table->properties;
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
  PropertyTable* const table = FindOrAddTable(block);
  if (table == nullptr) return false;
  table->properties.insert_or_assign(std::string(name), std::move(value));
  return true;
}

void TalcHWCaps::RemoveProperty(std::string_view name, const Block& block) {
  PropertyTable* const table = FindTable(block);
  if (table == nullptr) return;
  const auto property = table->properties.find(name);
  if (property != table->properties.end()) table->properties.erase(property);
}

std::size_t TalcHWCaps::OverallPropertyCount() const {
  std::size_t count = 0;
  for (const PropertyTable& table : propertyTables_)
    count += table.properties.size();
  return count;
}

bool TalcHWCaps::GetNthOverallProperty(std::size_t n, std::string& name, const Block*& block) const {
  for (const PropertyTable& table : propertyTables_) {
    if (n >= table.properties.size()) {
      n -= table.properties.size();
      continue;
    }
    name = std::next(table.properties.begin(), static_cast<std::ptrdiff_t>(n))->first;
    block = table.block;
    return true;
  }
  return false;
}

TalcHWCaps::CommandValue* TalcHWCaps::FindStored(std::string_view command, std::string_view parameter,
                                                 const Block& block) {
  const auto parameters = commandValues_.find(command);
  if (parameters == commandValues_.end()) return nullptr;
  const auto values = parameters->second.find(parameter);
  if (values == parameters->second.end()) return nullptr;
  for (CommandValue& each : values->second)
    if (each.block->HasSameConditions(block)) return &each;
  return nullptr;
}

const Variant* TalcHWCaps::FindCommandValue(std::string_view command, std::string_view parameter,
                                            const Block& block) const {
  const CommandValue* const stored = const_cast<TalcHWCaps*>(this)->FindStored(command, parameter, block);
  return stored == nullptr ? nullptr : &stored->value;
}

bool TalcHWCaps::AddCommandValue(std::string_view command, std::string_view parameter, Variant value,
                                 const Block& block) {
  const Block* const own = FindSameBlock(block);
  if (own == nullptr || FindCommandValue(command, parameter, block) != nullptr) return false;
  commandValues_[std::string(command)][std::string(parameter)].push_back({std::move(value), own});
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
  CommandValue* const stored = FindStored(command, parameter, *block);
  TextList* const symbols = stored == nullptr ? nullptr : stored->value.As<TextList>();
  if (symbols == nullptr) {
    if (stored != nullptr) RemoveCommandValue(command, parameter, *block);
    return AddCommandValue(command, parameter, Variant(TextList{std::string(symbol)}), *block);
  }
  if (std::find(symbols->begin(), symbols->end(), symbol) == symbols->end()) symbols->emplace_back(symbol);
  return true;
}

void TalcHWCaps::RemoveCommandValue(std::string_view command, std::string_view parameter, const Block& block) {
  std::vector<CommandValue>& values = commandValues_.find(command)->second.find(parameter)->second;
  std::erase_if(values, [&](const CommandValue& each) { return each.block->HasSameConditions(block); });
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
  for (const auto& [command, milliseconds] : overrideTimeouts) {
    CommandFormat* const format = FindDefinedCommand(command);
    if (format == nullptr) return false;
    format->SetOverrideTimeoutMillisec(milliseconds);
  }
  return true;
}

}  // namespace TalcPathPrivate
