#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "board/DeviceDiscovery.h"
#include "board/DriverRecords.h"
#include "DriverScripts.h"
#include "support/CapturedOutput.h"
#include "support/FailingAllocation.h"

namespace {

using namespace driver_scripts;
using test_support::CapturedOutput;
using test_support::DeviceCall;
using test_support::FailingAllocation;
using test_support::FailsTelling;
using test_support::Says;

constexpr platform::Handle kInvalid = ~platform::Handle{0};
constexpr platform::Handle kUntouched = 0x77;

class DeviceDiscovery : public ::testing::Test {
 protected:
  DeviceDiscovery() { system.Use(devices); }

  test_support::StrictDevices devices;
  test_support::PlatformDouble system;
  platform::ScopedPlatform scope{system};
};

using OpenDeviceViaGuidTest = DeviceDiscovery;
using OpenMorvakDeviceTest = DeviceDiscovery;
using OpenMorvakRegKeyTest = DeviceDiscovery;
using MorvakServices = DeviceDiscovery;

// ---- OpenDeviceViaGuid

TEST_F(OpenDeviceViaGuidTest, FindsTheDeviceAndOpensItsPath) {
  devices.Expect({
      {"SetupDiGetClassDevsA {65703B92-7B12-41B3-9B07-9B131BAA364B} flags 18", Gives(0x51)},
      {"SetupDiEnumDeviceInterfaces 0x51 {65703B92-7B12-41B3-9B07-9B131BAA364B} index 0 size 28", Succeeds()},
      {"SetupDiGetDeviceInterfaceDetailA 0x51 room 0", Needs(21)},
      {"SetupDiGetDeviceInterfaceDetailA 0x51 room 21 size 5", GivesPath(std::string("\\\\?\\pci#ven_b#0\0", 17))},
      {"CreateFileA \\\\?\\pci#ven_b#0 access 0xc0000000 share 3 creation 3 attributes 128", Gives(0x11)},
      {"SetupDiDestroyDeviceInfoList 0x51", Succeeds()},
  });
  CapturedOutput captured;
  EXPECT_EQ(OpenDeviceViaGuid(GUID_BelmaraDevice, 0), 0x11u);
  EXPECT_EQ(captured.out() + captured.err(), "");
}

TEST_F(OpenDeviceViaGuidTest, AsksForTheClassAndTheIndexThatItIsGiven) {
  devices.Expect(Join(FindsPath(kDovu, 3), OpensPath(0x13)));
  EXPECT_EQ(OpenDeviceViaGuid(GUID_DovuDevice, 3), 0x13u);
}

TEST_F(OpenDeviceViaGuidTest, IsSilentAboutASetThatCannotBeMade) {
  devices.Expect({{"SetupDiGetClassDevsA " + kBelmara + " flags 18", Gives(kInvalid)}});
  CapturedOutput captured;
  EXPECT_EQ(OpenDeviceViaGuid(GUID_BelmaraDevice, 0), 0u);
  EXPECT_EQ(captured.out() + captured.err(), "");
}

TEST_F(OpenDeviceViaGuidTest, IsSilentAboutAnAbsentDevice) {
  devices.Expect(IsAbsent(kBelmara));
  CapturedOutput captured;
  EXPECT_EQ(OpenDeviceViaGuid(GUID_BelmaraDevice, 0), 0u);
  EXPECT_EQ(captured.out() + captured.err(), "");
}

TEST_F(OpenDeviceViaGuidTest, TellsOfMemoryThatItDidNotGet) {
  devices.Expect({
      {"SetupDiGetClassDevsA " + kBelmara + " flags 18", Gives(0x51)},
      {"SetupDiEnumDeviceInterfaces 0x51 " + kBelmara + " index 0 size 28", Succeeds()},
      {"SetupDiGetDeviceInterfaceDetailA 0x51 room 0", Needs(10)},
      {"GetLastError", Gives(122)},
      {"GetLastError", Gives(8)},
      {"FormatMessageA 0x8", Says("Not enough memory.\r\n")},
      {"SetupDiDestroyDeviceInfoList 0x51", Succeeds()},
  });
  CapturedOutput captured;
  const FailingAllocation first(1);
  EXPECT_EQ(OpenDeviceViaGuid(GUID_BelmaraDevice, 0), 0u);
  EXPECT_TRUE(first.Happened());
  EXPECT_EQ(captured.out(), "OpenDeviceViaGuid(): can't malloc\n\t00000008\tNot enough memory.\r\n\n");
  EXPECT_EQ(captured.err(), "");
}

/// The calls of a search whose second call for the path fails, around the calls of the error text.
DeviceScript FailsToGiveDetail(const DeviceScript& errorText) {
  const DeviceScript search = {{"SetupDiGetClassDevsA " + kBelmara + " flags 18", Gives(0x51)},
                               {"SetupDiEnumDeviceInterfaces 0x51 " + kBelmara + " index 0 size 28", Succeeds()},
                               {"SetupDiGetDeviceInterfaceDetailA 0x51 room 0", Needs(10)},
                               {"SetupDiGetDeviceInterfaceDetailA 0x51 room 10 size 5", Fails()}};
  return Join(Join(search, errorText), {{"SetupDiDestroyDeviceInfoList 0x51", Succeeds()}});
}

TEST_F(OpenDeviceViaGuidTest, TellsOfADetailThatItDidNotGet) {
  struct Case {
    const char* description;
    DeviceScript calls;
    std::string output;
  };
  const std::string message = "OpenDeviceViaGuid(): can't get device interface detail\n";
  const std::vector<Case> cases = {
      {"the code and its text",
       {{"GetLastError", Gives(5)}, {"GetLastError", Gives(5)}, {"FormatMessageA 0x5", Says("Access is denied.\r\n")}},
       message + "\t00000005\tAccess is denied.\r\n\n"},
      {"the code that stands after the message was printed",
       {{"GetLastError", Gives(0)}, {"GetLastError", Gives(0xE000020B)}, {"FormatMessageA 0xe000020b", Says("Gone.")}},
       message + "\te000020b\tGone.\n"},
      {"no code, though there was one before the message",
       {{"GetLastError", Gives(5)}, {"GetLastError", Gives(0)}},
       message},
      {"a code that the system has no text for",
       {{"GetLastError", Gives(6)}, {"GetLastError", Gives(6)}, {"FormatMessageA 0x6", Says("")}},
       message + "\t00000006\t\n"},
      {"a text that is no format",
       {{"GetLastError", Gives(6)}, {"GetLastError", Gives(6)}, {"FormatMessageA 0x6", Says("%1 of %s%n")}},
       message + "\t00000006\t%1 of %s%n\n"},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.description);
    devices.Expect(FailsToGiveDetail(each.calls));
    CapturedOutput captured;
    EXPECT_EQ(OpenDeviceViaGuid(GUID_BelmaraDevice, 0), 0u);
    EXPECT_EQ(captured.out(), each.output);
    EXPECT_EQ(captured.err(), "");
    devices.ExpectDone();
  }
}

// The control calls that follow fail on it, and tell the user.
TEST_F(OpenDeviceViaGuidTest, GivesAnInvalidHandleAsAnOpenedDevice) {
  devices.Expect(OpensCard(kBelmara, kInvalid));
  CapturedOutput captured;
  EXPECT_EQ(OpenDeviceViaGuid(GUID_BelmaraDevice, 0), kInvalid);
  EXPECT_EQ(captured.out() + captured.err(), "");
}

TEST_F(OpenDeviceViaGuidTest, EndsAPathThatTheSystemDoesNotTerminate) {
  devices.Expect({
      {"SetupDiGetClassDevsA " + kBelmara + " flags 18", Gives(0x51)},
      {"SetupDiEnumDeviceInterfaces 0x51 " + kBelmara + " index 0 size 28", Succeeds()},
      {"SetupDiGetDeviceInterfaceDetailA 0x51 room 0", Needs(12)},
      {"SetupDiGetDeviceInterfaceDetailA 0x51 room 12 size 5", GivesPath("12345678")},
      {"CreateFileA 12345678 access 0xc0000000 share 3 creation 3 attributes 128", Gives(0x11)},
      {"SetupDiDestroyDeviceInfoList 0x51", Succeeds()},
  });
  EXPECT_EQ(OpenDeviceViaGuid(GUID_BelmaraDevice, 0), 0x11u);
}

// A record has a head and a character at least, whatever the system says.
TEST_F(OpenDeviceViaGuidTest, GivesRoomForARecordToASystemThatNeedsLess) {
  for (const std::uint32_t needed : {0u, 3u, 5u, 7u}) {
    SCOPED_TRACE(needed);
    devices.Expect({
        {"SetupDiGetClassDevsA " + kBelmara + " flags 18", Gives(0x51)},
        {"SetupDiEnumDeviceInterfaces 0x51 " + kBelmara + " index 0 size 28", Succeeds()},
        {"SetupDiGetDeviceInterfaceDetailA 0x51 room 0", Needs(needed)},
        {"SetupDiGetDeviceInterfaceDetailA 0x51 room 8 size 5", GivesPath("abcd")},
        {"CreateFileA abcd access 0xc0000000 share 3 creation 3 attributes 128", Gives(0x11)},
        {"SetupDiDestroyDeviceInfoList 0x51", Succeeds()},
    });
    EXPECT_EQ(OpenDeviceViaGuid(GUID_BelmaraDevice, 0), 0x11u);
    devices.ExpectDone();
  }
}

TEST_F(OpenDeviceViaGuidTest, GivesRoomForARecordToASystemThatTellsNoSize) {
  devices.Expect({
      {"SetupDiGetClassDevsA " + kBelmara + " flags 18", Gives(0x51)},
      {"SetupDiEnumDeviceInterfaces 0x51 " + kBelmara + " index 0 size 28", Succeeds()},
      {"SetupDiGetDeviceInterfaceDetailA 0x51 room 0", Fails()},
      {"SetupDiGetDeviceInterfaceDetailA 0x51 room 8 size 5", GivesPath("a")},
      {"CreateFileA a access 0xc0000000 share 3 creation 3 attributes 128", Gives(0x11)},
      {"SetupDiDestroyDeviceInfoList 0x51", Succeeds()},
  });
  EXPECT_EQ(OpenDeviceViaGuid(GUID_BelmaraDevice, 0), 0x11u);
}

TEST_F(OpenDeviceViaGuidTest, TakesTheLongestPathThatASystemHas) {
  const std::string path(65531, 'p');
  devices.Expect({
      {"SetupDiGetClassDevsA " + kBelmara + " flags 18", Gives(0x51)},
      {"SetupDiEnumDeviceInterfaces 0x51 " + kBelmara + " index 0 size 28", Succeeds()},
      {"SetupDiGetDeviceInterfaceDetailA 0x51 room 0", Needs(65536)},
      {"SetupDiGetDeviceInterfaceDetailA 0x51 room 65536 size 5", GivesPath(path)},
      {"CreateFileA " + path + " access 0xc0000000 share 3 creation 3 attributes 128", Gives(0x11)},
      {"SetupDiDestroyDeviceInfoList 0x51", Succeeds()},
  });
  EXPECT_EQ(OpenDeviceViaGuid(GUID_BelmaraDevice, 0), 0x11u);
}

// No path is that long: the size is damaged, and the memory is not asked for.
TEST_F(OpenDeviceViaGuidTest, TakesASizeBeyondEveryPathAsMemoryThatItDidNotGet) {
  for (const std::uint32_t needed : {65537u, 0x80000000u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(needed);
    devices.Expect({
        {"SetupDiGetClassDevsA " + kBelmara + " flags 18", Gives(0x51)},
        {"SetupDiEnumDeviceInterfaces 0x51 " + kBelmara + " index 0 size 28", Succeeds()},
        {"SetupDiGetDeviceInterfaceDetailA 0x51 room 0", Needs(needed)},
        {"GetLastError", Gives(0)},
        {"GetLastError", Gives(0)},
        {"SetupDiDestroyDeviceInfoList 0x51", Succeeds()},
    });
    CapturedOutput captured;
    EXPECT_EQ(OpenDeviceViaGuid(GUID_BelmaraDevice, 0), 0u);
    EXPECT_EQ(captured.out(), "OpenDeviceViaGuid(): can't malloc\n");
    devices.ExpectDone();
  }
}

// ---- What opening second-line hardware and opening its registry key share

struct SearchFailure {
  const char* description;
  DeviceScript calls;
  int failingAllocation;  ///< 0 for none
  std::uint32_t status;
};

std::vector<SearchFailure> SearchFailures() {
  const DeviceCall set = {"SetupDiGetClassDevsA " + kMorvak + " flags 18", Gives(0x51)};
  const std::string enumerate = "SetupDiEnumDeviceInterfaces 0x51 " + kMorvak + " index 0 size 28";
  const DeviceCall need = {"SetupDiGetDeviceInterfaceDetailA 0x51 room 0", Needs(10)};
  const DeviceCall destroy = {"SetupDiDestroyDeviceInfoList 0x51", Succeeds()};
  return {
      {"no set", {{set.call, Gives(kInvalid)}}, 0, 0x8A030026},
      {"no device", {set, {enumerate, Fails()}, destroy}, 0, 0x8A030026},
      {"no memory", {set, {enumerate, Succeeds()}, need, destroy}, 1, 0x8A030025},
      {"a damaged size", {set, {enumerate, Succeeds()}, {need.call, Needs(0xFFFFFFFF)}, destroy}, 0, 0x8A030025},
      {"no detail",
       {set, {enumerate, Succeeds()}, need, {"SetupDiGetDeviceInterfaceDetailA 0x51 room 10 size 5", Fails()}, destroy},
       0,
       0x8A030026},
      {"no device record", Join(FindsPath(kMorvak), {{"SetupDiEnumDeviceInfo 0x51 index 0 size 28", Fails()}, destroy}),
       0, 0x8A030026},
  };
}

TEST_F(OpenMorvakDeviceTest, ReportsEveryFailureOfTheSearchByAStatusAlone) {
  for (const SearchFailure& each : SearchFailures()) {
    SCOPED_TRACE(each.description);
    devices.Expect(each.calls);
    CapturedOutput captured;
    const FailingAllocation nth(each.failingAllocation);
    platform::Handle handle = kUntouched;
    EXPECT_EQ(OpenMorvakDevice(DeviceKind::kMorvak, 0, handle), each.status);
    EXPECT_EQ(handle, kUntouched);
    EXPECT_EQ(captured.out() + captured.err(), "");
    devices.ExpectDone();
  }
}

TEST_F(OpenMorvakRegKeyTest, ReportsEveryFailureOfTheSearchByAStatusAlone) {
  for (const SearchFailure& each : SearchFailures()) {
    SCOPED_TRACE(each.description);
    devices.Expect(each.calls);
    CapturedOutput captured;
    const FailingAllocation nth(each.failingAllocation);
    platform::Handle key = kUntouched;
    EXPECT_EQ(OpenMorvakRegKey(0, RegKeyKind::kDriver, key), each.status);
    EXPECT_EQ(key, kUntouched);
    EXPECT_EQ(captured.out() + captured.err(), "");
    devices.ExpectDone();
  }
}

// ---- OpenMorvakDevice

TEST_F(OpenMorvakDeviceTest, SelectsTheInterfaceClassByTheKind) {
  const std::vector<std::pair<int, std::string>> cases = {{1, kBelmara}, {2, kDovu}, {3, kMorvak}};
  for (const auto& [kind, guid] : cases) {
    SCOPED_TRACE(kind);
    devices.Expect({
        {"SetupDiGetClassDevsA " + guid + " flags 18", Gives(0x51)},
        {"SetupDiEnumDeviceInterfaces 0x51 " + guid + " index 2 size 28", Succeeds()},
        {"SetupDiGetDeviceInterfaceDetailA 0x51 room 0", Needs(10)},
        {"SetupDiGetDeviceInterfaceDetailA 0x51 room 10 size 5", GivesPath("\\\\?\\x")},
        {"SetupDiEnumDeviceInfo 0x51 index 2 size 28", Succeeds()},
        {"CreateFileA \\\\?\\x access 0xc0000000 share 3 creation 3 attributes 128", Gives(0x11)},
        {"SetupDiDestroyDeviceInfoList 0x51", Succeeds()},
    });
    platform::Handle handle = kUntouched;
    EXPECT_EQ(OpenMorvakDevice(static_cast<DeviceKind>(kind), 2, handle), 0u);
    EXPECT_EQ(handle, 0x11u);
    devices.ExpectDone();
  }
}

TEST_F(OpenMorvakDeviceTest, RefusesAnotherKindWithoutTouchingTheSystem) {
  for (const int kind : {4, 0, -1}) {
    SCOPED_TRACE(kind);
    platform::Handle handle = kUntouched;
    EXPECT_EQ(OpenMorvakDevice(static_cast<DeviceKind>(kind), 0, handle), 0x8A030034u);
    EXPECT_EQ(handle, kUntouched);
  }
}

// Unlike `OpenDeviceViaGuid`.
TEST_F(OpenMorvakDeviceTest, TakesAnInvalidHandleForAFailure) {
  devices.Expect(OpensMorvak(kInvalid));
  platform::Handle handle = kUntouched;
  EXPECT_EQ(OpenMorvakDevice(DeviceKind::kMorvak, 0, handle), 0x8A030026u);
  EXPECT_EQ(handle, kUntouched);
}

// ---- OpenMorvakRegKey

TEST_F(OpenMorvakRegKeyTest, OpensTheDriversOrTheDevicesKeyByTheKind) {
  const std::vector<std::pair<int, std::string>> cases = {{1, "2"}, {2, "1"}};
  for (const auto& [kind, keyType] : cases) {
    SCOPED_TRACE(kind);
    devices.Expect(
        Join(FindsPath(kMorvak, 1),
             {{"SetupDiEnumDeviceInfo 0x51 index 1 size 28", Succeeds()},
              {"SetupDiOpenDevRegKey 0x51 scope 1 profile 0 type " + keyType + " access 0x2001f", Gives(0x99)},
              {"SetupDiDestroyDeviceInfoList 0x51", Succeeds()}}));
    platform::Handle key = kUntouched;
    EXPECT_EQ(OpenMorvakRegKey(1, static_cast<RegKeyKind>(kind), key), 0u);
    EXPECT_EQ(key, 0x99u);
    devices.ExpectDone();
  }
}

TEST_F(OpenMorvakRegKeyTest, RefusesAnotherKindWithoutTouchingTheSystem) {
  for (const int kind : {0, 3, -1}) {
    SCOPED_TRACE(kind);
    platform::Handle key = kUntouched;
    EXPECT_EQ(OpenMorvakRegKey(0, static_cast<RegKeyKind>(kind), key), 0x8A030034u);
    EXPECT_EQ(key, kUntouched);
  }
}

TEST_F(OpenMorvakRegKeyTest, TakesAnInvalidKeyForAFailure) {
  devices.Expect(
      Join(FindsPath(kMorvak), {{"SetupDiEnumDeviceInfo 0x51 index 0 size 28", Succeeds()},
                                {"SetupDiOpenDevRegKey 0x51 scope 1 profile 0 type 2 access 0x2001f", Gives(kInvalid)},
                                {"SetupDiDestroyDeviceInfoList 0x51", Succeeds()}}));
  platform::Handle key = kUntouched;
  EXPECT_EQ(OpenMorvakRegKey(0, RegKeyKind::kDriver, key), 0x8A030026u);
  EXPECT_EQ(key, kUntouched);
}

// ---- Closing, and control calls

TEST_F(MorvakServices, CloseAKeyWhateverTheCloseReports) {
  EXPECT_EQ(CloseMorvakRegKey(0), 0x8A030031u);
  devices.Expect({{"RegCloseKey 0x99", Succeeds()}, {"RegCloseKey 0x98", Fails()}});
  EXPECT_EQ(CloseMorvakRegKey(0x99), 0u);
  EXPECT_EQ(CloseMorvakRegKey(0x98), 0u);
}

TEST_F(MorvakServices, CloseADeviceAndReportTheClose) {
  EXPECT_EQ(CloseMorvakDevice(0), 0x8A030031u);
  devices.Expect({{"CloseHandle 0x11", Succeeds()}, {"CloseHandle 0x12", Fails()}});
  EXPECT_EQ(CloseMorvakDevice(0x11), 0u);
  EXPECT_EQ(CloseMorvakDevice(0x12), 0x8A030026u);
}

TEST_F(MorvakServices, PassAControlCallOnAndItsAnswerBack) {
  devices.Expect({{"DeviceIoControl 0x11 code 0xaa010054 in [01 02 03] out 4", Answers({9, 8, 7})}});
  const std::uint8_t in[] = {1, 2, 3};
  std::uint8_t out[] = {5, 5, 5, 5};
  std::uint32_t returned = 0;
  EXPECT_EQ(MorvakIoControl(0x11, 0xAA010054, in, 3, out, 4, returned), 0u);
  EXPECT_THAT(out, ::testing::ElementsAre(9, 8, 7, 5));
  EXPECT_EQ(returned, 3u);
}

TEST_F(MorvakServices, TellWhatADriverReturnedAlsoAfterAFailure) {
  struct Case {
    const char* description;
    test_support::DeviceAnswer answer;
    std::uint32_t status;
    std::uint32_t returned;
  };
  const std::vector<Case> cases = {
      {"a success that tells no size", Succeeds(), 0, 99999},
      {"a success of size 0", Answers({}), 0, 0},
      {"a failure that tells no size", Fails(), 0x8A030026, 99999},
      {"a failure of size 5", FailsTelling(5), 0x8A030026, 5},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.description);
    devices.Expect({{"DeviceIoControl 0x11 code 0xaa010050 in [] out 0", each.answer}});
    std::uint32_t returned = 1234;
    EXPECT_EQ(MorvakIoControl(0x11, 0xAA010050, nullptr, 0, nullptr, 0, returned), each.status);
    EXPECT_EQ(returned, each.returned);
    devices.ExpectDone();
  }
}

}  // namespace
