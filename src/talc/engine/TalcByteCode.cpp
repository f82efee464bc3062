#include <array>
#include <cstring>
#include <new>
#include <span>
#include <utility>

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

std::uint8_t* TalcByteCode::Reserve(std::uint32_t count) {
  size_ = 0;
  if (count > capacity_) {
    block_.reset(new (std::nothrow) std::uint8_t[count]);
    capacity_ = block_ != nullptr ? count : 0;
  }
  return block_.get();
}

bool TalcByteCode::Set(const std::uint8_t* bytes, std::uint32_t count) {
  if (bytes == nullptr || count == 0) return false;
  // The bytes may lie in the old block, so that goes last.
  const std::unique_ptr<std::uint8_t[]> old = count > capacity_ ? std::move(block_) : nullptr;
  if (Reserve(count) == nullptr) return false;
  std::memmove(block_.get(), bytes, count);
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
