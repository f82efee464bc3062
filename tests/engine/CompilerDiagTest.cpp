// Diagnostic packets: a header of 36 bytes, without mark and length.

#include <gtest/gtest.h>

#include "EngineFixture.h"

namespace {

using namespace engine_test;

/// "orbo_diagnostics" and the zeros up to the opcode.
const Bytes kMagic = {0x6F, 0x72, 0x62, 0x6F, 0x5F, 0x64, 0x69, 0x61, 0x67, 0x6E, 0x6F, 0x73, 0x74, 0x69, 0x63, 0x73,
                      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00};

class CompilerDiagTest : public EngineTest {};

TEST_F(CompilerDiagTest, WritesTheHeaderOfThirtySixBytes) {
  StartWith("Bare Diag DiagOpcode 132 ;");
  TalcCommand send("Bare");
  EXPECT_EQ(CompiledHex(send),
            "6F 72 62 6F 5F 64 69 61 67 6E 6F 73 74 69 63 73 "
            "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 84 "
            "00 00 00 00");
}

TEST_F(CompilerDiagTest, DoesNotTellTheDirection) {
  StartWith("Bare Diag DiagOpcode 132 ;");
  TalcCommand send("Bare");
  TalcCommand request = Request("Bare");
  EXPECT_EQ(CompiledHex(request), CompiledHex(send));
}

TEST_F(CompilerDiagTest, TakesEveryOpcodeOfAByte) {
  StartWith("First Diag DiagOpcode 0 ; Last Diag DiagOpcode 255 ;");
  TalcCommand first("First");
  EXPECT_EQ(CompiledHex(first), Hex(kMagic + FromHex("00 00 00 00 00")));
  TalcCommand last("Last");
  EXPECT_EQ(CompiledHex(last), Hex(kMagic + FromHex("FF 00 00 00 00")));
}

// The packet's total is written to offset 32 and at once overwritten by the count of value bytes, so that the two bytes
// behind the count stay zero. It is meant.
TEST_F(CompilerDiagTest, WritesTheCountOfValueBytesAndTwoZeros) {
  StartWith(
      "Ten Diag DiagOpcode 7 DataName A RD DataType UINT32 DataName B DataType INT16 DataName C DataType UINT32 ;");
  TalcCommand send("Ten");
  send.SetUInt32("A", 0x11121314);
  send.SetInt16("B", -2);
  send.SetUInt32("C", 0x21222324);
  EXPECT_EQ(CompiledHex(send), Hex(kMagic + FromHex("07 00 0A 00 00 11 12 13 14 FF FE 21 22 23 24")));
}

TEST_F(CompilerDiagTest, RequestsCarryOnlyWhatIsRequired) {
  StartWith("Ten Diag DiagOpcode 7 DataName A RD DataType UINT32 DataName B DataType INT16 ;");
  TalcCommand request = Request("Ten");
  request.SetUInt32("A", 0x11121314);
  EXPECT_EQ(CompiledHex(request), Hex(kMagic + FromHex("07 00 04 00 00 11 12 13 14")));
}

TEST_F(CompilerDiagTest, CarriesBytes) {
  StartWith("Data Diag DiagOpcode 6 DataName Bus RD DataType UINT8 DataName D DataType BYTES ;");
  TalcCommand send("Data");
  send.SetUInt8("Bus", 1);
  SetBytes(send, "D", Bytes(300, 0xC3));
  EXPECT_EQ(CompiledHex(send), Hex(kMagic + FromHex("06 01 2D 00 00 01") + Bytes(300, 0xC3)));
  send.SetRequestCommand();
  EXPECT_EQ(CompiledHex(send), Hex(kMagic + FromHex("06 00 01 00 00 01")));
}

TEST_F(CompilerDiagTest, TakesSymbols) {
  StartWith("Bars Diag DiagOpcode 0 DataName On RD DataType UINT8 Symbol kOff 0 Symbol kOn 1 ;");
  TalcCommand send("Bars");
  send.SetSymbol("On", "kOn");
  EXPECT_EQ(CompiledHex(send), Hex(kMagic + FromHex("00 00 01 00 00 01")));
}

// A packet of 2038 bytes. More would fit into 2048, and is refused: the limit on diagnostic values is one of its own.
TEST_F(CompilerDiagTest, HoldsTwoThousandAndTwoBytesOfValues) {
  StartWith("Data Diag DiagOpcode 6 DataName D RD DataType BYTES ;");
  TalcCommand command("Data");
  SetBytes(command, "D", Bytes(2002, 0x77));
  EXPECT_EQ(CompiledHex(command), Hex(kMagic + FromHex("06 07 D2 00 00") + Bytes(2002, 0x77)));
  command.SetRequestCommand();
  EXPECT_EQ(CompiledHex(command), Hex(kMagic + FromHex("06 07 D2 00 00") + Bytes(2002, 0x77)));
}

TEST_F(CompilerDiagTest, RefusesOneByteMore) {
  StartWith("Data Diag DiagOpcode 6 DataName D RD DataType BYTES ;");
  TalcCommand command("Data");
  SetBytes(command, "D", Bytes(2003, 0x77));
  EXPECT_EQ(CompileFailure(command), TalcPath::kTPPacketSizeError);
  command.SetRequestCommand();
  EXPECT_EQ(CompileFailure(command), TalcPath::kTPPacketSizeError);
}

}  // namespace
