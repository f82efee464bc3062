// Time-outs, and merging of handles.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>

#include "CapsPlatform.h"
#include "talccaps.h"
#include "talcpath.h"

namespace {

using caps_test::Lines;
using TalcPath::TalcHWCapsCondition;
using TalcPath::TalcHWCapsHandle;
using TalcPath::TalcHWCapsManager;
using testing::ElementsAre;

constexpr std::uint32_t kUntouched = 7777;

/// A header with one condition, under which what follows stands.
std::string Under(const std::string& keyname, int side) {
  return "ConditionBlockBegin ; ConditionKeyname " + keyname + " ; Condition Video Side INTEGER " +
         std::to_string(side) + " ; ConditionBlockEnd ;";
}

class TalcHWCapsHandleMergeTest : public caps_test::CapsPlatformTest {
 protected:
  /// What stands in the definition.
  static std::uint32_t TimeoutOf(const char* command) {
    return TalcPath::GetOverrideTimeoutMillisec(TalcPath::TalcCommand(command));
  }
  /// Starts with two types, "T" and "Option".
  TalcHWCapsHandle StartWithOption(const std::string& own, const std::string& option) {
    blocks_.Add("Option.hwc", "HardwareType Option ;" + option);
    return StartWith(own);
  }
  static TalcHWCapsHandle Option() { return TalcHWCapsManager::GetByName("Option"); }
  static Lines Stored(const char* type) {
    return caps_test::TablesOf(*TalcPathPrivate::capsState.types.find(type)->second);
  }
};

// ---- Time-outs

TEST_F(TalcHWCapsHandleMergeTest, GivesTimeoutsUpToTheLimits) {
  const TalcHWCapsHandle caps =
      StartWith("CmdOverrideTimeout Video 0 ; CmdOverrideTimeout Audio 4294967295 ; CmdOverrideTimeout Unknown 5 ;");
  std::uint32_t milliseconds = kUntouched;
  EXPECT_TRUE(caps.HasOverrideTimeout("Video"));
  EXPECT_TRUE(caps.GetOverrideTimeout("Video", &milliseconds));
  EXPECT_EQ(milliseconds, 0u);
  EXPECT_TRUE(caps.HasOverrideTimeout("Audio"));
  EXPECT_TRUE(caps.GetOverrideTimeout("Audio", &milliseconds));
  EXPECT_EQ(milliseconds, 4294967295u);
  EXPECT_TRUE(caps.HasOverrideTimeout("Unknown"));  // in no dictionary
  EXPECT_TRUE(caps.GetOverrideTimeout("Unknown", &milliseconds));
  EXPECT_EQ(milliseconds, 5u);
}

TEST_F(TalcHWCapsHandleMergeTest, GivesNoTimeoutWhereThereIsNone) {
  const TalcHWCapsHandle caps = StartWith("CmdOverrideTimeout Video 1500 ;");
  for (const char* const command : {"Audio", "video", "Vide", ""}) {
    SCOPED_TRACE(command);
    std::uint32_t milliseconds = kUntouched;
    EXPECT_FALSE(caps.HasOverrideTimeout(command));
    EXPECT_FALSE(caps.GetOverrideTimeout(command, &milliseconds));
    EXPECT_EQ(milliseconds, kUntouched);
  }
}

TEST_F(TalcHWCapsHandleMergeTest, GivesNoTimeoutIntoNothing) {
  EXPECT_FALSE(StartWith("CmdOverrideTimeout Video 1500 ;").GetOverrideTimeout("Video", nullptr));
}

TEST_F(TalcHWCapsHandleMergeTest, AppliesTimeoutsToTheDefinitions) {
  const TalcHWCapsHandle caps = StartWith("CmdOverrideTimeout Video 1500 ; CmdOverrideTimeout Audio 4294967295 ;");
  EXPECT_EQ(TimeoutOf("Video"), 0u);
  TalcPathPrivate::logState.verbose = true;
  EXPECT_TRUE(caps.ApplyOverrideTimeouts());
  EXPECT_EQ(TimeoutOf("Video"), 1500u);
  EXPECT_EQ(TimeoutOf("Audio"), 4294967295u);
  EXPECT_EQ(log(), "");
}

TEST_F(TalcHWCapsHandleMergeTest, AppliesATimeoutInPlaceOfAnother) {
  const TalcHWCapsHandle caps = StartWith("CmdOverrideTimeout Video 20 ;");
  EXPECT_TRUE(TalcPath::SetOverrideTimeoutMillisec("Video", 1000));
  EXPECT_TRUE(TalcPath::SetOverrideTimeoutMillisec("Audio", 2000));
  EXPECT_TRUE(caps.ApplyOverrideTimeouts());
  EXPECT_EQ(TimeoutOf("Video"), 20u);
  EXPECT_EQ(TimeoutOf("Audio"), 2000u);
}

TEST_F(TalcHWCapsHandleMergeTest, AppliesNoTimeoutsWithSuccess) {
  EXPECT_TRUE(StartWith("").ApplyOverrideTimeouts());
  EXPECT_EQ(TimeoutOf("Video"), 0u);
}

TEST_F(TalcHWCapsHandleMergeTest, AppliesTimeoutsBehindCommandsThatIgnoreThem) {
  std::istringstream dictionary("Bulk Meta Start A Repeat B Stop C DataName D DataType BYTES RD ;");
  ASSERT_TRUE(TalcPathPrivate::ParseTcdStream(dictionary, "bulk.tcd"));
  const TalcHWCapsHandle caps =
      StartWith("CmdOverrideTimeout Video 20 ; CmdOverrideTimeout Probe 1500 ; CmdOverrideTimeout Bulk 1600 ;");
  EXPECT_TRUE(caps.ApplyOverrideTimeouts());
  EXPECT_EQ(TimeoutOf("Bulk"), 0u);
  EXPECT_EQ(TimeoutOf("Probe"), 0u);
  EXPECT_EQ(TimeoutOf("Video"), 20u);
}

/// The text has another order than the names.
constexpr const char* kUnknownBetween =
    "CmdOverrideTimeout Video 30 ; CmdOverrideTimeout Other 25 ; CmdOverrideTimeout Nothing 20 ;"
    "CmdOverrideTimeout Audio 10 ;";

TEST_F(TalcHWCapsHandleMergeTest, StopsApplyingAtTheFirstNameThatTheDictionaryLacks) {
  const TalcHWCapsHandle caps = StartWith(kUnknownBetween);
  TalcPathPrivate::logState.verbose = true;
  EXPECT_FALSE(caps.ApplyOverrideTimeouts());
  EXPECT_EQ(log(), "\nGetOverrideTimeoutMillisec - Command format not found - Command : Nothing");
  EXPECT_EQ(TimeoutOf("Audio"), 10u);
  EXPECT_EQ(TimeoutOf("Video"), 0u);
}

TEST_F(TalcHWCapsHandleMergeTest, TellsOfAnUnknownCommandUnderTheVerboseFlagAlone) {
  const TalcHWCapsHandle caps = StartWith(kUnknownBetween);
  EXPECT_FALSE(caps.ApplyOverrideTimeouts());
  TalcPathPrivate::logState.trace = true;
  EXPECT_FALSE(caps.ApplyOverrideTimeouts());
  EXPECT_EQ(log(), "");
}

// ---- Merging

TEST_F(TalcHWCapsHandleMergeTest, MergesIntoWhatAllHandlesOfTheTypeSee) {
  const TalcHWCapsHandle caps =
      StartWithOption("CmdOverrideTimeout Video 10 ; Property P INTEGER 1 ; CommandValues Video Control Symbol Hue ;",
                      "CmdOverrideTimeout Video 20 ; Property P INTEGER 2 ; CommandValues Video Control Symbol Gain ;" +
                          Under("One", 1) + "Property Q STRING q ; CommandValues Video Value Range 3 4 ;");
  const TalcHWCapsHandle copy = caps;
  EXPECT_TRUE(caps.Merge(Option()));
  EXPECT_EQ(log(), "");

  TalcHWCapsCondition side;
  EXPECT_TRUE(side.AddSymbolCondition("Video", "Side", "Input"));
  for (const TalcHWCapsHandle& handle : {caps, copy, TalcHWCapsManager::GetByName("T")}) {
    std::int32_t number = 0;
    EXPECT_TRUE(handle.GetPropertyAsInteger("P", &number));
    EXPECT_EQ(number, 2);
    EXPECT_TRUE(handle.IsPropertyString("Q", &side));
    EXPECT_TRUE(handle.AreCommandValuesRange("Video", "Value", &side));
    EXPECT_TRUE(handle.HasNamedBlock("One"));
    EXPECT_EQ(handle.GetHardwareType(), "T");
  }
  EXPECT_THAT(Stored("T"), ElementsAre("T", "Video 20", "One {Video Side 1}", "default: P 2", "One: Q 'q'",
                                       "default: Video Control [Hue Gain]", "One: Video Value 3..4"));
}

TEST_F(TalcHWCapsHandleMergeTest, LeavesTheOptionAsItIs) {
  const TalcHWCapsHandle caps = StartWithOption("Property P INTEGER 1 ;" + Under("Own", 2), Under("One", 1));
  EXPECT_TRUE(caps.Merge(Option()));
  EXPECT_THAT(Stored("Option"), ElementsAre("Option", "One {Video Side 1}"));
}

TEST_F(TalcHWCapsHandleMergeTest, MergesNothingWithoutAnOption) {
  const TalcHWCapsHandle caps = StartWith("Property P INTEGER 1 ;");
  EXPECT_FALSE(caps.Merge(Option()));
  EXPECT_FALSE(caps.Merge(TalcHWCapsHandle()));
  EXPECT_EQ(log(), "");
  EXPECT_THAT(Stored("T"), ElementsAre("T", "default: P 1"));
}

TEST_F(TalcHWCapsHandleMergeTest, MergesNothingIntoNothing) {
  const TalcHWCapsHandle caps = StartWith("Property P INTEGER 1 ;");
  EXPECT_FALSE(TalcHWCapsHandle().Merge(caps));
  EXPECT_FALSE(TalcHWCapsHandle().Merge(TalcHWCapsHandle()));
  EXPECT_EQ(log(), "");
  EXPECT_THAT(Stored("T"), ElementsAre("T", "default: P 1"));
}

TEST_F(TalcHWCapsHandleMergeTest, MergesNothingFromBeforeTheStop) {
  const TalcHWCapsHandle caps = StartWithOption("Property P INTEGER 1 ;", "Property P INTEGER 2 ;");
  const TalcHWCapsHandle option = Option();
  EXPECT_TRUE(Start());
  EXPECT_FALSE(TalcHWCapsManager::GetByName("T").Merge(option));
  EXPECT_FALSE(caps.Merge(Option()));
  EXPECT_THAT(Stored("T"), ElementsAre("T", "default: P 1"));
}

TEST_F(TalcHWCapsHandleMergeTest, AnswersFalseForABlockWhoseNameIsThere) {
  const TalcHWCapsHandle caps =
      StartWithOption("CmdOverrideTimeout A 1 ;" + Under("One", 1),
                      "CmdOverrideTimeout A 2 ; Property P INTEGER 1 ;" + Under("New", 2) + Under("One", 3));
  EXPECT_FALSE(caps.Merge(Option()));
  EXPECT_EQ(log(), "\n\nERROR - duplicate Condition list key found trying to merge options file : Option.hwc");
  EXPECT_THAT(Stored("T"), ElementsAre("T", "A 2", "One {Video Side 1}"));  // the time-outs come first
}

TEST_F(TalcHWCapsHandleMergeTest, TakesAnOptionTwiceThatHasNeitherBlocksNorRanges) {
  const TalcHWCapsHandle caps =
      StartWithOption("CommandValues Video Control Symbol Hue ;",
                      "CmdOverrideTimeout A 1 ; Property P INTEGER 1 ; CommandValues Video Control Symbol Gain Hue ;");
  EXPECT_TRUE(caps.Merge(Option()));
  EXPECT_TRUE(caps.Merge(Option()));
  EXPECT_THAT(Stored("T"), ElementsAre("T", "A 1", "default: P 1", "default: Video Control [Hue Gain]"));
}

// ---- Merging with itself

TEST_F(TalcHWCapsHandleMergeTest, StaysAsItIsMergedWithItself) {
  const TalcHWCapsHandle caps = StartWith(
      "CmdOverrideTimeout A 1 ; CmdOverrideTimeout B 4294967295 ; Property P STRING x ; Property Q INTEGER 1 ;"
      "CommandValues Video Control Symbol Hue Gain Hue ; CommandValues Audio Side Symbol Mute Loud ;");
  EXPECT_TRUE(caps.Merge(caps));
  EXPECT_TRUE(caps.Merge(TalcHWCapsManager::GetByName("T")));
  EXPECT_EQ(log(), "");
  EXPECT_THAT(Stored("T"), ElementsAre("T", "A 1", "B 4294967295", "default: P 'x'", "default: Q 1",
                                       "default: Audio Side [Mute Loud]", "default: Video Control [Hue Gain Hue]"));
}

TEST_F(TalcHWCapsHandleMergeTest, RefusesItsOwnRanges) {
  const TalcHWCapsHandle caps = StartWith("Property P INTEGER 1 ; CommandValues A B Range 0 1 ;");
  EXPECT_FALSE(caps.Merge(caps));
  EXPECT_EQ(log(), "\n\nERROR - SetCmdParamRanges failed trying to merge options file : T.hwc");
  EXPECT_THAT(Stored("T"), ElementsAre("T", "default: P 1", "default: A B 0..1"));
}

TEST_F(TalcHWCapsHandleMergeTest, RefusesItsOwnBlocks) {
  const TalcHWCapsHandle caps = StartWith(Under("One", 1) + "Property P INTEGER 1 ;");
  EXPECT_FALSE(caps.Merge(caps));
  EXPECT_EQ(log(), "\n\nERROR - duplicate Condition list key found trying to merge options file : T.hwc");
  EXPECT_THAT(Stored("T"), ElementsAre("T", "One {Video Side 1}", "One: P 1"));
}

TEST_F(TalcHWCapsHandleMergeTest, RefusesItsOwnBlockWithoutAName) {
  const TalcHWCapsHandle caps =
      StartWith("ConditionBlockBegin ; Condition Video Side INTEGER 1 ; ConditionBlockEnd ; Property P INTEGER 1 ;");
  EXPECT_FALSE(caps.Merge(caps));
  EXPECT_EQ(log(), "\n\nERROR - duplicate Condition list key found trying to merge options file : T.hwc");
  EXPECT_THAT(Stored("T"), ElementsAre("T", " {Video Side 1}", "{Video Side 1}: P 1"));
}

}  // namespace
