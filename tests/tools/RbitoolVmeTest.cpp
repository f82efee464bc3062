// The script language of rbitool: the bytes of every word and of every form of data.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/PacketText.h"
#include "VmeScript.h"

namespace {

using namespace std::string_literals;

constexpr std::size_t kPlainHeaderBytes = 22;
constexpr std::size_t kMagicBytes = 9;  // with the one that tells plain from compressed

std::string HexOf(const std::string& bytes) {
  return test_support::Hex({bytes.begin(), bytes.end()});
}

/// What stands behind the magic.
std::string Steps(const std::string& script) {
  return HexOf(vme_script::AssembleVme(script).substr(kPlainHeaderBytes + kMagicBytes));
}
std::string CompressedSteps(const std::string& script) {
  return Steps("compressed on " + script);
}

struct Example {
  std::string script;
  std::string bytes;
};

void ExpectSteps(const std::vector<Example>& examples) {
  for (const Example& example : examples)
    EXPECT_EQ(Steps(example.script), example.bytes) << example.script;
}
void ExpectCompressedSteps(const std::vector<Example>& examples) {
  for (const Example& example : examples)
    EXPECT_EQ(CompressedSteps(example.script), example.bytes) << example.script;
}

TEST(RbitoolVme, WrapsAnEmptyScriptAsAPlainFileForTheCpld) {
  EXPECT_EQ(vme_script::AssembleVme(""), "ORBO.RBI\0\0\0\x16R0000;KRVL__VME2.0\xF2"s);
}

TEST(RbitoolVme, TellsWhetherTheFileIsCompressed) {
  EXPECT_EQ(vme_script::AssembleVme("compressed on"), "ORBO.RBI\0\0\0\x16R0000;KRVL__VME2.0\xF1"s);
  EXPECT_EQ(vme_script::AssembleVme("compressed off"), "ORBO.RBI\0\0\0\x16R0000;KRVL__VME2.0\xF2"s);
}

TEST(RbitoolVme, NamesIdVersionAndTextOfTheContainer) {
  EXPECT_EQ(vme_script::AssembleVme("container TLM_ a1 \"S:demo;M:01.02\" endvme"),
            "ORBO.RBI\0\0\0\x24R00A1;TLM_S:demo;M:01.02__VME2.0\xF2\x7F"s);
  EXPECT_EQ(vme_script::AssembleVme("compressed on container KRVL FFFF endvme"),
            "ORBO.RBI\0\0\0\x16RFFFF;KRVL__VME2.0\xF1\x7F"s);
  EXPECT_EQ(vme_script::AssembleVme("container \" (#)\" 0 \"\""), "ORBO.RBI\0\0\0\x16R0000; (#)__VME2.0\xF2"s);
}

TEST(RbitoolVme, WritesTheOpcodesThatStandAlone) {
  ExpectSteps({{"endloop", "59"}, {"vues", "61"}, {"endvme", "7F"}, {"endfile", "FF"}});
}

TEST(RbitoolVme, WritesNumbersInGroupsOfSevenBits) {
  ExpectSteps({{"mem 0", "19 00"},
               {"mem 127", "19 7F"},
               {"mem 128", "19 80 01"},
               {"mem 300", "19 AC 02"},
               {"mem 16383", "19 FF 7F"},
               {"mem 16384", "19 80 80 01"},
               {"mem 65535", "19 FF FF 03"},
               {"mem 0xFFFF", "19 FF FF 03"},
               {"mem 0x01aC", "19 AC 03"},
               {"mem 0010", "19 0A"},
               {"frequency 1000", "0B E8 07"},
               {"tck 5", "1B 05"},
               {"setflow 0x0202", "30 82 04"},
               {"resetflow 8", "31 08"}});
}

TEST(RbitoolVme, WritesTheCascadeFlowByName) {
  ExpectSteps({{"setflow cascade", "30 02"}, {"resetflow cascade", "31 02"}});
}

TEST(RbitoolVme, WritesStatesByNameAndByNumber) {
  ExpectSteps({{"state reset", "10 00"},
               {"state idle", "10 01"},
               {"state irpause", "10 02"},
               {"state drpause", "10 03"},
               {"state shiftir", "10 04"},
               {"state shiftdr", "10 05"},
               {"state 0x80", "10 80"},
               {"state 255", "10 FF"},
               {"enddr drpause", "02 03"},
               {"enddr 6", "02 06"},
               {"endir irpause", "03 02"}});
}

TEST(RbitoolVme, WritesBytesWithAndWithoutSign) {
  ExpectSteps({{"vendor 0", "56 00"},
               {"vendor 3", "56 03"},
               {"vendor 255", "56 FF"},
               {"shr 1", "23 01"},
               {"shr -1", "23 FF"},
               {"shr 127", "23 7F"},
               {"shl -128", "24 80"},
               {"shl -0x10", "24 F0"}});
}

TEST(RbitoolVme, MarksAWaitInMilliseconds) {
  ExpectSteps({{"wait 0 us", "1A 00"},
               {"wait 50 us", "1A 32"},
               {"wait 32767 us", "1A FF FF 01"},
               {"wait 0 ms", "1A 80 80 02"},
               {"wait 5 ms", "1A 85 80 02"},
               {"wait 32767 ms", "1A FF FF 03"}});
}

TEST(RbitoolVme, WritesHeadersAndTrailers) {
  const std::vector<Example> examples = {{"hir 0 tir 0 hdr 0 tdr 0", "06 00 07 00 08 00 09 00"},
                                         {"hir 3 tdi E0", "06 03 13 E0 70"},
                                         {"tir 8 tdi FF", "07 08 13 FF 70"},
                                         {"hdr 9 tdi 1280", "08 09 13 12 80 70"},
                                         {"tdr 16 tdi plain 0055", "09 10 13 00 55 70"},
                                         {"hir 8 tdi raw 0102", "06 08 13 01 02 70"}};
  ExpectSteps(examples);
  ExpectCompressedSteps(examples);
}

TEST(RbitoolVme, WritesShiftsWithAnyBlocksInAnyOrder) {
  ExpectSteps({{"sir 8 tdi 1D", "11 08 13 1D 70"},
               {"sdr 16 tdi 0102", "12 10 13 01 02 70"},
               {"sdr 12 tdi 0102 tdo 0304 mask FFF0", "12 0C 13 01 02 14 03 04 15 FF F0 70"},
               {"xsdr 8 mask 0F xtdo tdi AA", "16 08 15 0F 18 13 AA 70"},
               {"sdr 1 dmask 80 tdi 00", "12 01 62 80 13 00 70"},
               {"sdr 8 tdi 01 tdi 02", "12 08 13 01 13 02 70"},
               {"xsdr 8 xtdo", "16 08 18 70"},
               {"sdr 8", "12 08 70"},
               {"sdr 0 tdi", "12 00 13 70"},
               {"sdr 8 tdi 55", "12 08 13 55 70"},
               {"sdr 130 tdi 00*16 C0", "12 82 01 13 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 C0 70"}});
}

TEST(RbitoolVme, TakesTheLongestShift) {
  EXPECT_EQ(CompressedSteps("sdr 65535 tdi zeros 00*8192"), "12 FF FF 03 13 01 00 FF 3F 70");
}

TEST(RbitoolVme, TakesBytesInGroupsOfAnyKind) {
  ExpectSteps({{"byte 12 34 5678", "12 34 56 78"},
               {"byte aBCd", "AB CD"},
               {"byte 12*3", "12 12 12"},
               {"byte 1234 * 2 56*1", "12 34 12 34 56"},
               {"byte 00 * 0x02 # three\n 11", "00 00 11"},
               {"byte 80 80 00 byte 17", "80 80 00 17"}});
}

TEST(RbitoolVme, TakesLineEndsAsBlanksAndPassesOverComments) {
  ExpectSteps({{"# nothing", ""},
               {"# a comment\nmem# another\n8\n", "19 08"},
               {"sdr 16\r\n\ttdi 01\r\n\t\t02\r\n\ttdo 03 04 # end\r\nvues\r\n", "12 10 13 01 02 14 03 04 70 61"},
               {"mem 8 vues", "19 08 61"}});
}

TEST(RbitoolVme, WritesRawDataUncounted) {
  ExpectSteps(
      {{"sdr 16 tdi raw 01", "12 10 13 01 70"}, {"sdr 8 tdi raw 010203 mask FF", "12 08 13 01 02 03 15 FF 70"}});
  ExpectCompressedSteps({{"sdr 16 tdi raw 03 12", "12 10 13 03 12 70"}});
}

TEST(RbitoolVme, PutsTheFormInFrontOfCompressedData) {
  ExpectCompressedSteps(
      {{"sir 8 tdi 1D", "11 08 13 00 1D 70"},
       {"sdr 16 tdi plain 0055 tdo 5500", "12 10 13 00 00 55 14 00 55 00 70"},
       {"sdr 8 tdi zeros 12 tdo ones 34 mask bitmap(0xFF) FF dmask plain 01 xtdo",
        "12 08 13 01 12 14 02 34 15 FF FF 00 62 00 01 18 70"},
       {"sdr 0 tdi tdo zeros mask bitmap(1) dmask nibbles(3)", "12 00 13 00 14 01 15 FF 01 62 03 00 00 70"}});
}

TEST(RbitoolVme, CountsHowManyMoreOfARunFollow) {
  ExpectCompressedSteps({
      {"sdr 8 tdi zeros 00", "12 08 13 01 00 00 70"},
      {"sdr 48 tdi zeros 12000000FF00", "12 30 13 01 12 00 02 FF 00 00 70"},
      {"sdr 32 tdi zeros 00120000", "12 20 13 01 00 00 12 00 01 70"},
      {"sdr 1024 tdi zeros 00*128", "12 80 08 13 01 00 7F 70"},
      {"sdr 1032 tdi zeros 00*129", "12 88 08 13 01 00 80 01 70"},
      {"sdr 1608 tdi zeros 00*200 01", "12 C8 0C 13 01 00 C7 01 01 70"},
      {"sdr 40 tdi ones FFFF00FF00", "12 28 13 02 FF 01 00 FF 00 00 70"},
      {"sdr 16 tdi ones 0000", "12 10 13 02 00 00 70"},
  });
}

TEST(RbitoolVme, WritesABitForEachByteOfABitmap) {
  ExpectCompressedSteps({
      // 0, 1 00010010, 0, 1 00110100
      {"sdr 32 tdi bitmap(0xFF) FF12FF34", "12 20 13 FF FF 44 93 40 70"},
      {"sdr 64 tdi bitmap(0) 00*8", "12 40 13 FF 00 00 70"},
      {"sdr 72 tdi bitmap(0) 00*9", "12 48 13 FF 00 00 00 70"},
      // 1 10000001, 1 01111110, and six bits to the end of the byte
      {"sdr 16 tdi bitmap(0x55) 817E", "12 10 13 FF 55 C0 DF 80 70"},
  });
}

TEST(RbitoolVme, WritesThePatternOfNibbles) {
  ExpectCompressedSteps({
      {"sdr 32 tdi nibbles(4) ABCDABCD", "12 20 13 04 AB CD 70"},
      {"sdr 24 tdi nibbles(3) 123123", "12 18 13 03 12 30 70"},
      {"sdr 24 tdi nibbles(6) 123456", "12 18 13 06 12 34 56 70"},
      // What is left over behind the last whole pattern is 0.
      {"sdr 24 tdi nibbles(4) 123400", "12 18 13 04 12 34 70"},
      {"sdr 24 tdi nibbles(5) 123450", "12 18 13 05 12 34 50 70"},
      {"sdr 32 tdi nibbles(3) 12312300", "12 20 13 03 12 30 70"},
      // So it is of a pattern that does not fit once.
      {"sdr 16 tdi nibbles(5) 0000", "12 10 13 05 00 00 00 70"},
      {"sdr 8 tdi nibbles(254) 00", "12 08 13 FE" +
                                        [] {
                                          std::string zeros;
                                          for (int byte = 0; byte < 127; ++byte)
                                            zeros += " 00";
                                          return zeros;
                                        }() +
                                        " 70"},
  });
}

}  // namespace
