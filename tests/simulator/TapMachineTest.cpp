#include <gtest/gtest.h>

#include "simulator/TapMachine.h"

using simulator::TapMachine;
using simulator::TapState;

namespace {

/// The state machine as the standard draws it, with the states by their codes.
constexpr struct {
  const char* name;
  int code;
  int withTmsLow;
  int withTmsHigh;
} kStates[] = {
    {"Test-Logic-Reset", 0xF, 0xC, 0xF}, {"Run-Test/Idle", 0xC, 0xC, 0x7}, {"Select-DR", 0x7, 0x6, 0x4},
    {"Capture-DR", 0x6, 0x2, 0x1},       {"Shift-DR", 0x2, 0x2, 0x1},      {"Exit1-DR", 0x1, 0x3, 0x5},
    {"Pause-DR", 0x3, 0x3, 0x0},         {"Exit2-DR", 0x0, 0x2, 0x5},      {"Update-DR", 0x5, 0xC, 0x7},
    {"Select-IR", 0x4, 0xE, 0xF},        {"Capture-IR", 0xE, 0xA, 0x9},    {"Shift-IR", 0xA, 0xA, 0x9},
    {"Exit1-IR", 0x9, 0xB, 0xD},         {"Pause-IR", 0xB, 0xB, 0x8},      {"Exit2-IR", 0x8, 0xA, 0xD},
    {"Update-IR", 0xD, 0xC, 0x7},
};

int After(int code, bool tms) {
  TapMachine tap(static_cast<TapState>(code));
  tap.Clock(tms);
  return static_cast<int>(tap.state());
}

TEST(TapMachine, MovesAsTheStandardSays) {
  static_assert(std::size(kStates) == 16);
  for (const auto& state : kStates) {
    EXPECT_EQ(After(state.code, false), state.withTmsLow) << state.name;
    EXPECT_EQ(After(state.code, true), state.withTmsHigh) << state.name;
  }
}

TEST(TapMachine, IsResetByFiveClocksFromEachState) {
  for (const auto& state : kStates) {
    TapMachine tap(static_cast<TapState>(state.code));
    for (int i = 0; i < 5; ++i)
      tap.Clock(true);
    EXPECT_EQ(tap.state(), TapState::kTestLogicReset) << state.name;
  }
}

TEST(TapMachine, BeginsInReset) {
  EXPECT_EQ(TapMachine().state(), TapState::kTestLogicReset);
}

TEST(TapMachine, GoesItsOwnWayAsACopy) {
  TapMachine tap(TapState::kShiftDr);
  TapMachine copy = tap;
  copy.Clock(true);
  EXPECT_EQ(copy.state(), TapState::kExit1Dr);
  EXPECT_EQ(tap.state(), TapState::kShiftDr);
}

TEST(TapMachine, NamesTheStatesByTheCodesOfTheTable) {
  EXPECT_EQ(static_cast<int>(TapState::kTestLogicReset), 0xF);
  EXPECT_EQ(static_cast<int>(TapState::kRunTestIdle), 0xC);
  EXPECT_EQ(static_cast<int>(TapState::kSelectDr), 0x7);
  EXPECT_EQ(static_cast<int>(TapState::kCaptureDr), 0x6);
  EXPECT_EQ(static_cast<int>(TapState::kShiftDr), 0x2);
  EXPECT_EQ(static_cast<int>(TapState::kExit1Dr), 0x1);
  EXPECT_EQ(static_cast<int>(TapState::kPauseDr), 0x3);
  EXPECT_EQ(static_cast<int>(TapState::kExit2Dr), 0x0);
  EXPECT_EQ(static_cast<int>(TapState::kUpdateDr), 0x5);
  EXPECT_EQ(static_cast<int>(TapState::kSelectIr), 0x4);
  EXPECT_EQ(static_cast<int>(TapState::kCaptureIr), 0xE);
  EXPECT_EQ(static_cast<int>(TapState::kShiftIr), 0xA);
  EXPECT_EQ(static_cast<int>(TapState::kExit1Ir), 0x9);
  EXPECT_EQ(static_cast<int>(TapState::kPauseIr), 0xB);
  EXPECT_EQ(static_cast<int>(TapState::kExit2Ir), 0x8);
  EXPECT_EQ(static_cast<int>(TapState::kUpdateIr), 0xD);
}

}  // namespace
