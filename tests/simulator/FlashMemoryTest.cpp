#include <gtest/gtest.h>

#include <utility>

#include "simulator/FlashMemory.h"

using simulator::FlashMemory;

namespace {

TEST(FlashMemory, IsErasedAtFirst) {
  const FlashMemory memory;
  for (const std::uint32_t address : {0u, 1u, 0xFFFFu, 0x10000u, 0x200000u, 0x3FFFFFu})
    EXPECT_EQ(memory.Word(address), 0xFFFF) << std::hex << address;
  EXPECT_EQ(memory, FlashMemory());
}

TEST(FlashMemory, KeepsWordsWhereTheyWerePut) {
  FlashMemory memory;
  const std::pair<std::uint32_t, std::uint16_t> words[] = {{0, 0x0001},       {1, 0x0002},      {0x3FF, 0x0003},
                                                           {0x400, 0x0004},   {0xFFFF, 0x0005}, {0x10000, 0x0006},
                                                           {0x3FFFFF, 0x0007}};
  for (const auto& [address, word] : words)
    memory.SetWord(address, word);
  for (const auto& [address, word] : words)
    EXPECT_EQ(memory.Word(address), word) << std::hex << address;
  EXPECT_EQ(memory.Word(2), 0xFFFF);
  EXPECT_EQ(memory.Word(0x3FE), 0xFFFF);
  EXPECT_EQ(memory.Word(0x10001), 0xFFFF);
  EXPECT_NE(memory, FlashMemory());
}

struct Stretch {
  std::uint32_t first;
  std::uint32_t count;
  std::uint16_t value;
};

class FlashMemoryFill : public testing::TestWithParam<Stretch> {};

TEST_P(FlashMemoryFill, ChangesItsWordsAndNoOthers) {
  const Stretch run = GetParam();
  FlashMemory memory;
  memory.Fill(0, FlashMemory::kWordCount, 0x5555);
  memory.Fill(run.first, run.count, run.value);
  for (std::uint32_t address = 0; address < FlashMemory::kWordCount; ++address) {
    const bool inside = address >= run.first && address - run.first < run.count;
    ASSERT_EQ(memory.Word(address), inside ? run.value : 0x5555) << std::hex << address;
  }
}

INSTANTIATE_TEST_SUITE_P(Runs, FlashMemoryFill,
                         testing::Values(Stretch{0x10000, 0, 0}, Stretch{0x10000, 1, 0},
                                         Stretch{0x10000, 0x10000, 0xFFFF}, Stretch{0x10000, 0x10000, 0},
                                         Stretch{0x10001, 0xFFFE, 0xFFFF}, Stretch{0x103FF, 0x402, 0},
                                         Stretch{0x3F0000, 0x10000, 0x1234}, Stretch{0x0, 0x400000, 0xFFFF},
                                         Stretch{0x1FFFF, 0x10002, 0xFFFF}));

TEST(FlashMemory, CopiesAreOnTheirOwn) {
  FlashMemory memory;
  memory.SetWord(0x100000, 0x1111);
  const FlashMemory before = memory;
  FlashMemory other = memory;
  memory.SetWord(0x100000, 0x2222);
  other.Fill(0x100000, 0x10000, 0);
  EXPECT_EQ(before.Word(0x100000), 0x1111);
  EXPECT_EQ(memory.Word(0x100000), 0x2222);
  EXPECT_EQ(other.Word(0x100000), 0x0000);
  EXPECT_EQ(before.Word(0x100001), 0xFFFF);
}

// Whole pages of zeros and ones are shared by all chips.
TEST(FlashMemory, NeverWritesIntoTheSharedPages) {
  FlashMemory memory;
  memory.Fill(0, 0x10000, 0);
  memory.SetWord(5, 0x7777);
  memory.Fill(0x10000, 0x10000, 0xFFFF);
  memory.SetWord(0x10005, 0x8888);
  FlashMemory other;
  other.Fill(0x20000, 0x10000, 0);
  EXPECT_EQ(other.Word(5), 0xFFFF);
  EXPECT_EQ(other.Word(0x10005), 0xFFFF);
  EXPECT_EQ(other.Word(0x20005), 0);
}

TEST(FlashMemory, TurnsIntoAnImageOfWordsLowByteFirstAndBack) {
  FlashMemory memory;
  memory.SetWord(0, 0x1234);
  memory.SetWord(0x3FFFFF, 0xABCD);
  const std::vector<std::uint8_t> image = memory.ToBytes();
  ASSERT_EQ(image.size(), 0x800000u);
  EXPECT_EQ(image[0], 0x34);
  EXPECT_EQ(image[1], 0x12);
  EXPECT_EQ(image[2], 0xFF);
  EXPECT_EQ(image[0x7FFFFE], 0xCD);
  EXPECT_EQ(image[0x7FFFFF], 0xAB);
  const FlashMemory back = FlashMemory::FromBytes(image);
  EXPECT_EQ(back, memory);
  EXPECT_EQ(back.Word(0x3FFFFF), 0xABCD);
}

TEST(FlashMemory, ComparesWords) {
  FlashMemory a;
  FlashMemory b;
  a.SetWord(0x12345, 0);
  EXPECT_NE(a, b);
  b.SetWord(0x12345, 0);
  EXPECT_EQ(a, b);
}

}  // namespace
