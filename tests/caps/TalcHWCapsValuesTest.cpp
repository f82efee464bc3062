// Values of commands' parameters.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include "CapsFixture.h"

namespace {

using caps_test::Block;
using caps_test::NumberBlock;
using caps_test::Range;
using caps_test::SymbolBlock;
using caps_test::TextList;
using caps_test::TextOf;
using caps_test::ValuesOf;
using caps_test::Variant;
using testing::ElementsAre;
using testing::IsEmpty;

class TalcHWCapsValuesTest : public caps_test::CapsTest {
 protected:
  TalcHWCapsValuesTest() {
    caps_.AppendBlock(NumberBlock("One", "Video", "Side", 1));
    caps_.AppendBlock(NumberBlock("Two", "Video", "Side", 2));
  }

  std::string Value(std::string_view command, std::string_view parameter, const Block& block) const {
    return TextOf(caps_.FindCommandValue(command, parameter, block));
  }

  const Block default_ = {};
  const Block one_ = NumberBlock("", "Video", "Side", 1);
  const Block two_ = NumberBlock("", "Video", "Side", 2);
  const Block foreign_ = NumberBlock("One", "Video", "Side", 3);
};

TEST_F(TalcHWCapsValuesTest, KeepsRangesAndLists) {
  EXPECT_TRUE(caps_.AddCommandValue("Video", "Value", Variant(Range(-1, 255)), default_));
  EXPECT_TRUE(caps_.AddCommandValue("Video", "Control", Variant(TextList{"Hue", "Gain"}), one_));
  EXPECT_EQ(Value("Video", "Value", default_), "-1..255");
  EXPECT_EQ(Value("Video", "Control", SymbolBlock("Other", "Video", "Side", "Input")), "[Hue Gain]");
  EXPECT_EQ(caps_.FindCommandValue("Video", "Value", default_)->As<TextList>(), nullptr);
  EXPECT_EQ(caps_.FindCommandValue("Video", "Control", one_)->As<Range>(), nullptr);
}

TEST_F(TalcHWCapsValuesTest, FindsNothingUnderOtherNames) {
  EXPECT_TRUE(caps_.AddCommandValue("Video", "Value", Variant(Range(0, 1)), one_));
  EXPECT_EQ(Value("Audio", "Value", one_), "none");
  EXPECT_EQ(Value("video", "Value", one_), "none");
  EXPECT_EQ(Value("Video", "Control", one_), "none");
  EXPECT_EQ(Value("", "", one_), "none");
  EXPECT_EQ(Value("Video", "Value", two_), "none");
}

TEST_F(TalcHWCapsValuesTest, AnswersOnlyExactlyTheConditions) {
  Block both = one_;
  both.keyname = "Both";
  EXPECT_TRUE(both.AddIntegerCondition("Video", "Control", 3));
  caps_.AppendBlock(both);
  EXPECT_TRUE(caps_.AddCommandValue("Video", "Value", Variant(Range(0, 1)), default_));
  EXPECT_TRUE(caps_.AddCommandValue("Video", "Value", Variant(Range(0, 2)), both));
  EXPECT_EQ(Value("Video", "Value", one_), "none");
  EXPECT_EQ(Value("Video", "Value", NumberBlock("", "Video", "Control", 3)), "none");
  EXPECT_EQ(Value("Video", "Value", both), "0..2");
  EXPECT_EQ(Value("Video", "Value", default_), "0..1");
}

TEST_F(TalcHWCapsValuesTest, AddsNoValueTwice) {
  EXPECT_TRUE(caps_.AddCommandValue("Video", "Value", Variant(Range(0, 1)), one_));
  EXPECT_FALSE(caps_.AddCommandValue("Video", "Value", Variant(Range(0, 2)), one_));
  EXPECT_FALSE(caps_.AddCommandValue("Video", "Value", Variant(TextList{"Hue"}), one_));
  EXPECT_TRUE(caps_.AddCommandValue("Video", "Value", Variant(Range(0, 3)), two_));
  EXPECT_TRUE(caps_.AddCommandValue("Video", "Control", Variant(Range(0, 4)), one_));
  EXPECT_TRUE(caps_.AddCommandValue("Audio", "Value", Variant(Range(0, 5)), one_));
  EXPECT_THAT(ValuesOf(caps_), ElementsAre("One: Audio Value 0..5", "One: Video Control 0..4", "One: Video Value 0..1",
                                           "Two: Video Value 0..3"));
}

TEST_F(TalcHWCapsValuesTest, KeepsNoValueOfAForeignBlock) {
  EXPECT_FALSE(caps_.AddCommandValue("Video", "Value", Variant(Range(0, 1)), foreign_));
  EXPECT_TRUE(caps_.AllCommandValues().empty());
}

TEST_F(TalcHWCapsValuesTest, SetsARangeUnderTheNamedBlock) {
  constexpr std::int32_t kLow = std::numeric_limits<std::int32_t>::min();
  constexpr std::int32_t kHigh = std::numeric_limits<std::int32_t>::max();
  EXPECT_TRUE(caps_.SetCmdParamRanges("Video", "Value", kLow, kHigh, "Two"));
  EXPECT_TRUE(caps_.SetCmdParamRanges("Video", "Value", 5, 5, ""));
  EXPECT_TRUE(caps_.SetCmdParamRanges("NoCommand", "NoParameter", 2, 1, "One"));  // neither is looked up
  EXPECT_THAT(ValuesOf(caps_), ElementsAre("One: NoCommand NoParameter 2..1",
                                           "Two: Video Value -2147483648..2147483647", "default: Video Value 5..5"));
}

TEST_F(TalcHWCapsValuesTest, SetsNoRangeWithoutItsNames) {
  EXPECT_FALSE(caps_.SetCmdParamRanges("", "Value", 0, 1, "One"));
  EXPECT_FALSE(caps_.SetCmdParamRanges("Video", "", 0, 1, "One"));
  EXPECT_FALSE(caps_.SetCmdParamRanges("Video", "Value", 0, 1, "Three"));
  EXPECT_FALSE(caps_.SetCmdParamRanges("Video", "Value", 0, 1, "ERROR_ERROR_ERROR"));
  EXPECT_THAT(ValuesOf(caps_), IsEmpty());
}

TEST_F(TalcHWCapsValuesTest, SetsNoRangeOverAValue) {
  EXPECT_TRUE(caps_.SetCmdParamRanges("Video", "Value", 0, 1, "One"));
  EXPECT_TRUE(caps_.AddCmdParamSymbolValue("Video", "Control", "Hue", "One"));
  EXPECT_FALSE(caps_.SetCmdParamRanges("Video", "Value", 0, 1, "One"));
  EXPECT_FALSE(caps_.SetCmdParamRanges("Video", "Control", 0, 1, "One"));
  EXPECT_THAT(ValuesOf(caps_), ElementsAre("One: Video Control [Hue]", "One: Video Value 0..1"));
}

TEST_F(TalcHWCapsValuesTest, BeginsANewListOfSymbols) {
  EXPECT_TRUE(caps_.AddCmdParamSymbolValue("Video", "Control", "Hue", "Two"));
  EXPECT_TRUE(caps_.AddCmdParamSymbolValue("Video", "Control", "Gain", ""));
  EXPECT_TRUE(caps_.AddCmdParamSymbolValue("NoCommand", "Control", "NoSymbol", "One"));  // nothing is looked up
  EXPECT_THAT(ValuesOf(caps_), ElementsAre("One: NoCommand Control [NoSymbol]", "Two: Video Control [Hue]",
                                           "default: Video Control [Gain]"));
}

TEST_F(TalcHWCapsValuesTest, AddsASymbolUnlessItIsThere) {
  for (const char* const symbol : {"Hue", "Gain", "Hue", "Gain", "hue", "Tint"})
    EXPECT_TRUE(caps_.AddCmdParamSymbolValue("Video", "Control", symbol, "One")) << symbol;
  EXPECT_EQ(Value("Video", "Control", one_), "[Hue Gain hue Tint]");
}

TEST_F(TalcHWCapsValuesTest, AddsNoSymbolWithoutItsBlock) {
  EXPECT_FALSE(caps_.AddCmdParamSymbolValue("Video", "Control", "Hue", "Three"));
  EXPECT_FALSE(caps_.AddCmdParamSymbolValue("Video", "Control", "Hue", "ERROR_ERROR_ERROR"));
  EXPECT_THAT(ValuesOf(caps_), IsEmpty());
}

TEST_F(TalcHWCapsValuesTest, GivesARangeUpForAList) {
  EXPECT_TRUE(caps_.SetCmdParamRanges("Video", "Value", 0, 1, "One"));
  EXPECT_TRUE(caps_.AddCmdParamSymbolValue("Video", "Value", "Hue", "One"));
  EXPECT_TRUE(caps_.AddCmdParamSymbolValue("Video", "Value", "Gain", "One"));
  EXPECT_THAT(ValuesOf(caps_), ElementsAre("One: Video Value [Hue Gain]"));
}

TEST_F(TalcHWCapsValuesTest, PutsTheListBehindTheOtherBlocksValues) {
  EXPECT_TRUE(caps_.SetCmdParamRanges("Video", "Value", 0, 1, "One"));
  EXPECT_TRUE(caps_.SetCmdParamRanges("Video", "Value", 0, 2, ""));
  EXPECT_TRUE(caps_.SetCmdParamRanges("Video", "Value", 0, 3, "Two"));
  EXPECT_TRUE(caps_.AddCmdParamSymbolValue("Video", "Value", "Hue", ""));
  EXPECT_THAT(ValuesOf(caps_),
              ElementsAre("One: Video Value 0..1", "Two: Video Value 0..3", "default: Video Value [Hue]"));
}

TEST_F(TalcHWCapsValuesTest, CountsTheValuesOfAllParametersTogether) {
  EXPECT_TRUE(caps_.SetCmdParamRanges("Video", "Value", 0, 1, "Two"));
  EXPECT_TRUE(caps_.SetCmdParamRanges("Video", "Value", 0, 2, ""));
  EXPECT_TRUE(caps_.SetCmdParamRanges("Video", "Control", 0, 3, "One"));
  EXPECT_TRUE(caps_.SetCmdParamRanges("Audio", "Level", 0, 4, "One"));
  EXPECT_EQ(caps_.OverallCmdParamCount(), 4u);

  struct Expected {
    const char* command;
    const char* parameter;
    const Block* block;
  };
  const Block* const one = caps_.FindBlock("One");
  const Block* const two = caps_.FindBlock("Two");
  std::size_t n = 0;
  for (const Expected& expected :
       {Expected{"Audio", "Level", one}, Expected{"Video", "Control", one}, Expected{"Video", "Value", two},
        Expected{"Video", "Value", &caps_.DefaultBlock()}}) {
    std::string command;
    std::string parameter;
    const Block* block = nullptr;
    EXPECT_TRUE(caps_.GetNthOverallCmdParam(n, command, parameter, block)) << n;
    EXPECT_EQ(command, expected.command) << n;
    EXPECT_EQ(parameter, expected.parameter) << n;
    EXPECT_EQ(block, expected.block) << n;
    ++n;
  }
  std::string command;
  std::string parameter;
  const Block* block = nullptr;
  EXPECT_FALSE(caps_.GetNthOverallCmdParam(4, command, parameter, block));
  EXPECT_FALSE(caps_.GetNthOverallCmdParam(std::numeric_limits<std::size_t>::max(), command, parameter, block));
}

TEST_F(TalcHWCapsValuesTest, HasNoNthValueWithoutAny) {
  std::string command;
  std::string parameter;
  const Block* block = nullptr;
  EXPECT_EQ(caps_.OverallCmdParamCount(), 0u);
  EXPECT_FALSE(caps_.GetNthOverallCmdParam(0, command, parameter, block));
}

}  // namespace
