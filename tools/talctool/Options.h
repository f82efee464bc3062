#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "LogLines.h"

class Dictionary;

/// One thing that the tool can be called for. What is run prints to std::cout; it throws std::exception when the work
/// failed. A call without anything to run is a group; those behind it whose names begin with its own are its calls:
///
///     {"crc", "Work on trailers"}, {"crc add", "Write one", nullptr, "FILE", nullptr, AddCrc}
struct Call {
  const char* name;
  const char* help;
  void (*run)(const Dictionary& dictionary) = nullptr;
  /// For a call on a file, in place of `run`: the option or the argument that names the file, and what is done with its
  /// text.
  const char* fileOption = nullptr;
  void (*runOnFile)(const Dictionary& dictionary, const std::string& path, const std::string& text) = nullptr;
  /// The same for a call that needs no dictionary.
  void (*runOnFileAlone)(const std::string& path) = nullptr;
};

/// A command line that has been understood.
struct Options {
  /// Files to be read in place of the embedded dictionaries.
  std::vector<std::string> dictionaries;
  /// The file of a call on a file.
  std::string file;
  LogLines::Detail detail = LogLines::Detail::kFaults;
  const Call* call = nullptr;
};

/// Reads the command line into `options`. Gives the exit code when there is nothing more to do: help and version have
/// been printed, or what is wrong has been said.
std::optional<int> ReadOptions(int argc, char** argv, std::span<const Call> calls, Options& options);
