#pragma once

#include <cstddef>

namespace benchdriver {

/// What a board is to be to the system.
enum class Presence {
  kAbsent,
  kServed,    ///< there, with the driver
  kUnlinked,  ///< there, but nothing is behind the name that the device has: it is found and will not open
};

/// Makes a device for the board at this place in `simulator::kBoards`; there must be none. A driver that runs already
/// does not know of it before `Reenumerate`. Throws `std::system_error`.
void MakeDevice(std::size_t board, Presence presence);
/// Removes the board's device, if there is one.
void RemoveDevice(std::size_t board);

/// True when programs find the board's device.
bool IsFound(std::size_t board);

}  // namespace benchdriver
