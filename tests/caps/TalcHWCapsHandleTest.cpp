// Names, properties and blocks.

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
using TalcPath::TalcHWCapsHandle;
using TalcPath::TalcHWCapsManager;
using testing::ElementsAre;
using testing::IsEmpty;

/// Properties of both kinds in the default block, others under the one condition of "One" and the two of "Both".
constexpr const char* kProperties =
    "Property Word STRING ABCD ; Property Number INTEGER -5 ; Property Always INTEGER 1 ;"
    "ConditionBlockBegin ; ConditionKeyname One ; Condition Video Side SYMBOL Input ; ConditionBlockEnd ;"
    "Property Word INTEGER 6 ;"
    "ConditionBlockBegin ; ConditionKeyname Both ; Condition Video Side SYMBOL Output ;"
    "Condition Audio Level INTEGER 9 ; ConditionBlockEnd ;"
    "Property Word STRING both ; Property Number INTEGER 7 ;"
    "ConditionBlockBegin ; ConditionKeyname Bare ; Condition Video Side INTEGER 5 ; ConditionBlockEnd ;";

class TalcHWCapsHandleTest : public caps_test::CapsPlatformTest {
 protected:
  static Lines NamesOf(const TalcHWCapsHandle& caps, const TalcHWCapsCondition* condition = nullptr) {
    Lines names;
    char name[32];
    while (caps.GetNthPropertyName(static_cast<std::int32_t>(names.size()), name, sizeof name, condition))
      names.emplace_back(name);
    EXPECT_EQ(names.size(), caps.GetPropertyCount(condition));
    return names;
  }
  /// In quotes, "none" when there is no word of that name.
  static std::string WordOf(const TalcHWCapsHandle& caps, const char* name, const TalcHWCapsCondition* condition) {
    char word[32];
    return caps.GetPropertyAsString(name, sizeof word, word, condition) ? "'" + std::string(word) + "'" : "none";
  }
  /// "none" when there is no number of that name.
  static std::string NumberOf(const TalcHWCapsHandle& caps, const char* name, const TalcHWCapsCondition* condition) {
    std::int32_t number = kUntouched;
    if (caps.GetPropertyAsInteger(name, &number, condition)) return std::to_string(number);
    EXPECT_EQ(number, kUntouched);
    return "none";
  }
};

/// What a query gives that refuses a text which does not fit, for the text "ABCD" and buffers of 0 to 6 bytes.
constexpr const char* kWhole[] = {"", ".", "..", "...", "....", "ABCD.", "ABCD.."};
/// The same of a query that cuts.
constexpr const char* kCut[] = {"", ".", "A.", "AB.", "ABC.", "ABCD.", "ABCD.."};

// ---- Names

TEST_F(TalcHWCapsHandleTest, IsCalledWhatWasAskedFor) {
  blocks_.Add("Other.hwc", "HardwareType Other ;");
  const TalcHWCapsHandle caps = StartWith("");
  EXPECT_EQ(caps.GetName(), "T");
  EXPECT_EQ(caps.GetHardwareType(), "T");
  EXPECT_EQ(TalcHWCapsManager::GetByName("Other").GetName(), "Other");
  EXPECT_EQ(TalcHWCapsManager::GetByName("Other").GetHardwareType(), "Other");
}

TEST_F(TalcHWCapsHandleTest, TakesItsHardwareTypeFromWhatStandsBehindIt) {
  const TalcHWCapsHandle caps = StartWith("");
  TalcPathPrivate::capsState.types.at("T")->hardwareType = "Another";
  EXPECT_EQ(caps.GetName(), "T");
  EXPECT_EQ(caps.GetHardwareType(), "Another");
}

TEST_F(TalcHWCapsHandleTest, AnswersForItsOwnTypeAlone) {
  blocks_.Add("Other.hwc", "HardwareType Other ; Property P INTEGER 1 ;");
  const TalcHWCapsHandle caps = StartWith("Property Q INTEGER 2 ;");
  EXPECT_THAT(NamesOf(caps), ElementsAre("Q"));
  EXPECT_THAT(NamesOf(TalcHWCapsManager::GetByName("Other")), ElementsAre("P"));
}

// ---- Which block answers

TEST_F(TalcHWCapsHandleTest, GivesThePropertiesOfTheBlockWithExactlyTheConditions) {
  const TalcHWCapsHandle caps = StartWith(kProperties);
  const TalcHWCapsCondition both = Both();
  EXPECT_THAT(NamesOf(caps, &both), ElementsAre("Number", "Word"));
  EXPECT_EQ(WordOf(caps, "Word", &both), "'both'");
  EXPECT_EQ(NumberOf(caps, "Number", &both), "7");
  const TalcHWCapsCondition one = Side(1);
  EXPECT_THAT(NamesOf(caps, &one), ElementsAre("Word"));
  EXPECT_EQ(NumberOf(caps, "Word", &one), "6");
}

TEST_F(TalcHWCapsHandleTest, GivesNothingToAQueryWithOneOfTwoConditions) {
  const TalcHWCapsHandle caps = StartWith(kProperties);
  TalcHWCapsCondition loud;
  EXPECT_TRUE(loud.AddSymbolCondition("Audio", "Level", "Loud"));
  for (const TalcHWCapsCondition& query : {Side(2), loud}) {
    EXPECT_THAT(NamesOf(caps, &query), IsEmpty());
    EXPECT_FALSE(caps.PropertyExists("Word", &query));
    EXPECT_FALSE(caps.IsPropertyString("Word", &query));
    EXPECT_FALSE(caps.IsPropertyInteger("Number", &query));
    EXPECT_EQ(WordOf(caps, "Word", &query), "none");
    EXPECT_EQ(NumberOf(caps, "Number", &query), "none");
  }
}

TEST_F(TalcHWCapsHandleTest, GivesNothingToAQueryWithOneConditionMore) {
  const TalcHWCapsHandle caps = StartWith(kProperties);
  TalcHWCapsCondition query = Both();
  EXPECT_TRUE(query.AddIntegerCondition("Video", "Value", 0));
  EXPECT_THAT(NamesOf(caps, &query), IsEmpty());
  EXPECT_EQ(WordOf(caps, "Word", &query), "none");
}

TEST_F(TalcHWCapsHandleTest, DoesNotLetTheDefaultBlockStandIn) {
  const TalcHWCapsHandle caps = StartWith(kProperties);
  EXPECT_TRUE(caps.PropertyExists("Always"));
  for (const TalcHWCapsCondition& query : {Side(1), Both(), Side(5), Side(77)}) {
    EXPECT_FALSE(caps.PropertyExists("Always", &query));
    EXPECT_FALSE(caps.IsPropertyInteger("Always", &query));
    EXPECT_EQ(NumberOf(caps, "Always", &query), "none");
  }
}

TEST_F(TalcHWCapsHandleTest, TakesAnObjectWithoutConditionsForTheDefaultBlock) {
  const TalcHWCapsHandle caps = StartWith(kProperties);
  const TalcHWCapsCondition none;
  EXPECT_THAT(NamesOf(caps, &none), ElementsAre("Always", "Number", "Word"));
  EXPECT_EQ(WordOf(caps, "Word", &none), "'ABCD'");
}

// ---- Properties

TEST_F(TalcHWCapsHandleTest, CountsThePropertiesOfABlock) {
  const TalcHWCapsHandle caps = StartWith(kProperties);
  const TalcHWCapsCondition one = Side(1);
  const TalcHWCapsCondition both = Both();
  const TalcHWCapsCondition bare = Side(5);
  const TalcHWCapsCondition unknown = Side(77);
  EXPECT_EQ(caps.GetPropertyCount(), 3u);
  EXPECT_EQ(caps.GetPropertyCount(&one), 1u);
  EXPECT_EQ(caps.GetPropertyCount(&both), 2u);
  EXPECT_EQ(caps.GetPropertyCount(&bare), 0u);
  EXPECT_EQ(caps.GetPropertyCount(&unknown), 0u);
}

TEST_F(TalcHWCapsHandleTest, CountsNoPropertiesWhereThereAreNone) {
  EXPECT_EQ(StartWith("").GetPropertyCount(), 0u);
}

TEST_F(TalcHWCapsHandleTest, GivesNamesOfPropertiesInTheirOrder) {
  EXPECT_THAT(NamesOf(StartWith("Property b INTEGER 1 ; Property C STRING c ; Property B INTEGER 3 ;"
                                "Property A STRING a ;")),
              ElementsAre("A", "B", "C", "b"));
}

TEST_F(TalcHWCapsHandleTest, HasNoPropertyNameOutsideTheCount) {
  const TalcHWCapsHandle caps = StartWith(kProperties);
  for (const std::int32_t n : {kLowest, -1, 3, kHighest}) {
    SCOPED_TRACE(n);
    GuardedBuffer buffer(8);
    EXPECT_FALSE(caps.GetNthPropertyName(n, buffer.data(), buffer.size()));
    EXPECT_EQ(buffer.Shown(), "........");
  }
  GuardedBuffer last(8);
  EXPECT_TRUE(caps.GetNthPropertyName(2, last.data(), last.size()));
  EXPECT_EQ(last.Shown(), "Word....");
}

TEST_F(TalcHWCapsHandleTest, RefusesABufferThatAPropertyNameDoesNotFit) {
  const TalcHWCapsHandle caps = StartWith("Property ABCD INTEGER 1 ;");
  for (std::uint32_t size = 0; size <= 6; ++size) {
    SCOPED_TRACE(size);
    GuardedBuffer buffer(size);
    EXPECT_EQ(caps.GetNthPropertyName(0, buffer.data(), size), size >= 5);
    EXPECT_EQ(buffer.Shown(), kWhole[size]);
  }
  EXPECT_FALSE(caps.GetNthPropertyName(0, nullptr, 6));
}

TEST_F(TalcHWCapsHandleTest, TellsWhichPropertiesThereAre) {
  const TalcHWCapsHandle caps = StartWith(kProperties);
  EXPECT_TRUE(caps.PropertyExists("Word"));
  EXPECT_TRUE(caps.PropertyExists("Number"));
  EXPECT_FALSE(caps.PropertyExists("word"));
  EXPECT_FALSE(caps.PropertyExists("Wor"));
  EXPECT_FALSE(caps.PropertyExists(""));
}

TEST_F(TalcHWCapsHandleTest, HasNoPropertyOfTheEmptyName) {
  const TalcHWCapsHandle caps = StartWith("");
  caps_test::TalcHWCaps& stored = *TalcPathPrivate::capsState.types.at("T");
  EXPECT_TRUE(stored.AddProperty("", caps_test::Variant(std::int32_t{1}), stored.DefaultBlock()));
  EXPECT_FALSE(caps.PropertyExists(""));
}

TEST_F(TalcHWCapsHandleTest, TellsWordsFromNumbers) {
  const TalcHWCapsHandle caps = StartWith(kProperties);
  EXPECT_TRUE(caps.IsPropertyString("Word"));
  EXPECT_FALSE(caps.IsPropertyInteger("Word"));
  EXPECT_TRUE(caps.IsPropertyInteger("Number"));
  EXPECT_FALSE(caps.IsPropertyString("Number"));
  EXPECT_FALSE(caps.IsPropertyString("Nothing"));
  EXPECT_FALSE(caps.IsPropertyInteger("Nothing"));
  const TalcHWCapsCondition one = Side(1);  // the same name is of the other kind there
  EXPECT_TRUE(caps.IsPropertyInteger("Word", &one));
  EXPECT_FALSE(caps.IsPropertyString("Word", &one));
}

TEST_F(TalcHWCapsHandleTest, CutsAWordToItsBuffer) {
  const TalcHWCapsHandle caps = StartWith(kProperties);
  for (std::uint32_t size = 0; size <= 6; ++size) {
    SCOPED_TRACE(size);
    GuardedBuffer buffer(size);
    EXPECT_EQ(caps.GetPropertyAsString("Word", size, buffer.data()), size >= 1);
    EXPECT_EQ(buffer.Shown(), kCut[size]);
  }
  EXPECT_FALSE(caps.GetPropertyAsString("Word", 6, nullptr));
}

TEST_F(TalcHWCapsHandleTest, GivesNoNumberAsAWord) {
  const TalcHWCapsHandle caps = StartWith(kProperties);
  for (const char* const name : {"Number", "Nothing", ""}) {
    SCOPED_TRACE(name);
    GuardedBuffer buffer(4);
    EXPECT_FALSE(caps.GetPropertyAsString(name, buffer.size(), buffer.data()));
    EXPECT_EQ(buffer.Shown(), "....");
  }
}

TEST_F(TalcHWCapsHandleTest, GivesNumbersUpToTheLimits) {
  const TalcHWCapsHandle caps =
      StartWith("Property Low INTEGER -2147483648 ; Property High INTEGER 2147483647 ; Property Zero INTEGER 0 ;");
  EXPECT_EQ(NumberOf(caps, "Low", nullptr), "-2147483648");
  EXPECT_EQ(NumberOf(caps, "High", nullptr), "2147483647");
  EXPECT_EQ(NumberOf(caps, "Zero", nullptr), "0");
}

TEST_F(TalcHWCapsHandleTest, GivesNoWordAsANumber) {
  const TalcHWCapsHandle caps = StartWith("Property Word STRING 12 ;");
  for (const char* const name : {"Word", "Nothing", ""}) {
    SCOPED_TRACE(name);
    std::int32_t number = kUntouched;
    EXPECT_FALSE(caps.GetPropertyAsInteger(name, &number));
    EXPECT_EQ(number, kUntouched);
  }
}

TEST_F(TalcHWCapsHandleTest, GivesNoNumberIntoNothing) {
  EXPECT_FALSE(StartWith(kProperties).GetPropertyAsInteger("Number", nullptr));
}

// ---- Blocks

TEST_F(TalcHWCapsHandleTest, TellsWhichBlocksThereAre) {
  const TalcHWCapsHandle caps = StartWith(kProperties);
  EXPECT_TRUE(caps.HasNamedBlock("One"));
  EXPECT_TRUE(caps.HasNamedBlock("Bare"));
  EXPECT_TRUE(caps.HasNamedBlock(""));
  EXPECT_FALSE(caps.HasNamedBlock("one"));
  EXPECT_FALSE(caps.HasNamedBlock("Nothing"));
}

TEST_F(TalcHWCapsHandleTest, CountsBlocksWithoutTheDefaultBlock) {
  EXPECT_EQ(StartWith("Property P INTEGER 1 ;").GetNamedBlockCount(), 0u);
  blocks_.RemoveAll();
  EXPECT_EQ(StartWith(kProperties).GetNamedBlockCount(), 3u);
}

TEST_F(TalcHWCapsHandleTest, GivesKeynamesInTheOrderOfTheText) {
  const TalcHWCapsHandle caps = StartWith(kProperties);
  const char* const names[] = {"One..", "Both.", "Bare."};
  for (std::int32_t n = 0; n < 3; ++n) {
    GuardedBuffer buffer(5);
    EXPECT_TRUE(caps.GetNthBlockKeyname(n, buffer.data(), buffer.size()));
    EXPECT_EQ(buffer.Shown(), names[n]);
  }
}

TEST_F(TalcHWCapsHandleTest, HasNoKeynameOutsideTheCount) {
  const TalcHWCapsHandle caps = StartWith(kProperties);
  for (const std::int32_t n : {kLowest, -1, 3, kHighest}) {
    SCOPED_TRACE(n);
    GuardedBuffer buffer(5);
    EXPECT_FALSE(caps.GetNthBlockKeyname(n, buffer.data(), buffer.size()));
    EXPECT_EQ(buffer.Shown(), ".....");
  }
}

TEST_F(TalcHWCapsHandleTest, RefusesABufferThatAKeynameDoesNotFit) {
  const TalcHWCapsHandle caps =
      StartWith("ConditionBlockBegin ; ConditionKeyname ABCD ; Condition Video Side INTEGER 1 ; ConditionBlockEnd ;");
  for (std::uint32_t size = 0; size <= 6; ++size) {
    SCOPED_TRACE(size);
    GuardedBuffer buffer(size);
    EXPECT_EQ(caps.GetNthBlockKeyname(0, buffer.data(), size), size >= 5);
    EXPECT_EQ(buffer.Shown(), kWhole[size]);
  }
  EXPECT_FALSE(caps.GetNthBlockKeyname(0, nullptr, 6));
}

TEST_F(TalcHWCapsHandleTest, CountsABlockWithoutAName) {
  const TalcHWCapsHandle caps =
      StartWith("ConditionBlockBegin ; Condition Video Side INTEGER 1 ; ConditionBlockEnd ; Property P INTEGER 2 ;");
  EXPECT_EQ(caps.GetNamedBlockCount(), 1u);
  GuardedBuffer buffer(1);
  EXPECT_TRUE(caps.GetNthBlockKeyname(0, buffer.data(), buffer.size()));
  EXPECT_EQ(buffer.Shown(), ".");
  const TalcHWCapsCondition one = Side(1);
  EXPECT_EQ(NumberOf(caps, "P", &one), "2");
}

TEST_F(TalcHWCapsHandleTest, GivesTheConditionsOfABlock) {
  const TalcHWCapsHandle caps = StartWith(kProperties);
  const TalcHWCapsCondition both = caps.GetBlockByName("Both");
  EXPECT_TRUE(both.IsEqual(Both()));
  EXPECT_EQ(WordOf(caps, "Word", &both), "'both'");
  GuardedBuffer command(6);
  GuardedBuffer parameter(6);
  GuardedBuffer symbol(7);
  std::int32_t value = 0;
  EXPECT_TRUE(both.GetNthCondition(1, command.data(), 6, parameter.data(), 6, symbol.data(), 7, &value));
  EXPECT_EQ(command.Shown() + parameter.Shown() + symbol.Shown(), "Video.Side..Output.");
  EXPECT_EQ(value, 2);
}

TEST_F(TalcHWCapsHandleTest, GivesTheFirstOfTwoBlocksOfOneName) {
  const TalcHWCapsHandle caps = StartWith(
      "ConditionBlockBegin ; ConditionKeyname A ; Condition Video Side INTEGER 1 ; ConditionBlockEnd ;"
      "ConditionBlockBegin ; ConditionKeyname A ; Condition Video Side INTEGER 2 ; ConditionBlockEnd ;");
  EXPECT_TRUE(caps.GetBlockByName("A").IsEqual(Side(1)));
}

TEST_F(TalcHWCapsHandleTest, GivesACopyOfABlock) {
  const TalcHWCapsHandle caps = StartWith(kProperties);
  TalcHWCapsCondition one = caps.GetBlockByName("One");
  EXPECT_TRUE(one.AddIntegerCondition("Video", "Value", 3));
  one.RemoveCondition("Video", "Side");
  EXPECT_TRUE(caps.GetBlockByName("One").IsEqual(Side(1)));
  const TalcHWCapsCondition query = Side(1);
  EXPECT_EQ(NumberOf(caps, "Word", &query), "6");
  EXPECT_EQ(NumberOf(caps, "Word", &one), "none");
}

TEST_F(TalcHWCapsHandleTest, GivesNoConditionsForABlockThatIsNotThere) {
  const TalcHWCapsHandle caps = StartWith(kProperties);
  EXPECT_EQ(caps.GetBlockByName("Nothing").GetConditionCount(), 0u);
  EXPECT_EQ(caps.GetBlockByName("").GetConditionCount(), 0u);
}

}  // namespace
