// What talctool tells of definitions: check, validate, write, dump.

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

#include "TalctoolFixture.h"

namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

class TalctoolDefinitions : public Talctool {};

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);)
    lines.push_back(line);
  return lines;
}

TEST_F(TalctoolDefinitions, ChecksEveryKindOfCommand) {
  EXPECT_EQ(OfSmall("check"),
            R"({"file":"small.tcd","ok":true})"
            "\n"
            R"({"function":127,"kind":"Talc","major":"DIAGNOSTIC","minor":63,"name":"Blob","opcode":null,)"
            R"("parameters":[["Kind","INT8",true],["Data","BYTES",false]],"repeat":null,"sizes":[0,0,0,0],)"
            R"("start":null,"stop":null,"symbols":[],"variable":true})"
            "\n"
            R"({"function":5,"kind":"Talc","major":"AUDIO","minor":3,"name":"Gain","opcode":null,)"
            R"("parameters":[["Channel","UINT8",true],["Level","INT16",false]],"repeat":null,"sizes":[11,3,9,1],)"
            R"("start":null,"stop":null,"symbols":[["Loud",300],["Quiet",-300]],"variable":false})"
            "\n"
            R"({"function":null,"kind":"Meta","major":null,"minor":null,"name":"Load","opcode":null,)"
            R"("parameters":[["Target","UINT8",false],["Image","BYTES",false]],"repeat":"LoadData","sizes":null,)"
            R"("start":"LoadStart","stop":"LoadStop","symbols":[],"variable":false})"
            "\n"
            R"({"function":0,"kind":"Talc","major":"VIDEO","minor":0,"name":"Ping","opcode":null,)"
            R"("parameters":[],"repeat":null,"sizes":[8,0,8,0],"start":null,"stop":null,"symbols":[],"variable":false})"
            "\n"
            R"({"function":null,"kind":"Diag","major":null,"minor":null,"name":"Probe","opcode":200,)"
            R"("parameters":[["Wide","UINT64",false]],"repeat":null,"sizes":[44,8,36,0],)"
            R"("start":null,"stop":null,"symbols":[],"variable":false})"
            "\n");
}

TEST_F(TalctoolDefinitions, ChecksTheNextFileBehindAFaultyOne) {
  folder_.Write("bad.tcd", "Bad Diag DiagOpcode 256\n;");
  const auto run = Run({"check", "--tcd", "bad.tcd", "small.tcd"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.standardOutput, "{\"file\":\"bad.tcd\",\"ok\":false}\n" + OfSmall("check"));
}

TEST_F(TalctoolDefinitions, ChecksAFileWithoutAnyGoodDefinition) {
  folder_.Write("bad.tcd", "Bad Diag DiagOpcode 256\n;");
  const auto run = Run({"check", "--tcd", "bad.tcd"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.standardOutput, "{\"file\":\"bad.tcd\",\"ok\":false}\n");
}

TEST_F(TalctoolDefinitions, NamesAFileAsItWasNamed) {
  folder_.Write("deep/p\xE9.tcd", "One Diag DiagOpcode 1\n;");
  EXPECT_THAT(Output({"check", "--tcd", "deep/../deep/p\xE9.tcd"}),
              StartsWith("{\"file\":\"deep/../deep/p\\u00e9.tcd\",\"ok\":true}\n"));
}

TEST_F(TalctoolDefinitions, WritesBytesAsEscapedLatin1) {
  folder_.Write("odd.tcd",
                "\xC4\"\\\x7F Talc CommandTypeMajor SYSTEM CommandTypeMinor 1 Function 1\n"
                "DataName \xFF\x80 DataType UINT8\nSymbol \0\x01 -2147483648\n;"s);
  const auto run = Run({"check", "--tcd", "odd.tcd"});
  EXPECT_EQ(run.standardOutput,
            R"({"file":"odd.tcd","ok":true})"
            "\n"
            R"({"function":1,"kind":"Talc","major":"SYSTEM","minor":1,"name":"\u00c4\"\\\u007f","opcode":null,)"
            R"("parameters":[["\u00ff\u0080","UINT8",false]],"repeat":null,"sizes":[9,1,8,0],"start":null,)"
            R"("stop":null,"symbols":[["\u0000\u0001",-2147483648]],"variable":false})"
            "\n");
}

TEST_F(TalctoolDefinitions, ChecksTheEmbeddedDictionaries) {
  const auto lines = LinesOf(Output({"check"}));
  ASSERT_THAT(lines, SizeIs(6 + 163));
  EXPECT_THAT(std::vector(lines.begin(), lines.begin() + 6),
              ElementsAre(R"({"file":"IDR_RT_TCDFILE_1","ok":true})", R"({"file":"IDR_RT_TCDFILE_2","ok":true})",
                          R"({"file":"IDR_RT_TCDFILE_3","ok":true})", R"({"file":"IDR_RT_TCDFILE_4","ok":true})",
                          R"({"file":"IDR_RT_TCDFILE_5","ok":true})", R"({"file":"IDR_RT_TCDFILE_6","ok":true})"));
  std::vector<std::string> names;
  for (auto line = lines.begin() + 6; line != lines.end(); ++line)
    names.push_back(nlohmann::json::parse(*line)["name"]);
  EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
  EXPECT_THAT(lines, testing::Contains(
                         StartsWith(R"({"function":1,"kind":"Talc","major":"SYSTEM","minor":0,"name":"HWConfigFB")")));
}

TEST_F(TalctoolDefinitions, WritesDefinitionsThatAreReadBackTheSame) {
  std::vector<std::string> files = {"--tcd"};
  for (int n = 1; n <= 6; ++n)
    files.push_back(TALCTOOL_DATA "/IDR_RT_TCDFILE_" + std::to_string(n) + ".tcd");
  files.insert(files.begin(), "write");
  const std::string written = Output(files);
  EXPECT_EQ(written, Output({"write"}));
  folder_.Write("written.tcd", written);

  const auto again = LinesOf(Output({"check", "--tcd", "written.tcd"}));
  const auto embedded = LinesOf(Output({"check"}));
  ASSERT_THAT(again, SizeIs(1 + 163));
  EXPECT_EQ(std::vector(again.begin() + 1, again.end()), std::vector(embedded.begin() + 6, embedded.end()));
  EXPECT_EQ(Output({"write", "--tcd", "written.tcd"}), written);
}

TEST_F(TalctoolDefinitions, WritesEveryKindOfDefinition) {
  EXPECT_EQ(OfSmall("write"),
            "\n# TalcPath Dictionary generated ;\nBlob\nTalc\n"
            "\nCommandTypeMajor\tDIAGNOSTIC\nCommandTypeMinor\t63\nFunction\t\t\t127\n"
            "\nDataName\tKind\tRD\nDataType\tINT8\nDataName\tData\nDataType\tBYTES\n;"
            "\n# TalcPath Dictionary generated ;\nGain\nTalc\n"
            "\nCommandTypeMajor\tAUDIO\nCommandTypeMinor\t3\nFunction\t\t\t5\n"
            "\nDataName\tChannel\tRD\nDataType\tUINT8\nDataName\tLevel\nDataType\tINT16"
            "\nSymbol\tLoud\t300\nSymbol\tQuiet\t-300\n;"
            "\n# TalcPath Dictionary generated ;\nLoad\nMeta\n"
            "\nStart\tLoadStart\nRepeat\tLoadData\nStop\tLoadStop\n"
            "\nDataName\tTarget\nDataType\tUINT8\nDataName\tImage\nDataType\tBYTES\n;"
            "\n# TalcPath Dictionary generated ;\nPing\nTalc\n"
            "\nCommandTypeMajor\tVIDEO\nCommandTypeMinor\t0\nFunction\t\t\t0\n\n;"
            "\n# TalcPath Dictionary generated ;\nProbe\nDiag\n"
            "\nDiagOpcode\t200\n"
            "\nDataName\tWide\nDataType\tUINT64\n;");
}

TEST_F(TalctoolDefinitions, DumpsEveryKindOfDefinitionInFull) {
  folder_.Write("two.tcd",
                "Probe Diag DiagOpcode 200\nDataName Wide DataType UINT64\n;"
                "Load Meta Start A Repeat B Stop C\nDataName Data DataType BYTES\n;");
  EXPECT_EQ(Output({"dump", "--tcd", "two.tcd"}),
            "\n\nBEGIN - Meta Command Format\nName: Load\nStart: A\nRepeat: B\nStop: C\nParams {"
            "\n\tParameter: Data Type: BYTES IsRequiredForRequestData: false"
            "\n\t\tPacket Offset: -1\n\t\tNum Bytes For Packet Position: 0\n\t\tSize: -1\n\t\tVariable Length: false"
            "\n       }\nEND   - Meta Command Format"
            "\n\nBEGIN - Talc Diagnostic Command Format\nDiagOpcode : 200\nName: Probe\nParams {"
            "\n\tParameter: Wide Type: UINT64 IsRequiredForRequestData: false"
            "\n\t\tPacket Offset: 36\n\t\tNum Bytes For Packet Position: 8\n\t\tSize: 8\n\t\tVariable Length: false"
            "\n       }\nHasVariableLengthData: false\nPacket Info:  Send Size: 44 Send Payload Size: 8"
            "\n\tRequest Size: 36 Request Payload Size: 0\nEND   - Talc Diagnostic Command Format");
  EXPECT_THAT(Output({"dump"}), HasSubstr("\n\nBEGIN - Talc Command Format\nName: VPDInfo\nType Major: SYSTEM"));
}

TEST_F(TalctoolDefinitions, FindsNothingWrongWithTheEmbeddedDefinitions) {
  const auto lines = LinesOf(Output({"validate"}));
  ASSERT_THAT(lines, SizeIs(163));
  for (const std::string& line : lines)
    EXPECT_THAT(line, StartsWith("{\"errors\":[],\"name\":\""));
}

TEST_F(TalctoolDefinitions, TellsEveryFaultThatTheReaderLetsPass) {
  folder_.Write("odd.tcd",
                "a-b Talc CommandTypeMajor SYSTEM CommandTypeMinor 1 Function 1\n"
                "DataName x! DataType UINT8\nDataName y RD DataType UINT8\nSymbol s? 1\n;\n"
                "c Meta Start ! Repeat B Stop C. ;");
  EXPECT_EQ(Output({"validate", "--tcd", "odd.tcd"}),
            R"({"errors":["Command Name is invalid","DataName is an invalid string",)"
            R"("Required For RequestData ERROR - all RD must come first in the command","Symbol name is invalid"],)"
            R"("name":"a-b"})"
            "\n"
            R"({"errors":["StartCommand name is invalid","StopCommand name is invalid"],"name":"c"})"
            "\n");
}

}  // namespace
