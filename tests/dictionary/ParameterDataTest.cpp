#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "CommandValues.h"
#include "dictionary/ParameterFormat.h"
#include "DictionaryFixture.h"
#include "FormatProbe.h"

namespace {

using TalcPath::bad_variant_cast;
using TalcPath::TalcCommand;
using TalcPathPrivate::Bytes;
using TalcPathPrivate::ParameterFormat;
using test_support::BytesOf;
using test_support::Held;
using test_support::NamesOf;

class ParameterData : public DictionaryTest {};

/// A value and how it travels.
struct Row {
  const char* type;
  std::function<void(TalcCommand&)> set;
  std::function<bool(const TalcCommand&)> isSet;
  Bytes wire;
};

template <typename T>
Row Integer(const char* type, void (TalcCommand::*set)(std::string_view, T), T value, Bytes wire) {
  return {type, [=](TalcCommand& command) { (command.*set)("X", value); },
          [=](const TalcCommand& command) { return Held<T>(command, "X") == value; }, std::move(wire)};
}

Row Raw(const Bytes& bytes) {
  return {"BYTES",
          [=](TalcCommand& command) { command.SetBytes("X", bytes.data(), static_cast<std::uint32_t>(bytes.size())); },
          [=](const TalcCommand& command) { return Held<Bytes>(command, "X") == bytes; }, bytes};
}

const std::vector<Row>& Rows() {
  using C = TalcCommand;
  static const std::vector<Row> rows = {
      Integer<std::int8_t>("INT8", &C::SetInt8, 0, {0x00}),
      Integer<std::int8_t>("INT8", &C::SetInt8, 127, {0x7F}),
      Integer<std::int8_t>("INT8", &C::SetInt8, -1, {0xFF}),
      Integer<std::int8_t>("INT8", &C::SetInt8, -128, {0x80}),
      Integer<std::uint8_t>("UINT8", &C::SetUInt8, 1, {0x01}),
      Integer<std::uint8_t>("UINT8", &C::SetUInt8, 128, {0x80}),
      Integer<std::uint8_t>("UINT8", &C::SetUInt8, 255, {0xFF}),
      Integer<std::int16_t>("INT16", &C::SetInt16, 258, {0x01, 0x02}),
      Integer<std::int16_t>("INT16", &C::SetInt16, -2, {0xFF, 0xFE}),
      Integer<std::int16_t>("INT16", &C::SetInt16, -32768, {0x80, 0x00}),
      Integer<std::uint16_t>("UINT16", &C::SetUInt16, 200, {0x00, 0xC8}),
      Integer<std::uint16_t>("UINT16", &C::SetUInt16, 0xFEDC, {0xFE, 0xDC}),
      Integer<std::int32_t>("INT32", &C::SetInt32, 0x01020304, {0x01, 0x02, 0x03, 0x04}),
      Integer<std::int32_t>("INT32", &C::SetInt32, -2, {0xFF, 0xFF, 0xFF, 0xFE}),
      Integer<std::int32_t>("INT32", &C::SetInt32, INT32_MIN, {0x80, 0x00, 0x00, 0x00}),
      Integer<std::uint32_t>("UINT32", &C::SetUInt32, 258, {0x00, 0x00, 0x01, 0x02}),
      Integer<std::uint32_t>("UINT32", &C::SetUInt32, 0xFEDCBA98, {0xFE, 0xDC, 0xBA, 0x98}),
      Integer<std::int64_t>("INT64", &C::SetInt64, 0x0102030405060708,
                            {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08}),
      Integer<std::int64_t>("INT64", &C::SetInt64, -2, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE}),
      Integer<std::int64_t>("INT64", &C::SetInt64, INT64_MIN, {0x80, 0, 0, 0, 0, 0, 0, 0}),
      Integer<std::uint64_t>("UINT64", &C::SetUInt64, 4294967298, {0, 0, 0, 0x01, 0, 0, 0, 0x02}),
      Integer<std::uint64_t>("UINT64", &C::SetUInt64, 0xFEDCBA9876543210,
                             {0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10}),
      Raw({0x00}),
      Raw({0x01, 0x00, 0xFF, ';', ' '}),
      Raw(Bytes(2040, 0x5A)),
  };
  return rows;
}

std::string Label(const Row& row) {
  return row.type + std::string(" that begins with ") + std::to_string(row.wire.front());
}

TEST_F(ParameterData, WritesEachTypeInItsForm) {
  for (const Row& row : Rows()) {
    TalcCommand command;
    row.set(command);
    Bytes packet(row.wire.size() + 2, 0xEE);
    Bytes expected = packet;
    std::copy(row.wire.begin(), row.wire.end(), expected.begin() + 1);
    EXPECT_TRUE(probe::Parameter("X", row.type).WriteData(std::span(packet).subspan(1), command)) << Label(row);
    EXPECT_EQ(packet, expected) << Label(row);
  }
  EXPECT_EQ(log(), "");
}

TEST_F(ParameterData, ReadsEachTypeFromItsForm) {
  for (const Row& row : Rows()) {
    TalcCommand command;
    EXPECT_EQ(probe::Parameter("X", row.type).ReadParameterData(row.wire, command), row.wire.size()) << Label(row);
    EXPECT_TRUE(row.isSet(command)) << Label(row);
  }
  EXPECT_EQ(log(), "");
}

TEST_F(ParameterData, WritesNothingIntoTooLittleRoom) {
  SetTrace(true);
  for (const Row& row : Rows()) {
    TalcCommand command;
    row.set(command);
    for (std::size_t room = 0; room < row.wire.size(); ++room) {
      Bytes packet(row.wire.size(), 0xEE);
      const ParameterFormat parameter = probe::Parameter("X", row.type);
      EXPECT_FALSE(parameter.WriteData(std::span(packet).first(room), command)) << Label(row) << ", room " << room;
      EXPECT_EQ(packet, Bytes(row.wire.size(), 0xEE)) << Label(row) << ", room " << room;
    }
  }
  EXPECT_EQ(log(), "");
}

TEST_F(ParameterData, WriteTracesItsNumberOfBytes) {
  SetTrace(true);
  for (const Row& row : Rows()) {
    ClearLog();
    TalcCommand command;
    row.set(command);
    Bytes packet(row.wire.size());
    EXPECT_TRUE(probe::Parameter("X", row.type).WriteData(packet, command));
    EXPECT_EQ(log(), " NumBytes: " + std::to_string(row.wire.size())) << Label(row);
  }
}

TEST_F(ParameterData, WriteFailsWithoutADestinationBeforeItLooksForTheValue) {
  TalcCommand command;
  command.SetSymbol("X", "On");
  for (const char* type : {"INT8", "UINT64", "BYTES"})
    EXPECT_FALSE(probe::Parameter("X", type).WriteData({}, command)) << type;
}

TEST_F(ParameterData, WriteFailsForAValueThatIsNotThere) {
  SetTrace(true);
  TalcCommand command;
  command.SetUInt8("Y", 1);
  for (const Row& row : Rows()) {
    Bytes packet(row.wire.size(), 0xEE);
    EXPECT_FALSE(probe::Parameter("X", row.type).WriteData(packet, command)) << row.type;
    EXPECT_EQ(packet, Bytes(row.wire.size(), 0xEE)) << row.type;
  }
  EXPECT_EQ(log(), "");
}

TEST_F(ParameterData, WriteFailsForAnEmptyBytesValueThoughItIsThere) {
  TalcCommand command;
  command.SetBytes("X", nullptr, 0);
  Bytes packet(4, 0xEE);
  EXPECT_FALSE(probe::Parameter("X", "BYTES").WriteData(packet, command));
  EXPECT_EQ(packet, Bytes(4, 0xEE));
}

TEST_F(ParameterData, WriteFailsForAnUnknownType) {
  TalcCommand command;
  command.SetUInt8("X", 1);
  Bytes packet(8, 0xEE);
  for (const char* type : {"", "int8", "SYMBOL"})
    EXPECT_FALSE(probe::Parameter("X", type).WriteData(packet, command)) << type;
  EXPECT_EQ(packet, Bytes(8, 0xEE));
}

TEST_F(ParameterData, WriteThrowsForAValueOfAnotherKind) {
  for (const Row& row : Rows()) {
    for (const char* type : {"INT8", "UINT8", "INT16", "UINT16", "INT32", "UINT32", "INT64", "UINT64"}) {
      if (row.type == std::string(type)) continue;
      TalcCommand command;
      row.set(command);
      Bytes packet(8, 0xEE);
      EXPECT_THROW(probe::Parameter("X", type).WriteData(packet, command), bad_variant_cast) << row.type << type;
      EXPECT_EQ(packet, Bytes(8, 0xEE));
    }
  }
  TalcCommand command;
  command.SetSymbol("X", "On");
  Bytes packet(8);
  EXPECT_THROW(probe::Parameter("X", "UINT8").WriteData(packet, command), bad_variant_cast);
}

TEST_F(ParameterData, WriteOfBytesFindsOtherKindsMissingSinceItAsksForThePointer) {
  TalcCommand command;
  Bytes packet(8, 0xEE);
  command.SetUInt8("X", 1);
  EXPECT_FALSE(probe::Parameter("X", "BYTES").WriteData(packet, command));
  command.SetSymbol("X", "On");
  EXPECT_FALSE(probe::Parameter("X", "BYTES").WriteData(packet, command));
  EXPECT_EQ(packet, Bytes(8, 0xEE));
}

ParameterFormat LaidOut(const char* type, std::int32_t offset, std::int32_t numBytes, std::int32_t size) {
  ParameterFormat parameter = probe::Parameter("X", type);
  parameter.packetPosition = {.packetOffset = offset, .numBytes = numBytes};
  parameter.size = size;
  return parameter;
}

TEST_F(ParameterData, WritesAtItsPlaceInThePacket) {
  SetTrace(true);
  TalcCommand command;
  command.SetUInt16("X", 0x1234);
  Bytes packet(6, 0xEE);
  EXPECT_TRUE(LaidOut("UINT16", 3, 2, 2).WriteParameterData(packet, command));
  EXPECT_EQ(packet, (Bytes{0xEE, 0xEE, 0xEE, 0x12, 0x34, 0xEE}));
  EXPECT_EQ(log(), "\n\tWriting Parameter : X Type : UINT16 NumBytes: 2");
}

TEST_F(ParameterData, RefusesAWriteWithoutAPlaceWithoutAWord) {
  SetTrace(true);
  SetVerbose(true);
  TalcCommand command;
  command.SetUInt8("X", 1);
  Bytes packet(16, 0xEE);
  EXPECT_FALSE(probe::Parameter("X", "UINT8").WriteParameterData(packet, command));
  EXPECT_FALSE(LaidOut("UINT8", -1, 1, 1).WriteParameterData(packet, command));
  EXPECT_FALSE(LaidOut("UINT8", 8, 0, 1).WriteParameterData(packet, command));
  EXPECT_FALSE(LaidOut("UINT8", 8, 1, 0).WriteParameterData(packet, command));
  EXPECT_EQ(packet, Bytes(16, 0xEE));
  EXPECT_EQ(log(), "");
}

TEST_F(ParameterData, RefusesAWriteWhosePlaceIsNotOfItsSize) {
  TalcCommand command;
  command.SetUInt16("X", 0x1234);
  Bytes packet(16, 0xEE);
  const ParameterFormat parameter = LaidOut("UINT16", 8, 4, 2);
  EXPECT_FALSE(parameter.WriteParameterData(packet, command));
  EXPECT_EQ(log(), "");
  SetTrace(true);
  EXPECT_FALSE(parameter.WriteParameterData(packet, command));
  EXPECT_EQ(log(),
            "\n\tWriting Parameter : X Type : UINT16"
            "\nERROR - WritingParameterData - write for fixed size data is not equal to total size");
  EXPECT_EQ(packet, Bytes(16, 0xEE));
}

TEST_F(ParameterData, RefusesAWriteBeyondThePacket) {
  TalcCommand command;
  command.SetUInt16("X", 0x1234);
  for (const std::int32_t offset : {3, 4, 5, 2147483647}) {
    Bytes packet(4, 0xEE);
    EXPECT_FALSE(LaidOut("UINT16", offset, 2, 2).WriteParameterData(packet, command)) << offset;
    EXPECT_EQ(packet, Bytes(4, 0xEE)) << offset;
  }
}

TEST_F(ParameterData, WriteAtItsPlacePassesAWrongKindOn) {
  TalcCommand command;
  command.SetUInt8("X", 1);
  Bytes packet(16);
  EXPECT_THROW(LaidOut("UINT16", 8, 2, 2).WriteParameterData(packet, command), bad_variant_cast);
}

TEST_F(ParameterData, ReadOfTooFewBytesStoresNothing) {
  for (const Row& row : Rows()) {
    if (row.type == std::string("BYTES")) continue;
    for (std::size_t available = 0; available < row.wire.size(); ++available) {
      TalcCommand command;
      EXPECT_EQ(probe::Parameter("X", row.type).ReadParameterData(std::span(row.wire).first(available), command), 0U)
          << Label(row) << ", available " << available;
      EXPECT_FALSE(command.HasParameter("X")) << Label(row);
    }
  }
}

TEST_F(ParameterData, ReadOfTooFewBytesKeepsTheOldValue) {
  TalcCommand command;
  command.SetInt32("X", 5);
  EXPECT_EQ(probe::Parameter("X", "INT32").ReadParameterData(Bytes{1, 2, 3}, command), 0U);
  EXPECT_EQ(Held<std::int32_t>(command, "X"), 5);
}

TEST_F(ParameterData, ReadTakesNoMoreThanItsType) {
  TalcCommand command;
  EXPECT_EQ(probe::Parameter("X", "UINT16").ReadParameterData(Bytes{1, 2, 3, 4}, command), 2U);
  EXPECT_EQ(Held<std::uint16_t>(command, "X"), 0x0102);
}

TEST_F(ParameterData, ReadReplacesAValueOfAnotherKind) {
  TalcCommand command;
  command.SetSymbol("X", "On");
  command.SetUInt8("Y", 1);
  EXPECT_EQ(probe::Parameter("X", "INT8").ReadParameterData(Bytes{0xFE}, command), 1U);
  EXPECT_EQ(Held<std::int8_t>(command, "X"), -2);
  EXPECT_EQ(NamesOf(command), (std::vector<std::string>{"X", "Y"}));
}

TEST_F(ParameterData, ReadOfNoBytesStoresAnEmptyValueThoughItTakesNone) {
  TalcCommand command;
  EXPECT_EQ(probe::Parameter("X", "BYTES").ReadParameterData({}, command), 0U);
  EXPECT_EQ(Held<Bytes>(command, "X"), Bytes());
}

TEST_F(ParameterData, ReadOfAnUnknownTypeTakesNothingWithoutAWord) {
  SetTrace(true);
  SetVerbose(true);
  TalcCommand command;
  for (const char* type : {"", "int8", "SYMBOL"})
    EXPECT_EQ(probe::Parameter("X", type).ReadParameterData(Bytes{1, 2, 3}, command), 0U) << type;
  EXPECT_FALSE(command.HasParameter("X"));
  EXPECT_EQ(log(), "");
}

TEST_F(ParameterData, ReadTracesTheParameterAndWhatItTook) {
  SetTrace(true);
  TalcCommand command;
  probe::Parameter("X", "UINT16").ReadParameterData(Bytes{1, 2, 3}, command);
  EXPECT_EQ(log(), "\n\tReading Parameter : X Type : UINT16 NumBytes: 2");
  ClearLog();
  probe::Parameter("X", "BYTES").ReadParameterData(BytesOf("abc"), command);
  EXPECT_EQ(log(), "\n\tReading Parameter : X Type : BYTES NumBytes: 3");
  ClearLog();
  probe::Parameter("X", "UINT32").ReadParameterData(Bytes{1, 2, 3}, command);
  EXPECT_EQ(log(), "\n\tReading Parameter : X Type : UINT32");
}

}  // namespace
