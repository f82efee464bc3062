#pragma once

#include <bit>
#include <cstdint>

#include "platform/Devices.h"

// What crosses the border to the two kernel drivers: the interface classes under which their devices are found, the
// control codes, and the records of each code. Records are little-endian and have no gaps.

static_assert(std::endian::native == std::endian::little, "the driver records are used in place");

/// First host card; board names beginning with "b".
inline constexpr platform::Guid GUID_BelmaraDevice = {
    0x65703B92, 0x7B12, 0x41B3, {0x9B, 0x07, 0x9B, 0x13, 0x1B, 0xAA, 0x36, 0x4B}};
/// Second host card; board names beginning with "d".
inline constexpr platform::Guid GUID_DovuDevice = {
    0x02201D82, 0x4779, 0x40DE, {0xBB, 0xD8, 0xF1, 0x4D, 0x9E, 0xF4, 0xD8, 0x3E}};
/// Second-line hardware.
inline constexpr platform::Guid GUID_MorvakDevice = {
    0x5519CF2B, 0xF6FC, 0x4A48, {0x96, 0x51, 0x73, 0xDB, 0x09, 0xCF, 0x50, 0x91}};

/// A control code of the buffered transfer method and any access, as the system composes it.
constexpr std::uint32_t ControlCode(std::uint32_t deviceType, std::uint32_t function) {
  return deviceType << 16 | function << 2;
}

inline constexpr std::uint32_t IOCTL_GetBoardMemoryMap = ControlCode(0xC176, 0x820);
inline constexpr std::uint32_t IOCTL_MapMemory = ControlCode(0xC176, 0x901);
inline constexpr std::uint32_t IOCTL_GetMorvakModel = ControlCode(0xAA01, 0x002);
inline constexpr std::uint32_t IOCTL_TransactTalc = ControlCode(0xAA01, 0x00E);
inline constexpr std::uint32_t IOCTL_ReadVPD = ControlCode(0xAA01, 0x011);
inline constexpr std::uint32_t IOCTL_ReleaseBuffer = ControlCode(0xAA01, 0x014);
inline constexpr std::uint32_t IOCTL_QueryCodecSlot = ControlCode(0xAA01, 0x015);

static_assert(IOCTL_GetBoardMemoryMap == 0xC1762080);
static_assert(IOCTL_MapMemory == 0xC1762404);
static_assert(IOCTL_GetMorvakModel == 0xAA010008);
static_assert(IOCTL_TransactTalc == 0xAA010038);
static_assert(IOCTL_ReadVPD == 0xAA010044);
static_assert(IOCTL_ReleaseBuffer == 0xAA010050);
static_assert(IOCTL_QueryCodecSlot == 0xAA010054);

#pragma pack(push, 1)

/// Answer of `IOCTL_GetBoardMemoryMap`.
struct SegmentMap {
  std::uint32_t registerWindowSize;  ///< in bytes; passed on to `IOCTL_MapMemory`
  std::uint8_t furtherWindows[92];   ///< of no use here
};
static_assert(sizeof(SegmentMap) == 96);

/// Request of `IOCTL_MapMemory`.
struct MapRegsIn {
  std::uint64_t start;  ///< always 0
  std::uint32_t size;   ///< in bytes
};
static_assert(sizeof(MapRegsIn) == 12);

/// Answer of `IOCTL_MapMemory`.
struct MapRegsOut {
  std::uint64_t address;  ///< of the window in this process
  std::uint64_t second;   ///< must not be zero in its low half; nothing else is known of it
};
static_assert(sizeof(MapRegsOut) == 16);

/// Answer of `IOCTL_GetMorvakModel`.
struct MorvakModelInfo {
  std::uint32_t codecSlots;
  std::uint32_t model;
};
static_assert(sizeof(MorvakModelInfo) == 8);

/// Request of `IOCTL_TransactTalc`. Addresses are whole 64-bit ones of this process; a missing buffer is 0.
struct TalcCommandRecord {
  std::uint64_t commandAddress;
  std::uint64_t replyAddress;
  std::uint32_t commandLengthBytes;
  std::uint32_t replyCapacityBytes;  ///< 2048, or 0 when no reply is wanted
  std::uint32_t timeoutMicroseconds;
};
static_assert(sizeof(TalcCommandRecord) == 28);

/// Answer of `IOCTL_TransactTalc`.
struct TalcReply {
  std::uint32_t status;
  std::uint32_t unused;
};
static_assert(sizeof(TalcReply) == 8);

/// Request of `IOCTL_ReadVPD`; the answer is one word that nobody looks at.
struct VpdIn {
  std::uint64_t bufferAddress;
  std::uint32_t boardNumber;
  std::uint32_t bufferSizeBytes;  ///< 8192
};
static_assert(sizeof(VpdIn) == 16);

/// Request of `IOCTL_QueryCodecSlot`.
struct ModuleInfoRequest {
  std::uint32_t slot;
};
static_assert(sizeof(ModuleInfoRequest) == 4);

/// Answer of `IOCTL_QueryCodecSlot`.
struct ModuleInfoResponse {
  std::int32_t codecState;  ///< 1 or 2: a codec is there
  std::uint32_t unused;
};
static_assert(sizeof(ModuleInfoResponse) == 8);

#pragma pack(pop)
