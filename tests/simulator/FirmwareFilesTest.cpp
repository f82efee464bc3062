#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulator/BenchError.h"
#include "simulator/FirmwareFiles.h"
#include "simulator/KarvelProgram.h"
#include "simulator/RbiFile.h"
#include "simulator/SeededBytes.h"
#include "support/FolderFault.h"
#include "support/TempFolder.h"

using simulator::BytesOf;
using simulator::FirmwareFile;
using simulator::RbiContent;

namespace {

TEST(MakeRbi, WritesTheHeaderByteForByte) {
  const std::uint8_t payload[] = {0xDE, 0xAD};
  const std::vector<std::uint8_t> file = simulator::MakeRbi("BLMX", 0x0A61, payload);
  const std::string expected(
      "ORBO.RBI"
      "\x00\x00\x00\x26"
      "R0a61 BLMX"
      "S:BENCH;M:01.00;"
      "\xDE\xAD",
      40);
  EXPECT_EQ(std::string(file.begin(), file.end()), expected);
}

TEST(ReleaseFiles, BeginWithOneForEachHostCard) {
  auto files = simulator::ReleaseFiles();
  ASSERT_EQ(files.size(), 24u);
  files.resize(2);
  EXPECT_EQ(files[0].name, "BLMX0202.rbi");
  EXPECT_EQ(files[1].name, "DVUX0202.rbi");
  for (const FirmwareFile& file : files) {
    const auto& rbi = std::get<RbiContent>(file.content);
    EXPECT_EQ(rbi.partId, file.name.substr(0, 4));
    EXPECT_EQ(rbi.version, 0x1161);
    EXPECT_NE(rbi.payloadBytes % 0x20000, 0u) << "ends inside a block";
    EXPECT_LT(rbi.payloadBytes, 0x1E0000u) << "leaves the top block to the stamp";
    EXPECT_EQ(BytesOf(file, 1).size(), rbi.payloadBytes + 38);
  }
}

TEST(ReleaseFiles, HaveOneForEachPartOfTheBox) {
  struct Case {
    const char* name;
    const char* id;
    std::uint16_t version;
    std::size_t payloadAtLeast;
    std::size_t sent;  // without the header of 38 bytes where that is not sent
  };
  const Case cases[] = {{"PLGR0201.rbi", "PLGR", 0x0220, 1'150'000, 38}, {"BROX0201.rbi", "BROX", 0x0225, 650'000, 38},
                        {"ULMN0101.rbi", "ULMN", 0x001C, 29'000, 0},     {"TULM0002.rbi", "TULM", 0x0002, 29'000, 0},
                        {"VULM0101.rbi", "VULM", 0x0001, 29'000, 0},     {"TLM_0104.rbi", "TLM_", 0x0232, 750'000, 38}};
  const auto files = simulator::ReleaseFiles();
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    EXPECT_EQ(files[2 + i].name, cases[i].name);
    const auto& rbi = std::get<RbiContent>(files[2 + i].content);
    EXPECT_EQ(rbi.partId, cases[i].id);
    EXPECT_EQ(rbi.version, cases[i].version) << cases[i].name;
    EXPECT_GE(rbi.payloadBytes, cases[i].payloadAtLeast) << cases[i].name;
    EXPECT_NE((rbi.payloadBytes + cases[i].sent) % 1970, 0u) << "ends inside a piece: " << cases[i].name;
    EXPECT_NE((rbi.payloadBytes + cases[i].sent) % 4, 0u) << "ends inside a word: " << cases[i].name;
  }
}

TEST(ReleaseFiles, HaveOneForEachPartOfTheOrboQx) {
  struct Case {
    const char* name;
    const char* id;
    std::uint16_t version;
    std::size_t payloadAtLeast;
    std::size_t payloadAtMost;
    std::size_t sent;  // without the header of 38 bytes where that is not sent
  };
  const Case cases[] = {
      {"SPCT.rbi", "SPCR", 0x000B, 300'000, 750'000, 38}, {"PICO.rbi", "PICO", 0x0123, 200'000, 300'000, 38},
      {"XNDR.rbi", "XNDR", 0x030F, 300'000, 750'000, 38}, {"YRVL.rbi", "YRVL", 0x0222, 300'000, 750'000, 38},
      {"YRVX.rbi", "YRVX", 0x0222, 300'000, 750'000, 38}, {"QNDL.rbi", "QNDL", 0x0100, 300'000, 750'000, 38},
      {"TSKP.rbi", "TSKP", 0x0010, 5'000, 10'000, 0},     {"ENCD.rbi", "ENCD", 0x0204, 300'000, 750'000, 38},
      {"ENSC.rbi", "ENSC", 0x0020, 300'000, 750'000, 38}, {"ENVC.rbi", "ENVC", 0x000A, 300'000, 750'000, 38},
      {"VQPW.rbi", "VQPW", 0x010A, 5'000, 10'000, 0},     {"VQPX.rbi", "VQPX", 0x010A, 5'000, 10'000, 0},
      {"JQPW.rbi", "JQPW", 0x010A, 5'000, 10'000, 0},     {"JQPX.rbi", "JQPX", 0x010A, 5'000, 10'000, 0},
      {"JQPY.rbi", "JQPY", 0x010A, 5'000, 10'000, 0}};
  const auto files = simulator::ReleaseFiles();
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    EXPECT_EQ(files[8 + i].name, cases[i].name);
    const auto& rbi = std::get<RbiContent>(files[8 + i].content);
    EXPECT_EQ(rbi.partId, cases[i].id);
    EXPECT_EQ(rbi.version, cases[i].version) << cases[i].name;
    EXPECT_GE(rbi.payloadBytes, cases[i].payloadAtLeast) << cases[i].name;
    EXPECT_LE(rbi.payloadBytes, cases[i].payloadAtMost) << cases[i].name;
    EXPECT_NE((rbi.payloadBytes + cases[i].sent) % 1970, 0u) << "ends inside a piece: " << cases[i].name;
  }
}

TEST(ReleaseFiles, HaveOneForTheKarvels) {
  const FirmwareFile file = simulator::ReleaseFiles().back();
  EXPECT_EQ(file.name, "KRVL0101.rbi");
  const auto bytes = BytesOf(file, 1);
  ASSERT_GT(bytes.size(), 1'000u);
  EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 22), std::string("ORBO.RBI"
                                                                        "\x00\x00\x00\x26"
                                                                        "R0017 KRVL",
                                                                        22));
  // Behind the header of 38 bytes; the version is in row 0, and in the USERCODE with which the parts are compared.
  EXPECT_EQ(std::string(bytes.begin() + 38, bytes.begin() + 47), "__VME2.0\xF1");
  const std::string all(bytes.begin(), bytes.end());
  EXPECT_THAT(all, testing::HasSubstr(std::string("\x14\x00KV\x00\x17\x70", 7)));
  EXPECT_EQ(simulator::MakeKarvelRows(0x00170000, 1)[0][1], 0x17);
  EXPECT_EQ(bytes, BytesOf(file, 1));
  EXPECT_NE(bytes, BytesOf(file, 2));
}

TEST(FirmwareFile, OfAKarvelIsSeededWhereItsSizeIsGiven) {
  EXPECT_EQ(BytesOf({"KRVL0101.rbi", RbiContent{"KRVL", 0x0017, 3}}, 1).size(), 41u);
}

TEST(FirmwareFile, OfACpldBeginsItsPayloadWithTheVersion) {
  for (const char* id : {"ULMN", "TULM", "VULM", "TSKP", "VQPW", "VQPX", "JQPW", "JQPX", "JQPY"}) {
    const auto bytes = BytesOf({"a.rbi", RbiContent{id, 0x1A2B, 3}}, 1);
    ASSERT_EQ(bytes.size(), 41u);
    EXPECT_EQ(bytes[38], 0x1A) << id;
    EXPECT_EQ(bytes[39], 0x2B) << id;
    EXPECT_EQ(BytesOf({"a.rbi", RbiContent{id, 0x1A2B, 1}}, 1).size(), 39u);
  }
  const auto other = BytesOf({"a.rbi", RbiContent{"PLGR", 0x1A2B, 3}}, 1);
  EXPECT_FALSE(other[38] == 0x1A && other[39] == 0x2B);
}

TEST(FirmwareFile, FollowsItsNameAndSeed) {
  const FirmwareFile file{"a.rbi", RbiContent{"BLMX", 1, 100}};
  EXPECT_EQ(BytesOf(file, 1), BytesOf(file, 1));
  EXPECT_NE(BytesOf(file, 1), BytesOf(file, 2));
  EXPECT_NE(BytesOf(file, 1), BytesOf({"b.rbi", file.content}, 1));
  EXPECT_EQ(BytesOf({"raw", std::vector<std::uint8_t>{1, 2, 3}}, 1), (std::vector<std::uint8_t>{1, 2, 3}));
  EXPECT_EQ(BytesOf({"empty.rbi", RbiContent{"BLMX", 1, 0}}, 1).size(), 38u);
}

// Benches made long ago must stay what they were.
TEST(SeededBytes, NeverChange) {
  EXPECT_THAT(simulator::SeededBytes(0, "", 9),
              testing::ElementsAre(0xAF, 0xCD, 0x1D, 0x7B, 0x39, 0xA8, 0x20, 0xE2, 0xF4));
  EXPECT_NE(simulator::SeededBytes(1, "a", 8), simulator::SeededBytes(1, "b", 8));
  EXPECT_THAT(simulator::SeededBytes(1, "a", 0), testing::IsEmpty());
}

TEST(WriteFirmwareFiles, WritesThemIntoTheFolder) {
  const test_support::TempFolder folder;
  simulator::WriteFirmwareFiles(folder.Path(), {{"raw.bin", std::vector<std::uint8_t>{0x00, 0xFF}}}, 1);
  EXPECT_THAT(folder.ReadBytes("raw.bin"), testing::ElementsAre(0x00, 0xFF));
  EXPECT_THAT(folder.Names(), testing::ElementsAre("raw.bin"));
}

TEST(WriteFirmwareFiles, NamesTheFileThatCannotBeWritten) {
  const test_support::TempFolder folder;
  folder.Write("folder/inside", "x");
  try {
    simulator::WriteFirmwareFiles(folder.Path(), {{"folder", std::vector<std::uint8_t>{1}}}, 1);
    FAIL();
  } catch (const simulator::BenchError& error) {
    EXPECT_EQ(error.what(), folder.File("folder") + ": " + test_support::FolderFault());
  }
}

}  // namespace
