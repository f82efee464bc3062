#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "board/MicroClock.h"
#include "support/ManualClock.h"
#include "support/PlatformDouble.h"

namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

class MicroClockTest : public ::testing::Test {
 protected:
  test_support::ManualClock clock;
  platform::ScopedPlatform scope{clock};
};

TEST_F(MicroClockTest, IsTheCounterInMicrosecondsRoundedDown) {
  clock.SetStepTicks(0);
  EXPECT_EQ(MicroClock(), 0);
  clock.AdvanceTicks(9);
  EXPECT_EQ(MicroClock(), 0);
  clock.AdvanceTicks(1);
  EXPECT_EQ(MicroClock(), 1);
  clock.AdvanceTicks(123'456'779);
  EXPECT_EQ(MicroClock(), 12'345'678);
}

// The product of ticks and microseconds leaves 64 bits after eleven days.
TEST_F(MicroClockTest, GoesOnAfterMonthsOfUptime) {
  clock.SetStepTicks(0);
  clock.AdvanceTicks(100'000'000'000'000);
  EXPECT_EQ(MicroClock(), 10'000'000'000'000);
}

using MicroWaitTest = MicroClockTest;

TEST_F(MicroWaitTest, SleepsForWholeMillisecondsAndSpinsForTheRest) {
  struct Case {
    std::int64_t microseconds;
    std::vector<std::uint32_t> sleeps;
  };
  const std::vector<Case> cases = {
      {0, {}},     {-5, {}},    {1, {}},     {16, {}},    {999, {}},           {1000, {}},
      {1001, {1}}, {1999, {1}}, {2000, {2}}, {2500, {2}}, {1'000'000, {1000}},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.microseconds);
    const std::int64_t start = clock.Ticks();
    MicroWait(each.microseconds);
    const std::int64_t waitedTicks = clock.Ticks() - start;
    EXPECT_THAT(clock.Sleeps(), ElementsAreArray(each.sleeps));
    EXPECT_GE(waitedTicks, each.microseconds * 10 - 9);
    // A tick for each look at the clock, and no look too many.
    EXPECT_LE(waitedTicks, each.microseconds < 0 ? 2 : each.microseconds * 10 + 20);
    clock.ForgetSleeps();
  }
}

/// A clock whose parts can be missing or odd. Time is in microseconds; each read of it takes one.
class OddClock : public platform::Clock {
 public:
  std::int64_t ticksPerSecond = 10'000'000;
  bool hasCounter = true;
  bool hasFrequency = true;
  std::int64_t now = 0;
  std::uint32_t tickCountOffset = 0;
  /// How long a sleep is, in parts of a hundred of what was asked for.
  std::int64_t sleepPercent = 100;
  int frequencyReads = 0;
  std::vector<std::uint32_t> sleeps;

  bool QueryPerformanceCounter(std::int64_t& ticks) override {
    if (!hasCounter) return false;
    ticks = ++now * ticksPerSecond / 1'000'000;
    return true;
  }
  bool QueryPerformanceFrequency(std::int64_t& value) override {
    ++frequencyReads;
    if (!hasFrequency) return false;
    value = ticksPerSecond;
    return true;
  }
  std::uint32_t GetTickCount() override { return tickCountOffset + static_cast<std::uint32_t>(++now / 1000); }
  void Sleep(std::uint32_t milliseconds) override {
    sleeps.push_back(milliseconds);
    now += milliseconds * sleepPercent * 10;
  }
  std::uint32_t timeBeginPeriod(std::uint32_t) override { return 1; }
  std::uint32_t timeEndPeriod(std::uint32_t) override { return 1; }
  std::uint32_t timeGetTime() override { return 0; }
  std::int64_t PresentTime() override { return 0; }
};

class OddClockTest : public ::testing::Test {
 protected:
  OddClockTest() { system.Use(clock); }

  OddClock clock;
  test_support::PlatformDouble system;
  platform::ScopedPlatform scope{system};
};

TEST_F(OddClockTest, WithoutACounterIsTheTickCount) {
  clock.hasCounter = false;
  EXPECT_EQ(MicroClock(), 0);
  clock.now = 5'999;
  EXPECT_EQ(MicroClock(), 6'000);
  clock.tickCountOffset = 0xFFFFFFFF - 6;
  EXPECT_EQ(MicroClock(), 4'294'967'295'000);
}

TEST_F(OddClockTest, WithoutACounterAWaitEndsByTheTickCount) {
  clock.hasCounter = false;
  MicroWait(2500);
  EXPECT_THAT(clock.sleeps, ElementsAre(2));
  // The first tick at which 2500 are over.
  EXPECT_GE(clock.now, 3000);
  EXPECT_LE(clock.now, 3002);
}

TEST_F(OddClockTest, AWaitWhoseSleepsEndEarlySleepsAgain) {
  clock.sleepPercent = 50;
  MicroWait(5500);
  EXPECT_THAT(clock.sleeps, ElementsAre(5, 2, 1, 1));
  EXPECT_GE(clock.now, 5500);
  EXPECT_LE(clock.now, 5502);
}

TEST_F(OddClockTest, AWaitWhoseSleepTakesTooLongIsOver) {
  clock.sleepPercent = 1000;
  MicroWait(5500);
  EXPECT_THAT(clock.sleeps, ElementsAre(5));
  EXPECT_LE(clock.now, 50'002);
}

// The frequency is kept for the life of the process, so each of these has a process of its own.
class FrequencyDeathTest : public OddClockTest {
 protected:
  FrequencyDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

  /// Says what the clock says on standard error, and ends.
  [[noreturn]] static void Tell(std::int64_t value) {
    std::fprintf(stderr, "<%lld>", static_cast<long long>(value));
    std::exit(0);
  }
};

TEST_F(FrequencyDeathTest, NeedNotDivideAMillion) {
  clock.ticksPerSecond = 3'579'545;
  clock.now = 1'999'999;
  EXPECT_EXIT(Tell(MicroClock()), ::testing::ExitedWithCode(0), "<2000000>");
}

TEST_F(FrequencyDeathTest, IsFetchedOnce) {
  EXPECT_EXIT(
      {
        for (int i = 0; i < 5; ++i)
          MicroClock();
        clock.ticksPerSecond = 2'000'000;
        MicroClock();
        Tell(clock.frequencyReads);
      },
      ::testing::ExitedWithCode(0), "<1>");
}

TEST_F(FrequencyDeathTest, IsTakenForNoCounterWhenItIsMissing) {
  clock.hasFrequency = false;
  clock.now = 7'999;
  EXPECT_EXIT(Tell(MicroClock()), ::testing::ExitedWithCode(0), "<8000>");
}

TEST_F(FrequencyDeathTest, IsTakenForNoCounterWhenItIsZero) {
  clock.ticksPerSecond = 0;
  clock.now = 7'998;
  EXPECT_EXIT(Tell(MicroClock()), ::testing::ExitedWithCode(0), "<8000>");
}

}  // namespace
