// What a person asks of a bench: what is on it, a power cycle, and the faults that it knows.

#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "Command.h"
#include "simulator/BenchFolder.h"
#include "simulator/Faults.h"
#include "simulator/HexText.h"

namespace {

struct ShowOptions {
  std::string folder;
  bool json = false;
};

nlohmann::json JsonVersion(const std::optional<std::uint16_t>& version) {
  return version ? nlohmann::json(simulator::Hex(*version, 4)) : nlohmann::json();
}

std::string TextVersion(const std::optional<std::uint16_t>& version) {
  return version ? simulator::Hex(*version, 4) : "erased";
}

void ShowJson(const simulator::PartRow& row) {
  const nlohmann::json line = {{"part", row.part},
                               {"running", JsonVersion(row.running)},
                               {"stored", JsonVersion(row.stored)},
                               {"errors", row.errors}};
  std::printf("%s\n", line.dump(-1, ' ', true).c_str());
}

void ShowText(const simulator::PartRow& row) {
  std::printf("%-12s %-8s %-8s\n", row.part.c_str(), TextVersion(row.running).c_str(), TextVersion(row.stored).c_str());
  for (const std::string& error : row.errors)
    std::printf("    protocol error: %s\n", error.c_str());
}

/// Standard output may be a full disk.
int Printed() {
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) throw std::runtime_error("cannot write to standard output");
  return kDone;
}

int Show(const ShowOptions& options) {
  const auto rows = simulator::RowsOf(simulator::LoadBench(options.folder));
  if (!options.json) std::printf("%-12s %-8s %-8s\n", "Part", "Running", "Stored");
  for (const simulator::PartRow& row : rows)
    options.json ? ShowJson(row) : ShowText(row);
  return Printed();
}

int PowerCycle(const std::string& folder) {
  simulator::Bench bench(simulator::LoadBench(folder));
  bench.PowerCycle();
  simulator::SaveBench(folder, bench.State());
  return kDone;
}

int ListFaults() {
  for (const simulator::FaultEntry& entry : simulator::FaultTable())
    std::printf("%-26s%s: %s\n", std::string(entry.name).c_str(), std::string(entry.strikes).c_str(),
                std::string(entry.meaning).c_str());
  return Printed();
}

}  // namespace

void AddShowCommands(CLI::App& app, Action& action) {
  const auto options = std::make_shared<ShowOptions>();
  CLI::App* const show = app.add_subcommand("show", "Print what each part runs and what is stored in it");
  show->add_option("DIR", options->folder, "The bench's folder")->required();
  show->add_flag("--json", options->json, "One JSON object a line");
  show->callback([options, &action] { action = [options] { return Show(*options); }; });

  CLI::App* const cycle = app.add_subcommand("power-cycle", "Make what is stored run");
  cycle->add_option("DIR", options->folder, "The bench's folder")->required();
  cycle->callback([options, &action] { action = [options] { return PowerCycle(options->folder); }; });

  CLI::App* const faults = app.add_subcommand("faults", "List what can be made to fail: name, what it strikes: effect");
  faults->callback([&action] { action = ListFaults; });
}
