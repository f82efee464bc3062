#include <gtest/gtest.h>

#include <string>

#include "board/VmeInterpreter.h"
#include "support/VmeTrace.h"

namespace {

using test_support::HexBytes;
using test_support::VmeTrace;

const std::string kToShiftDr = "enter tms:01010 rest tms:10 rest ";
const std::string kBack = " tms:10 rest tms:10 rest ";
const std::string kOut = " tms:10 rest leave:5 =0";

TEST(VmeReadModifyWrite, SendsTdiWhereDmaskHasOnesAndWhatCameInElsewhere) {
  VmeTrace trace("01011010");
  EXPECT_TRUE(trace.Plays("F2 19 08 12 08 13 A5 62 F0 70 7F",
                          kToShiftDr + "io:01011010/10100101." + kBack + "tdi:10101010." + kOut));
}

TEST(VmeReadModifyWrite, PutsHeaderAndTrailerAroundBothShifts) {
  VmeTrace trace("01011010");
  EXPECT_TRUE(trace.Plays("F2 19 08 08 02 13 80 70 09 03 13 60 70 12 08 13 A5 62 F0 70 7F",
                          "enter "
                          "tms:01010 rest tms:10 rest "  // DR pause, shift DR
                          "tdi:10. pulse "               // header
                          "io:01011010/10100101. "       // read
                          "pulse tdi:011. "              // trailer
                          "tms:10 rest tms:10 rest "     // DR pause, shift DR
                          "tdi:10. pulse "               // header
                          "tdi:10101010. "               // write
                          "pulse tdi:011. "              // trailer
                          "tms:10 rest "                 // DR pause
                          "leave:5 =0"));
}

TEST(VmeReadModifyWrite, OfNineBitsTakesTwoBytes) {
  VmeTrace trace("010110101");
  EXPECT_TRUE(trace.Plays("F2 19 10 16 09 13 00 00 62 0F 00 70 7F",
                          kToShiftDr + "io:010110101/000000000." + kBack + "tdi:010100001." + kOut));
}

TEST(VmeReadModifyWrite, HasItsTrailerInACascadeToo) {
  VmeTrace trace("01011010");
  EXPECT_TRUE(trace.Plays("F2 19 08 08 02 13 80 70 09 03 13 60 70 10 03 30 02 12 08 13 A5 62 F0 70 7F",
                          kToShiftDr + "tdi:10. pulse io:01011010/10100101. pulse tdi:011." + kBack +
                              "tdi:10. pulse tdi:10101010 leave:5 =0"))
      << "the read leaves its last bit without a clock, the write does not";
}

TEST(VmeReadModifyWrite, ComesBeforeACompare) {
  VmeTrace trace("01011010");
  EXPECT_TRUE(trace.Plays("F2 19 08 61 12 08 13 A5 14 FF 62 F0 70 7F",
                          kToShiftDr + "io:01011010/10100101." + kBack + "tdi:10101010." + kOut));
  EXPECT_EQ(trace.player.interpreter.flowControl, 0x0200) << "nothing was compared";
}

TEST(VmeReadModifyWrite, LeavesNeitherDmaskNorTdoBehind) {
  VmeTrace trace("01011010");
  trace.Play("F2 19 08 12 08 13 A5 14 FF 15 FF 62 F0 70 7F");
  EXPECT_EQ(trace.player.interpreter.dataType, 0x0054) << "SDR, TDI and MASK";
}

TEST(VmeReadModifyWrite, SaysWhatTheNextXtdoIsComparedWith) {
  VmeTrace trace("0101101010101010");
  EXPECT_TRUE(trace.Plays(
      "F2 19 08 12 08 13 A5 62 F0 70 12 08 13 00 18 70 7F",
      kToShiftDr + "io:01011010/10100101." + kBack + "tdi:10101010." + kBack + "io:10101010/00000000." + kOut));
}

TEST(VmeReadModifyWrite, AlsoWritesTheByteBehindWholeBytes) {
  VmeTrace trace("01011010");
  const VmeInterpreter& vme = trace.player.interpreter;
  // An instruction leaves TDI 11 22 and TDO 3C 5E.
  const std::string instruction = "F2 19 10 11 10 13 11 22 14 3C 5E 15 00 00 70 ";
  trace.Play(instruction + "12 08 13 A5 62 F0 70 7F");
  EXPECT_EQ(vme.tdiData[1], 0x5E);
  trace.Play(instruction + "12 07 13 A5 62 F0 70 7F");
  EXPECT_EQ(vme.tdiData[1], 0x22);
}

TEST(VmeReadModifyWrite, WithoutTdiInTheBlockReadsWithZeros) {
  VmeTrace trace(
      "00000000"
      "01011010");
  EXPECT_TRUE(trace.Plays(
      "F2 19 08 12 08 13 A5 14 00 70 12 08 62 F0 70 7F",
      kToShiftDr + "io:00000000/10100101." + kBack + "io:01011010/00000000." + kBack + "tdi:00001010." + kOut));
}

TEST(VmeReadModifyWrite, WithoutTdiInAnyFileSendsWhatCameIn) {
  VmeTrace trace("01011010");
  EXPECT_TRUE(
      trace.Plays("F2 19 08 12 08 62 00 70 7F", kToShiftDr + "io:01011010/00000000." + kBack + "tdi:01011010." + kOut));
}

TEST(VmeReadModifyWrite, OfAnInstructionHasNoWayToTheDrPause) {
  VmeTrace trace("01011010");
  EXPECT_TRUE(trace.Plays("F2 19 08 11 08 13 A4 62 F0 70 7F",
                          "enter tms:011010 rest tms:10 rest io:01011010/10100100. leave:5 =-4"));
}

TEST(VmeReadModifyWrite, ReadsThePlainMaskOfALoopFromTheFile) {
  VmeTrace trace("01011010");
  // The loop: 12 08 13 A5 62 55 70 59, where 55 sends for F0 and 0F in the file.
  EXPECT_TRUE(trace.Plays("F2 19 08 32 60 08 33 02 12 08 13 A5 62 55 70 59 F0 0F 7F",
                          kToShiftDr + "io:01011010/10100101." + kBack + "tdi:10101010." + kBack +
                              "io:00000000/10100101." + kBack + "tdi:00000101." + kOut));
}

}  // namespace
