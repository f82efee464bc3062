#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <span>

/// What the fuzz targets share: the input as a row of bytes, words and flags, and what must hold.

inline void Require(bool holds) {
  if (!holds) std::abort();
}

/// The input, taken from the front. What is missing at the end is 0.
class Input {
 public:
  explicit Input(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}
  bool AtEnd() const { return bytes_.empty(); }
  std::uint8_t Byte() {
    if (bytes_.empty()) return 0;
    const std::uint8_t byte = bytes_.front();
    bytes_ = bytes_.subspan(1);
    return byte;
  }
  bool Flag() { return (Byte() & 1) != 0; }
  std::uint32_t Word() {
    std::uint32_t word = 0;
    for (int shift = 0; shift < 32; shift += 8)
      word |= std::uint32_t{Byte()} << shift;
    return word;
  }
  /// At most `length` bytes, fewer at the end.
  std::span<const std::uint8_t> Bytes(std::size_t length) {
    const auto taken = bytes_.first(std::min(length, bytes_.size()));
    bytes_ = bytes_.subspan(taken.size());
    return taken;
  }

 private:
  std::span<const std::uint8_t> bytes_;
};
