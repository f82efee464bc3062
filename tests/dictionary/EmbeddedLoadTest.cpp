// The dictionaries of the data folder, read by the library.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "dictionary/PacketLayout.h"
#include "DictionaryFixture.h"
#include "FormatProbe.h"
#include "RawDictionary.h"

namespace {

using TalcPath::TalcCommand;
using TalcPathPrivate::CommandFormat;
using TalcPathPrivate::CommandType;
using TalcPathPrivate::DefinedCommands;
using TalcPathPrivate::TalcDataCommandFormat;

class EmbeddedLoadTest : public DictionaryTest {
 protected:
  void SetUp() override {
    DictionaryTest::SetUp();
    for (const embedded::RawFile& file : embedded::RawFiles())
      ASSERT_TRUE(Parse(file.text));
  }

  static TalcDataCommandFormat& Data(const std::string& name) {
    return dynamic_cast<TalcDataCommandFormat&>(*DefinedCommands()->at(name));
  }
  static std::map<std::string, std::string> Summaries() {
    std::map<std::string, std::string> summaries;
    for (const auto& [name, format] : *DefinedCommands())
      summaries[name] = probe::Summary(*format);
    return summaries;
  }
  /// The length of the packet that this command needs now.
  static std::int32_t PacketLength(const TalcCommand& command) {
    TalcPathPrivate::PacketSizes sizes;
    return ComputePacketLayout(&command, &Data(command.GetName()), sizes);
  }
};

TEST_F(EmbeddedLoadTest, FillsTheTablesWithoutAWord) {
  EXPECT_EQ(log(), "");
  EXPECT_EQ(DefinedCommands()->size(), 163u);
  EXPECT_EQ(TalcPathPrivate::CommandTypes()->size(), 145u);
  EXPECT_EQ(TalcPathPrivate::DiagOpcodes()->size(), 18u);
}

TEST_F(EmbeddedLoadTest, FindsEachCommandByItsCode) {
  const std::map<std::string, CommandType::Major> majors = {{"VIDEO", CommandType::Major::VIDEO},
                                                            {"AUDIO", CommandType::Major::AUDIO},
                                                            {"SYSTEM", CommandType::Major::SYSTEM},
                                                            {"DIAGNOSTIC", CommandType::Major::DIAGNOSTIC}};
  for (const embedded::File& file : embedded::kFiles) {
    for (const embedded::Code& code : file.commands) {
      const auto number = static_cast<std::int16_t>(code.code);
      const std::string* const name =
          file.kind == "Diag"
              ? TalcPathPrivate::FindDiagOpcode(number)
              : TalcPathPrivate::FindCommandType({.major = majors.at(file.major), .minor = 0, .function = number});
      ASSERT_NE(name, nullptr) << code.name;
      EXPECT_EQ(*name, code.name);
    }
  }
}

TEST_F(EmbeddedLoadTest, ReadsWhatTheFilesHold) {
  for (const embedded::RawCommand& command : embedded::RawCommands()) {
    const CommandFormat* const format = Find(command.name);
    ASSERT_NE(format, nullptr) << command.name;
    EXPECT_EQ(format->GetName() + " {" + probe::ParametersOf(*format) + "} {" + probe::SymbolsOf(*format) + "}",
              embedded::Summary(command));
    EXPECT_EQ(probe::CodeOf(*format), command.kind == "Diag"
                                          ? "Diag " + command.code
                                          : command.major + " " + command.minor + " " + command.code);
  }
}

TEST_F(EmbeddedLoadTest, LoadsNothingThatValidationWouldRefuse) {
  for (const auto& [name, format] : *DefinedCommands()) {
    TalcPathPrivate::ErrorList errors;
    EXPECT_TRUE(format->Validate(errors)) << name << ": " << testing::PrintToString(errors);
  }
}

TEST_F(EmbeddedLoadTest, KnowsTheSizesOfAllButTheBytesCommands) {
  int variable = 0;
  for (const auto& [name, format] : *DefinedCommands()) {
    const auto& sizes = Data(name).GetPacketSizes();
    const std::uint32_t header = format->IsDiagCommandFormat() ? 36 : 8;
    if (format->HasVariableLengthData()) {
      ++variable;
      EXPECT_EQ(sizes.sendSize, 0u) << name;
    } else {
      EXPECT_EQ(sizes.sendSize, header + sizes.sendPayloadSize) << name;
      EXPECT_EQ(sizes.requestSize, header + sizes.requestPayloadSize) << name;
      EXPECT_LE(sizes.sendPayloadSize, 68u) << name;
    }
  }
  EXPECT_EQ(variable, 24);
  EXPECT_EQ(Data("AudioMeterBank").GetPacketSizes().sendPayloadSize, 68u);
}

TEST_F(EmbeddedLoadTest, LaysOutTheStartOfADownload) {
  EXPECT_EQ(Data("StartFPGADownload").GetPacketSizes().sendSize, 14u);
  EXPECT_EQ(Data("StartFPGADownload").GetPacketSizes().requestSize, 10u);
  EXPECT_EQ(Data("ProgramFPGA").GetPacketSizes().sendSize, 8u);
  EXPECT_EQ(Data("ProgramFPGA").GetPacketSizes().requestSize, 8u);
}

TEST_F(EmbeddedLoadTest, LaysOutAPartVersionWithEachCommand) {
  EXPECT_TRUE(Data("GetStringPartRev").HasVariableLengthData());
  TalcCommand command("GetStringPartRev");
  command.SetSymbol("PartID", "MorvakFPGA");
  command.SetRequestCommand();
  EXPECT_EQ(PacketLength(command), 10);
  command.SetSendCommand();
  EXPECT_EQ(PacketLength(command), -1);  // the version is missing
  const std::uint8_t version[] = {'1', '2', '3'};
  command.SetBytes("Version", version, 3);
  EXPECT_EQ(PacketLength(command), 13);
}

TEST_F(EmbeddedLoadTest, LaysOutTheVersionsOfTheBox) {
  TalcCommand command("HWConfigFB");
  command.SetRequestCommand();
  EXPECT_EQ(PacketLength(command), 8);
  EXPECT_EQ(Data("HWConfigFB").GetNumParameters(), 13u);
}

TEST_F(EmbeddedLoadTest, RequestsNothingOfACpldPiece) {
  TalcCommand command("CPLDDownload");
  command.SetRequestCommand();
  EXPECT_EQ(PacketLength(command), 8);
}

TEST_F(EmbeddedLoadTest, ReadsTheSymbolsWithABlankLikeTheOthers) {
  const embedded::RawFile file = embedded::ReadRaw("IDR_RT_TCDFILE_5");
  int blanks = 0;
  std::istringstream lines(file.text);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t blank = line.find(' ');
    if (!line.starts_with("Symbol\t") || blank == std::string::npos) continue;
    ++blanks;
    std::int32_t value = -1;
    EXPECT_TRUE(Find("VideoOutputFormat")->GetSymbolValue(line.substr(7, blank - 7), value)) << line;
    EXPECT_EQ(value, std::stoi(line.substr(blank)));
  }
  EXPECT_EQ(blanks, 2);
}

TEST_F(EmbeddedLoadTest, IsWrittenBackAsItStandsInTheFiles) {
  for (const embedded::RawFile& file : embedded::RawFiles()) {
    std::string text = file.text;
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    for (const embedded::RawCommand& command : file.commands) {
      // Two of its symbols stand behind a blank.
      if (command.name == "VideoOutputFormat") continue;
      const std::string written = probe::Written(*Find(command.name));
      EXPECT_NE(text.find(written + "\n\nDOCUMENTATION\t" + command.name + "\n"), std::string::npos) << written;
    }
  }
}

TEST_F(EmbeddedLoadTest, ReadsWhatItWroteAsTheSameTables) {
  std::string written = "# TalcPath Dictionary Generated TCD File ; \n";
  for (const auto& [name, format] : *DefinedCommands())
    written += probe::Written(*format);
  const auto summaries = Summaries();
  const auto types = *TalcPathPrivate::CommandTypes();
  const auto opcodes = *TalcPathPrivate::DiagOpcodes();
  TearDown();
  DictionaryTest::SetUp();
  ASSERT_TRUE(Parse(written));
  EXPECT_EQ(Summaries(), summaries);
  EXPECT_EQ(*TalcPathPrivate::CommandTypes(), types);
  EXPECT_EQ(*TalcPathPrivate::DiagOpcodes(), opcodes);
  EXPECT_EQ(log(), "");
}

TEST_F(EmbeddedLoadTest, RefusesToBeReadTwice) {
  EXPECT_FALSE(Parse(embedded::RawFiles()[1].text));
  EXPECT_EQ(log(),
            "\n\nERROR - Talc Command Definition : RunDiagnostic NOT UNIQUE"
            "\n\nERROR - Failed To Successfully parse Talc Command Definition file : test.tcd");
  EXPECT_EQ(DefinedCommands()->size(), 163u);
}

}  // namespace
