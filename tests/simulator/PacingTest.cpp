#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "simulator/Pacing.h"
#include "simulator/SimulatedPlatform.h"

using simulator::Pacing;
using simulator::VirtualClock;
using std::chrono::nanoseconds;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class PacingTest : public testing::Test {
 protected:
  Pacing At(double speed) {
    return Pacing(platform, clock, speed, [this](nanoseconds until) { waits.push_back(until.count()); });
  }

  VirtualClock clock{5'000'000'000};
  simulator::SimulatedPlatform platform{clock};
  std::vector<std::int64_t> waits;
};

TEST_F(PacingTest, WaitsForRealTimeToComeAsFarAsVirtualTime) {
  Pacing pacing = At(1);
  pacing.clock().Sleep(20);
  pacing.clock().Sleep(5);
  EXPECT_THAT(waits, ElementsAre(20'000'000, 25'000'000)) << "from the start of the pacing";
  EXPECT_EQ(clock.NowNanoseconds(), 5'025'000'000);
}

TEST_F(PacingTest, PlaysFasterAndSlower) {
  Pacing faster = At(10);
  faster.clock().Sleep(200);
  EXPECT_THAT(waits, ElementsAre(20'000'000));
  waits.clear();
  Pacing slower = At(0.5);
  slower.clock().Sleep(200);
  EXPECT_THAT(waits, ElementsAre(400'000'000));
}

TEST_F(PacingTest, GathersShortWaits) {
  Pacing pacing = At(1);
  for (int i = 0; i < 49; ++i)
    pacing.clock().Sleep(0);
  EXPECT_THAT(waits, IsEmpty());
  pacing.clock().Sleep(0);
  EXPECT_THAT(waits, ElementsAre(1'000'000));
  for (int i = 0; i < 50; ++i)
    pacing.clock().Sleep(0);
  EXPECT_THAT(waits, ElementsAre(1'000'000, 2'000'000));
}

TEST_F(PacingTest, CatchesUpAtEveryLookAtAClock) {
  Pacing pacing = At(1);
  std::int64_t ticks = 0;
  clock.Advance(1'999'000);
  EXPECT_TRUE(pacing.clock().QueryPerformanceCounter(ticks));
  EXPECT_EQ(ticks, 50'020'000);
  clock.Advance(1'999'000);
  EXPECT_EQ(pacing.clock().GetTickCount(), 5'004u);
  clock.Advance(1'999'000);
  EXPECT_EQ(pacing.clock().timeGetTime(), 5'006u);
  clock.Advance(1'999'000);
  EXPECT_EQ(pacing.clock().PresentTime(), VirtualClock::kEpochSeconds + 5);
  EXPECT_THAT(waits, ElementsAre(2'000'000, 4'000'000, 6'000'000, 8'000'000));
}

TEST_F(PacingTest, HandsEverythingElseOn) {
  Pacing pacing = At(1);
  std::int64_t frequency = 0;
  EXPECT_TRUE(pacing.clock().QueryPerformanceFrequency(frequency));
  EXPECT_EQ(frequency, 10'000'000);
  EXPECT_EQ(pacing.clock().timeBeginPeriod(1), 0u);
  EXPECT_EQ(clock.OpenTimerPeriods(), 1);
  EXPECT_EQ(pacing.clock().timeEndPeriod(1), 0u);
  EXPECT_EQ(clock.OpenTimerPeriods(), 0);
  EXPECT_EQ(&pacing.devices(), &platform.devices());
  EXPECT_THAT(waits, IsEmpty());
}

}  // namespace
