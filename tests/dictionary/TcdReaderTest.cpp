#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DictionaryFixture.h"
#include "FormatProbe.h"

namespace {

using std::string_literals::operator""s;

const std::string kHead = "Foo Talc CommandTypeMajor VIDEO CommandTypeMinor 1 Function 2 ";

class TcdReaderTest : public DictionaryTest {
 protected:
  /// The definition of `name`, or "none".
  static std::string Defined(std::string_view name) {
    const TalcPathPrivate::CommandFormat* const format = Find(name);
    return format == nullptr ? "none" : probe::Summary(*format);
  }
};

struct Reading {
  std::string label;
  std::string text;
  std::string summary;
};

class TcdReaderReads : public TcdReaderTest, public testing::WithParamInterface<Reading> {};

TEST_P(TcdReaderReads, Definition) {
  EXPECT_TRUE(Parse(GetParam().text));
  EXPECT_EQ(log(), "");
  ASSERT_EQ(TalcPathPrivate::DefinedCommands()->size(), 1u);
  EXPECT_EQ(probe::Summary(*TalcPathPrivate::DefinedCommands()->begin()->second), GetParam().summary);
}

const std::vector<Reading> kDefinitions = {
    {"TalcWithoutParameters", kHead + ";", "Foo: VIDEO 1 2 {} {}"},
    {"TalcWhoseNumberTouchesTheEnd", "Foo Talc CommandTypeMajor VIDEO CommandTypeMinor 1 Function 2;",
     "Foo: VIDEO 1 2 {} {}"},
    {"TalcWithHighestCodes", "Foo Talc CommandTypeMajor DIAGNOSTIC CommandTypeMinor 63 Function 127;",
     "Foo: DIAGNOSTIC 63 127 {} {}"},
    {"Audio", "Foo Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 0;", "Foo: AUDIO 0 0 {} {}"},
    {"System", "Foo Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 0;", "Foo: SYSTEM 0 0 {} {}"},
    {"Diag", "Bar Diag DiagOpcode 50 DataName A DataType INT8 ;", "Bar: Diag 50 {A INT8} {}"},
    {"DiagWithLowestCode", "Bar Diag DiagOpcode 0 ;", "Bar: Diag 0 {} {}"},
    {"DiagWithHighestCode", "Bar Diag DiagOpcode 255;", "Bar: Diag 255 {} {}"},
    // The names are not looked up.
    {"Meta", "Baz Meta Start A Repeat B Stop C ;", "Baz: Meta A B C {} {}"},
    {"MetaWhoseNameTouchesTheEnd", "Baz Meta Start A Repeat B Stop C;", "Baz: Meta A B C {} {}"},
    {"MetaWithParametersAndSymbols", "Baz Meta Start A Repeat B Stop C DataName D DataType BYTES Symbol E 6 ;",
     "Baz: Meta A B C {D BYTES} {E 6}"},
    {"MetaOfItself", "Baz Meta Start Baz Repeat Baz Stop Baz ;", "Baz: Meta Baz Baz Baz {} {}"},

    {"AllTypes",
     kHead +
         "DataName a DataType INT8 DataName b DataType UINT8 DataName c DataType INT16 DataName d DataType UINT16 "
         "DataName e DataType INT32 DataName f DataType UINT32 DataName g DataType INT64 DataName h DataType UINT64 "
         "DataName i DataType BYTES ;",
     "Foo: VIDEO 1 2 {a INT8, b UINT8, c INT16, d UINT16, e INT32, f UINT32, g INT64, h UINT64, i BYTES} {}"},
    {"MarkOnTheSameLine", kHead + "DataName X RD DataType INT8 ;", "Foo: VIDEO 1 2 {X INT8 RD} {}"},
    {"MarkBeforeALineEnd", kHead + "DataName X RD\nDataType INT8 ;", "Foo: VIDEO 1 2 {X INT8 RD} {}"},
    {"MarkOnALineOfItsOwn", kHead + "DataName X\nRD\nDataType INT8 ;", "Foo: VIDEO 1 2 {X INT8 RD} {}"},
    // The order is the writer's business: it is validated, not read.
    {"MarkBehindASendOnlyParameter", kHead + "DataName X DataType INT8 DataName Y RD DataType INT8 ;",
     "Foo: VIDEO 1 2 {X INT8, Y INT8 RD} {}"},

    {"SymbolBeforeTheFirstParameter", kHead + "Symbol On 1 DataName X DataType INT8 ;",
     "Foo: VIDEO 1 2 {X INT8} {On 1}"},
    {"SymbolsBetweenParameters",
     kHead + "DataName X DataType INT8 Symbol On 1 DataName Y DataType INT8 Symbol Off 0 Symbol Max 9 ;",
     "Foo: VIDEO 1 2 {X INT8, Y INT8} {On 1, Off 0, Max 9}"},
    {"SymbolsAlone", kHead + "Symbol On 1 Symbol Off 0 ;", "Foo: VIDEO 1 2 {} {On 1, Off 0}"},
    {"SymbolWhoseNumberTouchesTheEnd", kHead + "DataName X DataType INT8 Symbol On 1;",
     "Foo: VIDEO 1 2 {X INT8} {On 1}"},
    {"SymbolBehindBytes", kHead + "DataName X DataType BYTES Symbol On 1 ;", "Foo: VIDEO 1 2 {X BYTES} {On 1}"},
    {"SymbolsOfOneValue", kHead + "Symbol A 7 Symbol B 7 ;", "Foo: VIDEO 1 2 {} {A 7, B 7}"},
    {"SymbolsAtTheLimits", kHead + "Symbol Low -2147483648 Symbol High 2147483647 ;",
     "Foo: VIDEO 1 2 {} {Low -2147483648, High 2147483647}"},
    {"SymbolWithTheNameOfAParameter", kHead + "DataName X DataType INT8 Symbol X 1 ;", "Foo: VIDEO 1 2 {X INT8} {X 1}"},

    // A number ends where it cannot go on; the next word begins there.
    {"NumberThatANameTouches", "Foo Talc CommandTypeMajor VIDEO CommandTypeMinor 1Function 2DataName A DataType INT8 ;",
     "Foo: VIDEO 1 2 {A INT8} {}"},
    {"SymbolNumberThatAWordTouches", kHead + "Symbol A 12Symbol B -3DataName C DataType INT8 ;",
     "Foo: VIDEO 1 2 {C INT8} {A 12, B -3}"},
    {"NumberWithLettersAtTheEnd", "Foo Talc CommandTypeMajor VIDEO CommandTypeMinor 1 Function 12abc ;",
     "Foo: VIDEO 1 12 {} {}"},
    {"OpcodeWithLettersAtTheEnd", "Foo Diag DiagOpcode 12abc ;", "Foo: Diag 12 {} {}"},
    {"NumbersWithSignsAndZeros", "Foo Talc CommandTypeMajor VIDEO CommandTypeMinor +5 Function 0012 Symbol A +0 ;",
     "Foo: VIDEO 5 12 {} {A 0}"},
    {"NegativeZero", "Foo Talc CommandTypeMajor VIDEO CommandTypeMinor -0 Function -0 ;", "Foo: VIDEO 0 0 {} {}"},

    // Names are any words: they are validated, not read.
    {"NamesWithOtherCharacters", "a-b Diag DiagOpcode 1 DataName c.d DataType INT8 Symbol e/f 2 ;",
     "a-b: Diag 1 {c.d INT8} {e/f 2}"},
    {"NamesWithBytesAbove127",
     "Gr\xF6\xDF"
     "e Diag DiagOpcode 1 DataName \xA0\x85 DataType INT8 Symbol \xFF 2 ;",
     "Gr\xF6\xDF"
     "e: Diag 1 {\xA0\x85 INT8} {\xFF 2}"},
    {"NamesWithZeroBytes", "a\0b Diag DiagOpcode 1 DataName \0 DataType INT8 Symbol c\0 2 ;"s,
     "a\0b: Diag 1 {\0 INT8} {c\0 2}"s},
    {"NamesThatDifferBehindAZeroByte", "n Diag DiagOpcode 1 DataName a\0b DataType INT8 DataName a\0c DataType INT8 ;"s,
     "n: Diag 1 {a\0b INT8, a\0c INT8} {}"s},
    {"NamesThatAreKeywords",
     "Talc Talc CommandTypeMajor VIDEO CommandTypeMinor 1 Function 2 DataName RD RD DataType INT8 "
     "DataName DataType DataType INT8 Symbol Symbol 1 Symbol DataName 2 ;",
     "Talc: VIDEO 1 2 {RD INT8 RD, DataType INT8} {Symbol 1, DataName 2}"},
    {"AParameterCalledLikeTheMark", kHead + "DataName RD DataType INT8 ;", "Foo: VIDEO 1 2 {RD INT8} {}"},
    {"ANameThatHoldsTheCommentMark", "a# Diag DiagOpcode 1 ;", "a#: Diag 1 {} {}"},
    {"ANameThatBeginsLikeADocumentation", "DOCUMENTATIONS Diag DiagOpcode 1 ;", "DOCUMENTATIONS: Diag 1 {} {}"},
    {"ANameOfAThousandCharacters", std::string(1000, 'n') + " Diag DiagOpcode 1 ;",
     std::string(1000, 'n') + ": Diag 1 {} {}"},
};
INSTANTIATE_TEST_SUITE_P(Tcd, TcdReaderReads, testing::ValuesIn(kDefinitions), probe::LabelOf<Reading>);

class TcdReaderTakesAsWhiteSpace : public TcdReaderTest, public testing::WithParamInterface<std::string> {};

TEST_P(TcdReaderTakesAsWhiteSpace, BetweenWords) {
  std::string text =
      " Foo Talc CommandTypeMajor AUDIO CommandTypeMinor 1 Function 2 DataName A RD DataType UINT8 "
      "DataName B DataType BYTES Symbol On 1 ; Bar Diag DiagOpcode 3 ;";
  for (std::size_t at = 0; (at = text.find(' ', at)) != std::string::npos; at += GetParam().size())
    text.replace(at, 1, GetParam());
  EXPECT_TRUE(Parse(text));
  EXPECT_EQ(Defined("Foo"), "Foo: AUDIO 1 2 {A UINT8 RD, B BYTES} {On 1}");
  EXPECT_EQ(Defined("Bar"), "Bar: Diag 3 {} {}");
}

INSTANTIATE_TEST_SUITE_P(Tcd, TcdReaderTakesAsWhiteSpace,
                         testing::Values(" ", "\t", "\n", "\r\n", "\r", "\v", "\f", " \t\r\n\v\f ", "\n\n\n\n"));

TEST_F(TcdReaderTest, LaysOutCommandsOfFixedSizeAtOnce) {
  EXPECT_TRUE(Parse(kHead + "DataName A RD DataType UINT16 DataName B DataType UINT32 ;"
                            "Bar Diag DiagOpcode 1 DataName A RD DataType UINT64 ;"
                            "Baz Diag DiagOpcode 2 ;"));
  const auto& foo = dynamic_cast<TalcPathPrivate::TalcDataCommandFormat&>(*Find("Foo"));
  EXPECT_FALSE(foo.HasVariableLengthData());
  EXPECT_EQ(foo.GetPacketSizes().sendSize, 14u);
  EXPECT_EQ(foo.GetPacketSizes().sendPayloadSize, 6u);
  EXPECT_EQ(foo.GetPacketSizes().requestSize, 10u);
  EXPECT_EQ(foo.GetPacketSizes().requestPayloadSize, 2u);
  const auto& bar = dynamic_cast<TalcPathPrivate::TalcDataCommandFormat&>(*Find("Bar"));
  EXPECT_EQ(bar.GetPacketSizes().sendSize, 44u);
  EXPECT_EQ(bar.GetPacketSizes().requestSize, 44u);
  const auto& baz = dynamic_cast<TalcPathPrivate::TalcDataCommandFormat&>(*Find("Baz"));
  EXPECT_EQ(baz.GetPacketSizes().sendSize, 36u);
  EXPECT_EQ(baz.GetPacketSizes().requestPayloadSize, 0u);
}

TEST_F(TcdReaderTest, LeavesTheSizesOfABytesCommandToItsValues) {
  EXPECT_TRUE(Parse(kHead + "DataName A RD DataType UINT16 DataName B DataType BYTES ;"));
  const auto& foo = dynamic_cast<TalcPathPrivate::TalcDataCommandFormat&>(*Find("Foo"));
  EXPECT_TRUE(foo.HasVariableLengthData());
  EXPECT_EQ(foo.GetPacketSizes().sendSize, 0u);
  EXPECT_EQ(foo.GetPacketSizes().requestSize, 0u);
}

TEST_F(TcdReaderTest, FillsTheThreeTables) {
  EXPECT_TRUE(
      Parse("C Talc CommandTypeMajor VIDEO CommandTypeMinor 1 Function 2 ; A Diag DiagOpcode 7 ;"
            "B Meta Start A Repeat B Stop C ;"));
  EXPECT_EQ(TalcPathPrivate::DefinedCommands()->size(), 3u);
  ASSERT_EQ(TalcPathPrivate::CommandTypes()->size(), 1u);
  EXPECT_EQ(*TalcPathPrivate::FindCommandType(
                {.major = TalcPathPrivate::CommandType::Major::VIDEO, .minor = 1, .function = 2}),
            "C");
  ASSERT_EQ(TalcPathPrivate::DiagOpcodes()->size(), 1u);
  EXPECT_EQ(*TalcPathPrivate::FindDiagOpcode(7), "A");
}

TEST_F(TcdReaderTest, AddsToWhatEarlierDictionariesDefined) {
  EXPECT_TRUE(Parse("A Diag DiagOpcode 1 ;"));
  EXPECT_TRUE(Parse("B Diag DiagOpcode 2 ;"));
  EXPECT_EQ(Defined("A"), "A: Diag 1 {} {}");
  EXPECT_EQ(Defined("B"), "B: Diag 2 {} {}");
}

TEST_F(TcdReaderTest, RemembersTheSourceOfADefinition) {
  EXPECT_TRUE(Parse(kHead + ";"));
  TalcPathPrivate::ErrorList errors;
  EXPECT_TRUE(Find("Foo")->Validate(errors));  // a definition without its file is a fault
  EXPECT_TRUE(errors.empty());
}

TEST_F(TcdReaderTest, LoadsWhatValidationWouldRefuse) {
  EXPECT_TRUE(Parse("a-b Diag DiagOpcode 1 DataName c-d DataType INT8 DataName e RD DataType INT8 Symbol f-g 1 ;"));
  EXPECT_EQ(log(), "");
  TalcPathPrivate::ErrorList errors;
  EXPECT_FALSE(Find("a-b")->Validate(errors));
  EXPECT_EQ(errors.size(), 4u);
}

TEST_F(TcdReaderTest, TellsOfASuccessUnderTheVerboseFlag) {
  SetVerbose(true);
  EXPECT_TRUE(Parse(kHead + "DataName A RD DataType UINT16 DataName B DataType UINT8 ;"));
  EXPECT_EQ(log(),
            "\nParsing Talc Command Definition File : test.tcd\n"
            "\nFound Talc Command Definition...\tName: Foo"
            "\n\nBEGIN - Talc Command Format\nName: Foo\nType Major: VIDEO\nType Minor: 1\nFunction: 2\nParams {"
            "\n\tParameter: A Type: UINT16 IsRequiredForRequestData: true"
            "\n\tParameter: B Type: UINT8 IsRequiredForRequestData: false"
            "\n       }\nHasVariableLengthData: false\nPacket Info:  Send Size: 0 Send Payload Size: 0"
            "\n\tRequest Size: 0 Request Payload Size: 0\nEND   - Talc Command Format"
            "\nTalc Command Foo precomputed packet size information as follows..."
            "\n\nBEGIN - Talc Command Format\nName: Foo\nType Major: VIDEO\nType Minor: 1\nFunction: 2\nParams {"
            "\n\tParameter: A Type: UINT16 IsRequiredForRequestData: true"
            "\n\t\tPacket Offset: 8\n\t\tNum Bytes For Packet Position: 2\n\t\tSize: 2\n\t\tVariable Length: false"
            "\n\tParameter: B Type: UINT8 IsRequiredForRequestData: false"
            "\n\t\tPacket Offset: 10\n\t\tNum Bytes For Packet Position: 1\n\t\tSize: 1\n\t\tVariable Length: false"
            "\n       }\nHasVariableLengthData: false\nPacket Info:  Send Size: 11 Send Payload Size: 3"
            "\n\tRequest Size: 10 Request Payload Size: 2\nEND   - Talc Command Format"
            "\n\nFinished Parsing Talc Command Definition File : test.tcd\n");
}

TEST_F(TcdReaderTest, TellsOfNoSizesThatItDidNotCompute) {
  SetVerbose(true);
  EXPECT_TRUE(Parse("Bar Diag DiagOpcode 7 DataName A DataType BYTES ; Baz Meta Start A Repeat B Stop C ;"));
  EXPECT_EQ(log(),
            "\nParsing Talc Command Definition File : test.tcd\n"
            "\nFound Talc Command Definition...\tName: Bar"
            "\n\nBEGIN - Talc Diagnostic Command Format\nDiagOpcode : 7\nName: Bar\nParams {"
            "\n\tParameter: A Type: BYTES IsRequiredForRequestData: false"
            "\n       }\nHasVariableLengthData: true\nPacket Info:  Send Size: 0 Send Payload Size: 0"
            "\n\tRequest Size: 0 Request Payload Size: 0\nEND   - Talc Diagnostic Command Format"
            "\nFound Talc Command Definition...\tName: Baz"
            "\n\nBEGIN - Meta Command Format\nName: Baz\nStart: A\nRepeat: B\nStop: C\nParams {\n       }"
            "\nEND   - Meta Command Format"
            "\n\nFinished Parsing Talc Command Definition File : test.tcd\n");
}

TEST_F(TcdReaderTest, SaysNothingUnderTheTraceFlag) {
  SetTrace(true);
  EXPECT_TRUE(Parse(kHead + "DataName A DataType INT8 ; Baz Meta Start A Repeat B Stop C ;"));
  EXPECT_EQ(log(), "");
}

}  // namespace
