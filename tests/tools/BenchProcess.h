#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "support/Process.h"
#include "support/TempFolder.h"

/// A bench in a folder of the test's own, and fwbench run on it, each step in a process of its own, as people and
/// scripts do it.
class BenchProcess : public testing::Test {
 protected:
  /// `fwbench new` from a description.
  void MakeBench(const std::string& description) {
    folder_.Write("bench.json", description);
    const auto made = test_support::RunProcess(
        FWBENCH_PROGRAM, {"new", folder_.File("bench"), "--describe", folder_.File("bench.json")});
    ASSERT_EQ(made.exitCode, 0) << made.standardError;
  }

  /// `fwbench run`, with words before and behind the "--".
  test_support::ProcessResult Run(const std::vector<std::string>& arguments,
                                  const std::vector<std::string>& options = {}) {
    std::vector<std::string> words{"run", folder_.File("bench")};
    words.insert(words.end(), options.begin(), options.end());
    words.push_back("--");
    words.insert(words.end(), arguments.begin(), arguments.end());
    return test_support::RunProcess(FWBENCH_PROGRAM, words,
                                    {.standardInput = "\n", .workingDirectory = folder_.Path().string()});
  }

  void PowerCycle() {
    ASSERT_EQ(test_support::RunProcess(FWBENCH_PROGRAM, {"power-cycle", folder_.File("bench")}).exitCode, 0);
  }

  /// The row that `fwbench show` has for a part, or null.
  nlohmann::json Shown(const std::string& part) {
    const auto run = test_support::RunProcess(FWBENCH_PROGRAM, {"show", folder_.File("bench"), "--json"});
    std::istringstream lines(run.standardOutput);
    for (std::string line; std::getline(lines, line);)
      if (const nlohmann::json row = nlohmann::json::parse(line); row["part"] == part) return row;
    return nullptr;
  }

  test_support::TempFolder folder_;
};

inline constexpr char kTableHeading[] =
    "   Part Name   Board Fn Rev   Current Flash   Expected Flash\n"
    "   ---------   ------------   -------------   --------------\n";
