// The public questions about definitions. Each looks its command up by name.

#include <algorithm>
#include <string>

#include "dictionary/DefinedCommands.h"
#include "dictionary/Log.h"
#include "talcpath.h"

using TalcPathPrivate::CommandFormat;
using TalcPathPrivate::FindDefinedCommand;

namespace TalcPath {
namespace {

CommandFormat* FindOrLog(std::string_view name, const char* who) {
  CommandFormat* const format = FindDefinedCommand(name);
  if (format == nullptr) TalcPathPrivate::LogVerbose(who, "Command format not found - Command : ", name);
  return format;
}

}  // namespace

bool IsMetaCommandFormat(const TalcCommand& command) {
  const CommandFormat* const format = FindOrLog(command.GetName(), "\nIsMetaCommandFormat- ");
  return format != nullptr && format->IsMetaCommandFormat();
}

bool IsDiagCommandFormat(const TalcCommand& command) {
  const CommandFormat* const format = FindOrLog(command.GetName(), "\nIsDiagCommandFormat- ");
  return format != nullptr && format->IsDiagCommandFormat();
}

std::uint32_t GetOverrideTimeoutMillisec(const TalcCommand& command) {
  const CommandFormat* const format = FindOrLog(command.GetName(), "\nGetOverrideTimeoutMillisec - ");
  return format == nullptr ? 0 : format->GetOverrideTimeoutMillisec();
}

bool SetOverrideTimeoutMillisec(const char* commandName, std::uint32_t milliseconds) {
  // The getter's words are meant: whoever searches a log for one finds both.
  CommandFormat* const format = FindOrLog(commandName == nullptr ? "" : commandName, "\nGetOverrideTimeoutMillisec - ");
  if (format == nullptr) return false;
  format->SetOverrideTimeoutMillisec(milliseconds);
  return true;
}

bool LookupParameterType(const char* commandName, const char* parameterName, std::uint32_t bufferSize, char* buffer) {
  constexpr std::uint32_t kSmallestBuffer = 8;
  if (bufferSize < kSmallestBuffer || buffer == nullptr || commandName == nullptr || parameterName == nullptr)
    return false;
  const CommandFormat* const format = FindDefinedCommand(commandName);
  std::string word;
  if (format == nullptr || !format->GetParameterDataType(parameterName, word)) return false;
  if (word.size() >= bufferSize - 1) return false;
  std::fill_n(buffer, bufferSize, '\0');
  std::copy(word.begin(), word.end(), buffer);
  return true;
}

}  // namespace TalcPath
