#include "simulator/HostCard.h"

#include <algorithm>

#include "simulator/FlashImage.h"
#include "simulator/HexText.h"
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

void HostCardState::PowerCycle(std::int64_t nowNanoseconds) {
  flash.PowerLoss(nowNanoseconds);
  flashAddressRegister = 0;
  flashRunning = StoredVersion(flash.memory());
  karvelRunning = karvelStored;
}

std::uint32_t HostCard::Control(std::uint32_t code, std::span<const std::uint8_t> in, std::span<std::uint8_t> out,
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

std::uint32_t HostCard::MemoryMap(std::span<const std::uint8_t> in, std::span<std::uint8_t> out,
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

std::uint32_t HostCard::MapMemory(std::span<const std::uint8_t> in, std::span<std::uint8_t> out,
                                  std::uint32_t& returned) {
  if (in.size() != kMapRequestBytes || Get64(&in[0]) != 0 || Get32(&in[8]) != kWindowBytes)
    return kErrorInvalidParameter;
  if (out.size() < kMapResultBytes) return kErrorInsufficientBuffer;
  Put64(&out[0], board_.windowAddress);
  Put64(&out[8], kMappingCookie);
  returned = kMapResultBytes;
  return kErrorSuccess;
}

platform::RegisterTrap* HostCard::TrapAt(std::uint64_t address) {
  return address == board_.windowAddress ? this : nullptr;
}

std::uint32_t HostCard::Read(std::uint32_t offset) {
  clock_.Advance(kAccessNanoseconds);
  if (offset == kFlashData) return state_.flash.ReadPair(state_.flashAddressRegister, clock_.NowNanoseconds());
  if (offset % 4 == 0) {
    if (offset == kKarvelVersion) return state_.karvelRunning;
    if (offset >= kVpdFirst && offset - kVpdFirst < kVpdAreaBytes) return Get32(&(*state_.vpd)[offset - kVpdFirst]);
  }
  state_.errors.Add("card: read of register " + Hex(offset, 5));
  return 0xFFFFFFFF;
}

void HostCard::Write(std::uint32_t offset, std::uint32_t value) {
  clock_.Advance(kAccessNanoseconds);
  if (offset == kFlashAddress)
    state_.flashAddressRegister = value;
  else if (offset == kFlashData)
    state_.flash.Write(state_.flashAddressRegister, value, clock_.NowNanoseconds(), faults_);
  else
    state_.errors.Add("card: write of " + Hex(value, 8) + " to register " + Hex(offset, 5));
}

}  // namespace simulator
