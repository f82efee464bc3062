#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "board/VmeInterpreter.h"
#include "support/VmeTrace.h"

namespace {

using test_support::HexBytes;
using test_support::Times;
using test_support::VmeTrace;

const std::string kToShiftDr = "enter tms:01010 rest tms:10 rest ";
const std::string kAgain = " tms:10 rest tms:10 rest ";
const std::string kOut = " tms:10 rest leave:5 =0";
const std::string kRefused = "leave:5 =-4";

/// SHR and SHL multiply by the passes that were made: one, behind this loop.
const std::string kOnePass = "32 60 01 33 01 59 ";

struct TdiShift {
  const char* codes;  ///< SHR and SHL
  const char* before;
  const char* after;  ///< null where a bit leaves the data
};

void Expect(const TdiShift& shift) {
  SCOPED_TRACE(std::string(shift.codes) + " of " + shift.before);
  const std::size_t bytes = HexBytes(shift.before).size();
  char bits[8];
  std::snprintf(bits, sizeof bits, "%02X", static_cast<unsigned>(bytes * 8));
  VmeTrace trace;
  const int code = trace.Play("F2 19 78" + kOnePass + shift.codes + "12" + bits + "13" + shift.before + "70 7F");
  if (shift.after == nullptr) {
    EXPECT_EQ(code, -4);
    return;
  }
  EXPECT_EQ(code, 0);
  VmeBuffer sent = trace.player.interpreter.tdiData;
  sent.resize(bytes);
  EXPECT_EQ(sent, HexBytes(shift.after));
}

TEST(VmeTdiShifts, RightDoubleBytesAndCarryAOneIntoTheByteInFront) {
  const TdiShift kCases[] = {
      {"23 00", "00 81", "00 81"},       {"23 01", "00 01", "00 02"},
      {"23 07", "00 01", "00 80"},       {"23 01", "00 80", "01 00"},
      {"23 02", "00 80", "02 00"},       {"23 08", "00 01", "01 00"},
      {"23 0F", "00 01", "80 00"},       {"23 10", "00 00 01", "01 00 00"},
      {"23 01", "00 C0", "00 80"},  // while bits are left nothing is carried
      {"23 01", "01 01", "02 02"},       {"23 01", "00 80 80", "01 01 00"},
      {"23 01", "03 80", "01 00"},  // the byte in front is replaced
      {"23 09", "00 00 00", "00 00 00"},
  };
  for (const TdiShift& shift : kCases)
    Expect(shift);
}

TEST(VmeTdiShifts, LeftHalveBytesAndCarryAnEightIntoTheByteInFront) {
  const TdiShift kCases[] = {
      {"24 00", "00 81", "00 81"},       {"24 01", "00 80", "00 40"},       {"24 07", "00 80", "00 01"},
      {"24 01", "00 01", "08 00"},       {"24 02", "00 01", "04 00"},       {"24 04", "00 01", "01 00"},
      {"24 08", "00 00 01", "01 00 00"}, {"24 05", "00 00 01", "08 00 00"}, {"24 01", "00 03", "00 01"},
      {"24 01", "80 80", "40 40"},       {"24 01", "00 01 01", "08 08 00"}, {"24 01", "F0 01", "08 00"},
      {"24 09", "00 00 00", "00 00 00"},
  };
  for (const TdiShift& shift : kCases)
    Expect(shift);
}

TEST(VmeTdiShifts, OutOfTheDataAreFileErrors) {
  const TdiShift kCases[] = {
      {"23 01", "80 00", nullptr}, {"23 08", "01", nullptr},       {"23 10", "00 01", nullptr},
      {"23 7F", "00 01", nullptr}, {"24 01", "01 00", nullptr},    {"24 08", "80", nullptr},
      {"24 05", "00 01", nullptr}, {"24 09", "00 00 01", nullptr},
  };
  for (const TdiShift& shift : kCases)
    Expect(shift);
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 19 08" + kOnePass + "23 01 12 08 13 80 70 7F", kToShiftDr + kRefused));
}

TEST(VmeTdiShifts, BothAtOnceAreLeftFirst) {
  // 01 to the left is 08 in the byte in front; that to the right is 10.
  Expect({"23 01 24 01", "00 01", "10 00"});
  Expect({"24 01 23 01", "00 01", "10 00"});
  // One amount for both, the last.
  Expect({"24 07 23 01", "00 04", "00 04"});
  Expect({"23 07 24 01", "00 01", "10 00"});
}

TEST(VmeTdiShifts, AreNothingInTheFirstPassAndGrowWithEach) {
  VmeTrace trace;
  // 23 01 12 10 13 00 80 70 59
  EXPECT_TRUE(trace.Plays("F2 19 10 32 60 09 33 04 23 01 12 10 13 00 80 70 59 7F",
                          kToShiftDr + "tdi:0000000010000000." + kAgain + "tdi:0000000100000000." + kAgain +
                              "tdi:0000001000000000." + kAgain + "tdi:0000010000000000." + kOut));
  // 24 03 12 10 13 00 20 70 59
  EXPECT_TRUE(trace.Plays("F2 19 10 32 60 09 33 03 24 03 12 10 13 00 20 70 59 7F",
                          kToShiftDr + "tdi:0000000000100000." + kAgain + "tdi:0000000000000100." + kAgain +
                              "tdi:0000100000000000." + kOut));
}

TEST(VmeTdiShifts, EndALoopThatShiftsABitOutOfTheData) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 19 08 32 60 08 33 04 23 01 12 08 13 40 70 59 7F",
                          kToShiftDr + "tdi:01000000." + kAgain + "tdi:10000000." + kAgain + kRefused));
}

TEST(VmeTdiShifts, OfANegativeByteAreHuge) {
  VmeTrace trace;
  // -128 is 65408, which no data have room for; 128 these would have.
  const std::string loop = "32 60 30 33 02 23 80 12 C0 02 13" + Times(39, "00") + "01 70 59 7F";
  EXPECT_TRUE(trace.Plays("F2 19 C0 02" + loop, kToShiftDr + "tdi:" + Times(319, "0") + "1." + kAgain + kRefused));
  VmeTrace other;
  const std::string large = "32 60 30 33 02 23 7F 12 C0 02 13" + Times(39, "00") + "01 70 59 7F";
  EXPECT_TRUE(other.Plays("F2 19 C0 02" + large, kToShiftDr + "tdi:" + Times(319, "0") + "1." + kAgain +
                                                     "tdi:" + Times(192, "0") + "1" + Times(127, "0") + "." + kOut));
}

TEST(VmeTdiShifts, OfANegativeByteAreNothingInTheFirstPassAndForZeros) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 19 08 32 60 08 33 01 24 FF 12 08 13 01 70 59 7F", kToShiftDr + "tdi:00000001." + kOut));
  EXPECT_TRUE(trace.Plays("F2 19 08 32 60 08 33 02 24 FF 12 08 13 00 70 59 7F",
                          kToShiftDr + "tdi:00000000." + kAgain + "tdi:00000000." + kOut));
}

TEST(VmeTdiShifts, AreForTheNextTdiDataAlone) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 19 08" + kOnePass + "23 01 12 08 13 01 70 12 08 13 01 70 7F",
                          kToShiftDr + "tdi:00000010." + kAgain + "tdi:00000001." + kOut));
  EXPECT_TRUE(
      trace.Plays("F2 19 08" + kOnePass + "23 01 12 08 13 01 13 01 70 7F", kToShiftDr + "tdi:00000001." + kOut));
}

TEST(VmeTdiShifts, WaitForTdiData) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays(
      "F2 19 08" + kOnePass + "23 01 12 08 70 12 08 14 00 15 00 70 12 08 14 00 13 01 70 7F",
      kToShiftDr + "tdi:00000000." + kAgain + "io:00000000/00000000." + kAgain + "io:00000000/00000010." + kOut));
}

TEST(VmeTdiShifts, ChangeInstructionsAndTheBytesThatTheBitsTake) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 19 10" + kOnePass + "23 01 11 09 13 00 80 70 7F",
                          "enter tms:011010 rest tms:10 rest tdi:000000010." + kOut));
}

TEST(VmeTdiShifts, TakeTheFactorOfTheLastLoopBehindIt) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 19 08 32 60 01 33 03 59 23 01 12 08 13 01 70 7F", kToShiftDr + "tdi:00001000." + kOut));
  EXPECT_TRUE(trace.Plays("F2 19 08 23 02 12 08 13 01 70 7F", kToShiftDr + "tdi:01000000." + kOut))
      << "and in the next file";
}

TEST(VmeTdiShifts, ThatSetflowAsksForHaveThePendingAmount) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 19 08" + kOnePass + "23 03 7F", "enter leave:6 =0"));
  EXPECT_TRUE(trace.Plays("F2 12 08 13 01 70 30 80 01 12 08 13 01 70 30 80 02 12 08 13 80 70 7F",
                          kToShiftDr + "tdi:00000001." + kAgain + "tdi:00001000." + kAgain + "tdi:00010000." + kOut));
}

}  // namespace
