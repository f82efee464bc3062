#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "board/DeviceDiscovery.h"
#include "DriverScripts.h"
#include "errorException.h"
#include "support/ScriptedRegisters.h"

namespace {

using namespace driver_scripts;
using test_support::DeviceCall;
using test_support::FailsTelling;
using test_support::R;
using test_support::W;

using Bytes = std::vector<std::uint8_t>;

const DeviceCall kEvent = {"CreateEventA manual not set", Gives(0xE1)};
const std::string kFetchMap = "DeviceIoControl 0x11 code 0xc1762080 in [] out 96 event 0xe1";
const std::string kMap =
    "DeviceIoControl 0x11 code 0xc1762404 in [00 00 00 00 00 00 00 00 78 56 34 12] out 16 event 0xe1";
const DeviceCall kClose = {"CloseHandle 0x11", Succeeds()};

/// The window's size is 0x12345678; the rest is what nobody looks at.
Bytes MemoryMap() {
  Bytes map(96, 0xFF);
  map[0] = 0x78;
  map[1] = 0x56;
  map[2] = 0x34;
  map[3] = 0x12;
  return map;
}

class MapBoardRegistersTest : public ::testing::Test {
 protected:
  MapBoardRegistersTest() { system.Use(devices); }

  test_support::StrictDevices devices;
  test_support::PlatformDouble system;
  platform::ScopedPlatform scope{system};
  test_support::ScriptedRegisters registers;
};

// The event is never closed, and the handle stays open.
TEST_F(MapBoardRegistersTest, PassesTheWindowsSizeOnAndGivesTheWindow) {
  devices.Expect({
      kEvent,
      {kFetchMap, Answers(MemoryMap())},
      {kMap, Answers({0x00, 0x20, 0x00, 0x40, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0})},
      {"TrapAt 0x40002000", TrapIs(registers)},
  });
  const platform::RegisterWindow window = MapBoardRegisters(0x11);
  EXPECT_TRUE(window);
  registers.Expect({W(0x80400, 7), R(0x4000, 0x160000)});
  window.Write(0x80400, 7);
  EXPECT_EQ(window.Read(0x4000), 0x160000u);
}

TEST_F(MapBoardRegistersTest, KeepsAllBitsOfTheAddress) {
  devices.Expect({
      kEvent,
      {kFetchMap, Answers(MemoryMap())},
      {kMap, Answers({0x00, 0x20, 0x00, 0x40, 0xFE, 0x7F, 0, 0, 0, 0, 0, 0x80, 0xFF, 0, 0, 0})},
      {"TrapAt 0x7ffe40002000", TrapIs(registers)},
  });
  EXPECT_EQ(MapBoardRegisters(0x11), platform::RegisterWindow(0x7FFE40002000, &registers));
}

TEST_F(MapBoardRegistersTest, AccessesAWindowWithoutATrapAsMemory) {
  std::uint32_t memory[4] = {1, 2, 3, 4};
  const auto address = reinterpret_cast<std::uintptr_t>(memory);
  Bytes answer(16, 1);
  for (int i = 0; i < 8; ++i)
    answer[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(address >> 8 * i);
  devices.Expect({
      kEvent,
      {kFetchMap, Answers(MemoryMap())},
      {kMap, Answers(answer)},
      {"TrapAt " + HexText(address), {}},
  });
  const platform::RegisterWindow window = MapBoardRegisters(0x11);
  EXPECT_EQ(window.Read(8), 3u);
}

TEST_F(MapBoardRegistersTest, ClosesTheHandleAndThrowsOnEveryFailure) {
  struct Case {
    const char* description;
    DeviceScript calls;
    std::string message;
  };
  const DeviceCall fetched = {kFetchMap, Answers(MemoryMap())};
  const Bytes good = {0x00, 0x20, 0x00, 0x40, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0};
  const Bytes noAddress = {0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0};
  const Bytes noSecond = {0x00, 0x20, 0x00, 0x40, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  const Bytes highAddressOnly = {0, 0, 0, 0, 0xFE, 0x7F, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0};
  const Bytes highSecondOnly = {0x00, 0x20, 0x00, 0x40, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0};
  const std::vector<Case> cases = {
      {"the map is refused", {{kFetchMap, Fails()}}, "can't fetch board memory map"},
      {"the map is refused, with its size", {{kFetchMap, FailsTelling(96)}}, "can't fetch board memory map"},
      {"the map is a byte short", {{kFetchMap, Answers(MemoryMap(), 95)}}, "bad return from fetching memory map"},
      {"the map is a byte long", {{kFetchMap, Answers(MemoryMap(), 97)}}, "bad return from fetching memory map"},
      {"the map is empty", {{kFetchMap, Answers(MemoryMap(), 0)}}, "bad return from fetching memory map"},
      {"no size is told of the map", {{kFetchMap, Succeeds()}}, "bad return from fetching memory map"},
      {"the mapping is refused", {fetched, {kMap, Fails()}}, "can't map registers"},
      {"the mapping is refused, with its size", {fetched, {kMap, FailsTelling(16)}}, "can't map registers"},
      {"the answer is a byte short", {fetched, {kMap, Answers(good, 15)}}, "bad return from mapping"},
      {"the answer is a byte long", {fetched, {kMap, Answers(good, 17)}}, "bad return from mapping"},
      {"the answer is empty", {fetched, {kMap, Answers(good, 0)}}, "bad return from mapping"},
      {"no size is told of the answer", {fetched, {kMap, Succeeds()}}, "bad return from mapping"},
      {"the address is 0", {fetched, {kMap, Answers(noAddress)}}, "couldn't map registers"},
      {"the second value is 0", {fetched, {kMap, Answers(noSecond)}}, "couldn't map registers"},
      {"the address has a high half alone", {fetched, {kMap, Answers(highAddressOnly)}}, "couldn't map registers"},
      {"the second value has a high half alone", {fetched, {kMap, Answers(highSecondOnly)}}, "couldn't map registers"},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.description);
    devices.Expect(Join(Join({kEvent}, each.calls), {kClose}));
    try {
      MapBoardRegisters(0x11);
      ADD_FAILURE() << "nothing was thrown";
    } catch (const errorException& error) {
      EXPECT_EQ(error.what(), each.message);
      EXPECT_STREQ(error.file, "DeviceDiscovery.cpp");
      EXPECT_GT(error.line, 0);
    }
    devices.ExpectDone();
  }
}

TEST_F(MapBoardRegistersTest, ThrowsTheSameWhenTheCloseFails) {
  devices.Expect({kEvent, {kFetchMap, Fails()}, {"CloseHandle 0x11", Fails()}});
  try {
    MapBoardRegisters(0x11);
    ADD_FAILURE() << "nothing was thrown";
  } catch (const errorException& error) {
    EXPECT_STREQ(error.what(), "can't fetch board memory map");
  }
}

// No handle is overlapped, so the calls are complete without it.
TEST_F(MapBoardRegistersTest, GoesOnWithoutAnEvent) {
  devices.Expect({
      {"CreateEventA manual not set", Gives(0)},
      {"DeviceIoControl 0x11 code 0xc1762080 in [] out 96", Answers(MemoryMap())},
      {"DeviceIoControl 0x11 code 0xc1762404 in [00 00 00 00 00 00 00 00 78 56 34 12] out 16",
       Answers({0x00, 0x20, 0x00, 0x40, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0})},
      {"TrapAt 0x40002000", TrapIs(registers)},
  });
  EXPECT_TRUE(MapBoardRegisters(0x11));
}

}  // namespace
