// Ordinary packets, byte by byte.

#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "EngineFixture.h"

namespace {

using namespace engine_test;

class CompilerTest : public EngineTest {};

TEST_F(CompilerTest, WritesEightBytesForACommandWithoutParameters) {
  StartWith("Plain Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 23 ;");
  TalcCommand send("Plain");
  EXPECT_EQ(CompiledHex(send), "0B 0B 00 04 40 2E 00 00");
  TalcCommand request = Request("Plain");
  EXPECT_EQ(CompiledHex(request), "0B 0B 00 04 40 2F 00 00");
}

TEST_F(CompilerTest, WritesTheCodesIntoTwoBytes) {
  const struct {
    const char* codes;
    const char* send;
    const char* request;
  } cases[] = {
      {"CommandTypeMajor VIDEO CommandTypeMinor 0 Function 0", "00 00", "00 01"},
      {"CommandTypeMajor VIDEO CommandTypeMinor 63 Function 1", "3F 02", "3F 03"},
      {"CommandTypeMajor AUDIO CommandTypeMinor 1 Function 127", "41 FE", "41 FF"},
      {"CommandTypeMajor SYSTEM CommandTypeMinor 5 Function 64", "85 80", "85 81"},
      {"CommandTypeMajor DIAGNOSTIC CommandTypeMinor 63 Function 127", "FF FE", "FF FF"},
  };
  std::string dictionary;
  for (std::size_t i = 0; i < std::size(cases); ++i)
    dictionary += "C" + std::to_string(i) + " Talc " + cases[i].codes + " ;\n";
  StartWith(dictionary);
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    TalcCommand command("C" + std::to_string(i));
    EXPECT_EQ(CompiledHex(command), std::string("0B 0B 00 04 ") + cases[i].send + " 00 00") << cases[i].codes;
    command.SetRequestCommand();
    EXPECT_EQ(CompiledHex(command), std::string("0B 0B 00 04 ") + cases[i].request + " 00 00") << cases[i].codes;
  }
}

constexpr const char* kPartly =
    "Partly Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 1"
    " DataName A RD DataType UINT16 DataName B DataType UINT32 ;";

TEST_F(CompilerTest, SendsAllParameters) {
  StartWith(kPartly);
  TalcCommand send("Partly");
  send.SetUInt16("A", 0x1234);
  send.SetUInt32("B", 258);
  EXPECT_EQ(CompiledHex(send), "0B 0B 00 0A 80 02 00 00 12 34 00 00 01 02");
}

TEST_F(CompilerTest, RequestsCarryOnlyWhatIsRequired) {
  StartWith(kPartly);
  TalcCommand request = Request("Partly");
  request.SetUInt16("A", 0x1234);
  EXPECT_EQ(CompiledHex(request), "0B 0B 00 06 80 03 00 00 12 34");
  // A value that the request does not carry is not looked at, not even at its kind.
  request.SetSymbol("B", "NoSuchSymbol");
  EXPECT_EQ(CompiledHex(request), "0B 0B 00 06 80 03 00 00 12 34");
}

TEST_F(CompilerTest, WritesValuesInTheOrderOfTheDefinition) {
  StartWith(kPartly);
  TalcCommand send("Partly");
  send.SetUInt32("B", 1);
  send.SetUInt8("Unknown", 9);  // no parameter of the command: left out
  send.SetUInt16("A", 2);
  EXPECT_EQ(CompiledHex(send), "0B 0B 00 0A 80 02 00 00 00 02 00 00 00 01");
}

TEST_F(CompilerTest, WritesEachTypeMostSignificantByteFirst) {
  const struct {
    const char* type;
    std::function<void(TalcCommand&)> set;
    const char* bytes;
  } cases[] = {
      {"INT8", [](auto& c) { c.SetInt8("V", -128); }, "80"},
      {"INT8", [](auto& c) { c.SetInt8("V", 127); }, "7F"},
      {"INT8", [](auto& c) { c.SetInt8("V", -1); }, "FF"},
      {"UINT8", [](auto& c) { c.SetUInt8("V", 0); }, "00"},
      {"UINT8", [](auto& c) { c.SetUInt8("V", 255); }, "FF"},
      {"INT16", [](auto& c) { c.SetInt16("V", -32768); }, "80 00"},
      {"INT16", [](auto& c) { c.SetInt16("V", 32767); }, "7F FF"},
      {"INT16", [](auto& c) { c.SetInt16("V", -2); }, "FF FE"},
      {"UINT16", [](auto& c) { c.SetUInt16("V", 65535); }, "FF FF"},
      {"UINT16", [](auto& c) { c.SetUInt16("V", 0x0102); }, "01 02"},
      {"INT32", [](auto& c) { c.SetInt32("V", std::numeric_limits<std::int32_t>::min()); }, "80 00 00 00"},
      {"INT32", [](auto& c) { c.SetInt32("V", 2147483647); }, "7F FF FF FF"},
      {"INT32", [](auto& c) { c.SetInt32("V", -3); }, "FF FF FF FD"},
      {"UINT32", [](auto& c) { c.SetUInt32("V", 4294967295); }, "FF FF FF FF"},
      {"UINT32", [](auto& c) { c.SetUInt32("V", 0x01020304); }, "01 02 03 04"},
      {"INT64", [](auto& c) { c.SetInt64("V", std::numeric_limits<std::int64_t>::min()); }, "80 00 00 00 00 00 00 00"},
      {"INT64", [](auto& c) { c.SetInt64("V", 9223372036854775807); }, "7F FF FF FF FF FF FF FF"},
      {"INT64", [](auto& c) { c.SetInt64("V", -4); }, "FF FF FF FF FF FF FF FC"},
      {"UINT64", [](auto& c) { c.SetUInt64("V", 18446744073709551615u); }, "FF FF FF FF FF FF FF FF"},
      {"UINT64", [](auto& c) { c.SetUInt64("V", 0x0102030405060708); }, "01 02 03 04 05 06 07 08"},
      {"BYTES", [](auto& c) { SetBytes(c, "V", FromHex("00 FF 3B 0A 00")); }, "00 FF 3B 0A 00"},
      {"BYTES", [](auto& c) { SetBytes(c, "V", FromHex("2E")); }, "2E"},
  };
  std::string dictionary;
  for (std::size_t i = 0; i < std::size(cases); ++i)
    dictionary += "C" + std::to_string(i) + " Talc CommandTypeMajor VIDEO CommandTypeMinor 2 Function " +
                  std::to_string(i) + " DataName V DataType " + cases[i].type + " ;\n";
  StartWith(dictionary);
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    TalcCommand command("C" + std::to_string(i));
    cases[i].set(command);
    const Bytes value = FromHex(cases[i].bytes);
    const Bytes header = {
        0x0B, 0x0B, 0, static_cast<std::uint8_t>(4 + value.size()), 2, static_cast<std::uint8_t>(2 * i), 0, 0};
    EXPECT_EQ(CompiledHex(command), Hex(header + value)) << cases[i].type << " " << cases[i].bytes;
  }
}

TEST_F(CompilerTest, WritesAllTypesWithoutGaps) {
  StartWith(
      "All Talc CommandTypeMajor SYSTEM CommandTypeMinor 1 Function 2 DataName A DataType INT8 DataName B DataType "
      "UINT16 DataName C DataType INT32 DataName D DataType UINT64 DataName E DataType UINT8 DataName F DataType INT16 "
      "DataName G DataType UINT32 DataName H DataType INT64 DataName I DataType BYTES ;");
  TalcCommand all("All");
  all.SetInt8("A", -1);
  all.SetUInt16("B", 0x0203);
  all.SetInt32("C", 0x04050607);
  all.SetUInt64("D", 0x08090A0B0C0D0E0F);
  all.SetUInt8("E", 0x10);
  all.SetInt16("F", 0x1112);
  all.SetUInt32("G", 0x13141516);
  all.SetInt64("H", 0x1718191A1B1C1D1E);
  SetBytes(all, "I", FromHex("1F 20 21"));
  EXPECT_EQ(CompiledHex(all),
            "0B 0B 00 25 81 04 00 00 FF 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11 12 13 14 15 16 17 18 19 1A 1B "
            "1C 1D 1E 1F 20 21");
}

// The first parameter without RD ends a request, also when one with RD stands behind it: that one is counted, and its
// bytes are zero. It is meant.
TEST_F(CompilerTest, RequestsEndAtTheFirstParameterThatIsNotRequired) {
  StartWith(
      "Behind Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 1 DataName A DataType UINT16 DataName B RD "
      "DataType UINT8 ;"
      "Between Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 2 DataName A RD DataType UINT8 DataName B "
      "DataType UINT16 DataName C RD DataType UINT16 ;"
      "Full Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 3 DataName D DataType BYTES ;");
  // What a larger packet left in memory must not come back.
  TalcCommand full("Full");
  SetBytes(full, "D", Bytes(2040, 0xEE));
  CompiledHex(full);

  TalcCommand behind = Request("Behind");
  behind.SetUInt16("A", 0x1111);
  behind.SetUInt8("B", 0x22);
  EXPECT_EQ(CompiledHex(behind), "0B 0B 00 05 80 03 00 00 00");
  CompiledHex(full);
  TalcCommand between = Request("Between");
  between.SetUInt8("A", 0x11);
  between.SetUInt16("B", 0x2222);
  between.SetUInt16("C", 0x3333);
  EXPECT_EQ(CompiledHex(between), "0B 0B 00 07 80 05 00 00 11 00 00");
  between.SetSendCommand();
  EXPECT_EQ(CompiledHex(between), "0B 0B 00 09 80 04 00 00 11 22 22 33 33");
}

TEST_F(CompilerTest, RequestsLeaveOutBytesThatAreNotRequired) {
  StartWith(
      "Info Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 26 DataName Board RD DataType UINT16 DataName "
      "Text "
      "DataType BYTES ;");
  TalcCommand request = Request("Info");
  request.SetUInt16("Board", 200);
  EXPECT_EQ(CompiledHex(request), "0B 0B 00 06 80 35 00 00 00 C8");
  SetBytes(request, "Text", Bytes(5000, 1));  // more than any packet holds, and not looked at
  EXPECT_EQ(CompiledHex(request), "0B 0B 00 06 80 35 00 00 00 C8");
}

TEST_F(CompilerTest, RequestsCarryBytesThatAreRequired) {
  StartWith(
      "Carry Talc CommandTypeMajor DIAGNOSTIC CommandTypeMinor 0 Function 1 DataName Length RD DataType UINT16 "
      "DataName "
      "Data RD DataType BYTES ;");
  TalcCommand request = Request("Carry");
  request.SetUInt16("Length", 3);
  SetBytes(request, "Data", {7, 8, 9});
  EXPECT_EQ(CompiledHex(request), "0B 0B 00 09 C0 03 00 00 00 03 07 08 09");
}

TEST_F(CompilerTest, LaysOutEachPacketByItsOwnValue) {
  StartWith("Data Talc CommandTypeMajor VIDEO CommandTypeMinor 0 Function 0 DataName D DataType BYTES ;");
  TalcCommand command("Data");
  SetBytes(command, "D", {1, 2, 3});
  EXPECT_EQ(CompiledHex(command), "0B 0B 00 07 00 00 00 00 01 02 03");
  SetBytes(command, "D", {4});
  EXPECT_EQ(CompiledHex(command), "0B 0B 00 05 00 00 00 00 04");
  SetBytes(command, "D", {5, 6});
  EXPECT_EQ(CompiledHex(command), "0B 0B 00 06 00 00 00 00 05 06");
}

TEST_F(CompilerTest, TellsTheTimeoutOfTheDefinition) {
  StartWith(std::string(kPartly) + "Diag Diag DiagOpcode 3 ;");
  TalcCommand partly = Request("Partly");
  partly.SetUInt16("A", 0);
  EXPECT_EQ(Compile(partly).timeoutMilliseconds, 0u);
  ASSERT_TRUE(TalcPath::SetOverrideTimeoutMillisec("Partly", 4500));
  EXPECT_EQ(Compile(partly).timeoutMilliseconds, 4500u);
  // A diagnostic command has none, whatever was set.
  ASSERT_TRUE(TalcPath::SetOverrideTimeoutMillisec("Diag", 4500));
  TalcCommand diag("Diag");
  EXPECT_EQ(Compile(diag).timeoutMilliseconds, 0u);
}

TEST_F(CompilerTest, TellsTheTimeoutAlsoWhenThePacketFails) {
  StartWith(kPartly);
  ASSERT_TRUE(TalcPath::SetOverrideTimeoutMillisec("Partly", 4500));
  TalcCommand empty("Partly");
  const Compiled compiled = Compile(empty);
  EXPECT_FALSE(compiled.isGood);
  EXPECT_EQ(compiled.timeoutMilliseconds, 4500u);
}

TEST_F(CompilerTest, NeedsNoOutPointers) {
  StartWith(kPartly);
  TalcCommand command = Request("Partly");
  TalcByteCode packet;
  EXPECT_FALSE(TalcPath::TalcPathCompile(command, packet, nullptr, nullptr));
  command.SetUInt16("A", 5);
  EXPECT_TRUE(TalcPath::TalcPathCompile(command, packet, nullptr, nullptr));
  EXPECT_EQ(Hex(packet), "0B 0B 00 06 80 03 00 00 00 05");
  TalcCommand unknown("Unknown");
  EXPECT_FALSE(TalcPath::TalcPathCompile(unknown, packet, nullptr, nullptr));
}

TEST_F(CompilerTest, LeavesStatusDirectionAndNumbersOfTheCommandAlone) {
  StartWith(kPartly);
  TalcCommand command = Request("Partly");
  command.SetUInt16("A", 5);
  command.SetStatus(TalcPath::kTPTimeOut);
  CompiledHex(command);
  CompiledHex(command);
  EXPECT_EQ(command.GetStatus(), TalcPath::kTPTimeOut);
  EXPECT_TRUE(command.IsRequestCommand());
  std::uint16_t value = 0;
  EXPECT_TRUE(command.GetUInt16("A", &value));
  EXPECT_EQ(value, 5);
}

// One size too many for the field is more than any packet has, so all of 2040 bytes fit: 07 FC is 4 + 2040.
TEST_F(CompilerTest, HoldsAsMuchAsTheLargestPacket) {
  StartWith("Data Talc CommandTypeMajor VIDEO CommandTypeMinor 0 Function 0 DataName D RD DataType BYTES ;");
  TalcCommand command("Data");
  SetBytes(command, "D", Bytes(2040, 0xAB));
  EXPECT_EQ(CompiledHex(command), Hex(FromHex("0B 0B 07 FC 00 00 00 00") + Bytes(2040, 0xAB)));
  command.SetRequestCommand();
  EXPECT_EQ(CompiledHex(command), Hex(FromHex("0B 0B 07 FC 00 01 00 00") + Bytes(2040, 0xAB)));
}

TEST_F(CompilerTest, HoldsAsManyFixedValuesAsTheLargestPacket) {
  std::string dictionary = "Wide Talc CommandTypeMajor VIDEO CommandTypeMinor 0 Function 0";
  for (int i = 0; i < 255; ++i)
    dictionary += " DataName V" + std::to_string(i) + " DataType UINT64";
  StartWith(dictionary + " ;");
  TalcCommand command("Wide");
  for (int i = 0; i < 255; ++i)
    command.SetUInt64("V" + std::to_string(i), 0x5A5A5A5A5A5A5A5A);
  EXPECT_EQ(CompiledHex(command), Hex(FromHex("0B 0B 07 FC 00 00 00 00") + Bytes(2040, 0x5A)));
}

}  // namespace
