#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "Command.h"
#include "simulator/BenchDescription.h"
#include "simulator/BenchError.h"
#include "simulator/BenchFolder.h"
#include "simulator/WholeFile.h"

namespace {

/// Longest description that is read.
constexpr std::uintmax_t kLongestDescription = std::uintmax_t{256} << 20;

const std::map<std::string, simulator::HostCards> kHostCards = {{"both", simulator::HostCards::kBoth},
                                                                {"belmara", simulator::HostCards::kBelmara},
                                                                {"dovu", simulator::HostCards::kDovu},
                                                                {"none", simulator::HostCards::kNone}};
const std::map<std::string, simulator::BoxChoice> kBoxes = {
    {"on", simulator::BoxChoice::kOn}, {"off", simulator::BoxChoice::kOff}, {"none", simulator::BoxChoice::kNone}};
const std::map<std::string, simulator::OrboQx> kOrboQx = {
    {"4", simulator::OrboQx::kModel4}, {"5", simulator::OrboQx::kModel5}, {"none", simulator::OrboQx::kNone}};

struct NewOptions {
  std::string folder;
  std::string hostCards = "both";
  std::string box = "on";
  std::string orboQx = "4";
  std::uint64_t seed = 1;
  std::string description;
};

std::string CheckSeed(const std::string& text) {
  return ReadDecimal(text) ? "" : "a seed is a decimal number of at most 64 bits";
}

int MakeFromDescription(const NewOptions& options) {
  std::string text;
  try {
    text = simulator::ReadWholeFile(options.description, kLongestDescription);
  } catch (const simulator::BenchError& error) {
    throw UsageError(error.what());
  }
  simulator::BenchDescription description;
  try {
    description = simulator::ParseBenchDescription(text);
  } catch (const simulator::BenchError& error) {
    throw simulator::BenchError(options.description + ": " + error.what());
  }
  simulator::CreateBench(options.folder, description.state, description.files, options.seed);
  return kDone;
}

int Make(const NewOptions& options) {
  if (!options.description.empty()) return MakeFromDescription(options);
  const simulator::BenchState state = simulator::MakeBench({.hostCards = kHostCards.at(options.hostCards),
                                                            .box = kBoxes.at(options.box),
                                                            .orboQx = kOrboQx.at(options.orboQx),
                                                            .seed = options.seed});
  simulator::CreateBench(options.folder, state, simulator::ReleaseFiles(), options.seed);
  return kDone;
}

}  // namespace

void AddNewCommand(CLI::App& app, Action& action) {
  CLI::App* const command = app.add_subcommand("new", "Make a bench in a new or empty folder");
  const auto options = std::make_shared<NewOptions>();
  command->add_option("DIR", options->folder, "The bench's folder")->required();
  auto* const describe =
      command->add_option("--describe", options->description, "Make what the description in this file says");
  const auto choice = [&](const char* name, std::string& value, const char* help,
                          const std::vector<std::string>& words) {
    command->add_option(name, value, help)->check(CLI::IsMember(words))->capture_default_str()->excludes(describe);
  };
  choice("--host-cards", options->hostCards, "Cards to plug in", {"both", "belmara", "dovu", "none"});
  choice("--box", options->box, "Break-out box: switched on, switched off, or not there", {"on", "off", "none"});
  choice("--orbo-qx", options->orboQx, "Orbo QX: its model, or none", {"4", "5", "none"});
  command->add_option("--seed", options->seed, "The same seed makes the same bench")
      ->check(CheckSeed)
      ->capture_default_str()
      ->excludes(describe);
  command->callback([options, &action] { action = [options] { return Make(*options); }; });
}
