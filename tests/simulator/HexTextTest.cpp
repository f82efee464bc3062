#include <gtest/gtest.h>

#include "simulator/HexText.h"
#include "simulator/ProtocolErrors.h"

using simulator::Hex;
using simulator::HexOfBytes;
using simulator::ParseHex;
using simulator::ParseHexBytes;
using simulator::ProtocolErrors;

namespace {

TEST(HexText, FillsWithZeros) {
  EXPECT_EQ(Hex(0, 1), "0");
  EXPECT_EQ(Hex(0, 0), "0");
  EXPECT_EQ(Hex(0x1161, 4), "1161");
  EXPECT_EQ(Hex(0xAB, 8), "000000ab");
  EXPECT_EQ(Hex(0x12345, 2), "12345") << "never cut";
  EXPECT_EQ(Hex(~std::uint64_t{0}, 4), "ffffffffffffffff");
}

TEST(HexText, ReadsDigitsAndNothingElse) {
  EXPECT_EQ(ParseHex("1161", 4), 0x1161u);
  EXPECT_EQ(ParseHex("aF", 4), 0xAFu);
  EXPECT_EQ(ParseHex("ffffffffffffffff", 16), ~std::uint64_t{0});
  for (const char* bad : {"", "12345", "0x1", "+1", "-1", " 1", "1 ", "g"})
    EXPECT_EQ(ParseHex(bad, 4), std::nullopt) << bad;
  EXPECT_EQ(ParseHex("00000000000000001", 99), std::nullopt);
}

TEST(HexText, ReadsAVersionWithADot) {
  EXPECT_EQ(simulator::ParseDottedVersion("1a.5 b"), 0x1A05);
  EXPECT_EQ(simulator::ParseDottedVersion("02.0F"), 0x020F);
  for (const char* bad : {"", "225", ".5", "2.", "2. 5", " 2.5", "100.5", "2.100", "x.5"})
    EXPECT_EQ(simulator::ParseDottedVersion(bad), std::nullopt) << bad;
}

TEST(HexText, ReadsAndWritesBytes) {
  const std::vector<std::uint8_t> bytes = {0x00, 0xFF, 0x1A};
  EXPECT_EQ(HexOfBytes(bytes), "00ff1a");
  EXPECT_EQ(ParseHexBytes("00fF1a"), bytes);
  EXPECT_EQ(ParseHexBytes(""), std::vector<std::uint8_t>());
  for (const char* bad : {"0", "00f", "0g", "g0", "0 "})
    EXPECT_EQ(ParseHexBytes(bad), std::nullopt) << bad;
}

TEST(ProtocolErrors, KeepsAHundredTextsAndCountsAll) {
  ProtocolErrors errors;
  EXPECT_EQ(errors.total(), 0u);
  for (int i = 0; i < 103; ++i)
    errors.Add("error " + std::to_string(i));
  EXPECT_EQ(errors.total(), 103u);
  ASSERT_EQ(errors.texts().size(), 100u);
  EXPECT_EQ(errors.texts().front(), "error 0");
  EXPECT_EQ(errors.texts().back(), "error 99");
}

TEST(ProtocolErrors, RestoresWithinItsLimits) {
  const ProtocolErrors many(std::vector<std::string>(101, "x"), 7);
  EXPECT_EQ(many.texts().size(), 100u);
  EXPECT_EQ(many.total(), 101u);
  const ProtocolErrors few({"x"}, 7);
  EXPECT_EQ(few.total(), 7u);
}

}  // namespace
