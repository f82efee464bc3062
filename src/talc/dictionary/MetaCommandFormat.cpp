#include "dictionary/MetaCommandFormat.h"

#include <ostream>

#include "dictionary/TokenStream.h"

namespace TalcPathPrivate {
namespace {

bool ReadNameBehind(TokenStream& stream, std::string_view keyword, std::string& commandName) {
  if (stream.ReadWord() != keyword) return false;
  commandName = stream.ReadWord();
  return !commandName.empty();
}

void CheckName(const std::string& commandName, const std::string& role, ErrorList& errors) {
  if (commandName.empty()) errors.push_back(role + " name is empty");
  if (!IsValidName(commandName)) errors.push_back(role + " name is invalid");
}

}  // namespace

bool MetaCommandFormat::ReadCommandTypeBlock(TokenStream& stream) {
  return ReadNameBehind(stream, "Start", startCommand) && ReadNameBehind(stream, "Repeat", repeatCommand) &&
         ReadNameBehind(stream, "Stop", stopCommand);
}

void MetaCommandFormat::WriteCommandTypeBlock(std::ostream& stream) const {
  stream << "\nMeta\n"
         << "\nStart\t" << startCommand << "\nRepeat\t" << repeatCommand << "\nStop\t" << stopCommand << "\n";
}

bool MetaCommandFormat::ValidateCommandType(ErrorList& errors) const {
  const std::size_t before = errors.size();
  CheckName(startCommand, "StartCommand", errors);
  CheckName(repeatCommand, "RepeatCommand", errors);
  CheckName(stopCommand, "StopCommand", errors);
  return errors.size() == before;
}

void MetaCommandFormat::Clear() {
  CommandFormat::Clear();
  startCommand.clear();
  repeatCommand.clear();
  stopCommand.clear();
}

void MetaCommandFormat::Dump(std::ostream& stream, bool brief) const {
  stream << "\n\nBEGIN - Meta Command Format"
         << "\nName: " << name << "\nStart: " << startCommand << "\nRepeat: " << repeatCommand
         << "\nStop: " << stopCommand;
  DumpParameters(stream, brief);
  stream << "\nEND   - Meta Command Format";
}

}  // namespace TalcPathPrivate
