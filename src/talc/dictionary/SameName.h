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

/// True if the two texts are the same. Names are compared all the time and are short, so this makes no call: it
/// compares word by word, the last word from the end backwards, where it may meet characters for the second time.
inline bool IsSameName(std::string_view one, std::string_view other) {
  const std::size_t size = one.size();
  if (size != other.size()) return false;
  const char* const a = one.data();
  const char* const b = other.data();
  if (size >= 8) {
    for (std::size_t at = 0; at + 8 < size; at += 8)
      if (LoadWord<std::uint64_t>(a + at) != LoadWord<std::uint64_t>(b + at)) return false;
    return LoadWord<std::uint64_t>(a + size - 8) == LoadWord<std::uint64_t>(b + size - 8);
  }
  if (size >= 4)
    return LoadWord<std::uint32_t>(a) == LoadWord<std::uint32_t>(b) &&
           LoadWord<std::uint32_t>(a + size - 4) == LoadWord<std::uint32_t>(b + size - 4);
  for (std::size_t at = 0; at < size; ++at)
    if (a[at] != b[at]) return false;
  return true;
}

}  // namespace TalcPathPrivate
