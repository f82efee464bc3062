#include "CapsReport.h"

#include <cstdint>
#include <filesystem>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "caps/HwcReader.h"
#include "caps/HwcWriter.h"
#include "caps/TalcHWCaps.h"
#include "Dictionary.h"
#include "support/Console.h"
#include "support/JsonText.h"

namespace {

using Json = nlohmann::json;
using TalcPathPrivate::HWCapsConditionBlock;
using TalcPathPrivate::TalcHWCaps;

Json Conditions(const HWCapsConditionBlock& block) {
  Json list = Json::array();
  for (const auto& [command, parameters] : block.Conditions())
    for (const auto& [parameter, record] : parameters)
      list.push_back({Latin1Text(command), Latin1Text(parameter), Latin1Text(record.symbol), record.value});
  return list;
}

Json Properties(const TalcHWCaps& caps, const HWCapsConditionBlock& block) {
  Json list = Json::array();
  const TalcHWCaps::Properties* const properties = caps.PropertiesOf(block);
  if (properties == nullptr) return list;
  for (const auto& [name, value] : *properties) {
    if (const std::string* const text = value.As<std::string>())
      list.push_back({Latin1Text(name), "STRING", Latin1Text(*text)});
    else
      list.push_back({Latin1Text(name), "INTEGER", *value.As<std::int32_t>()});
  }
  return list;
}

Json Value(const std::string& command, const std::string& parameter, const TalcPathPrivate::Variant& value) {
  if (const auto* const range = value.As<TalcPathPrivate::Range>())
    return {Latin1Text(command), Latin1Text(parameter), "Range", range->first, range->second};
  Json symbols = Json::array();
  for (const std::string& symbol : *value.As<TalcPathPrivate::TextList>())
    symbols.push_back(Latin1Text(symbol));
  return {Latin1Text(command), Latin1Text(parameter), "Symbol", std::move(symbols)};
}

Json Values(const TalcHWCaps& caps, const HWCapsConditionBlock& block) {
  Json list = Json::array();
  const HWCapsConditionBlock* const own = caps.FindSameBlock(block);
  for (const auto& [command, parameters] : caps.AllCommandValues())
    for (const auto& [parameter, values] : parameters)
      if (const TalcPathPrivate::Variant* const value = values.Find(own))
        list.push_back(Value(command, parameter, *value));
  return list;
}

std::string CanonicalText(const TalcHWCaps& caps) {
  std::ostringstream stream;
  // What was read can be written.
  if (!WriteHwc(caps, caps.hardwareType, stream)) throw std::runtime_error("the capabilities cannot be written");
  return stream.str();
}

}  // namespace

void ReportCapabilities(const Dictionary& dictionary, const std::string& path, const std::string& text) {
  dictionary.RequireCommands();
  TalcHWCaps caps;
  std::istringstream stream(text);
  if (!ReadHwc(caps, stream, std::filesystem::path(path).filename().string())) {
    std::cout << JsonLine({{"ok", false}, {"type", nullptr}});
    FinishOutput();
    throw std::runtime_error(path + ": faulty capabilities");
  }
  std::cout << JsonLine({{"ok", true}, {"type", Latin1Text(caps.hardwareType)}});
  std::cout << JsonLine({{"text", Latin1Text(CanonicalText(caps))}});
  const TalcHWCaps::Properties* const defaults = caps.PropertiesOf(caps.DefaultBlock());
  std::cout << JsonLine(
      {{"blockCount", caps.Blocks().size()}, {"defaultPropertyCount", defaults == nullptr ? 0 : defaults->size()}});
  for (const auto& block : caps.Blocks())
    std::cout << JsonLine({{"keyname", Latin1Text(block->keyname)},
                           {"conditions", Conditions(*block)},
                           {"properties", Properties(caps, *block)},
                           {"values", Values(caps, *block)}});
}
