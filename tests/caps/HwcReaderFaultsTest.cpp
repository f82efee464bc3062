// Every statement that fails a file, with all that the log tells of it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <istream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <vector>

#include "CapsFixture.h"

namespace {

using caps_test::LabelOf;
using caps_test::Lines;
using caps_test::TablesOf;
using testing::ElementsAre;

const std::string kFailLine = "\n\nERROR - Failed To Successfully parse Hardware Capabilities file : test.hwc";
const std::string kDuplicateLine =
    "\n\nERROR - duplicate HardwareType key found in Hardware Capabilities file : test.hwc";

struct Fault {
  std::string label;
  /// What fails, without its ";".
  std::string text;
};

const std::string kHeader = "ConditionBlockBegin ; ConditionKeyname One ; Condition Video Side INTEGER 1 ; ";
const std::string kBlock = kHeader + "ConditionBlockEnd ; ";

class HwcFaults : public caps_test::CapsTest, public testing::WithParamInterface<Fault> {
 protected:
  bool ReadFault() { return Read("CmdOverrideTimeout Before 1 ;" + GetParam().text + "; HardwareType Behind ;"); }
};

TEST_P(HwcFaults, EndTheReadingWithTheGeneralLine) {
  EXPECT_FALSE(ReadFault());
  EXPECT_EQ(log(), kFailLine);
  ASSERT_FALSE(TablesOf(caps_).size() < 2);
  EXPECT_EQ(caps_.hardwareType, "");
  EXPECT_EQ(TablesOf(caps_)[1], "Before 1");
}

TEST_P(HwcFaults, AreToldTheSameUnderAllFlags) {
  TalcPathPrivate::logState.verbose = true;
  TalcPathPrivate::logState.trace = true;
  EXPECT_FALSE(ReadFault());
  EXPECT_EQ(log(), kFailLine);
}

const std::vector<Fault> kWords = {
    {"UnknownWord", "nonsense"},
    {"UnknownWordInAHeader", kHeader + "nonsense"},
    {"WordInOtherCase", "hardwaretype T "},
    {"WordWithMoreBehind", "HardwareTypes T "},
    {"WordThatTouchesTheNext", "HardwareType:T "},
    {"CommentMarkBehindAWord", "x# comment "},

    {"NoHardwareType", "HardwareType"},
    {"BlankHardwareType", "HardwareType \t\n"},
    {"BlankHardwareTypeInAHeader", kHeader + "HardwareType "},

    {"HeaderInAHeader", kHeader + "ConditionBlockBegin "},
    {"PropertyInAHeader", kHeader + "Property P INTEGER 1 "},
    {"CommandValuesInAHeader", kHeader + "CommandValues A B Range 0 1 "},
    {"OverrideInAHeader", kHeader + "CmdOverrideTimeout A 1 "},
    {"PropertyInAnEmptyHeader", "ConditionBlockBegin ; Property P INTEGER 1 "},
    {"KeynameOutsideAHeader", "ConditionKeyname One "},
    {"KeynameBehindAHeader", kBlock + "ConditionKeyname Two "},
    {"ConditionOutsideAHeader", "Condition Video Side INTEGER 1 "},
    {"ConditionBehindAHeader", kBlock + "Condition Video Side INTEGER 1 "},
    {"KeynameBehindAnEmptyHeader", "ConditionBlockBegin ; ConditionBlockEnd ; ConditionKeyname One "},
    {"EndOfNoHeader", "ConditionBlockEnd "},
    {"SecondEndOfAnEmptyHeader", "ConditionBlockBegin ; ConditionBlockEnd ; ConditionBlockEnd "},
    {"EndOfNoHeaderBehindAnEmptyOne", kBlock + "ConditionBlockBegin ; ConditionBlockEnd ; ConditionBlockEnd "},
};
INSTANTIATE_TEST_SUITE_P(OfTheFirstWord, HwcFaults, testing::ValuesIn(kWords), LabelOf<Fault>);

const std::vector<Fault> kPropertiesAndOverrides = {
    {"NothingBehindProperty", "Property"},
    {"NoPropertyName", "Property "},
    {"NoPropertyType", "Property P "},
    {"NoPropertyTypeAtTheEnd", "Property P"},
    {"UnknownPropertyType", "Property P BOOLEAN TRUE "},
    {"PropertyTypeInOtherCase", "Property P String x "},
    {"PropertyTypeOfValues", "Property P Range 0 1 "},
    {"NoNumber", "Property P INTEGER "},
    {"NoNumberAtTheEnd", "Property P INTEGER"},
    {"NumberThatTouchesTheEnd", "Property P INTEGER 5"},
    {"NumberAsWord", "Property P INTEGER five "},
    {"SignAlone", "Property P INTEGER - "},
    {"TwoSigns", "Property P INTEGER --5 "},
    {"NumberBeyondTheGreatest", "Property P INTEGER 2147483648 "},
    {"NumberBeyondTheLeast", "Property P INTEGER -2147483649 "},
    {"NumberOfManyDigits", "Property P INTEGER 99999999999999999999999999 "},
    {"NoText", "Property P STRING "},
    {"NoTextAtTheEnd", "Property P STRING"},
    {"PropertyTwice", "Property P INTEGER 1 ; Property P INTEGER 1 "},
    {"PropertyTwiceWithOtherKinds", "Property P INTEGER 1 ; Property P STRING 1 "},
    {"PropertyTwiceInABlock", kBlock + "Property P STRING a ; Property Q STRING b ; Property P STRING a "},
    {"PropertyTwiceInTwoBlocksOfOneCondition",
     kBlock + "Property P INTEGER 1 ; ConditionBlockBegin ; ConditionKeyname Two ; Condition Video Side SYMBOL Input ; "
              "ConditionBlockEnd ; Property P INTEGER 2 "},
    {"PropertyTwiceInTheDefaultBlock",
     "Property P INTEGER 1 ;" + kBlock + "ConditionBlockBegin ; ConditionBlockEnd ; Property P INTEGER 2 "},

    {"NothingBehindOverride", "CmdOverrideTimeout"},
    {"NoOverrideCommand", "CmdOverrideTimeout "},
    {"NoOverrideNumber", "CmdOverrideTimeout A "},
    {"NoOverrideNumberAtTheEnd", "CmdOverrideTimeout A"},
    {"OverrideThatTouchesTheEnd", "CmdOverrideTimeout A 5"},
    {"OverrideAsWord", "CmdOverrideTimeout A five "},
    {"OverrideBeyondTheGreatest", "CmdOverrideTimeout A 4294967296 "},
    {"OverrideOfManyDigits", "CmdOverrideTimeout A 99999999999999999999999999 "},
};
INSTANTIATE_TEST_SUITE_P(OfPropertiesAndOverrides, HwcFaults, testing::ValuesIn(kPropertiesAndOverrides),
                         LabelOf<Fault>);

const std::vector<Fault> kCommandValues = {
    {"NothingBehindCommandValues", "CommandValues"},
    {"NoCommand", "CommandValues "},
    {"NoParameter", "CommandValues Video "},
    {"NoKind", "CommandValues Video Value "},
    {"NoKindAtTheEnd", "CommandValues Video Value"},
    {"UnknownKind", "CommandValues Video Value List Hue "},
    {"KindInOtherCase", "CommandValues Video Value RANGE 0 1 "},
    {"SymbolKindInOtherCase", "CommandValues Video Value SYMBOL Hue "},
    {"NoLow", "CommandValues Video Value Range "},
    {"NoLowAtTheEnd", "CommandValues Video Value Range"},
    {"LowAsWord", "CommandValues Video Value Range low 1 "},
    {"LowThatTouchesTheEnd", "CommandValues Video Value Range 0"},
    {"LowBeyondTheLeast", "CommandValues Video Value Range -2147483649 1 "},
    {"NoHigh", "CommandValues Video Value Range 0 "},
    {"HighAsWord", "CommandValues Video Value Range 0 high "},
    {"HighThatTouchesTheEnd", "CommandValues Video Value Range 0 1"},
    {"HighBeyondTheGreatest", "CommandValues Video Value Range 0 2147483648 "},
    {"LettersBehindLow", "CommandValues Video Value Range 0x 1 "},
    {"NoSymbol", "CommandValues Video Value Symbol "},
    {"NoSymbolAtTheEnd", "CommandValues Video Value Symbol"},
    {"OnlySymbolTouchesTheEnd", "CommandValues Video Value Symbol Hue"},
    {"SymbolOfAnUnknownCommand", "CommandValues Vide Value Symbol Hue "},
    {"UnknownSymbol", "CommandValues Video Value Symbol Nothing "},
    {"UnknownSymbolAmongOthers", "CommandValues Video Value Symbol Hue Nothing Gain "},
    {"SymbolOfAnotherCommand", "CommandValues Video Value Symbol Loud "},
    {"SymbolInOtherCase", "CommandValues Video Value Symbol hue "},
    {"SymbolAsNumber", "CommandValues Video Value Symbol 3 "},
    {"RangeTwice", "CommandValues Video Value Range 0 1 ; CommandValues Video Value Range 0 1 "},
    {"RangeAndSymbols", "CommandValues Video Value Range 0 1 ; CommandValues Video Value Symbol Hue "},
    {"SymbolsAndRange", "CommandValues Video Value Symbol Hue ; CommandValues Video Value Range 0 1 "},
    {"SymbolsTwice", kBlock + "CommandValues Video Value Symbol Hue ; CommandValues Video Value Symbol Gain "},
    {"RangeTwiceInTwoBlocksOfOneCondition",
     kBlock + "CommandValues A B Range 0 1 ; ConditionBlockBegin ; Condition Video Side SYMBOL Input ; "
              "ConditionBlockEnd ; CommandValues A B Range 0 1 "},
    {"RangeTwiceInTheDefaultBlock", "CommandValues A B Range 0 1 ;" + kBlock +
                                        "ConditionBlockBegin ; ConditionBlockEnd ; CommandValues A B Range 0 1 "},
};
INSTANTIATE_TEST_SUITE_P(OfCommandValues, HwcFaults, testing::ValuesIn(kCommandValues), LabelOf<Fault>);

const std::vector<Fault> kConditions = {
    {"NothingBehindCondition", kHeader + "Condition"},
    {"NoCommand", kHeader + "Condition "},
    {"NoParameter", kHeader + "Condition Video "},
    {"NoType", kHeader + "Condition Video Side "},
    {"NoTypeAtTheEnd", kHeader + "Condition Video Side"},
    {"SymbolTypeThatTouchesTheEnd", kHeader + "Condition Video Side SYMBOL"},
    {"IntegerTypeThatTouchesTheEnd", kHeader + "Condition Video Side INTEGER"},
    {"UnknownType", kHeader + "Condition Video Side STRING Hue "},
    {"TypeInOtherCase", kHeader + "Condition Video Side Symbol Hue "},
    {"NoSymbol", kHeader + "Condition Video Side SYMBOL "},
    {"UnknownSymbol", kHeader + "Condition Video Side SYMBOL Nothing "},
    {"SymbolOfAnotherCommand", kHeader + "Condition Video Side SYMBOL Loud "},
    {"SymbolInOtherCase", kHeader + "Condition Video Side SYMBOL hue "},
    {"SymbolOfAnUnknownCommand", kHeader + "Condition Vide Side SYMBOL Hue "},
    {"SymbolOfAnUnknownParameter", kHeader + "Condition Video Level SYMBOL Hue "},
    {"NoNumber", kHeader + "Condition Video Side INTEGER "},
    {"NumberAsWord", kHeader + "Condition Video Side INTEGER Hue "},
    {"NumberThatTouchesTheEnd", kHeader + "Condition Video Side INTEGER 1"},
    {"NumberBeyondTheGreatest", kHeader + "Condition Video Side INTEGER 2147483648 "},
    {"NumberBeyondTheLeast", kHeader + "Condition Video Side INTEGER -2147483649 "},
    {"NumberOfAnUnknownCommand", kHeader + "Condition Vide Side INTEGER 1 "},
    {"NumberOfAnUnknownParameter", kHeader + "Condition Video Level INTEGER 1 "},
    {"ParameterInOtherCase", kHeader + "Condition Video side INTEGER 1 "},
};
INSTANTIATE_TEST_SUITE_P(OfConditions, HwcFaults, testing::ValuesIn(kConditions), LabelOf<Fault>);

class HwcReaderFaultsTest : public caps_test::CapsTest {};

TEST_F(HwcReaderFaultsTest, ReadsOnBehindASecondHardwareType) {
  EXPECT_FALSE(Read("HardwareType T ; HardwareType T ; Property P INTEGER 1 ;"));
  EXPECT_EQ(log(), kDuplicateLine + kFailLine);
  EXPECT_THAT(TablesOf(caps_), ElementsAre("T", "default: P 1"));
}

TEST_F(HwcReaderFaultsTest, TellsOfEachFurtherHardwareType) {
  EXPECT_FALSE(Read("HardwareType T ; HardwareType U ; ConditionBlockBegin ; HardwareType V ;"));
  EXPECT_EQ(log(), kDuplicateLine + kDuplicateLine + kFailLine);
}

TEST_F(HwcReaderFaultsTest, StillFailsWhenTheReadingEndsEarly) {
  const std::string kEnds[] = {";", "too long" + std::string(8190, ' ') + ";", "no end"};
  for (const std::string& end : kEnds) {
    ClearLog();
    caps_test::TalcHWCaps caps;
    EXPECT_FALSE(Read(caps, "HardwareType T ; HardwareType T ;" + end));
    EXPECT_EQ(log(), kDuplicateLine + kFailLine);
  }
}

TEST_F(HwcReaderFaultsTest, TellsOfBothASecondHardwareTypeAndAFault) {
  EXPECT_FALSE(Read("HardwareType T ; HardwareType T ; nonsense ; HardwareType T ;"));
  EXPECT_EQ(log(), kDuplicateLine + kFailLine);
}

TEST_F(HwcReaderFaultsTest, EndsAtASecondHardwareTypeWithoutAName) {
  EXPECT_FALSE(Read("HardwareType T ; HardwareType ; Property P INTEGER 1 ;"));
  EXPECT_EQ(log(), kDuplicateLine + kFailLine);
  EXPECT_EQ(caps_.OverallPropertyCount(), 0u);
}

TEST_F(HwcReaderFaultsTest, StoresNothingOfAFaultyStatement) {
  EXPECT_FALSE(Read("Property P INTEGER 1 ; CommandValues Video Control Symbol Hue Nothing ;"));
  EXPECT_THAT(TablesOf(caps_), ElementsAre("", "default: P 1"));
}

/// Delivers one statement, then throws.
template <typename Exception>
class BrokenBuffer final : public std::streambuf {
 public:
  explicit BrokenBuffer(Exception exception) : exception_(exception) { setg(text_, text_, text_ + sizeof text_ - 1); }

 private:
  int_type underflow() override { throw exception_; }

  Exception exception_;
  char text_[32] = "CmdOverrideTimeout A 00000001 ;";
};

TEST_F(HwcReaderFaultsTest, TellsOfAnExceptionOfTheStream) {
  BrokenBuffer buffer(std::runtime_error("the disk is gone"));
  std::istream stream(&buffer);
  stream.exceptions(std::ios::badbit);
  EXPECT_FALSE(TalcPathPrivate::ReadHwc(caps_, stream, "test.hwc"));
  EXPECT_EQ(log(), "\n\nERROR - Exception occurred : the disk is gone");
  EXPECT_THAT(TablesOf(caps_), ElementsAre("", "A 1"));
}

TEST_F(HwcReaderFaultsTest, TellsOfAnUnknownExceptionOfTheStream) {
  BrokenBuffer buffer(5);
  std::istream stream(&buffer);
  stream.exceptions(std::ios::badbit);
  EXPECT_FALSE(TalcPathPrivate::ReadHwc(caps_, stream, "test.hwc"));
  EXPECT_EQ(log(), "\n\nERROR - Unknown exception occurred while processing file : test.hwc");
  EXPECT_THAT(TablesOf(caps_), ElementsAre("", "A 1"));
}

TEST_F(HwcReaderFaultsTest, TakesAStreamThatFailsQuietlyForTheEnd) {
  BrokenBuffer buffer(5);
  std::istream stream(&buffer);
  EXPECT_TRUE(TalcPathPrivate::ReadHwc(caps_, stream, "test.hwc"));
  EXPECT_EQ(log(), "");
  EXPECT_THAT(TablesOf(caps_), ElementsAre("", "A 1"));
}

}  // namespace
