#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace TalcPathPrivate {

template <typename Word>
Word LoadWord(const char* text) {
  Word word;
  std::memcpy(&word, text, sizeof word);
  return word;
}

/// True if the two texts are the same. Names are compared all the time, are short, and mostly differ at their ends, so
/// this makes no call and compares word by word from the end; the last word may meet characters for the second time.
inline bool IsSameName(std::string_view one, std::string_view other) {
  const std::size_t size = one.size();
  if (size != other.size()) return false;
  const char* const a = one.data();
  const char* const b = other.data();
  if (size >= 8) {
    std::size_t left = size - 8;
    for (; left > 8; left -= 8)
      if (LoadWord<std::uint64_t>(a + left) != LoadWord<std::uint64_t>(b + left)) return false;
    return LoadWord<std::uint64_t>(a + left) == LoadWord<std::uint64_t>(b + left) &&
           LoadWord<std::uint64_t>(a) == LoadWord<std::uint64_t>(b);
  }
  if (size >= 4)
    return LoadWord<std::uint32_t>(a + size - 4) == LoadWord<std::uint32_t>(b + size - 4) &&
           LoadWord<std::uint32_t>(a) == LoadWord<std::uint32_t>(b);
  for (std::size_t at = 0; at < size; ++at)
    if (a[at] != b[at]) return false;
  return true;
}

}  // namespace TalcPathPrivate
