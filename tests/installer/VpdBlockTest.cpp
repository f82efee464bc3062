#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "installer/VpdBlock.h"
#include "support/FailingAllocation.h"
#include "support/HexBlock.h"

namespace {

using namespace std::string_literals;

/// The bytes on the heap, exactly as many as there are, so that a sanitizer sees a read behind them.
std::vector<std::uint8_t> Bytes(const std::string& text) {
  return {text.begin(), text.end()};
}

VpdStatus Parsed(VpdBlock& parsed, const std::vector<std::uint8_t>& block) {
  EXPECT_EQ(parsed.Create(static_cast<std::int32_t>(block.size())), kVpdSuccess);
  return parsed.Parse(block);
}

VpdStatus ParseText(const std::string& text) {
  VpdBlock block;
  return Parsed(block, Bytes(text));
}

struct Field {
  VpdStatus status;
  std::string text;
  std::int32_t lengthBytes;
};

/// A field through a buffer of `capacity` bytes that were no zeros before.
Field GetField(const VpdBlock& block, std::string_view keyword, std::size_t capacity = 8) {
  std::vector<char> buffer(capacity, '#');
  std::int32_t lengthBytes = 12345;
  const VpdStatus status = block.GetField(keyword, buffer, &lengthBytes);
  return {status, std::string(buffer.begin(), buffer.end()), lengthBytes};
}

/// The text of a field that must be there.
std::string TextOf(const std::string& blockText, std::string_view keyword) {
  VpdBlock block;
  EXPECT_EQ(Parsed(block, Bytes(blockText)), kVpdSuccess);
  const Field field = GetField(block, keyword, 300);
  EXPECT_EQ(field.status, kVpdSuccess) << keyword;
  return field.status == kVpdSuccess ? field.text.substr(0, static_cast<std::size_t>(field.lengthBytes)) : "";
}

const std::string kTwoFields = "\x90\x0A\0ZB\x02\x30\x31ZC\x02\x30\x32\x78"s;
const std::string kEightZeros(8, '\0');

TEST(VpdBlock, StatusNumbersAreFixed) {
  EXPECT_EQ(kVpdSuccess, 0);
  EXPECT_EQ(kVpdBadArgument, 1);
  EXPECT_EQ(kVpdOutOfMemory, 2);
  EXPECT_EQ(kVpdNotParsed, 3);
  EXPECT_EQ(kVpdDamagedBlock, 4);
  EXPECT_EQ(kVpdFieldNotFound, 5);
  EXPECT_EQ(kVpdNoRoomForField, 6);
}

TEST(VpdBlock, IsMadeForTwoTo32480Bytes) {
  VpdBlock block;
  for (const std::int32_t sizeBytes : {2, 1999, 8192, 32480})
    EXPECT_EQ(block.Create(sizeBytes), kVpdSuccess);
  for (const std::int32_t sizeBytes : {1, 0, -1, INT32_MIN, 32481, INT32_MAX})
    EXPECT_EQ(block.Create(sizeBytes), kVpdBadArgument) << sizeBytes;
}

TEST(VpdBlock, StaysAsItWasWhenASizeIsRefused) {
  VpdBlock block;
  ASSERT_EQ(Parsed(block, Bytes(kTwoFields)), kVpdSuccess);
  EXPECT_EQ(block.Create(1), kVpdBadArgument);
  EXPECT_EQ(GetField(block, "ZB").status, kVpdSuccess);
}

TEST(VpdBlock, IsUsedAgainForTheNextBlock) {
  VpdBlock block;
  ASSERT_EQ(Parsed(block, Bytes(kTwoFields)), kVpdSuccess);
  {
    // The same size needs no memory.
    const test_support::FailingAllocation none(1);
    EXPECT_EQ(block.Create(static_cast<std::int32_t>(kTwoFields.size())), kVpdSuccess);
    EXPECT_FALSE(none.Happened());
  }
  EXPECT_EQ(GetField(block, "ZB").status, kVpdNotParsed);
  ASSERT_EQ(Parsed(block, Bytes("\x90\x07\0ZB\x04!!!!"s)), kVpdSuccess);  // another size
  EXPECT_EQ(GetField(block, "ZB").text, "!!!!\0\0\0\0"s);
  EXPECT_EQ(GetField(block, "ZC").status, kVpdFieldNotFound);
}

TEST(VpdBlock, ReportsMissingMemory) {
  for (const int buffer : {1, 2}) {
    VpdBlock block;
    ASSERT_EQ(Parsed(block, Bytes(kTwoFields)), kVpdSuccess);
    {
      const test_support::FailingAllocation failure(buffer);
      EXPECT_EQ(block.Create(100), kVpdOutOfMemory) << buffer;
      EXPECT_TRUE(failure.Happened());
    }
    EXPECT_EQ(block.Parse(Bytes(kTwoFields)), kVpdNotParsed);
    EXPECT_EQ(GetField(block, "ZB").status, kVpdNotParsed);
    EXPECT_EQ(Parsed(block, Bytes(kTwoFields)), kVpdSuccess);  // usable again
  }
}

TEST(VpdBlock, IsNotParsedBeforeCreateAndParse) {
  VpdBlock block;
  EXPECT_EQ(block.Parse(Bytes(kTwoFields)), kVpdNotParsed);
  EXPECT_EQ(GetField(block, "ZB").status, kVpdNotParsed);
  ASSERT_EQ(block.Create(14), kVpdSuccess);
  EXPECT_EQ(GetField(block, "ZB").status, kVpdNotParsed);
}

TEST(VpdBlock, RefusesABlockShorterThanItsSize) {
  VpdBlock block;
  ASSERT_EQ(block.Create(15), kVpdSuccess);
  EXPECT_EQ(block.Parse(Bytes(kTwoFields)), kVpdBadArgument);
  EXPECT_EQ(GetField(block, "ZB").status, kVpdNotParsed);
  ASSERT_EQ(block.Parse(Bytes(kTwoFields + "x")), kVpdSuccess);
  EXPECT_EQ(block.Parse(Bytes(kTwoFields)), kVpdBadArgument);
  EXPECT_EQ(GetField(block, "ZB").status, kVpdNotParsed);
}

TEST(VpdBlock, TakesNoMoreThanItsSizeOfALongerBlock) {
  VpdBlock block;
  ASSERT_EQ(block.Create(8), kVpdSuccess);
  // The whole block is sound; its first eight bytes are not.
  EXPECT_EQ(block.Parse(Bytes(kTwoFields)), kVpdDamagedBlock);
}

TEST(VpdBlock, ForgetsTheFieldsOfTheBlockBeforeADamagedOne) {
  VpdBlock block;
  ASSERT_EQ(Parsed(block, Bytes(kTwoFields)), kVpdSuccess);
  std::string damaged = kTwoFields;
  damaged[1] = '\x0C';
  EXPECT_EQ(block.Parse(Bytes(damaged)), kVpdDamagedBlock);
  EXPECT_EQ(GetField(block, "ZB").status, kVpdNotParsed);
}

TEST(VpdBlock, FindsItsFields) {
  EXPECT_EQ(TextOf(kTwoFields, "ZB"), "01");
  EXPECT_EQ(TextOf(kTwoFields, "ZC"), "02");
}

TEST(VpdBlock, FindsAFieldInTheSecondFieldsResource) {
  const std::string block = "\x90\x05\0ZB\x02\x30\x31\x82\x01\0x\x90\x05\0ZC\x02\x30\x32"s;
  EXPECT_EQ(TextOf(block, "ZB"), "01");
  EXPECT_EQ(TextOf(block, "ZC"), "02");
}

TEST(VpdBlock, GivesTheFirstOfTwoFieldsOfOneKeyword) {
  EXPECT_EQ(TextOf("\x90\x08\0ZB\x01\x31ZB\x01\x32"s, "ZB"), "1");
  EXPECT_EQ(TextOf("\x90\x04\0ZB\x01\x31\x90\x04\0ZB\x01\x32"s, "ZB"), "1");
}

TEST(VpdBlock, JoinsAFieldThatIsPartedByTwoResources) {
  EXPECT_EQ(TextOf("\x90\x04\0ZB\x04\x31\x82\x02\0xx\x90\x03\0\x32\x33\x34"s, "ZB"), "1234");
}

TEST(VpdBlock, PassesOverOpaqueResources) {
  // Small ones of 1, 2 and 8 bytes, whose content looks like fields; an empty large one; 0x91, and 0x10, which is
  // small.
  const std::string opaque = "\x10\x01\x90\x07\x90\x05\0ZB\x02X"s + "\x80\0\0"s + "\x91\x05\0ZB\x02XX"s;
  EXPECT_EQ(TextOf(opaque + kTwoFields, "ZB"), "01");
}

TEST(VpdBlock, EndsAtAnEndResource) {
  for (int tag = 0; tag < 0x80; ++tag) {
    const bool isEnd = tag >= 0x78;  // all of 0x78 to 0x7F
    std::string text(1, static_cast<char>(tag));
    text += std::string(static_cast<std::size_t>(isEnd ? 0 : tag & 7), 'x') + kTwoFields;
    VpdBlock block;
    ASSERT_EQ(Parsed(block, Bytes(text)), kVpdSuccess) << tag;
    EXPECT_EQ(GetField(block, "ZB").status, isEnd ? kVpdFieldNotFound : kVpdSuccess) << tag;
  }
}

TEST(VpdBlock, ReadsNothingBehindTheEnd) {
  EXPECT_EQ(ParseText("\x78\xFF\xFF\xFF"s), kVpdSuccess);
  EXPECT_EQ(TextOf(kTwoFields + "\x90\xFF\xFF"s, "ZC"), "02");
}

TEST(VpdBlock, NeedsNoEnd) {
  EXPECT_EQ(TextOf("\x90\x04\0ZB\x01\x31"s, "ZB"), "1");
  EXPECT_EQ(ParseText(std::string(8192, '\0')), kVpdSuccess);  // zeros are small resources of one byte
}

TEST(VpdBlock, IsDamagedWhereAResourceRunsPastTheEnd) {
  for (const std::string& text : {
           "\0\x01"s,                                 // the second byte of a small one is missing
           "\0\x77xxxxxx"s,                           // a small one of eight bytes with seven
           "\0\x90"s,                                 // the head of a large one ends behind its tag
           "\0\x82\x01"s,                             // and inside its length
           "\x82\x01\0"s,                             // a head alone
           "\x90\x05\0ZB\x02\x30"s,                   // one byte of the fields is missing
           "\x82\x01\x01x"s,                          // the length is little-endian: 257
           "\x82\xFF\xFF\0"s,                         // the longest
           "\xFF\xFF\xFF\xFF"s,                       // erased memory
           kTwoFields.substr(0, 13) + "\x90\x01\0"s,  // only the second of two
       }) {
    VpdBlock block;
    EXPECT_EQ(Parsed(block, Bytes(text)), kVpdDamagedBlock) << testing::PrintToString(text);
    EXPECT_EQ(GetField(block, "ZB").status, kVpdNotParsed);
  }
}

TEST(VpdBlock, TakesResourcesAndFieldsOfFullLength) {
  // Little-endian 0x0101, a field of 255 bytes, and the largest block there is, all of it one fields resource.
  EXPECT_EQ(TextOf("\x82\x01\x01"s + std::string(0x101, 'x') + kTwoFields, "ZB"), "01");
  const std::string longest(255, 'L');
  std::string text = "\x90\xDD\x7E"s + "AA\xFF"s + longest + "ZZ\xFF"s + longest;
  text += std::string(32480 - text.size(), '!');  // fields "!!" of 33 bytes
  const auto bytes = Bytes(text);
  ASSERT_EQ(bytes.size(), 32480u);
  VpdBlock block;
  ASSERT_EQ(Parsed(block, bytes), kVpdSuccess);
  const Field field = GetField(block, "ZZ", 255);
  EXPECT_EQ(field.status, kVpdSuccess);
  EXPECT_EQ(field.lengthBytes, 255);
  EXPECT_EQ(field.text, longest);
}

TEST(VpdBlock, GetFieldCutsToTheBufferAndTellsTheWholeLength) {
  VpdBlock block;
  ASSERT_EQ(Parsed(block, Bytes("\x90\x07\0PN\x04\x31\x32\x33\x34"s)), kVpdSuccess);
  const Field cut = GetField(block, "PN", 3);
  EXPECT_EQ(cut.status, kVpdSuccess);
  EXPECT_EQ(cut.text, "123");
  EXPECT_EQ(cut.lengthBytes, 4);
  const Field empty = GetField(block, "PN", 0);
  EXPECT_EQ(empty.status, kVpdSuccess);
  EXPECT_EQ(empty.lengthBytes, 4);
}

TEST(VpdBlock, GetFieldClearsWhatTheFieldDoesNotFill) {
  VpdBlock block;
  ASSERT_EQ(Parsed(block, Bytes("\x90\x07\0ZA\0ZB\x01\x31"s)), kVpdSuccess);
  EXPECT_EQ(GetField(block, "ZB").text, "1\0\0\0\0\0\0\0"s);
  const Field empty = GetField(block, "ZA");
  EXPECT_EQ(empty.status, kVpdSuccess);
  EXPECT_EQ(empty.text, kEightZeros);
  EXPECT_EQ(empty.lengthBytes, 0);
}

TEST(VpdBlock, GetFieldWorksWithoutALength) {
  VpdBlock block;
  ASSERT_EQ(Parsed(block, Bytes(kTwoFields)), kVpdSuccess);
  std::vector<char> buffer(2, '#');
  EXPECT_EQ(block.GetField("ZC", buffer, nullptr), kVpdSuccess);
  EXPECT_EQ(std::string(buffer.begin(), buffer.end()), "02");
  EXPECT_EQ(block.GetField("ZX", buffer, nullptr), kVpdFieldNotFound);
}

TEST(VpdBlock, GetFieldClearsTheBufferOnEveryFailure) {
  VpdBlock block;
  EXPECT_EQ(GetField(block, "ZB").text, kEightZeros);
  ASSERT_EQ(Parsed(block, Bytes(kTwoFields)), kVpdSuccess);
  for (const std::string& keyword : {"ZX"s, "zb"s, "BZ"s, "Z "s}) {
    const Field field = GetField(block, keyword);
    EXPECT_NE(field.status, kVpdSuccess) << keyword;
    EXPECT_EQ(field.text, kEightZeros) << keyword;
    EXPECT_EQ(field.lengthBytes, -1) << keyword;
  }
}

TEST(VpdBlock, GetFieldRefusesKeywordCharactersBelow33) {
  VpdBlock block;
  // Before anything else is looked at, so also where nothing was parsed.
  for (const std::string& keyword : {""s, "Z"s, " B"s, "Z "s, "Z\0"s, "\x1F!"s})
    EXPECT_EQ(GetField(block, keyword).status, kVpdBadArgument) << keyword;
  ASSERT_EQ(Parsed(block, Bytes("\x90\x08\0!!\x01\x31\xC4\xFF\x01\x32"s)), kVpdSuccess);
  EXPECT_EQ(GetField(block, "!!").text, "1\0\0\0\0\0\0\0"s);
  EXPECT_EQ(GetField(block, "\xC4\xFF").text, "2\0\0\0\0\0\0\0"s);
  EXPECT_EQ(GetField(block, " !").status, kVpdBadArgument);
  EXPECT_EQ(GetField(block, std::string_view("!!", 1)).status, kVpdBadArgument);
}

TEST(VpdBlock, FindsNothingInOrBehindAFieldThatIsCutOff) {
  for (const std::string& fields : {"Z"s, "ZB"s, "ZB\x01"s, "ZA\x05xxxx"s, "ZA\x05ZB\x01\x31"s}) {
    VpdBlock block;
    std::string text = "\x90\0\0"s + fields + "\x78ZB\x01\x39"s;
    text[1] = static_cast<char>(fields.size());
    ASSERT_EQ(Parsed(block, Bytes(text)), kVpdSuccess);
    const Field field = GetField(block, "ZB");
    EXPECT_EQ(field.status, kVpdFieldNotFound) << testing::PrintToString(fields);
    EXPECT_EQ(field.lengthBytes, -1);
  }
}

TEST(VpdBlock, HasNoFieldsWithoutAFieldsResource) {
  VpdBlock block;
  ASSERT_EQ(Parsed(block, Bytes("\x82\x04\0ZB\x01\x31"s)), kVpdSuccess);
  EXPECT_EQ(GetField(block, "ZB").status, kVpdFieldNotFound);
}

struct ReadCase {
  std::string block;
  VpdStatus status;
};

TEST(ReadVpdField, ReportsTheFirstFailureAndClearsTheBuffer) {
  for (const ReadCase& read :
       {ReadCase{"", kVpdBadArgument}, ReadCase{"\x78", kVpdBadArgument},
        ReadCase{std::string(32481, '\0'), kVpdBadArgument}, ReadCase{"\x90\x05\0ZB"s, kVpdDamagedBlock},
        ReadCase{"\x90\x04\0ZC\x01\x31"s, kVpdFieldNotFound}}) {
    std::vector<char> buffer(8, '#');
    EXPECT_EQ(ReadVpdField(Bytes(read.block), "ZB", buffer), read.status);
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), kEightZeros);
  }
  std::vector<char> buffer(8, '#');
  EXPECT_EQ(ReadVpdField(Bytes(kTwoFields), " B", buffer), kVpdBadArgument);
  EXPECT_EQ(std::string(buffer.begin(), buffer.end()), kEightZeros);
}

TEST(ReadVpdField, ReportsMissingMemory) {
  const test_support::FailingAllocation failure(1);
  std::vector<char> buffer(8, '#');
  EXPECT_EQ(ReadVpdField(Bytes(kTwoFields), "ZB", buffer), kVpdOutOfMemory);
  EXPECT_EQ(std::string(buffer.begin(), buffer.end()), kEightZeros);
}

TEST(ReadVpdField, ReadsOutOfAHostCardsBlock) {
  std::string block = kTwoFields;
  block.resize(8192);
  std::vector<char> buffer(3, '#');
  EXPECT_EQ(ReadVpdField(Bytes(block), "ZC", buffer), kVpdSuccess);
  EXPECT_EQ(std::string(buffer.begin(), buffer.end()), "02\0"s);
}

struct HexCase {
  std::string text;
  std::uint32_t value;
};

TEST(ReadVpdHexField, ScansTheFieldAsScanfDoes) {
  for (const HexCase& hex :
       {HexCase{"1", 1}, HexCase{"1F", 0x1F}, HexCase{" 0x1f ", 0x1F}, HexCase{"-1", 0xFFFFFFFF},
        // Where nothing converts the value is kept, and the read is a success.
        HexCase{"", 255}, HexCase{"none", 255},
        // Sixteen characters are looked at; the seventeenth is not.
        HexCase{"0000000000000001", 1}, HexCase{"00000000000000012", 1}, HexCase{"                1", 255}}) {
    std::string block = "\x90  ZA "s + hex.text;
    block[1] = static_cast<char>(3 + hex.text.size());
    block[2] = '\0';
    block[5] = static_cast<char>(hex.text.size());
    std::uint32_t value = 255;
    EXPECT_EQ(ReadVpdHexField(Bytes(block), "ZA", value), kVpdSuccess) << hex.text;
    EXPECT_EQ(value, hex.value) << hex.text;
  }
}

TEST(ReadVpdHexField, KeepsTheValueOnAFailure) {
  std::uint32_t value = 255;
  EXPECT_EQ(ReadVpdHexField(Bytes(kTwoFields), "ZA", value), kVpdFieldNotFound);
  EXPECT_EQ(ReadVpdHexField({}, "ZB", value), kVpdBadArgument);
  EXPECT_EQ(value, 255u);
}

TEST(VpdBlock, DecodesTheExampleOfThePage) {
  const std::vector<std::uint8_t> bytes = test_support::ReadHexBlock(VPD_PAGE);
  const std::string block(bytes.begin(), bytes.end());
  EXPECT_EQ(TextOf(block, "ZA"), "5");
  EXPECT_EQ(TextOf(block, "ZB"), "01");
  EXPECT_EQ(TextOf(block, "ZC"), "02");
  EXPECT_EQ(TextOf(block, "PN"), "12-20040-1");
  std::uint32_t value = 255;
  EXPECT_EQ(ReadVpdHexField(bytes, "ZD", value), kVpdFieldNotFound);
}

}  // namespace
