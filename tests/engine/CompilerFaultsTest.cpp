// What does not compile, with its status and what is logged of it.

#include <gtest/gtest.h>

#include <memory>

#include "engine/ByteCodeCompiler.h"
#include "EngineFixture.h"
#include "HandmadeFormats.h"
#include "support/FailingAllocation.h"

namespace {

using namespace engine_test;
using TalcPathPrivate::ByteCodeCompiler;
using TalcPathPrivate::CommandType;
using TalcPathPrivate::TalcCommandFormat;
using ::testing::EndsWith;
using Major = CommandType::Major;

constexpr const char* kDictionary =
    "Fixed Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 1"
    " DataName A RD DataType UINT8 DataName B DataType UINT32 ;"
    "Data Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 2"
    " DataName L RD DataType UINT16 DataName D RD DataType BYTES ;"
    "DiagData Diag DiagOpcode 2 DataName D DataType BYTES ;"
    "Meta Meta Start Fixed Repeat Data Stop Fixed ;";

class CompilerFaultsTest : public EngineTest {
 protected:
  void SetUp() override { StartWith(kDictionary); }

  static TalcCommand Data(std::size_t dataBytes) {
    TalcCommand command("Data");
    command.SetUInt16("L", 1);
    SetBytes(command, "D", Bytes(dataBytes, 0x11));
    return command;
  }
};

TEST_F(CompilerFaultsTest, NoSuchCommand) {
  TalcCommand command("Nobody");
  EXPECT_EQ(CompileFailure(command), TalcPath::kTPCommandFormatNotFound);
  EXPECT_EQ(Compile(command).timeoutMilliseconds, 0u);
  EXPECT_EQ(TakeLog(), "");
  SetFlags(false, true);
  Compile(command);
  EXPECT_EQ(TakeLog(), "");
  SetFlags(true, false);
  Compile(command);
  EXPECT_EQ(TakeLog(),
            "\nIsMetaCommandFormat- Command format not found - Command : Nobody"
            "\nConstructing ByteCode Compiler - Command format not found - Command : Nobody");
}

TEST_F(CompilerFaultsTest, NamesAreExact) {
  for (const char* const name : {"", "fixed", "Fixed ", "Fixe"}) {
    TalcCommand command(name);
    EXPECT_EQ(CompileFailure(command), TalcPath::kTPCommandFormatNotFound) << name;
  }
}

// The compiler itself zeroes nothing, and no status tells of a meta command.
TEST_F(CompilerFaultsTest, AMetaCommandGetsNoStatusFromTheCompilerItself) {
  TalcCommand meta("Meta");
  TalcByteCode packet;
  packet.SetResponseFail();
  std::uint32_t timeout = kUntouchedTimeout;
  TalcPathStatus status = kUntouchedStatus;
  SetFlags(true, true);
  ByteCodeCompiler compiler(meta, packet, &timeout, &status);
  EXPECT_EQ(packet.GetSize(), 0u);
  EXPECT_FALSE(compiler.Compile());
  EXPECT_EQ(status, kUntouchedStatus);
  EXPECT_EQ(timeout, kUntouchedTimeout);
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(CompilerFaultsTest, TheCompilerItselfFindsAnUnknownNameAtOnce) {
  TalcCommand command("Nobody");
  TalcByteCode packet;
  packet.SetResponseFail();
  std::uint32_t timeout = kUntouchedTimeout;
  TalcPathStatus status = kUntouchedStatus;
  ByteCodeCompiler compiler(command, packet, &timeout, &status);
  EXPECT_EQ(status, TalcPath::kTPCommandFormatNotFound);
  EXPECT_EQ(timeout, kUntouchedTimeout);
  EXPECT_EQ(packet.GetSize(), 0u);
  EXPECT_FALSE(compiler.Compile());
}

TEST_F(CompilerFaultsTest, TheCompilerItselfDoesNotZeroTheStatus) {
  TalcCommand command = Data(1);
  TalcByteCode packet;
  TalcPathStatus status = kUntouchedStatus;
  EXPECT_TRUE(ByteCodeCompiler(command, packet, nullptr, &status).Compile());
  EXPECT_EQ(status, kUntouchedStatus);
}

TEST_F(CompilerFaultsTest, AValueOfFixedSizeIsMissing) {
  TalcCommand command("Fixed");
  EXPECT_EQ(CompileFailure(command), TalcPath::kTPCompileMissingParameterData);
  command.SetUInt8("A", 1);
  EXPECT_EQ(CompileFailure(command), TalcPath::kTPCompileMissingParameterData);
  EXPECT_EQ(TakeLog(), "");
  SetFlags(true, true);
  CompileFailure(command);
  EXPECT_THAT(TakeLog(), EndsWith("\n\tCompiling Parameters \n\tWriting Parameter : A Type : UINT8 NumBytes: 1"
                                  "\n\tWriting Parameter : B Type : UINT32\nERROR - packet compilation failed"));
  command.SetUInt32("B", 2);
  CompiledHex(command);
}

TEST_F(CompilerFaultsTest, AValueOfBytesIsMissing) {
  TalcCommand command("Data");
  command.SetUInt16("L", 1);
  EXPECT_EQ(CompileFailure(command), TalcPath::kTPPacketSizeError);
  EXPECT_EQ(TakeLog(), "");
  SetFlags(true, false);
  CompileFailure(command);
  EXPECT_EQ(TakeLog(), "\nParameter Not Found error - param name : D");
  SetFlags(false, true);
  CompileFailure(command);
  EXPECT_THAT(TakeLog(), EndsWith("\nComputing Packet Sizes\nError with total packet size"));
  // A request that carries it needs it as well, and a failed layout does not spoil the next one.
  command.SetRequestCommand();
  EXPECT_EQ(CompileFailure(command), TalcPath::kTPPacketSizeError);
  SetBytes(command, "D", {9});
  EXPECT_EQ(CompiledHex(command), "0B 0B 00 07 80 05 00 00 00 01 09");
}

TEST_F(CompilerFaultsTest, AnEmptyValueOfBytesCountsAsMissing) {
  TalcCommand command = Data(0);
  EXPECT_EQ(CompileFailure(command), TalcPath::kTPCompileMissingParameterData);
  SetFlags(true, true);
  CompileFailure(command);
  // It has no place in the packet, so that its writing is not told of.
  EXPECT_THAT(TakeLog(), EndsWith("\n\tWriting Parameter : L Type : UINT16 NumBytes: 2"
                                  "\nERROR - packet compilation failed"));
  TalcCommand diag("DiagData");
  diag.SetBytes("D", nullptr, 4);  // as good as empty
  EXPECT_EQ(CompileFailure(diag), TalcPath::kTPCompileMissingParameterData);
}

TEST_F(CompilerFaultsTest, MoreValuesThanAPacketHolds) {
  for (const bool isRequest : {false, true}) {
    TalcCommand fits = Data(2038);
    TalcCommand tooLong = Data(2039);
    if (isRequest) {
      fits.SetRequestCommand();
      tooLong.SetRequestCommand();
    }
    SetFlags(false, false);
    CompiledHex(fits);
    EXPECT_EQ(CompileFailure(tooLong), TalcPath::kTPPacketSizeError);
    EXPECT_EQ(TakeLog(), "");
    SetFlags(true, false);
    CompileFailure(tooLong);
    EXPECT_EQ(TakeLog(), "");
    SetFlags(false, true);
    CompileFailure(tooLong);
    EXPECT_THAT(TakeLog(),
                EndsWith("\nComputing Packet Sizes\nError with total packet size\nMaximum Packet Size - 2048"));
  }
  TalcCommand diag("DiagData");
  SetBytes(diag, "D", Bytes(2003));
  CompileFailure(diag);
  EXPECT_THAT(TakeLog(), EndsWith("\nError with total packet size\nMaximum Packet Size - 2048"));
  TalcCommand huge = Data(1 << 20);
  EXPECT_EQ(CompileFailure(huge), TalcPath::kTPPacketSizeError);
}

TEST_F(CompilerFaultsTest, AValueOfAnotherKindIsThrown) {
  TalcCommand narrow("Fixed");
  narrow.SetUInt16("A", 1);
  TalcCommand text("Fixed");
  SetBytes(text, "A", {1});
  TalcCommand sign("Fixed");
  sign.SetInt8("A", 1);
  TalcCommand second("Fixed");
  second.SetUInt8("A", 1);
  second.SetInt32("B", 1);
  TalcCommand number("Data");
  number.SetUInt16("L", 1);
  number.SetUInt8("D", 1);
  for (TalcCommand* const command : {&narrow, &text, &sign, &second, &number}) {
    TalcByteCode packet;
    packet.SetResponseSuccess();
    try {
      TalcPath::TalcPathCompile(*command, packet, nullptr, nullptr);
      ADD_FAILURE() << "nothing was thrown";
    } catch (const TalcPath::bad_variant_cast& error) {
      EXPECT_STREQ(error.what(), "bad_variant_cast: failed conversion using variant_cast");
    }
    EXPECT_EQ(packet.GetSize(), 0u);
  }
  // The library is as good as before.
  TalcCommand good = Data(1);
  EXPECT_EQ(CompiledHex(good), "0B 0B 00 07 80 04 00 00 00 01 11");
}

TEST_F(CompilerFaultsTest, ADefinitionThatWasNeverReadHasNoHeader) {
  ASSERT_TRUE(Define(std::make_unique<TalcCommandFormat>(), "Unread"));
  TalcCommand command("Unread");
  EXPECT_EQ(CompileFailure(command), TalcPath::kTPInvalidCommandHeader);
  command.SetRequestCommand();
  EXPECT_EQ(CompileFailure(command), TalcPath::kTPInvalidCommandHeader);
  EXPECT_EQ(TakeLog(), "");
  SetFlags(false, true);
  CompileFailure(command);
  EXPECT_THAT(TakeLog(), EndsWith("\n\tCompiling Packet \n\tWriting Talc Command Header"
                                  "\n\tError writing Talc Command header\nERROR - packet compilation failed"));
  SetFlags(true, false);
  CompileFailure(command);
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(CompilerFaultsTest, ADefinitionThatWasNotLaidOutHasNoSize) {
  auto format = std::make_unique<HandmadeTalc>(CommandType{Major::VIDEO, 0, 0});
  format->SetName("Shapeless");
  ASSERT_TRUE(format->AddToDefinedCommands());
  static_cast<void>(format.release());
  TalcCommand command("Shapeless");
  EXPECT_EQ(CompileFailure(command), TalcPath::kTPPacketSizeError);
  SetFlags(false, true);
  CompileFailure(command);
  EXPECT_THAT(TakeLog(), EndsWith("\nUsing precomputed packet size\nError with total packet size"));
}

TEST_F(CompilerFaultsTest, CodesThatDoNotFitTheHeader) {
  const struct {
    const char* name;
    CommandType type;
  } cases[] = {
      {"MajorAbove", {static_cast<Major>(4), 0, 0}},
      {"MajorBelow", {static_cast<Major>(-1), 0, 0}},
      {"MinorAbove", {Major::VIDEO, 64, 0}},
      {"MinorBelow", {Major::VIDEO, -1, 0}},
  };
  for (const auto& test : cases) {
    ASSERT_TRUE(Define(std::make_unique<HandmadeTalc>(test.type), test.name));
    TalcCommand command(test.name);
    EXPECT_EQ(CompileFailure(command), TalcPath::kTPInvalidCommandHeader) << test.name;
  }
}

// Only the parser checks the function; here it is cut to its seven bits. It is meant.
TEST_F(CompilerFaultsTest, AFunctionThatDoesNotFitIsCut) {
  ASSERT_TRUE(Define(std::make_unique<HandmadeTalc>(CommandType{Major::AUDIO, 63, 200}), "Above"));
  TalcCommand above("Above");
  EXPECT_EQ(CompiledHex(above), "0B 0B 00 04 7F 90 00 00");
  above.SetRequestCommand();
  EXPECT_EQ(CompiledHex(above), "0B 0B 00 04 7F 91 00 00");
  ASSERT_TRUE(Define(std::make_unique<HandmadeTalc>(CommandType{Major::AUDIO, 63, -1}), "Below"));
  TalcCommand below("Below");
  EXPECT_EQ(CompiledHex(below), "0B 0B 00 04 7F FE 00 00");
}

// The two blanks in the text are meant.
TEST_F(CompilerFaultsTest, AnOpcodeThatDoesNotFitTheHeader) {
  ASSERT_TRUE(Define(std::make_unique<HandmadeDiag>(256), "OpcodeAbove"));
  ASSERT_TRUE(Define(std::make_unique<HandmadeDiag>(-1), "OpcodeBelow"));
  for (const char* const name : {"OpcodeAbove", "OpcodeBelow"}) {
    TalcCommand command(name);
    SetFlags(false, false);
    EXPECT_EQ(CompileFailure(command), TalcPath::kTPInvalidCommandHeader) << name;
    EXPECT_EQ(TakeLog(), "");
    SetFlags(false, true);
    CompileFailure(command);
    EXPECT_THAT(TakeLog(), EndsWith("\n\tWriting Diag Command magic string\n\tWriting Diag Command opcode"
                                    "\n\tError writing  Diag Command header\nERROR - packet compilation failed"));
  }
}

// A layout whose count and size differ is written by nobody, and is refused.
TEST_F(CompilerFaultsTest, APlaceOfAnotherSizeThanTheValue) {
  TalcPathPrivate::CommandFormat* const format = TalcPathPrivate::FindDefinedCommand("Fixed");
  ASSERT_NE(format, nullptr);
  format->Parameters().at(0).packetPosition.numBytes = 2;
  TalcCommand command = Request("Fixed");
  command.SetUInt8("A", 1);
  EXPECT_EQ(CompileFailure(command), TalcPath::kTPCompileMissingParameterData);
  EXPECT_EQ(TakeLog(), "");
  SetFlags(false, true);
  CompileFailure(command);
  EXPECT_THAT(TakeLog(),
              EndsWith("\n\tWriting Parameter : A Type : UINT8"
                       "\nERROR - WritingParameterData - write for fixed size data is not equal to total size"
                       "\nERROR - packet compilation failed"));
}

TEST_F(CompilerFaultsTest, AParameterWithoutAPlaceIsRefusedWithoutAWord) {
  TalcPathPrivate::CommandFormat* const format = TalcPathPrivate::FindDefinedCommand("Fixed");
  ASSERT_NE(format, nullptr);
  const TalcPathPrivate::ParameterFormat good = format->Parameters().at(0);
  TalcCommand command = Request("Fixed");
  command.SetUInt8("A", 1);
  const auto expectRefused = [&](const char* what) {
    SetFlags(false, true);
    EXPECT_EQ(CompileFailure(command), TalcPath::kTPCompileMissingParameterData) << what;
    EXPECT_THAT(TakeLog(), EndsWith("\n\tCompiling Parameters \nERROR - packet compilation failed")) << what;
    format->Parameters().at(0) = good;
  };
  format->Parameters().at(0).packetPosition.packetOffset = -1;
  expectRefused("negative offset");
  format->Parameters().at(0).packetPosition.numBytes = 0;
  expectRefused("no stored length");
  format->Parameters().at(0).size = 0;
  expectRefused("no size");
  CompiledHex(command);
}

TEST_F(CompilerFaultsTest, SucceedsWithAnEmptyPacketWithoutMemoryForIt) {
  TalcCommand command = Data(1);
  TalcByteCode packet;
  TalcPathStatus status = kUntouchedStatus;
  SetFlags(false, true);
  {
    const test_support::FailingAllocation first(1);
    EXPECT_TRUE(TalcPath::TalcPathCompile(command, packet, nullptr, &status));
    EXPECT_TRUE(first.Happened());
  }
  EXPECT_EQ(status, TalcPath::kTPSuccess);
  const std::uint8_t* buffer = nullptr;
  EXPECT_FALSE(packet.GetPacketByteCodeBuffer(&buffer));
  EXPECT_THAT(TakeLog(), EndsWith("\n\tFinished Packet\nEND   - Bytecode Compilation"));
}

TEST_F(CompilerFaultsTest, FindsWhatIsWrongAlsoWithoutMemoryForThePacket) {
  TalcCommand command = Data(0);
  TalcByteCode packet;
  TalcPathStatus status = kUntouchedStatus;
  const test_support::FailingAllocation first(1);
  EXPECT_FALSE(TalcPath::TalcPathCompile(command, packet, nullptr, &status));
  EXPECT_EQ(status, TalcPath::kTPCompileMissingParameterData);
  EXPECT_EQ(packet.GetSize(), 0u);
}

TEST_F(CompilerFaultsTest, NothingIsLoggedOfAFaultWithoutTheTraceFlag) {
  SetFlags(true, false);
  TalcCommand fixed("Fixed");
  CompileFailure(fixed);
  TalcCommand empty = Data(0);
  CompileFailure(empty);
  EXPECT_EQ(TakeLog(), "");
}

}  // namespace
