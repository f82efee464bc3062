#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DictionaryFixture.h"
#include "FormatProbe.h"

namespace {

using TalcPathPrivate::CommandFormat;
using TalcPathPrivate::CommandType;
using TalcPathPrivate::MetaCommandFormat;
using TalcPathPrivate::TalcDataCommandFormat;

const std::string kParameterA = "\n\tParameter: A Type: UINT8 IsRequiredForRequestData: true";
const std::string kParameterB = "\n\tParameter: B Type: BYTES IsRequiredForRequestData: false";
const std::string kNoLayout =
    "\n\t\tPacket Offset: -1\n\t\tNum Bytes For Packet Position: 0\n\t\tSize: -1\n\t\tVariable Length: false";
const std::string kSizes =
    "\nHasVariableLengthData: true\nPacket Info:  Send Size: 11 Send Payload Size: 3"
    "\n\tRequest Size: 9 Request Payload Size: 1";

template <typename Format>
void Fill(Format& format) {
  format.name = "Foo";
  format.parameters = {probe::Parameter("A", "UINT8", true), probe::Parameter("B", "BYTES")};
  format.symbols = {{"On", 1}};
  format.documentation = "not shown ";
  format.hasVariableLengthData = true;
  format.packetSizes = {.sendSize = 11, .sendPayloadSize = 3, .requestSize = 9, .requestPayloadSize = 1};
}

TEST(FormatDump, ShowsAnOrdinaryCommand) {
  probe::Talc format;
  Fill(format);
  format.commandType = {.major = CommandType::Major::SYSTEM, .minor = 5, .function = 26};
  const std::string head =
      "\n\nBEGIN - Talc Command Format\nName: Foo\nType Major: SYSTEM\nType Minor: 5\nFunction: 26\nParams {";
  const std::string tail = "\n       }" + kSizes + "\nEND   - Talc Command Format";
  EXPECT_EQ(probe::Dumped(format, true), head + kParameterA + kParameterB + tail);
  EXPECT_EQ(probe::Dumped(format, false), head + kParameterA + kNoLayout + kParameterB + kNoLayout + tail);
}

TEST(FormatDump, ShowsEachMajorType) {
  const std::vector<std::string> words = {"VIDEO", "AUDIO", "SYSTEM", "DIAGNOSTIC", "*INVALID*"};
  for (std::size_t i = 0; i < words.size(); ++i) {
    probe::Talc format;
    format.commandType.major = static_cast<CommandType::Major>(i);
    EXPECT_EQ(probe::Dumped(format, true),
              "\n\nBEGIN - Talc Command Format\nName: \nType Major: " + words[i] +
                  "\nType Minor: -1\nFunction: -1\nParams {\n       }\nHasVariableLengthData: false\nPacket Info: "
                  " Send Size: 0 Send Payload Size: 0\n\tRequest Size: 0 Request Payload Size: 0"
                  "\nEND   - Talc Command Format");
  }
}

TEST(FormatDump, ShowsADiagnosticCommand) {
  probe::Diag format;
  Fill(format);
  format.diagOpcode = 132;
  // The blank before the colon is the opcode's alone.
  const std::string head = "\n\nBEGIN - Talc Diagnostic Command Format\nDiagOpcode : 132\nName: Foo\nParams {";
  const std::string tail = "\n       }" + kSizes + "\nEND   - Talc Diagnostic Command Format";
  EXPECT_EQ(probe::Dumped(format, true), head + kParameterA + kParameterB + tail);
  EXPECT_EQ(probe::Dumped(format, false), head + kParameterA + kNoLayout + kParameterB + kNoLayout + tail);
}

TEST(FormatDump, ShowsAMetaCommand) {
  MetaCommandFormat format;
  probe::Read(format, "Baz",
              "Start A Repeat B Stop C DataName A RD DataType UINT8 DataName B DataType BYTES Symbol On 1 ");
  const std::string head = "\n\nBEGIN - Meta Command Format\nName: Baz\nStart: A\nRepeat: B\nStop: C\nParams {";
  const std::string tail = "\n       }\nEND   - Meta Command Format";
  EXPECT_EQ(probe::Dumped(format, true), head + kParameterA + kParameterB + tail);
  EXPECT_EQ(probe::Dumped(format, false), head + kParameterA + kNoLayout + kParameterB + kNoLayout + tail);
}

TEST(FormatDump, ShowsThePartThatCommandsWithAPacketShare) {
  probe::Talc format;
  Fill(format);
  std::ostringstream stream;
  format.TalcDataCommandFormat::Dump(stream, true);
  EXPECT_EQ(stream.str(), "\nName: Foo\nParams {" + kParameterA + kParameterB + "\n       }" + kSizes);
}

TEST(FormatDump, ShowsTheParametersAloneAtTheRoot) {
  probe::Talc format;
  Fill(format);
  std::ostringstream stream;
  format.CommandFormat::Dump(stream, false);
  EXPECT_EQ(stream.str(), kParameterA + kNoLayout + kParameterB + kNoLayout);
}

TEST(FormatDump, ShowsDecimalNumbersInAnyStream) {
  probe::Diag format;
  Fill(format);
  format.diagOpcode = 255;
  std::ostringstream stream;
  stream << std::hex << std::showbase << std::showpos;
  const auto flags = stream.flags();
  format.Dump(stream, true);
  EXPECT_EQ(stream.str(), "\n\nBEGIN - Talc Diagnostic Command Format\nDiagOpcode : 255\nName: Foo\nParams {" +
                              kParameterA + kParameterB + "\n       }" + kSizes +
                              "\nEND   - Talc Diagnostic Command Format");
  EXPECT_EQ(stream.flags(), flags);
}

}  // namespace
