#include <gtest/gtest.h>

#include <string>

#include "simulator/FlashImage.h"

using simulator::FlashMemory;
using simulator::MakeInstalledFlash;
using simulator::StoredVersion;

namespace {

/// Puts bytes at a byte address of the device.
void Put(FlashMemory& flash, std::uint32_t byteAddress, const std::string& bytes) {
  for (const char letter : bytes) {
    const std::uint16_t old = flash.Word(byteAddress / 2);
    const auto byte = static_cast<unsigned char>(letter);
    flash.SetWord(byteAddress / 2, static_cast<std::uint16_t>(byteAddress % 2 != 0 ? (old & 0x00FF) | byte << 8
                                                                                   : (old & 0xFF00) | byte));
    ++byteAddress;
  }
}

std::string Get(const FlashMemory& flash, std::uint32_t byteAddress, std::size_t length) {
  std::string bytes;
  for (; bytes.size() < length; ++byteAddress)
    bytes.push_back(static_cast<char>(flash.Word(byteAddress / 2) >> (byteAddress % 2 * 8)));
  return bytes;
}

std::string Text(const char* text, std::size_t length) {
  return std::string(text, length);
}

/// Flash with a stamp at a byte address of the device and this pointer to it.
FlashMemory WithStamp(std::uint16_t format, std::uint32_t location, std::uint32_t byteAddress,
                      const std::string& stamp) {
  FlashMemory flash;
  Put(flash, byteAddress, stamp);
  flash.SetWord(0x1FFFFD, format);
  flash.SetWord(0x1FFFFE, static_cast<std::uint16_t>(location));
  flash.SetWord(0x1FFFFF, static_cast<std::uint16_t>(location >> 16));
  return flash;
}

TEST(FlashImage, EndsInTheStampThatAnInstallerWrites) {
  const FlashMemory flash = MakeInstalledFlash("BLMX0202.rbi", "BLMX", 0x1160, 1);
  // 99 characters of text and 26 of header: the stamp begins at 0x1FFF5 - 99 - 26 in the top block, whose first byte is
  // 0x3E0000.
  constexpr std::uint32_t kStamp = 0x3FFF78;
  EXPECT_EQ(Get(flash, kStamp - 1, 1), "\xFF");
  EXPECT_EQ(Get(flash, kStamp, 99),
            " Filename:     BLMX0202.rbi\n Installer:    FACTORY - bench\n Install Date: Mon Jan  1 00:00:00 2018\n");
  EXPECT_EQ(Get(flash, kStamp + 99, 1), Text("\0", 1));
  EXPECT_EQ(Get(flash, kStamp + 100, 26), "R1160 BLMXS:BENCH;M:01.00;");
  EXPECT_EQ(Get(flash, kStamp + 126, 2), Text("\0\0", 2)) << "up to the last eight bytes";
  EXPECT_EQ(Get(flash, 0x3FFFF8, 4), Text("\x60\x11\x08\x00", 4)) << "version word";
  EXPECT_EQ(Get(flash, 0x3FFFFC, 4), Text("\x78\xFF\x1F\x00", 4)) << "pointer";
  EXPECT_EQ(StoredVersion(flash), 0x1160);
}

TEST(FlashImage, LiesInTheImageAreaAlone) {
  const FlashMemory flash = MakeInstalledFlash("BLMX0202.rbi", "BLMX", 0x1160, 1);
  for (std::uint32_t word = 0; word < 0x100000; ++word)
    ASSERT_EQ(flash.Word(word), 0xFFFF) << word;
  for (std::uint32_t word = 0x200000; word < 0x400000; ++word)
    ASSERT_EQ(flash.Word(word), 0xFFFF) << word;
  EXPECT_NE(Get(flash, 0x200000, 16), std::string(16, '\xFF')) << "there is an image";
}

TEST(FlashImage, FollowsTheSeed) {
  const FlashMemory flash = MakeInstalledFlash("BLMX0202.rbi", "BLMX", 0x1160, 1);
  EXPECT_EQ(flash, MakeInstalledFlash("BLMX0202.rbi", "BLMX", 0x1160, 1));
  EXPECT_NE(flash, MakeInstalledFlash("BLMX0202.rbi", "BLMX", 0x1160, 2));
  EXPECT_NE(Get(flash, 0x200000, 16), Get(MakeInstalledFlash("x", "DVUX", 0x1160, 1), 0x200000, 16));
}

TEST(StoredVersion, IsNothingWithoutAPointer) {
  EXPECT_EQ(StoredVersion(FlashMemory()), std::nullopt);
  const std::string stamp = Text("text\0R1234", 10);
  EXPECT_EQ(StoredVersion(WithStamp(8, 0, 0x200000, stamp)), std::nullopt);
  EXPECT_EQ(StoredVersion(WithStamp(8, 0x80000000, 0x200000, stamp)), std::nullopt);
}

TEST(StoredVersion, FollowsAByteOffset) {
  const std::string stamp = Text("text\0Rab12", 10);
  EXPECT_EQ(StoredVersion(WithStamp(8, 0x1000, 0x201000, stamp)), 0xAB12);
  EXPECT_EQ(StoredVersion(WithStamp(8, 0x1001, 0x201001, stamp)), 0xAB12) << "one byte into a word";
  EXPECT_EQ(StoredVersion(WithStamp(0, 0x1000, 0x201000, stamp)), 0xAB12) << "every format but 4";
}

TEST(StoredVersion, FollowsAWordAddressInTheOldFormat) {
  const std::string stamp = Text("text\0R0999", 10);
  EXPECT_EQ(StoredVersion(WithStamp(4, 0x1FF000, 0x3FE000, stamp)), 0x0999);
  EXPECT_EQ(StoredVersion(WithStamp(4, 0x1FF000, 0x201000, stamp)), 0x0000);
}

TEST(StoredVersion, IsZeroWithoutAWholeStamp) {
  const std::string bad[] = {"text without an end",     Text("text\0X1234", 10), Text("text\0R12g4", 10),
                             Text("text\0R 123", 10),   std::string("R1234"),    Text("\0\0", 2),
                             Text("text\0R123\xFF", 10)};
  for (const std::string& stamp : bad)
    EXPECT_EQ(StoredVersion(WithStamp(8, 0x1000, 0x201000, stamp)), 0) << stamp;
}

TEST(StoredVersion, ReadsAKilobyteAndNotBeyondTheImage) {
  const std::string version = Text("\0R1234", 6);
  EXPECT_EQ(StoredVersion(WithStamp(8, 0x1000, 0x201000, std::string(1018, 't') + version)), 0x1234);
  EXPECT_EQ(StoredVersion(WithStamp(8, 0x1000, 0x201000, std::string(1019, 't') + version)), 0);
  EXPECT_EQ(StoredVersion(WithStamp(8, 0x1FFFF0, 0x3FFFF0, Text("\0R1234", 6))), 0x1234);
  EXPECT_EQ(StoredVersion(WithStamp(8, 0x1FFFFE, 0x3FFFFE, "")), 0);
  EXPECT_EQ(StoredVersion(WithStamp(8, 0x7FFFFFFF, 0x200000, "")), 0);
  EXPECT_EQ(StoredVersion(WithStamp(4, 0x7FFFFFFF, 0x200000, "")), 0);
}

}  // namespace
