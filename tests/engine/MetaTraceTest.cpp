// What the log tells of the making of a meta command's packets.

#include <gtest/gtest.h>

#include "MetaFixture.h"

namespace {

using namespace engine_test;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class MetaTraceTest : public EngineTest {
 protected:
  void SetUp() override {
    StartWith(kCarriers + Meta("Load", "DataName Kind DataType UINT16 DataName Image DataType BYTES ") +
              Meta("Nothing", ""));
  }
  /// What is logged while the command compiles, or does not.
  std::string Compiling(TalcCommand command, bool isGood) {
    MetaCommandByteCodeProcessor processor(command);
    EXPECT_EQ(processor.Compile(), isGood);
    return TakeLog();
  }
};

TalcCommand Load(std::size_t imageBytes) {
  TalcCommand command = WithImage("Load", imageBytes);
  command.SetUInt16("Kind", 1);
  return command;
}

TEST_F(MetaTraceTest, TellsOfTheCommandAndOfEachPacket) {
  SetFlags(false, true);
  EXPECT_EQ(Compiling(TalcCommand("Nothing"), true),
            "\n\nConstructing MetaCommandByteCodeProcessor Compiler - Command : Nothing"
            "\n"
            "\n\nConstructing ByteCode Compiler - Command : Begin"
            "\n\nBEGIN - Talc Command Format"
            "\nName: Begin"
            "\nType Major: SYSTEM"
            "\nType Minor: 0"
            "\nFunction: 1"
            "\nParams {"
            "\n\tParameter: TotalSize Type: UINT32 IsRequiredForRequestData: false"
            "\n\t\tPacket Offset: 8"
            "\n\t\tNum Bytes For Packet Position: 4"
            "\n\t\tSize: 4"
            "\n\t\tVariable Length: false"
            "\n       }"
            "\nHasVariableLengthData: false"
            "\nPacket Info:  Send Size: 12 Send Payload Size: 4"
            "\n\tRequest Size: 8 Request Payload Size: 0"
            "\nEND   - Talc Command Format"
            "\n"
            "\nBEGIN - Bytecode Compilation "
            "\nDetermine Packet Sizes"
            "\nUsing precomputed packet size"
            "\nCompile command into packets..."
            "\n\tCompiling Packet "
            "\n\tWriting Talc Command Header"
            "\n\tCompiling Parameters "
            "\n\tWriting Parameter : TotalSize Type : UINT32 NumBytes: 4"
            "\n\tFinished Packet"
            "\nEND   - Bytecode Compilation"
            "\n\nConstructing ByteCode Compiler - Command : End"
            "\n\nBEGIN - Talc Command Format"
            "\nName: End"
            "\nType Major: SYSTEM"
            "\nType Minor: 0"
            "\nFunction: 3"
            "\nParams {"
            "\n       }"
            "\nHasVariableLengthData: false"
            "\nPacket Info:  Send Size: 8 Send Payload Size: 0"
            "\n\tRequest Size: 8 Request Payload Size: 0"
            "\nEND   - Talc Command Format"
            "\n"
            "\nBEGIN - Bytecode Compilation "
            "\nDetermine Packet Sizes"
            "\nUsing precomputed packet size"
            "\nCompile command into packets..."
            "\n\tCompiling Packet "
            "\n\tWriting Talc Command Header"
            "\n\tCompiling Parameters "
            "\n\tFinished Packet"
            "\nEND   - Bytecode Compilation");
}

TEST_F(MetaTraceTest, CountsTheBytesOfEachValueBetweenThePackets) {
  SetFlags(false, true);
  EXPECT_THAT(Compiling(Load(2039), true), HasSubstr("\nEND   - Bytecode Compilation"
                                                     " NumBytes: 2"
                                                     " NumBytes: 2039"
                                                     "\n\nConstructing ByteCode Compiler - Command : Part"));
}

TEST_F(MetaTraceTest, IsSilentWithoutTheTraceFlag) {
  for (const bool isVerbose : {false, true}) {
    SetFlags(isVerbose, false);
    EXPECT_EQ(Compiling(Load(3), true), "");
    EXPECT_EQ(Compiling(Load(4078), false), "");
  }
}

TEST_F(MetaTraceTest, TellsOfACommandThatIsNotDefinedUnderTheVerboseFlag) {
  SetFlags(true, false);
  EXPECT_EQ(Compiling(TalcCommand("Nobody"), false),
            "\nConstructing ByteCode Compiler - Command format not found - Command : Nobody");
  SetFlags(false, true);
  EXPECT_EQ(Compiling(TalcCommand("Nobody"), false), "");
}

TEST_F(MetaTraceTest, HasNoWordForACommandThatIsNoMetaCommand) {
  SetFlags(true, true);
  EXPECT_EQ(Compiling(TalcCommand("End"), false), "");
}

TEST_F(MetaTraceTest, TellsOfAMissingNumber) {
  SetFlags(false, true);
  const std::string log = Compiling(WithImage("Load", 3), false);
  EXPECT_THAT(log, EndsWith("\nEND   - Bytecode Compilation"
                            "\nMetaCommand ERROR - RepeatCommand packet compilation failed"
                            "\nMetaCommand ERROR - Repeat packet compilation failed"));
}

TEST_F(MetaTraceTest, TellsOfMissingBytesByTheirSize) {
  SetFlags(true, true);
  TalcCommand command("Load");
  command.SetUInt16("Kind", 1);
  const std::string log = Compiling(command, false);
  EXPECT_THAT(log, StartsWith("\n\nConstructing MetaCommandByteCodeProcessor Compiler - Command : Load\n"
                              "\nParameter Not Found error - param name : Image"
                              "\n\nConstructing ByteCode Compiler - Command : Begin"));
  EXPECT_THAT(log, EndsWith("\nEND   - Bytecode Compilation"
                            " NumBytes: 2"
                            "\nMetaCommand ERROR - RepeatCommand data param size error"
                            "\nMetaCommand ERROR - Repeat packet compilation failed"));
  // An empty value is found.
  SetBytes(command, "Image", {});
  const std::string emptyLog = Compiling(command, false);
  EXPECT_THAT(emptyLog, Not(HasSubstr("Not Found")));
  EXPECT_THAT(ErrorsIn(emptyLog),
              ElementsAre("RepeatCommand data param size error", "Repeat packet compilation failed"));
}

// The last packet that fails is a Repeat, and the word that of the Stop. It is meant.
TEST_F(MetaTraceTest, TellsOfTheEmptyBlockBehindACutAsOfAStop) {
  SetFlags(false, true);
  EXPECT_THAT(Compiling(Load(4078), false), EndsWith("\n\tWriting Talc Command Header"
                                                     "\n\tCompiling Parameters "
                                                     "\nERROR - packet compilation failed"
                                                     "\nMetaCommand ERROR - StopCommand packet compilation failed"
                                                     "\nMetaCommand ERROR - Repeat packet compilation failed"));
}

TEST_F(MetaTraceTest, TellsOfAParameterOfAnUnknownType) {
  TalcPathPrivate::FindDefinedCommand("Load")->Parameters()[0].dataType = TalcPathPrivate::DataType("UINT24");
  SetFlags(true, true);
  const std::string log = Compiling(Load(3), false);
  EXPECT_THAT(log, HasSubstr("\nParameter Size error - param name : Kind"));
  EXPECT_THAT(ErrorsIn(log), ElementsAre("RepeatCommand data param size error", "Repeat packet compilation failed"));
}

}  // namespace
