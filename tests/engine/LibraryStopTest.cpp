// The end of the library.

#include <gtest/gtest.h>

#include "EngineFixture.h"

namespace {

using namespace engine_test;
using TalcPath::TalcPathInit;
using TalcPath::TalcPathTerminate;
using ::testing::HasSubstr;

constexpr const char* kDictionary =
    "Foo Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 1 ;"
    "Diag Diag DiagOpcode 5 ;"
    "Meta Meta Start A Repeat B Stop C ;";

class LibraryStopTest : public EngineTest {
 protected:
  void ExpectCompiles(bool expected) {
    TalcCommand foo("Foo");
    EXPECT_EQ(Compile(foo).isGood, expected);
    TakeLog();
  }
};

TEST_F(LibraryStopTest, SucceedsWithoutAStart) {
  SetFlags(true, true);
  EXPECT_TRUE(TalcPathTerminate());
  EXPECT_TRUE(TalcPathTerminate());
  EXPECT_EQ(TakeLog(), "");
  SetFlags(false, false);
  StartWith(kDictionary);
  ExpectCompiles(true);
}

TEST_F(LibraryStopTest, ForgetsTheDictionary) {
  StartWith(kDictionary);
  EXPECT_EQ(TalcPathPrivate::DefinedCommands()->size(), 3u);
  EXPECT_EQ(TalcPathPrivate::CommandTypes()->size(), 1u);
  EXPECT_EQ(TalcPathPrivate::DiagOpcodes()->size(), 1u);
  SetFlags(true, true);
  EXPECT_TRUE(TalcPathTerminate());
  EXPECT_EQ(TakeLog(), "");
  EXPECT_FALSE(TalcPathPrivate::IsInitialized());
  EXPECT_EQ(TalcPathPrivate::DefinedCommands()->size(), 0u);
  EXPECT_EQ(TalcPathPrivate::CommandTypes()->size(), 0u);
  EXPECT_EQ(TalcPathPrivate::DiagOpcodes()->size(), 0u);
  EXPECT_EQ(TalcPathPrivate::FindDefinedCommand("Foo"), nullptr);
}

TEST_F(LibraryStopTest, NeedsAsManyStopsAsThereWereStarts) {
  StartWith(kDictionary);
  EXPECT_TRUE(TalcPathInit());
  EXPECT_TRUE(TalcPathInit());
  EXPECT_TRUE(TalcPathTerminate());
  ExpectCompiles(true);
  EXPECT_TRUE(TalcPathTerminate());
  ExpectCompiles(true);
  EXPECT_TRUE(TalcPathTerminate());
  ExpectCompiles(false);
  // One too many does not make the count negative.
  EXPECT_TRUE(TalcPathTerminate());
  EXPECT_TRUE(TalcPathInit());
  ExpectCompiles(true);
}

TEST_F(LibraryStopTest, LetsTheLibraryStartAgain) {
  StartWith(kDictionary);
  ASSERT_TRUE(TalcPath::SetOverrideTimeoutMillisec("Foo", 900));
  for (int round = 0; round < 3; ++round) {
    EXPECT_TRUE(TalcPathTerminate());
    EXPECT_TRUE(TalcPathInit());
    EXPECT_EQ(TakeLog(), "");
    EXPECT_EQ(TalcPathPrivate::DefinedCommands()->size(), 3u);
    TalcCommand foo("Foo");
    EXPECT_EQ(Compile(foo).timeoutMilliseconds, 0u);  // with fresh definitions
  }
}

TEST_F(LibraryStopTest, ReadsAnotherDictionaryTheNextTime) {
  StartWith(kDictionary);
  ExpectCompiles(true);
  EXPECT_TRUE(TalcPathTerminate());
  blocks_.RemoveAll();
  blocks_.Add("Other.tcd", "Foo Talc CommandTypeMajor VIDEO CommandTypeMinor 1 Function 3 ;");
  EXPECT_TRUE(TalcPathInit());
  TalcCommand foo("Foo");
  EXPECT_EQ(CompiledHex(foo), "0B 0B 00 04 01 06 00 00");
}

TEST_F(LibraryStopTest, ForgetsTheDirectory) {
  StartWith(kDictionary);
  ASSERT_TRUE(TalcPath::TalcPathSetDirectory("dictionaries"));
  ASSERT_TRUE(TalcPathTerminate());
  blocks_.RemoveAll();
  EXPECT_FALSE(TalcPathInit());
  EXPECT_THAT(files_.Asked(), ::testing::ElementsAre("./"));
}

TEST_F(LibraryStopTest, KeepsTheLogWhereItIs) {
  StartWith(kDictionary);
  TalcPath::TalcPathSetLogFlags(0, true);
  ASSERT_TRUE(TalcPathTerminate());
  EXPECT_TRUE(TalcPathPrivate::logState.verbose);
  EXPECT_TRUE(TalcPathPrivate::logState.trace);
  ASSERT_TRUE(TalcPathInit());
  EXPECT_THAT(TakeLog(), HasSubstr("\n<-> Initializing TalcPath...\n"));
}

// So of the three only the last one's errors could ever be told at a stop. It is meant.
TEST_F(LibraryStopTest, EachTableEmptiesTheErrorsOfTheOneBefore) {
  StartWith(kDictionary);
  TalcPathPrivate::ErrorList errors = {"found before"};
  EXPECT_TRUE(TalcPathPrivate::DeleteDefinedCommands(errors));
  EXPECT_TRUE(errors.empty());
  errors = {"found before"};
  EXPECT_TRUE(TalcPathPrivate::DeleteCommandTypeTable(errors));
  EXPECT_TRUE(errors.empty());
  errors = {"found before"};
  EXPECT_TRUE(TalcPathPrivate::DeleteDiagOpcodeTable(errors));
  EXPECT_TRUE(errors.empty());
  EXPECT_TRUE(TalcPathTerminate());
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(LibraryStopTest, GivesAllCommandsAgainAtTheNextStart) {
  StartWithEmbedded();
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(TalcPathPrivate::DefinedCommands()->size(), 163u);
    EXPECT_EQ(TalcPathPrivate::CommandTypes()->size(), 145u);
    EXPECT_EQ(TalcPathPrivate::DiagOpcodes()->size(), 18u);
    EXPECT_TRUE(TalcPathTerminate());
    EXPECT_EQ(TalcPathPrivate::DefinedCommands()->size(), 0u);
    EXPECT_TRUE(TalcPathInit());
    EXPECT_EQ(TakeLog(), "");
  }
}

}  // namespace
