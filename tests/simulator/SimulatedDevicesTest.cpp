#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <set>

#include "simulator/SimulatedDevices.h"
#include "simulator/SystemErrors.h"

using platform::DeviceInfo;
using platform::Guid;
using platform::Handle;
using platform::InterfaceData;
using platform::InterfaceDetail;
using platform::kInvalidHandle;
using simulator::HandleKind;

namespace {

constexpr Guid kFirst = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
constexpr Guid kSecond = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 12}};

class ScriptedDevice : public simulator::SimulatedDevice, public platform::RegisterTrap {
 public:
  explicit ScriptedDevice(std::uint64_t address) : address_(address) {}
  std::uint32_t Control(std::uint32_t code, std::span<const std::uint8_t> in, std::span<std::uint8_t> out,
                        std::uint32_t& returned) override {
    lastCode = code;
    lastIn.assign(in.begin(), in.end());
    lastOutLength = out.size();
    if (error != 0) return error;
    if (!out.empty()) out[0] = 0xAB;
    returned = 1;
    return 0;
  }
  platform::RegisterTrap* TrapAt(std::uint64_t address) override { return address == address_ ? this : nullptr; }
  std::uint32_t Read(std::uint32_t) override { return 0; }
  void Write(std::uint32_t, std::uint32_t) override {}

  std::uint32_t error = 0;
  std::uint32_t lastCode = 0;
  std::vector<std::uint8_t> lastIn;
  std::size_t lastOutLength = 0;

 private:
  std::uint64_t address_;
};

class SimulatedDevicesTest : public testing::Test {
 protected:
  SimulatedDevicesTest() {
    devices.Add(kFirst, "path one", one);
    devices.Add(kSecond, "path two", two);
    devices.Add(kFirst, "path three", three);
  }

  /// The path of a class's index-th device, by the calls that a driver's client makes; empty where one fails.
  std::string PathOf(const Guid& guid, std::uint32_t index) {
    const Handle set = devices.SetupDiGetClassDevsA(guid, 18);
    InterfaceData data{.size = 28};
    std::string path;
    std::uint32_t required = 0;
    if (devices.SetupDiEnumDeviceInterfaces(set, guid, index, data)) {
      EXPECT_FALSE(devices.SetupDiGetDeviceInterfaceDetailA(set, data, nullptr, 0, &required));
      EXPECT_EQ(devices.GetLastError(), 122u);
      std::vector<std::uint32_t> room(required / 4 + 1);
      auto* const detail = reinterpret_cast<InterfaceDetail*>(room.data());
      detail->size = 5;
      EXPECT_TRUE(devices.SetupDiGetDeviceInterfaceDetailA(set, data, detail, required, nullptr));
      path = reinterpret_cast<char*>(room.data()) + 4;
      EXPECT_EQ(required, 4 + path.size() + 1);
    }
    EXPECT_TRUE(devices.SetupDiDestroyDeviceInfoList(set));
    return path;
  }
  Handle Open(const char* path = "path one") { return devices.CreateFileA(path, 0xC0000000, 3, 3, 128); }
  bool Control(Handle device, Handle event = 0) {
    return devices.DeviceIoControl(device, 0x1234, nullptr, 0, nullptr, 0, returned, event);
  }

  ScriptedDevice one{0x1000}, two{0x2000}, three{0x3000};
  simulator::SimulatedDevices devices;
  std::uint32_t returned = 99999;
};

TEST_F(SimulatedDevicesTest, ListsTheDevicesOfAClassInOrder) {
  EXPECT_EQ(PathOf(kFirst, 0), "path one");
  EXPECT_EQ(PathOf(kFirst, 1), "path three");
  EXPECT_EQ(PathOf(kFirst, 2), "");
  EXPECT_EQ(devices.GetLastError(), 259u);
  EXPECT_EQ(PathOf(kSecond, 0), "path two");
  EXPECT_EQ(PathOf(Guid{}, 0), "");
  EXPECT_EQ(devices.OpenHandles(HandleKind::kDeviceSet), 0u);
}

TEST_F(SimulatedDevicesTest, WantsTheFlagsOfPresentInterfaces) {
  for (const std::uint32_t flags : {0u, 2u, 16u, 19u}) {
    EXPECT_EQ(devices.SetupDiGetClassDevsA(kFirst, flags), kInvalidHandle) << flags;
    EXPECT_EQ(devices.GetLastError(), 1004u);
  }
}

TEST_F(SimulatedDevicesTest, WantsTheNamedSizes) {
  const Handle set = devices.SetupDiGetClassDevsA(kFirst, 18);
  for (const std::uint32_t size : {0u, 27u, 32u}) {
    InterfaceData data{.size = size};
    EXPECT_FALSE(devices.SetupDiEnumDeviceInterfaces(set, kFirst, 0, data));
    EXPECT_EQ(devices.GetLastError(), 1784u);
    DeviceInfo info{.size = size};
    EXPECT_FALSE(devices.SetupDiEnumDeviceInfo(set, 0, info));
    EXPECT_EQ(devices.GetLastError(), 1784u);
  }
  InterfaceData data{.size = 28};
  ASSERT_TRUE(devices.SetupDiEnumDeviceInterfaces(set, kFirst, 0, data));
  alignas(4) char room[64] = {};
  auto* const detail = reinterpret_cast<InterfaceDetail*>(room);
  for (const std::uint32_t size : {0u, 4u, 6u, 8u}) {
    detail->size = size;
    EXPECT_FALSE(devices.SetupDiGetDeviceInterfaceDetailA(set, data, detail, 64, nullptr));
    EXPECT_EQ(devices.GetLastError(), 1784u);
  }
}

TEST_F(SimulatedDevicesTest, FillsAnInterfaceDetailOnlyWhenItFits) {
  const Handle set = devices.SetupDiGetClassDevsA(kFirst, 18);
  InterfaceData data{.size = 28};
  ASSERT_TRUE(devices.SetupDiEnumDeviceInterfaces(set, kFirst, 0, data));
  alignas(4) char room[64] = {};
  auto* const detail = reinterpret_cast<InterfaceDetail*>(room);
  detail->size = 5;
  std::uint32_t required = 0;
  EXPECT_FALSE(devices.SetupDiGetDeviceInterfaceDetailA(set, data, detail, 12, &required));
  EXPECT_EQ(devices.GetLastError(), 122u);
  EXPECT_EQ(required, 13u) << "four bytes, eight characters, a terminator";
  EXPECT_EQ(room[4], 0);
  EXPECT_TRUE(devices.SetupDiGetDeviceInterfaceDetailA(set, data, detail, 13, nullptr));
  EXPECT_STREQ(room + 4, "path one");
  EXPECT_FALSE(devices.SetupDiGetDeviceInterfaceDetailA(set, data, nullptr, 1, nullptr)) << "no buffer has no size";
  EXPECT_EQ(devices.GetLastError(), 1784u);
}

TEST_F(SimulatedDevicesTest, WantsRecordsThatItFilled) {
  const Handle set = devices.SetupDiGetClassDevsA(kFirst, 18);
  InterfaceData data{.size = 28};
  EXPECT_FALSE(devices.SetupDiGetDeviceInterfaceDetailA(set, data, nullptr, 0, nullptr));
  EXPECT_EQ(devices.GetLastError(), 87u);
  data.reserved = 4;
  EXPECT_FALSE(devices.SetupDiGetDeviceInterfaceDetailA(set, data, nullptr, 0, nullptr));
  EXPECT_EQ(devices.GetLastError(), 87u);
  DeviceInfo info{.size = 28};
  EXPECT_EQ(devices.SetupDiOpenDevRegKey(set, info, 1, 0, 1, 0x2001F), kInvalidHandle);
  EXPECT_EQ(devices.GetLastError(), 87u);
}

TEST_F(SimulatedDevicesTest, WantsAnOpenSetForEveryCall) {
  const Handle closed = devices.SetupDiGetClassDevsA(kFirst, 18);
  EXPECT_TRUE(devices.SetupDiDestroyDeviceInfoList(closed));
  for (const Handle set : {closed, Handle{0}, kInvalidHandle, Open()}) {
    InterfaceData data{.size = 28, .reserved = 1};
    DeviceInfo info{.size = 28, .reserved = 1};
    EXPECT_FALSE(devices.SetupDiEnumDeviceInterfaces(set, kFirst, 0, data));
    EXPECT_EQ(devices.GetLastError(), 6u);
    EXPECT_FALSE(devices.SetupDiGetDeviceInterfaceDetailA(set, data, nullptr, 0, nullptr));
    EXPECT_FALSE(devices.SetupDiEnumDeviceInfo(set, 0, info));
    EXPECT_EQ(devices.SetupDiOpenDevRegKey(set, info, 1, 0, 1, 0x2001F), kInvalidHandle);
    EXPECT_FALSE(devices.SetupDiDestroyDeviceInfoList(set));
    EXPECT_EQ(devices.GetLastError(), 6u);
  }
}

TEST_F(SimulatedDevicesTest, OpensTheRegistryKeysOfADevice) {
  const Handle set = devices.SetupDiGetClassDevsA(kFirst, 18);
  DeviceInfo info{.size = 28};
  ASSERT_TRUE(devices.SetupDiEnumDeviceInfo(set, 1, info));
  for (const std::uint32_t keyType : {1u, 2u}) {
    const Handle key = devices.SetupDiOpenDevRegKey(set, info, 1, 0, keyType, 0x2001F);
    EXPECT_NE(key, kInvalidHandle);
    EXPECT_FALSE(devices.CloseHandle(key)) << "a key is not closed this way";
    EXPECT_TRUE(devices.RegCloseKey(key));
    EXPECT_FALSE(devices.RegCloseKey(key));
  }
  EXPECT_EQ(devices.SetupDiOpenDevRegKey(set, info, 1, 0, 3, 0x2001F), kInvalidHandle);
  EXPECT_EQ(devices.SetupDiOpenDevRegKey(set, info, 2, 0, 1, 0x2001F), kInvalidHandle);
  EXPECT_EQ(devices.SetupDiOpenDevRegKey(set, info, 1, 1, 1, 0x2001F), kInvalidHandle);
  EXPECT_EQ(devices.SetupDiOpenDevRegKey(set, info, 1, 0, 1, 0), kInvalidHandle);
  EXPECT_EQ(devices.GetLastError(), 1004u);
  EXPECT_FALSE(devices.SetupDiEnumDeviceInfo(set, 2, info));
  EXPECT_EQ(devices.GetLastError(), 259u);
}

TEST_F(SimulatedDevicesTest, OpensOnlyWhatIsThere) {
  EXPECT_NE(Open("path two"), kInvalidHandle);
  EXPECT_EQ(Open("path four"), kInvalidHandle);
  EXPECT_EQ(devices.GetLastError(), 2u);
  EXPECT_EQ(Open(nullptr), kInvalidHandle);
  EXPECT_EQ(devices.CreateFileA("path one", 0xC0000000, 3, 1, 128), kInvalidHandle) << "a device is not created";
  EXPECT_EQ(devices.GetLastError(), 87u);
  EXPECT_EQ(devices.CreateFileA("path one", 0, 3, 3, 128), kInvalidHandle);
}

TEST_F(SimulatedDevicesTest, NeverGivesAHandleTwice) {
  std::set<Handle> given;
  for (int i = 0; i < 50; ++i) {
    const Handle device = Open();
    const Handle event = devices.CreateEventA(true, false);
    const Handle set = devices.SetupDiGetClassDevsA(kFirst, 18);
    for (const Handle handle : {device, event, set}) {
      EXPECT_TRUE(given.insert(handle).second);
      EXPECT_NE(handle, 0u);
      EXPECT_NE(handle, kInvalidHandle);
    }
    EXPECT_TRUE(devices.CloseHandle(device));
    EXPECT_TRUE(devices.CloseHandle(event));
    EXPECT_TRUE(devices.SetupDiDestroyDeviceInfoList(set));
  }
}

TEST_F(SimulatedDevicesTest, ReportsASecondCloseAsAFailure) {
  const Handle device = Open();
  EXPECT_EQ(devices.OpenHandles(HandleKind::kDevice), 1u);
  EXPECT_TRUE(devices.CloseHandle(device));
  EXPECT_EQ(devices.OpenHandles(HandleKind::kDevice), 0u);
  EXPECT_FALSE(devices.CloseHandle(device));
  EXPECT_EQ(devices.GetLastError(), 6u);
  EXPECT_FALSE(devices.CloseHandle(kInvalidHandle));
  EXPECT_FALSE(devices.CloseHandle(0));
}

TEST_F(SimulatedDevicesTest, BringsControlCallsToTheDevice) {
  const std::uint8_t in[3] = {1, 2, 3};
  std::uint8_t out[5] = {};
  const Handle event = devices.CreateEventA(true, false);
  EXPECT_TRUE(devices.DeviceIoControl(Open("path two"), 0xC0DE, in, 3, out, 5, returned, event));
  EXPECT_EQ(two.lastCode, 0xC0DEu);
  EXPECT_THAT(two.lastIn, testing::ElementsAre(1, 2, 3));
  EXPECT_EQ(two.lastOutLength, 5u);
  EXPECT_EQ(out[0], 0xAB);
  EXPECT_EQ(returned, 1u);
  EXPECT_EQ(one.lastCode, 0u);
}

TEST_F(SimulatedDevicesTest, ReportsTheDriversError) {
  one.error = 31;
  EXPECT_FALSE(Control(Open()));
  EXPECT_EQ(devices.GetLastError(), 31u);
  EXPECT_EQ(returned, 99999u);
}

TEST_F(SimulatedDevicesTest, WantsOpenHandlesForControlCalls) {
  const Handle device = Open();
  const Handle event = devices.CreateEventA(true, false);
  EXPECT_TRUE(Control(device));
  EXPECT_FALSE(Control(kInvalidHandle));
  EXPECT_EQ(devices.GetLastError(), 6u);
  EXPECT_FALSE(Control(event)) << "not a device";
  EXPECT_FALSE(Control(device, device)) << "not an event";
  EXPECT_TRUE(devices.CloseHandle(event));
  EXPECT_FALSE(Control(device, event));
  EXPECT_TRUE(devices.CloseHandle(device));
  EXPECT_FALSE(Control(device));
}

TEST_F(SimulatedDevicesTest, WantsBuffersForTheirLengths) {
  std::uint8_t byte = 0;
  const Handle device = Open();
  EXPECT_FALSE(devices.DeviceIoControl(device, 1, nullptr, 1, &byte, 1, returned, 0));
  EXPECT_EQ(devices.GetLastError(), 998u);
  EXPECT_FALSE(devices.DeviceIoControl(device, 1, &byte, 1, nullptr, 1, returned, 0));
  EXPECT_EQ(one.lastCode, 0u);
}

TEST_F(SimulatedDevicesTest, FindsTheTrapOfAWindow) {
  EXPECT_EQ(devices.TrapAt(0x1000), &one);
  EXPECT_EQ(devices.TrapAt(0x3000), &three);
  EXPECT_EQ(devices.TrapAt(0x1004), nullptr);
  EXPECT_EQ(devices.TrapAt(0), nullptr);
}

TEST_F(SimulatedDevicesTest, HasATextForEachErrorThatItReports) {
  for (const std::uint32_t code : {1u, 2u, 6u, 31u, 87u, 122u, 259u, 998u, 1004u, 1784u})
    EXPECT_THAT(devices.FormatMessageA(code), testing::EndsWith(".\r\n")) << code;
  EXPECT_EQ(devices.FormatMessageA(6), "The handle is invalid.\r\n");
  EXPECT_EQ(devices.FormatMessageA(4711), "");
}

}  // namespace
