#pragma once

#include <cstdint>

#include "timing/CPerformanceList.h"

/// How an operation on the flash began and, after a failure, how it ended. An operation that succeeds leaves the value
/// that it began with.
enum class FlashResult : std::uint32_t {
  kNone = 0,               ///< no operation has come as far as the chip's status
  kCleanStart = 1,         ///< the operation began with a clean status
  kErrorsAtStart = 2,      ///< it began with status bits set besides the ready bit
  kFailedRecovered = 3,    ///< it failed, and the chip came back to a good status
  kFailedUnrecovered = 4,  ///< it failed, and the chip did not
  kTimedOut = 5,           ///< the chip was not ready in time
};

/// What is known of the last erase or program run, for inspection after a failure.
///
/// An operation that is refused for its address empties `marks` and leaves the other fields as the one before it left
/// them. Not copyable, since it owns its marks.
struct FlashTimers {
  FlashResult result = FlashResult::kNone;
  std::uint32_t statusBefore = 0;  ///< status byte when the operation began
  std::uint32_t statusAfter = 0;   ///< status byte when it ended
  /// Erase: a mark when the command is given, one on each side of the first four polls, one at the end. Program run:
  /// at the start and the end of the wait for the write buffer, and of the wait for completion. Also the deadline.
  CPerformanceList marks;
};
