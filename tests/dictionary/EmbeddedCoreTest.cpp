// The commands that the installer and the capabilities stand on, held against what they must be.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "EmbeddedCore.h"
#include "RawDictionary.h"

namespace {

using embedded::kCore;
using embedded::RawCommand;

RawCommand Command(const std::string& name) {
  for (const RawCommand& command : embedded::RawCommands())
    if (command.name == name) return command;
  ADD_FAILURE() << name << " is not there";
  return {};
}

std::vector<std::string> ParameterNames(const RawCommand& command) {
  std::vector<std::string> names;
  for (const embedded::RawParameter& parameter : command.parameters)
    names.push_back(parameter.name);
  return names;
}

std::map<std::string, std::string> Symbols(const RawCommand& command) {
  std::map<std::string, std::string> symbols;
  for (const embedded::RawSymbol& symbol : command.symbols)
    symbols[symbol.name] = symbol.value;
  return symbols;
}

/// Each is there, and no two have one number: whoever holds values against each other compares numbers.
void ExpectDifferent(const RawCommand& command, const std::vector<std::string>& names) {
  const auto symbols = Symbols(command);
  std::set<std::string> values;
  for (const std::string& name : names) {
    ASSERT_TRUE(symbols.contains(name)) << command.name << ' ' << name;
    EXPECT_TRUE(values.insert(symbols.at(name)).second) << command.name << ' ' << name;
  }
}

TEST(EmbeddedCore, IsTwentyCommands) {
  EXPECT_EQ(kCore.size(), 20u);
}

TEST(EmbeddedCore, HasExactlyItsParametersAndSymbols) {
  for (const embedded::CoreCommand& core : kCore) {
    RawCommand expected;
    expected.name = core.name;
    for (const embedded::CoreParameter& parameter : core.parameters)
      expected.parameters.push_back({parameter.name, parameter.type, parameter.isRequired});
    for (const embedded::CoreSymbol& symbol : core.symbols)
      expected.symbols.push_back({symbol.name, std::to_string(symbol.value)});
    const RawCommand found = Command(core.name);
    EXPECT_EQ(embedded::Summary(found), embedded::Summary(expected));
    EXPECT_EQ(found.kind, "Talc") << core.name;
    EXPECT_EQ(found.major, core.major) << core.name;
    EXPECT_EQ(found.minor, "0") << core.name;
    EXPECT_EQ(found.code, std::to_string(core.function)) << core.name;
  }
}

TEST(EmbeddedCore, NumbersFileTypesTheSameInAllDownloads) {
  const std::vector<std::string> types = {"Hex", "Exo", "Bin", "Rbi", "Svf", "Jed", "BinCRC", "None"};
  const std::map<std::string, std::string> prefixes = {
      {"StartFPGADownload", "kBoBF_"}, {"StartFirmwareDownload", "kBoB_"}, {"StartCPLDDownload", "kBoBC_"}};
  for (const auto& [name, prefix] : prefixes) {
    const RawCommand command = Command(name);
    ASSERT_GE(command.symbols.size(), types.size()) << name;
    for (std::size_t i = 0; i < types.size(); ++i) {
      EXPECT_EQ(command.symbols[i].name, prefix + types[i]);
      EXPECT_EQ(command.symbols[i].value, std::to_string(i)) << command.symbols[i].name;
    }
  }
}

TEST(EmbeddedCore, NumbersOneHardwareLineOverTheOther) {
  // The caller knows which of the two it speaks to.
  const auto boards = Symbols(Command("VPDInfo"));
  EXPECT_EQ(boards.at("VPD_Brox"), boards.at("VPD_Morvak"));
  const auto parts = Symbols(Command("GetStringPartRev"));
  EXPECT_EQ(parts.at("HollenFW"), parts.at("MorvakFirmware"));
  const auto devices = Symbols(Command("StartFPGADownload"));
  EXPECT_EQ(devices.at("kHollenFPGA_ID"), devices.at("MorvakXandrelFPGA_ID"));
}

TEST(EmbeddedCore, CarriesACpldPieceInASendOnly) {
  for (const embedded::RawParameter& parameter : Command("CPLDDownload").parameters)
    EXPECT_FALSE(parameter.isRequired) << parameter.name;
  for (const embedded::RawParameter& parameter : Command("Diagnostic").parameters)
    EXPECT_TRUE(parameter.isRequired) << parameter.name;
}

TEST(EmbeddedCore, NamesTheVideoControlsOfTheCapabilities) {
  const RawCommand control = Command("VideoIOControl");
  EXPECT_EQ(ParameterNames(control), (std::vector<std::string>{"InputOrOutput", "Type", "Control", "Value"}));
  ExpectDifferent(control, {"VIOCtrl_Input", "VIOCtrl_Output"});
  ExpectDifferent(control, {"VIOCtrl_Composite", "VIOCtrl_Component", "VIOCtrl_SVideo", "VIOCtrl_SDGlobal",
                            "VIOCtrl_HDYPbPr", "VIOCtrl_HDGBR", "VIOCtrl_HDGlobal", "VIOCtrl_OutputLock",
                            "VIOCtrl_HD_SDDownconvert", "VIOCtrl_HD_HDCrossconvert"});
  ExpectDifferent(
      control, {"VIOCtrl_Hue", "VIOCtrl_Sat", "VIOCtrl_Black", "VIOCtrl_Gain", "VIOCtrl_YGain", "VIOCtrl_RYGain",
                "VIOCtrl_BYGain", "VIOCtrl_Hue_Consumer", "VIOCtrl_Sat_Consumer", "VIOCtrl_Black_Consumer",
                "VIOCtrl_Gain_Consumer", "VIOCtrl_YGain_Consumer", "VIOCtrl_RYGain_Consumer", "VIOCtrl_BYGain_Consumer",
                "VIOCtrl_SCPhase", "VIOCtrl_HPhase", "VIOCtrl_SubPixelHPhase", "VIOCtrl_VBI", "VIOCtrl_SignalLock"});
}

TEST(EmbeddedCore, NamesTheProjectFormatsOfTheCapabilities) {
  const RawCommand format = Command("HVProjectFormat");
  const std::vector<std::string> names = ParameterNames(format);
  EXPECT_NE(std::find(names.begin(), names.end(), "ProjectFormat"), names.end());
  ExpectDifferent(format, {"HVHDProjFmt_1080I_2997FPS", "HVHDProjFmt_1080SF_2397FPS", "HVHDProjFmt_1080SF_2997FPS",
                           "HVHDProjFmt_720P_5997FPS", "HVHDProjFmt_1080I_25FPS", "HVHDProjFmt_720P_50FPS",
                           "HVHDProjFmt_720P_25FPS", "HVHDProjFmt_1080SF_25FPS", "HVHDProjFmt_1080SF_24FPS",
                           "HVSDProjFmt_NTSC", "HVSDProjFmt_NTSCJ", "HVSDProjFmt_PAL"});
}

TEST(EmbeddedCore, NamesTheVideoInputsOfTheCapabilities) {
  const RawCommand input = Command("VideoInput");
  const std::vector<std::string> names = ParameterNames(input);
  EXPECT_NE(std::find(names.begin(), names.end(), "VideoInType"), names.end());
  ExpectDifferent(input, {"VideoInput_Composite", "VideoInput_SVideo", "VideoInput_Component", "VideoInput_SDI",
                          "VideoInput_HDSDI"});
}

}  // namespace
