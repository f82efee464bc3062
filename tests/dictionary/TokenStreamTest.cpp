#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "dictionary/TokenStream.h"

namespace {

using std::string_literals::operator""s;
using TalcPathPrivate::TokenStream;

TEST(TokenStream, PartsWordsAtSixKindsOfWhiteSpace) {
  TokenStream stream(" a\tb\rc\nd\ve\ff  \t\r\n\v\fg ");
  for (const char* const word : {"a", "b", "c", "d", "e", "f", "g"}) {
    EXPECT_EQ(stream.ReadWord(), word);
    EXPECT_FALSE(stream.AtEnd()) << word;
  }
  EXPECT_EQ(stream.ReadWord(), "");
  EXPECT_TRUE(stream.AtEnd());
}

TEST(TokenStream, KeepsEveryOtherByteInAWord) {
  std::string word;
  for (int c = 0; c < 256; ++c)
    if (c != ' ' && (c < '\t' || c > '\r')) word += static_cast<char>(c);
  const std::string block = "\n" + word + "\n";
  TokenStream stream(block);
  EXPECT_EQ(stream.ReadWord(), word);
  EXPECT_EQ(word.size(), 250u);
}

TEST(TokenStream, IsAtItsEndOnceAWordTouchedIt) {
  TokenStream stream("a b");
  EXPECT_FALSE(stream.AtEnd());
  EXPECT_EQ(stream.ReadWord(), "a");
  EXPECT_FALSE(stream.AtEnd());
  EXPECT_EQ(stream.ReadWord(), "b");
  EXPECT_TRUE(stream.AtEnd());
  EXPECT_EQ(stream.ReadWord(), "");
  EXPECT_TRUE(stream.AtEnd());
}

TEST(TokenStream, IsAtTheEndOfAnEmptyBlockOnlyAfterARead) {
  TokenStream stream("");
  EXPECT_FALSE(stream.AtEnd());
  EXPECT_EQ(stream.ReadWord(), "");
  EXPECT_TRUE(stream.AtEnd());
}

TEST(TokenStream, IsAtItsEndOnceANumberTouchedIt) {
  TokenStream stream("12");
  std::int32_t number = 0;
  EXPECT_TRUE(stream.ReadNumber(number));
  EXPECT_EQ(number, 12);
  EXPECT_TRUE(stream.AtEnd());
  EXPECT_FALSE(stream.ReadNumber(number));
  EXPECT_EQ(number, 12);
}

struct Number {
  std::string text;
  std::int32_t value;
  /// What the next read gives.
  std::string rest;
};

class TokenStreamReads : public testing::TestWithParam<Number> {};

TEST_P(TokenStreamReads, LongNumber) {
  TokenStream stream(GetParam().text);
  std::int32_t number = 77;
  EXPECT_TRUE(stream.ReadNumber(number));
  EXPECT_EQ(number, GetParam().value);
  EXPECT_EQ(stream.ReadWord(), GetParam().rest);
}

TEST_P(TokenStreamReads, ShortNumberIfItFits) {
  TokenStream stream(GetParam().text);
  std::int16_t number = 77;
  const bool fits = GetParam().value >= -32768 && GetParam().value <= 32767;
  EXPECT_EQ(stream.ReadNumber(number), fits);
  EXPECT_EQ(number, fits ? GetParam().value : 77);
  EXPECT_EQ(stream.ReadWord(), fits ? GetParam().rest : "");
}

const std::vector<Number> kNumbers = {
    {"0", 0, ""},
    {"12", 12, ""},
    {"12 next", 12, "next"},
    {"12abc", 12, "abc"},
    {"-1", -1, ""},
    {"+5", 5, ""},
    {"-0", 0, ""},
    {" \t\r\n\v\f7\n", 7, ""},
    {"0012", 12, ""},  // no octal
    {"0x10", 0, "x10"},
    {"1.5", 1, ".5"},
    {"1,000", 1, ",000"},
    {"1e3", 1, "e3"},
    {"3-4", 3, "-4"},
    {"5+", 5, "+"},
    {"12\xE4", 12, "\xE4"},
    {"12\0"s, 12, "\0"s},
    {"00000000000000000000000000000000000000000000000042", 42, ""},
    {"32767", 32767, ""},
    {"32768", 32768, ""},
    {"-32768", -32768, ""},
    {"-32769", -32769, ""},
    {"99999", 99999, ""},
    {"2147483647", 2147483647, ""},
    {"-2147483648", -2147483647 - 1, ""},
};
INSTANTIATE_TEST_SUITE_P(TokenStream, TokenStreamReads, testing::ValuesIn(kNumbers));

class TokenStreamFails : public testing::TestWithParam<std::string> {};

TEST_P(TokenStreamFails, LeavingTheNumberAndReadingNothingMore) {
  const std::string block = GetParam() + " word 5 ";
  TokenStream stream(block);
  std::int32_t number = -1;
  EXPECT_FALSE(stream.ReadNumber(number));
  EXPECT_EQ(number, -1);
  EXPECT_EQ(stream.ReadWord(), "");
  EXPECT_FALSE(stream.ReadNumber(number));
  EXPECT_EQ(number, -1);
  std::int16_t shortNumber = -1;
  EXPECT_FALSE(stream.ReadNumber(shortNumber));
  EXPECT_EQ(shortNumber, -1);
}

INSTANTIATE_TEST_SUITE_P(TokenStream, TokenStreamFails,
                         testing::Values("abc", "-", "+", "--1", "+-1", "- 1", "-abc", ".5", "x12", "\xB2"s,
                                         "\0"s
                                         "1",
                                         "2147483648", "-2147483649", "4294967296", "18446744073709551616",
                                         "-99999999999999999999999999999999999999"));

struct UnsignedNumber {
  std::string text;
  std::uint32_t value;
  /// What the next read gives.
  std::string rest;
};

class TokenStreamReadsUnsigned : public testing::TestWithParam<UnsignedNumber> {};

TEST_P(TokenStreamReadsUnsigned, Number) {
  TokenStream stream(GetParam().text);
  std::uint32_t number = 77;
  EXPECT_TRUE(stream.ReadNumber(number));
  EXPECT_EQ(number, GetParam().value);
  EXPECT_EQ(stream.ReadWord(), GetParam().rest);
}

const std::vector<UnsignedNumber> kUnsignedNumbers = {
    {"0", 0, ""},
    {"12 next", 12, "next"},
    {"+7", 7, ""},
    {" \t\r\n\v\f7\n", 7, ""},
    {"0012", 12, ""},
    {"0x10", 0, "x10"},
    {"12abc", 12, "abc"},
    {"2147483647", 2147483647, ""},
    {"2147483648", 2147483648, ""},
    {"4294967295", 4294967295, ""},
    {"00000000000000000000004294967295", 4294967295, ""},
};
INSTANTIATE_TEST_SUITE_P(TokenStream, TokenStreamReadsUnsigned, testing::ValuesIn(kUnsignedNumbers));

class TokenStreamFailsUnsigned : public testing::TestWithParam<std::string> {};

TEST_P(TokenStreamFailsUnsigned, LeavingTheNumberAndReadingNothingMore) {
  const std::string block = GetParam() + " word 5 ";
  TokenStream stream(block);
  std::uint32_t number = 77;
  EXPECT_FALSE(stream.ReadNumber(number));
  EXPECT_EQ(number, 77u);
  EXPECT_EQ(stream.ReadWord(), "");
  EXPECT_FALSE(stream.ReadNumber(number));
  EXPECT_EQ(number, 77u);
}

INSTANTIATE_TEST_SUITE_P(TokenStream, TokenStreamFailsUnsigned,
                         testing::Values("abc", "+", "++7", ".5", "4294967296", "4294967300", "18446744073709551616",
                                         "99999999999999999999999999999999999999"));

TEST(TokenStream, FailsToReadAnUnsignedNumberFromNothing) {
  for (const char* const block : {"", " ", "\r\n\t"}) {
    TokenStream stream(block);
    std::uint32_t number = 77;
    EXPECT_FALSE(stream.ReadNumber(number));
    EXPECT_EQ(number, 77u);
    EXPECT_TRUE(stream.AtEnd());
  }
}

TEST(TokenStream, IsAtItsEndOnceAnUnsignedNumberTouchedIt) {
  TokenStream stream("12 13");
  std::uint32_t number = 0;
  EXPECT_TRUE(stream.ReadNumber(number));
  EXPECT_FALSE(stream.AtEnd());
  EXPECT_TRUE(stream.ReadNumber(number));
  EXPECT_EQ(number, 13u);
  EXPECT_TRUE(stream.AtEnd());
}

TEST(TokenStream, FailsToReadANumberFromNothing) {
  for (const char* const block : {"", " ", "\r\n\t"}) {
    TokenStream stream(block);
    std::int16_t number = -1;
    EXPECT_FALSE(stream.ReadNumber(number));
    EXPECT_EQ(number, -1);
    EXPECT_TRUE(stream.AtEnd());
  }
}

}  // namespace
