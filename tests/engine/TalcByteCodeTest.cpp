// The handle that owns the bytes of a packet.

#include <gtest/gtest.h>

#include <memory>

#include "EngineFixture.h"
#include "support/FailingAllocation.h"

namespace {

using namespace engine_test;

/// A packet of the bytes, in a block of exactly their number.
std::unique_ptr<TalcByteCode> Packet(const std::string& hex) {
  const Bytes bytes = FromHex(hex);
  auto packet = std::make_unique<TalcByteCode>();
  EXPECT_TRUE(packet->Set(bytes.data(), static_cast<std::uint32_t>(bytes.size())));
  return packet;
}

TEST(TalcByteCode, IsEmptyAtFirst) {
  const TalcByteCode packet;
  const std::uint8_t* pointer = nullptr;
  std::uint32_t size = 5;
  EXPECT_FALSE(packet.GetPacketByteCodeBuffer(&pointer));
  EXPECT_FALSE(packet.GetPacketByteCodeBufferSize(&size));
  EXPECT_EQ(size, 5u);
  EXPECT_EQ(packet.GetSize(), 0u);
  EXPECT_EQ(packet.GetStatus(), TalcPath::kTPFail);
  EXPECT_EQ(packet.GetPayloadSize(), -1);
  EXPECT_FALSE(packet.GetPayloadPointer(&pointer));
  EXPECT_EQ(pointer, nullptr);
  EXPECT_FALSE(packet.HasPayload());
}

TEST(TalcByteCode, TakesACopyOfTheBytes) {
  std::uint8_t bytes[] = {1, 2, 3};
  TalcByteCode packet;
  ASSERT_TRUE(packet.Set(bytes, 3));
  bytes[0] = 9;
  EXPECT_EQ(Hex(packet), "01 02 03");
  std::uint32_t size = 0;
  EXPECT_TRUE(packet.GetPacketByteCodeBufferSize(&size));
  EXPECT_EQ(size, 3u);
}

TEST(TalcByteCode, TakesLongerAndShorterBytesInPlaceOfTheOldOnes) {
  const auto packet = Packet("01 02 03");
  const Bytes longer = FromHex("0A 0B 0C 0D 0E");
  ASSERT_TRUE(packet->Set(longer.data(), 5));
  EXPECT_EQ(Hex(*packet), "0A 0B 0C 0D 0E");
  ASSERT_TRUE(packet->Set(longer.data() + 3, 2));
  EXPECT_EQ(Hex(*packet), "0D 0E");
  ASSERT_TRUE(packet->Set(longer.data(), 4));
  EXPECT_EQ(Hex(*packet), "0A 0B 0C 0D");
}

TEST(TalcByteCode, TakesAPartOfItself) {
  const auto packet = Packet("01 02 03 04");
  const std::uint8_t* buffer = nullptr;
  ASSERT_TRUE(packet->GetPacketByteCodeBuffer(&buffer));
  ASSERT_TRUE(packet->Set(buffer + 1, 3));
  EXPECT_EQ(Hex(*packet), "02 03 04");
}

TEST(TalcByteCode, KeepsTheOldBytesWhenSetWithNone) {
  const auto packet = Packet("01 02 03");
  const std::uint8_t byte = 9;
  EXPECT_FALSE(packet->Set(&byte, 0));
  EXPECT_EQ(Hex(*packet), "01 02 03");
  EXPECT_FALSE(packet->Set(nullptr, 1));
  EXPECT_EQ(Hex(*packet), "01 02 03");
  EXPECT_FALSE(packet->Set(nullptr, 0));
  EXPECT_EQ(Hex(*packet), "01 02 03");
}

TEST(TalcByteCode, IsEmptyWhenThereIsNoMemoryForTheBytes) {
  const auto packet = Packet("01 02 03");
  const Bytes longer(100, 7);
  {
    const test_support::FailingAllocation first(1);
    EXPECT_FALSE(packet->Set(longer.data(), 100));
    EXPECT_TRUE(first.Happened());
  }
  EXPECT_EQ(packet->GetSize(), 0u);
  EXPECT_EQ(Hex(*packet), "");
  EXPECT_EQ(packet->GetPayloadSize(), -1);
  // And it can be used again.
  EXPECT_TRUE(packet->Set(longer.data(), 2));
  EXPECT_EQ(Hex(*packet), "07 07");
}

TEST(TalcByteCode, IsEmptyWhenCleared) {
  const auto packet = Packet("0B 0B 00 05 00 00 00 00 01");
  packet->Clear();
  const std::uint8_t* pointer = nullptr;
  EXPECT_EQ(packet->GetSize(), 0u);
  EXPECT_FALSE(packet->GetPacketByteCodeBuffer(&pointer));
  EXPECT_FALSE(packet->GetPayloadPointer(&pointer));
  EXPECT_FALSE(packet->HasPayload());
  EXPECT_EQ(packet->GetStatus(), TalcPath::kTPFail);
  packet->Clear();
  EXPECT_EQ(packet->GetSize(), 0u);
}

TEST(TalcByteCode, RefusesNullOutPointers) {
  const auto packet = Packet("0B 0B 00 05 00 00 00 00 01");
  EXPECT_FALSE(packet->GetPacketByteCodeBuffer(nullptr));
  EXPECT_FALSE(packet->GetPacketByteCodeBufferSize(nullptr));
  EXPECT_FALSE(packet->GetPayloadPointer(nullptr));
}

TEST(TalcByteCode, HasAPayloadBehindEightBytes) {
  const std::uint8_t* payload = nullptr;
  const auto header = Packet("0B 0B 00 04 00 00 00 00");
  EXPECT_FALSE(header->HasPayload());
  EXPECT_FALSE(header->GetPayloadPointer(&payload));
  const auto longer = Packet("0B 0B 00 05 00 00 00 00 AB");
  EXPECT_TRUE(longer->HasPayload());
  ASSERT_TRUE(longer->GetPayloadPointer(&payload));
  EXPECT_EQ(*payload, 0xAB);
}

TEST(TalcByteCode, TellsThePayloadSizeByTheLengthFieldAlone) {
  const struct {
    const char* packet;
    std::int32_t size;
  } cases[] = {
      {"0B 0B 00 04 00 00 00 00", 0},
      {"0B 0B 00 06 00 00 00 00 01 02", 2},
      {"0B 0B 00 05 00 00 00 00 01 02", 1},
      {"0B 0B FF FF 00 00 00 00", 65531},       // whatever is really there
      {"0B 0B 12 34 00 00 00 00", 0x1234 - 4},  // most significant byte first
      {"0B 0B 00 03 00 00 00 00", -1},          // a length that does not count the header
      {"0B 0B 00 00 00 00 00 00", -1},          //
      {"0B 0C 00 04 00 00 00 00", -2},          // no mark
      {"0A 0B 00 04 00 00 00 00", -2},          //
      {"00 00 00 03 00 00 00 00", -1},          // neither: the length is judged first
      {"0B 0B 00 04 00 00 00", -1},             // no whole header
      {"0B", -1},
  };
  for (const auto& test : cases)
    EXPECT_EQ(Packet(test.packet)->GetPayloadSize(), test.size) << test.packet;
}

TEST(TalcByteCode, TellsTheStatusByTheEighthByte) {
  for (int byte = 0; byte < 256; ++byte) {
    TalcPathStatus expected = TalcPath::kTPFail;
    if (byte == 0) expected = TalcPath::kTPSuccess;
    if (byte == 2) expected = TalcPath::kTPNotSupported;
    if (byte == 240) expected = TalcPath::kTPTransmitFailure;
    if (byte == 255) expected = TalcPath::kTPTimeOut;
    const Bytes reply = {0x0B, 0x0B, 0, 4, 0x40, 0x2E, 0, static_cast<std::uint8_t>(byte)};
    TalcByteCode packet;
    packet.Set(reply.data(), 8);
    EXPECT_EQ(packet.GetStatus(), expected) << "status byte " << byte;
  }
}

TEST(TalcByteCode, IsAFailureWithoutTheMarkOrAWholeHeader) {
  for (const char* const reply :
       {"0B 0C 00 04 00 00 00 00", "0A 0B 00 04 00 00 00 02", "0B 0B 00 04 00 00 00", "0B", "00 00 00 00 00 00 00 FF"})
    EXPECT_EQ(Packet(reply)->GetStatus(), TalcPath::kTPFail) << reply;
  // The length is not looked at.
  EXPECT_EQ(Packet("0B 0B 00 00 00 00 00 00")->GetStatus(), TalcPath::kTPSuccess);
}

TEST(TalcByteCode, BecomesAReplyWithoutACode) {
  const auto packet = Packet("01 02 03 04 05 06 07 08 09 0A");
  packet->SetResponseTimeOut();
  EXPECT_EQ(Hex(*packet), "0B 0B 00 04 00 00 00 FF");
  EXPECT_EQ(packet->GetStatus(), TalcPath::kTPTimeOut);
  packet->SetResponseFail();
  EXPECT_EQ(Hex(*packet), "0B 0B 00 04 00 00 00 01");
  EXPECT_EQ(packet->GetStatus(), TalcPath::kTPFail);
  packet->SetResponseSuccess();
  EXPECT_EQ(Hex(*packet), "0B 0B 00 04 00 00 00 00");
  EXPECT_EQ(packet->GetStatus(), TalcPath::kTPSuccess);

  TalcByteCode fresh;
  fresh.SetResponseTimeOut();
  EXPECT_EQ(Hex(fresh), "0B 0B 00 04 00 00 00 FF");
}

}  // namespace
