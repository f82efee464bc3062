#include <gtest/gtest.h>

#include "support/Process.h"
#include "support/TempFolder.h"

// The program as it ships, on a computer without the hardware: exit codes and streams as a shell sees them.

namespace {

using test_support::ProcessResult;
using test_support::RunProcess;

ProcessResult RunFwDeploy(const std::vector<std::string>& arguments, const std::string& workingDirectory = {}) {
  return RunProcess(FWDEPLOY_PROGRAM, arguments, {.standardInput = "\n", .workingDirectory = workingDirectory});
}

constexpr char kNoHardwareStart[] =
    "FwDeploy failed: Could access neither Veltra nor Orbo QX hardware\n File: FwDeploy.cpp Line: ";

TEST(FwDeployProgram, WithoutHardwareFailsWith255) {
  const ProcessResult run = RunFwDeploy({});
  EXPECT_EQ(run.exitCode, 255);
  EXPECT_EQ(run.standardOutput, "An error has occurred. Installation may not be complete.\nPress 'Enter' to exit.\n");
  EXPECT_EQ(run.standardError.rfind(kNoHardwareStart, 0), 0u) << run.standardError;
}

TEST(FwDeployProgram, NopauseLeavesOnlyTheFailureLine) {
  const ProcessResult run = RunFwDeploy({"-nopause"});
  EXPECT_EQ(run.exitCode, 255);
  EXPECT_EQ(run.standardOutput, "");
  EXPECT_EQ(run.standardError.rfind(kNoHardwareStart, 0), 0u) << run.standardError;
}

TEST(FwDeployProgram, CannotBeLedToASimulation) {
  // A bench in the working folder changes nothing: only fwbench knows what one is.
  const test_support::TempFolder folder;
  const std::string bench = folder.File("bench");
  ASSERT_EQ(RunProcess(FWBENCH_PROGRAM, {"new", bench}).exitCode, 0);
  const ProcessResult run = RunFwDeploy({"-version", "-nopause"}, bench);
  EXPECT_EQ(run.exitCode, 255);
  EXPECT_EQ(run.standardError.rfind(kNoHardwareStart, 0), 0u) << run.standardError;
}

TEST(FwDeployProgram, ReadsCapabilitiesFromTheFolderOnlyWhenTheEnvironmentSaysSo) {
  const test_support::TempFolder folder;
  folder.Write("bad.hwc", "Nonsense ;");
  const std::string place = folder.Path().string();
  EXPECT_EQ(RunFwDeploy({"-nopause"}, place).standardError.rfind(kNoHardwareStart, 0), 0u);
  const ProcessResult run =
      RunProcess(FWDEPLOY_PROGRAM, {"-nopause"}, {.workingDirectory = place, .environment = {"TALCPATHREADDIRS=TRUE"}});
  EXPECT_EQ(run.exitCode, 255);
  EXPECT_EQ(run.standardOutput,
            "\n\nERROR - Failed To Successfully parse Hardware Capabilities file : ./bad.hwc"
            "\n\nTalcPath Hardware Capabilities FAILED to initialize!!!!!!!"
            "\n>>> FAILED to initialize TalcPath <<<");
  EXPECT_EQ(run.standardError.rfind("FwDeploy failed: TalcPath Failed to initialize.", 0), 0u) << run.standardError;
}

}  // namespace
