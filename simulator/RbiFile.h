#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace simulator {

/// The header of a firmware container, byte by byte: magic, its own length, the version as "R" and four digits, the
/// part id, and a short tagged text. `partId` has four characters.
std::vector<std::uint8_t> MakeRbiHeader(std::string_view partId, std::uint16_t version);

/// A whole container: the header and the payload behind it.
std::vector<std::uint8_t> MakeRbi(std::string_view partId, std::uint16_t version,
                                  std::span<const std::uint8_t> payload);

}  // namespace simulator
