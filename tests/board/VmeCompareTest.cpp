#include <gtest/gtest.h>

#include <string>

#include "board/VmeInterpreter.h"
#include "support/VmeTrace.h"

namespace {

using test_support::Times;
using test_support::VmeTrace;

const std::string kToShiftDr = "enter tms:01010 rest tms:10 rest ";
const std::string kAgain = " tms:10 rest tms:10 rest ";
const std::string kOut = " tms:10 rest leave:5 =0";
const std::string kOutFailed = " tms:10 rest leave:5 =-1";

TEST(VmeCompare, ThatFailsEndsTheFileBehindItsShift) {
  VmeTrace trace("0");
  EXPECT_TRUE(trace.Plays("F2 19 08 09 02 13 40 70 12 08 13 A5 14 01 70 1B 01 7F",
                          kToShiftDr + "io:00000000/10100101. pulse tdi:01." + kOutFailed));
  EXPECT_TRUE(trace.Plays("F2 19 08 11 08 13 A5 14 80 70 1B 01 7F",
                          "enter tms:011010 rest tms:10 rest io:00000000/10100101." + kOutFailed));
  EXPECT_TRUE(trace.Plays("F2 19 08 10 03 30 02 12 08 13 A5 14 80 70 1B 01 7F",
                          kToShiftDr + "io:00000000/10100101 leave:5 =-1"));
}

TEST(VmeCompare, OfXtdoIsWithWhatWasShiftedInBefore) {
  VmeTrace trace;
  const std::string shifted = "F2 19 08 12 08 13 A5 14 00 15 00 70 12 08 13 5A 18 70 7F";
  trace.recorder.AnswerTdo("0000000010100101");
  EXPECT_TRUE(trace.Plays(shifted, kToShiftDr + "io:00000000/10100101." + kAgain + "io:10100101/01011010." + kOut));
  trace.recorder.AnswerTdo("0000000010100100");
  EXPECT_TRUE(
      trace.Plays(shifted, kToShiftDr + "io:00000000/10100101." + kAgain + "io:10100100/01011010." + kOutFailed));
}

TEST(VmeCompare, OfXtdoFollowsEachShiftOnceThereAreTdoData) {
  VmeTrace trace("000000000101101011000011");
  EXPECT_TRUE(trace.Plays("F2 19 08 16 08 13 5A 14 00 70 16 08 13 C3 18 70 12 08 13 00 18 70 7F",
                          kToShiftDr + "io:00000000/01011010." + kAgain + "io:01011010/11000011." + kAgain +
                              "io:11000011/00000000." + kOut));
}

TEST(VmeCompare, OfXtdoWithoutTdoDataIsWithZeros) {
  VmeTrace trace("0");
  EXPECT_TRUE(trace.Plays("F2 19 08 12 08 13 A5 70 12 08 13 5A 18 70 7F",
                          kToShiftDr + "tdi:10100101." + kAgain + "io:00000000/01011010." + kOut));
}

TEST(VmeCompare, OfXtdoStaysTheSameWithoutNewTdiData) {
  VmeTrace trace("000000001010010110100101");
  EXPECT_TRUE(trace.Plays("F2 19 08 12 08 13 A5 14 00 70 12 08 18 70 12 08 18 70 7F",
                          kToShiftDr + "io:00000000/10100101." + kAgain + "io:10100101/00000000." + kAgain +
                              "io:10100101/00000000." + kOut));
}

TEST(VmeCompare, OfXtdoIsWithZerosAfterMemHadAnotherSize) {
  const std::string made = "F2 19 08 12 08 13 A5 14 00 70 19 10 12 08 ";
  const std::string first = kToShiftDr + "io:00000000/10100101." + kAgain;
  VmeTrace trace("0");
  EXPECT_TRUE(trace.Plays(made + "18 13 5A 70 7F", first + "io:00000000/01011010." + kOut))
      << "XTDO makes its buffer anew, and what was promised is gone";
  VmeTrace other("0000000010100101");
  EXPECT_TRUE(other.Plays(made + "13 5A 18 70 7F", first + "io:10100101/01011010." + kOut))
      << "behind TDI, which has the new size already, it stays";
}

TEST(VmeCompare, OfXtdoIsNotWithWhatAnInstructionShiftedIn) {
  VmeTrace trace("0000000000111100");
  EXPECT_TRUE(trace.Plays("F2 19 08 11 08 13 A5 14 3C 15 00 70 12 08 13 5A 18 70 7F",
                          "enter tms:011010 rest tms:10 rest io:00000000/10100101. tms:10 rest "
                          "tms:111010 rest tms:10 rest io:00111100/01011010." +
                              kOut));
}

TEST(VmeCompare, OfXtdoAlsoHasTheByteBehindWholeBytes) {
  // Eight bits take two bytes of TDI along: F0, and the 22 of the shift before it.
  VmeTrace trace(Times(16, "0") + "1111000000100010");
  EXPECT_TRUE(trace.Plays("F2 19 10 11 10 13 11 22 14 3C 5E 15 00 00 70 12 08 13 F0 70 12 10 13 00 00 18 70 7F",
                          "enter tms:011010 rest tms:10 rest io:0000000000000000/0001000100100010. tms:10 rest "
                          "tms:111010 rest tms:10 rest tdi:11110000." +
                              kAgain + "io:1111000000100010/0000000000000000." + kOut));
  // Seven bits take one.
  VmeTrace shorter(Times(16, "0") + "1111000001011110");
  EXPECT_TRUE(shorter.Plays("F2 19 10 11 10 13 11 22 14 3C 5E 15 00 00 70 12 07 13 F0 70 12 10 13 00 00 18 70 7F",
                            "enter tms:011010 rest tms:10 rest io:0000000000000000/0001000100100010. tms:10 rest "
                            "tms:111010 rest tms:10 rest tdi:1111000." +
                                kAgain + "io:1111000001011110/0000000000000000." + kOut));
}

TEST(VmeCompare, OfTheUserCodeStopsWhenItIsEqual) {
  VmeTrace trace("10100101");
  EXPECT_TRUE(trace.Plays("F2 19 08 61 12 08 13 00 14 A5 70 1B 01 7F",
                          kToShiftDr +
                              "io:10100101/00000000. 'USERCODE verification passed.  Programming aborted. \\n\\n' "
                              "tms:10 rest leave:5 =1"));
}

TEST(VmeCompare, OfTheUserCodeGoesOnWhenItDiffers) {
  VmeTrace trace("10100100");
  EXPECT_TRUE(trace.Plays("F2 19 08 61 12 08 13 00 14 A5 70 1B 01 12 08 13 00 14 FF 70 1B 01 7F",
                          kToShiftDr +
                              "io:10100100/00000000. 'USERCODE verification failed.  Continue programming......\\n\\n' "
                              "tms:10 rest pulse tms:10 rest io:00000000/00000000." +
                              kOutFailed))
      << "and the next compare is one like others";
}

TEST(VmeCompare, OfTheUserCodeWaitsForDataToCompare) {
  VmeTrace trace("1");
  EXPECT_TRUE(trace.Plays("F2 19 08 61 12 08 13 A5 70 12 00 14 70 12 08 13 00 14 FF 70 7F",
                          kToShiftDr + "tdi:10100101." + kAgain + kAgain +
                              "io:11111111/00000000. 'USERCODE verification passed.  Programming aborted. \\n\\n' "
                              "tms:10 rest leave:5 =1"));
}

TEST(VmeCompare, OfTheUserCodeIsForgottenWithTheFile) {
  VmeTrace trace("1");
  EXPECT_TRUE(trace.Plays("F2 61 7F", "enter leave:6 =0"));
  EXPECT_TRUE(trace.Plays("F2 19 08 12 08 13 00 14 FF 70 7F", kToShiftDr + "io:11111111/00000000." + kOut));
}

// Vendor 3. The TAP is in shift DR for the first retry, and in idle for all further ones.
const std::string kCompareCodes = "12 08 13 A5 14 FF 70 7F";
const std::string kCompare = "io:00000000/10100101. ";
const std::string kFromShift = "tms:10 rest tms:110 rest ";
const std::string kFromIdle = "tms:1010 rest tms:110 rest ";

TEST(VmeRetries, AreThirtyForVendorThree) {
  VmeTrace trace("0");
  std::string words = kToShiftDr + kCompare;
  words += kCompare + kFromShift + "D3 0% ";         // 1
  words += Times(18, kCompare + kFromIdle + "D3 ");  // 2 to 19
  words += kCompare + kFromIdle + "D3 10% ";         // 20
  words += Times(10, kCompare + kFromIdle + "D3 ");  // 21 to 30
  words += "tms:1010 rest tms:11111 rest D3 off =-1";
  EXPECT_TRUE(trace.Plays("F2 19 08 56 03" + kCompareCodes, words));
}

TEST(VmeRetries, EndWithTheFirstCompareThatPasses) {
  for (std::size_t k = 1; k <= 30; ++k) {
    VmeTrace trace(Times(8 * k, "0") + "1");
    std::string words = kToShiftDr + kCompare;
    for (std::size_t i = 1; i < k; ++i)
      words += kCompare + (i == 1 ? kFromShift : kFromIdle) + (i == 1 ? "D3 0% " : i == 20 ? "D3 10% " : "D3 ");
    words += "io:11111111/10100101. ";
    // The end state, from where the retries left the TAP.
    words += k == 1    ? "tms:10 rest leave:5 =0"
             : k == 20 ? "tms:1010 rest tms:11111 rest D3 10% off =0"
                       : "tms:1010 rest tms:11111 rest D3 off =0";
    EXPECT_TRUE(trace.Plays("F2 19 08 56 03" + kCompareCodes, words)) << k;
  }
}

TEST(VmeRetries, EndWithTheThirtieth) {
  VmeTrace trace(Times(8 * 31, "0") + "1");
  EXPECT_EQ(trace.Play("F2 19 08 56 03" + kCompareCodes), -1);
}

TEST(VmeRetries, ShiftTheTrailerInThePauseAndGoByWayOfTheEndState) {
  VmeTrace trace(Times(16, "0") + Times(8, "0") + "1");
  EXPECT_TRUE(trace.Plays("F2 19 08 56 03 09 03 13 60 70 02 02" + kCompareCodes,
                          kToShiftDr + kCompare +                                                       //
                              kCompare + "tms:10 rest tdi:011. tms:1111010 rest tms:110 rest D3 0% " +  //
                              kCompare + "tms:1010 rest tdi:011. tms:1111010 rest tms:110 rest D3 " +   //
                              "io:11111111/10100101. pulse tdi:011. tms:11010 rest tms:11111 rest D3 off =0"));
}

TEST(VmeRetries, ClockTheLastBitInACascade) {
  VmeTrace trace(Times(16, "0") + "1");
  EXPECT_TRUE(trace.Plays("F2 19 08 56 03 10 03 30 02" + kCompareCodes,
                          kToShiftDr + "io:00000000/10100101 io:00000000/10100101 " + kFromShift +
                              "D3 0% io:11111111/10100101 tms:111 rest D3 off =0"));
}

TEST(VmeRetries, AreNotMadeForOtherVendors) {
  for (const char* vendor : {"", "56 01", "56 02", "56 00", "56 03 56 01"}) {
    VmeTrace trace("0");
    EXPECT_TRUE(trace.Plays("F2 19 08" + std::string(vendor) + kCompareCodes,
                            kToShiftDr + "io:00000000/10100101." + kOutFailed))
        << vendor;
  }
}

TEST(VmeRetries, AreMadeInTheFilesBehindAsWell) {
  VmeTrace trace(Times(8, "0") + "1");
  EXPECT_TRUE(trace.Plays("F2 56 03 7F", "enter leave:6 =0"));
  EXPECT_TRUE(trace.Plays("F2 56 07 19 08" + kCompareCodes, kToShiftDr + kCompare + "io:11111111/10100101." + kOut));
}

TEST(VmeRetries, AreNotMadeForAUserCode) {
  VmeTrace trace("0");
  EXPECT_TRUE(
      trace.Plays("F2 19 08 56 03 61" + kCompareCodes,
                  kToShiftDr + kCompare + "'USERCODE verification failed.  Continue programming......\\n\\n'" + kOut));
}

TEST(VmeRetries, OfAnInstructionHaveNoWayToTheDrPause) {
  VmeTrace trace("0");
  EXPECT_TRUE(trace.Plays("F2 19 08 56 03 11 08 13 A4 14 FF 70 7F",
                          "enter tms:011010 rest tms:10 rest io:00000000/10100100. io:00000000/10100100. leave:5 =-4"));
  trace.recorder.AnswerTdo(Times(8, "0") + "1");
  EXPECT_TRUE(trace.Plays("F2 19 08 56 03 11 08 13 A4 14 FF 70 7F",
                          "enter tms:011010 rest tms:10 rest io:00000000/10100100. io:11111111/10100100." + kOut));
}

TEST(VmeRetries, WithoutAWayToTheEndStateAreFileErrors) {
  VmeTrace trace("0");
  EXPECT_TRUE(trace.Plays("F2 19 08 56 03 02 04" + kCompareCodes,
                          kToShiftDr + kCompare + kCompare + "tms:10 rest leave:5 =-4"));
}

}  // namespace
