#include <algorithm>
#include <array>
#include <new>

#include "engine/PacketHeader.h"
#include "talcpath.h"

namespace TalcPath {
namespace {

constexpr std::uint32_t kHeaderBytes = 8;

}  // namespace

void TalcByteCode::Clear() {
  // The block stays for the next packet.
  size_ = 0;
}

bool TalcByteCode::Set(const std::uint8_t* bytes, std::uint32_t count) {
  if (bytes == nullptr || count == 0) return false;
  if (count > capacity_) {
    // The bytes may lie in the old block, so that goes last.
    std::unique_ptr<std::uint8_t[]> block(new (std::nothrow) std::uint8_t[count]);
    if (block != nullptr) std::copy_n(bytes, count, block.get());
    block_.swap(block);
    capacity_ = block_ != nullptr ? count : 0;
    size_ = capacity_;
    return block_ != nullptr;
  }
  std::copy(bytes, bytes + count, block_.get());
  size_ = count;
  return true;
}

bool TalcByteCode::GetPacketByteCodeBuffer(const std::uint8_t** buffer) const {
  if (buffer == nullptr || size_ == 0) return false;
  *buffer = block_.get();
  return true;
}

bool TalcByteCode::GetPacketByteCodeBufferSize(std::uint32_t* size) const {
  if (size == nullptr || size_ == 0) return false;
  *size = size_;
  return true;
}

TalcPathStatus TalcByteCode::GetStatus() const {
  const std::span packet(block_.get(), size_);
  if (packet.size() < kHeaderBytes || !TalcPathPrivate::HasPacketMark(packet)) return kTPFail;
  return TalcPathPrivate::StatusFromByte(packet[TalcPathPrivate::kStatusOffset]);
}

std::int32_t TalcByteCode::GetPayloadSize() const {
  if (size_ < kHeaderBytes) return -1;
  const std::span packet(block_.get(), size_);
  const std::uint32_t length = TalcPathPrivate::Load16(&packet[TalcPathPrivate::kLengthOffset]);
  // The length is judged before the mark.
  if (length < TalcPathPrivate::kCountedHeaderBytes) return -1;
  if (!TalcPathPrivate::HasPacketMark(packet)) return -2;
  return static_cast<std::int32_t>(length - TalcPathPrivate::kCountedHeaderBytes);
}

bool TalcByteCode::GetPayloadPointer(const std::uint8_t** payload) const {
  if (payload == nullptr || !HasPayload()) return false;
  *payload = block_.get() + kHeaderBytes;
  return true;
}

bool TalcByteCode::HasPayload() const {
  return size_ > kHeaderBytes;
}

void TalcByteCode::SetResponse(std::uint8_t status) {
  using TalcPathPrivate::kPacketMark;
  const std::array<std::uint8_t, kHeaderBytes> reply{kPacketMark, kPacketMark, 0, 4, 0, 0, 0, status};
  Clear();
  Set(reply.data(), kHeaderBytes);
}
void TalcByteCode::SetResponseTimeOut() {
  SetResponse(255);
}
void TalcByteCode::SetResponseFail() {
  SetResponse(1);
}
void TalcByteCode::SetResponseSuccess() {
  SetResponse(0);
}

}  // namespace TalcPath
