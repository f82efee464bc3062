// A dictionary that is cut or damaged at any byte: what stands before stays defined.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DictionaryFixture.h"
#include "FormatProbe.h"

namespace {

const std::string kText =
    "# TalcPath Dictionary Generated TCD File ; \r\n"
    "\r\n# TalcPath Dictionary generated ;\r\nFoo\r\nTalc\r\n\r\nCommandTypeMajor\tSYSTEM\r\nCommandTypeMinor\t5\r\n"
    "Function\t\t\t26\r\n\r\nDataName\tBoard\tRD\r\nDataType\tUINT16\r\nDataName\tText\r\nDataType\tBYTES\r\n"
    "Symbol\tVPD_A\t0\r\nSymbol\tVPD_B\t-200\r\n;\r\n\r\nDOCUMENTATION\tFoo\r\nReads the text of a board. \r\n;"
    "\r\n# TalcPath Dictionary generated ;\r\nBar\r\nDiag\r\n\r\nDiagOpcode\t132\r\n\r\nDataName\tArgument\tRD\r\n"
    "DataType\tINT32\r\nDataName\tAnswer\r\nDataType\tINT32\r\n;"
    "\r\nBaz\r\nMeta\r\n\r\nStart\tFoo\r\nRepeat\tBar\r\nStop\tFoo\r\n;\r\n";

struct Definition {
  std::string name;
  std::string summary;
  /// The number of bytes up to and with the ";" that ends it.
  std::size_t end;
};

std::size_t EndBehind(const std::string& name) {
  return kText.find("\n;", kText.find("\r\n" + name + "\r\n")) + 2;
}

const std::vector<Definition> kDefinitions = {
    {"Foo", "Foo: SYSTEM 5 26 {Board UINT16 RD, Text BYTES} {VPD_A 0, VPD_B -200}", EndBehind("Foo")},
    {"Bar", "Bar: Diag 132 {Argument INT32 RD, Answer INT32} {}", EndBehind("Bar")},
    {"Baz", "Baz: Meta Foo Bar Foo {} {}", EndBehind("Baz")},
};

class TcdCutTest : public DictionaryTest {
 protected:
  /// All definitions that end at or before `end` are there; gives how many those are.
  static std::size_t ExpectDefinedUpTo(std::size_t end, const std::string& what) {
    std::size_t count = 0;
    for (const Definition& definition : kDefinitions) {
      if (definition.end > end) continue;
      ++count;
      const TalcPathPrivate::CommandFormat* const format = Find(definition.name);
      EXPECT_EQ(format == nullptr ? "none" : probe::Summary(*format), definition.summary) << what;
    }
    return count;
  }
  void StartOver() {
    TearDown();
    ClearLog();
    SetUp();
  }
};

TEST_F(TcdCutTest, DefinesWhatStandsWholeBeforeACut) {
  for (std::size_t length = 0; length <= kText.size(); ++length) {
    StartOver();
    const std::string what = "cut at byte " + std::to_string(length);
    ASSERT_TRUE(Parse(kText.substr(0, length))) << what;
    ASSERT_EQ(ExpectDefinedUpTo(length, what), TalcPathPrivate::DefinedCommands()->size()) << what;
    ASSERT_EQ(log(), "") << what;
  }
  EXPECT_EQ(TalcPathPrivate::DefinedCommands()->size(), 3u);
}

TEST_F(TcdCutTest, DefinesAtMostOneMoreWhenTheCutDefinitionIsEnded) {
  for (std::size_t length = 0; length <= kText.size(); ++length) {
    StartOver();
    const std::string what = "ended at byte " + std::to_string(length);
    const bool isGood = Parse(kText.substr(0, length) + ";");
    const std::size_t whole = ExpectDefinedUpTo(length, what);
    const std::size_t defined = TalcPathPrivate::DefinedCommands()->size();
    if (isGood)
      ASSERT_LE(defined, whole + 1) << what;
    else
      ASSERT_EQ(defined, whole) << what;
    // A failure always names the source at its end, a success says nothing.
    ASSERT_EQ(log().ends_with("file : test.tcd"), !isGood) << what;
    ASSERT_EQ(log().empty(), isGood) << what;
  }
}

TEST_F(TcdCutTest, KeepsWhatStandsBeforeADamagedByte) {
  for (const char damage : {'\0', ';', '#', ' ', '0', '-', '\xFF'}) {
    for (std::size_t at = 0; at < kText.size(); ++at) {
      StartOver();
      const std::string what = "byte " + std::to_string(at) + " is " + std::to_string(int{damage});
      std::string text = kText;
      text[at] = damage;
      const bool isGood = Parse(text);
      ExpectDefinedUpTo(at, what);
      ASSERT_EQ(log().empty(), isGood) << what;
    }
  }
}

}  // namespace
