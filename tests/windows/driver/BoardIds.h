#pragma once

#include <iterator>
#include <string>
#include <string_view>

#include "simulator/Boards.h"

namespace benchdriver {

/// The hardware id of a board, by which device and driver find each other: "ROOT\FWBENCH_BELMARA".
inline std::u16string HardwareId(const simulator::Board& board) {
  std::u16string id = u"ROOT\\FWBENCH_";
  for (const char letter : board.name)
    id += static_cast<char16_t>(letter - 'a' + 'A');
  return id;
}

/// The place in `simulator::kBoards` of the board with this id, or -1.
inline int BoardOfHardwareId(std::u16string_view id) {
  for (std::size_t place = 0; place < std::size(simulator::kBoards); ++place)
    if (HardwareId(*simulator::kBoards[place]) == id) return static_cast<int>(place);
  return -1;
}

}  // namespace benchdriver
