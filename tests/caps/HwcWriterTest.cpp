#include <gtest/gtest.h>

#include <cstdint>
#include <iomanip>
#include <limits>
#include <sstream>
#include <string>

#include "caps/HwcWriter.h"
#include "CapsFixture.h"

namespace {

using caps_test::Block;
using caps_test::NumberBlock;
using caps_test::Range;
using caps_test::SymbolBlock;
using caps_test::TextList;
using caps_test::Variant;

const std::string kHead =
    "\n# Generated Talc Hardware Capabilities file ;"
    "\n\nHardwareType\t\tTrelvane ;"
    "\n\n# BEGIN Command Override Timeout Values (Milliseconds) ; ";
const std::string kBehindOverrides =
    "\n\n# END   Command Override Timeout Values (Milliseconds) ; "
    "\n\n# *** Properties & Command Parameter Defined Ranges *** ;\n";
const std::string kBegin =
    "\n\n# Condition Block Active - lasts until next condition block ;"
    "\nConditionBlockBegin ;";
const std::string kEnd =
    "\nConditionBlockEnd ;"
    "\n\n# Properties ;\n";
const std::string kValues = "\n\n# Command Values ;\n";

class HwcWriterTest : public caps_test::CapsTest {
 protected:
  std::string Written() const {
    std::ostringstream stream;
    EXPECT_TRUE(TalcPathPrivate::WriteHwc(caps_, "Trelvane", stream));
    return stream.str();
  }
  bool Writes() const {
    std::ostringstream stream;
    return TalcPathPrivate::WriteHwc(caps_, "Trelvane", stream);
  }

  const Block default_ = {};
};

TEST_F(HwcWriterTest, WritesTheDefaultBlockWithoutAnything) {
  EXPECT_EQ(Written(), kHead + kBehindOverrides + kBegin + kEnd + kValues);
}

TEST_F(HwcWriterTest, WritesOneOfEverything) {
  caps_.overrideTimeouts = {{"Video", 1500}, {"Audio", 4294967295}};
  Block both = SymbolBlock("Both", "Video", "Side", "Gain");
  ASSERT_TRUE(both.AddIntegerCondition("Audio", "Level", -9));
  caps_.AppendBlock(both);
  const Block& unnamed = caps_.AppendBlock(NumberBlock("", "Probe", "Address", 7));
  ASSERT_TRUE(caps_.AddProperty("Text", Variant(std::string("a_b")), both));
  ASSERT_TRUE(caps_.AddProperty("Number", Variant(std::int32_t{-310}), both));
  ASSERT_TRUE(caps_.AddProperty("Text", Variant(std::string("TRUE")), default_));
  ASSERT_TRUE(caps_.AddCommandValue("Video", "Value", Variant(Range(-1, 255)), both));
  ASSERT_TRUE(caps_.AddCommandValue("Video", "Value", Variant(Range(5, 2)), unnamed));
  ASSERT_TRUE(caps_.AddCommandValue("Video", "Control", Variant(TextList{"Hue", "Gain"}), both));
  ASSERT_TRUE(caps_.AddCommandValue("Audio", "Side", Variant(TextList{"Mute"}), default_));

  EXPECT_EQ(Written(), kHead +
                           "\nCmdOverrideTimeout\tAudio\t4294967295 ;"
                           "\nCmdOverrideTimeout\tVideo\t1500 ;" +
                           kBehindOverrides + kBegin + kEnd +  // the default block
                           "\nProperty\tText\tSTRING\tTRUE ;" + kValues +
                           "\nCommandValues\tAudio\tSide\tSymbol\tMute  ;" + kBegin +
                           "\nConditionKeyname\tBoth ;"
                           "\nCondition\tAudio\tLevel\tINTEGER\t-9 ;"
                           "\nCondition\tVideo\tSide\tSYMBOL\tGain ;" +
                           kEnd +
                           "\nProperty\tNumber\tINTEGER\t-310 ;"
                           "\nProperty\tText\tSTRING\ta_b ;" +
                           kValues +
                           "\nCommandValues\tVideo\tControl\tSymbol\tHue Gain  ;"
                           "\nCommandValues\tVideo\tValue\tRange\t-1\t255 ;" +
                           kBegin + "\nCondition\tProbe\tAddress\tINTEGER\t7 ;" + kEnd + kValues +
                           "\nCommandValues\tVideo\tValue\tRange\t5\t2 ;");
}

TEST_F(HwcWriterTest, WritesNumbersAtTheirLimits) {
  constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
  constexpr std::int32_t kGreatest = std::numeric_limits<std::int32_t>::max();
  ASSERT_TRUE(caps_.AddProperty("Least", Variant(kLeast), default_));
  ASSERT_TRUE(caps_.AddProperty("Greatest", Variant(kGreatest), default_));
  ASSERT_TRUE(caps_.AddCommandValue("A", "B", Variant(Range(kLeast, kGreatest)), default_));
  EXPECT_EQ(Written(), kHead + kBehindOverrides + kBegin + kEnd +
                           "\nProperty\tGreatest\tINTEGER\t2147483647 ;"
                           "\nProperty\tLeast\tINTEGER\t-2147483648 ;" +
                           kValues + "\nCommandValues\tA\tB\tRange\t-2147483648\t2147483647 ;");
}

TEST_F(HwcWriterTest, WritesTheGivenTypeInPlaceOfItsOwn) {
  caps_.hardwareType = "Other";
  EXPECT_EQ(Written(), kHead + kBehindOverrides + kBegin + kEnd + kValues);
}

TEST_F(HwcWriterTest, WritesDecimalNumbersWhateverTheStreamIsSetTo) {
  caps_.overrideTimeouts = {{"Video", 1500}};
  ASSERT_TRUE(caps_.AddProperty("P", Variant(std::int32_t{310}), default_));
  std::ostringstream stream;
  stream << std::hex << std::showbase << std::showpos;
  EXPECT_TRUE(TalcPathPrivate::WriteHwc(caps_, "Trelvane", stream));
  EXPECT_EQ(stream.str(), kHead + "\nCmdOverrideTimeout\tVideo\t1500 ;" + kBehindOverrides + kBegin + kEnd +
                              "\nProperty\tP\tINTEGER\t310 ;" + kValues);
}

TEST_F(HwcWriterTest, FailsForAnEmptyListOfSymbols) {
  ASSERT_TRUE(caps_.AddCommandValue("Video", "Control", Variant(TextList{}), default_));
  EXPECT_FALSE(Writes());
}

TEST_F(HwcWriterTest, FailsForAnEmptyListOfSymbolsUnderABlock) {
  const Block& one = caps_.AppendBlock(NumberBlock("One", "Video", "Side", 1));
  ASSERT_TRUE(caps_.AddCommandValue("Video", "Control", Variant(TextList{"Hue"}), default_));
  EXPECT_TRUE(Writes());
  ASSERT_TRUE(caps_.AddCommandValue("Video", "Control", Variant(TextList{}), one));
  EXPECT_FALSE(Writes());
}

TEST_F(HwcWriterTest, FailsForAValueOfAnyOtherKind) {
  const Variant kOthers[] = {Variant(), Variant(std::int32_t{5}), Variant(std::string("Hue"))};
  for (const Variant& other : kOthers) {
    TalcPathPrivate::TalcHWCaps caps;
    ASSERT_TRUE(caps.AddCommandValue("Video", "Value", other, default_));
    std::ostringstream stream;
    EXPECT_FALSE(TalcPathPrivate::WriteHwc(caps, "Trelvane", stream)) << other.Type().name();
  }
}

TEST_F(HwcWriterTest, FailsForAPropertyOfAnyOtherKind) {
  const Variant kOthers[] = {Variant(), Variant(std::uint32_t{5}), Variant(Range(0, 1)), Variant(TextList{"Hue"})};
  for (const Variant& other : kOthers) {
    TalcPathPrivate::TalcHWCaps caps;
    ASSERT_TRUE(caps.AddProperty("P", other, default_));
    std::ostringstream stream;
    EXPECT_FALSE(TalcPathPrivate::WriteHwc(caps, "Trelvane", stream)) << other.Type().name();
  }
}

}  // namespace
