#include "engine/DictionaryFiles.h"

#include <istream>
#include <string>

#include "dictionary/Log.h"
#include "dictionary/TcdReader.h"
#include "dictionary/TextSources.h"

namespace TalcPathPrivate {
namespace {

TextReader ReaderOf(TCDFileProcessor& processor) {
  return [&processor](std::istream& stream, std::string_view name) { return processor.Process(stream, name); };
}

}  // namespace

bool ParseFileProcessor::Process(std::istream& stream, std::string_view name) {
  return ParseTcdStream(stream, name);
}

bool ProcessTextBlocks(std::string_view type, TCDFileProcessor& processor, bool& isFound) {
  return ReadTextBlocks(type, ReaderOf(processor), isFound);
}

bool ProcessDirectory(const char* path, TCDFileProcessor& processor) {
  if (path == nullptr) return false;
  const std::string directory = DirectoryPath(path);
  LogVerbose("\nProcessing directory: ", directory, " Task: ", processor.TaskName(), "\n");
  return ReadFiles(directory, ".tcd", ReaderOf(processor));
}

}  // namespace TalcPathPrivate
