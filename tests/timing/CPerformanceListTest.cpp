#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <type_traits>
#include <vector>

#include "MemoryShortage.h"
#include "PerformanceListFixture.h"
#include "timing/CPerformanceList.h"

namespace {

constexpr std::int32_t kLargest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();

// Copies would free the same marks twice.
static_assert(!std::is_copy_constructible_v<CPerformanceList>);
static_assert(!std::is_copy_assignable_v<CPerformanceList>);

class PerformanceList : public PerformanceListFixture {};

TEST_F(PerformanceList, IsEmptyAndWithoutPlacesAtFirst) {
  CPerformanceList list;
  list.Mark();
  EXPECT_EQ(list.GetCount(), 0);
  EXPECT_EQ(list.GetMark(0), 0);
  EXPECT_EQ(system.counterReads, 0);
  EXPECT_EQ(Access::Capacity(list), 0);
  EXPECT_EQ(Access::Marks(list), nullptr);
}

TEST_F(PerformanceList, InitAllocatesByItsOwnStepsAndTellsWhetherPlacesAreLeftOver) {
  struct Row {
    std::int32_t marks;
    std::int32_t result;
    std::int32_t places;
  };
  constexpr Row kRows[] = {
      {kSmallest, 1, 0}, {-1, 1, 0}, {0, 1, 0}, {1, 0, 16}, {2, 0, 16}, {3, 0, 16},  {4, 0, 8},
      {5, 0, 8},         {6, 0, 8},  {7, 0, 8}, {8, 1, 8},  {9, 1, 9},  {16, 1, 16}, {1000, 1, 1000},
  };
  for (const Row& row : kRows) {
    CPerformanceList list;
    EXPECT_EQ(list.Init(row.marks), row.result) << row.marks;
    EXPECT_EQ(Access::Capacity(list), row.places) << row.marks;
    for (int i = 0; i < row.places + 3; ++i)
      list.Mark();
    EXPECT_EQ(list.GetCount(), row.places) << row.marks;
  }
}

TEST_F(PerformanceList, InitStartsOverDeadlineIncluded) {
  CPerformanceList list;
  Fill(list, {10, 20, 30});
  list.SetMilliTimeout(1000, 0);
  ASSERT_EQ(Access::Timeout(list), 1'000'010);
  EXPECT_EQ(list.Init(12), 1);
  EXPECT_EQ(list.GetCount(), 0);
  EXPECT_EQ(Access::Capacity(list), 12);
  EXPECT_EQ(Access::Timeout(list), 0);
}

TEST_F(PerformanceList, InitOfNoPlacesFreesThoseThereWere) {
  CPerformanceList list;
  Fill(list, {10, 20, 30});
  EXPECT_EQ(list.Init(0), 1);
  EXPECT_EQ(Access::Marks(list), nullptr);
  EXPECT_EQ(list.GetCount(), 0);
}

TEST_F(PerformanceList, InitHasNoPlacesLeftOverWhenMemoryRunsOut) {
  CPerformanceList list;
  std::int32_t result = 0;
  {
    MemoryShortage shortage;
    result = list.Init(5);
  }
  EXPECT_EQ(result, 1);
  list.Mark();
  EXPECT_EQ(list.GetCount(), 0);
  EXPECT_EQ(Access::Capacity(list), 0);
  EXPECT_EQ(Access::Next(list), nullptr);
  EXPECT_EQ(Access::End(list), nullptr);
  EXPECT_EQ(Access::Marks(list), nullptr);
}

TEST_F(PerformanceList, AsksForAllBytesOfTheLongestList) {
  CPerformanceList list;
  std::size_t bytes = 0;
  {
    MemoryShortage shortage;
    list.Init(kLargest);
    bytes = shortage.requestedBytes();
  }
  EXPECT_EQ(bytes, 17'179'869'176U);
}

TEST_F(PerformanceList, TakesTheCounterAndDropsWhatAFullListCannotHold) {
  CPerformanceList list;
  list.Init(10);
  system.stepTicks = 3;
  for (int i = 0; i < 11; ++i)
    list.Mark();
  EXPECT_EQ(list.GetCount(), 10);
  EXPECT_EQ(list.GetMark(0), 3);
  EXPECT_EQ(list.GetMark(9), 30);
  EXPECT_EQ(system.counterReads, 10);
}

TEST_F(PerformanceList, GivesNoMarkForAnInvalidIndex) {
  CPerformanceList list;
  Fill(list, {10, 20, 30});
  ASSERT_EQ(Access::Capacity(list), 8);
  // As the marks were not counted yet, index 2 needs a fresh count.
  ASSERT_EQ(Access::Count(list), 0);
  EXPECT_EQ(list.GetMark(2), 30);
  EXPECT_EQ(Access::Count(list), 3);
  for (const std::int32_t index : {kSmallest, -1, 3, 7, 8, 9, kLargest})
    EXPECT_EQ(list.GetMark(index), 0) << index;
}

TEST_F(PerformanceList, AnIndexBehindTheLastPlaceDoesNotCountAnew) {
  CPerformanceList list;
  Fill(list, {10, 20, 30});
  EXPECT_EQ(list.GetMark(8), 0);
  EXPECT_EQ(Access::Count(list), 0);
}

TEST_F(PerformanceList, CountsTheMarksThatAreKnownEvenIfThePlaceOfTheNextIsOdd) {
  struct Row {
    int nextPlace;
    std::int32_t knownCount;
    std::int32_t count;
  };
  constexpr Row kRows[] = {
      {3, 0, 3}, {3, 3, 3}, {8, 0, 8}, {-1, 0, 0}, {-1, 2, 2}, {9, 0, 0}, {9, 4, 4}, {2, 5, 5}, {3, 20, 8},
  };
  for (const Row& row : kRows) {
    CPerformanceList list;
    list.Init(8);
    Access::Next(list) += row.nextPlace;
    Access::Count(list) = row.knownCount;
    EXPECT_EQ(list.GetCount(), row.count) << row.nextPlace << ", " << row.knownCount;
    EXPECT_EQ(Access::Count(list), row.count);
  }
}

TEST_F(PerformanceList, KeepsTheFirstMarks) {
  struct Row {
    std::int32_t marks;
    std::vector<std::int64_t> kept;
  };
  const Row rows[] = {
      {100, {10, 20, 30, 40, 50}},
      {6, {10, 20, 30, 40, 50}},
      {5, {10, 20, 30, 40, 50}},
      {4, {10, 20, 30, 40}},
      {1, {10}},
      {0, {}},
      {-1, {}},
      {kSmallest, {}},
  };
  for (const Row& row : rows) {
    CPerformanceList list;
    Fill(list, {10, 20, 30, 40, 50});
    EXPECT_EQ(list.Keep(row.marks), static_cast<std::int32_t>(row.kept.size())) << row.marks;
    EXPECT_EQ(MarksOf(list), row.kept) << row.marks;
  }
}

TEST_F(PerformanceList, GoesOnBehindTheMarksThatWereKept) {
  CPerformanceList list;
  Fill(list, {10, 20, 30, 40, 50});
  list.Keep(2);
  EXPECT_EQ(Access::Marks(list)[2], 0);
  EXPECT_EQ(Access::Marks(list)[4], 0);
  system.Script({60});
  list.Mark();
  EXPECT_EQ(MarksOf(list), (std::vector<std::int64_t>{10, 20, 60}));
}

TEST_F(PerformanceList, KeepNeverMovesTheNextPlaceForward) {
  CPerformanceList list;
  Fill(list, {10, 20, 30, 40, 50});
  ASSERT_EQ(list.GetCount(), 5);
  Access::Next(list) = Access::Marks(list) + 1;
  EXPECT_EQ(list.Keep(3), 3);
  EXPECT_EQ(Access::Next(list), Access::Marks(list) + 1);
}

TEST_F(PerformanceList, KeepOfAListWithoutPlacesIsZero) {
  CPerformanceList list;
  EXPECT_EQ(list.Keep(0), 0);
  EXPECT_EQ(list.Keep(5), 0);
}

TEST_F(PerformanceList, ClearEmptiesTheWholeObject) {
  CPerformanceList list;
  Fill(list, {10, 20, 30});
  system.Script({70});
  list.SetMilliTimeout(1, -1);
  list.Clear();
  list.Clear();
  EXPECT_EQ(Access::Next(list), nullptr);
  EXPECT_EQ(Access::End(list), nullptr);
  EXPECT_EQ(Access::Capacity(list), 0);
  EXPECT_EQ(Access::Count(list), 0);
  EXPECT_EQ(Access::Marks(list), nullptr);
  EXPECT_EQ(Access::Timeout(list), 0);
  EXPECT_EQ(Access::Now(list), 0);
}

TEST_F(PerformanceList, ReallocGrowsByEightOrMoreAndNeverShrinks) {
  struct Row {
    std::int32_t present;
    std::int32_t marks;
    std::int32_t places;
  };
  constexpr Row kRows[] = {
      {0, kSmallest, 0}, {0, -1, 0}, {0, 0, 0},  {0, 1, 8},   {0, 8, 8},   {0, 9, 9},
      {8, -1, 8},        {8, 8, 8},  {8, 9, 16}, {8, 16, 16}, {8, 17, 17}, {20, 3, 20},
  };
  for (const Row& row : kRows) {
    CPerformanceList list;
    list.Init(row.present);
    list.Realloc(row.marks);
    EXPECT_EQ(Access::Capacity(list), row.places) << row.present << ", " << row.marks;
    EXPECT_EQ(Access::End(list) - Access::Marks(list), row.places) << row.present << ", " << row.marks;
  }
}

/// Leaves memory behind that is anything but zero, for the next allocation to get.
void SoilMemory() {
  constexpr std::size_t kBytes = 64'000;
  volatile unsigned char* bytes = static_cast<unsigned char*>(std::malloc(kBytes));
  ASSERT_NE(bytes, nullptr);
  for (std::size_t i = 0; i < kBytes; ++i)
    bytes[i] = 0xA5;
  std::free(const_cast<unsigned char*>(bytes));
}

TEST_F(PerformanceList, ReallocKeepsTheMarksAndGoesOnBehindThem) {
  SoilMemory();
  CPerformanceList list;
  Fill(list, {10, 20, 30, 40, 50, 60, 70, 80});
  list.Realloc(1000);
  for (int place = 8; place < 1000; ++place)
    ASSERT_EQ(Access::Marks(list)[place], 0) << place;
  system.Script({90});
  list.Mark();
  EXPECT_EQ(MarksOf(list), (std::vector<std::int64_t>{10, 20, 30, 40, 50, 60, 70, 80, 90}));
}

TEST_F(PerformanceList, ReallocPutsAnOddNextPlaceToTheStart) {
  struct Row {
    int nextPlace;
    int placeAfter;
  };
  constexpr Row kRows[] = {{-1, 0}, {0, 0}, {8, 8}, {16, 16}, {17, 0}};
  for (const Row& row : kRows) {
    CPerformanceList list;
    list.Init(8);
    Access::Next(list) += row.nextPlace;
    list.Realloc(16);
    EXPECT_EQ(Access::Next(list) - Access::Marks(list), row.placeAfter) << row.nextPlace;
  }
}

TEST_F(PerformanceList, ReallocLeavesTheListAsItWasWhenMemoryRunsOut) {
  CPerformanceList list;
  Fill(list, {10, 20, 30});
  std::int64_t* const marks = Access::Marks(list);
  {
    MemoryShortage shortage;
    list.Realloc(100);
  }
  EXPECT_EQ(Access::Capacity(list), 8);
  EXPECT_EQ(Access::Marks(list), marks);
  EXPECT_EQ(Access::Next(list), marks + 3);
  EXPECT_EQ(Access::End(list), marks + 8);
  EXPECT_EQ(MarksOf(list), (std::vector<std::int64_t>{10, 20, 30}));
}

TEST_F(PerformanceList, ReallocWithoutPlacesStaysWithoutThemWhenMemoryRunsOut) {
  CPerformanceList list;
  {
    MemoryShortage shortage;
    list.Realloc(100);
  }
  EXPECT_EQ(Access::Capacity(list), 0);
  EXPECT_EQ(Access::Marks(list), nullptr);
  EXPECT_EQ(Access::Next(list), Access::End(list));
}

TEST_F(PerformanceList, GrowthStopsAtTheLargestCountThatThereIs) {
  CPerformanceList list;
  list.Init(8);
  // Eight more places would be too many to count.
  Access::Capacity(list) = kLargest - 3;
  std::size_t bytes = 0;
  {
    MemoryShortage shortage;
    list.Realloc(kLargest);
    bytes = shortage.requestedBytes();
  }
  EXPECT_EQ(bytes, 17'179'869'176U);
  EXPECT_EQ(Access::Capacity(list), kLargest - 3);
}

TEST_F(PerformanceList, HasNoPlacesOnASystemWithoutACounter) {
  Access::SetCalibration(0, 0, 0);
  system.hasCounter = false;
  CPerformanceList list;
  EXPECT_EQ(list.Init(10), 0);
  EXPECT_EQ(list.Init(0), 0);
  list.Realloc(10);
  list.Mark();
  EXPECT_EQ(list.GetCount(), 0);
  EXPECT_EQ(list.Keep(1), 0);
  EXPECT_EQ(list.GetMark(0), 0);
  EXPECT_EQ(list.GetRawInterval(0, 0), 0U);
  EXPECT_EQ(Access::Marks(list), nullptr);
}

}  // namespace
