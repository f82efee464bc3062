#pragma once

#include <cstdint>

namespace simulator {

/// The chip's description of itself in read query mode, by word address: the bytes of the common flash interface, one
/// in the low byte of each word. 0 where it says nothing.
std::uint16_t CommonFlashInterfaceWord(std::uint32_t wordAddress);

}  // namespace simulator
