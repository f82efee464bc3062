#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace simulator {

/// A shift register of 1 to 128 bits between TDI and TDO. Its bits count in the order in which they are shifted, which
/// is the top bit of the first byte first; the first bit that goes in ends nearest TDO.
class ShiftRegister {
 public:
  static constexpr std::size_t kMostBytes = 16;

  /// A capture: takes `bits` bits in parallel, and counts from 0. Bits that `bytes` does not hold are 0.
  void Capture(std::span<const std::uint8_t> bytes, std::uint32_t bits) {
    std::fill(std::copy(bytes.begin(), bytes.end(), bytes_.begin()), bytes_.end(), std::uint8_t{0});
    bits_ = bits;
    first_ = 0;
    shifted_ = 0;
  }

  /// The last stage, as TDO shows it.
  bool Out() const { return (bytes_[first_ / 8] >> (7 - first_ % 8) & 1) != 0; }

  void Shift(bool in) {
    // The bits stand still, and the place of the last stage moves along them.
    const auto mask = static_cast<std::uint8_t>(0x80 >> first_ % 8);
    std::uint8_t& byte = bytes_[first_ / 8];
    byte = static_cast<std::uint8_t>(in ? byte | mask : byte & ~mask);
    first_ = first_ + 1 == bits_ ? 0 : first_ + 1;
    ++shifted_;
  }

  /// How many bits were shifted since the capture.
  std::uint64_t Shifted() const { return shifted_; }
  std::uint32_t Length() const { return bits_; }
  /// What was shifted in, once that is as many bits as the register has.
  std::span<const std::uint8_t> Bytes() const { return std::span(bytes_).first((bits_ + 7) / 8); }

 private:
  std::array<std::uint8_t, kMostBytes> bytes_{};
  std::uint32_t bits_ = 1;
  std::uint32_t first_ = 0;
  std::uint64_t shifted_ = 0;
};

}  // namespace simulator
