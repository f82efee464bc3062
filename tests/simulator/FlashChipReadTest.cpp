#include "FlashChipFixture.h"

using simulator::FlashChip;
using simulator::FlashMemory;
using simulator::FlashRegisters;

namespace {

using FlashChipRead = FlashChipTest;

TEST_F(FlashChipRead, GivesWordPairsOfTheArrayAfterPowerUp) {
  chip.memory().SetWord(0x1000, 0x1111);
  chip.memory().SetWord(0x1001, 0x2222);
  EXPECT_EQ(ReadPair(0x1000), 0x22221111u);
  EXPECT_EQ(ReadPair(0x1001), 0x22221111u) << "the lowest address bit is ignored";
  EXPECT_EQ(ReadPair(0x1002), 0xFFFFFFFFu);
  ExpectNoErrors();
}

TEST_F(FlashChipRead, GivesTheStatusByteInBothWords) {
  Write(0, 0x70);
  EXPECT_EQ(ReadPair(0x1234), 0x00800080u);
  Write(0, 0xFF);
  EXPECT_EQ(ReadPair(0x1234), 0xFFFFFFFFu);
  ExpectNoErrors();
}

TEST_F(FlashChipRead, IdentifiesItself) {
  Write(0, 0x90);
  EXPECT_EQ(ReadPair(0), 0x00170089u) << "device code and manufacturer";
  ExpectNoErrors();
}

TEST_F(FlashChipRead, TellsTheLockBitOfEachBlock) {
  chip.registers().lockBits = 0x8000000000000002;
  Write(0, 0x90);
  EXPECT_EQ(ReadPair(0x000002) & 0xFFFF, 0u);
  EXPECT_EQ(ReadPair(0x010002) & 0xFFFF, 1u);
  EXPECT_EQ(ReadPair(0x020002) & 0xFFFF, 0u);
  EXPECT_EQ(ReadPair(0x3F0002) & 0xFFFF, 1u);
}

TEST_F(FlashChipRead, ShowsItsProtectionRegisters) {
  chip.registers().protection = {0xFFFE, 1, 2, 3, 4, 5, 6, 7, 8};
  Write(0, 0x90);
  EXPECT_EQ(ReadPair(0x80), 0x0001FFFEu);
  EXPECT_EQ(ReadPair(0x82), 0x00030002u);
  EXPECT_EQ(ReadPair(0x84), 0x00050004u);
  EXPECT_EQ(ReadPair(0x86), 0x00070006u);
  EXPECT_EQ(ReadPair(0x88), 0xFFFF0008u);
  EXPECT_EQ(ReadPair(0x8A), 0xFFFFFFFFu);
}

// A reader of the common flash interface works out the geometry from these.
TEST_F(FlashChipRead, AnswersQueries) {
  Write(0, 0x98);
  const auto byte = [this](std::uint32_t address) {
    const std::uint32_t pair = ReadPair(address);
    return address % 2 == 0 ? pair & 0xFFFF : pair >> 16;
  };
  EXPECT_EQ(byte(0x10), static_cast<std::uint32_t>('Q'));
  EXPECT_EQ(byte(0x11), static_cast<std::uint32_t>('R'));
  EXPECT_EQ(byte(0x12), static_cast<std::uint32_t>('Y'));
  EXPECT_EQ(byte(0x13), 0x01u) << "command set";
  EXPECT_EQ(1u << byte(0x27), FlashMemory::kSizeBytes);
  EXPECT_EQ(1u << byte(0x2A), FlashChip::kBufferWords * 2);
  EXPECT_EQ(byte(0x2C), 1u) << "regions";
  EXPECT_EQ(byte(0x2D) + 1, FlashMemory::kBlockCount);
  EXPECT_EQ((byte(0x2F) | byte(0x30) << 8) * 256, FlashMemory::kBlockWords * 2);
  EXPECT_EQ(byte(byte(0x15)), static_cast<std::uint32_t>('P')) << "the command set's own table";
  EXPECT_EQ(ReadPair(0x00), 0u);
  EXPECT_EQ(ReadPair(0x1000), 0u);
  ExpectNoErrors();
}

TEST_F(FlashChipRead, RefusesAddressesOutsideTheDevice) {
  EXPECT_EQ(ReadPair(0x3FFFFF), 0xFFFFFFFFu);
  ExpectNoErrors();
  Write(0, 0x70);
  EXPECT_EQ(ReadPair(0x400000), 0xFFFFFFFFu);
  ExpectError("flash: read outside the device at word address 400000");
}

TEST_F(FlashChipRead, CopiesAreChipsOfTheirOwn) {
  Erase(kBlock);
  FlashChip copy = chip;
  WaitMilliseconds(1000);
  Program(kBlock, {0x1234});
  WaitMilliseconds(1);
  EXPECT_EQ(Status(), 0x80u);
  EXPECT_EQ(Cell(kBlock), 0x1234);
  EXPECT_EQ(copy.memory().Word(kBlock), 0xFFFF);
  EXPECT_EQ(copy.ReadPair(0, 5'000'000) & 0xFF, 0x00u) << "still erasing at its own time";
}

TEST_F(FlashChipRead, StartsFromGivenCellsAndRegisters) {
  FlashMemory cells;
  cells.SetWord(7, 0x0707);
  FlashRegisters registers;
  registers.readMode = simulator::FlashReadMode::kStatus;
  registers.errorBits = 0x20;
  FlashChip made(cells, registers);
  EXPECT_EQ(made.ReadPair(0, 0), 0x00A000A0u);
  made.Write(0, 0xFF, 0);
  EXPECT_EQ(made.ReadPair(6, 0), 0x0707FFFFu);
}

}  // namespace
