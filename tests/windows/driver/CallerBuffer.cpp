#include "CallerBuffer.h"

#include <algorithm>
#include <span>

namespace benchdriver {

CallerBuffer::CallerBuffer(const ClientProcess& process, std::uint64_t address, std::uint32_t sizeBytes)
    : process_(&process), address_(address), before_(sizeBytes) {
  // An empty buffer has an address too.
  bytes_.reserve(sizeBytes + 1u);
}

bool CallerBuffer::Fetch() {
  if (address_ != 0 && !before_.empty() && !process_->Read(address_, before_)) return false;
  bytes_ = before_;
  return true;
}

std::uint64_t CallerBuffer::LocalAddress() const {
  return address_ == 0 ? 0 : reinterpret_cast<std::uintptr_t>(bytes_.data());
}

bool CallerBuffer::PutBack() const {
  if (address_ == 0) return true;
  // A buffer can be told longer than it is, so that nothing is written but what the board wrote.
  const auto first = std::mismatch(bytes_.begin(), bytes_.end(), before_.begin()).first;
  const auto last = std::mismatch(bytes_.rbegin(), bytes_.rend(), before_.rbegin()).first.base();
  if (first == bytes_.end()) return true;
  return process_->Write(address_ + static_cast<std::uint64_t>(first - bytes_.begin()), std::span(first, last));
}

}  // namespace benchdriver
