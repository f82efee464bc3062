#include <cstdint>
#include <string>
#include <vector>

#include "MemoryShortage.h"
#include "PerformanceListFixture.h"
#include "timing/CPerformanceList.h"

namespace {

constexpr int kReadsOfACalibration = 74;  // 11 marks, then 21 times a mark, a check and a mark.

class PerformanceListCalibration : public PerformanceListFixture {
 protected:
  PerformanceListCalibration() { Access::StartOver(); }

  /// Marks at these distances from each other.
  void ScriptMarks(const std::vector<std::int64_t>& gaps) {
    std::int64_t at = 1000;
    system.script.push_back(at);
    for (const std::int64_t gap : gaps)
      system.script.push_back(at += gap);
  }

  /// A mark, a check and a mark that comes `ticks` after the first one.
  void ScriptTimeoutCheck(std::int64_t ticks) { system.Script({5000, 5001, 5000 + ticks}); }
};

TEST_F(PerformanceListCalibration, TakesTheSmallestPositiveGapForTheCostOfAMark) {
  struct Row {
    const char* about;
    std::vector<std::int64_t> gaps;
    std::int64_t overhead;
  };
  const Row rows[] = {
      {"among gaps of all kinds", {5, 0, 7, -3, 4, 9, 4, 6, 100, 8}, 4},
      {"the first one", {2, 3, 4, 5, 6, 7, 8, 9, 10, 11}, 2},
      {"not the last one, which is nothing", {9, 8, 7, 6, 5, 6, 7, 8, 9, 0}, 5},
      {"the last one", {-1, 0, 90, 80, 70, 60, 50, 40, 30, 20}, 20},
      {"only the last is positive", {0, 0, 0, 0, 0, -7, 0, 0, 0, 3'000'000'000}, 3'000'000'000},
      {"a counter that stands", {0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 0},
      {"a counter that runs backwards", {-1, -2, -3, -1, -2, -3, -1, -2, -3, -4}, 0},
  };
  for (const Row& row : rows) {
    Access::StartOver();
    system.script.clear();
    ScriptMarks(row.gaps);
    const CPerformanceList list;
    EXPECT_EQ(Access::MarkOverhead(), row.overhead) << row.about;
  }
}

TEST_F(PerformanceListCalibration, TakesTheShortestPositiveTimeForTheCostOfATimeoutCheck) {
  struct Row {
    const char* about;
    std::int64_t ticksPerSecond;
    std::int64_t first;
    std::vector<std::int64_t> rounds;
    std::int64_t overhead;
  };
  // The cost of one mark, 4 ticks, comes off each of these.
  const Row rows[] = {
      {"the first", 10'000'000, 24, {25, 26, 27, 24}, 20},
      {"a later one", 10'000'000, 24, {24, 19, 22, 4, 2, -50, 21}, 15},
      {"nothing is not a time", 10'000'000, 24, {4, 0}, 20},
      {"a millionth of a second instead of nothing", 10'000'000, 4, {4, 4}, 10},
      {"a millionth of a second at most then", 10'000'000, 3, {15, 14, 16}, 10},
      {"less than a millionth of a second", 10'000'000, -9, {4, 12, 13}, 8},
      {"a counter too slow for a millionth of a second", 999'999, 4, {24, 5, 6}, 0},
      {"a slow counter whose first time is positive", 999'999, 24, {9, 8, 10}, 4},
  };
  for (const Row& row : rows) {
    Access::StartOver();
    system.script.clear();
    system.ticksPerSecond = row.ticksPerSecond;
    ScriptMarks({4, 4, 4, 4, 4, 4, 4, 4, 4, 4});
    ScriptTimeoutCheck(row.first);
    for (std::size_t i = 0; i < 20; ++i)
      ScriptTimeoutCheck(i < row.rounds.size() ? row.rounds[i] : 4);
    const CPerformanceList list;
    EXPECT_EQ(Access::MarkOverhead(), 4) << row.about;
    EXPECT_EQ(Access::TimeoutCheckOverhead(), row.overhead) << row.about;
    EXPECT_TRUE(system.script.empty()) << row.about;
  }
}

TEST_F(PerformanceListCalibration, LooksAtAllTwentyRounds) {
  ScriptMarks({4, 4, 4, 4, 4, 4, 4, 4, 4, 4});
  for (int i = 0; i < 20; ++i)
    ScriptTimeoutCheck(24);
  ScriptTimeoutCheck(11);
  ScriptTimeoutCheck(9);  // One too many.
  const CPerformanceList list;
  EXPECT_EQ(Access::TimeoutCheckOverhead(), 7);
  EXPECT_EQ(system.script.size(), 3U);
}

TEST_F(PerformanceListCalibration, RemembersTheFrequencyAndItsHalfRoundedDown) {
  system.ticksPerSecond = 3'579'545;
  const CPerformanceList list;
  EXPECT_EQ(Access::Frequency(), 3'579'545);
  EXPECT_EQ(Access::HalfFrequency(), 1'789'772);
}

TEST_F(PerformanceListCalibration, IsDoneByTheFirstObjectAlone) {
  system.stepTicks = 2;
  CPerformanceList first;
  EXPECT_EQ(system.counterReads, kReadsOfACalibration);
  EXPECT_EQ(system.frequencyReads, 1);

  CPerformanceList second;
  EXPECT_EQ(system.counterReads, kReadsOfACalibration);
  EXPECT_EQ(system.frequencyReads, 1);
}

TEST_F(PerformanceListCalibration, IsDoneOnceEvenIfAMarkCostsNothing) {
  CPerformanceList first;
  ASSERT_EQ(Access::MarkOverhead(), 0);
  CPerformanceList second;
  EXPECT_EQ(system.frequencyReads, 1);
}

TEST_F(PerformanceListCalibration, LeavesElevenPlacesAndNoMarksInTheFirstObject) {
  system.stepTicks = 2;
  CPerformanceList first;
  CPerformanceList second;
  EXPECT_EQ(first.GetCount(), 0);
  for (int i = 0; i < 12; ++i) {
    first.Mark();
    second.Mark();
  }
  EXPECT_EQ(first.GetCount(), 11);
  EXPECT_EQ(second.GetCount(), 0);
}

TEST_F(PerformanceListCalibration, NeedsAPositiveFrequency) {
  struct Row {
    bool hasCounter;
    std::int64_t ticksPerSecond;
  };
  constexpr Row kRows[] = {{false, 10'000'000}, {true, 0}, {true, -1}, {true, -10'000'000}};
  for (const Row& row : kRows) {
    Access::StartOver();
    system.hasCounter = row.hasCounter;
    system.ticksPerSecond = row.ticksPerSecond;
    system.frequencyReads = 0;
    CPerformanceList first;
    CPerformanceList second;
    EXPECT_EQ(Access::Frequency(), 0);
    EXPECT_EQ(Access::HalfFrequency(), 0);
    EXPECT_EQ(Access::MarkOverhead(), 0);
    EXPECT_EQ(Access::TimeoutCheckOverhead(), 0);
    EXPECT_EQ(first.Init(10), 0);
    EXPECT_EQ(first.GetCount(), 0);
    EXPECT_EQ(system.frequencyReads, 1);
    EXPECT_EQ(system.counterReads, 0);
  }
}

TEST_F(PerformanceListCalibration, GetsByWithoutMemory) {
  system.ticksPerSecond = 10'000'000;
  system.stepTicks = 2;
  {
    MemoryShortage shortage;
    const CPerformanceList list;
  }
  EXPECT_EQ(Access::MarkOverhead(), 0);
  EXPECT_EQ(Access::TimeoutCheckOverhead(), 10);
}

}  // namespace
