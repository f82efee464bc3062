#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "simulator/FlashChip.h"

/// One chip, a time, and the commands that a driver would send.
class FlashChipTest : public testing::Test {
 protected:
  static constexpr std::uint32_t kBlock = 0x100000;
  static constexpr std::uint32_t kNextBlock = 0x110000;

  void Write(std::uint32_t wordAddress, std::uint32_t value) { chip.Write(wordAddress, value, now, &plan); }
  std::uint32_t ReadPair(std::uint32_t wordAddress = 0) { return chip.ReadPair(wordAddress, now); }
  /// The status byte, after the command that asks for it.
  std::uint32_t Status() {
    Write(0, 0x70);
    return ReadPair() & 0xFF;
  }
  std::uint16_t Cell(std::uint32_t wordAddress) const { return chip.memory().Word(wordAddress); }
  void WaitMilliseconds(std::int64_t milliseconds) { now += milliseconds * 1'000'000; }

  void Erase(std::uint32_t wordAddress) {
    Write(wordAddress, 0x20);
    Write(wordAddress, 0xD0);
  }
  /// A whole write to buffer, with its confirm.
  void Program(std::uint32_t wordAddress, const std::vector<std::uint16_t>& words) {
    Write(wordAddress, 0xE8);
    Write(wordAddress, static_cast<std::uint32_t>(words.size() - 1));
    for (std::uint32_t i = 0; i < words.size(); ++i)
      Write(wordAddress + i, words[i]);
    Write(wordAddress, 0xD0);
  }

  const std::vector<std::string>& Errors() const { return chip.errors().texts(); }
  void ExpectNoErrors() const { EXPECT_THAT(Errors(), testing::IsEmpty()); }
  /// The only error so far, and it tells this.
  void ExpectError(const std::string& text) const { EXPECT_THAT(Errors(), testing::ElementsAre(text)); }

  simulator::FlashChip chip;
  simulator::FaultPlan plan;
  std::int64_t now = 5'000'000;
};
