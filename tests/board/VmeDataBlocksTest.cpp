#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "board/VmeInterpreter.h"
#include "support/VmeTrace.h"

namespace {

using test_support::HexBytes;
using test_support::SameTrace;
using test_support::Times;
using test_support::Trace;
using test_support::VmeFile;
using test_support::VmeTrace;

const std::string kToShiftDr = "enter tms:01010 rest tms:10 rest ";
const std::string kOut = " tms:10 rest leave:5 =0";
/// No bit is shifted.
const std::string kRefused = "leave:5 =-4";

TEST(VmeDataBlocks, OtherOpcodesAreFileErrors) {
  const std::vector<int> kDataOpcodes = {0x13, 0x14, 0x15, 0x18, 0x62, 0x70};
  for (int value = 0; value < 256; ++value) {
    if (std::find(kDataOpcodes.begin(), kDataOpcodes.end(), value) != kDataOpcodes.end()) continue;
    std::vector<std::uint8_t> file = VmeFile("F2 19 08 12 08 00 A5 70 7F");
    file[25] = static_cast<std::uint8_t>(value);
    VmeTrace trace;
    EXPECT_EQ(trace.PlayBytes(file), -4) << value;
    EXPECT_TRUE(SameTrace(trace.text(), Trace(kToShiftDr + kRefused))) << value;

    file = VmeFile("F2 19 08 12 08 13 A5 00 A5 70 7F");
    file[27] = static_cast<std::uint8_t>(value);
    EXPECT_EQ(trace.PlayBytes(file), -4) << value << " behind other data";
    EXPECT_TRUE(SameTrace(trace.text(), Trace(kToShiftDr + kRefused))) << value;
  }
}

TEST(VmeDataBlocks, AreTakenInAnyOrder) {
  VmeTrace trace("00001111");
  for (const char* blocks :
       {"13 A5 14 FF 15 0F", "15 0F 14 FF 13 A5", "14 FF 13 A5 15 0F", "14 00 15 FF 13 11 15 0F 14 FF 13 A5"}) {
    trace.recorder.AnswerTdo("00001111");
    EXPECT_TRUE(
        trace.Plays(std::string("F2 19 08 12 08") + blocks + "70 7F", kToShiftDr + "io:00001111/10100101." + kOut))
        << blocks;
  }
}

TEST(VmeDataBlocks, CountForTheirOwnShiftAlone) {
  VmeTrace trace("0");
  // The second shift has neither TDO nor a mask, the third no mask: it is compared in full.
  EXPECT_TRUE(trace.Plays("F2 19 08 12 08 13 A5 14 FF 15 00 70 12 08 13 C3 70 12 08 13 3C 14 FE 70 7F",
                          kToShiftDr + "io:00000000/10100101. tms:10 rest tms:10 rest tdi:11000011. tms:10 rest "
                                       "tms:10 rest io:00000000/00111100. tms:10 rest leave:5 =-1"));
}

TEST(VmeDataBlocks, OfACompareWithoutTdiSendZeros) {
  VmeTrace trace("1");
  EXPECT_TRUE(trace.Plays("F2 19 08 12 08 13 A5 70 12 08 14 FF 70 7F",
                          kToShiftDr + "tdi:10100101. tms:10 rest tms:10 rest io:11111111/00000000." + kOut));
}

TEST(VmeDataBlocks, FitIntoTheSpareBytesOfTheirBuffersAndNoFurther) {
  VmeTrace trace;
  // MEM 8 makes three bytes.
  EXPECT_TRUE(trace.Plays("F2 19 08 12 18 13 A5 C3 0F 70 7F", kToShiftDr + "tdi:101001011100001100001111." + kOut));
  EXPECT_TRUE(trace.Plays("F2 19 08 12 19 13 A5 C3 0F 80 70 7F", kToShiftDr + kRefused));
  EXPECT_TRUE(trace.Plays("F2 19 08 12 FF FF 03 13 A5 C3 0F 80 70 7F", kToShiftDr + kRefused));
}

TEST(VmeDataBlocks, WithoutMemHaveTwoBytes) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 12 10 13 A5 C3 70 7F", kToShiftDr + "tdi:1010010111000011." + kOut));
  EXPECT_TRUE(trace.Plays("F2 12 11 13 A5 C3 80 70 7F", kToShiftDr + kRefused));
}

TEST(VmeDataBlocks, TooLargeAreRefusedForEachBuffer) {
  for (const char* opcode : {"13", "14", "15", "62", "18"}) {
    VmeTrace trace;
    EXPECT_TRUE(trace.Plays(std::string("F2 19 08 12 20") + opcode + "00 00 00 00 70 7F", kToShiftDr + kRefused))
        << opcode;
  }
}

TEST(VmeDataBlocks, CanBeShorterThanAShiftWithoutTdi) {
  VmeTrace trace;
  EXPECT_TRUE(
      trace.Plays("F2 19 08 12 08 13 FF 70 12 20 70 7F",
                  kToShiftDr + "tdi:11111111. tms:10 rest tms:10 rest tdi:11111111000000000000000000000000." + kOut));
}

TEST(VmeDataBlocks, KeepAShorterBufferWhenAnotherWasTheLastToBeMade) {
  // TDI and TDO are made for 8 bits. For 64 bits TDI is made anew; TDO then looks as if it had that size.
  const std::string made = "F2 19 08 12 08 13 A5 14 00 70 19 40 12 40 13 01 02 03 04 05 06 07 08 ";
  const std::string first = kToShiftDr + "io:00000000/10100101. tms:10 rest tms:10 rest ";
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays(made + "14 01 02 03 04 05 06 07 08 70 7F", first + kRefused));
  VmeTrace other;
  EXPECT_TRUE(other.Plays(made + "70 12 18 13 01 02 03 14 00 00 00 70 7F",
                          first +
                              "tdi:0000000100000010000000110000010000000101000001100000011100001000. tms:10 rest "
                              "tms:10 rest io:000000000000000000000000/000000010000001000000011." +
                              kOut))
      << "24 bits fit into the three bytes that were kept";
}

TEST(VmeDataBlocks, MakeABufferOfTheRightSizeAnewWhenAnotherHadAnotherSize) {
  VmeTrace trace;
  const VmeInterpreter& vme = trace.player.interpreter;
  trace.Play("F2 19 08 12 08 13 A5 14 00 15 00 70 19 10 12 08 15 00 70 7F");
  EXPECT_EQ(vme.previousSize, 16) << "the mask is the last that was made";
  EXPECT_EQ(vme.tdiData.size(), 3u);
  EXPECT_EQ(vme.maskData.size(), 4u);
  // Back to 8: TDI has that size, but the last that was made has not.
  trace.Play("F2 19 08 12 00 13 70 7F");
  EXPECT_EQ(vme.tdiData, HexBytes("00 00 00"));
  EXPECT_EQ(vme.previousSize, 8);
}

TEST(VmeDataBlocks, KnowTheBufferOfXtdiButNotTheOpcode) {
  VmeTrace trace;
  const VmeInterpreter& vme = trace.player.interpreter;
  trace.Play("F2 19 08 12 08 13 A5 70 7F");
  ASSERT_EQ(vme.tdiData, HexBytes("A5 00 00"));
  EXPECT_TRUE(trace.Plays("F2 19 08 12 08 17 70 7F", kToShiftDr + kRefused));
  EXPECT_EQ(vme.tdiData, HexBytes("A5 00 00"));
  EXPECT_TRUE(trace.Plays("F2 19 10 12 08 17 70 7F", kToShiftDr + kRefused));
  EXPECT_EQ(vme.tdiData, HexBytes("00 00 00 00")) << "made anew, and then refused";
  EXPECT_EQ(vme.previousSize, 16);
}

TEST(VmeDataBlocks, RemakeTheBufferOfAnOpcodeBeforeTheyRefuseIt) {
  VmeTrace trace;
  const std::string frame = "06 08 13 A5 70  07 08 13 A5 70  08 08 13 A5 70  09 08 13 A5 70 ";
  const VmeInterpreter& vme = trace.player.interpreter;
  trace.Play("F2 19 10" + frame + "32 60 03 33 01 1B 01 59 7F");
  ASSERT_EQ(vme.heapData, HexBytes("1B 01 59 00 00"));
  struct {
    const char* opcode;
    const VmeBuffer& buffer;
    const char* before;
    const char* after;
  } const kCases[] = {
      {"06", vme.hirData, "A5 00 00", "00 00 00 00"},
      {"07", vme.tirData, "A5 00 00", "00 00 00 00"},
      {"08", vme.hdrData, "A5 00 00", "00 00 00 00"},
      {"09", vme.tdrData, "A5 00 00", "00 00 00 00"},
      {"32", vme.heapData, "1B 01 59 00 00", "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"},
  };
  for (const auto& made : kCases) {
    EXPECT_EQ(made.buffer, HexBytes(made.before)) << made.opcode;
    EXPECT_EQ(trace.Play(std::string("F2 19 10 11 08") + made.opcode + "70 7F"), -4);
    EXPECT_EQ(made.buffer, HexBytes(made.after)) << made.opcode;
  }
  // What is seen of it: headers and trailers keep their sizes, and are zeros from now on.
  EXPECT_TRUE(
      trace.Plays("F2 11 04 13 C0 70 7F",
                  "enter tms:011010 rest tms:10 rest tdi:00000000. pulse tdi:1100. pulse tdi:00000000." + kOut));
  EXPECT_TRUE(trace.Plays("F2 33 01 1B 01 59 7F", "enter pulse leave:6 =0"))
      << "there is room for the loop's three bytes";
}

TEST(VmeDataBlocks, DoNotTakeTheRoomOfALoopForItsSize) {
  VmeTrace trace;
  EXPECT_EQ(trace.Play("F2 19 00 32 60 03 11 08 32 70 7F"), -4);
  EXPECT_TRUE(trace.Plays("F2 33 01 1B 01 59 7F", "enter leave:6 =-4")) << "two bytes are no room for three";
}

TEST(VmeDataBlocks, AreCompressedOneByOne) {
  VmeTrace trace("1");
  EXPECT_TRUE(
      trace.Plays("F1 19 20 12 20 13 04 A5 C3 14 02 FF 03 15 FF 00 00 70"
                  "12 10 13 55" +
                      Times(43, "11") + "14 00 FF FF 70 7F",
                  kToShiftDr + "io:" + Times(32, "1") + "/" + Times(2, "1010010111000011") +
                      ". tms:10 rest tms:10 rest io:1111111111111111/0000000000000000." + kOut));
}

}  // namespace
