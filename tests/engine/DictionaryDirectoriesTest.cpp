// Dictionaries in directories, for programs that carry none.

#include <gtest/gtest.h>

#include <filesystem>

#include "EngineFixture.h"
#include "RecordingProcessor.h"
#include "support/ScopedWorkingFolder.h"
#include "support/TempFolder.h"
#include "support/UnopenableFile.h"

namespace {

using namespace engine_test;
using TalcPath::TalcPathInit;
using TalcPath::TalcPathSetDirectory;
using TalcPathPrivate::ProcessDirectory;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

std::string Definition(const std::string& name, int function) {
  return name + " Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function " + std::to_string(function) + " ;";
}

/// Real directories: one to work in, and another one.
class DictionaryDirectoriesTest : public EngineTest {
 protected:
  DictionaryDirectoriesTest() { system_.Use(platform::Native().files()); }

  static std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const auto& [name, format] : *TalcPathPrivate::DefinedCommands())
      names.push_back(name);
    return names;
  }

  test_support::TempFolder here_;
  test_support::TempFolder there_;
  test_support::ScopedWorkingFolder working_{here_.Path()};
};

TEST_F(DictionaryDirectoriesTest, ReadsTheWorkingDirectory) {
  here_.Write("b.tcd", Definition("B", 2));
  here_.Write("a.tcd", Definition("A", 1));
  SetFlags(true, false);
  EXPECT_TRUE(TalcPathInit());
  EXPECT_THAT(Names(), ElementsAre("A", "B"));
  const std::string log = TakeLog();
  EXPECT_THAT(log, HasSubstr("\nProcessing directory: ./ Task: Parsing Talc Command Definition Files\n"
                             "\nParsing Talc Command Definition File : ./a.tcd\n"));
  EXPECT_THAT(log, HasSubstr("\nParsing Talc Command Definition File : ./b.tcd\n"));
}

TEST_F(DictionaryDirectoriesTest, ReadsTheDirectoryThatWasSetBehindIt) {
  here_.Write("a.tcd", Definition("A", 1));
  there_.Write("a.tcd", Definition("B", 2));
  ASSERT_TRUE(TalcPathSetDirectory(there_.Path().string().c_str()));
  SetFlags(true, false);
  EXPECT_TRUE(TalcPathInit());
  EXPECT_THAT(Names(), ElementsAre("A", "B"));
  const std::string log = TakeLog();
  const std::string there = there_.Path().string() + "/a.tcd";
  ASSERT_THAT(log, HasSubstr(there));
  EXPECT_LT(log.find("./a.tcd"), log.find(there));
}

TEST_F(DictionaryDirectoriesTest, TakesAPathWithAndWithoutItsSlash) {
  there_.Write("a.tcd", Definition("A", 1));
  const std::string path = there_.Path().string();
  for (const std::string& given : {path, path + "/"}) {
    ASSERT_TRUE(TalcPathSetDirectory(given.c_str()));
    SetFlags(true, false);
    EXPECT_TRUE(TalcPathInit());
    const std::string log = TakeLog();
    EXPECT_THAT(log, HasSubstr("\nProcessing directory: " + path +
                               "/ Task: Parsing Talc Command Definition Files\n"
                               "\nParsing Talc Command Definition File : " +
                               path + "/a.tcd\n"));
    EXPECT_TRUE(TalcPath::TalcPathTerminate());
  }
}

TEST_F(DictionaryDirectoriesTest, TakesOnlyFilesWhoseNamesEndInTcd) {
  here_.Write("good.tcd", Definition("Good", 1));
  here_.Write(".tcd", Definition("Bare", 2));
  here_.Write("upper.TCD", Definition("Upper", 3));
  here_.Write("mixed.Tcd", Definition("Mixed", 4));
  here_.Write("longer.tcd.txt", Definition("Longer", 5));
  here_.Write("tcd", Definition("NoDot", 6));
  here_.Write("folder.tcd/inner.tcd", Definition("Inner", 7));
  EXPECT_TRUE(TalcPathInit());
  EXPECT_THAT(Names(), ElementsAre("Bare", "Good"));
}

TEST_F(DictionaryDirectoriesTest, StopsItsDirectoryAtAFaultyFileAndReadsTheOther) {
  here_.Write("a.tcd", Definition("A", 1));
  here_.Write("b.tcd", Definition("B", 128));
  here_.Write("c.tcd", Definition("C", 3));
  there_.Write("d.tcd", Definition("D", 4));
  ASSERT_TRUE(TalcPathSetDirectory(there_.Path().string().c_str()));
  EXPECT_FALSE(TalcPathInit());
  EXPECT_THAT(Names(), ElementsAre("A", "D"));
  EXPECT_EQ(TakeLog(),
            "\n\nERROR Parsing Command Function for Talc Command Definition - Command Name: B"
            "\n\nERROR Failed to read CommandType Block - Command Name: B"
            "\n\nERROR - Failed To Successfully parse Talc Command Definition file : ./b.tcd"
            "\n>>> FAILED to initialize TalcPath <<<");
}

TEST_F(DictionaryDirectoriesTest, TellsWhichDirectoryFailed) {
  here_.Write("a.tcd", Definition("A", 128));
  there_.Write("b.tcd", Definition("B", 128));
  const std::string path = there_.Path().string();
  ASSERT_TRUE(TalcPathSetDirectory(path.c_str()));
  SetFlags(true, false);
  EXPECT_FALSE(TalcPathInit());
  const std::string log = TakeLog();
  EXPECT_THAT(log, HasSubstr("\n\nERROR - Failed To Successfully parse Talc Command Definition file : ./a.tcd"
                             "\n\nTalcPath failed initializing while reading current directory"
                             "\nProcessing directory: " +
                             path + "/ Task: "));
  EXPECT_THAT(log, HasSubstr("/b.tcd\n\nTalcPath failed initializing while reading directory : " + path +
                             "\n\nTalcPath Initialization failed to find any Talc commands!!!!!!!"
                             "\n\nTalcPath initialized Hardware Capabilites"));
  // No block of text has failed.
  EXPECT_THAT(log, Not(HasSubstr("resources")));
}

TEST_F(DictionaryDirectoriesTest, FailsForTheDirectoryThatWasSetAlone) {
  here_.Write("a.tcd", Definition("A", 1));
  there_.Write("b.tcd", Definition("A", 2));  // a name that is taken
  ASSERT_TRUE(TalcPathSetDirectory(there_.Path().string().c_str()));
  SetFlags(true, false);
  EXPECT_FALSE(TalcPathInit());
  const std::string log = TakeLog();
  EXPECT_THAT(log, Not(HasSubstr("while reading current directory")));
  EXPECT_THAT(log, HasSubstr("\n\nTalcPath failed initializing while reading directory : " + there_.Path().string()));
  EXPECT_THAT(Names(), ElementsAre("A"));
}

TEST_F(DictionaryDirectoriesTest, TakesAMissingDirectoryAsEmpty) {
  here_.Write("a.tcd", Definition("A", 1));
  ASSERT_TRUE(TalcPathSetDirectory(there_.File("missing").c_str()));
  EXPECT_TRUE(TalcPathInit());
  EXPECT_THAT(Names(), ElementsAre("A"));
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(DictionaryDirectoriesTest, TakesAFileThatCannotBeOpenedAsEmpty) {
  const test_support::UnopenableFile unopenable(here_.File("a.tcd"));
  here_.Write("b.tcd", Definition("B", 1));
  EXPECT_TRUE(TalcPathInit());
  EXPECT_THAT(Names(), ElementsAre("B"));
}

TEST_F(DictionaryDirectoriesTest, AFileMayEndInAnything) {
  here_.Write("a.tcd", Definition("A", 1) + "\r\n and no more");
  here_.Write("b.tcd", "");
  EXPECT_TRUE(TalcPathInit());
  EXPECT_THAT(Names(), ElementsAre("A"));
}

TEST_F(DictionaryDirectoriesTest, AreLeftOutByAProgramThatCarriesDictionaries) {
  here_.Write("a.tcd", "this would fail ;");
  there_.Write("a.tcd", "this would fail ;");
  ASSERT_TRUE(TalcPathSetDirectory(there_.Path().string().c_str()));
  StartWithEmbedded();
  EXPECT_EQ(TalcPathPrivate::DefinedCommands()->size(), 163u);
}

/// The setting of a directory, and one directory by itself.
class ProcessDirectoryTest : public EngineTest {
 protected:
  RecordingProcessor processor_;
};

TEST_F(ProcessDirectoryTest, ThePathIsTheOneSetLast) {
  EXPECT_TRUE(TalcPathSetDirectory("first"));
  EXPECT_TRUE(TalcPathSetDirectory("second"));
  EXPECT_FALSE(TalcPathSetDirectory(nullptr));  // which leaves the one before
  EXPECT_FALSE(TalcPathInit());
  EXPECT_THAT(files_.Asked(), ElementsAre("./", "second/"));
}

TEST_F(ProcessDirectoryTest, AnEmptyPathIsNone) {
  EXPECT_FALSE(TalcPathSetDirectory(""));
  EXPECT_FALSE(TalcPathInit());
  EXPECT_TRUE(TalcPathSetDirectory("first"));
  EXPECT_FALSE(TalcPathSetDirectory(""));
  EXPECT_FALSE(TalcPathInit());
  EXPECT_THAT(files_.Asked(), ElementsAre("./", "./"));
}

TEST_F(ProcessDirectoryTest, ThePathMustBeSetBeforeTheStart) {
  EXPECT_FALSE(TalcPathInit());
  EXPECT_TRUE(TalcPathSetDirectory("late"));
  EXPECT_THAT(files_.Asked(), ElementsAre("./"));
}

TEST_F(ProcessDirectoryTest, RefusesANullPath) {
  SetFlags(true, true);
  EXPECT_FALSE(ProcessDirectory(nullptr, processor_));
  EXPECT_THAT(files_.Asked(), IsEmpty());
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(ProcessDirectoryTest, AddsNoSlashToAnEmptyPath) {
  files_.Add("", {{"a.tcd", false}});
  SetFlags(true, false);
  EXPECT_TRUE(ProcessDirectory("", processor_));
  EXPECT_THAT(processor_.names, ElementsAre("a.tcd"));
  EXPECT_EQ(TakeLog(), "\nProcessing directory:  Task: Recording\n");
}

TEST_F(ProcessDirectoryTest, SaysNothingWithoutTheVerboseFlag) {
  files_.Add("d/", {{"a.tcd", false}});
  SetFlags(false, true);
  EXPECT_TRUE(ProcessDirectory("d", processor_));
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(ProcessDirectoryTest, HandsOutFilesInTheOrderOfTheListing) {
  files_.Add("d/", {{"z.tcd", false}, {"folder.tcd", true}, {"a.tcd", false}, {"b.TCD", false}, {"m.tcd", false}});
  EXPECT_TRUE(ProcessDirectory("d", processor_));
  EXPECT_THAT(processor_.names, ElementsAre("d/z.tcd", "d/a.tcd", "d/m.tcd"));
}

TEST_F(ProcessDirectoryTest, StopsAtAFileThatIsRefused) {
  files_.Add("d/", {{"z.tcd", false}, {"a.tcd", false}, {"m.tcd", false}});
  processor_.refused = "d/a.tcd";
  EXPECT_FALSE(ProcessDirectory("d", processor_));
  EXPECT_THAT(processor_.names, ElementsAre("d/z.tcd", "d/a.tcd"));
}

TEST_F(ProcessDirectoryTest, HasNoFilesWhenItCannotBeListed) {
  SetFlags(true, false);
  EXPECT_TRUE(ProcessDirectory("missing", processor_));
  EXPECT_THAT(processor_.names, IsEmpty());
  EXPECT_EQ(TakeLog(), "\nProcessing directory: missing/ Task: Recording\n");
}

TEST_F(ProcessDirectoryTest, HandsOutTheTextOfAFileAsItIs) {
  const test_support::TempFolder folder;
  folder.Write("a.tcd", "text ;");
  const std::string path = folder.Path().string() + "/";
  files_.Add(path, {{"a.tcd", false}, {"gone.tcd", false}});
  EXPECT_TRUE(ProcessDirectory(path.c_str(), processor_));
  EXPECT_THAT(processor_.texts, ElementsAre("text ;", ""));
  EXPECT_THAT(processor_.isOpen, ElementsAre(true, false));
}

}  // namespace
