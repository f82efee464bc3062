#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "platform/RegisterWindow.h"

namespace benchdriver {

enum class Operation { kMove, kAdd, kOr, kAnd, kSubtract, kExclusiveOr, kCompare, kTest };

/// An x86-64 instruction with one operand in memory, which is a board's register of 32 bits. The other operand is a
/// general register or an immediate value.
struct RegisterInstruction {
  std::size_t lengthBytes = 0;
  Operation operation = Operation::kMove;
  /// The memory is the left operand, and the destination of what has one.
  bool isToMemory = false;
  /// The general register by its number in the encoding; nothing for an immediate value.
  std::optional<std::uint8_t> generalRegister;
  std::uint32_t immediate = 0;
  /// How much of the board's register a move takes from it: 1, 2 or 4 bytes. Everything else takes all.
  std::uint8_t widthBytes = 4;
  bool isSignExtended = false;
  /// The general register takes 64 bits.
  bool isWide = false;

  bool HasResult() const { return operation != Operation::kCompare && operation != Operation::kTest; }
  bool ReadsMemory() const { return !isToMemory || operation != Operation::kMove; }
  bool WritesMemory() const { return isToMemory && HasResult(); }
};

/// The longest instruction that the processor takes.
inline constexpr std::size_t kInstructionBytes = 15;

/// Reads the instruction at the start of `code`. Knows what compilers make of loads from and stores to volatile memory
/// of 32 bits, alone and merged with arithmetic. Nothing for any other: one without memory, one of another width, one
/// that needs the carry flag, and one that is cut off.
std::optional<RegisterInstruction> DecodeRegisterInstruction(std::span<const std::uint8_t> code);

/// Carries an instruction out on the board's register at `offset` bytes in its window. `registers` are the general
/// ones in the order of their numbers; returns the processor's flags as they are then. A narrow move takes its bytes
/// out of the 32-bit register that holds the first of them.
std::uint32_t Execute(const RegisterInstruction& instruction, platform::RegisterTrap& window, std::uint32_t offset,
                      std::span<std::uint64_t, 16> registers, std::uint32_t flags);

}  // namespace benchdriver
