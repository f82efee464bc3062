#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

#include "board/MorvakHelper.h"
#include "DriverScripts.h"
#include "MorvakDriver.h"
#include "support/CapturedOutput.h"
#include "support/FailingAllocation.h"
#include "support/FailureOf.h"

// Exchanges with the second line, from the record that goes to its driver to the reply that comes back.

namespace {

using namespace driver_scripts;
using test_support::Bytes;
using test_support::CapturedOutput;
using test_support::FromHex;
using test_support::Hex;

constexpr std::uint64_t kHandle = 0x31;
constexpr char kBadHeader[] = "MorvakHelper.cpp: TransactBoBCommand: bad header on Talc response packet.";
constexpr char kNotSent[] = "MorvakHelper.cpp: TransactBoBCommand: can't send talc command - ioctl failed.";
constexpr char kBadReturn[] = "MorvakHelper.cpp: TransactBoBCommand: can't send talc command - bad ioctl return.";
constexpr char kNotOpen[] = "MorvakHelper.cpp: No Talc, nothing to flush";

const std::string kCommand = "0B 0B 00 04 80 0A 00 00";
const std::string kReply = "0B 0B 00 06 80 0A 00 00 12 34";

class MorvakExchange : public ::testing::Test {
 protected:
  MorvakExchange() {
    system.Use(driver);
    Open();
  }
  ~MorvakExchange() override { Close(); }

  void Open() {
    devices.Expect(OpensMorvak(kHandle));
    devices.Expect(TellsModel(kHandle, 2, 5));
    helper = std::make_unique<MorvakHelper>(OpenMode::kMorvak);
    helper->Open();
    devices.ExpectDone();
  }
  void Close() {
    devices.Expect(Closes(kHandle));
    helper.reset();
    devices.ExpectDone();
  }

  /// Sends the command with room for `replyBytes` of a reply.
  HwcStatus Exchange(std::uint32_t replyBytes = 2000) {
    const Bytes command = FromHex(kCommand);
    replyLength = replyBytes;
    return helper->IOCTL_TransactBoBCommand(command.data(), static_cast<std::uint32_t>(command.size()), reply.data(),
                                            &replyLength, 1'000'000, 0);
  }
  std::string Reply(std::size_t count) const {
    return Hex(Bytes(reply.begin(), reply.begin() + static_cast<std::ptrdiff_t>(count)));
  }
  /// The record of an exchange, from one offset to another.
  std::string Record(std::size_t exchange, std::ptrdiff_t from, std::ptrdiff_t to) const {
    const Bytes& record = driver.talcCalls.at(exchange).record;
    return Hex(Bytes(record.begin() + from, record.begin() + to));
  }

  Bytes reply = Bytes(8192, 0x77);
  std::uint32_t replyLength = 0;
  test_support::StrictDevices devices;
  MorvakDriver driver{devices};
  test_support::PlatformDouble system;
  platform::ScopedPlatform scope{system};
  std::unique_ptr<MorvakHelper> helper;
};

// ---- The record

TEST_F(MorvakExchange, TellsTheDriverWhereTheCommandIsAndWhereTheReplyGoes) {
  driver.talcAnswers = {{.reply = FromHex(kReply)}};
  EXPECT_EQ(Exchange(), kHWCerr_None);
  ASSERT_EQ(driver.talcCalls.size(), 1u);
  EXPECT_EQ(driver.talcCalls[0].device, kHandle);
  EXPECT_EQ(driver.talcCalls[0].record.size(), 28u);
  EXPECT_EQ(Hex(driver.talcCalls[0].command), kCommand);
  // 8 bytes of command, 2048 bytes of reply at most, a second.
  EXPECT_EQ(Record(0, 16, 28), "08 00 00 00 00 08 00 00 40 42 0F 00");
  EXPECT_EQ(replyLength, 10u);
  EXPECT_EQ(Reply(12), kReply + " 77 77");
}

TEST_F(MorvakExchange, MarksTheReplySoThatAnUnwrittenOneShows) {
  reply[0] = reply[1] = 0x0B;  // of an exchange before
  driver.talcAnswers = {{}};
  EXPECT_EQ(FailureOf([&] { Exchange(); }), kBadHeader);
  EXPECT_EQ(Hex(driver.talcCalls.at(0).replyBefore), "12 34 77 77");
  EXPECT_EQ(Reply(4), "12 34 77 77");
}

TEST_F(MorvakExchange, TellsTheSameCapacityWhateverTheRoom) {
  driver.talcAnswers = {{.reply = FromHex(kReply)}, {.reply = FromHex(kReply)}};
  EXPECT_EQ(Exchange(10), kHWCerr_None);
  EXPECT_EQ(Exchange(4096), kHWCerr_None);
  EXPECT_EQ(Record(0, 20, 24), "00 08 00 00");
  EXPECT_EQ(Record(1, 20, 24), "00 08 00 00");
}

TEST_F(MorvakExchange, HasNoUseForTheHighHalfOfTheTimeOut) {
  const Bytes command = FromHex(kCommand);
  driver.talcAnswers = {{.reply = FromHex(kReply)}, {.reply = FromHex(kReply)}};
  for (const std::uint32_t high : {0u, 0xFFFFFFFFu}) {
    replyLength = 2000;
    helper->IOCTL_TransactBoBCommand(command.data(), 8, reply.data(), &replyLength, 0x12345678, high);
  }
  EXPECT_EQ(Record(0, 24, 28), "78 56 34 12");
  EXPECT_EQ(Record(1, 24, 28), "78 56 34 12");
}

TEST_F(MorvakExchange, OnlyWaitsWithoutACommand) {
  driver.talcAnswers = {{.reply = FromHex(kReply)}};
  replyLength = 2000;
  EXPECT_EQ(helper->IOCTL_TransactBoBCommand(nullptr, 0, reply.data(), &replyLength, 1, 0), kHWCerr_None);
  EXPECT_EQ(Record(0, 0, 8), "00 00 00 00 00 00 00 00");
  EXPECT_NE(Record(0, 8, 16), "00 00 00 00 00 00 00 00");
  EXPECT_EQ(Record(0, 16, 28), "00 00 00 00 00 08 00 00 01 00 00 00");
  EXPECT_EQ(replyLength, 10u);
}

// The driver writes 2048 bytes in any case.
TEST_F(MorvakExchange, TakesBackNoMoreThanItsCallerHasRoomFor) {
  Bytes whole(2048, 0x41);
  whole[0] = whole[1] = 0x0B;
  whole[2] = 0;
  whole[3] = 6;
  driver.talcAnswers = {{.reply = whole}};
  EXPECT_EQ(Exchange(10), kHWCerr_None);
  EXPECT_EQ(Reply(12), "0B 0B 00 06 41 41 41 41 41 41 77 77");
}

// ---- What needs no driver

TEST_F(MorvakExchange, HasNothingToFlush) {
  EXPECT_EQ(helper->IOCTL_TransactBoBCommand(nullptr, 0, nullptr, nullptr, 0, 0), kHWCerr_None);
  replyLength = 5;
  EXPECT_EQ(helper->IOCTL_TransactBoBCommand(nullptr, 7, nullptr, &replyLength, 1, 1), kHWCerr_None);
  EXPECT_EQ(replyLength, 5u);
}

TEST_F(MorvakExchange, LooksForAFlushBeforeItLooksWhetherItIsOpen) {
  MorvakHelper closed(OpenMode::kMorvak);
  EXPECT_EQ(closed.IOCTL_TransactBoBCommand(nullptr, 0, nullptr, nullptr, 0, 0), kHWCerr_None);
  const Bytes command = FromHex(kCommand);
  replyLength = 2000;
  EXPECT_EQ(FailureOf([&] { closed.IOCTL_TransactBoBCommand(command.data(), 8, reply.data(), &replyLength, 1, 0); }),
            kNotOpen);
  EXPECT_EQ(FailureOf([&] { closed.IOCTL_TransactBoBCommand(command.data(), 8, nullptr, nullptr, 1, 0); }), kNotOpen);
  EXPECT_EQ(FailureOf([&] { closed.IOCTL_TransactBoBCommand(nullptr, 0, reply.data(), &replyLength, 1, 0); }),
            kNotOpen);
  EXPECT_EQ(Reply(2), "77 77");
}

TEST_F(MorvakExchange, CountsAReplyThatHasNowhereToGoAsNotWritten) {
  const Bytes command = FromHex(kCommand);
  replyLength = 2000;
  EXPECT_EQ(FailureOf([&] { helper->IOCTL_TransactBoBCommand(command.data(), 8, nullptr, &replyLength, 1, 0); }),
            kBadHeader);
  EXPECT_EQ(FailureOf([&] { helper->IOCTL_TransactBoBCommand(command.data(), 8, reply.data(), nullptr, 1, 0); }),
            kBadHeader);
}

// ---- What comes back

TEST_F(MorvakExchange, HandsOutATimeOutWhateverTheReply) {
  driver.talcAnswers = {{.status = kHWCerr_CommandTimeout},
                        {.reply = FromHex(kReply), .status = kHWCerr_CommandTimeout}};
  EXPECT_EQ(Exchange(), kHWCerr_CommandTimeout);
  EXPECT_EQ(replyLength, 2000u);
  EXPECT_EQ(Reply(3), "12 34 77");
  EXPECT_EQ(Exchange(), kHWCerr_CommandTimeout);
  EXPECT_EQ(replyLength, 2000u);
  EXPECT_EQ(Reply(10), kReply);
}

TEST_F(MorvakExchange, LooksAtNoOtherStatus) {
  for (const std::uint32_t status : {1u, 0x8A030026u, 0x8A030011u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(status);
    driver.talcAnswers.push_back({.reply = FromHex(kReply), .status = status});
    EXPECT_EQ(Exchange(), kHWCerr_None);
    EXPECT_EQ(replyLength, 10u);
    driver.talcAnswers.push_back({.status = status});
    EXPECT_EQ(FailureOf([&] { Exchange(); }), kBadHeader);
  }
}

TEST_F(MorvakExchange, TakesTheReplyBackEvenWhenTheCallFails) {
  driver.talcAnswers = {{.reply = FromHex(kReply), .succeeds = false},
                        {.reply = FromHex("01 02 03"), .status = kHWCerr_CommandTimeout, .succeeds = false}};
  EXPECT_EQ(FailureOf([&] { Exchange(); }), kNotSent);
  EXPECT_EQ(Reply(11), kReply + " 77");
  EXPECT_EQ(replyLength, 2000u);
  EXPECT_EQ(FailureOf([&] { Exchange(); }), kNotSent);
  EXPECT_EQ(Reply(4), "01 02 03 06");
}

TEST_F(MorvakExchange, TakesNoAnswerOfAnotherSize) {
  for (const std::uint32_t returned : {0u, 4u, 7u, 9u, 28u, 99999u}) {
    SCOPED_TRACE(returned);
    reply.assign(reply.size(), 0x77);
    driver.talcAnswers.push_back({.reply = FromHex(kReply), .returned = returned});
    EXPECT_EQ(FailureOf([&] { Exchange(); }), kBadReturn);
    EXPECT_EQ(Reply(11), kReply + " 77");
    EXPECT_EQ(replyLength, 2000u);
  }
}

TEST_F(MorvakExchange, TakesNoReplyWithAnotherHeader) {
  for (const char* const bad : {"0B 0A 00 04", "0A 0B 00 04", "12 0B 00 04", "0B 34 00 04", "00 00 00 04"}) {
    SCOPED_TRACE(bad);
    driver.talcAnswers.push_back({.reply = FromHex(bad)});
    EXPECT_EQ(FailureOf([&] { Exchange(); }), kBadHeader);
    EXPECT_EQ(replyLength, 2000u);
  }
}

TEST_F(MorvakExchange, TakesTheLengthFromTheThirdAndFourthByte) {
  struct Case {
    const char* reply;
    std::uint32_t room;
    std::uint32_t length;  ///< 0: longer than the room
  };
  const Case cases[] = {
      {"0B 0B 00 00", 2000, 4},    {"0B 0B 00 00", 4, 4},       {"0B 0B 00 01", 2000, 5}, {"0B 0B 00 01", 4, 0},
      {"0B 0B 01 02", 2000, 262},  {"0B 0B 07 CC", 2000, 2000}, {"0B 0B 07 CD", 2000, 0}, {"0B 0B 08 00", 2052, 2052},
      {"0B 0B 0F FC", 4096, 4096}, {"0B 0B 0F FD", 4096, 0},    {"0B 0B FF FF", 4096, 0},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(::testing::Message() << each.reply << " in " << each.room);
    driver.talcAnswers.push_back({.reply = FromHex(each.reply)});
    if (each.length == 0) {
      EXPECT_EQ(FailureOf([&] { Exchange(each.room); }), kBadHeader);
      EXPECT_EQ(replyLength, each.room);
    } else {
      EXPECT_EQ(Exchange(each.room), kHWCerr_None);
      EXPECT_EQ(replyLength, each.length);
    }
  }
}

// ---- Blocks

TEST_F(MorvakExchange, HasNoBlockForAReplyBeyond4096Bytes) {
  driver.talcAnswers = {{.reply = FromHex(kReply)}};
  CapturedOutput captured;
  EXPECT_EQ(FailureOf([&] { Exchange(4097); }), kBadHeader);
  EXPECT_EQ(captured.out(),
            "memory allocation is too large: 4097 requested 4096 is max available\n"
            "DynMem failed to allocate memory!\n");
  EXPECT_EQ(captured.err(), "");
  EXPECT_EQ(Hex(driver.talcCalls.at(0).command), kCommand);
  EXPECT_EQ(Record(0, 8, 24), "00 00 00 00 00 00 00 00 08 00 00 00 00 08 00 00");
  EXPECT_EQ(Reply(3), "12 34 77");
}

TEST_F(MorvakExchange, HasNoBlockForACommandBeyond4096Bytes) {
  const Bytes command(4097, 0x0B);
  driver.talcAnswers = {{.reply = FromHex(kReply)}};
  replyLength = 2000;
  CapturedOutput captured;
  EXPECT_EQ(helper->IOCTL_TransactBoBCommand(command.data(), 4097, reply.data(), &replyLength, 1, 0), kHWCerr_None);
  EXPECT_EQ(captured.out(),
            "memory allocation is too large: 4097 requested 4096 is max available\n"
            "DynMem failed to allocate memory!\n");
  EXPECT_EQ(Record(0, 0, 8), "00 00 00 00 00 00 00 00");
  EXPECT_EQ(Record(0, 16, 20), "01 10 00 00");
}

TEST_F(MorvakExchange, HasABlockFor4096BytesOfEach) {
  const Bytes command(4096, 0x0B);
  driver.talcAnswers = {{.reply = FromHex(kReply)}};
  replyLength = 4096;
  CapturedOutput captured;
  EXPECT_EQ(helper->IOCTL_TransactBoBCommand(command.data(), 4096, reply.data(), &replyLength, 1, 0), kHWCerr_None);
  EXPECT_EQ(captured.out(), "");
  EXPECT_EQ(driver.talcCalls.at(0).command, command);
}

TEST_F(MorvakExchange, GivesItsBlocksBackHoweverItEnds) {
  CapturedOutput captured;
  for (int round = 0; round < 5; ++round) {
    driver.talcAnswers.push_back({.reply = FromHex(kReply)});
    driver.talcAnswers.push_back({.reply = FromHex(kReply), .succeeds = false});
    driver.talcAnswers.push_back({.reply = FromHex(kReply), .returned = 0});
    driver.talcAnswers.push_back({});
    driver.talcAnswers.push_back({.status = kHWCerr_CommandTimeout});
    EXPECT_EQ(Exchange(), kHWCerr_None);
    EXPECT_EQ(FailureOf([&] { Exchange(); }), kNotSent);
    EXPECT_EQ(FailureOf([&] { Exchange(); }), kBadReturn);
    EXPECT_EQ(FailureOf([&] { Exchange(); }), kBadHeader);
    EXPECT_EQ(Exchange(), kHWCerr_CommandTimeout);
  }
  EXPECT_EQ(captured.out(), "");
  // The same two blocks each time.
  for (std::size_t i = 1; i < driver.talcCalls.size(); ++i)
    EXPECT_EQ(Record(i, 0, 16), Record(0, 0, 16));
}

TEST_F(MorvakExchange, MakesItsBlocksOnceForAllHelpers) {
  driver.talcAnswers = {{.reply = FromHex(kReply)}, {.reply = FromHex(kReply)}};
  EXPECT_EQ(Exchange(), kHWCerr_None);
  Close();
  Open();
  const test_support::FailingAllocation first(1);
  EXPECT_EQ(Exchange(), kHWCerr_None);
  EXPECT_FALSE(first.Happened()) << "memory was taken anew";
  EXPECT_EQ(Record(1, 0, 16), Record(0, 0, 16));
}

// ---- Commands

TEST_F(MorvakExchange, CarriesACommandWithItsValuesBothWays) {
  driver.talcAnswers = {{.reply = FromHex("0B 0B 00 0F 80 35 00 00 00 C8 00 07 90 04 00 5A 42 01 39")}};
  std::uint16_t size = 0;
  std::uint8_t vpd[8] = {};
  EXPECT_EQ(
      helper->ExecuteCommand("VPDInfo", {Argument::Symbol("Board", "VPD_Hollen"), Argument::OutUInt16("VPDSize", &size),
                                         Argument::OutBytes("VPDInfo", vpd, sizeof vpd)}),
      kHWCerr_None);
  EXPECT_EQ(Hex(driver.talcCalls.at(0).command), "0B 0B 00 06 80 35 00 00 00 C8");
  EXPECT_EQ(Record(0, 16, 28), "0A 00 00 00 00 08 00 00 40 42 0F 00");
  EXPECT_EQ(size, 7);
  EXPECT_EQ(Hex(Bytes(vpd, vpd + sizeof vpd)), "90 04 00 5A 42 01 39 00");
}

TEST_F(MorvakExchange, LeavesTheValuesAloneWhenACommandTimesOut) {
  driver.talcAnswers = {{.status = kHWCerr_CommandTimeout}};
  std::uint16_t size = 0x5A5A;
  EXPECT_EQ(helper->ExecuteCommand("VPDInfo",
                                   {Argument::Symbol("Board", "VPD_Hollen"), Argument::OutUInt16("VPDSize", &size)}),
            kHWCerr_CommandTimeout);
  EXPECT_EQ(size, 0x5A5A);
}

}  // namespace
