#pragma once

#include <malloc.h>

#include <cstddef>

namespace test_support {

/// What the process holds of the heap.
inline std::size_t AllocatedBytes() {
#if defined(_WIN32)
  std::size_t bytes = 0;
  _HEAPINFO entry{};
  while (_heapwalk(&entry) == _HEAPOK)
    if (entry._useflag == _USEDENTRY) bytes += entry._size;
  return bytes;
#else
  const struct mallinfo2 heap = mallinfo2();
  return heap.uordblks + heap.hblkhd;
#endif
}

}  // namespace test_support
