#pragma once

#include <string>
#include <vector>

/// Runs a program to its end and keeps what it wrote.
///
///     const auto run = test_support::RunProcess(RBITOOL_PROGRAM, {"show", "a.rbi"}, {.workingDirectory = folder});
///     EXPECT_EQ(run.exitCode, 0) << run.standardError;
namespace test_support {

struct ProcessOptions {
  /// What the program reads; it meets the end of the input behind it.
  std::string standardInput = {};
  /// Where the program runs; empty for the test's own folder.
  std::string workingDirectory = {};
  /// "NAME=value" texts, which go before what the test's own environment says.
  std::vector<std::string> environment = {};
};

struct ProcessResult {
  /// 0 to 255, or 128 plus the signal's number when a signal ended the program. On Windows the low eight bits of the
  /// code, as a shell of the other systems shows them.
  int exitCode = 0;
  /// With a line feed alone at the end of each line, on Windows too.
  std::string standardOutput;
  std::string standardError;
};

/// Waits as long as the program runs. `program` is a path, or a name to be looked up in PATH. Throws std::system_error
/// when it cannot be started.
ProcessResult RunProcess(const std::string& program, const std::vector<std::string>& arguments,
                         const ProcessOptions& options = {});

}  // namespace test_support
