#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "caps/CapsState.h"
#include "CapsFixture.h"
#include "platform/Platform.h"
#include "support/PlatformDouble.h"

/// What the start of the capabilities asks of the system, filled by a test.
namespace caps_test {

/// Blocks of capabilities in the order in which a test puts them in.
class CapsBlocks final : public platform::TextBlocks {
 public:
  void Add(std::string name, std::string text) { blocks_.emplace_back(std::move(name), std::move(text)); }
  /// A block that is listed and cannot be had.
  void AddUnreadable(std::string name) { blocks_.emplace_back(std::move(name), std::nullopt); }
  void RemoveAll() { blocks_.clear(); }
  /// The blocks whose bytes were asked for, in order.
  const Lines& Asked() const { return asked_; }

  std::vector<std::string> List(std::string_view type) override {
    EXPECT_EQ(type, "RT_HWC_FILE");
    std::vector<std::string> names;
    for (const auto& [name, text] : blocks_)
      names.push_back(name);
    return names;
  }
  std::optional<std::string_view> Bytes(std::string_view type, std::string_view wanted) override {
    EXPECT_EQ(type, "RT_HWC_FILE");
    asked_.emplace_back(wanted);
    for (const auto& [name, text] : blocks_)
      if (name == wanted) return text;
    return std::nullopt;
  }

 private:
  std::vector<std::pair<std::string, std::optional<std::string>>> blocks_;
  Lines asked_;
};

/// Directories whose listings a test writes down. What they list need not exist.
class CapsFiles final : public platform::Files {
 public:
  /// The variable TALCPATHREADDIRS.
  std::optional<std::string> readDirectories;

  void Add(const std::string& directory, std::vector<platform::DirectoryEntry> entries) {
    listings_[directory] = std::move(entries);
  }
  /// The directories that were listed, in order.
  const Lines& Asked() const { return asked_; }

  std::optional<std::vector<platform::DirectoryEntry>> ListDirectory(const std::string& directory) override {
    asked_.push_back(directory);
    const auto found = listings_.find(directory);
    if (found == listings_.end()) return std::nullopt;
    return found->second;
  }
  std::optional<std::string> GetEnvironmentVariableA(const char* name) override {
    EXPECT_STREQ(name, "TALCPATHREADDIRS");
    return readDirectories;
  }

 private:
  std::map<std::string, std::vector<platform::DirectoryEntry>> listings_;
  Lines asked_;
};

inline constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
inline constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();
/// What an out value holds before it is asked for.
inline constexpr std::int32_t kUntouched = 7777;

/// A dictionary, a log, and a platform from which capabilities can be started; they are stopped around each test.
///
///     StartWith("Property P INTEGER 1 ;").GetPropertyCount();   // 1
class CapsPlatformTest : public CapsTest {
 protected:
  CapsPlatformTest() {
    Stop();
    system_.Use(blocks_);
    system_.Use(files_);
  }
  ~CapsPlatformTest() override { Stop(); }

  /// Starts with all blocks.
  static bool Start() { return TalcPathPrivate::StartCapabilities(nullptr, nullptr); }
  /// Starts with one block more, of the hardware type "T", and gives its handle.
  TalcPath::TalcHWCapsHandle StartWith(const std::string& text) {
    blocks_.Add("T.hwc", "HardwareType T ;" + text);
    EXPECT_TRUE(Start()) << log();
    return TalcPath::TalcHWCapsManager::GetByName("T");
  }
  /// Conditions of a block, as capabilities of a test have them.
  static TalcPath::TalcHWCapsCondition Side(std::int32_t value) {
    TalcPath::TalcHWCapsCondition condition;
    EXPECT_TRUE(condition.AddIntegerCondition("Video", "Side", value));
    return condition;
  }
  static TalcPath::TalcHWCapsCondition Both() {
    TalcPath::TalcHWCapsCondition condition = Side(2);
    EXPECT_TRUE(condition.AddSymbolCondition("Audio", "Level", "Loud"));
    return condition;
  }
  static void Stop() {
    TalcPathPrivate::StopCapabilities();
    TalcPathPrivate::FreeCapsManager();
  }

  CapsBlocks blocks_;
  CapsFiles files_;

 private:
  test_support::PlatformDouble system_;
  platform::ScopedPlatform scope_{system_};
};

}  // namespace caps_test
