#include "FlashChipFixture.h"

using simulator::Fault;
using simulator::ParseFault;

namespace {

class FlashChipErase : public FlashChipTest {
 protected:
  FlashChipErase() {
    chip.memory().Fill(kBlock, 0x10000, 0x1234);
    chip.memory().SetWord(kBlock - 1, 0x5555);
    chip.memory().SetWord(kNextBlock, 0x6666);
  }
};

TEST_F(FlashChipErase, BringsOneBlockToOnesWhenItsTimeIsOver) {
  Erase(kBlock);
  EXPECT_EQ(ReadPair(), 0u) << "busy at once, and in status mode";
  now += 749'999'999;
  EXPECT_EQ(ReadPair(), 0u);
  EXPECT_EQ(Cell(kBlock), 0x1234);
  now += 1;
  EXPECT_EQ(ReadPair(), 0x00800080u);
  for (const std::uint32_t offset : {0u, 0x8000u, 0xFFFFu})
    EXPECT_EQ(Cell(kBlock + offset), 0xFFFF);
  EXPECT_EQ(Cell(kBlock - 1), 0x5555);
  EXPECT_EQ(Cell(kNextBlock), 0x6666);
  ExpectNoErrors();
}

TEST_F(FlashChipErase, TakesAnyAddressOfTheBlock) {
  Write(kBlock + 5, 0x20);
  Write(kBlock + 0xFFFF, 0xD0);
  WaitMilliseconds(750);
  EXPECT_EQ(ReadPair(), 0x00800080u);
  EXPECT_EQ(Cell(kBlock), 0xFFFF);
  ExpectNoErrors();
}

TEST_F(FlashChipErase, IsReadInTheModeThatIsAskedForAfterwards) {
  Erase(kBlock);
  Write(0, 0x70);
  WaitMilliseconds(750);
  EXPECT_EQ(ReadPair(kBlock), 0x00800080u);
  Write(0, 0xFF);
  EXPECT_EQ(ReadPair(kBlock), 0xFFFFFFFFu);
  ExpectNoErrors();
}

TEST_F(FlashChipErase, OnlyAnswersForItsStatusMeanwhile) {
  Erase(kBlock);
  Write(0, 0x70);
  ExpectNoErrors();
  for (const std::uint32_t command : {0xFFu, 0x90u, 0x98u, 0x50u, 0x20u, 0xE8u, 0xD0u})
    Write(0, command);
  EXPECT_THAT(Errors(), testing::SizeIs(7));
  EXPECT_EQ(Errors().front(), "flash: command 00ff while busy at word address 000000");
  WaitMilliseconds(750);
  EXPECT_EQ(ReadPair(kBlock), 0x00800080u) << "none of them was obeyed";
}

TEST_F(FlashChipErase, NeedsItsConfirm) {
  Write(kBlock, 0x20);
  Write(kBlock, 0xFF);
  ExpectError("flash: confirm of an erase of block 16 expected, got ff at word address 100000");
  EXPECT_EQ(Status(), 0xB0u) << "both error bits: a command sequence error";
  EXPECT_EQ(Cell(kBlock), 0x1234);
}

TEST_F(FlashChipErase, NeedsItsConfirmInTheSameBlock) {
  Write(kBlock, 0x20);
  Write(kNextBlock, 0xD0);
  ExpectError("flash: confirm of an erase of block 16 expected, got d0 at word address 110000");
  EXPECT_EQ(Status(), 0xB0u);
}

TEST_F(FlashChipErase, IsRefusedByALockedBlock) {
  chip.registers().lockBits = std::uint64_t{1} << 16;
  Erase(kBlock);
  EXPECT_EQ(ReadPair(), 0x00A200A2u) << "erase error and block locked, and no wait";
  EXPECT_EQ(Cell(kBlock), 0x1234);
  ExpectNoErrors();
  Erase(kNextBlock);
  WaitMilliseconds(750);
  EXPECT_EQ(ReadPair(), 0x00A200A2u) << "error bits stay";
  EXPECT_EQ(Cell(kNextBlock), 0xFFFF);
}

TEST_F(FlashChipErase, KeepsErrorBitsUntilTheyAreCleared) {
  chip.registers().errorBits = 0x20;
  Write(0, 0xFF);
  EXPECT_EQ(Status(), 0xA0u);
  Write(0, 0x50);
  EXPECT_EQ(ReadPair(), 0x00800080u) << "clearing does not change the read mode";
}

TEST_F(FlashChipErase, FailsOnDemandWithZerosInTheBlock) {
  plan.Add(ParseFault("erase-fails@2"));
  Erase(kNextBlock);
  WaitMilliseconds(750);
  EXPECT_EQ(Status(), 0x80u);
  Erase(kBlock);
  WaitMilliseconds(750);
  EXPECT_EQ(Status(), 0xA0u);
  EXPECT_EQ(Cell(kBlock), 0);
  EXPECT_EQ(Cell(kBlock + 0xFFFF), 0);
  EXPECT_EQ(Cell(kNextBlock), 0xFFFF);
  ExpectNoErrors();
}

TEST_F(FlashChipErase, SticksOnDemandUntilPowerIsLost) {
  plan.Add(ParseFault("erase-stuck"));
  Erase(kBlock);
  WaitMilliseconds(100'000);
  EXPECT_EQ(Status(), 0x00u);
  chip.PowerLoss(now);
  EXPECT_EQ(Status(), 0x80u);
  EXPECT_EQ(Cell(kBlock), 0xFFFF);
  ExpectNoErrors();
}

TEST_F(FlashChipErase, CountsErasesThatAreConfirmed) {
  Write(kBlock, 0x20);
  Write(kBlock, 0xFF);
  EXPECT_EQ(plan.Count(Fault::kEraseFails), 0u);
  Erase(kBlock);
  EXPECT_EQ(plan.Count(Fault::kEraseFails), 1u);
  EXPECT_EQ(plan.Count(Fault::kEraseStuck), 1u);
}

}  // namespace
