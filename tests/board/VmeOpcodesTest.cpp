#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "board/VmeInterpreter.h"
#include "support/VmeTrace.h"

namespace {

using test_support::SameTrace;
using test_support::Times;
using test_support::Trace;
using test_support::VmeFile;
using test_support::VmeTrace;

TEST(VmeOpcodes, ThatAreNoneAreFileErrors) {
  const std::vector<int> kOpcodes = {0x02, 0x03, 0x06, 0x07, 0x08, 0x09, 0x0B, 0x10, 0x11, 0x12, 0x16, 0x19, 0x1A,
                                     0x1B, 0x23, 0x24, 0x30, 0x31, 0x32, 0x33, 0x56, 0x59, 0x61, 0x7F, 0xFF};
  int refused = 0;
  for (int value = 0; value < 256; ++value) {
    if (std::find(kOpcodes.begin(), kOpcodes.end(), value) != kOpcodes.end()) continue;
    ++refused;
    VmeTrace trace;
    std::vector<std::uint8_t> file = VmeFile("F2 1B 01 00 1B 01 7F");
    file[23] = static_cast<std::uint8_t>(value);
    EXPECT_EQ(trace.PlayBytes(file), -4) << value;
    EXPECT_TRUE(SameTrace(trace.text(), Trace("enter pulse leave:6 =-4"))) << value;
  }
  EXPECT_EQ(refused, 231);
}

TEST(VmeOpcodes, EndTheFile) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 7F 1B 01", "enter leave:6 =0"));
  EXPECT_TRUE(trace.Plays("F2 59 1B 01", "enter leave:6 =0"));
  EXPECT_TRUE(trace.Plays("F2 FF 1B 01", "enter leave:6 =0"));
  EXPECT_TRUE(trace.Plays("F2 1B 01", "enter pulse eof leave:6 =0"));
}

TEST(VmeOpcodes, EnddrSaysWhereAShiftOfDataEnds) {
  VmeTrace trace;
  const std::string shift = "enter tms:01010 rest tms:10 rest tdi:1100. ";
  EXPECT_TRUE(trace.Plays("F2 19 08 02 03 12 04 13 C0 70 7F", shift + "tms:10 rest leave:5 =0"));
  EXPECT_TRUE(trace.Plays("F2 19 08 02 01 12 04 13 C0 70 7F", shift + "tms:110 rest leave:3 =0"));
  EXPECT_TRUE(trace.Plays("F2 19 08 02 05 12 04 13 C0 70 7F", shift + "leave:5 =0"));
  EXPECT_TRUE(trace.Plays("F2 19 08 02 00 12 04 13 C0 70 7F", shift + "tms:11111 rest leave:6 =0"));
}

TEST(VmeOpcodes, EndirSaysWhereAShiftOfAnInstructionEnds) {
  VmeTrace trace;
  const std::string shift = "enter tms:011010 rest tms:10 rest tdi:1100. ";
  EXPECT_TRUE(trace.Plays("F2 19 08 03 02 11 04 13 C0 70 7F", shift + "tms:10 rest leave:5 =0"));
  EXPECT_TRUE(trace.Plays("F2 19 08 03 01 11 04 13 C0 70 7F", shift + "tms:110 rest leave:3 =0"));
  EXPECT_TRUE(trace.Plays("F2 19 08 03 04 11 04 13 C0 70 7F", shift + "leave:5 =0"));
  EXPECT_TRUE(trace.Plays("F2 19 08 03 00 11 04 13 C0 70 7F", shift + "tms:11111 rest leave:6 =0"));
}

TEST(VmeOpcodes, EndStatesWithoutAWayAreFileErrorsAndResetAllTheSame) {
  for (const char* state : {"02", "04", "06", "07", "80", "FF"}) {
    VmeTrace trace;
    EXPECT_TRUE(trace.Plays(std::string("F2 19 08 02") + state + "12 04 13 C0 70 7F",
                            "enter tms:01010 rest tms:10 rest tdi:1100. leave:5 =-4"))
        << state;
  }
  for (const char* state : {"03", "05", "06", "07", "80", "FF"}) {
    VmeTrace trace;
    EXPECT_TRUE(trace.Plays(std::string("F2 19 08 03") + state + "11 04 13 C0 70 7F",
                            "enter tms:011010 rest tms:10 rest tdi:1100. leave:5 =-4"))
        << state;
  }
}

TEST(VmeOpcodes, FrequencyStretchesPulses) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 0B E7 07 1B 01 7F", "enter high:3 pulse leave:6 =0"));
  EXPECT_TRUE(trace.Plays("F2 0B E8 07 1B 01 7F", "on high:3 tms:111111 rest high:1 pulse leave:6 =0"));
  EXPECT_TRUE(trace.Plays("F2 0B 01 1B 02 0B FF FF 03 7F", "enter high:1002 pulse:2 high:1 leave:6 =0"));
}

TEST(VmeOpcodes, FrequencyZeroIsAFileError) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 0B 00 1B 01 7F", "enter leave:6 =-4"));
  EXPECT_TRUE(trace.Plays("F2 0B 80 80 04 1B 01 7F", "enter leave:6 =-4")) << "65536 is 0";
  EXPECT_TRUE(trace.Plays("F2 1B 01 7F", "enter pulse leave:6 =0"));
}

TEST(VmeOpcodes, StateMovesTheTap) {
  VmeTrace trace;
  EXPECT_TRUE(
      trace.Plays("F2 10 01 10 03 10 02 10 03 10 01 10 02 10 01 10 00 10 03 10 05 10 01 7F",
                  "enter tms:0 rest tms:1010 rest tms:1111010 rest tms:111010 rest tms:110 rest "
                  "tms:11010 rest tms:110 rest tms:111 rest tms:01010 rest tms:10 rest tms:110 rest leave:3 =0"));
  EXPECT_TRUE(trace.Plays("F2 10 02 10 04 10 02 10 05 10 03 10 00 7F",
                          "enter tms:011010 rest tms:10 rest tms:10 rest tms:11100 rest tms:10 rest "
                          "tms:11111 rest leave:6 =0"));
  EXPECT_TRUE(trace.Plays("F2 10 01 10 01 7F", "enter tms:0 rest leave:3 =0")) << "it is there already";
  EXPECT_TRUE(trace.Plays("F2 10 00 10 00 7F", "enter tms:111111 rest tms:111111 rest leave:6 =0"));
}

TEST(VmeOpcodes, StateWithoutAWayIsAFileErrorAndResetsAllTheSame) {
  struct {
    const char* codes;
    const char* words;
  } constexpr kCases[] = {
      {"10 04", "enter leave:6 =-4"},
      {"10 05", "enter leave:6 =-4"},
      {"10 06", "enter leave:6 =-4"},
      {"10 7F", "enter leave:6 =-4"},
      {"10 80", "enter leave:6 =-4"},
      {"10 FF", "enter leave:6 =-4"},
      {"10 01 10 04", "enter tms:0 rest leave:3 =-4"},
      {"10 01 10 05", "enter tms:0 rest leave:3 =-4"},
      {"10 03 10 04", "enter tms:01010 rest leave:5 =-4"},
      {"10 03 10 05 10 02", "enter tms:01010 rest tms:10 rest leave:5 =-4"},
      {"10 03 10 05 10 04", "enter tms:01010 rest tms:10 rest leave:5 =-4"},
      {"10 02 10 04 10 03", "enter tms:011010 rest tms:10 rest leave:5 =-4"},
      {"10 02 10 04 10 05", "enter tms:011010 rest tms:10 rest leave:5 =-4"},
  };
  for (const auto& move : kCases) {
    VmeTrace trace;
    EXPECT_TRUE(trace.Plays("F2" + std::string(move.codes) + "1B 01 7F", move.words)) << move.codes;
    EXPECT_EQ(trace.player.port.tapState(), kTapReset);
  }
}

TEST(VmeOpcodes, MemKeepsTheSizeOfTheBuffers) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 19 F4 03 7F", "enter leave:6 =0"));
  EXPECT_EQ(trace.player.interpreter.maxSize, 500);
  trace.Play("F2 19 FF FF 07 7F");
  EXPECT_EQ(trace.player.interpreter.maxSize, 65535) << "of a longer number the low 16 bits";
}

TEST(VmeOpcodes, WaitWaits) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 1A F4 03 7F", "enter D3 0% tms:111111 rest D3 off =0"));
  EXPECT_TRUE(trace.Plays("F2 1A 85 80 02 7F", "enter D15 0% tms:111111 rest D3 off =0"));
}

TEST(VmeOpcodes, TckPulses) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 1B 00 7F", "enter leave:6 =0"));
  EXPECT_TRUE(trace.Plays("F2 1B 03 7F", "enter pulse:3 leave:6 =0"));
  EXPECT_TRUE(trace.Plays("F2 1B 80 01 7F", "enter pulse:128 leave:6 =0"));
  EXPECT_TRUE(trace.Plays("F2 1B FF FF 03 7F", "enter pulse:65535 leave:6 =0"));
}

TEST(VmeOpcodes, SetflowAndResetflowTakeWholeNumbers) {
  VmeTrace trace;
  const VmeInterpreter& vme = trace.player.interpreter;
  trace.Play("F2 30 82 04 7F");
  EXPECT_EQ(vme.flowControl, 0x0202);
  trace.Play("F2 30 01 30 80 01 7F");
  EXPECT_EQ(vme.flowControl, 0x0081) << "cleared with each file";
  trace.Play("F2 30 FF FF 03 31 82 01 7F");
  EXPECT_EQ(vme.flowControl, 0xFF7D);
  trace.Play("F2 30 FF FF 03 31 FF FF 03 7F");
  EXPECT_EQ(vme.flowControl, 0);
}

TEST(VmeOpcodes, VuesMarksTheNextCompare) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 61 7F", "enter leave:6 =0"));
  EXPECT_EQ(trace.player.interpreter.flowControl, 0x0200);
}

TEST(VmeOpcodes, VendorIsOneTwoOrThree) {
  VmeTrace trace;
  const VmeInterpreter& vme = trace.player.interpreter;
  EXPECT_EQ(vme.vendor, 0);
  for (const auto& [codes, vendor] : std::vector<std::pair<const char*, int>>{{"56 01", 1},
                                                                              {"56 02", 2},
                                                                              {"56 03", 3},
                                                                              {"56 00", 3},
                                                                              {"56 04", 3},
                                                                              {"56 07", 3},
                                                                              {"56 7F", 3},
                                                                              {"56 80", 3},
                                                                              {"56 83", 3},
                                                                              {"56 FF", 3},
                                                                              {"56 01 56 07", 1}}) {
    EXPECT_TRUE(trace.Plays("F2" + std::string(codes) + "7F", "enter leave:6 =0"));
    EXPECT_EQ(vme.vendor, vendor) << codes;
  }
}

TEST(VmeOpcodes, ShrAndShlKeepTheSignedAmount) {
  VmeTrace trace;
  const VmeInterpreter& vme = trace.player.interpreter;
  // A loop of three passes, so that amounts are three times the byte.
  EXPECT_TRUE(trace.Plays("F2 32 60 01 33 03 59 23 05 7F", "enter leave:6 =0"));
  EXPECT_EQ(vme.flowControl, 0x0080);
  EXPECT_EQ(vme.shiftValue, 15);
  trace.Play("F2 32 60 01 33 03 59 24 FE 7F");
  EXPECT_EQ(vme.flowControl, 0x0100);
  EXPECT_EQ(vme.shiftValue, 65530);
  trace.Play("F2 32 60 01 33 03 59 24 05 23 80 7F");
  EXPECT_EQ(vme.flowControl, 0x0180);
  EXPECT_EQ(vme.shiftValue, 65152) << "three times -128";
}

TEST(VmeOpcodes, CutShortEndTheFile) {
  struct {
    const char* codes;
    int code;
  } constexpr kCases[] = {
      {"02", 0},  {"03", 0},     {"06", 0},     {"07", 0},           {"08", 0},        {"09", 0},
      {"0B", -4}, {"10", -4},    {"11", -4},    {"12", -4},          {"16", -4},       {"19", 0},
      {"1A", 0},  {"1B", 0},     {"23", 0},     {"24", 0},           {"30", 0},        {"31", 0},
      {"32", -4}, {"32 60", 96}, {"33", -4},    {"56", 0},           {"59", 0},        {"61", 0},
      {"7F", 0},  {"FF", 0},     {"06 08", -4}, {"09 08 13 A5", -4}, {"12 08 13", -4}, {"12 08 13 A5", -4},
  };
  for (const auto& cut : kCases) {
    VmeTrace trace;
    EXPECT_EQ(trace.Play("F2 19 08" + std::string(cut.codes)), cut.code) << cut.codes;
    EXPECT_EQ(trace.player.port.tapState(), kTapReset) << cut.codes;
    EXPECT_EQ(trace.player.port.pinShadow(), 0) << cut.codes;
  }
}

TEST(VmeOpcodes, AreReadFromALongFile) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2" + Times(5000, "56 07") + "1B 01 7F", "enter pulse leave:6 =0"));
}

}  // namespace
