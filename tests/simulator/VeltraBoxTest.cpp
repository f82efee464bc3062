#include "VeltraBoxFixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Versions and VPD.

TEST_F(VeltraBoxTest, TellsItsVersions) {
  Send(kHwConfig);
  EXPECT_EQ(Delay(), 300'000);
  EXPECT_THAT(Answer(), ElementsAre(0x0B0B0016, 0x80030000, 0x021800E1, 0x00010230, 0x001B0100, 0x322E3234, 0x20620000))
      << "22 bytes behind the length: codes, twelve revisions and the six characters of the text";
  ExpectNoErrors();
}

TEST_F(VeltraBoxTest, TellsWhatRunsAndNotWhatIsStored) {
  box.state().stored.revisions[0] = 0x77;
  EXPECT_EQ(Exchange(kHwConfig)[2], 0x021800E1u);
  box.PowerCycle(now);
  EXPECT_EQ(Exchange(kHwConfig)[2], 0x771800E1u);
}

TEST_F(VeltraBoxTest, TellsVersionsWithoutAText) {
  box.state().running.firmwareRev = "";
  EXPECT_THAT(Exchange(kHwConfig), ElementsAre(0x0B0B0010, 0x80030000, 0x021800E1, 0x00010230, 0x001B0100));
}

TEST_F(VeltraBoxTest, TellsTheVpdOfABoard) {
  Send(kVpdOfBrox);
  EXPECT_EQ(Delay(), 300'000);
  EXPECT_THAT(Answer(), ElementsAre(0x0B0B000F, 0x80350000, 0x00000007, 0x9004005A, 0x42013200))
      << "board and size in front of the seven bytes";
  ExpectNoErrors();
}

TEST_F(VeltraBoxTest, EchoesTheBoard) {
  box.state().vpd[2] = Bytes{0x78};
  EXPECT_THAT(Exchange({0x0B, 0x0B, 0x00, 0x06, 0x80, 0x35, 0x00, 0x00, 0x00, 0x02}),
              ElementsAre(0x0B0B0009, 0x80350000, 0x00020001, 0x78000000));
}

TEST_F(VeltraBoxTest, DoesNotAnswerForABoardThatIsNotThere) {
  for (const Bytes& board : {Bytes{0x00, 0x01}, Bytes{0x00, 0x03}, Bytes{0x01, 0x00}, Bytes{0xFF, 0xFF}})
    EXPECT_THAT(Exchange({0x0B, 0x0B, 0x00, 0x06, 0x80, 0x35, 0x00, 0x00, board[0], board[1]}), IsEmpty());
  ExpectNoErrors();
}

TEST_F(VeltraBoxTest, AnswersWithTheLongestVpd) {
  box.state().vpd[0] = Bytes(2040, 0x11);
  const Words answer = Exchange(kVpdOfBrox);
  ASSERT_EQ(answer.size(), 1u + 512);
  EXPECT_EQ(answer[0], 0x0B0B0800u);
  EXPECT_EQ(answer[2], 0x000007F8u);
  EXPECT_EQ(answer.back(), 0x11111111u);
}

TEST_F(VeltraBoxTest, AnswersInOrder) {
  Send(kHwConfig);
  Send(kVpdOfBrox);
  EXPECT_EQ(Answer()[1], 0x80030000u);
  EXPECT_EQ(Answer()[1], 0x80350000u);
  EXPECT_THAT(Answer(), IsEmpty());
}

TEST_F(VeltraBoxTest, IsSilentWhenSwitchedOff) {
  box.state().isOn = false;
  EXPECT_THAT(Exchange(kHwConfig), IsEmpty());
  Take(0x12345678, false);
  ExpectNoErrors();
  EXPECT_EQ(plan.Count(simulator::Fault::kBoxSilent), 0u) << "nothing reached it";
}

// Refused commands.

TEST_F(VeltraBoxTest, RefusesACommandThatItDoesNotKnow) {
  EXPECT_THAT(Exchange({0x0B, 0x0B, 0x00, 0x06, 0x80, 0x55, 0x00, 0x00, 0x00, 0x00}),
              ElementsAre(0x0B0B0004, 0x80550002));
  ExpectError("command 8055: is not known");
}

TEST_F(VeltraBoxTest, RefusesTheOtherDirectionAndOtherGroups) {
  const Bytes known = {0x03, 0x35, 0x06, 0x08, 0x0A, 0x0C, 0x0E, 0x10, 0x12, 0x14, 0x16};
  for (const std::uint8_t function : known) {
    const auto other = static_cast<std::uint8_t>(function ^ 1);
    EXPECT_THAT(Exchange({0x0B, 0x0B, 0x00, 0x04, 0x80, other, 0x00, 0x00}),
                ElementsAre(0x0B0B0004, 0x80000002u | std::uint32_t{other} << 16));
    EXPECT_THAT(Exchange({0x0B, 0x0B, 0x00, 0x04, 0x81, function, 0x00, 0x00}),
                ElementsAre(0x0B0B0004, 0x81000002u | std::uint32_t{function} << 16));
  }
  EXPECT_EQ(box.state().errors.total(), known.size() * 2);
}

TEST_F(VeltraBoxTest, RefusesBytesSixAndSevenThatAreNotZero) {
  EXPECT_THAT(Exchange({0x0B, 0x0B, 0x00, 0x04, 0x80, 0x03, 0x01, 0x00}), ElementsAre(0x0B0B0004, 0x80030001));
  EXPECT_THAT(Exchange({0x0B, 0x0B, 0x00, 0x04, 0x80, 0x03, 0x00, 0x02}), ElementsAre(0x0B0B0004, 0x80030001));
  EXPECT_THAT(Errors(),
              ElementsAre("box: HWConfigFB: bytes 6 and 7 are 0100", "box: HWConfigFB: bytes 6 and 7 are 0002"));
}

TEST_F(VeltraBoxTest, RefusesPacketsOfAWrongLength) {
  struct Case {
    std::uint8_t function;
    std::vector<std::uint8_t> values;  // how many bytes of them are too few or too many
  };
  const Case cases[] = {{0x03, {1}},    {0x35, {0, 1, 3}}, {0x06, {5, 7}},       {0x08, {0, 1}},
                        {0x0A, {1}},    {0x0C, {5, 7}},    {0x0E, {0, 2, 4, 5}}, {0x10, {1}},
                        {0x12, {5, 7}}, {0x14, {0, 1}},    {0x16, {1}}};
  std::uint64_t refused = 0;
  for (const Case& c : cases)
    for (const std::uint8_t values : c.values) {
      Bytes packet = {0x0B, 0x0B, 0x00, static_cast<std::uint8_t>(4 + values), 0x80, c.function, 0x00, 0x00};
      packet.resize(packet.size() + values, 0);
      EXPECT_THAT(Exchange(packet), ElementsAre(0x0B0B0004, 0x80000001u | std::uint32_t{c.function} << 16))
          << int{c.function} << " with " << int{values};
      ++refused;
    }
  EXPECT_EQ(box.state().errors.total(), refused);
  EXPECT_EQ(Errors()[0], "box: HWConfigFB: a packet of 9 bytes");
}

// Framing.

TEST_F(VeltraBoxTest, DoesNotLookAtWhatStandsBehindAPacket) {
  for (const std::uint8_t padding : Bytes{0x00, 0x0B, 0xFF})
    EXPECT_THAT(Exchange({0x0B, 0x0B, 0x00, 0x06, 0x80, 0x35, 0x00, 0x00, 0x00, 0x00, padding, padding}),
                testing::SizeIs(5));
  ExpectNoErrors();
}

TEST_F(VeltraBoxTest, DropsWordsUntilTheNextFirstOne) {
  Take(0x0B0B0004, false);
  Take(0x80030000, false);
  Take(0x0B0B0004, false);
  EXPECT_THAT(Answer(), IsEmpty());
  ExpectError("word 0b0b0004 outside a packet");
  EXPECT_THAT(Exchange(kHwConfig), testing::SizeIs(7));
  EXPECT_EQ(Errors().size(), 1u) << "one for the whole run of words";
  Take(0x80030000, false);
  EXPECT_EQ(Errors().size(), 2u);
}

TEST_F(VeltraBoxTest, DropsAPacketInWhichAnotherBegins) {
  Take(0x0B0B0006, true);
  Take(0x80350000, false);
  EXPECT_THAT(Exchange(kHwConfig), testing::SizeIs(7)) << "the other one is whole";
  EXPECT_THAT(Answer(), IsEmpty());
  ExpectError("a packet begins inside another");
}

TEST_F(VeltraBoxTest, DropsAPacketWithoutItsMark) {
  Take(0x0B0A0004, true);
  Take(0x80030000, false);
  EXPECT_THAT(Answer(), IsEmpty());
  ExpectError("a packet begins with 0b0a0004");
  EXPECT_THAT(Exchange(kHwConfig), testing::SizeIs(7));
}

TEST_F(VeltraBoxTest, DropsPacketsOfALengthThatCannotBe) {
  Take(0x0B0B0003, true);
  Take(0x80030000, false);
  Take(0x0B0B07FD, true);
  Take(0x80030000, false);
  EXPECT_THAT(Answer(), IsEmpty());
  EXPECT_THAT(Errors(), ElementsAre("box: a packet announces 3 bytes", "box: a packet announces 2045 bytes"));
}

TEST_F(VeltraBoxTest, TakesTheLongestPacket) {
  Take(0x0B0B07FC, true);
  for (int word = 1; word < 511; ++word)
    Take(word == 1 ? 0x80030000 : 0, false);
  EXPECT_THAT(Answer(), IsEmpty()) << "a word is missing";
  Take(0, false);
  EXPECT_THAT(Answer(), ElementsAre(0x0B0B0004, 0x80030001));
  ExpectError("HWConfigFB: a packet of 2048 bytes");
}

}  // namespace
