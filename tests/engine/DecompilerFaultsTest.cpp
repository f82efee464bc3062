// Replies that cannot be read: too short, of another protocol, or with a length that lies.

#include <gtest/gtest.h>

#include <algorithm>

#include "EngineFixture.h"

namespace {

using namespace engine_test;
using TalcPath::kTPFail;
using TalcPath::kTPSuccess;

constexpr Decompiled kTooShort{false, TalcPath::kTPPacketSizeError};
constexpr Decompiled kNoSuchCommand{false, TalcPath::kTPCommandFormatNotFound};
constexpr Decompiled kBadHeader{false, TalcPath::kTPInvalidTransportHeader};
constexpr Decompiled kMissingData{false, TalcPath::kTPDecompileMissingParameterData};

constexpr const char* kDictionary =
    "Number Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 23 DataName V DataType UINT32 ;"
    "Text Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 16 DataName TypeID DataType BYTES ;"
    "Mixed Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 17 DataName A DataType UINT8"
    " DataName B DataType UINT16 DataName C DataType UINT32 DataName D DataType BYTES ;";

class DecompilerFaultsTest : public EngineTest {
 protected:
  void SetUp() override { StartWith(kDictionary); }
};

/// A reply of that many bytes in all, with that length field. The values count up from 1.
Bytes Reply(std::size_t size, std::uint32_t length) {
  Bytes reply = {0x0B, 0x0B, static_cast<std::uint8_t>(length >> 8), static_cast<std::uint8_t>(length), 0x80, 0x23,
                 0,    0};
  for (std::uint8_t value = 1; reply.size() < size; ++value)
    reply.push_back(value);
  reply.resize(size);
  reply.shrink_to_fit();
  return reply;
}

/// Decompiles a reply to Mixed and checks that it was read exactly as far as `available` bytes of values allow.
void ExpectMixed(const Bytes& reply, std::size_t available, const std::string& what) {
  TalcCommand command = Request("Mixed");
  const bool isWhole = available >= 7;
  EXPECT_EQ(Decompile(command, reply), isWhole ? kRead : kMissingData) << what;
  EXPECT_EQ(command.GetStatus(), isWhole ? kTPSuccess : kTPFail) << what;
  EXPECT_EQ(command.HasParameter("A"), available >= 1) << what;
  EXPECT_EQ(command.HasParameter("B"), available >= 3) << what;
  EXPECT_EQ(command.HasParameter("C"), isWhole) << what;
  EXPECT_EQ(command.HasParameter("D"), isWhole) << what;
  if (!isWhole) return;
  std::uint8_t a = 0;
  std::uint16_t b = 0;
  std::uint32_t c = 0;
  EXPECT_TRUE(command.GetUInt8("A", &a) && command.GetUInt16("B", &b) && command.GetUInt32("C", &c)) << what;
  EXPECT_EQ(a, 1) << what;
  EXPECT_EQ(b, 0x0203) << what;
  EXPECT_EQ(c, 0x04050607u) << what;
  EXPECT_EQ(BytesHex(command, "D"), Hex(Bytes(reply.begin() + 15, reply.begin() + 8 + static_cast<long>(available))))
      << what;
}

TEST_F(DecompilerFaultsTest, RepliesOfLessThanAHeader) {
  for (std::size_t size = 0; size < 8; ++size)
    for (const char* const name : {"Number", "Text", "Nobody"})
      for (const bool isTolerant : {false, true})
        for (const bool isRequest : {false, true}) {
          TalcCommand command(name);
          if (isRequest) command.SetRequestCommand();
          command.SetUInt8("Old", 1);
          command.SetStatus(kTPSuccess);
          EXPECT_EQ(Decompile(command, Reply(size, 4), isTolerant), kTooShort) << size;
          EXPECT_EQ(command.GetStatus(), kTPFail);
          EXPECT_TRUE(command.HasParameter("Old"));
        }
}

TEST_F(DecompilerFaultsTest, RepliesWithoutTheMark) {
  for (const char* const reply : {"0A 0B 00 04 40 2E 00 00", "0B 0A 00 04 40 2E 00 00", "00 00 00 04 40 2E 00 00",
                                  "FF 0B 00 08 40 2E 00 00 00 00 00 07"}) {
    TalcCommand send("Number");
    EXPECT_EQ(Decompile(send, reply), kBadHeader) << reply;
    EXPECT_EQ(send.GetStatus(), kTPFail);
    TalcCommand request = Request("Number");
    request.SetUInt32("V", 3);
    EXPECT_EQ(Decompile(request, reply, true), kBadHeader) << reply;
    EXPECT_TRUE(request.HasParameter("V"));
  }
}

TEST_F(DecompilerFaultsTest, LengthsThatDoNotCountTheHeader) {
  for (std::uint32_t length = 0; length < 4; ++length)
    for (const std::size_t size : {8u, 12u}) {
      TalcCommand command = Request("Number");
      command.SetStatus(kTPSuccess);
      EXPECT_EQ(Decompile(command, Reply(size, length)), kBadHeader) << length;
      EXPECT_EQ(command.GetStatus(), kTPFail);
    }
}

TEST_F(DecompilerFaultsTest, RequestsOfACommandThatIsNotDefined) {
  TalcCommand command = Request("Nobody");
  command.SetUInt8("Old", 1);
  EXPECT_EQ(Decompile(command, "0B 0B 00 04 40 2E 00 00"), kNoSuchCommand);
  EXPECT_EQ(command.GetStatus(), kTPFail);  // although the reply's is success
  EXPECT_FALSE(command.HasParameter("Old"));
  TalcCommand send("Nobody");
  EXPECT_EQ(Decompile(send, "0B 0B 00 04 40 2E 00 00", true), kNoSuchCommand);
  EXPECT_EQ(send.GetStatus(), kTPFail);
  // An unknown command counts as an ordinary one.
  EXPECT_EQ(Decompile(command, Bytes(40)), kBadHeader);
}

TEST_F(DecompilerFaultsTest, ValuesThatAreMissing) {
  TalcCommand none = Request("Number");
  none.SetUInt32("V", 1);
  EXPECT_EQ(Decompile(none, "0B 0B 00 04 40 2F 00 00"), kMissingData);
  EXPECT_EQ(none.GetStatus(), kTPFail);  // although the reply's is success
  EXPECT_FALSE(none.HasParameter("V"));
  TalcCommand half = Request("Number");
  EXPECT_EQ(Decompile(half, "0B 0B 00 06 40 2F 00 00 12 34"), kMissingData);
  EXPECT_FALSE(half.HasParameter("V"));
}

TEST_F(DecompilerFaultsTest, ValuesThatTheLengthLeavesOut) {
  TalcCommand command = Request("Number");
  EXPECT_EQ(Decompile(command, "0B 0B 00 07 40 2F 00 00 01 02 03 04"), kMissingData);
  TalcCommand text = Request("Text");
  EXPECT_EQ(Decompile(text, "0B 0B 00 06 80 21 00 00 01 02 03 04"), kRead);
  EXPECT_EQ(BytesHex(text, "TypeID"), "01 02");
}

TEST_F(DecompilerFaultsTest, LengthsBeyondTheReply) {
  TalcCommand number = Request("Number");
  EXPECT_EQ(Decompile(number, "0B 0B FF FF 40 2F 00 00 01 02 03"), kMissingData);
  EXPECT_EQ(Decompile(number, "0B 0B FF FF 40 2F 00 00"), kMissingData);
  TalcCommand text = Request("Text");
  EXPECT_EQ(Decompile(text, "0B 0B FF FF 80 21 00 00 01 02 03"), kRead);
  EXPECT_EQ(BytesHex(text, "TypeID"), "01 02 03");
  EXPECT_EQ(Decompile(text, "0B 0B FF FF 80 21 00 00"), kRead);
  EXPECT_EQ(BytesHex(text, "TypeID"), "");
}

TEST_F(DecompilerFaultsTest, EverySizeOfAnHonestReply) {
  for (std::size_t size = 8; size <= 60; ++size)
    ExpectMixed(Reply(size, static_cast<std::uint32_t>(size - 4)), size - 8, "size " + std::to_string(size));
}

TEST_F(DecompilerFaultsTest, EverySizeWithEveryLength) {
  for (std::size_t size = 8; size <= 60; ++size)
    for (std::uint32_t length = 4; length <= 70; ++length)
      ExpectMixed(Reply(size, length), std::min<std::size_t>(size - 8, length - 4),
                  "size " + std::to_string(size) + " length " + std::to_string(length));
}

TEST_F(DecompilerFaultsTest, EverySizeWithTheLargestLength) {
  for (std::size_t size = 8; size <= 60; ++size)
    ExpectMixed(Reply(size, 65535), size - 8, "size " + std::to_string(size));
}

TEST_F(DecompilerFaultsTest, EverySizeWithEveryLengthOfASendIsRead) {
  for (std::size_t size = 8; size <= 60; ++size)
    for (const std::uint32_t length : {4u, 5u, 70u, 65535u}) {
      TalcCommand send("Mixed");
      EXPECT_EQ(Decompile(send, Reply(size, length)), kRead) << size << " " << length;
      EXPECT_EQ(send.GetStatus(), kTPSuccess);
      // And when tolerant no value is out of bounds, whatever is missing.
      EXPECT_EQ(Decompile(send, Reply(size, length), true), kRead) << size << " " << length;
    }
}

TEST_F(DecompilerFaultsTest, TheLargestReplyThatALengthCanTell) {
  Bytes reply = Reply(8, 65535);
  reply.resize(4 + 65535, 0x42);
  TalcCommand text = Request("Text");
  EXPECT_EQ(Decompile(text, reply), kRead);
  std::uint32_t length = 0;
  EXPECT_TRUE(text.GetBytesLength("TypeID", &length));
  EXPECT_EQ(length, 65531u);
  reply.resize(100'000, 0x42);  // bytes that no length reaches
  EXPECT_EQ(Decompile(text, reply), kRead);
  EXPECT_TRUE(text.GetBytesLength("TypeID", &length));
  EXPECT_EQ(length, 65531u);
}

}  // namespace
