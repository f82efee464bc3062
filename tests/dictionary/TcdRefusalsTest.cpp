// Definitions that read well and are refused all the same: taken names and codes, packets that are too large, tables
// without memory.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DictionaryFixture.h"
#include "FormatProbe.h"
#include "support/FailingAllocation.h"

namespace {

const std::string kFailLine = "\n\nERROR - Failed To Successfully parse Talc Command Definition file : test.tcd";
const std::string kStartLine = "\nParsing Talc Command Definition File : test.tcd\n";
const std::string kHeadLine = "\n\nERROR - Talc Command Definition : ";
const std::string kMeta = "Foo Meta Start A Repeat B Stop C ;";
const std::string kMetaDump =
    "\n\nBEGIN - Meta Command Format\nName: Foo\nStart: A\nRepeat: B\nStop: C\nParams {\n       }"
    "\nEND   - Meta Command Format";

class TcdRefusalsTest : public DictionaryTest {
 protected:
  static constexpr const char* kTalc = "Foo Talc CommandTypeMajor VIDEO CommandTypeMinor 1 Function 2 ;";
  static constexpr const char* kDiag = "Foo Diag DiagOpcode 7 ;";
};

TEST_F(TcdRefusalsTest, RefusesANameThatIsTaken) {
  EXPECT_FALSE(Parse(std::string(kTalc) + "Foo Diag DiagOpcode 1 ;"));
  EXPECT_EQ(log(), kHeadLine + "Foo NOT UNIQUE" + kFailLine);
  EXPECT_EQ(probe::Summary(*Find("Foo")), "Foo: VIDEO 1 2 {} {}");
  EXPECT_TRUE(TalcPathPrivate::DiagOpcodes()->empty());
}

TEST_F(TcdRefusalsTest, TellsWhichNameIsTakenUnderTheVerboseFlag) {
  EXPECT_TRUE(Parse(kTalc));
  SetVerbose(true);
  EXPECT_FALSE(Parse(kMeta));
  EXPECT_EQ(log(), kStartLine + "\nFound Talc Command Definition...\tName: Foo" + kMetaDump +
                       "\n\nERROR - Duplicate Talc Command Name found : Foo" + kHeadLine + "Foo NOT UNIQUE" +
                       kFailLine);
}

TEST_F(TcdRefusalsTest, RefusesTheSecondCommandOfAType) {
  EXPECT_FALSE(Parse(std::string(kTalc) + "Bar Talc CommandTypeMajor VIDEO CommandTypeMinor 1 Function 2 ;" +
                     "Baz Diag DiagOpcode 1 ;"));
  EXPECT_EQ(log(), kHeadLine + "Bar NOT UNIQUE" + kFailLine);
  EXPECT_NE(Find("Foo"), nullptr);
  EXPECT_EQ(Find("Bar"), nullptr);
  EXPECT_EQ(Find("Baz"), nullptr);
}

TEST_F(TcdRefusalsTest, TellsWhoHasTheTypeUnderTheVerboseFlag) {
  EXPECT_TRUE(Parse(kTalc));
  SetVerbose(true);
  EXPECT_FALSE(Parse("Bar Talc CommandTypeMajor VIDEO CommandTypeMinor 1 Function 2 ;"));
  EXPECT_EQ(log(),
            kStartLine +
                "\nFound Talc Command Definition...\tName: Bar"
                "\n\nBEGIN - Talc Command Format\nName: Bar\nType Major: VIDEO\nType Minor: 1\nFunction: 2\nParams {"
                "\n       }\nHasVariableLengthData: false\nPacket Info:  Send Size: 0 Send Payload Size: 0"
                "\n\tRequest Size: 0 Request Payload Size: 0\nEND   - Talc Command Format"
                "\n\nERROR - Duplicate Major Type, Minor Type, and Function code found!"
                "\n\n\t\t Existing Command Name: Foo" +
                kHeadLine + "Bar NOT UNIQUE" + kFailLine);
}

TEST_F(TcdRefusalsTest, TellsWhoHasTheOpcodeUnderTheVerboseFlag) {
  EXPECT_TRUE(Parse(kDiag));
  SetVerbose(true);
  EXPECT_FALSE(Parse("Bar Diag DiagOpcode 7 ;"));
  EXPECT_EQ(log(), kStartLine +
                       "\nFound Talc Command Definition...\tName: Bar"
                       "\n\nBEGIN - Talc Diagnostic Command Format\nDiagOpcode : 7\nName: Bar\nParams {"
                       "\n       }\nHasVariableLengthData: false\nPacket Info:  Send Size: 0 Send Payload Size: 0"
                       "\n\tRequest Size: 0 Request Payload Size: 0\nEND   - Talc Diagnostic Command Format"
                       "\n\nERROR - Duplicate Diag Opcode code found!"
                       "\n\n\t\t Existing Command Name: Foo" +
                       kHeadLine + "Bar NOT UNIQUE" + kFailLine);
}

TEST_F(TcdRefusalsTest, TellsOfTheNameAloneWhenBothAreTaken) {
  EXPECT_TRUE(Parse(kDiag));
  SetVerbose(true);
  EXPECT_FALSE(Parse(kDiag));
  EXPECT_NE(log().find("Duplicate Talc Command Name found : Foo" + kHeadLine), std::string::npos);
  EXPECT_EQ(log().find("Duplicate Diag"), std::string::npos);
}

TEST_F(TcdRefusalsTest, TakesNeighbouringCodes) {
  EXPECT_TRUE(
      Parse("A Talc CommandTypeMajor VIDEO CommandTypeMinor 1 Function 2 ;"
            "B Talc CommandTypeMajor VIDEO CommandTypeMinor 1 Function 3 ;"
            "C Talc CommandTypeMajor VIDEO CommandTypeMinor 1 Function 1 ;"
            "D Talc CommandTypeMajor VIDEO CommandTypeMinor 2 Function 2 ;"
            "E Talc CommandTypeMajor AUDIO CommandTypeMinor 1 Function 2 ;"
            "F Diag DiagOpcode 2 ; G Diag DiagOpcode 3 ; H Diag DiagOpcode 1 ;"));
  EXPECT_EQ(TalcPathPrivate::DefinedCommands()->size(), 8u);
}

/// Parameters that take `bytes` bytes.
std::string Payload(std::size_t bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes / 8; ++i)
    text += "DataName a" + std::to_string(i) + " DataType UINT64\n";
  for (std::size_t i = 0; i < bytes % 8; ++i)
    text += "DataName b" + std::to_string(i) + " DataType UINT8\n";
  return text;
}

TEST_F(TcdRefusalsTest, LaysOutTheLargestPayloads) {
  EXPECT_TRUE(Parse("Foo Talc CommandTypeMajor VIDEO CommandTypeMinor 1 Function 2 " + Payload(2040) + ";" +
                    "Bar Diag DiagOpcode 1 " + Payload(2002) + ";"));
  EXPECT_EQ(dynamic_cast<TalcPathPrivate::TalcDataCommandFormat&>(*Find("Foo")).GetPacketSizes().sendSize, 2048u);
  EXPECT_EQ(dynamic_cast<TalcPathPrivate::TalcDataCommandFormat&>(*Find("Bar")).GetPacketSizes().sendSize, 2038u);
}

struct TooLarge {
  std::string label;
  std::string head;
  std::size_t payload;
  std::string dumpHead;
  std::string dumpEnd;
};

class TcdTooLarge : public DictionaryTest, public testing::WithParamInterface<TooLarge> {};

const std::string kTooLargeLines =
    "\n\nERROR - Talc Command : Foo Has Fixed-Size Parameter Data but could not precompute packet sizes and data "
    "offsets "
    "\n\nERROR - Talc Command Definition : Foo FAILED Precomputation Stage";

TEST_P(TcdTooLarge, IsRefused) {
  EXPECT_FALSE(Parse(GetParam().head + Payload(GetParam().payload) + ";"));
  EXPECT_EQ(log(), kTooLargeLines + kFailLine);
  EXPECT_TRUE(TalcPathPrivate::DefinedCommands()->empty());
  EXPECT_TRUE(TalcPathPrivate::CommandTypes()->empty());
  EXPECT_TRUE(TalcPathPrivate::DiagOpcodes()->empty());
}

TEST_P(TcdTooLarge, IsRefusedWithNoMoreWordsUnderTheVerboseFlag) {
  SetVerbose(true);
  EXPECT_FALSE(Parse(GetParam().head + Payload(GetParam().payload) + ";"));
  std::string parameters;
  for (std::size_t i = 0; i < GetParam().payload / 8; ++i)
    parameters += "\n\tParameter: a" + std::to_string(i) + " Type: UINT64 IsRequiredForRequestData: false";
  for (std::size_t i = 0; i < GetParam().payload % 8; ++i)
    parameters += "\n\tParameter: b" + std::to_string(i) + " Type: UINT8 IsRequiredForRequestData: false";
  EXPECT_EQ(log(), kStartLine + "\nFound Talc Command Definition...\tName: Foo" + GetParam().dumpHead + parameters +
                       "\n       }\nHasVariableLengthData: false\nPacket Info:  Send Size: 0 Send Payload Size: 0"
                       "\n\tRequest Size: 0 Request Payload Size: 0" +
                       GetParam().dumpEnd + kTooLargeLines + kFailLine);
}

const std::vector<TooLarge> kTooLarge = {
    {"Talc", "Foo Talc CommandTypeMajor VIDEO CommandTypeMinor 1 Function 2 ", 2041,
     "\n\nBEGIN - Talc Command Format\nName: Foo\nType Major: VIDEO\nType Minor: 1\nFunction: 2\nParams {",
     "\nEND   - Talc Command Format"},
    {"Diag", "Foo Diag DiagOpcode 7 ", 2003,
     "\n\nBEGIN - Talc Diagnostic Command Format\nDiagOpcode : 7\nName: Foo\nParams {",
     "\nEND   - Talc Diagnostic Command Format"},
};
INSTANTIATE_TEST_SUITE_P(Tcd, TcdTooLarge, testing::ValuesIn(kTooLarge), probe::LabelOf<TooLarge>);

TEST_F(TcdRefusalsTest, GivesUpWithoutAWordWhenATableFindsNoMemory) {
  SetVerbose(true);
  for (const int nth : {1, 2}) {
    const test_support::FailingAllocation table(nth);
    EXPECT_FALSE(Parse(kTalc));
    EXPECT_TRUE(table.Happened());
    EXPECT_EQ(log(), "");
    EXPECT_EQ(Find("Foo"), nullptr);
    TearDown();  // the table that found memory
    SetUp();
    SetVerbose(true);
  }
}

TEST_F(TcdRefusalsTest, RefusesADiagnosticCommandWhenItsTableFindsNoMemory) {
  {
    const test_support::FailingAllocation table(3);
    EXPECT_FALSE(Parse(kDiag));
    EXPECT_TRUE(table.Happened());
  }
  EXPECT_EQ(log(), kHeadLine + "Foo FAILED AddToDefinedCommands Stage" + kFailLine);
  EXPECT_EQ(Find("Foo"), nullptr);
  // Nothing of it stays in the way of another try.
  EXPECT_TRUE(Parse(kDiag));
}

}  // namespace
