#include <gmock/gmock.h>
#include <time.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "support/Environment.h"
#include "support/TempFolder.h"

// What every native platform gives.

namespace {

class NativeClock : public ::testing::Test {
 protected:
  platform::Clock& clock = platform::Native().clock();
};

TEST_F(NativeClock, CountsAtTenMegahertz) {
  std::int64_t ticksPerSecond = 0;
  EXPECT_TRUE(clock.QueryPerformanceFrequency(ticksPerSecond));
  EXPECT_EQ(ticksPerSecond, 10'000'000);
}

TEST_F(NativeClock, NeverRunsBackwards) {
  std::int64_t previous = 0;
  ASSERT_TRUE(clock.QueryPerformanceCounter(previous));
  EXPECT_GT(previous, 0);
  for (int i = 0; i < 10'000; ++i) {
    std::int64_t ticks = 0;
    ASSERT_TRUE(clock.QueryPerformanceCounter(ticks));
    ASSERT_GE(ticks, previous);
    previous = ticks;
  }
}

TEST_F(NativeClock, GrantsAMultimediaPeriod) {
  EXPECT_EQ(clock.timeBeginPeriod(1), 0u);
  EXPECT_EQ(clock.timeEndPeriod(1), 0u);
}

TEST_F(NativeClock, KnowsThePresentTime) {
  const std::int64_t before = time(nullptr);
  const std::int64_t present = clock.PresentTime();
  EXPECT_GE(present, before);
  EXPECT_LE(present, time(nullptr));
}

class NativeFiles : public ::testing::Test {
 protected:
  platform::Files& files = platform::Native().files();
  test_support::TempFolder folder;
};

std::vector<std::string> TextsOf(const std::vector<platform::DirectoryEntry>& entries) {
  std::vector<std::string> texts;
  for (const auto& entry : entries)
    texts.push_back(entry.name + (entry.isDirectory ? "/" : ""));
  return texts;
}

TEST_F(NativeFiles, ListFilesAndFoldersInNameOrder) {
  folder.Write("b.tcd", "text");
  folder.Write("a/inner.tcd", "text");
  folder.Write("c.hwc", "");
  folder.Write("D.tcd", "text");
  folder.Write(".hidden", "text");
  const auto entries = files.ListDirectory(folder.Path().string());
  ASSERT_TRUE(entries.has_value());
  EXPECT_THAT(TextsOf(*entries), ::testing::ElementsAre(".hidden", "D.tcd", "a/", "b.tcd", "c.hwc"));
}

TEST_F(NativeFiles, ListAnEmptyFolder) {
  const auto entries = files.ListDirectory(folder.Path().string());
  ASSERT_TRUE(entries.has_value());
  EXPECT_TRUE(entries->empty());
}

TEST_F(NativeFiles, ListNothingThatIsNoFolder) {
  EXPECT_FALSE(files.ListDirectory(folder.File("missing")).has_value());
  EXPECT_FALSE(files.ListDirectory(folder.Write("file", "text")).has_value());
  EXPECT_FALSE(files.ListDirectory("").has_value());
}

TEST_F(NativeFiles, ReadTheEnvironment) {
  test_support::SetVariable("FWDEPLOY_TEST_VARIABLE", "C:\\a;b");
  EXPECT_EQ(files.GetEnvironmentVariableA("FWDEPLOY_TEST_VARIABLE"), "C:\\a;b");
  const std::string longest(32'000, 'x');
  test_support::SetVariable("FWDEPLOY_TEST_VARIABLE", longest.c_str());
  EXPECT_EQ(files.GetEnvironmentVariableA("FWDEPLOY_TEST_VARIABLE"), longest);
  test_support::RemoveVariable("FWDEPLOY_TEST_VARIABLE");
  EXPECT_EQ(files.GetEnvironmentVariableA("FWDEPLOY_TEST_VARIABLE"), std::nullopt);
}

TEST(NativePlatform, ListsTheEmbeddedDictionariesInTheOrderOfTheirNames) {
  platform::TextBlocks& blocks = platform::Native().textBlocks();
  EXPECT_EQ(blocks.List("RT_TCD_FILE"),
            (std::vector<std::string>{"IDR_RT_TCDFILE_1", "IDR_RT_TCDFILE_2", "IDR_RT_TCDFILE_3", "IDR_RT_TCDFILE_4",
                                      "IDR_RT_TCDFILE_5", "IDR_RT_TCDFILE_6"}));
  EXPECT_TRUE(blocks.List("RT_NO_SUCH_FILE").empty());
}

TEST(NativePlatform, GivesTheBytesOfAnEmbeddedBlockAsTheyAreInItsFile) {
  platform::TextBlocks& blocks = platform::Native().textBlocks();
  const std::string path = std::string(DATA_FOLDER) + "/IDR_RT_TCDFILE_2.tcd";
  std::ifstream file(path, std::ios::binary);
  const std::string expected((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  ASSERT_FALSE(expected.empty()) << path;
  EXPECT_EQ(blocks.Bytes("RT_TCD_FILE", "IDR_RT_TCDFILE_2"), expected);
  EXPECT_EQ(blocks.Bytes("RT_TCD_FILE", "IDR_RT_TCDFILE_7"), std::nullopt);
  EXPECT_EQ(blocks.Bytes("RT_HWC_FILE", "IDR_RT_TCDFILE_2"), std::nullopt);
}

}  // namespace
