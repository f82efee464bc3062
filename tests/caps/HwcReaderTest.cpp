// What the capabilities language says, and what parts its statements.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "caps/HwcReader.h"
#include "CapsFixture.h"

namespace {

using caps_test::BlocksOf;
using caps_test::LabelOf;
using caps_test::Lines;
using caps_test::TablesOf;
using std::string_literals::operator""s;
using testing::ElementsAre;

struct Reading {
  std::string label;
  std::string text;
  /// The type, then what the tables hold.
  Lines tables;
};

class HwcReads : public caps_test::CapsTest, public testing::WithParamInterface<Reading> {};

TEST_P(HwcReads, AsTables) {
  EXPECT_TRUE(Read(GetParam().text));
  EXPECT_EQ(TablesOf(caps_), GetParam().tables);
  EXPECT_EQ(log(), "");
}

const std::string kType = "HardwareType T ;";
const std::string kOne = "ConditionBlockBegin ; ConditionKeyname One ; Condition Video Side INTEGER 1 ; ";
const std::string kOneEnded = kOne + "ConditionBlockEnd ;";

const std::vector<Reading> kStatements = {
    {"HardwareType", "HardwareType Trelvane ;", {"Trelvane"}},
    {"HardwareTypeThatTouchesItsEnd", "HardwareType Trelvane;", {"Trelvane"}},
    {"HardwareTypeOfOneWord", "HardwareType Trelvane Other ;", {"Trelvane"}},
    {"HardwareTypeInAHeader", kOne + "HardwareType T ; ConditionBlockEnd ;", {"T", "One {Video Side 1}"}},
    {"HardwareTypeAsTheLast", "CmdOverrideTimeout A 1 ; HardwareType T ;", {"T", "A 1"}},
    {"NoHardwareType", "CmdOverrideTimeout A 1 ;", {"", "A 1"}},

    {"Override", kType + "CmdOverrideTimeout Video 1500 ;", {"T", "Video 1500"}},
    {"OverrideOfAnUnknownCommand", kType + "CmdOverrideTimeout Nothing 1 ;", {"T", "Nothing 1"}},
    {"OverrideTwice", kType + "CmdOverrideTimeout A 2000 ; CmdOverrideTimeout A 500 ;", {"T", "A 500"}},
    {"OverridesInTheOrderOfNames", kType + "CmdOverrideTimeout B 1 ; CmdOverrideTimeout A 2 ;", {"T", "A 2", "B 1"}},
    {"OverrideUnderABlock", kOneEnded + "CmdOverrideTimeout A 1 ;", {"", "A 1", "One {Video Side 1}"}},

    {"IntegerProperty", kType + "Property P INTEGER 310 ;", {"T", "default: P 310"}},
    {"StringProperty", kType + "Property P STRING a_b ;", {"T", "default: P 'a_b'"}},
    {"StringPropertyThatTouchesItsEnd", kType + "Property\tP\tSTRING\tFALSE;", {"T", "default: P 'FALSE'"}},
    {"StringPropertyOfOneWord", kType + "Property P STRING a b ;", {"T", "default: P 'a'"}},
    {"StringPropertyOfDigits", kType + "Property P STRING 5 ;", {"T", "default: P '5'"}},
    {"PropertiesInTheOrderOfNames",
     kType + "Property b INTEGER 1 ; Property a INTEGER 2 ; Property B INTEGER 3 ;",
     {"T", "default: B 3", "default: a 2", "default: b 1"}},
    {"PropertyCalledLikeItsKind", kType + "Property STRING STRING STRING ;", {"T", "default: STRING 'STRING'"}},

    {"Range", kType + "CommandValues Video Value Range 0 255 ;", {"T", "default: Video Value 0..255"}},
    {"RangeOfAnUnknownCommand", kType + "CommandValues No One Range 0 1 ;", {"T", "default: No One 0..1"}},
    {"RangeFromHighToLow", kType + "CommandValues A B Range 5 -5 ;", {"T", "default: A B 5..-5"}},
    {"RangeWithMoreBehind", kType + "CommandValues A B Range 1 2 3 ;", {"T", "default: A B 1..2"}},
    {"Symbols", kType + "CommandValues Video Control Symbol Hue Gain ;", {"T", "default: Video Control [Hue Gain]"}},
    {"OneSymbol", kType + "CommandValues Video Control Symbol Hue ;", {"T", "default: Video Control [Hue]"}},
    {"SymbolTwice", kType + "CommandValues Video Control Symbol Hue Hue ;", {"T", "default: Video Control [Hue Hue]"}},
    {"SymbolsOfAnUnknownParameter",
     kType + "CommandValues Video Nothing Symbol Hue ;",
     {"T", "default: Video Nothing [Hue]"}},
    {"SymbolThatTouchesTheEndIsLost",
     kType + "CommandValues Video Control Symbol Hue Gain;",
     {"T", "default: Video Control [Hue]"}},
    {"SymbolThatTouchesTheEndIsNotLookedUp",
     kType + "CommandValues Video Control Symbol Hue Nothing;",
     {"T", "default: Video Control [Hue]"}},
    {"SymbolsBeforeMuchWhiteSpace",
     kType + "CommandValues Video Control Symbol Hue Gain\n\t \n;",
     {"T", "default: Video Control [Hue Gain]"}},

    {"BlockBySymbol",
     kType + "ConditionBlockBegin ; ConditionKeyname K ; Condition Video Side SYMBOL Gain ; ConditionBlockEnd ;",
     {"T", "K {Video Side -4 Gain}"}},
    {"BlockBySymbolThatTouchesItsEnd",
     kType + "ConditionBlockBegin;ConditionKeyname K;Condition Video Side SYMBOL Gain;ConditionBlockEnd;",
     {"T", "K {Video Side -4 Gain}"}},
    {"BlockByNumber",
     kType + "ConditionBlockBegin ; ConditionKeyname K ; Condition Video Side INTEGER -4 ; ConditionBlockEnd ;",
     {"T", "K {Video Side -4}"}},
    {"BlockWithoutAName",
     kType + "ConditionBlockBegin ; Condition Video Side INTEGER 1 ; ConditionBlockEnd ;",
     {"T", " {Video Side 1}"}},
    {"BlockNamedLast",
     kType + "ConditionBlockBegin ; Condition Video Side INTEGER 1 ; ConditionKeyname K ; ConditionBlockEnd ;",
     {"T", "K {Video Side 1}"}},
    {"BlockNamedTwice", kOne + "ConditionKeyname Two More ; ConditionBlockEnd ;", {"", "Two {Video Side 1}"}},
    {"BlockNamedAndUnnamed", kOne + "ConditionKeyname ; ConditionBlockEnd ;", {"", " {Video Side 1}"}},
    {"BlockWithoutItsEnd", kOne, {"", "One {Video Side 1}"}},
    {"ConditionTwice",
     kOne + "Condition Video Side SYMBOL Output ; ConditionBlockEnd ;",
     {"", "One {Video Side 2 Output}"}},
    {"ManyConditions",
     kOne + "Condition Probe Address INTEGER 2 ; Condition Video Control SYMBOL Hue ; ConditionBlockEnd ;",
     {"", "One {Probe Address 2, Video Control 3 Hue, Video Side 1}"}},
    {"ConditionWithMoreBehind",
     "ConditionBlockBegin ; Condition Video Side SYMBOL Hue Gain ; Condition Video Value INTEGER 5 6 ;",
     {"", " {Video Side 3 Hue, Video Value 5}"}},
    {"StatementsWithMoreBehind", "ConditionBlockBegin now ; ConditionBlockEnd now ;" + kType, {"T"}},

    {"BlockLastsBeyondItsHeader",
     kType + kOneEnded + "Property P INTEGER 1 ; CommandValues A B Range 0 1 ;",
     {"T", "One {Video Side 1}", "One: P 1", "One: A B 0..1"}},
    {"BlockLastsUntilTheNext",
     kOneEnded + "Property P INTEGER 1 ; ConditionBlockBegin ; ConditionKeyname Two ;"
                 "Condition Video Side INTEGER 2 ; ConditionBlockEnd ; Property P INTEGER 2 ;",
     {"", "One {Video Side 1}", "Two {Video Side 2}", "One: P 1", "Two: P 2"}},
    {"HeaderEndsOnceMore",
     kOneEnded + "ConditionBlockEnd ; Property P INTEGER 1 ;",
     {"", "One {Video Side 1}", "One: P 1"}},
    {"EmptyHeaderGoesBackToTheDefaultBlock",
     "Property P INTEGER 1 ;" + kOneEnded +
         "Property P INTEGER 2 ; ConditionBlockBegin ; ConditionBlockEnd ; Property Q INTEGER 3 ;",
     {"", "One {Video Side 1}", "default: P 1", "default: Q 3", "One: P 2"}},
    {"HeaderOfNothingButANameGoesBackToTheDefaultBlock",
     kOneEnded + "ConditionBlockBegin ; ConditionKeyname Two ; # comment ; ConditionBlockEnd ; Property P INTEGER 1 ;",
     {"", "One {Video Side 1}", "default: P 1"}},
    {"SameConditionsShareTheirTables",
     kOneEnded + "Property P INTEGER 1 ; ConditionBlockBegin ; ConditionKeyname Two ; Condition Video Side SYMBOL "
                 "Input ; ConditionBlockEnd ; Property Q INTEGER 2 ; CommandValues A B Range 0 1 ;",
     {"", "One {Video Side 1}", "Two {Video Side 1 Input}", "One: P 1", "One: Q 2", "One: A B 0..1"}},
    {"ValuesOfOneParameterUnderTwoBlocks",
     kOneEnded +
         "CommandValues A B Range 0 1 ; ConditionBlockBegin ; ConditionBlockEnd ; CommandValues A B Range 0 2 ;",
     {"", "One {Video Side 1}", "One: A B 0..1", "default: A B 0..2"}},
};
INSTANTIATE_TEST_SUITE_P(Statements, HwcReads, testing::ValuesIn(kStatements), LabelOf<Reading>);

const std::string kP = "Property P INTEGER 1 ;";
const Lines kPAlone = {"T", "default: P 1"};
const Lines kNothingBehind = {"T"};

/// A comment of `length` characters, and its ";".
std::string CommentOfLength(std::size_t length) {
  return "#" + std::string(length - 1, 'x') + ";";
}
std::string PropertyOfLength(std::size_t length) {
  const std::string text = "Property P INTEGER 1";
  return text + std::string(length - text.size(), ' ') + ";";
}

const std::vector<Reading> kBounds = {
    {"Nothing", "", {""}},
    {"WhiteSpace", " \t\r\n", {""}},
    {"OnlyAComment", "# comment ;", {""}},
    {"AComment", kType + "# any words ;" + kP, kPAlone},
    {"ACommentWithoutABlank", kType + "#any words;" + kP, kPAlone},
    {"ACommentOfOneCharacter", kType + "#;" + kP, kPAlone},
    {"ACommentOfAStatement", kType + "# Property P INTEGER 2 ;" + kP, kPAlone},
    {"ACommentOverLines", kType + "# one\nProperty P INTEGER 2 ;\n" + kP, kPAlone},
    {"ACommentBehindWhiteSpace", kType + "\r\n\t #\0\xFF;"s + kP, kPAlone},
    {"ACommentInAHeader",
     kOne + "# ConditionBlockEnd ; ConditionBlockEnd ;" + kP,
     {"", "One {Video Side 1}", "One: P 1"}},
    {"WordsThatBeginACommentElsewhere",
     "HardwareType # ; Property #P STRING #; CmdOverrideTimeout # 1 ;",
     {"#", "# 1", "default: #P '#'"}},

    {"ABlankStatementEndsIt", kType + ";" + kP, kNothingBehind},
    {"AStatementOfWhiteSpaceEndsIt", kType + " \t\r\n\v\f ;" + kP, kNothingBehind},
    {"ABlankStatementBeforeNonsense", kType + "; nonsense ;", kNothingBehind},
    {"ABlankStatementInAHeader", kOne + ";" + kP, {"", "One {Video Side 1}"}},
    {"ABlankStatementFirst", ";" + kType, {""}},

    {"TextBehindTheLastEnd", kType + "nonsense", kNothingBehind},
    {"AStatementBehindTheLastEnd", kType + "Property P INTEGER 1 ", kNothingBehind},
    {"MuchTextBehindTheLastEnd", kType + std::string(100'000, 'x'), kNothingBehind},
    {"BytesBehindTheLastEnd", kType + "\r\n\0\xFF\x01"s, kNothingBehind},

    {"TheLongestStatement", kType + PropertyOfLength(8190), kPAlone},
    {"AStatementTooLongByOne", kType + PropertyOfLength(8191), kNothingBehind},
    {"AStatementTooLongBeforeOthers", kType + PropertyOfLength(8191) + kP, kNothingBehind},
    {"AStatementOfTheBuffersSize", kType + PropertyOfLength(8192) + kP, kNothingBehind},
    {"TheLongestComment", kType + CommentOfLength(8190) + kP, kPAlone},
    {"ACommentTooLongByOne", kType + CommentOfLength(8191) + kP, kNothingBehind},
    {"TheLongestBlankStatement", kType + std::string(8190, ' ') + ";" + kP, kNothingBehind},
    {"ManyLongestStatements", kType + CommentOfLength(8190) + CommentOfLength(8190) + PropertyOfLength(8190), kPAlone},
    {"AHugeStatement", kType + std::string(5'000'000, 'x') + ";" + kP, kNothingBehind},

    {"BytesAbove127",
     "HardwareType Gr\xF6\xDF\xA0;Property \xFF STRING \x85;",
     {"Gr\xF6\xDF\xA0", "default: \xFF '\x85'"}},
    {"ZeroBytes", "HardwareType a\0b;Property \0 STRING c\0;"s, {"a\0b"s, "default: \0 'c\0'"s}},
};
INSTANTIATE_TEST_SUITE_P(Bounds, HwcReads, testing::ValuesIn(kBounds), LabelOf<Reading>);

struct Number {
  std::string label;
  std::string text;
  std::string value;
};

/// Numbers that any place for a signed one takes. What follows the digits keeps them off the statement's end.
const std::vector<Number> kNumbers = {
    {"Zero", "0 ", "0"},
    {"Plus", "+5 ", "5"},
    {"Minus", "-5 ", "-5"},
    {"MinusZero", "-0 ", "0"},
    {"LeadingZeros", "0012 ", "12"},
    {"Least", "-2147483648 ", "-2147483648"},
    {"Greatest", "2147483647 ", "2147483647"},
    {"Prefix", "0x10 ", "0"},
    {"LettersBehind", "12abc ", "12"},
    {"LettersThatTouchTheEnd", "12abc", "12"},
    {"Fraction", "1.5 ", "1"},
    {"TabBehind", "7\t", "7"},
    {"LineFeedBehind", "7\n", "7"},
    {"CarriageReturnBehind", "7\r", "7"},
};

class HwcReadsNumbers : public caps_test::CapsTest, public testing::WithParamInterface<Number> {};

TEST_P(HwcReadsNumbers, OfProperties) {
  EXPECT_TRUE(Read("Property P INTEGER " + GetParam().text + ";"));
  EXPECT_THAT(TablesOf(caps_), ElementsAre("", "default: P " + GetParam().value));
}

TEST_P(HwcReadsNumbers, OfRanges) {
  EXPECT_TRUE(Read("CommandValues A B Range -1 " + GetParam().text + ";"));
  EXPECT_THAT(TablesOf(caps_), ElementsAre("", "default: A B -1.." + GetParam().value));
}

TEST_P(HwcReadsNumbers, OfConditions) {
  EXPECT_TRUE(Read("ConditionBlockBegin ; Condition Video Side INTEGER " + GetParam().text + ";"));
  EXPECT_THAT(TablesOf(caps_), ElementsAre("", " {Video Side " + GetParam().value + "}"));
}

INSTANTIATE_TEST_SUITE_P(Hwc, HwcReadsNumbers, testing::ValuesIn(kNumbers), LabelOf<Number>);

const std::vector<Number> kUnsignedNumbers = {
    {"Zero", "0 ", "0"},
    {"Plus", "+5 ", "5"},
    {"Greatest", "4294967295 ", "4294967295"},
    {"AboveTheSigned", "2147483648 ", "2147483648"},
    {"Prefix", "0x10 ", "0"},
    {"LettersBehind", "12abc ", "12"},
    {"LettersThatTouchTheEnd", "12abc", "12"},
    {"LineFeedBehind", "7\n", "7"},
};

class HwcReadsUnsignedNumbers : public caps_test::CapsTest, public testing::WithParamInterface<Number> {};

TEST_P(HwcReadsUnsignedNumbers, OfOverrides) {
  EXPECT_TRUE(Read("CmdOverrideTimeout A " + GetParam().text + ";"));
  EXPECT_THAT(TablesOf(caps_), ElementsAre("", "A " + GetParam().value));
}

INSTANTIATE_TEST_SUITE_P(Hwc, HwcReadsUnsignedNumbers, testing::ValuesIn(kUnsignedNumbers), LabelOf<Number>);

class HwcReaderTakesAsWhiteSpace : public caps_test::CapsTest, public testing::WithParamInterface<std::string> {};

TEST_P(HwcReaderTakesAsWhiteSpace, BetweenWords) {
  std::string text =
      " HardwareType T ; CmdOverrideTimeout A 5 ; # words ; Property P STRING x ; ConditionBlockBegin ; "
      "ConditionKeyname K ; Condition Video Side SYMBOL Hue ; Condition Video Value INTEGER 6 ; ConditionBlockEnd ; "
      "Property Q INTEGER 7 ; CommandValues Video Control Symbol Hue Gain ; CommandValues Video Value Range 8 9 ; ";
  for (std::size_t at = 0; (at = text.find(' ', at)) != std::string::npos; at += GetParam().size())
    text.replace(at, 1, GetParam());
  EXPECT_TRUE(Read(text));
  EXPECT_THAT(TablesOf(caps_), ElementsAre("T", "A 5", "K {Video Side 3 Hue, Video Value 6}", "default: P 'x'",
                                           "K: Q 7", "K: Video Control [Hue Gain]", "K: Video Value 8..9"));
}

INSTANTIATE_TEST_SUITE_P(Hwc, HwcReaderTakesAsWhiteSpace,
                         testing::Values(" ", "\t", "\n", "\r\n", "\r", "\v", "\f", " \t\r\n\v\f ", "\n\n\n\n"));

class HwcReaderTest : public caps_test::CapsTest {};

TEST_F(HwcReaderTest, KeepsTheNameOfTheFile) {
  EXPECT_TRUE(Read(kType));
  EXPECT_EQ(caps_.fileName, "test.hwc");
}

TEST_F(HwcReaderTest, KeepsTheNameOfAFileThatFails) {
  EXPECT_FALSE(Read("nonsense ;"));
  EXPECT_EQ(caps_.fileName, "test.hwc");
}

TEST_F(HwcReaderTest, SaysNothingOfASuccessWhateverTheFlags) {
  TalcPathPrivate::logState.verbose = true;
  TalcPathPrivate::logState.trace = true;
  EXPECT_TRUE(Read(kType + kOneEnded + kP));
  EXPECT_EQ(log(), "");
}

TEST_F(HwcReaderTest, LeavesTheStreamBehindTheBlankStatement) {
  std::istringstream stream(kType + " ;" + kP);
  EXPECT_TRUE(TalcPathPrivate::ReadHwc(caps_, stream, "test.hwc"));
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}), kP);
}

TEST_F(HwcReaderTest, TakesAStreamThatCannotBeReadForAnEmptyFile) {
  std::istringstream stream(kType);
  stream.setstate(std::ios::badbit);
  EXPECT_TRUE(TalcPathPrivate::ReadHwc(caps_, stream, "test.hwc"));
  EXPECT_THAT(TablesOf(caps_), ElementsAre(""));
  EXPECT_EQ(log(), "");
}

}  // namespace
