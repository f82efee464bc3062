#pragma once

#include <cstdint>

namespace TalcPathPrivate {

/// The largest packet, header included, in bytes.
constexpr std::uint32_t GetMaxPacketTotalSizeInBytes() {
  return 2048;
}

/// What stands before the values of an ordinary and of a diagnostic packet, in bytes.
inline constexpr std::uint32_t kTalcHeaderBytes = 8;
inline constexpr std::uint32_t kDiagHeaderBytes = 36;
/// The most bytes of values. That of a diagnostic packet is what the hardware takes, less than would fit.
inline constexpr std::uint32_t kMaxTalcPayloadBytes = GetMaxPacketTotalSizeInBytes() - kTalcHeaderBytes;
inline constexpr std::uint32_t kMaxDiagPayloadBytes = 2002;

/// Where a value lies in a packet, counted in bytes from the packet's first byte.
struct PacketPosition {
  std::int32_t packetOffset = -1;
  std::int32_t numBytes = 0;
};

/// How long a command's packet is, in bytes, in both directions.
struct PacketSizes {
  std::uint32_t sendSize = 0;
  std::uint32_t sendPayloadSize = 0;
  std::uint32_t requestSize = 0;
  std::uint32_t requestPayloadSize = 0;
};

}  // namespace TalcPathPrivate
