#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "simulator/BoxFifo.h"

using simulator::BoxFifo;
using simulator::VeltraBox;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::uint32_t kStatus = 0x80000;
constexpr std::uint32_t kReply = 0x80210;
constexpr std::uint32_t kData = 0x80380;
constexpr std::uint32_t kControl = 0x80384;
constexpr std::uint32_t kNothing = 0xFFFFFFFF;

/// The registers, a box that tells its versions in 7 words, and a time that moves when a test says so.
class BoxFifoTest : public testing::Test {
 protected:
  static simulator::VeltraBoxState State() {
    simulator::VeltraBoxState state;
    state.running.firmwareRev = "2.24 b";
    state.vpd[0] = std::vector<std::uint8_t>(100, 0x33);
    return state;
  }

  std::uint32_t Read(std::uint32_t offset) { return fifo.Read(offset, now, connected, &plan); }
  void Write(std::uint32_t offset, std::uint32_t value) { fifo.Write(offset, value, now, connected, &plan); }
  /// A read of the status with the write that belongs to it.
  std::uint32_t Status() {
    const std::uint32_t status = Read(kStatus);
    Write(kStatus, status);
    return status;
  }
  void Put(std::uint32_t word, std::uint32_t control = 0x80000000) {
    Write(kData, word);
    Write(kControl, control);
  }
  void SendHwConfig() {
    Put(0x0B0B0004, 0x80000020);
    Put(0x80030000);
  }
  std::uint32_t Pop() {
    const std::uint32_t word = Read(kReply);
    Write(kReply, 0);
    return word;
  }
  void WaitMicroseconds(std::int64_t microseconds) { now += microseconds * 1'000; }

  const std::vector<std::string>& Errors() const { return fifo.errors().texts(); }
  void ExpectNoErrors() const {
    EXPECT_THAT(Errors(), IsEmpty());
    EXPECT_THAT(box.state().errors.texts(), IsEmpty());
  }
  void ExpectError(const std::string& text) const { EXPECT_THAT(Errors(), ElementsAre("fifo: " + text)); }

  BoxFifo fifo;
  VeltraBox box{State()};
  VeltraBox* connected = &box;
  simulator::FaultPlan plan;
  std::int64_t now = 7'000'000;
};

TEST_F(BoxFifoTest, IsEmptyAtFirst) {
  EXPECT_EQ(Status(), 0x1100u) << "no reply, room for a run of words";
  ExpectNoErrors();
}

TEST_F(BoxFifoTest, BringsACommandAndItsAnswer) {
  SendHwConfig();
  WaitMicroseconds(2 * 4 + 300);
  EXPECT_EQ(Status(), 0x0100u) << "the first word is there";
  EXPECT_EQ(Read(kReply), 0x0B0B0016u);
  EXPECT_EQ(Read(kReply), 0x0B0B0016u) << "reading leaves it there";
  EXPECT_EQ(Pop(), 0x0B0B0016u);
  WaitMicroseconds(7 * 4);
  EXPECT_EQ(Pop(), 0x80030000u);
  for (int word = 0; word < 3; ++word)
    EXPECT_EQ(Pop(), 0u);
  EXPECT_EQ(Pop(), 0x322E3234u);
  EXPECT_EQ(Pop(), 0x20620000u);
  EXPECT_EQ(Status(), 0x1100u);
  ExpectNoErrors();
}

TEST_F(BoxFifoTest, DrainsAWordEachFourMicroseconds) {
  for (int word = 0; word < 49; ++word)
    Put(0x11111111, word == 0 ? 0x80000020 : 0x80000000);
  EXPECT_EQ(Status(), 0x1000u) << "room for 15";
  now += 3'999;
  EXPECT_EQ(Status(), 0x1000u);
  now += 1;
  EXPECT_EQ(Status(), 0x1100u) << "room for 16";
  WaitMicroseconds(4 * 48);
  for (int word = 0; word < 64; ++word) {
    EXPECT_EQ(Status() & 0x0200, 0u) << word;
    Put(0x22222222);
  }
  EXPECT_EQ(Status(), 0x1200u) << "full";
  WaitMicroseconds(4);
  EXPECT_EQ(Status(), 0x1000u);
  EXPECT_THAT(Errors(), IsEmpty());
}

TEST_F(BoxFifoTest, RefusesAWordWhenItIsFull) {
  SendHwConfig();
  for (int word = 2; word < 64; ++word)
    Put(0x33333333);
  Put(0x44444444);
  ExpectError("command word 44444444 into a full FIFO");
  EXPECT_EQ(Status() & 0x0200, 0x0200u);
}

TEST_F(BoxFifoTest, DrainsIntoNothingWithoutABox) {
  connected = nullptr;
  for (int word = 0; word < 64; ++word)
    Put(0x55555555);
  EXPECT_EQ(Status(), 0x1200u);
  WaitMicroseconds(4 * 64);
  EXPECT_EQ(Status(), 0x1100u);
  ExpectNoErrors();
}

TEST_F(BoxFifoTest, GivesAWordEachFourMicroseconds) {
  SendHwConfig();
  WaitMicroseconds(2 * 4 + 300);
  now -= 1;
  EXPECT_EQ(Status() & 0x1000, 0x1000u);
  now += 1;
  EXPECT_EQ(Pop(), 0x0B0B0016u);
  EXPECT_EQ(Status() & 0x1000, 0x1000u);
  now += 3'999;
  EXPECT_EQ(Status() & 0x1000, 0x1000u);
  now += 1;
  EXPECT_EQ(Pop(), 0x80030000u);
  ExpectNoErrors();
}

TEST_F(BoxFifoTest, SaysWhenItHoldsARunOfReplies) {
  Put(0x0B0B0006, 0x80000020);
  Put(0x80350000);
  Put(0x00000000);
  // 28 words come, the sixteenth 15 times 4 us after the first.
  WaitMicroseconds(3 * 4 + 300 + 15 * 4);
  now -= 1;
  EXPECT_EQ(Status(), 0x0100u);
  now += 1;
  EXPECT_EQ(Status(), 0x2100u);
  Pop();
  EXPECT_EQ(Status(), 0x0100u);
  WaitMicroseconds(1'000);
  for (int left = 27; left > 0; --left) {
    EXPECT_EQ(Status(), left >= 16 ? 0x2100u : 0x0100u) << left;
    Pop();
  }
  EXPECT_EQ(Status(), 0x1100u);
  ExpectNoErrors();
}

TEST_F(BoxFifoTest, GivesOneAnswerBehindTheOther) {
  SendHwConfig();
  SendHwConfig();
  WaitMicroseconds(2 * 4 + 300);
  // The second begins 8 us after the first, and has to wait until that has come with its 7 words.
  WaitMicroseconds(6 * 4);
  for (int word = 0; word < 7; ++word)
    Pop();
  EXPECT_EQ(Status() & 0x1000, 0x1000u);
  WaitMicroseconds(4);
  EXPECT_EQ(Pop(), 0x0B0B0016u);
  ExpectNoErrors();
}

TEST_F(BoxFifoTest, MarksTheFirstWordByItsControl) {
  Put(0x0B0B0004);
  Put(0x80030000);
  WaitMicroseconds(1'000);
  EXPECT_EQ(Status() & 0x1000, 0x1000u);
  EXPECT_THAT(box.state().errors.texts(), ElementsAre("box: word 0b0b0004 outside a packet"));
}

// Misuse.

TEST_F(BoxFifoTest, RefusesDataWithoutControlBetween) {
  Write(kData, 0x11111111);
  Write(kData, 0x0B0B0004);
  ExpectError("command word 11111111 without its control word");
  Write(kControl, 0x80000020);
  Put(0x80030000);
  WaitMicroseconds(1'000);
  EXPECT_EQ(Pop(), 0x0B0B0016u) << "the later word counts";
}

TEST_F(BoxFifoTest, RefusesControlWithoutData) {
  Write(kControl, 0x80000000);
  ExpectError("control word 80000000 without a command word");
  Put(0x0B0B0004, 0x80000020);
  Write(kControl, 0x80000000);
  EXPECT_EQ(Errors().size(), 2u) << "a word is put once";
}

TEST_F(BoxFifoTest, RefusesOtherControlWords) {
  for (const std::uint32_t control : {0u, 0x20u, 0x80000021u, 0x80000040u, 0xFFFFFFFFu})
    Put(0x0B0B0004, control);
  EXPECT_EQ(fifo.errors().total(), 5u);
  EXPECT_EQ(Errors()[1], "fifo: unknown control word 00000020");
  WaitMicroseconds(1'000);
  Read(kStatus);
  EXPECT_THAT(box.state().errors.texts(), IsEmpty()) << "the words are dropped";
}

TEST_F(BoxFifoTest, RefusesToReadAndPopWhereThereIsNothing) {
  EXPECT_EQ(Read(kReply), kNothing);
  Write(kReply, 0);
  EXPECT_THAT(Errors(), ElementsAre("fifo: read of an empty reply FIFO", "fifo: pop of an empty reply FIFO"));
}

TEST_F(BoxFifoTest, RefusesToPopWithAnotherValue) {
  fifo.AddStaleReplies();
  Write(kReply, 1);
  ExpectError("write of 00000001 to the reply FIFO");
  EXPECT_EQ(fifo.Replies().size(), 20u);
}

TEST_F(BoxFifoTest, RefusesToReadWhatCanOnlyBeWritten) {
  EXPECT_EQ(Read(kData), kNothing);
  EXPECT_EQ(Read(kControl), kNothing);
  EXPECT_THAT(Errors(), ElementsAre("fifo: read of register 80380", "fifo: read of register 80384"));
}

TEST_F(BoxFifoTest, WantsTheStatusWrittenBack) {
  fifo.AddStaleReplies();
  const std::function<void()> accesses[] = {[&] { Read(kReply); }, [&] { Write(kReply, 0); },
                                            [&] { Write(kData, 0x0B0B0004); }, [&] { Write(kControl, 0x80000020); },
                                            [&] { Status(); }};
  std::uint64_t errors = 0;
  for (const auto& access : accesses) {
    Read(kStatus);
    access();
    EXPECT_EQ(fifo.errors().total(), ++errors);
  }
  EXPECT_EQ(Errors().back(), "fifo: status 00002100 not written back");
}

TEST_F(BoxFifoTest, WantsTheVeryStatusWrittenBackAndOnce) {
  Read(kStatus);
  Write(kStatus, 0x1000);
  Write(kStatus, 0x1100);
  EXPECT_THAT(Errors(), ElementsAre("fifo: status 00001100 written back as 00001000",
                                    "fifo: write of 00001100 to the status without a read"));
}

// Endings.

TEST_F(BoxFifoTest, KeepsAnswersOnTheirWayWhenItSettles) {
  SendHwConfig();
  fifo.Settle(&box);
  EXPECT_THAT(fifo.Replies(), ElementsAre(0x0B0B0016, 0x80030000, 0, 0, 0, 0x322E3234, 0x20620000));
  now = 0;
  EXPECT_EQ(Pop(), 0x0B0B0016u) << "there at any time";
  ExpectNoErrors();
}

TEST_F(BoxFifoTest, RefusesWhatIsHalfDoneWhenItSettles) {
  Write(kData, 0x0B0B0004);
  Read(kStatus);
  fifo.Settle(&box);
  EXPECT_THAT(Errors(), ElementsAre("fifo: status 00001100 not written back",
                                    "fifo: command word 0b0b0004 without its control word"));
  Write(kControl, 0x80000020);
  EXPECT_EQ(Errors().size(), 3u) << "the word is gone";
}

TEST_F(BoxFifoTest, IsEmptyAfterAPowerLoss) {
  SendHwConfig();
  fifo.AddStaleReplies();
  Write(kData, 0x11111111);
  Read(kStatus);
  fifo.PowerLoss();
  WaitMicroseconds(1'000);
  EXPECT_EQ(Status(), 0x1100u);
  Write(kData, 0x0B0B0004);
  ExpectNoErrors();
}

TEST_F(BoxFifoTest, KeepsNoMoreAnswersThanItHasRoomFor) {
  fifo.SetReplies(std::vector<std::uint32_t>(4094, 0x12345678));
  SendHwConfig();
  WaitMicroseconds(1'000);
  Read(kStatus);
  ExpectError("an answer into a full reply FIFO");
  EXPECT_EQ(fifo.Replies().size(), 4096u);
}

TEST_F(BoxFifoTest, CopiesWithItsQueues) {
  SendHwConfig();
  BoxFifo copy = fifo;
  VeltraBox copiedBox = box;
  WaitMicroseconds(1'000);
  EXPECT_EQ(copy.Read(kReply, now, &copiedBox), 0x0B0B0016u);
  EXPECT_EQ(Pop(), 0x0B0B0016u);
}

// Faults.

TEST_F(BoxFifoTest, SaysThatItIsFullOnDemand) {
  plan.Add(simulator::ParseFault("command-fifo-full@2"));
  Put(0x0B0B0004, 0x80000020);
  EXPECT_EQ(Status(), 0x1100u);
  Put(0x80030000);
  EXPECT_EQ(Status(), 0x1200u);
  WaitMicroseconds(1'000);
  EXPECT_EQ(Status(), 0x0200u) << "the words that were put have come through";
  Put(0x0B0B0004, 0x80000020);
  EXPECT_EQ(plan.Count(simulator::Fault::kCommandFifoFull), 3u);
  ExpectNoErrors();
  fifo.Settle(&box);
  EXPECT_EQ(Status(), 0x0100u) << "not in another run";
}

TEST_F(BoxFifoTest, HoldsAnOldAnswerOnDemand) {
  fifo.AddStaleReplies();
  EXPECT_EQ(Status(), 0x2100u);
  EXPECT_EQ(Pop(), 0x0B0B0049u);
  EXPECT_EQ(Pop(), 0x80350000u);
  EXPECT_EQ(fifo.Replies().size(), 18u);
  ExpectNoErrors();
}

TEST_F(BoxFifoTest, HandsItsPlanToTheBox) {
  plan.Add(simulator::ParseFault("box-silent"));
  SendHwConfig();
  WaitMicroseconds(1'000);
  EXPECT_EQ(Status(), 0x1100u);
  EXPECT_EQ(plan.Count(simulator::Fault::kBoxSilent), 1u);
}

}  // namespace
