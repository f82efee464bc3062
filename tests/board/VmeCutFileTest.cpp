#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "support/VmeTrace.h"

namespace {

using test_support::Trace;
using test_support::VmeFile;
using test_support::VmeTrace;

/// A file with most opcodes and a byte of everything. Its compares are with zeros, or masked, or of the USERCODE.
const char* const kFile =
    "F1 19 10 56 03 0B E8 07"                    // compressed; MEM, VENDOR, FREQUENCY
    "02 03 03 02"                                // ENDDR, ENDIR
    "06 02 13 40 70 07 01 13 80 70"              // HIR, TIR
    "08 01 13 00 70 09 01 13 80 70"              // HDR, TDR
    "10 01 1A 05 1B 02"                          // STATE, WAIT, TCK
    "11 08 13 00 A5 70"                          // SIR, plain
    "61 12 10 13 01 00 01 14 FF FF 00 70"        // VUES, SDR with a run and a bit map
    "16 08 14 00 01 15 03 00 00 18 70"           // XSDR with TDO, a mask of nibbles, XTDO
    "30 02 31 02"                                // SETFLOW, RESETFLOW
    "32 60 0E 33 02"                             // HEAP, REPEAT: the next line, with the data of TDI in the file
    "23 01 24 01 12 08 13 55 62 00 F0 70 59 59"  //
    "00 00 01 10"                                //
    "7F";

bool IsSignOfAnEnd(int code) {
  return code == 0 || code == 96 || code == -4;
}

TEST(VmeCutFile, IsWholeAtItsFullLength) {
  VmeTrace trace;
  EXPECT_EQ(trace.Play(kFile), 0) << trace.text();
  EXPECT_NE(trace.text().find("USERCODE verification failed."), std::string::npos);
  EXPECT_EQ(trace.text().find("Reached end"), std::string::npos);
}

TEST(VmeCutFile, EndsByItselfAtEachLengthWithResetAndEnableLow) {
  const std::vector<std::uint8_t> whole = VmeFile(kFile);
  constexpr std::size_t kHeaderBytes = 21;
  int codes96 = 0;
  for (std::size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    VmeTrace trace;
    const int code = trace.PlayBytes({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)});
    if (length < kHeaderBytes) {
      EXPECT_EQ(code, -3);
      EXPECT_EQ(trace.text().find("W "), std::string::npos);
      continue;
    }
    EXPECT_TRUE(IsSignOfAnEnd(code)) << code;
    if (code == 96) ++codes96;
    EXPECT_EQ(trace.player.port.tapState(), kTapReset);
    EXPECT_EQ(trace.player.port.pinShadow(), 0);
    EXPECT_FALSE(trace.player.HasFileOpen());

    // A cut in FREQUENCY leaves 104, and slow pulses. Three clocks at least with TMS high, TDI as the last shift left
    // it.
    const std::string made = trace.text().substr(0, trace.text().rfind("RESULT"));
    bool isReset = false;
    for (const std::uint8_t pins : {std::uint8_t{0x0A}, std::uint8_t{0x0E}})
      for (const char* text : {"", "0%"})
        isReset |= made.ends_with(
            Trace((length == 27 ? "high:11 tms:111 rest D3 " : "tms:111 rest D3 ") + std::string(text) + " off", pins));
    EXPECT_TRUE(isReset) << made;
  }
  EXPECT_EQ(codes96, 2) << "behind the check byte and behind the size, and nowhere else";
}

TEST(VmeCutFile, EndsByItselfWithAnyByteInAnyPlace) {
  const std::vector<std::uint8_t> whole = VmeFile(kFile);
  for (std::size_t at = 20; at < whole.size(); ++at) {
    for (const int byte : {0x00, 0x01, 0x12, 0x32, 0x33, 0x55, 0x70, 0x7F, 0x80, 0xFE, 0xFF}) {
      std::vector<std::uint8_t> file = whole;
      file[at] = static_cast<std::uint8_t>(byte);
      VmeTrace trace;
      const int code = trace.PlayBytes(file);
      EXPECT_TRUE(IsSignOfAnEnd(code) || code == -1 || code == 1 || (code == -3 && at == 20)) << at << " " << byte;
      EXPECT_EQ(trace.player.port.pinShadow(), 0) << at << " " << byte;
      EXPECT_EQ(trace.player.port.tapState(), kTapReset) << at << " " << byte;
    }
  }
}

}  // namespace
