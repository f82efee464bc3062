#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "dictionary/PacketLayout.h"
#include "DictionaryFixture.h"
#include "FormatProbe.h"

namespace {

using TalcPath::bad_variant_cast;
using TalcPath::TalcCommand;
using TalcPathPrivate::ComputePayloadSize;

class PayloadSize : public DictionaryTest {
 protected:
  PayloadSize() {
    format.parameters = {probe::Parameter("A", "UINT16", true), probe::Parameter("B", "UINT32"),
                         probe::Parameter("D", "BYTES")};
  }

  void SetBytes(std::size_t length) {
    const std::vector<std::uint8_t> bytes(length);
    command.SetBytes("D", bytes.data(), static_cast<std::uint32_t>(length));
  }

  probe::Talc format;
  TalcCommand command;
};

TEST_F(PayloadSize, SumsAllParametersOfASend) {
  SetBytes(5);
  EXPECT_EQ(ComputePayloadSize(command, &format), 11U);
  EXPECT_EQ(format.parameters[0].size, 2);
  EXPECT_FALSE(format.parameters[0].isVariableLength);
  EXPECT_EQ(format.parameters[2].size, 5);
  EXPECT_TRUE(format.parameters[2].isVariableLength);
}

TEST_F(PayloadSize, LeavesOnlySendOnlyBytesOutOfARequest) {
  SetBytes(5);
  command.SetRequestCommand();
  // A send-only value of fixed size counts all the same.
  EXPECT_EQ(ComputePayloadSize(command, &format), 6U);
  EXPECT_EQ(format.parameters[2].size, 5);
  format.parameters[2].isRequiredForRequestData = true;
  EXPECT_EQ(ComputePayloadSize(command, &format), 11U);
}

TEST_F(PayloadSize, HasNoLimit) {
  SetBytes(1'000'000);
  EXPECT_EQ(ComputePayloadSize(command, &format), 1'000'006U);
}

TEST_F(PayloadSize, IsTheSameForEveryKindOfFormat) {
  SetBytes(5);
  TalcPathPrivate::MetaCommandFormat meta;
  meta.Parameters() = format.parameters;
  EXPECT_EQ(ComputePayloadSize(command, &meta), 11U);
  probe::Diag diag;
  diag.parameters = format.parameters;
  EXPECT_EQ(ComputePayloadSize(command, &diag), 11U);
}

TEST_F(PayloadSize, CountsEmptyBytesAsNone) {
  SetBytes(0);
  EXPECT_EQ(ComputePayloadSize(command, &format), 6U);
  EXPECT_TRUE(format.parameters[2].isVariableLength);
}

TEST_F(PayloadSize, IsNothingWithoutAFormatOrParameters) {
  EXPECT_EQ(ComputePayloadSize(command, nullptr), 0U);
  format.parameters.clear();
  EXPECT_EQ(ComputePayloadSize(command, &format), 0U);
}

TEST_F(PayloadSize, IsNothingWithoutTheBytesAlsoWhereARequestLeavesThemOut) {
  EXPECT_EQ(ComputePayloadSize(command, &format), 0U);
  EXPECT_EQ(log(), "");
  SetVerbose(true);
  command.SetRequestCommand();
  EXPECT_EQ(ComputePayloadSize(command, &format), 0U);
  EXPECT_EQ(log(), "\nParameter Not Found error - param name : D");
}

TEST_F(PayloadSize, IsNothingForAnUnknownType) {
  SetBytes(5);
  format.parameters[1] = probe::Parameter("B", "uint32");
  EXPECT_EQ(ComputePayloadSize(command, &format), 0U);
  EXPECT_EQ(log(), "");
  SetVerbose(true);
  EXPECT_EQ(ComputePayloadSize(command, &format), 0U);
  EXPECT_EQ(log(), "\nParameter Size error - param name : B");
}

TEST_F(PayloadSize, ThrowsForBytesThatAreANumber) {
  command.SetUInt32("D", 5);
  EXPECT_THROW(ComputePayloadSize(command, &format), bad_variant_cast);
}

TEST_F(PayloadSize, ForgetsTheLayout) {
  SetBytes(5);
  TalcPathPrivate::PacketSizes sizes;
  ASSERT_EQ(TalcPathPrivate::ComputePacketLayout(&command, &format, sizes), 19);
  ComputePayloadSize(command, &format);
  for (const auto& parameter : format.parameters) {
    EXPECT_EQ(parameter.packetPosition.packetOffset, -1) << parameter.name;
    EXPECT_EQ(parameter.packetPosition.numBytes, -1) << parameter.name;
  }
}

}  // namespace
