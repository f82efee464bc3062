#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>

#include "dictionary/ParameterFormat.h"
#include "FormatProbe.h"

namespace {

using TalcPathPrivate::ErrorList;
using TalcPathPrivate::IsValidName;
using TalcPathPrivate::ParameterFormat;

void ExpectFresh(const ParameterFormat& parameter) {
  EXPECT_EQ(parameter.size, -1);
  EXPECT_FALSE(parameter.isVariableLength);
  EXPECT_EQ(parameter.packetPosition.packetOffset, -1);
  EXPECT_EQ(parameter.packetPosition.numBytes, 0);
}

TEST(ParameterFormatTest, HasNothingAtFirst) {
  const ParameterFormat parameter;
  EXPECT_EQ(parameter.name, "");
  EXPECT_EQ(parameter.dataType.Word(), "");
  EXPECT_FALSE(parameter.isRequiredForRequestData);
  ExpectFresh(parameter);
}

TEST(ParameterFormatTest, TakesNameTypeAndMark) {
  const ParameterFormat parameter = probe::Parameter("Level", "UINT16", true);
  EXPECT_EQ(parameter.name, "Level");
  EXPECT_EQ(parameter.dataType.Word(), "UINT16");
  EXPECT_TRUE(parameter.isRequiredForRequestData);
  ExpectFresh(parameter);
  EXPECT_FALSE(probe::Parameter("Level", "UINT16").isRequiredForRequestData);
}

TEST(ParameterFormatTest, ResetDiffersFromFresh) {
  ParameterFormat parameter = probe::Parameter("Level", "BYTES", true);
  parameter.size = 5;
  parameter.isVariableLength = true;
  parameter.packetPosition = {.packetOffset = 8, .numBytes = 5};
  parameter.Reset();
  EXPECT_EQ(parameter.size, 0);
  EXPECT_FALSE(parameter.isVariableLength);
  EXPECT_EQ(parameter.packetPosition.packetOffset, -1);
  EXPECT_EQ(parameter.packetPosition.numBytes, -1);
  EXPECT_EQ(parameter.name, "Level");
  EXPECT_EQ(parameter.dataType.Word(), "BYTES");
  EXPECT_TRUE(parameter.isRequiredForRequestData);
}

void ExpectLaidOut(const ParameterFormat& parameter) {
  EXPECT_EQ(parameter.name, "Level");
  EXPECT_EQ(parameter.dataType.Word(), "BYTES");
  EXPECT_EQ(parameter.GetSizeFromType(), -1);
  EXPECT_TRUE(parameter.isRequiredForRequestData);
  EXPECT_EQ(parameter.size, 5);
  EXPECT_TRUE(parameter.isVariableLength);
  EXPECT_EQ(parameter.packetPosition.packetOffset, 12);
  EXPECT_EQ(parameter.packetPosition.numBytes, 6);
}

TEST(ParameterFormatTest, CopiesAndAssignsEveryField) {
  ParameterFormat parameter = probe::Parameter("Level", "BYTES", true);
  parameter.size = 5;
  parameter.isVariableLength = true;
  parameter.packetPosition = {.packetOffset = 12, .numBytes = 6};
  const ParameterFormat copy(parameter);
  ExpectLaidOut(copy);
  ParameterFormat assigned = probe::Parameter("Other", "INT8");
  assigned = parameter;
  ExpectLaidOut(assigned);
  const ParameterFormat& same = parameter;
  parameter = same;
  ExpectLaidOut(parameter);
}

TEST(ParameterFormatTest, TakesItsSizeFromItsTypeWord) {
  EXPECT_EQ(probe::Parameter("A", "UINT8").GetSizeFromType(), 1);
  EXPECT_EQ(probe::Parameter("A", "INT16").GetSizeFromType(), 2);
  EXPECT_EQ(probe::Parameter("A", "UINT32").GetSizeFromType(), 4);
  EXPECT_EQ(probe::Parameter("A", "INT64").GetSizeFromType(), 8);
  EXPECT_EQ(probe::Parameter("A", "BYTES").GetSizeFromType(), -1);
  EXPECT_EQ(probe::Parameter("A", "int8").GetSizeFromType(), 0);
  EXPECT_TRUE(probe::Parameter("A", "UINT8").IsValidDataType());
  EXPECT_TRUE(probe::Parameter("A", "BYTES").IsValidDataType());
  EXPECT_FALSE(probe::Parameter("A", "int8").IsValidDataType());
  EXPECT_FALSE(probe::Parameter("A", "SYMBOL").IsValidDataType());
  EXPECT_FALSE(ParameterFormat().IsValidDataType());
}

TEST(ParameterFormatTest, HasAPlaceOnlyWithOffsetBytesAndSize) {
  struct Row {
    std::int32_t offset;
    std::int32_t numBytes;
    std::int32_t size;
    bool isValid;
  };
  constexpr Row kRows[] = {{8, 1, 1, true},  {0, 1, 1, true},   {8, 4, 2, true},  {-1, 1, 1, false},
                           {8, 0, 1, false}, {8, -1, 1, false}, {8, 1, 0, false}, {8, 1, -1, false}};
  for (const Row& row : kRows) {
    ParameterFormat parameter = probe::Parameter("A", "UINT8");
    parameter.packetPosition = {.packetOffset = row.offset, .numBytes = row.numBytes};
    parameter.size = row.size;
    EXPECT_EQ(parameter.HasValidPacketInfo(), row.isValid) << row.offset << ' ' << row.numBytes << ' ' << row.size;
  }
  EXPECT_FALSE(ParameterFormat().HasValidPacketInfo());
}

TEST(ParameterFormatTest, NameIsOfLettersDigitsAndUnderscores) {
  const std::string allowed = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";
  EXPECT_TRUE(IsValidName(allowed));
  for (int code = 0; code < 256; ++code) {
    const char c = static_cast<char>(code);
    const bool isAllowed = allowed.find(c) != std::string::npos;
    EXPECT_EQ(IsValidName(std::string(1, c)), isAllowed) << code;
    EXPECT_EQ(IsValidName(std::string("Na") + c), isAllowed) << code;
    EXPECT_EQ(IsValidName(c + std::string("me")), isAllowed) << code;
  }
}

TEST(ParameterFormatTest, EmptyNameCountsAsOfValidCharacters) {
  EXPECT_TRUE(IsValidName(""));
}

TEST(ParameterFormatTest, ValidateTellsEveryFault) {
  struct Row {
    const char* name;
    const char* type;
    ErrorList errors;
  };
  const Row rows[] = {
      {"Level_1", "UINT8", {}},
      {"1", "BYTES", {}},
      {"", "UINT8", {"DataName is empty"}},
      {"a-b", "UINT8", {"DataName is an invalid string"}},
      {"Level", "int8", {"DataType is not valid"}},
      {"Level", "SYMBOL", {"DataType is not valid"}},
      {"Level", "", {"DataType is not valid"}},
      {"", "", {"DataName is empty", "DataType is not valid"}},
      {"a b", "FLOAT", {"DataName is an invalid string", "DataType is not valid"}},
  };
  for (const Row& row : rows) {
    ErrorList errors;
    EXPECT_EQ(probe::Parameter(row.name, row.type).Validate(errors), row.errors.empty()) << row.name << row.type;
    EXPECT_EQ(errors, row.errors) << row.name << row.type;
  }
}

TEST(ParameterFormatTest, ValidateAppendsToWhatTheListHolds) {
  ErrorList errors = {"Earlier"};
  EXPECT_TRUE(probe::Parameter("Level", "UINT8").Validate(errors));
  EXPECT_EQ(errors, ErrorList{"Earlier"});
  EXPECT_FALSE(probe::Parameter("", "UINT8").Validate(errors));
  EXPECT_EQ(errors, (ErrorList{"Earlier", "DataName is empty"}));
}

TEST(ParameterFormatTest, DumpsBrieflyOrWithItsPlace) {
  ParameterFormat parameter = probe::Parameter("Level", "UINT16", true);
  std::ostringstream brief;
  parameter.Dump(brief, true);
  EXPECT_EQ(brief.str(), "\n\tParameter: Level Type: UINT16 IsRequiredForRequestData: true");

  std::ostringstream fresh;
  parameter.Dump(fresh, false);
  EXPECT_EQ(fresh.str(),
            "\n\tParameter: Level Type: UINT16 IsRequiredForRequestData: true"
            "\n\t\tPacket Offset: -1\n\t\tNum Bytes For Packet Position: 0\n\t\tSize: -1\n\t\tVariable Length: false");

  parameter = probe::Parameter("Data", "BYTES");
  parameter.size = 1970;
  parameter.isVariableLength = true;
  parameter.packetPosition = {.packetOffset = 16, .numBytes = 1971};
  std::ostringstream full;
  parameter.Dump(full, false);
  EXPECT_EQ(full.str(),
            "\n\tParameter: Data Type: BYTES IsRequiredForRequestData: false"
            "\n\t\tPacket Offset: 16\n\t\tNum Bytes For Packet Position: 1971\n\t\tSize: 1970"
            "\n\t\tVariable Length: true");

  parameter.Reset();
  std::ostringstream reset;
  parameter.Dump(reset, false);
  EXPECT_EQ(reset.str(),
            "\n\tParameter: Data Type: BYTES IsRequiredForRequestData: false"
            "\n\t\tPacket Offset: -1\n\t\tNum Bytes For Packet Position: -1\n\t\tSize: 0\n\t\tVariable Length: false");
}

TEST(ParameterFormatTest, DumpLeavesTheStreamsFormatAsItWas) {
  for (const bool words : {false, true}) {
    std::ostringstream stream;
    stream << std::hex << std::showbase << (words ? std::boolalpha : std::noboolalpha);
    const std::ios::fmtflags before = stream.flags();
    probe::Parameter("Level", "UINT16", true).Dump(stream, false);
    EXPECT_EQ(stream.flags(), before);
    EXPECT_NE(stream.str().find(" IsRequiredForRequestData: true"), std::string::npos);
    EXPECT_NE(stream.str().find("Variable Length: false"), std::string::npos);
  }
}

TEST(ParameterFormatTest, WritesItsDefinition) {
  std::ostringstream stream;
  probe::Parameter("Board", "UINT16", true).WriteDefinition(stream);
  probe::Parameter("Data", "BYTES").WriteDefinition(stream);
  EXPECT_EQ(stream.str(), "\nDataName\tBoard\tRD\nDataType\tUINT16\nDataName\tData\nDataType\tBYTES");
}

}  // namespace
