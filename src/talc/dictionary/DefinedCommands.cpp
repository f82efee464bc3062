#include "dictionary/DefinedCommands.h"

#include <exception>
#include <new>

namespace TalcPathPrivate {
namespace {

CommandTable* definedCommands = nullptr;
CommandTypeTable* commandTypeTable = nullptr;
DiagOpcodeTable* diagOpcodeTable = nullptr;
/// Where the name that was searched for last belongs: a definition is searched for right before it is inserted.
CommandTable::iterator lastPlace;

template <typename Table>
Table* Have(Table*& table) {
  if (table == nullptr) table = new (std::nothrow) Table;
  return table;
}

template <typename Table>
bool Delete(Table*& table, ErrorList& errors) {
  errors.clear();
  delete table;
  table = nullptr;
  return true;
}

/// The name under `code`, or null.
template <typename Table, typename Code>
const std::string* FindName(const Table* table, const Code& code) {
  if (table == nullptr) return nullptr;
  const auto found = table->find(code);
  return found == table->end() ? nullptr : &found->second;
}

}  // namespace

CommandTable* DefinedCommands() {
  if (definedCommands == nullptr && Have(definedCommands) != nullptr) lastPlace = definedCommands->end();
  return definedCommands;
}
CommandTypeTable* CommandTypes() {
  return Have(commandTypeTable);
}
DiagOpcodeTable* DiagOpcodes() {
  return Have(diagOpcodeTable);
}

CommandFormat* SearchDefinedCommand(std::string_view name) {
  if (definedCommands == nullptr) return nullptr;
  lastPlace = definedCommands->lower_bound(name);
  if (lastPlace == definedCommands->end() || lastPlace->first != name) return nullptr;
  return lastFoundCommand = lastPlace->second.get();
}

const std::string* FindCommandType(const CommandType& type) {
  return FindName(commandTypeTable, type);
}
const std::string* FindDiagOpcode(std::int16_t opcode) {
  return FindName(diagOpcodeTable, opcode);
}

bool InsertDefinedCommand(CommandFormat* format) {
  CommandTable* const table = DefinedCommands();
  if (table == nullptr) return false;
  const std::size_t before = table->size();
  const auto place = table->try_emplace(lastPlace, format->GetName(), nullptr);
  if (table->size() == before) return false;
  place->second.reset(format);
  return true;
}

bool InsertCommandType(const CommandType& type, const std::string& name) {
  CommandTypeTable* const table = CommandTypes();
  return table != nullptr && table->try_emplace(type, name).second;
}

bool InsertDiagOpcode(std::int16_t opcode, const std::string& name) {
  DiagOpcodeTable* const table = DiagOpcodes();
  return table != nullptr && table->try_emplace(opcode, name).second;
}

bool DeleteDefinedCommands(ErrorList& errors) {
  errors.clear();
  lastFoundCommand = nullptr;
  if (definedCommands == nullptr) return true;
  for (auto& [name, format] : *definedCommands) {
    try {
      format.reset();
    } catch (const std::exception& error) {
      errors.emplace_back(error.what());
    } catch (...) {
      errors.emplace_back("UnknownException");
    }
  }
  delete definedCommands;
  definedCommands = nullptr;
  return errors.empty();
}

bool DeleteCommandTypeTable(ErrorList& errors) {
  return Delete(commandTypeTable, errors);
}
bool DeleteDiagOpcodeTable(ErrorList& errors) {
  return Delete(diagOpcodeTable, errors);
}

}  // namespace TalcPathPrivate
