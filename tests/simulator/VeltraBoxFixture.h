#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "simulator/VeltraBox.h"

/// A box, a time, and what a card does: packets as bytes, answers as words.
class VeltraBoxTest : public testing::Test {
 protected:
  using Bytes = std::vector<std::uint8_t>;
  using Words = std::vector<std::uint32_t>;

  static simulator::VeltraBoxState State() {
    simulator::VeltraBoxState state;
    state.running.revisions = {0x02, 0x18, 0x00, 0xE1, 0x00, 0x01, 0x02, 0x30, 0x00, 0x1B, 0x01, 0x00};
    state.running.firmwareRev = "2.24 b";
    state.stored = state.running;
    state.vpd[0] = {0x90, 0x04, 0x00, 'Z', 'B', 0x01, '2'};
    return state;
  }

  void Take(std::uint32_t word, bool isFirst) { box.Take(word, isFirst, now, &plan); }
  /// Sends a packet, with something behind its last byte.
  void Send(Bytes packet) {
    packet.resize((packet.size() + 3) / 4 * 4, 0xEE);
    std::uint32_t word = 0;
    for (std::size_t at = 0; at < packet.size(); ++at) {
      word = word << 8 | packet[at];
      if (at % 4 == 3) Take(word, at == 3);
    }
  }
  /// The next answer, empty where there is none.
  Words Answer() { return box.NextAnswerNanoseconds() == simulator::VeltraBox::kNever ? Words{} : box.TakeAnswer(); }
  /// How long after now the next answer begins.
  std::int64_t Delay() const { return box.NextAnswerNanoseconds() - now; }
  Words Exchange(const Bytes& packet) {
    Send(packet);
    return Answer();
  }

  const std::vector<std::string>& Errors() const { return box.state().errors.texts(); }
  void ExpectNoErrors() const { EXPECT_THAT(Errors(), testing::IsEmpty()); }
  /// The only error so far, and it tells this.
  void ExpectError(const std::string& text) const { EXPECT_THAT(Errors(), testing::ElementsAre("box: " + text)); }

  simulator::VeltraBox box{State()};
  simulator::FaultPlan plan;
  std::int64_t now = 5'000'000;

  const Bytes kHwConfig = {0x0B, 0x0B, 0x00, 0x04, 0x80, 0x03, 0x00, 0x00};
  const Bytes kVpdOfBrox = {0x0B, 0x0B, 0x00, 0x06, 0x80, 0x35, 0x00, 0x00, 0x00, 0x00};
};

/// A box with a download going on.
class VeltraBoxDownload : public VeltraBoxTest {
 protected:
  // A container of 24 bytes for the first FPGA, at version 0220; two bytes of it are the payload.
  const Bytes kFpgaFile = {'O', 'R', 'B', 'O', '.', 'R', 'B', 'I', 0x00, 0x00, 0x00, 0x16,
                           'R', '0', '2', '2', '0', ' ', 'P', 'L', 'G',  'R',  0xAA, 0xBB};
  const Bytes kStartFpga = {0x0B, 0x0B, 0x00, 0x0A, 0x80, 0x06, 0x00, 0x00, 0x00, 0x03, 0x00, 0x00, 0x00, 0x18};
  const Bytes kProgramFpga = {0x0B, 0x0B, 0x00, 0x04, 0x80, 0x0A, 0x00, 0x00};
  const Bytes kStartFirmware = {0x0B, 0x0B, 0x00, 0x0A, 0x80, 0x0C, 0x00, 0x00, 0x03, 0x00, 0x00, 0x00, 0x00, 0x18};
  const Bytes kProgramFirmware = {0x0B, 0x0B, 0x00, 0x04, 0x80, 0x10, 0x00, 0x00};
  // The CPLD of number 2, of 4 bytes.
  const Bytes kStartCpld = {0x0B, 0x0B, 0x00, 0x0A, 0x80, 0x12, 0x00, 0x00, 0x02, 0x03, 0x00, 0x00, 0x00, 0x04};
  const Bytes kCpldData = {0x0B, 0x0B, 0x00, 0x0A, 0x80, 0x14, 0x00, 0x00, 0x00, 0x04, 0x01, 0x1C, 0xAA, 0xBB};
  const Bytes kProgramCpld = {0x0B, 0x0B, 0x00, 0x04, 0x80, 0x16, 0x00, 0x00};

  const Words kStartFpgaDone = {0x0B0B0004, 0x80060000};
  const Words kFpgaDataDone = {0x0B0B0004, 0x80080000};
  const Words kFpgaDataRefused = {0x0B0B0004, 0x80080001};
  const Words kProgramFpgaDone = {0x0B0B0004, 0x800A0000};
  const Words kProgramFpgaRefused = {0x0B0B0004, 0x800A0001};

  /// A packet of a data command for an FPGA.
  static Bytes FpgaData(const Bytes& data) {
    const std::size_t length = 6 + data.size();
    Bytes packet(10 + data.size());
    const std::uint8_t head[] = {0x0B, 0x0B, 0x00, 0x00, 0x80, 0x08, 0x00, 0x00};
    std::copy(std::begin(head), std::end(head), packet.begin());
    packet[2] = static_cast<std::uint8_t>(length >> 8);
    packet[3] = static_cast<std::uint8_t>(length);
    packet[8] = static_cast<std::uint8_t>(data.size() >> 8);
    packet[9] = static_cast<std::uint8_t>(data.size());
    std::copy(data.begin(), data.end(), packet.begin() + 10);
    return packet;
  }
  /// A packet with one byte changed.
  static Bytes With(Bytes packet, std::size_t at, std::uint8_t value) {
    packet.at(at) = value;
    return packet;
  }
  /// Brings the whole file into the box, up to the program command.
  void DownloadFpga() {
    EXPECT_EQ(Exchange(kStartFpga), kStartFpgaDone);
    EXPECT_EQ(Exchange(FpgaData(kFpgaFile)), kFpgaDataDone);
  }
};
