#include <gmock/gmock.h>

#include <array>

#include "FlashFixture.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::array<std::uint16_t, 16> kWords = {0x0001, 0x1002, 0x2003, 0x3004, 0x4005, 0x5006, 0x6007, 0x7008,
                                                  0x8009, 0x900A, 0xA00B, 0xB00C, 0xC00D, 0xD00E, 0xE00F, 0xFFFF};

class C28FxJ3AProgram : public FlashFixture {
 protected:
  void SetUp() override { flash.Attach(registers.Window()); }

  /// A program run of `kWords` at 0x12340 up to the first look at the write buffer.
  static RegisterScript Started(std::uint32_t statusBefore) {
    return Join({StatusCleared(), StatusRead(statusBefore), {W(0, 0x12340), W(4, 0xE8E8)}});
  }
  static RegisterScript BufferLook(std::uint32_t status) { return {W(0, 0x12340), R(4, status)}; }
  /// From a free buffer up to the first look for completion.
  static RegisterScript Filled() {
    RegisterScript script = {W(0, 0x12340), W(4, 0x0F0F)};
    for (std::uint32_t i = 0; i < kWords.size(); ++i) {
      script.push_back(W(0, 0x12340 + i));
      script.push_back(W(4, kWords[i]));
    }
    script.push_back(W(0, 0x12340));
    script.push_back(W(4, 0xD0));
    return script;
  }
  static RegisterScript CompletionLook(std::uint32_t status) {
    return {W(0, 0x12340), W(4, 0x70), W(0, 0x12340), R(4, status)};
  }

  void ExpectReport(FlashResult result, std::uint32_t statusBefore, std::uint32_t statusAfter, int marks) {
    EXPECT_EQ(flash.programReport.result, result);
    EXPECT_EQ(flash.programReport.statusBefore, statusBefore);
    EXPECT_EQ(flash.programReport.statusAfter, statusAfter);
    EXPECT_EQ(flash.programReport.marks.GetCount(), marks);
  }

  /// The counter is read once for a deadline, once for the mark behind it and once a look, each 10 ms after the other;
  /// so of two waits of 50 ms each sees its deadline passed at the fifth look.
  void LetFiveLooksReachTheDeadline() { clock.SetStepTicks(10 * test_support::ManualClock::kTicksPerMillisecond); }
};

TEST_F(C28FxJ3AProgram, IsThisSequenceOfAccesses) {
  registers.Expect({
      W(0, 0),       W(4, 0x70),   W(0, 0), R(4, 0x80),  // wait for a ready chip
      W(0, 0),       W(4, 0x50),                         // clear status
      W(0, 0),       W(4, 0x70),   W(0, 0), R(4, 0x80),  // status before
      W(0, 0x12340), W(4, 0xE8E8),                       // write to buffer
      W(0, 0x12340), R(4, 0x80),                         // the buffer is free
      W(0, 0x12340), W(4, 0x0F0F),                       // sixteen words follow
      W(0, 0x12340), W(4, 0x0001),                       //
      W(0, 0x12341), W(4, 0x1002),                       //
      W(0, 0x12342), W(4, 0x2003),                       //
      W(0, 0x12343), W(4, 0x3004),                       //
      W(0, 0x12344), W(4, 0x4005),                       //
      W(0, 0x12345), W(4, 0x5006),                       //
      W(0, 0x12346), W(4, 0x6007),                       //
      W(0, 0x12347), W(4, 0x7008),                       //
      W(0, 0x12348), W(4, 0x8009),                       //
      W(0, 0x12349), W(4, 0x900A),                       //
      W(0, 0x1234A), W(4, 0xA00B),                       //
      W(0, 0x1234B), W(4, 0xB00C),                       //
      W(0, 0x1234C), W(4, 0xC00D),                       //
      W(0, 0x1234D), W(4, 0xD00E),                       //
      W(0, 0x1234E), W(4, 0xE00F),                       //
      W(0, 0x1234F), W(4, 0xFFFF),                       //
      W(0, 0x12340), W(4, 0xD0),                         // confirm
      W(0, 0x12340), W(4, 0x70),                         // read status
      W(0, 0x12340), R(4, 0x80),                         // done
      W(0, 0),       W(4, 0x70),   W(0, 0), R(4, 0x80),  // wait for a ready chip
      W(0, 0),       W(4, 0x50),                         // clear status
  });
  EXPECT_TRUE(flash.ProgramRun(0x12340, kWords.data()));
  ExpectReport(FlashResult::kCleanStart, 0x80, 0x80, 4);
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
}

TEST_F(C28FxJ3AProgram, RepeatsTheWriteToBufferCommandUntilTheBufferIsFree) {
  registers.Expect(Started(0x80));
  registers.Expect({W(0, 0x12340), R(4, 0x00), W(0, 0x12340), W(4, 0xE8E8)}, 3);
  registers.Expect({W(0, 0x12340), R(4, 0x80)});
  registers.Expect(Filled());
  registers.Expect(CompletionLook(0x80));
  registers.Expect(StatusCleared());
  EXPECT_TRUE(flash.ProgramRun(0x12340, kWords.data()));
  ExpectReport(FlashResult::kCleanStart, 0x80, 0x80, 4);
  EXPECT_THAT(clock.Sleeps(), ElementsAre(0, 0, 0));
}

TEST_F(C28FxJ3AProgram, SendsReadStatusAgainForEachLookForCompletion) {
  registers.Expect(Started(0x80));
  registers.Expect(BufferLook(0x80));
  registers.Expect(Filled());
  registers.Expect({W(0, 0x12340), W(4, 0x70), W(0, 0x12340), R(4, 0x7F)}, 3);
  registers.Expect({W(0, 0x12340), W(4, 0x70), W(0, 0x12340), R(4, 0x80)});
  registers.Expect(StatusCleared());
  EXPECT_TRUE(flash.ProgramRun(0x12340, kWords.data()));
  ExpectReport(FlashResult::kCleanStart, 0x80, 0x80, 4);
  EXPECT_THAT(clock.Sleeps(), ElementsAre(0, 0, 0));
}

TEST_F(C28FxJ3AProgram, ReadsTheStatusFromTheLowByte) {
  registers.Expect(Started(0xABCDEF80));
  registers.Expect(BufferLook(0xFFFFFF80));
  registers.Expect(Filled());
  registers.Expect(CompletionLook(0xFFFFFF00));
  registers.Expect(CompletionLook(0xFFFFFF80));
  registers.Expect(StatusCleared());
  EXPECT_TRUE(flash.ProgramRun(0x12340, kWords.data()));
  ExpectReport(FlashResult::kCleanStart, 0x80, 0x80, 4);
}

// The chip is in read status mode then and answers the read with its status. This is meant.
TEST_F(C28FxJ3AProgram, IsFollowedByAReadThatSendsNoCommand) {
  registers.Expect(Started(0x80));
  registers.Expect(BufferLook(0x80));
  registers.Expect(Filled());
  registers.Expect(CompletionLook(0x80));
  registers.Expect(StatusCleared());
  ASSERT_TRUE(flash.ProgramRun(0x12340, kWords.data()));
  registers.ExpectDone();

  registers.Expect({W(0, 0x12340), R(4, 0x00800080)});
  std::array<std::uint16_t, 2> words{};
  flash.Read(2, 0x12340, words.data());
  EXPECT_THAT(words, ElementsAre(0x80, 0x80));
}

TEST_F(C28FxJ3AProgram, GoesOnWithErrorsFromBefore) {
  registers.Expect(Started(0x88));
  registers.Expect(BufferLook(0x80));
  registers.Expect(Filled());
  registers.Expect(CompletionLook(0x80));
  registers.Expect(StatusCleared());
  EXPECT_TRUE(flash.ProgramRun(0x12340, kWords.data()));
  ExpectReport(FlashResult::kErrorsAtStart, 0x88, 0x80, 4);
}

TEST_F(C28FxJ3AProgram, TakesNoNoticeOfAChipThatDidNotBecomeReady) {
  registers.Expect(StatusRead(0x00), 1 + 2001 + 1);  // two seconds, and nothing is cleared
  registers.Expect(StatusRead(0x00));
  registers.Expect({W(0, 0x12340), W(4, 0xE8E8)});
  registers.Expect(BufferLook(0x80));
  registers.Expect(Filled());
  registers.Expect(CompletionLook(0x80));
  registers.Expect(StatusCleared());
  EXPECT_TRUE(flash.ProgramRun(0x12340, kWords.data()));
  ExpectReport(FlashResult::kErrorsAtStart, 0x00, 0x80, 4);
}

TEST_F(C28FxJ3AProgram, RefusesOtherAddressesButClearsTheStatusFirst) {
  for (const std::uint32_t address : {8u, 1u, 0x1234Fu, 0x3FFFF8u, 0x400000u, 0x400010u, 0xFFFFFFF0u, 0xFFFFFFFFu}) {
    registers.Expect(StatusCleared());
    EXPECT_FALSE(flash.ProgramRun(address, kWords.data())) << address;
    registers.ExpectDone();
    ExpectReport(FlashResult::kNone, 0, 0, 0);
  }
}

TEST_F(C28FxJ3AProgram, AcceptsTheLastRunOfTheDevice) {
  registers.Expect(Join({StatusCleared(), StatusRead(0x80), {W(0, 0x3FFFF0), W(4, 0xE8E8)}}));
  registers.Expect({W(0, 0x3FFFF0), R(4, 0x80), W(0, 0x3FFFF0), W(4, 0x0F0F)});
  for (std::uint32_t i = 0; i < 16; ++i)
    registers.Expect({W(0, 0x3FFFF0 + i), W(4, kWords[i])});
  registers.Expect({W(0, 0x3FFFF0), W(4, 0xD0), W(0, 0x3FFFF0), W(4, 0x70), W(0, 0x3FFFF0), R(4, 0x80)});
  registers.Expect(StatusCleared());
  EXPECT_TRUE(flash.ProgramRun(0x3FFFF0, kWords.data()));
}

/// Where a run fails, and the marks that it has by then.
enum class Stage { kBuffer, kCompletion };

class C28FxJ3AProgramFailure : public C28FxJ3AProgram, public testing::WithParamInterface<Stage> {
 protected:
  int Marks() const { return GetParam() == Stage::kBuffer ? 2 : 4; }

  /// A run up to where it fails.
  RegisterScript UpToTheFailure(std::uint32_t statusBefore) const {
    if (GetParam() == Stage::kBuffer) return Started(statusBefore);
    return Join({Started(statusBefore), BufferLook(0x80), Filled()});
  }
  RegisterScript Look(std::uint32_t status) const {
    return GetParam() == Stage::kBuffer ? BufferLook(status) : CompletionLook(status);
  }
  /// A look that finds the chip busy, with what is done before the next one.
  RegisterScript BusyLook() const {
    if (GetParam() == Stage::kBuffer) return Join({BufferLook(0x00), {W(0, 0x12340), W(4, 0xE8E8)}});
    return CompletionLook(0x00);
  }
};

TEST_P(C28FxJ3AProgramFailure, IsAnyStatusBut0x80AndReportsARecoveredChip) {
  for (const std::uint32_t statusAfter : {0x88u, 0x81u, 0xC0u, 0xFFu}) {
    registers.Expect(UpToTheFailure(0x80));
    registers.Expect(Look(statusAfter));
    registers.Expect(StatusCleared());
    registers.Expect(StatusRead(0x80));
    EXPECT_FALSE(flash.ProgramRun(0x12340, kWords.data()));
    registers.ExpectDone();
    ExpectReport(FlashResult::kFailedRecovered, 0x80, statusAfter, Marks());

    registers.Expect(ReadAtZeroWithCommand());  // The recovery's look left read status mode.
    ReadAtZero();
    registers.ExpectDone();
  }
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
}

TEST_P(C28FxJ3AProgramFailure, IsAlsoAnErrorBitFromBeforeWhichTheRecoveryTolerates) {
  registers.Expect(UpToTheFailure(0x88));
  registers.Expect(Look(0x88));
  registers.Expect(StatusCleared());
  registers.Expect(StatusRead(0x88));
  EXPECT_FALSE(flash.ProgramRun(0x12340, kWords.data()));
  ExpectReport(FlashResult::kFailedRecovered, 0x88, 0x88, Marks());
}

TEST_P(C28FxJ3AProgramFailure, ReportsAChipThatDoesNotRecover) {
  for (const std::uint32_t statusRecovered : {0x90u, 0x00u}) {
    registers.Expect(UpToTheFailure(0x80));
    registers.Expect(Look(0x90));
    registers.Expect(StatusCleared());
    registers.Expect(StatusRead(statusRecovered));
    registers.Expect(StatusCleared());
    clock.ForgetSleeps();
    EXPECT_FALSE(flash.ProgramRun(0x12340, kWords.data()));
    registers.ExpectDone();
    ExpectReport(FlashResult::kFailedUnrecovered, 0x80, 0x90, Marks());
    EXPECT_THAT(clock.Sleeps(), ElementsAre(1));

    registers.Expect(ReadAtZeroWithoutCommand());  // It ended in a clear status.
    ReadAtZero();
    registers.ExpectDone();
  }
}

TEST_P(C28FxJ3AProgramFailure, ComesAfterFiftyMillisecondsOfWaiting) {
  LetFiveLooksReachTheDeadline();
  registers.Expect(UpToTheFailure(0x80));
  registers.Expect(BusyLook(), 4);
  registers.Expect(Look(0x00));
  registers.Expect(StatusCleared());
  registers.Expect(StatusRead(0x80));
  EXPECT_FALSE(flash.ProgramRun(0x12340, kWords.data()));
  ExpectReport(FlashResult::kTimedOut, 0x80, 0x00, Marks());
  EXPECT_THAT(clock.Sleeps(), ElementsAre(0, 0, 0, 0));
}

TEST_P(C28FxJ3AProgramFailure, IsATimeOutAlsoWhenTheChipDoesNotRecover) {
  LetFiveLooksReachTheDeadline();
  registers.Expect(UpToTheFailure(0x80));
  registers.Expect(BusyLook(), 4);
  registers.Expect(Look(0x10));
  registers.Expect(StatusCleared());
  registers.Expect(StatusRead(0x90));
  registers.Expect(StatusCleared());
  EXPECT_FALSE(flash.ProgramRun(0x12340, kWords.data()));
  ExpectReport(FlashResult::kTimedOut, 0x80, 0x10, Marks());
}

TEST_P(C28FxJ3AProgramFailure, IsAvertedByAReadyChipInTheLookAfterTheDeadline) {
  LetFiveLooksReachTheDeadline();
  registers.Expect(UpToTheFailure(0x80));
  registers.Expect(BusyLook(), 4);
  registers.Expect(Look(0x80));
  if (GetParam() == Stage::kBuffer) registers.Expect(Join({Filled(), CompletionLook(0x80)}));
  registers.Expect(StatusCleared());
  EXPECT_TRUE(flash.ProgramRun(0x12340, kWords.data()));
  ExpectReport(FlashResult::kCleanStart, 0x80, 0x80, 4);
}

TEST_P(C28FxJ3AProgramFailure, IsAvertedAfterALookDuringWhichTheDeadlinePassed) {
  SlowRegisters slow(registers, clock, 60 * test_support::ManualClock::kTicksPerMillisecond);
  flash.Attach(platform::RegisterWindow(0x1000, &slow));
  registers.Expect(UpToTheFailure(0x80));
  registers.Expect(BusyLook());
  registers.Expect(Look(0x80));
  if (GetParam() == Stage::kBuffer) registers.Expect(Join({Filled(), CompletionLook(0x80)}));
  registers.Expect(StatusCleared());
  EXPECT_TRUE(flash.ProgramRun(0x12340, kWords.data()));
}

TEST_P(C28FxJ3AProgramFailure, IsAnErrorAndNoTimeOutWhenThatLookFindsAnError) {
  LetFiveLooksReachTheDeadline();
  registers.Expect(UpToTheFailure(0x80));
  registers.Expect(BusyLook(), 4);
  registers.Expect(Look(0x90));
  registers.Expect(StatusCleared());
  registers.Expect(StatusRead(0x80));
  EXPECT_FALSE(flash.ProgramRun(0x12340, kWords.data()));
  ExpectReport(FlashResult::kFailedRecovered, 0x80, 0x90, Marks());
}

INSTANTIATE_TEST_SUITE_P(Stages, C28FxJ3AProgramFailure, testing::Values(Stage::kBuffer, Stage::kCompletion),
                         [](const auto& test) { return test.param == Stage::kBuffer ? "Buffer" : "Completion"; });

}  // namespace
