#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "simulator/Downloads.h"
#include "simulator/Faults.h"
#include "simulator/MorvakParts.h"
#include "simulator/ProtocolErrors.h"
#include "simulator/SimulatedDevice.h"
#include "simulator/VirtualClock.h"

namespace simulator {

/// An answer that nobody fetched yet.
struct MorvakAnswer {
  std::int64_t thereNanoseconds = 0;
  std::vector<std::uint8_t> packet;
};

/// All that an Orbo QX is at one moment, as a value.
struct MorvakUnitState {
  std::uint32_t model = 4;
  std::uint32_t codecSlots = 0;
  /// What is in each slot, as the driver tells it: 1 and 2 mean a codec. An empty slot has 0, or no entry.
  std::vector<std::uint32_t> codecState;
  MorvakTexts running;
  MorvakTexts stored;
  /// The VPD that it tells over Talc; nothing for none.
  std::optional<std::vector<std::uint8_t>> vpd;
  /// The VPD that its driver reads, at most `kVpdAreaBytes` for each board.
  MorvakBoards boards;
  /// What the unit refused.
  ProtocolErrors errors;

  /// What is going on: nothing of it outlives a power cycle, or the keeping of a bench.
  std::optional<std::int64_t> diagnosticNanoseconds;  ///< when a diagnostic came that no start has used up
  Downloads downloads;
  std::vector<MorvakAnswer> answers;  ///< the next one first

  /// Takes the power away at this moment and gives it back: what is stored runs. An image counts as stored when its
  /// burn has ended, not before.
  void PowerCycle(std::int64_t nowNanoseconds);
  /// Lets a burn come to its end, and gives up whatever else is going on.
  void Settle();
  /// Keeps the image of a burn that has ended by now.
  void EndBurn(std::int64_t nowNanoseconds);
};

/// An Orbo QX behind its driver, which has no registers: control calls tell model and codec slots, read VPD, and
/// exchange Talc packets. Addresses in the records are those of this process, and are believed.
///
/// An exchange hands the command over at once and then waits, on the clock, for the next answer. Without a command it
/// waits for one that is still to come. A command does away with answers that were there before it. Where no answer
/// comes in the time of the record, its status says so, and the call succeeds all the same.
///
///     MorvakUnit unit(state, clock);
///     platform.devices().Add(kMorvakBoard.interfaceClass, std::string(kMorvakBoard.devicePath), unit);
class MorvakUnit : public SimulatedDevice {
 public:
  static constexpr std::uint32_t kGetModel = 0xAA010008;
  static constexpr std::uint32_t kTransactTalc = 0xAA010038;
  static constexpr std::uint32_t kReadVpd = 0xAA010044;
  static constexpr std::uint32_t kReleaseBuffer = 0xAA010050;
  static constexpr std::uint32_t kQueryCodecSlot = 0xAA010054;

  /// In the status of an exchange: no answer came in time.
  static constexpr std::uint32_t kCommandTimeout = 0x8A030012;
  /// What must lie between a diagnostic and the start that uses it up.
  static constexpr std::int64_t kDiagnosticNanoseconds = 500'000'000;
  /// Boards with VPD have numbers below this, and there are at most so many entries of codec slots.
  static constexpr std::size_t kMostBoards = 32;
  static constexpr std::size_t kMostSlots = 32;
  /// The longest VPD and version text that fit into an answer.
  static constexpr std::size_t kVpdBytes = kPacketBytes - kPacketHeaderBytes - 4;
  static constexpr std::size_t kVersionBytes = kPacketBytes - kPacketHeaderBytes - 2;

  /// `clock` must outlive the unit.
  MorvakUnit(MorvakUnitState state, VirtualClock& clock) : state_(std::move(state)), clock_(clock) {}

  MorvakUnitState& state() { return state_; }
  const MorvakUnitState& state() const { return state_; }
  /// The plan that the unit asks from now on; null for none. Must outlive its use.
  void UseFaults(FaultPlan* faults) { faults_ = faults; }

  std::uint32_t Control(std::uint32_t code, std::span<const std::uint8_t> in, std::span<std::uint8_t> out,
                        std::uint32_t& returned) override;
  platform::RegisterTrap* TrapAt(std::uint64_t) override { return nullptr; }

 private:
  std::uint32_t TellModel(std::span<std::uint8_t> out);
  std::uint32_t TellSlot(std::span<const std::uint8_t> in, std::span<std::uint8_t> out) const;
  std::uint32_t ReadVpd(std::span<const std::uint8_t> in, std::span<std::uint8_t> out);
  std::uint32_t TransactTalc(std::span<const std::uint8_t> in, std::span<std::uint8_t> out);
  std::optional<MorvakAnswer> WaitForAnswer(std::uint32_t timeoutMicroseconds, bool isLost);

  void Take(std::span<const std::uint8_t> packet);
  std::optional<Outcome> Answer(const Command& command);
  std::optional<Outcome> TellPartVersion(const Command& command) const;
  Outcome Diagnose(const Command& command);
  Outcome Start(const Command& command);
  Outcome Load(const Command& command);

  MorvakUnitState state_;
  VirtualClock& clock_;
  FaultPlan* faults_ = nullptr;
};

}  // namespace simulator
