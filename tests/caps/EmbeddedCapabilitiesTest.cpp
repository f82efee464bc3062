#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "caps/HwcReader.h"
#include "caps/HwcWriter.h"
#include "caps/TalcHWCaps.h"
#include "dictionary/DefinedCommands.h"
#include "dictionary/TcdReader.h"

// The capabilities of the box, counted: what the text holds, and what is read from it behind the real dictionaries.

namespace {

using TalcPathPrivate::HWCapsConditionBlock;
using TalcPathPrivate::Range;
using TalcPathPrivate::TalcHWCaps;
using TalcPathPrivate::TextList;
using testing::ElementsAre;
using testing::IsEmpty;

using Words = std::vector<std::string>;

const Words kKeynames = {
    "VideoInputCompositeControls",
    "VideoInputComponentControls",
    "VideoInputSVideoControls",
    "VideoInputCompositeHue",
    "VideoInputCompositeSat",
    "VideoInputCompositeBlack",
    "VideoInputCompositeGain",
    "VideoInputConsumerCompositeHue",
    "VideoInputConsumerCompositeSat",
    "VideoInputConsumerCompositeBlack",
    "VideoInputConsumerCompositeGain",
    "VideoInputConsumerComponentBlack",
    "VideoInputConsumerComponentYGain",
    "VideoInputConsumerComponentRYGain",
    "VideoInputConsumerComponentBYGain",
    "VideoInputConsumerSVideoHue",
    "VideoInputConsumerSVideoSat",
    "VideoInputConsumerSVideoBlack",
    "VideoInputConsumerSVideoGain",
    "VideoInputComponentBlack",
    "VideoInputComponentYGain",
    "VideoInputComponentRYGain",
    "VideoInputComponentBYGain",
    "VideoInputSVideoHue",
    "VideoInputSVideoSat",
    "VideoInputSVideoBlack",
    "VideoInputSVideoGain",
    "VideoOutputCompositeControls",
    "VideoOutputComponentControls",
    "VideoOutputSVideoControls",
    "VideoOutputSDGlobalControls",
    "VideoOutputCompositeHue",
    "VideoOutputCompositeSat",
    "VideoOutputCompositeBlack",
    "VideoOutputCompositeGain",
    "VideoOutputCompositeSCPhase",
    "VideoOutputComponentBlack",
    "VideoOutputComponentYGain",
    "VideoOutputComponentRYGain",
    "VideoOutputComponentBYGain",
    "VideoOutputSVideoHue",
    "VideoOutputSVideoSat",
    "VideoOutputSVideoBlack",
    "VideoOutputSVideoGain",
    "VideoOutputSVideoSCPhase",
    "VideoOutputSDGlobalHPhase",
    "VideoOutputSDGlobalSubPixelHPhase",
    "VideoOutputHDYPbPrControls",
    "VideoOutputHDYPbPrYGain",
    "VideoOutputHDYPbPrRYGain",
    "VideoOutputHDYPbPrBYGain",
    "VideoOutputHDGBRControls",
    "VideoOutputHDGBRYGain",
    "VideoOutputHDGBRRYGain",
    "VideoOutputHDGBRBYGain",
    "VideoOutputHDGlobalControls",
    "VideoOutputHDGlobalHPhase",
    "VideoOutputSDGlobalVBIValues",
    "VideoOutputGlobalControls",
    "VideOutputGlobalOutputLock",
    "HDOutputLockFrom_1080i_5994",
    "HDOutputLockFrom_1080p_23976",
    "HDOutputLockFrom_1080p_2997",
    "HDOutputLockFrom_720p_5994",
    "HDOutputLockFrom_1080i_25",
    "HDOutputLockFrom_720p_50",
    "HDOutputLockFrom_720p_25",
    "OutputLockFrom_NTSC",
    "OutputLockFrom_NTSCJ",
    "OutputLockFrom_PAL",
    "HDOutputGlobalDC",
    "HDDownCnvtFrom_1080i_5994",
    "HDDownCnvtFrom_1080p_23976",
    "HDDownCnvtFrom_1080p_2997",
    "HDDownCnvtFrom_720p_5994",
    "HDDownCnvtFrom_1080i_25",
    "HDDownCnvtFrom_720p_50",
    "HDDownCnvtFrom_720p_25",
    "HDDownCnvtFrom_1080p_25",
    "HDDownCnvtFrom_1080p_24",
    "HDDownCnvtFrom_NTSC",
    "HDDownCnvtFrom_NTSCJ",
    "HDDownCnvtFrom_PAL",
    "HDCrossCnvtNoVideoStandard",
    "HDCrossCnvtFrom_1080i_5994",
    "HDCrossCnvtFrom_720p_50",
    "HDCrossCnvtFrom_720p_25",
    "HDCrossCnvtFrom_1080p_23976",
    "HDCrossCnvtFrom_1080p_2997",
    "HDCrossCnvtFrom_720p_5994",
    "HDCrossCnvtFrom_1080i_25",
    "HDCrossCnvtFrom_1080p_25",
    "HDCrossCnvtFrom_1080p_24",
    "HDCrossCnvtFrom_NTSC",
    "HDCrossCnvtFrom_NTSCJ",
    "HDCrossCnvtFrom_PAL",
    "HDOutputLockFrom_1080p_24",
    "HDOutputLockFrom_1080p_25",
    "VideoInputCompositeSignalLock",
    "VideoInputSVideoSignalLock",
    "VideoInputComponentSignalLock",
};

const struct {
  const char* name;
  const char* kind;
  const char* value;
} kDefaultProperties[] = {
    {"HasHardwareSubcompCount", "INTEGER", "0"},
    {"IsHDSupported", "STRING", "TRUE"},
    {"UsesHVControls", "STRING", "TRUE"},
    {"CachedVideoLineWidth_NTSC", "INTEGER", "720"},
    {"CachedVideoLineWidth_PAL", "INTEGER", "720"},
    {"MaxVideoLineNumberNTSC", "INTEGER", "263"},
    {"MaxVideoLineNumberPAL", "INTEGER", "310"},
    {"MinVideoLineNumberNTSC", "INTEGER", "21"},
    {"MinVideoLineNumberPAL", "INTEGER", "23"},
    {"Supports10bit", "STRING", "TRUE"},
    {"PeripheralName", "STRING", "Veltra"},
    {"SupportsTrilevelSync", "STRING", "TRUE"},
    {"SupportsInputLock", "STRING", "TRUE"},
    {"SupportsDigitalAudio", "STRING", "TRUE"},
    {"IsPrimaryAudioDevice", "STRING", "TRUE"},
    {"DefaultVideoOutput", "INTEGER", "1"},
    {"SupportsVideoOutputAdjustments", "STRING", "TRUE"},
    {"SupportsAESorSPDIFAudioOut", "STRING", "TRUE"},
    {"SupportsVDMOnly", "STRING", "TRUE"},
    {"SupportsKVR", "STRING", "TRUE"},
    {"TalcConduitBaseID", "INTEGER", "3000"},
    {"RequiresSwitchFor1394DIOCoexistence", "STRING", "TRUE"},
    {"OutputDeviceSupportsFullResUncompHD", "STRING", "TRUE"},
    {"OutputDeviceSupportsReducedRes", "STRING", "FALSE"},
    {"SupportsVSP", "STRING", "TRUE"},
    {"SupportsConsumerInputControls", "STRING", "TRUE"},
    {"NumberOfInputStatusLocksRecommended", "INTEGER", "2"},
    {"AllowRTEffectsForDigitalCutInHD", "STRING", "TRUE"},
    {"AllowRTEffectsForDigitalCutInSD", "STRING", "TRUE"},
    {"SupportsHD1080P30", "STRING", "TRUE"},
    {"SupportsUniversalMastering", "STRING", "TRUE"},
    {"SupportsGennum", "STRING", "TRUE"},
    {"SupportsRealTimeEffectsInHD", "STRING", "TRUE"},
    {"RequiresAlphaInRLE", "STRING", "TRUE"},
    {"Win32RecommendedVirtualMemoryInMB", "INTEGER", "2500"},
    {"FrameBufferSupportsMultipleRates", "STRING", "TRUE"},
};

std::string ReadText(const std::string& name) {
  std::ifstream file(std::string(DATA_FOLDER "/") + name, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

/// The words of each statement, comments left out.
std::vector<Words> Statements() {
  std::vector<Words> statements;
  std::istringstream text(ReadText("IDR_RT_HWCFILE_1.hwc"));
  for (std::string statement; std::getline(text, statement, ';');) {
    std::istringstream words(statement);
    Words row;
    for (std::string word; words >> word;)
      row.push_back(word);
    if (!row.empty() && row[0][0] != '#') statements.push_back(row);
  }
  return statements;
}

class EmbeddedCapabilities : public testing::Test {
 protected:
  EmbeddedCapabilities() {
    for (const char* number : {"1", "2", "3", "4", "5", "6"}) {
      std::istringstream stream(ReadText(std::string("IDR_RT_TCDFILE_") + number + ".tcd"));
      EXPECT_TRUE(TalcPathPrivate::ParseTcdStream(stream, number));
    }
    EXPECT_EQ(TalcPathPrivate::DefinedCommands()->size(), 163u);
    std::istringstream stream(ReadText("IDR_RT_HWCFILE_1.hwc"));
    EXPECT_TRUE(ReadHwc(caps_, stream, "IDR_RT_HWCFILE_1"));
  }

  ~EmbeddedCapabilities() override {
    TalcPathPrivate::ErrorList errors;
    TalcPathPrivate::DeleteDefinedCommands(errors);
    TalcPathPrivate::DeleteCommandTypeTable(errors);
    TalcPathPrivate::DeleteDiagOpcodeTable(errors);
  }

  const HWCapsConditionBlock& Block(const std::string& keyname) const {
    const HWCapsConditionBlock* const block = caps_.FindBlock(keyname);
    EXPECT_NE(block, nullptr) << keyname;
    return block == nullptr ? caps_.DefaultBlock() : *block;
  }
  std::string Text(const std::string& property, const HWCapsConditionBlock& block) const {
    const auto* const value = caps_.FindProperty(property, block);
    const std::string* const text = value == nullptr ? nullptr : value->As<std::string>();
    return text == nullptr ? "none" : *text;
  }
  std::string Symbol(const char* command, const char* parameter, const HWCapsConditionBlock& block) const {
    const auto* const record = block.Find(command, parameter);
    return record == nullptr ? "" : record->symbol;
  }
  const TextList* Symbols(const char* parameter, const HWCapsConditionBlock& block) const {
    const auto* const value = caps_.FindCommandValue("VideoIOControl", parameter, block);
    return value == nullptr ? nullptr : value->As<TextList>();
  }
  const Range* Numbers(const HWCapsConditionBlock& block) const {
    const auto* const value = caps_.FindCommandValue("VideoIOControl", "Value", block);
    return value == nullptr ? nullptr : value->As<Range>();
  }

  TalcHWCaps caps_;
};

TEST_F(EmbeddedCapabilities, HasSoManyStatementsOfEachKind) {
  std::map<std::string, int> counts;
  std::map<std::string, int> conditions;
  std::map<std::string, int> values;
  for (const Words& words : Statements()) {
    ++counts[words[0]];
    if (words[0] == "Condition") ++conditions[words[1] + " " + words[2] + " " + words[3]];
    if (words[0] == "CommandValues") ++values[words[1] + " " + words[2] + " " + words[3]];
  }
  EXPECT_EQ(counts, (std::map<std::string, int>{{"HardwareType", 1},
                                                {"Property", 36 + 2 * 101},
                                                {"CommandValues", 1 + 101},
                                                {"ConditionBlockBegin", 102},
                                                {"ConditionKeyname", 101},
                                                {"Condition", 101 + 101 + 54 + 36},
                                                {"ConditionBlockEnd", 102}}));
  EXPECT_EQ(conditions, (std::map<std::string, int>{{"VideoIOControl InputOrOutput SYMBOL", 101},
                                                    {"VideoIOControl Type SYMBOL", 101},
                                                    {"VideoIOControl Control SYMBOL", 54},
                                                    {"HVProjectFormat ProjectFormat SYMBOL", 36}}));
  EXPECT_EQ(values, (std::map<std::string, int>{{"VideoInput VideoInType Symbol", 1},
                                                {"VideoIOControl Control Symbol", 11},
                                                {"VideoIOControl Value Range", 47},
                                                {"VideoIOControl Value Symbol", 43}}));
}

TEST_F(EmbeddedCapabilities, HasTheDefaultPropertiesInTheirOrder) {
  std::vector<Words> found;
  for (const Words& words : Statements()) {
    if (words[0] == "ConditionKeyname") break;
    if (words[0] == "Property") found.push_back(words);
  }
  ASSERT_EQ(found.size(), 36u);
  ASSERT_EQ(std::size(kDefaultProperties), 36u);
  for (std::size_t i = 0; i < found.size(); ++i)
    EXPECT_THAT(found[i], ElementsAre("Property", kDefaultProperties[i].name, kDefaultProperties[i].kind,
                                      kDefaultProperties[i].value));
  ASSERT_NE(caps_.PropertiesOf(caps_.DefaultBlock()), nullptr);
  EXPECT_EQ(caps_.PropertiesOf(caps_.DefaultBlock())->size(), 36u);
}

TEST_F(EmbeddedCapabilities, HasTheNamedBlocksInTheirOrder) {
  Words found;
  for (const auto& block : caps_.Blocks())
    found.push_back(block->keyname);
  EXPECT_EQ(found.size(), 101u);
  EXPECT_EQ(found, kKeynames);
}

TEST_F(EmbeddedCapabilities, IsOfTheBoxAndWithoutTimeOuts) {
  EXPECT_EQ(caps_.hardwareType, "Trelvane");
  EXPECT_THAT(caps_.overrideTimeouts, IsEmpty());
  EXPECT_THAT(ReadText("IDR_RT_HWCFILE_1.hwc"),
              testing::HasSubstr("\n# BEGIN Command Override Timeout Values (Milliseconds) ; \n"
                                 "\n# END   Command Override Timeout Values (Milliseconds) ; \n"));
}

TEST_F(EmbeddedCapabilities, TheDefaultInputsAreFive) {
  const auto* const inputs = caps_.FindCommandValue("VideoInput", "VideoInType", caps_.DefaultBlock());
  ASSERT_NE(inputs, nullptr);
  ASSERT_NE(inputs->As<TextList>(), nullptr);
  EXPECT_THAT(*inputs->As<TextList>(), ElementsAre("VideoInput_Composite", "VideoInput_SVideo", "VideoInput_Component",
                                                   "VideoInput_SDI", "VideoInput_HDSDI"));
}

TEST_F(EmbeddedCapabilities, NamedBlocksHaveALabelAndAPlace) {
  std::map<std::string, int> places;
  for (const Words& words : Statements())
    if (words[0] == "Property" && words[1].ends_with("Control") && words[1].starts_with("Is")) ++places[words[1]];
  EXPECT_EQ(places, (std::map<std::string, int>{{"IsSDControl", 46}, {"IsGlobalControl", 45}, {"IsHDControl", 10}}));
  for (const auto& block : caps_.Blocks()) {
    const TalcHWCaps::Properties* const properties = caps_.PropertiesOf(*block);
    ASSERT_NE(properties, nullptr) << block->keyname;
    EXPECT_EQ(properties->size(), 2u) << block->keyname;
    EXPECT_NE(Text("UIName", *block), "none") << block->keyname;
    int found = 0;
    for (const char* place : {"IsSDControl", "IsGlobalControl", "IsHDControl"})
      if (Text(place, *block) == "TRUE") ++found;
    EXPECT_EQ(found, 1) << block->keyname;
  }
}

/// Blocks of one range.
struct RangeRow {
  std::int32_t low, high;
  Words keynames;
};

TEST_F(EmbeddedCapabilities, RangesAreThoseOfTheControls) {
  const std::vector<RangeRow> rows = {
      {0, 63, {"VideoInputCompositeHue", "VideoInputSVideoHue"}},
      {0, 506, {"VideoInputCompositeSat"}},
      {0, 175, {"VideoInputSVideoSat"}},
      {0, 192, {"VideoInputCompositeBlack", "VideoInputComponentBlack", "VideoInputSVideoBlack"}},
      {9, 136, {"VideoInputCompositeGain", "VideoInputSVideoGain", "VideoInputComponentYGain"}},
      {0, 431, {"VideoInputComponentRYGain", "VideoInputComponentBYGain"}},
      {0,
       255,
       {"VideoInputConsumerCompositeHue", "VideoInputConsumerCompositeSat", "VideoInputConsumerCompositeBlack",
        "VideoInputConsumerCompositeGain", "VideoInputConsumerComponentBlack", "VideoInputConsumerComponentYGain",
        "VideoInputConsumerSVideoHue", "VideoInputConsumerSVideoSat", "VideoInputConsumerSVideoBlack",
        "VideoInputConsumerSVideoGain", "VideoOutputCompositeHue", "VideoOutputSVideoHue",
        "VideoOutputCompositeSCPhase", "VideoOutputSVideoSCPhase", "VideoOutputSDGlobalSubPixelHPhase",
        "VideoOutputHDYPbPrYGain", "VideoOutputHDGBRYGain"}},
      {0, 1023, {"VideoInputConsumerComponentRYGain", "VideoInputConsumerComponentBYGain"}},
      {0,
       44,
       {"VideoOutputCompositeSat", "VideoOutputSVideoSat", "VideoOutputCompositeGain", "VideoOutputSVideoGain",
        "VideoOutputComponentYGain", "VideoOutputComponentRYGain", "VideoOutputComponentBYGain"}},
      {0, 38, {"VideoOutputCompositeBlack", "VideoOutputComponentBlack", "VideoOutputSVideoBlack"}},
      {0, 2047, {"VideoOutputSDGlobalHPhase"}},
      {0,
       80,
       {"VideoOutputHDYPbPrRYGain", "VideoOutputHDYPbPrBYGain", "VideoOutputHDGBRRYGain", "VideoOutputHDGBRBYGain"}},
      {0, 4096, {"VideoOutputHDGlobalHPhase"}},
  };
  std::size_t blocks = 0;
  for (const RangeRow& row : rows) {
    for (const std::string& keyname : row.keynames) {
      const Range* const range = Numbers(Block(keyname));
      ASSERT_NE(range, nullptr) << keyname;
      EXPECT_EQ(*range, Range(row.low, row.high)) << keyname;
      ++blocks;
    }
  }
  EXPECT_EQ(blocks, 47u);
}

struct BlockRow {
  const char* keyname;
  const char* io;
  const char* type;
  const char* control;
  const char* format;
  const char* label;
  const char* place;
};

void PrintTo(const BlockRow& row, std::ostream* stream) {
  *stream << row.keyname;
}

class EmbeddedBlock : public EmbeddedCapabilities, public testing::WithParamInterface<BlockRow> {};

TEST_P(EmbeddedBlock, HasItsConditionsLabelAndPlace) {
  const BlockRow& row = GetParam();
  const HWCapsConditionBlock& block = Block(row.keyname);
  EXPECT_EQ(Symbol("VideoIOControl", "InputOrOutput", block), row.io);
  EXPECT_EQ(Symbol("VideoIOControl", "Type", block), row.type);
  EXPECT_EQ(Symbol("VideoIOControl", "Control", block), row.control);
  EXPECT_EQ(Symbol("HVProjectFormat", "ProjectFormat", block), row.format);
  EXPECT_EQ(Text("UIName", block), row.label);
  EXPECT_EQ(Text(row.place, block), "TRUE");
}

constexpr char kIn[] = "VIOCtrl_Input";
constexpr char kOut[] = "VIOCtrl_Output";

// A block of each family, and those that stand apart.
INSTANTIATE_TEST_SUITE_P(
    Families, EmbeddedBlock,
    testing::Values(
        BlockRow{"VideoInputSVideoControls", kIn, "VIOCtrl_SVideo", "", "", "S_Video", "IsSDControl"},
        BlockRow{"VideoInputComponentControls", kIn, "VIOCtrl_Component", "", "", "Component", "IsSDControl"},
        BlockRow{"VideoInputCompositeBlack", kIn, "VIOCtrl_Composite", "VIOCtrl_Black", "", "Setup", "IsSDControl"},
        BlockRow{"VideoInputComponentBYGain", kIn, "VIOCtrl_Component", "VIOCtrl_BYGain", "", "BY_Gain", "IsSDControl"},
        BlockRow{"VideoInputConsumerSVideoHue", kIn, "VIOCtrl_SVideo", "VIOCtrl_Hue_Consumer", "", "Consumer_Hue",
                 "IsSDControl"},
        BlockRow{"VideoInputConsumerComponentRYGain", kIn, "VIOCtrl_Component", "VIOCtrl_RYGain_Consumer", "",
                 "Consumer_RY_Gain", "IsSDControl"},
        BlockRow{"VideoOutputCompositeSCPhase", kOut, "VIOCtrl_Composite", "VIOCtrl_SCPhase", "", "SC_Phase",
                 "IsSDControl"},
        BlockRow{"VideoOutputSDGlobalHPhase", kOut, "VIOCtrl_SDGlobal", "VIOCtrl_HPhase", "", "H_Phase", "IsSDControl"},
        BlockRow{"VideoOutputSDGlobalSubPixelHPhase", kOut, "VIOCtrl_SDGlobal", "VIOCtrl_SubPixelHPhase", "",
                 "SubPixel_H_Phase", "IsSDControl"},
        BlockRow{"VideoOutputSDGlobalVBIValues", kOut, "VIOCtrl_SDGlobal", "VIOCtrl_VBI", "", "VBI", "IsGlobalControl"},
        BlockRow{"VideoOutputHDYPbPrControls", kOut, "VIOCtrl_HDYPbPr", "", "", "HD_Component_YPbPr", "IsHDControl"},
        BlockRow{"VideoOutputHDGBRControls", kOut, "VIOCtrl_HDGBR", "", "", "HD_Component_RGB", "IsHDControl"},
        BlockRow{"VideoOutputHDYPbPrYGain", kOut, "VIOCtrl_HDYPbPr", "VIOCtrl_YGain", "", "Gain", "IsHDControl"},
        BlockRow{"VideoOutputHDGBRRYGain", kOut, "VIOCtrl_HDGBR", "VIOCtrl_RYGain", "", "Pr_Gain", "IsHDControl"},
        BlockRow{"VideoOutputHDGBRBYGain", kOut, "VIOCtrl_HDGBR", "VIOCtrl_BYGain", "", "Pb_Gain", "IsHDControl"},
        BlockRow{"VideoOutputHDGlobalHPhase", kOut, "VIOCtrl_HDGlobal", "VIOCtrl_HPhase", "", "H_Phase", "IsHDControl"},
        BlockRow{"HDOutputLockFrom_1080p_23976", kOut, "VIOCtrl_OutputLock", "", "HVHDProjFmt_1080SF_2397FPS",
                 "Sync_Lock", "IsGlobalControl"},
        BlockRow{"OutputLockFrom_NTSCJ", kOut, "VIOCtrl_OutputLock", "", "HVSDProjFmt_NTSCJ", "Sync_Lock",
                 "IsGlobalControl"},
        BlockRow{"HDDownCnvtFrom_720p_5994", kOut, "VIOCtrl_HD_SDDownconvert", "", "HVHDProjFmt_720P_5997FPS",
                 "Downconvert", "IsGlobalControl"},
        BlockRow{"HDCrossCnvtFrom_1080p_24", kOut, "VIOCtrl_HD_HDCrossconvert", "", "HVHDProjFmt_1080SF_24FPS",
                 "Crossconvert", "IsGlobalControl"},
        BlockRow{"HDCrossCnvtNoVideoStandard", kOut, "VIOCtrl_HD_HDCrossconvert", "VIOCtrl_Crossconvert", "",
                 "Crossconvert", "IsGlobalControl"},
        BlockRow{"VideoInputComponentSignalLock", kIn, "VIOCtrl_Component", "VIOCtrl_SignalLock", "", "Sync_Lock",
                 "IsGlobalControl"},
        BlockRow{"VideOutputGlobalOutputLock", kOut, "VIOCtrl_Global", "VIOCtrl_OutputLockSource", "", "Sync_Lock",
                 "IsGlobalControl"}));

TEST_F(EmbeddedCapabilities, EachFormatHasItsBlocks) {
  const std::map<std::string, int> blocksByFormat = {
      {"HVHDProjFmt_1080I_2997FPS", 3}, {"HVHDProjFmt_1080SF_2397FPS", 3}, {"HVHDProjFmt_1080SF_2997FPS", 3},
      {"HVHDProjFmt_720P_5997FPS", 3},  {"HVHDProjFmt_1080I_25FPS", 3},    {"HVHDProjFmt_720P_50FPS", 3},
      {"HVHDProjFmt_720P_25FPS", 3},    {"HVHDProjFmt_1080SF_25FPS", 3},   {"HVHDProjFmt_1080SF_24FPS", 3},
      {"HVSDProjFmt_NTSC", 3},          {"HVSDProjFmt_NTSCJ", 3},          {"HVSDProjFmt_PAL", 3}};
  std::map<std::string, int> found;
  for (const auto& block : caps_.Blocks())
    if (const std::string format = Symbol("HVProjectFormat", "ProjectFormat", *block); !format.empty()) ++found[format];
  EXPECT_EQ(found, blocksByFormat);
}

TEST_F(EmbeddedCapabilities, ControlListsNameTheControlsOfTheirBlocks) {
  int lists = 0;
  for (const auto& list : caps_.Blocks()) {
    const TextList* const controls = Symbols("Control", *list);
    if (controls == nullptr) continue;
    ++lists;
    EXPECT_EQ(list->ConditionCount(), 2u) << list->keyname;
    std::set<std::string> there;
    for (const auto& block : caps_.Blocks()) {
      const bool isOfTheList =
          Symbol("VideoIOControl", "InputOrOutput", *block) == Symbol("VideoIOControl", "InputOrOutput", *list) &&
          Symbol("VideoIOControl", "Type", *block) == Symbol("VideoIOControl", "Type", *list);
      const std::string control = Symbol("VideoIOControl", "Control", *block);
      if (isOfTheList && !control.empty()) there.insert(control);
    }
    for (const std::string& control : there)
      EXPECT_THAT(*controls, testing::Contains(control)) << list->keyname;
  }
  EXPECT_EQ(lists, 11);
}

TEST_F(EmbeddedCapabilities, WhatIsWrittenReadsBackTheSame) {
  std::ostringstream first;
  ASSERT_TRUE(WriteHwc(caps_, caps_.hardwareType, first));
  TalcHWCaps again;
  std::istringstream stream(first.str());
  ASSERT_TRUE(ReadHwc(again, stream, "again"));
  EXPECT_EQ(again.Blocks().size(), 101u);
  EXPECT_EQ(again.OverallPropertyCount(), 36u + 2 * 101);
  EXPECT_EQ(again.OverallCmdParamCount(), 1u + 101);
  std::ostringstream second;
  ASSERT_TRUE(WriteHwc(again, again.hardwareType, second));
  EXPECT_EQ(second.str(), first.str());
}

}  // namespace
