// The accessors that work on a header in memory.

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "container/RbiContainer.h"
#include "support/HexBlock.h"

namespace {

using namespace std::string_literals;

/// The bytes on the heap, exactly as many as there are, so that a sanitizer sees a read behind them.
std::vector<std::uint8_t> Bytes(const std::string& text) {
  return {text.begin(), text.end()};
}

/// A container whose header ends with its tagged text.
std::vector<std::uint8_t> Container(const std::string& taggedText, const std::string& payload = "") {
  std::string text = "ORBO.RBI\0\0\0 R1161;BLMX"s;
  text[11] = static_cast<char>(text.size() + taggedText.size());
  return Bytes(text + taggedText + payload);
}

/// Remembers the length of a header that is not looked at afterwards.
void RememberLength(std::uint32_t lengthBytes) {
  std::vector<std::uint8_t> header = Bytes("ORBO.RBI\0\0\0\0"s);
  for (int i = 0; i < 4; ++i)
    header[8u + static_cast<unsigned>(i)] = static_cast<std::uint8_t>(lengthBytes >> (24 - 8 * i));
  ASSERT_TRUE(ParseRbiHeader(header));
  ASSERT_EQ(GetRbiHeaderLength(), lengthBytes);
}

/// The copied text is what differs from a buffer full of dots, so a terminator would show.
std::string RevisionOf(std::span<const std::uint8_t> buffer, int expectedResult) {
  std::array<char, 4> text;
  text.fill('.');
  EXPECT_EQ(GetRbiRevision(buffer, text), expectedResult);
  return {text.begin(), text.end()};
}

const std::string kNineteenDots(19, '.');

std::string StringOf(std::span<const std::uint8_t> buffer, int expectedResult) {
  std::array<char, 19> text;
  text.fill('.');
  EXPECT_EQ(GetRbiStringField(buffer, text), expectedResult);
  return {text.begin(), text.end()};
}

std::string StringOfContainer(const std::string& taggedText, int expectedResult) {
  const auto container = Container(taggedText);
  EXPECT_TRUE(ParseRbiHeader(container));
  return StringOf(container, expectedResult);
}

constexpr std::int32_t kUntouched = 777;
using Numbers = std::pair<std::int32_t, std::int32_t>;
constexpr Numbers kNoNumbers = {kUntouched, kUntouched};

Numbers NumbersOf(std::span<const std::uint8_t> buffer) {
  Numbers numbers = kNoNumbers;
  EXPECT_EQ(GetRbiNumberField(buffer, numbers.first, numbers.second), -1);  // whatever was found
  return numbers;
}

Numbers NumbersOfContainer(const std::string& taggedText) {
  const auto container = Container(taggedText);
  EXPECT_TRUE(ParseRbiHeader(container));
  return NumbersOf(container);
}

TEST(RbiMagic, IsTheFirstEightBytes) {
  EXPECT_TRUE(IsRbi(Bytes("ORBO.RBI")));
  EXPECT_TRUE(IsRbi(Bytes("ORBO.RBI and more")));
  EXPECT_FALSE(IsRbi({}));
  EXPECT_FALSE(IsRbi(Bytes("ORBO.RB")));
  EXPECT_FALSE(IsRbi(Bytes("ORBO.RBJ")));
  EXPECT_FALSE(IsRbi(Bytes(" ORBO.RBI")));
}

TEST(RbiHeaderLength, IsZeroAtTheStartOfTheProcess) {
  EXPECT_EQ(GetRbiHeaderLength(), 0u);
}

TEST(RbiHeaderLength, IsRememberedUntilReset) {
  EXPECT_TRUE(ParseRbiHeader(Bytes("ORBO.RBI\x01\x23\xAB\xCD"s)));
  EXPECT_EQ(GetRbiHeaderLength(), 0x0123ABCDu);
  ResetRbiHeader();
  EXPECT_EQ(GetRbiHeaderLength(), 0u);
}

TEST(RbiHeaderLength, StaysWhereParsingFails) {
  RememberLength(39);
  EXPECT_FALSE(ParseRbiHeader(Bytes("ORBO.RBX\0\0\0\x16R1161;BLMX"s)));
  EXPECT_FALSE(ParseRbiHeader(Bytes("ORBO.RBI\0\0\0"s)));
  EXPECT_FALSE(ParseRbiHeader({}));
  EXPECT_EQ(GetRbiHeaderLength(), 39u);
}

TEST(RbiPayload, StandsBehindTheHeader) {
  const auto container = Container("S:a;", "payload");
  ASSERT_TRUE(ParseRbiHeader(container));
  std::uint32_t sizeBytes = 33;
  EXPECT_EQ(GetRbiPayload(container, &sizeBytes), container.data() + 26);
  EXPECT_EQ(sizeBytes, 7u);
  EXPECT_EQ(GetRbiPayload(container, nullptr), container.data() + 26);
}

TEST(RbiPayload, IsTheBufferItselfWithoutTheMagic) {
  RememberLength(10);
  const auto buffer = Bytes("no container at all");
  std::uint32_t sizeBytes = 19;
  EXPECT_EQ(GetRbiPayload(buffer, &sizeBytes), buffer.data());
  EXPECT_EQ(sizeBytes, 19u);
  EXPECT_EQ(GetRbiPayload(buffer, nullptr), buffer.data());
}

TEST(RbiPayload, IsEmptyWhereTheHeaderIsLongerThanTheContainer) {
  const auto container = Container("", "payload");  // 29 bytes
  for (const std::uint32_t lengthBytes : {29u, 30u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
    RememberLength(lengthBytes);
    std::uint32_t sizeBytes = 29;
    EXPECT_EQ(GetRbiPayload(container, &sizeBytes), container.data() + 29);
    EXPECT_EQ(sizeBytes, 0u);
    EXPECT_EQ(GetRbiPayload(container, nullptr), container.data() + 29);
  }
}

TEST(RbiPayload, EndsWhereTheSizeOrTheBufferEnds) {
  const auto container = Container("", "payload");
  RememberLength(22);
  std::uint32_t small = 20;
  EXPECT_EQ(GetRbiPayload(container, &small), container.data() + 20);
  EXPECT_EQ(small, 0u);
  std::uint32_t large = 1000;
  EXPECT_EQ(GetRbiPayload(container, &large), container.data() + 22);
  EXPECT_EQ(large, 7u);
}

struct Revision {
  std::string digits;
  std::string copied;
};

TEST(RbiRevision, DropsAllLeadingZerosAndIsNotTerminated) {
  for (const Revision& revision : {Revision{"1161", "1161"}, Revision{"0202", "202."}, Revision{"00F0", "F0.."},
                                   Revision{"0001", "1..."}, Revision{"0000", "...."}, Revision{"000 ", " ..."}}) {
    const auto buffer = Bytes("ORBO.RBI\0\0\0\x16R"s + revision.digits + ";BLMX");
    ASSERT_TRUE(ParseRbiHeader(buffer));
    EXPECT_EQ(RevisionOf(buffer, 0), revision.copied) << revision.digits;
  }
}

TEST(RbiRevision, ReportsSuccessAndWritesNothingWithoutTheMagic) {
  RememberLength(22);
  EXPECT_EQ(RevisionOf(Bytes("ORBO.RBX\0\0\0\x16R1161;BLMX"s), 0), "....");
  EXPECT_EQ(RevisionOf({}, 0), "....");
}

TEST(RbiRevision, NeedsARememberedLengthOf13) {
  const auto container = Container("");
  ResetRbiHeader();
  EXPECT_EQ(RevisionOf(container, -1), "....");
  RememberLength(12);
  EXPECT_EQ(RevisionOf(container, -1), "....");
  RememberLength(13);
  EXPECT_EQ(RevisionOf(container, 0), "1161");
}

TEST(RbiRevision, NeedsItsTagAndAllItsDigits) {
  RememberLength(22);
  EXPECT_EQ(RevisionOf(Bytes("ORBO.RBI\0\0\0\x16r1161;BLMX"s), -1), "....");
  EXPECT_EQ(RevisionOf(Bytes("ORBO.RBI\0\0\0\x16R116"s), -1), "....");
  EXPECT_EQ(RevisionOf(Bytes("ORBO.RBI"s), -1), "....");
  EXPECT_EQ(RevisionOf(Bytes("ORBO.RBI\0\0\0\x16R1161"s), 0), "1161");
}

struct StringField {
  std::string taggedText;
  std::string copied;
};

TEST(RbiStringField, IsTheTextUpToItsSemicolonAndIsNotTerminated) {
  for (const StringField& field :
       {StringField{"S:Zerin;", "Zerin.............."}, StringField{"S:;", kNineteenDots},
        StringField{"M:01.02;S:a b;S:second;", "a b................"}, StringField{"xxS:S:;;", "S:................."},
        StringField{"S:1234567890123456789;", "1234567890123456789"}})
    EXPECT_EQ(StringOfContainer(field.taggedText, 0), field.copied) << field.taggedText;
}

TEST(RbiStringField, IsRefused) {
  for (const std::string& taggedText : {
           ""s, "no tag"s, "S :a;"s, "s:a;"s, "S"s, "S:"s, "S:a"s,
           "S:12345678901234567890;"s,    // 20 characters
           "S:12345678901234567890S:a;"s  // only the first tag counts
       })
    EXPECT_EQ(StringOfContainer(taggedText, -1), kNineteenDots) << taggedText;
}

TEST(RbiStringField, StandsWhollyInsideTheRememberedLength) {
  const auto container = Container("S:abc;", "S:payload;");
  for (const std::uint32_t lengthBytes : {0u, 22u, 23u, 24u, 27u}) {
    RememberLength(lengthBytes);
    EXPECT_EQ(StringOf(container, -1), kNineteenDots) << lengthBytes;
  }
  RememberLength(28);
  EXPECT_EQ(StringOf(container, 0), "abc................");
}

TEST(RbiStringField, IsNotSoughtBehindTheBuffer) {
  RememberLength(0xFFFFFFFF);
  EXPECT_EQ(StringOf(Bytes("ORBO.RBI\0\0\0\0R1161;BLMX"s), -1), kNineteenDots);
  EXPECT_EQ(StringOf(Bytes("ORBO.RBI\0\0\0\0R1161;BLMXS"s), -1), kNineteenDots);
  EXPECT_EQ(StringOf(Bytes("ORBO.RBI\0\0\0\0R1161;BLMXS:abc"s), -1), kNineteenDots);
  EXPECT_EQ(StringOf(Bytes("ORBO.RBI\0\0\0\0R1161;BLMXS:abc;"s), 0), "abc................");
}

TEST(RbiStringField, NeedsTheMagic) {
  RememberLength(40);
  EXPECT_EQ(StringOf(Bytes("ORBO.RBX\0\0\0\x28R1161;BLMXS:abc;"s), -1), kNineteenDots);
}

// The search does not begin behind the fixed fields: a length of 0x533A spells the tag.
TEST(RbiStringField, IsFoundInsideTheBinaryLength) {
  const auto container = Bytes("ORBO.RBI\0\0S:R1161;BLMXS:late;"s);
  ASSERT_TRUE(ParseRbiHeader(container));
  ASSERT_EQ(GetRbiHeaderLength(), 0x533Au);
  EXPECT_EQ(StringOf(container, 0), "R1161..............");
}

struct NumberField {
  std::string taggedText;
  Numbers numbers;
};

TEST(RbiNumberField, IsTwoNumbersAndNeverASuccess) {
  for (const NumberField& field :
       {NumberField{"M:07.24;", {7, 24}}, NumberField{"M:0000099", {0, 0}}, NumberField{"M:99/99", {99, 99}},
        NumberField{"S:a;M:12:34;M:56:78;", {12, 34}}, NumberField{"M: 7- 8", {7, 8}}, NumberField{"M:-1.+2", {-1, 2}},
        NumberField{"M:5x.x5", {5, 0}}, NumberField{"M:ab.--", {0, 0}}, NumberField{"M:\xFF\xFF\xFF\xFF\xFF", {0, 0}}})
    EXPECT_EQ(NumbersOfContainer(field.taggedText), field.numbers) << field.taggedText;
}

TEST(RbiNumberField, LeavesBothNumbersWhereItIsNotFound) {
  for (const std::string& taggedText : {""s, "M 07.24;"s, "m:07.24;"s, "M"s, "M:"s, "M:07.2"s})
    EXPECT_EQ(NumbersOfContainer(taggedText), kNoNumbers) << taggedText;
}

TEST(RbiNumberField, StandsWhollyInsideTheRememberedLength) {
  const auto container = Container("M:07.24", "M:01.02");
  for (const std::uint32_t lengthBytes : {0u, 22u, 23u, 24u, 28u}) {
    RememberLength(lengthBytes);
    EXPECT_EQ(NumbersOf(container), kNoNumbers) << lengthBytes;
  }
  RememberLength(29);
  EXPECT_EQ(NumbersOf(container), Numbers(7, 24));
}

TEST(RbiNumberField, IsNotSoughtBehindTheBuffer) {
  RememberLength(0xFFFFFFFF);
  EXPECT_EQ(NumbersOf(Bytes("ORBO.RBI\0\0\0\0R1161;BLMXM"s)), kNoNumbers);
  EXPECT_EQ(NumbersOf(Bytes("ORBO.RBI\0\0\0\0R1161;BLMXM:07.2"s)), kNoNumbers);
}

TEST(RbiNumberField, NeedsTheMagic) {
  RememberLength(40);
  EXPECT_EQ(NumbersOf(Bytes("ORBO.RBX\0\0\0\x28R1161;BLMXM:07.24;"s)), kNoNumbers);
}

// Parsing one header governs how the next one is read.
TEST(RbiAccessors, ShareOneRememberedLength) {
  const auto longer = Container("S:abc;M:07.24;", "payload");
  const auto shorter = Container("S:a;", "M:01.02");
  ASSERT_TRUE(ParseRbiHeader(longer));
  std::uint32_t sizeBytes = 33;
  EXPECT_EQ(GetRbiPayload(shorter, &sizeBytes), shorter.data() + 33);
  EXPECT_EQ(NumbersOf(shorter), Numbers(1, 2));  // out of the payload
  ASSERT_TRUE(ParseRbiHeader(shorter));
  EXPECT_EQ(StringOf(longer, -1), kNineteenDots);  // cut before the ";"
}

TEST(RbiAccessors, DecodeTheExampleOfThePage) {
  const std::vector<std::uint8_t> container = test_support::ReadHexBlock(RBI_PAGE);
  ASSERT_TRUE(ParseRbiHeader(container));
  EXPECT_EQ(GetRbiHeaderLength(), 39u);
  EXPECT_EQ(RevisionOf(container, 0), "1161");
  EXPECT_EQ(StringOf(container, 0), "Zerin..............");
  EXPECT_EQ(NumbersOf(container), Numbers(7, 24));
  auto sizeBytes = static_cast<std::uint32_t>(container.size());
  const std::uint8_t* const payload = GetRbiPayload(container, &sizeBytes);
  EXPECT_EQ(std::vector<std::uint8_t>(payload, payload + sizeBytes),
            (std::vector<std::uint8_t>{0xDE, 0xAD, 0xBE, 0xEF}));
}

}  // namespace
