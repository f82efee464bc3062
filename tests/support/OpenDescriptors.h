#pragma once

#include <cstddef>
#include <filesystem>
#include <iterator>

#if defined(_WIN32)
#include <io.h>
#endif

namespace test_support {

/// How many file descriptors the process has open. For comparisons: the count itself may hold one of its own.
inline std::size_t OpenDescriptors() {
#if defined(_WIN32)
  constexpr int kDescriptors = 512;  // that the C runtime has at the start
  std::size_t count = 0;
  for (int descriptor = 0; descriptor < kDescriptors; ++descriptor)
    count += _get_osfhandle(descriptor) != -1;
  return count;
#else
  const std::filesystem::directory_iterator all("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(all), end(all)));
#endif
}

}  // namespace test_support
