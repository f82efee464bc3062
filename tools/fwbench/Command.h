#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <stdexcept>
#include <string>
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

/// Each of these adds subcommands, of which the one that is called puts what it does into `action`. Both must outlive
/// the parsing. `installerArguments` are the words behind "--".
void AddNewCommand(CLI::App& app, Action& action);
void AddRunCommand(CLI::App& app, Action& action, const std::vector<std::string>& installerArguments);
void AddShowCommands(CLI::App& app, Action& action);
