#include "Dictionary.h"

#include <filesystem>
#include <sstream>
#include <stdexcept>

#include "dictionary/TcdReader.h"
#include "platform/Platform.h"
#include "support/WholeFile.h"
#include "talcpath.h"

namespace {

constexpr const char* kDictionaryBlocks = "RT_TCD_FILE";

class NoTextBlocks : public platform::TextBlocks {
 public:
  std::vector<std::string> List(std::string_view) override { return {}; }
  std::optional<std::string_view> Bytes(std::string_view, std::string_view) override { return std::nullopt; }
};

class NoDirectories : public platform::Files {
 public:
  std::optional<std::vector<platform::DirectoryEntry>> ListDirectory(const std::string&) override {
    return std::vector<platform::DirectoryEntry>();
  }
  std::optional<std::string> GetEnvironmentVariableA(const char* name) override {
    return platform::Native().files().GetEnvironmentVariableA(name);
  }
};

/// The native platform without dictionaries: a start on it adds none to those that were read.
class PlatformWithoutDictionaries : public platform::Platform {
 public:
  platform::Devices& devices() override { return platform::Native().devices(); }
  platform::Clock& clock() override { return platform::Native().clock(); }
  platform::FrontEnd& frontEnd() override { return platform::Native().frontEnd(); }
  platform::TextBlocks& textBlocks() override { return textBlocks_; }
  platform::Files& files() override { return files_; }

 private:
  NoTextBlocks textBlocks_;
  NoDirectories files_;
};

bool Read(const DictionaryText& text) {
  std::istringstream stream(text.bytes);
  return TalcPathPrivate::ParseTcdStream(stream, std::filesystem::path(text.path).filename().string());
}

}  // namespace

std::vector<DictionaryText> ReadDictionaryFiles(const std::vector<std::string>& paths) {
  std::vector<DictionaryText> texts;
  texts.reserve(paths.size());
  for (const std::string& path : paths)
    texts.push_back({path, ReadWhole(path)});
  return texts;
}

Dictionary::Dictionary(const std::vector<DictionaryText>& texts) {
  if (texts.empty()) {
    isStarted_ = TalcPath::TalcPathInit();
    for (const std::string& name : platform::Native().textBlocks().List(kDictionaryBlocks))
      sources_.push_back({name, isStarted_});
    return;
  }
  for (const DictionaryText& text : texts)
    sources_.push_back({text.path, Read(text)});
  PlatformWithoutDictionaries withoutDictionaries;
  const platform::ScopedPlatform scope(withoutDictionaries);
  isStarted_ = TalcPath::TalcPathInit();
}

Dictionary::~Dictionary() {
  TalcPath::TalcPathTerminate();
}

void Dictionary::RequireCommands() const {
  if (Commands().empty()) throw std::runtime_error("no command is defined");
  if (!isStarted_) throw std::runtime_error("the embedded dictionaries are faulty");
}

const TalcPathPrivate::CommandTable& Dictionary::Commands() const {
  const TalcPathPrivate::CommandTable* const table = TalcPathPrivate::DefinedCommands();
  if (table == nullptr) throw std::bad_alloc();
  return *table;
}

void Dictionary::RequireGoodSources() const {
  std::string faulty;
  for (const Source& source : sources_)
    if (!source.isGood) faulty += (faulty.empty() ? "" : ", ") + source.name;
  if (!faulty.empty()) throw std::runtime_error("faulty dictionary: " + faulty);
}
