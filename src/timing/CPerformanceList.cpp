#include "timing/CPerformanceList.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace {

// Products of ticks and scales fit whatever the counter's frequency.
__extension__ typedef unsigned __int128 Wide;

constexpr std::uint32_t kTooLarge = 0xFFFFFFFF;
constexpr std::int32_t kMarksOfACalibration = 11;
constexpr std::int32_t kRoundsOfACalibration = 20;
constexpr std::int32_t kSmallestGrowth = 8;
constexpr std::int32_t kLeastMarks = 4;
constexpr std::int32_t kPlacesForFewMarks = 16;
constexpr std::size_t kTextBytes = 12;

static_assert(sizeof(std::size_t) >= 8, "the size in bytes of the longest list has to fit");

struct Unit {
  std::uint64_t perSecond;
  std::uint64_t limitTicks;  // 2 to the power 64 divided by `perSecond`.
};
constexpr Unit kNano{1'000'000'000, 0x44B82FA09};
constexpr Unit kMicro{1'000'000, 0x10C6F7A0B5ED};
constexpr Unit kMilli{1'000, 0x4189374BC6A7EF};

std::uint32_t Convert(std::uint64_t ticks, const Unit& unit, std::int64_t frequency, std::int64_t halfFrequency) {
  if (ticks == 0) return 0;
  if (ticks >= unit.limitTicks) return kTooLarge;
  const Wide product = Wide{ticks} * unit.perSecond + static_cast<std::uint64_t>(halfFrequency);
  const Wide quotient = product / static_cast<std::uint64_t>(frequency);
  return quotient >= kTooLarge ? kTooLarge : static_cast<std::uint32_t>(quotient);
}

char* MakeText(std::uint32_t value, const char* overRangeText) {
  char* text = static_cast<char*>(std::malloc(kTextBytes));
  if (text == nullptr) return nullptr;
  if (value == kTooLarge) {
    std::snprintf(text, kTextBytes, "%s", overRangeText);
  } else {
    std::snprintf(text, kTextBytes, "%6d.%3.3d", static_cast<int>(value / 1000), static_cast<int>(value % 1000));
  }
  return text;
}

// Ticks wrap as the counter's 64 bits do.
std::int64_t Add(std::int64_t to, std::uint64_t ticks) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(to) + ticks);
}

std::int64_t Subtract(std::int64_t from, std::uint64_t ticks) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(from) - ticks);
}

}  // namespace

std::int64_t CPerformanceList::frequency = 0;
std::int64_t CPerformanceList::halfFrequency = 0;
std::int64_t CPerformanceList::markOverhead = -1;
std::int64_t CPerformanceList::timeoutCheckOverhead = 0;

CPerformanceList::CPerformanceList() {
  if (markOverhead < 0) Calibrate();
}

CPerformanceList::~CPerformanceList() {
  Clear();
}

void CPerformanceList::Calibrate() {
  platform::Current().clock().QueryPerformanceFrequency(frequency);
  halfFrequency = frequency / 2;
  if (frequency <= 0) {
    markOverhead = 0;
    frequency = 0;
    halfFrequency = 0;
    return;
  }
  CalibrateMarks();
  CalibrateTimeoutChecks();
}

void CPerformanceList::CalibrateMarks() {
  Init(kMarksOfACalibration);
  Keep(0);
  for (std::int32_t i = 0; i < kMarksOfACalibration; ++i)
    Mark();

  std::int64_t best = -frequency;
  for (std::int32_t i = 0; i + 1 < kMarksOfACalibration; ++i) {
    const auto gap = static_cast<std::int64_t>(GetUncalibratedInterval(i, i + 1));
    if (gap > 0 && (best <= 0 || gap < best)) best = gap;
  }
  markOverhead = std::max(best, std::int64_t{0});
}

void CPerformanceList::CalibrateTimeoutChecks() {
  std::int64_t best = TimeOneTimeoutCheck();
  // On a counter below 1 MHz this is 0, and stays so.
  if (best <= 0) best = frequency / 1'000'000;
  for (std::int32_t i = 0; i < kRoundsOfACalibration; ++i) {
    const std::int64_t ticks = TimeOneTimeoutCheck();
    if (ticks > 0 && ticks < best) best = ticks;
  }
  timeoutCheckOverhead = best;
  Keep(0);
}

std::int64_t CPerformanceList::TimeOneTimeoutCheck() {
  Keep(0);
  Mark();
  TimedOut();
  Mark();
  return static_cast<std::int64_t>(GetRawInterval(1, 0));
}

std::int32_t CPerformanceList::Init(std::int32_t markCount) {
  Clear();
  if (frequency == 0) return 0;
  if (markCount < 1) return 1;
  Realloc(markCount < kLeastMarks ? kPlacesForFewMarks : markCount);
  return markCount >= capacity ? 1 : 0;
}

void CPerformanceList::Clear() {
  std::free(marks);
  next = nullptr;
  end = nullptr;
  capacity = 0;
  count = 0;
  marks = nullptr;
  timeout = 0;
  now = 0;
}

std::int32_t CPerformanceList::GetCount() {
  std::ptrdiff_t taken = 0;
  if (frequency != 0 && marks != nullptr) {
    taken = next - marks;
    if (taken < 0 || taken > capacity) taken = 0;
    taken = std::min<std::ptrdiff_t>(std::max<std::ptrdiff_t>(taken, count), capacity);
  }
  count = static_cast<std::int32_t>(taken);
  return count;
}

std::int32_t CPerformanceList::Keep(std::int32_t markCount) {
  markCount = std::max(markCount, std::int32_t{0});
  GetCount();
  if (markCount < count) {
    next = std::min(next, marks + markCount);
    std::fill(marks + markCount, marks + count, 0);
    count = markCount;
  }
  return count;
}

void CPerformanceList::Realloc(std::int32_t markCount) {
  if (frequency <= 0) return;
  const std::int32_t present = capacity < 0 || marks == nullptr ? 0 : capacity;
  if (markCount <= present) return;

  const std::int64_t grow = std::max<std::int64_t>(std::int64_t{markCount} - present, kSmallestGrowth);
  const std::int64_t places = std::min<std::int64_t>(present + grow, std::numeric_limits<std::int32_t>::max());
  if (marks == nullptr) {
    marks = static_cast<std::int64_t*>(std::calloc(static_cast<std::size_t>(places), sizeof(*marks)));
    next = marks;
    capacity = marks == nullptr ? 0 : static_cast<std::int32_t>(places);
    end = marks + capacity;
    return;
  }

  const std::ptrdiff_t taken = next - marks;
  void* resized = std::realloc(marks, static_cast<std::size_t>(places) * sizeof(*marks));
  if (resized == nullptr) return;
  capacity = static_cast<std::int32_t>(places);
  marks = static_cast<std::int64_t*>(resized);
  next = marks + (taken < 0 || taken > capacity ? 0 : taken);
  end = marks + capacity;
  std::fill(marks + present, end, 0);
}

bool CPerformanceList::IsValid(std::int32_t index) {
  if (index < 0) return false;
  if (index < count) return true;
  return index < capacity && index < GetCount();
}

std::int64_t CPerformanceList::GetMark(std::int32_t index) {
  return IsValid(index) ? marks[index] : 0;
}

std::uint64_t CPerformanceList::GetUncalibratedInterval(std::int32_t first, std::int32_t second) {
  if (!IsValid(first) || !IsValid(second)) return 0;
  const auto [earlier, later] = std::minmax(first, second);
  return static_cast<std::uint64_t>(marks[later]) - static_cast<std::uint64_t>(marks[earlier]);
}

std::uint64_t CPerformanceList::GetRawInterval(std::int32_t first, std::int32_t second) {
  const std::uint64_t interval = GetUncalibratedInterval(first, second);
  // Also so for a counter that ran backwards.
  if (static_cast<std::int64_t>(interval) <= 0) return 0;
  const auto distance = static_cast<std::uint32_t>(std::max(first, second) - std::min(first, second));
  const Wide overhead = Wide{static_cast<std::uint64_t>(markOverhead)} * distance;
  return overhead >= interval ? 0 : interval - static_cast<std::uint64_t>(overhead);
}

std::uint32_t CPerformanceList::GetNanoUncalibrated(std::int32_t first, std::int32_t second) {
  return Convert(GetUncalibratedInterval(first, second), kNano, frequency, halfFrequency);
}

std::uint32_t CPerformanceList::GetNanoInterval(std::int32_t first, std::int32_t second) {
  return Convert(GetRawInterval(first, second), kNano, frequency, halfFrequency);
}

std::uint32_t CPerformanceList::GetMicroUncalibrated(std::int32_t first, std::int32_t second) {
  return Convert(GetUncalibratedInterval(first, second), kMicro, frequency, halfFrequency);
}

std::uint32_t CPerformanceList::GetMicroInterval(std::int32_t first, std::int32_t second) {
  return Convert(GetRawInterval(first, second), kMicro, frequency, halfFrequency);
}

std::uint32_t CPerformanceList::GetMilliUncalibrated(std::int32_t first, std::int32_t second) {
  return Convert(GetUncalibratedInterval(first, second), kMilli, frequency, halfFrequency);
}

std::uint32_t CPerformanceList::GetMilliInterval(std::int32_t first, std::int32_t second) {
  return Convert(GetRawInterval(first, second), kMilli, frequency, halfFrequency);
}

std::uint32_t CPerformanceList::Increment(std::int32_t first, std::int32_t second, IntervalOperation interval) {
  if (!IsValid(first) || !IsValid(second)) return 0;
  const std::uint32_t a = (this->*interval)(first, 0);
  if (a == kTooLarge) return (this->*interval)(first, second);
  const std::uint32_t b = (this->*interval)(second, 0);
  if (b == kTooLarge) return (this->*interval)(first, second);
  return a > b ? a - b : b - a;
}

std::uint32_t CPerformanceList::GetNanoIncrement(std::int32_t first, std::int32_t second) {
  return Increment(first, second, &CPerformanceList::GetNanoInterval);
}

std::uint32_t CPerformanceList::GetMicroIncrement(std::int32_t first, std::int32_t second) {
  return Increment(first, second, &CPerformanceList::GetMicroInterval);
}

std::uint32_t CPerformanceList::GetMilliIncrement(std::int32_t first, std::int32_t second) {
  return Increment(first, second, &CPerformanceList::GetMilliInterval);
}

// The three digits behind the point are what the next smaller unit counts.

char* CPerformanceList::IntervalStringMicro3(std::int32_t first, std::int32_t second) {
  return MakeText(GetNanoInterval(first, second), "(>4.295sec)");
}

char* CPerformanceList::IntervalStringMilli3(std::int32_t first, std::int32_t second) {
  return MakeText(GetMicroInterval(first, second), "(>4295 sec)");
}

char* CPerformanceList::IncrementStringMicro3(std::int32_t first, std::int32_t second) {
  return MakeText(GetNanoIncrement(first, second), "(>4.295sec)");
}

char* CPerformanceList::IncrementStringMilli3(std::int32_t first, std::int32_t second) {
  return MakeText(GetMicroIncrement(first, second), "(>4295 sec)");
}

void CPerformanceList::SetTimeout(std::uint32_t value, std::uint32_t unitsPerSecond, std::int32_t mark) {
  if (mark >= 0 && mark < GetCount()) {
    timeout = marks[mark];
  } else {
    platform::Current().clock().QueryPerformanceCounter(now);
    timeout = now;
  }
  const Wide ticks = (Wide{value} * static_cast<std::uint64_t>(frequency) + unitsPerSecond / 2) / unitsPerSecond;
  constexpr std::int64_t kLastTick = std::numeric_limits<std::int64_t>::max();
  const std::uint64_t room = static_cast<std::uint64_t>(kLastTick) - static_cast<std::uint64_t>(timeout);
  timeout = ticks > room ? kLastTick : Add(timeout, static_cast<std::uint64_t>(ticks));
}

void CPerformanceList::SetMilliTimeout(std::uint32_t milliseconds, std::int32_t mark) {
  SetTimeout(milliseconds, 1'000, mark);
}

void CPerformanceList::SetMicroTimeout(std::uint32_t microseconds, std::int32_t mark) {
  SetTimeout(microseconds, 1'000'000, mark);
}

void CPerformanceList::SetNanoTimeout(std::uint32_t nanoseconds, std::int32_t mark) {
  SetTimeout(nanoseconds, 1'000'000'000, mark);
}

std::int32_t CPerformanceList::AdjustForTimeoutChecks(std::int32_t mark, std::int32_t checks) {
  GetCount();
  if (checks < 0) return 0;
  if (checks == 0) return 1;
  if (mark < -1 || mark >= count) return 0;
  if (mark + 1 >= count) return 1;
  const Wide cost = Wide{static_cast<std::uint64_t>(timeoutCheckOverhead)} * static_cast<std::uint32_t>(checks);
  // No mark moves across the one before it. Before mark 0 there is no interval, so from -1 nothing moves at all.
  const std::uint64_t gap = GetRawInterval(mark, mark + 1);
  const std::uint64_t total = cost >= gap ? gap : static_cast<std::uint64_t>(cost);
  for (std::int32_t i = mark + 1; i < count; ++i)
    marks[i] = Subtract(marks[i], total);
  return 1;
}
