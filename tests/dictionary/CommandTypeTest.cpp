#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "dictionary/CommandType.h"

namespace {

using TalcPathPrivate::CommandType;
using TalcPathPrivate::DecodeCommandType;
using TalcPathPrivate::EncodeCommandType;
using Major = CommandType::Major;

CommandType Type(int major, int minor, int function) {
  return {static_cast<Major>(major), static_cast<std::int16_t>(minor), static_cast<std::int16_t>(function)};
}

using Bytes = std::array<std::uint8_t, 2>;

TEST(CommandType, IsDiagnosticWithoutCodesWhenNew) {
  const CommandType type;
  EXPECT_EQ(static_cast<int>(type.major), 3);
  EXPECT_EQ(type.minor, -1);
  EXPECT_EQ(type.function, -1);
}

TEST(CommandType, OrdersByMajorThenMinorThenFunction) {
  const std::vector<CommandType> ascending = {
      Type(-1, 63, 127), Type(0, -1, 127), Type(0, 0, -1), Type(0, 0, 0), Type(0, 0, 1),
      Type(0, 1, 0),     Type(1, 0, 0),    Type(1, 0, 2),  Type(1, 2, 0), Type(2, 0, 0),
      Type(3, -1, -1),   Type(3, 0, 0),    Type(3, 63, 0), Type(4, 0, 0),
  };
  for (std::size_t i = 0; i < ascending.size(); ++i) {
    for (std::size_t j = 0; j < ascending.size(); ++j) {
      EXPECT_EQ(ascending[i] < ascending[j], i < j) << i << ' ' << j;
      EXPECT_EQ(ascending[i] > ascending[j], i > j) << i << ' ' << j;
      EXPECT_EQ(ascending[i] == ascending[j], i == j) << i << ' ' << j;
    }
  }
}

TEST(CommandType, IsEqualOnlyInAllThree) {
  EXPECT_EQ(Type(1, 2, 3), Type(1, 2, 3));
  EXPECT_NE(Type(1, 2, 3), Type(0, 2, 3));
  EXPECT_NE(Type(1, 2, 3), Type(1, 0, 3));
  EXPECT_NE(Type(1, 2, 3), Type(1, 2, 0));
}

TEST(CommandType, NumbersItsMajorTypesFromVideoToDiagnostic) {
  EXPECT_EQ(static_cast<int>(Major::VIDEO), 0);
  EXPECT_EQ(static_cast<int>(Major::AUDIO), 1);
  EXPECT_EQ(static_cast<int>(Major::SYSTEM), 2);
  EXPECT_EQ(static_cast<int>(Major::DIAGNOSTIC), 3);
}

struct Code {
  CommandType type;
  Bytes send;
  Bytes request;
};

class CommandTypeEncodes : public testing::TestWithParam<Code> {};

TEST_P(CommandTypeEncodes, BothDirections) {
  EXPECT_EQ(EncodeCommandType(GetParam().type, false), GetParam().send);
  EXPECT_EQ(EncodeCommandType(GetParam().type, true), GetParam().request);
}

const std::vector<Code> kCodes = {
    {Type(0, 0, 0), {0x00, 0x00}, {0x00, 0x01}},
    {Type(1, 0, 23), {0x40, 0x2E}, {0x40, 0x2F}},
    {Type(2, 0, 42), {0x80, 0x54}, {0x80, 0x55}},
    {Type(0, 1, 2), {0x01, 0x04}, {0x01, 0x05}},
    {Type(2, 33, 64), {0xA1, 0x80}, {0xA1, 0x81}},
    {Type(3, 63, 127), {0xFF, 0xFE}, {0xFF, 0xFF}},
    // The function is doubled and cut to its byte without any test. It is meant.
    {Type(1, 0, 128), {0x40, 0x00}, {0x40, 0x01}},
    {Type(1, 0, 200), {0x40, 0x90}, {0x40, 0x91}},
    {Type(1, 0, 255), {0x40, 0xFE}, {0x40, 0xFF}},
    {Type(1, 0, 257), {0x40, 0x02}, {0x40, 0x03}},
    {Type(1, 0, -1), {0x40, 0xFE}, {0x40, 0xFF}},
    {Type(1, 0, 32767), {0x40, 0xFE}, {0x40, 0xFF}},
    {Type(1, 0, -32768), {0x40, 0x00}, {0x40, 0x01}},
};
INSTANTIATE_TEST_SUITE_P(CommandType, CommandTypeEncodes, testing::ValuesIn(kCodes));

class CommandTypeRefuses : public testing::TestWithParam<CommandType> {};

TEST_P(CommandTypeRefuses, ToEncodeWhatDoesNotFitTheFirstByte) {
  EXPECT_EQ(EncodeCommandType(GetParam(), false), std::nullopt);
  EXPECT_EQ(EncodeCommandType(GetParam(), true), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(CommandType, CommandTypeRefuses,
                         testing::Values(CommandType(), Type(4, 0, 0), Type(-1, 0, 0), Type(256, 0, 0),
                                         Type(std::numeric_limits<int>::max(), 0, 0),
                                         Type(std::numeric_limits<int>::min(), 0, 0), Type(0, -1, 0), Type(0, 64, 0),
                                         Type(3, 32767, 0), Type(3, -32768, 0)));

TEST(CommandType, DecodesEveryPairOfBytesAndEncodesItBack) {
  for (int first = 0; first < 256; ++first) {
    for (int second = 0; second < 256; ++second) {
      const auto coded = DecodeCommandType(static_cast<std::uint8_t>(first), static_cast<std::uint8_t>(second));
      ASSERT_EQ(coded.type, Type(first / 64, first % 64, second / 2)) << first << ' ' << second;
      ASSERT_EQ(coded.isRequest, second % 2 == 1) << first << ' ' << second;
      const Bytes bytes = {static_cast<std::uint8_t>(first), static_cast<std::uint8_t>(second)};
      ASSERT_EQ(EncodeCommandType(coded.type, coded.isRequest), bytes) << first << ' ' << second;
    }
  }
}

TEST(CommandType, EncodesEveryTypeInRangeSoThatItDecodesBack) {
  for (int major = 0; major < 4; ++major) {
    for (int minor = 0; minor < 64; ++minor) {
      for (int function = 0; function < 128; ++function) {
        const auto bytes = EncodeCommandType(Type(major, minor, function), false);
        ASSERT_TRUE(bytes) << major << ' ' << minor << ' ' << function;
        ASSERT_EQ(DecodeCommandType((*bytes)[0], (*bytes)[1]).type, Type(major, minor, function));
      }
    }
  }
}

TEST(CommandType, KnowsTheWordsOfItsMajorTypes) {
  EXPECT_EQ(TalcPathPrivate::FindMajor("VIDEO"), Major::VIDEO);
  EXPECT_EQ(TalcPathPrivate::FindMajor("AUDIO"), Major::AUDIO);
  EXPECT_EQ(TalcPathPrivate::FindMajor("SYSTEM"), Major::SYSTEM);
  EXPECT_EQ(TalcPathPrivate::FindMajor("DIAGNOSTIC"), Major::DIAGNOSTIC);
  for (const char* const word : {"", "video", "Video", "VIDE", "VIDEOS", " VIDEO", "INVALID", "*INVALID*", "0"})
    EXPECT_EQ(TalcPathPrivate::FindMajor(word), std::nullopt) << word;
}

TEST(CommandType, NamesAMajorTypeThatIsNoneAsTold) {
  EXPECT_STREQ(TalcPathPrivate::MajorWord(Major::VIDEO, "?"), "VIDEO");
  EXPECT_STREQ(TalcPathPrivate::MajorWord(Major::DIAGNOSTIC, "?"), "DIAGNOSTIC");
  EXPECT_STREQ(TalcPathPrivate::MajorWord(static_cast<Major>(4), "?"), "?");
  EXPECT_STREQ(TalcPathPrivate::MajorWord(static_cast<Major>(-1), "?"), "?");
}

}  // namespace
