#include "support/FailingAllocation.h"

#include <atomic>
#include <new>
#include <utility>

namespace {

/// Allocations to go until the one that fails, that one included; 0 when none is to fail.
std::atomic<int> countdown = 0;
std::atomic<bool> happened = false;

/// What is done in place of failing, if anything.
std::function<void()> action;

bool IsRefused() {
  if (countdown == 0 || --countdown > 0) return false;
  happened = true;
  if (!action) return true;
  action();
  return false;
}

}  // namespace

void* operator new(std::size_t sizeBytes, const std::nothrow_t&) noexcept {
  if (IsRefused()) return nullptr;
  try {
    return ::operator new(sizeBytes);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void* operator new[](std::size_t sizeBytes, const std::nothrow_t&) noexcept {
  if (IsRefused()) return nullptr;
  try {
    return ::operator new[](sizeBytes);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void operator delete(void* memory, const std::nothrow_t&) noexcept {
  ::operator delete(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
  ::operator delete[](memory);
}

namespace test_support {

FailingAllocation::FailingAllocation(int nth) {
  happened = false;
  countdown = nth;
}

FailingAllocation::~FailingAllocation() {
  countdown = 0;
}

bool FailingAllocation::Happened() const {
  return happened;
}

AtAllocation::AtAllocation(int nth, std::function<void()> newAction) {
  happened = false;
  action = std::move(newAction);
  countdown = nth;
}

AtAllocation::~AtAllocation() {
  countdown = 0;
  action = nullptr;
}

bool AtAllocation::Happened() const {
  return happened;
}

}  // namespace test_support
