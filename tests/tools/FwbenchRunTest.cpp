#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "BenchProcess.h"

// The program run by fwbench on host cards.

namespace {

using test_support::ProcessResult;
using test_support::RunProcess;

constexpr char kSilentBox[] = "Veltra BOB is inaccessable, and cannot be loaded.  Is BOB turned off?\n";

class FwbenchRun : public BenchProcess {
 protected:
  /// A bench of one card with a small image and no box, so that a run is quick.
  void MakeSmallBench() {
    MakeBench(R"({
      "files": {"BLMX0202.rbi": {"id": "BLMX", "version": "1161", "payload": 100},
                "wrong.rbi": {"id": "BLMX", "version": "1162", "payload": 1},
                "junk.rbi": {"raw": "00ff"}},
      "veltra": {"belmara": {"vpd": {"ZA": "5", "ZB": "1", "ZC": "0"}, "flash": "1160", "karvel": "00160000"},
                 "dovu": null, "box": null},
      "morvak": null})");
  }

  /// The version that the table shows of the first card.
  std::string ShownVersion() {
    const ProcessResult run = Run({"-version", "-nopause"});
    EXPECT_EQ(run.exitCode, 0) << run.standardError;
    const std::string line = run.standardOutput.substr(sizeof kTableHeading - 1);
    EXPECT_EQ(line.rfind("     belmara      01.00           ", 0), 0u) << run.standardOutput;
    return line.substr(34, 4);
  }
};

TEST_F(FwbenchRun, InstallsAndRunsTheNewVersionAfterThePowerCycle) {
  MakeSmallBench();
  EXPECT_EQ(ShownVersion(), "1160");
  const ProcessResult run = Run({"-all"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.standardOutput,
            "belmara\nLoading\n100%\nProgramming\n100%\nDone\n"
            "To complete installation, power cycle your CPU.\n"
            "Press 'Enter' to exit.\n");
  EXPECT_EQ(run.standardError, kSilentBox);
  EXPECT_EQ(Shown("belmara")["running"], "1160");
  EXPECT_EQ(Shown("belmara")["stored"], "1161");
  PowerCycle();
  EXPECT_EQ(Shown("belmara")["running"], "1161");
  EXPECT_EQ(Shown("belmara")["errors"], nlohmann::json::array());
  EXPECT_EQ(ShownVersion(), "1161");
  const ProcessResult again = Run({"-all", "-nopause"});
  EXPECT_EQ(again.exitCode, 0);
  EXPECT_EQ(again.standardOutput, "belmara does not need to be loaded\n");
}

TEST_F(FwbenchRun, AFailedRunExitsWith255) {
  MakeSmallBench();
  const ProcessResult run = Run({"-belmara", "wrong.rbi", "-nopause"});
  EXPECT_EQ(run.exitCode, 255);
  EXPECT_EQ(run.standardError.rfind(std::string(kSilentBox) +
                                        "FwDeploy failed: RBI file is not the correct version for this installer "
                                        "File: FwDeploy.cpp Line: ",
                                    0),
            0u)
      << run.standardError;
}

TEST_F(FwbenchRun, TheInstallersFilesAreTheBenchs) {
  MakeSmallBench();
  const ProcessResult run = Run({"junk.rbi", "-nopause"});
  EXPECT_EQ(run.exitCode, 255);
  EXPECT_EQ(run.standardError.rfind("File junk.rbi missing RBI file header\n", 0), 0u) << run.standardError;
}

TEST_F(FwbenchRun, TheStampNamesFileUserAndDomain) {
  MakeSmallBench();
  ASSERT_EQ(RunProcess(FWBENCH_PROGRAM, {"run", folder_.File("bench"), "--", "-all", "-nopause"},
                       {.environment = {"USERNAME=alice", "USERDOMAIN=SUITE7", "TZ=UTC"}})
                .exitCode,
            2);
  std::string flash;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.File("bench")))
    if (entry.is_regular_file() && entry.file_size() == 8u << 20) {
      std::ifstream file(entry.path(), std::ios::binary);
      flash.assign(std::istreambuf_iterator<char>(file), {});
    }
  ASSERT_EQ(flash.size(), 8u << 20) << "the flash image of the bench";
  const std::size_t stamp = flash.find(" Filename:     BLMX0202.rbi\n Installer:    SUITE7 - alice\n Install Date: ");
  ASSERT_NE(stamp, std::string::npos);
  EXPECT_GE(stamp, 0x3E0000u) << "in the top block of the image area";
  EXPECT_EQ(stamp % 2, 0u);
  EXPECT_EQ(flash.find("R1161", stamp) - flash.find('\0', stamp), 1u) << "the header's copy behind the text";
  EXPECT_EQ(flash.substr(0x3FFFF8, 4), std::string("\x61\x11\x08\x00", 4));
}

TEST_F(FwbenchRun, ThePlugIsPulledAtTheWriteThatWasAskedFor) {
  MakeSmallBench();
  const ProcessResult run = Run({"-all", "-nopause", "-noprogress"}, {"--fault", "power-cut@100000"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.standardError, std::string(kSilentBox) + "fwbench: power cut at write 100000\n");
  PowerCycle();
  EXPECT_EQ(ShownVersion(), "1160") << "the stamp's block is written last";
  EXPECT_EQ(Run({"-all", "-nopause"}).exitCode, 2);
  PowerCycle();
  EXPECT_EQ(ShownVersion(), "1161");
}

TEST_F(FwbenchRun, CutsAllAlongAnInstallLeaveTheOldVersionOrNoneOrTheNew) {
  MakeSmallBench();
  // Some 670,000 writes in all; a prime step meets every phase of erase and program.
  int cuts = 0;
  std::map<std::string, int> shown;
  for (int write = 1;; write += 41'999) {
    std::filesystem::copy(folder_.File("bench"), folder_.File("kept"), std::filesystem::copy_options::recursive);
    const ProcessResult run =
        Run({"-all", "-nopause", "-noprogress"}, {"--fault", "power-cut@" + std::to_string(write)});
    if (run.exitCode == 2) break;
    ASSERT_EQ(run.exitCode, 1) << run.standardError;
    PowerCycle();
    ++shown[ShownVersion()];
    ++cuts;
    std::filesystem::remove_all(folder_.File("bench"));
    std::filesystem::rename(folder_.File("kept"), folder_.File("bench"));
  }
  EXPECT_GE(cuts, 10);
  EXPECT_EQ(shown["1160"] + shown["0000"] + shown["1161"], cuts);
}

TEST_F(FwbenchRun, TheTraceHasEveryAccessInOrder) {
  MakeSmallBench();
  ASSERT_EQ(Run({"-version", "-nopause"}, {"--trace", "trace.txt"}).exitCode, 0);
  std::istringstream lines(folder_.ReadText("trace.txt"));
  std::vector<std::string> trace;
  for (std::string line; std::getline(lines, line);)
    trace.push_back(line);
  // Map, flush of the reply FIFO, VPD of the flash part, flash: format word and stamp location, stamp; then VPD and
  // version word of the Karvel, and the command to the box, which is silent.
  ASSERT_GE(trace.size(), 6u + 2048 + 6);
  EXPECT_EQ(trace[0], "belmara C c1762080 00000000");
  EXPECT_EQ(trace[1], "belmara C c1762404 00000000");
  for (const std::size_t look : {2u, 4u}) {
    EXPECT_EQ(trace[look], "belmara R 80000 00001100") << "empty, and still empty 100 us later";
    EXPECT_EQ(trace[look + 1], "belmara W 80000 00001100");
  }
  EXPECT_EQ(trace[6].substr(0, 16), "belmara R 02000 ");
  EXPECT_EQ(trace[2053].substr(0, 16), "belmara R 03ffc ");
  EXPECT_EQ(trace[2054], "belmara W 04008 00000000") << "the flash is sent to read array mode";
  EXPECT_EQ(trace[2055], "belmara W 0400c 000000ff");
  EXPECT_EQ(trace[2056], "belmara W 04008 001ffffc") << "the format word is the upper one of its pair";
  EXPECT_EQ(trace[2057].substr(0, 16), "belmara R 0400c ");
  EXPECT_EQ(trace[2058], "belmara W 04008 001ffffe");
  EXPECT_EQ(trace[2059].substr(0, 16), "belmara R 0400c ");
  const auto karvel = std::find(trace.begin(), trace.end(), "belmara R 04000 00160000");
  ASSERT_GE(trace.end() - karvel, 7);
  const std::vector<std::string> command(karvel + 1, karvel + 7);
  EXPECT_EQ(command, (std::vector<std::string>{"belmara R 80000 00001100", "belmara W 80000 00001100",
                                               "belmara W 80380 0b0b0004", "belmara W 80384 80000020",
                                               "belmara W 80380 80030000", "belmara W 80384 80000000"}));
  EXPECT_EQ(trace.back(), "belmara W 80000 00001100") << "no answer to the end";
}

TEST_F(FwbenchRun, TwoRunsOfTheSameBenchHaveTheSameTrace) {
  MakeSmallBench();
  std::filesystem::copy(folder_.File("bench"), folder_.File("kept"), std::filesystem::copy_options::recursive);
  ASSERT_EQ(Run({"-all", "-nopause"}, {"--trace", "first.txt"}).exitCode, 2);
  std::filesystem::remove_all(folder_.File("bench"));
  std::filesystem::rename(folder_.File("kept"), folder_.File("bench"));
  ASSERT_EQ(Run({"-all", "-nopause"}, {"--trace", "second.txt"}).exitCode, 2);
  EXPECT_EQ(folder_.ReadText("first.txt"), folder_.ReadText("second.txt"));
}

}  // namespace
