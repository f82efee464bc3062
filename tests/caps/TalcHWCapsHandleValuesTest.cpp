// Values of commands' parameters.

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
using TalcPath::TalcHWCapsCondition;
using TalcPath::TalcHWCapsHandle;

/// A range and a list in the default block, and under two conditions the other way round.
constexpr const char* kValues =
    "CommandValues Video Value Range -10 20 ; CommandValues Video Control Symbol Hue Gain Input ;"
    "CommandValues Audio Level Range 1 2 ;"
    "ConditionBlockBegin ; ConditionKeyname Both ; Condition Video Side SYMBOL Output ;"
    "Condition Audio Level INTEGER 9 ; ConditionBlockEnd ;"
    "CommandValues Video Value Symbol Tint Output ; CommandValues Video Control Range 3 4 ;";

class TalcHWCapsHandleValuesTest : public caps_test::CapsPlatformTest {
 protected:
  /// "-10..20", or "none"
  static std::string RangeOf(const TalcHWCapsHandle& caps, const char* command, const char* parameter,
                             const TalcHWCapsCondition* condition = nullptr) {
    std::int32_t low = kUntouched;
    std::int32_t high = kUntouched;
    if (caps.GetCommandParameterRange(command, parameter, &low, &high, condition))
      return std::to_string(low) + ".." + std::to_string(high);
    EXPECT_EQ(low, kUntouched);
    EXPECT_EQ(high, kUntouched);
    return "none";
  }
  /// "[Hue Gain]", or "none"
  static std::string SymbolsOf(const TalcHWCapsHandle& caps, const char* command, const char* parameter,
                               const TalcHWCapsCondition* condition = nullptr) {
    std::uint32_t count = kUntouched;
    if (!caps.GetCommandParameterSymbolCount(command, parameter, &count, condition)) {
      EXPECT_EQ(count, static_cast<std::uint32_t>(kUntouched));
      return "none";
    }
    std::string text = "[";
    char symbol[16];
    for (std::int32_t n = 0;
         caps.GetCommandParameterNthSymbolValue(command, parameter, n, sizeof symbol, symbol, condition); ++n, --count)
      text += (n == 0 ? "" : " ") + std::string(symbol);
    EXPECT_EQ(count, 0u);
    return text + "]";
  }
};

// ---- Which block answers

TEST_F(TalcHWCapsHandleValuesTest, GivesTheValuesOfTheBlockWithExactlyTheConditions) {
  const TalcHWCapsHandle caps = StartWith(kValues);
  const TalcHWCapsCondition both = Both();
  EXPECT_EQ(RangeOf(caps, "Video", "Value"), "-10..20");
  EXPECT_EQ(SymbolsOf(caps, "Video", "Control"), "[Hue Gain Input]");
  EXPECT_EQ(RangeOf(caps, "Video", "Control", &both), "3..4");
  EXPECT_EQ(SymbolsOf(caps, "Video", "Value", &both), "[Tint Output]");
}

TEST_F(TalcHWCapsHandleValuesTest, GivesNothingToAQueryWithOtherConditions) {
  const TalcHWCapsHandle caps = StartWith(kValues);
  TalcHWCapsCondition loud;
  EXPECT_TRUE(loud.AddSymbolCondition("Audio", "Level", "Loud"));
  TalcHWCapsCondition more = Both();
  EXPECT_TRUE(more.AddIntegerCondition("Video", "Value", 0));
  for (const TalcHWCapsCondition& query : {Side(2), loud, more}) {
    for (const char* const parameter : {"Value", "Control"}) {
      EXPECT_FALSE(caps.CommandHasValues("Video", parameter, &query));
      EXPECT_FALSE(caps.AreCommandValuesRange("Video", parameter, &query));
      EXPECT_FALSE(caps.AreCommandValuesSymbols("Video", parameter, &query));
      EXPECT_EQ(RangeOf(caps, "Video", parameter, &query), "none");
      EXPECT_EQ(SymbolsOf(caps, "Video", parameter, &query), "none");
    }
  }
}

TEST_F(TalcHWCapsHandleValuesTest, DoesNotLetTheDefaultBlockStandIn) {
  const TalcHWCapsHandle caps = StartWith(kValues);
  const TalcHWCapsCondition both = Both();
  EXPECT_TRUE(caps.CommandHasValues("Audio", "Level"));
  EXPECT_FALSE(caps.CommandHasValues("Audio", "Level", &both));
  EXPECT_EQ(RangeOf(caps, "Audio", "Level", &both), "none");
}

TEST_F(TalcHWCapsHandleValuesTest, TakesAnObjectWithoutConditionsForTheDefaultBlock) {
  const TalcHWCapsHandle caps = StartWith(kValues);
  const TalcHWCapsCondition none;
  EXPECT_EQ(RangeOf(caps, "Video", "Value", &none), "-10..20");
  EXPECT_EQ(SymbolsOf(caps, "Video", "Control", &none), "[Hue Gain Input]");
}

// ---- Kinds

TEST_F(TalcHWCapsHandleValuesTest, TellsWhichParametersHaveValues) {
  const TalcHWCapsHandle caps = StartWith(kValues);
  const TalcHWCapsCondition both = Both();
  EXPECT_TRUE(caps.CommandHasValues("Video", "Value"));
  EXPECT_TRUE(caps.CommandHasValues("Video", "Control"));
  EXPECT_TRUE(caps.CommandHasValues("Video", "Value", &both));
  EXPECT_FALSE(caps.CommandHasValues("Video", "Side"));
  EXPECT_FALSE(caps.CommandHasValues("Video", "Level"));
  EXPECT_FALSE(caps.CommandHasValues("Audio", "Value"));
  EXPECT_FALSE(caps.CommandHasValues("video", "Value"));
  EXPECT_FALSE(caps.CommandHasValues("", ""));
}

TEST_F(TalcHWCapsHandleValuesTest, TellsRangesFromSymbols) {
  const TalcHWCapsHandle caps = StartWith(kValues);
  const TalcHWCapsCondition both = Both();
  EXPECT_TRUE(caps.AreCommandValuesRange("Video", "Value"));
  EXPECT_FALSE(caps.AreCommandValuesSymbols("Video", "Value"));
  EXPECT_TRUE(caps.AreCommandValuesSymbols("Video", "Control"));
  EXPECT_FALSE(caps.AreCommandValuesRange("Video", "Control"));
  EXPECT_TRUE(caps.AreCommandValuesSymbols("Video", "Value", &both));
  EXPECT_FALSE(caps.AreCommandValuesRange("Video", "Value", &both));
  EXPECT_FALSE(caps.AreCommandValuesRange("Video", "Side"));
  EXPECT_FALSE(caps.AreCommandValuesSymbols("Video", "Side"));
}

// ---- Ranges

TEST_F(TalcHWCapsHandleValuesTest, GivesRangesUpToTheLimits) {
  const TalcHWCapsHandle caps = StartWith(
      "CommandValues Video Value Range -2147483648 2147483647 ; CommandValues Unknown X Range 5 5 ;"
      "CommandValues Audio Level Range 9 -9 ;");
  EXPECT_EQ(RangeOf(caps, "Video", "Value"), "-2147483648..2147483647");
  EXPECT_EQ(RangeOf(caps, "Unknown", "X"), "5..5");  // in no dictionary
  EXPECT_EQ(RangeOf(caps, "Audio", "Level"), "9..-9");
}

TEST_F(TalcHWCapsHandleValuesTest, GivesNoRangeWhereThereIsNone) {
  const TalcHWCapsHandle caps = StartWith(kValues);
  EXPECT_EQ(RangeOf(caps, "Video", "Control"), "none");
  EXPECT_EQ(RangeOf(caps, "Video", "Side"), "none");
  EXPECT_EQ(RangeOf(caps, "Nothing", "Value"), "none");
}

TEST_F(TalcHWCapsHandleValuesTest, GivesNoRangeIntoNothing) {
  const TalcHWCapsHandle caps = StartWith(kValues);
  std::int32_t end = kUntouched;
  EXPECT_FALSE(caps.GetCommandParameterRange("Video", "Value", nullptr, &end));
  EXPECT_FALSE(caps.GetCommandParameterRange("Video", "Value", &end, nullptr));
  EXPECT_FALSE(caps.GetCommandParameterRange("Video", "Value", nullptr, nullptr));
  EXPECT_EQ(end, kUntouched);
}

// ---- Symbols

TEST_F(TalcHWCapsHandleValuesTest, CountsSymbols) {
  const TalcHWCapsHandle caps = StartWith(kValues);
  const TalcHWCapsCondition both = Both();
  std::uint32_t count = 0;
  EXPECT_TRUE(caps.GetCommandParameterSymbolCount("Video", "Control", &count));
  EXPECT_EQ(count, 3u);
  EXPECT_TRUE(caps.GetCommandParameterSymbolCount("Video", "Value", &count, &both));
  EXPECT_EQ(count, 2u);
  EXPECT_FALSE(caps.GetCommandParameterSymbolCount("Video", "Control", nullptr));
}

TEST_F(TalcHWCapsHandleValuesTest, GivesNoSymbolsWhereThereAreNone) {
  const TalcHWCapsHandle caps = StartWith(kValues);
  for (const char* const parameter : {"Value", "Side", ""}) {
    SCOPED_TRACE(parameter);
    EXPECT_EQ(SymbolsOf(caps, "Video", parameter), "none");
    GuardedBuffer buffer(5);
    EXPECT_FALSE(caps.GetCommandParameterNthSymbolValue("Video", parameter, 0, buffer.size(), buffer.data()));
    EXPECT_EQ(buffer.Shown(), ".....");
  }
}

TEST_F(TalcHWCapsHandleValuesTest, HasNoSymbolOutsideTheCount) {
  const TalcHWCapsHandle caps = StartWith(kValues);
  for (const std::int32_t n : {kLowest, -1, 3, kHighest}) {
    SCOPED_TRACE(n);
    GuardedBuffer buffer(6);
    EXPECT_FALSE(caps.GetCommandParameterNthSymbolValue("Video", "Control", n, buffer.size(), buffer.data()));
    EXPECT_EQ(buffer.Shown(), "......");
  }
  GuardedBuffer last(6);
  EXPECT_TRUE(caps.GetCommandParameterNthSymbolValue("Video", "Control", 2, last.size(), last.data()));
  EXPECT_EQ(last.Shown(), "Input.");
}

TEST_F(TalcHWCapsHandleValuesTest, CutsASymbolToItsBuffer) {
  const TalcHWCapsHandle caps = StartWith(kValues);
  const char* const shown[] = {"", ".", "G.", "Ga.", "Gai.", "Gain.", "Gain.."};
  for (std::uint32_t size = 0; size <= 6; ++size) {
    SCOPED_TRACE(size);
    GuardedBuffer buffer(size);
    EXPECT_EQ(caps.GetCommandParameterNthSymbolValue("Video", "Control", 1, size, buffer.data()), size >= 1);
    EXPECT_EQ(buffer.Shown(), shown[size]);
  }
  EXPECT_FALSE(caps.GetCommandParameterNthSymbolValue("Video", "Control", 1, 6, nullptr));
}

// ---- Under a condition that must be there

TEST_F(TalcHWCapsHandleValuesTest, GivesNothingUnderNoCondition) {
  const TalcHWCapsHandle caps = StartWith(kValues);
  EXPECT_FALSE(caps.CommandHasValuesUnder("Video", "Value", nullptr));
  EXPECT_FALSE(caps.AreCommandValuesRangeUnder("Video", "Value", nullptr));
  EXPECT_FALSE(caps.AreCommandValuesSymbolsUnder("Video", "Control", nullptr));
  std::int32_t low = kUntouched;
  std::int32_t high = kUntouched;
  EXPECT_FALSE(caps.GetCommandParameterRangeUnder("Video", "Value", &low, &high, nullptr));
  EXPECT_EQ(low, kUntouched);
  EXPECT_EQ(high, kUntouched);
  std::uint32_t count = kUntouched;
  EXPECT_FALSE(caps.GetCommandParameterSymbolCountUnder("Video", "Control", &count, nullptr));
  EXPECT_EQ(count, static_cast<std::uint32_t>(kUntouched));
  GuardedBuffer buffer(5);
  EXPECT_FALSE(
      caps.GetCommandParameterNthSymbolValueUnder("Video", "Control", 0, buffer.size(), buffer.data(), nullptr));
  EXPECT_EQ(buffer.Shown(), "?????");
}

TEST_F(TalcHWCapsHandleValuesTest, GivesTheValuesUnderACondition) {
  const TalcHWCapsHandle caps = StartWith(kValues);
  const TalcHWCapsCondition both = Both();
  EXPECT_TRUE(caps.CommandHasValuesUnder("Video", "Value", &both));
  EXPECT_TRUE(caps.AreCommandValuesRangeUnder("Video", "Control", &both));
  EXPECT_FALSE(caps.AreCommandValuesRangeUnder("Video", "Value", &both));
  EXPECT_TRUE(caps.AreCommandValuesSymbolsUnder("Video", "Value", &both));
  EXPECT_FALSE(caps.AreCommandValuesSymbolsUnder("Video", "Control", &both));
  std::int32_t low = 0;
  std::int32_t high = 0;
  EXPECT_TRUE(caps.GetCommandParameterRangeUnder("Video", "Control", &low, &high, &both));
  EXPECT_EQ(low, 3);
  EXPECT_EQ(high, 4);
  std::uint32_t count = 0;
  EXPECT_TRUE(caps.GetCommandParameterSymbolCountUnder("Video", "Value", &count, &both));
  EXPECT_EQ(count, 2u);
  GuardedBuffer buffer(5);
  EXPECT_TRUE(caps.GetCommandParameterNthSymbolValueUnder("Video", "Value", 1, buffer.size(), buffer.data(), &both));
  EXPECT_EQ(buffer.Shown(), "Outp.");
}

TEST_F(TalcHWCapsHandleValuesTest, GivesTheDefaultBlocksValuesUnderAnObjectWithoutConditions) {
  const TalcHWCapsHandle caps = StartWith(kValues);
  const TalcHWCapsCondition none;
  EXPECT_TRUE(caps.CommandHasValuesUnder("Video", "Value", &none));
  EXPECT_TRUE(caps.AreCommandValuesRangeUnder("Video", "Value", &none));
  EXPECT_TRUE(caps.AreCommandValuesSymbolsUnder("Video", "Control", &none));
  std::int32_t low = 0;
  std::int32_t high = 0;
  EXPECT_TRUE(caps.GetCommandParameterRangeUnder("Video", "Value", &low, &high, &none));
  EXPECT_EQ(low, -10);
  EXPECT_EQ(high, 20);
  std::uint32_t count = 0;
  EXPECT_TRUE(caps.GetCommandParameterSymbolCountUnder("Video", "Control", &count, &none));
  EXPECT_EQ(count, 3u);
  GuardedBuffer buffer(5);
  EXPECT_TRUE(caps.GetCommandParameterNthSymbolValueUnder("Video", "Control", 0, buffer.size(), buffer.data(), &none));
  EXPECT_EQ(buffer.Shown(), "Hue..");
}

TEST_F(TalcHWCapsHandleValuesTest, GivesNothingUnderConditionsThatNoBlockHas) {
  const TalcHWCapsHandle caps = StartWith(kValues);
  const TalcHWCapsCondition side = Side(2);
  EXPECT_FALSE(caps.CommandHasValuesUnder("Video", "Value", &side));
  EXPECT_FALSE(caps.AreCommandValuesRangeUnder("Video", "Value", &side));
  EXPECT_FALSE(caps.AreCommandValuesSymbolsUnder("Video", "Control", &side));
}

}  // namespace
