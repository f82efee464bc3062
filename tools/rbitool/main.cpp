#include <algorithm>
#include <CLI/CLI.hpp>
#include <cstdint>
#include <exception>
#include <iostream>
#include <string>

#include "container/RbiContainer.h"
#include "container/ScanHex.h"
#include "ContainerFile.h"
#include "ContainerReport.h"
#include "support/Console.h"
#include "support/WholeFile.h"

namespace {

constexpr const char* kProgram = "rbitool";

struct MakeOptions {
  std::string output;
  std::string partId;
  std::string version;
  std::string payload;
  std::string taggedText;
};

/// The checks answer with a text for the user, empty when all is well.
std::string CheckPartId(const std::string& text) {
  const bool isPrintable = std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
  return text.size() == 4 && isPrintable ? "" : "a part id is four printable characters";
}

std::string CheckVersion(const std::string& text) {
  const bool isHex = text.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
  return !text.empty() && text.size() <= 4 && isHex ? "" : "a version is one to four hexadecimal digits";
}

void AddMake(CLI::App& app, MakeOptions& options) {
  CLI::App* make = app.add_subcommand("make", "Write a container");
  make->add_option("OUT", options.output, "The container to write")->required();
  make->add_option("--id", options.partId, "Part id, four characters")->required()->check(CheckPartId);
  make->add_option("--version", options.version, "Version, one to four hexadecimal digits")
      ->required()
      ->check(CheckVersion);
  make->add_option("--payload", options.payload, "File whose bytes follow the header")->required();
  make->add_option("--text", options.taggedText, "Tagged text, such as \"S:name;M:01.02\"");
}

int Make(const MakeOptions& options) {
  std::uint32_t version = 0;
  ScanHex32(options.version.c_str(), version);
  WriteWhole(options.output, BuildContainer(options.partId, static_cast<std::uint16_t>(version), options.taggedText,
                                            ReadWhole(options.payload)));
  return kDone;
}

int Show(const std::string& fileName) {
  char partId[5];
  std::uint32_t version = 0;
  // Says itself what is wrong.
  if (!ReadRbiHeader(fileName.c_str(), partId, version)) return kFailed;
  std::cout << ReportContainer(partId, version, ReadWhole(fileName));
  FinishOutput();
  return kDone;
}

int Run(int argc, char** argv) {
  CLI::App app("Firmware containers: makes them, and shows what the installer reads from them", kProgram);
  app.set_version_flag("--version", "rbitool " RBITOOL_VERSION, "Print the version and exit");
  app.require_subcommand(1);
  MakeOptions options;
  AddMake(app, options);
  std::string shown;
  CLI::App* show = app.add_subcommand("show", "Print a container's header as a line of JSON");
  show->add_option("FILE", shown, "The container to read")->required();

  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& helpOrVersion) {
    return app.exit(helpOrVersion);
  } catch (const CLI::ParseError& error) {
    return Complain(kProgram, error.what(), kBadUsage);
  }
  return show->parsed() ? Show(shown) : Make(options);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& error) {
    return Complain(kProgram, error.what(), kFailed);
  }
}
