#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>

#include "CommandValues.h"
#include "dictionary/CommandContents.h"
#include "talcpath.h"

namespace {

using TalcPath::TalcCommand;
using TalcPathPrivate::Range;
using TalcPathPrivate::TextList;
using test_support::BytesOf;
using test_support::ExpectAddressesOfHalves;

std::string StatementOf(const TalcCommand& command) {
  std::ostringstream stream;
  EXPECT_EQ(&(stream << command), &stream);
  return stream.str();
}

TEST(CommandStatementTest, BeginsWithALineFeedAndHasNoneAtItsEnd) {
  EXPECT_EQ(StatementOf(TalcCommand("Foo")), "\ntalc send Foo . ;");
  EXPECT_EQ(StatementOf(TalcCommand()), "\ntalc send  . ;");
}

TEST(CommandStatementTest, OfASendShowsItsValuesInOrder) {
  TalcCommand command("Foo");
  command.SetUInt8("A", 1);
  command.SetSymbol("B", "On");
  EXPECT_EQ(StatementOf(command), "\ntalc send Foo A UINT8 1 B SYMBOL On . ;");
  command.SetBytes("0", BytesOf("a b").data(), 3);
  command.SetInt8("A", -1);
  EXPECT_EQ(StatementOf(command), "\ntalc send Foo A INT8 -1 B SYMBOL On 0 BYTES 3 a b . ;");
}

TEST(CommandStatementTest, OfARequestShowsNoValues) {
  TalcCommand command("Foo");
  command.SetUInt8("A", 1);
  command.SetSymbol("B", "On");
  command.SetRequestCommand();
  EXPECT_EQ(StatementOf(command), "\ntalc request Foo . ;");
}

TEST(CommandStatementTest, ShowsEachKindByItsWord) {
  struct Row {
    void (*set)(TalcCommand& command);
    std::string text;
  };
  const Row rows[] = {
      {[](TalcCommand& c) { c.SetSymbol("X", "VPD_Hollen"); }, "SYMBOL VPD_Hollen"},
      {[](TalcCommand& c) { c.SetInt8("X", 65); }, "INT8 65"},
      {[](TalcCommand& c) { c.SetInt8("X", -128); }, "INT8 -128"},
      {[](TalcCommand& c) { c.SetUInt8("X", 65); }, "UINT8 65"},
      {[](TalcCommand& c) { c.SetUInt8("X", 255); }, "UINT8 255"},
      {[](TalcCommand& c) { c.SetInt16("X", -32768); }, "INT16 -32768"},
      {[](TalcCommand& c) { c.SetUInt16("X", 65535); }, "UINT16 65535"},
      {[](TalcCommand& c) { c.SetInt32("X", -2147483647 - 1); }, "INT32 -2147483648"},
      {[](TalcCommand& c) { c.SetUInt32("X", 4294967295); }, "UINT32 4294967295"},
      {[](TalcCommand& c) { c.SetBytes("X", BytesOf("abc").data(), 3); }, "BYTES 3 abc"},
      {[](TalcCommand& c) {
         c.SetBytes("X", BytesOf({"\0;\n\xFF.", 5}).data(), 5);
       },
       "BYTES 5 " + std::string("\0;\n\xFF.", 5)},
      // Nothing follows the blank of an empty one.
      {[](TalcCommand& c) { c.SetBytes("X", nullptr, 0); }, "BYTES 0 "},
      {[](TalcCommand& c) { TalcPath::ContentsOf(c)->parameters.Set("X", TextList{"a"}); },
       "Unknown stored variant type - error."},
      {[](TalcCommand& c) {
         TalcPath::ContentsOf(c)->parameters.Set("X", Range{1, 2});
       },
       "Unknown stored variant type - error."},
  };
  for (const Row& row : rows) {
    TalcCommand command("Foo");
    row.set(command);
    command.SetUInt8("Y", 9);
    EXPECT_EQ(StatementOf(command), "\ntalc send Foo X " + row.text + " Y UINT8 9 . ;");
  }
}

TEST(CommandStatementTest, ShowsWhereThe64BitValuesLieSoThatTheyCannotBeReadBack) {
  TalcCommand command("Foo");
  command.SetInt64("X", -123456789012345);
  ExpectAddressesOfHalves(StatementOf(command), "\ntalc send Foo X INT64 ", " ", " . ;",
                          std::int64_t{-123456789012345});
  command.SetUInt64("X", 0xFEDCBA9876543210);
  ExpectAddressesOfHalves(StatementOf(command), "\ntalc send Foo X UINT64 ", " ", " . ;",
                          std::uint64_t{0xFEDCBA9876543210});
}

TEST(CommandStatementTest, ShowsDecimalNumbersWhateverTheStreamIsSetTo) {
  TalcCommand command("Foo");
  command.SetUInt16("X", 255);
  command.SetBytes("D", BytesOf("abcdefghijklmnop").data(), 16);
  std::ostringstream stream;
  stream << std::hex << std::showbase << command;
  EXPECT_EQ(stream.str(), "\ntalc send Foo X UINT16 255 D BYTES 16 abcdefghijklmnop . ;");
}

}  // namespace
