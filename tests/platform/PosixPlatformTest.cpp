#include <gtest/gtest.h>

#include <filesystem>

#include "platform/Platform.h"
#include "support/Environment.h"
#include "support/TempFolder.h"

// What the system has where there are no drivers and no windows: nothing, told as the documented calls tell it.

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

TEST(NativePlatform, HasNoFrontEnd) {
  platform::FrontEnd& frontEnd = platform::Native().frontEnd();
  EXPECT_EQ(frontEnd.FindWindowA(nullptr, "title"), 0u);
  EXPECT_EQ(frontEnd.SendMessageA(0, platform::kCopyDataMessage, 0, {}), 0);
}

TEST(PosixClock, CountsMillisecondsAlongWithTheCounter) {
  platform::Clock& clock = platform::Native().clock();
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

TEST(PosixFiles, TellAFolderBehindALink) {
  const test_support::TempFolder folder;
  std::filesystem::create_directory(folder.Path() / "a");
  std::filesystem::create_symlink(folder.Path() / "a", folder.Path() / "link");
  std::filesystem::create_symlink(folder.Path() / "nowhere", folder.Path() / "lost");
  const auto entries = platform::Native().files().ListDirectory(folder.Path().string());
  ASSERT_TRUE(entries.has_value());
  ASSERT_EQ(entries->size(), 3u);
  EXPECT_EQ((*entries)[1].name, "link");
  EXPECT_TRUE((*entries)[1].isDirectory);
  EXPECT_EQ((*entries)[2].name, "lost");
  EXPECT_FALSE((*entries)[2].isDirectory);
}

TEST(PosixFiles, TellAnEmptyVariableFromNone) {
  test_support::SetVariable("FWDEPLOY_TEST_VARIABLE", "");
  EXPECT_EQ(platform::Native().files().GetEnvironmentVariableA("FWDEPLOY_TEST_VARIABLE"), "");
}

}  // namespace
