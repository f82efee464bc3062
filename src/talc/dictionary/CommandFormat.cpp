#include "dictionary/CommandFormat.h"

#include <algorithm>
#include <ostream>

#include "dictionary/DefinedCommands.h"
#include "dictionary/Log.h"
#include "dictionary/SameName.h"
#include "dictionary/TokenStream.h"

namespace TalcPathPrivate {

CommandFormat::CommandFormat(const CommandFormat& other) : name(other.name), parameters(other.parameters) {}

CommandFormat& CommandFormat::operator=(const CommandFormat& other) {
  if (this == &other) return *this;
  name = other.name;
  parameters = other.parameters;
  return *this;
}

void CommandFormat::Clear() {
  name.clear();
  parameters.clear();
  symbols.clear();
  symbolNames.Clear();
  documentation.clear();
  definitionFile.clear();
}

bool CommandFormat::IsUnique() const {
  if (FindDefinedCommand(name) == nullptr) return true;
  LogVerbose("\n\nERROR - Duplicate Talc Command Name found : ", name);
  return false;
}

void CommandFormat::Dump(std::ostream& stream, bool brief) const {
  for (const ParameterFormat& parameter : parameters)
    parameter.Dump(stream, brief);
}

void CommandFormat::DumpParameters(std::ostream& stream, bool brief) const {
  stream << "\nParams {";
  CommandFormat::Dump(stream, brief);
  stream << "\n       }";
}

bool CommandFormat::AddToDefinedCommands() {
  return InsertDefinedCommand(this);
}

bool CommandFormat::AddSymbol(std::string_view symbolName, std::int32_t value) {
  std::int32_t present = 0;
  if (symbolNames.Add(symbolName) && GetSymbolValue(symbolName, present)) {
    LogVerbose("\nError - Symbolic Constant duplicate name");
    return false;
  }
  constexpr std::size_t kFewSymbols = 8;
  if (symbols.empty()) symbols.reserve(kFewSymbols);
  symbols.push_back({std::string(symbolName), value});
  return true;
}

bool CommandFormat::GetSymbolValue(std::string_view symbolName, std::int32_t& value) const {
  for (const Symbol& symbol : symbols) {
    if (!IsSameName(symbol.name, symbolName)) continue;
    value = symbol.value;
    return true;
  }
  return false;
}

bool CommandFormat::GetSymbolByIndex(std::ptrdiff_t index, std::string& symbolName, std::int32_t& value) const {
  if (index < 0 || index >= std::ssize(symbols)) return false;
  const Symbol& symbol = symbols[static_cast<std::size_t>(index)];
  symbolName = symbol.name;
  value = symbol.value;
  return true;
}

const ParameterFormat* CommandFormat::FindParameter(std::string_view parameterName) const {
  const auto found = std::find_if(parameters.begin(), parameters.end(), [&](const ParameterFormat& parameter) {
    return IsSameName(parameter.name, parameterName);
  });
  return found == parameters.end() ? nullptr : &*found;
}

bool CommandFormat::GetParameterDataType(std::string_view parameterName, std::string& dataType) const {
  const ParameterFormat* const parameter = FindParameter(parameterName);
  if (parameter == nullptr) return false;
  dataType = parameter->dataType.Word();
  return true;
}

bool CommandFormat::GetParameterByIndex(std::ptrdiff_t index, std::string& parameterName, std::string& dataType,
                                        bool& isRequiredForRequestData) const {
  if (index < 0 || index >= std::ssize(parameters)) return false;
  const ParameterFormat& parameter = parameters[static_cast<std::size_t>(index)];
  parameterName = parameter.name;
  dataType = parameter.dataType.Word();
  isRequiredForRequestData = parameter.isRequiredForRequestData;
  return true;
}

bool CommandFormat::Validate(ErrorList& errors) const {
  const std::size_t before = errors.size();
  if (name.empty()) errors.emplace_back("Command Name is empty");
  if (!IsValidName(name)) errors.emplace_back("Command Name is invalid");
  if (definitionFile.empty()) errors.emplace_back("Talc Command Definition file not specified");
  const bool isTypeValid = ValidateCommandType(errors);

  bool bytesSeen = false;
  bool sendOnlySeen = false;
  for (const ParameterFormat& parameter : parameters) {
    parameter.Validate(errors);
    if (bytesSeen)
      errors.emplace_back("Found Data Parameter after BYTES parameter - BYTES parameter can ONLY be last parameter");
    if (parameter.dataType.IsBytes()) bytesSeen = true;
    if (!parameter.isRequiredForRequestData)
      sendOnlySeen = true;
    else if (sendOnlySeen)
      errors.emplace_back("Required For RequestData ERROR - all RD must come first in the command");
  }
  for (const Symbol& symbol : symbols) {
    if (symbol.name.empty()) errors.emplace_back("Symbol name is empty");
    if (!IsValidName(symbol.name)) errors.emplace_back("Symbol name is invalid");
  }
  return isTypeValid && errors.size() == before;
}

bool CommandFormat::ReadDefinition(TokenStream& stream, std::string_view commandName) {
  LogVerbose("\nFound Talc Command Definition...", "\tName: ", commandName);
  name = commandName;
  if (!ReadCommandTypeBlock(stream)) {
    LogAlways("\n\nERROR Failed to read CommandType Block - Command Name: ", name);
    return false;
  }
  for (bool done = false; !done;) {
    // Cleared each time, so that it is never found set: a dictionary in which a required parameter stands behind a
    // send-only one has always been loaded.
    bool sendOnly = false;
    if (!ReadParameterOrSymbol(stream, done, sendOnly)) {
      LogAlways("\n\nERROR Parsing Command Parameter Data for Talc Command Definition - Command Name: ", name);
      return false;
    }
  }
  if (logState.verbose) Dump(LogStream(), true);
  return true;
}

bool CommandFormat::ReadParameterOrSymbol(TokenStream& stream, bool& done, bool& sendOnly) {
  const std::string_view keyword = stream.ReadWord();
  const std::string_view parameterName = stream.ReadWord();
  if (IsSameName(keyword, "Symbol")) {
    std::int32_t value = 0;
    return stream.ReadNumber(value) && AddSymbol(parameterName, value);
  }

  const std::string_view rdTag = stream.ReadWord();
  const bool isRequired = IsSameName(rdTag, "RD");
  if (isRequired && sendOnly) {
    LogVerbose("\nError - Found a parameter needed for RequestData AFTER a send-only parameter");
    return false;
  }
  if (!isRequired) sendOnly = true;
  const std::string_view typeKeyword = isRequired ? stream.ReadWord() : rdTag;
  const std::string_view typeWord = stream.ReadWord();
  // The end counts before what was read: a type word with nothing at all behind it is lost, and its parameter with it.
  // Dictionaries end their lines before the ";", and what else stands at the end of a block is passed over.
  if (stream.AtEnd()) {
    done = true;
    return true;
  }

  ParameterFormat parameter(parameterName, DataType(typeWord), isRequired);
  if (!CheckNewParameter(keyword, typeKeyword, parameter)) return false;
  if (parameter.dataType.IsBytes()) SetHasVariableLengthData(true);
  constexpr std::size_t kFewParameters = 4;
  if (parameters.empty()) parameters.reserve(kFewParameters);
  parameters.push_back(std::move(parameter));
  return true;
}

bool CommandFormat::CheckNewParameter(std::string_view keyword, std::string_view typeKeyword,
                                      const ParameterFormat& parameter) const {
  if (!IsSameName(keyword, "DataName")) {
    LogVerbose("\nError - did not find 'DataName' keyword");
    return false;
  }
  if (!IsSameName(typeKeyword, "DataType")) {
    LogVerbose("\nError - did not find 'DataType' keyword");
    return false;
  }
  // Words that were read are never empty; these two hold for every other way to a parameter.
  if (parameter.name.empty()) {
    LogVerbose("\n\tERROR - data NAME string for Parameter was empty");
    return false;
  }
  if (parameter.dataType.Word().empty()) {
    LogVerbose("\n\tERROR - data TYPE string for Parameter was empty");
    return false;
  }
  if (HasParameter(parameter.name)) {
    LogVerbose("\n\tERROR - duplicate data names for parameters in command - ", name);
    return false;
  }
  if (!parameter.IsValidDataType()) {
    LogVerbose("\n\tERROR - invalid data type '", parameter.dataType.Word(), "' ");
    return false;
  }
  if (std::any_of(parameters.begin(), parameters.end(),
                  [](const auto& present) { return present.dataType.IsBytes(); })) {
    LogVerbose("\n\tERROR - attempted to add an additional data parameter after a BYTES parameter");
    return false;
  }
  return true;
}

void CommandFormat::WriteDefinition(std::ostream& stream) const {
  stream << "\n# TalcPath Dictionary generated ;"
         << "\n"
         << name;
  WriteCommandTypeBlock(stream);
  for (const ParameterFormat& parameter : parameters)
    parameter.WriteDefinition(stream);
  for (const Symbol& symbol : symbols)
    stream << "\nSymbol\t" << symbol.name << "\t" << std::to_string(symbol.value);
  stream << "\n;";
  if (!documentation.empty()) WriteDocumentation(stream);
}

void CommandFormat::WriteDocumentation(std::ostream& stream) const {
  constexpr int kWordsPerLine = 10;
  stream << "\n\nDOCUMENTATION\t" << name << "\n";
  TokenStream words(documentation);
  int count = 0;
  for (;;) {
    const std::string_view word = words.ReadWord();
    // The end counts before the word, so a text without white space behind it loses its last word. Texts that were
    // written by this have long been in use.
    if (words.AtEnd() || word.empty()) break;
    stream << word << " ";
    if (++count % kWordsPerLine == 0) stream << "\n";
  }
  stream << "\n;";
}

}  // namespace TalcPathPrivate
