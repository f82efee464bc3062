#include "RegisterInstruction.h"

#include <algorithm>
#include <bit>

namespace benchdriver {
namespace {

constexpr std::uint32_t kCarry = 0x001;
constexpr std::uint32_t kParity = 0x004;
constexpr std::uint32_t kAdjust = 0x010;
constexpr std::uint32_t kZero = 0x040;
constexpr std::uint32_t kSign = 0x080;
constexpr std::uint32_t kOverflow = 0x800;
constexpr std::uint32_t kArithmeticFlags = kCarry | kParity | kAdjust | kZero | kSign | kOverflow;

/// Takes bytes one after the other; behind the end there are zeros, and `isCut` tells.
class Bytes {
 public:
  explicit Bytes(std::span<const std::uint8_t> code) : code_(code.first(std::min(code.size(), kInstructionBytes))) {}

  std::uint8_t Next() { return Peek(at_++); }
  std::uint8_t Peek() const { return Peek(at_); }
  /// `sizeBytes` is 1 or 4; the value is extended by its sign.
  std::uint32_t Immediate(std::size_t sizeBytes) {
    if (sizeBytes == 1) return static_cast<std::uint32_t>(static_cast<std::int8_t>(Next()));
    std::uint32_t value = 0;
    for (unsigned shift = 0; shift < 32; shift += 8)
      value |= std::uint32_t{Next()} << shift;
    return value;
  }
  void Skip(std::size_t count) { at_ += count; }
  std::size_t taken() const { return at_; }
  bool isCut() const { return at_ > code_.size(); }

 private:
  std::uint8_t Peek(std::size_t at) const { return at < code_.size() ? code_[at] : std::uint8_t{0}; }

  std::span<const std::uint8_t> code_;
  std::size_t at_ = 0;
};

/// The operations of the opcodes 00 to 3F and of the group 81 and 83, by number.
std::optional<Operation> ArithmeticOperation(unsigned number) {
  switch (number) {
    case 0:
      return Operation::kAdd;
    case 1:
      return Operation::kOr;
    case 4:
      return Operation::kAnd;
    case 5:
      return Operation::kSubtract;
    case 6:
      return Operation::kExclusiveOr;
    case 7:
      return Operation::kCompare;
    default:
      return std::nullopt;
  }
}

/// What an opcode says before its operands are known.
struct Opcode {
  RegisterInstruction instruction;
  std::size_t immediateBytes = 0;
  /// The number in the register field must be this one, or names the operation where `isGroup`.
  bool isGroup = false;
  std::optional<std::uint8_t> digit;
};

std::optional<Opcode> TwoByteOpcode(std::uint8_t second, bool isWide) {
  if (second != 0xB6 && second != 0xB7 && second != 0xBE && second != 0xBF) return std::nullopt;
  Opcode opcode;
  opcode.instruction.widthBytes = (second & 1) != 0 ? 2 : 1;
  opcode.instruction.isSignExtended = second >= 0xBE;
  opcode.instruction.isWide = isWide;
  return opcode;
}

std::optional<Opcode> OneByteOpcode(std::uint8_t byte, bool isWide) {
  Opcode opcode;
  RegisterInstruction& instruction = opcode.instruction;
  if (byte == 0x63 && isWide) {
    instruction.isSignExtended = true;
    instruction.isWide = true;
    return opcode;
  }
  if (isWide) return std::nullopt;
  instruction.isToMemory = true;
  if (byte < 0x40 && ((byte & 7) == 1 || (byte & 7) == 3)) {
    const auto operation = ArithmeticOperation(byte >> 3);
    if (!operation) return std::nullopt;
    instruction.operation = *operation;
    instruction.isToMemory = (byte & 7) == 1;
    return opcode;
  }
  switch (byte) {
    case 0x81:
    case 0x83:
      opcode.isGroup = true;
      opcode.immediateBytes = byte == 0x81 ? 4 : 1;
      return opcode;
    case 0x85:
      instruction.operation = Operation::kTest;
      return opcode;
    case 0x89:
      return opcode;
    case 0x8B:
      instruction.isToMemory = false;
      return opcode;
    case 0xC7:
      opcode.digit = 0;
      opcode.immediateBytes = 4;
      return opcode;
    case 0xF7:
      instruction.operation = Operation::kTest;
      opcode.digit = 0;
      opcode.immediateBytes = 4;
      return opcode;
    default:
      return std::nullopt;
  }
}

/// Skips what tells the address: the processor has worked that out already. False for an operand that is no memory.
bool SkipAddress(Bytes& bytes, std::uint8_t form) {
  const unsigned mode = form >> 6;
  if (mode == 3) return false;
  unsigned base = form & 7;
  if (base == 4) base = bytes.Next() & 7;
  if (mode == 1) bytes.Skip(1);
  if (mode == 2 || (mode == 0 && base == 5)) bytes.Skip(4);
  return true;
}

std::uint32_t FlagsOf(const RegisterInstruction& instruction, std::uint32_t left, std::uint32_t right,
                      std::uint32_t result) {
  constexpr unsigned kSignShift = 31;
  std::uint32_t flags = 0;
  if (result == 0) flags |= kZero;
  if (result >> kSignShift != 0) flags |= kSign;
  if (std::popcount(result & 0xFF) % 2 == 0) flags |= kParity;
  const bool isSum = instruction.operation == Operation::kAdd;
  if (!isSum && instruction.operation != Operation::kSubtract && instruction.operation != Operation::kCompare)
    return flags;
  if (((left ^ right ^ result) & kAdjust) != 0) flags |= kAdjust;
  if (isSum ? result < left : left < right) flags |= kCarry;
  const std::uint32_t overflow = isSum ? (left ^ result) & (right ^ result) : (left ^ right) & (left ^ result);
  if (overflow >> kSignShift != 0) flags |= kOverflow;
  return flags;
}

std::uint32_t Result(Operation operation, std::uint32_t left, std::uint32_t right) {
  switch (operation) {
    case Operation::kAdd:
      return left + right;
    case Operation::kOr:
      return left | right;
    case Operation::kAnd:
    case Operation::kTest:
      return left & right;
    case Operation::kExclusiveOr:
      return left ^ right;
    case Operation::kSubtract:
    case Operation::kCompare:
      return left - right;
    default:
      return right;
  }
}

/// What a move puts into the general register.
std::uint64_t Extended(const RegisterInstruction& instruction, std::uint32_t word) {
  const unsigned unused = 32 - 8u * instruction.widthBytes;
  const std::uint32_t aligned = word << unused;
  if (!instruction.isSignExtended) return aligned >> unused;
  const std::int32_t value = static_cast<std::int32_t>(aligned) >> unused;
  // A general register that takes 32 bits has zeros above them.
  return instruction.isWide ? static_cast<std::uint64_t>(std::int64_t{value}) : static_cast<std::uint32_t>(value);
}

std::uint32_t ReadMemory(const RegisterInstruction& instruction, platform::RegisterTrap& window, std::uint32_t offset) {
  if (instruction.widthBytes == 4) return window.Read(offset);
  return window.Read(offset & ~3u) >> 8 * (offset & 3);
}

}  // namespace

std::optional<RegisterInstruction> DecodeRegisterInstruction(std::span<const std::uint8_t> code) {
  Bytes bytes(code);
  std::uint8_t extension = 0;
  if ((bytes.Peek() & 0xF0) == 0x40) extension = bytes.Next();
  const bool isWide = (extension & 8) != 0;
  const std::uint8_t byte = bytes.Next();
  auto opcode = byte == 0x0F ? TwoByteOpcode(bytes.Next(), isWide) : OneByteOpcode(byte, isWide);
  if (!opcode) return std::nullopt;

  const std::uint8_t form = bytes.Next();
  const auto field = static_cast<std::uint8_t>(form >> 3 & 7);
  if (!SkipAddress(bytes, form)) return std::nullopt;
  if (opcode->digit && *opcode->digit != field) return std::nullopt;

  RegisterInstruction instruction = opcode->instruction;
  if (opcode->isGroup) {
    const auto operation = ArithmeticOperation(field);
    if (!operation) return std::nullopt;
    instruction.operation = *operation;
  }
  if (opcode->immediateBytes == 0)
    instruction.generalRegister = static_cast<std::uint8_t>(field | (extension & 4) << 1);
  else
    instruction.immediate = bytes.Immediate(opcode->immediateBytes);
  if (bytes.isCut()) return std::nullopt;
  instruction.lengthBytes = bytes.taken();
  return instruction;
}

std::uint32_t Execute(const RegisterInstruction& instruction, platform::RegisterTrap& window, std::uint32_t offset,
                      std::span<std::uint64_t, 16> registers, std::uint32_t flags) {
  const std::uint32_t memory = instruction.ReadsMemory() ? ReadMemory(instruction, window, offset) : 0;
  const std::uint32_t other = instruction.generalRegister
                                  ? static_cast<std::uint32_t>(registers[*instruction.generalRegister])
                                  : instruction.immediate;
  const std::uint32_t left = instruction.isToMemory ? memory : other;
  const std::uint32_t right = instruction.isToMemory ? other : memory;
  const std::uint32_t result = Result(instruction.operation, left, right);
  if (instruction.WritesMemory())
    window.Write(offset, result);
  else if (instruction.HasResult())
    registers[*instruction.generalRegister] = Extended(instruction, result);
  if (instruction.operation == Operation::kMove) return flags;
  return (flags & ~kArithmeticFlags) | FlagsOf(instruction, left, right, result);
}

}  // namespace benchdriver
