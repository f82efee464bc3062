#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "dictionary/SameName.h"

namespace TalcPathPrivate {

/// Tells at once that a name was not added before, for nearly all that were not. One cache line.
class NameFilter {
 public:
  /// Adds the name. False when it was certainly not there; true when it may have been.
  bool Add(std::string_view name) {
    const std::uint64_t hash = Hash(name);
    std::uint64_t& word = bits_[hash >> 61];
    const std::uint64_t bit = std::uint64_t{1} << (hash >> 55 & 63);
    const bool mayHaveBeenThere = (word & bit) != 0;
    word |= bit;
    return mayHaveBeenThere;
  }
  void Clear() { bits_ = {}; }

 private:
  /// From the last characters and the length: the names of one command mostly begin alike.
  static std::uint64_t Hash(std::string_view name) {
    constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15;  // 2 to the power 64 over the golden ratio
    const char* const end = name.data() + name.size();
    std::uint64_t sum = name.size();
    if (name.size() >= 16) sum += LoadWord<std::uint64_t>(end - 16) * 3;
    if (name.size() >= 8)
      sum += LoadWord<std::uint64_t>(end - 8);
    else
      for (const char c : name)
        sum = sum * 31 + static_cast<unsigned char>(c);
    return sum * kSpread;
  }

  std::array<std::uint64_t, 8> bits_{};
};

}  // namespace TalcPathPrivate
