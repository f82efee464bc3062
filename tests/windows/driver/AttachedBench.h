#pragma once

#include <cstdint>
#include <fstream>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

#include "Client.h"
#include "Configuration.h"
#include "simulator/Bench.h"
#include "simulator/Faulty.h"
#include "simulator/Recording.h"

namespace benchdriver {

/// The boards of a bench folder behind their driver. The folder is loaded when the first board is opened and saved when
/// no board is open any more; what happens between is one run, as those of `fwbench run`. Events are counted on from
/// run to run, as faults see them, and a pulled plug stays pulled: only another attachment starts anew.
///
/// The bench's clock follows real time, as many times as fast as the configuration says. Nothing is too late for the
/// boards that way, and all is there when the program looks.
class AttachedBench {
 public:
  /// Throws `std::invalid_argument` for a fault that does not exist.
  explicit AttachedBench(Configuration configuration);

  std::uint32_t attachment() const { return configuration_.attachment; }

  /// Opens the board at this place in `simulator::kBoards`. Returns a system error code, 0 for success. Throws
  /// `simulator::BenchError` when the folder cannot be loaded.
  std::uint32_t Open(std::size_t board, platform::Handle& handle);
  /// Takes a control call; returns a system error code. A register window that it maps is the client's, and lives as
  /// long as that.
  std::uint32_t Control(platform::Handle handle, Client& client, std::uint32_t code, std::span<const std::uint8_t> in,
                        std::span<std::uint8_t> out, std::uint32_t& returned);
  void Close(platform::Handle handle);
  /// Ends the run, if there is one. No client is left. Throws `simulator::BenchError` when the folder cannot be saved.
  void Save();

 private:
  /// A register window as the servers of programs use it: from threads of their own.
  class SharedTrap : public platform::RegisterTrap {
   public:
    SharedTrap(AttachedBench& bench, platform::RegisterTrap& inner) : bench_(bench), inner_(inner) {}
    std::uint32_t Read(std::uint32_t offset) override;
    void Write(std::uint32_t offset, std::uint32_t value) override;

   private:
    AttachedBench& bench_;
    platform::RegisterTrap& inner_;
  };

  struct Run {
    Run(simulator::BenchState state, simulator::FaultPlan& plan, std::ofstream& trace);

    simulator::Bench bench;
    simulator::Faulty faulty;
    std::optional<simulator::Recording> recording;
    platform::Devices& devices;
    std::vector<std::unique_ptr<SharedTrap>> traps;
    const std::int64_t startNanoseconds;
    /// What the platform's clock, which the program lives by too, showed then.
    const std::int64_t startTicks;
  };

  void MapWindow(Client& client, std::span<std::uint8_t> result);
  void FollowRealTime();
  void KeepWhatThePulledPlugLeaves();

  const Configuration configuration_;
  simulator::FaultPlan plan_;
  std::ofstream trace_;
  std::mutex mutex_;
  std::optional<Run> run_;
  bool isPlugPulled_ = false;
};

}  // namespace benchdriver
