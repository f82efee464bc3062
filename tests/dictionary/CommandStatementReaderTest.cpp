#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "CommandValues.h"
#include "talcpath.h"

namespace {

using TalcPath::TalcCommand;
using TalcPathPrivate::Bytes;
using test_support::BytesOf;
using test_support::Held;
using test_support::NamesOf;
using Names = std::vector<std::string>;

/// A command that was read from a text, and what the stream is left with.
struct Reading {
  explicit Reading(const std::string& text) : stream(text) { EXPECT_EQ(&(stream >> command), &stream); }

  std::string Rest() { return {std::istreambuf_iterator<char>(stream), {}}; }

  std::istringstream stream;
  TalcCommand command;
};

TEST(CommandStatementReaderTest, TakesNameAndValuesAndLeavesTheEndToTheCaller) {
  Reading reading("Foo A UINT8 1 B SYMBOL On . ;\ntalc");
  EXPECT_EQ(reading.command.GetName(), "Foo");
  EXPECT_EQ(NamesOf(reading.command), (Names{"A", "B"}));
  EXPECT_EQ(Held<std::uint8_t>(reading.command, "A"), 1);
  EXPECT_EQ(Held<std::string>(reading.command, "B"), "On");
  EXPECT_TRUE(reading.stream.good());
  EXPECT_EQ(reading.Rest(), " ;\ntalc");
}

TEST(CommandStatementReaderTest, DoesNotReadTheWordsBeforeTheName) {
  Reading reading("talc send Foo .");
  EXPECT_EQ(reading.command.GetName(), "talc");
}

TEST(CommandStatementReaderTest, TakesAStatementWithoutValues) {
  for (const char* text : {"Foo . ;", "\n\t Foo\n.\t;", "Foo", "Foo ", "Foo X", "Foo X ", "Foo X UINT8"}) {
    const Reading reading(text);
    EXPECT_EQ(reading.command.GetName(), "Foo") << text;
    EXPECT_EQ(NamesOf(reading.command), Names()) << text;
  }
}

TEST(CommandStatementReaderTest, TakesNothingFromNothing) {
  for (const char* text : {"", " ", "\n\n"}) {
    const Reading reading(text);
    EXPECT_EQ(reading.command.GetName(), "");
    EXPECT_EQ(NamesOf(reading.command), Names());
  }
}

TEST(CommandStatementReaderTest, ReplacesNameAndValuesAndNothingElse) {
  TalcCommand command("Old", 4);
  command.SetRequestCommand();
  command.SetStatus(TalcPath::kTPTimeOut);
  command.SetUInt8("A", 1);
  command.SetUInt8("B", 2);
  std::istringstream stream("New B INT8 3 . ;");
  stream >> command;
  EXPECT_EQ(command.GetName(), "New");
  EXPECT_EQ(NamesOf(command), Names{"B"});
  EXPECT_EQ(Held<std::int8_t>(command, "B"), 3);
  EXPECT_TRUE(command.IsRequestCommand());
  EXPECT_EQ(command.GetTransportId(), 4U);
  EXPECT_EQ(command.GetStatus(), TalcPath::kTPTimeOut);
}

template <typename T>
void ExpectReads(const std::string& value, T expected) {
  const Reading reading("Foo X " + value + " .");
  EXPECT_EQ(Held<T>(reading.command, "X"), expected) << value;
  EXPECT_EQ(NamesOf(reading.command), Names{"X"}) << value;
  EXPECT_FALSE(reading.stream.fail()) << value;
}

TEST(CommandStatementReaderTest, ReadsEachTypeOfNumber) {
  ExpectReads<std::int8_t>("INT8 -128", -128);
  ExpectReads<std::int8_t>("INT8 127", 127);
  ExpectReads<std::uint8_t>("UINT8 7", 7);
  ExpectReads<std::uint8_t>("UINT8 255", 255);
  ExpectReads<std::int16_t>("INT16 -32768", -32768);
  ExpectReads<std::int16_t>("INT16 32767", 32767);
  ExpectReads<std::uint16_t>("UINT16 65535", 65535);
  ExpectReads<std::int32_t>("INT32 -2147483648", std::numeric_limits<std::int32_t>::min());
  ExpectReads<std::int32_t>("INT32 2147483647", 2147483647);
  ExpectReads<std::uint32_t>("UINT32 4294967295", 4294967295);
}

TEST(CommandStatementReaderTest, CutsNumbersOfEightBitsWithoutAReport) {
  ExpectReads<std::uint8_t>("UINT8 300", 44);
  ExpectReads<std::uint8_t>("UINT8 256", 0);
  ExpectReads<std::uint8_t>("UINT8 -1", 255);
  ExpectReads<std::int8_t>("INT8 300", 44);
  ExpectReads<std::int8_t>("INT8 200", -56);
  ExpectReads<std::int8_t>("INT8 -129", 127);
}

TEST(CommandStatementReaderTest, ReadsLongNumbersAsTheirHalves) {
  ExpectReads<std::int64_t>("INT64 1 2", 4294967298);
  ExpectReads<std::int64_t>("INT64 -1 4294967295", -1);
  ExpectReads<std::int64_t>("INT64 0 4294967295", 4294967295);
  ExpectReads<std::int64_t>("INT64 -2147483648 0", std::numeric_limits<std::int64_t>::min());
  ExpectReads<std::uint64_t>("UINT64 1 2", 4294967298);
  ExpectReads<std::uint64_t>("UINT64 4294967295 4294967294", 0xFFFFFFFFFFFFFFFE);
}

TEST(CommandStatementReaderTest, ReadsBytesRawBehindOneSeparator) {
  struct Row {
    std::string text;
    std::string bytes;
  };
  const Row rows[] = {
      {"BYTES 3 abc", "abc"},
      {"BYTES 3\nabc", "abc"},
      {"BYTES 3;abc", "abc"},
      {"BYTES 3  ab", " ab"},
      {"BYTES 5 . ; .", ". ; ."},
      {std::string("BYTES 4 \0\xFF\n\0", 12), std::string("\0\xFF\n\0", 4)},
      {"BYTES 10000 " + std::string(9'999, 'x') + "y", std::string(9'999, 'x') + "y"},
  };
  for (const Row& row : rows) {
    const Reading reading("Foo X " + row.text + " Y UINT8 7 . ;");
    EXPECT_EQ(Held<Bytes>(reading.command, "X"), BytesOf(row.bytes)) << row.text;
    EXPECT_EQ(Held<std::uint8_t>(reading.command, "Y"), 7) << row.text;
    EXPECT_EQ(NamesOf(reading.command), (Names{"X", "Y"})) << row.text;
  }
}

TEST(CommandStatementReaderTest, TakesBytesThatEndTheText) {
  const Reading reading("Foo X BYTES 3 abc");
  EXPECT_EQ(Held<Bytes>(reading.command, "X"), BytesOf("abc"));
}

TEST(CommandStatementReaderTest, StoresNothingForNoBytesThoughACommandCanHoldThem) {
  const Reading reading("Foo X BYTES 0 Y UINT8 7 .");
  EXPECT_EQ(NamesOf(reading.command), Names{"Y"});
}

TEST(CommandStatementReaderTest, StoresNoBytesWhenThereAreFewerThanTold) {
  for (const char* length : {"4", "5000", "2147483647", "2147483648", "4294967295"}) {
    const Reading reading(std::string("Foo A UINT8 1 X BYTES ") + length + " abc");
    EXPECT_EQ(NamesOf(reading.command), Names{"A"}) << length;
    EXPECT_TRUE(reading.stream.fail()) << length;
  }
}

TEST(CommandStatementReaderTest, StoresNoBytesForALengthThatIsNone) {
  for (const char* length : {"4294967296", "99999999999999999999", "x", "."}) {
    const Reading reading(std::string("Foo A UINT8 1 X BYTES ") + length + " abc .");
    EXPECT_EQ(Held<std::uint8_t>(reading.command, "A"), 1) << length;
    EXPECT_TRUE(reading.stream.fail()) << length;
  }
  EXPECT_FALSE(Reading("Foo X BYTES x abc .").command.HasParameter("X"));
}

TEST(CommandStatementReaderTest, PassesOverAnUnknownTypeWordAndNoMore) {
  // What stood for its value is the next name.
  const Reading reading("Foo X FLOAT 5 UINT8 7 Y uint8 Z UINT8 8 .");
  EXPECT_EQ(NamesOf(reading.command), (Names{"5", "Z"}));
  EXPECT_EQ(Held<std::uint8_t>(reading.command, "5"), 7);
  EXPECT_EQ(Held<std::uint8_t>(reading.command, "Z"), 8);
}

TEST(CommandStatementReaderTest, TakesAPointOnlyInAPlaceOfANameForTheEnd) {
  Reading reading("Foo X . Y UINT8 7 .. SYMBOL . . ;");
  // The first is an unknown type word, the second a name, the third a symbol.
  EXPECT_EQ(NamesOf(reading.command), (Names{"Y", ".."}));
  EXPECT_EQ(Held<std::string>(reading.command, ".."), ".");
  EXPECT_EQ(reading.Rest(), " ;");
}

TEST(CommandStatementReaderTest, StoresANumberThatCouldNotBeReadAndStops) {
  struct Row {
    const char* value;
    bool (*isHeld)(const TalcCommand& command);
  };
  constexpr Row kRows[] = {
      {"INT8 x", [](const TalcCommand& c) { return Held<std::int8_t>(c, "X").has_value(); }},
      {"UINT8 x", [](const TalcCommand& c) { return Held<std::uint8_t>(c, "X").has_value(); }},
      {"UINT8 99999999999", [](const TalcCommand& c) { return Held<std::uint8_t>(c, "X").has_value(); }},
      {"INT16 40000", [](const TalcCommand& c) { return Held<std::int16_t>(c, "X").has_value(); }},
      {"UINT16 70000", [](const TalcCommand& c) { return Held<std::uint16_t>(c, "X").has_value(); }},
      {"INT32 2147483648", [](const TalcCommand& c) { return Held<std::int32_t>(c, "X").has_value(); }},
      {"UINT32 4294967296", [](const TalcCommand& c) { return Held<std::uint32_t>(c, "X").has_value(); }},
      {"INT64 1 x", [](const TalcCommand& c) { return Held<std::int64_t>(c, "X").has_value(); }},
      {"INT64 0x7fff0010 0x7fff0014", [](const TalcCommand& c) { return Held<std::int64_t>(c, "X").has_value(); }},
      {"UINT64 x 1", [](const TalcCommand& c) { return Held<std::uint64_t>(c, "X").has_value(); }},
  };
  for (const Row& row : kRows) {
    const Reading reading("Foo A UINT8 1 X " + std::string(row.value) + " Y UINT8 7 . ;");
    EXPECT_TRUE(row.isHeld(reading.command)) << row.value;
    EXPECT_EQ(NamesOf(reading.command), (Names{"A", "X"})) << row.value;
    EXPECT_TRUE(reading.stream.fail()) << row.value;
  }
}

TEST(CommandStatementReaderTest, RefusesSymbolsAsTheSetterDoes) {
  const Reading reading("Foo X SYMBOL " + std::string(255, 's') + " Y SYMBOL " + std::string(254, 's') + " .");
  EXPECT_EQ(NamesOf(reading.command), Names{"Y"});
  EXPECT_EQ(NamesOf(Reading("Foo X SYMBOL ").command), Names());
  EXPECT_EQ(Held<std::string>(Reading("Foo X SYMBOL On").command, "X"), "On");
}

TEST(CommandStatementReaderTest, LaterValueOfANameReplacesTheEarlier) {
  const Reading reading("Foo X UINT8 1 Y UINT8 2 X SYMBOL On .");
  EXPECT_EQ(NamesOf(reading.command), (Names{"X", "Y"}));
  EXPECT_EQ(Held<std::string>(reading.command, "X"), "On");
}

TEST(CommandStatementReaderTest, ReturnsFromAStatementThatIsCutAnywhere) {
  const std::string whole =
      "Command A INT8 -12 B UINT8 34 C INT16 -567 D UINT16 890 E INT32 -1234567 F UINT32 7654321 G INT64 -12 34 "
      "H UINT64 56 78 I BYTES 12 abc . ; def! J SYMBOL Symbol K FLOAT L BYTES 0 M UINT8 9 . ;";
  const Names names = {"A", "B", "C", "D", "E", "F", "G", "H", "I", "J", "M"};
  ASSERT_EQ(NamesOf(Reading(whole).command), names);
  const std::size_t end = whole.find(" . ;", whole.find("M UINT8")) + 2;
  std::size_t count = 0;
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    const Reading reading(whole.substr(0, length));
    const Names got = NamesOf(reading.command);
    SCOPED_TRACE("cut at " + std::to_string(length));
    // What came before the cut is there, and nothing that was not in the text.
    EXPECT_GE(got.size(), count);
    ASSERT_LE(got.size(), names.size());
    EXPECT_TRUE(std::equal(got.begin(), got.end(), names.begin()));
    EXPECT_EQ(reading.command.GetName(), std::string("Command").substr(0, length));
    EXPECT_EQ(reading.stream.eof(), length <= end);
    count = got.size();
  }
  EXPECT_EQ(count, names.size());
}

TEST(CommandStatementReaderTest, ReadsWhatTheWriterWrote) {
  TalcCommand command("Foo");
  command.SetInt8("A", -128);
  command.SetUInt8("B", 255);
  command.SetInt16("C", -32768);
  command.SetUInt16("D", 65535);
  command.SetInt32("E", -5);
  command.SetUInt32("F", 4294967295);
  command.SetSymbol("G", "On");
  const std::string raw("\0 . ;\n\xFF", 7);
  command.SetBytes("H", BytesOf(raw).data(), 7);
  command.SetBytes("Empty", nullptr, 0);
  command.SetUInt8("I", 1);
  std::stringstream stream;
  stream << command << command;

  for (int i = 0; i < 2; ++i) {
    std::string talc;
    std::string send;
    std::string end;
    TalcCommand read;
    ASSERT_TRUE(stream >> talc >> send >> read >> end);
    EXPECT_EQ(talc + " " + send + " " + end, "talc send ;");
    EXPECT_EQ(read.GetName(), "Foo");
    EXPECT_EQ(NamesOf(read), (Names{"A", "B", "C", "D", "E", "F", "G", "H", "I"}));
    EXPECT_EQ(Held<std::int8_t>(read, "A"), -128);
    EXPECT_EQ(Held<std::uint8_t>(read, "B"), 255);
    EXPECT_EQ(Held<std::int16_t>(read, "C"), -32768);
    EXPECT_EQ(Held<std::uint16_t>(read, "D"), 65535);
    EXPECT_EQ(Held<std::int32_t>(read, "E"), -5);
    EXPECT_EQ(Held<std::uint32_t>(read, "F"), 4294967295);
    EXPECT_EQ(Held<std::string>(read, "G"), "On");
    EXPECT_EQ(Held<Bytes>(read, "H"), BytesOf(raw));
    EXPECT_EQ(Held<std::uint8_t>(read, "I"), 1);
  }
}

}  // namespace
