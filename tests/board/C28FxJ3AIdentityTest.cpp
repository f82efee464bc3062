#include <gmock/gmock.h>

#include <array>
#include <cstring>
#include <initializer_list>

#include "FlashFixture.h"

namespace {

using testing::Each;
using testing::ElementsAreArray;

class C28FxJ3AIdentity : public FlashFixture {
 protected:
  /// The accesses of a whole identity read. Block `i` is locked if `i` is in `lockedBlocks`; bits of a lock word above
  /// the lowest mean nothing.
  static RegisterScript Script(std::initializer_list<std::uint32_t> lockedBlocks, std::uint32_t protectionLock) {
    RegisterScript script = {W(0, 0), W(4, 0x90),        //
                             W(0, 0), R(4, 0xFFFF0089),  //
                             W(0, 1), R(4, 0x0017FFFF)};
    for (std::uint32_t block = 0; block < 64; ++block) {
      std::uint32_t lock = 0xFFFFFFFE;
      for (const std::uint32_t locked : lockedBlocks)
        if (locked == block) lock = 0x00000001;
      script = Join({script, {W(0, 0), W(4, 0x90), W(0, block * 0x10000 + 2), R(4, lock)}});
    }
    return Join({script, {W(0, 128), R(4, protectionLock),  //
                          W(0, 130), R(4, 0xFFFF2211),
                          W(0, 131), R(4, 0x4433FFFF),  //
                          W(0, 132), R(4, 0xFFFF6655),
                          W(0, 133), R(4, 0x8877FFFF),  //
                          W(0, 134), R(4, 0xFFFFA29A),
                          W(0, 135), R(4, 0xC4B3FFFF),  //
                          W(0, 138), R(4, 0xFFFFE6D5),
                          W(0, 139), R(4, 0x08F7FFFF),  //
                          W(0, 0),   W(4, 0xFF)}});
  }

  static std::array<std::uint8_t, 44> Bytes(const FlashIdentity& record) {
    std::array<std::uint8_t, 44> bytes;
    static_assert(sizeof record == sizeof bytes);
    std::memcpy(bytes.data(), &record, sizeof record);
    return bytes;
  }

  FlashIdentity record = [] {
    FlashIdentity dirty;
    std::memset(&dirty, 0x5A, sizeof dirty);
    return dirty;
  }();
};

TEST_F(C28FxJ3AIdentity, IsARecordOf44Bytes) {
  flash.Attach(registers.Window());
  registers.Expect(Script({0, 3, 8, 15, 62, 63}, 0xFFFFFFFE));
  EXPECT_TRUE(flash.ReadIdentity(record));
  constexpr std::uint8_t kExpected[44] = {
      0x89, 0x00,                                      // manufacturer
      0x17, 0x00,                                      // device code
      0x09, 0x81, 0x00, 0x00, 0x00, 0x00, 0x00, 0xC0,  // locked blocks, low bit first
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,  //
      0x01, 0x00, 0x00, 0x00,                          // factory part unlocked
      0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88,  //
      0x00, 0x00, 0x00, 0x00,                          // user part locked
      0x9A, 0xA2, 0xB3, 0xC4, 0xD5, 0xE6, 0xF7, 0x08,  //
  };
  EXPECT_THAT(Bytes(record), ElementsAreArray(kExpected));
}

TEST_F(C28FxJ3AIdentity, SaysUnlockedForAClearProtectionBit) {
  struct {
    std::uint32_t protectionLock, factoryPartUnlocked, userPartUnlocked;
  } constexpr kCases[] = {{0, 1, 1}, {1, 0, 1}, {2, 1, 0}, {3, 0, 0}, {0xFFFFFFFC, 1, 1}};
  flash.Attach(registers.Window());
  for (const auto& lock : kCases) {
    registers.Expect(Script({}, lock.protectionLock));
    EXPECT_TRUE(flash.ReadIdentity(record));
    registers.ExpectDone();
    EXPECT_EQ(record.factoryPartUnlocked, lock.factoryPartUnlocked) << lock.protectionLock;
    EXPECT_EQ(record.userPartUnlocked, lock.userPartUnlocked) << lock.protectionLock;
    EXPECT_THAT(record.lockBits, Each(0)) << "of the last record nothing may be left";
  }
}

TEST_F(C28FxJ3AIdentity, LeavesTheChipInReadArrayMode) {
  AttachInReadArrayMode();
  registers.Expect(Script({}, 3));
  EXPECT_TRUE(flash.ReadIdentity(record));
  registers.ExpectDone();

  registers.Expect(ReadAtZeroWithoutCommand());
  ReadAtZero();
}

TEST_F(C28FxJ3AIdentity, FailsWithoutAWindow) {
  EXPECT_FALSE(flash.ReadIdentity(record));
  EXPECT_EQ(record.manufacturer, 0);
  EXPECT_EQ(record.deviceCode, 0);
  EXPECT_THAT(record.lockBits, Each(0));
  EXPECT_THAT(record.factoryData, Each(0));
  EXPECT_THAT(record.userData, Each(0));
}

}  // namespace
