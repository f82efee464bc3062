// How a definition ends. What the ";" touches has been read into the end, and counts as the end.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DictionaryFixture.h"
#include "FormatProbe.h"

namespace {

using std::string_literals::operator""s;

const std::string kHead = "Foo Talc CommandTypeMajor VIDEO CommandTypeMinor 1 Function 2 ";

class TcdTailTest : public DictionaryTest {
 protected:
  /// What the definition with this tail was read as.
  static std::string ReadWithTail(const std::string& tail) {
    EXPECT_TRUE(Parse(kHead + tail + ";Next Diag DiagOpcode 1 ;"));
    // The definition behind it is none the worse for it.
    EXPECT_NE(Find("Next"), nullptr);
    return Find("Foo") == nullptr ? "none" : probe::Summary(*Find("Foo"));
  }
};

TEST_F(TcdTailTest, LosesAParameterWhoseTypeTheEndTouches) {
  EXPECT_EQ(ReadWithTail("DataName A DataType INT8"), "Foo: VIDEO 1 2 {} {}");
  EXPECT_EQ(log(), "");
}

TEST_F(TcdTailTest, LosesOnlyTheLastParameter) {
  EXPECT_EQ(ReadWithTail("DataName A DataType INT8\nDataName B RD DataType INT8"), "Foo: VIDEO 1 2 {A INT8} {}");
}

TEST_F(TcdTailTest, LosesABytesParameterAsAnyOther) {
  EXPECT_EQ(ReadWithTail("DataName A DataType BYTES"), "Foo: VIDEO 1 2 {} {}");
  EXPECT_FALSE(Find("Foo")->HasVariableLengthData());
}

TEST_F(TcdTailTest, SaysNothingOfALostParameterUnderTheVerboseFlag) {
  SetVerbose(true);
  EXPECT_TRUE(Parse("Baz Meta Start A Repeat B Stop C DataName A DataType INT8;"));
  EXPECT_EQ(log(),
            "\nParsing Talc Command Definition File : test.tcd\n"
            "\nFound Talc Command Definition...\tName: Baz"
            "\n\nBEGIN - Meta Command Format\nName: Baz\nStart: A\nRepeat: B\nStop: C\nParams {\n       }"
            "\nEND   - Meta Command Format"
            "\n\nFinished Parsing Talc Command Definition File : test.tcd\n");
}

TEST_F(TcdTailTest, KeepsASymbolThatTheEndTouches) {
  EXPECT_EQ(ReadWithTail("DataName A DataType INT8 Symbol On 1"), "Foo: VIDEO 1 2 {A INT8} {On 1}");
}

TEST_F(TcdTailTest, LosesAParameterBehindASymbolAllTheSame) {
  EXPECT_EQ(ReadWithTail("Symbol On 1 DataName A DataType INT8"), "Foo: VIDEO 1 2 {} {On 1}");
}

class TcdTailKeeps : public TcdTailTest, public testing::WithParamInterface<std::string> {};

TEST_P(TcdTailKeeps, AParameterWithWhiteSpaceBehindIt) {
  EXPECT_EQ(ReadWithTail("DataName A RD DataType INT8" + GetParam()), "Foo: VIDEO 1 2 {A INT8 RD} {}");
}

INSTANTIATE_TEST_SUITE_P(Tcd, TcdTailKeeps, testing::Values(" ", "\t", "\n", "\r\n", "\r", "\v", "\f", "\n\n  "));

/// Tails that are too short for a parameter, or are touched by the end: they are passed over, faults and all.
class TcdTailPassesOver : public TcdTailTest, public testing::WithParamInterface<std::string> {};

TEST_P(TcdTailPassesOver, WhatIsNoWholeParameter) {
  EXPECT_EQ(ReadWithTail("DataName A DataType INT8 Symbol On 1 " + GetParam()), "Foo: VIDEO 1 2 {A INT8} {On 1}");
  EXPECT_EQ(log(), "");
}

INSTANTIATE_TEST_SUITE_P(Tcd, TcdTailPassesOver,
                         testing::Values("DataName", "DataName ", "DataName B", "DataName B ", "DataName B DataType",
                                         "DataName B DataType ", "DataName B RD", "DataName B RD ",
                                         "DataName B RD DataType", "DataName B RD DataType ",
                                         "DataName B RD DataType INT8",
                                         // Not even faults are seen there.
                                         "DataName B DataType NONSENSE", "DataName B RD Nonsense INT8",
                                         "DataName A DataType INT8", "nonsense", "nonsense ", "one two", "one two ",
                                         "one two three ", "one two three four", "one two RD four five", "RD RD RD RD ",
                                         "dataname B DataType INT8", "symbol On 1 ", "symbol On 1", "\0"s,
                                         "\xFF\xFE "));

TEST_F(TcdTailTest, HidesASecondParameterBehindBytes) {
  EXPECT_EQ(ReadWithTail("DataName A DataType BYTES DataName B DataType INT8"), "Foo: VIDEO 1 2 {A BYTES} {}");
  EXPECT_TRUE(Find("Foo")->HasVariableLengthData());
}

}  // namespace
