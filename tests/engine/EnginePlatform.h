#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Platform.h"

/// The services that the library asks of the system, each filled by a test.
namespace engine_test {

/// Blocks of text in the order in which a test puts them in: dictionaries, and one of capabilities without anything in
/// it, in place of which a test can put others.
class FakeTextBlocks final : public platform::TextBlocks {
 public:
  void Add(std::string name, std::string text) { blocks_.emplace_back(std::move(name), std::move(text)); }
  void AddCapabilities(std::string name, std::string text) {
    capabilities_.emplace_back(std::move(name), std::move(text));
  }
  void RemoveCapabilities() { capabilities_.clear(); }
  /// A block that is listed and cannot be had.
  void AddUnreadable(std::string name) { blocks_.emplace_back(std::move(name), std::nullopt); }
  void RemoveAll() { blocks_.clear(); }
  /// Is called with the name before the bytes of a block are handed out.
  void OnBytes(std::function<void(std::string_view)> action) { onBytes_ = std::move(action); }
  /// The dictionaries whose bytes were asked for, in order.
  const std::vector<std::string>& Asked() const { return asked_; }

  std::vector<std::string> List(std::string_view type) override {
    std::vector<std::string> names;
    for (const auto& [name, text] : BlocksOf(type))
      names.push_back(name);
    return names;
  }
  std::optional<std::string_view> Bytes(std::string_view type, std::string_view wanted) override {
    if (type == "RT_TCD_FILE") asked_.emplace_back(wanted);
    if (onBytes_) onBytes_(wanted);
    for (const auto& [name, text] : BlocksOf(type))
      if (name == wanted) return text;
    return std::nullopt;
  }

 private:
  using Blocks = std::vector<std::pair<std::string, std::optional<std::string>>>;

  const Blocks& BlocksOf(std::string_view type) const {
    static const Blocks none;
    if (type == "RT_TCD_FILE") return blocks_;
    return type == "RT_HWC_FILE" ? capabilities_ : none;
  }

  Blocks blocks_;
  Blocks capabilities_ = {{"Test.hwc", "# None ;"}};
  std::vector<std::string> asked_;
  std::function<void(std::string_view)> onBytes_;
};

/// Directories whose listings a test writes down. What they list need not exist.
class FakeFiles final : public platform::Files {
 public:
  /// The variable TALCPATHREADDIRS.
  std::optional<std::string> readDirectories;

  void Add(const std::string& directory, std::vector<platform::DirectoryEntry> entries) {
    listings_[directory] = std::move(entries);
  }
  /// Is called with the path before each listing.
  void OnList(std::function<void(const std::string&)> action) { onList_ = std::move(action); }
  /// The directories that were listed, in order.
  const std::vector<std::string>& Asked() const { return asked_; }

  std::optional<std::vector<platform::DirectoryEntry>> ListDirectory(const std::string& directory) override {
    asked_.push_back(directory);
    if (onList_) onList_(directory);
    const auto found = listings_.find(directory);
    if (found == listings_.end()) return std::nullopt;
    return found->second;
  }
  std::optional<std::string> GetEnvironmentVariableA(const char* name) override {
    if (std::string_view(name) == "TALCPATHREADDIRS") return readDirectories;
    ADD_FAILURE() << "the library asked for the variable " << name;
    return std::nullopt;
  }

 private:
  std::map<std::string, std::vector<platform::DirectoryEntry>> listings_;
  std::vector<std::string> asked_;
  std::function<void(const std::string&)> onList_;
};

/// A clock that can be asked for its milliseconds, and stands still.
class TickClock final : public platform::Clock {
 public:
  std::uint32_t milliseconds = 0;

  std::uint32_t GetTickCount() override { return milliseconds; }
  bool QueryPerformanceCounter(std::int64_t&) override { return Unexpected(); }
  bool QueryPerformanceFrequency(std::int64_t&) override { return Unexpected(); }
  void Sleep(std::uint32_t) override { Unexpected(); }
  std::uint32_t timeBeginPeriod(std::uint32_t) override { return Unexpected(); }
  std::uint32_t timeEndPeriod(std::uint32_t) override { return Unexpected(); }
  std::uint32_t timeGetTime() override { return Unexpected(); }
  std::int64_t PresentTime() override { return Unexpected(); }

 private:
  static bool Unexpected() {
    ADD_FAILURE() << "the library may only ask for the milliseconds";
    return false;
  }
};

}  // namespace engine_test
