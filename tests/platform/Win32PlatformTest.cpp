#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <string>

#include "platform/Platform.h"

// What the system itself answers through the platform, with a device that every system has where one is needed.

namespace {

using platform::kInvalidHandle;

constexpr platform::Guid kAbsentClass = {0x65703B92, 0x7B12, 0x41B3, {0x9B, 0x07, 0x9B, 0x13, 0x1B, 0xAA, 0x36, 0x4B}};
constexpr std::uint32_t kPresentInterfaces = 18;

class Win32Devices : public ::testing::Test {
 protected:
  platform::Devices& devices = platform::Native().devices();
};

TEST_F(Win32Devices, AnAbsentClassGivesASetThatIsEmpty) {
  const platform::Handle set = devices.SetupDiGetClassDevsA(kAbsentClass, kPresentInterfaces);
  ASSERT_NE(set, kInvalidHandle);

  platform::InterfaceData data{.size = platform::kInterfaceDataSize};
  EXPECT_FALSE(devices.SetupDiEnumDeviceInterfaces(set, kAbsentClass, 0, data));
  EXPECT_EQ(devices.GetLastError(), 259u);  // no more items

  platform::DeviceInfo info{.size = platform::kDeviceInfoSize};
  EXPECT_FALSE(devices.SetupDiEnumDeviceInfo(set, 0, info));
  EXPECT_EQ(devices.GetLastError(), 259u);

  EXPECT_TRUE(devices.SetupDiDestroyDeviceInfoList(set));
  EXPECT_FALSE(devices.SetupDiDestroyDeviceInfoList(kInvalidHandle));
  EXPECT_EQ(devices.GetLastError(), 6u);  // invalid handle
}

TEST_F(Win32Devices, ASizeThatIsNotTheNamedOneIsRefusedByTheSystem) {
  const platform::Handle set = devices.SetupDiGetClassDevsA(kAbsentClass, kPresentInterfaces);
  ASSERT_NE(set, kInvalidHandle);
  platform::InterfaceData data{.size = platform::kInterfaceDataSize + 1};
  EXPECT_FALSE(devices.SetupDiEnumDeviceInterfaces(set, kAbsentClass, 0, data));
  EXPECT_NE(devices.GetLastError(), 259u);
  platform::DeviceInfo info{.size = platform::kDeviceInfoSize + 1};
  EXPECT_FALSE(devices.SetupDiEnumDeviceInfo(set, 0, info));
  EXPECT_NE(devices.GetLastError(), 259u);
  devices.SetupDiDestroyDeviceInfoList(set);
}

TEST_F(Win32Devices, AnOpenOfNothingFails) {
  EXPECT_EQ(devices.CreateFileA("\\\\.\\FwDeployNoSuchDevice", 0xC0000000, 3, 3, 128), kInvalidHandle);
  EXPECT_EQ(devices.GetLastError(), 2u);  // file not found
}

TEST_F(Win32Devices, ADeviceThatKnowsNoCodesFailsItsControlCallAndTouchesNothing) {
  const platform::Handle device = devices.CreateFileA("NUL", 0xC0000000, 3, 3, 128);
  ASSERT_NE(device, kInvalidHandle);
  const platform::Handle event = devices.CreateEventA(true, false);
  EXPECT_NE(event, 0u);
  for (const platform::Handle passed : {platform::Handle{0}, event}) {
    char out[8] = "1234567";
    std::uint32_t returned = 0;
    EXPECT_FALSE(devices.DeviceIoControl(device, 0xC1762080, nullptr, 0, out, sizeof out, returned, passed));
    EXPECT_STREQ(out, "1234567");
  }
  EXPECT_TRUE(devices.CloseHandle(event));
  EXPECT_TRUE(devices.CloseHandle(device));
  EXPECT_FALSE(devices.CloseHandle(device)) << "closed before";
  EXPECT_EQ(devices.GetLastError(), 6u);
}

TEST_F(Win32Devices, EventsAreMadeAsAsked) {
  const platform::Handle manual = devices.CreateEventA(true, true);
  const platform::Handle automatic = devices.CreateEventA(false, true);
  const platform::Handle unset = devices.CreateEventA(true, false);
  const auto isSet = [](platform::Handle event) {
    return WaitForSingleObject(reinterpret_cast<HANDLE>(event), 0) == WAIT_OBJECT_0;
  };
  EXPECT_TRUE(isSet(manual));
  EXPECT_TRUE(isSet(manual));
  EXPECT_TRUE(isSet(automatic));
  EXPECT_FALSE(isSet(automatic));
  EXPECT_FALSE(isSet(unset));
  for (const platform::Handle event : {manual, automatic, unset})
    devices.CloseHandle(event);
}

TEST_F(Win32Devices, ErrorsHaveTheSystemsText) {
  char* expected = nullptr;
  const DWORD length = FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr, 6, 0,
                                      reinterpret_cast<char*>(&expected), 0, nullptr);
  ASSERT_GT(length, 0u);
  EXPECT_EQ(devices.FormatMessageA(6), expected);
  LocalFree(expected);
  EXPECT_EQ(devices.FormatMessageA(0x2FFFFFFF), "") << "a code without a text";
}

TEST_F(Win32Devices, RegistryKeysAreClosedOnce) {
  HKEY key = nullptr;
  ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software", 0, KEY_READ, &key), ERROR_SUCCESS);
  EXPECT_TRUE(devices.RegCloseKey(reinterpret_cast<platform::Handle>(key)));
  EXPECT_FALSE(devices.RegCloseKey(reinterpret_cast<platform::Handle>(key)));
  EXPECT_EQ(devices.GetLastError(), 6u);
}

TEST_F(Win32Devices, HaveNoTraps) {
  EXPECT_EQ(devices.TrapAt(0x40002000), nullptr);
}

TEST(Win32FrontEnd, IsAbsentWhereNoWindowHasTheTitle) {
  platform::FrontEnd& frontEnd = platform::Native().frontEnd();
  EXPECT_EQ(frontEnd.FindWindowA(nullptr, "FwDeploy: no window has this title"), 0u);
}

TEST(Win32Files, AnEmptyFolderNameIsNotTheRoot) {
  EXPECT_FALSE(platform::Native().files().ListDirectory("").has_value());
}

TEST(Win32Files, AnEmptyVariableIsOneThatIsSet) {
  SetEnvironmentVariableA("FWDEPLOY_TEST_VARIABLE", "");
  EXPECT_EQ(platform::Native().files().GetEnvironmentVariableA("FWDEPLOY_TEST_VARIABLE"), "");
}

}  // namespace
