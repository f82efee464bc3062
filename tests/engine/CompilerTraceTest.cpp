// All that the trace tells of a compile.

#include <gtest/gtest.h>

#include "EngineFixture.h"

namespace {

using namespace engine_test;

class CompilerTraceTest : public EngineTest {};

constexpr const char* kInfo =
    "Info Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 26 DataName Board RD DataType UINT16 DataName Text "
    "DataType BYTES Symbol kHollen 200 ;";

constexpr const char* kInfoTrace =
    "\n\nConstructing ByteCode Compiler - Command : Info"
    "\n\nBEGIN - Talc Command Format"
    "\nName: Info"
    "\nType Major: SYSTEM"
    "\nType Minor: 0"
    "\nFunction: 26"
    "\nParams {"
    "\n\tParameter: Board Type: UINT16 IsRequiredForRequestData: true"
    "\n\t\tPacket Offset: -1"
    "\n\t\tNum Bytes For Packet Position: 0"
    "\n\t\tSize: -1"
    "\n\t\tVariable Length: false"
    "\n\tParameter: Text Type: BYTES IsRequiredForRequestData: false"
    "\n\t\tPacket Offset: -1"
    "\n\t\tNum Bytes For Packet Position: 0"
    "\n\t\tSize: -1"
    "\n\t\tVariable Length: false"
    "\n       }"
    "\nHasVariableLengthData: true"
    "\nPacket Info:  Send Size: 0 Send Payload Size: 0"
    "\n\tRequest Size: 0 Request Payload Size: 0"
    "\nEND   - Talc Command Format"
    "\n"
    "\nBEGIN - Bytecode Compilation "
    "\nDetermine Packet Sizes"
    "\nComputing Packet Sizes"
    "\nCompile command into packets..."
    "\n\tCompiling Packet "
    "\n\tWriting Talc Command Header"
    "\n\tCompiling Parameters "
    "\n\tConverting Symbolic Constant to data value"
    "\n\tSymbolic Constant Found - Name: kHollen Value: 200"
    "\n\tWriting Parameter : Board Type : UINT16 NumBytes: 2"
    "\n\tWriting Parameter : Text Type : BYTES NumBytes: 3"
    "\n\tFinished Packet"
    "\nEND   - Bytecode Compilation";

TEST_F(CompilerTraceTest, TellsOfAPacketWhoseLengthDependsOnAValue) {
  StartWith(kInfo);
  TalcCommand command("Info");
  command.SetSymbol("Board", "kHollen");
  SetBytes(command, "Text", {1, 2, 3});
  SetFlags(false, true);
  CompiledHex(command);
  EXPECT_EQ(TakeLog(), kInfoTrace);
}

TEST_F(CompilerTraceTest, IsTheSameUnderBothFlags) {
  StartWith(kInfo);
  TalcCommand command("Info");
  command.SetSymbol("Board", "kHollen");
  SetBytes(command, "Text", {1, 2, 3});
  SetFlags(true, true);
  CompiledHex(command);
  EXPECT_EQ(TakeLog(), kInfoTrace);
}

TEST_F(CompilerTraceTest, TellsNothingUnderTheOtherFlags) {
  StartWith(kInfo);
  TalcCommand command = Request("Info");
  command.SetSymbol("Board", "kHollen");
  SetFlags(false, false);
  CompiledHex(command);
  EXPECT_EQ(TakeLog(), "");
  SetFlags(true, false);
  CompiledHex(command);
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(CompilerTraceTest, TellsOfADiagnosticPacketOfFixedSize) {
  StartWith("Peek Diag DiagOpcode 1 DataName Address RD DataType UINT32 DataName Value DataType UINT16 ;");
  TalcCommand command = Request("Peek");
  command.SetUInt32("Address", 7);
  SetFlags(false, true);
  CompiledHex(command);
  EXPECT_EQ(TakeLog(),
            "\n\nConstructing ByteCode Compiler - Command : Peek"
            "\n\nBEGIN - Talc Diagnostic Command Format"
            "\nDiagOpcode : 1"
            "\nName: Peek"
            "\nParams {"
            "\n\tParameter: Address Type: UINT32 IsRequiredForRequestData: true"
            "\n\t\tPacket Offset: 36"
            "\n\t\tNum Bytes For Packet Position: 4"
            "\n\t\tSize: 4"
            "\n\t\tVariable Length: false"
            "\n\tParameter: Value Type: UINT16 IsRequiredForRequestData: false"
            "\n\t\tPacket Offset: 40"
            "\n\t\tNum Bytes For Packet Position: 2"
            "\n\t\tSize: 2"
            "\n\t\tVariable Length: false"
            "\n       }"
            "\nHasVariableLengthData: false"
            "\nPacket Info:  Send Size: 42 Send Payload Size: 6"
            "\n\tRequest Size: 40 Request Payload Size: 4"
            "\nEND   - Talc Diagnostic Command Format"
            "\n"
            "\nBEGIN - Bytecode Compilation "
            "\nDetermine Packet Sizes"
            "\nUsing precomputed packet size"
            "\nCompile command into packets..."
            "\n\tCompiling Packet "
            "\n\tWriting Diag Command magic string"
            "\n\tWriting Diag Command opcode"
            "\n\tCompiling Parameters "
            "\n\tWriting Parameter : Address Type : UINT32 NumBytes: 4"
            "\n\tFinished Packet"
            "\nEND   - Bytecode Compilation");
}

TEST_F(CompilerTraceTest, CountsTheBytesOfEachType) {
  StartWith(
      "All Talc CommandTypeMajor VIDEO CommandTypeMinor 0 Function 0 DataName A DataType INT8 DataName B DataType "
      "UINT8 "
      "DataName C DataType INT16 DataName D DataType UINT16 DataName E DataType INT32 DataName F DataType UINT32 "
      "DataName G DataType INT64 DataName H DataType UINT64 ;");
  TalcCommand command("All");
  command.SetInt8("A", 0);
  command.SetUInt8("B", 0);
  command.SetInt16("C", 0);
  command.SetUInt16("D", 0);
  command.SetInt32("E", 0);
  command.SetUInt32("F", 0);
  command.SetInt64("G", 0);
  command.SetUInt64("H", 0);
  SetFlags(false, true);
  CompiledHex(command);
  EXPECT_THAT(TakeLog(), ::testing::EndsWith("\n\tCompiling Parameters "
                                             "\n\tWriting Parameter : A Type : INT8 NumBytes: 1"
                                             "\n\tWriting Parameter : B Type : UINT8 NumBytes: 1"
                                             "\n\tWriting Parameter : C Type : INT16 NumBytes: 2"
                                             "\n\tWriting Parameter : D Type : UINT16 NumBytes: 2"
                                             "\n\tWriting Parameter : E Type : INT32 NumBytes: 4"
                                             "\n\tWriting Parameter : F Type : UINT32 NumBytes: 4"
                                             "\n\tWriting Parameter : G Type : INT64 NumBytes: 8"
                                             "\n\tWriting Parameter : H Type : UINT64 NumBytes: 8"
                                             "\n\tFinished Packet"
                                             "\nEND   - Bytecode Compilation"));
}

}  // namespace
