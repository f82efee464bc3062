#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "container/ScanHex.h"

namespace {

struct Conversion {
  std::string text;
  std::uint32_t value;
};

class ScanHexConverts : public testing::TestWithParam<Conversion> {};

TEST_P(ScanHexConverts, Text) {
  std::uint32_t value = 255;
  EXPECT_TRUE(ScanHex32(GetParam().text.c_str(), value));
  EXPECT_EQ(value, GetParam().value);
}

const std::vector<Conversion> kConversions = {
    {"0", 0},
    {"0000", 0},
    {"1161", 0x1161},
    {"ABCD", 0xABCD},
    {"abcd", 0xABCD},
    {"019FafAG", 0x19FAFA},  // ends at the first character that is no digit
    {"1g", 1},
    {"12 34", 0x12},
    {"1\xE4", 1},
    // White space, sign and prefix, in this order, as often as scanf takes them.
    {" \t\n\v\f\r7", 7},
    {"+1F", 0x1F},
    {"-001", 0xFFFFFFFF},
    {" -1F", 0xFFFFFFE1},
    {"0x1F", 0x1F},
    {"0X1f", 0x1F},
    {"-0x1", 0xFFFFFFFF},
    {"00x1", 0},
    // The number is cut to its low 32 bits.
    {"FFFFFFFF", 0xFFFFFFFF},
    {"100000000", 0},
    {"123456789ABCDEF", 0x89ABCDEF},
    {"FFFFFFFFFFFFFFFF", 0xFFFFFFFF},
    {"-FFFFFFFFFFFFFFF", 1},
    {"-80000000", 0x80000000},
    {"1234567890123456789012345", 0x89012345},
};
INSTANTIATE_TEST_SUITE_P(ScanHex, ScanHexConverts, testing::ValuesIn(kConversions));

class ScanHexLeavesTheValue : public testing::TestWithParam<std::string> {};

TEST_P(ScanHexLeavesTheValue, WhereNothingConverts) {
  std::uint32_t value = 255;
  EXPECT_FALSE(ScanHex32(GetParam().c_str(), value));
  EXPECT_EQ(value, 255u);
}

INSTANTIATE_TEST_SUITE_P(ScanHex, ScanHexLeavesTheValue,
                         testing::Values("", "    ", "G", "zz", "-", "+", "--1", "+-1", "- 1", "0x", "0xG", "-0X", "x1",
                                         "\xFF\xFF\xFF\xFF",
                                         "\x1B"
                                         "1"));

}  // namespace
