#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string_view>

namespace TalcPathPrivate {

/// The code of an ordinary command: which group, which part of it, which function.
///
///     byte 0   7..6 major   5..0 minor
///     byte 1   7..1 function   0 request
struct CommandType {
  enum class Major : std::int32_t { VIDEO = 0, AUDIO = 1, SYSTEM = 2, DIAGNOSTIC = 3 };

  Major major = Major::DIAGNOSTIC;
  std::int16_t minor = -1;
  std::int16_t function = -1;

  // By major, then minor, then function.
  // NOLINTNEXTLINE(modernize-use-nullptr): what the compiler makes of it compares with 0, which is no pointer
  friend auto operator<=>(const CommandType&, const CommandType&) = default;
};

/// A type in its two header bytes, with the direction.
struct CodedCommandType {
  CommandType type;
  bool isRequest = false;
};

/// The word of a major type in a dictionary, or `unknown` for a number that is none.
const char* MajorWord(CommandType::Major major, const char* unknown);
/// The major type of a word, exactly as written in a dictionary.
std::optional<CommandType::Major> FindMajor(std::string_view word);

/// Nothing when the major type or the minor is out of range. The function is doubled and cut to its byte, whatever it
/// is.
inline std::optional<std::array<std::uint8_t, 2>> EncodeCommandType(const CommandType& type, bool isRequest) {
  const auto major = static_cast<std::uint32_t>(type.major);
  if (major > 3 || type.minor < 0 || type.minor > 63) return std::nullopt;
  const auto first = static_cast<std::uint8_t>(major << 6 | static_cast<std::uint32_t>(type.minor));
  const auto second = static_cast<std::uint8_t>(static_cast<unsigned>(type.function) << 1 | (isRequest ? 1U : 0U));
  return std::array{first, second};
}

/// Every pair of bytes is a type.
inline CodedCommandType DecodeCommandType(std::uint8_t first, std::uint8_t second) {
  return {.type = {.major = static_cast<CommandType::Major>(first >> 6),
                   .minor = static_cast<std::int16_t>(first & 0x3F),
                   .function = static_cast<std::int16_t>(second >> 1)},
          .isRequest = (second & 1) != 0};
}

}  // namespace TalcPathPrivate
