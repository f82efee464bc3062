#include "dictionary/TcdReader.h"

#include <array>
#include <istream>
#include <memory>

#include "dictionary/DefinedCommands.h"
#include "dictionary/DiagCommandFormat.h"
#include "dictionary/Log.h"
#include "dictionary/MetaCommandFormat.h"
#include "dictionary/TalcCommandFormat.h"
#include "dictionary/TokenStream.h"

namespace TalcPathPrivate {
namespace {

std::unique_ptr<CommandFormat> MakeFormat(std::string_view kind) {
  if (kind == "Meta") return std::make_unique<MetaCommandFormat>();
  if (kind == "Talc") return std::make_unique<TalcCommandFormat>();
  if (kind == "Diag") return std::make_unique<DiagCommandFormat>();
  return nullptr;
}

bool Refuse(std::string_view name, const char* reason) {
  LogAlways("\n\nERROR - Talc Command Definition : ", name, reason);
  return false;
}

}  // namespace

bool ParseTcdStream(std::istream& stream, std::string_view sourceName) {
  if (DefinedCommands() == nullptr || CommandTypes() == nullptr) return false;
  LogVerbose("\nParsing Talc Command Definition File : ", sourceName, "\n");

  bool isGood = true;
  std::array<char, kLongestBlock + 1> buffer;
  while (isGood) {
    stream.getline(buffer.data(), buffer.size(), ';');
    // What stands behind the last ";" is no block. A block that does not fit ends the reading without a word, too.
    if (stream.eof() || stream.fail()) break;
    // The ";" counts among what was taken from the stream, but is not in the buffer.
    TokenStream block({buffer.data(), static_cast<std::size_t>(stream.gcount() - 1)});
    const std::string_view word = block.ReadWord();
    if (word.empty()) break;  // A block without words is the end, whatever stands behind it.
    if (word.front() == '#') continue;
    isGood = ParseDefinition(block, word, sourceName);
  }
  if (isGood)
    LogVerbose("\n\nFinished Parsing Talc Command Definition File : ", sourceName, "\n");
  else
    LogAlways("\n\nERROR - Failed To Successfully parse Talc Command Definition file : ", sourceName);
  return isGood;
}

bool ParseDefinition(TokenStream& stream, std::string_view firstWord, std::string_view sourceName) {
  if (firstWord == "DOCUMENTATION") return true;  // For people; nothing of it is kept.
  std::unique_ptr<CommandFormat> format = MakeFormat(stream.ReadWord());
  if (format == nullptr) return Refuse(firstWord, " DEFINITION INVALID - MISSING TYPE KEYWORD [Meta|Talc|Diag]");
  format->SetDefinitionFile(sourceName);
  if (!format->ReadDefinition(stream, firstWord)) return false;
  if (!format->IsUnique()) return Refuse(format->GetName(), " NOT UNIQUE");
  if (!format->PrecomputePacketSizes()) return Refuse(format->GetName(), " FAILED Precomputation Stage");
  if (!format->AddToDefinedCommands()) return Refuse(format->GetName(), " FAILED AddToDefinedCommands Stage");
  // The table owns it from here on.
  static_cast<void>(format.release());
  return true;
}

}  // namespace TalcPathPrivate
