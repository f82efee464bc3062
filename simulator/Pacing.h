#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

#include "simulator/VirtualClock.h"
#include "simulator/WrappedPlatform.h"

namespace simulator {

/// Waits until a moment of real time, counted from the start of the pacing.
using WaitUntil = std::function<void(std::chrono::nanoseconds sinceStart)>;

/// A clock that holds back whoever looks at it until real time has come as far as the virtual one.
class PacingClock : public WrappedClock {
 public:
  PacingClock(platform::Clock& inner, const VirtualClock& virtualClock, double speed, WaitUntil waitUntil);

  bool QueryPerformanceCounter(std::int64_t& ticks) override;
  std::uint32_t GetTickCount() override;
  void Sleep(std::uint32_t milliseconds) override;
  std::uint32_t timeGetTime() override;
  std::int64_t PresentTime() override;

 private:
  void CatchUp();

  const VirtualClock& virtualClock_;
  std::int64_t startNanoseconds_;
  std::int64_t caughtUpNanoseconds_ = 0;
  double speed_;
  WaitUntil waitUntil_;
};

/// A wrapper that plays virtual time `speed` times as fast as real time, 0.001 to 1,000,000. The waiting itself is a
/// function that is handed in. Waits of less than a millisecond of real time are gathered.
///
///     const auto start = std::chrono::steady_clock::now();
///     Pacing paced(bench.platform(), bench.clock(), 10,
///                  [&](auto sinceStart) { std::this_thread::sleep_until(start + sinceStart); });
class Pacing : public WrappedPlatform {
 public:
  /// `inner` and `virtualClock` must outlive this object.
  Pacing(platform::Platform& inner, const VirtualClock& virtualClock, double speed, WaitUntil waitUntil)
      : WrappedPlatform(inner), clock_(inner.clock(), virtualClock, speed, std::move(waitUntil)) {}
  platform::Clock& clock() override { return clock_; }

 private:
  PacingClock clock_;
};

}  // namespace simulator
