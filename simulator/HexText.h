#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// `value` in lower case hexadecimal, filled with zeros to at least `digits` digits.
std::string Hex(std::uint64_t value, std::size_t digits);

/// One to `maxDigits` (at most 16) hexadecimal digits of either case and nothing else, or nothing.
std::optional<std::uint64_t> ParseHex(std::string_view text, std::size_t maxDigits);

/// "MAJOR.MINOR" at the start of a text, one or two hexadecimal digits each, as major times 256 plus minor; nothing for
/// any other text.
std::optional<std::uint16_t> ParseDottedVersion(std::string_view text);

/// Two digits a byte, without blanks.
std::string HexOfBytes(std::span<const std::uint8_t> bytes);

/// The opposite; nothing for an odd number of digits or any other character.
std::optional<std::vector<std::uint8_t>> ParseHexBytes(std::string_view text);

}  // namespace simulator
