#include <gtest/gtest.h>

#include <stdexcept>

#include "simulator/MorvakParts.h"
#include "simulator/Vpd.h"

using simulator::FindMorvakPart;
using simulator::kMorvakVersions;
using simulator::MorvakBoards;
using simulator::MorvakTexts;
using simulator::MorvakVersion;
using simulator::PartKind;

namespace {

const MorvakVersion& Version(std::string_view symbol) {
  for (const MorvakVersion& version : kMorvakVersions)
    if (version.symbol == symbol) return version;
  throw std::out_of_range(std::string(symbol));
}

MorvakBoards Board(std::uint32_t board, const std::string& partNumber) {
  return {{board, simulator::MakeVpdBlock("NAME", {{{"ZB", "1"}}, {{"PN", partNumber}}})}};
}

TEST(MorvakVersions, HaveTheDictionarysNumbers) {
  struct Case {
    const char* symbol;
    std::uint16_t number;
  };
  const Case cases[] = {{"MorvakFirmware", 0},        {"MorvakFPGA", 1},           {"MorvakTesk", 2},
                        {"MorvakCodec1FPGA", 3},      {"MorvakCodec1CPLD", 4},     {"MorvakCodec2FPGA", 5},
                        {"MorvakCodec2CPLD", 6},      {"MorvakCodec1VCID", 7},     {"MorvakCodec2VCID", 8},
                        {"MorvakFirmwareSafe", 9},    {"MorvakPower", 10},         {"MorvakFPGASafe", 11},
                        {"MorvakCodec1Firmware", 12}, {"MorvakCodec2Firmware", 13}};
  for (const Case& c : cases)
    EXPECT_EQ(Version(c.symbol).number, c.number) << c.symbol;
  EXPECT_EQ(std::size(kMorvakVersions), std::size(cases));
}

TEST(MorvakParts, TellTheirVersions) {
  struct Case {
    PartKind kind;
    std::uint8_t number;
    std::uint16_t version;
  };
  for (const Case& c : {Case{PartKind::kFirmware, 0, 0}, Case{PartKind::kFpga, 0, 1}, Case{PartKind::kFpga, 1, 3},
                        Case{PartKind::kFpga, 2, 5}, Case{PartKind::kFpga, 3, 7}, Case{PartKind::kFpga, 4, 8},
                        Case{PartKind::kCpld, 0, 2}, Case{PartKind::kCpld, 1, 10}}) {
    ASSERT_NE(FindMorvakPart(c.kind, c.number), nullptr);
    EXPECT_EQ(FindMorvakPart(c.kind, c.number)->version, c.version);
  }
  EXPECT_EQ(FindMorvakPart(PartKind::kFpga, 5), nullptr);
  EXPECT_EQ(FindMorvakPart(PartKind::kCpld, 2), nullptr);
  EXPECT_EQ(FindMorvakPart(PartKind::kFirmware, 1), nullptr);
}

TEST(MorvakParts, AreFoundByAnyOfTheirIds) {
  EXPECT_EQ(FindMorvakPart("QNDL"), FindMorvakPart(PartKind::kFpga, 0));
  EXPECT_EQ(FindMorvakPart("SPCR"), FindMorvakPart(PartKind::kFpga, 1));
  EXPECT_EQ(FindMorvakPart("JQPY"), FindMorvakPart(PartKind::kCpld, 1));
  for (const char* other : {"ULMN", "", "XND", "XNDR YRVL", "NDR ", "VQPW "})
    EXPECT_EQ(FindMorvakPart(other), nullptr) << other;
}

TEST(MorvakTexts, KeepATextForEachNumber) {
  MorvakTexts texts;
  texts.Set(10, "010a");
  texts.Set(0, "");
  EXPECT_EQ(texts.Of(10), "010a");
  EXPECT_EQ(texts.Of(0), "");
  EXPECT_EQ(texts.Of(1), std::nullopt);
  EXPECT_EQ(texts.Of(14), std::nullopt);
  texts.Set(10, std::nullopt);
  EXPECT_EQ(texts.Of(10), std::nullopt);
}

TEST(MorvakTexts, HoldVersionsInTwoForms) {
  const std::pair<const char*, std::optional<std::uint16_t>> cases[] = {
      {"0102abc", 0x0102},        {"01.02 abc", 0x0102},     {"030f", 0x030F},      {"1F0a", 0x1F0A},
      {"0120b", 0x0120},          {"01.2", 0x0102},          {"01.02", 0x0102},     {"", std::nullopt},
      {"012", std::nullopt},      {"UNKNOWN", std::nullopt}, {"01.", std::nullopt}, {"0x10", std::nullopt},
      {"01.02abc", std::nullopt}, {"x1.02", std::nullopt},   {"1.02", std::nullopt}};
  for (const auto& [text, version] : cases)
    EXPECT_EQ(simulator::VersionInText(text), version) << text;
  EXPECT_EQ(simulator::VersionInText(std::nullopt), std::nullopt);
}

struct RowCase {
  const char* symbol;
  std::uint32_t model;
  std::uint32_t board;
  const char* partNumber;
  const char* name;
};

TEST(MorvakRowName, GoesByModelAndPartNumbers) {
  const RowCase cases[] = {
      {"MorvakFirmware", 4, 0, "", "pico"},
      {"MorvakFirmware", 6, 0, "", "pico"},
      {"MorvakFPGA", 4, 0, "", "xandrel"},
      {"MorvakFPGA", 5, 0, "1-20164-1", "qindel"},
      {"MorvakFPGA", 5, 0, "1-20046-2", "yorvalen"},
      {"MorvakFPGA", 5, 0, "1-20046-1", "yorvalenx"},
      {"MorvakFPGA", 5, 0, "1-20046", "yorvalen"},
      {"MorvakFPGA", 5, 0, "1-20040-1", "MorvakFPGA"},
      {"MorvakFPGA", 6, 0, "1-20046-2", "MorvakFPGA"},
      {"MorvakTesk", 4, 0, "", "teskpro"},
      {"MorvakTesk", 5, 0, "", "teskpro"},
      {"MorvakTesk", 6, 0, "", "MorvakTesk"},
      {"MorvakPower", 4, 0, "1-20040-1", "vqxpwrx"},
      {"MorvakPower", 4, 0, "1-20040-2", "vqxpwr"},
      {"MorvakPower", 4, 0, "1-20046-1", "vqxpwr"},
      {"MorvakPower", 5, 0, "1-20040-1", "jqxpwrx"},
      {"MorvakPower", 5, 0, "1-20046-2", "jqxpwry"},
      {"MorvakPower", 5, 0, "1-20046-3", "jqxpwr"},
      {"MorvakPower", 5, 0, "1-20040-2", "jqxpwr"},
      {"MorvakPower", 5, 0, "none", "jqxpwr"},
      {"MorvakPower", 5, 1, "1-20046-3", "MorvakPower"},
      {"MorvakPower", 6, 0, "1-20040-1", "MorvakPower"},
      {"MorvakCodec1FPGA", 4, 2, "1-20173-1", "enc1b"},
      {"MorvakCodec1FPGA", 4, 2, "1-20035-1", "enc1"},
      {"MorvakCodec1FPGA", 4, 2, "1-30024-1", "spacer"},
      {"MorvakCodec1FPGA", 4, 2, "1-20036-1", "MorvakCodec1FPGA"},
      {"MorvakCodec1FPGA", 4, 3, "1-20173-1", "MorvakCodec1FPGA"},
      {"MorvakCodec1FPGA", 5, 2, "1-20173-1", "MorvakCodec1FPGA"},
      {"MorvakCodec1VCID", 4, 2, "1-20036-1", "vid1"},
      {"MorvakCodec1VCID", 4, 3, "1-20035-1", "MorvakCodec1VCID"},
      {"MorvakCodec2FPGA", 4, 3, "1-20173-1", "enc2b"},
      {"MorvakCodec2FPGA", 4, 3, "1-20035-1", "enc2"},
      {"MorvakCodec2FPGA", 4, 3, "1-30024-1", "MorvakCodec2FPGA"},
      {"MorvakCodec2VCID", 4, 3, "1-20035-1", "vid2"},
      {"MorvakCodec2VCID", 4, 2, "1-20035-1", "MorvakCodec2VCID"},
      {"MorvakFirmwareSafe", 4, 0, "1-20040-1", "MorvakFirmwareSafe"},
  };
  for (const RowCase& c : cases)
    EXPECT_EQ(MorvakRowName(Version(c.symbol), c.model, Board(c.board, c.partNumber)), c.name)
        << c.symbol << " of model " << c.model << " with " << c.partNumber << " on board " << c.board;
}

TEST(MorvakRowName, IsTheSymbolWhereABoardHasNoPartNumber) {
  const MorvakBoards boards = {{0, {0x78}}, {2, {0x90, 0xFF, 0xFF, 'P', 'N', 0x01, '1'}}};
  EXPECT_EQ(MorvakRowName(Version("MorvakPower"), 4, boards), "MorvakPower");
  EXPECT_EQ(MorvakRowName(Version("MorvakCodec1VCID"), 4, boards), "MorvakCodec1VCID");
}

}  // namespace
