#include "caps/ConditionBlock.h"

#include <algorithm>

#include "dictionary/DefinedCommands.h"

namespace TalcPathPrivate {

bool HWCapsConditionBlock::AddIntegerCondition(std::string_view command, std::string_view parameter,
                                               std::int32_t value) {
  const CommandFormat* const format = FindDefinedCommand(command);
  if (format == nullptr || !format->HasParameter(parameter)) return false;
  commands_[std::string(command)][std::string(parameter)] = {std::string(parameter), "", value};
  return true;
}

bool HWCapsConditionBlock::AddSymbolCondition(std::string_view command, std::string_view parameter,
                                              std::string_view symbol) {
  const CommandFormat* const format = FindDefinedCommand(command);
  std::int32_t value = 0;
  if (format == nullptr || !format->GetSymbolValue(symbol, value) || !AddIntegerCondition(command, parameter, value))
    return false;
  commands_.find(command)->second.find(parameter)->second.symbol = symbol;
  return true;
}

void HWCapsConditionBlock::RemoveCondition(std::string_view command, std::string_view parameter) {
  const auto parameters = commands_.find(command);
  if (parameters == commands_.end()) return;
  const auto record = parameters->second.find(parameter);
  if (record != parameters->second.end()) parameters->second.erase(record);
  if (parameters->second.empty()) commands_.erase(parameters);
}

std::size_t HWCapsConditionBlock::ConditionCount() const {
  std::size_t count = 0;
  for (const auto& [command, parameters] : commands_)
    count += parameters.size();
  return count;
}

const HWCapsConditionRecord* HWCapsConditionBlock::Find(std::string_view command, std::string_view parameter) const {
  const auto parameters = commands_.find(command);
  if (parameters == commands_.end()) return nullptr;
  const auto record = parameters->second.find(parameter);
  return record == parameters->second.end() ? nullptr : &record->second;
}

std::strong_ordering HWCapsConditionBlock::CompareConditions(const HWCapsConditionBlock& other) const {
  if (this == &other) return std::strong_ordering::equal;
  // The maps are in the order of their names, so that equal ones go side by side.
  const auto compareRecords = [](const auto& record, const auto& otherRecord) {
    const auto names = record.first <=> otherRecord.first;
    return std::is_neq(names) ? names : record.second.value <=> otherRecord.second.value;
  };
  const auto compareCommands = [&](const auto& command, const auto& otherCommand) {
    const auto names = command.first <=> otherCommand.first;
    if (std::is_neq(names)) return names;
    return std::lexicographical_compare_three_way(command.second.begin(), command.second.end(),
                                                  otherCommand.second.begin(), otherCommand.second.end(),
                                                  compareRecords);
  };
  return std::lexicographical_compare_three_way(commands_.begin(), commands_.end(), other.commands_.begin(),
                                                other.commands_.end(), compareCommands);
}

}  // namespace TalcPathPrivate
