// Loops in the script language of rbitool: their text, and the data that each pass takes from the file.

#include <gtest/gtest.h>

#include <string>

#include "support/PacketText.h"
#include "VmeScript.h"
#include "VmeTokens.h"

namespace {

std::string Steps(const std::string& script) {
  constexpr std::size_t kHeaderAndMagicBytes = 22 + 9;
  const std::string bytes = vme_script::AssembleVme(script).substr(kHeaderAndMagicBytes);
  return test_support::Hex({bytes.begin(), bytes.end()});
}

TEST(RbitoolVmeLoop, CountsItsTextWithTheOpcodeAtTheEnd) {
  EXPECT_EQ(Steps("repeat 3 endrepeat"), "32 60 01 33 03 59");
  EXPECT_EQ(Steps("tck 1 repeat 0x100 sdr 8 tdi 01 tck 5 endrepeat tck 2"),
            "1B 01 32 60 08 33 80 02 12 08 13 01 70 1B 05 59 1B 02");
  EXPECT_EQ(Steps("repeat 0 vues endrepeat repeat 65535 vendor 2 endrepeat"),
            "32 60 02 33 00 61 59 32 60 03 33 FF FF 03 56 02 59");
}

TEST(RbitoolVmeLoop, HoldsEveryStep) {
  EXPECT_EQ(
      Steps("repeat 1 hir 0 hdr 8 tdi 01 sir 8 tdi 02 sdr 8 xsdr 8 xtdo state idle mem 8 wait 1 us shr 1 shl -1 "
            "setflow 8 byte 55 endrepeat"),
      "32 60 21 33 01 06 00 08 08 13 01 70 11 08 13 02 70 12 08 70 16 08 18 70 10 01 19 08 1A 01 23 01 24 FF 30 08 "
      "55 59");
}

TEST(RbitoolVmeLoop, TakesTextUpTo65535Bytes) {
  const std::string bytes = vme_script::AssembleVme("repeat 1 byte 00*65534 endrepeat");
  ASSERT_EQ(bytes.size(), 31u + 7u + 65535u);
  EXPECT_EQ(test_support::Hex({bytes.begin() + 31, bytes.begin() + 40}), "32 60 FF FF 03 33 01 00 00");
  EXPECT_EQ(bytes.back(), '\x59');
  EXPECT_THROW(vme_script::AssembleVme("repeat 1 byte 00*65535 endrepeat"), vme_script::ScriptError);
}

TEST(RbitoolVmeLoop, ListsBehindItsTextWhatThePassesTakeFromTheFile) {
  EXPECT_EQ(Steps("repeat 2 sdr 16 tdi file pass tdi 1234 pass tdi 5678 endrepeat endvme"),
            "32 60 06 33 02 12 10 13 55 70 59 12 34 56 78 7F");
  // In the order in which they are played, block for block.
  EXPECT_EQ(Steps("repeat 2 sdr 8 tdi 01 mask file tdo file tck 1 sir 8 tdi file "
                  "pass mask 11 tdo 12 tdi 13 pass mask 21 tdo 22 tdi 23 endrepeat"),
            "32 60 11 33 02 12 08 13 01 15 55 14 55 70 1B 01 11 08 13 55 70 59 11 12 13 21 22 23");
}

TEST(RbitoolVmeLoop, TakesTheRestOfAPlainBlockFromTheFile) {
  EXPECT_EQ(Steps("repeat 2 sdr 24 tdi 01 file tdo 0102 file pass tdi 0203 tdo 03 pass tdi 0405 tdo 06 endrepeat"),
            "32 60 0B 33 02 12 18 13 01 55 14 01 02 55 70 59 02 03 03 04 05 06");
}

TEST(RbitoolVmeLoop, TakesHeadersAndTrailersFromTheFile) {
  const std::string loop = "repeat 1 hdr 16 tdi 12 file tdr 8 tdi file pass tdi 34 tdi plain 56 endrepeat";
  EXPECT_EQ(Steps(loop), "32 60 0C 33 01 08 10 13 12 55 70 09 08 13 55 70 59 34 56");
  EXPECT_EQ(Steps("compressed on " + loop), Steps(loop));
}

TEST(RbitoolVmeLoop, TakesCompressedBlocksFromTheFileFormAndAll) {
  EXPECT_EQ(Steps("compressed on repeat 3 sdr 16 tdi file tdo zeros 0000 pass tdi 1234 pass tdi zeros 0000 "
                  "pass tdi bitmap(0xFF) FFFF endrepeat"),
            "32 60 0A 33 03 12 10 13 55 14 01 00 01 70 59 00 12 34 01 00 01 FF FF 00");
}

TEST(RbitoolVmeLoop, TakesTheByte55WhereItSendsNobodyToTheFile) {
  EXPECT_EQ(Steps("sdr 8 tdi 55 repeat 1 sdr 16 tdi 12 file pass tdi 55 endrepeat"),
            "12 08 13 55 70 32 60 07 33 01 12 10 13 12 55 70 59 55");
  EXPECT_EQ(Steps("compressed on repeat 1 sdr 16 tdi 5555 tdo ones 55FF endrepeat"),
            "32 60 0D 33 01 12 10 13 00 55 55 14 02 55 FF 00 70 59");
  // A number of bits, of passes or of a run.
  EXPECT_EQ(Steps("repeat 85 tck 85 sdr 0x55 endrepeat"), "32 60 06 33 55 1B 55 12 55 70 59");
}

TEST(RbitoolVmeLoop, TakesAPatternOf85NibblesFromTheFile) {
  std::string pattern;
  for (int byte = 0; byte < 42; ++byte)
    pattern += " AA";
  pattern += " A0";
  EXPECT_EQ(Steps("compressed on repeat 1 sdr 344 tdi file pass tdi nibbles(85) AA*42 A0 endrepeat"),
            "32 60 07 33 01 12 D8 02 13 55 70 59 55" + pattern);
  EXPECT_EQ(Steps("compressed on sdr 344 tdi nibbles(85) AA*42 A0"), "12 D8 02 13 55" + pattern + " 70");
}

TEST(RbitoolVmeLoop, LeavesRawBytesAlone) {
  EXPECT_EQ(Steps("repeat 1 sdr 16 tdi raw 12 55 endrepeat byte 34"), "32 60 07 33 01 12 10 13 12 55 70 59 34");
  EXPECT_EQ(Steps("compressed on repeat 1 sdr 16 tdi file pass tdi raw 03 12 30 endrepeat"),
            "32 60 06 33 01 12 10 13 55 70 59 03 12 30");
}

TEST(RbitoolVmeLoop, TakesNothingFromTheFileWhenThereIsNoPass) {
  EXPECT_EQ(Steps("repeat 0 sdr 8 tdi file endrepeat"), "32 60 06 33 00 12 08 13 55 70 59");
}

}  // namespace
