#include "engine/DictionaryFiles.h"

#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "dictionary/Log.h"
#include "dictionary/TcdReader.h"
#include "platform/Platform.h"

namespace TalcPathPrivate {
bool ParseFileProcessor::Process(std::istream& stream, std::string_view name) {
  return ParseTcdStream(stream, name);
}

bool ProcessTextBlocks(std::string_view type, TCDFileProcessor& processor, bool& isFound) {
  platform::TextBlocks& blocks = platform::Current().textBlocks();
  isFound = false;
  for (const std::string& name : blocks.List(type)) {
    const std::optional<std::string_view> bytes = blocks.Bytes(type, name);
    if (!bytes || bytes->empty()) return true;
    isFound = true;
    std::string text;
    text.reserve(bytes->size() + 1);
    text.append(*bytes);
    text += ' ';  // parts what stands last from the end
    std::stringstream stream(std::move(text));
    if (!processor.Process(stream, name)) return false;
  }
  return true;
}

bool ProcessDirectory(const char* path, TCDFileProcessor& processor) {
  if (path == nullptr) return false;
  std::string directory = path;
  if (!directory.empty() && directory.back() != '/') directory += '/';
  LogVerbose("\nProcessing directory: ", directory, " Task: ", processor.TaskName(), "\n");
  const auto entries = platform::Current().files().ListDirectory(directory);
  if (!entries) return true;
  for (const platform::DirectoryEntry& entry : *entries) {
    const std::string name = directory + entry.name;
    if (entry.isDirectory || !name.ends_with(".tcd")) continue;
    std::ifstream stream(name);
    if (!processor.Process(stream, name)) return false;
  }
  return true;
}

}  // namespace TalcPathPrivate
