#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace simulator {

/// The VPD area of a board, as it is read from its registers.
inline constexpr std::size_t kVpdAreaBytes = 8192;
using VpdArea = std::array<std::uint8_t, kVpdAreaBytes>;

/// Keyword and text of one field. A keyword has two characters, a text at most 255.
using VpdField = std::pair<std::string, std::string>;

/// A block that begins with a named product, has one fields resource for each list, in order, and ends with an end
/// resource. Throws `std::length_error` when it is longer than an area.
std::vector<std::uint8_t> MakeVpdBlock(const std::string& product, const std::vector<std::vector<VpdField>>& resources);

/// The text of the first field of this keyword in a block, or in an area that begins with one; nothing where there is
/// none, or where a resource runs past the end.
std::optional<std::string> FindVpdField(std::span<const std::uint8_t> block, std::string_view keyword);

/// An area that begins with such a block, and is zero behind it. Throws as well.
VpdArea MakeVpdArea(const std::string& product, const std::vector<std::vector<VpdField>>& resources);

}  // namespace simulator
