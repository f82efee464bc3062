#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "caps/ConditionBlock.h"
#include "CapsFixture.h"

namespace {

using caps_test::Block;
using caps_test::ConditionsOf;
using caps_test::NumberBlock;
using caps_test::SymbolBlock;

class ConditionBlockTest : public caps_test::CapsTest {
 protected:
  Block block_;
  Block other_;
};

TEST_F(ConditionBlockTest, IsBuiltEmpty) {
  EXPECT_EQ(block_.keyname, "");
  EXPECT_EQ(block_.ConditionCount(), 0u);
  EXPECT_TRUE(block_.Conditions().empty());
  EXPECT_EQ(block_.Find("Video", "Side"), nullptr);
  EXPECT_EQ(block_.Find("", ""), nullptr);
}

TEST_F(ConditionBlockTest, KeepsANumber) {
  EXPECT_TRUE(block_.AddIntegerCondition("Video", "Side", 7));
  const auto* const record = block_.Find("Video", "Side");
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->parameter, "Side");
  EXPECT_EQ(record->symbol, "");
  EXPECT_EQ(record->value, 7);
}

TEST_F(ConditionBlockTest, KeepsASymbolWithItsNumber) {
  EXPECT_TRUE(block_.AddSymbolCondition("Video", "Control", "Gain"));
  const auto* const record = block_.Find("Video", "Control");
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->parameter, "Control");
  EXPECT_EQ(record->symbol, "Gain");
  EXPECT_EQ(record->value, -4);
}

TEST_F(ConditionBlockTest, KeepsNumbersUpToTheLimits) {
  EXPECT_TRUE(block_.AddIntegerCondition("Video", "Side", std::numeric_limits<std::int32_t>::min()));
  EXPECT_TRUE(block_.AddIntegerCondition("Video", "Value", std::numeric_limits<std::int32_t>::max()));
  EXPECT_EQ(ConditionsOf(block_), "Video Side -2147483648, Video Value 2147483647");
}

TEST_F(ConditionBlockTest, TakesCommandsOfEveryKind) {
  EXPECT_TRUE(block_.AddIntegerCondition("Probe", "Address", 1));
  EXPECT_EQ(ConditionsOf(block_), "Probe Address 1");
}

TEST_F(ConditionBlockTest, RefusesANumberForWhatIsNotDefined) {
  EXPECT_FALSE(block_.AddIntegerCondition("Vide", "Side", 1));
  EXPECT_FALSE(block_.AddIntegerCondition("video", "Side", 1));
  EXPECT_FALSE(block_.AddIntegerCondition("", "Side", 1));
  EXPECT_FALSE(block_.AddIntegerCondition("Video", "Level", 1));
  EXPECT_FALSE(block_.AddIntegerCondition("Video", "side", 1));
  EXPECT_FALSE(block_.AddIntegerCondition("Video", "", 1));
  EXPECT_TRUE(block_.Conditions().empty());
}

TEST_F(ConditionBlockTest, RefusesASymbolForWhatIsNotDefined) {
  EXPECT_FALSE(block_.AddSymbolCondition("Vide", "Side", "Input"));
  EXPECT_FALSE(block_.AddSymbolCondition("", "Side", "Input"));
  EXPECT_FALSE(block_.AddSymbolCondition("Video", "Level", "Input"));
  EXPECT_FALSE(block_.AddSymbolCondition("Video", "", "Input"));
  EXPECT_FALSE(block_.AddSymbolCondition("Video", "Side", "Loud"));  // of the other command
  EXPECT_FALSE(block_.AddSymbolCondition("Video", "Side", "input"));
  EXPECT_FALSE(block_.AddSymbolCondition("Video", "Side", "1"));
  EXPECT_FALSE(block_.AddSymbolCondition("Video", "Side", ""));
  EXPECT_FALSE(block_.AddSymbolCondition("Probe", "Address", "Input"));  // has none
  EXPECT_TRUE(block_.Conditions().empty());
}

TEST_F(ConditionBlockTest, LeavesWhatIsThereWhenItRefuses) {
  EXPECT_TRUE(block_.AddSymbolCondition("Video", "Side", "Input"));
  EXPECT_FALSE(block_.AddSymbolCondition("Video", "Side", "Loud"));
  EXPECT_FALSE(block_.AddIntegerCondition("Video", "Level", 1));
  EXPECT_EQ(ConditionsOf(block_), "Video Side 1 Input");
}

TEST_F(ConditionBlockTest, ReplacesAConditionOnTheSameParameter) {
  EXPECT_TRUE(block_.AddSymbolCondition("Video", "Side", "Input"));
  EXPECT_TRUE(block_.AddSymbolCondition("Video", "Side", "Output"));
  EXPECT_EQ(ConditionsOf(block_), "Video Side 2 Output");
  EXPECT_TRUE(block_.AddIntegerCondition("Video", "Side", 2));
  EXPECT_EQ(ConditionsOf(block_), "Video Side 2");
  EXPECT_TRUE(block_.AddSymbolCondition("Video", "Side", "Hue"));
  EXPECT_EQ(ConditionsOf(block_), "Video Side 3 Hue");
  EXPECT_EQ(block_.ConditionCount(), 1u);
}

TEST_F(ConditionBlockTest, CountsParametersOfAllCommands) {
  EXPECT_TRUE(block_.AddIntegerCondition("Video", "Value", 1));
  EXPECT_TRUE(block_.AddIntegerCondition("Video", "Control", 2));
  EXPECT_EQ(block_.ConditionCount(), 2u);
  EXPECT_TRUE(block_.AddSymbolCondition("Audio", "Side", "Loud"));
  EXPECT_EQ(block_.ConditionCount(), 3u);
  EXPECT_EQ(ConditionsOf(block_), "Audio Side 9 Loud, Video Control 2, Video Value 1");
}

TEST_F(ConditionBlockTest, TellsApartWhoseParameterItIs) {
  EXPECT_TRUE(block_.AddIntegerCondition("Video", "Side", 1));
  EXPECT_NE(block_.Find("Video", "Side"), nullptr);
  EXPECT_EQ(block_.Find("Audio", "Side"), nullptr);
  EXPECT_EQ(block_.Find("Video", "Control"), nullptr);
  EXPECT_EQ(block_.Find("video", "Side"), nullptr);
}

TEST_F(ConditionBlockTest, TakesTheCommandAwayWithItsLastCondition) {
  EXPECT_TRUE(block_.AddIntegerCondition("Video", "Side", 1));
  EXPECT_TRUE(block_.AddIntegerCondition("Video", "Value", 2));
  block_.RemoveCondition("Video", "Side");
  EXPECT_EQ(ConditionsOf(block_), "Video Value 2");
  EXPECT_EQ(block_.Conditions().size(), 1u);
  block_.RemoveCondition("Video", "Value");
  EXPECT_TRUE(block_.Conditions().empty());
  EXPECT_TRUE(block_.HasSameConditions(other_));
}

TEST_F(ConditionBlockTest, RemovesNothingThatIsNotThere) {
  EXPECT_TRUE(block_.AddIntegerCondition("Video", "Side", 1));
  block_.RemoveCondition("Audio", "Side");
  block_.RemoveCondition("Video", "Value");
  block_.RemoveCondition("", "");
  EXPECT_EQ(ConditionsOf(block_), "Video Side 1");
}

TEST_F(ConditionBlockTest, CopiesAreOfTheirOwn) {
  EXPECT_TRUE(block_.AddIntegerCondition("Video", "Side", 1));
  Block copy = block_;
  block_.RemoveCondition("Video", "Side");
  EXPECT_EQ(ConditionsOf(copy), "Video Side 1");
}

/// Equality must not depend on who is asked.
void ExpectSame(const Block& one, const Block& other, bool isSame) {
  EXPECT_EQ(one.HasSameConditions(other), isSame) << ConditionsOf(one) << " and " << ConditionsOf(other);
  EXPECT_EQ(other.HasSameConditions(one), isSame) << ConditionsOf(other) << " and " << ConditionsOf(one);
}

TEST_F(ConditionBlockTest, AreTheSameWithoutConditions) {
  ExpectSame(block_, other_, true);
  ExpectSame(block_, block_, true);
}

TEST_F(ConditionBlockTest, AreNotTheSameWhenOneHasNone) {
  ExpectSame(block_, NumberBlock("", "Video", "Side", 0), false);
}

TEST_F(ConditionBlockTest, AreNotTheSameWithMoreCommands) {
  Block more = NumberBlock("", "Video", "Side", 1);
  EXPECT_TRUE(more.AddIntegerCondition("Audio", "Side", 1));
  ExpectSame(NumberBlock("", "Video", "Side", 1), more, false);
  ExpectSame(NumberBlock("", "Audio", "Side", 1), more, false);
}

TEST_F(ConditionBlockTest, AreNotTheSameWithMoreParameters) {
  Block more = NumberBlock("", "Video", "Side", 1);
  EXPECT_TRUE(more.AddIntegerCondition("Video", "Value", 1));
  ExpectSame(NumberBlock("", "Video", "Side", 1), more, false);
  ExpectSame(NumberBlock("", "Video", "Value", 1), more, false);
}

TEST_F(ConditionBlockTest, AreNotTheSameWithOtherNumbers) {
  ExpectSame(NumberBlock("", "Video", "Side", 1), NumberBlock("", "Video", "Side", -1), false);
  Block one = NumberBlock("", "Video", "Side", 1);
  Block other = one;
  EXPECT_TRUE(one.AddIntegerCondition("Video", "Value", 1));
  EXPECT_TRUE(other.AddIntegerCondition("Video", "Value", 2));
  ExpectSame(one, other, false);
}

TEST_F(ConditionBlockTest, AreNotTheSameWithOtherNames) {
  ExpectSame(NumberBlock("", "Video", "Side", 1), NumberBlock("", "Audio", "Side", 1), false);
  ExpectSame(NumberBlock("", "Video", "Side", 1), NumberBlock("", "Video", "Value", 1), false);
}

TEST_F(ConditionBlockTest, AreTheSameWhateverTheOrder) {
  EXPECT_TRUE(block_.AddIntegerCondition("Video", "Side", 1));
  EXPECT_TRUE(block_.AddIntegerCondition("Audio", "Level", 2));
  EXPECT_TRUE(block_.AddIntegerCondition("Video", "Value", 3));
  EXPECT_TRUE(other_.AddIntegerCondition("Video", "Value", 3));
  EXPECT_TRUE(other_.AddIntegerCondition("Video", "Side", 1));
  EXPECT_TRUE(other_.AddIntegerCondition("Audio", "Level", 2));
  ExpectSame(block_, other_, true);
}

TEST_F(ConditionBlockTest, AreComparedByNumbersAlone) {
  ExpectSame(SymbolBlock("", "Video", "Side", "Input"), NumberBlock("", "Video", "Side", 1), true);
  ExpectSame(SymbolBlock("", "Video", "Side", "Gain"), NumberBlock("", "Video", "Side", -4), true);
  ExpectSame(SymbolBlock("", "Video", "Side", "Hue"), SymbolBlock("", "Video", "Side", "Tint"), true);
  ExpectSame(SymbolBlock("", "Video", "Side", "Input"), NumberBlock("", "Video", "Side", 2), false);
}

TEST_F(ConditionBlockTest, AreTheSameWhateverTheirNames) {
  ExpectSame(NumberBlock("One", "Video", "Side", 1), NumberBlock("Other", "Video", "Side", 1), true);
  ExpectSame(NumberBlock("One", "Video", "Side", 1), NumberBlock("One", "Video", "Side", 2), false);
}

}  // namespace
