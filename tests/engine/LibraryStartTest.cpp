// The start of the library: what it reads, what it tells, and what a failure leaves.

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "EngineFixture.h"

namespace {

using namespace engine_test;
using TalcPath::TalcPathInit;
using TalcPath::TalcPathTerminate;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr const char* kFoo = "Foo Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 1 ;";
constexpr const char* kBar = "Bar Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 2 ;";
constexpr const char* kFaulty = "Faulty Talc CommandTypeMajor AUDIO CommandTypeMinor 64 Function 2 ;";
constexpr const char* kFailed = "\n>>> FAILED to initialize TalcPath <<<";
constexpr const char* kNoCommands = "\n\nTalcPath Initialization failed to find any Talc commands!!!!!!!";
constexpr const char* kMisspelt = "\n\nTalcPath initialized Hardware Capabilites";
constexpr const char* kFaultyLines =
    "\n\nERROR Parsing Command Type Minor for Talc Command Definition - Command Name: Faulty"
    "\n\nERROR Failed to read CommandType Block - Command Name: Faulty"
    "\n\nERROR - Failed To Successfully parse Talc Command Definition file : Faulty.tcd";

class LibraryStartTest : public EngineTest {
 protected:
  static std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const auto& [name, format] : *TalcPathPrivate::DefinedCommands())
      names.push_back(name);
    return names;
  }
};

TEST_F(LibraryStartTest, ReadsTheBlocksInTheOrderOfTheList) {
  blocks_.Add("Second", kBar);
  blocks_.Add("First", kFoo);
  EXPECT_TRUE(TalcPathInit());
  EXPECT_THAT(blocks_.Asked(), ElementsAre("Second", "First"));
  EXPECT_THAT(Names(), ElementsAre("Bar", "Foo"));
  EXPECT_TRUE(TalcPathPrivate::IsInitialized());
}

TEST_F(LibraryStartTest, SaysNothingWhenAllIsWell) {
  blocks_.Add("Foo.tcd", kFoo);
  EXPECT_TRUE(TalcPathInit());
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(LibraryStartTest, TellsOfItsStepsUnderTheVerboseFlag) {
  SetFlags(true, false);
  blocks_.Add("Foo.tcd", kFoo);
  EXPECT_TRUE(TalcPathInit());
  const std::string log = TakeLog();
  EXPECT_THAT(log, StartsWith("\n<-> Initializing TalcPath...\n\nParsing Talc Command Definition File : Foo.tcd\n"));
  EXPECT_THAT(log, HasSubstr("\n\nFinished Parsing Talc Command Definition File : Foo.tcd\n"));
  EXPECT_THAT(log, EndsWith(std::string(kMisspelt) + "\n<->Finished initializing TalcPath - no errors."));
}

TEST_F(LibraryStartTest, SaysNothingUnderTheTraceFlagAlone) {
  SetFlags(false, true);
  blocks_.Add("Foo.tcd", kFoo);
  EXPECT_TRUE(TalcPathInit());
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(LibraryStartTest, OnlyCountsWhenItStandsAlready) {
  StartWith(kFoo);
  blocks_.Add("Bar.tcd", kBar);
  EXPECT_TRUE(TalcPathInit());
  EXPECT_EQ(TakeLog(), "\n<-> TalcPath already inited\n");
  EXPECT_THAT(Names(), ElementsAre("Foo"));
  EXPECT_THAT(blocks_.Asked(), ElementsAre("Test.tcd"));
}

TEST_F(LibraryStartTest, ReadsNoDirectoryWhenThereIsABlock) {
  files_.Add("./", {{"bar.tcd", false}});
  files_.Add("dictionaries/", {{"bar.tcd", false}});
  TalcPath::TalcPathSetDirectory("dictionaries");
  blocks_.Add("Foo.tcd", kFoo);
  EXPECT_TRUE(TalcPathInit());
  EXPECT_THAT(files_.Asked(), IsEmpty());
}

TEST_F(LibraryStartTest, ReadsNoDirectoryWhenABlockIsFaulty) {
  TalcPath::TalcPathSetDirectory("dictionaries");
  blocks_.Add("Faulty.tcd", kFaulty);
  EXPECT_FALSE(TalcPathInit());
  EXPECT_THAT(files_.Asked(), IsEmpty());
}

TEST_F(LibraryStartTest, FailsWithoutAnyDictionary) {
  EXPECT_FALSE(TalcPathInit());
  EXPECT_EQ(TakeLog(), std::string(kNoCommands) + kFailed);
  EXPECT_FALSE(TalcPathPrivate::IsInitialized());
  EXPECT_THAT(files_.Asked(), ElementsAre("./"));
}

TEST_F(LibraryStartTest, FailsForBlocksThatDefineNothing) {
  for (const char* const text : {"# only a comment ;", " ", "Foo Talc CommandTypeMajor AUDIO", ";"}) {
    blocks_.RemoveAll();
    blocks_.Add("Nothing.tcd", text);
    EXPECT_FALSE(TalcPathInit()) << text;
    EXPECT_EQ(TakeLog(), std::string(kNoCommands) + kFailed) << text;
  }
  // These were found, so that no directory was read.
  EXPECT_THAT(files_.Asked(), IsEmpty());
}

// The misspelt line comes also after a failure, when there was nothing to initialize. It is meant.
TEST_F(LibraryStartTest, TellsOfCapabilitiesAlsoAfterAFailure) {
  SetFlags(true, false);
  EXPECT_FALSE(TalcPathInit());
  EXPECT_EQ(TakeLog(), std::string("\n<-> Initializing TalcPath...\n"
                                   "\nProcessing directory: ./ Task: Parsing Talc Command Definition Files\n") +
                           kNoCommands + kMisspelt + kFailed);
}

TEST_F(LibraryStartTest, StopsAtAFaultyBlock) {
  blocks_.Add("Foo.tcd", kFoo);
  blocks_.Add("Faulty.tcd", kFaulty);
  blocks_.Add("Bar.tcd", kBar);
  EXPECT_FALSE(TalcPathInit());
  EXPECT_EQ(TakeLog(), std::string(kFaultyLines) + kFailed);
  EXPECT_THAT(blocks_.Asked(), ElementsAre("Foo.tcd", "Faulty.tcd"));
  EXPECT_THAT(Names(), ElementsAre("Foo"));
}

TEST_F(LibraryStartTest, LooksForCommandsAlsoAfterAFaultyBlock) {
  SetFlags(true, false);
  blocks_.Add("Faulty.tcd", kFaulty);
  EXPECT_FALSE(TalcPathInit());
  EXPECT_THAT(TakeLog(),
              EndsWith(std::string("\n\nERROR - Failed To Successfully parse Talc Command Definition file : Faulty.tcd"
                                   "\n\nTalcPath failed initializing while reading Talc Command Definition resources") +
                       kNoCommands + kMisspelt + kFailed));
}

// Nothing is undone, so that a second try meets what the first one read. It is meant.
TEST_F(LibraryStartTest, LeavesWhatItReadWhenItFails) {
  blocks_.Add("Foo.tcd", kFoo);
  blocks_.Add("Faulty.tcd", kFaulty);
  ASSERT_FALSE(TalcPathInit());
  TakeLog();
  EXPECT_FALSE(TalcPathPrivate::IsInitialized());
  TalcCommand foo("Foo");
  TalcByteCode packet;
  EXPECT_FALSE(TalcPath::TalcPathCompile(foo, packet, nullptr, nullptr));
  EXPECT_EQ(TakeLog(), "\n<-> ERROR Attempted to Compile command - TalcPath NOT INITIALIZED!\n");

  EXPECT_FALSE(TalcPathInit());
  EXPECT_EQ(TakeLog(), std::string("\n\nERROR - Talc Command Definition : Foo NOT UNIQUE"
                                   "\n\nERROR - Failed To Successfully parse Talc Command Definition file : Foo.tcd") +
                           kFailed);
  // A stop does not count as one, so that it does not help.
  EXPECT_TRUE(TalcPathTerminate());
  EXPECT_FALSE(TalcPathInit());
}

TEST_F(LibraryStartTest, MayStandOnWhatAFailedStartLeft) {
  blocks_.Add("Foo.tcd", kFoo);
  blocks_.Add("Faulty.tcd", kFaulty);
  ASSERT_FALSE(TalcPathInit());
  blocks_.RemoveAll();
  blocks_.Add("Bar.tcd", kBar);
  EXPECT_TRUE(TalcPathInit());
  EXPECT_THAT(Names(), ElementsAre("Bar", "Foo"));
}

TEST_F(LibraryStartTest, TellsOfAnException) {
  blocks_.Add("Foo.tcd", kFoo);
  blocks_.Add("Bar.tcd", kBar);
  blocks_.OnBytes([](std::string_view name) {
    if (name == "Bar.tcd") throw std::runtime_error("the block is gone");
  });
  SetFlags(true, false);
  EXPECT_FALSE(TalcPathInit());
  EXPECT_THAT(TakeLog(), EndsWith(std::string("\n\nFinished Parsing Talc Command Definition File : Foo.tcd\n"
                                              "\n\nException while Initializing TalcPath : the block is gone") +
                                  kFailed));
  EXPECT_FALSE(TalcPathPrivate::IsInitialized());
  EXPECT_THAT(Names(), ElementsAre("Foo"));
}

TEST_F(LibraryStartTest, TellsOfAnExceptionThatIsNoStandardOne) {
  blocks_.Add("Foo.tcd", kFoo);
  blocks_.OnBytes([](std::string_view) { throw 42; });
  EXPECT_FALSE(TalcPathInit());
  EXPECT_EQ(TakeLog(), std::string("\n\nUnknown Exception while Initializing TalcPath : ") + kFailed);
  // It left nothing, so that the next one stands.
  blocks_.OnBytes(nullptr);
  EXPECT_TRUE(TalcPathInit());
}

TEST_F(LibraryStartTest, KeepsHalfADictionaryWhenMemoryRunsOut) {
  blocks_.Add("Foo.tcd", kFoo);
  blocks_.Add("Bar.tcd", kBar);
  blocks_.OnBytes([](std::string_view name) {
    if (name == "Bar.tcd") throw std::bad_alloc();
  });
  EXPECT_FALSE(TalcPathInit());
  EXPECT_EQ(TakeLog(), std::string("\n\nException while Initializing TalcPath : std::bad_alloc") + kFailed);
  EXPECT_FALSE(TalcPathPrivate::IsInitialized());
  EXPECT_THAT(Names(), ElementsAre("Foo"));
}

TEST_F(LibraryStartTest, TellsOfAnExceptionOutOfADirectory) {
  files_.OnList([](const std::string&) { throw std::runtime_error("the disk is gone"); });
  EXPECT_FALSE(TalcPathInit());
  EXPECT_EQ(TakeLog(), std::string("\n\nException while Initializing TalcPath : the disk is gone") + kFailed);
}

/// Calls that only a started library answers.
class RefusedEntriesTest : public EngineTest {
 protected:
  void ExpectRefused(const std::string& compileLine, const std::string& decompileLine, const char* name) {
    for (const bool isTolerant : {false, true}) {
      TalcCommand command(name);
      command.SetRequestCommand();
      command.SetUInt8("V", 1);
      command.SetStatus(TalcPath::kTPTimeOut);
      TakeLog();
      const Compiled compiled = Compile(command);
      EXPECT_EQ(TakeLog(), compileLine);
      EXPECT_FALSE(compiled.isGood);
      EXPECT_EQ(compiled.status, TalcPath::kTPSuccess);  // zeroed, whatever comes
      EXPECT_EQ(compiled.timeoutMilliseconds, 0u);

      const Decompiled decompiled = Decompile(command, "0B 0B 00 04 40 2E 00 00", isTolerant);
      EXPECT_EQ(TakeLog(), decompileLine);
      EXPECT_EQ(decompiled, (Decompiled{false, TalcPath::kTPSuccess}));
      // The command is left alone.
      EXPECT_EQ(command.GetStatus(), TalcPath::kTPTimeOut);
      EXPECT_TRUE(command.HasParameter("V"));

      TalcByteCode packet;
      EXPECT_FALSE(TalcPath::TalcPathCompile(command, packet, nullptr, nullptr));
      EXPECT_FALSE(TalcPath::TalcPathDecompile(command, packet, nullptr, isTolerant));
      TakeLog();
    }
  }
  void ExpectNotInitialized(const char* name) {
    ExpectRefused("\n<-> ERROR Attempted to Compile command - TalcPath NOT INITIALIZED!\n",
                  "\n<-> ERROR Attempted to Decompile bytecode - TalcPath NOT INITIALIZED!\n", name);
  }
};

constexpr const char* kMeta = "Meta Meta Start A Repeat B Stop C ;";

TEST_F(RefusedEntriesTest, BeforeTheStart) {
  ExpectNotInitialized("Foo");
  SetFlags(true, true);
  ExpectNotInitialized("Foo");
}

TEST_F(RefusedEntriesTest, AfterTheStop) {
  StartWith(kFoo);
  ASSERT_TRUE(TalcPathTerminate());
  ExpectNotInitialized("Foo");
}

TEST_F(RefusedEntriesTest, AfterAStartThatFailed) {
  blocks_.Add("Foo.tcd", std::string(kFoo) + kMeta + kFaulty);
  ASSERT_FALSE(TalcPathInit());
  ExpectNotInitialized("Foo");
  ExpectNotInitialized("Meta");
}

TEST_F(RefusedEntriesTest, ForAMetaCommand) {
  StartWith(std::string(kFoo) + kMeta);
  for (const bool flag : {false, true}) {
    SetFlags(flag, flag);
    ExpectRefused("\n<-> ERROR Attempted to Compile a MetaCommand - MetaCommands can only be Execute(d)!\n",
                  "\n<-> ERROR Attempted to Decompile a MetaCommand - MetaCommands can only be Execute(d)!\n", "Meta");
  }
}

}  // namespace
