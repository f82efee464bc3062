#include "Options.h"

#include <CLI/CLI.hpp>

#include "support/Console.h"

namespace {

void AddCommonOptions(CLI::App& app, Options& options) {
  app.add_option("--tcd", options.dictionaries, "Dictionary files, in place of the embedded ones")
      ->type_name("FILE")
      ->expected(1, -1);
  app.add_flag_callback(
      "--verbose",
      [&options] {
        if (options.detail == LogLines::Detail::kFaults) options.detail = LogLines::Detail::kVerbose;
      },
      "Let the library tell more on standard error");
  app.add_flag_callback(
      "--trace", [&options] { options.detail = LogLines::Detail::kTrace; },
      "Let the library tell each step of each packet, too");
}

bool IsGroup(const Call& call) {
  return call.run == nullptr && call.runOnFile == nullptr && call.runOnFileAlone == nullptr;
}

/// A call of a group goes by its second word.
CLI::App& AddCommand(CLI::App& app, const Call& call) {
  const std::string name = call.name;
  const std::size_t blank = name.find(' ');
  if (blank == std::string::npos) return *app.add_subcommand(name, call.help);
  return *app.get_subcommand(name.substr(0, blank))->add_subcommand(name.substr(blank + 1), call.help);
}

}  // namespace

std::optional<int> ReadOptions(int argc, char** argv, std::span<const Call> calls, Options& options) {
  CLI::App app("The Talc dictionary and its packets by hand", "talctool");
  app.set_version_flag("--version", "talctool " TALCTOOL_VERSION, "Print the version and exit");
  app.require_subcommand(1);
  // Lets the options stand behind the call's name, too.
  app.fallthrough();
  AddCommonOptions(app, options);
  for (const Call& call : calls) {
    CLI::App& command = AddCommand(app, call);
    if (IsGroup(call)) {
      command.require_subcommand(1);
      continue;
    }
    command.callback([&options, &call] { options.call = &call; });
    if (call.fileOption != nullptr)
      command.add_option(call.fileOption, options.file, "The file to read")->type_name("FILE")->required();
  }

  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& helpOrVersion) {
    return app.exit(helpOrVersion);
  } catch (const CLI::ParseError& error) {
    return Complain("talctool", error.what(), kBadUsage);
  }
  return std::nullopt;
}
