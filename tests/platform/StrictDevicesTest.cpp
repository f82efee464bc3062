#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "support/StrictDevices.h"

namespace {

using test_support::Answers;
using test_support::Fails;
using test_support::StrictDevices;
using test_support::Succeeds;

TEST(StrictDevices, AnswerAsTheScriptSays) {
  StrictDevices devices;
  devices.Expect({{"CloseHandle 0x11", Succeeds()},
                  {"CloseHandle 0x11", Fails()},
                  {"DeviceIoControl 0x12 code 0xaa010008 in [01 ff] out 2 event 0xe1", Answers({7, 8})}});
  EXPECT_TRUE(devices.CloseHandle(0x11));
  EXPECT_FALSE(devices.CloseHandle(0x11));
  const std::uint8_t in[] = {1, 0xFF};
  std::uint8_t out[2] = {};
  std::uint32_t returned = 0;
  EXPECT_TRUE(devices.DeviceIoControl(0x12, 0xAA010008, in, 2, out, 2, returned, 0xE1));
  EXPECT_EQ(out[1], 8);
  EXPECT_EQ(returned, 2u);
}

TEST(StrictDevices, FailTheTestOnACallThatIsOutOfOrder) {
  StrictDevices devices;
  devices.Expect({{"CloseHandle 0x11", Succeeds()}, {"RegCloseKey 0x12", Succeeds()}});
  EXPECT_NONFATAL_FAILURE(devices.RegCloseKey(0x12), "device call 0 is RegCloseKey 0x12\n  expected CloseHandle 0x11");
}

TEST(StrictDevices, FailTheTestOnAnotherArgument) {
  StrictDevices devices;
  devices.Expect({{"CreateEventA manual not set", Succeeds()}});
  EXPECT_NONFATAL_FAILURE(devices.CreateEventA(true, true), "CreateEventA manual set");
}

TEST(StrictDevices, FailTheTestOnACallThatIsExtra) {
  StrictDevices devices;
  EXPECT_NONFATAL_FAILURE(devices.CloseHandle(0x11), "device call 0 is CloseHandle 0x11\n  expected none");
}

TEST(StrictDevices, FailTheTestOnACallThatIsMissing) {
  StrictDevices devices;
  devices.Expect({{"CloseHandle 0x11", Succeeds()}, {"RegCloseKey 0x12", Succeeds()}});
  devices.CloseHandle(0x11);
  EXPECT_NONFATAL_FAILURE(devices.ExpectDone(),
                          "1 device calls were not made, the first of them number 1: RegCloseKey");
}

TEST(StrictDevices, FailTheTestOnARecordThatWasNotEnumerated) {
  StrictDevices devices;
  devices.Expect({{"SetupDiGetDeviceInterfaceDetailA 0x51 room 0", Fails()}});
  platform::InterfaceData data{.size = 28};
  EXPECT_NONFATAL_FAILURE(devices.SetupDiGetDeviceInterfaceDetailA(0x51, data, nullptr, 0, nullptr),
                          "of an interface that was not enumerated");
}

TEST(StrictDevices, FailTheTestOnceAndEveryCallAfterwards) {
  StrictDevices devices;
  devices.Expect({{"CloseHandle 0x11", Succeeds()}, {"CloseHandle 0x12", Succeeds()}});
  EXPECT_NONFATAL_FAILURE(devices.CloseHandle(0x13), "CloseHandle 0x13");
  EXPECT_FALSE(devices.CloseHandle(0x11));
  EXPECT_FALSE(devices.CloseHandle(0x12));
}

}  // namespace
