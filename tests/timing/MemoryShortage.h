#pragma once

#include <cstddef>

/// While one lives, `malloc`, `calloc` and `realloc` of the code that is linked into the test return null. Keep the
/// life short: the test's own code gets no memory either.
///
///     MemoryShortage shortage;
///     list.Realloc(20);
class MemoryShortage {
 public:
  MemoryShortage();
  ~MemoryShortage();
  MemoryShortage(const MemoryShortage&) = delete;
  MemoryShortage& operator=(const MemoryShortage&) = delete;

  /// The size of the last request that was refused.
  std::size_t requestedBytes() const;
};
