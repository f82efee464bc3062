#pragma once

#include <cstdint>

#include "platform/Platform.h"

/// Marks an operation that other modules may call; all else of the program stays inside it.
#if defined(_WIN32)
#define PERFORMANCE_LIST_EXPORT __declspec(dllexport)
#else
#define PERFORMANCE_LIST_EXPORT __attribute__((visibility("default")))
#endif

/// A list of time stamps from the performance counter, and a deadline on the same counter.
///
/// `Mark` costs one counter read. Intervals between marks are asked for afterwards, with the cost of taking marks,
/// which the first object of the process measures, taken out ("raw") or left in ("uncalibrated").
///
///     CPerformanceList list;
///     list.Init(10);
///     list.Mark();
///     list.SetMilliTimeout(50, -1);
///     while (busy() && !list.TimedOut()) continue;
///     list.Mark();
///     std::uint32_t waitedMicroseconds = list.GetMicroInterval(0, 1);
///
/// Nothing here throws. Without a counter a list never has places and every interval is 0. One thread's object; the
/// first objects of a process must not be made by two threads at once.
///
/// Marks are numbered from 0 in the order in which they were taken. An index is invalid if it is negative or no mark
/// bears it. Intervals do not care which of their two indexes comes first. A 32-bit result of 0xFFFFFFFF means "too
/// large to tell".
class CPerformanceList {
 public:
  /// Makes a list without places. The first one of the process also calibrates: it reads the counter 74 times and is
  /// left with 11 places and no marks.
  PERFORMANCE_LIST_EXPORT CPerformanceList();
  PERFORMANCE_LIST_EXPORT ~CPerformanceList();
  CPerformanceList(const CPerformanceList&) = delete;
  CPerformanceList& operator=(const CPerformanceList&) = delete;

  /// Empties the list, the deadline included, and allocates places: 16 for `markCount` 1 to 3, 8 for 4 to 7, else
  /// `markCount` of them; none for 0 and below. Returns 1 if the list has no more places than were asked for, which
  /// includes having none because memory ran out, else 0. Returns 0 without a counter.
  PERFORMANCE_LIST_EXPORT std::int32_t Init(std::int32_t markCount);
  /// Frees the places and clears the deadline.
  PERFORMANCE_LIST_EXPORT void Clear();
  /// The number of marks taken.
  PERFORMANCE_LIST_EXPORT std::int32_t GetCount();
  /// Drops all marks but the first `markCount` (below 0 counts as 0) and returns how many are left. Places stay.
  PERFORMANCE_LIST_EXPORT std::int32_t Keep(std::int32_t markCount);
  /// Grows the list to at least `markCount` places, by 8 or more, and keeps its marks; never shrinks it. When memory
  /// runs out the list stays as it was. Does nothing without a counter.
  PERFORMANCE_LIST_EXPORT void Realloc(std::int32_t markCount);

  /// Takes a mark. A full list drops it.
  void Mark() {
    if (next < end) {
      platform::Current().clock().QueryPerformanceCounter(*next);
      ++next;
    }
  }
  /// The mark in ticks, or 0 for an invalid index.
  PERFORMANCE_LIST_EXPORT std::int64_t GetMark(std::int32_t index);

  /// Ticks between two marks as they were read. 0 if an index is invalid. A counter that ran backwards shows as a
  /// value of 2 to the power 63 or more.
  PERFORMANCE_LIST_EXPORT std::uint64_t GetUncalibratedInterval(std::int32_t first, std::int32_t second);
  /// The same without the cost of the marks; never below 0.
  PERFORMANCE_LIST_EXPORT std::uint64_t GetRawInterval(std::int32_t first, std::int32_t second);

  /// The two intervals above in nano-, micro- or milliseconds, rounded to the nearest. `Interval` has the cost of the
  /// marks taken out.
  PERFORMANCE_LIST_EXPORT std::uint32_t GetNanoUncalibrated(std::int32_t first, std::int32_t second);
  PERFORMANCE_LIST_EXPORT std::uint32_t GetNanoInterval(std::int32_t first, std::int32_t second);
  PERFORMANCE_LIST_EXPORT std::uint32_t GetMicroUncalibrated(std::int32_t first, std::int32_t second);
  PERFORMANCE_LIST_EXPORT std::uint32_t GetMicroInterval(std::int32_t first, std::int32_t second);
  PERFORMANCE_LIST_EXPORT std::uint32_t GetMilliUncalibrated(std::int32_t first, std::int32_t second);
  PERFORMANCE_LIST_EXPORT std::uint32_t GetMilliInterval(std::int32_t first, std::int32_t second);

  /// The difference of the two marks' intervals to mark 0, so that increments along a list add up. Where an interval to
  /// mark 0 is too large to tell, the plain interval between the two. 0 if an index is invalid.
  PERFORMANCE_LIST_EXPORT std::uint32_t GetNanoIncrement(std::int32_t first, std::int32_t second);
  PERFORMANCE_LIST_EXPORT std::uint32_t GetMicroIncrement(std::int32_t first, std::int32_t second);
  PERFORMANCE_LIST_EXPORT std::uint32_t GetMilliIncrement(std::int32_t first, std::int32_t second);

  /// Interval or increment as a text of at most 11 characters: micro- or milliseconds with three digits behind the
  /// point, padded with blanks to six before it, or "(>4.295sec)" and "(>4295 sec)" when too large to tell. The caller
  /// releases the text with `std::free`. Null when memory runs out.
  PERFORMANCE_LIST_EXPORT char* IntervalStringMicro3(std::int32_t first, std::int32_t second);
  PERFORMANCE_LIST_EXPORT char* IntervalStringMilli3(std::int32_t first, std::int32_t second);
  PERFORMANCE_LIST_EXPORT char* IncrementStringMicro3(std::int32_t first, std::int32_t second);
  PERFORMANCE_LIST_EXPORT char* IncrementStringMilli3(std::int32_t first, std::int32_t second);

  /// Sets the deadline to that long after a mark, or from now if there is no such mark; callers pass -1 for now. A
  /// deadline past the largest tick value is that value.
  PERFORMANCE_LIST_EXPORT void SetMilliTimeout(std::uint32_t milliseconds, std::int32_t mark);
  PERFORMANCE_LIST_EXPORT void SetMicroTimeout(std::uint32_t microseconds, std::int32_t mark);
  PERFORMANCE_LIST_EXPORT void SetNanoTimeout(std::uint32_t nanoseconds, std::int32_t mark);
  /// Reads the counter; true once it is beyond the deadline. Without a counter this is always false, so a loop must
  /// not have it as its only end there.
  bool TimedOut() {
    platform::Current().clock().QueryPerformanceCounter(now);
    return now > timeout;
  }
  /// Takes the cost of `checks` calls of `TimedOut`, made between `mark` and the mark after it, out of all marks that
  /// follow `mark`; none moves across `mark`. With `mark` -1 nothing moves. Returns 1, or 0 when `checks` is negative
  /// or there is no such mark.
  PERFORMANCE_LIST_EXPORT std::int32_t AdjustForTimeoutChecks(std::int32_t mark, std::int32_t checks);

 private:
  friend struct CPerformanceListTestAccess;  // Defined in the tests, to calibrate anew.

  using IntervalOperation = std::uint32_t (CPerformanceList::*)(std::int32_t first, std::int32_t second);

  void Calibrate();
  void CalibrateMarks();
  void CalibrateTimeoutChecks();
  std::int64_t TimeOneTimeoutCheck();
  bool IsValid(std::int32_t index);
  std::uint32_t Increment(std::int32_t first, std::int32_t second, IntervalOperation interval);
  void SetTimeout(std::uint32_t value, std::uint32_t unitsPerSecond, std::int32_t mark);

  std::int64_t* next = nullptr;
  std::int64_t* end = nullptr;
  std::int32_t capacity = 0;
  std::int32_t count = 0;
  std::int64_t* marks = nullptr;
  std::int64_t timeout = 0;
  std::int64_t now = 0;

  // Ticks; measured once for the process. A negative mark overhead says that this is still to be done.
  static std::int64_t frequency;
  static std::int64_t halfFrequency;
  static std::int64_t markOverhead;
  static std::int64_t timeoutCheckOverhead;
};
