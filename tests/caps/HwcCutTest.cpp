// A file that is cut or damaged at any byte: the reading ends by itself, and what stands before is read.

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "CapsFixture.h"

namespace {

using caps_test::TablesOf;
using caps_test::TalcHWCaps;

struct Statement {
  std::string text;
  /// How many there are behind it.
  std::size_t overrides;
  std::size_t blocks;
  std::size_t properties;
  std::size_t values;
};

const std::vector<Statement> kStatements = {
    {"\n# Capabilities ;", 0, 0, 0, 0},
    {"\n\nHardwareType\t\tTrelvane ;", 0, 0, 0, 0},
    {"\nCmdOverrideTimeout\tVideo\t1500 ;", 1, 0, 0, 0},
    {"\nProperty\tFirst\tSTRING\tTRUE;", 1, 0, 1, 0},
    {"\nProperty\tSecond\tINTEGER\t-310 ;", 1, 0, 2, 0},
    {"\nCommandValues\tAudio\tLevel\tRange\t-10\t255 ;", 1, 0, 2, 1},
    {"\nConditionBlockBegin ;", 1, 1, 2, 1},
    {"\nConditionKeyname\tHue ;", 1, 1, 2, 1},
    {"\nCondition\tVideo\tSide\tSYMBOL\tInput ;", 1, 1, 2, 1},
    {"\nCondition\tVideo\tControl\tINTEGER\t3 ;", 1, 1, 2, 1},
    {"\nConditionBlockEnd ;", 1, 1, 2, 1},
    {"\nCommandValues\tVideo\tControl\tSymbol\tHue Gain  ;", 1, 1, 2, 2},
    {"\nConditionBlockBegin ;", 1, 2, 2, 2},
    {"\nConditionBlockEnd ;", 1, 1, 2, 2},
    {"\nProperty\tThird\tSTRING\tx ;", 1, 1, 3, 2},
    {"\n", 1, 1, 3, 2},
};

std::string WholeText() {
  std::string text;
  for (const Statement& statement : kStatements)
    text += statement.text;
  return text;
}

/// What stands whole within the first `length` bytes.
Statement LastWithin(std::size_t length) {
  Statement last = {"", 0, 0, 0, 0};
  std::size_t end = 0;
  for (const Statement& statement : kStatements) {
    end += statement.text.size();
    if (end > length) break;
    last = statement;
  }
  return last;
}

class HwcCutTest : public caps_test::CapsTest {};

TEST_F(HwcCutTest, ReadsWhatStandsWholeBeforeACut) {
  const std::string text = WholeText();
  for (std::size_t length = 0; length <= text.size(); ++length) {
    SCOPED_TRACE("cut at byte " + std::to_string(length));
    TalcHWCaps caps;
    ASSERT_TRUE(Read(caps, text.substr(0, length)));
    const Statement last = LastWithin(length);
    ASSERT_EQ(caps.overrideTimeouts.size(), last.overrides);
    ASSERT_EQ(caps.Blocks().size(), last.blocks);
    ASSERT_EQ(caps.OverallPropertyCount(), last.properties);
    ASSERT_EQ(caps.OverallCmdParamCount(), last.values);
    ASSERT_EQ(log(), "");
  }
}

TEST_F(HwcCutTest, ReadsWhatStandsWholeBeforeACutThatIsEnded) {
  const std::string text = WholeText();
  std::size_t failures = 0;
  for (std::size_t length = 0; length <= text.size(); ++length) {
    SCOPED_TRACE("ended at byte " + std::to_string(length));
    ClearLog();
    TalcHWCaps caps;
    const bool isGood = Read(caps, text.substr(0, length) + ";");
    const Statement last = LastWithin(length);
    ASSERT_GE(caps.overrideTimeouts.size(), last.overrides);
    ASSERT_GE(caps.OverallPropertyCount(), last.properties);
    ASSERT_GE(caps.OverallCmdParamCount(), last.values);
    // A failure always names the file at its end, a success says nothing.
    ASSERT_EQ(log().ends_with("file : test.hwc"), !isGood);
    ASSERT_EQ(log().empty(), isGood);
    if (!isGood) ++failures;
  }
  EXPECT_GT(failures, text.size() / 2);
}

TEST_F(HwcCutTest, ReadsWhatStandsBeforeADamagedByte) {
  const std::string text = WholeText();
  for (const char damage : {'\0', ';', '#', ' ', '0', '-', '\xFF'}) {
    for (std::size_t at = 0; at < text.size(); ++at) {
      SCOPED_TRACE("byte " + std::to_string(at) + " is " + std::to_string(int{damage}));
      ClearLog();
      std::string damaged = text;
      damaged[at] = damage;
      TalcHWCaps caps;
      const bool isGood = Read(caps, damaged);
      const Statement last = LastWithin(at);
      ASSERT_GE(caps.overrideTimeouts.size(), last.overrides);
      ASSERT_GE(caps.OverallPropertyCount(), last.properties);
      ASSERT_GE(caps.OverallCmdParamCount(), last.values);
      ASSERT_EQ(log().empty(), isGood);
    }
  }
}

}  // namespace
