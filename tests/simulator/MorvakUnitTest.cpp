#include "MorvakUnitFixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// The driver's control calls.

TEST_F(MorvakUnitTest, TellsSlotsAndModel) {
  EXPECT_EQ(Control(0xAA010008, {}, 8), 0u);
  EXPECT_EQ(returned, 8u);
  EXPECT_THAT(out, ElementsAre(2, 0, 0, 0, 4, 0, 0, 0));
}

TEST_F(MorvakUnitTest, TellsWhatIsInASlot) {
  EXPECT_EQ(Control(0xAA010054, {0, 0, 0, 0}, 8), 0u);
  EXPECT_EQ(returned, 8u);
  EXPECT_THAT(out, ElementsAre(1, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(Control(0xAA010054, {1, 0, 0, 0}, 8), 0u);
  EXPECT_THAT(out, ElementsAre(2, 0, 0, 0, 0, 0, 0, 0));
  unit.state().codecState = {0xFFFFFFFE};
  EXPECT_EQ(Control(0xAA010054, {0, 0, 0, 0}, 8), 0u);
  EXPECT_THAT(out, ElementsAre(0xFE, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0));
  EXPECT_EQ(Control(0xAA010054, {1, 0, 0, 0}, 8), 0u);
  EXPECT_THAT(out, ElementsAre(0, 0, 0, 0, 0, 0, 0, 0)) << "empty";
  EXPECT_EQ(Control(0xAA010054, {2, 0, 0, 0}, 8), 87u) << "there is no such slot";
  EXPECT_EQ(returned, 99999u);
}

TEST_F(MorvakUnitTest, ReadsTheVpdOfABoard) {
  EXPECT_EQ(ReadVpd(0), 0u);
  EXPECT_EQ(returned, 4u);
  EXPECT_THAT(out, ElementsAre(0, 0, 0, 0));
  EXPECT_THAT(Bytes(area.begin(), area.begin() + 11),
              ElementsAre(0x90, 0x05, 0x00, 'P', 'N', 0x02, '1', '-', 0x78, 0x00, 0x00));
  EXPECT_EQ(std::count(area.begin() + 9, area.begin() + 8192, 0), 8183);
  EXPECT_EQ(area[8192], 0xEE) << "behind the area";
  EXPECT_EQ(ReadVpd(3), 0u);
  EXPECT_THAT(Bytes(area.begin(), area.begin() + 2), ElementsAre(0x78, 0x00));
}

TEST_F(MorvakUnitTest, FailsToReadVpdThatIsNotThere) {
  EXPECT_EQ(ReadVpd(2), 31u);
  EXPECT_EQ(ReadVpd(0, 8191), 87u);
  EXPECT_EQ(area[0], 0xEE);
  EXPECT_EQ(returned, 99999u);
  EXPECT_EQ(Control(0xAA010044, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x00, 0x20, 0, 0}, 4), 998u) << "no address";
}

TEST_F(MorvakUnitTest, ReleasesABuffer) {
  EXPECT_EQ(Control(0xAA010050, {0x10, 0x20, 0x30, 0x40, 0, 0, 0, 0}, 0), 0u);
  EXPECT_EQ(returned, 0u);
}

TEST_F(MorvakUnitTest, RefusesRecordsOfAnotherLength) {
  struct Case {
    std::uint32_t code;
    std::size_t inBytes;
    std::size_t outBytes;
  };
  for (const Case& c : {Case{0xAA010008, 0, 8}, Case{0xAA010038, 28, 8}, Case{0xAA010044, 16, 4},
                        Case{0xAA010050, 8, 0}, Case{0xAA010054, 4, 8}}) {
    EXPECT_EQ(Control(c.code, Bytes(c.inBytes + 1, 0), c.outBytes), 87u) << std::hex << c.code;
    if (c.inBytes > 0) {
      EXPECT_EQ(Control(c.code, Bytes(c.inBytes - 1, 0), c.outBytes), 87u) << std::hex << c.code;
    }
    if (c.outBytes > 0) {
      EXPECT_EQ(Control(c.code, Bytes(c.inBytes, 0), c.outBytes - 1), 122u) << std::hex << c.code;
    }
    EXPECT_EQ(returned, 99999u);
  }
  EXPECT_EQ(Control(0xAA01003C, {}, 8), 1u) << "there is no such call";
  EXPECT_EQ(Control(0xC1762080, {}, 96), 1u) << "nor a memory map";
  EXPECT_EQ(unit.TrapAt(0), nullptr);
}

// Versions and VPD over Talc.

TEST_F(MorvakUnitTest, TellsTheVersionOfAPart) {
  const std::int64_t start = clock.NowNanoseconds();
  EXPECT_EQ(Exchange(kFirmwareRev), kFirmwareRevIs) << "eleven bytes behind the length, the number and the text";
  EXPECT_EQ(NanosecondsSince(start), 300'000);
  EXPECT_THAT(
      Exchange({0x0B, 0x0B, 0x00, 0x06, 0x80, 0x55, 0x00, 0x00, 0x00, 0x08}),
      ElementsAre(0x0B, 0x0B, 0x00, 0x0D, 0x80, 0x55, 0x00, 0x00, 0x00, 0x08, '0', '0', '.', '0', '9', ' ', 'x'));
  ExpectNoErrors();
}

TEST_F(MorvakUnitTest, TellsWhatRunsAndNotWhatIsStored) {
  unit.state().stored.Set(0, "ABCD");
  EXPECT_EQ(Exchange(kFirmwareRev), kFirmwareRevIs);
  unit.state().PowerCycle(clock.NowNanoseconds());
  EXPECT_THAT(Exchange(kFirmwareRev),
              ElementsAre(0x0B, 0x0B, 0x00, 0x0A, 0x80, 0x55, 0x00, 0x00, 0x00, 0x00, 'A', 'B', 'C', 'D'));
}

TEST_F(MorvakUnitTest, TellsItsVpd) {
  const std::int64_t start = clock.NowNanoseconds();
  EXPECT_THAT(Exchange(kVpdInfo), ElementsAre(0x0B, 0x0B, 0x00, 0x0F, 0x80, 0x35, 0x00, 0x00, 0x00, 0x00, 0x00, 0x07,
                                              0x90, 0x04, 0x00, 'Z', 'B', 0x01, '1'));
  EXPECT_EQ(NanosecondsSince(start), 300'000);
}

TEST_F(MorvakUnitTest, FillsAReplyWithTheLongestVpdAndText) {
  unit.state().vpd = Bytes(2036, 0x11);
  const Bytes vpd = Exchange(kVpdInfo);
  ASSERT_EQ(vpd.size(), 2048u);
  EXPECT_THAT(Bytes(vpd.begin(), vpd.begin() + 13),
              ElementsAre(0x0B, 0x0B, 0x07, 0xFC, 0x80, 0x35, 0, 0, 0, 0, 0x07, 0xF4, 0x11));
  unit.state().running.Set(0, std::string(2038, '1'));
  EXPECT_EQ(Exchange(kFirmwareRev).size(), 2048u);
}

TEST_F(MorvakUnitTest, DoesNotAnswerForWhatIsNotThere) {
  unit.state().vpd.reset();
  const Bytes codec = {0x0B, 0x0B, 0x00, 0x06, 0x80, 0x55, 0x00, 0x00, 0x00, 0x03};
  const Bytes noPart = {0x0B, 0x0B, 0x00, 0x06, 0x80, 0x55, 0x00, 0x00, 0x01, 0x00};
  const Bytes noBoard = {0x0B, 0x0B, 0x00, 0x06, 0x80, 0x35, 0x00, 0x00, 0x00, 0x02};
  for (const Bytes& packet : {kVpdInfo, codec, noPart, noBoard}) {
    const std::int64_t start = clock.NowNanoseconds();
    EXPECT_THAT(Exchange(packet, 70'000), IsEmpty());
    EXPECT_EQ(NanosecondsSince(start), 70'000'000) << "the whole wait";
  }
  ExpectNoErrors();
}

// The exchange.

TEST_F(MorvakUnitTest, GivesUpAtItsTimeOut) {
  EXPECT_THAT(Exchange(kFirmwareRev, 299), IsEmpty());
  EXPECT_EQ(Exchange({}, 1), kFirmwareRevIs) << "the answer is still to come";
  EXPECT_EQ(Exchange(kFirmwareRev, 300), kFirmwareRevIs);
  const std::int64_t start = clock.NowNanoseconds();
  EXPECT_THAT(Exchange({}, 0), IsEmpty());
  EXPECT_EQ(NanosecondsSince(start), 0);
}

TEST_F(MorvakUnitTest, HasNothingMoreToSay) {
  Exchange(kFirmwareRev);
  const std::int64_t start = clock.NowNanoseconds();
  EXPECT_THAT(Exchange({}), IsEmpty());
  EXPECT_EQ(NanosecondsSince(start), 1'000'000'000);
  ExpectNoErrors();
}

TEST_F(MorvakUnitTest, DoesAwayWithOldAnswersAtACommand) {
  Exchange(kFirmwareRev, 10);
  clock.Sleep(1);
  EXPECT_THAT(Exchange(kVpdInfo), testing::SizeIs(19));
  EXPECT_THAT(Exchange({}), IsEmpty());
}

TEST_F(MorvakUnitTest, WritesNoMoreThanTheCapacity) {
  EXPECT_EQ(Control(0xAA010038, TalcRecord(kFirmwareRev, kSecond, 12), 8), 0u);
  EXPECT_THAT(Bytes(reply.begin(), reply.begin() + 13),
              ElementsAre(0x0B, 0x0B, 0x00, 0x0B, 0x80, 0x55, 0, 0, 0, 0, '0', '1', 0xEE));
  EXPECT_EQ(Control(0xAA010038, TalcRecord(kFirmwareRev, kSecond, 0), 8), 0u) << "no reply is wanted";
  EXPECT_THAT(out, ElementsAre(0, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(reply[0], 0xEE);
}

TEST_F(MorvakUnitTest, RefusesRecordsThatPointNowhere) {
  Bytes noCommand = TalcRecord(kFirmwareRev, kSecond);
  std::fill_n(noCommand.begin(), 8, std::uint8_t{0});
  Bytes noLength = TalcRecord(kFirmwareRev, kSecond);
  std::fill_n(noLength.begin() + 16, 4, std::uint8_t{0});
  Bytes noReply = TalcRecord(kFirmwareRev, kSecond);
  std::fill_n(noReply.begin() + 8, 8, std::uint8_t{0});
  for (const Bytes& record : {noCommand, noLength, noReply}) {
    EXPECT_EQ(Control(0xAA010038, record, 8), 998u);
    EXPECT_EQ(returned, 99999u);
  }
  EXPECT_EQ(clock.NowNanoseconds(), 5'000'000) << "no time passed";
}

// Refused commands.

TEST_F(MorvakUnitTest, RefusesACommandThatItDoesNotKnow) {
  EXPECT_THAT(Exchange({0x0B, 0x0B, 0x00, 0x04, 0x80, 0x03, 0x00, 0x00}),
              ElementsAre(0x0B, 0x0B, 0x00, 0x04, 0x80, 0x03, 0x00, 0x02));
  ExpectError("command 8003: is not known");
}

TEST_F(MorvakUnitTest, RefusesTheOtherDirection) {
  for (const std::uint8_t function : Bytes{0x54, 0x34, 0x07, 0x09, 0x0B, 0x0D, 0x0F, 0x11, 0x13, 0x15, 0x17})
    EXPECT_THAT(Exchange({0x0B, 0x0B, 0x00, 0x04, 0x80, function, 0x00, 0x00}),
                ElementsAre(0x0B, 0x0B, 0x00, 0x04, 0x80, function, 0x00, 0x02));
  EXPECT_THAT(Exchange({0x0B, 0x0B, 0x00, 0x04, 0xC0, 0x03, 0x00, 0x00}),
              ElementsAre(0x0B, 0x0B, 0x00, 0x04, 0xC0, 0x03, 0x00, 0x02));
  EXPECT_EQ(unit.state().errors.total(), 12u);
}

TEST_F(MorvakUnitTest, RefusesBytesSixAndSevenAndAWrongLength) {
  EXPECT_THAT(Exchange({0x0B, 0x0B, 0x00, 0x06, 0x80, 0x55, 0x00, 0x01, 0x00, 0x00}),
              ElementsAre(0x0B, 0x0B, 0x00, 0x04, 0x80, 0x55, 0x00, 0x01));
  EXPECT_THAT(Exchange({0x0B, 0x0B, 0x00, 0x05, 0x80, 0x55, 0x00, 0x00, 0x00}),
              ElementsAre(0x0B, 0x0B, 0x00, 0x04, 0x80, 0x55, 0x00, 0x01));
  EXPECT_THAT(Errors(), ElementsAre("morvak: GetStringPartRev: bytes 6 and 7 are 0001",
                                    "morvak: GetStringPartRev: a packet of 9 bytes"));
}

TEST_F(MorvakUnitTest, DropsWhatIsNoPacket) {
  struct Case {
    Bytes packet;
    const char* complaint;
  };
  const Case cases[] = {
      {{0x0B}, "morvak: a packet of 1 bytes"},
      {{0x0B, 0x0B, 0x00, 0x03, 0x80, 0x55, 0x00}, "morvak: a packet of 7 bytes"},
      {{0x0B, 0x0A, 0x00, 0x06, 0x80, 0x55, 0x00, 0x00, 0x00, 0x00}, "morvak: a packet begins with 0b0a0006"},
      {{0x0B, 0x0B, 0x00, 0x03, 0x80, 0x55, 0x00, 0x00}, "morvak: a packet announces 3 bytes"},
      {{0x0B, 0x0B, 0x07, 0xFD, 0x80, 0x55, 0x00, 0x00}, "morvak: a packet announces 2045 bytes"},
      {{0x0B, 0x0B, 0x00, 0x06, 0x80, 0x55, 0x00, 0x00}, "morvak: a packet of 10 bytes in 8"},
      {{0x0B, 0x0B, 0x00, 0x04, 0x80, 0x55, 0x00, 0x00, 0x00, 0x00}, "morvak: a packet of 8 bytes in 10"},
  };
  for (const Case& c : cases) {
    EXPECT_THAT(Exchange(c.packet, 1'000), IsEmpty()) << c.complaint;
    EXPECT_EQ(Errors().back(), c.complaint);
  }
  EXPECT_EQ(Errors().size(), std::size(cases));
}

}  // namespace
