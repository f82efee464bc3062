// The worked example of the page on packets.

#include <gtest/gtest.h>

#include "EngineFixture.h"
#include "support/HexBlock.h"

namespace {

using namespace engine_test;

class PacketsPageTest : public EngineTest {
 protected:
  /// Of the packets that stand in the page's block one behind the other, the one of that place and size.
  Bytes Take(std::size_t offset, std::size_t size) const {
    EXPECT_LE(offset + size, page_.size());
    return {page_.begin() + static_cast<long>(offset), page_.begin() + static_cast<long>(offset + size)};
  }

  const Bytes page_ = test_support::ReadHexBlock(PACKETS_PAGE);
};

constexpr std::size_t kRequestBytes = 10;
constexpr std::size_t kReplyBytes = 19;
constexpr std::size_t kRefusalBytes = 8;
constexpr std::size_t kDiagBytes = 39;

TEST_F(PacketsPageTest, HoldsFourPackets) {
  EXPECT_EQ(page_.size(), kRequestBytes + kReplyBytes + kRefusalBytes + kDiagBytes);
}

TEST_F(PacketsPageTest, ShowsTheRequest) {
  StartWithEmbedded();
  TalcCommand request = Request("VPDInfo");
  request.SetSymbol("Board", "VPD_Hollen");
  EXPECT_EQ(CompiledHex(request), Hex(Take(0, kRequestBytes)));
}

TEST_F(PacketsPageTest, ShowsTheReply) {
  StartWithEmbedded();
  TalcCommand request = Request("VPDInfo");
  EXPECT_EQ(Decompile(request, Take(kRequestBytes, kReplyBytes)), kRead);
  EXPECT_EQ(request.GetStatus(), TalcPath::kTPSuccess);
  std::uint16_t board = 0;
  std::uint16_t size = 0;
  EXPECT_TRUE(request.GetUInt16("Board", &board) && request.GetUInt16("VPDSize", &size));
  EXPECT_EQ(board, 200);
  EXPECT_EQ(size, 7);
  EXPECT_EQ(BytesHex(request, "VPDInfo"), "90 04 00 5A 42 01 39");
}

TEST_F(PacketsPageTest, ShowsTheReplyOfAnotherBox) {
  StartWithEmbedded();
  TalcCommand request = Request("VPDInfo");
  request.SetUInt16("Board", 200);
  EXPECT_EQ(Decompile(request, Take(kRequestBytes + kReplyBytes, kRefusalBytes)), kRead);
  EXPECT_EQ(request.GetStatus(), TalcPath::kTPNotSupported);
  EXPECT_TRUE(request.HasParameter("Board"));
}

TEST_F(PacketsPageTest, ShowsADiagnosticPacket) {
  StartWith("DiagSample Diag DiagOpcode 132 DataName Bus RD DataType UINT8 DataName Value DataType UINT16 ;");
  TalcCommand send("DiagSample");
  send.SetUInt8("Bus", 1);
  send.SetUInt16("Value", 0x0203);
  EXPECT_EQ(CompiledHex(send), Hex(Take(kRequestBytes + kReplyBytes + kRefusalBytes, kDiagBytes)));
}

}  // namespace
