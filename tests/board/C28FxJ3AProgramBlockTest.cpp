#include <gmock/gmock.h>

#include <cstddef>
#include <vector>

#include "FlashFixture.h"

namespace {

constexpr std::uint32_t kBlock = 0x3F0000;

class C28FxJ3AProgramBlock : public FlashFixture {
 protected:
  void SetUp() override {
    flash.Attach(registers.Window());
    for (std::size_t i = 0; i < words.size(); ++i)
      words[i] = static_cast<std::uint16_t>(i ^ 0xA5C3);
  }

  static RegisterScript Erase(std::uint32_t status) {
    return Join({StatusCleared(),
                 StatusRead(0x80),
                 {W(0, kBlock), W(4, 0x20), W(0, kBlock), W(4, 0xD0), W(0, 0), W(4, 0x70), W(0, 0), R(4, status)}});
  }
  /// A program run at an offset into the block, with the status that it ends in.
  RegisterScript Run(std::uint32_t offset, std::uint32_t status) const {
    const std::uint32_t address = kBlock + offset;
    RegisterScript script = Join({StatusCleared(),
                                  StatusRead(0x80),
                                  {W(0, address), W(4, 0xE8E8), W(0, address), R(4, 0x80),  //
                                   W(0, address), W(4, 0x0F0F)}});
    for (std::uint32_t i = 0; i < 16; ++i) {
      script.push_back(W(0, address + i));
      script.push_back(W(4, words[offset + i]));
    }
    return Join({script, {W(0, address), W(4, 0xD0), W(0, address), W(4, 0x70), W(0, address), R(4, status)}});
  }
  static RegisterScript Recovered() { return Join({StatusCleared(), StatusRead(0x80)}); }

  std::vector<std::uint16_t> words = std::vector<std::uint16_t>(0x10000);
};

TEST_F(C28FxJ3AProgramBlock, ErasesAndThenProgramsEachOf4096RunsWithoutReadingBack) {
  registers.Expect(Erase(0x80));
  for (std::uint32_t offset = 0; offset < 0x10000; offset += 16) {
    registers.Expect(Run(offset, 0x80));
    registers.Expect(StatusCleared());
  }
  EXPECT_TRUE(flash.ProgramBlock(kBlock, words.data()));
  EXPECT_EQ(flash.eraseReport.result, FlashResult::kCleanStart);
  EXPECT_EQ(flash.programReport.result, FlashResult::kCleanStart);
}

TEST_F(C28FxJ3AProgramBlock, ProgramsNothingAfterAFailedErase) {
  registers.Expect(Erase(0xA0));
  registers.Expect(Recovered());
  EXPECT_FALSE(flash.ProgramBlock(kBlock, words.data()));
  EXPECT_EQ(flash.eraseReport.result, FlashResult::kFailedRecovered);
  EXPECT_EQ(flash.programReport.result, FlashResult::kNone);
}

TEST_F(C28FxJ3AProgramBlock, StopsAtTheFirstRunThatFails) {
  registers.Expect(Erase(0x80));
  registers.Expect(Run(0, 0x80));
  registers.Expect(StatusCleared());
  registers.Expect(Run(16, 0x90));
  registers.Expect(Recovered());
  EXPECT_FALSE(flash.ProgramBlock(kBlock, words.data()));
  EXPECT_EQ(flash.eraseReport.result, FlashResult::kCleanStart);
  EXPECT_EQ(flash.programReport.result, FlashResult::kFailedRecovered);
}

TEST_F(C28FxJ3AProgramBlock, RefusesAnAddressInsideABlock) {
  registers.Expect(StatusCleared());
  EXPECT_FALSE(flash.ProgramBlock(kBlock + 16, words.data()));
}

}  // namespace
