#include <algorithm>
#include <exception>
#include <string>
#include <vector>

#include "Command.h"

namespace {

constexpr const char* kProgram = "fwbench";

int Run(const std::vector<std::string>& words) {
  // What follows "--" is the installer's, whatever it looks like.
  const auto dashes = std::find(words.begin(), words.end(), "--");
  const std::vector<std::string> installerArguments(dashes == words.end() ? dashes : dashes + 1, words.end());

  CLI::App app("A bench of simulated hardware in a folder, and the installer run against it", kProgram);
  app.set_version_flag("--version", "fwbench " FWBENCH_VERSION, "Print the version and exit");
  app.require_subcommand(1);
  Action action;
  AddNewCommand(app, action);
  AddRunCommand(app, action, installerArguments);
  AddShowCommands(app, action);
  AddVmeCommand(app, action);

  // CLI11 takes the words last first.
  std::vector<std::string> own(std::make_reverse_iterator(dashes), words.rend());
  try {
    app.parse(std::move(own));
  } catch (const CLI::Success& helpOrVersion) {
    return app.exit(helpOrVersion);
  } catch (const CLI::ParseError& error) {
    return Complain(kProgram, error.what(), kBadUsage);
  }
  if (dashes != words.end() && !app.got_subcommand("run"))
    return Complain(kProgram, "only run takes arguments behind --", kBadUsage);
  return action();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run({argv + std::min(argc, 1), argv + argc});
  } catch (const UsageError& error) {
    return Complain(kProgram, error.what(), kBadUsage);
  } catch (const std::exception& error) {
    return Complain(kProgram, error.what(), kFailed);
  }
}
