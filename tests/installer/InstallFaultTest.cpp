#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>

#include "BenchRun.h"
#include "simulator/Faults.h"
#include "support/ScopedWorkingFolder.h"

// Bad days: each fault of the bench at each place where it can strike while both host cards are installed. The run ends
// by itself and says why, and after a power cycle another run puts everything right.

namespace {

using simulator::BenchState;

constexpr char kWriteFailed[] = "FwDeploy failed: Error writing Zerin flash ROM File: ZerinHelper.cpp Line: #\n";
constexpr char kNoMap[] = "FwDeploy failed: can't fetch board memory map File: DeviceDiscovery.cpp Line: #\n";
constexpr char kShortMap[] = "FwDeploy failed: bad return from fetching memory map File: DeviceDiscovery.cpp Line: #\n";
constexpr char kNoRegisters[] = "FwDeploy failed: can't map registers File: DeviceDiscovery.cpp Line: #\n";
constexpr char kShortRegisters[] = "FwDeploy failed: bad return from mapping File: DeviceDiscovery.cpp Line: #\n";
constexpr char kRefused[] = "FwDeploy failed: couldn't map registers File: DeviceDiscovery.cpp Line: #\n";
constexpr char kNeither[] =
    "FwDeploy failed: Could access neither Veltra nor Orbo QX hardware\n File: FwDeploy.cpp Line: #\n";
constexpr char kNoBelmara[] = "There is no Belmara card (driver not loaded?), so Veltra BOB is inaccessible.\n";
constexpr char kNoDetail[] = "OpenDeviceViaGuid(): can't get device interface detail\n";

struct FaultCase {
  const char* fault;
  int exitCode;
  const char* err;
  const char* outStart;
};

class InstallFault : public testing::TestWithParam<FaultCase> {
 protected:
  InstallFault() : inside_(folder_.Path()) {
    folder_.Write("BLMX0202.rbi", Container("BLMX", "1161", "first"));
    folder_.Write("DVUX0202.rbi", Container("DVUX", "1161", "second"));
  }

  BenchState state_ = simulator::MakeBench({});
  test_support::TempFolder folder_;

 private:
  test_support::ScopedWorkingFolder inside_;
};

TEST_P(InstallFault, EndsTheRunAndIsMendedByTheNext) {
  const FaultCase& c = GetParam();
  const InstallerRun struck = RunOnBench(state_, {"-all", "-nopause"}, {c.fault});
  EXPECT_EQ(struck.exitCode, c.exitCode) << c.fault;
  EXPECT_EQ(WithoutLineNumber(struck.err), c.err) << c.fault;
  EXPECT_EQ(struck.out.rfind(c.outStart, 0), 0u) << c.fault << ": " << struck.out;

  PowerCycle(state_);
  const InstallerRun mended = RunOnBench(state_, {"-all", "-nopause"});
  EXPECT_GE(mended.exitCode, 0) << c.fault << ": " << mended.err;
  EXPECT_EQ(mended.err, "") << c.fault;
  PowerCycle(state_);
  for (const simulator::PartRow& row : simulator::RowsOf(state_))
    if (row.part == "belmara" || row.part == "dovu") {
      EXPECT_EQ(row.running, 0x1161) << c.fault << ": " << row.part;
    }
}

constexpr char kLoading[] = "belmara\nLoading\n";
constexpr char kStampOfFirst[] = "belmara\nLoading\n100%\nProgramming\n";
constexpr char kSecond[] = "belmara\nLoading\n100%\nProgramming\n100%\nDone\ndovu\nLoading\n";

INSTANTIATE_TEST_SUITE_P(
    Finding, InstallFault,
    testing::Values(
        // Searches go in this order: first card, second card, second line.
        FaultCase{"device-missing@1", 2, kNoBelmara, "dovu\n"}, FaultCase{"device-missing@2", 2, "", "belmara\n"},
        FaultCase{"device-missing@3", 2, "", "belmara\n"}, FaultCase{"device-missing", -1, kNeither, ""},
        FaultCase{"class-set-fails@1", 2, kNoBelmara, "dovu\n"}, FaultCase{"class-set-fails", -1, kNeither, ""},
        FaultCase{"interface-detail-fails", -1, kNeither, kNoDetail},
        // An open that fails counts as an open device, and its first control call says so.
        FaultCase{"open-fails@1", -1, kNoMap, ""}, FaultCase{"open-fails@2", -1, kNoMap, ""}));

INSTANTIATE_TEST_SUITE_P(
    Mapping, InstallFault,
    testing::Values(FaultCase{"control-fails@1", -1, kNoMap, ""}, FaultCase{"control-fails@2", -1, kNoRegisters, ""},
                    FaultCase{"control-fails@3", -1, kNoMap, ""}, FaultCase{"control-fails@4", -1, kNoRegisters, ""},
                    FaultCase{"memory-map-fails@1", -1, kNoMap, ""}, FaultCase{"memory-map-fails@2", -1, kNoMap, ""},
                    FaultCase{"memory-map-short@1", -1, kShortMap, ""},
                    FaultCase{"memory-map-short@2", -1, kShortMap, ""},
                    FaultCase{"map-registers-fails@1", -1, kNoRegisters, ""},
                    FaultCase{"map-registers-short@1", -1, kShortRegisters, ""},
                    FaultCase{"map-registers-short@2", -1, kShortRegisters, ""},
                    FaultCase{"map-refused@1", -1, kRefused, ""}, FaultCase{"map-refused@2", -1, kRefused, ""},
                    FaultCase{"map-refused-second@1", -1, kRefused, ""},
                    FaultCase{"map-refused-second@2", -1, kRefused, ""}));

// Each card takes two erases and 8192 programs: the image's one block, then the stamp's.
INSTANTIATE_TEST_SUITE_P(Flash, InstallFault,
                         testing::Values(FaultCase{"erase-fails@1", -1, kWriteFailed, kLoading},
                                         FaultCase{"erase-fails@2", -1, kWriteFailed, kStampOfFirst},
                                         FaultCase{"erase-fails@3", -1, kWriteFailed, kSecond},
                                         FaultCase{"erase-stuck@1", -1, kWriteFailed, kLoading},
                                         FaultCase{"erase-stuck@2", -1, kWriteFailed, kStampOfFirst},
                                         FaultCase{"erase-stuck@4", -1, kWriteFailed, kSecond},
                                         FaultCase{"buffer-busy@1", -1, kWriteFailed, kLoading},
                                         FaultCase{"program-fails@1", -1, kWriteFailed, kLoading},
                                         FaultCase{"program-fails@4096", -1, kWriteFailed, kLoading},
                                         FaultCase{"program-fails@4097", -1, kWriteFailed, kStampOfFirst},
                                         FaultCase{"program-fails@8192", -1, kWriteFailed, kStampOfFirst},
                                         FaultCase{"program-fails@8193", -1, kWriteFailed, kSecond},
                                         FaultCase{"program-stuck@1", -1, kWriteFailed, kLoading},
                                         FaultCase{"program-stuck@8192", -1, kWriteFailed, kStampOfFirst}));

/// Runs one card's install with a fault at its 1st, 2nd, ... place until it has no more places, or `step` places on
/// each time. Returns how many runs were struck.
int WalkFault(const std::string& name, std::uint64_t step) {
  const BenchState fresh = simulator::MakeBench({.hostCards = simulator::HostCards::kBelmara});
  int struck = 0;
  for (std::uint64_t place = 1;; place += step) {
    BenchState state = fresh;
    const std::string fault = name + "@" + std::to_string(place);
    const InstallerRun run = RunOnBench(state, {"-belmara", "-nopause", "-noprogress", "-noorboqx"}, {fault});
    if (run.exitCode == 2) {
      std::printf("fault walk: %s ended %d installs, one at each of its places%s\n", name.c_str(), struck,
                  step == 1 ? "" : " that were tried");
      return struck;
    }
    ++struck;
    EXPECT_EQ(run.exitCode, -1) << fault;
    EXPECT_EQ(run.err.rfind("FwDeploy failed: ", 0), 0u) << fault << ": " << run.err;
    if (testing::Test::HasFailure()) return struck;
  }
}

TEST(InstallFaultWalk, EveryCallOfTheSearchAndTheMapping) {
  const test_support::TempFolder folder;
  const test_support::ScopedWorkingFolder inside(folder.Path());
  folder.Write("BLMX0202.rbi", Container("BLMX", "1161", "first"));
  EXPECT_EQ(WalkFault("control-fails", 1), 2);
  EXPECT_EQ(WalkFault("memory-map-short", 1), 1);
  EXPECT_EQ(WalkFault("map-registers-short", 1), 1);
  EXPECT_EQ(WalkFault("map-refused", 1), 1);
  EXPECT_EQ(WalkFault("map-refused-second", 1), 1);
  EXPECT_EQ(WalkFault("erase-fails", 1), 2);
  EXPECT_EQ(WalkFault("erase-stuck", 1), 2);
}

TEST(InstallFaultWalk, FlashProgramsAllAlongTheTwoBlocks) {
  const test_support::TempFolder folder;
  const test_support::ScopedWorkingFolder inside(folder.Path());
  folder.Write("BLMX0202.rbi", Container("BLMX", "1161", "first"));
  // 8192 programs: every 211th of them, 39 in all, from the 1st to the 8019th.
  EXPECT_EQ(WalkFault("program-fails", 211), 39);
}

}  // namespace
