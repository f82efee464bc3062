#include "simulator/HostCard.h"

#include "simulator/FlashImage.h"
#include "simulator/HexText.h"
#include "simulator/LittleEndian.h"
#include "simulator/SystemErrors.h"

namespace simulator {

void HostCardState::PowerCycle(std::int64_t nowNanoseconds) {
  flash.PowerLoss(nowNanoseconds);
  flashAddressRegister = 0;
  fifo.PowerLoss();
  flashRunning = StoredVersion(flash.memory());
  karvel.PowerLoss(nowNanoseconds);
  karvelRunning = karvel.cells().VersionWord();
}

std::uint32_t HostCard::Control(std::uint32_t code, std::span<const std::uint8_t> in, std::span<std::uint8_t> out,
                                std::uint32_t& returned) {
  const std::uint32_t error = MappedCard::Control(code, in, out, returned);
  if (code == kMapMemory && error == kErrorSuccess && board_.hasBoxFifo && Strikes(faults_, Fault::kStaleReplies))
    state_.fifo.AddStaleReplies();
  return error;
}

std::uint32_t HostCard::Read(std::uint32_t offset) {
  clock_.Advance(kAccessNanoseconds);
  if (offset == kFlashData) return state_.flash.ReadPair(state_.flashAddressRegister, clock_.NowNanoseconds());
  if (offset == kJtagPort) return state_.karvel.ReadPort(clock_.NowNanoseconds(), faults_);
  if (IsFifoRegister(offset)) return state_.fifo.Read(offset, clock_.NowNanoseconds(), box_, faults_);
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
  else if (offset == kJtagPort)
    state_.karvel.WritePort(value, clock_.NowNanoseconds(), faults_);
  else if (IsFifoRegister(offset))
    state_.fifo.Write(offset, value, clock_.NowNanoseconds(), box_, faults_);
  else
    state_.errors.Add("card: write of " + Hex(value, 8) + " to register " + Hex(offset, 5));
}

}  // namespace simulator
