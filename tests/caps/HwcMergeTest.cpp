#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

#include "caps/HwcMerge.h"
#include "CapsFixture.h"

namespace {

using caps_test::Block;
using caps_test::BlocksOf;
using caps_test::NumberBlock;
using caps_test::OverridesOf;
using caps_test::PropertiesOf;
using caps_test::Range;
using caps_test::SymbolBlock;
using caps_test::TablesOf;
using caps_test::TalcHWCaps;
using caps_test::TextList;
using caps_test::ValuesOf;
using caps_test::Variant;
using testing::ElementsAre;
using testing::IsEmpty;

/// A header with one condition, under which what follows stands.
std::string Under(const std::string& keyname, int side) {
  return "ConditionBlockBegin ; ConditionKeyname " + keyname + " ; Condition Video Side INTEGER " +
         std::to_string(side) + " ; ConditionBlockEnd ;";
}
const std::string kUnderDefault = "ConditionBlockBegin ; ConditionBlockEnd ;";

class HwcMergeTest : public caps_test::CapsTest {
 protected:
  void Fill(const std::string& own, const std::string& option) {
    ASSERT_TRUE(Read(caps_, own));
    ASSERT_TRUE(Read(option_, option));
    option_.fileName = "option.hwc";
  }
  bool Merge() { return TalcPathPrivate::MergeHwc(caps_, option_); }
  void ExpectMerged(const std::string& own, const std::string& option) {
    Fill(own, option);
    EXPECT_TRUE(Merge());
    EXPECT_EQ(log(), "");
  }
  void ExpectRefused(const std::string& own, const std::string& option, const std::string& line) {
    Fill(own, option);
    EXPECT_FALSE(Merge());
    EXPECT_EQ(log(), line);
  }

  TalcHWCaps option_;
};

TEST_F(HwcMergeTest, TakesNothingFromNothing) {
  ExpectMerged("HardwareType T ; CmdOverrideTimeout A 1 ;" + Under("One", 1) + "Property P INTEGER 1 ;", "");
  EXPECT_THAT(TablesOf(caps_), ElementsAre("T", "A 1", "One {Video Side 1}", "One: P 1"));
}

TEST_F(HwcMergeTest, TakesAllIntoNothingButTheTypeAndTheFile) {
  const std::string option = "HardwareType O ; CmdOverrideTimeout A 1 ; Property P STRING x ;" + Under("One", 1) +
                             "Property Q INTEGER 2 ; CommandValues Video Value Range 0 1 ;"
                             "CommandValues Video Control Symbol Hue Gain ;";
  ExpectMerged("HardwareType T ;", option);
  EXPECT_THAT(TablesOf(caps_), ElementsAre("T", "A 1", "One {Video Side 1}", "default: P 'x'", "One: Q 2",
                                           "One: Video Control [Hue Gain]", "One: Video Value 0..1"));
  EXPECT_EQ(caps_.fileName, "test.hwc");
  EXPECT_THAT(TablesOf(option_), ElementsAre("O", "A 1", "One {Video Side 1}", "default: P 'x'", "One: Q 2",
                                             "One: Video Control [Hue Gain]", "One: Video Value 0..1"));
}

// ---- Time-outs

TEST_F(HwcMergeTest, KeepsTheLongerTimeout) {
  ExpectMerged("CmdOverrideTimeout A 1000 ; CmdOverrideTimeout B 1000 ; CmdOverrideTimeout C 7 ;",
               "CmdOverrideTimeout A 500 ; CmdOverrideTimeout B 2000 ; CmdOverrideTimeout C 7 ;");
  EXPECT_THAT(OverridesOf(caps_), ElementsAre("A 1000", "B 2000", "C 7"));
}

TEST_F(HwcMergeTest, TakesNewTimeouts) {
  ExpectMerged("CmdOverrideTimeout B 1 ;", "CmdOverrideTimeout A 0 ; CmdOverrideTimeout C 4294967295 ;");
  EXPECT_THAT(OverridesOf(caps_), ElementsAre("A 0", "B 1", "C 4294967295"));
}

TEST_F(HwcMergeTest, TakesTimeoutsForUnsignedNumbers) {
  ExpectMerged("CmdOverrideTimeout A 1 ; CmdOverrideTimeout B 4294967295 ;",
               "CmdOverrideTimeout A 4294967295 ; CmdOverrideTimeout B 1 ;");
  EXPECT_THAT(OverridesOf(caps_), ElementsAre("A 4294967295", "B 4294967295"));
}

// ---- Blocks

TEST_F(HwcMergeTest, AppendsNewBlocksInTheirOrder) {
  ExpectMerged(Under("One", 1), Under("Three", 3) + Under("Two", 2));
  EXPECT_THAT(BlocksOf(caps_), ElementsAre("One {Video Side 1}", "Three {Video Side 3}", "Two {Video Side 2}"));
}

TEST_F(HwcMergeTest, AppendsNoBlockWithConditionsThatAreThere) {
  ExpectMerged(Under("One", 1) + "Property P INTEGER 1 ;", Under("Other", 1) +
                                                               "Property Q INTEGER 2 ; CommandValues A B Range 0 1 ;"
                                                               "CommandValues Video Control Symbol Hue ;");
  EXPECT_THAT(TablesOf(caps_), ElementsAre("", "One {Video Side 1}", "One: P 1", "One: Q 2", "One: A B 0..1",
                                           "One: Video Control [Hue]"));
}

TEST_F(HwcMergeTest, AppendsOneOfTwoBlocksWithTheSameConditions) {
  ExpectMerged("", Under("One", 1) + Under("Other", 1) + "Property P INTEGER 1 ;");
  EXPECT_THAT(TablesOf(caps_), ElementsAre("", "One {Video Side 1}", "One: P 1"));
}

TEST_F(HwcMergeTest, AppendsTwoNewBlocksOfOneName) {
  ExpectMerged("", Under("One", 1) + Under("One", 2));
  EXPECT_THAT(BlocksOf(caps_), ElementsAre("One {Video Side 1}", "One {Video Side 2}"));
}

TEST_F(HwcMergeTest, AppendsCopies) {
  ASSERT_TRUE(Read(caps_, ""));
  auto option = std::make_unique<TalcHWCaps>();
  ASSERT_TRUE(Read(*option, Under("One", 1) + "Property P INTEGER 1 ; CommandValues A B Range 0 1 ;"));
  EXPECT_TRUE(TalcPathPrivate::MergeHwc(caps_, *option));
  EXPECT_NE(caps_.Blocks().front(), option->Blocks().front());
  option.reset();
  EXPECT_THAT(TablesOf(caps_), ElementsAre("", "One {Video Side 1}", "One: P 1", "One: A B 0..1"));
}

const std::string kDuplicateLine =
    "\n\nERROR - duplicate Condition list key found trying to merge options file : option.hwc";

TEST_F(HwcMergeTest, RefusesABlockWhoseNameIsThere) {
  ExpectRefused(Under("One", 1), Under("One", 2), kDuplicateLine);
  EXPECT_THAT(BlocksOf(caps_), ElementsAre("One {Video Side 1}"));
}

TEST_F(HwcMergeTest, RefusesABlockWhoseNameAndConditionsAreThere) {
  ExpectRefused(Under("One", 1), Under("One", 1), kDuplicateLine);
}

TEST_F(HwcMergeTest, RefusesABlockWithoutAName) {
  ExpectRefused("", "ConditionBlockBegin ; Condition Video Side INTEGER 1 ; ConditionBlockEnd ;", kDuplicateLine);
  EXPECT_THAT(BlocksOf(caps_), IsEmpty());
}

TEST_F(HwcMergeTest, LeavesTheTimeoutsAloneOfWhatItRefusesForABlock) {
  ExpectRefused("CmdOverrideTimeout A 1 ;" + Under("One", 1),
                "CmdOverrideTimeout A 2 ; CmdOverrideTimeout B 3 ; Property P INTEGER 1 ;" + Under("New", 2) +
                    Under("One", 3) + Under("One", 4) + "CommandValues A B Range 0 1 ;",
                kDuplicateLine);
  EXPECT_THAT(TablesOf(caps_), ElementsAre("", "A 2", "B 3", "One {Video Side 1}"));
}

// ---- Properties

TEST_F(HwcMergeTest, ReplacesProperties) {
  ExpectMerged("Property P INTEGER 1 ; Property Q INTEGER 2 ; Property R STRING r ; Property S STRING s ;",
               "Property P INTEGER 3 ; Property Q STRING q ; Property R INTEGER 4 ; Property T STRING t ;");
  EXPECT_THAT(PropertiesOf(caps_),
              ElementsAre("default: P 3", "default: Q 'q'", "default: R 4", "default: S 's'", "default: T 't'"));
}

TEST_F(HwcMergeTest, ReplacesPropertiesUnderTheirOwnConditionsAlone) {
  ExpectMerged("Property P INTEGER 1 ;" + Under("One", 1) + "Property P INTEGER 2 ;",
               Under("Other", 1) + "Property P INTEGER 3 ;" + Under("Two", 2) + "Property P INTEGER 4 ;");
  EXPECT_THAT(PropertiesOf(caps_), ElementsAre("default: P 1", "One: P 3", "Two: P 4"));
}

TEST_F(HwcMergeTest, TakesALongTextWhole) {
  const std::string text(8000, 'x');
  ExpectMerged("", "Property P STRING " + text + " ;");
  EXPECT_THAT(PropertiesOf(caps_), ElementsAre("default: P '" + text + "'"));
}

TEST_F(HwcMergeTest, StopsAtAPropertyOfAnyOtherKind) {
  Fill("CmdOverrideTimeout X 1 ; Property C INTEGER 0 ;",
       "CmdOverrideTimeout X 2 ; Property A INTEGER 1 ; Property C INTEGER 3 ;" + Under("One", 1) +
           "Property D INTEGER 4 ; CommandValues A B Range 0 1 ;");
  ASSERT_TRUE(option_.AddProperty("B", Variant(std::uint32_t{2}), Block()));
  EXPECT_FALSE(Merge());
  EXPECT_EQ(log(), "\n\nERROR - IsPropertyInteger failed trying to merge options file : option.hwc");
  EXPECT_THAT(TablesOf(caps_), ElementsAre("", "X 2", "One {Video Side 1}", "default: A 1", "default: C 0"));
}

TEST_F(HwcMergeTest, TakesTheDefaultBlocksPropertiesFirst) {
  Fill("", Under("One", 1) + kUnderDefault + "Property A INTEGER 1 ;");
  ASSERT_TRUE(option_.AddProperty("B", Variant(), *option_.FindBlock("One")));
  EXPECT_FALSE(Merge());
  EXPECT_EQ(log(), "\n\nERROR - IsPropertyInteger failed trying to merge options file : option.hwc");
  EXPECT_THAT(PropertiesOf(caps_), ElementsAre("default: A 1"));
}

// ---- Values of commands' parameters

TEST_F(HwcMergeTest, AddsRanges) {
  ExpectMerged("CommandValues A B Range 0 1 ;" + Under("One", 1) + "CommandValues A C Range 0 2 ;",
               "CommandValues A C Range 0 3 ;" + Under("Other", 1) + "CommandValues A B Range 0 4 ;");
  EXPECT_THAT(ValuesOf(caps_), ElementsAre("default: A B 0..1", "One: A B 0..4", "One: A C 0..2", "default: A C 0..3"));
}

TEST_F(HwcMergeTest, AddsSymbolsThatAreNotThere) {
  ExpectMerged("CommandValues Video Control Symbol Hue Gain ;",
               "CommandValues Video Control Symbol Tint Gain Input Tint ;");
  EXPECT_THAT(ValuesOf(caps_), ElementsAre("default: Video Control [Hue Gain Tint Input]"));
}

TEST_F(HwcMergeTest, ReplacesARangeByAList) {
  ExpectMerged("CommandValues Video Value Range 0 1 ;" + Under("One", 1) + "CommandValues Video Value Range 0 2 ;",
               "CommandValues Video Value Symbol Hue Gain ;");
  EXPECT_THAT(ValuesOf(caps_), ElementsAre("One: Video Value 0..2", "default: Video Value [Hue Gain]"));
}

const std::string kRangeLine = "\n\nERROR - SetCmdParamRanges failed trying to merge options file : option.hwc";

TEST_F(HwcMergeTest, RefusesARangeWhereAListIs) {
  ExpectRefused("CommandValues Video Value Symbol Hue ;", "CommandValues Video Value Range 0 1 ;", kRangeLine);
  EXPECT_THAT(ValuesOf(caps_), ElementsAre("default: Video Value [Hue]"));
}

TEST_F(HwcMergeTest, RefusesARangeWhereOneIs) {
  ExpectRefused("CommandValues A B Range 0 1 ;", "CommandValues A B Range 0 1 ;", kRangeLine);
}

TEST_F(HwcMergeTest, WalksValuesFromTheLastToTheFirst) {
  ExpectMerged("", Under("One", 1) + "CommandValues A B Range 0 1 ;" + Under("Two", 2) +
                       "CommandValues A B Range 0 2 ;" + kUnderDefault + "CommandValues A B Range 0 3 ;");
  EXPECT_THAT(ValuesOf(caps_), ElementsAre("default: A B 0..3", "Two: A B 0..2", "One: A B 0..1"));
}

TEST_F(HwcMergeTest, LeavesHalfOfWhatItRefusesForARange) {
  ExpectRefused("CommandValues B B Range 0 1 ;",
                "CmdOverrideTimeout X 2 ; Property P INTEGER 1 ; CommandValues A A Range 0 2 ;"
                "CommandValues B B Range 0 3 ; CommandValues C C Range 0 4 ;" +
                    Under("One", 1) + "CommandValues B B Range 0 5 ; CommandValues B A Range 0 6 ;",
                kRangeLine);
  // Taken over: C C, and of B B the one under the block. Not: A A and B A, which stand before what failed.
  EXPECT_THAT(TablesOf(caps_), ElementsAre("", "X 2", "One {Video Side 1}", "default: P 1", "default: B B 0..1",
                                           "One: B B 0..5", "default: C C 0..4"));
}

TEST_F(HwcMergeTest, PassesAValueOfAnyOtherKindOver) {
  Fill("", "CommandValues A B Range 0 1 ;");
  ASSERT_TRUE(option_.AddCommandValue("A", "C", Variant(std::int32_t{5}), Block()));
  EXPECT_TRUE(Merge());
  EXPECT_THAT(ValuesOf(caps_), ElementsAre("default: A B 0..1"));
}

// A block is named on the way, and no name is the default block's.
TEST_F(HwcMergeTest, PutsValuesUnderTheDefaultBlockWhereTheOwnHasNoName) {
  ExpectMerged("ConditionBlockBegin ; Condition Video Side INTEGER 1 ; ConditionBlockEnd ;",
               Under("One", 1) + "CommandValues A B Range 0 1 ; Property P INTEGER 1 ;");
  EXPECT_THAT(TablesOf(caps_), ElementsAre("", " {Video Side 1}", "{Video Side 1}: P 1", "default: A B 0..1"));
}

TEST_F(HwcMergeTest, PutsValuesUnderTheFirstBlockOfAName) {
  ExpectMerged(Under("One", 1) + Under("One", 2), Under("Other", 2) + "CommandValues A B Range 0 1 ;");
  EXPECT_THAT(ValuesOf(caps_), ElementsAre("One: A B 0..1"));
  EXPECT_NE(caps_.FindCommandValue("A", "B", NumberBlock("", "Video", "Side", 1)), nullptr);
  EXPECT_EQ(caps_.FindCommandValue("A", "B", NumberBlock("", "Video", "Side", 2)), nullptr);
}

TEST_F(HwcMergeTest, MergesSeveralOptionsOneAfterTheOther) {
  ExpectMerged("", Under("One", 1) + "CommandValues Video Control Symbol Hue ;");
  TalcHWCaps second;
  ASSERT_TRUE(Read(second, Under("Two", 2) + "CommandValues Video Control Symbol Gain ;" + kUnderDefault +
                               "CommandValues Video Control Symbol Tint ;"));
  EXPECT_TRUE(TalcPathPrivate::MergeHwc(caps_, second));
  EXPECT_THAT(ValuesOf(caps_),
              ElementsAre("One: Video Control [Hue]", "default: Video Control [Tint]", "Two: Video Control [Gain]"));
}

TEST_F(HwcMergeTest, TellsTheSameUnderAllFlags) {
  TalcPathPrivate::logState.verbose = true;
  TalcPathPrivate::logState.trace = true;
  ExpectRefused(Under("One", 1), Under("One", 2), kDuplicateLine);
}

}  // namespace
