#include "board/MicroClock.h"

#include "platform/Platform.h"

namespace {

/// The performance counter's frequency never changes while the process lives, so it is asked for once.
double TicksPerSecond() {
  static const double frequency = [] {
    std::int64_t ticksPerSecond = 0;
    platform::Current().clock().QueryPerformanceFrequency(ticksPerSecond);
    return static_cast<double>(ticksPerSecond);
  }();
  return frequency;
}

}  // namespace

std::int64_t MicroClock() {
  platform::Clock& clock = platform::Current().clock();
  std::int64_t ticks = 0;
  if (clock.QueryPerformanceCounter(ticks) && TicksPerSecond() > 0)
    return static_cast<std::int64_t>(static_cast<double>(ticks) * 1e6 / TicksPerSecond());
  return std::int64_t{clock.GetTickCount()} * 1000;
}

void MicroWait(std::int64_t microseconds) {
  const std::int64_t end = MicroClock() + microseconds;
  std::int64_t left = microseconds;
  while (left >= 1001) {
    platform::Current().clock().Sleep(static_cast<std::uint32_t>(left / 1000));
    left = end - MicroClock();
  }
  while (left > 0)
    left = end - MicroClock();
}
