#include <gmock/gmock.h>

#include <algorithm>
#include <vector>

#include "FlashFixture.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class C28FxJ3AErase : public FlashFixture {
 protected:
  void SetUp() override { flash.Attach(registers.Window()); }

  /// An erase of the block at 0x30000 up to its polls.
  static RegisterScript Started(std::uint32_t statusBefore) {
    return Join({StatusCleared(),
                 StatusRead(statusBefore),
                 {W(0, 0x30000), W(4, 0x20), W(0, 0x30000), W(4, 0xD0), W(0, 0), W(4, 0x70), W(0, 0)}});
  }

  void ExpectReport(FlashResult result, std::uint32_t statusBefore, std::uint32_t statusAfter, int marks) {
    EXPECT_EQ(flash.eraseReport.result, result);
    EXPECT_EQ(flash.eraseReport.statusBefore, statusBefore);
    EXPECT_EQ(flash.eraseReport.statusAfter, statusAfter);
    EXPECT_EQ(flash.eraseReport.marks.GetCount(), marks);
  }
};

TEST_F(C28FxJ3AErase, IsThisSequenceOfAccesses) {
  registers.Expect({
      W(0, 0),       W(4, 0x70), W(0, 0),    R(4, 0x80),  // wait for a ready chip
      W(0, 0),       W(4, 0x50),                          // clear status
      W(0, 0),       W(4, 0x70), W(0, 0),    R(4, 0x80),  // status before
      W(0, 0x30000), W(4, 0x20),                          // erase setup
      W(0, 0x30000), W(4, 0xD0),                          // confirm
      W(0, 0),       W(4, 0x70), W(0, 0),                 // read status from here on
      R(4, 0x00),    R(4, 0x00), R(4, 0x80),              // polls
  });
  EXPECT_TRUE(flash.EraseBlock(0x30000));
  ExpectReport(FlashResult::kCleanStart, 0x80, 0x80, 8);
  EXPECT_THAT(clock.Sleeps(), ElementsAre(20, 20, 20));
}

TEST_F(C28FxJ3AErase, ReadsTheStatusFromTheLowByte) {
  registers.Expect(Join({StatusCleared(),
                         StatusRead(0xABCDEF80),
                         {W(0, 0x30000), W(4, 0x20), W(0, 0x30000), W(4, 0xD0), W(0, 0), W(4, 0x70), W(0, 0),
                          R(4, 0xFFFFFF00), R(4, 0x80808080)}}));
  EXPECT_TRUE(flash.EraseBlock(0x30000));
  ExpectReport(FlashResult::kCleanStart, 0x80, 0x80, 6);
}

// Unlike a program run, an erase knows afterwards in which mode the chip is, and reads are right.
TEST_F(C28FxJ3AErase, EndsInReadStatusModeSoThatAReadSendsItsCommand) {
  registers.Expect(Started(0x80));
  registers.Expect({R(4, 0x80)});
  ASSERT_TRUE(flash.EraseBlock(0x30000));
  registers.ExpectDone();

  registers.Expect(ReadAtZeroWithCommand());
  ReadAtZero();
}

TEST_F(C28FxJ3AErase, AcceptsTheFirstAndTheLastBlock) {
  for (const std::uint32_t address : {0x000000u, 0x3F0000u}) {
    registers.Expect(Join({StatusCleared(),
                           StatusRead(0x80),
                           {W(0, address), W(4, 0x20), W(0, address), W(4, 0xD0),  //
                            W(0, 0), W(4, 0x70), W(0, 0), R(4, 0x80)}}));
    EXPECT_TRUE(flash.EraseBlock(address));
    registers.ExpectDone();
  }
}

TEST_F(C28FxJ3AErase, RefusesOtherAddressesButClearsTheStatusFirst) {
  registers.Expect(Started(0x88));
  registers.Expect({R(4, 0x88)});
  ASSERT_TRUE(flash.EraseBlock(0x30000));
  for (const std::uint32_t address : {0x10001u, 0x1u, 0x8000u, 0x400000u, 0x410000u, 0xFFFF0000u, 0xFFFFFFFFu}) {
    registers.Expect(StatusCleared());
    EXPECT_FALSE(flash.EraseBlock(address)) << address;
    registers.ExpectDone();
    ExpectReport(FlashResult::kErrorsAtStart, 0x88, 0x88, 0);  // The last erase's, but for the marks.
  }
}

TEST_F(C28FxJ3AErase, TakesNoNoticeOfAChipThatDidNotBecomeReady) {
  registers.Expect(StatusRead(0x00), 1 + 2001 + 1);  // two seconds, and nothing is cleared
  registers.Expect(StatusRead(0x00));
  registers.Expect({W(0, 0x30000), W(4, 0x20), W(0, 0x30000), W(4, 0xD0),  //
                    W(0, 0), W(4, 0x70), W(0, 0), R(4, 0x80)});
  EXPECT_TRUE(flash.EraseBlock(0x30000));
  ExpectReport(FlashResult::kErrorsAtStart, 0x00, 0x80, 4);
}

TEST_F(C28FxJ3AErase, ToleratesErrorBitsThatWereThereBefore) {
  for (const std::uint32_t statusAfter : {0x88u, 0x80u}) {
    registers.Expect(Started(0x88));
    registers.Expect({R(4, statusAfter)});
    EXPECT_TRUE(flash.EraseBlock(0x30000));
    registers.ExpectDone();
    ExpectReport(FlashResult::kErrorsAtStart, 0x88, statusAfter, 4);
  }
}

struct FailureCase {
  std::uint32_t statusBefore;
  std::uint32_t statusAfter;
  std::uint32_t statusRecovered;
};

TEST_F(C28FxJ3AErase, FailsOnANewErrorBitAndReportsARecoveredChip) {
  constexpr FailureCase kCases[] = {
      {0x80, 0xA0, 0x80},
      {0x80, 0x81, 0x80},
      {0x88, 0xA8, 0x88},  // what was there before may be there again
      {0x88, 0xA0, 0x80},
  };
  for (const FailureCase& failure : kCases) {
    registers.Expect(Started(failure.statusBefore));
    registers.Expect({R(4, failure.statusAfter)});
    registers.Expect(StatusCleared());
    registers.Expect(StatusRead(failure.statusRecovered));
    clock.ForgetSleeps();
    EXPECT_FALSE(flash.EraseBlock(0x30000));
    registers.ExpectDone();
    ExpectReport(FlashResult::kFailedRecovered, failure.statusBefore, failure.statusAfter, 4);
    EXPECT_THAT(clock.Sleeps(), ElementsAre(20));

    registers.Expect(ReadAtZeroWithCommand());
    ReadAtZero();
  }
}

TEST_F(C28FxJ3AErase, FailsOnANewErrorBitAndReportsAChipThatDoesNotRecover) {
  constexpr FailureCase kCases[] = {
      {0x80, 0xA0, 0xA0},
      {0x88, 0x98, 0x98},
      {0x80, 0xA0, 0x90},  // another error
      {0x80, 0xA0, 0x00},  // no longer ready
  };
  for (const FailureCase& failure : kCases) {
    registers.Expect(Started(failure.statusBefore));
    registers.Expect({R(4, failure.statusAfter)});
    registers.Expect(StatusCleared());
    registers.Expect(StatusRead(failure.statusRecovered));
    registers.Expect(StatusCleared());
    clock.ForgetSleeps();
    EXPECT_FALSE(flash.EraseBlock(0x30000));
    registers.ExpectDone();
    ExpectReport(FlashResult::kFailedUnrecovered, failure.statusBefore, failure.statusAfter, 4);
    EXPECT_THAT(clock.Sleeps(), ElementsAre(20, 1));

    registers.Expect(ReadAtZeroWithoutCommand());  // It ended in a clear status.
    ReadAtZero();
  }
}

TEST_F(C28FxJ3AErase, TimesOutAfterTwoSeconds) {
  registers.Expect(Started(0x80));
  registers.Expect({R(4, 0x00)}, 100);
  registers.Expect(StatusCleared());
  registers.Expect(StatusRead(0x80));
  EXPECT_FALSE(flash.EraseBlock(0x30000));
  ExpectReport(FlashResult::kTimedOut, 0x80, 0x00, 10);
  EXPECT_THAT(clock.Sleeps(), SizeIs(100));
  EXPECT_THAT(clock.Sleeps(), Each(20));
}

TEST_F(C28FxJ3AErase, ReportsTheTimeOutAlsoWhenTheChipDoesNotRecover) {
  registers.Expect(Started(0x80));
  registers.Expect({R(4, 0x20)}, 100);
  registers.Expect(StatusRead(0x20), 1 + 2001 + 1);
  registers.Expect(StatusRead(0x20));
  registers.Expect(StatusRead(0x20), 1 + 2001 + 1);
  EXPECT_FALSE(flash.EraseBlock(0x30000));
  ExpectReport(FlashResult::kTimedOut, 0x80, 0x20, 10);
}

TEST_F(C28FxJ3AErase, MustPassItsDeadlineToTimeOut) {
  clock.SetStepTicks(0);  // The 100th poll comes at two seconds sharp.
  registers.Expect(Started(0x80));
  registers.Expect({R(4, 0x00)}, 101);
  registers.Expect(StatusCleared());
  registers.Expect(StatusRead(0x80));
  EXPECT_FALSE(flash.EraseBlock(0x30000));
  EXPECT_EQ(flash.eraseReport.result, FlashResult::kTimedOut);
}

TEST_F(C28FxJ3AErase, SucceedsWhenTheLookAfterTheDeadlineFindsTheChipReady) {
  registers.Expect(Started(0x80));
  registers.Expect({R(4, 0x00)}, 99);
  registers.Expect({R(4, 0x80)});
  EXPECT_TRUE(flash.EraseBlock(0x30000));
  ExpectReport(FlashResult::kCleanStart, 0x80, 0x80, 10);
}

TEST_F(C28FxJ3AErase, JudgesAnErrorFoundByThatLookAsAnErrorAndNotATimeOut) {
  registers.Expect(Started(0x80));
  registers.Expect({R(4, 0x00)}, 99);
  registers.Expect({R(4, 0xA0)});
  registers.Expect(StatusCleared());
  registers.Expect(StatusRead(0x80));
  EXPECT_FALSE(flash.EraseBlock(0x30000));
  ExpectReport(FlashResult::kFailedRecovered, 0x80, 0xA0, 10);
}

TEST_F(C28FxJ3AErase, LooksOnceMoreAfterALookDuringWhichTheDeadlinePassed) {
  SlowRegisters slow(registers, clock, 3000 * test_support::ManualClock::kTicksPerMillisecond);
  flash.Attach(platform::RegisterWindow(0x1000, &slow));
  registers.Expect(Started(0x80));
  registers.Expect({R(4, 0x00), R(4, 0x80)});
  EXPECT_TRUE(flash.EraseBlock(0x30000));
}

TEST_F(C28FxJ3AErase, MarksItsStartItsFirstFourPollsAndItsEnd) {
  for (const int polls : {1, 2, 3, 4, 5, 50}) {
    registers.Expect(Started(0x80));
    registers.Expect({R(4, 0x00)}, polls - 1);
    registers.Expect({R(4, 0x80)});
    EXPECT_TRUE(flash.EraseBlock(0x30000));
    registers.ExpectDone();
    EXPECT_EQ(flash.eraseReport.marks.GetCount(), 2 + 2 * std::min(polls, 4)) << polls;
  }
}

TEST_F(C28FxJ3AErase, HasAMarkOnEachSideOfAPoll) {
  SlowRegisters slow(registers, clock, 1000);
  flash.Attach(platform::RegisterWindow(0x1000, &slow));
  registers.Expect(Started(0x80));
  registers.Expect({R(4, 0x00)}, 5);
  registers.Expect({R(4, 0x80)});
  ASSERT_TRUE(flash.EraseBlock(0x30000));

  std::vector<std::uint64_t> gaps;
  for (std::int32_t i = 0; i < 9; ++i)
    gaps.push_back(flash.eraseReport.marks.GetUncalibratedInterval(i, i + 1));
  // A poll is its read and the tick of a look at the counter; a wait is a sleep and two looks. The first wait also has
  // the two looks of a deadline's making; behind the last mark but one lie two polls without marks.
  constexpr std::uint64_t kPoll = 1000 + 1;
  constexpr std::uint64_t kWait = 200000 + 2;
  EXPECT_THAT(gaps,
              ElementsAre(kWait + 2, kPoll, kWait, kPoll, kWait, kPoll, kWait, kPoll, 2 * (200000 + 1 + 1000) + 1));
}

}  // namespace
