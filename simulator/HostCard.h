#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "platform/RegisterWindow.h"
#include "simulator/Boards.h"
#include "simulator/BoxFifo.h"
#include "simulator/FlashChip.h"
#include "simulator/KarvelCpld.h"
#include "simulator/MappedCard.h"
#include "simulator/ProtocolErrors.h"
#include "simulator/VirtualClock.h"
#include "simulator/Vpd.h"

namespace simulator {

/// All that a host card is at one moment, as a value. The VPD area is shared between copies.
struct HostCardState {
  std::shared_ptr<const VpdArea> vpd = std::make_shared<const VpdArea>();  ///< never null
  /// The version word of the Karvel at the last power-up.
  std::uint32_t karvelRunning = KarvelCells::kNoVersion;
  KarvelCpld karvel;
  /// What the flash held at the last power-up; nothing when it was erased.
  std::optional<std::uint16_t> flashRunning;
  FlashChip flash;
  std::uint32_t flashAddressRegister = 0;
  /// Towards the break-out box, on a board that has it.
  BoxFifo fifo;
  /// What the card itself refused; Karvel, flash and FIFOs keep their own.
  ProtocolErrors errors;

  /// Takes the power away at this moment and gives it back: what is stored then runs.
  void PowerCycle(std::int64_t nowNanoseconds);
};

/// One host card behind its driver: control calls, and a register window with the VPD area, the Karvel version word,
/// the pair of flash registers, the Karvel's JTAG port and, on one of the boards, the registers of the FIFOs to the
/// break-out box. An access to any other register, a misaligned one, and a write to what can only be read are protocol
/// errors; such reads give all ones. Each access moves the clock.
///
///     HostCard card(kBelmaraBoard, state, clock);
///     card.Write(HostCard::kFlashAddress, 0x100000);
///     card.Read(HostCard::kFlashData);
class HostCard : public MappedCard, public platform::RegisterTrap {
 public:
  static constexpr std::int64_t kAccessNanoseconds = 250;
  static constexpr std::uint32_t kVpdFirst = 0x02000;
  static constexpr std::uint32_t kKarvelVersion = 0x04000;
  static constexpr std::uint32_t kFlashAddress = 0x04008;
  static constexpr std::uint32_t kFlashData = 0x0400C;
  static constexpr std::uint32_t kJtagPort = 0x80400;

  /// `board` and `clock` must outlive the card.
  HostCard(const Board& board, HostCardState state, VirtualClock& clock)
      : MappedCard(board.windowAddress, this), board_(board), state_(std::move(state)), clock_(clock) {}

  const Board& board() const { return board_; }
  HostCardState& state() { return state_; }
  const HostCardState& state() const { return state_; }
  /// The plan that flash, Karvel, FIFOs and box ask from now on; null for none. Must outlive its use.
  void UseFaults(FaultPlan* faults) { faults_ = faults; }
  /// Connects a box, or null for none. Must outlive its use.
  void Connect(VeltraBox* box) { box_ = box; }
  /// Lets happen what between card and box is due by now.
  void CatchUp() { state_.fifo.CatchUp(clock_.NowNanoseconds(), box_, faults_); }

  std::uint32_t Control(std::uint32_t code, std::span<const std::uint8_t> in, std::span<std::uint8_t> out,
                        std::uint32_t& returned) override;
  std::uint32_t Read(std::uint32_t offset) override;
  void Write(std::uint32_t offset, std::uint32_t value) override;

 private:
  bool IsFifoRegister(std::uint32_t offset) const { return board_.hasBoxFifo && BoxFifo::HasRegister(offset); }

  const Board& board_;
  HostCardState state_;
  VirtualClock& clock_;
  FaultPlan* faults_ = nullptr;
  VeltraBox* box_ = nullptr;
};

}  // namespace simulator
