#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "simulator/MorvakUnit.h"

/// A unit, a clock, and what a driver's client does: records and packets as bytes.
class MorvakUnitTest : public testing::Test {
 protected:
  using Bytes = std::vector<std::uint8_t>;

  static simulator::MorvakUnitState State() {
    simulator::MorvakUnitState state;
    state.model = 4;
    state.codecSlots = 2;
    state.codecState = {1, 2};
    state.stored.Set(0, "0120b");
    state.stored.Set(1, "030e");
    state.stored.Set(2, "000f");
    state.stored.Set(8, "00.09 x");
    state.running = state.stored;
    state.vpd = Bytes{0x90, 0x04, 0x00, 'Z', 'B', 0x01, '1'};
    state.boards[0] = {0x90, 0x05, 0x00, 'P', 'N', 0x02, '1', '-', 0x78};
    state.boards[3] = {0x78};
    return state;
  }

  /// A field of a record, least significant byte first.
  static void Add(Bytes& record, std::uint64_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
      record.push_back(static_cast<std::uint8_t>(value >> (i * 8)));
  }
  static std::uint64_t Address(const void* at) { return reinterpret_cast<std::uintptr_t>(at); }

  /// A control call with room for exactly `outBytes`, which go to `out`. Returns the system's error.
  std::uint32_t Control(std::uint32_t code, const Bytes& in, std::size_t outBytes) {
    out.assign(outBytes, 0xEE);
    returned = 99999;
    return unit.Control(code, in, out, returned);
  }
  /// Reads VPD into `area`, which has a byte more than the driver may write.
  std::uint32_t ReadVpd(std::uint32_t board, std::uint32_t size = 8192) {
    area.assign(8193, 0xEE);
    Bytes in;
    Add(in, Address(area.data()), 8);
    Add(in, board, 4);
    Add(in, size, 4);
    return Control(0xAA010044, in, 4);
  }

  static constexpr std::uint32_t kSecond = 1'000'000;

  /// The record of an exchange.
  Bytes TalcRecord(const Bytes& packet, std::uint32_t timeoutMicroseconds, std::uint32_t capacity = 2048) {
    reply.assign(2049, 0xEE);
    Bytes in;
    Add(in, packet.empty() ? 0 : Address(packet.data()), 8);
    Add(in, capacity == 0 ? 0 : Address(reply.data()), 8);
    Add(in, packet.size(), 4);
    Add(in, capacity, 4);
    Add(in, timeoutMicroseconds, 4);
    return in;
  }
  /// Exchanges a packet, or nothing, for what comes in this time: empty where nothing does.
  Bytes Exchange(const Bytes& packet, std::uint32_t timeoutMicroseconds = kSecond) {
    EXPECT_EQ(Control(0xAA010038, TalcRecord(packet, timeoutMicroseconds), 8), 0u);
    EXPECT_EQ(returned, 8u);
    EXPECT_THAT(Bytes(out.begin() + 4, out.end()), testing::ElementsAre(0, 0, 0, 0));
    const Bytes status(out.begin(), out.begin() + 4);
    const std::size_t length = reply[0] == 0xEE ? 0 : static_cast<std::size_t>(reply[2] << 8 | reply[3]) + 4;
    EXPECT_TRUE(std::all_of(reply.begin() + static_cast<std::ptrdiff_t>(length), reply.end(),
                            [](std::uint8_t byte) { return byte == 0xEE; }));
    if (length == 0)
      EXPECT_THAT(status, testing::ElementsAre(0x12, 0x00, 0x03, 0x8A)) << "time-out";
    else
      EXPECT_THAT(status, testing::ElementsAre(0, 0, 0, 0));
    return {reply.begin(), reply.begin() + static_cast<std::ptrdiff_t>(length)};
  }
  /// What the next exchange takes of the clock.
  std::int64_t NanosecondsSince(std::int64_t start) const { return clock.NowNanoseconds() - start; }

  const std::vector<std::string>& Errors() const { return unit.state().errors.texts(); }
  void ExpectNoErrors() const { EXPECT_THAT(Errors(), testing::IsEmpty()); }
  /// The only error so far, and it tells this.
  void ExpectError(const std::string& text) const { EXPECT_THAT(Errors(), testing::ElementsAre("morvak: " + text)); }

  simulator::VirtualClock clock{5'000'000};
  simulator::MorvakUnit unit{State(), clock};
  Bytes out;
  Bytes area;
  Bytes reply;
  std::uint32_t returned = 0;

  const Bytes kFirmwareRev = {0x0B, 0x0B, 0x00, 0x06, 0x80, 0x55, 0x00, 0x00, 0x00, 0x00};
  const Bytes kFirmwareRevIs = {0x0B, 0x0B, 0x00, 0x0B, 0x80, 0x55, 0x00, 0x00, 0x00, 0x00, '0', '1', '2', '0', 'b'};
  const Bytes kVpdInfo = {0x0B, 0x0B, 0x00, 0x06, 0x80, 0x35, 0x00, 0x00, 0x00, 0x00};
};

/// A unit with a download going on.
class MorvakUnitDownload : public MorvakUnitTest {
 protected:
  const Bytes kDiagnostic = {0x0B, 0x0B, 0x00, 0x0E, 0xC0, 0x02, 0x00, 0x00, 0x00,
                             0x08, 0x62, 0x64, 0x00, 0x02, 0x00, 0x02, 0x00, 0x00};
  const Bytes kDiagnosticDone = {0x0B, 0x0B, 0x00, 0x04, 0xC0, 0x02, 0x00, 0x00};
  // A container of 24 bytes for the first FPGA, at version 030F; two bytes of it are the payload.
  const Bytes kStartFpga = {0x0B, 0x0B, 0x00, 0x0A, 0x80, 0x06, 0x00, 0x00, 0x00, 0x03, 0x00, 0x00, 0x00, 0x18};
  const Bytes kFpgaData = {0x0B, 0x0B, 0x00, 0x1E, 0x80, 0x08, 0x00, 0x00, 0x00, 0x18, 'O', 'R',
                           'B',  'O',  '.',  'R',  'B',  'I',  0x00, 0x00, 0x00, 0x16, 'R', '0',
                           '3',  '0',  'F',  ' ',  'X',  'N',  'D',  'R',  0xAA, 0xBB};
  const Bytes kProgramFpga = {0x0B, 0x0B, 0x00, 0x04, 0x80, 0x0A, 0x00, 0x00};
  const Bytes kStartFpgaDone = {0x0B, 0x0B, 0x00, 0x04, 0x80, 0x06, 0x00, 0x00};
  const Bytes kStartFpgaRefused = {0x0B, 0x0B, 0x00, 0x04, 0x80, 0x06, 0x00, 0x01};
  const Bytes kFpgaDataDone = {0x0B, 0x0B, 0x00, 0x04, 0x80, 0x08, 0x00, 0x00};
  const Bytes kFpgaDataRefused = {0x0B, 0x0B, 0x00, 0x04, 0x80, 0x08, 0x00, 0x01};
  const Bytes kProgramFpgaDone = {0x0B, 0x0B, 0x00, 0x04, 0x80, 0x0A, 0x00, 0x00};
  const Bytes kProgramFpgaRefused = {0x0B, 0x0B, 0x00, 0x04, 0x80, 0x0A, 0x00, 0x01};
  static constexpr std::int64_t kFpgaBurn = 20'000'000 + 24 * 13'000;
  // The first CPLD, of 4 bytes at version 0010.
  const Bytes kStartCpld = {0x0B, 0x0B, 0x00, 0x0A, 0x80, 0x12, 0x00, 0x00, 0x00, 0x02, 0x00, 0x00, 0x00, 0x04};
  const Bytes kCpldData = {0x0B, 0x0B, 0x00, 0x0A, 0x80, 0x14, 0x00, 0x00, 0x00, 0x04, 0x00, 0x10, 0xAA, 0xBB};
  const Bytes kProgramCpld = {0x0B, 0x0B, 0x00, 0x04, 0x80, 0x16, 0x00, 0x00};

  /// A packet with one byte changed.
  static Bytes With(Bytes packet, std::size_t at, std::uint8_t value) {
    packet.at(at) = value;
    return packet;
  }
  /// The diagnostic, and the pause that it needs.
  void Diagnose() {
    EXPECT_EQ(Exchange(kDiagnostic), kDiagnosticDone);
    clock.Sleep(500);
  }
  /// Brings the whole file into the unit, up to the program command.
  void DownloadFpga() {
    Diagnose();
    EXPECT_EQ(Exchange(kStartFpga), kStartFpgaDone);
    EXPECT_EQ(Exchange(kFpgaData), kFpgaDataDone);
  }
  simulator::MorvakTexts::Text Stored(std::uint16_t version) const { return unit.state().stored.Of(version); }
};
