#include "engine/DictionaryFiles.h"

#include <fstream>
#include <istream>
#include <optional>
#include <streambuf>
#include <string>
#include <utility>
#include <vector>

#include "dictionary/Log.h"
#include "dictionary/TcdReader.h"
#include "platform/Platform.h"

namespace TalcPathPrivate {
namespace {

/// Reads a block where it is embedded, and one blank behind it, which parts what stands last from the end.
class BlockBuffer final : public std::streambuf {
 public:
  explicit BlockBuffer(std::string_view block) {
    // A buffer's pointers are not const, but nothing here writes.
    char* const begin = const_cast<char*>(block.data());
    setg(begin, begin, begin + block.size());
  }

 private:
  int_type underflow() override {
    if (blank_ == '\0') return traits_type::eof();
    next_ = std::exchange(blank_, '\0');
    setg(&next_, &next_, &next_ + 1);
    return traits_type::to_int_type(next_);
  }

  char blank_ = ' ';
  char next_ = '\0';
};

}  // namespace

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
    BlockBuffer buffer(*bytes);
    std::istream stream(&buffer);
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
