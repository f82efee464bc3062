#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "simulator/ShiftRegister.h"

using simulator::ShiftRegister;
using testing::ElementsAre;

namespace {

/// Shifts bits in and tells those that come out.
std::string Shift(ShiftRegister& shift, std::string_view bits) {
  std::string out;
  for (const char bit : bits) {
    out.push_back(shift.Out() ? '1' : '0');
    shift.Shift(bit == '1');
  }
  return out;
}

TEST(ShiftRegister, GivesTheTopBitOfTheFirstByteFirst) {
  ShiftRegister shift;
  shift.Capture(std::vector<std::uint8_t>{0x4B, 0x80}, 16);
  EXPECT_EQ(Shift(shift, "0000000000000000"), "0100101110000000");
}

TEST(ShiftRegister, HoldsWhatWasShiftedInInThatOrder) {
  ShiftRegister shift;
  shift.Capture({}, 16);
  Shift(shift, "1101000000000011");
  EXPECT_THAT(shift.Bytes(), ElementsAre(0xD0, 0x03));
}

TEST(ShiftRegister, GivesBackWhatWasShiftedInItsLengthBefore) {
  ShiftRegister shift;
  shift.Capture({}, 3);
  EXPECT_EQ(Shift(shift, "1011001"), "0001011");
}

TEST(ShiftRegister, OfOneBitDelaysByOne) {
  ShiftRegister shift;
  shift.Capture({}, 1);
  EXPECT_EQ(Shift(shift, "10110"), "01011");
}

TEST(ShiftRegister, CountsFromItsCapture) {
  ShiftRegister shift;
  shift.Capture({}, 8);
  EXPECT_EQ(shift.Shifted(), 0u);
  Shift(shift, "111111111");
  EXPECT_EQ(shift.Shifted(), 9u);
  shift.Capture({}, 8);
  EXPECT_EQ(shift.Shifted(), 0u);
  EXPECT_THAT(shift.Bytes(), ElementsAre(0));
}

}  // namespace
