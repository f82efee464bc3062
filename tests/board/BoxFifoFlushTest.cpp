#include <gmock/gmock.h>

#include "BoxFifoFixture.h"

// Replies that nobody waits for any more, and what opening a card does about them.

namespace {

using namespace box_fifo;
using driver_scripts::Closes;
using driver_scripts::IsAbsent;
using driver_scripts::kBelmara;
using driver_scripts::kDovu;
using driver_scripts::MapsRegisters;
using driver_scripts::OpensCard;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Ge;
using testing::Le;

using BoxFifoFlushTest = BoxFifoFixture;

TEST_F(BoxFifoFlushTest, WaitsForAnEmptyFifoToStayEmptyFor100Microseconds) {
  registers.Expect(EmptyFlush());
  EXPECT_THAT(PausesOf([&] { EXPECT_EQ(Flush(), kHWCerr_None); }), ElementsAre(AllOf(Ge(100), Le(104))));
  EXPECT_THAT(clock.Sleeps(), testing::IsEmpty());
}

TEST_F(BoxFifoFlushTest, DropsWordsUnreadUntilTheFifoIsEmpty) {
  registers.Expect(Sequence({Status(0), DroppedWord(), Status(kHoldsRun), DroppedWord(), Status(0), DroppedWord(),
                             Status(kEmpty), Status(kEmpty)}));
  EXPECT_EQ(Flush(), kHWCerr_None);
}

TEST_F(BoxFifoFlushTest, GoesOnWhenTheBoxOnlyPaused) {
  registers.Expect(Sequence({Status(0), DroppedWord(),                  //
                             Status(kEmpty), Status(0), DroppedWord(),  //
                             Status(kEmpty), Status(0), DroppedWord(), Status(kEmpty), Status(kEmpty)}));
  EXPECT_EQ(Flush(), kHWCerr_None);
}

TEST_F(BoxFifoFlushTest, EndsWithItsTimeWhileTheBoxKeepsTalking) {
  SetClockStep(1000);  // one look at the clock for each word
  registers.Expect(Sequence({Status(0), Times(5, Sequence({DroppedWord(), Status(0)}))}));
  EXPECT_EQ(Flush(5000), kHWCerr_None);
}

TEST_F(BoxFifoFlushTest, LooksOnceWithoutTime) {
  registers.Expect(Status(0));
  EXPECT_EQ(Flush(0), kHWCerr_None);
  registers.Expect(Status(kEmpty));
  EXPECT_EQ(Flush(0), kHWCerr_None);
}

TEST_F(BoxFifoFlushTest, TakesTheTimeOutsHighWord) {
  SetClockStep(1'000'000);
  registers.Expect(
      Sequence({Status(0), Times(1000, Sequence({DroppedWord(), Status(0)})), DroppedWord(), EmptyFlush()}));
  EXPECT_EQ(Flush(0, 1), kHWCerr_None);
}

TEST_F(BoxFifoFlushTest, IsWhatNeitherCommandNorReplyMeans) {
  std::uint32_t length = 17;
  registers.Expect(EmptyFlush());
  EXPECT_EQ(helper.TransactBoBCommand(nullptr, 0, nullptr, &length, 5000, 0), kHWCerr_None);
  EXPECT_EQ(length, 17u);
  registers.ExpectDone();
  registers.Expect(EmptyFlush());
  EXPECT_EQ(helper.TransactBoBCommand(nullptr, 8, nullptr, nullptr, 5000, 0), kHWCerr_None);
}

TEST_F(BoxFifoFlushTest, IsNotWhatAReplyWithoutALengthMeans) {
  std::uint8_t room[kReplyRoomBytes] = {};
  EXPECT_EQ(helper.TransactBoBCommand(nullptr, 0, room, nullptr, 5000, 0), kHWCerr_None);
  EXPECT_THAT(room, Each(0));
}

// ---- Opening

class BoxFifoOpenTest : public testing::Test {
 protected:
  BoxFifoOpenTest() {
    system.Use(devices);
    system.Use(clock.clock());
  }

  test_support::ScriptedRegisters registers;
  WatchedRegisters watched{registers};
  test_support::ScriptedRegisters dovu;
  test_support::ManualClock clock;
  test_support::StrictDevices devices;
  test_support::PlatformDouble system;
  platform::ScopedPlatform scope{system};
};

// The second card is only there for the drivers once the flush of the first is done. It has none of its own.
TEST_F(BoxFifoOpenTest, FlushesTheFirstCardBeforeItLooksForTheSecond) {
  devices.Expect(OpensCard(kBelmara, 0x11));
  devices.Expect(MapsRegisters(0x11, watched));
  registers.Expect(Sequence({Status(0), DroppedWord(), EmptyFlush()}));
  int accesses = 0;
  watched.OnAccess([&] {
    if (++accesses < 7) return;  // the last write of a status
    devices.Expect(OpensCard(kDovu, 0x12));
    devices.Expect(MapsRegisters(0x12, dovu, 0x30));
  });
  VeltraHelper helper(OpenMode::kHostCards);
  EXPECT_TRUE(helper.Open());
  EXPECT_EQ(accesses, 7);
  devices.ExpectDone();
  registers.ExpectDone();
  devices.Expect(Closes(0x11));
  devices.Expect(Closes(0x12));
}

TEST_F(BoxFifoOpenTest, GivesUpFlushingABoxThatKeepsTalkingAfter5Milliseconds) {
  clock.SetStepTicks(test_support::ManualClock::kTicksPerMillisecond);
  devices.Expect(OpensCard(kBelmara, 0x11));
  devices.Expect(MapsRegisters(0x11, registers));
  registers.Expect(Sequence({Status(0), Times(5, Sequence({DroppedWord(), Status(0)}))}));
  VeltraHelper helper(OpenMode::kBelmaraAlone);
  EXPECT_TRUE(helper.Open());
  EXPECT_TRUE(helper.HasTalcPath());
  devices.ExpectDone();
  devices.Expect(Closes(0x11));
}

constexpr char kNoBox[] = "VeltraHelper.cpp: No Belmara, nothing to flush";

// Whatever the exchange, the words are of a flush.
void ExpectNoBox(VeltraHelper& helper) {
  const std::uint8_t command[4] = {};
  std::uint8_t reply[kReplyRoomBytes];
  std::uint32_t length = 2000;
  EXPECT_EQ(FailureOf([&] { helper.TransactBoBCommand(nullptr, 0, nullptr, nullptr, 5000, 0); }), kNoBox);
  EXPECT_EQ(FailureOf([&] { helper.TransactBoBCommand(command, 4, nullptr, nullptr, 5000, 0); }), kNoBox);
  EXPECT_EQ(FailureOf([&] { helper.TransactBoBCommand(command, 4, reply, &length, 5000, 0); }), kNoBox);
  EXPECT_EQ(FailureOf([&] { helper.TransactBoBCommand(nullptr, 0, reply, nullptr, 5000, 0); }), kNoBox);
  EXPECT_EQ(FailureOf([&] { helper.SendCommand("SoftwareReset", {}); }), kNoBox);
}

TEST_F(BoxFifoOpenTest, HasNoBoxWithTheSecondCardAlone) {
  devices.Expect(IsAbsent(kBelmara));
  devices.Expect(OpensCard(kDovu, 0x12));
  devices.Expect(MapsRegisters(0x12, dovu));
  VeltraHelper helper(OpenMode::kHostCards);
  EXPECT_TRUE(helper.Open());
  EXPECT_EQ(static_cast<int>(helper.boardKind), 2);
  EXPECT_FALSE(helper.HasTalcPath());
  ExpectNoBox(helper);
  devices.ExpectDone();
  devices.Expect(Closes(0x12));
}

TEST_F(BoxFifoOpenTest, HasNoBoxBeforeItIsOpened) {
  VeltraHelper helper(OpenMode::kHostCards);
  ExpectNoBox(helper);
}

}  // namespace
