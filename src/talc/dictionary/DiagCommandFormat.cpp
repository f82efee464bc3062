#include "dictionary/DiagCommandFormat.h"

#include <ostream>

#include "dictionary/DefinedCommands.h"
#include "dictionary/Log.h"
#include "dictionary/TokenStream.h"

namespace TalcPathPrivate {
namespace {

bool IsOpcode(std::int16_t number) {
  return number >= 0 && number < 256;
}

}  // namespace

bool DiagCommandFormat::ReadCommandTypeBlock(TokenStream& stream) {
  if (stream.ReadWord() != "DiagOpcode") {
    LogVerbose("\nError - did not find 'DiagOpcode' keyword");
    return false;
  }
  std::int16_t read = -1;
  if (!stream.ReadNumber(read) || !IsOpcode(read)) return false;
  diagOpcode = read;
  return true;
}

void DiagCommandFormat::WriteCommandTypeBlock(std::ostream& stream) const {
  stream << "\nDiag\n"
         << "\nDiagOpcode\t" << std::to_string(diagOpcode) << "\n";
}

bool DiagCommandFormat::ValidateCommandType(ErrorList& errors) const {
  if (IsOpcode(diagOpcode)) return true;
  errors.emplace_back("DiagOpcode is out of range [0,255] ");
  return false;
}

bool DiagCommandFormat::IsUnique() const {
  if (!CommandFormat::IsUnique()) return false;
  const std::string* const other = FindDiagOpcode(diagOpcode);
  if (other == nullptr) return true;
  LogVerbose("\n\nERROR - Duplicate Diag Opcode code found!", "\n\n\t\t Existing Command Name: ", *other);
  return false;
}

void DiagCommandFormat::Dump(std::ostream& stream, bool brief) const {
  stream << "\n\nBEGIN - Talc Diagnostic Command Format"
         << "\nDiagOpcode : " << std::to_string(diagOpcode);
  TalcDataCommandFormat::Dump(stream, brief);
  stream << "\nEND   - Talc Diagnostic Command Format";
}

bool DiagCommandFormat::AddToDefinedCommands() {
  return InsertDiagOpcode(diagOpcode, name) && CommandFormat::AddToDefinedCommands();
}

bool DiagCommandFormat::WriteCommandCodes(std::ostream& stream) const {
  stream << "\n\tkDiag_" << name << " = " << std::to_string(diagOpcode);
  return true;
}

}  // namespace TalcPathPrivate
