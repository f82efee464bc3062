#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "talcpath.h"

/// What stands before the values of a packet, byte by byte.
namespace TalcPathPrivate {

/// Both bytes of the mark that an ordinary packet begins with.
inline constexpr std::uint8_t kPacketMark = 0x0B;
inline constexpr std::size_t kLengthOffset = 2;
inline constexpr std::size_t kCodeOffset = 4;
inline constexpr std::size_t kStatusOffset = 7;
/// The header bytes that the length field counts.
inline constexpr std::uint32_t kCountedHeaderBytes = 4;

inline constexpr char kDiagMagic[] = "orbo_diagnostics";
inline constexpr std::size_t kDiagMagicBytes = sizeof kDiagMagic - 1;
inline constexpr std::size_t kDiagOpcodeOffset = 31;
inline constexpr std::size_t kDiagCountOffset = 32;

inline void Store16(std::uint8_t* destination, std::uint32_t value) {
  destination[0] = static_cast<std::uint8_t>(value >> 8);
  destination[1] = static_cast<std::uint8_t>(value);
}

inline std::uint32_t Load16(const std::uint8_t* source) {
  return static_cast<std::uint32_t>(source[0] << 8 | source[1]);
}

/// The packet has 2 bytes or more.
inline bool HasPacketMark(std::span<const std::uint8_t> packet) {
  return packet[0] == kPacketMark && packet[1] == kPacketMark;
}

/// The meaning of a reply's status byte. Numbers that are statuses elsewhere, such as 3, are failures here.
inline TalcPath::TalcPathStatus StatusFromByte(std::uint8_t byte) {
  switch (byte) {
    case 0:
      return TalcPath::kTPSuccess;
    case 2:
      return TalcPath::kTPNotSupported;
    case 240:
      return TalcPath::kTPTransmitFailure;
    case 255:
      return TalcPath::kTPTimeOut;
    default:
      return TalcPath::kTPFail;
  }
}

}  // namespace TalcPathPrivate
