// The file that takes each executed command.

#include <gtest/gtest.h>

#include "engine/CommandLog.h"
#include "EngineFixture.h"
#include "support/TempFolder.h"

namespace {

using namespace engine_test;
using TalcPath::TalcPathCloseCommandLog;
using TalcPath::TalcPathOpenCommandLog;
using TalcPathPrivate::WriteToCommandLog;

class CommandLogTest : public EngineTest {
 protected:
  bool Open(const char* name) { return TalcPathOpenCommandLog(folder_.File(name).c_str()); }

  test_support::TempFolder folder_;
};

TEST_F(CommandLogTest, TakesATimeStampAndAStatementForEachCommand) {
  ASSERT_TRUE(Open("log"));
  TalcCommand send("Foo");
  send.SetUInt8("A", 1);
  send.SetSymbol("B", "On");
  send.SetInt16("C", -2);
  SetBytes(send, "D", {'x', 'y'});
  clock_.milliseconds = 12345;
  WriteToCommandLog(send);
  TalcCommand request = Request("Bar");
  request.SetUInt8("A", 1);  // which a request does not show
  clock_.milliseconds = 12346;
  WriteToCommandLog(request);
  EXPECT_TRUE(TalcPathCloseCommandLog());
  EXPECT_EQ(folder_.ReadText("log"),
            "\n@time 12345 ;"
            "\ntalc send Foo A UINT8 1 B SYMBOL On C INT16 -2 D BYTES 2 xy . ;"
            "\n@time 12346 ;"
            "\ntalc request Bar . ;");
}

TEST_F(CommandLogTest, TellsTheTimeAsAnUnsignedNumber) {
  ASSERT_TRUE(Open("log"));
  const TalcCommand command("Foo");
  for (const std::uint32_t time : {0u, 2147483648u, 4294967295u}) {
    clock_.milliseconds = time;
    WriteToCommandLog(command);
  }
  TalcPathCloseCommandLog();
  EXPECT_EQ(folder_.ReadText("log"),
            "\n@time 0 ;\ntalc send Foo . ;"
            "\n@time 2147483648 ;\ntalc send Foo . ;"
            "\n@time 4294967295 ;\ntalc send Foo . ;");
}

TEST_F(CommandLogTest, TakesNothingWhenNoneIsOpen) {
  WriteToCommandLog(TalcCommand("Foo"));
  ASSERT_TRUE(Open("log"));
  TalcPathCloseCommandLog();
  WriteToCommandLog(TalcCommand("Foo"));
  EXPECT_EQ(folder_.ReadText("log"), "");
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(CommandLogTest, ClosesAlwaysWithSuccess) {
  EXPECT_TRUE(TalcPathCloseCommandLog());
  ASSERT_TRUE(Open("log"));
  EXPECT_TRUE(TalcPathCloseCommandLog());
  EXPECT_TRUE(TalcPathCloseCommandLog());
}

TEST_F(CommandLogTest, StartsAnewWhenOpenedAgain) {
  folder_.Write("log", "what was there before");
  ASSERT_TRUE(Open("log"));
  WriteToCommandLog(TalcCommand("First"));
  ASSERT_TRUE(Open("log"));
  WriteToCommandLog(TalcCommand("Second"));
  TalcPathCloseCommandLog();
  EXPECT_EQ(folder_.ReadText("log"), "\n@time 0 ;\ntalc send Second . ;");
}

TEST_F(CommandLogTest, GoesOnInTheFileThatWasOpenedLast) {
  ASSERT_TRUE(Open("one"));
  WriteToCommandLog(TalcCommand("First"));
  ASSERT_TRUE(Open("two"));
  EXPECT_EQ(folder_.ReadText("one"), "\n@time 0 ;\ntalc send First . ;");
  WriteToCommandLog(TalcCommand("Second"));
  TalcPathCloseCommandLog();
  EXPECT_EQ(folder_.ReadText("one"), "\n@time 0 ;\ntalc send First . ;");
  EXPECT_EQ(folder_.ReadText("two"), "\n@time 0 ;\ntalc send Second . ;");
}

TEST_F(CommandLogTest, ClosesTheOldOneAlsoWhenTheNewOneCannotBeOpened) {
  for (const char* const path : {"", "missing/log", "."}) {
    ASSERT_TRUE(Open("log"));
    WriteToCommandLog(TalcCommand("First"));
    EXPECT_FALSE(Open(path)) << path;
    WriteToCommandLog(TalcCommand("Second"));
    EXPECT_EQ(folder_.ReadText("log"), "\n@time 0 ;\ntalc send First . ;") << path;
  }
  EXPECT_FALSE(TalcPathOpenCommandLog(""));
  EXPECT_FALSE(TalcPathOpenCommandLog(nullptr));
}

TEST_F(CommandLogTest, NeedsNoStartAndIsClosedByTheLastStop) {
  ASSERT_TRUE(Open("log"));
  StartWith("Foo Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 1 ;");
  ASSERT_TRUE(TalcPath::TalcPathInit());
  ASSERT_TRUE(TalcPath::TalcPathTerminate());
  WriteToCommandLog(TalcCommand("First"));
  ASSERT_TRUE(TalcPath::TalcPathTerminate());
  EXPECT_EQ(folder_.ReadText("log"), "\n@time 0 ;\ntalc send First . ;");
  WriteToCommandLog(TalcCommand("Second"));
  EXPECT_EQ(folder_.ReadText("log"), "\n@time 0 ;\ntalc send First . ;");
}

TEST_F(CommandLogTest, StaysOpenForAStopWithoutAStart) {
  ASSERT_TRUE(Open("log"));
  ASSERT_TRUE(TalcPath::TalcPathTerminate());
  WriteToCommandLog(TalcCommand("Foo"));
  TalcPathCloseCommandLog();
  EXPECT_EQ(folder_.ReadText("log"), "\n@time 0 ;\ntalc send Foo . ;");
}

TEST_F(CommandLogTest, IsNotWrittenByCompiling) {
  StartWith("Foo Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 1 ;");
  ASSERT_TRUE(Open("log"));
  TalcCommand foo("Foo");
  CompiledHex(foo);
  Decompile(foo, "0B 0B 00 04 40 2E 00 00");
  TalcPathCloseCommandLog();
  EXPECT_EQ(folder_.ReadText("log"), "");
}

}  // namespace
