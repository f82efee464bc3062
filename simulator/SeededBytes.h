#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace simulator {

/// Bytes that look random and are always the same for the same seed and label. Labels keep things that share a bench's
/// seed apart.
std::vector<std::uint8_t> SeededBytes(std::uint64_t seed, std::string_view label, std::size_t sizeBytes);

}  // namespace simulator
