// Replies to ordinary commands that can be read.

#include <gtest/gtest.h>

#include "EngineFixture.h"

namespace {

using namespace engine_test;
using TalcPath::kTPFail;
using TalcPath::kTPSuccess;

constexpr const char* kDictionary =
    "Set Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 23 DataName V DataType UINT32 ;"
    "Answer Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 26 DataName Board RD DataType UINT16"
    " DataName Size DataType UINT16 DataName Text DataType BYTES ;"
    "Text Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 16 DataName TypeID DataType BYTES ;"
    "All Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 30 DataName A DataType INT8 DataName B DataType UINT8"
    " DataName C DataType INT16 DataName D DataType UINT16 DataName E DataType INT32 DataName F DataType UINT32"
    " DataName G DataType INT64 DataName H DataType UINT64 DataName I DataType BYTES ;";

class DecompilerTest : public EngineTest {
 protected:
  void SetUp() override { StartWith(kDictionary); }
};

/// A request that holds a value of its own, and no status of a reply.
TalcCommand Asked() {
  TalcCommand command = Request("Answer");
  command.SetUInt16("Board", 200);
  return command;
}

std::uint16_t BoardOf(const TalcCommand& command) {
  std::uint16_t board = 0;
  EXPECT_TRUE(command.GetUInt16("Board", &board));
  return board;
}

TEST_F(DecompilerTest, ReadsTheReplyOfASend) {
  TalcCommand send("Set");
  send.SetUInt32("V", 5);
  EXPECT_EQ(Decompile(send, "0B 0B 00 04 40 2E 00 00"), kRead);
  EXPECT_EQ(send.GetStatus(), kTPSuccess);
  // The values that were sent stay.
  std::uint32_t value = 0;
  EXPECT_TRUE(send.GetUInt32("V", &value));
  EXPECT_EQ(value, 5u);
}

TEST_F(DecompilerTest, ReadsNoValuesForASend) {
  TalcCommand send("Set");
  EXPECT_EQ(Decompile(send, "0B 0B 00 08 40 2E 00 00 00 00 00 07"), kRead);
  EXPECT_EQ(send.GetStatus(), kTPSuccess);
  EXPECT_FALSE(send.HasParameter("V"));
}

TEST_F(DecompilerTest, ReadsTheValuesOfARequest) {
  TalcCommand request = Asked();
  EXPECT_EQ(Decompile(request, "0B 0B 00 0B 80 35 00 00 00 C9 00 03 61 00 62"), kRead);
  EXPECT_EQ(request.GetStatus(), kTPSuccess);
  EXPECT_EQ(BoardOf(request), 201);  // the reply's value in place of the one that was set
  std::uint16_t size = 0;
  EXPECT_TRUE(request.GetUInt16("Size", &size));
  EXPECT_EQ(size, 3);
  EXPECT_EQ(BytesHex(request, "Text"), "61 00 62");
}

TEST_F(DecompilerTest, ForgetsWhatWasSetForTheRequest) {
  TalcCommand request = Request("Text");
  request.SetUInt8("Old", 1);
  request.SetSymbol("TypeID", "kSymbol");
  EXPECT_EQ(Decompile(request, "0B 0B 00 05 80 21 00 00 41"), kRead);
  EXPECT_FALSE(request.HasParameter("Old"));
  EXPECT_EQ(BytesHex(request, "TypeID"), "41");
}

TEST_F(DecompilerTest, ReadsEachTypeMostSignificantByteFirst) {
  TalcCommand request = Request("All");
  EXPECT_EQ(Decompile(request,
                      "0B 0B 00 26 80 3D 00 00 80 FF 80 00 FF FE 80 00 00 00 01 02 03 04 80 00 00 00 00 00 00 00 FF FF "
                      "FF FF FF FF FF FD 00 FF 3B 0A"),
            kRead);
  std::int8_t a = 0;
  std::uint8_t b = 0;
  std::int16_t c = 0;
  std::uint16_t d = 0;
  std::int32_t e = 0;
  std::uint32_t f = 0;
  std::int64_t g = 0;
  std::uint64_t h = 0;
  EXPECT_TRUE(request.GetInt8("A", &a) && request.GetUInt8("B", &b) && request.GetInt16("C", &c) &&
              request.GetUInt16("D", &d) && request.GetInt32("E", &e) && request.GetUInt32("F", &f) &&
              request.GetInt64("G", &g) && request.GetUInt64("H", &h));
  EXPECT_EQ(a, -128);
  EXPECT_EQ(b, 255);
  EXPECT_EQ(c, -32768);
  EXPECT_EQ(d, 65534);
  EXPECT_EQ(e, -2147483647 - 1);
  EXPECT_EQ(f, 0x01020304u);
  EXPECT_EQ(g, std::int64_t{-9223372036854775807} - 1);
  EXPECT_EQ(h, 18446744073709551613u);
  EXPECT_EQ(BytesHex(request, "I"), "00 FF 3B 0A");
}

TEST_F(DecompilerTest, ReadsTheOtherEndsOfTheSignedTypes) {
  TalcCommand request = Request("All");
  EXPECT_EQ(Decompile(request,
                      "0B 0B 00 22 80 3D 00 00 7F 00 7F FF 00 00 7F FF FF FF 00 00 00 00 7F FF FF FF FF FF FF FF 00 00 "
                      "00 00 00 00 00 00"),
            kRead);
  std::int8_t a = 0;
  std::int16_t c = 0;
  std::int32_t e = 0;
  std::int64_t g = 0;
  EXPECT_TRUE(request.GetInt8("A", &a) && request.GetInt16("C", &c) && request.GetInt32("E", &e) &&
              request.GetInt64("G", &g));
  EXPECT_EQ(a, 127);
  EXPECT_EQ(c, 32767);
  EXPECT_EQ(e, 2147483647);
  EXPECT_EQ(g, 9223372036854775807);
  EXPECT_EQ(BytesHex(request, "I"), "");
}

TEST_F(DecompilerTest, TakesAnEmptyValueOfBytes) {
  TalcCommand request = Request("Text");
  EXPECT_EQ(Decompile(request, "0B 0B 00 04 80 21 00 00"), kRead);
  EXPECT_EQ(request.GetStatus(), kTPSuccess);
  EXPECT_TRUE(request.HasParameter("TypeID"));
  EXPECT_EQ(BytesHex(request, "TypeID"), "");
}

TEST_F(DecompilerTest, IgnoresWhatIsBehindTheLastValue) {
  TalcCommand request = Request("Set");
  EXPECT_EQ(Decompile(request, "0B 0B 00 0B 40 2F 00 00 00 00 00 07 AA BB CC"), kRead);
  std::uint32_t value = 0;
  EXPECT_TRUE(request.GetUInt32("V", &value));
  EXPECT_EQ(value, 7u);
}

// Lenient by design: only the mark, the length and the sizes count.
TEST_F(DecompilerTest, DoesNotCompareTheCodesWithTheCommand) {
  for (const char* const reply : {"0B 0B 00 08 00 00 00 00 00 00 00 09", "0B 0B 00 08 FF FF FF 00 00 00 00 09",
                                  "0B 0B 00 08 3F 2E 12 00 00 00 00 09", "0B 0B 00 08 C0 2F 00 00 00 00 00 09"}) {
    TalcCommand request = Request("Set");
    EXPECT_EQ(Decompile(request, reply), kRead) << reply;
    std::uint32_t value = 0;
    EXPECT_TRUE(request.GetUInt32("V", &value));
    EXPECT_EQ(value, 9u) << reply;
    TalcCommand send("Set");
    EXPECT_EQ(Decompile(send, reply), kRead) << reply;
    EXPECT_EQ(send.GetStatus(), kTPSuccess);
  }
}

TEST_F(DecompilerTest, TakesTheStatusFromTheEighthByte) {
  for (int byte = 0; byte < 256; ++byte) {
    TalcPathStatus expected = kTPFail;  // also for 3 and 4, which are numbers of other statuses
    if (byte == 0) expected = kTPSuccess;
    if (byte == 2) expected = TalcPath::kTPNotSupported;
    if (byte == 240) expected = TalcPath::kTPTransmitFailure;
    if (byte == 255) expected = TalcPath::kTPTimeOut;
    const Bytes reply = {0x0B, 0x0B, 0, 8, 0x40, 0x2E, 0, static_cast<std::uint8_t>(byte), 0, 0, 0, 7};
    for (const bool isTolerant : {false, true}) {
      TalcCommand send("Set");
      EXPECT_EQ(Decompile(send, reply, isTolerant), kRead) << byte;
      EXPECT_EQ(send.GetStatus(), expected) << byte;
      TalcCommand request = Request("Set");
      EXPECT_EQ(Decompile(request, reply, isTolerant), kRead) << byte;
      EXPECT_EQ(request.GetStatus(), expected) << byte;
      EXPECT_EQ(request.HasParameter("V"), byte == 0) << byte;
    }
  }
}

TEST_F(DecompilerTest, LeavesTheValuesAloneWhenTheCommandDidNotSucceed) {
  for (const char* const reply : {"0B 0B 00 04 80 35 00 02", "0B 0B 00 0B 80 35 00 F0 00 C9 00 03 61 00 62"}) {
    TalcCommand request = Asked();
    EXPECT_EQ(Decompile(request, reply), kRead);
    EXPECT_EQ(BoardOf(request), 200);
    EXPECT_FALSE(request.HasParameter("Size"));
  }
}

TEST_F(DecompilerTest, ReadsTheReplyOfASendThatItDoesNotKnow) {
  TalcCommand send("Nobody");
  send.SetUInt8("V", 1);
  EXPECT_EQ(Decompile(send, "0B 0B 00 04 40 2E 00 00"), kRead);
  EXPECT_EQ(send.GetStatus(), kTPSuccess);
  EXPECT_TRUE(send.HasParameter("V"));
  EXPECT_EQ(Decompile(send, "0B 0B 00 04 40 2E 00 02"), kRead);
  EXPECT_EQ(send.GetStatus(), TalcPath::kTPNotSupported);
}

TEST_F(DecompilerTest, ReadsTheReplyOfASendLikeThatOfARequestWhenTolerant) {
  TalcCommand send("Set");
  send.SetUInt8("Old", 1);
  EXPECT_EQ(Decompile(send, "0B 0B 00 08 40 2E 00 00 00 00 00 07", true), kRead);
  std::uint32_t value = 0;
  EXPECT_TRUE(send.GetUInt32("V", &value));
  EXPECT_EQ(value, 7u);
  EXPECT_FALSE(send.HasParameter("Old"));
  EXPECT_TRUE(send.IsSendCommand());
}

TEST_F(DecompilerTest, KeepsWhatItReadOfAReplyThatEndsEarlyWhenTolerant) {
  TalcCommand request = Asked();
  EXPECT_EQ(Decompile(request, "0B 0B 00 07 80 35 00 00 00 C9 00", true), kRead);
  EXPECT_EQ(request.GetStatus(), kTPSuccess);
  EXPECT_EQ(BoardOf(request), 201);
  EXPECT_FALSE(request.HasParameter("Size"));
  EXPECT_FALSE(request.HasParameter("Text"));
}

TEST_F(DecompilerTest, NeedsNoStatusOut) {
  TalcByteCode reply;
  TalcCommand command = Request("Set");
  EXPECT_FALSE(TalcPath::TalcPathDecompile(command, reply, nullptr, false));
  reply.SetResponseTimeOut();
  EXPECT_TRUE(TalcPath::TalcPathDecompile(command, reply, nullptr, false));
  EXPECT_EQ(command.GetStatus(), TalcPath::kTPTimeOut);
  reply.SetResponseSuccess();
  EXPECT_FALSE(TalcPath::TalcPathDecompile(command, reply, nullptr, false));  // no values
}

TEST_F(DecompilerTest, LeavesTheReplyAlone) {
  const Bytes bytes = FromHex("0B 0B 00 08 40 2E 00 00 00 00 00 07");
  TalcByteCode reply;
  reply.Set(bytes.data(), 12);
  TalcCommand command = Request("Set");
  EXPECT_TRUE(TalcPath::TalcPathDecompile(command, reply, nullptr, false));
  EXPECT_EQ(PacketOf(reply), bytes);
}

}  // namespace
