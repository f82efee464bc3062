#include <gmock/gmock.h>

#include "BoxFifoFixture.h"

// Commands into the box's FIFO.

namespace {

using namespace box_fifo;
using test_support::Bytes;
using test_support::FromHex;
using testing::AllOf;
using testing::Each;
using testing::Ge;
using testing::Le;
using testing::SizeIs;

constexpr char kTimeout[] = "VeltraHelper.cpp: BOB Communications error, timeout writing command fifo";

using BoxFifoSendTest = BoxFifoFixture;

TEST_F(BoxFifoSendTest, SendsWordsWithTheirFirstByteInFrontAndMarksTheFirst) {
  registers.Expect(Sequence({Status(0), SentWord(0x0B0B0006, kFirst),  //
                             Status(0), SentWord(0x80350000, kLater),  //
                             Status(0), SentWord(0x00C80102, kLater)}));
  EXPECT_EQ(Send(FromHex("0B 0B 00 06 80 35 00 00 00 C8 01 02")), kHWCerr_None);
}

// The reply FIFO's bits do not matter here.
TEST_F(BoxFifoSendTest, WritesBackTheStatusThatItRead) {
  registers.Expect(Sequence({Status(0xFFFFFCFF), SentWord(0x01020304, kFirst)}));
  EXPECT_EQ(Send(FromHex("01 02 03 04")), kHWCerr_None);
}

TEST_F(BoxFifoSendTest, SendsALastWordThatIsNotWholeWithZerosBehindIt) {
  struct Case {
    std::uint32_t lengthBytes;
    std::uint32_t lastWord;
  };
  const Bytes command = FromHex("01 02 03 04 A5 A6 A7 A8 FF FF FF FF");
  for (const Case& each : {Case{5, 0xA5000000}, Case{6, 0xA5A60000}, Case{7, 0xA5A6A700}, Case{8, 0xA5A6A7A8}}) {
    SCOPED_TRACE(each.lengthBytes);
    registers.Expect(
        Sequence({Status(0), SentWord(0x01020304, 0x80000020), Status(0), SentWord(each.lastWord, 0x80000000)}));
    EXPECT_EQ(helper.TransactBoBCommand(command.data(), each.lengthBytes, nullptr, nullptr, 1000, 0), kHWCerr_None);
    registers.ExpectDone();
  }
}

TEST_F(BoxFifoSendTest, SendsASingleByte) {
  const Bytes exact{0xA5};
  registers.Expect(Sequence({Status(0), SentWord(0xA5000000, kFirst)}));
  EXPECT_EQ(Send(exact), kHWCerr_None);
}

TEST_F(BoxFifoSendTest, SendsNothingOfACommandWithoutBytes) {
  const Bytes command{0xA5};
  EXPECT_EQ(helper.TransactBoBCommand(command.data(), 0, nullptr, nullptr, 1000, 0), kHWCerr_None);
}

// ---- Runs

TEST_F(BoxFifoSendTest, ChecksOncePer16WordsWhereThereIsRoomForARun) {
  registers.Expect(
      Sequence({Status(kRoomForRun), SentWord(0x11111111, kFirst), Times(15, SentWord(0x11111111, kLater)),  //
                Status(kRoomForRun), Times(16, SentWord(0x11111111, kLater)),
                // No room for a run any more: each word is checked.
                Status(0), SentWord(0x11111111, kLater), Status(0), SentWord(0x11111111, kLater)}));
  EXPECT_EQ(Send(Bytes(4 * 34, 0x11)), kHWCerr_None);
}

TEST_F(BoxFifoSendTest, BeginsARunOnceThereIsRoomForOne) {
  registers.Expect(Sequence({Status(0), SentWord(0x11111111, kFirst),                       //
                             Status(kRoomForRun), Times(16, SentWord(0x11111111, kLater)),  //
                             Status(0), SentWord(0x11111111, kLater)}));
  EXPECT_EQ(Send(Bytes(4 * 18, 0x11)), kHWCerr_None);
}

TEST_F(BoxFifoSendTest, CountsALastWordThatIsNotWholeInARun) {
  // The 16th word, and the 17th.
  registers.Expect(Sequence({Status(kRoomForRun), SentWord(0x11111111, kFirst), Times(14, SentWord(0x11111111, kLater)),
                             SentWord(0x11000000, kLater)}));
  EXPECT_EQ(Send(Bytes(61, 0x11)), kHWCerr_None);
  registers.ExpectDone();
  registers.Expect(
      Sequence({Status(kRoomForRun), SentWord(0x11111111, kFirst), Times(15, SentWord(0x11111111, kLater)),  //
                Status(kRoomForRun), SentWord(0x11111100, kLater)}));
  EXPECT_EQ(Send(Bytes(67, 0x11)), kHWCerr_None);
}

TEST_F(BoxFifoSendTest, BeginsEachCommandWithACheck) {
  for (int i = 0; i < 2; ++i) {
    registers.Expect(Sequence({Status(kRoomForRun), SentWord(0x11111111, kFirst), SentWord(0x11111111, kLater)}));
    EXPECT_EQ(Send(Bytes(8, 0x11)), kHWCerr_None);
  }
}

// Both bits count, though together they make no sense.
TEST_F(BoxFifoSendTest, WaitsAndBeginsARunWhenOneStatusSaysFullAndRoom) {
  registers.Expect(Sequence({Status(kFull | kRoomForRun), Status(kFull), Status(0), SentWord(0x11111111, kFirst),
                             Times(15, SentWord(0x11111111, kLater)), Status(0), SentWord(0x11111111, kLater)}));
  EXPECT_EQ(Send(Bytes(4 * 17, 0x11)), kHWCerr_None);
}

TEST_F(BoxFifoSendTest, BeginsNoRunForRoomThatItSawWhileItWaited) {
  registers.Expect(Sequence({Status(kFull), Status(kRoomForRun), SentWord(0x11111111, kFirst),  //
                             Status(0), SentWord(0x11111111, kLater)}));
  EXPECT_EQ(Send(Bytes(8, 0x11)), kHWCerr_None);
}

// ---- A full FIFO

TEST_F(BoxFifoSendTest, WaitsForAFullFifo) {
  registers.Expect(Sequence({Status(0), SentWord(0x11111111, kFirst),  //
                             Status(kFull), Times(100, Status(kFull)), Status(0), SentWord(0x11111111, kLater)}));
  EXPECT_EQ(Send(Bytes(8, 0x11)), kHWCerr_None);
}

TEST_F(BoxFifoSendTest, LooksEvery16MicrosecondsWithoutGivingUpTheProcessor) {
  registers.Expect(Sequence({Times(5, Status(kFull)), Status(0), SentWord(0x11111111, kFirst)}));
  EXPECT_THAT(PausesOf([&] { Send(Bytes(4, 0x11)); }), AllOf(SizeIs(5), Each(AllOf(Ge(16), Le(20)))));
  EXPECT_THAT(clock.Sleeps(), testing::IsEmpty());
}

TEST_F(BoxFifoSendTest, ThrowsWhenTheFifoStaysFullPastTheTimeOut) {
  // A look takes three readings of the clock: two for the wait, one for the time that has gone by.
  SetClockStep(100);
  registers.Expect(Sequence({Status(0), SentWord(0x11111111, kFirst),  // this one stays sent
                             Status(kFull), Times(4, Status(kFull))}));
  EXPECT_EQ(FailureOf([&] { Send(Bytes(12, 0x11), 1000); }), kTimeout);
  registers.ExpectDone();  // and nothing is flushed
}

TEST_F(BoxFifoSendTest, GoesByTheLastLookWhenTheTimeIsUp) {
  SetClockStep(100);
  registers.Expect(Sequence({Status(kFull), Times(3, Status(kFull)), Status(0), SentWord(0x11111111, kFirst)}));
  EXPECT_EQ(Send(Bytes(4, 0x11), 1000), kHWCerr_None);
}

TEST_F(BoxFifoSendTest, GivesEachWaitTheWholeTimeOut) {
  SetClockStep(100);
  const RegisterScript nearlyTooLong = Sequence({Status(kFull), Times(3, Status(kFull)), Status(0)});
  registers.Expect(Sequence({nearlyTooLong, SentWord(0x11111111, kFirst),  //
                             nearlyTooLong, SentWord(0x11111111, kLater),  //
                             nearlyTooLong, SentWord(0x11111111, kLater)}));
  EXPECT_EQ(Send(Bytes(12, 0x11), 1000), kHWCerr_None);
}

TEST_F(BoxFifoSendTest, DoesNotWaitWithoutTime) {
  registers.Expect(Sequence({Status(0), SentWord(0x11111111, kFirst)}));
  EXPECT_EQ(Send(Bytes(4, 0x11), 0), kHWCerr_None);
  registers.Expect(Status(kFull));
  EXPECT_EQ(FailureOf([&] { Send(Bytes(4, 0x11), 0); }), kTimeout);
}

TEST_F(BoxFifoSendTest, TakesTheTimeOutsHighWord) {
  SetClockStep(1'000'000);
  registers.Expect(Sequence({Status(kFull), Times(1000, Status(kFull)), Status(0), SentWord(0x11111111, kFirst)}));
  EXPECT_EQ(Send(Bytes(4, 0x11), 0, 1), kHWCerr_None);  // 4,294 seconds
  // 4,294,967,296 microseconds are over after 1432 looks of 3 seconds.
  registers.Expect(Sequence({Status(kFull), Times(1432, Status(kFull))}));
  EXPECT_EQ(FailureOf([&] { Send(Bytes(4, 0x11), 0, 1); }), kTimeout);
}

TEST_F(BoxFifoSendTest, TakesTheLargestTimeOutForALongOne) {
  for (const std::uint32_t high : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(high);
    registers.Expect(Sequence({Status(kFull), Times(100, Status(kFull)), Status(0), SentWord(0x11111111, kFirst)}));
    EXPECT_EQ(Send(Bytes(4, 0x11), 0xFFFFFFFF, high), kHWCerr_None);
  }
}

// ---- Sends alone

TEST_F(BoxFifoSendTest, IsDoneOnceAllIsSentWhenThereIsNoPlaceForAReply) {
  const Bytes command(4, 0x11);
  std::uint8_t room[kReplyRoomBytes] = {};
  std::uint32_t length = sizeof room;
  const RegisterScript script = Sequence({Status(0), SentWord(0x11111111, kFirst)});
  registers.Expect(script);
  EXPECT_EQ(helper.TransactBoBCommand(command.data(), 4, nullptr, nullptr, 1000, 0), kHWCerr_None);
  registers.Expect(script);
  EXPECT_EQ(helper.TransactBoBCommand(command.data(), 4, room, nullptr, 1000, 0), kHWCerr_None);
  registers.Expect(script);
  EXPECT_EQ(helper.TransactBoBCommand(command.data(), 4, nullptr, &length, 1000, 0), kHWCerr_None);
  EXPECT_EQ(length, sizeof room);
  EXPECT_THAT(room, Each(0));
}

}  // namespace
