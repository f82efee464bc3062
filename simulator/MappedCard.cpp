#include "simulator/MappedCard.h"

#include <algorithm>

#include "simulator/LittleEndian.h"
#include "simulator/SystemErrors.h"

namespace simulator {
namespace {

constexpr std::size_t kSegmentMapBytes = 96;
constexpr std::size_t kMapRequestBytes = 12;
constexpr std::size_t kMapResultBytes = 16;
/// What the driver gives beside the address; any value but 0 does.
constexpr std::uint64_t kMappingCookie = 0x0000'5A00'0000'1001;

}  // namespace

std::uint32_t MappedCard::Control(std::uint32_t code, std::span<const std::uint8_t> in, std::span<std::uint8_t> out,
                                  std::uint32_t& returned) {
  switch (code) {
    case kGetBoardMemoryMap:
      return MemoryMap(in, out, returned);
    case kMapMemory:
      return MapMemory(in, out, returned);
    default:
      return kErrorInvalidFunction;
  }
}

std::uint32_t MappedCard::MemoryMap(std::span<const std::uint8_t> in, std::span<std::uint8_t> out,
                                    std::uint32_t& returned) {
  if (!in.empty()) return kErrorInvalidParameter;
  if (out.size() < kSegmentMapBytes) return kErrorInsufficientBuffer;
  std::fill_n(out.begin(), kSegmentMapBytes, std::uint8_t{0});
  Put32(&out[0], kWindowBytes);
  // Further windows: an index and a size each, then unused ones.
  Put32(&out[4], 1);
  Put32(&out[8], 0x4000000);
  returned = kSegmentMapBytes;
  return kErrorSuccess;
}

std::uint32_t MappedCard::MapMemory(std::span<const std::uint8_t> in, std::span<std::uint8_t> out,
                                    std::uint32_t& returned) {
  if (in.size() != kMapRequestBytes || Get64(&in[0]) != 0 || Get32(&in[8]) != kWindowBytes)
    return kErrorInvalidParameter;
  if (out.size() < kMapResultBytes) return kErrorInsufficientBuffer;
  Put64(&out[0], windowAddress_);
  Put64(&out[8], kMappingCookie);
  returned = kMapResultBytes;
  return kErrorSuccess;
}

}  // namespace simulator
