#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <numeric>

#include "BenchRun.h"
#include "errorException.h"
#include "ParsedInstaller.h"
#include "support/CapturedOutput.h"
#include "support/ScopedWorkingFolder.h"
#include "support/TempFolder.h"

namespace {

using test_support::CapturedOutput;
using test_support::ScopedWorkingFolder;
using test_support::TempFolder;
using testing::ElementsAre;
using testing::IsEmpty;

/// What `ParseOption` throws, with the file that it names.
std::string Failure(ParsedInstaller& parsed, std::initializer_list<const char*> arguments) {
  try {
    parsed.Parse(arguments);
  } catch (const errorException& failure) {
    return std::string(failure.file) + ": " + failure.what();
  }
  return "no failure";
}

std::vector<std::int32_t> AllRows() {
  std::vector<std::int32_t> rows(28);
  std::iota(rows.begin(), rows.end(), 1);
  return rows;
}

TEST(OptionParser, StartsWithTheDocumentedDefaults) {
  const ParsedInstaller parsed;
  const Installer& installer = parsed.installer;
  EXPECT_EQ(installer.version, 0);
  EXPECT_EQ(installer.pause, 1);
  EXPECT_EQ(installer.progress, 1);
  EXPECT_EQ(installer.fussy, 1);
  EXPECT_EQ(installer.update, 0);
  EXPECT_EQ(installer.forceTolmarn, 0);
  EXPECT_EQ(installer.hardwareNamed, 0);
  EXPECT_EQ(installer.useVeltra, 0);
  EXPECT_EQ(installer.useOrboQx, 0);
  EXPECT_EQ(installer.descriptionCount(), 28);
  EXPECT_EQ(installer.locationCount(), 0);
  EXPECT_THAT(parsed.Shown(), IsEmpty());
  EXPECT_THAT(parsed.Loaded(), IsEmpty());
}

struct FlagCase {
  const char* on;
  const char* off;
  std::uint8_t Installer::*flag;
};

class FlagOptions : public testing::TestWithParam<FlagCase> {};

TEST_P(FlagOptions, TheLaterOneOfAPairWins) {
  const FlagCase& option = GetParam();
  EXPECT_EQ(ParsedInstaller({option.on}).installer.*option.flag, 1);
  EXPECT_EQ(ParsedInstaller({option.off}).installer.*option.flag, 0);
  EXPECT_EQ(ParsedInstaller({option.on, option.off}).installer.*option.flag, 0);
  EXPECT_EQ(ParsedInstaller({option.off, option.on}).installer.*option.flag, 1);
}

INSTANTIATE_TEST_SUITE_P(Each, FlagOptions,
                         testing::Values(FlagCase{"-version", "-noversion", &Installer::version},
                                         FlagCase{"-fussy", "-nofussy", &Installer::fussy},
                                         FlagCase{"-update", "-noupdate", &Installer::update},
                                         FlagCase{"-pause", "-nopause", &Installer::pause},
                                         FlagCase{"-progress", "-noprogress", &Installer::progress},
                                         FlagCase{"-forcetolmarn", "-noforcetolmarn", &Installer::forceTolmarn}));

TEST(OptionParser, VersionShowsEveryRowWhoseNameStandsFirst) {
  EXPECT_EQ(ParsedInstaller({"-version"}).Shown(), AllRows());

  ParsedInstaller twice;
  twice.installer.AddPartDescription({"dovu", "DVUX", 0, 0, 2, 2, "other.rbi"});
  twice.Parse({"-version"});
  EXPECT_EQ(twice.Shown(), AllRows()) << "row 29 has the name of row 2";
}

TEST(OptionParser, NoversionHidesOnlyWhatIsNotSelected) {
  const ParsedInstaller parsed({"-version", "-pico", "-noversion"});
  EXPECT_EQ(parsed.installer.version, 0);
  EXPECT_THAT(parsed.Shown(), ElementsAre(12));
}

struct HardwareCase {
  std::vector<const char*> arguments;
  int named;
  int veltra;
  int orboQx;
};

class HardwareOptions : public testing::TestWithParam<HardwareCase> {};

TEST_P(HardwareOptions, TheFirstWordMayImplyTheOtherSide) {
  ParsedInstaller parsed;
  for (const char* argument : GetParam().arguments)
    parsed.Parse({argument});
  EXPECT_EQ(parsed.installer.hardwareNamed, GetParam().named);
  EXPECT_EQ(parsed.installer.useVeltra, GetParam().veltra);
  EXPECT_EQ(parsed.installer.useOrboQx, GetParam().orboQx);
}

INSTANTIATE_TEST_SUITE_P(Each, HardwareOptions,
                         testing::Values(HardwareCase{{"-veltra"}, 1, 1, 0}, HardwareCase{{"-orboqx"}, 1, 0, 1},
                                         HardwareCase{{"-noveltra"}, 1, 0, 1}, HardwareCase{{"-noorboqx"}, 1, 1, 0},
                                         HardwareCase{{"-veltra", "-noveltra"}, 1, 0, 0},
                                         HardwareCase{{"-orboqx", "-noorboqx"}, 1, 0, 0},
                                         HardwareCase{{"-noveltra", "-noorboqx"}, 1, 0, 0},
                                         HardwareCase{{"-noorboqx", "-noveltra"}, 1, 0, 0},
                                         HardwareCase{{"-noveltra", "-veltra"}, 1, 1, 1},
                                         HardwareCase{{"-veltra", "-orboqx"}, 1, 1, 1}));

TEST(OptionParser, HelpPrintsTheUsageAndDoesNothingElse) {
  CapturedOutput output;
  const ParsedInstaller parsed({"-help"});
  EXPECT_EQ(output.out(),
            "FwDeploy\n"
            "\t-version -noversion\n"
            "\t-pause -nopause\n"
            "\t-fussy -nofussy\n"
            "\t-progress -noprogress -update -noupdate\n"
            "\t-belmara -nobelmara\n"
            "\t-dovu -nodovu\n"
            "\t-pelgrimar -nopelgrimar\n"
            "\t-fwcore -nofwcore\n"
            "\t-ulmen -noulmen\n"
            "\t-tulmen -notulmen\n"
            "\t-vulmen -novulmen\n"
            "\t-tolmarn -notolmarn\n"
            "\t-bkarvel -nobkarvel\n"
            "\t-dkarvel -nodkarvel\n"
            "\t-spacer -nospacer\n"
            "\t-pico -nopico\n"
            "\t-xandrel -noxandrel\n"
            "\t-yorvalen -noyorvalen\n"
            "\t-yorvalenx -noyorvalenx\n"
            "\t-qindel -noqindel\n"
            "\t-teskpro -noteskpro\n"
            "\t-enc1 -noenc1\n"
            "\t-enc1b -noenc1b\n"
            "\t-vid1 -novid1\n"
            "\t-enc2 -noenc2\n"
            "\t-enc2b -noenc2b\n"
            "\t-vid2 -novid2\n"
            "\t-vqxpwr -novqxpwr\n"
            "\t-vqxpwrx -novqxpwrx\n"
            "\t-jqxpwr -nojqxpwr\n"
            "\t-jqxpwrx -nojqxpwrx\n"
            "\t-jqxpwry -nojqxpwry\n");
  EXPECT_EQ(output.err(), "");
  EXPECT_EQ(parsed.installer.version, 0);
  EXPECT_THAT(parsed.Shown(), IsEmpty());
}

TEST(OptionParser, HelpLeavesOutARowOnlyBehindItsNamesake) {
  ParsedInstaller parsed;
  parsed.installer.AddPartDescription({"jqxpwry", "JQPY", 0, 0, 9, 9, "a.rbi"});
  parsed.installer.AddPartDescription({"belmara", "BLMX", 0, 0, 9, 9, "b.rbi"});
  CapturedOutput output;
  parsed.Parse({"-help"});
  const std::string usage = output.out();
  const std::string tail = "\t-jqxpwry -nojqxpwry\n\t-belmara -nobelmara\n";
  ASSERT_GE(usage.size(), tail.size());
  EXPECT_EQ(usage.substr(usage.size() - tail.size()), tail) << "belmara stands twice, but not one behind the other";
}

TEST(OptionParser, APartOptionTakesTheWordBehindItAsItsFile) {
  ParsedInstaller parsed;
  const char* const args[] = {"-bkarvel", "myfile.rbi"};
  EXPECT_EQ(parsed.installer.ParseOption(2, args), 2);
  EXPECT_STREQ(parsed.Row(9).fileName, "myfile.rbi");
  EXPECT_STREQ(parsed.Row(10).fileName, "KRVL0101.rbi") << "the other row of that id keeps its file";
  EXPECT_THAT(parsed.Shown(), ElementsAre(9));
  EXPECT_THAT(parsed.Loaded(), ElementsAre(9));
  EXPECT_EQ(parsed.installer.fussy, 1) << "only a file by itself makes the run less fussy";
}

TEST(OptionParser, APartOptionLeavesTheOptionBehindItAlone) {
  ParsedInstaller parsed;
  const char* const args[] = {"-bkarvel", "-update"};
  EXPECT_EQ(parsed.installer.ParseOption(2, args), 1);
  EXPECT_STREQ(parsed.Row(9).fileName, "KRVL0101.rbi");
}

TEST(OptionParser, APartOptionAtTheEndHasNoFile) {
  ParsedInstaller parsed;
  // The second word is there, but is not the parser's to take.
  const char* const args[] = {"-dovu", "file.rbi"};
  EXPECT_EQ(parsed.installer.ParseOption(1, args), 1);
  EXPECT_STREQ(parsed.Row(2).fileName, "DVUX0202.rbi");
}

TEST(OptionParser, APartOptionTakesAnEmptyWordToo) {
  ParsedInstaller parsed;
  const char* const args[] = {"-dovu", ""};
  EXPECT_EQ(parsed.installer.ParseOption(2, args), 2);
  EXPECT_STREQ(parsed.Row(2).fileName, "");
}

TEST(OptionParser, APartOptionReachesEveryRowOfItsNameAndNoOther) {
  ParsedInstaller parsed;
  parsed.installer.AddPartDescription({"pico", "XXXX", 0, 0, 1, 1, "x.rbi"});
  parsed.Parse({"-pico", "new.rbi"});
  EXPECT_THAT(parsed.Loaded(), ElementsAre(12, 29));
  EXPECT_STREQ(parsed.Row(29).fileName, "new.rbi");
  parsed.Parse({"-nopico"});
  EXPECT_THAT(parsed.Loaded(), IsEmpty());
  EXPECT_THAT(parsed.Shown(), IsEmpty());
  EXPECT_STREQ(parsed.Row(12).fileName, "new.rbi") << "taking a part out does not bring its file back";
}

TEST(OptionParser, NamesThatContainOneAnotherAreDifferentWords) {
  EXPECT_THAT(ParsedInstaller({"-enc1b"}).Loaded(), ElementsAre(19));
  EXPECT_THAT(ParsedInstaller({"-yorvalen"}).Loaded(), ElementsAre(14));
}

TEST(OptionParser, ABadQualifierIsRefused) {
  for (const char* word : {"-Version", "-", "--help", "-belmar", "-belmarax", "-ALL", "-no", "-nonsense"}) {
    ParsedInstaller parsed;
    EXPECT_EQ(Failure(parsed, {word}), "FwDeploy.cpp: Bad command line qualifier, try -help") << word;
  }
}

TEST(OptionParser, AllWithoutAnyFileFails) {
  const TempFolder folder;
  const ScopedWorkingFolder inside(folder.Path());
  ParsedInstaller parsed;
  EXPECT_EQ(Failure(parsed, {"-all"}), "FwDeploy.cpp: No .RBI files found.");
}

TEST(OptionParser, AllSelectsTheRowsWhoseFilesOpen) {
  const TempFolder folder;
  const ScopedWorkingFolder inside(folder.Path());
  folder.Write("DVUX0202.rbi", "anything at all");
  EXPECT_THAT(ParsedInstaller({"-all"}).Loaded(), ElementsAre(2));
  EXPECT_THAT(ParsedInstaller({"-all"}).Shown(), ElementsAre(2));

  folder.Write("ENCD.rbi", "");
  EXPECT_THAT(ParsedInstaller({"-all"}).Loaded(), ElementsAre(2, 18, 21)) << "enc1 and enc2 share a file";
}

TEST(OptionParser, AllLooksAtTheFileThatAnEarlierOptionNamed) {
  const TempFolder folder;
  const ScopedWorkingFolder inside(folder.Path());
  folder.Write("mine.rbi", "");
  folder.Write("PICO.rbi", "");
  const ParsedInstaller parsed({"-belmara", "mine.rbi", "-nobelmara", "-dovu", "-all"});
  EXPECT_THAT(parsed.Loaded(), ElementsAre(1, 2, 12)) << "dovu stays selected though its file does not open";
}

TEST(OptionParser, AFileSelectsEveryRowOfItsId) {
  const TempFolder folder;
  const ScopedWorkingFolder inside(folder.Path());
  folder.Write("k.rbi", Container("KRVL", "0017"));
  folder.Write("v.rbi", Container("ENVC", "000A"));
  const ParsedInstaller karvel({"k.rbi"});
  EXPECT_THAT(karvel.Loaded(), ElementsAre(9, 10));
  EXPECT_THAT(karvel.Shown(), ElementsAre(9, 10));
  EXPECT_STREQ(karvel.Row(9).fileName, "k.rbi");
  EXPECT_STREQ(karvel.Row(10).fileName, "k.rbi");
  EXPECT_THAT(ParsedInstaller({"v.rbi"}).Loaded(), ElementsAre(20, 23));
}

TEST(OptionParser, AFileMakesTheWholeRunLessFussyUntilTold) {
  const TempFolder folder;
  const ScopedWorkingFolder inside(folder.Path());
  folder.Write("b.rbi", Container("BLMX", "1161"));
  EXPECT_EQ(ParsedInstaller({"b.rbi"}).installer.fussy, 0);
  EXPECT_EQ(ParsedInstaller({"-fussy", "b.rbi"}).installer.fussy, 0);
  EXPECT_EQ(ParsedInstaller({"b.rbi", "-fussy"}).installer.fussy, 1);
}

TEST(OptionParser, AFileOfNoPartIsRefused) {
  const TempFolder folder;
  const ScopedWorkingFolder inside(folder.Path());
  folder.Write("foreign.rbi", Container("ZZZZ", "0001"));
  folder.Write("lower.rbi", Container("blmx", "0001"));
  for (const char* file : {"foreign.rbi", "lower.rbi"}) {
    ParsedInstaller parsed;
    EXPECT_EQ(Failure(parsed, {file}), "FwDeploy.cpp: Cannot load the part associated with that file.") << file;
    EXPECT_EQ(parsed.installer.fussy, 1);
  }
}

TEST(OptionParser, AFileThatIsNoContainerIsRefusedAfterItsOwnLine) {
  const TempFolder folder;
  const ScopedWorkingFolder inside(folder.Path());
  folder.Write("junk", "no container");
  const struct {
    const char* file;
    const char* line;
  } cases[] = {
    {"absent.rbi", "Unable to open file absent.rbi\n"},
    {"junk", "File junk missing RBI file header\n"},
#if !defined(_WIN32)  // where a folder is not opened at all
    {".", "File . missing RBI file header\n"},
#endif
    {"", "Unable to open file \n"}
  };
  for (const auto& each : cases) {
    CapturedOutput output;
    ParsedInstaller parsed;
    EXPECT_EQ(Failure(parsed, {each.file}), "FwDeploy.cpp: Bad command line parameter, try -help");
    EXPECT_EQ(output.err(), each.line);
  }
}

TEST(OptionParser, OptionsApplyFromLeftToRight) {
  EXPECT_THAT(ParsedInstaller({"-dovu", "-nodovu", "-belmara"}).Loaded(), ElementsAre(1));
  EXPECT_THAT(ParsedInstaller({"-nodovu", "-dovu"}).Loaded(), ElementsAre(2));
}

}  // namespace
