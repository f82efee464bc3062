// Any text as a dictionary. What it defines is written in its canonical form and read again, which must give the same
// definitions. The input is the text; the flags of the log are on, so that every line is made.

#include <cstdint>
#include <map>
#include <sstream>
#include <streambuf>
#include <string>

#include "dictionary/DefinedCommands.h"
#include "dictionary/Log.h"
#include "dictionary/TcdReader.h"
#include "FuzzInput.h"

namespace {

using Definitions = std::map<std::string, std::string>;

/// Takes what is written and keeps nothing.
class Nowhere final : public std::streambuf {
  int overflow(int character) override { return character; }
  std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
};

void DeleteTables() {
  TalcPathPrivate::ErrorList errors;
  Require(TalcPathPrivate::DeleteDefinedCommands(errors));
  Require(TalcPathPrivate::DeleteCommandTypeTable(errors));
  Require(TalcPathPrivate::DeleteDiagOpcodeTable(errors));
}

bool Read(const std::string& text) {
  std::istringstream stream(text);
  return TalcPathPrivate::ParseTcdStream(stream, "input");
}

/// The canonical definition of each command, and what else its operations make of it.
Definitions DefinedNow() {
  Definitions definitions;
  for (const auto& [name, format] : *TalcPathPrivate::DefinedCommands()) {
    Require(name == format->GetName());
    std::ostringstream text;
    format->WriteDefinition(text);
    definitions[name] = text.str();

    std::ostringstream other;
    format->Dump(other, false);
    format->WriteCommandCodes(other);
    format->WriteDataDefinition(other);
    TalcPathPrivate::ErrorList errors;
    Require(format->Validate(errors) == errors.empty());
  }
  return definitions;
}

bool FitsABlock(const std::string& definition) {
  return definition.size() <= TalcPathPrivate::kLongestBlock;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Nowhere nowhere;
  static std::ostream log(&nowhere);
  TalcPathPrivate::logState = {.verbose = true, .trace = true, .stream = &log};

  Read({data, data + size});
  const Definitions first = DefinedNow();
  DeleteTables();

  std::string written;
  bool isWhole = true;
  for (const auto& [name, definition] : first) {
    written += definition;
    if (!FitsABlock(definition)) isWhole = false;
  }
  Require(TalcPathPrivate::DefinedCommands()->empty());
  const bool isGood = Read(written);
  // The canonical form is longer than some others, so that a block can grow beyond what is read.
  if (isWhole) Require(isGood && DefinedNow() == first);
  DeleteTables();
  return 0;
}
