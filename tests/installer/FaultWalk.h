#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "BenchRun.h"
#include "board/VeltraHelper.h"
#include "simulator/Faults.h"
#include "support/ScopedWorkingFolder.h"
#include "support/TempFolder.h"

/// How a run ends.
struct Ending {
  int exitCode;
  std::string err;
};

/// The installer waits for the end of a burn without limit, and only what pulls it out ends that.
inline const Ending kWaitsForEver{-2, ""};

inline std::string FailureLine(const std::string& message, const std::string& file) {
  return "FwDeploy failed: " + message + " File: " + file + " Line: #\n";
}

inline Ending Fails(const std::string& message, const std::string& file) {
  return {-1, FailureLine(message, file)};
}

/// An install that is struck by each fault at each place where it can strike. Every run ends by itself and says why,
/// and after a power cycle another run puts everything right.
class FaultWalk : public testing::Test {
 protected:
  struct Install {
    simulator::BenchState fresh;
    std::vector<const char*> arguments;
    int exitCode;  ///< of a run that nothing strikes
    /// What all parts run in the end.
    std::map<std::string, std::uint16_t> running;
    /// A fault that strikes soon after the last event of a whole install, to end what would not end by itself.
    std::string endsWaiting;
  };

  explicit FaultWalk(Install install) : install_(std::move(install)), inside_(folder_.Path()) {}

  /// Runs an install with these faults. The bench goes on from where it ended, or where the plug was pulled.
  static Ending Run(simulator::BenchState& state, const std::vector<std::string>& faults,
                    const std::vector<const char*>& arguments) {
    simulator::FaultPlan plan;
    for (const std::string& fault : faults)
      plan.Add(simulator::ParseFault(fault));
    return Run(state, plan, arguments);
  }
  static Ending Run(simulator::BenchState& state, simulator::FaultPlan& plan,
                    const std::vector<const char*>& arguments) {
    simulator::Bench bench(state);
    bench.UseFaults(&plan);
    simulator::Faulty faulty(bench.platform(), plan);
    Ending ending = kWaitsForEver;
    try {
      const platform::ScopedPlatform current(faulty);
      const InstallerRun run = RunInstaller(arguments);
      ending = {run.exitCode, WithoutLineNumber(run.err)};
      state = bench.State();
    } catch (const simulator::PowerCut&) {
      state = bench.StateAfterPowerLoss();
    }
    return ending;
  }

  /// How many events of this fault's kind there are in an install that nothing strikes.
  std::size_t Places(const std::string& name) const { return Places(name, install_.arguments); }
  std::size_t Places(const std::string& name, const std::vector<const char*>& arguments) const {
    simulator::FaultPlan plan;
    simulator::BenchState state = install_.fresh;
    EXPECT_EQ(Run(state, plan, arguments).exitCode, install_.exitCode);
    EXPECT_EQ(ProtocolErrors(state), std::vector<std::string>()) << "without a fault there is nothing to object to";
    return plan.Count(simulator::ParseFault(name + "@1").fault);
  }

  /// What a run that was struck left behind does not keep the next one from installing everything.
  void ExpectMended(simulator::BenchState state, const std::string& fault) const {
    PowerCycle(state);
    const Ending mended = Run(state, {}, install_.arguments);
    EXPECT_TRUE(mended.exitCode == install_.exitCode || mended.exitCode == 0) << fault << ": " << mended.exitCode;
    EXPECT_EQ(mended.err, "") << fault;
    PowerCycle(state);
    std::map<std::string, std::uint16_t> running;
    for (const simulator::PartRow& row : simulator::RowsOf(state))
      if (install_.running.contains(row.part)) running[row.part] = row.running.value_or(0xFFFF);
    EXPECT_EQ(running, install_.running) << fault;
  }

  /// Strikes each event of this fault's kind, of which there are `places`, and expects how the run ends.
  void Walk(const std::string& name, std::size_t places, const std::function<Ending(std::size_t)>& expected) {
    ASSERT_EQ(Places(name), places) << name;
    for (std::size_t place = 0; place < places; ++place) {
      simulator::BenchState state = install_.fresh;
      const std::string fault = name + "@" + std::to_string(place + 1);
      const Ending ending = Run(state, {fault, install_.endsWaiting}, install_.arguments);
      EXPECT_EQ(ending.exitCode, expected(place).exitCode) << fault;
      EXPECT_EQ(ending.err, expected(place).err) << fault;
      ExpectMended(state, fault);
      if (HasFailure()) return;
    }
    std::printf("fault walk: %s ended %zu %s installs, one at each of its places\n", name.c_str(), places,
                install_.exitCode == 4 ? "Orbo QX" : "box");
  }

  const Install install_;
  test_support::TempFolder folder_;

 private:
  test_support::ScopedWorkingFolder inside_;
  // Keeps the Talc library started, so that the dictionaries are not read for each run.
  const std::unique_ptr<WyvrelHelper> library_ = std::make_unique<VeltraHelper>(OpenMode::kHostCards);
};
