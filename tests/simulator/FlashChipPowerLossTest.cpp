#include "FlashChipFixture.h"

using simulator::FlashReadMode;

namespace {

using FlashChipPowerLoss = FlashChipTest;

/// How far an erase is when power is lost, and what it leaves: words up to `ones` are ones, those up to `zeros` zeros,
/// the rest as they were.
struct CutErase {
  std::int64_t elapsedNanoseconds;
  std::uint32_t ones;
  std::uint32_t zeros;
};

class FlashChipCutErase : public FlashChipTest, public testing::WithParamInterface<CutErase> {};

TEST_P(FlashChipCutErase, LeavesThePartThatItHasDone) {
  const CutErase cut = GetParam();
  chip.memory().Fill(kBlock, 0x10000, 0x1234);
  chip.memory().SetWord(kBlock - 1, 0x5555);
  chip.memory().SetWord(kNextBlock, 0x6666);
  Erase(kBlock);
  now += cut.elapsedNanoseconds;
  chip.PowerLoss(now);
  for (std::uint32_t i = 0; i < 0x10000; ++i)
    ASSERT_EQ(Cell(kBlock + i), i < cut.ones ? 0xFFFF : i < cut.zeros ? 0 : 0x1234) << "word " << i;
  EXPECT_EQ(Cell(kBlock - 1), 0x5555);
  EXPECT_EQ(Cell(kNextBlock), 0x6666);
  EXPECT_EQ(ReadPair(kNextBlock), 0xFFFF6666u) << "ready, in array mode";
  ExpectNoErrors();
}

INSTANTIATE_TEST_SUITE_P(Moments, FlashChipCutErase,
                         testing::Values(CutErase{0, 0, 0}, CutErase{5'722, 0, 0}, CutErase{5'723, 0, 1},
                                         CutErase{187'500'000, 0, 0x8000}, CutErase{375'000'000, 0, 0x10000},
                                         CutErase{562'500'000, 0x8000, 0x10000}, CutErase{749'999'999, 0xFFFF, 0x10000},
                                         CutErase{750'000'000, 0x10000, 0x10000},
                                         CutErase{9'000'000'000, 0x10000, 0x10000}));

/// When power is lost in a program, and how many words are finished.
struct CutProgram {
  std::int64_t elapsedNanoseconds;
  std::uint32_t finished;
};

class FlashChipCutProgram : public FlashChipTest, public testing::WithParamInterface<CutProgram> {};

TEST_P(FlashChipCutProgram, LeavesItsFirstWords) {
  Program(kBlock, std::vector<std::uint16_t>(16, 0x0F0F));
  now += GetParam().elapsedNanoseconds;
  chip.PowerLoss(now);
  for (std::uint32_t i = 0; i < 17; ++i)
    EXPECT_EQ(Cell(kBlock + i), i < GetParam().finished ? 0x0F0F : 0xFFFF) << i;
  EXPECT_EQ(Status(), 0x80u);
}

INSTANTIATE_TEST_SUITE_P(Moments, FlashChipCutProgram,
                         testing::Values(CutProgram{0, 0}, CutProgram{12'499, 0}, CutProgram{12'500, 1},
                                         CutProgram{100'000, 8}, CutProgram{199'999, 15}, CutProgram{200'000, 16}));

TEST_F(FlashChipPowerLoss, ForgetsABufferThatIsNotConfirmed) {
  Write(kBlock, 0xE8);
  Write(kBlock, 0);
  Write(kBlock, 0x1234);
  chip.PowerLoss(now);
  EXPECT_EQ(Cell(kBlock), 0xFFFF);
  Write(kBlock, 0xD0);
  ExpectError("flash: confirm without a set-up at word address 100000");
  EXPECT_EQ(Cell(kBlock), 0xFFFF);
}

TEST_F(FlashChipPowerLoss, ReadsTheArrayWithoutErrorBits) {
  chip.registers().errorBits = 0x32;
  Write(0, 0x90);
  chip.PowerLoss(now);
  EXPECT_EQ(ReadPair(0), 0xFFFFFFFFu);
  EXPECT_EQ(Status(), 0x80u);
}

TEST_F(FlashChipPowerLoss, KeepsLockBitsAndProtection) {
  chip.registers().lockBits = 5;
  chip.registers().protection[5] = 0x1111;
  chip.PowerLoss(now);
  EXPECT_EQ(chip.registers().lockBits, 5u);
  EXPECT_EQ(chip.registers().protection[5], 0x1111);
}

TEST_F(FlashChipPowerLoss, UndoesChangesOfLocksInFlight) {
  chip.registers().lockBits = 5;
  Write(0, 0x60);
  Write(0, 0xD0);
  now += 499'999'999;
  chip.PowerLoss(now);
  WaitMilliseconds(1000);
  EXPECT_EQ(Status(), 0x80u);
  EXPECT_EQ(chip.registers().lockBits, 5u);
}

TEST_F(FlashChipPowerLoss, FreesABufferThatWasTaken) {
  plan.Add(simulator::ParseFault("buffer-busy@1"));
  Write(kBlock, 0xE8);
  chip.PowerLoss(now);
  Write(0, 0x70);
  EXPECT_EQ(ReadPair(), 0x00800080u);
}

TEST_F(FlashChipPowerLoss, IsNotNeededToLetAnOperationEnd) {
  chip.memory().SetWord(kBlock, 0);
  Erase(kBlock);
  chip.Settle();
  EXPECT_EQ(Cell(kBlock), 0xFFFF);
  EXPECT_EQ(chip.registers().readMode, FlashReadMode::kStatus);
  ExpectNoErrors();
}

TEST_F(FlashChipPowerLoss, SettlesAStuckOperationAsHung) {
  plan.Add(simulator::ParseFault("erase-stuck"));
  Erase(kBlock);
  chip.Settle();
  EXPECT_TRUE(chip.registers().hung);
  EXPECT_EQ(Status(), 0x00u);
}

TEST_F(FlashChipPowerLoss, SettlesAnOpenSequenceAsAnError) {
  Write(kBlock, 0xE8);
  chip.Settle();
  ExpectError("flash: a command sequence in block 16 was left open");
  EXPECT_EQ(Status(), 0xB0u);
}

}  // namespace
