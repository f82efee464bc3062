// Handles behind which nothing stands.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "CapsPlatform.h"
#include "GuardedBuffer.h"
#include "talccaps.h"

namespace {

using caps_test::GuardedBuffer;
using caps_test::kUntouched;
using TalcPath::TalcHWCapsCondition;
using TalcPath::TalcHWCapsHandle;
using TalcPath::TalcHWCapsManager;

constexpr std::uint32_t kUntouchedCount = 7777;

/// Something that every query could find, in the default block and under the block "One".
constexpr const char* kText =
    "CmdOverrideTimeout Video 1500 ; Property Word STRING ABCD ; Property Number INTEGER 5 ;"
    "CommandValues Video Value Range 1 2 ; CommandValues Video Control Symbol Hue Gain ;"
    "ConditionBlockBegin ; ConditionKeyname One ; Condition Video Side INTEGER 1 ; ConditionBlockEnd ;"
    "Property Word STRING ABCD ; Property Number INTEGER 5 ;"
    "CommandValues Video Value Range 1 2 ; CommandValues Video Control Symbol Hue Gain ;";

class TalcHWCapsHandleTargetTest : public caps_test::CapsPlatformTest {
 protected:
  static TalcHWCapsCondition One() {
    TalcHWCapsCondition condition;
    EXPECT_TRUE(condition.AddIntegerCondition("Video", "Side", 1));
    return condition;
  }

  static void ExpectNoProperties(const TalcHWCapsHandle& caps, const TalcHWCapsCondition* condition) {
    EXPECT_EQ(caps.GetPropertyCount(condition), 0u);
    GuardedBuffer name(4);
    EXPECT_FALSE(caps.GetNthPropertyName(0, name.data(), name.size(), condition));
    EXPECT_EQ(name.Shown(), "....");
    EXPECT_FALSE(caps.GetNthPropertyName(0, nullptr, 4, condition));
    EXPECT_FALSE(caps.PropertyExists("Word", condition));
    EXPECT_FALSE(caps.IsPropertyString("Word", condition));
    EXPECT_FALSE(caps.IsPropertyInteger("Number", condition));
    GuardedBuffer word(4);
    EXPECT_FALSE(caps.GetPropertyAsString("Word", word.size(), word.data(), condition));
    EXPECT_EQ(word.Shown(), "....");
    EXPECT_FALSE(caps.GetPropertyAsString("Word", 4, nullptr, condition));
    std::int32_t number = kUntouched;
    EXPECT_FALSE(caps.GetPropertyAsInteger("Number", &number, condition));
    EXPECT_EQ(number, kUntouched);
  }

  static void ExpectNoBlocks(const TalcHWCapsHandle& caps) {
    EXPECT_FALSE(caps.HasNamedBlock("One"));
    EXPECT_FALSE(caps.HasNamedBlock(""));
    EXPECT_EQ(caps.GetNamedBlockCount(), 0u);
    GuardedBuffer keyname(4);
    EXPECT_FALSE(caps.GetNthBlockKeyname(0, keyname.data(), keyname.size()));
    EXPECT_EQ(keyname.Shown(), "....");
    EXPECT_EQ(caps.GetBlockByName("One").GetConditionCount(), 0u);
    EXPECT_EQ(caps.GetBlockByName("").GetConditionCount(), 0u);
  }

  static void ExpectNoValues(const TalcHWCapsHandle& caps, const TalcHWCapsCondition* condition) {
    EXPECT_FALSE(caps.CommandHasValues("Video", "Value", condition));
    EXPECT_FALSE(caps.AreCommandValuesRange("Video", "Value", condition));
    EXPECT_FALSE(caps.AreCommandValuesSymbols("Video", "Control", condition));
    std::int32_t low = kUntouched;
    std::int32_t high = kUntouched;
    EXPECT_FALSE(caps.GetCommandParameterRange("Video", "Value", &low, &high, condition));
    EXPECT_EQ(low, kUntouched);
    EXPECT_EQ(high, kUntouched);
    std::uint32_t count = kUntouchedCount;
    EXPECT_FALSE(caps.GetCommandParameterSymbolCount("Video", "Control", &count, condition));
    EXPECT_EQ(count, kUntouchedCount);
    GuardedBuffer symbol(4);
    EXPECT_FALSE(
        caps.GetCommandParameterNthSymbolValue("Video", "Control", 0, symbol.size(), symbol.data(), condition));
    EXPECT_EQ(symbol.Shown(), "....");
    EXPECT_FALSE(caps.CommandHasValuesUnder("Video", "Value", condition));
    EXPECT_FALSE(caps.AreCommandValuesRangeUnder("Video", "Value", condition));
    EXPECT_FALSE(caps.AreCommandValuesSymbolsUnder("Video", "Control", condition));
    EXPECT_FALSE(caps.GetCommandParameterRangeUnder("Video", "Value", &low, &high, condition));
    EXPECT_FALSE(caps.GetCommandParameterSymbolCountUnder("Video", "Control", &count, condition));
    EXPECT_FALSE(
        caps.GetCommandParameterNthSymbolValueUnder("Video", "Control", 0, symbol.size(), symbol.data(), condition));
  }

  static void ExpectNoTimeouts(const TalcHWCapsHandle& caps) {
    EXPECT_FALSE(caps.HasOverrideTimeout("Video"));
    std::uint32_t milliseconds = kUntouchedCount;
    EXPECT_FALSE(caps.GetOverrideTimeout("Video", &milliseconds));
    EXPECT_EQ(milliseconds, kUntouchedCount);
    EXPECT_FALSE(caps.ApplyOverrideTimeouts());
    EXPECT_EQ(TalcPath::GetOverrideTimeoutMillisec(TalcPath::TalcCommand("Video")), 0u);
  }

  void ExpectNothingBehind(const TalcHWCapsHandle& caps, const std::string& name) {
    EXPECT_EQ(caps.GetName(), name);
    EXPECT_EQ(caps.GetHardwareType(), name);
    ExpectNoBlocks(caps);
    ExpectNoTimeouts(caps);
    EXPECT_FALSE(caps.Merge(caps));
    const TalcHWCapsCondition one = One();
    for (const TalcHWCapsCondition* const condition : {static_cast<const TalcHWCapsCondition*>(nullptr), &one}) {
      SCOPED_TRACE(condition == nullptr ? "default block" : "block One");
      ExpectNoProperties(caps, condition);
      ExpectNoValues(caps, condition);
    }
    EXPECT_EQ(log(), "");
  }
};

TEST_F(TalcHWCapsHandleTargetTest, AnswersNothingForATypeThatIsNotKnown) {
  StartWith(kText);
  ExpectNothingBehind(TalcHWCapsManager::GetByName("Nothing"), "EMPTY");
  ExpectNothingBehind(TalcHWCapsManager::GetByName("t"), "EMPTY");
  ExpectNothingBehind(TalcHWCapsManager::GetByName("EMPTY"), "EMPTY");
  ExpectNothingBehind(TalcHWCapsManager::GetByName(""), "EMPTY");
}

TEST_F(TalcHWCapsHandleTargetTest, AnswersNothingBeforeTheStart) {
  ExpectNothingBehind(TalcHWCapsManager::GetByName("T"), "EMPTY");
}

TEST_F(TalcHWCapsHandleTargetTest, AnswersNothingWhenBuiltByItself) {
  StartWith(kText);
  ExpectNothingBehind(TalcHWCapsHandle(), "EMPTY");
}

TEST_F(TalcHWCapsHandleTargetTest, KeepsItsNameAloneOverTheStop) {
  const TalcHWCapsHandle caps = StartWith(kText);
  EXPECT_TRUE(caps.PropertyExists("Word"));
  EXPECT_TRUE(TalcPathPrivate::StopCapabilities());
  ExpectNothingBehind(caps, "T");
  ExpectNothingBehind(TalcHWCapsManager::GetByName("T"), "EMPTY");
}

TEST_F(TalcHWCapsHandleTargetTest, KeepsItsNameOverTheStopWhereTheTypeHadAnother) {
  const TalcHWCapsHandle caps = StartWith(kText);
  TalcPathPrivate::capsState.types.at("T")->hardwareType = "Another";
  TalcPathPrivate::StopCapabilities();
  EXPECT_EQ(caps.GetHardwareType(), "T");
}

TEST_F(TalcHWCapsHandleTargetTest, DoesNotComeBackToLifeAtAnotherStart) {
  const TalcHWCapsHandle caps = StartWith(kText);
  TalcPathPrivate::StopCapabilities();
  EXPECT_TRUE(Start());
  ExpectNothingBehind(caps, "T");
  EXPECT_TRUE(TalcHWCapsManager::GetByName("T").PropertyExists("Word"));
}

TEST_F(TalcHWCapsHandleTargetTest, EndsAtAStartWithoutAStop) {
  const TalcHWCapsHandle caps = StartWith(kText);
  EXPECT_TRUE(Start());
  ExpectNothingBehind(caps, "T");
  EXPECT_TRUE(TalcHWCapsManager::GetByName("T").PropertyExists("Word"));
}

TEST_F(TalcHWCapsHandleTargetTest, IsCopiedWithWhatStandsBehindIt) {
  TalcHWCapsHandle copy;
  {
    const TalcHWCapsHandle caps = StartWith(kText);
    copy = caps;
  }
  EXPECT_EQ(copy.GetName(), "T");
  EXPECT_TRUE(copy.PropertyExists("Word"));
  TalcPathPrivate::StopCapabilities();
  ExpectNothingBehind(copy, "T");
}

TEST_F(TalcHWCapsHandleTargetTest, LeavesTheConditionsThatItGaveToTheirOwner) {
  const TalcHWCapsHandle caps = StartWith(kText);
  const TalcHWCapsCondition one = caps.GetBlockByName("One");
  TalcPathPrivate::StopCapabilities();
  EXPECT_TRUE(one.IsEqual(One()));
  EXPECT_TRUE(Start());
  EXPECT_TRUE(TalcHWCapsManager::GetByName("T").PropertyExists("Word", &one));
}

}  // namespace
