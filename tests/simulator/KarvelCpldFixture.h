#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/KarvelCpld.h"

/// One part with its port, a time that stands still unless it is moved, and the pin sequences of a programmer.
class KarvelCpldTest : public testing::Test {
 protected:
  using Bytes = std::vector<std::uint8_t>;

  // Pins of the port word.
  static constexpr std::uint32_t kTck = 0x01;
  static constexpr std::uint32_t kTms = 0x02;
  static constexpr std::uint32_t kTdi = 0x04;
  static constexpr std::uint32_t kEnable = 0x08;

  // Instructions.
  static constexpr std::uint8_t kBypass = 0xFF;
  static constexpr std::uint8_t kIdcode = 0x16;
  static constexpr std::uint8_t kUsercode = 0x17;
  static constexpr std::uint8_t kEnter = 0x15;
  static constexpr std::uint8_t kLeave = 0x1E;
  static constexpr std::uint8_t kErase = 0x03;
  static constexpr std::uint8_t kAddress = 0x01;
  static constexpr std::uint8_t kProgramRow = 0x67;
  static constexpr std::uint8_t kReadRow = 0x2A;
  static constexpr std::uint8_t kProgramUsercode = 0x1A;
  static constexpr std::uint8_t kProgramDone = 0x2F;

  void Write(std::uint32_t value) { cpld.WritePort(value, now, &plan); }
  bool Tdo() { return (cpld.ReadPort(now, &plan) & 0x10) != 0; }
  int State() const { return static_cast<int>(cpld.tapState()); }

  void Clock(bool tms, bool tdi = false) {
    const std::uint32_t pins = kEnable | (tms ? kTms : 0) | (tdi ? kTdi : 0);
    Write(pins);
    Write(pins | kTck);
    Write(pins);
  }
  /// One clock for each digit, which is TMS.
  void Move(std::string_view tms) {
    for (const char digit : tms)
      Clock(digit == '1');
  }
  /// From reset with all pins low to Run-Test/Idle.
  void Connect() {
    Write(kEnable);
    Move("0");
  }
  /// In a shift state: shifts bits in, leaves the state with the last one, and tells those that come out.
  std::string ShiftBits(std::string_view bits) {
    std::string out;
    for (std::size_t i = 0; i < bits.size(); ++i) {
      out.push_back(Tdo() ? '1' : '0');
      Clock(i + 1 == bits.size(), bits[i] == '1');
    }
    return out;
  }
  /// From Run-Test/Idle and back to it: the same with bytes, whose top bits go first.
  Bytes ScanData(const Bytes& data) { return BytesOf(ScanDataBits(BitsOf(data))); }
  std::string ScanDataBits(std::string_view bits) {
    Move("100");
    const std::string out = ShiftBits(bits);
    Move("10");
    return out;
  }
  std::string ScanInstructionBits(std::string_view bits) {
    Move("1100");
    const std::string out = ShiftBits(bits);
    Move("10");
    return out;
  }
  void Load(std::uint8_t instruction) { ScanInstructionBits(BitsOf({instruction})); }
  void EnterProgramming() { Load(kEnter); }
  /// The last bit selects row 0.
  void SelectRow(int row) {
    Load(kAddress);
    std::string bits(64, '0');
    bits[static_cast<std::size_t>(63 - row)] = '1';
    ScanDataBits(bits);
  }
  void ProgramRow(int row, const Bytes& data) {
    SelectRow(row);
    Load(kProgramRow);
    ScanData(data);
  }
  Bytes ReadRow(int row) {
    SelectRow(row);
    Load(kReadRow);
    return ScanData(Bytes(16, 0));
  }
  /// In programming mode.
  void Erase() {
    Load(kErase);
    now += 80'000'000;
  }

  static std::string BitsOf(const Bytes& bytes) {
    std::string bits;
    for (const std::uint8_t byte : bytes)
      for (int bit = 7; bit >= 0; --bit)
        bits.push_back((byte >> bit & 1) != 0 ? '1' : '0');
    return bits;
  }
  static Bytes BytesOf(std::string_view bits) {
    Bytes bytes(bits.size() / 8);
    for (std::size_t i = 0; i < bits.size(); ++i)
      bytes[i / 8] = static_cast<std::uint8_t>(bytes[i / 8] << 1 | (bits[i] == '1' ? 1 : 0));
    return bytes;
  }

  Bytes Row(std::size_t row) const {
    const simulator::KarvelRow& cells = cpld.cells().rows[row];
    return {cells.begin(), cells.end()};
  }
  const std::vector<std::string>& Errors() const { return cpld.errors().texts(); }
  void ExpectNoErrors() const { EXPECT_THAT(Errors(), testing::IsEmpty()); }
  /// The only error so far, and it tells this.
  void ExpectError(const std::string& text) const { EXPECT_THAT(Errors(), testing::ElementsAre(text)); }

  simulator::KarvelCpld cpld{simulator::MakeShelfKarvel(0x00160000)};
  simulator::FaultPlan plan;
  std::int64_t now = 5'000'000;
};
