#include "FlashChipFixture.h"

using simulator::Fault;
using simulator::ParseFault;

namespace {

using FlashChipProgram = FlashChipTest;

std::vector<std::uint16_t> Sixteen() {
  return {0x0100, 0x0101, 0x0102, 0x0103, 0x0104, 0x0105, 0x0106, 0x0107,
          0x0108, 0x0109, 0x010A, 0x010B, 0x010C, 0x010D, 0x010E, 0x010F};
}

TEST_F(FlashChipProgram, WritesABufferWhenItsTimeIsOver) {
  Write(kBlock, 0xE8);
  EXPECT_EQ(ReadPair(kBlock), 0x00800080u) << "the buffer is free";
  Write(kBlock, 15);
  for (std::uint32_t i = 0; i < 16; ++i)
    Write(kBlock + i, Sixteen()[i]);
  Write(kBlock, 0xD0);
  now += 199'999;
  EXPECT_EQ(ReadPair(kBlock), 0u);
  EXPECT_EQ(Cell(kBlock), 0xFFFF);
  now += 1;
  EXPECT_EQ(ReadPair(kBlock), 0x00800080u);
  for (std::uint32_t i = 0; i < 16; ++i)
    EXPECT_EQ(Cell(kBlock + i), Sixteen()[i]);
  EXPECT_EQ(Cell(kBlock + 16), 0xFFFF);
  ExpectNoErrors();
}

TEST_F(FlashChipProgram, LooksAtTheLowByteOfCommandsAndCounts) {
  Write(kBlock, 0xE8E8);
  Write(kBlock, 0x0F0F);
  for (std::uint32_t i = 0; i < 16; ++i)
    Write(kBlock + i, Sixteen()[i]);
  Write(kBlock, 0x00D0);
  now += 200'000;
  EXPECT_EQ(Status(), 0x80u);
  EXPECT_EQ(Cell(kBlock + 15), 0x010F);
  ExpectNoErrors();
}

TEST_F(FlashChipProgram, TakesFewerWordsAnywhereInABlockInAnyOrder) {
  Write(kBlock, 0xE8);
  Write(kBlock, 2);
  Write(kBlock + 0xFFFD, 0x1111);
  Write(kBlock + 0xFFFF, 0x3333);
  Write(kBlock + 0xFFFE, 0x2222);
  Write(kBlock, 0xD0);
  now += 200'000;
  EXPECT_EQ(Status(), 0x80u);
  EXPECT_EQ(Cell(kBlock + 0xFFFD), 0x1111);
  EXPECT_EQ(Cell(kBlock + 0xFFFE), 0x2222);
  EXPECT_EQ(Cell(kBlock + 0xFFFF), 0x3333);
  ExpectNoErrors();
}

TEST_F(FlashChipProgram, ClearsBits) {
  chip.memory().SetWord(kBlock, 0xF0F0);
  Program(kBlock, {0xF000});
  now += 200'000;
  EXPECT_EQ(Status(), 0x80u);
  EXPECT_EQ(Cell(kBlock), 0xF000);
}

TEST_F(FlashChipProgram, RefusesToSetBits) {
  chip.memory().SetWord(kBlock + 1, 0xFFF0);
  Program(kBlock, {0x1111, 0xFFF1});
  ExpectError("flash: programming fff1 over fff0 would set bits at word address 100001");
  EXPECT_EQ(Status(), 0x90u) << "program error, and no wait";
  EXPECT_EQ(Cell(kBlock), 0xFFFF) << "nothing of the buffer is programmed";
}

TEST_F(FlashChipProgram, WritesSingleWords) {
  for (const std::uint32_t command : {0x40u, 0x10u}) {
    Write(kBlock + command, command);
    Write(kBlock + command, 0xBEEF);
    now += 119'999;
    EXPECT_EQ(ReadPair(), 0u);
    now += 1;
    EXPECT_EQ(ReadPair(), 0x00800080u);
    EXPECT_EQ(Cell(kBlock + command), 0xBEEF);
  }
  ExpectNoErrors();
}

TEST_F(FlashChipProgram, IsRefusedByALockedBlock) {
  chip.registers().lockBits = std::uint64_t{1} << 16;
  Program(kBlock, {0x1234});
  EXPECT_EQ(Status(), 0x92u) << "program error and block locked";
  EXPECT_EQ(Cell(kBlock), 0xFFFF);
  ExpectNoErrors();
}

struct BadSequence {
  const char* name;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> writes;
  const char* error;
  std::uint32_t status;
};

class FlashChipSequence : public FlashChipTest, public testing::WithParamInterface<BadSequence> {};

TEST_P(FlashChipSequence, IsRefused) {
  for (const auto& [address, value] : GetParam().writes)
    Write(address, value);
  ExpectError(GetParam().error);
  EXPECT_EQ(Status(), GetParam().status);
  for (std::uint32_t i = 0; i < 4; ++i)
    EXPECT_EQ(Cell(0x100000 + i), 0xFFFF);
  // After a clear status the chip takes a program again.
  Write(0, 0x50);
  Program(0x100000, {0x4321});
  now += 200'000;
  EXPECT_EQ(Status(), 0x80u);
  EXPECT_EQ(Cell(0x100000), 0x4321);
  EXPECT_EQ(chip.errors().total(), 1u);
}

INSTANTIATE_TEST_SUITE_P(
    Bad, FlashChipSequence,
    testing::Values(
        BadSequence{"UnknownCommand", {{0, 0x33}}, "flash: unknown command 33 at word address 000000", 0x80},
        BadSequence{"DataWithoutSetup", {{0x100000, 0x1234}}, "flash: unknown command 34 at word address 100000", 0x80},
        BadSequence{
            "ConfirmWithoutSetup", {{0x100000, 0xD0}}, "flash: confirm without a set-up at word address 100000", 0x80},
        BadSequence{"OutsideTheDevice",
                    {{0x400000, 0xFF}},
                    "flash: write of 00ff outside the device at word address 400000",
                    0x80},
        BadSequence{"WiderThanTheBus",
                    {{0x100000, 0xFFFF0070}},
                    "flash: write of ffff0070, wider than 16 bits, at word address 100000",
                    0x80},
        BadSequence{"CountTooGreat",
                    {{0x100000, 0xE8}, {0x100000, 16}},
                    "flash: count of a buffer in block 16 expected, got 10 at word address 100000",
                    0xB0},
        BadSequence{"CountForAnotherBlock",
                    {{0x100000, 0xE8}, {0x110000, 15}},
                    "flash: count of a buffer in block 16 expected, got 0f at word address 110000",
                    0xB0},
        BadSequence{"DataInAnotherBlock",
                    {{0x100000, 0xE8}, {0x100000, 1}, {0x10FFFF, 0}, {0x110000, 0}},
                    "flash: data of a buffer of 2 words outside it at word address 110000",
                    0xB0},
        BadSequence{"DataBehindTheBuffer",
                    {{0x100000, 0xE8}, {0x100000, 1}, {0x100000, 0}, {0x100002, 0}},
                    "flash: data of a buffer of 2 words outside it at word address 100002",
                    0xB0},
        BadSequence{"DataBeforeTheBuffer",
                    {{0x100000, 0xE8}, {0x100000, 1}, {0x100002, 0}, {0x100001, 0}},
                    "flash: data of a buffer of 2 words outside it at word address 100001",
                    0xB0},
        BadSequence{"DataTwice",
                    {{0x100000, 0xE8}, {0x100000, 1}, {0x100000, 0}, {0x100000, 0}},
                    "flash: data of a buffer twice at word address 100000",
                    0xB0},
        BadSequence{"MoreWordsThanAnnounced",
                    {{0x100000, 0xE8}, {0x100000, 1}, {0x100000, 1}, {0x100001, 2}, {0x100002, 3}},
                    "flash: confirm of a buffer of 2 words expected, got 0003 at word address 100002",
                    0xB0},
        BadSequence{"ConfirmInAnotherBlock",
                    {{0x100000, 0xE8}, {0x100000, 0}, {0x100000, 1}, {0x110000, 0xD0}},
                    "flash: confirm of a buffer of 1 words expected, got 00d0 at word address 110000",
                    0xB0}),
    [](const auto& test) { return std::string(test.param.name); });

// The confirm that comes too early is taken for data, and what follows for a bad confirm.
TEST_F(FlashChipProgram, RefusesFewerWordsThanAnnounced) {
  Write(kBlock, 0xE8);
  Write(kBlock, 2);
  Write(kBlock, 0x1111);
  Write(kBlock + 1, 0x2222);
  Write(kBlock, 0xD0);
  ExpectError("flash: data of a buffer twice at word address 100000");
  EXPECT_EQ(Status(), 0xB0u);
  EXPECT_EQ(Cell(kBlock), 0xFFFF);
}

TEST_F(FlashChipProgram, GetsNoBufferWhileErrorBitsAreSet) {
  for (const unsigned bits : {0x10u, 0x20u, 0x30u}) {
    chip.registers().errorBits = static_cast<std::uint8_t>(bits);
    Write(kBlock, 0xE8);
    EXPECT_EQ(ReadPair(kBlock), 0u) << "not free";
    Write(kBlock, 0xE8);
    EXPECT_EQ(ReadPair(kBlock), 0u);
    Write(0, 0x50);
  }
  EXPECT_EQ(chip.errors().total(), 3u);
  EXPECT_EQ(Errors().front(), "flash: write to buffer with error bits 10 set at word address 100000");
}

TEST_F(FlashChipProgram, FailsOnDemandHalfWay) {
  plan.Add(ParseFault("program-fails@2"));
  Program(kBlock, Sixteen());
  now += 200'000;
  EXPECT_EQ(Status(), 0x80u);
  Program(kBlock + 16, Sixteen());
  now += 200'000;
  EXPECT_EQ(Status(), 0x90u);
  EXPECT_EQ(Cell(kBlock + 16 + 7), 0x0107);
  EXPECT_EQ(Cell(kBlock + 16 + 8), 0xFFFF);
  ExpectNoErrors();
}

TEST_F(FlashChipProgram, SticksOnDemandUntilPowerIsLost) {
  plan.Add(ParseFault("program-stuck@1"));
  Program(kBlock, Sixteen());
  WaitMilliseconds(100'000);
  EXPECT_EQ(Status(), 0x00u);
  chip.PowerLoss(now);
  EXPECT_EQ(Status(), 0x80u);
  EXPECT_EQ(Cell(kBlock + 15), 0x010F);
}

TEST_F(FlashChipProgram, KeepsItsBufferTakenOnDemandForAsLongAsItIsAskedAgain) {
  plan.Add(ParseFault("buffer-busy@1"));
  for (int i = 0; i < 5; ++i) {
    Write(kBlock, 0xE8);
    EXPECT_EQ(ReadPair(kBlock), 0u);
  }
  EXPECT_EQ(plan.Count(Fault::kBufferBusy), 1u);
  Write(0, 0x70);
  EXPECT_EQ(ReadPair(), 0x00800080u) << "the chip itself is ready";
  Program(kBlock, {0x1234});
  now += 200'000;
  EXPECT_EQ(Status(), 0x80u);
  EXPECT_EQ(Cell(kBlock), 0x1234);
  EXPECT_EQ(plan.Count(Fault::kBufferBusy), 2u);
  ExpectNoErrors();
}

}  // namespace
