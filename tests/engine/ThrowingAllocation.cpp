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

// The linker leads every call of `operator new(std::size_t)`, whose symbol tells what `std::size_t` is, to the first,
// and calls of the second to the real one.
// NOLINTBEGIN(bugprone-reserved-identifier)
#if defined(_WIN64)
#define REAL_NEW __real__Znwy
#define WRAPPED_NEW __wrap__Znwy
#else
#define REAL_NEW __real__Znwm
#define WRAPPED_NEW __wrap__Znwm
#endif
extern "C" {
void* REAL_NEW(std::size_t bytes);
void* WRAPPED_NEW(std::size_t bytes) {
  if (IsRefused()) throw std::bad_alloc();
  return REAL_NEW(bytes);
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
