#include "simulator/Pacing.h"

#include <utility>

namespace simulator {
namespace {

/// Shorter waits than this are not worth a call to the system.
constexpr double kShortestWaitNanoseconds = 1'000'000;

}  // namespace

PacingClock::PacingClock(platform::Clock& inner, const VirtualClock& virtualClock, double speed, WaitUntil waitUntil)
    : WrappedClock(inner),
      virtualClock_(virtualClock),
      startNanoseconds_(virtualClock.NowNanoseconds()),
      speed_(speed),
      waitUntil_(std::move(waitUntil)) {}

void PacingClock::CatchUp() {
  const std::int64_t elapsed = virtualClock_.NowNanoseconds() - startNanoseconds_;
  if (static_cast<double>(elapsed - caughtUpNanoseconds_) / speed_ < kShortestWaitNanoseconds) return;
  caughtUpNanoseconds_ = elapsed;
  waitUntil_(std::chrono::nanoseconds(static_cast<std::int64_t>(static_cast<double>(elapsed) / speed_)));
}

bool PacingClock::QueryPerformanceCounter(std::int64_t& ticks) {
  const bool counted = WrappedClock::QueryPerformanceCounter(ticks);
  CatchUp();
  return counted;
}

std::uint32_t PacingClock::GetTickCount() {
  const std::uint32_t ticks = WrappedClock::GetTickCount();
  CatchUp();
  return ticks;
}

void PacingClock::Sleep(std::uint32_t milliseconds) {
  WrappedClock::Sleep(milliseconds);
  CatchUp();
}

std::uint32_t PacingClock::timeGetTime() {
  const std::uint32_t time = WrappedClock::timeGetTime();
  CatchUp();
  return time;
}

std::int64_t PacingClock::PresentTime() {
  const std::int64_t time = WrappedClock::PresentTime();
  CatchUp();
  return time;
}

}  // namespace simulator
