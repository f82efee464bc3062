#include <gmock/gmock.h>

#include "FlashFixture.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class C28FxJ3AWait : public FlashFixture {
 protected:
  void SetUp() override { flash.Attach(registers.Window()); }
};

TEST_F(C28FxJ3AWait, IsOverAtOnceWhenTheChipIsReady) {
  registers.Expect(StatusRead(0x80));
  EXPECT_TRUE(flash.WaitReady(2000));
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
}

TEST_F(C28FxJ3AWait, NeedsOnlyTheReadyBit) {
  registers.Expect(StatusRead(0xFF));
  EXPECT_TRUE(flash.WaitReady(2000));
}

TEST_F(C28FxJ3AWait, ForcesTheStatusModeOnEachLook) {
  registers.Expect(StatusRead(0x00), 3);
  registers.Expect(StatusRead(0x80));
  EXPECT_TRUE(flash.WaitReady(2000));
  EXPECT_THAT(clock.Sleeps(), ElementsAre(1, 1)) << "none between the first look and the loop's first";
}

struct LimitCase {
  std::int32_t timeoutMilliseconds;
  int limitMilliseconds;
};

class C28FxJ3AWaitLimit : public FlashFixture, public testing::WithParamInterface<LimitCase> {};

// Time moves by the sleeps alone here, and a deadline is passed one millisecond after it was reached.
TEST_P(C28FxJ3AWaitLimit, IsClamped) {
  const int milliseconds = GetParam().limitMilliseconds;
  clock.SetStepTicks(0);
  flash.Attach(registers.Window());
  registers.Expect(StatusRead(0x7F), 1);                 // before the clock starts
  registers.Expect(StatusRead(0x7F), milliseconds + 2);  // at 0, 1, ... and one past the limit
  registers.Expect(StatusRead(0x7F), 1);                 // the last look
  EXPECT_FALSE(flash.WaitReady(GetParam().timeoutMilliseconds));
  EXPECT_THAT(clock.Sleeps(), SizeIs(milliseconds + 1));
  EXPECT_THAT(clock.Sleeps(), Each(1));
}

INSTANTIATE_TEST_SUITE_P(Limits, C28FxJ3AWaitLimit,
                         testing::Values(LimitCase{0, 1}, LimitCase{-1, 1}, LimitCase{INT32_MIN, 1}, LimitCase{1, 1},
                                         LimitCase{2, 2}, LimitCase{2000, 2000}, LimitCase{100000, 100000},
                                         LimitCase{100001, 100000}, LimitCase{200000, 100000},
                                         LimitCase{INT32_MAX, 100000}));

TEST_F(C28FxJ3AWait, TakesTheLookThatFollowsThePassedDeadline) {
  clock.SetStepTicks(2 * test_support::ManualClock::kTicksPerMillisecond);
  registers.Expect(StatusRead(0x00));
  registers.Expect(StatusRead(0x80));
  EXPECT_TRUE(flash.WaitReady(1));
}

TEST_F(C28FxJ3AWait, TakesOneMoreLookAfterThat) {
  clock.SetStepTicks(2 * test_support::ManualClock::kTicksPerMillisecond);
  registers.Expect(StatusRead(0x00), 2);
  registers.Expect(StatusRead(0x80));
  EXPECT_TRUE(flash.WaitReady(1));
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
}

TEST_F(C28FxJ3AWait, LooksTwiceMoreAfterALookDuringWhichTheDeadlinePassed) {
  SlowRegisters slow(registers, clock, 2 * test_support::ManualClock::kTicksPerMillisecond);
  flash.Attach(platform::RegisterWindow(0x1000, &slow));
  registers.Expect(StatusRead(0x00), 2);  // before the clock starts, and while the deadline passes
  registers.Expect(StatusRead(0x00), 2);
  EXPECT_FALSE(flash.WaitReady(1));
  EXPECT_THAT(clock.Sleeps(), ElementsAre(1));
}

TEST_F(C28FxJ3AWait, ClearStatusSendsItsCommandToAReadyChip) {
  registers.Expect({W(0, 0), W(4, 0x70), W(0, 0), R(4, 0xFF),  //
                    W(0, 0), W(4, 0x50)});
  EXPECT_TRUE(flash.ClearStatus());
}

// The chip is still in read status mode then, and answers with its status. This is meant.
TEST_F(C28FxJ3AWait, ClearStatusLeavesReadArrayModeBelievedButNotSent) {
  registers.Expect(StatusCleared());
  ASSERT_TRUE(flash.ClearStatus());
  registers.ExpectDone();

  EXPECT_TRUE(flash.SetMode(FlashMode::kReadArray, false));
  registers.Expect({W(0, 0x100), R(4, 0x00800080)});
  std::uint16_t words[2] = {};
  flash.Read(2, 0x100, words);
  EXPECT_THAT(words, ElementsAre(0x80, 0x80));
  registers.ExpectDone();

  registers.Expect({W(0, 0), W(4, 0xFF)});
  EXPECT_TRUE(flash.SetMode(FlashMode::kReadArray, true));
}

TEST_F(C28FxJ3AWait, ClearStatusGivesUpAfterTwoSecondsAndSendsNothing) {
  registers.Expect(StatusRead(0x00), 1 + 2001 + 1);
  EXPECT_FALSE(flash.ClearStatus());
  registers.ExpectDone();
  EXPECT_THAT(clock.Sleeps(), SizeIs(2000));

  registers.Expect({W(0, 0), R(4, 0)});
  flash.ReadStatus(false);  // Still believed to be in read status mode.
}

struct NoCounterCase {
  const char* name;
  void (test_support::ManualClock::*remove)();
};

class C28FxJ3AWithoutCounter : public FlashFixture, public testing::WithParamInterface<NoCounterCase> {
 protected:
  void SetUp() override {
    (clock.*GetParam().remove)();
    flash.Attach(registers.Window());
  }
};

TEST_P(C28FxJ3AWithoutCounter, WaitReadyLooksThreeTimes) {
  registers.Expect(StatusRead(0x00), 3);
  EXPECT_FALSE(flash.WaitReady(100000));
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
}

TEST_P(C28FxJ3AWithoutCounter, EraseLooksOnceAndTimesOut) {
  registers.Expect(StatusCleared());
  registers.Expect(StatusRead(0x80));
  registers.Expect({W(0, 0x10000), W(4, 0x20), W(0, 0x10000), W(4, 0xD0),  //
                    W(0, 0), W(4, 0x70), W(0, 0), R(4, 0x00)});
  registers.Expect(StatusRead(0x00), 3);  // the recovery's clear status
  registers.Expect(StatusRead(0x00));
  registers.Expect(StatusRead(0x00), 3);
  EXPECT_FALSE(flash.EraseBlock(0x10000));
  EXPECT_EQ(flash.eraseReport.result, FlashResult::kTimedOut);
  EXPECT_THAT(clock.Sleeps(), ElementsAre(20, 1));
}

TEST_P(C28FxJ3AWithoutCounter, EraseStillSucceedsWhenDoneAtTheFirstLook) {
  registers.Expect(StatusCleared());
  registers.Expect(StatusRead(0x80));
  registers.Expect({W(0, 0x10000), W(4, 0x20), W(0, 0x10000), W(4, 0xD0),  //
                    W(0, 0), W(4, 0x70), W(0, 0), R(4, 0x80)});
  EXPECT_TRUE(flash.EraseBlock(0x10000));
}

TEST_P(C28FxJ3AWithoutCounter, ProgramRunLooksOnceForTheBufferAndTimesOut) {
  const std::uint16_t words[16] = {};
  registers.Expect(StatusCleared());
  registers.Expect(StatusRead(0x80));
  registers.Expect({W(0, 0x10000), W(4, 0xE8E8), W(0, 0x10000), R(4, 0x00)});
  registers.Expect(StatusCleared());
  registers.Expect(StatusRead(0x80));
  EXPECT_FALSE(flash.ProgramRun(0x10000, words));
  EXPECT_EQ(flash.programReport.result, FlashResult::kTimedOut);
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
}

TEST_P(C28FxJ3AWithoutCounter, ProgramRunLooksOnceForCompletionAndTimesOut) {
  const std::uint16_t words[16] = {};
  registers.Expect(StatusCleared());
  registers.Expect(StatusRead(0x80));
  registers.Expect({W(0, 0x10000), W(4, 0xE8E8), W(0, 0x10000), R(4, 0x80), W(0, 0x10000), W(4, 0x0F0F)});
  for (std::uint32_t i = 0; i < 16; ++i)
    registers.Expect({W(0, 0x10000 + i), W(4, 0)});
  registers.Expect({W(0, 0x10000), W(4, 0xD0), W(0, 0x10000), W(4, 0x70), W(0, 0x10000), R(4, 0x00)});
  registers.Expect(StatusCleared());
  registers.Expect(StatusRead(0x80));
  EXPECT_FALSE(flash.ProgramRun(0x10000, words));
  EXPECT_EQ(flash.programReport.result, FlashResult::kTimedOut);
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Ways, C28FxJ3AWithoutCounter,
                         testing::Values(NoCounterCase{"Neither", &test_support::ManualClock::RemoveCounter},
                                         NoCounterCase{"FrequencyZero", &test_support::ManualClock::ZeroFrequency},
                                         NoCounterCase{"FrequencyOnly", &test_support::ManualClock::StopCounter}),
                         [](const auto& test) { return test.param.name; });

}  // namespace
