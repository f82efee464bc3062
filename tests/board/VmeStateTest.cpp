#include <gtest/gtest.h>

#include <string>

#include "board/VmeInterpreter.h"
#include "support/VmeTrace.h"

// What one file leaves to the next, and what it does not.

namespace {

using test_support::HexBytes;
using test_support::PowerCut;
using test_support::SameTrace;
using test_support::Times;
using test_support::Trace;
using test_support::VmeTrace;

const std::string kToShiftIr = "enter tms:011010 rest tms:10 rest ";
const std::string kToShiftDr = "enter tms:01010 rest tms:10 rest ";
const std::string kOut = " tms:10 rest leave:5 =0";

TEST(VmeState, StartsWithTheDefaults) {
  const VmeTrace trace;
  const VmeInterpreter& vme = trace.player.interpreter;
  EXPECT_EQ(vme.vendor, 0);
  EXPECT_EQ(vme.endDR, 3);
  EXPECT_EQ(vme.endIR, 2);
  EXPECT_EQ(vme.maxSize, 0);
  EXPECT_EQ(vme.dataType, 0);
  EXPECT_EQ(vme.flowControl, 0);
  EXPECT_EQ(vme.previousSize, 0);
  EXPECT_TRUE(vme.tdiData.empty() && vme.tdoData.empty() && vme.maskData.empty() && vme.dmaskData.empty());
  EXPECT_TRUE(vme.hirData.empty() && vme.tirData.empty() && vme.hdrData.empty() && vme.tdrData.empty());
  EXPECT_TRUE(vme.heapData.empty());
}

TEST(VmeState, KeepsEndStates) {
  VmeTrace trace;
  trace.Play("F2 02 01 03 01 7F");
  EXPECT_TRUE(
      trace.Plays("F2 19 08 12 01 13 80 70 11 01 13 80 70 7F",
                  kToShiftDr + "tdi:1. tms:110 rest tms:11010 rest tms:10 rest tdi:1. tms:110 rest leave:3 =0"));
}

TEST(VmeState, KeepsTheFrequency) {
  VmeTrace trace;
  trace.Play("F2 0B E7 07 7F");
  EXPECT_TRUE(trace.Plays("F2 1B 01 7F", "high:3 enter pulse leave:6 =0"));
  trace.Play("F2 0B 00 7F");
  EXPECT_TRUE(trace.Plays("F2 1B 01 7F", "high:3 enter pulse leave:6 =0"));
}

TEST(VmeState, KeepsHeadersAndTrailers) {
  VmeTrace trace;
  trace.Play("F2 06 03 13 A0 70  07 02 13 40 70  08 03 13 C0 70  09 04 13 70 70 7F");
  EXPECT_TRUE(trace.Plays("F2 19 08 11 01 13 80 70 7F", kToShiftIr + "tdi:101. pulse tdi:1. pulse tdi:01." + kOut));
  EXPECT_TRUE(trace.Plays("F2 12 01 13 80 70 7F", kToShiftDr + "tdi:110. pulse tdi:1. pulse tdi:0111." + kOut));
}

TEST(VmeState, KeepsMemAndTheBuffers) {
  VmeTrace trace("0");
  trace.Play("F2 19 10 12 10 13 A5 C3 14 00 00 15 00 00 70 7F");
  EXPECT_TRUE(trace.Plays("F2 12 10 70 7F", kToShiftDr + "tdi:1010010111000011." + kOut));
  trace.recorder.AnswerTdo("1010010111000011");
  EXPECT_TRUE(trace.Plays("F2 12 10 18 70 7F", kToShiftDr + "io:1010010111000011/0000000000000000." + kOut));
}

TEST(VmeState, KeepsTheHeap) {
  VmeTrace trace;
  EXPECT_EQ(trace.Play("F2 32 60 03 7F"), 96);
  EXPECT_TRUE(trace.Plays("F2 33 02 1B 01 59 7F", "enter pulse:2 leave:6 =0"));
}

TEST(VmeState, KeepsTheVendor) {
  VmeTrace trace;
  trace.Play("F2 56 03 7F");
  trace.Play("F2 00");
  trace.Play("F0");
  EXPECT_EQ(trace.player.interpreter.vendor, 3);
}

TEST(VmeState, ForgetsFlowAndPacking) {
  VmeTrace trace;
  trace.Play("F1 30 82 06 7F");
  EXPECT_EQ(trace.player.interpreter.flowControl, 0x0302);
  EXPECT_EQ(trace.player.interpreter.dataType, 0x0008);
  EXPECT_TRUE(trace.Plays("F2 19 08 12 08 13 A5 70 7F", kToShiftDr + "tdi:10100101." + kOut));
  EXPECT_EQ(trace.player.interpreter.flowControl, 0);
  EXPECT_EQ(trace.player.interpreter.dataType, 0x0014);
}

TEST(VmeState, ForgetsALoopThatEndedInAnError) {
  VmeTrace trace;
  EXPECT_EQ(trace.Play("F2 32 60 04 33 03 1B 01 00 59 7F"), -4);
  EXPECT_TRUE(trace.Plays("F2 1B 01 7F", "enter pulse leave:6 =0")) << "bytes come from the file again";
}

TEST(VmeState, IsResetAndLowBetweenFiles) {
  VmeTrace trace;
  for (const char* codes : {"7F", "10 01", "10 03 10 05", "30 02 10 03 12 08 13 FF 70", "00", "10 02 10 04 00"}) {
    trace.Play(std::string("F2 19 08") + codes);
    EXPECT_EQ(trace.player.port.tapState(), kTapReset) << codes;
    EXPECT_EQ(trace.player.port.pinShadow(), 0) << codes;
    EXPECT_TRUE(trace.Plays("F2 7F", "enter leave:6 =0")) << codes;
  }
}

TEST(VmeState, BuffersCanBeGivenBack) {
  VmeTrace trace;
  VmeInterpreter& vme = trace.player.interpreter;
  trace.Play("F2 19 08 06 08 13 A5 70 12 08 13 A5 14 00 15 00 70 12 08 62 00 70 32 60 03 7F");
  vme.FreeVmeBuffers();
  EXPECT_TRUE(vme.tdiData.empty() && vme.tdoData.empty() && vme.maskData.empty() && vme.dmaskData.empty());
  EXPECT_TRUE(vme.hirData.empty() && vme.tirData.empty() && vme.hdrData.empty() && vme.tdrData.empty());
  EXPECT_TRUE(vme.heapData.empty());
  // Headers that kept their size are zeros; a loop has no heap.
  EXPECT_TRUE(trace.Plays("F2 11 04 13 50 70 7F", kToShiftIr + "tdi:00000000. pulse tdi:0101." + kOut));
  EXPECT_TRUE(trace.Plays("F2 33 01 1B 01 59 7F", "enter leave:6 =-4"));
}

// A power cut comes out of the player as what the port throws.

const char* const kSmallFile = "F2 19 08 08 01 13 80 70 11 04 13 C0 70 1A 00 12 08 13 A5 14 00 70 7F";
const std::string kSmallTrace =
    "enter tms:011010 rest tms:10 rest tdi:1100. tms:10 rest D3 0% "
    "tms:111010 rest tms:10 rest tdi:1. pulse io:00000000/10100101. tms:10 rest tms:11111 rest D3 off =0";

TEST(VmePowerCut, AtAnyAccessLeavesAPlayerForTheNextFile) {
  VmeTrace whole;
  ASSERT_TRUE(whole.Plays(kSmallFile, kSmallTrace));
  std::size_t accesses = 0;
  for (std::size_t at = 0; at < whole.text().size(); at = whole.text().find('\n', at) + 1)
    if (whole.text()[at] == 'W' || (whole.text()[at] == 'R' && whole.text()[at + 1] == ' ')) ++accesses;
  ASSERT_GT(accesses, 150u);

  for (std::size_t cut = 0; cut < accesses; ++cut) {
    VmeTrace trace;
    trace.recorder.CutPowerAt(cut);
    ASSERT_THROW(trace.Play(kSmallFile), PowerCut) << cut;
    EXPECT_EQ(trace.text(), whole.text().substr(0, trace.text().size())) << cut;
    EXPECT_EQ(trace.Play("F2 7F"), 0) << cut;
    EXPECT_TRUE(trace.text().ends_with("W 08\nD 3\nP 0%\\n\nW 00\nRESULT 0\n")) << cut << "\n" << trace.text();
    EXPECT_EQ(trace.player.port.tapState(), kTapReset) << cut;
    ASSERT_TRUE(trace.Plays(kSmallFile, kSmallTrace)) << cut;
    EXPECT_FALSE(trace.player.HasFileOpen()) << cut;
  }
}

TEST(VmePowerCut, InALoopLeavesNoLoopBehind) {
  VmeTrace trace;
  trace.recorder.CutPowerAt(28);
  EXPECT_THROW(trace.Play("F1 32 60 03 33 05 1B 01 59 7F"), PowerCut);
  EXPECT_EQ(trace.Play("F2 7F"), 0);
  EXPECT_TRUE(trace.Plays("F2 19 08 12 08 13 A5 70 7F", kToShiftDr + "tdi:10100101." + kOut));
}

}  // namespace
