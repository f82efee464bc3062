#pragma once

#include <cstdint>

#include "platform/Clock.h"

namespace simulator {

/// A clock that only moves when it is looked at, slept on, or pushed by a simulated device. So minutes of hardware time
/// pass in a moment, and the same run always sees the same times.
///
///     VirtualClock clock;
///     clock.Sleep(20);                        // 20 ms later, at once
///     clock.Advance(250);                     // a device took 250 ns
///     clock.NowNanoseconds() == 20'000'250;   // looking this way costs nothing
class VirtualClock : public platform::Clock {
 public:
  /// What a look at any of the platform's clocks costs, unless told otherwise.
  static constexpr std::int64_t kReadNanoseconds = 1'000;
  /// What giving up the rest of a time slice, `Sleep(0)`, costs.
  static constexpr std::int64_t kYieldNanoseconds = 20'000;
  static constexpr std::int64_t kDefaultCounterFrequency = 10'000'000;
  /// The present time at nanosecond 0: 2018-01-01 00:00 UTC.
  static constexpr std::int64_t kEpochSeconds = 1'514'764'800;
  /// What `timeBeginPeriod` and `timeEndPeriod` report for a period of 0, or one that was not begun.
  static constexpr std::uint32_t kTimerNoCanDo = 97;

  explicit VirtualClock(std::int64_t startNanoseconds = 0) : nowNanoseconds_(startNanoseconds) {}

  std::int64_t NowNanoseconds() const { return nowNanoseconds_; }
  /// Lets time pass. `nanoseconds` is not negative.
  void Advance(std::int64_t nanoseconds) { nowNanoseconds_ += nanoseconds; }
  /// What a look costs from now on, not negative. With a large cost a wait that polls is over after a few looks.
  void SetReadNanoseconds(std::int64_t nanoseconds) { readNanoseconds_ = nanoseconds; }
  /// Ticks a second, 1 to 1,000,000,000; 0 makes this a system without a counter.
  void SetCounterFrequency(std::int64_t ticksPerSecond) { counterFrequency_ = ticksPerSecond; }
  /// How many `timeBeginPeriod` have not been given back.
  int OpenTimerPeriods() const { return openTimerPeriods_; }

  bool QueryPerformanceCounter(std::int64_t& ticks) override;
  bool QueryPerformanceFrequency(std::int64_t& ticksPerSecond) override;
  std::uint32_t GetTickCount() override;
  void Sleep(std::uint32_t milliseconds) override;
  std::uint32_t timeBeginPeriod(std::uint32_t milliseconds) override;
  std::uint32_t timeEndPeriod(std::uint32_t milliseconds) override;
  std::uint32_t timeGetTime() override;
  std::int64_t PresentTime() override;

 private:
  std::int64_t nowNanoseconds_;
  std::int64_t readNanoseconds_ = kReadNanoseconds;
  std::int64_t counterFrequency_ = kDefaultCounterFrequency;
  int openTimerPeriods_ = 0;
};

}  // namespace simulator
