#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace simulator {

/// A number as VME files have it: groups of 7 bits, low group first, the top bit set in all but the last byte.
std::vector<std::uint8_t> VmeNumber(std::uint32_t value);

/// The data of a shift as a compressed VME file has it, in the shortest of its forms. A leading byte tells which:
///
///     00 bytes...                 the bytes as they are
///     01 bytes..., 02 bytes...    behind each 00, or FF, the number of those that follow it and are left out
///     FF fill bits...             for each byte a 0 for `fill`, or a 1 and its 8 bits, top bit first
///     N bytes...                  a pattern of N nibbles that repeats: 4, 8 or 16
///
/// `data` is not empty.
std::vector<std::uint8_t> CompressVmeData(std::span<const std::uint8_t> data);

}  // namespace simulator
