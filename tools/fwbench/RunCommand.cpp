#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "Command.h"
#include "FwDeploy.h"
#include "Record.h"
#include "simulator/BenchError.h"
#include "simulator/BenchFolder.h"
#include "simulator/Faulty.h"
#include "simulator/Pacing.h"
#include "simulator/Recording.h"
#include "simulator/Waveform.h"

namespace {

constexpr double kSlowestPace = 0.001;
constexpr double kFastestPace = 1'000'000;

struct RunOptions {
  std::string folder;
  std::string trace;
  std::string waveform;
  std::optional<double> pace;
  std::vector<std::string> faults;
};

simulator::FaultPlan ReadFaults(const std::vector<std::string>& texts) {
  simulator::FaultPlan plan;
  for (const std::string& text : texts)
    try {
      plan.Add(simulator::ParseFault(text));
    } catch (const std::invalid_argument& error) {
      throw UsageError(std::string("--fault: ") + error.what());
    }
  return plan;
}

/// The platforms between the installer and the bench, from the bench outwards.
class Stack {
 public:
  Stack(simulator::Bench& bench, simulator::FaultPlan& plan, const RunOptions& options)
      : trace_(options.trace, "the trace"),
        vcd_(options.waveform, "the waveform"),
        faulty_(bench.platform(), plan),
        outermost_(&faulty_) {
    if (trace_.IsWanted()) outermost_ = &recording_.emplace(*outermost_, trace_.stream());
    if (vcd_.IsWanted()) outermost_ = &waveform_.emplace(*outermost_, bench, vcd_.stream());
    if (options.pace) {
      const auto wait = [start = std::chrono::steady_clock::now()](std::chrono::nanoseconds sinceStart) {
        std::this_thread::sleep_until(start + sinceStart);
      };
      outermost_ = &pacing_.emplace(*outermost_, bench.clock(), *options.pace, wait);
    }
  }

  platform::Platform& outermost() { return *outermost_; }

  /// Throws when what was written down is not whole.
  void Close() {
    trace_.Close();
    vcd_.Close();
  }

 private:
  Record trace_;
  Record vcd_;
  simulator::Faulty faulty_;
  std::optional<simulator::Recording> recording_;
  std::optional<simulator::Waveform> waveform_;
  std::optional<simulator::Pacing> pacing_;
  platform::Platform* outermost_;
};

/// Calls the installer as a program of this name would be called.
int CallInstaller(const std::vector<std::string>& arguments) {
  std::vector<const char*> words = {"FwDeploy"};
  for (const std::string& argument : arguments)
    words.push_back(argument.c_str());
  const auto count = static_cast<int>(words.size());
  words.push_back(nullptr);
  return FwDeployMain(count, words.data());
}

int Run(RunOptions options, const std::vector<std::string>& arguments) {
  // The installer runs in a folder of its own.
  options.folder = std::filesystem::absolute(options.folder).string();
  for (std::string* const path : {&options.trace, &options.waveform})
    if (!path->empty()) *path = std::filesystem::absolute(*path).string();
  simulator::FaultPlan plan = ReadFaults(options.faults);
  simulator::Bench bench(simulator::LoadBench(options.folder));
  bench.platform().files().ShowRealEnvironment();
  bench.UseFaults(&plan);
  Stack stack(bench, plan, options);
  std::filesystem::current_path(simulator::FirmwareFolder(options.folder));

  int result = kFailed;
  std::optional<simulator::PowerCut> cut;
  try {
    const platform::ScopedPlatform current(stack.outermost());
    result = CallInstaller(arguments);
  } catch (const simulator::PowerCut& pulled) {
    cut = pulled;
  } catch (...) {
    // The program is gone, the hardware stays as it is.
    simulator::SaveBench(options.folder, bench.State());
    throw;
  }
  std::fflush(stdout);
  simulator::SaveBench(options.folder, cut ? bench.StateAfterPowerLoss() : bench.State());
  if (cut) std::fprintf(stderr, "fwbench: power cut at write %llu\n", static_cast<unsigned long long>(cut->write));
  stack.Close();
  return result;
}

std::string CheckPace(const std::string& text) {
  double pace = 0;
  const bool isNumber = CLI::detail::lexical_cast(text, pace);
  return isNumber && pace >= kSlowestPace && pace <= kFastestPace ? "" : "a pace is a number from 0.001 to 1000000";
}

}  // namespace

void AddRunCommand(CLI::App& app, Action& action, const std::vector<std::string>& installerArguments) {
  CLI::App* const command = app.add_subcommand("run", "Run the installer against a bench: fwbench run DIR -- ARGS");
  const auto options = std::make_shared<RunOptions>();
  command->add_option("DIR", options->folder, "The bench's folder; the installer runs in its folder firmware")
      ->required();
  command->add_option("--trace", options->trace, "Write each register access and control call to this file");
  command->add_option("--vcd", options->waveform,
                      "Draw JTAG pins, TAP state and FIFO status as a waveform in this file");
  command->add_option("--pace", options->pace, "Play in real time (1) or so many times as fast; without it, at once")
      ->check(CheckPace);
  command->add_option("--fault", options->faults, "NAME or NAME@N: let every event or the N-th fail; may be repeated")
      ->allow_extra_args(false);
  command->footer("What follows -- is the installer's command line. The exit code is the installer's own.");
  command->callback([options, &action, &installerArguments] {
    action = [options, &installerArguments] { return Run(*options, installerArguments); };
  });
}
