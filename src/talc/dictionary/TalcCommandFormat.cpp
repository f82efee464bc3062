#include "dictionary/TalcCommandFormat.h"

#include <ostream>

#include "dictionary/DefinedCommands.h"
#include "dictionary/Log.h"
#include "dictionary/SameName.h"
#include "dictionary/TokenStream.h"

namespace TalcPathPrivate {
namespace {

constexpr std::int16_t kMinorLimit = 64;
constexpr std::int16_t kFunctionLimit = 128;

bool ReadKeyword(TokenStream& stream, std::string_view keyword) {
  if (IsSameName(stream.ReadWord(), keyword)) return true;
  LogVerbose("\nError - did not find '", keyword, "' keyword");
  return false;
}

/// Reads "keyword number" into `number`, which is at least 0 and below `limit`.
bool ReadCode(TokenStream& stream, std::string_view keyword, std::int16_t limit, std::int16_t& number) {
  if (!ReadKeyword(stream, keyword)) return false;
  std::int16_t read = -1;
  if (!stream.ReadNumber(read) || read < 0 || read >= limit) return false;
  number = read;
  return true;
}

bool IsWithin(std::int16_t number, std::int16_t limit) {
  return number >= 0 && number < limit;
}

}  // namespace

bool TalcCommandFormat::ReadMajor(TokenStream& stream) {
  if (!ReadKeyword(stream, "CommandTypeMajor")) return false;
  const auto major = FindMajor(stream.ReadWord());
  if (major) commandType.major = *major;
  return major.has_value();
}

bool TalcCommandFormat::ReadMinor(TokenStream& stream) {
  return ReadCode(stream, "CommandTypeMinor", kMinorLimit, commandType.minor);
}

bool TalcCommandFormat::ReadFunction(TokenStream& stream) {
  return ReadCode(stream, "Function", kFunctionLimit, commandType.function);
}

bool TalcCommandFormat::ReadCommandTypeBlock(TokenStream& stream) {
  const char* failed = nullptr;
  if (!ReadMajor(stream))
    failed = "Type Major";
  else if (!ReadMinor(stream))
    failed = "Type Minor";
  else if (!ReadFunction(stream))
    failed = "Function";
  if (failed == nullptr) return true;
  LogAlways("\n\nERROR Parsing Command ", failed, " for Talc Command Definition - Command Name: ", name);
  return false;
}

void TalcCommandFormat::WriteCommandTypeBlock(std::ostream& stream) const {
  stream << "\nTalc\n"
         << "\nCommandTypeMajor\t" << MajorWord(commandType.major, "INVALID") << "\nCommandTypeMinor\t"
         << std::to_string(commandType.minor) << "\nFunction\t\t\t" << std::to_string(commandType.function) << "\n";
}

bool TalcCommandFormat::ValidateCommandType(ErrorList& errors) const {
  const std::size_t before = errors.size();
  if (MajorWord(commandType.major, nullptr) == nullptr) errors.emplace_back("CommandTypeMajor is INVALID");
  // The blank at the end belongs to these two.
  if (!IsWithin(commandType.minor, kMinorLimit)) errors.emplace_back("CommandTypeMinor is out of range [0,63] ");
  if (!IsWithin(commandType.function, kFunctionLimit)) errors.emplace_back("Function is out of range [0,127] ");
  return errors.size() == before;
}

void TalcCommandFormat::Clear() {
  TalcDataCommandFormat::Clear();
  commandType = CommandType();
}

bool TalcCommandFormat::IsUnique() const {
  if (!CommandFormat::IsUnique()) return false;
  const std::string* const other = FindCommandType(commandType);
  if (other == nullptr) return true;
  LogVerbose("\n\nERROR - Duplicate Major Type, Minor Type, and Function code found!",
             "\n\n\t\t Existing Command Name: ", *other);
  return false;
}

void TalcCommandFormat::Dump(std::ostream& stream, bool brief) const {
  stream << "\n\nBEGIN - Talc Command Format"
         << "\nName: " << name << "\nType Major: " << MajorWord(commandType.major, "*INVALID*")
         << "\nType Minor: " << std::to_string(commandType.minor)
         << "\nFunction: " << std::to_string(commandType.function);
  DumpParameters(stream, brief);
  DumpSizes(stream);
  stream << "\nEND   - Talc Command Format";
}

bool TalcCommandFormat::AddToDefinedCommands() {
  return InsertCommandType(commandType, name) && CommandFormat::AddToDefinedCommands();
}

bool TalcCommandFormat::WriteCommandCodes(std::ostream& stream) const {
  // Between the two stands a comma; whoever writes several commands puts the one behind them.
  stream << "\n\tkBoB_Set" << name << " = " << std::to_string(commandType.function * 2) << ","
         << "\n\tkBoB_Get" << name << " = " << std::to_string(commandType.function * 2 + 1);
  return true;
}

}  // namespace TalcPathPrivate
