#pragma once

#include <charconv>
#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "support/Console.h"

/// Thrown for what a user got wrong on the command line and CLI11 cannot know.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What a subcommand does once the whole command line is read; returns the exit code, which for `run` is the
/// installer's own. Throws `UsageError`, and other exceptions for work that failed.
using Action = std::function<int()>;

/// A number of at most 64 bits, of decimal digits alone, which CLI11 would not insist on; nothing for any other text.
inline std::optional<std::uint64_t> ReadDecimal(std::string_view text) {
  std::uint64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [behind, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || behind != end) return std::nullopt;
  return number;
}

/// Each of these adds subcommands, of which the one that is called puts what it does into `action`. Both must outlive
/// the parsing. `installerArguments` are the words behind "--".
void AddNewCommand(CLI::App& app, Action& action);
void AddRunCommand(CLI::App& app, Action& action, const std::vector<std::string>& installerArguments);
void AddShowCommands(CLI::App& app, Action& action);
void AddVmeCommand(CLI::App& app, Action& action);
