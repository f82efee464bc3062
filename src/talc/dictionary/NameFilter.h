#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace TalcPathPrivate {

/// Tells at once that a name has not been added, for nearly all that have not. One cache line.
class NameFilter {
 public:
  bool MayHave(std::string_view name) const { return (bits_[Bit(name) / 64] >> Bit(name) % 64 & 1) != 0; }
  void Add(std::string_view name) { bits_[Bit(name) / 64] |= std::uint64_t{1} << Bit(name) % 64; }
  void Clear() { bits_ = {}; }

 private:
  /// From the end of the name, where the names of one command differ.
  static std::size_t Bit(std::string_view name) {
    std::uint64_t end = 0;
    const std::size_t size = std::min(name.size(), sizeof end);
    std::memcpy(&end, name.data() + name.size() - size, size);
    return (end + name.size()) * 0x9E3779B97F4A7C15 >> 55;
  }

  std::array<std::uint64_t, 8> bits_{};
};

}  // namespace TalcPathPrivate
