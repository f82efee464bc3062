#include <gtest/gtest.h>

#include <string>

#include "board/VmeInterpreter.h"
#include "support/VmeTrace.h"

namespace {

using test_support::Times;
using test_support::VmeTrace;

// From reset to the shift states by way of the pauses.
const std::string kToShiftIr = "enter tms:011010 rest tms:10 rest ";
const std::string kToShiftDr = "enter tms:01010 rest tms:10 rest ";
/// From a shift state to its pause, and out.
const std::string kOut = " tms:10 rest leave:5 =0";

TEST(VmeShiftCommands, ShiftThroughTheirPauses) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 19 08 11 04 13 C0 70 7F", kToShiftIr + "tdi:1100." + kOut));
  EXPECT_TRUE(trace.Plays("F2 19 08 12 04 13 C0 70 7F", kToShiftDr + "tdi:1100." + kOut));
  EXPECT_TRUE(trace.Plays("F2 19 08 16 04 13 C0 70 7F", kToShiftDr + "tdi:1100." + kOut));
}

TEST(VmeShiftCommands, ShiftOneBitNineBitsAndMany) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 19 10 12 01 13 80 70 7F", kToShiftDr + "tdi:1." + kOut));
  EXPECT_TRUE(trace.Plays("F2 19 10 12 09 13 A5 80 70 7F", kToShiftDr + "tdi:101001011." + kOut));
  EXPECT_TRUE(trace.Plays("F2 19 C8 01 12 C8 01 13" + Times(25, "A5") + "70 7F",
                          kToShiftDr + "tdi:" + Times(25, "10100101") + "." + kOut));
}

TEST(VmeShiftCommands, OfNoBitsMoveTheTapAlone) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 12 00 70 7F", kToShiftDr + kOut));
  EXPECT_TRUE(trace.Plays("F2 11 00 70 7F", kToShiftIr + kOut));
  EXPECT_TRUE(trace.Plays("F2 12 00 13 14 15 70 7F", kToShiftDr + kOut));
  EXPECT_TRUE(trace.Plays("F2 12 00 62 70 7F", kToShiftDr + "tms:10 rest tms:10 rest" + kOut));
}

TEST(VmeShiftCommands, FollowEachOther) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 19 08 11 02 13 80 70 12 02 13 40 70 16 01 13 00 70 11 01 13 80 70 7F",
                          kToShiftIr +
                              "tdi:10. tms:10 rest "                              // to IR pause
                              "tms:111010 rest tms:10 rest tdi:01. tms:10 rest "  // DR pause, shift DR and back
                              "tms:10 rest tdi:0. tms:10 rest "                   //
                              "tms:1111010 rest tms:10 rest tdi:1." +
                              kOut));
}

TEST(VmeShiftCommands, SendTheLastTdiDataAgainWithoutNewOnes) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 19 08 12 08 13 A5 70 12 08 70 11 04 70 7F",
                          kToShiftDr +
                              "tdi:10100101. tms:10 rest tms:10 rest tdi:10100101. tms:10 rest "
                              "tms:1111010 rest tms:10 rest tdi:1010." +
                              kOut));
  VmeTrace fresh;
  EXPECT_TRUE(fresh.Plays("F2 19 08 12 08 70 7F", kToShiftDr + "tdi:00000000." + kOut));
}

// Headers and trailers: 101, 01, 110 and 0111.
const std::string kFrame = "06 03 13 A0 70  07 02 13 40 70  08 03 13 C0 70  09 04 13 70 70 ";

TEST(VmeShiftCommands, PutHeaderAndTrailerAroundTheData) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 19 08" + kFrame + "11 04 13 C0 70 7F",
                          kToShiftIr + "tdi:101. pulse tdi:1100. pulse tdi:01." + kOut));
  EXPECT_TRUE(trace.Plays("F2 19 08" + kFrame + "12 04 13 C0 70 7F",
                          kToShiftDr + "tdi:110. pulse tdi:1100. pulse tdi:0111." + kOut));
  EXPECT_TRUE(trace.Plays("F2 19 08" + kFrame + "16 04 13 C0 70 7F",
                          kToShiftDr + "tdi:110. pulse tdi:1100. pulse tdi:0111." + kOut));
}

TEST(VmeShiftCommands, PutHeaderAndTrailerAroundNoDataToo) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 19 08" + kFrame + "12 00 70 7F", kToShiftDr + "tdi:110. pulse pulse tdi:0111." + kOut));
}

TEST(VmeShiftCommands, HaveNoHeaderOfSizeZero) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 19 08" + kFrame + "06 00 07 00 08 00 09 00 11 04 13 C0 70 12 04 13 C0 70 7F",
                          kToShiftIr + "tdi:1100. tms:10 rest tms:111010 rest tms:10 rest tdi:1100." + kOut));
}

TEST(VmeShiftCommands, DropTheOpcodeInFrontOfHeaderDataUnread) {
  VmeTrace trace;
  for (const char* opcode : {"13", "00", "14", "70", "99", "FF"})
    EXPECT_TRUE(trace.Plays(std::string("F2 19 08 06 03") + opcode + "A0 70 11 04 13 C0 70 7F",
                            kToShiftIr + "tdi:101. pulse tdi:1100." + kOut))
        << opcode;
}

TEST(VmeShiftCommands, NeedContinueBehindHeaderData) {
  for (const char* opcode : {"06", "07", "08", "09"}) {
    for (const char* end : {"71", "00", "13", "7F", "F0", "FF"}) {
      VmeTrace trace;
      EXPECT_TRUE(trace.Plays(std::string("F2") + opcode + "03 13 A0" + end + "7F", "enter leave:6 =-4"))
          << opcode << " " << end;
    }
  }
}

TEST(VmeShiftCommands, ReadHeaderDataPlainInACompressedFile) {
  VmeTrace trace;
  EXPECT_TRUE(
      trace.Plays("F1 19 10"
                  "06 10 13 01 00 70  07 08 13 03 70  08 08 13 FF 70  09 08 13 55 70"
                  "11 10 13 01 00 01 70  12 08 13 00 C3 70 7F",
                  kToShiftIr +
                      "tdi:0000000100000000. pulse tdi:0000000000000000. pulse tdi:00000011. tms:10 rest "
                      "tms:111010 rest tms:10 rest tdi:11111111. pulse tdi:11000011. pulse tdi:01010101." +
                      kOut));
}

TEST(VmeShiftCommands, TakeHeadersLongerThanTheirBuffersWereBefore) {
  VmeTrace trace;
  EXPECT_TRUE(
      trace.Plays("F2 19 08 06 02 13 80 70 06"
                  "C8 01 13" +
                      Times(25, "A5") + "70 11 01 13 80 70 7F",
                  kToShiftIr + "tdi:" + Times(25, "10100101") + ". pulse tdi:1." + kOut));
}

TEST(VmeShiftCommands, OfDataStayInAShiftStateThatTheTapIsIn) {
  // A header is for those that come from the pause alone.
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 19 08" + kFrame + "10 03 10 05 12 04 13 C0 70 7F",
                          "enter tms:01010 rest tms:10 rest tdi:1100. pulse tdi:0111." + kOut));
}

TEST(VmeShiftCommands, InACascadeAreOneLongShiftOfData) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 19 08" + kFrame +
                              "10 03  30 02  12 04 13 C0 70  16 04 13 30 70  12 01 13 80 70"
                              "31 02  12 04 13 A0 70  7F",
                          "enter tms:01010 rest tms:10 rest tdi:110. pulse "
                          "tdi:1100 tdi:0011 tdi:1 tdi:1010. pulse tdi:0111." +
                              kOut));
}

TEST(VmeShiftCommands, InACascadeCompareWithEveryBitClocked) {
  VmeTrace trace("11000011");
  EXPECT_TRUE(trace.Plays("F2 19 08 10 03 30 02 12 04 13 50 14 C0 70 31 02 12 04 13 A0 14 30 70 7F",
                          "enter tms:01010 rest tms:10 rest io:1100/0101 io:0011/1010." + kOut));
}

TEST(VmeShiftCommands, OfDataInACascadeHaveNoHeaderButFromTheDrPause) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 19 08" + kFrame + "10 02 30 02 12 04 13 C0 70 7F",
                          "enter tms:011010 rest tms:11100 rest tdi:1100 leave:5 =0"));
}

TEST(VmeShiftCommands, LeftOpenByACascadeAreClosedByTheReset) {
  VmeTrace trace;
  EXPECT_TRUE(
      trace.Plays("F2 19 08 10 03 30 02 12 04 13 50 70 7F", "enter tms:01010 rest tms:10 rest tdi:0101 leave:5 =0"));
  EXPECT_TRUE(trace.Plays("F2 12 04 13 50 70 7F", kToShiftDr + "tdi:0101." + kOut)) << "the next file has no cascade";
}

TEST(VmeShiftCommands, OfAnInstructionInACascadeMoveToTheShiftStateAlone) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 19 08" + kFrame + "10 02 30 02 11 04 13 C0 70 11 04 13 30 70 7F",
                          "enter tms:011010 rest tms:10 rest tdi:1100 tdi:0011 leave:5 =0"));
  // The one that ends it goes by way of the pause, with a header again.
  EXPECT_TRUE(trace.Plays("F2 19 08 10 02 30 02 11 04 13 C0 70 31 02 11 04 13 30 70 7F",
                          "enter tms:011010 rest tms:10 rest tdi:1100 "
                          "tms:10 rest tms:10 rest tdi:101. pulse tdi:0011. pulse tdi:01." +
                              kOut));
}

TEST(VmeShiftCommands, InACascadeIgnoreTheEndStates) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 19 08 02 04 03 05 10 03 30 02 12 04 13 50 70 7F",
                          "enter tms:01010 rest tms:10 rest tdi:0101 leave:5 =0"));
}

TEST(VmeShiftCommands, WithoutAWayAreFileErrorsAndResetAllTheSame) {
  struct {
    const char* codes;
    const char* words;
  } constexpr kCases[] = {
      // a cascade from reset and from idle
      {"30 02 12 04 13 C0 70", "enter leave:6 =-4"},
      {"30 02 16 04 13 C0 70", "enter leave:6 =-4"},
      {"30 02 11 04 13 C0 70", "enter leave:6 =-4"},
      {"10 01 30 02 12 04 13 C0 70", "enter tms:0 rest leave:3 =-4"},
      {"10 01 30 02 11 04 13 C0 70", "enter tms:0 rest leave:3 =-4"},
      {"10 03 30 02 11 04 13 C0 70", "enter tms:01010 rest leave:5 =-4"},
      // from one open cascade to the other
      {"10 03 10 05 11 04 13 C0 70", "enter tms:01010 rest tms:10 rest leave:5 =-4"},
      {"10 03 10 05 30 02 11 04 13 C0 70", "enter tms:01010 rest tms:10 rest leave:5 =-4"},
      {"10 02 10 04 12 04 13 C0 70", "enter tms:011010 rest tms:10 rest leave:5 =-4"},
      {"10 02 10 04 30 02 12 04 13 C0 70", "enter tms:011010 rest tms:10 rest leave:5 =-4"},
  };
  for (const auto& shift : kCases) {
    VmeTrace trace;
    EXPECT_TRUE(trace.Plays("F2 19 08" + std::string(shift.codes) + "1B 01 7F", shift.words)) << shift.codes;
    EXPECT_EQ(trace.player.port.tapState(), kTapReset);
  }
}

TEST(VmeShiftCommands, MarkTheCommandThatRuns) {
  VmeTrace trace;
  constexpr int kCommandBits = 0x0007;
  trace.Play("F2 19 08 11 04 13 C0 70 7F");
  EXPECT_EQ(trace.player.interpreter.dataType & kCommandBits, 0x0002);
  trace.Play("F2 19 08 11 04 13 C0 70 12 04 13 C0 70 7F");
  EXPECT_EQ(trace.player.interpreter.dataType & kCommandBits, 0x0004);
  trace.Play("F2 19 08 12 04 13 C0 70 16 04 13 C0 70 7F");
  EXPECT_EQ(trace.player.interpreter.dataType & kCommandBits, 0x0005);
}

}  // namespace
