#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "ScriptedClockPlatform.h"
#include "timing/CPerformanceList.h"

/// The inside of the class: what is measured once for the process, and the fields of an object.
struct CPerformanceListTestAccess {
  static void StartOver() { SetCalibration(0, -1, 0); }
  static void SetCalibration(std::int64_t frequency, std::int64_t markOverhead, std::int64_t timeoutCheckOverhead) {
    CPerformanceList::frequency = frequency;
    CPerformanceList::halfFrequency = frequency / 2;
    CPerformanceList::markOverhead = markOverhead;
    CPerformanceList::timeoutCheckOverhead = timeoutCheckOverhead;
  }
  static std::int64_t Frequency() { return CPerformanceList::frequency; }
  static std::int64_t HalfFrequency() { return CPerformanceList::halfFrequency; }
  static std::int64_t MarkOverhead() { return CPerformanceList::markOverhead; }
  static std::int64_t TimeoutCheckOverhead() { return CPerformanceList::timeoutCheckOverhead; }

  static std::int64_t*& Next(CPerformanceList& list) { return list.next; }
  static std::int64_t*& End(CPerformanceList& list) { return list.end; }
  static std::int32_t& Capacity(CPerformanceList& list) { return list.capacity; }
  static std::int32_t& Count(CPerformanceList& list) { return list.count; }
  static std::int64_t* Marks(CPerformanceList& list) { return list.marks; }
  static std::int64_t& Timeout(CPerformanceList& list) { return list.timeout; }
  static std::int64_t& Now(CPerformanceList& list) { return list.now; }
};

/// A scripted counter, and a class that has calibrated to 1 MHz and marks and checks that cost nothing.
class PerformanceListFixture : public ::testing::Test {
 protected:
  using Access = CPerformanceListTestAccess;

  PerformanceListFixture() { Access::SetCalibration(1'000'000, 0, 0); }
  ~PerformanceListFixture() override { Access::StartOver(); }

  /// Gives the list just enough places (8 at least) and these marks.
  void Fill(CPerformanceList& list, const std::vector<std::int64_t>& marks) {
    list.Init(static_cast<std::int32_t>(marks.size() < 8 ? 8 : marks.size()));
    for (const std::int64_t mark : marks) {
      system.script.push_back(mark);
      list.Mark();
    }
  }

  static std::vector<std::int64_t> MarksOf(CPerformanceList& list) {
    std::vector<std::int64_t> marks(static_cast<std::size_t>(list.GetCount()));
    for (std::size_t i = 0; i < marks.size(); ++i)
      marks[i] = list.GetMark(static_cast<std::int32_t>(i));
    return marks;
  }

  ScriptedClockPlatform system;
  platform::ScopedPlatform scoped{system};
};
