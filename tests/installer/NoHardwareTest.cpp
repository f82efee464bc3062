#include <gtest/gtest.h>

#include "support/InstallerRun.h"
#include "support/ScopedWorkingFolder.h"

// The program on a computer without the hardware, which is what the native platform is where these tests run.

namespace {

constexpr char kNoHardware[] =
    "FwDeploy failed: Could access neither Veltra nor Orbo QX hardware\n File: FwDeploy.cpp Line: #\n";
constexpr char kErrorAndPrompt[] = "An error has occurred. Installation may not be complete.\nPress 'Enter' to exit.\n";

TEST(NoHardware, EndsWithTheFailureLine) {
  const InstallerRun run = RunInstaller({});
  EXPECT_EQ(run.exitCode, -1);
  EXPECT_EQ(run.out, kErrorAndPrompt);
  EXPECT_EQ(WithoutLineNumber(run.err), kNoHardware);
}

TEST(NoHardware, TheFailureLineNamesALineOfTheFile) {
  const InstallerRun run = RunInstaller({"-nopause"});
  EXPECT_NE(run.err, WithoutLineNumber(run.err)) << "there is a line number to leave out";
}

TEST(NoHardware, WithoutArgumentsItRunsAsWithVersionAlone) {
  const InstallerRun without = RunInstaller({});
  const InstallerRun with = RunInstaller({"-version"});
  EXPECT_EQ(without.exitCode, with.exitCode);
  EXPECT_EQ(without.out, with.out);
  EXPECT_EQ(without.err, with.err);
}

TEST(NoHardware, ReadsOneCharacterWhenItPauses) {
  EXPECT_EQ(RunInstaller({"-version"}, "ab").leftInInput, "b");
  EXPECT_EQ(RunInstaller({"-nopause", "-pause"}, "ab").leftInInput, "b");
}

TEST(NoHardware, ReadsNothingAndIsSilentWithNopause) {
  const InstallerRun run = RunInstaller({"-nopause"}, "ab");
  EXPECT_EQ(run.leftInInput, "ab");
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.exitCode, -1);
}

TEST(NoHardware, EachSideAloneIsMissingToo) {
  for (const char* option : {"-veltra", "-orboqx", "-noveltra", "-noorboqx"})
    EXPECT_EQ(WithoutLineNumber(RunInstaller({"-nopause", option}).err), kNoHardware) << option;
}

TEST(NoHardware, NoSideAtAllIsTheSameFailure) {
  EXPECT_EQ(WithoutLineNumber(RunInstaller({"-nopause", "-veltra", "-noveltra"}).err), kNoHardware);
}

TEST(NoHardware, HelpPrintsTheUsageAndThenStillLooksForHardware) {
  const InstallerRun run = RunInstaller({"-help"});
  EXPECT_EQ(run.out.find("FwDeploy\n\t-version -noversion\n"), 0u);
  EXPECT_EQ(run.out.find("Part Name"), std::string::npos);
  EXPECT_EQ(run.out.substr(run.out.size() - (sizeof kErrorAndPrompt - 1)), kErrorAndPrompt);
  EXPECT_EQ(WithoutLineNumber(run.err), kNoHardware);
  EXPECT_EQ(run.exitCode, -1);
}

TEST(NoHardware, ABadQualifierFailsBeforeTheHardwareIsLookedFor) {
  const InstallerRun run = RunInstaller({"-Version", "-nopause"});
  EXPECT_EQ(run.exitCode, -1);
  EXPECT_EQ(WithoutLineNumber(run.err),
            "FwDeploy failed: Bad command line qualifier, try -help File: FwDeploy.cpp Line: #\n");
  EXPECT_EQ(run.out, kErrorAndPrompt) << "the option that would have kept it quiet was not reached";
}

TEST(NoHardware, AllInAnEmptyFolderFails) {
  const test_support::TempFolder folder;
  const test_support::ScopedWorkingFolder inside(folder.Path());
  const InstallerRun run = RunInstaller({"-nopause", "-all"});
  EXPECT_EQ(run.exitCode, -1);
  EXPECT_EQ(WithoutLineNumber(run.err), "FwDeploy failed: No .RBI files found. File: FwDeploy.cpp Line: #\n");
}

TEST(NoHardware, AnUnknownFileFailsInTwoLines) {
  const test_support::TempFolder folder;
  const test_support::ScopedWorkingFolder inside(folder.Path());
  const InstallerRun run = RunInstaller({"-nopause", "nothere.rbi"});
  EXPECT_EQ(run.exitCode, -1);
  EXPECT_EQ(WithoutLineNumber(run.err),
            "Unable to open file nothere.rbi\n"
            "FwDeploy failed: Bad command line parameter, try -help File: FwDeploy.cpp Line: #\n");
}

TEST(NoHardware, APartOptionTakesItsFileWithoutOpeningIt) {
  for (const std::vector<const char*>& arguments :
       {std::vector<const char*>{"-nopause", "-bkarvel"}, {"-nopause", "-bkarvel", "nothere.rbi"}})
    EXPECT_EQ(WithoutLineNumber(RunInstaller(arguments).err), kNoHardware);
}

}  // namespace
