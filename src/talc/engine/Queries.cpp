// The public questions about a command's values, and about its definition as far as values decide.

#include <array>
#include <type_traits>

#include "dictionary/CommandContents.h"
#include "dictionary/DefinedCommands.h"
#include "dictionary/Log.h"
#include "dictionary/PacketLayout.h"
#include "dictionary/TalcDataCommandFormat.h"
#include "talcpath.h"

using TalcPathPrivate::CommandFormat;
using TalcPathPrivate::DataType;
using TalcPathPrivate::FindDefinedCommand;
using TalcPathPrivate::FindExactly;
using TalcPathPrivate::LogVerbose;
using TalcPathPrivate::ParameterFormat;

namespace TalcPath {
namespace {

const ParameterFormat* FindParameter(const CommandFormat& format, std::string_view name) {
  for (const ParameterFormat& parameter : format.Parameters())
    if (parameter.name == name) return &parameter;
  return nullptr;
}

bool FindSymbol(std::string_view commandName, std::string_view symbol, std::int32_t& value) {
  // The lines name another question, which was the first to ask; who searches a log for them finds both.
  const CommandFormat* const format = FindDefinedCommand(commandName);
  if (format == nullptr) {
    LogVerbose("\nIsParameterEqualToSymbol - Command not found - Command : ", commandName);
    return false;
  }
  if (format->GetSymbolValue(symbol, value)) return true;
  LogVerbose("\nIsParameterEqualToSymbol -  Symbol not found - Command : ", commandName, " Symbol: ", symbol);
  return false;
}

/// The parameter of a definition that is there; tells of one that is not.
const ParameterFormat* FindParameterOrLog(const CommandFormat& format, const char* who, const char* parameterName) {
  const ParameterFormat* const parameter = FindParameter(format, parameterName);
  if (parameter == nullptr)
    LogVerbose(who, " Param not found - Command : ", format.GetName(), " ParamName: ", parameterName);
  return parameter;
}

bool RefuseType(const char* who, const CommandFormat& format, const ParameterFormat& parameter) {
  LogVerbose(who, " Wrong Data Type - Command : ", format.GetName(), " ParamName: ", parameter.name,
             " DataType: ", parameter.dataType.Word());
  return false;
}

bool IsInteger(const DataType& type) {
  return type.WireSize() > 0;
}

}  // namespace

bool GetParameterOffset(const TalcCommand& command, const char* parameterName, std::int32_t* offset) {
  if (parameterName == nullptr || offset == nullptr) return false;
  *offset = -1;
  CommandFormat* const format = FindDefinedCommand(command.GetName());
  if (format == nullptr) {
    LogVerbose("\nCommand format not found - command name : ", command.GetName());
    return false;
  }
  if (format->IsMetaCommandFormat()) return false;
  auto* const data = static_cast<TalcPathPrivate::TalcDataCommandFormat*>(format);
  TalcPathPrivate::PacketSizes ignored;
  if (data->HasVariableLengthData() && TalcPathPrivate::ComputePacketLayout(&command, data, ignored) < 0) return false;
  return data->GetParameterOffset(parameterName, offset);
}

bool GetSymbolValue(const TalcCommand& command, const char* symbol, std::int32_t* value) {
  return symbol != nullptr && value != nullptr && FindSymbol(command.GetName(), symbol, *value);
}

bool GetSymbolValue(const char* commandName, const char* symbol, std::int32_t* value) {
  if (commandName == nullptr || *commandName == '\0' || symbol == nullptr || *symbol == '\0' || value == nullptr)
    return false;
  return FindSymbol(commandName, symbol, *value);
}

bool ExtractDataParameterAsInt64(const TalcCommand& command, const char* parameterName, std::int64_t* value) {
  constexpr const char* kWho = "\nExtractDataParameterAsInt64 - ";
  if (parameterName == nullptr || value == nullptr) return false;
  if (command.IsSymbol(parameterName)) {
    constexpr std::uint32_t kLongestSymbol = 256;
    std::array<char, kLongestSymbol + 1> symbol{};
    std::int32_t number = 0;
    if (!command.GetSymbol(parameterName, symbol.data(), kLongestSymbol) ||
        !FindSymbol(command.GetName(), symbol.data(), number))
      return false;
    *value = number;
    return true;
  }
  const CommandFormat* const format = FindDefinedCommand(command.GetName());
  if (format == nullptr) {
    LogVerbose(kWho, "Command not found - Command : ", command.GetName());
    return false;
  }
  const ParameterFormat* const parameter = FindParameterOrLog(*format, kWho, parameterName);
  if (parameter == nullptr) return false;
  if (!IsInteger(parameter->dataType)) return RefuseType(kWho, *format, *parameter);
  return parameter->dataType.WithInteger(
      [&]<typename T>(std::type_identity<T>) {
        const T* const held = FindExactly<T>(command, parameterName);
        if (held != nullptr) *value = static_cast<std::int64_t>(+*held);  // widened with its own sign first
        return held != nullptr;
      },
      false);
}

bool IsParameterEqualToSymbol(const TalcCommand& command, const char* parameterName, const char* symbol) {
  constexpr const char* kWho = "\nIsParameterEqualToSymbol - ";
  if (parameterName == nullptr || symbol == nullptr) return false;
  // A symbol is told from another one by its name alone, also one that the definition does not have.
  if (command.IsSymbol(parameterName)) return command.IsParameterEqualToSymbolName(parameterName, symbol);
  std::int32_t number = 0;
  if (!FindSymbol(command.GetName(), symbol, number)) return false;
  const CommandFormat& format = *FindDefinedCommand(command.GetName());
  const ParameterFormat* const parameter = FindParameterOrLog(format, kWho, parameterName);
  if (parameter == nullptr) return false;
  if (!IsInteger(parameter->dataType)) return RefuseType(kWho, format, *parameter);
  return parameter->dataType.WithInteger(
      [&]<typename T>(std::type_identity<T>) {
        const T* const held = FindExactly<T>(command, parameterName);
        return held != nullptr && *held == static_cast<T>(number);
      },
      false);
}

bool CompareParameters(const TalcCommand& left, const char* leftName, const TalcCommand& right, const char* rightName,
                       std::int32_t* order) {
  std::int64_t leftValue = 0;
  std::int64_t rightValue = 0;
  if (order == nullptr || !ExtractDataParameterAsInt64(left, leftName, &leftValue) ||
      !ExtractDataParameterAsInt64(right, rightName, &rightValue))
    return false;
  *order = leftValue < rightValue ? -1 : leftValue > rightValue ? 1 : 0;
  return true;
}

bool AreParametersEqual(const TalcCommand& left, const char* leftName, const TalcCommand& right,
                        const char* rightName) {
  std::int32_t order = 0;
  return CompareParameters(left, leftName, right, rightName, &order) && order == 0;
}

}  // namespace TalcPath
