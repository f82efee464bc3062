#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "simulator/Faults.h"
#include "simulator/FlashMemory.h"
#include "simulator/ProtocolErrors.h"

namespace simulator {

/// What the chip's reads give.
enum class FlashReadMode : std::uint8_t { kArray, kIdentifier, kQuery, kStatus };

/// What a chip keeps besides its cells from one command to the next.
struct FlashRegisters {
  FlashReadMode readMode = FlashReadMode::kArray;
  /// Error bits of the status byte: they stay until a clear status command.
  std::uint8_t errorBits = 0;
  /// Bit n is set when block n is locked.
  std::uint64_t lockBits = 0;
  /// The words at identifier addresses 0x80 to 0x88: the protection lock word, four factory words, four user words.
  std::array<std::uint16_t, 9> protection{0xFFFE, 0x4B1D, 0x2077, 0x9E05, 0x61C8, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF};
  /// An operation that never ends: the chip is busy until it loses power.
  bool hung = false;

  friend bool operator==(const FlashRegisters&, const FlashRegisters&) = default;
};

/// A strict model of one flash chip: it refuses what silicon refuses, and also what no right program does. What it
/// refuses goes into `errors()` as a text, and into the status byte where the chip has a bit for it.
///
/// Time is handed in with each access, in nanoseconds that never go back. An operation in flight takes effect when its
/// time is over; until then the chip is busy, every read gives the status byte, and only read status is obeyed. A copy
/// costs about a microsecond and is a chip of its own.
///
///     chip.Write(0x100000, 0x20, now);              // erase set-up
///     chip.Write(0x100000, 0xD0, now);              // and confirm
///     chip.ReadPair(0, now) == 0x00000000;          // busy
///     chip.ReadPair(0, now + 750'000'000) == 0x00800080;
class FlashChip {
 public:
  static constexpr std::int64_t kEraseNanoseconds = 750'000'000;
  static constexpr std::int64_t kBufferProgramNanoseconds = 200'000;
  static constexpr std::int64_t kWordProgramNanoseconds = 120'000;
  static constexpr std::int64_t kSetLockNanoseconds = 60'000;
  static constexpr std::int64_t kClearLocksNanoseconds = 500'000'000;
  static constexpr std::uint16_t kManufacturer = 0x0089;
  static constexpr std::uint16_t kDevice = 0x0017;
  static constexpr std::uint32_t kBufferWords = 16;

  // Bits of the status byte.
  static constexpr std::uint8_t kReady = 0x80;
  static constexpr std::uint8_t kEraseError = 0x20;
  static constexpr std::uint8_t kProgramError = 0x10;
  static constexpr std::uint8_t kBlockLocked = 0x02;
  /// Both error bits: commands in an order that the chip does not know.
  static constexpr std::uint8_t kSequenceError = kEraseError | kProgramError;

  /// A chip after power-up.
  explicit FlashChip(FlashMemory memory = {}, const FlashRegisters& registers = {})
      : memory_(std::move(memory)), registers_(registers) {}

  /// The word at the even address in the low half and the one behind it in the high half; the lowest address bit is
  /// ignored. All ones, and a protocol error, outside the device.
  std::uint32_t ReadPair(std::uint32_t wordAddress, std::int64_t nowNanoseconds);
  /// One bus write: a command or data in the low 16 bits of `value`. With a plan, asks it about flash faults.
  void Write(std::uint32_t wordAddress, std::uint32_t value, std::int64_t nowNanoseconds, FaultPlan* faults = nullptr);

  /// Loses power and gets it back. An erase in flight has brought words from the block's start on to zeros in the first
  /// half of its time, and to ones in the second; a program in flight has finished its first words, in order; changes
  /// of lock bits have not happened. Then the chip reads its array, ready and without error bits.
  void PowerLoss(std::int64_t nowNanoseconds);
  /// Lets an operation in flight come to its end. A command sequence that was left open is a protocol error.
  void Settle();

  /// Cells and registers as they are, without regard to what is in flight: for who makes, keeps or damages chips.
  FlashMemory& memory() { return memory_; }
  const FlashMemory& memory() const { return memory_; }
  FlashRegisters& registers() { return registers_; }
  const FlashRegisters& registers() const { return registers_; }
  ProtocolErrors& errors() { return errors_; }
  const ProtocolErrors& errors() const { return errors_; }

 private:
  /// What the next write is taken for.
  enum class Phase : std::uint8_t {
    kCommand,
    kEraseConfirm,
    kBufferCount,
    kBufferData,
    kBufferConfirm,
    kWordData,
    kLockConfirm,
    kProtectionData,
  };
  enum class Kind : std::uint8_t { kNone, kErase, kProgram, kSetLock, kClearLocks, kProtection };
  enum class Outcome : std::uint8_t { kGood, kFails, kStuck };
  /// What is in flight; a program's words are in `buffer_`.
  struct Operation {
    Kind kind = Kind::kNone;
    Outcome outcome = Outcome::kGood;
    std::uint32_t wordAddress = 0;
    std::uint32_t wordCount = 0;
    std::int64_t startNanoseconds = 0;
    std::int64_t endNanoseconds = 0;
  };

  void EndWhatIsOver(std::int64_t nowNanoseconds) {
    if (operation_.kind != Kind::kNone && nowNanoseconds >= operation_.endNanoseconds) EndOperation();
  }
  std::uint8_t Status() const;
  std::uint16_t WordInMode(std::uint32_t wordAddress) const;
  void Command(std::uint32_t wordAddress, std::uint8_t command, FaultPlan* faults);
  void RequestBuffer(std::uint32_t wordAddress, FaultPlan* faults);
  void BufferCount(std::uint32_t wordAddress, std::uint8_t value);
  void BufferData(std::uint32_t wordAddress, std::uint16_t word);
  void EraseConfirm(std::uint32_t wordAddress, std::uint8_t value, std::int64_t now, FaultPlan* faults);
  void StartProgram(std::int64_t now, std::int64_t duration, FaultPlan* faults);
  void LockConfirm(std::uint32_t wordAddress, std::uint8_t value, std::int64_t now);
  void ProtectionData(std::uint32_t wordAddress, std::uint16_t word, std::int64_t now);
  void Start(Kind kind, Outcome outcome, std::int64_t now, std::int64_t duration);
  void EndOperation();
  void ProgramFirstWords(std::uint32_t wordCount);
  void Setup(Phase phase, std::uint32_t wordAddress);
  bool InSetupBlock(std::uint32_t wordAddress) const;
  void Refuse(std::string text);
  void RefuseSequence(std::string text);

  FlashMemory memory_;
  FlashRegisters registers_;
  ProtocolErrors errors_;
  Phase phase_ = Phase::kCommand;
  /// The write buffer was asked for and is not free: reads give 0 until another command.
  bool bufferRefused_ = false;
  std::uint32_t setupBlock_ = 0;
  std::uint32_t bufferFirst_ = 0;
  std::uint32_t bufferCount_ = 0;
  std::uint32_t bufferFilled_ = 0;
  std::array<std::uint16_t, kBufferWords> buffer_{};
  Operation operation_;
};

}  // namespace simulator
