#include <gtest/gtest.h>

#include "simulator/VirtualClock.h"

using simulator::VirtualClock;

namespace {

TEST(VirtualClock, StandsStillUntilItIsUsed) {
  VirtualClock clock;
  EXPECT_EQ(clock.NowNanoseconds(), 0);
  clock.Advance(250);
  EXPECT_EQ(clock.NowNanoseconds(), 250);
  EXPECT_EQ(VirtualClock(77).NowNanoseconds(), 77);
}

TEST(VirtualClock, CostsAMicrosecondALook) {
  VirtualClock clock;
  std::int64_t ticks = 0;
  EXPECT_TRUE(clock.QueryPerformanceCounter(ticks));
  EXPECT_EQ(ticks, 10);
  EXPECT_EQ(clock.NowNanoseconds(), 1'000);
  clock.GetTickCount();
  clock.timeGetTime();
  clock.PresentTime();
  EXPECT_EQ(clock.NowNanoseconds(), 4'000);
}

TEST(VirtualClock, AsksNothingForItsFrequency) {
  VirtualClock clock;
  std::int64_t frequency = 0;
  EXPECT_TRUE(clock.QueryPerformanceFrequency(frequency));
  EXPECT_EQ(frequency, 10'000'000);
  EXPECT_EQ(clock.NowNanoseconds(), 0);
}

TEST(VirtualClock, SleepsAtOnce) {
  VirtualClock clock;
  clock.Sleep(20);
  EXPECT_EQ(clock.NowNanoseconds(), 20'000'000);
  clock.Sleep(0);
  EXPECT_EQ(clock.NowNanoseconds(), 20'020'000);
  clock.Sleep(0xFFFFFFFF);
  EXPECT_EQ(clock.NowNanoseconds(), 4'294'967'315'020'000);
}

TEST(VirtualClock, CountsMillisecondsThatWrap) {
  VirtualClock clock(1'999'500'000);
  EXPECT_EQ(clock.GetTickCount(), 1'999u);
  clock.Sleep(1);
  EXPECT_EQ(clock.timeGetTime(), 2'000u);
  VirtualClock late(4'294'967'296'000'000);
  EXPECT_EQ(late.GetTickCount(), 0u);
}

TEST(VirtualClock, CountsAtAnyFrequency) {
  VirtualClock clock(3'000'000'000'000'000);
  clock.SetCounterFrequency(1'000'000'000);
  std::int64_t ticks = 0;
  EXPECT_TRUE(clock.QueryPerformanceCounter(ticks));
  EXPECT_EQ(ticks, 3'000'000'000'001'000);
  clock.SetCounterFrequency(3);
  clock.Advance(999'999'000);
  EXPECT_TRUE(clock.QueryPerformanceCounter(ticks));
  EXPECT_EQ(ticks, 9'000'003) << "3,000,001.000001 seconds";
}

TEST(VirtualClock, CanBeASystemWithoutACounter) {
  VirtualClock clock;
  clock.SetCounterFrequency(0);
  std::int64_t value = 42;
  EXPECT_FALSE(clock.QueryPerformanceCounter(value));
  EXPECT_FALSE(clock.QueryPerformanceFrequency(value));
  EXPECT_EQ(value, 42);
}

TEST(VirtualClock, StartsAtAFixedDate) {
  VirtualClock clock;
  EXPECT_EQ(clock.PresentTime(), 1'514'764'800);
  clock.Sleep(90'000);
  EXPECT_EQ(clock.PresentTime(), 1'514'764'890);
}

TEST(VirtualClock, WantsTimerPeriodsGivenBack) {
  VirtualClock clock;
  EXPECT_EQ(clock.timeBeginPeriod(1), 0u);
  EXPECT_EQ(clock.OpenTimerPeriods(), 1);
  EXPECT_EQ(clock.timeEndPeriod(1), 0u);
  EXPECT_EQ(clock.OpenTimerPeriods(), 0);
  EXPECT_EQ(clock.timeEndPeriod(1), 97u) << "none is open";
  EXPECT_EQ(clock.timeBeginPeriod(0), 97u);
  EXPECT_EQ(clock.timeEndPeriod(0), 97u);
}

}  // namespace
