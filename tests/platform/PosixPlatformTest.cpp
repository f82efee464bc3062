#include <gmock/gmock.h>
#include <stdlib.h>
#include <time.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "support/TempFolder.h"

namespace {

using platform::kInvalidHandle;

constexpr platform::Guid kAnyClass = {0x65703B92, 0x7B12, 0x41B3, {0x9B, 0x07, 0x9B, 0x13, 0x1B, 0xAA, 0x36, 0x4B}};

class NativeDevices : public ::testing::Test {
 protected:
  platform::Devices& devices = platform::Native().devices();
};

TEST_F(NativeDevices, MakeASetOfDevicesThatIsEmpty) {
  const platform::Handle set = devices.SetupDiGetClassDevsA(kAnyClass, 18);
  EXPECT_NE(set, kInvalidHandle);

  platform::InterfaceData data{.size = 28};
  EXPECT_FALSE(devices.SetupDiEnumDeviceInterfaces(set, kAnyClass, 0, data));
  EXPECT_EQ(devices.GetLastError(), 259u);  // no more items

  platform::DeviceInfo info{.size = 28};
  EXPECT_FALSE(devices.SetupDiEnumDeviceInfo(set, 0, info));
  EXPECT_EQ(devices.GetLastError(), 259u);

  std::uint32_t needed = 77;
  EXPECT_FALSE(devices.SetupDiGetDeviceInterfaceDetailA(set, data, nullptr, 0, &needed));
  EXPECT_EQ(needed, 77u);

  EXPECT_TRUE(devices.SetupDiDestroyDeviceInfoList(set));
}

TEST_F(NativeDevices, OpenNothing) {
  EXPECT_EQ(devices.CreateFileA("\\\\?\\x", 0xC0000000, 3, 3, 128), kInvalidHandle);
  EXPECT_EQ(devices.GetLastError(), 2u);  // file not found
  platform::DeviceInfo info{.size = 28};
  EXPECT_EQ(devices.SetupDiOpenDevRegKey(1, info, 1, 0, 2, 0x2001F), kInvalidHandle);
  EXPECT_EQ(devices.GetLastError(), 2u);
}

TEST_F(NativeDevices, KnowNoHandle) {
  EXPECT_FALSE(devices.CloseHandle(0x11));
  EXPECT_EQ(devices.GetLastError(), 6u);  // invalid handle
  EXPECT_FALSE(devices.RegCloseKey(0x11));
  EXPECT_EQ(devices.GetLastError(), 6u);
  EXPECT_FALSE(devices.SetupDiDestroyDeviceInfoList(kInvalidHandle));
  EXPECT_EQ(devices.GetLastError(), 6u);
  std::uint32_t returned = 99999;
  char out[8] = "1234567";
  EXPECT_FALSE(devices.DeviceIoControl(0x11, 0xC1762080, nullptr, 0, out, sizeof out, returned, 0));
  EXPECT_EQ(devices.GetLastError(), 6u);
  EXPECT_EQ(returned, 99999u);
  EXPECT_STREQ(out, "1234567");
}

TEST_F(NativeDevices, HaveNoEventsTextsOrTraps) {
  EXPECT_EQ(devices.CreateEventA(true, false), 0u);
  EXPECT_EQ(devices.FormatMessageA(6), "");
  EXPECT_EQ(devices.TrapAt(0x40002000), nullptr);
}

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

TEST_F(NativeClock, CountsMillisecondsAlongWithTheCounter) {
  std::int64_t before = 0;
  std::int64_t after = 0;
  clock.QueryPerformanceCounter(before);
  const std::uint32_t tickCount = clock.GetTickCount();
  const std::uint32_t multimedia = clock.timeGetTime();
  clock.QueryPerformanceCounter(after);
  // As 32-bit differences, since both wrap.
  EXPECT_LE(tickCount - static_cast<std::uint32_t>(before / 10'000),
            static_cast<std::uint32_t>(after / 10'000 - before / 10'000));
  EXPECT_LE(multimedia - tickCount, static_cast<std::uint32_t>(after / 10'000 - before / 10'000));
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
  folder.Write("A.tcd", "text");
  folder.Write(".hidden", "text");
  std::filesystem::create_symlink(folder.Path() / "a", folder.Path() / "link");
  std::filesystem::create_symlink(folder.Path() / "nowhere", folder.Path() / "lost");
  const auto entries = files.ListDirectory(folder.Path().string());
  ASSERT_TRUE(entries.has_value());
  EXPECT_THAT(TextsOf(*entries), ::testing::ElementsAre(".hidden", "A.tcd", "a/", "b.tcd", "c.hwc", "link/", "lost"));
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
  setenv("FWDEPLOY_TEST_VARIABLE", "C:\\a;b", 1);
  EXPECT_EQ(files.GetEnvironmentVariableA("FWDEPLOY_TEST_VARIABLE"), "C:\\a;b");
  setenv("FWDEPLOY_TEST_VARIABLE", "", 1);
  EXPECT_EQ(files.GetEnvironmentVariableA("FWDEPLOY_TEST_VARIABLE"), "");
  unsetenv("FWDEPLOY_TEST_VARIABLE");
  EXPECT_EQ(files.GetEnvironmentVariableA("FWDEPLOY_TEST_VARIABLE"), std::nullopt);
}

TEST(NativePlatform, HasNoFrontEnd) {
  platform::FrontEnd& frontEnd = platform::Native().frontEnd();
  EXPECT_EQ(frontEnd.FindWindowA(nullptr, "title"), 0u);
  EXPECT_EQ(frontEnd.SendMessageA(0, platform::kCopyDataMessage, 0, {}), 0);
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
