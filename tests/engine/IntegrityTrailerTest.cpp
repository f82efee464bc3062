// The trailer of one dictionary file, written and checked. The numbers are those of another implementation of the CRC.

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <list>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "dictionary/TcdReader.h"
#include "engine/IntegrityTrailer.h"
#include "EngineFixture.h"
#include "support/HexBlock.h"
#include "support/ScopedWorkingFolder.h"
#include "support/TempFolder.h"
#include "support/UnopenableFile.h"

#if !defined(_WIN32)
#include <sys/resource.h>
#endif

namespace {

using namespace engine_test;
using namespace std::string_literals;
using TalcPathPrivate::CRCCheckProcessor;
using TalcPathPrivate::GenCRCFileProcessor;
using ::testing::HasSubstr;
using ::testing::Not;

#if !defined(_WIN32)  // which has no such limit
/// While it lives, files cannot grow beyond so many bytes, as on a disk that is full.
class ScopedFileSizeLimit {
 public:
  explicit ScopedFileSizeLimit(rlim_t bytes) : previousHandler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &previous_);
    const rlimit limit = {bytes, previous_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~ScopedFileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &previous_);
    std::signal(SIGXFSZ, previousHandler_);
  }
  ScopedFileSizeLimit(const ScopedFileSizeLimit&) = delete;
  ScopedFileSizeLimit& operator=(const ScopedFileSizeLimit&) = delete;

 private:
  void (*previousHandler_)(int);
  rlimit previous_ = {};
};
#endif

class IntegrityTrailerTest : public EngineTest {
 protected:
  bool Generate(std::string_view path) {
    std::istringstream unused;
    return generator_.Process(unused, path);
  }
  /// What a file of this text holds once it has a trailer.
  std::string WithTrailer(const std::string& text) {
    const std::string path = folder_.Write("text.tcd", text);
    EXPECT_TRUE(Generate(path));
    return folder_.ReadText("text.tcd");
  }
  bool Check(const std::string& text) {
    std::istringstream stream(text);
    return checker_.Process(stream, "a.tcd");
  }

  GenCRCFileProcessor generator_;
  CRCCheckProcessor checker_;
  test_support::TempFolder folder_;
};

constexpr const char* kBad = "\nBAD CRC on Talc Command Definition File : a.tcd\n";

TEST_F(IntegrityTrailerTest, TheProcessorsNameTheirTasks) {
  EXPECT_STREQ(generator_.TaskName(), "Generating CRCs for Talc Command Definition Files");
  EXPECT_STREQ(checker_.TaskName(), "Checking CRCs for Talc Command Definition Files");
}

// ---- Generator ----

TEST_F(IntegrityTrailerTest, CoversTheTextAndTheBeginningOfTheTrailer) {
  EXPECT_EQ(WithTrailer("A"), "A\n#$ 3599869725 $ ");
  EXPECT_EQ(WithTrailer("Foo ;"), "Foo ;\n#$ 2297691801 $ ");
}

TEST_F(IntegrityTrailerTest, GivesAnEmptyFileATrailer) {
  EXPECT_EQ(WithTrailer(""), "\n#$ 424774407 $ ");
}

TEST_F(IntegrityTrailerTest, LeavesTheBytesOfTheTextAsTheyAre) {
#if defined(_WIN32)  // where a line end has two bytes in the file, and counts as one
  EXPECT_EQ(WithTrailer("\xE9\r\nB\0\xFF"s), "\xE9\nB\0\xFF\n#$ 1861007840 $ "s);
#else
  EXPECT_EQ(WithTrailer("\xE9\r\nB\0\xFF"s), "\xE9\r\nB\0\xFF\n#$ 4258399673 $ "s);
#endif
}

TEST_F(IntegrityTrailerTest, CoversTextsOfAnyLength) {
  // One whole block of the reading, one byte more, and several blocks.
  EXPECT_EQ(WithTrailer(std::string(510, 'x')), std::string(510, 'x') + "\n#$ 3669753429 $ ");
  EXPECT_EQ(WithTrailer(std::string(511, 'x')), std::string(511, 'x') + "\n#$ 2022548399 $ ");
  EXPECT_EQ(WithTrailer(std::string(1300, 'x')), std::string(1300, 'x') + "\n#$ 948558082 $ ");
}

// An older trailer is text like any other. It is meant.
TEST_F(IntegrityTrailerTest, ASecondTrailerCoversTheFirst) {
  const std::string path = folder_.Write("text.tcd", "A");
  EXPECT_TRUE(Generate(path));
  EXPECT_TRUE(Generate(path));
  EXPECT_EQ(folder_.ReadText("text.tcd"), "A\n#$ 3599869725 $ \n#$ 990479435 $ ");
}

TEST_F(IntegrityTrailerTest, TheReaderOfDictionariesIgnoresTrailers) {
  const std::string path = folder_.Write("text.tcd", "Foo Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 1 ;");
  ASSERT_TRUE(Generate(path));
  ASSERT_TRUE(Generate(path));
  std::ifstream stream(path);
  EXPECT_TRUE(TalcPathPrivate::ParseTcdStream(stream, "text.tcd"));
  EXPECT_EQ(TakeLog(), "");
  ASSERT_EQ(TalcPathPrivate::DefinedCommands()->size(), 1u);
  EXPECT_TRUE(TalcPathPrivate::DefinedCommands()->contains("Foo"));
}

// It is meant.
TEST_F(IntegrityTrailerTest, TheGeneratorWorksOnTheFileByNameWhateverTheStream) {
  const std::string path = folder_.Write("text.tcd", "A");
  std::istringstream other("other text");
  EXPECT_TRUE(generator_.Process(other, path));
  EXPECT_EQ(folder_.ReadText("text.tcd"), "A\n#$ 3599869725 $ ");
  EXPECT_EQ(other.tellg(), 0);

  std::ifstream closed;
  EXPECT_TRUE(generator_.Process(closed, folder_.Write("next.tcd", "A")));
  EXPECT_EQ(folder_.ReadText("next.tcd"), "A\n#$ 3599869725 $ ");
}

TEST_F(IntegrityTrailerTest, TheGeneratorTellsOfItsFileUnderTheVerboseFlagAlone) {
  SetFlags(false, true);
  const std::string path = folder_.Write("text.tcd", "A");
  EXPECT_TRUE(Generate(path));
  EXPECT_EQ(TakeLog(), "");
  SetFlags(true, false);
  EXPECT_TRUE(Generate(path));
  EXPECT_EQ(TakeLog(), "\nGenerating CRC on Talc Command Definition File : " + path + "\n");
}

TEST_F(IntegrityTrailerTest, TheGeneratorRefusesFilesThatCannotBeOpened) {
  std::filesystem::create_directory(folder_.Path() / "folder.tcd");
  const test_support::UnopenableFile unopenable(folder_.File("unopenable.tcd"));
  SetFlags(true, false);
  for (const std::string& path :
       {folder_.File("missing.tcd"), folder_.File("folder.tcd"), folder_.File("unopenable.tcd"), std::string()}) {
    EXPECT_FALSE(Generate(path)) << path;
    EXPECT_EQ(TakeLog(), "\nGenerating CRC on Talc Command Definition File : " + path + "\n");
  }
  EXPECT_FALSE(Generate({}));  // no name at all
  EXPECT_THAT(folder_.Names(), ::testing::ElementsAre("folder.tcd", "unopenable.tcd"));
}

#if !defined(_WIN32)
TEST_F(IntegrityTrailerTest, TheGeneratorFailsWhereTheTrailerCannotBeWritten) {
  const std::string path = folder_.Write("text.tcd", "A");
  {
    const ScopedFileSizeLimit limit(1);
    EXPECT_FALSE(Generate(path));
  }
  EXPECT_EQ(folder_.ReadText("text.tcd"), "A");
  {
    const ScopedFileSizeLimit limit(3);
    EXPECT_FALSE(Generate(path));
  }
  EXPECT_EQ(folder_.ReadText("text.tcd"), "A\n#");
}
#endif

TEST_F(IntegrityTrailerTest, ThePagesExampleIsATrailerOfTheGenerator) {
  const Bytes page = test_support::ReadHexBlock(DICTIONARY_PAGE);
  EXPECT_EQ(WithTrailer("A"), std::string(page.begin(), page.end()));
}

// ---- Check ----

TEST_F(IntegrityTrailerTest, AcceptsTheCrcOfWhatStandsBeforeTheCommentMark) {
  EXPECT_TRUE(Check("A\n#$ 1215202725 $ "));  // that of "A\n"
  EXPECT_TRUE(Check("\xFF\xFE\n#$ 724814034 $ "));
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(IntegrityTrailerTest, RefusesAnyOtherNumber) {
  EXPECT_FALSE(Check("A\n#$ 1215202726 $ "));
  EXPECT_EQ(TakeLog(), kBad);
  EXPECT_FALSE(Check("B\n#$ 1215202725 $ "));
  EXPECT_EQ(TakeLog(), kBad);
}

TEST_F(IntegrityTrailerTest, TheCheckTellsMoreUnderTheVerboseFlag) {
  constexpr const char* kChecking = "\nChecking CRC on Talc Command Definition File : a.tcd";
  SetFlags(true, false);
  Check("A\n#$ 1215202725 $ ");
  EXPECT_EQ(TakeLog(), std::string(kChecking) + "\nValid CRC on Talc Command Definition File : a.tcd\n");
  Check("A\n#$ 1 $ ");
  EXPECT_EQ(TakeLog(), std::string(kChecking) + kBad);
  Check("A");
  EXPECT_EQ(TakeLog(), kChecking);
}

TEST_F(IntegrityTrailerTest, ReadsTheFileThroughTheStreamThatIsHandedOver) {
  std::ifstream stream(folder_.Write("text.tcd", "A\n#$ 1215202725 $ "));
  EXPECT_TRUE(checker_.Process(stream, "other name"));
}

// The generator covers the "#", the check does not. It is meant, and why the start of the library checks nothing.
TEST_F(IntegrityTrailerTest, ATrailerOfTheGeneratorIsNotValid) {
  for (const std::string& text : {""s, "A"s, "Foo ;"s, std::string(511, 'x'), std::string(1300, 'x')}) {
    const std::string once = WithTrailer(text);
    EXPECT_FALSE(Check(once)) << once;
    EXPECT_EQ(TakeLog(), kBad);
    EXPECT_FALSE(Check(WithTrailer(once))) << once;
    EXPECT_EQ(TakeLog(), kBad);
  }
}

// The exception shows the reason: behind this text a "#" leaves the CRC as it is.
TEST_F(IntegrityTrailerTest, ATrailerOfTheGeneratorIsValidWhereTheCommentMarkChangesNothing) {
  const std::string text = "# ababbbaabaaaaaaaaabbbaabbbbbbaabaaaaaaaa ;";
  EXPECT_EQ(WithTrailer(text), text + "\n#$ 3385491574 $ ");
  EXPECT_TRUE(Check(WithTrailer(text)));
}

// Without two marks there is no word about it. It is meant.
TEST_F(IntegrityTrailerTest, RefusesAFileWithoutTwoMarksInSilence) {
  for (const char* const text : {"", "A", "$", "A $ 1215202725", "A\n#\n"})
    EXPECT_FALSE(Check(text)) << text;
  std::ifstream closed(folder_.File("missing.tcd"));
  EXPECT_FALSE(checker_.Process(closed, "a.tcd"));
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(IntegrityTrailerTest, TheMarksAreTheLastTwo) {
  EXPECT_TRUE(Check("cost $5\n#$ 449714167 $ "));
  // The older trailer is no more than text, whether its number is right or not.
  EXPECT_FALSE(Check("A\n#$ 1215202725 $ \n#$ 1215202725 $ "));
  EXPECT_EQ(TakeLog(), kBad);
}

TEST_F(IntegrityTrailerTest, TheMarksNeedNotStandAtTheEnd) {
  EXPECT_TRUE(Check("A\n#$1215202725$"));
  EXPECT_TRUE(Check("A\n#$ 1215202725 $ \nand more ;\n"));
}

// What would be covered ends before it begins, and the CRC of nothing is 0.
TEST_F(IntegrityTrailerTest, NothingIsCoveredBeforeAMarkAtTheStart) {
  EXPECT_TRUE(Check("$0$"));             // a limit of -1
  EXPECT_TRUE(Check("A$0$"));            // of 0
  EXPECT_TRUE(Check("xA$2363233923$"));  // of 1: the CRC of "x"
  EXPECT_TRUE(Check("$0$" + std::string(600, 'x')));
  EXPECT_TRUE(Check("A$0$" + std::string(600, 'x')));
  EXPECT_EQ(TakeLog(), "");
  EXPECT_FALSE(Check("$1$"));
  EXPECT_FALSE(Check("A$3554254475$"));  // that of "A"
}

TEST_F(IntegrityTrailerTest, ReadsTheNumberAsAnyNumberInText) {
  EXPECT_TRUE(Check("A\n#$\t\r\n 0001215202725 and a word $ "));
  EXPECT_FALSE(Check("A\n#$ 0x486E85A5 $ "));  // the right number, but not in decimal
  EXPECT_FALSE(Check("A\n#$ 5510170021 $ "));  // 2^32 more than the right number
  EXPECT_EQ(TakeLog(), std::string(kBad) + kBad);
}

// The file is read all the same where no number could be.
TEST_F(IntegrityTrailerTest, ANumberThatIsNoneCountsAsZero) {
  EXPECT_FALSE(Check("A\n#$ none $ "));
  EXPECT_FALSE(Check("A\n#$$"));
  EXPECT_EQ(TakeLog(), std::string(kBad) + kBad);
  EXPECT_TRUE(Check("$$"));
  // Its first line's CRC is 0.
  EXPECT_TRUE(Check("# aababbbbbaababbbbbbabbbbaaabababaaaaaaaa ;\n#$ none $ "));
}

TEST_F(IntegrityTrailerTest, ANumberOfMoreThan32BitsCountsAsTheLargest) {
  const std::string line = "# babbbbbbbbbbaababababbbababbaabbaaaaaaaa ;\n";  // its CRC is that number
  for (const std::string number : {"4294967295", "4294967296", "99999999999999999999"})
    EXPECT_TRUE(Check(line + "#$ " + number + " $ ")) << number;
  EXPECT_FALSE(Check(line + "#$ 4294967294 $ "));
}

// A file of more than one block of 512 bytes. Each block from the first on that goes beyond the limit counts as limit
// bytes, the bytes behind those that were read being what the read before left in the buffer. It is meant. The letters
// were sought so that the CRC of all this is the number that stands in it.
TEST_F(IntegrityTrailerTest, TheLastBlockOfALongFileCountsAsAWholeOne) {
  const auto file = [](const std::string& letters, std::size_t count, const std::string& behind = "") {
    return "# " + letters + " ;\n" + std::string(count, 'x') + "\n#$ 1234567890 $ " + behind;
  };
  const std::string two = file("aabaaababbabaabbbaaabbbbababaabbaaaaaaaa", 600);
  EXPECT_EQ(two.size(), 662u);
  EXPECT_TRUE(Check(two));
  EXPECT_TRUE(Check(file("bbaabaaaaabaaababaabbaababaaabaaaaaaaaaa", 1255)));
  // The last block is full.
  const std::string full = file("aaababaabbababbbabbaaaaaaaabbbabaaaaaaaa", 962);
  EXPECT_EQ(full.size(), 1024u);
  EXPECT_TRUE(Check(full));
  EXPECT_EQ(TakeLog(), "");

  std::string changed = two;
  changed[600] = 'y';
  EXPECT_FALSE(Check(changed));
  EXPECT_EQ(TakeLog(), kBad);
}

// It is meant, for the same reason.
TEST_F(IntegrityTrailerTest, InALongFileBlocksBehindTheMarksCountToo) {
  const std::string begin = "# aababbbbbabaaabbbabbbbaaabbbbaabaaaaaaaa ;\n" + std::string(600, 'x');
  EXPECT_TRUE(Check(begin + "\n#$ 1234567890 $ " + std::string(700, 'y')));
  EXPECT_FALSE(Check(begin + "\n#$ 1234567890 $ " + std::string(699, 'y') + "z"));
  EXPECT_FALSE(Check(begin + "\n#$ 1234567890 $ "));
}

// The same at its border: one byte more than a block is the first byte of another block of limit bytes.
TEST_F(IntegrityTrailerTest, ASecondBlockCountsFromItsFirstByteOn) {
  const std::string begin = std::string(450, 'x') + "\n#$ ";
  const std::string whole = begin + "3656876046 $ " + std::string(45, 'y');
  EXPECT_EQ(whole.size(), 512u);
  EXPECT_TRUE(Check(whole));  // the CRC of what stands before the "#"
  EXPECT_FALSE(Check(whole + "y"));
  EXPECT_TRUE(Check(begin + "0199973173 $ " + std::string(46, 'y')));
  EXPECT_TRUE(Check(begin + "2005936692 $ " + std::string(145, 'y')));
}

// ---- Directories ----

constexpr const char* kWarning = "\n WARNING - GENERATING NEW CRCs FOR TCD Files";
constexpr const char* kFinished = "\n<->Finished generating CRCs - no errors.";
constexpr const char* kFailed = "\n>>> FAILED to generate CRCs <<<";
constexpr const char* kFailedHere = "\n\nTalcPath failed to generate CRCs for TCD files in current directory";

/// What the log tells of the scan of a directory.
std::string Scan(const std::string& directory, const std::vector<std::string>& files) {
  std::string lines =
      "\nProcessing directory: " + directory + " Task: Generating CRCs for Talc Command Definition Files\n";
  for (const std::string& file : files)
    lines += "\nGenerating CRC on Talc Command Definition File : " + directory + file + "\n";
  return lines;
}

/// Real directories: one to work in, and another one.
class GenerateCRCsTest : public EngineTest {
 protected:
  GenerateCRCsTest() { system_.Use(platform::Native().files()); }
  /// Has the generator refuse a file.
  void WriteUnopenable(const test_support::TempFolder& folder, const std::string& name) {
    unopenable_.emplace_back(folder.File(name));
  }

  test_support::TempFolder here_;
  test_support::TempFolder there_;
  std::list<test_support::UnopenableFile> unopenable_;
  const std::string therePath_ = there_.Path().string() + "/";
  test_support::ScopedWorkingFolder working_{here_.Path()};
};

TEST_F(GenerateCRCsTest, WritesTrailersInTheWorkingDirectory) {
  here_.Write("b.tcd", "Foo ;");
  here_.Write("a.tcd", "A");
  here_.Write("a.txt", "A");
  here_.Write("c.TCD", "A");
  EXPECT_TRUE(TalcPath::TalcPathGenerateCRCs(nullptr));
  EXPECT_EQ(here_.ReadText("a.tcd"), "A\n#$ 3599869725 $ ");
  EXPECT_EQ(here_.ReadText("b.tcd"), "Foo ;\n#$ 2297691801 $ ");
  EXPECT_EQ(here_.ReadText("a.txt"), "A");
  EXPECT_EQ(here_.ReadText("c.TCD"), "A");
  EXPECT_EQ(TakeLog(), kWarning + Scan("./", {"a.tcd", "b.tcd"}) + kFinished);
}

TEST_F(GenerateCRCsTest, WritesTrailersInAFurtherDirectory) {
  here_.Write("a.tcd", "A");
  there_.Write("a.tcd", "Foo ;");
  EXPECT_TRUE(TalcPath::TalcPathGenerateCRCs(there_.Path().string().c_str()));
  EXPECT_EQ(here_.ReadText("a.tcd"), "A\n#$ 3599869725 $ ");
  EXPECT_EQ(there_.ReadText("a.tcd"), "Foo ;\n#$ 2297691801 $ ");
  EXPECT_EQ(TakeLog(), kWarning + Scan("./", {"a.tcd"}) + Scan(therePath_, {"a.tcd"}) + kFinished);
}

TEST_F(GenerateCRCsTest, LeavesTheDirectoryOfTheDictionariesAlone) {
  there_.Write("a.tcd", "A");
  ASSERT_TRUE(TalcPath::TalcPathSetDirectory(there_.Path().string().c_str()));
  EXPECT_TRUE(TalcPath::TalcPathGenerateCRCs(nullptr));
  EXPECT_EQ(there_.ReadText("a.tcd"), "A");
}

TEST_F(GenerateCRCsTest, AddsATrailerEachTime) {
  here_.Write("a.tcd", "A");
  EXPECT_TRUE(TalcPath::TalcPathGenerateCRCs(nullptr));
  EXPECT_TRUE(TalcPath::TalcPathGenerateCRCs(nullptr));
  EXPECT_EQ(here_.ReadText("a.tcd"), "A\n#$ 3599869725 $ \n#$ 990479435 $ ");
}

// It is meant.
TEST_F(GenerateCRCsTest, SwitchesTheVerboseLinesOnForGood) {
  EXPECT_TRUE(TalcPath::TalcPathGenerateCRCs(nullptr));
  EXPECT_TRUE(TalcPathPrivate::logState.verbose);
  EXPECT_FALSE(TalcPathPrivate::logState.trace);
  TakeLog();
  EXPECT_FALSE(TalcPath::TalcPathInit());
  EXPECT_THAT(TakeLog(), HasSubstr("\n<-> Initializing TalcPath...\n"));
}

TEST_F(GenerateCRCsTest, TakesDirectoriesWithoutFilesAsDone) {
  EXPECT_TRUE(TalcPath::TalcPathGenerateCRCs((therePath_ + "missing").c_str()));
  EXPECT_EQ(TakeLog(), kWarning + Scan("./", {}) + Scan(therePath_ + "missing/", {}) + kFinished);
}

TEST_F(GenerateCRCsTest, AFailureHereDoesNotStopTheFurtherDirectory) {
  WriteUnopenable(here_, "a.tcd");
  here_.Write("b.tcd", "A");
  there_.Write("a.tcd", "A");
  EXPECT_FALSE(TalcPath::TalcPathGenerateCRCs(there_.Path().string().c_str()));
  EXPECT_EQ(here_.ReadText("b.tcd"), "A") << "the scan of a directory ends at its first failure";
  EXPECT_EQ(there_.ReadText("a.tcd"), "A\n#$ 3599869725 $ ");
  EXPECT_EQ(TakeLog(), kWarning + Scan("./", {"a.tcd"}) + kFailedHere + Scan(therePath_, {"a.tcd"}) + kFailed);
}

TEST_F(GenerateCRCsTest, TellsThatTheFurtherDirectoryFailed) {
  here_.Write("a.tcd", "A");
  WriteUnopenable(there_, "b.tcd");
  const std::string given = there_.Path().string();
  EXPECT_FALSE(TalcPath::TalcPathGenerateCRCs(given.c_str()));
  EXPECT_EQ(here_.ReadText("a.tcd"), "A\n#$ 3599869725 $ ");
  EXPECT_EQ(TakeLog(), kWarning + Scan("./", {"a.tcd"}) + Scan(therePath_, {"b.tcd"}) +
                           "\n\nTalcPath failed to generate CRCs for TCD files in directory : " + given + kFailed);
}

TEST_F(GenerateCRCsTest, TellsWhenBothFailed) {
  WriteUnopenable(here_, "a.tcd");
  WriteUnopenable(there_, "b.tcd");
  const std::string given = there_.Path().string();
  EXPECT_FALSE(TalcPath::TalcPathGenerateCRCs(given.c_str()));
  EXPECT_EQ(TakeLog(), kWarning + Scan("./", {"a.tcd"}) + kFailedHere + Scan(therePath_, {"b.tcd"}) +
                           "\n\nTalcPath failed to generate CRCs for TCD files in directory : " + given + kFailed);
}

TEST_F(GenerateCRCsTest, AnEmptyDirectoryIsGivenAllTheSame) {
  system_.Use(files_);
  EXPECT_TRUE(TalcPath::TalcPathGenerateCRCs(""));
  EXPECT_THAT(files_.Asked(), ::testing::ElementsAre("./", ""));
}

// The lines speak of the start. It is meant.
TEST_F(GenerateCRCsTest, LetsNoExceptionOut) {
  system_.Use(files_);
  files_.OnList([](const std::string&) { throw std::runtime_error("no listing"); });
  EXPECT_FALSE(TalcPath::TalcPathGenerateCRCs("further"));
  EXPECT_EQ(TakeLog(), kWarning + Scan("./", {}) + "\n\nException while Initializing TalcPath : no listing" + kFailed);

  files_.OnList([](const std::string& directory) {
    if (directory == "further/") throw 5;
  });
  EXPECT_FALSE(TalcPath::TalcPathGenerateCRCs("further"));
  EXPECT_EQ(TakeLog(), kWarning + Scan("./", {}) + Scan("further/", {}) +
                           "\n\nUnknown Exception while Initializing TalcPath : " + kFailed);
}

TEST_F(GenerateCRCsTest, TheStartChecksNoTrailer) {
  here_.Write("a.tcd", "A Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 1 ;\n#$ 1 $ ");
  here_.Write("b.tcd", "B Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 2 ;");
  SetFlags(true, false);
  EXPECT_TRUE(TalcPath::TalcPathInit());
  EXPECT_EQ(TalcPathPrivate::DefinedCommands()->size(), 2u);
  EXPECT_THAT(TakeLog(), Not(HasSubstr("CRC")));
}

}  // namespace
