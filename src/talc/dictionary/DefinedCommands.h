#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "dictionary/CommandFormat.h"
#include "dictionary/CommandType.h"
#include "dictionary/SameName.h"

/// The defined commands by name, and the codes that are taken. The three tables are the process's own; they come into
/// being when they are first used and go at the library's stop.
namespace TalcPathPrivate {

using CommandTable = std::map<std::string, std::unique_ptr<CommandFormat>, std::less<>>;
using CommandTypeTable = std::map<CommandType, std::string>;
using DiagOpcodeTable = std::map<std::int16_t, std::string>;

/// Null when there is no memory for a table.
CommandTable* DefinedCommands();
CommandTypeTable* CommandTypes();
DiagOpcodeTable* DiagOpcodes();

/// What the look-up below found last; null when the table is new.
inline CommandFormat* lastFoundCommand = nullptr;
CommandFormat* SearchDefinedCommand(std::string_view name);

/// The command of that name, or null. The last one found is remembered: an exchange asks for the same name many times.
inline CommandFormat* FindDefinedCommand(std::string_view name) {
  if (lastFoundCommand != nullptr && IsSameName(lastFoundCommand->GetName(), name)) return lastFoundCommand;
  return SearchDefinedCommand(name);
}
/// The name of the command with that code, or null.
const std::string* FindCommandType(const CommandType& type);
const std::string* FindDiagOpcode(std::int16_t opcode);

/// Gives the table the ownership of the format. False without a table or for a name that is taken.
bool InsertDefinedCommand(CommandFormat* format);
bool InsertCommandType(const CommandType& type, const std::string& name);
bool InsertDiagOpcode(std::int16_t opcode, const std::string& name);

/// Each empties the error list that it is given, so that of several calls with one list only the last one's errors are
/// seen. True when the list is empty at the end.
bool DeleteDefinedCommands(ErrorList& errors);
bool DeleteCommandTypeTable(ErrorList& errors);
bool DeleteDiagOpcodeTable(ErrorList& errors);

}  // namespace TalcPathPrivate
