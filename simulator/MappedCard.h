#pragma once

#include <cstdint>
#include <span>

#include "platform/RegisterWindow.h"
#include "simulator/SimulatedDevice.h"

namespace simulator {

/// A host card as its driver shows it: tells its memory map, and maps its one register window.
///
///     MappedCard card(reinterpret_cast<std::uintptr_t>(memory), nullptr);   // registers that are plain memory
///     platform.devices().Add(kBelmaraBoard.interfaceClass, std::string(kBelmaraBoard.devicePath), card);
class MappedCard : public SimulatedDevice {
 public:
  static constexpr std::uint32_t kWindowBytes = 0x100000;

  static constexpr std::uint32_t kGetBoardMemoryMap = 0xC1762080;
  static constexpr std::uint32_t kMapMemory = 0xC1762404;

  /// The window is at this address, whose low half is not 0: a name for `trap`, or memory if that is null.
  MappedCard(std::uint64_t windowAddress, platform::RegisterTrap* trap) : windowAddress_(windowAddress), trap_(trap) {}

  std::uint32_t Control(std::uint32_t code, std::span<const std::uint8_t> in, std::span<std::uint8_t> out,
                        std::uint32_t& returned) override;
  platform::RegisterTrap* TrapAt(std::uint64_t address) override { return address == windowAddress_ ? trap_ : nullptr; }

 private:
  std::uint32_t MemoryMap(std::span<const std::uint8_t> in, std::span<std::uint8_t> out, std::uint32_t& returned);
  std::uint32_t MapMemory(std::span<const std::uint8_t> in, std::span<std::uint8_t> out, std::uint32_t& returned);

  const std::uint64_t windowAddress_;
  platform::RegisterTrap* const trap_;
};

}  // namespace simulator
