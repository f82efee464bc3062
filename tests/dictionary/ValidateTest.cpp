#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DictionaryFixture.h"
#include "FormatProbe.h"

namespace {

using TalcPathPrivate::CommandType;
using TalcPathPrivate::ErrorList;
using TalcPathPrivate::MetaCommandFormat;

const char* const kBehindBytes =
    "Found Data Parameter after BYTES parameter - BYTES parameter can ONLY be last parameter";
const char* const kRequiredBehind = "Required For RequestData ERROR - all RD must come first in the command";

/// The errors of the definition, after it was made sure that the result tells whether there are any.
ErrorList ErrorsOf(const TalcPathPrivate::CommandFormat& format) {
  ErrorList errors;
  const bool isSound = format.Validate(errors);
  EXPECT_EQ(isSound, errors.empty());
  return errors;
}

class ValidateTest : public testing::Test {
 protected:
  ValidateTest() {
    format_.name = "Foo";
    format_.definitionFile = "foo.tcd";
    format_.commandType = {.major = CommandType::Major::VIDEO, .minor = 0, .function = 0};
  }

  probe::Talc format_;
};

TEST_F(ValidateTest, FindsNothingInASoundCommand) {
  format_.parameters = {probe::Parameter("A", "UINT8", true), probe::Parameter("B_1", "INT64", true),
                        probe::Parameter("C", "INT8"), probe::Parameter("D", "BYTES")};
  format_.symbols = {{"On", 1}, {"Off_2", 0}};
  EXPECT_EQ(ErrorsOf(format_), ErrorList{});
}

TEST_F(ValidateTest, FindsAnEmptyName) {
  format_.name = "";
  EXPECT_EQ(ErrorsOf(format_), ErrorList{"Command Name is empty"});
}

TEST_F(ValidateTest, FindsAnInvalidName) {
  for (const char* const name : {"a-b", " a", "a.b", "\xE4", "a\t"}) {
    format_.name = name;
    EXPECT_EQ(ErrorsOf(format_), ErrorList{"Command Name is invalid"}) << name;
  }
}

TEST_F(ValidateTest, FindsAMissingFile) {
  format_.definitionFile = "";
  EXPECT_EQ(ErrorsOf(format_), ErrorList{"Talc Command Definition file not specified"});
}

TEST_F(ValidateTest, FindsEveryFaultOfAParameter) {
  format_.parameters = {probe::Parameter("", "UINT8"), probe::Parameter("a-b", "int8"), probe::Parameter("", "")};
  EXPECT_EQ(ErrorsOf(format_), (ErrorList{"DataName is empty", "DataName is an invalid string", "DataType is not valid",
                                          "DataName is empty", "DataType is not valid"}));
}

TEST_F(ValidateTest, FindsEachParameterBehindBytes) {
  format_.parameters = {probe::Parameter("A", "BYTES"), probe::Parameter("B", "UINT8"), probe::Parameter("C", "BYTES")};
  EXPECT_EQ(ErrorsOf(format_), (ErrorList{kBehindBytes, kBehindBytes}));
}

TEST_F(ValidateTest, FindsEachRequiredParameterBehindASendOnlyOne) {
  format_.parameters = {probe::Parameter("A", "UINT8", true), probe::Parameter("B", "UINT8"),
                        probe::Parameter("C", "UINT8", true), probe::Parameter("D", "UINT8"),
                        probe::Parameter("E", "UINT8", true)};
  EXPECT_EQ(ErrorsOf(format_), (ErrorList{kRequiredBehind, kRequiredBehind}));
}

TEST_F(ValidateTest, TellsOfAParametersFaultsInOrder) {
  format_.parameters = {probe::Parameter("A", "BYTES"), probe::Parameter("b-", "x", true)};
  EXPECT_EQ(ErrorsOf(format_),
            (ErrorList{"DataName is an invalid string", "DataType is not valid", kBehindBytes, kRequiredBehind}));
}

TEST_F(ValidateTest, FindsNothingInParametersOfOneName) {
  // Only the reader refuses them.
  format_.parameters = {probe::Parameter("A", "UINT8"), probe::Parameter("A", "UINT8")};
  EXPECT_EQ(ErrorsOf(format_), ErrorList{});
}

TEST_F(ValidateTest, FindsEveryFaultOfSymbols) {
  format_.symbols = {{"", 1}, {"a b", 2}, {"Good", 3}, {"-", 4}};
  EXPECT_EQ(ErrorsOf(format_), (ErrorList{"Symbol name is empty", "Symbol name is invalid", "Symbol name is invalid"}));
}

struct Codes {
  int major;
  int minor;
  int function;
  ErrorList errors;
};

class ValidateCodes : public testing::TestWithParam<Codes> {};

TEST_P(ValidateCodes, OfAnOrdinaryCommand) {
  probe::Talc format;
  format.commandType = {.major = static_cast<CommandType::Major>(GetParam().major),
                        .minor = static_cast<std::int16_t>(GetParam().minor),
                        .function = static_cast<std::int16_t>(GetParam().function)};
  ErrorList errors;
  EXPECT_EQ(format.ValidateCommandType(errors), GetParam().errors.empty());
  EXPECT_EQ(errors, GetParam().errors);
}

// Both texts end in a blank.
const char* const kMinor = "CommandTypeMinor is out of range [0,63] ";
const char* const kFunction = "Function is out of range [0,127] ";

const std::vector<Codes> kCodes = {
    {0, 0, 0, {}},
    {3, 63, 127, {}},
    {4, 0, 0, {"CommandTypeMajor is INVALID"}},
    {-1, 0, 0, {"CommandTypeMajor is INVALID"}},
    {0, 64, 0, {kMinor}},
    {0, -1, 0, {kMinor}},
    {0, 0, 128, {kFunction}},
    {0, 0, -1, {kFunction}},
    {3, -1, -1, {kMinor, kFunction}},
    {256, 32767, -32768, {"CommandTypeMajor is INVALID", kMinor, kFunction}},
};
INSTANTIATE_TEST_SUITE_P(Validate, ValidateCodes, testing::ValuesIn(kCodes));

TEST(ValidateDiag, FindsAnOpcodeOutOfRange) {
  probe::Diag format;
  for (const int opcode : {0, 255}) {
    format.diagOpcode = static_cast<std::int16_t>(opcode);
    ErrorList errors;
    EXPECT_TRUE(format.ValidateCommandType(errors)) << opcode;
    EXPECT_TRUE(errors.empty()) << opcode;
  }
  for (const int opcode : {-1, 256, 32767, -32768}) {
    format.diagOpcode = static_cast<std::int16_t>(opcode);
    ErrorList errors;
    EXPECT_FALSE(format.ValidateCommandType(errors)) << opcode;
    EXPECT_EQ(errors, ErrorList{"DiagOpcode is out of range [0,255] "}) << opcode;
  }
}

TEST(ValidateMeta, FindsEmptyNames) {
  ErrorList errors;
  EXPECT_FALSE(MetaCommandFormat().ValidateCommandType(errors));
  EXPECT_EQ(errors,
            (ErrorList{"StartCommand name is empty", "RepeatCommand name is empty", "StopCommand name is empty"}));
}

TEST(ValidateMeta, FindsInvalidNames) {
  MetaCommandFormat format;
  probe::Read(format, "Baz", "Start a- Repeat \xE4 Stop b.c ");
  ErrorList errors;
  EXPECT_FALSE(format.ValidateCommandType(errors));
  EXPECT_EQ(errors, (ErrorList{"StartCommand name is invalid", "RepeatCommand name is invalid",
                               "StopCommand name is invalid"}));
}

TEST(ValidateMeta, FindsNothingInNamesOfCommandsThatAreNotDefined) {
  MetaCommandFormat format;
  probe::Read(format, "Baz", "Start A Repeat B Stop C ");
  ErrorList errors;
  EXPECT_TRUE(format.ValidateCommandType(errors));
  EXPECT_TRUE(errors.empty());
}

TEST(Validate, TellsOfEverythingInOrder) {
  probe::Diag format;
  format.name = "";
  format.diagOpcode = 256;
  format.parameters = {probe::Parameter("A", "x")};
  format.symbols = {{"", 0}};
  EXPECT_EQ(ErrorsOf(format),
            (ErrorList{"Command Name is empty", "Talc Command Definition file not specified",
                       "DiagOpcode is out of range [0,255] ", "DataType is not valid", "Symbol name is empty"}));
}

TEST(Validate, AddsToTheListThatItIsGiven) {
  probe::Diag format;
  format.name = "Foo";
  format.definitionFile = "foo.tcd";
  ErrorList errors = {"earlier"};
  EXPECT_TRUE(format.Validate(errors));
  format.symbols = {{"", 0}};
  EXPECT_FALSE(format.Validate(errors));
  EXPECT_EQ(errors, (ErrorList{"earlier", "Symbol name is empty"}));
}

}  // namespace
