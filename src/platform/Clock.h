#pragma once

#include <cstdint>

namespace platform {

/// Everything that waits or measures goes through here, so that a simulated clock can stand in for all of it.
class Clock {
 public:
  virtual ~Clock() = default;

  /// Ticks since some fixed moment. Returns false, leaving `ticks` alone, on a system without a counter.
  virtual bool QueryPerformanceCounter(std::int64_t& ticks) = 0;
  /// Ticks a second, constant for the life of the process. Returns false without a counter.
  virtual bool QueryPerformanceFrequency(std::int64_t& ticksPerSecond) = 0;
  /// Milliseconds since some fixed moment; wraps after 49.7 days.
  virtual std::uint32_t GetTickCount() = 0;
  /// Gives up the processor for at least `milliseconds`; 0 gives up the rest of the time slice.
  virtual void Sleep(std::uint32_t milliseconds) = 0;

  /// The multimedia timer: its period in milliseconds is asked for, used, and given back. 0 is success.
  virtual std::uint32_t timeBeginPeriod(std::uint32_t milliseconds) = 0;
  virtual std::uint32_t timeEndPeriod(std::uint32_t milliseconds) = 0;
  virtual std::uint32_t timeGetTime() = 0;

  /// Seconds since 1970-01-01 00:00 UTC.
  virtual std::int64_t PresentTime() = 0;
};

}  // namespace platform
