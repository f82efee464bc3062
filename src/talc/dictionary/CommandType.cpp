#include "dictionary/CommandType.h"

namespace TalcPathPrivate {
namespace {

constexpr std::array<const char*, 4> kMajorWords{"VIDEO", "AUDIO", "SYSTEM", "DIAGNOSTIC"};

}  // namespace

const char* MajorWord(CommandType::Major major, const char* unknown) {
  const auto number = static_cast<std::uint32_t>(major);
  return number < kMajorWords.size() ? kMajorWords[number] : unknown;
}

std::optional<CommandType::Major> FindMajor(std::string_view word) {
  for (std::size_t i = 0; i < kMajorWords.size(); ++i)
    if (word == kMajorWords[i]) return static_cast<CommandType::Major>(i);
  return std::nullopt;
}

}  // namespace TalcPathPrivate
