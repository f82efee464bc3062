#include "MemoryShortage.h"

#include <cstdlib>

namespace {
bool fails = false;
std::size_t requested = 0;

bool Refuses(std::size_t bytes) {
  if (fails) requested = bytes;
  return fails;
}
}  // namespace

// The linker leads every call of `malloc` to `__wrap_malloc`, and `__real_malloc` to the real one.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
void* __real_malloc(std::size_t bytes);
void* __real_calloc(std::size_t items, std::size_t bytes);
void* __real_realloc(void* block, std::size_t bytes);

void* __wrap_malloc(std::size_t bytes) {
  return Refuses(bytes) ? nullptr : __real_malloc(bytes);
}
void* __wrap_calloc(std::size_t items, std::size_t bytes) {
  return Refuses(items * bytes) ? nullptr : __real_calloc(items, bytes);
}
void* __wrap_realloc(void* block, std::size_t bytes) {
  return Refuses(bytes) ? nullptr : __real_realloc(block, bytes);
}
}
// NOLINTEND(bugprone-reserved-identifier)

MemoryShortage::MemoryShortage() {
  fails = true;
}
MemoryShortage::~MemoryShortage() {
  fails = false;
}
std::size_t MemoryShortage::requestedBytes() const {
  return requested;
}
