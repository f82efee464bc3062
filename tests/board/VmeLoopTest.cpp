#include <gtest/gtest.h>

#include <string>

#include "board/VmeInterpreter.h"
#include "support/VmeTrace.h"

namespace {

using test_support::HexBytes;
using test_support::Times;
using test_support::VmeTrace;

const std::string kToShiftDr = "enter tms:01010 rest tms:10 rest ";
const std::string kAgain = " tms:10 rest tms:10 rest ";
const std::string kOut = " tms:10 rest leave:5 =0";

TEST(VmeLoops, PlayTheHeapAsOftenAsTold) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 32 60 03 33 00 1B 01 59 7F", "enter leave:6 =0"));
  EXPECT_TRUE(trace.Plays("F2 32 60 03 33 01 1B 01 59 7F", "enter pulse leave:6 =0"));
  EXPECT_TRUE(trace.Plays("F2 32 60 03 33 03 1B 01 59 7F", "enter pulse:3 leave:6 =0"));
  EXPECT_TRUE(trace.Plays("F2 32 60 03 33 80 01 1B 01 59 7F", "enter pulse:128 leave:6 =0"));
}

TEST(VmeLoops, PlayTheLargestCount) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 32 60 01 33 FF FF 03 59 1B 01 7F", "enter pulse leave:6 =0"));
  EXPECT_EQ(trace.player.interpreter.repeatLoops, 65535);
}

TEST(VmeLoops, GoOnWithTheFileBehindTheHeap) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 32 60 03 33 02 1B 01 59 1B 03 32 60 02 33 02 61 59 1B 01 7F",
                          "enter pulse:2 pulse:3 pulse leave:6 =0"));
  EXPECT_EQ(trace.player.interpreter.dataType & 0x0080, 0);
  EXPECT_EQ(trace.player.interpreter.flowControl, 0x0200) << "the loop is over, its VUES is not";
}

TEST(VmeLoops, EndAPassAlsoWithTheOtherEnds) {
  for (const char* end : {"59", "7F", "FF"}) {
    VmeTrace trace;
    EXPECT_TRUE(
        trace.Plays(std::string("F2 32 60 04 33 03 1B 01") + end + "59 1B 02 7F", "enter pulse:3 pulse:2 leave:6 =0"))
        << end;
  }
}

TEST(VmeLoops, CanUseTheSameHeapAgain) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 32 60 03 33 01 1B 01 59 33 02 1B 02 59 7F", "enter pulse pulse:4 leave:6 =0"));
}

TEST(VmeLoops, ReadHeapBytesOfAnyValue) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 19 18 32 60 09 33 01 12 18 13 FF 80 59 70 FF 59 7F",
                          kToShiftDr + "tdi:111111111000000001011001." + kOut));
}

TEST(VmeLoops, WhoseHeapDoesNotEndWithEndloopAreFileErrors) {
  VmeTrace trace;
  for (const char* last : {"7F", "FF", "00", "58", "5A", "D9"})
    EXPECT_TRUE(trace.Plays(std::string("F2 32 60 03 33 01 59 59") + last + "59 7F", "enter leave:6 =-4")) << last;
  EXPECT_TRUE(trace.Plays("F2 32 60 03 33 00 1B 01 7F 7F", "enter leave:6 =-4")) << "with no pass as well";
  EXPECT_TRUE(trace.Plays("F2 32 60 03 33 01 1B 01", "enter eof leave:6 =-4")) << "the end is no 59";
}

TEST(VmeLoops, WithoutAHeapAreFileErrors) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 33 01 59 7F", "enter leave:6 =-4"));
  EXPECT_TRUE(trace.Plays("F2 32 60 00 33 01 59 7F", "enter leave:6 =-4"));
}

TEST(VmeLoops, NeedTheCheckByteOfAHeap) {
  VmeTrace trace;
  for (const char* check : {"5F", "61", "00", "E0", "33", "FF"})
    EXPECT_TRUE(trace.Plays(std::string("F2 32") + check + "03 33 01 1B 01 59 7F", "enter leave:6 =-4")) << check;
}

TEST(VmeLoops, ThatAreNotPlayedLeaveTheCheckByteAsTheCode) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 32 60 03 7F", "enter leave:6 =96"));
  EXPECT_TRUE(trace.Plays("F2 32 60 03 59", "enter leave:6 =96"));
  EXPECT_TRUE(trace.Plays("F2 32 60 03 FF", "enter leave:6 =96"));
  EXPECT_TRUE(trace.Plays("F2 32 60 03", "enter eof leave:6 =96"));
  // These have no code of their own.
  EXPECT_TRUE(trace.Plays("F2 32 60 03 02 03 03 02 0B E8 07 19 08 1B 01 23 01 24 01 30 00 31 00 56 01 61 7F",
                          "enter pulse leave:6 =96"));
  EXPECT_TRUE(trace.Plays("F2 32 60 03 1A 00 10 01 7F", "enter D3 0% tms:0 rest tms:111 rest D3 off =96"));
}

TEST(VmeLoops, CheckByteIsGoneWithTheNextCode) {
  VmeTrace trace;
  for (const char* codes : {"06 00", "07 00", "08 00", "09 00", "06 01 13 80 70", "33 00 1B 01 59"})
    EXPECT_EQ(trace.Play(std::string("F2 32 60 03") + codes + "7F"), 0) << codes;
  for (const char* codes : {"11 00 70", "12 00 70", "16 00 70"})
    EXPECT_EQ(trace.Play(std::string("F2 32 60 03") + codes + "7F"), 0) << codes;
  EXPECT_EQ(trace.Play("F2 32 60 03 33 00 1B 01 59 32 60 03 7F"), 96);
}

// A loop of one compare with FF: 12 08 14 FF 70 59.
const std::string kCompareLoop = "19 08 32 60 06 33 03 12 08 14 FF 70 59 ";
const std::string kPass = "io:11111111/00000000.";
const std::string kFail = "io:00000000/00000000.";

TEST(VmeLoops, EndWithTheFirstFailedCompare) {
  VmeTrace trace(Times(8, "1") + "0");
  EXPECT_TRUE(
      trace.Plays("F2" + kCompareLoop + "1B 01 7F", kToShiftDr + kPass + kAgain + kFail + " tms:10 rest leave:5 =-1"));
  trace.recorder.AnswerTdo("1");
  EXPECT_TRUE(trace.Plays("F2" + kCompareLoop + "1B 01 7F",
                          kToShiftDr + kPass + kAgain + kPass + kAgain + kPass + " tms:10 rest pulse leave:5 =0"));
}

TEST(VmeLoops, EndWithTheFirstFileError) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 32 60 04 33 03 1B 01 00 59 1B 02 7F", "enter pulse leave:6 =-4"));
  EXPECT_TRUE(trace.Plays("F2 32 60 04 33 03 1B 01 80 59 1B 02 7F", "enter pulse leave:6 =-4"));
}

// The same with VUES: 61 12 08 14 FF 70 1B 01 59.
const std::string kUserCodeLoop = "19 08 32 60 09 33 03 61 12 08 14 FF 70 1B 01 59 ";
const std::string kSame = kPass + " 'USERCODE verification passed.  Programming aborted. \\n\\n' tms:10 rest ";
const std::string kOther =
    kFail + " 'USERCODE verification failed.  Continue programming......\\n\\n' tms:10 rest pulse ";

TEST(VmeLoops, GoOnWhenAPassFindsItsUserCode) {
  VmeTrace trace("1");
  EXPECT_TRUE(trace.Plays("F2" + kUserCodeLoop + "1B 02 7F",
                          kToShiftDr + kSame + "tms:10 rest " + kSame + "tms:10 rest " + kSame + "leave:5 =1"))
      << "the code ends its pass, and of the last pass the file";
}

TEST(VmeLoops, ReturnTheCodeOfTheLastPass) {
  VmeTrace trace(Times(16, "1") + "0");
  EXPECT_TRUE(trace.Plays("F2" + kUserCodeLoop + "1B 02 7F", kToShiftDr + kSame + "tms:10 rest " + kSame +
                                                                 "tms:10 rest " + kOther + "pulse:2 leave:5 =0"));
  trace.recorder.AnswerTdo(Times(16, "0") + "1");
  EXPECT_TRUE(trace.Plays("F2" + kUserCodeLoop + "1B 02 7F",
                          kToShiftDr + kOther + "tms:10 rest " + kOther + "tms:10 rest " + kSame + "leave:5 =1"));
}

TEST(VmeLoops, CountTheirPassesFromZeroAgain) {
  VmeTrace trace;
  trace.Play("F2 32 60 01 33 05 59 33 02 59 7F");
  EXPECT_EQ(trace.player.interpreter.repeatLoops, 2);
  trace.Play("F2 32 60 01 33 00 59 7F");
  EXPECT_EQ(trace.player.interpreter.repeatLoops, 0);
}

TEST(VmeLoops, ForgetThePendingAmount) {
  VmeTrace trace;
  trace.Play("F2 32 60 01 33 05 59 23 02 7F");
  ASSERT_EQ(trace.player.interpreter.shiftValue, 10);
  trace.Play("F2 33 01 59 7F");
  EXPECT_EQ(trace.player.interpreter.shiftValue, 0);
}

TEST(VmeLoops, SayThatTheyRun) {
  VmeTrace trace;
  // A power cut shows the state in the middle.
  trace.recorder.CutPowerAt(27);
  EXPECT_THROW(trace.Play("F2 32 60 03 33 02 1B 01 59 7F"), test_support::PowerCut);
  EXPECT_EQ(trace.player.interpreter.flowControl, 0x0008);
  EXPECT_EQ(trace.player.interpreter.dataType, 0x0080);
}

TEST(VmeLoops, TakeDataFromTheFileBehindAnEscape) {
  VmeTrace trace;
  // 12 08 13 55 70 59: each pass has the next byte of the file.
  EXPECT_TRUE(trace.Plays("F2 19 08 32 60 06 33 03 12 08 13 55 70 59 A5 55 0F 7F",
                          kToShiftDr + "tdi:10100101." + kAgain + "tdi:01010101." + kAgain + "tdi:00001111." + kOut));
  // In a compressed file with the kind.
  EXPECT_TRUE(trace.Plays("F1 19 10 32 60 06 33 02 12 10 13 55 70 59 00 A5 55 02 FF 01 7F",
                          kToShiftDr + "tdi:1010010101010101." + kAgain + "tdi:1111111111111111." + kOut));
}

TEST(VmeLoops, TakeHeaderDataFromTheFileBehindAnEscapeAlsoWhenTheFileIsCompressed) {
  VmeTrace trace;
  // 06 10 13 A5 55 70 12 ... : the second byte of the header stands in the file.
  EXPECT_TRUE(trace.Plays("F1 19 08 32 60 0D 33 01 06 10 13 A5 55 70 11 08 13 00 C3 70 59 3C 7F",
                          "enter tms:011010 rest tms:10 rest tdi:1010010100111100. pulse tdi:11000011." + kOut));
}

TEST(VmeLoops, InALoopAreFileErrors) {
  VmeTrace trace;
  // 1B 01 33 01 1B 01 59: the inner loop's text ends with the heap.
  EXPECT_TRUE(trace.Plays("F2 32 60 07 33 02 1B 01 33 01 1B 01 59 7F", "enter pulse leave:6 =-4"));
}

TEST(VmeLoops, ThatReplaceTheirOwnHeapRunIntoItsEnd) {
  VmeTrace trace;
  // 1B 01 32 60 01 59: at the place where it goes on a heap of one byte is over. The next pass finds zeros.
  EXPECT_TRUE(trace.Plays("F2 32 60 06 33 01 1B 01 32 60 01 59 7F", "enter pulse leave:6 =96"));
  EXPECT_TRUE(trace.Plays("F2 32 60 06 33 02 1B 01 32 60 01 59 7F", "enter pulse leave:6 =-4"));
  // A longer one has zeros there.
  EXPECT_TRUE(trace.Plays("F2 32 60 06 33 02 1B 01 32 60 20 59 7F", "enter pulse leave:6 =-4"));
}

TEST(VmeLoops, RunOverTheLastByteOfTheHeapIntoAZero) {
  VmeTrace trace;
  // 1B 01 02 59: ENDDR takes the 59, and there is no opcode 0.
  EXPECT_TRUE(trace.Plays("F2 32 60 04 33 02 1B 01 02 59 7F", "enter pulse leave:6 =-4"));
  EXPECT_EQ(trace.player.interpreter.endDR, 0x59);
}

TEST(VmeLoops, OfTheLargestHeapEnd) {
  VmeTrace trace;
  const std::string filler = Times(32766, "56 07");  // 65532 bytes without an effect
  EXPECT_TRUE(
      trace.Plays("F2 32 60 FF FF 03 33 02" + filler + "1B 01 59 1B 02 7F", "enter pulse:2 pulse:2 leave:6 =0"));
  // Over the last byte, with a number; with a header; with data that are longer than the rest.
  EXPECT_TRUE(trace.Plays("F2 32 60 FF FF 03 33 02" + filler + "19 81 59 7F", "enter leave:6 =-4"));
  EXPECT_TRUE(trace.Plays("F2 32 60 FF FF 03 33 02" + filler + "06 08 59 7F", "enter leave:6 =-4"));
  EXPECT_TRUE(trace.Plays("F2 32 60 FF FF 03 33 02" + filler + "06 7F 59 7F", "enter leave:6 =-4"));
}

}  // namespace
