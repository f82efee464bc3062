#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "CapsPlatform.h"
#include "GuardedBuffer.h"
#include "talccaps.h"

namespace {

using caps_test::GuardedBuffer;
using caps_test::kHighest;
using caps_test::kLowest;
using caps_test::kUntouched;
using caps_test::Lines;
using TalcPath::TalcHWCapsCondition;
using testing::ElementsAre;
using testing::IsEmpty;

/// What a query for the nth condition gives into buffers of those sizes.
struct Nth {
  Nth(std::uint32_t commandSize, std::uint32_t parameterSize, std::uint32_t symbolSize)
      : command(commandSize), parameter(parameterSize), symbol(symbolSize) {}

  bool Get(const TalcHWCapsCondition& condition, std::int32_t n) {
    return condition.GetNthCondition(n, command.data(), command.size(), parameter.data(), parameter.size(),
                                     symbol.data(), symbol.size(), &value);
  }

  GuardedBuffer command;
  GuardedBuffer parameter;
  GuardedBuffer symbol;
  std::int32_t value = kUntouched;
};

class TalcHWCapsConditionTest : public caps_test::CapsPlatformTest {
 protected:
  /// "Video Side 1 Input", in the order of the queries.
  static Lines ConditionsOf(const TalcHWCapsCondition& condition) {
    Lines lines;
    for (Nth nth(16, 16, 16); nth.Get(condition, static_cast<std::int32_t>(lines.size())); nth = Nth(16, 16, 16)) {
      lines.push_back(std::string(nth.command.data()) + " " + nth.parameter.data() + " " + std::to_string(nth.value));
      if (*nth.symbol.data() != '\0') lines.back() += std::string(" ") + nth.symbol.data();
    }
    EXPECT_EQ(lines.size(), condition.GetConditionCount());
    return lines;
  }
  static TalcHWCapsCondition Number(std::string_view command, std::string_view parameter, std::int32_t value) {
    TalcHWCapsCondition condition;
    EXPECT_TRUE(condition.AddIntegerCondition(command, parameter, value));
    return condition;
  }
  static TalcHWCapsCondition Symbol(std::string_view command, std::string_view parameter, std::string_view symbol) {
    TalcHWCapsCondition condition;
    EXPECT_TRUE(condition.AddSymbolCondition(command, parameter, symbol));
    return condition;
  }
  static void ExpectEqual(const TalcHWCapsCondition& one, const TalcHWCapsCondition& other) {
    EXPECT_TRUE(one.IsEqual(other));
    EXPECT_TRUE(other.IsEqual(one));
  }
  static void ExpectDifferent(const TalcHWCapsCondition& one, const TalcHWCapsCondition& other) {
    EXPECT_FALSE(one.IsEqual(other));
    EXPECT_FALSE(other.IsEqual(one));
  }

  TalcHWCapsCondition condition_;
};

TEST_F(TalcHWCapsConditionTest, IsBuiltEmpty) {
  EXPECT_EQ(condition_.GetConditionCount(), 0u);
  EXPECT_FALSE(condition_.HasCondition("Video", "Side"));
  Nth nth(4, 4, 4);
  EXPECT_FALSE(nth.Get(condition_, 0));
  ExpectEqual(condition_, TalcHWCapsCondition());
}

// ---- Adding and removing

TEST_F(TalcHWCapsConditionTest, KeepsNumbersUpToTheLimits) {
  EXPECT_TRUE(condition_.AddIntegerCondition("Video", "Side", kLowest));
  EXPECT_TRUE(condition_.AddIntegerCondition("Video", "Value", kHighest));
  EXPECT_THAT(ConditionsOf(condition_), ElementsAre("Video Side -2147483648", "Video Value 2147483647"));
}

TEST_F(TalcHWCapsConditionTest, KeepsASymbolWithItsNumber) {
  EXPECT_TRUE(condition_.AddSymbolCondition("Video", "Control", "Gain"));
  EXPECT_THAT(ConditionsOf(condition_), ElementsAre("Video Control -4 Gain"));
}

TEST_F(TalcHWCapsConditionTest, RefusesANumberForWhatIsNotDefined) {
  EXPECT_FALSE(condition_.AddIntegerCondition("Nothing", "Side", 1));
  EXPECT_FALSE(condition_.AddIntegerCondition("", "Side", 1));
  EXPECT_FALSE(condition_.AddIntegerCondition("Video", "Level", 1));
  EXPECT_FALSE(condition_.AddIntegerCondition("Video", "", 1));
  EXPECT_THAT(ConditionsOf(condition_), IsEmpty());
}

TEST_F(TalcHWCapsConditionTest, RefusesASymbolForWhatIsNotDefined) {
  EXPECT_FALSE(condition_.AddSymbolCondition("Nothing", "Side", "Input"));
  EXPECT_FALSE(condition_.AddSymbolCondition("Video", "Level", "Input"));
  EXPECT_FALSE(condition_.AddSymbolCondition("Video", "Side", "Loud"));  // the other command's
  EXPECT_FALSE(condition_.AddSymbolCondition("Video", "Side", "1"));
  EXPECT_FALSE(condition_.AddSymbolCondition("Video", "Side", ""));
  EXPECT_THAT(ConditionsOf(condition_), IsEmpty());
}

TEST_F(TalcHWCapsConditionTest, LeavesAConditionAloneWhoseReplacementItRefuses) {
  EXPECT_TRUE(condition_.AddSymbolCondition("Video", "Side", "Input"));
  EXPECT_FALSE(condition_.AddSymbolCondition("Video", "Side", "Loud"));
  EXPECT_THAT(ConditionsOf(condition_), ElementsAre("Video Side 1 Input"));
}

TEST_F(TalcHWCapsConditionTest, ReplacesAConditionOnTheSameParameter) {
  EXPECT_TRUE(condition_.AddIntegerCondition("Video", "Side", 5));
  EXPECT_TRUE(condition_.AddSymbolCondition("Video", "Side", "Output"));
  EXPECT_THAT(ConditionsOf(condition_), ElementsAre("Video Side 2 Output"));
  EXPECT_TRUE(condition_.AddIntegerCondition("Video", "Side", 6));
  EXPECT_THAT(ConditionsOf(condition_), ElementsAre("Video Side 6"));
}

TEST_F(TalcHWCapsConditionTest, RemovesACondition) {
  EXPECT_TRUE(condition_.AddIntegerCondition("Video", "Side", 1));
  EXPECT_TRUE(condition_.AddIntegerCondition("Video", "Value", 2));
  EXPECT_TRUE(condition_.AddIntegerCondition("Audio", "Side", 3));
  condition_.RemoveCondition("Video", "Side");
  EXPECT_FALSE(condition_.HasCondition("Video", "Side"));
  EXPECT_THAT(ConditionsOf(condition_), ElementsAre("Audio Side 3", "Video Value 2"));
}

TEST_F(TalcHWCapsConditionTest, RemovesTheCommandWithItsLastCondition) {
  EXPECT_TRUE(condition_.AddIntegerCondition("Video", "Side", 1));
  EXPECT_TRUE(condition_.AddIntegerCondition("Audio", "Side", 3));
  condition_.RemoveCondition("Video", "Side");
  ExpectEqual(condition_, Number("Audio", "Side", 3));
  condition_.RemoveCondition("Audio", "Side");
  ExpectEqual(condition_, TalcHWCapsCondition());
}

TEST_F(TalcHWCapsConditionTest, RemovesNothingThatIsNotThere) {
  EXPECT_TRUE(condition_.AddIntegerCondition("Video", "Side", 1));
  condition_.RemoveCondition("Video", "Value");
  condition_.RemoveCondition("Audio", "Side");
  condition_.RemoveCondition("", "");
  EXPECT_THAT(ConditionsOf(condition_), ElementsAre("Video Side 1"));
}

// ---- Asking

TEST_F(TalcHWCapsConditionTest, CountsTheParametersOfAllCommands) {
  EXPECT_TRUE(condition_.AddIntegerCondition("Video", "Side", 1));
  EXPECT_EQ(condition_.GetConditionCount(), 1u);
  EXPECT_TRUE(condition_.AddIntegerCondition("Video", "Value", 1));
  EXPECT_EQ(condition_.GetConditionCount(), 2u);
  EXPECT_TRUE(condition_.AddIntegerCondition("Audio", "Side", 1));
  EXPECT_EQ(condition_.GetConditionCount(), 3u);
}

TEST_F(TalcHWCapsConditionTest, TellsWhichConditionsThereAre) {
  EXPECT_TRUE(condition_.AddIntegerCondition("Video", "Side", 0));
  EXPECT_TRUE(condition_.HasCondition("Video", "Side"));
  EXPECT_FALSE(condition_.HasCondition("Video", "Value"));
  EXPECT_FALSE(condition_.HasCondition("Audio", "Side"));
  EXPECT_FALSE(condition_.HasCondition("video", "Side"));
  EXPECT_FALSE(condition_.HasCondition("", ""));
}

TEST_F(TalcHWCapsConditionTest, GivesTheNumberOfACondition) {
  EXPECT_TRUE(condition_.AddIntegerCondition("Video", "Value", kLowest));
  EXPECT_TRUE(condition_.AddSymbolCondition("Video", "Side", "Output"));
  std::int32_t value = kUntouched;
  EXPECT_TRUE(condition_.GetConditionValue("Video", "Value", &value));
  EXPECT_EQ(value, kLowest);
  EXPECT_TRUE(condition_.GetConditionValue("Video", "Side", &value));
  EXPECT_EQ(value, 2);
}

TEST_F(TalcHWCapsConditionTest, GivesNoNumberWithoutTheCondition) {
  EXPECT_TRUE(condition_.AddIntegerCondition("Video", "Side", 1));
  std::int32_t value = kUntouched;
  EXPECT_FALSE(condition_.GetConditionValue("Video", "Value", &value));
  EXPECT_FALSE(condition_.GetConditionValue("Audio", "Side", &value));
  EXPECT_EQ(value, kUntouched);
}

TEST_F(TalcHWCapsConditionTest, GivesNoNumberIntoNothing) {
  EXPECT_TRUE(condition_.AddIntegerCondition("Video", "Side", 1));
  EXPECT_FALSE(condition_.GetConditionValue("Video", "Side", nullptr));
}

// ---- The nth condition

TEST_F(TalcHWCapsConditionTest, GivesConditionsInTheOrderOfCommandsAndParameters) {
  EXPECT_TRUE(condition_.AddIntegerCondition("Video", "Value", 5));
  EXPECT_TRUE(condition_.AddSymbolCondition("Video", "Control", "Hue"));
  EXPECT_TRUE(condition_.AddIntegerCondition("Probe", "Address", -1));
  EXPECT_TRUE(condition_.AddSymbolCondition("Audio", "Side", "Mute"));
  EXPECT_TRUE(condition_.AddIntegerCondition("Audio", "Level", 8));
  EXPECT_THAT(ConditionsOf(condition_), ElementsAre("Audio Level 8", "Audio Side 0 Mute", "Probe Address -1",
                                                    "Video Control 3 Hue", "Video Value 5"));
}

TEST_F(TalcHWCapsConditionTest, FillsTheRestOfTheBuffersWithZeros) {
  EXPECT_TRUE(condition_.AddSymbolCondition("Video", "Side", "Input"));
  Nth nth(8, 7, 6);
  EXPECT_TRUE(nth.Get(condition_, 0));
  EXPECT_EQ(nth.command.Shown(), "Video...");
  EXPECT_EQ(nth.parameter.Shown(), "Side...");
  EXPECT_EQ(nth.symbol.Shown(), "Input.");
  EXPECT_EQ(nth.value, 1);
}

TEST_F(TalcHWCapsConditionTest, HasNoConditionOutsideItsCount) {
  EXPECT_TRUE(condition_.AddSymbolCondition("Video", "Side", "Input"));
  EXPECT_TRUE(condition_.AddIntegerCondition("Audio", "Side", 1));
  for (const std::int32_t n : {kLowest, -1, 2, kHighest}) {
    SCOPED_TRACE(n);
    Nth nth(8, 7, 6);
    EXPECT_FALSE(nth.Get(condition_, n));
    EXPECT_EQ(nth.command.Shown(), "........");
    EXPECT_EQ(nth.parameter.Shown(), ".......");
    EXPECT_EQ(nth.symbol.Shown(), "......");
    EXPECT_EQ(nth.value, kUntouched);
  }
}

TEST_F(TalcHWCapsConditionTest, FillsBuffersThatJustFit) {
  EXPECT_TRUE(condition_.AddSymbolCondition("Video", "Side", "Input"));
  Nth nth(6, 5, 6);
  EXPECT_TRUE(nth.Get(condition_, 0));
  EXPECT_EQ(nth.command.Shown(), "Video.");
  EXPECT_EQ(nth.parameter.Shown(), "Side.");
  EXPECT_EQ(nth.symbol.Shown(), "Input.");
}

TEST_F(TalcHWCapsConditionTest, NeedsOneByteForTheSymbolOfANumber) {
  EXPECT_TRUE(condition_.AddIntegerCondition("Video", "Side", 1));
  Nth nth(6, 5, 1);
  EXPECT_TRUE(nth.Get(condition_, 0));
  EXPECT_EQ(nth.symbol.Shown(), ".");
  EXPECT_EQ(nth.value, 1);
}

TEST_F(TalcHWCapsConditionTest, RefusesABufferThatATextDoesNotFit) {
  EXPECT_TRUE(condition_.AddSymbolCondition("Video", "Side", "Input"));
  Nth command(5, 16, 16);
  EXPECT_FALSE(command.Get(condition_, 0));
  EXPECT_EQ(command.command.Shown(), ".....");
  Nth parameter(16, 4, 16);
  EXPECT_FALSE(parameter.Get(condition_, 0));
  EXPECT_EQ(parameter.parameter.Shown(), "....");
  Nth symbol(16, 16, 5);
  EXPECT_FALSE(symbol.Get(condition_, 0));
  EXPECT_EQ(symbol.symbol.Shown(), ".....");
  Nth one(1, 1, 1);
  EXPECT_FALSE(one.Get(condition_, 0));
  EXPECT_EQ(one.command.Shown() + one.parameter.Shown() + one.symbol.Shown(), "...");
}

/// Each absent one must not keep the other two from being cleared.
struct AbsentBuffer {
  const char* label;
  std::uint32_t commandSize;
  std::uint32_t parameterSize;
  std::uint32_t symbolSize;
  /// Of the three buffers, one after the other.
  const char* shown;
};
class AbsentBufferTest : public TalcHWCapsConditionTest, public testing::WithParamInterface<AbsentBuffer> {};

TEST_P(AbsentBufferTest, AnswersFalseAndClearsTheOthers) {
  EXPECT_TRUE(condition_.AddSymbolCondition("Video", "Side", "Input"));
  Nth nth(GetParam().commandSize, GetParam().parameterSize, GetParam().symbolSize);
  EXPECT_FALSE(nth.Get(condition_, 0));
  EXPECT_EQ(nth.command.Shown() + nth.parameter.Shown() + nth.symbol.Shown(), GetParam().shown);
  EXPECT_EQ(nth.value, kUntouched);
}

TEST_P(AbsentBufferTest, TakesNullForNoBuffer) {
  EXPECT_TRUE(condition_.AddSymbolCondition("Video", "Side", "Input"));
  Nth nth(GetParam().commandSize, GetParam().parameterSize, GetParam().symbolSize);
  const auto dataOf = [](GuardedBuffer& buffer) { return buffer.size() == 0 ? nullptr : buffer.data(); };
  EXPECT_FALSE(condition_.GetNthCondition(0, dataOf(nth.command), 6, dataOf(nth.parameter), 6, dataOf(nth.symbol), 6,
                                          &nth.value));
  EXPECT_EQ(nth.command.Shown() + nth.parameter.Shown() + nth.symbol.Shown(), GetParam().shown);
  EXPECT_EQ(nth.value, kUntouched);
}

INSTANTIATE_TEST_SUITE_P(Each, AbsentBufferTest,
                         testing::Values(AbsentBuffer{"Command", 0, 6, 6, "............"},
                                         AbsentBuffer{"Parameter", 6, 0, 6, "............"},
                                         AbsentBuffer{"Symbol", 6, 6, 0, "............"},
                                         AbsentBuffer{"All", 0, 0, 0, ""}),
                         caps_test::LabelOf<AbsentBuffer>);

TEST_F(TalcHWCapsConditionTest, ClearsTheBuffersWithoutAPlaceForTheNumber) {
  EXPECT_TRUE(condition_.AddSymbolCondition("Video", "Side", "Input"));
  Nth nth(6, 6, 6);
  EXPECT_FALSE(
      condition_.GetNthCondition(0, nth.command.data(), 6, nth.parameter.data(), 6, nth.symbol.data(), 6, nullptr));
  EXPECT_EQ(nth.command.Shown(), "......");
  EXPECT_EQ(nth.parameter.Shown(), "......");
  EXPECT_EQ(nth.symbol.Shown(), "......");
}

// ---- Equality

TEST_F(TalcHWCapsConditionTest, ComparesSymbolsByTheirNumbers) {
  ExpectEqual(Symbol("Video", "Side", "Input"), Number("Video", "Side", 1));
  ExpectEqual(Symbol("Video", "Side", "Hue"), Symbol("Video", "Side", "Tint"));
  ExpectDifferent(Symbol("Video", "Side", "Input"), Symbol("Video", "Side", "Output"));
  ExpectDifferent(Symbol("Video", "Side", "Input"), Number("Video", "Side", -1));
}

TEST_F(TalcHWCapsConditionTest, TellsConditionsOfDifferentPlacesApart) {
  ExpectDifferent(Number("Video", "Side", 1), Number("Video", "Value", 1));
  ExpectDifferent(Number("Video", "Side", 1), Number("Audio", "Side", 1));
  ExpectDifferent(Number("Video", "Side", 0), TalcHWCapsCondition());
}

TEST_F(TalcHWCapsConditionTest, TellsOneConditionMoreApart) {
  condition_ = Number("Video", "Side", 1);
  EXPECT_TRUE(condition_.AddIntegerCondition("Video", "Value", 2));
  ExpectDifferent(condition_, Number("Video", "Side", 1));
  ExpectDifferent(condition_, Number("Video", "Value", 2));
  TalcHWCapsCondition other = Number("Audio", "Side", 1);
  EXPECT_TRUE(other.AddIntegerCondition("Video", "Side", 1));
  ExpectDifferent(other, Number("Video", "Side", 1));
  ExpectDifferent(other, condition_);
}

TEST_F(TalcHWCapsConditionTest, ComparesInNoOrder) {
  condition_ = Number("Video", "Side", 1);
  EXPECT_TRUE(condition_.AddIntegerCondition("Audio", "Level", 2));
  TalcHWCapsCondition other = Number("Audio", "Level", 2);
  EXPECT_TRUE(other.AddIntegerCondition("Video", "Side", 1));
  ExpectEqual(condition_, other);
}

TEST_F(TalcHWCapsConditionTest, TakesNoNoticeOfKeynames) {
  const TalcPath::TalcHWCapsHandle caps = StartWith(
      "ConditionBlockBegin ; ConditionKeyname One ; Condition Video Side SYMBOL Input ; ConditionBlockEnd ;"
      "ConditionBlockBegin ; ConditionKeyname Two ; Condition Video Side INTEGER 1 ; ConditionBlockEnd ;");
  ExpectEqual(caps.GetBlockByName("One"), caps.GetBlockByName("Two"));
  ExpectEqual(caps.GetBlockByName("One"), Number("Video", "Side", 1));
}

// ---- Copies

TEST_F(TalcHWCapsConditionTest, IsCopiedWhole) {
  condition_ = Symbol("Video", "Side", "Input");
  TalcHWCapsCondition copy(condition_);
  EXPECT_TRUE(copy.AddIntegerCondition("Video", "Value", 2));
  EXPECT_TRUE(condition_.AddIntegerCondition("Audio", "Level", 3));
  EXPECT_THAT(ConditionsOf(condition_), ElementsAre("Audio Level 3", "Video Side 1 Input"));
  EXPECT_THAT(ConditionsOf(copy), ElementsAre("Video Side 1 Input", "Video Value 2"));
}

TEST_F(TalcHWCapsConditionTest, IsAssignedWhole) {
  condition_ = Symbol("Video", "Side", "Input");
  TalcHWCapsCondition copy = Number("Audio", "Level", 9);
  copy = condition_;
  EXPECT_THAT(ConditionsOf(copy), ElementsAre("Video Side 1 Input"));
  condition_.RemoveCondition("Video", "Side");
  EXPECT_THAT(ConditionsOf(copy), ElementsAre("Video Side 1 Input"));
  copy = condition_;
  EXPECT_THAT(ConditionsOf(copy), IsEmpty());
}

TEST_F(TalcHWCapsConditionTest, StaysAsItIsWhenAssignedToItself) {
  condition_ = Symbol("Video", "Side", "Input");
  const TalcHWCapsCondition& same = condition_;
  condition_ = same;
  EXPECT_THAT(ConditionsOf(condition_), ElementsAre("Video Side 1 Input"));
}

}  // namespace
