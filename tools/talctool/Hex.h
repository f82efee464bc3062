#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Two lower case digits a byte, nothing between them.
std::string ToHex(std::span<const std::uint8_t> bytes);
/// Digits of both cases; nothing for an odd number of characters and for other characters.
std::optional<std::vector<std::uint8_t>> FromHex(std::string_view text);
