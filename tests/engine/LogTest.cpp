// Where the log goes, and which lines it has.

#include <gtest/gtest.h>

#include <ios>

#include "EngineFixture.h"
#include "support/CapturedOutput.h"

namespace {

using namespace engine_test;
using TalcPath::TalcPathSetLogFlags;
using TalcPath::TalcPathSetLogStream;
using TalcPathPrivate::logState;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr const char* kAlways = "\n<-> ERROR Attempted to Compile command - TalcPath NOT INITIALIZED!\n";

/// Has the library write one line that no flag holds back.
void WriteALine() {
  TalcCommand command("Foo");
  TalcByteCode packet;
  EXPECT_FALSE(TalcPath::TalcPathCompile(command, packet, nullptr, nullptr));
}

class LogTest : public EngineTest {};

TEST_F(LogTest, HasNeitherFlagAtTheStartOfTheProgram) {
  EXPECT_FALSE(logState.verbose);
  EXPECT_FALSE(logState.trace);
}

// The first argument has no meaning, and the verbose lines are switched on in every case. It is meant.
TEST_F(LogTest, SwitchesTheVerboseLinesOnWhateverIsGiven) {
  for (const std::uint8_t unused : std::initializer_list<std::uint8_t>{0, 1, 255})
    for (const bool trace : {true, false}) {
      logState.verbose = false;
      EXPECT_TRUE(TalcPathSetLogFlags(unused, trace));
      EXPECT_TRUE(logState.verbose);
      EXPECT_EQ(logState.trace, trace);
      EXPECT_TRUE(TalcPathSetLogFlags(unused, trace));
      EXPECT_TRUE(logState.verbose);
    }
}

TEST_F(LogTest, HasVerboseLinesAndTraceLinesApart) {
  StartWith("Foo Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 1 ;");
  TalcCommand unknown("Unknown");  // told of under the verbose flag
  TalcCommand foo("Foo");          // told of under the trace flag
  Compile(unknown);
  Compile(foo);
  EXPECT_EQ(TakeLog(), "");

  EXPECT_TRUE(TalcPathSetLogFlags(0, false));
  Compile(unknown);
  EXPECT_THAT(TakeLog(), HasSubstr("Command format not found - Command : Unknown"));
  Compile(foo);
  EXPECT_EQ(TakeLog(), "");

  EXPECT_TRUE(TalcPathSetLogFlags(0, true));
  Compile(unknown);
  EXPECT_THAT(TakeLog(), HasSubstr("Command format not found - Command : Unknown"));
  Compile(foo);
  EXPECT_THAT(TakeLog(), HasSubstr("\nBEGIN - Bytecode Compilation \nDetermine Packet Sizes"));
}

TEST_F(LogTest, GoesToStandardOutputUnlessTold) {
  TalcPathSetLogStream(nullptr);
  const test_support::CapturedOutput captured;
  WriteALine();
  EXPECT_EQ(captured.out(), kAlways);
  EXPECT_EQ(captured.err(), "");
  EXPECT_THAT(TakeLog(), IsEmpty());
}

TEST_F(LogTest, GoesToAnotherStreamAndBackAgain) {
  std::ostringstream other;
  const test_support::CapturedOutput captured;
  TalcPathSetLogStream(&other);
  WriteALine();
  EXPECT_EQ(other.str(), kAlways);
  EXPECT_EQ(captured.out(), "");
  TalcPathSetLogStream(nullptr);
  WriteALine();
  EXPECT_EQ(other.str(), kAlways);
  EXPECT_EQ(captured.out(), kAlways);
  TalcPathSetLogStream(&log_);
  WriteALine();
  EXPECT_EQ(captured.out(), kAlways);
  EXPECT_EQ(TakeLog(), kAlways);
}

TEST_F(LogTest, TellsOfAWholeStartOnStandardOutput) {
  TalcPathSetLogStream(nullptr);
  const test_support::CapturedOutput captured;
  EXPECT_FALSE(TalcPath::TalcPathInit());
  EXPECT_EQ(captured.out(),
            "\n\nTalcPath Initialization failed to find any Talc commands!!!!!!!"
            "\n>>> FAILED to initialize TalcPath <<<");
}

TEST_F(LogTest, ShowsDecimalNumbersWhateverTheStreamIsSetTo) {
  StartWith("Foo Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 1 DataName D DataType BYTES ;");
  log_ << std::hex << std::showbase;
  TalcCommand foo("Foo");
  SetBytes(foo, "D", Bytes(20));
  SetFlags(false, true);
  CompiledHex(foo);
  EXPECT_THAT(TakeLog(), HasSubstr(" NumBytes: 20\n"));
  SetBytes(foo, "D", Bytes(2041));
  CompileFailure(foo);
  EXPECT_THAT(TakeLog(), HasSubstr("\nMaximum Packet Size - 2048"));
}

}  // namespace
