// The dictionaries of the data folder, counted from the files themselves.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "RawDictionary.h"

namespace {

using embedded::kFiles;
using embedded::RawCommand;
using embedded::RawCommands;
using embedded::RawFiles;

/// The bytes of all values of fixed size.
int PayloadBytes(const RawCommand& command) {
  static const std::map<std::string, int> kSizes = {{"INT8", 1},   {"UINT8", 1},  {"INT16", 2},
                                                    {"UINT16", 2}, {"INT32", 4},  {"UINT32", 4},
                                                    {"INT64", 8},  {"UINT64", 8}, {"BYTES", 0}};
  int bytes = 0;
  for (const embedded::RawParameter& parameter : command.parameters)
    bytes += kSizes.at(parameter.type);
  return bytes;
}

bool EndsInBytes(const RawCommand& command) {
  return !command.parameters.empty() && command.parameters.back().type == "BYTES";
}

bool IsName(const std::string& text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
  });
}

TEST(EmbeddedDictionary, IsSixFiles) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(DATA_FOLDER))
    if (entry.path().extension() == ".tcd") names.push_back(entry.path().stem().string());
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (std::vector<std::string>{"IDR_RT_TCDFILE_1", "IDR_RT_TCDFILE_2", "IDR_RT_TCDFILE_3",
                                             "IDR_RT_TCDFILE_4", "IDR_RT_TCDFILE_5", "IDR_RT_TCDFILE_6"}));
}

TEST(EmbeddedDictionary, HasAllItsCommandsInTheirFiles) {
  ASSERT_EQ(kFiles.size(), 6u);
  const std::vector<std::size_t> counts = {27, 2, 24, 57, 35, 18};
  for (std::size_t i = 0; i < kFiles.size(); ++i) {
    ASSERT_EQ(kFiles[i].commands.size(), counts[i]);
    ASSERT_EQ(RawFiles()[i].commands.size(), counts[i]) << kFiles[i].name;
    std::map<std::string, std::string> expected;
    for (const embedded::Code& code : kFiles[i].commands)
      expected[code.name] = std::to_string(code.code);
    std::map<std::string, std::string> found;
    for (const RawCommand& command : RawFiles()[i].commands)
      found[command.name] = command.code;
    EXPECT_EQ(found, expected) << kFiles[i].name;
  }
}

TEST(EmbeddedDictionary, HasKindAndMajorTypeOfEachFile) {
  int talc = 0;
  int diag = 0;
  for (std::size_t i = 0; i < kFiles.size(); ++i) {
    for (const RawCommand& command : RawFiles()[i].commands) {
      EXPECT_EQ(command.kind, kFiles[i].kind) << command.name;
      EXPECT_EQ(command.major, kFiles[i].major) << command.name;
      EXPECT_EQ(command.minor, command.kind == "Talc" ? "0" : "") << command.name;
      ++(command.kind == "Talc" ? talc : diag);
    }
  }
  EXPECT_EQ(talc, 145);
  EXPECT_EQ(diag, 18);
}

TEST(EmbeddedDictionary, CountsItsParametersAndSymbols) {
  std::size_t parameters = 0;
  std::size_t symbols = 0;
  std::ptrdiff_t variable = 0;
  for (const RawCommand& command : RawCommands()) {
    parameters += command.parameters.size();
    symbols += command.symbols.size();
    variable += EndsInBytes(command) ? 1 : 0;
  }
  EXPECT_EQ(RawCommands().size(), 163u);
  EXPECT_EQ(parameters, 356u);
  EXPECT_EQ(symbols, 955u);
  EXPECT_EQ(variable, 24);
}

TEST(EmbeddedDictionary, HasMostSymbolsWhereManyThingsAreControlled) {
  std::vector<std::pair<std::size_t, std::string>> counts;
  for (const RawCommand& command : RawCommands())
    counts.emplace_back(command.symbols.size(), command.name);
  std::sort(counts.rbegin(), counts.rend());
  ASSERT_GE(counts.size(), 4u);
  EXPECT_EQ(counts[0], (std::pair<std::size_t, std::string>{120, "VideoIOControl"}));
  EXPECT_EQ(counts[1], (std::pair<std::size_t, std::string>{105, "VideoIOCalibration"}));
  EXPECT_EQ(counts[2], (std::pair<std::size_t, std::string>{67, "IOAttributes"}));
  EXPECT_LT(counts[3].first, 67u);
}

TEST(EmbeddedDictionary, HasItsLargestFixedPayloadInTheMeters) {
  for (const RawCommand& command : RawCommands()) {
    if (EndsInBytes(command)) continue;
    if (command.name == "AudioMeterBank")
      EXPECT_EQ(PayloadBytes(command), 68);
    else
      EXPECT_LT(PayloadBytes(command), 68) << command.name;
  }
}

TEST(EmbeddedDictionary, KeepsTheOrderOfParameters) {
  for (const RawCommand& command : RawCommands()) {
    bool sendOnlySeen = false;
    std::set<std::string> names;
    for (const embedded::RawParameter& parameter : command.parameters) {
      if (!parameter.isRequired) sendOnlySeen = true;
      EXPECT_FALSE(parameter.isRequired && sendOnlySeen) << command.name << ' ' << parameter.name;
      EXPECT_TRUE(parameter.type != "BYTES" || &parameter == &command.parameters.back()) << command.name;
      EXPECT_TRUE(names.insert(parameter.name).second) << command.name << ' ' << parameter.name;
    }
  }
}

TEST(EmbeddedDictionary, GivesEachNameAndCodeOnce) {
  std::set<std::string> names;
  std::set<std::string> codes;
  for (const RawCommand& command : RawCommands()) {
    EXPECT_TRUE(names.insert(command.name).second) << command.name;
    EXPECT_TRUE(codes.insert(command.kind + command.major + command.minor + ' ' + command.code).second) << command.name;
  }
}

TEST(EmbeddedDictionary, GivesEachSymbolNameOnce) {
  // A C header puts the symbols of all commands into one name space.
  std::map<std::string, std::string> owners;
  for (const RawCommand& command : RawCommands()) {
    for (const embedded::RawSymbol& symbol : command.symbols) {
      const auto [owner, isNew] = owners.try_emplace(symbol.name, command.name);
      EXPECT_TRUE(isNew) << symbol.name << " in " << owner->second << " and " << command.name;
    }
  }
  EXPECT_EQ(owners.size(), 955u);
}

TEST(EmbeddedDictionary, HasNamesOfLettersDigitsAndUnderscores) {
  for (const RawCommand& command : RawCommands()) {
    EXPECT_TRUE(IsName(command.name)) << command.name;
    for (const embedded::RawParameter& parameter : command.parameters)
      EXPECT_TRUE(IsName(parameter.name)) << command.name << ' ' << parameter.name;
    for (const embedded::RawSymbol& symbol : command.symbols)
      EXPECT_TRUE(IsName(symbol.name)) << command.name << ' ' << symbol.name;
  }
}

TEST(EmbeddedDictionary, SaysOfEachCommandWhatItIsFor) {
  for (const RawCommand& command : RawCommands()) {
    EXPECT_EQ(command.documentedName, command.name);
    EXPECT_GE(command.documentation.size(), 3u) << command.name;
  }
}

TEST(EmbeddedDictionary, IsAsciiWithCarriageReturns) {
  for (std::size_t i = 0; i < kFiles.size(); ++i) {
    const std::string& text = RawFiles()[i].text;
    for (std::size_t at = 0; at < text.size(); ++at) {
      const char c = text[at];
      if (c == '\n')
        ASSERT_TRUE(at > 0 && text[at - 1] == '\r') << kFiles[i].name << " byte " << at;
      else if (c == '\r')
        ASSERT_TRUE(at + 1 < text.size() && text[at + 1] == '\n') << kFiles[i].name << " byte " << at;
      else
        ASSERT_TRUE(c == '\t' || (c >= ' ' && c <= '~')) << kFiles[i].name << " byte " << at;
    }
  }
}

TEST(EmbeddedDictionary, HasNothingBehindTheLastMarkButALineEndInOneFile) {
  std::vector<std::string> rests;
  for (const embedded::RawFile& file : RawFiles())
    rests.push_back(file.rest);
  std::sort(rests.begin(), rests.end());
  EXPECT_EQ(rests, (std::vector<std::string>{"", "", "", "", "", "\r\n"}));
}

TEST(EmbeddedDictionary, HasNoBlockNearTheLongest) {
  for (const embedded::RawFile& file : RawFiles()) {
    std::size_t at = 0;
    for (std::size_t end = 0; (end = file.text.find(';', at)) != std::string::npos; at = end + 1)
      EXPECT_LE(end - at, 6000u) << file.text.substr(at, 80);
  }
}

/// A command in the canonical form, with line feeds.
std::string Canonical(const RawCommand& command) {
  std::string text = "\n# TalcPath Dictionary generated ;\n" + command.name + "\n" + command.kind + "\n\n";
  if (command.kind == "Talc")
    text += "CommandTypeMajor\t" + command.major + "\nCommandTypeMinor\t" + command.minor + "\nFunction\t\t\t" +
            command.code + "\n";
  else
    text += "DiagOpcode\t" + command.code + "\n";
  for (const embedded::RawParameter& parameter : command.parameters)
    text += "\nDataName\t" + parameter.name + (parameter.isRequired ? "\tRD" : "") + "\nDataType\t" + parameter.type;
  for (const embedded::RawSymbol& symbol : command.symbols)
    text += "\nSymbol\t" + symbol.name + "\t" + symbol.value;
  text += "\n;\n\nDOCUMENTATION\t" + command.name + "\n";
  for (std::size_t i = 0; i < command.documentation.size(); ++i)
    text += command.documentation[i] + " " + ((i + 1) % 10 == 0 ? "\n" : "");
  return text + "\n;";
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);)
    lines.push_back(line);
  return lines;
}

TEST(EmbeddedDictionary, IsInCanonicalFormButForTwoSymbolsWithABlank) {
  int blanks = 0;
  for (std::size_t i = 0; i < kFiles.size(); ++i) {
    std::string expected = "# TalcPath Dictionary Generated TCD File ; \n";
    std::map<std::size_t, std::string> commandAtLine;
    for (const RawCommand& command : RawFiles()[i].commands) {
      commandAtLine[Lines(expected).size()] = command.name;
      expected += Canonical(command);
    }
    std::string text = RawFiles()[i].text;
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    EXPECT_EQ(text.size(), expected.size() + (RawFiles()[i].rest.empty() ? 0 : 1)) << kFiles[i].name;
    const std::vector<std::string> found = Lines(text);
    const std::vector<std::string> wanted = Lines(expected);
    ASSERT_EQ(found.size(), wanted.size()) << kFiles[i].name;
    for (std::size_t line = 0; line < found.size(); ++line) {
      if (found[line] == wanted[line]) continue;
      const auto command = std::prev(commandAtLine.upper_bound(line));
      EXPECT_EQ(command->second, "VideoOutputFormat") << found[line];
      std::string withBlank = wanted[line];
      withBlank[withBlank.rfind('\t')] = ' ';
      EXPECT_EQ(found[line], withBlank);
      EXPECT_TRUE(found[line].starts_with("Symbol\t"));
      ++blanks;
    }
  }
  EXPECT_EQ(blanks, 2);
}

}  // namespace
