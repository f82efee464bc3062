// Blocks, properties and time-outs.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include "caps/TalcHWCaps.h"
#include "CapsFixture.h"

namespace {

using caps_test::Block;
using caps_test::BlocksOf;
using caps_test::Lines;
using caps_test::NumberBlock;
using caps_test::PropertiesOf;
using caps_test::SymbolBlock;
using caps_test::TextOf;
using caps_test::Variant;
using testing::ElementsAre;

constexpr std::size_t kFarBeyond = std::numeric_limits<std::size_t>::max();

class TalcHWCapsTest : public caps_test::CapsTest {
 protected:
  std::string Property(std::string_view name, const Block& block) const {
    return TextOf(caps_.FindProperty(name, block));
  }
  std::uint32_t TimeoutOf(std::string_view command) const {
    return TalcPathPrivate::FindDefinedCommand(command)->GetOverrideTimeoutMillisec();
  }

  const Block default_ = {};
};

TEST_F(TalcHWCapsTest, IsBuiltWithTheDefaultBlockAlone) {
  EXPECT_EQ(caps_.fileName, "");
  EXPECT_EQ(caps_.hardwareType, "");
  EXPECT_TRUE(caps_.Blocks().empty());
  EXPECT_EQ(caps_.DefaultBlock().keyname, "");
  EXPECT_EQ(caps_.DefaultBlock().ConditionCount(), 0u);
  EXPECT_EQ(caps_.OverallPropertyCount(), 0u);
  EXPECT_EQ(caps_.OverallCmdParamCount(), 0u);
  EXPECT_EQ(caps_.PropertiesOf(default_), nullptr);
  EXPECT_TRUE(caps_.overrideTimeouts.empty());
}

// ---- Blocks

TEST_F(TalcHWCapsTest, KeepsBlocksInTheirOrder) {
  const Block& appended = caps_.AppendBlock(SymbolBlock("B", "Video", "Side", "Input"));
  caps_.AppendBlock(NumberBlock("A", "Audio", "Level", 5));
  caps_.AppendBlock();
  EXPECT_EQ(&appended, caps_.Blocks().front().get());  // it stays where it is
  EXPECT_THAT(BlocksOf(caps_), ElementsAre("B {Video Side 1 Input}", "A {Audio Level 5}", " {}"));
}

TEST_F(TalcHWCapsTest, FindsABlockByItsName) {
  const Block& one = caps_.AppendBlock(NumberBlock("One", "Video", "Side", 1));
  const Block& two = caps_.AppendBlock(NumberBlock("Two", "Video", "Side", 2));
  caps_.AppendBlock(NumberBlock("One", "Video", "Side", 3));
  EXPECT_EQ(caps_.FindBlock("One"), &one);
  EXPECT_EQ(caps_.FindBlock("Two"), &two);
  EXPECT_EQ(caps_.FindBlock("two"), nullptr);
  EXPECT_EQ(caps_.FindBlock("Tw"), nullptr);
  EXPECT_EQ(caps_.FindBlock("default"), nullptr);
}

TEST_F(TalcHWCapsTest, TakesNoNameForTheDefaultBlocks) {
  caps_.AppendBlock(NumberBlock("", "Video", "Side", 1));
  EXPECT_EQ(caps_.FindBlock(""), &caps_.DefaultBlock());
}

TEST_F(TalcHWCapsTest, FindsTheOwnBlockWithTheSameConditions) {
  const Block& one = caps_.AppendBlock(SymbolBlock("One", "Video", "Side", "Input"));
  const Block& two = caps_.AppendBlock(NumberBlock("Two", "Video", "Side", 2));
  caps_.AppendBlock(NumberBlock("Again", "Video", "Side", 2));
  EXPECT_EQ(caps_.FindSameBlock(NumberBlock("", "Video", "Side", 1)), &one);
  EXPECT_EQ(caps_.FindSameBlock(NumberBlock("One", "Video", "Side", 2)), &two);
  EXPECT_EQ(caps_.FindSameBlock(NumberBlock("One", "Video", "Side", 3)), nullptr);
  EXPECT_EQ(caps_.FindSameBlock(default_), &caps_.DefaultBlock());
}

TEST_F(TalcHWCapsTest, NamesTheBlockWithTheSameConditions) {
  caps_.AppendBlock(SymbolBlock("One", "Video", "Side", "Input"));
  caps_.AppendBlock(NumberBlock("", "Video", "Side", 2));
  EXPECT_EQ(caps_.KeynameOf(NumberBlock("Foreign", "Video", "Side", 1)), "One");
  EXPECT_EQ(caps_.KeynameOf(NumberBlock("Foreign", "Video", "Side", 2)), "");
  EXPECT_EQ(caps_.KeynameOf(NumberBlock("One", "Video", "Side", 3)), "ERROR_ERROR_ERROR");
}

TEST_F(TalcHWCapsTest, GivesABlockWithoutConditionsTheDefaultBlocksName) {
  Block named;
  named.keyname = "Foreign";
  EXPECT_EQ(caps_.KeynameOf(named), "");
}

// ---- Properties

TEST_F(TalcHWCapsTest, KeepsPropertiesOfBothKinds) {
  EXPECT_TRUE(caps_.AddProperty("Text", Variant(std::string("ABCD")), default_));
  EXPECT_TRUE(caps_.AddProperty("Number", Variant(std::int32_t{-5}), default_));
  EXPECT_EQ(Property("Text", default_), "'ABCD'");
  EXPECT_EQ(Property("Number", default_), "-5");
  EXPECT_EQ(Property("text", default_), "none");
  EXPECT_EQ(Property("", default_), "none");
  ASSERT_NE(caps_.PropertiesOf(default_), nullptr);
  EXPECT_EQ(caps_.PropertiesOf(default_)->size(), 2u);
}

TEST_F(TalcHWCapsTest, GivesAPropertyAsItsOwnKindAlone) {
  EXPECT_TRUE(caps_.AddProperty("Text", Variant(std::string("5")), default_));
  EXPECT_TRUE(caps_.AddProperty("Number", Variant(std::int32_t{5}), default_));
  EXPECT_EQ(caps_.FindProperty("Text", default_)->As<std::int32_t>(), nullptr);
  EXPECT_EQ(caps_.FindProperty("Number", default_)->As<std::string>(), nullptr);
}

TEST_F(TalcHWCapsTest, AddsNoPropertyTwice) {
  caps_.AppendBlock(NumberBlock("One", "Video", "Side", 1));
  EXPECT_TRUE(caps_.AddProperty("A", Variant(std::int32_t{1}), default_));
  EXPECT_FALSE(caps_.AddProperty("A", Variant(std::int32_t{2}), default_));
  EXPECT_FALSE(caps_.AddProperty("A", Variant(std::string("2")), default_));
  EXPECT_TRUE(caps_.AddProperty("A", Variant(std::int32_t{3}), NumberBlock("", "Video", "Side", 1)));
  EXPECT_FALSE(caps_.AddProperty("A", Variant(std::int32_t{4}), SymbolBlock("", "Video", "Side", "Input")));
  EXPECT_THAT(PropertiesOf(caps_), ElementsAre("default: A 1", "One: A 3"));
}

TEST_F(TalcHWCapsTest, SetsAPropertyInPlaceOfOneThatIsThere) {
  EXPECT_TRUE(caps_.SetProperty("A", Variant(std::int32_t{1}), default_));
  EXPECT_TRUE(caps_.SetProperty("A", Variant(std::int32_t{2}), default_));
  EXPECT_EQ(Property("A", default_), "2");
  EXPECT_TRUE(caps_.SetProperty("A", Variant(std::string("x")), default_));
  EXPECT_EQ(Property("A", default_), "'x'");
  EXPECT_EQ(caps_.OverallPropertyCount(), 1u);
}

TEST_F(TalcHWCapsTest, KeepsNoPropertyOfAForeignBlock) {
  caps_.AppendBlock(NumberBlock("One", "Video", "Side", 1));
  const Block foreign = NumberBlock("One", "Video", "Side", 2);
  EXPECT_FALSE(caps_.AddProperty("A", Variant(std::int32_t{1}), foreign));
  EXPECT_FALSE(caps_.SetProperty("A", Variant(std::int32_t{1}), foreign));
  EXPECT_EQ(caps_.PropertiesOf(foreign), nullptr);
  EXPECT_EQ(caps_.OverallPropertyCount(), 0u);
}

TEST_F(TalcHWCapsTest, AnswersOnlyExactlyTheConditions) {
  Block both = SymbolBlock("Both", "Video", "Side", "Input");
  EXPECT_TRUE(both.AddSymbolCondition("Audio", "Level", "Loud"));
  caps_.AppendBlock(both);
  EXPECT_TRUE(caps_.AddProperty("A", Variant(std::int32_t{1}), default_));
  EXPECT_TRUE(caps_.AddProperty("B", Variant(std::int32_t{2}), both));

  Block query = NumberBlock("", "Audio", "Level", 9);
  EXPECT_EQ(Property("A", query), "none");
  EXPECT_EQ(Property("B", query), "none");
  EXPECT_TRUE(query.AddIntegerCondition("Video", "Side", 1));
  EXPECT_EQ(Property("B", query), "2");
  EXPECT_EQ(Property("A", query), "none");  // the default block does not stand in
  EXPECT_TRUE(query.AddIntegerCondition("Video", "Value", 0));
  EXPECT_EQ(Property("B", query), "none");
  EXPECT_EQ(Property("B", default_), "none");
}

TEST_F(TalcHWCapsTest, RemovesAProperty) {
  caps_.AppendBlock(NumberBlock("One", "Video", "Side", 1));
  const Block one = NumberBlock("", "Video", "Side", 1);
  for (const char* const name : {"A", "B"}) {
    EXPECT_TRUE(caps_.AddProperty(name, Variant(std::int32_t{1}), default_));
    EXPECT_TRUE(caps_.AddProperty(name, Variant(std::int32_t{2}), one));
  }
  caps_.RemoveProperty("A", one);
  EXPECT_THAT(PropertiesOf(caps_), ElementsAre("default: A 1", "default: B 1", "One: B 2"));
  EXPECT_TRUE(caps_.AddProperty("A", Variant(std::int32_t{3}), one));
  EXPECT_EQ(Property("A", one), "3");
}

TEST_F(TalcHWCapsTest, RemovesNoPropertyThatIsNotThere) {
  caps_.AppendBlock(NumberBlock("One", "Video", "Side", 1));
  EXPECT_TRUE(caps_.AddProperty("A", Variant(std::int32_t{1}), default_));
  caps_.RemoveProperty("B", default_);
  caps_.RemoveProperty("", default_);
  caps_.RemoveProperty("A", NumberBlock("", "Video", "Side", 1));  // nothing is stored under it
  caps_.RemoveProperty("A", NumberBlock("", "Video", "Side", 2));  // not even a block
  EXPECT_THAT(PropertiesOf(caps_), ElementsAre("default: A 1"));
}

TEST_F(TalcHWCapsTest, CountsPropertiesOfAllBlocksTogether) {
  const Block& one = caps_.AppendBlock(NumberBlock("One", "Video", "Side", 1));
  const Block& two = caps_.AppendBlock(NumberBlock("Two", "Video", "Side", 2));
  EXPECT_TRUE(caps_.AddProperty("B", Variant(std::int32_t{1}), two));
  EXPECT_TRUE(caps_.AddProperty("Gone", Variant(std::int32_t{2}), one));
  caps_.RemoveProperty("Gone", one);  // a table without properties is passed over
  EXPECT_TRUE(caps_.AddProperty("C", Variant(std::int32_t{3}), default_));
  EXPECT_TRUE(caps_.AddProperty("A", Variant(std::int32_t{4}), two));
  EXPECT_EQ(caps_.OverallPropertyCount(), 3u);

  std::string name;
  const Block* block = nullptr;
  EXPECT_TRUE(caps_.GetNthOverallProperty(0, name, block));
  EXPECT_EQ(name, "A");
  EXPECT_EQ(block, &two);
  EXPECT_TRUE(caps_.GetNthOverallProperty(1, name, block));
  EXPECT_EQ(name, "B");
  EXPECT_EQ(block, &two);
  EXPECT_TRUE(caps_.GetNthOverallProperty(2, name, block));
  EXPECT_EQ(name, "C");
  EXPECT_EQ(block, &caps_.DefaultBlock());
  EXPECT_FALSE(caps_.GetNthOverallProperty(3, name, block));
  EXPECT_FALSE(caps_.GetNthOverallProperty(kFarBeyond, name, block));
}

TEST_F(TalcHWCapsTest, HasNoNthPropertyWithoutAny) {
  std::string name;
  const Block* block = nullptr;
  EXPECT_FALSE(caps_.GetNthOverallProperty(0, name, block));
}

TEST_F(TalcHWCapsTest, KeepsPropertiesUnderItsOwnBlock) {
  {
    const Block query = NumberBlock("Query", "Video", "Side", 1);
    caps_.AppendBlock(NumberBlock("One", "Video", "Side", 1));
    EXPECT_TRUE(caps_.AddProperty("A", Variant(std::int32_t{1}), query));
  }
  EXPECT_THAT(PropertiesOf(caps_), ElementsAre("One: A 1"));
}

// ---- Time-outs

TEST_F(TalcHWCapsTest, CountsOverridesInTheOrderOfNames) {
  caps_.overrideTimeouts = {{"Video", 1}, {"Audio", 4294967295}};
  std::string command;
  std::uint32_t milliseconds = 0;
  EXPECT_TRUE(caps_.GetNthOverride(0, command, milliseconds));
  EXPECT_EQ(command, "Audio");
  EXPECT_EQ(milliseconds, 4294967295u);
  EXPECT_TRUE(caps_.GetNthOverride(1, command, milliseconds));
  EXPECT_EQ(command, "Video");
  EXPECT_EQ(milliseconds, 1u);
  EXPECT_FALSE(caps_.GetNthOverride(2, command, milliseconds));
  EXPECT_FALSE(caps_.GetNthOverride(kFarBeyond, command, milliseconds));
}

TEST_F(TalcHWCapsTest, HasNoNthOverrideWithoutAny) {
  std::string command;
  std::uint32_t milliseconds = 0;
  EXPECT_FALSE(caps_.GetNthOverride(0, command, milliseconds));
}

TEST_F(TalcHWCapsTest, AppliesOverridesToTheirCommands) {
  caps_.overrideTimeouts = {{"Video", 1500}, {"Audio", 4294967295}};
  EXPECT_TRUE(caps_.ApplyOverrideTimeouts());
  EXPECT_EQ(TimeoutOf("Video"), 1500u);
  EXPECT_EQ(TimeoutOf("Audio"), 4294967295u);
}

TEST_F(TalcHWCapsTest, AppliesNothingWithoutOverrides) {
  EXPECT_TRUE(caps_.ApplyOverrideTimeouts());
  EXPECT_EQ(TimeoutOf("Video"), 0u);
}

TEST_F(TalcHWCapsTest, GoesOnBehindACommandThatIgnoresItsTimeout) {
  caps_.overrideTimeouts = {{"Probe", 1500}, {"Video", 20}};
  EXPECT_TRUE(caps_.ApplyOverrideTimeouts());
  EXPECT_EQ(TimeoutOf("Probe"), 0u);
  EXPECT_EQ(TimeoutOf("Video"), 20u);
}

TEST_F(TalcHWCapsTest, StopsApplyingAtTheFirstUnknownCommand) {
  caps_.overrideTimeouts = {{"Audio", 10}, {"Nothing", 20}, {"Video", 30}};
  EXPECT_FALSE(caps_.ApplyOverrideTimeouts());
  EXPECT_EQ(TimeoutOf("Audio"), 10u);
  EXPECT_EQ(TimeoutOf("Video"), 0u);
}

}  // namespace
