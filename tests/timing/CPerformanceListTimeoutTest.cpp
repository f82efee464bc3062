#include <cstdint>
#include <limits>
#include <vector>

#include "PerformanceListFixture.h"
#include "timing/CPerformanceList.h"

namespace {

constexpr std::int32_t kLargest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kLastTick = std::numeric_limits<std::int64_t>::max();

class PerformanceListTimeout : public PerformanceListFixture {};

using SetOperation = void (CPerformanceList::*)(std::uint32_t value, std::int32_t mark);
constexpr SetOperation kMilli = &CPerformanceList::SetMilliTimeout;
constexpr SetOperation kMicro = &CPerformanceList::SetMicroTimeout;
constexpr SetOperation kNano = &CPerformanceList::SetNanoTimeout;

TEST_F(PerformanceListTimeout, RoundsItsLengthToTheNearestTick) {
  struct Row {
    SetOperation set;
    std::int64_t frequency;
    std::uint32_t value;
    std::int64_t ticks;
  };
  constexpr Row kRows[] = {
      {kMilli, 10'000'000, 0, 0},
      {kMilli, 10'000'000, 50, 500'000},
      {kMilli, 10'000'000, 0xFFFFFFFF, 42'949'672'950'000},
      {kMilli, 3, 166, 0},  // 0.498 ticks.
      {kMilli, 3, 167, 1},  // 0.501 ticks.
      {kMilli, 500, 1, 1},  // Half a tick goes up.
      {kMilli, 499, 1, 0},
      {kMicro, 10'000'000, 7, 70},
      {kMicro, 1'500'000, 1, 2},
      {kMicro, 1'499'999, 1, 1},
      {kMicro, 10'000'000, 0xFFFFFFFF, 42'949'672'950},
      {kNano, 10'000'000, 49, 0},
      {kNano, 10'000'000, 50, 1},
      {kNano, 10'000'000, 149, 1},
      {kNano, 10'000'000, 150, 2},
      {kNano, 10'000'000, 0xFFFFFFFF, 42'949'673},
      // The product alone would not fit in 64 bits.
      {kNano, 10'000'000'000, 4'000'000'000, 40'000'000'000},
  };
  for (const Row& row : kRows) {
    Access::SetCalibration(row.frequency, 0, 0);
    CPerformanceList list;
    system.Script({1000});
    (list.*row.set)(row.value, -1);
    EXPECT_EQ(Access::Timeout(list), 1000 + row.ticks) << row.value << " at " << row.frequency;
  }
}

TEST_F(PerformanceListTimeout, StaysWithinTheLastTick) {
  struct Row {
    std::int64_t now;
    std::int64_t timeout;
  };
  // At this frequency a second is all ticks that there are.
  Access::SetCalibration(kLastTick, 0, 0);
  constexpr Row kRows[] = {{0, kLastTick}, {1, kLastTick}, {-1, kLastTick - 1}, {kLastTick, kLastTick}};
  for (const Row& row : kRows) {
    CPerformanceList list;
    system.Script({row.now});
    list.SetMilliTimeout(1000, -1);
    EXPECT_EQ(Access::Timeout(list), row.timeout) << row.now;
    system.Script({row.now});
    list.SetMilliTimeout(0xFFFFFFFF, -1);
    EXPECT_EQ(Access::Timeout(list), kLastTick) << row.now;
  }
}

TEST_F(PerformanceListTimeout, CountsFromAMarkWithoutReadingTheCounter) {
  for (const SetOperation set : {kMilli, kMicro, kNano}) {
    CPerformanceList list;
    Fill(list, {100, 200});
    const int reads = system.counterReads;
    (list.*set)(0, 1);
    EXPECT_EQ(Access::Timeout(list), 200);
    EXPECT_EQ(system.counterReads, reads);
  }
}

TEST_F(PerformanceListTimeout, CountsFromNowIfThereIsNoSuchMark) {
  for (const std::int32_t mark : {kSmallest, -1, 2, 7, 8, kLargest}) {
    CPerformanceList list;
    Fill(list, {100, 200});
    system.Script({9000});
    list.SetMilliTimeout(50, mark);
    EXPECT_EQ(Access::Timeout(list), 59'000) << mark;
    EXPECT_EQ(Access::Now(list), 9000) << mark;
  }
}

TEST_F(PerformanceListTimeout, CountsFromNowOnAnEmptyList) {
  CPerformanceList list;
  system.Script({9000});
  list.SetMilliTimeout(50, 0);
  EXPECT_EQ(Access::Timeout(list), 59'000);
}

TEST_F(PerformanceListTimeout, HasPassedOnlyBeyondTheDeadline) {
  struct Row {
    std::int64_t timeout;
    std::int64_t now;
    bool passed;
  };
  constexpr Row kRows[] = {
      {1000, 999, false},
      {1000, 1000, false},
      {1000, 1001, true},
      {0x7FFFFFFF, 0x80000000, true},  // Low halves are without a sign.
      {0x80000000, 0x7FFFFFFF, false},
      {0x100000000, 0xFFFFFFFF, false},
      {0xFFFFFFFF, 0x100000000, true},
      {-5, 3, true},  // High halves have one.
      {5, -3, false},
      {-5, -4, true},
      {-4, -5, false},
      {kLastTick, kLastTick, false},
  };
  for (const Row& row : kRows) {
    CPerformanceList list;
    Access::Timeout(list) = row.timeout;
    system.Script({row.now});
    EXPECT_EQ(list.TimedOut(), row.passed) << row.now << " after " << row.timeout;
    EXPECT_EQ(Access::Now(list), row.now);
  }
}

TEST_F(PerformanceListTimeout, ReadsTheCounterOncePerCheck) {
  CPerformanceList list;
  system.Script({1000});
  list.SetMicroTimeout(20, -1);
  system.stepTicks = 10;
  EXPECT_FALSE(list.TimedOut());
  EXPECT_FALSE(list.TimedOut());
  EXPECT_TRUE(list.TimedOut());
  EXPECT_EQ(system.counterReads, 4);
}

TEST_F(PerformanceListTimeout, NeverPassesWithoutACounter) {
  Access::SetCalibration(0, 0, 0);
  system.hasCounter = false;
  CPerformanceList list;
  list.SetMilliTimeout(50, -1);
  EXPECT_EQ(Access::Timeout(list), 0);
  EXPECT_FALSE(list.TimedOut());
}

TEST_F(PerformanceListTimeout, TakesTheCostOfChecksOutOfTheMarksThatFollow) {
  struct Row {
    const char* about;
    std::int32_t mark;
    std::int32_t checks;
    std::int32_t result;
    std::vector<std::int64_t> marks;
  };
  // A check costs 9 ticks; the interval between neighbours is 90 without the cost of the mark.
  const std::vector<std::int64_t> unmoved = {0, 100, 200, 300};
  const Row rows[] = {
      {"three checks", 1, 3, 1, {0, 100, 173, 273}},
      {"from the first mark", 0, 1, 1, {0, 91, 191, 291}},
      {"just below the interval", 1, 9, 1, {0, 100, 119, 219}},
      {"all of the interval", 1, 10, 1, {0, 100, 110, 210}},
      {"never across the mark before", 1, 11, 1, {0, 100, 110, 210}},
      {"more than can be", 1, kLargest, 1, {0, 100, 110, 210}},
      // Before the first mark there is no interval, so this is success without a change.
      {"from before the first mark", -1, 5, 1, unmoved},
      {"nothing follows the last mark", 3, 5, 1, unmoved},
      {"no such mark", 4, 5, 0, unmoved},
      {"no such place", kLargest, 5, 0, unmoved},
      {"a negative mark", -2, 5, 0, unmoved},
      {"the most negative mark", kSmallest, 5, 0, unmoved},
      {"a negative number of checks", 1, -1, 0, unmoved},
      {"the most negative number of checks", 1, kSmallest, 0, unmoved},
      {"no checks", 1, 0, 1, unmoved},
      // The number of checks is looked at first.
      {"no checks and no such mark", 99, 0, 1, unmoved},
      {"a negative number of checks and no such mark", 99, -1, 0, unmoved},
  };
  for (const Row& row : rows) {
    Access::SetCalibration(1'000'000, 10, 9);
    CPerformanceList list;
    Fill(list, unmoved);
    EXPECT_EQ(list.AdjustForTimeoutChecks(row.mark, row.checks), row.result) << row.about;
    EXPECT_EQ(MarksOf(list), row.marks) << row.about;
  }
}

TEST_F(PerformanceListTimeout, TheCostOfChecksMayPassAllTicksThatThereAre) {
  // Four such checks cost 2 to the power 64 ticks.
  Access::SetCalibration(1'000'000, 0, 0x4000000000000000);
  CPerformanceList list;
  Fill(list, {0, 100, 200});
  EXPECT_EQ(list.AdjustForTimeoutChecks(0, 4), 1);
  EXPECT_EQ(MarksOf(list), (std::vector<std::int64_t>{0, 0, 100}));
}

TEST_F(PerformanceListTimeout, AdjustingAnEmptyListKnowsOnlyThePlaceBeforeIt) {
  CPerformanceList list;
  EXPECT_EQ(list.AdjustForTimeoutChecks(-1, 1), 1);
  EXPECT_EQ(list.AdjustForTimeoutChecks(0, 1), 0);
}

}  // namespace
