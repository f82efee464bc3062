#include "DefinitionReport.h"

#include <iostream>
#include <nlohmann/json.hpp>

#include "Dictionary.h"
#include "dictionary/DiagCommandFormat.h"
#include "dictionary/MetaCommandFormat.h"
#include "dictionary/TalcCommandFormat.h"
#include "support/JsonText.h"

namespace {

using Json = nlohmann::json;
using namespace TalcPathPrivate;

Json Parameters(const CommandFormat& format) {
  Json all = Json::array();
  for (const ParameterFormat& parameter : format.Parameters())
    all.push_back(Json::array(
        {Latin1Text(parameter.name), Latin1Text(parameter.dataType.Word()), parameter.isRequiredForRequestData}));
  return all;
}

Json Symbols(const CommandFormat& format) {
  Json all = Json::array();
  std::string name;
  std::int32_t value = 0;
  for (std::ptrdiff_t at = 0; format.GetSymbolByIndex(at, name, value); ++at)
    all.push_back(Json::array({Latin1Text(name), value}));
  return all;
}

Json Sizes(const TalcDataCommandFormat& format) {
  const PacketSizes sizes = format.HasVariableLengthData() ? PacketSizes() : format.GetPacketSizes();
  return Json::array({sizes.sendSize, sizes.sendPayloadSize, sizes.requestSize, sizes.requestPayloadSize});
}

void AddCodes(const TalcCommandFormat& format, Json& report) {
  const CommandType& type = format.GetCommandType();
  report["kind"] = "Talc";
  // No word for a number that is no major type; the reader lets none pass.
  if (const char* const word = MajorWord(type.major, nullptr)) report["major"] = word;
  report["minor"] = type.minor;
  report["function"] = type.function;
  report["sizes"] = Sizes(format);
}

void AddCodes(const DiagCommandFormat& format, Json& report) {
  report["kind"] = "Diag";
  report["opcode"] = format.GetDiagOpcode();
  report["sizes"] = Sizes(format);
}

void AddCodes(const MetaCommandFormat& format, Json& report) {
  report["kind"] = "Meta";
  report["start"] = Latin1Text(format.GetStartCommand());
  report["repeat"] = Latin1Text(format.GetRepeatCommand());
  report["stop"] = Latin1Text(format.GetStopCommand());
}

Json Describe(const CommandFormat& format) {
  Json report = {{"name", Latin1Text(format.GetName())},
                 {"kind", nullptr},
                 {"major", nullptr},
                 {"minor", nullptr},
                 {"function", nullptr},
                 {"opcode", nullptr},
                 {"start", nullptr},
                 {"repeat", nullptr},
                 {"stop", nullptr},
                 {"variable", format.HasVariableLengthData()},
                 {"sizes", nullptr},
                 {"parameters", Parameters(format)},
                 {"symbols", Symbols(format)}};
  if (format.IsMetaCommandFormat())
    AddCodes(static_cast<const MetaCommandFormat&>(format), report);
  else if (format.IsDiagCommandFormat())
    AddCodes(static_cast<const DiagCommandFormat&>(format), report);
  else
    AddCodes(static_cast<const TalcCommandFormat&>(format), report);
  return report;
}

}  // namespace

void Check(const Dictionary& dictionary) {
  for (const Dictionary::Source& source : dictionary.Sources())
    std::cout << JsonLine({{"file", Latin1Text(source.name)}, {"ok", source.isGood}});
  dictionary.RequireCommands();
  for (const auto& [name, format] : dictionary.Commands())
    std::cout << JsonLine(Describe(*format));
}

void Validate(const Dictionary& dictionary) {
  dictionary.RequireCommands();
  for (const auto& [name, format] : dictionary.Commands()) {
    ErrorList errors;
    format->Validate(errors);
    Json texts = Json::array();
    for (const std::string& error : errors)
      texts.push_back(Latin1Text(error));
    std::cout << JsonLine({{"name", Latin1Text(name)}, {"errors", std::move(texts)}});
  }
}
