#include "FlashChipFixture.h"

namespace {

using FlashChipLock = FlashChipTest;

TEST_F(FlashChipLock, LocksOneBlockAndUnlocksAll) {
  Write(kBlock, 0x60);
  Write(kBlock, 0x01);
  EXPECT_EQ(ReadPair(), 0u);
  now += 60'000;
  EXPECT_EQ(ReadPair(), 0x00800080u);
  EXPECT_EQ(chip.registers().lockBits, std::uint64_t{1} << 16);
  Write(0x3F0000, 0x60);
  Write(0x3F0000, 0x01);
  now += 60'000;
  EXPECT_EQ(Status(), 0x80u);
  EXPECT_EQ(chip.registers().lockBits, std::uint64_t{1} << 16 | std::uint64_t{1} << 63);
  Write(0, 0x60);
  Write(0, 0xD0);
  now += 499'999'999;
  EXPECT_EQ(Status(), 0x00u);
  now += 1;
  EXPECT_EQ(Status(), 0x80u);
  EXPECT_EQ(chip.registers().lockBits, 0u);
  ExpectNoErrors();
}

TEST_F(FlashChipLock, RefusesAnotherSecondCommandOrBlock) {
  Write(kBlock, 0x60);
  Write(kBlock, 0x2F);
  ExpectError("flash: lock or unlock of block 16 expected, got 2f at word address 100000");
  EXPECT_EQ(Status(), 0xB0u);
  Write(kBlock, 0x60);
  Write(kNextBlock, 0x01);
  EXPECT_EQ(chip.errors().total(), 2u);
  EXPECT_EQ(chip.registers().lockBits, 0u);
}

TEST_F(FlashChipLock, ProgramsTheUserPartOfTheProtectionRegister) {
  Write(0x85, 0xC0);
  Write(0x85, 0xF00F);
  EXPECT_EQ(ReadPair(), 0u);
  now += 120'000;
  EXPECT_EQ(ReadPair(), 0x00800080u);
  EXPECT_EQ(chip.registers().protection[5], 0xF00F);
  ExpectNoErrors();

  Write(0x85, 0xC0);
  Write(0x85, 0xF01F);
  ExpectError("flash: programming f01f over f00f would set bits of a protection register at word address 000085");
  EXPECT_EQ(Status(), 0x90u);
}

TEST_F(FlashChipLock, KeepsTheFactoryPartOfTheProtectionRegister) {
  const auto before = chip.registers();
  for (const std::uint32_t address : {0x81u, 0x84u}) {
    Write(address, 0xC0);
    Write(address, 0);
    EXPECT_EQ(Status(), 0x92u) << std::hex << address;
    Write(0, 0x50);
  }
  EXPECT_EQ(chip.registers().protection, before.protection);
  ExpectNoErrors();
}

TEST_F(FlashChipLock, KeepsTheUserPartOnceItIsLocked) {
  Write(0x80, 0xC0);
  Write(0x80, 0xFFFC);
  now += 120'000;
  EXPECT_EQ(Status(), 0x80u);
  Write(0x88, 0xC0);
  Write(0x88, 0);
  EXPECT_EQ(Status(), 0x92u);
  EXPECT_EQ(chip.registers().protection[8], 0xFFFF);
  ExpectNoErrors();
}

TEST_F(FlashChipLock, RefusesProtectionDataElsewhere) {
  for (const std::uint32_t address : {0x7Fu, 0x89u, 0x100085u}) {
    Write(address, 0xC0);
    Write(address, 0);
    EXPECT_EQ(Status(), 0xB0u) << std::hex << address;
    Write(0, 0x50);
  }
  EXPECT_EQ(chip.errors().total(), 3u);
  EXPECT_EQ(Errors().front(), "flash: data of a protection register outside it at word address 00007f");
}

}  // namespace
