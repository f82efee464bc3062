#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "RegisterInstruction.h"

namespace benchdriver {
namespace {

using Code = std::vector<std::uint8_t>;

constexpr std::uint32_t kOffset = 0x4008;
constexpr std::uint32_t kFlagsBefore = 0x00000246;  // zero, parity, and the interrupt flag, which nothing touches

constexpr int kAx = 0;
constexpr int kCx = 1;
constexpr int kR9 = 9;
constexpr int kR15 = 15;

/// One register that keeps what is written, and what happened to it.
class OneRegister : public platform::RegisterTrap {
 public:
  explicit OneRegister(std::uint32_t value) : value_(value) {}
  std::uint32_t Read(std::uint32_t offset) override {
    accesses += 'R';
    lastOffset = offset;
    return value_;
  }
  void Write(std::uint32_t offset, std::uint32_t value) override {
    accesses += 'W';
    lastOffset = offset;
    value_ = value;
  }
  std::uint32_t value() const { return value_; }

  std::string accesses;
  std::uint32_t lastOffset = 0;

 private:
  std::uint32_t value_;
};

struct Machine {
  explicit Machine(std::uint32_t value) : board(value) { registers.fill(0x1111'1111'1111'1111); }

  /// Carries out the one instruction that `code` holds, all of it.
  void Do(const Code& code, std::uint32_t offset = kOffset) {
    const auto instruction = DecodeRegisterInstruction(code);
    ASSERT_TRUE(instruction.has_value());
    EXPECT_EQ(instruction->lengthBytes, code.size());
    flags = Execute(*instruction, board, offset, registers, flags);
  }

  OneRegister board;
  std::array<std::uint64_t, 16> registers{};
  std::uint32_t flags = kFlagsBefore;
};

TEST(RegisterInstruction, LoadsThirtyTwoBitsAndClearsThoseAbove) {
  Machine machine(0x89ABCDEF);
  machine.Do({0x8B, 0x07});  // mov eax, [rdi]
  EXPECT_EQ(machine.registers[kAx], 0x89ABCDEF);
  EXPECT_EQ(machine.board.accesses, "R");
  EXPECT_EQ(machine.board.lastOffset, kOffset);
  EXPECT_EQ(machine.flags, kFlagsBefore);
}

TEST(RegisterInstruction, StoresARegisterAndAnImmediate) {
  Machine machine(0);
  machine.registers[kCx] = 0xFFFFFFFF'12345678;
  machine.Do({0x89, 0x0F});  // mov [rdi], ecx
  EXPECT_EQ(machine.board.value(), 0x12345678u);
  machine.Do({0xC7, 0x07, 0xD0, 0x00, 0xD0, 0x80});  // mov dword [rdi], 0x80D000D0
  EXPECT_EQ(machine.board.value(), 0x80D000D0u);
  EXPECT_EQ(machine.board.accesses, "WW");
}

TEST(RegisterInstruction, TakesEveryFormOfAnAddress) {
  for (const Code& code : {Code{0x44, 0x8B, 0x48, 0x08},                          // mov r9d, [rax+8]
                           Code{0x44, 0x8B, 0x88, 0x08, 0x40, 0x00, 0x00},        // mov r9d, [rax+0x4008]
                           Code{0x45, 0x8B, 0x0C, 0x24},                          // mov r9d, [r12]
                           Code{0x46, 0x8B, 0x4C, 0x80, 0x10},                    // mov r9d, [rax+r8*4+16]
                           Code{0x44, 0x8B, 0x8C, 0x08, 0x00, 0x00, 0x08, 0x00},  // mov r9d, [rax+rcx+0x80000]
                           Code{0x44, 0x8B, 0x0C, 0x25, 0x00, 0x40, 0x00, 0x00},  // mov r9d, [0x4000]
                           Code{0x44, 0x8B, 0x0D, 0x00, 0x40, 0x00, 0x00}}) {     // mov r9d, [rip+0x4000]
    Machine machine(0xCAFE0001);
    machine.Do(code);
    EXPECT_EQ(machine.registers[kR9], 0xCAFE0001);
  }
}

TEST(RegisterInstruction, ExtendsBySign) {
  Machine machine(0x80000001);
  machine.Do({0x48, 0x63, 0x07});  // movsxd rax, dword [rdi]
  EXPECT_EQ(machine.registers[kAx], 0xFFFFFFFF'80000001);
}

TEST(RegisterInstruction, TakesPartsOfTheWordThatHoldsThem) {
  Machine machine(0x89AB80EF);
  machine.Do({0x0F, 0xB6, 0x47, 0x01}, kOffset + 1);  // movzx eax, byte [rdi+1]
  EXPECT_EQ(machine.registers[kAx], 0x80u);
  machine.Do({0x44, 0x0F, 0xBE, 0x7F, 0x01}, kOffset + 1);  // movsx r15d, byte [rdi+1]
  EXPECT_EQ(machine.registers[kR15], 0xFFFFFF80u);
  machine.Do({0x0F, 0xB7, 0x47, 0x02}, kOffset + 2);  // movzx eax, word [rdi+2]
  EXPECT_EQ(machine.registers[kAx], 0x89ABu);
  machine.Do({0x48, 0x0F, 0xBF, 0x47, 0x02}, kOffset + 2);  // movsx rax, word [rdi+2]
  EXPECT_EQ(machine.registers[kAx], 0xFFFFFFFF'FFFF89AB);
  EXPECT_EQ(machine.board.accesses, "RRRR");
  EXPECT_EQ(machine.board.lastOffset, kOffset);
}

struct ArithmeticCase {
  const char* text;
  Code code;
  std::uint32_t memory;
  std::uint32_t cx;
  const char* accesses;
  std::uint32_t memoryAfter;
  std::uint32_t cxAfter;
  std::uint32_t flagsAfter;  // of carry 001, parity 004, adjust 010, zero 040, sign 080, overflow 800
};

const ArithmeticCase kArithmetic[] = {
    {"add ecx, [rdi]", {0x03, 0x0F}, 0xFFFFFFFF, 1, "R", 0xFFFFFFFF, 0, 0x055},
    {"add [rdi], ecx", {0x01, 0x0F}, 0x7FFFFFFF, 1, "RW", 0x80000000, 1, 0x894},
    {"or [rdi], ecx", {0x09, 0x0F}, 0x00000100, 0x22, "RW", 0x00000122, 0x22, 0x004},
    {"and ecx, [rdi]", {0x23, 0x0F}, 0x80000001, 0xFFFFFFFE, "R", 0x80000001, 0x80000000, 0x084},
    {"and dword [rdi], 0xFFFFFFFC", {0x83, 0x27, 0xFC}, 0x00000107, 0, "RW", 0x00000104, 0, 0x000},
    {"sub ecx, [rdi]", {0x2B, 0x0F}, 1, 0, "R", 1, 0xFFFFFFFF, 0x095},
    {"sub [rdi], ecx", {0x29, 0x0F}, 0x80000000, 1, "RW", 0x7FFFFFFF, 1, 0x814},
    {"xor [rdi], ecx", {0x31, 0x0F}, 0x0000FFFF, 0xFFFF, "RW", 0, 0xFFFF, 0x044},
    {"cmp [rdi], ecx", {0x39, 0x0F}, 2, 2, "R", 2, 2, 0x044},
    {"cmp ecx, [rdi]", {0x3B, 0x0F}, 2, 1, "R", 2, 1, 0x095},
    {"cmp dword [rdi], -1", {0x83, 0x3F, 0xFF}, 0xFFFFFFFF, 0, "R", 0xFFFFFFFF, 0, 0x044},
    {"cmp dword [rdi], 0x1000", {0x81, 0x3F, 0x00, 0x10, 0x00, 0x00}, 0x1001, 0, "R", 0x1001, 0, 0x000},
    {"test [rdi], ecx", {0x85, 0x0F}, 0x00000080, 0x80, "R", 0x80, 0x80, 0x000},
    {"test dword [rdi], 0x2000", {0xF7, 0x07, 0x00, 0x20, 0x00, 0x00}, 0x1000, 0, "R", 0x1000, 0, 0x044},
};

TEST(RegisterInstruction, DoesArithmeticWithMemoryAndSetsTheFlags) {
  constexpr std::uint32_t kArithmeticFlags = 0x8D5;
  for (const ArithmeticCase& row : kArithmetic) {
    SCOPED_TRACE(row.text);
    Machine machine(row.memory);
    machine.registers[kCx] = row.cx;
    machine.Do(row.code);
    EXPECT_EQ(machine.board.accesses, row.accesses);
    EXPECT_EQ(machine.board.value(), row.memoryAfter);
    EXPECT_EQ(machine.registers[kCx], row.cxAfter);
    EXPECT_EQ(machine.flags & kArithmeticFlags, row.flagsAfter);
    EXPECT_EQ(machine.flags & ~kArithmeticFlags, kFlagsBefore & ~kArithmeticFlags);
  }
}

TEST(RegisterInstruction, RefusesWhatItDoesNotKnow) {
  const std::pair<const char*, Code> kOthers[] = {
      {"mov eax, ecx", {0x8B, 0xC1}},
      {"mov rax, [rdi]", {0x48, 0x8B, 0x07}},
      {"mov [rdi], rax", {0x48, 0x89, 0x07}},
      {"mov ax, [rdi]", {0x66, 0x8B, 0x07}},
      {"mov [rdi], al", {0x88, 0x07}},
      {"movups xmm0, [rdi]", {0x0F, 0x10, 0x07}},
      {"rep movsd", {0xF3, 0xA5}},
      {"lock add [rdi], ecx", {0xF0, 0x01, 0x0F}},
      {"adc ecx, [rdi]", {0x13, 0x0F}},
      {"sbb dword [rdi], 1", {0x83, 0x1F, 0x01}},
      {"not dword [rdi]", {0xF7, 0x17}},
      {"inc dword [rdi]", {0xFF, 0x07}},
      {"mov eax, [fs:rdi]", {0x64, 0x8B, 0x07}},
      {"C7 with another number than 0", {0xC7, 0x0F, 0x00, 0x00, 0x00, 0x00}},
  };
  for (const auto& [text, code] : kOthers) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(DecodeRegisterInstruction(code).has_value());
  }
}

TEST(RegisterInstruction, RefusesAnInstructionThatIsCutOff) {
  const Code whole = {0x41, 0xC7, 0x84, 0x24, 0x00, 0x40,
                      0x00, 0x00, 0x01, 0x02, 0x03, 0x04};  // mov dword [r12+..], ..
  ASSERT_TRUE(DecodeRegisterInstruction(whole).has_value());
  for (std::size_t length = 0; length < whole.size(); ++length)
    EXPECT_FALSE(DecodeRegisterInstruction(std::span(whole).first(length)).has_value()) << length;
}

}  // namespace
}  // namespace benchdriver
