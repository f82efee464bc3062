// Replies to diagnostic commands: a header of 36 bytes that says nothing, and values up to the end of the packet.

#include <gtest/gtest.h>

#include "EngineFixture.h"

namespace {

using namespace engine_test;
using TalcPath::kTPFail;
using TalcPath::kTPSuccess;

constexpr Decompiled kTooShort{false, TalcPath::kTPPacketSizeError};
constexpr Decompiled kNoOpcode{false, TalcPath::kTPInvalidOpcode};
constexpr Decompiled kMissingData{false, TalcPath::kTPDecompileMissingParameterData};

constexpr const char* kDictionary =
    "Bare Diag DiagOpcode 1 ;"
    "Number Diag DiagOpcode 2 DataName V DataType UINT32 ;"
    "Data Diag DiagOpcode 3 DataName D DataType BYTES ;"
    "Mixed Diag DiagOpcode 4 DataName A DataType UINT8 DataName B DataType UINT16 DataName D DataType BYTES ;";

class DiagReplyTest : public EngineTest {
 protected:
  void SetUp() override { StartWith(kDictionary); }
};

/// The header as the hardware sends it, and values behind it.
Bytes Reply(const std::string& values) {
  return FromHex(
             "6F 72 62 6F 5F 64 69 61 67 6E 6F 73 74 69 63 73 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 04 00 00 "
             "00 00") +
         FromHex(values);
}

TEST_F(DiagReplyTest, ReadsTheValuesBehindTheHeader) {
  TalcCommand request = Request("Mixed");
  request.SetUInt8("Old", 1);
  EXPECT_EQ(Decompile(request, Reply("81 12 34 AA BB CC")), kRead);
  EXPECT_EQ(request.GetStatus(), kTPSuccess);
  std::uint8_t a = 0;
  std::uint16_t b = 0;
  EXPECT_TRUE(request.GetUInt8("A", &a) && request.GetUInt16("B", &b));
  EXPECT_EQ(a, 0x81);
  EXPECT_EQ(b, 0x1234);
  EXPECT_EQ(BytesHex(request, "D"), "AA BB CC");
  EXPECT_FALSE(request.HasParameter("Old"));
}

TEST_F(DiagReplyTest, ReadsNoValuesForASend) {
  TalcCommand send("Number");
  send.SetUInt32("V", 5);
  EXPECT_EQ(Decompile(send, Reply("00 00 00 07")), kRead);
  EXPECT_EQ(send.GetStatus(), kTPSuccess);
  std::uint32_t value = 0;
  EXPECT_TRUE(send.GetUInt32("V", &value));
  EXPECT_EQ(value, 5u);
  EXPECT_EQ(Decompile(send, Reply("00 00 00 07"), true), kRead);
  EXPECT_TRUE(send.GetUInt32("V", &value));
  EXPECT_EQ(value, 7u);
}

// There is no status byte, and nothing of the header is compared. It is meant.
TEST_F(DiagReplyTest, IsASuccessWhateverTheHeaderSays) {
  for (int byte = 0; byte < 256; ++byte) {
    TalcCommand request = Request("Bare");
    EXPECT_EQ(Decompile(request, Bytes(36, static_cast<std::uint8_t>(byte))), kRead) << byte;
    EXPECT_EQ(request.GetStatus(), kTPSuccess) << byte;
  }
}

TEST_F(DiagReplyTest, IgnoresTheCountInTheHeader) {
  for (const std::uint8_t count : std::initializer_list<std::uint8_t>{0, 1, 2, 255}) {
    Bytes reply = Reply("01 02 03 04");
    reply[32] = count;
    reply[33] = count;
    TalcCommand request = Request("Number");
    EXPECT_EQ(Decompile(request, reply), kRead);
    std::uint32_t value = 0;
    EXPECT_TRUE(request.GetUInt32("V", &value));
    EXPECT_EQ(value, 0x01020304u);
  }
}

TEST_F(DiagReplyTest, IgnoresWhatIsBehindTheLastValue) {
  TalcCommand request = Request("Number");
  EXPECT_EQ(Decompile(request, Reply("01 02 03 04 05 06")), kRead);
  EXPECT_EQ(request.GetStatus(), kTPSuccess);
}

TEST_F(DiagReplyTest, TakesAnEmptyValueOfBytes) {
  TalcCommand request = Request("Data");
  EXPECT_EQ(Decompile(request, Reply("")), kRead);
  EXPECT_TRUE(request.HasParameter("D"));
  EXPECT_EQ(BytesHex(request, "D"), "");
}

TEST_F(DiagReplyTest, FailsWhenTheValuesEndEarly) {
  for (const char* const values : {"", "01", "01 02 03"}) {
    TalcCommand request = Request("Number");
    request.SetUInt32("V", 5);
    EXPECT_EQ(Decompile(request, Reply(values)), kMissingData) << values;
    EXPECT_EQ(request.GetStatus(), kTPFail);
    EXPECT_FALSE(request.HasParameter("V"));
    EXPECT_EQ(Decompile(request, Reply(values), true), kRead) << values;
    EXPECT_EQ(request.GetStatus(), kTPSuccess);
  }
}

TEST_F(DiagReplyTest, EverySizeStaysInsideTheReply) {
  for (std::size_t size = 0; size <= 60; ++size) {
    Bytes reply(size, 0x0B);  // an ordinary reply's mark means nothing here
    TalcCommand request = Request("Mixed");
    request.SetStatus(kTPSuccess);
    Decompiled expected = kRead;
    if (size < 39) expected = kMissingData;
    if (size < 36) expected = kNoOpcode;
    if (size < 8) expected = kTooShort;
    EXPECT_EQ(Decompile(request, reply), expected) << size;
    EXPECT_EQ(request.GetStatus(), size < 39 ? kTPFail : kTPSuccess) << size;
    EXPECT_EQ(request.HasParameter("A"), size >= 37) << size;
    EXPECT_EQ(request.HasParameter("B"), size >= 39) << size;
    EXPECT_EQ(BytesHex(request, "D"), size < 39 ? "none" : Hex(Bytes(size - 39, 0x0B))) << size;
    TalcCommand send("Mixed");
    EXPECT_EQ(Decompile(send, reply).isRead, size >= 36) << size;
    EXPECT_EQ(Decompile(send, reply, true).isRead, size >= 36) << size;
  }
}

TEST_F(DiagReplyTest, TakesALongValueOfBytesWhole) {
  TalcCommand request = Request("Data");
  EXPECT_EQ(Decompile(request, Bytes(36 + 70'000, 0x19)), kRead);
  std::uint32_t length = 0;
  EXPECT_TRUE(request.GetBytesLength("D", &length));
  EXPECT_EQ(length, 70'000u);
}

}  // namespace
