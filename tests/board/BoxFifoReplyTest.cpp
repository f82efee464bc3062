#include <gmock/gmock.h>

#include "BoxFifoFixture.h"

// Replies out of the box's FIFO.

namespace {

using namespace box_fifo;
using test_support::Bytes;
using test_support::FromHex;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Ge;
using testing::Le;
using testing::SizeIs;

using BoxFifoReplyTest = BoxFifoFixture;

/// The reply is there: the look whose outcome does not matter, the one that ends the wait, the one that decides.
RegisterScript ReplyBegins(std::uint32_t header) {
  return Sequence({Status(kEmpty), Status(0), Status(0), ReplyWord(header)});
}

TEST_F(BoxFifoReplyTest, TakesTheShortestReply) {
  registers.Expect(Sequence({ReplyBegins(0x0B0B0004), Status(0), ReplyWord(0x80F60002)}));
  EXPECT_EQ(Receive(), kHWCerr_None);
  EXPECT_EQ(replyLength, 8u);
  EXPECT_EQ(ReplyBytes(10), FromHex("0B 0B 00 04 80 F6 00 02 5A 5A"));
}

TEST_F(BoxFifoReplyTest, StoresALastWordThatIsNotWholeAndTellsTheTrueLength) {
  for (const std::uint32_t length : {5u, 6u, 7u}) {
    registers.Expect(Sequence({ReplyBegins(0x0B0B0000 | length), Status(0), ReplyWord(0x01020304),  //
                               Status(0), ReplyWord(0xA5A6A7A8)}));
    EXPECT_EQ(Receive(), kHWCerr_None);
    EXPECT_EQ(replyLength, length + 4);
    // What belongs to the word stands behind the end.
    Bytes expected = FromHex("0B 0B 00 05 01 02 03 04 A5 A6 A7 A8 5A 5A");
    expected[3] = static_cast<std::uint8_t>(length);
    EXPECT_EQ(ReplyBytes(14), expected);
  }
}

TEST_F(BoxFifoReplyTest, TakesTheLongestReplyInRuns) {
  registers.Expect(ReplyBegins(0x0B0B0800));
  registers.Expect(Sequence({Status(kHoldsRun), Times(16, ReplyWord(0x11223344))}), 32);
  EXPECT_EQ(Receive(), kHWCerr_None);
  EXPECT_EQ(replyLength, 2052u);
  EXPECT_EQ(ReplyBytes(8), FromHex("0B 0B 08 00 11 22 33 44"));
  EXPECT_EQ(Bytes(reply.begin() + 2048, reply.end()), FromHex("11 22 33 44 5A 5A 5A 5A"));
}

TEST_F(BoxFifoReplyTest, TakesTheReplyToItsOwnCommand) {
  registers.Expect(Sequence({Status(0x1100), SentWord(0x0B0B0004, kFirst), SentWord(0x80F60000, kLater),
                             ReplyBegins(0x0B0B0004), Status(0), ReplyWord(0x80F60000)}));
  EXPECT_EQ(helper.SendCommand("SoftwareReset", {}), kHWCerr_None);
}

TEST_F(BoxFifoReplyTest, CarriesACommandAndItsValuesThereAndBack) {
  registers.Expect(
      Sequence({Status(0x1100), SentWord(0x0B0B0006, kFirst), SentWord(0x80350000, kLater),
                SentWord(0x00C80000, kLater), ReplyBegins(0x0B0B000F), Status(kHoldsRun), ReplyWord(0x80350000),
                ReplyWord(0x00C80007), ReplyWord(0x9004005A), ReplyWord(0x42013900)}));
  std::uint8_t vpd[7] = {};
  EXPECT_EQ(helper.ExecuteCommand(
                "VPDInfo", {Argument::Symbol("Board", "VPD_Hollen"), Argument::OutBytes("VPDInfo", vpd, sizeof vpd)}),
            kHWCerr_None);
  EXPECT_EQ(Bytes(vpd, vpd + 7), FromHex("90 04 00 5A 42 01 39"));
}

// ---- Runs

TEST_F(BoxFifoReplyTest, ChecksOncePer16WordsWhereThereIsARun) {
  registers.Expect(Sequence({ReplyBegins(0x0B0B0048),                              // 18 words
                             Status(kHoldsRun), Times(16, ReplyWord(0x11223344)),  //
                             Status(0), ReplyWord(0x11223344), Status(0), ReplyWord(0x11223344)}));
  EXPECT_EQ(Receive(), kHWCerr_None);
  EXPECT_EQ(replyLength, 76u);
}

TEST_F(BoxFifoReplyTest, BeginsTheBodyWithACheckWhateverWasSeenBefore) {
  registers.Expect(Sequence({Status(kHoldsRun), Status(kHoldsRun), Status(kHoldsRun), ReplyWord(0x0B0B0008),  //
                             Status(0), ReplyWord(0x11223344), Status(0), ReplyWord(0x11223344)}));
  EXPECT_EQ(Receive(), kHWCerr_None);
}

// Both bits count, though together they make no sense.
TEST_F(BoxFifoReplyTest, WaitsAndBeginsARunWhenOneStatusSaysEmptyAndRun) {
  registers.Expect(
      Sequence({ReplyBegins(0x0B0B0044),                                                                  // 17 words
                Status(kEmpty | kHoldsRun), Status(kEmpty), Status(0), Times(16, ReplyWord(0x11223344)),  //
                Status(0), ReplyWord(0x11223344)}));
  EXPECT_EQ(Receive(), kHWCerr_None);
}

TEST_F(BoxFifoReplyTest, BeginsNoRunForOneThatItSawWhileItWaited) {
  registers.Expect(Sequence({ReplyBegins(0x0B0B0008), Status(kEmpty), Status(kHoldsRun), ReplyWord(0x11223344),  //
                             Status(0), ReplyWord(0x11223344)}));
  EXPECT_EQ(Receive(), kHWCerr_None);
}

// ---- The wait for the first word

TEST_F(BoxFifoReplyTest, LooksEvery16MicrosecondsForTheFirstWord) {
  registers.Expect(Sequence({Times(5, Status(kEmpty)), Status(0), Status(0), ReplyWord(0x0B0B0004),  //
                             Status(0), ReplyWord(0)}));
  EXPECT_THAT(PausesOf([&] { Receive(); }), AllOf(SizeIs(5), Each(AllOf(Ge(16), Le(20)))));
  EXPECT_THAT(clock.Sleeps(), testing::IsEmpty());
}

// The first look is for nothing.
TEST_F(BoxFifoReplyTest, WaitsOnceEvenForAReplyThatIsThere) {
  registers.Expect(Sequence({Status(0), Status(0), Status(0), ReplyWord(0x0B0B0004), Status(0), ReplyWord(0)}));
  EXPECT_THAT(PausesOf([&] { Receive(); }), ElementsAre(AllOf(Ge(16), Le(20))));
}

TEST_F(BoxFifoReplyTest, ReturnsATimeOutAndFlushesNothing) {
  SetClockStep(100);
  registers.Expect(Times(6, Status(kEmpty)));  // one for nothing, four in 1.2 milliseconds, one that decides
  EXPECT_EQ(Receive(1000), 0x8A030012u);
  EXPECT_EQ(replyLength, 0u);
  EXPECT_THAT(reply, Each(0x5A));
}

TEST_F(BoxFifoReplyTest, TakesAReplyThatTheLastLookFinds) {
  SetClockStep(100);
  registers.Expect(Sequence({Times(5, Status(kEmpty)), Status(0), ReplyWord(0x0B0B0004), Status(0), ReplyWord(0)}));
  EXPECT_EQ(Receive(1000), kHWCerr_None);
  EXPECT_EQ(replyLength, 8u);
}

TEST_F(BoxFifoReplyTest, DoesNotWaitWithoutTimeAndGoesByTheSecondLook) {
  registers.Expect(Sequence({Status(0), Status(kEmpty)}));
  EXPECT_EQ(Receive(0), kHWCerr_CommandTimeout);
  registers.Expect(Sequence({Status(kEmpty), Status(0), ReplyWord(0x0B0B0004), Status(0), ReplyWord(0)}));
  EXPECT_EQ(Receive(0), kHWCerr_None);
}

TEST_F(BoxFifoReplyTest, TakesTheTimeOutsHighWord) {
  SetClockStep(1'000'000);
  registers.Expect(Sequence({Times(1000, Status(kEmpty)), Status(0), Status(0), ReplyWord(0x0B0B0004),  //
                             Status(0), ReplyWord(0)}));
  EXPECT_EQ(Receive(0, 1), kHWCerr_None);
}

// Nobody throws away what came too late, so that the next command takes it for its own, and so on.
TEST_F(BoxFifoReplyTest, TakesALateReplyForThatOfTheNextCommand) {
  SetClockStep(1'000'000);
  const RegisterScript request = Sequence({Status(0x1100), SentWord(0x0B0B0006, kFirst), SentWord(0x80550000, kLater)});
  registers.Expect(Sequence({request, SentWord(0x00010000, kLater), Times(3, Status(kEmpty))}));
  registers.Expect(
      Sequence({request, SentWord(0x00020000, kLater), Status(0), Status(0), Status(0), ReplyWord(0x0B0B0008),
                Status(kHoldsRun), ReplyWord(0x80550000), ReplyWord(0x00014131)}));  // part 1, "A1"
  std::uint8_t version[2] = {};
  const auto ask = [&](std::uint16_t part) {
    return helper.ExecuteCommand("GetStringPartRev",
                                 {Argument::UInt16("PartID", part), Argument::OutBytes("Version", version, 2)});
  };
  EXPECT_EQ(ask(1), kHWCerr_CommandTimeout);
  EXPECT_EQ(ask(2), kHWCerr_None);
  EXPECT_EQ(Bytes(version, version + 2), FromHex("41 31"));
}

TEST_F(BoxFifoReplyTest, TakesALateReplyWithoutACommandToo) {
  SetClockStep(1'000'000);
  registers.Expect(
      Sequence({Status(0x1100), SentWord(0x0B0B0004, kFirst), SentWord(0x800A0000, kLater), Times(3, Status(kEmpty))}));
  const Bytes command = FromHex("0B 0B 00 04 80 0A 00 00");
  reply.assign(kReplyRoomBytes, 0x5A);
  EXPECT_EQ(helper.TransactBoBCommand(command.data(), 8, reply.data(), &replyLength, 1'000'000, 0),
            kHWCerr_CommandTimeout);
  registers.Expect(Sequence({ReplyBegins(0x0B0B0004), Status(0), ReplyWord(0x800A0000)}));
  EXPECT_EQ(Receive(), kHWCerr_None);
  EXPECT_EQ(ReplyBytes(8), FromHex("0B 0B 00 04 80 0A 00 00"));
}

// ---- Pauses in the middle

TEST_F(BoxFifoReplyTest, LooksEvery8MicrosecondsInTheMiddle) {
  registers.Expect(Sequence({Status(0), Status(0), Status(0), ReplyWord(0x0B0B0004), Times(6, Status(kEmpty)),
                             Status(0), ReplyWord(0x80F60000)}));
  std::vector<std::int64_t> pauses = PausesOf([&] { Receive(); });
  ASSERT_THAT(pauses, SizeIs(7));
  EXPECT_THAT(pauses.front(), AllOf(Ge(16), Le(20)));
  pauses.erase(pauses.begin());
  EXPECT_THAT(pauses, Each(AllOf(Ge(8), Le(12))));
}

TEST_F(BoxFifoReplyTest, ThrowsWhenTheReplyStopsInTheMiddleAndFlushesNothing) {
  SetClockStep(100);
  registers.Expect(
      Sequence({ReplyBegins(0x0B0B0008), Status(0), ReplyWord(0x80550000), Status(kEmpty), Times(4, Status(kEmpty))}));
  EXPECT_EQ(FailureOf([&] { Receive(1000); }),
            "VeltraHelper.cpp: BOB Communications error, timeout while reading reply");
  EXPECT_EQ(replyLength, 0u);
}

TEST_F(BoxFifoReplyTest, GivesEachPauseTheWholeTimeOut) {
  SetClockStep(100);
  const RegisterScript nearlyTooLong = Sequence({Status(kEmpty), Times(3, Status(kEmpty)), Status(0)});
  registers.Expect(Sequence({ReplyBegins(0x0B0B000C), nearlyTooLong, ReplyWord(1), nearlyTooLong, ReplyWord(2),
                             nearlyTooLong, ReplyWord(3)}));
  EXPECT_EQ(Receive(1000), kHWCerr_None);
  EXPECT_EQ(replyLength, 16u);
}

TEST_F(BoxFifoReplyTest, AllowsNoPauseWithoutTime) {
  registers.Expect(Sequence({Status(0), Status(0), ReplyWord(0x0B0B0004), Status(kEmpty)}));
  EXPECT_EQ(FailureOf([&] { Receive(0); }), "VeltraHelper.cpp: BOB Communications error, timeout while reading reply");
}

// ---- What is no reply

TEST_F(BoxFifoReplyTest, FlushesAndThrowsWithoutTheMark) {
  for (const std::uint32_t header : {0x00000004u, 0x0B0C0004u, 0x0A0B0004u, 0x00040B0Bu, 0xFFFFFFFFu}) {
    SCOPED_TRACE(header);
    registers.Expect(Sequence({ReplyBegins(header), Status(0), DroppedWord(), EmptyFlush()}));
    EXPECT_EQ(FailureOf([&] { Receive(); }), "VeltraHelper.cpp: BOB Communications error, missing reply header");
    EXPECT_EQ(replyLength, 0u);
    registers.ExpectDone();
  }
}

TEST_F(BoxFifoReplyTest, FlushesAndThrowsForALengthThatCannotBe) {
  for (const std::uint32_t length : {0u, 1u, 3u, 2049u, 2052u, 0xFFFFu}) {
    SCOPED_TRACE(length);
    registers.Expect(Sequence({ReplyBegins(0x0B0B0000 | length), Status(0), DroppedWord(), EmptyFlush()}));
    EXPECT_EQ(FailureOf([&] { Receive(); }), "VeltraHelper.cpp: BOB Communications error, bad reply length");
    EXPECT_EQ(replyLength, 0u);
    registers.ExpectDone();
  }
}

// The flush has the exchange's own time-out.
TEST_F(BoxFifoReplyTest, FlushesNothingWithoutTime) {
  registers.Expect(Sequence({Status(0), Status(0), ReplyWord(0x0B0B0003), Status(0)}));
  EXPECT_EQ(FailureOf([&] { Receive(0); }), "VeltraHelper.cpp: BOB Communications error, bad reply length");
}

}  // namespace
