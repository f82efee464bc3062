// What is logged of a decompile, and under which flag.

#include <gtest/gtest.h>

#include "EngineFixture.h"

namespace {

using namespace engine_test;

constexpr const char* kDictionary =
    "Number Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 23 DataName V DataType UINT32 ;"
    "All Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 30 DataName A DataType INT8 DataName B DataType UINT8"
    " DataName C DataType INT16 DataName D DataType UINT16 DataName E DataType INT32 DataName F DataType UINT32"
    " DataName G DataType INT64 DataName H DataType UINT64 DataName I DataType BYTES ;"
    "Diag Diag DiagOpcode 1 DataName V DataType UINT8 ;";

class DecompilerTraceTest : public EngineTest {
 protected:
  void SetUp() override { StartWith(kDictionary); }

  /// The trace of a decompile, after it is shown that nothing is told without the flag.
  std::string TraceOf(TalcCommand command, const Bytes& reply, bool tolerant = false) {
    TalcCommand silent = command;
    SetFlags(false, false);
    Decompile(silent, reply, tolerant);
    EXPECT_EQ(TakeLog(), "");
    SetFlags(false, true);
    Decompile(command, reply, tolerant);
    return TakeLog();
  }
  std::string TraceOf(const TalcCommand& command, const char* reply, bool tolerant = false) {
    return TraceOf(command, FromHex(reply), tolerant);
  }
};

TEST_F(DecompilerTraceTest, SaysNothingOfAPlainReplyToASend) {
  EXPECT_EQ(TraceOf(TalcCommand("Number"), "0B 0B 00 04 40 2E 00 00"), "");
  EXPECT_EQ(TraceOf(TalcCommand("Number"), "0B 0B 00 04 40 2E 00 02"), "");
}

TEST_F(DecompilerTraceTest, WarnsOfALongReplyToASend) {
  constexpr const char* kWarning =
      "\nWARNING - Response packet for a Send Command was longer than 2 byte standard - extra data ignored";
  EXPECT_EQ(TraceOf(TalcCommand("Number"), "0B 0B 00 06 40 2E 00 00 01 02"), kWarning);
  // The size counts, not the length field.
  EXPECT_EQ(TraceOf(TalcCommand("Number"), "0B 0B 00 04 40 2E 00 00 01"), kWarning);
  EXPECT_EQ(TraceOf(TalcCommand("Number"), "0B 0B 00 06 40 2E 00 00"), "");
  // Not of one that failed.
  EXPECT_EQ(TraceOf(TalcCommand("Number"), "0B 0B 00 06 40 2E 00 01 01 02"), "");
  // The header of a diagnostic reply is longer in any case.
  EXPECT_EQ(TraceOf(TalcCommand("Diag"), Bytes(36)), kWarning);
}

TEST_F(DecompilerTraceTest, TellsOfEachValue) {
  EXPECT_EQ(
      TraceOf(Request("All"),
              "0B 0B 00 25 80 3D 00 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11 12 13 14 15 16 17 18 19 "
              "1A 1B 1C 1D 1E 1F 20 21"),
      "\n\tReading Parameter : A Type : INT8 NumBytes: 1"
      "\n\tReading Parameter : B Type : UINT8 NumBytes: 1"
      "\n\tReading Parameter : C Type : INT16 NumBytes: 2"
      "\n\tReading Parameter : D Type : UINT16 NumBytes: 2"
      "\n\tReading Parameter : E Type : INT32 NumBytes: 4"
      "\n\tReading Parameter : F Type : UINT32 NumBytes: 4"
      "\n\tReading Parameter : G Type : INT64 NumBytes: 8"
      "\n\tReading Parameter : H Type : UINT64 NumBytes: 8"
      "\n\tReading Parameter : I Type : BYTES NumBytes: 3");
}

TEST_F(DecompilerTraceTest, TellsOfAReplyOfLessThanAHeader) {
  constexpr const char* kError = "\nERROR - Bytecode Decompile could not set up packetNum: 0";
  EXPECT_EQ(TraceOf(TalcCommand("Number"), "0B 0B 00 04 40 2E 00"), kError);
  EXPECT_EQ(TraceOf(Request("Number"), Bytes{}), kError);
  EXPECT_EQ(TraceOf(Request("Diag"), Bytes(7)), kError);
}

TEST_F(DecompilerTraceTest, TellsOfADiagnosticReplyOfLessThanAHeader) {
  EXPECT_EQ(TraceOf(Request("Diag"), Bytes(35)),
            "\nERROR - Bytecode Decompile could not decompile Diag opcode - packetNum: 0");
}

TEST_F(DecompilerTraceTest, TellsOfAMissingMark) {
  EXPECT_EQ(TraceOf(TalcCommand("Number"), "0C 0B 00 04 40 2E 00 00"),
            "\nERROR - Transport header for packet not marked with BOB Command ID"
            "\nERROR - Bytecode Decompile could not decode transport header - packetNum: 0");
}

TEST_F(DecompilerTraceTest, TellsOfALengthThatCannotBeWithoutTheLineOfTheMark) {
  EXPECT_EQ(TraceOf(TalcCommand("Number"), "0B 0B 00 03 40 2E 00 00"),
            "\nERROR - Bytecode Decompile could not decode transport header - packetNum: 0");
}

TEST_F(DecompilerTraceTest, TellsOfACommandThatIsNotDefined) {
  EXPECT_EQ(TraceOf(Request("Nobody"), "0B 0B 00 04 40 2E 00 00"),
            "\nERROR - Could not find TalcCommandFormat - Command: Nobody");
  SetFlags(true, false);
  TalcCommand command = Request("Nobody");
  Decompile(command, "0B 0B 00 04 40 2E 00 00");
  EXPECT_EQ(TakeLog(), "\nIsMetaCommandFormat- Command format not found - Command : Nobody");
}

TEST_F(DecompilerTraceTest, TellsOfValuesThatAreMissing) {
  constexpr const char* kFailed = "\nERROR - Decompiling parameters failed - Command: Number";
  // None left: it is not even tried.
  EXPECT_EQ(TraceOf(Request("Number"), "0B 0B 00 04 40 2F 00 00"), kFailed);
  EXPECT_EQ(TraceOf(Request("Number"), "0B 0B 00 06 40 2F 00 00 12 34"),
            std::string("\n\tReading Parameter : V Type : UINT32") + kFailed);
  EXPECT_EQ(TraceOf(Request("Diag"), Bytes(36)),
            "\n\tReading Parameter : V Type : UINT8\nERROR - Decompiling parameters failed - Command: Diag");
}

TEST_F(DecompilerTraceTest, DoesNotTellOfMissingValuesWhenTolerant) {
  EXPECT_EQ(TraceOf(Request("Number"), "0B 0B 00 04 40 2F 00 00", true), "");
  EXPECT_EQ(TraceOf(TalcCommand("Number"), "0B 0B 00 06 40 2F 00 00 12 34", true),
            "\n\tReading Parameter : V Type : UINT32");
}

TEST_F(DecompilerTraceTest, SaysNothingUnderTheVerboseFlag) {
  SetFlags(true, false);
  TalcCommand command = Request("Number");
  for (const char* const reply : {"0B", "0C 0B 00 04 40 2E 00 00", "0B 0B 00 04 40 2F 00 00",
                                  "0B 0B 00 06 40 2F 00 00 12 34", "0B 0B 00 08 40 2F 00 00 00 00 00 07"})
    Decompile(command, reply);
  Decompile(command, "0B 0B 00 06 40 2E 00 00 01 02");
  EXPECT_EQ(TakeLog(), "");
}

}  // namespace
