#include "dictionary/TextSources.h"

#include <fstream>
#include <optional>
#include <sstream>
#include <utility>
#include <vector>

#include "platform/Platform.h"

namespace TalcPathPrivate {

bool ReadTextBlocks(std::string_view type, const TextReader& read, bool& isFound) {
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
    if (!read(stream, name)) return false;
  }
  return true;
}

std::string DirectoryPath(std::string path) {
  if (!path.empty() && path.back() != '/') path += '/';
  return path;
}

bool ReadFiles(const std::string& path, std::string_view ending, const TextReader& read) {
  const auto entries = platform::Current().files().ListDirectory(path);
  if (!entries) return true;
  for (const platform::DirectoryEntry& entry : *entries) {
    const std::string name = path + entry.name;
    if (entry.isDirectory || !name.ends_with(ending)) continue;
    std::ifstream stream(name);
    if (!read(stream, name)) return false;
  }
  return true;
}

}  // namespace TalcPathPrivate
