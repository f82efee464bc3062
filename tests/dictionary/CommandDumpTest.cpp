#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>

#include "CommandValues.h"
#include "dictionary/CommandContents.h"
#include "talcpath.h"

namespace {

using TalcPath::TalcCommand;
using TalcPath::TalcPathStatus;
using TalcPathPrivate::Range;
using TalcPathPrivate::TextList;
using test_support::BytesOf;
using test_support::ExpectAddressesOfHalves;

/// The dump with the types' names, which are the compiler's, as "T".
std::string DumpOf(const TalcCommand& command) {
  std::ostringstream stream;
  EXPECT_EQ(&command.Dump(stream), &stream);
  std::string text = stream.str();
  const std::string begin = " Type: ";
  for (std::size_t at = text.find(begin); at != std::string::npos; at = text.find(begin, at + begin.size())) {
    const std::size_t end = text.find(" Value: ", at);
    EXPECT_GT(end, at + begin.size());
    text.replace(at + begin.size(), end - at - begin.size(), "T");
  }
  return text;
}

std::string DumpOfValue(const TalcCommand& command) {
  const std::string dump = DumpOf(command);
  const std::string begin = "\nDump of TalcCommand : \nName: Foo\nParamters:\n\t Param: X Type: T Value: ";
  const std::string end = "\nSend Command: true\nStatus: kTPFail\n";
  if (!dump.starts_with(begin) || !dump.ends_with(end)) return "not around: " + dump;
  return dump.substr(begin.size(), dump.size() - begin.size() - end.size());
}

TEST(CommandDumpTest, OfANewCommandShowsASendThatHasFailed) {
  EXPECT_EQ(DumpOf(TalcCommand()),
            "\nDump of TalcCommand : \nName: \nParamters:\nSend Command: true\nStatus: kTPFail\n");
}

TEST(CommandDumpTest, ShowsEverythingInOrder) {
  TalcCommand command("Foo");
  command.SetRequestCommand();
  command.SetStatus(TalcPath::kTPSuccess);
  command.SetUInt8("Z", 7);
  command.SetInt16("A", -300);
  command.SetBytes("D", BytesOf("abc").data(), 3);
  // A request shows its values here.
  EXPECT_EQ(DumpOf(command),
            "\nDump of TalcCommand : \nName: Foo\nParamters:"
            "\n\t Param: Z Type: T Value: 7"
            "\n\t Param: A Type: T Value: -300"
            "\n\t Param: D Type: T Value:  Length: 3 Bytes: abc"
            "\nSend Command: false\nStatus: kTPSuccess\n");
}

TEST(CommandDumpTest, ShowsShortIntegersInDecimalAndNeverAsCharacters) {
  struct Row {
    void (*set)(TalcCommand& command);
    const char* text;
  };
  const Row rows[] = {
      {[](TalcCommand& c) { c.SetInt8("X", 65); }, "65"},
      {[](TalcCommand& c) { c.SetInt8("X", -128); }, "-128"},
      {[](TalcCommand& c) { c.SetUInt8("X", 0); }, "0"},
      {[](TalcCommand& c) { c.SetUInt8("X", 255); }, "255"},
      {[](TalcCommand& c) { c.SetInt16("X", -32768); }, "-32768"},
      {[](TalcCommand& c) { c.SetUInt16("X", 65535); }, "65535"},
      {[](TalcCommand& c) { c.SetInt32("X", -2147483647 - 1); }, "-2147483648"},
      {[](TalcCommand& c) { c.SetUInt32("X", 4294967295); }, "4294967295"},
  };
  for (const Row& row : rows) {
    TalcCommand command("Foo");
    row.set(command);
    EXPECT_EQ(DumpOfValue(command), row.text);
  }
}

TEST(CommandDumpTest, ShowsBytesRaw) {
  TalcCommand command("Foo");
  const std::string raw("\0\n\xFF;\"", 5);
  command.SetBytes("X", BytesOf(raw).data(), 5);
  EXPECT_EQ(DumpOfValue(command), " Length: 5 Bytes: " + raw);
  command.SetBytes("X", nullptr, 0);
  EXPECT_EQ(DumpOfValue(command), " Length: 0 Bytes:  !@EMPTY@! ");
}

TEST(CommandDumpTest, DoesNotKnowSymbolsNorWhatHasNoTypeWord) {
  TalcCommand command("Foo");
  command.SetSymbol("X", "On");
  EXPECT_EQ(DumpOfValue(command), "Unknown stored variant type - error.");
  TalcPath::ContentsOf(command)->parameters.Set("X", TextList{"a", "b"});
  EXPECT_EQ(DumpOfValue(command), "Unknown stored variant type - error.");
  TalcPath::ContentsOf(command)->parameters.Set("X", Range{1, 2});
  EXPECT_EQ(DumpOfValue(command), "Unknown stored variant type - error.");
}

TEST(CommandDumpTest, ShowsWhereThe64BitValuesLieAndNotTheNumbers) {
  TalcCommand command("Foo");
  command.SetInt64("X", -123456789012345);
  ExpectAddressesOfHalves(DumpOfValue(command), " Hi32: ", " Lo32: ", "", std::int64_t{-123456789012345});
  command.SetUInt64("X", 0xFEDCBA9876543210);
  ExpectAddressesOfHalves(DumpOfValue(command), " Hi32: ", " Lo32: ", "", std::uint64_t{0xFEDCBA9876543210});
}

TEST(CommandDumpTest, HasItsOwnWordForANumberThatIsNoStatus) {
  TalcCommand command("Foo");
  for (const int number : {14, 240, -1}) {
    command.SetStatus(static_cast<TalcPathStatus>(number));
    EXPECT_STREQ(command.GetStatusName(), "BOGUS_TP_STATUS");
    EXPECT_EQ(DumpOf(command),
              "\nDump of TalcCommand : \nName: Foo\nParamters:\nSend Command: true\nStatus: UNKNOWN ENUM\n");
  }
}

TEST(CommandDumpTest, ShowsTheNameOfAStatus) {
  struct Row {
    TalcPathStatus status;
    const char* name;
  };
  constexpr Row kRows[] = {{TalcPath::kTPSuccess, "kTPSuccess"},
                           {TalcPath::kTPFail, "kTPFail"},
                           {TalcPath::kTPInvalidSymbolicConstant, "kTPInvalidSymbolicConstant"},
                           {TalcPath::kTPAttemptedToExecuteDiagCommand, "kTPAttemptedToExecuteDiagCommand"}};
  for (const Row& row : kRows) {
    TalcCommand command;
    command.SetStatus(row.status);
    EXPECT_TRUE(DumpOf(command).ends_with(std::string("\nStatus: ") + row.name + "\n")) << row.name;
  }
}

TEST(CommandDumpTest, LeavesTheStreamWithNumericBooleansWhateverItHad) {
  TalcCommand command("Foo");
  command.SetUInt16("X", 255);
  for (const bool words : {false, true}) {
    std::ostringstream stream;
    stream << std::hex << (words ? std::boolalpha : std::noboolalpha);
    command.Dump(stream);
    EXPECT_EQ(stream.flags() & std::ios::boolalpha, std::ios::fmtflags());
    EXPECT_NE(stream.str().find(" Value: 255\nSend Command: true"), std::string::npos) << stream.str();
  }
}

}  // namespace
