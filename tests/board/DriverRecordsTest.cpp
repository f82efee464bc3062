#include <gmock/gmock.h>

#include <cstring>
#include <vector>

#include "board/DriverRecords.h"
#include "board/HwcErr.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

template <typename Record>
Bytes BytesOf(const Record& record) {
  Bytes bytes(sizeof record);
  std::memcpy(bytes.data(), &record, sizeof record);
  return bytes;
}

template <typename Record>
Record FromBytes(const Bytes& bytes) {
  Record record;
  EXPECT_EQ(bytes.size(), sizeof record);
  std::memcpy(&record, bytes.data(), sizeof record);
  return record;
}

TEST(DriverRecords, NameTheInterfaceClasses) {
  EXPECT_EQ(BytesOf(GUID_BelmaraDevice), (Bytes{0x92, 0x3B, 0x70, 0x65, 0x12, 0x7B, 0xB3, 0x41,  //
                                                0x9B, 0x07, 0x9B, 0x13, 0x1B, 0xAA, 0x36, 0x4B}));
  EXPECT_EQ(BytesOf(GUID_DovuDevice), (Bytes{0x82, 0x1D, 0x20, 0x02, 0x79, 0x47, 0xDE, 0x40,  //
                                             0xBB, 0xD8, 0xF1, 0x4D, 0x9E, 0xF4, 0xD8, 0x3E}));
  EXPECT_EQ(BytesOf(GUID_MorvakDevice), (Bytes{0x2B, 0xCF, 0x19, 0x55, 0xFC, 0xF6, 0x48, 0x4A,  //
                                               0x96, 0x51, 0x73, 0xDB, 0x09, 0xCF, 0x50, 0x91}));
}

TEST(DriverRecords, NumberTheControlCodes) {
  EXPECT_EQ(IOCTL_GetBoardMemoryMap, 0xC1762080u);
  EXPECT_EQ(IOCTL_MapMemory, 0xC1762404u);
  EXPECT_EQ(IOCTL_GetMorvakModel, 0xAA010008u);
  EXPECT_EQ(IOCTL_TransactTalc, 0xAA010038u);
  EXPECT_EQ(IOCTL_ReadVPD, 0xAA010044u);
  EXPECT_EQ(IOCTL_ReleaseBuffer, 0xAA010050u);
  EXPECT_EQ(IOCTL_QueryCodecSlot, 0xAA010054u);
}

TEST(DriverRecords, SegmentMapBeginsWithTheSizeOfTheWindow) {
  Bytes bytes(96, 0xEE);
  bytes[0] = 0x04;
  bytes[1] = 0x03;
  bytes[2] = 0x02;
  bytes[3] = 0x01;
  const auto map = FromBytes<SegmentMap>(bytes);
  EXPECT_EQ(map.registerWindowSize, 0x01020304u);
  EXPECT_EQ(map.furtherWindows[91], 0xEE);
}

TEST(DriverRecords, MapRegsInIsAStartAndASize) {
  EXPECT_EQ(BytesOf(MapRegsIn{0x0102030405060708, 0x11121314}),
            (Bytes{0x08, 0x07, 0x06, 0x05, 0x04, 0x03, 0x02, 0x01, 0x14, 0x13, 0x12, 0x11}));
}

TEST(DriverRecords, MapRegsOutIsAnAddressAndASecondValue) {
  const auto out = FromBytes<MapRegsOut>({1, 2, 3, 4, 5, 6, 7, 8, 0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18});
  EXPECT_EQ(out.address, 0x0807060504030201u);
  EXPECT_EQ(out.second, 0x1817161514131211u);
}

TEST(DriverRecords, ModelInfoIsSlotsAndModel) {
  const auto info = FromBytes<MorvakModelInfo>({2, 0, 0, 0, 5, 1, 0, 0});
  EXPECT_EQ(info.codecSlots, 2u);
  EXPECT_EQ(info.model, 0x105u);
}

TEST(DriverRecords, TalcCommandRecordHasNoGapBehindItsLastWord) {
  EXPECT_EQ(BytesOf(TalcCommandRecord{0x0102030405060708, 0x1112131415161718, 0x21222324, 2048, 1000000}),
            (Bytes{0x08, 0x07, 0x06, 0x05, 0x04, 0x03, 0x02, 0x01, 0x18, 0x17, 0x16, 0x15, 0x14, 0x13,
                   0x12, 0x11, 0x24, 0x23, 0x22, 0x21, 0x00, 0x08, 0x00, 0x00, 0x40, 0x42, 0x0F, 0x00}));
}

TEST(DriverRecords, TalcReplyBeginsWithItsStatus) {
  EXPECT_EQ(FromBytes<TalcReply>({0x12, 0x00, 0x03, 0x8A, 9, 9, 9, 9}).status, 0x8A030012u);
}

TEST(DriverRecords, VpdInIsABufferABoardAndASize) {
  EXPECT_EQ(BytesOf(VpdIn{0x0102030405060708, 13, 8192}),
            (Bytes{0x08, 0x07, 0x06, 0x05, 0x04, 0x03, 0x02, 0x01, 13, 0, 0, 0, 0x00, 0x20, 0, 0}));
}

TEST(DriverRecords, ModuleInfoIsASlotAndASignedState) {
  EXPECT_EQ(BytesOf(ModuleInfoRequest{1}), (Bytes{1, 0, 0, 0}));
  EXPECT_EQ(FromBytes<ModuleInfoResponse>({0xFE, 0xFF, 0xFF, 0xFF, 1, 1, 1, 1}).codecState, -2);
}

TEST(HwcStatus, HasTheNumbersOfTheBoardLayer) {
  EXPECT_EQ(kHWCerr_None, 0u);
  EXPECT_EQ(kHWCerr_CommandTimeout, 0x8A030012u);
  EXPECT_EQ(kHWCerr_NoDevice, 0x8A030046u);
  EXPECT_EQ(kHWCerr_BobCommsError, 0x8A03028Eu);
  EXPECT_EQ(kHWCerr_OutOfMemory, 0x8A030025u);
  EXPECT_EQ(kHWCerr_DeviceIoError, 0x8A030026u);
  EXPECT_EQ(kHWCerr_BadHandle, 0x8A030031u);
  EXPECT_EQ(kHWCerr_BadArgument, 0x8A030034u);
}

}  // namespace
