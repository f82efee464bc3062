#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "simulator/BoxParts.h"
#include "simulator/Downloads.h"
#include "simulator/Faults.h"
#include "simulator/ProtocolErrors.h"

namespace simulator {

/// An answer that has not begun to come.
struct BoxAnswer {
  std::int64_t startNanoseconds = 0;
  std::vector<std::uint32_t> words;
};

/// All that the break-out box is at one moment, as a value.
struct VeltraBoxState {
  /// A box that is switched off keeps everything and is silent.
  bool isOn = true;
  BoxVersions running;
  BoxVersions stored;
  /// The VPD of its boards, in the order of `kBoxBoards`; nothing for one that is not there.
  std::array<std::optional<std::vector<std::uint8_t>>, std::size(kBoxBoards)> vpd;
  /// What the box refused.
  ProtocolErrors errors;

  /// What is going on: nothing of it outlives a power cycle, or the keeping of a bench.
  std::vector<std::uint8_t> packet;  ///< what has come of a packet
  bool skipsWords = false;           ///< until the next first word, after a fault in the framing
  Downloads downloads;
  std::vector<BoxAnswer> answers;  ///< the next one first

  /// Takes the power away at this moment and gives it back: what is stored runs. An image counts as stored when its
  /// burn has ended, not before.
  void PowerCycle(std::int64_t nowNanoseconds);
  /// Lets a burn come to its end, and gives up whatever else is going on.
  void Settle();
  /// Keeps the image of a burn that has ended by now.
  void EndBurn(std::int64_t nowNanoseconds);
};

/// The break-out box behind its two FIFOs: takes the words of command packets, obeys the commands for versions, VPD and
/// downloads, and gives the words of answers. What it refuses goes into the state's `errors` as a text, and drops a
/// transfer that is open; a refused command is answered with a status, faulty framing is not answered.
///
/// Words have the first byte of the stream as their most significant one. Times are handed in with each word, in
/// nanoseconds that never go back.
///
///     box.Take(0x0B0B0004, true, now);            // HWConfigFB, a request
///     box.Take(0x80030000, false, now);
///     box.NextAnswerNanoseconds() == now + kAnswerNanoseconds;
///     box.TakeAnswer()[1] == 0x80030000;          // status 0
class VeltraBox {
 public:
  static constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();
  static constexpr std::int64_t kLateNanoseconds = 1'200'000'000;
  /// Longest answer behind its mark and length, and the longest VPD and version text that fit into one.
  static constexpr std::size_t kAnswerBodyBytes = 2048;
  static constexpr std::size_t kVpdBytes = kAnswerBodyBytes - 8;
  static constexpr std::size_t kFirmwareRevBytes = kAnswerBodyBytes - 4 - kBoxRevisions;

  explicit VeltraBox(VeltraBoxState state) : state_(std::move(state)) {}

  VeltraBoxState& state() { return state_; }
  const VeltraBoxState& state() const { return state_; }

  /// Takes a word off the command FIFO. With a plan, asks it about the faults of the box.
  void Take(std::uint32_t word, bool isFirst, std::int64_t nowNanoseconds, FaultPlan* faults = nullptr);
  /// When the next answer begins to come, as far as that is known; `kNever` for none.
  std::int64_t NextAnswerNanoseconds() const {
    return state_.answers.empty() ? kNever : state_.answers.front().startNanoseconds;
  }
  /// The next answer, which there must be.
  std::vector<std::uint32_t> TakeAnswer();
  /// As the state's, and a box that a fault has switched off is on again.
  void PowerCycle(std::int64_t nowNanoseconds);

 private:
  void Obey(std::span<const std::uint8_t> packet, std::int64_t nowNanoseconds, FaultPlan* faults);
  std::optional<Outcome> Answer(const Command& command);
  Outcome TellVersions(const Command& command) const;
  void DropWord(std::string text);
  void Send(const Command& command, const Outcome& outcome);

  VeltraBoxState state_;
  /// By a fault: ends with the run, unlike the state's switch.
  bool isSwitchedOff_ = false;
};

}  // namespace simulator
