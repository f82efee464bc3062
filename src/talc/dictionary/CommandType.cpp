#include "dictionary/CommandType.h"

namespace TalcPathPrivate {
namespace {

constexpr std::array kMajorWords{"VIDEO", "AUDIO", "SYSTEM", "DIAGNOSTIC"};

bool IsMajor(CommandType::Major major) {
  return static_cast<std::uint32_t>(major) < kMajorWords.size();
}

}  // namespace

const char* MajorWord(CommandType::Major major, const char* unknown) {
  return IsMajor(major) ? kMajorWords[static_cast<std::size_t>(major)] : unknown;
}

std::optional<CommandType::Major> FindMajor(std::string_view word) {
  for (std::size_t i = 0; i < kMajorWords.size(); ++i)
    if (word == kMajorWords[i]) return static_cast<CommandType::Major>(i);
  return std::nullopt;
}

std::optional<std::array<std::uint8_t, 2>> EncodeCommandType(const CommandType& type, bool isRequest) {
  if (!IsMajor(type.major) || type.minor < 0 || type.minor > 63) return std::nullopt;
  const auto first = static_cast<std::uint8_t>(static_cast<int>(type.major) << 6 | type.minor);
  const auto second = static_cast<std::uint8_t>(static_cast<unsigned>(type.function) << 1 | (isRequest ? 1U : 0U));
  return std::array{first, second};
}

CodedCommandType DecodeCommandType(std::uint8_t first, std::uint8_t second) {
  return {.type = {.major = static_cast<CommandType::Major>(first >> 6),
                   .minor = static_cast<std::int16_t>(first & 0x3F),
                   .function = static_cast<std::int16_t>(second >> 1)},
          .isRequest = (second & 1) != 0};
}

}  // namespace TalcPathPrivate
