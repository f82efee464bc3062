#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "board/JtagPort.h"
#include "support/VmeTrace.h"

namespace {

using test_support::PowerCut;
using test_support::SameTrace;
using test_support::Times;
using test_support::Trace;

class JtagPortTest : public testing::Test {
 protected:
  JtagPortTest() { port.Connect(recorder.Window()); }

  /// The shortest way to a state that the table has from reset, not traced.
  void GoTo(std::uint8_t state) {
    switch (state) {
      case kTapIdle:
      case kTapIrPause:
      case kTapDrPause:
        ASSERT_TRUE(port.MoveTap(state));
        break;
      case kTapShiftIr:
        ASSERT_TRUE(port.MoveTap(kTapIrPause));
        ASSERT_TRUE(port.MoveTap(kTapShiftIr));
        break;
      case kTapShiftDr:
        ASSERT_TRUE(port.MoveTap(kTapDrPause));
        ASSERT_TRUE(port.MoveTap(kTapShiftDr));
        break;
      default:
        break;
    }
    ASSERT_EQ(port.tapState(), state);
    recorder.Clear();
  }

  /// A trace of stores from a row of bytes.
  static std::string Stores(const std::string& bytes) {
    std::string trace;
    for (std::size_t at = 0; at < bytes.size(); at += 3)
      trace += "W " + bytes.substr(at, 2) + "\n";
    return trace;
  }

  test_support::TraceRecorder recorder;
  JtagPort port;
};

TEST_F(JtagPortTest, StartsInResetWithAllPinsLow) {
  EXPECT_EQ(port.pinShadow(), 0);
  EXPECT_EQ(port.tapState(), kTapReset);
  EXPECT_EQ(recorder.text(), "");
}

TEST_F(JtagPortTest, DrivesThePinsOfAMaskAndKeepsTheOthers) {
  port.SetPin(0x08, true);
  port.SetPin(0x04, true);
  port.SetPin(0x02, true);
  port.SetPin(0x01, true);
  port.SetPin(0x04, true);
  port.SetPin(0x08, false);
  port.SetPin(0x03, false);
  port.SetPin(0x04, false);
  port.SetPin(0x04, false);
  EXPECT_EQ(recorder.text(), "W 08\nW 0c\nW 0e\nW 0f\nW 0f\nW 07\nW 04\nW 00\nW 00\n");
  EXPECT_EQ(port.pinShadow(), 0);
}

TEST_F(JtagPortTest, ReadsTdoFromBitFourAlone) {
  recorder.AnswerTdo("0100111010001011");
  std::string bits;
  for (int i = 0; i < 16; ++i)
    bits += std::to_string(port.ReadTdoPin());
  EXPECT_EQ(bits, "0100111010001011");
  EXPECT_EQ(port.pinShadow(), 0) << "what was read is not driven";
}

TEST_F(JtagPortTest, PulsesOnceHighAndTwiceLowAtFirst) {
  port.PulseClock();
  EXPECT_EQ(recorder.text(), "W 01\nW 00\nW 00\n");
}

TEST_F(JtagPortTest, PulsesWithTheOtherPinsAsTheyAre) {
  port.SetPin(0x0E, true);
  port.PulseClock();
  EXPECT_EQ(recorder.text(), "W 0e\nW 0f\nW 0e\nW 0e\n");
}

TEST_F(JtagPortTest, PulsesThriceHighAndSixTimesLowAtFrequency999) {
  ASSERT_TRUE(port.SetFrequency(999));
  port.PulseClock();
  EXPECT_EQ(recorder.text(), "W 01\nW 01\nW 01\nW 00\nW 00\nW 00\nW 00\nW 00\nW 00\n");
}

TEST_F(JtagPortTest, StretchesPulsesBelowFrequency1000) {
  struct {
    std::uint16_t frequency;
    std::size_t high;
  } constexpr kCases[] = {{1000, 1}, {1001, 1}, {65535, 1}, {501, 3}, {500, 4},  {334, 4}, {333, 5},
                          {100, 12}, {10, 102}, {3, 335},   {2, 502}, {1, 1002}, {1000, 1}};
  for (const auto& pulse : kCases) {
    recorder.Clear();
    ASSERT_TRUE(port.SetFrequency(pulse.frequency));
    port.PulseClock();
    EXPECT_TRUE(SameTrace(recorder.text(), Times(pulse.high, "W 01\n") + Times(2 * pulse.high, "W 00\n")))
        << pulse.frequency;
  }
}

TEST_F(JtagPortTest, RefusesFrequencyZeroAndKeepsTheOneBefore) {
  ASSERT_TRUE(port.SetFrequency(500));
  EXPECT_FALSE(port.SetFrequency(0));
  port.PulseClock();
  EXPECT_EQ(recorder.text(), Times(4, "W 01\n") + Times(8, "W 00\n"));
}

TEST_F(JtagPortTest, MakesAsManyPulsesAsToldUpToTheLargestCount) {
  port.PulseClocks(0);
  EXPECT_EQ(recorder.text(), "");
  port.PulseClocks(2);
  EXPECT_EQ(recorder.text(), "W 01\nW 00\nW 00\nW 01\nW 00\nW 00\n");
  recorder.Clear();
  port.PulseClocks(65535);
  EXPECT_TRUE(SameTrace(recorder.text(), Times(65535, "W 01\nW 00\nW 00\n")));
}

TEST_F(JtagPortTest, KeepsToTheStretchedPulseInRowsOfPulsesAndInMoves) {
  ASSERT_TRUE(port.SetFrequency(999));
  port.PulseClocks(2);
  ASSERT_TRUE(port.MoveTap(kTapIdle));
  EXPECT_EQ(recorder.text(), Times(2, "W 01\nW 01\nW 01\nW 00\nW 00\nW 00\nW 00\nW 00\nW 00\n") +
                                 "W 00\nW 01\nW 01\nW 01\nW 00\nW 00\nW 00\nW 00\nW 00\nW 00\nW 00\nW 00\n");
}

struct Road {
  std::uint8_t from;
  std::uint8_t to;
  /// TMS and its pulse four bytes at a time, then TDI and TMS low.
  const char* stores;
};

// clang-format off
constexpr Road kRoads[] = {
    {kTapReset, kTapReset,      // 111111
     "02 03 02 02 02 03 02 02 02 03 02 02 02 03 02 02 02 03 02 02 02 03 02 02 02 00"},
    {kTapReset, kTapIdle,       // 0
     "00 01 00 00 00 00"},
    {kTapReset, kTapDrPause,    // 01010
     "00 01 00 00 02 03 02 02 00 01 00 00 02 03 02 02 00 01 00 00 00 00"},
    {kTapReset, kTapIrPause,    // 011010
     "00 01 00 00 02 03 02 02 02 03 02 02 00 01 00 00 02 03 02 02 00 01 00 00 00 00"},
    {kTapIdle, kTapReset,       // 111
     "02 03 02 02 02 03 02 02 02 03 02 02 02 00"},
    {kTapIdle, kTapDrPause,     // 1010
     "02 03 02 02 00 01 00 00 02 03 02 02 00 01 00 00 00 00"},
    {kTapIdle, kTapIrPause,     // 11010
     "02 03 02 02 02 03 02 02 00 01 00 00 02 03 02 02 00 01 00 00 00 00"},
    {kTapDrPause, kTapReset,    // 11111
     "02 03 02 02 02 03 02 02 02 03 02 02 02 03 02 02 02 03 02 02 02 00"},
    {kTapDrPause, kTapIdle,     // 110
     "02 03 02 02 02 03 02 02 00 01 00 00 00 00"},
    {kTapDrPause, kTapIrPause,  // 1111010
     "02 03 02 02 02 03 02 02 02 03 02 02 02 03 02 02 00 01 00 00 02 03 02 02 00 01 00 00 00 00"},
    {kTapIrPause, kTapReset,    // 11111
     "02 03 02 02 02 03 02 02 02 03 02 02 02 03 02 02 02 03 02 02 02 00"},
    {kTapIrPause, kTapIdle,     // 110
     "02 03 02 02 02 03 02 02 00 01 00 00 00 00"},
    {kTapIrPause, kTapDrPause,  // 111010
     "02 03 02 02 02 03 02 02 02 03 02 02 00 01 00 00 02 03 02 02 00 01 00 00 00 00"},
    {kTapDrPause, kTapShiftDr,  // 10
     "02 03 02 02 00 01 00 00 00 00"},
    {kTapIrPause, kTapShiftDr,  // 11100
     "02 03 02 02 02 03 02 02 02 03 02 02 00 01 00 00 00 01 00 00 00 00"},
    {kTapShiftDr, kTapDrPause,  // 10
     "02 03 02 02 00 01 00 00 00 00"},
    {kTapShiftDr, kTapIdle,     // 110
     "02 03 02 02 02 03 02 02 00 01 00 00 00 00"},
    {kTapIrPause, kTapShiftIr,  // 10
     "02 03 02 02 00 01 00 00 00 00"},
    {kTapShiftIr, kTapIrPause,  // 10
     "02 03 02 02 00 01 00 00 00 00"},
    {kTapShiftIr, kTapIdle,     // 110
     "02 03 02 02 02 03 02 02 00 01 00 00 00 00"},
};
// clang-format on

TEST_F(JtagPortTest, GoesEachRoadOfTheTable) {
  static_assert(std::size(kRoads) == 20);
  for (const Road& road : kRoads) {
    SCOPED_TRACE(testing::Message() << int{road.from} << " to " << int{road.to});
    port = {};
    port.Connect(recorder.Window());
    ASSERT_NO_FATAL_FAILURE(GoTo(road.from));
    EXPECT_TRUE(port.MoveTap(road.to));
    EXPECT_EQ(recorder.text(), Stores(road.stores));
    EXPECT_EQ(port.tapState(), road.to);
    EXPECT_EQ(port.pinShadow(), 0);
  }
}

TEST_F(JtagPortTest, ClocksNothingToTheStateThatItIsIn) {
  for (const std::uint8_t state : {kTapIdle, kTapIrPause, kTapDrPause, kTapShiftIr, kTapShiftDr}) {
    port = {};
    port.Connect(recorder.Window());
    ASSERT_NO_FATAL_FAILURE(GoTo(state));
    port.SetPin(0x06, true);
    recorder.Clear();
    EXPECT_TRUE(port.MoveTap(state));
    EXPECT_EQ(recorder.text(), "") << int{state};
    EXPECT_EQ(port.pinShadow(), 0x06) << int{state};
    EXPECT_EQ(port.tapState(), state);
  }
}

TEST_F(JtagPortTest, ClocksSixOnesFromResetToReset) {
  for (int i = 0; i < 2; ++i) {
    recorder.Clear();
    EXPECT_TRUE(port.MoveTap(kTapReset));
    EXPECT_TRUE(SameTrace(recorder.text(), Trace("tms:111111 rest")));
  }
}

TEST_F(JtagPortTest, ReachesResetFromTheShiftStatesByFiveOnes) {
  for (const std::uint8_t state : {kTapShiftIr, kTapShiftDr}) {
    port = {};
    port.Connect(recorder.Window());
    ASSERT_NO_FATAL_FAILURE(GoTo(state));
    EXPECT_TRUE(port.MoveTap(kTapReset));
    EXPECT_TRUE(SameTrace(recorder.text(), Trace("tms:11111 rest"))) << int{state};
    EXPECT_EQ(port.tapState(), kTapReset);
  }
}

TEST_F(JtagPortTest, KeepsTdiAndEnableWhileItMovesAndDropsTdiAtTheEnd) {
  port.SetPin(0x0C, true);
  recorder.Clear();
  ASSERT_TRUE(port.MoveTap(kTapDrPause));
  EXPECT_EQ(recorder.text(), Stores("0c 0d 0c 0c 0e 0f 0e 0e 0c 0d 0c 0c 0e 0f 0e 0e 0c 0d 0c 0c 08 08"));
}

TEST_F(JtagPortTest, RefusesWaysThatTheTableHasNotAndTouchesNoPin) {
  struct {
    std::uint8_t from;
    std::vector<std::uint8_t> refused;
  } const kCases[] = {
      {kTapReset, {4, 5, 6, 7, 16, 128, 255}},   {kTapIdle, {4, 5, 6, 7, 16, 128, 255}},
      {kTapIrPause, {6, 7, 16, 128, 255}},       {kTapDrPause, {4, 6, 7, 16, 128, 255}},
      {kTapShiftIr, {3, 5, 6, 7, 16, 128, 255}}, {kTapShiftDr, {2, 4, 6, 7, 16, 128, 255}},
  };
  for (const auto& state : kCases) {
    port = {};
    port.Connect(recorder.Window());
    ASSERT_NO_FATAL_FAILURE(GoTo(state.from));
    port.SetPin(0x04, true);
    recorder.Clear();
    for (const std::uint8_t to : state.refused) {
      EXPECT_FALSE(port.MoveTap(to)) << int{state.from} << " to " << int{to};
      EXPECT_EQ(recorder.text(), "") << int{state.from} << " to " << int{to};
      EXPECT_EQ(port.tapState(), state.from);
      EXPECT_EQ(port.pinShadow(), 0x04);
    }
  }
}

TEST_F(JtagPortTest, KnowsThePinsAlsoWhenAnAccessFails) {
  port.SetPin(0x08, true);
  recorder.CutPowerAt(6);  // the pulse of the second clock
  recorder.Clear();
  EXPECT_THROW(port.MoveTap(kTapReset), PowerCut);
  EXPECT_EQ(recorder.text(), "W 0a\nW 0b\nW 0a\nW 0a\nW 0a\nW 0b\n");
  recorder.Clear();
  port.SetPin(0x04, true);
  EXPECT_EQ(recorder.text(), "W 0e\n");
}

TEST_F(JtagPortTest, TakesAnotherPortWithPinsAndStateAsTheyAre) {
  ASSERT_TRUE(port.MoveTap(kTapDrPause));
  port.SetPin(0x08, true);
  test_support::TraceRecorder other;
  recorder.Clear();
  port.Connect(other.Window());
  port.SetPin(0x04, true);
  EXPECT_EQ(recorder.text(), "");
  EXPECT_EQ(other.text(), "W 0c\n");
  EXPECT_EQ(port.tapState(), kTapDrPause);
}

TEST(JtagPortOnMemory, StoresThePinsAs32BitsWithTheUpperOnesZero) {
  volatile std::uint32_t words[3] = {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF};
  JtagPort port;
  port.Connect(platform::RegisterWindow(reinterpret_cast<std::uintptr_t>(&words[1])));
  port.SetPin(0x08, true);
  EXPECT_EQ(words[1], 0x00000008u);
  EXPECT_EQ(words[0], 0xFFFFFFFFu);
  EXPECT_EQ(words[2], 0xFFFFFFFFu);
  words[1] = 0xFFFFFFEF;
  EXPECT_EQ(port.ReadTdoPin(), 0);
  words[1] = 0x00000010;
  EXPECT_EQ(port.ReadTdoPin(), 1);
  port.PulseClock();
  EXPECT_EQ(words[1], 0x00000008u);
}

}  // namespace
