#include <CLI/CLI.hpp>
#include <cstdint>
#include <exception>
#include <iostream>
#include <string>

#include "container/RbiContainer.h"
#include "ContainerFile.h"
#include "ContainerReport.h"
#include "support/Console.h"
#include "support/WholeFile.h"
#include "VmeScript.h"
#include "VmeTokens.h"

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
  return IsPartId(text) ? "" : "a part id is four printable characters";
}

std::string CheckVersion(const std::string& text) {
  return ParseVersion(text) ? "" : "a version is one to four hexadecimal digits";
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
  WriteWhole(options.output, BuildContainer(options.partId, ParseVersion(options.version).value(), options.taggedText,
                                            ReadWhole(options.payload)));
  return kDone;
}

struct VmeOptions {
  std::string output;
  std::string script;
};

CLI::App* AddVme(CLI::App& app, VmeOptions& options) {
  CLI::App* vme = app.add_subcommand("vme", "Assemble a script of JTAG steps into a VME file in a container");
  vme->add_option("OUT", options.output, "The container to write")->required();
  vme->add_option("--script", options.script, "The script to assemble, see docs/vme.md")->required();
  return vme;
}

int Vme(const VmeOptions& options) {
  try {
    WriteWhole(options.output, vme_script::AssembleVme(ReadWhole(options.script)));
    return kDone;
  } catch (const vme_script::ScriptError& error) {
    std::cerr << error.Report(options.script);
    return kFailed;
  }
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
  VmeOptions vmeOptions;
  const CLI::App* vme = AddVme(app, vmeOptions);
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
  if (show->parsed()) return Show(shown);
  return vme->parsed() ? Vme(vmeOptions) : Make(options);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& error) {
    return Complain(kProgram, error.what(), kFailed);
  }
}
