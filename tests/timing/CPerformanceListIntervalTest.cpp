#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include "MemoryShortage.h"
#include "PerformanceListFixture.h"
#include "timing/CPerformanceList.h"

namespace {

constexpr std::int32_t kLargest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();
constexpr std::uint32_t kTooLarge = 0xFFFFFFFF;

class PerformanceListInterval : public PerformanceListFixture {};

using IntervalOperation = std::uint32_t (CPerformanceList::*)(std::int32_t first, std::int32_t second);
using TextOperation = char* (CPerformanceList::*)(std::int32_t first, std::int32_t second);

struct Conversions {
  IntervalOperation uncalibrated;
  IntervalOperation calibrated;
  IntervalOperation increment;
};
constexpr Conversions kNano = {&CPerformanceList::GetNanoUncalibrated, &CPerformanceList::GetNanoInterval,
                               &CPerformanceList::GetNanoIncrement};
constexpr Conversions kMicro = {&CPerformanceList::GetMicroUncalibrated, &CPerformanceList::GetMicroInterval,
                                &CPerformanceList::GetMicroIncrement};
constexpr Conversions kMilli = {&CPerformanceList::GetMilliUncalibrated, &CPerformanceList::GetMilliInterval,
                                &CPerformanceList::GetMilliIncrement};

std::string TextOf(CPerformanceList& list, TextOperation operation, std::int32_t first, std::int32_t second) {
  char* text = (list.*operation)(first, second);
  if (text == nullptr) return "(null)";
  std::string copy = text;
  std::free(text);
  return copy;
}

TEST_F(PerformanceListInterval, IsTheLaterMarkMinusTheEarlierOneInEitherOrder) {
  CPerformanceList list;
  Fill(list, {100, 250, 300, 1000});
  EXPECT_EQ(list.GetUncalibratedInterval(1, 3), 750U);
  EXPECT_EQ(list.GetUncalibratedInterval(3, 1), 750U);
  EXPECT_EQ(list.GetUncalibratedInterval(0, 3), 900U);
  EXPECT_EQ(list.GetUncalibratedInterval(2, 2), 0U);
  EXPECT_EQ(list.GetRawInterval(3, 1), 750U);
}

TEST_F(PerformanceListInterval, IsNothingForAnInvalidIndex) {
  CPerformanceList list;
  Fill(list, {100, 250, 300});
  for (const std::int32_t index : {kSmallest, -1, 3, 8, kLargest}) {
    EXPECT_EQ(list.GetUncalibratedInterval(index, 1), 0U) << index;
    EXPECT_EQ(list.GetUncalibratedInterval(1, index), 0U) << index;
    EXPECT_EQ(list.GetRawInterval(index, 1), 0U) << index;
    EXPECT_EQ(list.GetRawInterval(1, index), 0U) << index;
    for (const Conversions& unit : {kNano, kMicro, kMilli}) {
      for (const IntervalOperation get : {unit.uncalibrated, unit.calibrated, unit.increment}) {
        EXPECT_EQ((list.*get)(index, 1), 0U) << index;
        EXPECT_EQ((list.*get)(1, index), 0U) << index;
      }
    }
  }
}

TEST_F(PerformanceListInterval, LosesTheCostOfOneMarkForEachPlaceOfDistance) {
  Access::SetCalibration(1'000'000, 10, 0);
  CPerformanceList list;
  Fill(list, {0, 10, 25, 26, 100, 95});
  EXPECT_EQ(list.GetRawInterval(0, 1), 0U);  // Just the calibrated time.
  EXPECT_EQ(list.GetRawInterval(1, 2), 5U);
  EXPECT_EQ(list.GetRawInterval(2, 3), 0U);  // Less than the calibrated time.
  EXPECT_EQ(list.GetRawInterval(4, 0), 60U);
  EXPECT_EQ(list.GetUncalibratedInterval(4, 0), 100U);
  EXPECT_EQ(list.GetRawInterval(2, 2), 0U);
}

TEST_F(PerformanceListInterval, OfACounterThatRanBackwardsIsNothingOnceCalibrated) {
  CPerformanceList list;
  Fill(list, {100, 95});
  EXPECT_EQ(list.GetUncalibratedInterval(0, 1), 0xFFFFFFFFFFFFFFFBU);
  EXPECT_EQ(list.GetRawInterval(0, 1), 0U);
  EXPECT_EQ(list.GetMicroUncalibrated(0, 1), kTooLarge);
  EXPECT_EQ(list.GetMicroInterval(0, 1), 0U);
}

TEST_F(PerformanceListInterval, BearsTheLargestTicksAndCosts) {
  constexpr std::int64_t kLastTick = std::numeric_limits<std::int64_t>::max();
  constexpr std::int64_t kFirstTick = std::numeric_limits<std::int64_t>::min();
  CPerformanceList list;
  Fill(list, {0, 5, 6, 7, kLastTick, kFirstTick});
  EXPECT_EQ(list.GetRawInterval(0, 4), 0x7FFFFFFFFFFFFFFFU);
  EXPECT_EQ(list.GetUncalibratedInterval(4, 5), 1U);
  EXPECT_EQ(list.GetMilliInterval(0, 4), kTooLarge);
  // Four such marks cost 2 to the power 64 ticks.
  Access::SetCalibration(1'000'000, 0x4000000000000000, 0);
  EXPECT_EQ(list.GetRawInterval(0, 4), 0U);
}

TEST_F(PerformanceListInterval, ConvertsWithRoundingUpToTheLimitOfTheUnit) {
  struct Row {
    const Conversions& unit;
    std::int64_t frequency;
    std::int64_t ticks;
    std::uint32_t value;
  };
  const Row rows[] = {
      {kNano, 10'000'000, 0, 0},
      {kNano, 10'000'000, 1, 100},
      {kNano, 10'000'000, 42'949'672, 4'294'967'200},
      {kNano, 10'000'000, 42'949'673, kTooLarge},
      {kNano, 1'000'000'000, 4'294'967'294, 4'294'967'294},
      {kNano, 1'000'000'000, 4'294'967'295, kTooLarge},
      {kNano, 3, 1, 333'333'333},  // 333,333,333.3
      {kNano, 3, 2, 666'666'667},  // 666,666,666.7
      {kNano, 10'000'000'000, 0x44B82FA08, 1'844'674'407},
      {kNano, 10'000'000'000, 0x44B82FA09, kTooLarge},
      {kNano, 10'000'000'000, 0x44B82FA0A, kTooLarge},

      {kMicro, 10'000'000, 4, 0},
      {kMicro, 10'000'000, 5, 1},  // Half a microsecond goes up.
      {kMicro, 10'000'000, 14, 1},
      {kMicro, 10'000'000, 15, 2},
      {kMicro, 10'000'000, 42'949'672'944, 4'294'967'294},
      {kMicro, 10'000'000, 42'949'672'945, kTooLarge},
      {kMicro, 10'000'000'000, 0x10C6F7A0B5EC, 1'844'674'407},
      {kMicro, 10'000'000'000, 0x10C6F7A0B5ED, kTooLarge},
      {kMicro, 10'000'000'000, 0x10C6F7A0B5EE, kTooLarge},

      {kMilli, 10'000'000, 4'999, 0},
      {kMilli, 10'000'000, 5'000, 1},
      {kMilli, 2'001, 1, 0},  // 0.49975
      {kMilli, 2'000, 1, 1},
      {kMilli, 1, 4'294'967, 4'294'967'000},
      {kMilli, 1, 4'294'968, kTooLarge},
      // With the half of the frequency this passes 64 bits.
      {kMilli, 10'000'000'000, 0x4189374BC6A7EE, 1'844'674'407},
      {kMilli, 10'000'000'000, 0x4189374BC6A7EF, kTooLarge},
      {kMilli, 10'000'000'000, 0x4189374BC6A7F0, kTooLarge},
  };
  for (const Row& row : rows) {
    Access::SetCalibration(row.frequency, 0, 0);
    CPerformanceList list;
    Fill(list, {77, 77 + row.ticks});
    EXPECT_EQ((list.*row.unit.uncalibrated)(0, 1), row.value) << row.ticks << " at " << row.frequency;
    EXPECT_EQ((list.*row.unit.calibrated)(1, 0), row.value) << row.ticks << " at " << row.frequency;
  }
}

TEST_F(PerformanceListInterval, HasTheCostOfMarksInOrOutAsAsked) {
  Access::SetCalibration(1'000'000, 2'000, 0);
  CPerformanceList list;
  Fill(list, {0, 10'000});
  EXPECT_EQ(list.GetNanoUncalibrated(0, 1), 10'000'000U);
  EXPECT_EQ(list.GetNanoInterval(0, 1), 8'000'000U);
  EXPECT_EQ(list.GetMicroUncalibrated(0, 1), 10'000U);
  EXPECT_EQ(list.GetMicroInterval(0, 1), 8'000U);
  EXPECT_EQ(list.GetMilliUncalibrated(0, 1), 10U);
  EXPECT_EQ(list.GetMilliInterval(0, 1), 8U);
}

TEST_F(PerformanceListInterval, IncrementIsTheDifferenceOfTheIntervalsToTheFirstMark) {
  Access::SetCalibration(1'000'000, 1'000, 0);
  CPerformanceList list;
  // Mark 1 came sooner than a mark costs, so its interval to mark 0 is nothing; that of mark 2 is 28,000 ticks. The
  // plain interval between the two would be 28,500.
  Fill(list, {0, 500, 30'000});
  EXPECT_EQ(list.GetNanoIncrement(1, 2), 28'000'000U);
  EXPECT_EQ(list.GetNanoIncrement(2, 1), 28'000'000U);
  EXPECT_EQ(list.GetMicroIncrement(1, 2), 28'000U);
  EXPECT_EQ(list.GetMicroIncrement(2, 1), 28'000U);
  EXPECT_EQ(list.GetMilliIncrement(1, 2), 28U);
  EXPECT_EQ(list.GetMilliIncrement(2, 1), 28U);
  EXPECT_EQ(list.GetMicroInterval(1, 2), 28'500U);
  EXPECT_EQ(list.GetMicroIncrement(0, 2), 28'000U);
  EXPECT_EQ(list.GetMicroIncrement(1, 1), 0U);
}

TEST_F(PerformanceListInterval, IncrementIsThePlainIntervalWhereTheFirstMarkIsTooFar) {
  struct Row {
    IntervalOperation increment;
    std::vector<std::int64_t> marks;
    std::uint32_t value;
  };
  // At 1 MHz nanoseconds end at 4.29 s, microseconds at 4294.97 s and milliseconds at 4294967.3 s. A mark costs 1000
  // ticks. The marks: both too far; the one within and the other too far; the two too far from each other as well.
  const Row rows[] = {
      {kNano.increment, {0, 5'000'000, 5'003'000}, 2'000'000},
      {kNano.increment, {0, 4'000'000, 5'000'000}, 999'000'000},
      {kNano.increment, {0, 1, 9'000'000}, kTooLarge},
      {kMicro.increment, {0, 5'000'000'000, 5'000'003'000}, 2'000},
      {kMicro.increment, {0, 4'000'000'000, 5'000'000'000}, 999'999'000},
      {kMicro.increment, {0, 1, 9'000'000'000}, kTooLarge},
      {kMilli.increment, {0, 5'000'000'000'000, 5'000'000'003'000}, 2},
      {kMilli.increment, {0, 4'000'000'000'000, 5'000'000'000'000}, 999'999'999},
      {kMilli.increment, {0, 1, 9'000'000'000'000}, kTooLarge},
  };
  Access::SetCalibration(1'000'000, 1'000, 0);
  for (const Row& row : rows) {
    CPerformanceList list;
    Fill(list, row.marks);
    EXPECT_EQ((list.*row.increment)(1, 2), row.value) << row.marks[1];
    EXPECT_EQ((list.*row.increment)(2, 1), row.value) << row.marks[1];
  }
}

TEST_F(PerformanceListInterval, TextHasThreeDigitsBehindThePointAndFitsTwelveBytes) {
  struct Row {
    std::int64_t frequency;
    std::int64_t ticks;
    const char* micro3;
    const char* milli3;
  };
  constexpr Row kRows[] = {
      {1'000'000, 0, "     0.000", "     0.000"},
      {1'000'000, 1, "     1.000", "     0.001"},
      {1'000'000, 123'456, "123456.000", "   123.456"},
      {1'000'000, 5'000'000, "(>4.295sec)", "  5000.000"},
      {1'000'000, 4'294'967'294, "(>4.295sec)", "4294967.294"},
      {1'000'000, 4'294'967'295, "(>4.295sec)", "(>4295 sec)"},
      {1'000'000'000, 7, "     0.007", "     0.000"},
      {1'000'000'000, 1'050, "     1.050", "     0.001"},
      {1'000'000'000, 4'294'967'294, "4294967.294", "  4294.967"},
      {1'000'000'000, 4'294'967'295, "(>4.295sec)", "  4294.967"},
  };
  for (const Row& row : kRows) {
    Access::SetCalibration(row.frequency, 0, 0);
    CPerformanceList list;
    Fill(list, {50, 50 + row.ticks});
    EXPECT_EQ(TextOf(list, &CPerformanceList::IntervalStringMicro3, 0, 1), row.micro3) << row.ticks;
    EXPECT_EQ(TextOf(list, &CPerformanceList::IntervalStringMilli3, 0, 1), row.milli3) << row.ticks;
    EXPECT_EQ(TextOf(list, &CPerformanceList::IncrementStringMicro3, 0, 1), row.micro3) << row.ticks;
    EXPECT_EQ(TextOf(list, &CPerformanceList::IncrementStringMilli3, 0, 1), row.milli3) << row.ticks;
  }
}

TEST_F(PerformanceListInterval, TextsShowTheIntervalOrTheIncrementWithoutTheCostOfMarks) {
  Access::SetCalibration(1'000'000, 1'000, 0);
  CPerformanceList list;
  Fill(list, {0, 500, 30'000});
  EXPECT_EQ(TextOf(list, &CPerformanceList::IntervalStringMicro3, 1, 2), " 28500.000");
  EXPECT_EQ(TextOf(list, &CPerformanceList::IntervalStringMilli3, 1, 2), "    28.500");
  EXPECT_EQ(TextOf(list, &CPerformanceList::IncrementStringMicro3, 1, 2), " 28000.000");
  EXPECT_EQ(TextOf(list, &CPerformanceList::IncrementStringMilli3, 1, 2), "    28.000");
}

TEST_F(PerformanceListInterval, TextOfAnInvalidIndexIsZero) {
  CPerformanceList list;
  Fill(list, {50, 60});
  EXPECT_EQ(TextOf(list, &CPerformanceList::IntervalStringMicro3, 0, 2), "     0.000");
  EXPECT_EQ(TextOf(list, &CPerformanceList::IntervalStringMilli3, -1, 0), "     0.000");
  EXPECT_EQ(TextOf(list, &CPerformanceList::IncrementStringMicro3, 1, 2), "     0.000");
  EXPECT_EQ(TextOf(list, &CPerformanceList::IncrementStringMilli3, -1, 1), "     0.000");
}

TEST_F(PerformanceListInterval, TextIsNullWhenMemoryRunsOut) {
  CPerformanceList list;
  Fill(list, {50, 60});
  for (const TextOperation operation :
       {&CPerformanceList::IntervalStringMicro3, &CPerformanceList::IntervalStringMilli3,
        &CPerformanceList::IncrementStringMicro3, &CPerformanceList::IncrementStringMilli3}) {
    const char* text = nullptr;
    std::size_t bytes = 0;
    {
      MemoryShortage shortage;
      text = (list.*operation)(0, 1);
      bytes = shortage.requestedBytes();
    }
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(bytes, 12U);
  }
}

}  // namespace
