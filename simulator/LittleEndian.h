#pragma once

#include <cstdint>

namespace simulator {

/// Driver records and flash images are little-endian on every host.
inline void Put16(std::uint8_t* at, std::uint16_t value) {
  at[0] = static_cast<std::uint8_t>(value);
  at[1] = static_cast<std::uint8_t>(value >> 8);
}

inline void Put32(std::uint8_t* at, std::uint32_t value) {
  Put16(at, static_cast<std::uint16_t>(value));
  Put16(at + 2, static_cast<std::uint16_t>(value >> 16));
}

inline void Put64(std::uint8_t* at, std::uint64_t value) {
  Put32(at, static_cast<std::uint32_t>(value));
  Put32(at + 4, static_cast<std::uint32_t>(value >> 32));
}

inline std::uint16_t Get16(const std::uint8_t* at) {
  return static_cast<std::uint16_t>(at[0] | at[1] << 8);
}

inline std::uint32_t Get32(const std::uint8_t* at) {
  return Get16(at) | static_cast<std::uint32_t>(Get16(at + 2)) << 16;
}

inline std::uint64_t Get64(const std::uint8_t* at) {
  return Get32(at) | static_cast<std::uint64_t>(Get32(at + 4)) << 32;
}

}  // namespace simulator
