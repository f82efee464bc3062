#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "Command.h"

namespace {

/// One line on standard error, whatever the text holds.
int Complain(std::string text, int exitCode) {
  while (!text.empty() && text.back() == '\n')
    text.pop_back();
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::fprintf(stderr, "fwbench: %s\n", text.c_str());
  return exitCode;
}

int Run(const std::vector<std::string>& words) {
  // What follows "--" is the installer's, whatever it looks like.
  const auto dashes = std::find(words.begin(), words.end(), "--");
  const std::vector<std::string> installerArguments(dashes == words.end() ? dashes : dashes + 1, words.end());

  CLI::App app("A bench of simulated hardware in a folder, and the installer run against it", "fwbench");
  app.set_version_flag("--version", "fwbench " FWBENCH_VERSION, "Print the version and exit");
  app.require_subcommand(1);
  Action action;
  AddNewCommand(app, action);
  AddRunCommand(app, action, installerArguments);
  AddShowCommands(app, action);

  // CLI11 takes the words last first.
  std::vector<std::string> own(std::make_reverse_iterator(dashes), words.rend());
  try {
    app.parse(std::move(own));
  } catch (const CLI::Success& helpOrVersion) {
    return app.exit(helpOrVersion);
  } catch (const CLI::ParseError& error) {
    return Complain(error.what(), kBadUsage);
  }
  if (dashes != words.end() && !app.got_subcommand("run"))
    return Complain("only run takes arguments behind --", kBadUsage);
  return action();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run({argv + std::min(argc, 1), argv + argc});
  } catch (const UsageError& error) {
    return Complain(error.what(), kBadUsage);
  } catch (const std::exception& error) {
    return Complain(error.what(), kFailed);
  }
}
