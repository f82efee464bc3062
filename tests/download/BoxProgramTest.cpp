#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "download/BoxDownloadHelpers.h"
#include "support/FailureOf.h"
#include "support/PacketText.h"
#include "WyvrelHelper.h"

// The program step over a board helper that answers what a real one would rather throw.

namespace {

using test_support::Bytes;
using test_support::FromHex;
using testing::_;
using testing::IsNull;
using testing::Pointee;
using testing::Return;
using testing::SizeIs;
using testing::StrEq;

class MockHelper : public WyvrelHelper {
 public:
  ~MockHelper() noexcept override = default;
  MOCK_METHOD(HwcStatus, ExecuteCommand, (const char*, Arguments), (override));
  MOCK_METHOD(HwcStatus, SendCommand, (const char*, Arguments), (override));
  MOCK_METHOD(const char*, GetPrompt, (), (const, override));
  MOCK_METHOD(HwcStatus, PrecompileCommand, (std::uint8_t*, std::uint32_t*, std::uint8_t, const char*, Arguments),
              (override));
  MOCK_METHOD(HwcStatus, DecodeReply, (const std::uint8_t*, std::uint32_t, const char*, Arguments), (override));
  MOCK_METHOD(HwcStatus, TransactBoBCommand,
              (const std::uint8_t*, std::uint32_t, std::uint8_t*, std::uint32_t*, std::uint32_t, std::uint32_t),
              (override));
  MOCK_METHOD(void, GetBoardVPD, (const char*, (std::uint8_t(&)[kBoardVpdBytes])), (override));
  MOCK_METHOD(HwcStatus, TransactCommand, (TalcPath::TalcCommand&), (override));
  MOCK_METHOD(bool, IsCodecPresent, (std::int32_t), (override));
};

class BoxProgramTest : public testing::Test {
 protected:
  /// The program command is A1 A2 for once.
  void ExpectPrecompile() {
    EXPECT_CALL(board, PrecompileCommand(_, Pointee(2048), 0, StrEq("ProgramFPGA"), SizeIs(0)))
        .WillOnce([](std::uint8_t* buffer, std::uint32_t* length, std::uint8_t, const char*, Arguments) {
          buffer[0] = 0xA1;
          buffer[1] = 0xA2;
          *length = 2;
          return kHWCerr_None;
        });
  }
  /// An exchange that is answered with B1 B2 B3.
  static HwcStatus Answer(const std::uint8_t*, std::uint32_t, std::uint8_t* reply, std::uint32_t* length, std::uint32_t,
                          std::uint32_t) {
    reply[0] = 0xB1;
    reply[1] = 0xB2;
    reply[2] = 0xB3;
    *length = 3;
    return kHWCerr_None;
  }
  void ExpectDecode(HwcStatus result) {
    EXPECT_CALL(board, DecodeReply(_, 3, StrEq("ProgramFPGA"), SizeIs(0)))
        .WillOnce([result](const std::uint8_t* reply, std::uint32_t length, const char*, Arguments) {
          EXPECT_EQ(Bytes(reply, reply + length), FromHex("B1 B2 B3"));
          return result;
        });
  }
  auto& ExpectSent() {
    return EXPECT_CALL(board,
                       TransactBoBCommand(testing::NotNull(), 2, testing::NotNull(), Pointee(2048), 1'000'000, 0));
  }
  auto& ExpectPoll() {
    return EXPECT_CALL(board, TransactBoBCommand(IsNull(), 0, testing::NotNull(), Pointee(2048), 1'000'000, 0));
  }

  testing::InSequence inOrder;
  testing::StrictMock<MockHelper> board;
  BobFPGAHelper helper{board, 0};
};

TEST_F(BoxProgramTest, SendsThePrecompiledCommandAndDecodesWhatComesBack) {
  ExpectPrecompile();
  ExpectSent().WillOnce([](const std::uint8_t* packet, std::uint32_t packetBytes, std::uint8_t* reply,
                           std::uint32_t* length, std::uint32_t low, std::uint32_t high) {
    EXPECT_EQ(Bytes(packet, packet + packetBytes), FromHex("A1 A2"));
    return Answer(packet, packetBytes, reply, length, low, high);
  });
  ExpectDecode(kHWCerr_None);
  EXPECT_TRUE(helper.StartProgram());
}

TEST_F(BoxProgramTest, PollsWithoutAPacket) {
  ExpectPoll().WillOnce(Return(kHWCerr_CommandTimeout));
  ExpectPoll().WillOnce(Answer);
  ExpectDecode(kHWCerr_None);
  EXPECT_FALSE(helper.PollProgram());
  EXPECT_TRUE(helper.PollProgram());
}

TEST_F(BoxProgramTest, DecodesNothingAfterATimeOut) {
  ExpectPrecompile();
  ExpectSent().WillOnce(Return(kHWCerr_CommandTimeout));
  EXPECT_FALSE(helper.StartProgram());
}

TEST_F(BoxProgramTest, FailsWhenTheCommandCannotBePrecompiled) {
  for (const HwcStatus status : {kHWCerr_CommandTimeout, kHWCerr_BadArgument}) {
    EXPECT_CALL(board, PrecompileCommand).WillOnce(Return(status));
    EXPECT_EQ(FailureOf([&] { helper.StartProgram(); }), "BoxDownloadHelpers.cpp: Failed Trelvane program precompile");
  }
}

TEST_F(BoxProgramTest, FailsWhenTheExchangeFails) {
  for (const HwcStatus status : {kHWCerr_BobCommsError, kHWCerr_NoDevice}) {
    ExpectPrecompile();
    ExpectSent().WillOnce(Return(status));
    EXPECT_EQ(FailureOf([&] { helper.StartProgram(); }), "BoxDownloadHelpers.cpp: Failed Trelvane program command");
    ExpectPoll().WillOnce(Return(status));
    EXPECT_EQ(FailureOf([&] { helper.PollProgram(); }), "BoxDownloadHelpers.cpp: Failed Trelvane program command");
  }
}

TEST_F(BoxProgramTest, TellsARefusalAtOnceFromOneThatWasPolled) {
  // A time-out is as bad here as any other status.
  for (const HwcStatus status : {kHWCerr_CommandTimeout, kHWCerr_BadArgument}) {
    ExpectPrecompile();
    ExpectSent().WillOnce(Answer);
    ExpectDecode(status);
    EXPECT_EQ(FailureOf([&] { helper.StartProgram(); }), "BoxDownloadHelpers.cpp: Trelvane program error");
    ExpectPoll().WillOnce(Answer);
    ExpectDecode(status);
    EXPECT_EQ(FailureOf([&] { helper.PollProgram(); }), "BoxDownloadHelpers.cpp: Trelvane Program command error");
  }
}

TEST(BoxProgram, HasACommandForEachPart) {
  const std::pair<const char*, std::function<std::unique_ptr<DownloadHelper>(WyvrelHelper&)>> cases[] = {
      {"ProgramFPGA", [](WyvrelHelper& board) { return std::make_unique<BobFPGAHelper>(board, std::uint8_t{0}); }},
      {"ProgramFirmware", [](WyvrelHelper& board) { return std::make_unique<BobFirmwareHelper>(board); }},
      {"ProgramCPLD", [](WyvrelHelper& board) { return std::make_unique<BobCPLDHelper>(board, std::uint8_t{2}); }},
      {"ProgramFPGA", [](WyvrelHelper& board) { return std::make_unique<MorvakFPGAHelper>(board, std::uint8_t{0}); }},
      {"ProgramFirmware", [](WyvrelHelper& board) { return std::make_unique<MorvakFirmwareHelper>(board); }},
      {"ProgramCPLD", [](WyvrelHelper& board) { return std::make_unique<MorvakCPLDHelper>(board, std::uint8_t{0}); }},
  };
  for (const auto& [command, make] : cases) {
    testing::StrictMock<MockHelper> board;
    EXPECT_CALL(board, TransactBoBCommand).WillOnce(Return(kHWCerr_None));
    EXPECT_CALL(board, DecodeReply(_, _, StrEq(command), SizeIs(0))).WillOnce(Return(kHWCerr_None));
    EXPECT_TRUE(make(board)->PollProgram());
  }
}

}  // namespace
