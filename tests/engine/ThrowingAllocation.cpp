#include "ThrowingAllocation.h"

#include <cstddef>
#include <new>

namespace {

/// Allocations to go until the one that throws, that one included; 0 when none is to throw.
int countdown = 0;
bool happened = false;

bool IsRefused() {
  if (countdown == 0 || --countdown > 0) return false;
  happened = true;
  return true;
}

}  // namespace

// The linker leads every call of `operator new(std::size_t)` to the first, and calls of the second to the real one.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
void* __real__Znwm(std::size_t bytes);
void* __wrap__Znwm(std::size_t bytes) {
  if (IsRefused()) throw std::bad_alloc();
  return __real__Znwm(bytes);
}
}
// NOLINTEND(bugprone-reserved-identifier)

namespace engine_test {

ThrowingAllocation::ThrowingAllocation(int nth) {
  happened = false;
  countdown = nth;
}
ThrowingAllocation::~ThrowingAllocation() {
  countdown = 0;
}
bool ThrowingAllocation::Happened() {
  return happened;
}

}  // namespace engine_test
