#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <vector>

#include "platform/Platform.h"

/// A platform whose time moves only when it is read or slept on, and which has nothing but that time.
///
///     test_support::ManualClock clock;
///     platform::ScopedPlatform scope(clock);
///     flash.WaitReady(0);
///     EXPECT_THAT(clock.Sleeps(), ElementsAre(1));
///
/// The counter runs at 10 MHz, a tick is 100 ns. Each read of it first moves it by a step, 1 tick at the start, and
/// `Sleep` moves it by the time slept. Any other service ends the process with a message.
namespace test_support {

class ManualClock final : public platform::Platform, private platform::Clock {
 public:
  static constexpr std::int64_t kTicksPerSecond = 10'000'000;
  static constexpr std::int64_t kTicksPerMillisecond = kTicksPerSecond / 1000;

  /// How far each read of the counter moves it; 0 lets time stand still but for sleeps.
  void SetStepTicks(std::int64_t ticks) { stepTicks_ = ticks; }
  void AdvanceTicks(std::int64_t ticks) { ticks_ += ticks; }
  /// The present time, without moving it.
  std::int64_t Ticks() const { return ticks_; }

  /// From now on the system has no counter: neither it nor its frequency can be read.
  void RemoveCounter() { hasCounter_ = hasFrequency_ = false; }
  /// From now on the counter can be read, but its frequency is reported as 0.
  void ZeroFrequency() { frequency_ = 0; }
  /// From now on the frequency is known, but the counter can't be read.
  void StopCounter() { hasCounter_ = false; }

  /// What the calendar says from now on, in seconds since 1970-01-01 00:00 UTC. It does not move by itself.
  void SetPresentTime(std::int64_t seconds) { presentTime_ = seconds; }

  /// What was slept, in milliseconds and in order.
  const std::vector<std::uint32_t>& Sleeps() const { return sleeps_; }
  void ForgetSleeps() { sleeps_.clear(); }

  platform::Clock& clock() override { return *this; }
  platform::Devices& devices() override { Refuse("devices"); }
  platform::FrontEnd& frontEnd() override { Refuse("frontEnd"); }
  platform::TextBlocks& textBlocks() override { Refuse("textBlocks"); }
  platform::Files& files() override { Refuse("files"); }

 private:
  bool QueryPerformanceCounter(std::int64_t& ticks) override {
    if (!hasCounter_) return false;
    ticks_ += stepTicks_;
    ticks = ticks_;
    return true;
  }
  bool QueryPerformanceFrequency(std::int64_t& ticksPerSecond) override {
    if (!hasFrequency_) return false;
    ticksPerSecond = frequency_;
    return true;
  }
  void Sleep(std::uint32_t milliseconds) override {
    sleeps_.push_back(milliseconds);
    ticks_ += milliseconds * kTicksPerMillisecond;
  }
  std::uint32_t GetTickCount() override { Refuse("GetTickCount"); }
  std::uint32_t timeBeginPeriod(std::uint32_t) override { Refuse("timeBeginPeriod"); }
  std::uint32_t timeEndPeriod(std::uint32_t) override { Refuse("timeEndPeriod"); }
  std::uint32_t timeGetTime() override { Refuse("timeGetTime"); }
  std::int64_t PresentTime() override {
    if (!presentTime_) Refuse("PresentTime");
    return *presentTime_;
  }

  [[noreturn]] static void Refuse(const char* service) {
    std::fprintf(stderr, "ManualClock: the code under test asked for %s\n", service);
    std::abort();
  }

  std::int64_t ticks_ = 0;
  std::int64_t stepTicks_ = 1;
  std::int64_t frequency_ = kTicksPerSecond;
  bool hasCounter_ = true;
  bool hasFrequency_ = true;
  std::vector<std::uint32_t> sleeps_;
  std::optional<std::int64_t> presentTime_;
};

}  // namespace test_support
