#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/Process.h"
#include "support/TempFolder.h"

MATCHER(IsOneLine, "is one line") {
  return arg.find('\n') == arg.size() - 1 && arg.size() > 1;
}

/// The program talctool, run as a user runs it, in a folder that holds a small dictionary of all kinds of command.
class Talctool : public testing::Test {
 protected:
  Talctool() {
    folder_.Write("small.tcd",
                  "# All kinds ;\n"
                  "Load Meta Start LoadStart Repeat LoadData Stop LoadStop\n"
                  "DataName Target DataType UINT8\nDataName Image DataType BYTES\n;\n"
                  "Gain Talc CommandTypeMajor AUDIO CommandTypeMinor 3 Function 5\n"
                  "DataName Channel RD DataType UINT8\nDataName Level DataType INT16\n"
                  "Symbol Loud 300\nSymbol Quiet -300\n;\n"
                  "Blob Talc CommandTypeMajor DIAGNOSTIC CommandTypeMinor 63 Function 127\n"
                  "DataName Kind RD DataType INT8\nDataName Data DataType BYTES\n;\n"
                  "Probe Diag DiagOpcode 200\nDataName Wide DataType UINT64\n;\n"
                  "Ping Talc CommandTypeMajor VIDEO CommandTypeMinor 0 Function 0\n;\n");
  }

  test_support::ProcessResult Run(const std::vector<std::string>& arguments, const std::string& input = "") const {
    return test_support::RunProcess(TALCTOOL_PROGRAM, arguments,
                                    {.standardInput = input, .workingDirectory = folder_.Path().string()});
  }
  /// Runs a line of shell in which $0 is the program.
  test_support::ProcessResult RunInShell(const std::string& line) const {
    return test_support::RunProcess("sh", {"-c", line, TALCTOOL_PROGRAM},
                                    {.workingDirectory = folder_.Path().string()});
  }
  /// Runs what must work without a word on standard error, and returns what it printed.
  std::string Output(const std::vector<std::string>& arguments, const std::string& input = "") const {
    const auto run = Run(arguments, input);
    EXPECT_EQ(run.exitCode, 0) << testing::PrintToString(arguments);
    EXPECT_EQ(run.standardError, "");
    return run.standardOutput;
  }
  /// What a call prints for the small dictionary.
  std::string OfSmall(const std::string& call, const std::string& input = "") const {
    return Output({call, "--tcd", "small.tcd"}, input);
  }

  test_support::TempFolder folder_;
};
