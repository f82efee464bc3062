#pragma once

#include <cstdint>
#include <span>

#include "platform/RegisterWindow.h"

namespace simulator {

/// What stands behind a driver: a board that takes control calls and may have a register window.
class SimulatedDevice {
 public:
  virtual ~SimulatedDevice() = default;

  /// Takes one control call. Returns the system's error code: `kErrorSuccess` after filling `out` and setting
  /// `returned` to the bytes put there, any other with both untouched.
  virtual std::uint32_t Control(std::uint32_t code, std::span<const std::uint8_t> in, std::span<std::uint8_t> out,
                                std::uint32_t& returned) = 0;
  /// The trap of this board's register window if that is at `address`, else null. The board keeps it.
  virtual platform::RegisterTrap* TrapAt(std::uint64_t address) = 0;
};

}  // namespace simulator
