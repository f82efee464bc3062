#include "simulator/VirtualClock.h"

namespace simulator {
namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr std::int64_t kNanosecondsPerMillisecond = 1'000'000;

}  // namespace

bool VirtualClock::QueryPerformanceCounter(std::int64_t& ticks) {
  if (counterFrequency_ == 0) return false;
  Advance(readNanoseconds_);
  // Whole seconds and the rest apart, so that the product stays inside 64 bits.
  const std::int64_t seconds = nowNanoseconds_ / kNanosecondsPerSecond;
  const std::int64_t rest = nowNanoseconds_ % kNanosecondsPerSecond;
  ticks = seconds * counterFrequency_ + rest * counterFrequency_ / kNanosecondsPerSecond;
  return true;
}

bool VirtualClock::QueryPerformanceFrequency(std::int64_t& ticksPerSecond) {
  if (counterFrequency_ == 0) return false;
  ticksPerSecond = counterFrequency_;
  return true;
}

std::uint32_t VirtualClock::GetTickCount() {
  Advance(readNanoseconds_);
  return static_cast<std::uint32_t>(nowNanoseconds_ / kNanosecondsPerMillisecond);
}

void VirtualClock::Sleep(std::uint32_t milliseconds) {
  Advance(milliseconds == 0 ? kYieldNanoseconds : milliseconds * kNanosecondsPerMillisecond);
}

std::uint32_t VirtualClock::timeBeginPeriod(std::uint32_t milliseconds) {
  if (milliseconds == 0) return kTimerNoCanDo;
  ++openTimerPeriods_;
  return 0;
}

std::uint32_t VirtualClock::timeEndPeriod(std::uint32_t milliseconds) {
  if (milliseconds == 0 || openTimerPeriods_ == 0) return kTimerNoCanDo;
  --openTimerPeriods_;
  return 0;
}

std::uint32_t VirtualClock::timeGetTime() {
  return GetTickCount();
}

std::int64_t VirtualClock::PresentTime() {
  Advance(readNanoseconds_);
  return kEpochSeconds + nowNanoseconds_ / kNanosecondsPerSecond;
}

}  // namespace simulator
