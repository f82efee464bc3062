#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "dictionary/PacketLayout.h"
#include "DictionaryFixture.h"
#include "FormatProbe.h"

namespace {

using TalcPath::bad_variant_cast;
using TalcPath::TalcCommand;
using TalcPathPrivate::ComputePacketLayout;
using TalcPathPrivate::PacketSizes;
using TalcPathPrivate::ParameterFormat;
using TalcPathPrivate::TalcDataCommandFormat;

constexpr std::int32_t kFault = -1;
constexpr std::int32_t kTooMuch = -2;

std::string SizesOf(const PacketSizes& sizes) {
  return std::to_string(sizes.sendSize) + " " + std::to_string(sizes.sendPayloadSize) + " " +
         std::to_string(sizes.requestSize) + " " + std::to_string(sizes.requestPayloadSize);
}

/// "A 8+4" for each parameter, with a "v" behind those of variable length.
std::string PlacesOf(const TalcDataCommandFormat& format) {
  std::string text;
  for (const ParameterFormat& parameter : format.Parameters()) {
    text += (text.empty() ? "" : ", ") + parameter.name + " " + std::to_string(parameter.packetPosition.packetOffset) +
            "+" + std::to_string(parameter.packetPosition.numBytes) + (parameter.isVariableLength ? "v" : "");
    if (parameter.packetPosition.packetOffset >= 0) {
      EXPECT_EQ(parameter.size, parameter.packetPosition.numBytes);
    }
  }
  return text;
}

TalcCommand WithBytes(std::size_t length, bool isRequest = false) {
  TalcCommand command;
  if (isRequest) command.SetRequestCommand();
  const std::vector<std::uint8_t> bytes(length);
  command.SetBytes("D", bytes.data(), static_cast<std::uint32_t>(length));
  return command;
}

class PacketLayout : public DictionaryTest {
 protected:
  static constexpr PacketSizes kOld = {1, 2, 3, 4};

  probe::Talc format;
  probe::Diag diag;
  PacketSizes sizes = kOld;
};

TEST_F(PacketLayout, LargestPacketIs2048Bytes) {
  EXPECT_EQ(TalcPathPrivate::GetMaxPacketTotalSizeInBytes(), 2048U);
}

TEST_F(PacketLayout, SizesAreZeroAtFirst) {
  EXPECT_EQ(SizesOf(PacketSizes()), "0 0 0 0");
}

TEST_F(PacketLayout, NoFormatIsAFaultThatTouchesNothing) {
  EXPECT_EQ(ComputePacketLayout(nullptr, nullptr, sizes), kFault);
  EXPECT_EQ(SizesOf(sizes), "1 2 3 4");
}

TEST_F(PacketLayout, CommandWithoutParametersIsItsHeader) {
  TalcCommand request;
  request.SetRequestCommand();
  for (const TalcCommand* const command : {static_cast<const TalcCommand*>(nullptr), &std::as_const(request)}) {
    sizes = kOld;
    EXPECT_EQ(ComputePacketLayout(command, &format, sizes), 8);
    EXPECT_EQ(SizesOf(sizes), "8 0 8 0");
    sizes = kOld;
    EXPECT_EQ(ComputePacketLayout(command, &diag, sizes), 36);
    EXPECT_EQ(SizesOf(sizes), "36 0 36 0");
  }
}

TEST_F(PacketLayout, FixedTypesFollowEachOtherWithoutGaps) {
  for (const char* type : {"INT8", "UINT16", "INT32", "UINT64", "UINT8", "INT16", "UINT32", "INT64"})
    format.parameters.push_back(probe::Parameter(type, type, format.parameters.size() < 2));
  diag.parameters = format.parameters;

  EXPECT_EQ(ComputePacketLayout(nullptr, &format, sizes), 38);
  EXPECT_EQ(SizesOf(sizes), "38 30 11 3");
  EXPECT_EQ(PlacesOf(format),
            "INT8 8+1, UINT16 9+2, INT32 11+4, UINT64 15+8, UINT8 23+1, INT16 24+2, UINT32 26+4, INT64 30+8");

  EXPECT_EQ(ComputePacketLayout(nullptr, &diag, sizes), 66);
  EXPECT_EQ(SizesOf(sizes), "66 30 39 3");
  EXPECT_EQ(PlacesOf(diag),
            "INT8 36+1, UINT16 37+2, INT32 39+4, UINT64 43+8, UINT8 51+1, INT16 52+2, UINT32 54+4, INT64 58+8");
}

TEST_F(PacketLayout, GivesTheSizeOfTheCommandsDirection) {
  format.parameters = {probe::Parameter("A", "UINT16", true), probe::Parameter("B", "UINT32")};
  TalcCommand command;
  EXPECT_EQ(ComputePacketLayout(&command, &format, sizes), 14);
  EXPECT_EQ(SizesOf(sizes), "14 6 10 2");
  command.SetRequestCommand();
  EXPECT_EQ(ComputePacketLayout(&command, &format, sizes), 10);
  EXPECT_EQ(SizesOf(sizes), "14 6 10 2");
}

TEST_F(PacketLayout, RequestParameterBehindASendOnlyOneLiesBeyondTheRequest) {
  format.parameters = {probe::Parameter("A", "UINT32"), probe::Parameter("B", "UINT8", true)};
  TalcCommand request;
  request.SetRequestCommand();
  EXPECT_EQ(ComputePacketLayout(&request, &format, sizes), 9);
  EXPECT_EQ(SizesOf(sizes), "13 5 9 1");
  EXPECT_EQ(PlacesOf(format), "A 8+4, B 12+1");
}

TEST_F(PacketLayout, BytesTakeTheLengthOfTheirValue) {
  format.parameters = {probe::Parameter("A", "UINT16", true), probe::Parameter("D", "BYTES")};
  const TalcCommand five = WithBytes(5);
  EXPECT_EQ(ComputePacketLayout(&five, &format, sizes), 15);
  EXPECT_EQ(SizesOf(sizes), "15 7 10 2");
  EXPECT_EQ(PlacesOf(format), "A 8+2, D 10+5v");

  // The layout of the time before leaves no trace.
  const TalcCommand three = WithBytes(3);
  EXPECT_EQ(ComputePacketLayout(&three, &format, sizes), 13);
  EXPECT_EQ(PlacesOf(format), "A 8+2, D 10+3v");
}

TEST_F(PacketLayout, RequiredBytesTravelInARequestToo) {
  format.parameters = {probe::Parameter("A", "UINT16", true), probe::Parameter("D", "BYTES", true)};
  const TalcCommand request = WithBytes(5, true);
  EXPECT_EQ(ComputePacketLayout(&request, &format, sizes), 15);
  EXPECT_EQ(SizesOf(sizes), "15 7 15 7");
  EXPECT_EQ(PlacesOf(format), "A 8+2, D 10+5v");
}

TEST_F(PacketLayout, RequestDoesNotLookAtBytesThatItLeavesOut) {
  format.parameters = {probe::Parameter("A", "UINT16", true), probe::Parameter("D", "BYTES")};
  TalcCommand request;
  request.SetRequestCommand();
  EXPECT_EQ(ComputePacketLayout(&request, &format, sizes), 10);
  EXPECT_EQ(SizesOf(sizes), "10 2 10 2");
  EXPECT_EQ(PlacesOf(format), "A 8+2, D 10+0v");
  request.SetUInt8("D", 1);  // Not even at its kind.
  EXPECT_EQ(ComputePacketLayout(&request, &format, sizes), 10);
  const TalcCommand tooLong = WithBytes(5000, true);
  EXPECT_EQ(ComputePacketLayout(&tooLong, &format, sizes), 10);
}

TEST_F(PacketLayout, EmptyBytesPassAndHaveNoPlaceToWriteTo) {
  format.parameters = {probe::Parameter("A", "UINT16"), probe::Parameter("D", "BYTES")};
  const TalcCommand command = WithBytes(0);
  EXPECT_EQ(ComputePacketLayout(&command, &format, sizes), 10);
  EXPECT_EQ(SizesOf(sizes), "10 2 8 0");
  EXPECT_EQ(PlacesOf(format), "A 8+2, D 10+0v");
  EXPECT_TRUE(format.parameters[0].HasValidPacketInfo());
  EXPECT_FALSE(format.parameters[1].HasValidPacketInfo());
}

TEST_F(PacketLayout, BytesThatAreASymbolCountAsNoneYet) {
  format.parameters = {probe::Parameter("D", "BYTES", true)};
  TalcCommand command;
  command.SetSymbol("D", "On");
  EXPECT_EQ(ComputePacketLayout(&command, &format, sizes), 8);
  EXPECT_EQ(PlacesOf(format), "D 8+0v");
  command.SetRequestCommand();
  EXPECT_EQ(ComputePacketLayout(&command, &format, sizes), 8);
}

TEST_F(PacketLayout, BytesThatAreANumberThrow) {
  format.parameters = {probe::Parameter("D", "BYTES")};
  TalcCommand command;
  command.SetUInt8("D", 1);
  EXPECT_THROW(ComputePacketLayout(&command, &format, sizes), bad_variant_cast);
}

TEST_F(PacketLayout, MissingBytesAreAFault) {
  format.parameters = {probe::Parameter("A", "UINT16"), probe::Parameter("D", "BYTES")};
  const TalcCommand command;
  EXPECT_EQ(ComputePacketLayout(&command, &format, sizes), kFault);
  EXPECT_EQ(log(), "");
  SetVerbose(true);
  EXPECT_EQ(ComputePacketLayout(&command, &format, sizes), kFault);
  EXPECT_EQ(log(), "\nParameter Not Found error - param name : D");
}

TEST_F(PacketLayout, BytesWithoutACommandAreAFault) {
  format.parameters = {probe::Parameter("A", "UINT16"), probe::Parameter("D", "BYTES")};
  EXPECT_EQ(ComputePacketLayout(nullptr, &format, sizes), kFault);
  EXPECT_EQ(log(), "");
  SetVerbose(true);
  EXPECT_EQ(ComputePacketLayout(nullptr, &format, sizes), kFault);
  EXPECT_EQ(log(), "\nMust have Talc Command to compile in order to compute lengths for BYTES parameter : D");
}

TEST_F(PacketLayout, UnknownTypeIsAFault) {
  format.parameters = {probe::Parameter("A", "UINT16"), probe::Parameter("B", "int8")};
  EXPECT_EQ(ComputePacketLayout(nullptr, &format, sizes), kFault);
  EXPECT_EQ(log(), "");
  SetVerbose(true);
  const TalcCommand command;
  EXPECT_EQ(ComputePacketLayout(&command, &format, sizes), kFault);
  EXPECT_EQ(log(), "\nParameter Size error - param name : B");
}

TEST_F(PacketLayout, FaultLeavesTheStateThatItReached) {
  format.parameters = {probe::Parameter("A", "UINT16"), probe::Parameter("B", "int8"), probe::Parameter("C", "UINT32")};
  EXPECT_EQ(ComputePacketLayout(nullptr, &format, sizes), kFault);
  // What was known of the send is gone, what was known of the request is not.
  EXPECT_EQ(SizesOf(sizes), "0 0 3 4");
  EXPECT_EQ(PlacesOf(format), "A -1+-1, B -1+-1, C -1+0");
  EXPECT_EQ(format.parameters[0].size, 2);
  EXPECT_EQ(format.parameters[1].size, 0);
  EXPECT_EQ(format.parameters[2].size, -1);
}

TEST_F(PacketLayout, TooMuchDataIsToldWithoutAWord) {
  SetVerbose(true);
  SetTrace(true);
  format.parameters = {probe::Parameter("D", "BYTES")};
  const TalcCommand command = WithBytes(2041);
  EXPECT_EQ(ComputePacketLayout(&command, &format, sizes), kTooMuch);
  EXPECT_EQ(SizesOf(sizes), "0 0 3 4");
  EXPECT_EQ(PlacesOf(format), "D -1+-1v");
  EXPECT_EQ(format.parameters[0].size, 2041);
  EXPECT_EQ(log(), "");
}

TEST_F(PacketLayout, BytesReachUpToTheLimitOfTheKind) {
  struct Row {
    std::size_t length;
    std::int32_t talc;
    std::int32_t diag;
  };
  constexpr Row kRows[] = {
      {2000, 2010, 2038},         {2001, 2011, kTooMuch},     {2010, 2020, kTooMuch},        {2038, 2048, kTooMuch},
      {2039, kTooMuch, kTooMuch}, {2040, kTooMuch, kTooMuch}, {100'000, kTooMuch, kTooMuch},
  };
  format.parameters = {probe::Parameter("A", "UINT16"), probe::Parameter("D", "BYTES")};
  diag.parameters = format.parameters;
  for (const Row& row : kRows) {
    const TalcCommand command = WithBytes(row.length);
    EXPECT_EQ(ComputePacketLayout(&command, &format, sizes), row.talc) << row.length;
    EXPECT_EQ(ComputePacketLayout(&command, &diag, sizes), row.diag) << row.length;
  }
}

/// A definition with that many bytes of fixed values.
std::string FixedDefinition(const std::string& begin, int bytes) {
  std::string text = begin;
  for (int i = 0; i < bytes / 8; ++i)
    text += "DataName A" + std::to_string(i) + " DataType UINT64\n";
  for (int i = 0; i < bytes % 8; ++i)
    text += "DataName B" + std::to_string(i) + " DataType UINT8\n";
  return text + ";";
}

TEST_F(PacketLayout, FixedCommandLoadsUpToTheLimitOfItsKind) {
  const std::string talc = "Big Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 1\n";
  const std::string diagnostic = "BigDiag Diag DiagOpcode 1\n";
  ASSERT_TRUE(Parse(FixedDefinition(talc, 2040)));
  ASSERT_TRUE(Parse(FixedDefinition(diagnostic, 2002)));
  ASSERT_NE(Find("Big"), nullptr);
  ASSERT_NE(Find("BigDiag"), nullptr);
  EXPECT_EQ(SizesOf(dynamic_cast<TalcDataCommandFormat&>(*Find("Big")).GetPacketSizes()), "2048 2040 8 0");
  EXPECT_EQ(SizesOf(dynamic_cast<TalcDataCommandFormat&>(*Find("BigDiag")).GetPacketSizes()), "2038 2002 36 0");
}

TEST_F(PacketLayout, FixedCommandBeyondTheLimitOfItsKindDoesNotLoad) {
  struct Row {
    const char* name;
    const char* begin;
    int bytes;
  };
  // The diagnostic packet would be no longer than 2039 bytes.
  constexpr Row kRows[] = {{"Big", "Big Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 1\n", 2041},
                           {"BigDiag", "BigDiag Diag DiagOpcode 1\n", 2003}};
  for (const Row& row : kRows) {
    ClearLog();
    EXPECT_FALSE(Parse(FixedDefinition(row.begin, row.bytes)));
    EXPECT_EQ(Find(row.name), nullptr);
    EXPECT_NE(log().find(std::string("ERROR - Talc Command Definition : ") + row.name + " FAILED Precomputation Stage"),
              std::string::npos)
        << log();
  }
}

TEST_F(PacketLayout, TellsTheOffsetsOfFixedParameters) {
  ASSERT_TRUE(
      Parse("Foo Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 1\n"
            "DataName A RD DataType UINT16\nDataName B DataType UINT32\n;"));
  const auto& foo = dynamic_cast<TalcDataCommandFormat&>(*Find("Foo"));
  std::int32_t offset = 90;
  EXPECT_TRUE(foo.GetParameterOffset("A", &offset));
  EXPECT_EQ(offset, 8);
  EXPECT_TRUE(foo.GetParameterOffset("B", &offset));
  EXPECT_EQ(offset, 10);
  EXPECT_FALSE(foo.GetParameterOffset("C", &offset));
  EXPECT_EQ(offset, -1);
  offset = 90;
  EXPECT_FALSE(foo.GetParameterOffset(nullptr, &offset));
  EXPECT_EQ(offset, 90);
  EXPECT_FALSE(foo.GetParameterOffset("A", nullptr));
}

TEST_F(PacketLayout, HasNoOffsetForAParameterOfVariableLength) {
  format.parameters = {probe::Parameter("A", "UINT16"), probe::Parameter("D", "BYTES")};
  const TalcCommand command = WithBytes(5);
  std::int32_t offset = 90;
  // Before its first layout it is not known to be variable.
  EXPECT_TRUE(format.GetParameterOffset("D", &offset));
  EXPECT_EQ(offset, -1);
  ASSERT_EQ(ComputePacketLayout(&command, &format, sizes), 15);
  EXPECT_FALSE(format.GetParameterOffset("D", &offset));
  EXPECT_EQ(offset, -1);
  EXPECT_TRUE(format.GetParameterOffset("A", &offset));
  EXPECT_EQ(offset, 8);
}

}  // namespace
