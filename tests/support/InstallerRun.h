#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "board/VmePlayer.h"
#include "FwDeploy.h"
#include "support/CapturedOutput.h"
#include "support/TempFolder.h"

/// How a run of the program ended.
struct InstallerRun {
  int exitCode;
  std::string out;
  std::string err;
  std::string leftInInput;  ///< what the run did not read of its standard input
};

/// What reads as empty.
#if defined(_WIN32)
inline constexpr char kNothing[] = "NUL";
#else
inline constexpr char kNothing[] = "/dev/null";
#endif

/// Runs the whole program in this process, as if it were a new one, on the current platform and in the current folder,
/// with `input` as its standard input.
inline InstallerRun RunInstaller(const std::vector<const char*>& arguments, const std::string& input = "\n") {
  // What lives as long as the process.
  TheVmePlayer().port = JtagPort();
  TheVmePlayer().interpreter = VmeInterpreter();

  const test_support::TempFolder folder;
  if (std::freopen(folder.Write("input", input).c_str(), "r", stdin) == nullptr) std::abort();
  std::vector<const char*> argv{"FwDeploy"};
  argv.insert(argv.end(), arguments.begin(), arguments.end());

  InstallerRun run{};
  {
    test_support::CapturedOutput output;
    run.exitCode = FwDeployMain(static_cast<int>(argv.size()), argv.data());
    run.out = output.out();
    run.err = output.err();
  }
  for (int byte = std::getchar(); byte != EOF; byte = std::getchar())
    run.leftInInput += static_cast<char>(byte);
  // Some systems keep a file, and the folder that it is in, for as long as it is open.
  if (std::freopen(kNothing, "r", stdin) == nullptr) std::abort();
  return run;
}

/// A failure line without its line number, which is not worth pinning: "... File: FwDeploy.cpp Line: #\n".
inline std::string WithoutLineNumber(std::string text) {
  const std::string mark = " Line: ";
  const std::size_t at = text.rfind(mark);
  if (at == std::string::npos) return text;
  const std::size_t digits = at + mark.size();
  const std::size_t end = text.find_first_not_of("0123456789", digits);
  if (end == digits || end == std::string::npos) return text;
  return text.replace(digits, end - digits, "#");
}
