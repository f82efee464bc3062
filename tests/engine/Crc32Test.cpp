// The CRC of dictionary files by known values.

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "engine/Crc32.h"

namespace {

using TalcPathPrivate::Crc32;

std::uint32_t CrcOf(std::string_view bytes) {
  Crc32 crc;
  crc.Start();
  crc.Add(bytes);
  crc.Finish();
  return crc.Running();
}

TEST(Crc32Test, HasTheCheckValue) {
  EXPECT_EQ(CrcOf("123456789"), 0xCBF43926u);
}

TEST(Crc32Test, OfNothingIsZero) {
  EXPECT_EQ(CrcOf(""), 0u);
}

TEST(Crc32Test, TakesEveryByteValue) {
  EXPECT_EQ(CrcOf(std::string(1, '\0')), 0xD202EF8Du);
  EXPECT_EQ(CrcOf("\xFF"), 0xFF000000u);
  std::string all;
  for (int byte = 0; byte < 256; ++byte)
    all += static_cast<char>(byte);
  EXPECT_EQ(CrcOf(all), 0x29058C73u);
}

TEST(Crc32Test, DoesNotMindHowTheBytesAreParted) {
  Crc32 crc;
  crc.Start();
  for (const std::string_view piece : {"1", "", "2345", "6789"})
    crc.Add(piece);
  crc.Finish();
  EXPECT_EQ(crc.Running(), 0xCBF43926u);
}

TEST(Crc32Test, StartsAnew) {
  Crc32 crc;
  crc.Start();
  crc.Add(std::string_view("something else"));
  crc.Start();
  EXPECT_EQ(crc.Running(), 0xFFFFFFFFu);
  crc.Add(std::string_view("123456789"));
  EXPECT_EQ(crc.Running(), 0x340BC6D9u);  // before it is finished, which inverts it
  crc.Finish();
  EXPECT_EQ(crc.Running(), 0xCBF43926u);
}

TEST(Crc32Test, ComparesWithWhatIsExpected) {
  Crc32 crc;
  crc.SetExpected(0xCBF43926);
  crc.Start();
  EXPECT_FALSE(crc.IsEqual());
  crc.Add(std::string_view("123456789"));
  EXPECT_FALSE(crc.IsEqual());
  crc.Finish();
  EXPECT_TRUE(crc.IsEqual());
  crc.SetExpected(0xCBF43927);
  EXPECT_FALSE(crc.IsEqual());
}

}  // namespace
