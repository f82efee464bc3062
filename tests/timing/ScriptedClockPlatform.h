#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <deque>
#include <initializer_list>
#include <stdexcept>

#include "platform/Platform.h"

/// A platform that is nothing but a performance counter. The counter gives the values of its script, then advances by
/// `stepTicks` a read. Every other door fails the test.
///
///     ScriptedClockPlatform system;
///     platform::ScopedPlatform scoped(system);
///     system.Script({100, 250});
class ScriptedClockPlatform final : public platform::Platform, private platform::Clock {
 public:
  std::int64_t ticksPerSecond = 1'000'000;
  bool hasCounter = true;
  std::int64_t ticks = 0;
  std::int64_t stepTicks = 0;
  std::deque<std::int64_t> script;
  int counterReads = 0;
  int frequencyReads = 0;

  void Script(std::initializer_list<std::int64_t> values) { script.insert(script.end(), values); }

  platform::Clock& clock() override { return *this; }
  platform::Devices& devices() override { return Absent<platform::Devices>(); }
  platform::FrontEnd& frontEnd() override { return Absent<platform::FrontEnd>(); }
  platform::TextBlocks& textBlocks() override { return Absent<platform::TextBlocks>(); }
  platform::Files& files() override { return Absent<platform::Files>(); }

 private:
  bool QueryPerformanceCounter(std::int64_t& value) override {
    if (!hasCounter) return false;
    ++counterReads;
    if (script.empty()) {
      ticks += stepTicks;
    } else {
      ticks = script.front();
      script.pop_front();
    }
    value = ticks;
    return true;
  }

  bool QueryPerformanceFrequency(std::int64_t& value) override {
    ++frequencyReads;
    if (!hasCounter) return false;
    value = ticksPerSecond;
    return true;
  }

  std::uint32_t GetTickCount() override { return Unexpected(); }
  void Sleep(std::uint32_t) override { Unexpected(); }
  std::uint32_t timeBeginPeriod(std::uint32_t) override { return Unexpected(); }
  std::uint32_t timeEndPeriod(std::uint32_t) override { return Unexpected(); }
  std::uint32_t timeGetTime() override { return Unexpected(); }
  std::int64_t PresentTime() override { return Unexpected(); }

  static std::uint32_t Unexpected() {
    ADD_FAILURE() << "the timing class may only use the performance counter";
    return 0;
  }

  template <typename Door>
  static Door& Absent() {
    throw std::logic_error("the timing class may only use the clock");
  }
};
