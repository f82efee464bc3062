#include "simulator/FlashChip.h"

#include "simulator/CommonFlashInterface.h"
#include "simulator/HexText.h"

namespace simulator {
namespace {

// Commands, in the low byte of a write; the chip does not look at the high byte.
constexpr std::uint8_t kReadArray = 0xFF;
constexpr std::uint8_t kReadIdentifier = 0x90;
constexpr std::uint8_t kReadQuery = 0x98;
constexpr std::uint8_t kReadStatus = 0x70;
constexpr std::uint8_t kClearStatus = 0x50;
constexpr std::uint8_t kEraseSetup = 0x20;
constexpr std::uint8_t kWriteToBuffer = 0xE8;
constexpr std::uint8_t kProgramWord = 0x40;
constexpr std::uint8_t kProgramWordToo = 0x10;
constexpr std::uint8_t kLockSetup = 0x60;
constexpr std::uint8_t kLockBlock = 0x01;
constexpr std::uint8_t kProtectionSetup = 0xC0;
constexpr std::uint8_t kConfirm = 0xD0;

// Identifier addresses.
constexpr std::uint32_t kLockStateOffset = 2;
constexpr std::uint32_t kProtectionFirst = 0x80;
constexpr std::uint32_t kFactoryWordsEnd = 5;
constexpr std::uint16_t kUserWordsUnlocked = 0x0002;

std::string At(std::uint32_t wordAddress) {
  return " at word address " + Hex(wordAddress, 6);
}

std::uint64_t BlockBit(std::uint32_t block) {
  return std::uint64_t{1} << block;
}

}  // namespace

void FlashChip::Refuse(std::string text) {
  errors_.Add("flash: " + std::move(text));
}

void FlashChip::RefuseSequence(std::string text) {
  phase_ = Phase::kCommand;
  registers_.errorBits |= kSequenceError;
  Refuse(std::move(text));
}

std::uint8_t FlashChip::Status() const {
  if (operation_.kind != Kind::kNone || registers_.hung || bufferRefused_) return 0;
  // While the write buffer is being filled this is the extended status byte, which has no error bits.
  if (phase_ == Phase::kBufferCount) return kReady;
  return kReady | registers_.errorBits;
}

std::uint16_t FlashChip::WordInMode(std::uint32_t wordAddress) const {
  switch (registers_.readMode) {
    case FlashReadMode::kArray:
      return memory_.Word(wordAddress);
    case FlashReadMode::kIdentifier: {
      const std::uint32_t block = wordAddress / FlashMemory::kBlockWords;
      if (wordAddress % FlashMemory::kBlockWords == kLockStateOffset)
        return (registers_.lockBits & BlockBit(block)) != 0 ? 1 : 0;
      if (wordAddress == 0) return kManufacturer;
      if (wordAddress == 1) return kDevice;
      if (wordAddress >= kProtectionFirst && wordAddress - kProtectionFirst < registers_.protection.size())
        return registers_.protection[wordAddress - kProtectionFirst];
      return 0xFFFF;
    }
    case FlashReadMode::kQuery:
      return CommonFlashInterfaceWord(wordAddress);
    case FlashReadMode::kStatus:
      break;
  }
  return Status();
}

std::uint32_t FlashChip::ReadPair(std::uint32_t wordAddress, std::int64_t nowNanoseconds) {
  EndWhatIsOver(nowNanoseconds);
  if (wordAddress >= FlashMemory::kWordCount) {
    Refuse("read outside the device" + At(wordAddress));
    return 0xFFFFFFFF;
  }
  const std::uint32_t even = wordAddress & ~std::uint32_t{1};
  return WordInMode(even) | static_cast<std::uint32_t>(WordInMode(even + 1)) << 16;
}

void FlashChip::Write(std::uint32_t wordAddress, std::uint32_t value, std::int64_t nowNanoseconds, FaultPlan* faults) {
  EndWhatIsOver(nowNanoseconds);
  if (wordAddress >= FlashMemory::kWordCount)
    return Refuse("write of " + Hex(value, 4) + " outside the device" + At(wordAddress));
  if (value > 0xFFFF) return Refuse("write of " + Hex(value, 8) + ", wider than 16 bits," + At(wordAddress));
  const auto word = static_cast<std::uint16_t>(value);
  const auto low = static_cast<std::uint8_t>(value);

  if (operation_.kind != Kind::kNone || registers_.hung) {
    if (low != kReadStatus) Refuse("command " + Hex(word, 4) + " while busy" + At(wordAddress));
    return;
  }
  switch (phase_) {
    case Phase::kCommand:
      return Command(wordAddress, low, faults);
    case Phase::kEraseConfirm:
      return EraseConfirm(wordAddress, low, nowNanoseconds, faults);
    case Phase::kBufferCount:
      return BufferCount(wordAddress, low);
    case Phase::kBufferData:
      return BufferData(wordAddress, word);
    case Phase::kBufferConfirm:
      if (low != kConfirm || !InSetupBlock(wordAddress))
        return RefuseSequence("confirm of a buffer of " + std::to_string(bufferCount_) + " words expected, got " +
                              Hex(word, 4) + At(wordAddress));
      return StartProgram(nowNanoseconds, kBufferProgramNanoseconds, faults);
    case Phase::kWordData:
      bufferFirst_ = wordAddress;
      bufferCount_ = 1;
      buffer_[0] = word;
      return StartProgram(nowNanoseconds, kWordProgramNanoseconds, faults);
    case Phase::kLockConfirm:
      return LockConfirm(wordAddress, low, nowNanoseconds);
    case Phase::kProtectionData:
      return ProtectionData(wordAddress, word, nowNanoseconds);
  }
}

void FlashChip::Command(std::uint32_t wordAddress, std::uint8_t command, FaultPlan* faults) {
  if (command == kWriteToBuffer) return RequestBuffer(wordAddress, faults);
  bufferRefused_ = false;
  switch (command) {
    case kReadArray:
      registers_.readMode = FlashReadMode::kArray;
      return;
    case kReadIdentifier:
      registers_.readMode = FlashReadMode::kIdentifier;
      return;
    case kReadQuery:
      registers_.readMode = FlashReadMode::kQuery;
      return;
    case kReadStatus:
      registers_.readMode = FlashReadMode::kStatus;
      return;
    case kClearStatus:
      registers_.errorBits = 0;
      return;
    case kEraseSetup:
      return Setup(Phase::kEraseConfirm, wordAddress);
    case kProgramWord:
    case kProgramWordToo:
      return Setup(Phase::kWordData, wordAddress);
    case kLockSetup:
      return Setup(Phase::kLockConfirm, wordAddress);
    case kProtectionSetup:
      return Setup(Phase::kProtectionData, wordAddress);
    case kConfirm:
      return Refuse("confirm without a set-up" + At(wordAddress));
    default:
      return Refuse("unknown command " + Hex(command, 2) + At(wordAddress));
  }
}

void FlashChip::Setup(Phase phase, std::uint32_t wordAddress) {
  phase_ = phase;
  setupBlock_ = wordAddress / FlashMemory::kBlockWords;
  registers_.readMode = FlashReadMode::kStatus;
}

bool FlashChip::InSetupBlock(std::uint32_t wordAddress) const {
  return wordAddress / FlashMemory::kBlockWords == setupBlock_;
}

/// A request that is repeated because the buffer was not free is still the same request.
void FlashChip::RequestBuffer(std::uint32_t wordAddress, FaultPlan* faults) {
  registers_.readMode = FlashReadMode::kStatus;
  if (bufferRefused_) return;
  if ((registers_.errorBits & kSequenceError) != 0) {
    bufferRefused_ = true;
    return Refuse("write to buffer with error bits " + Hex(registers_.errorBits, 2) + " set" + At(wordAddress));
  }
  if (Strikes(faults, Fault::kBufferBusy)) {
    bufferRefused_ = true;
    return;
  }
  Setup(Phase::kBufferCount, wordAddress);
}

void FlashChip::BufferCount(std::uint32_t wordAddress, std::uint8_t value) {
  if (value >= kBufferWords || !InSetupBlock(wordAddress))
    return RefuseSequence("count of a buffer in block " + std::to_string(setupBlock_) + " expected, got " +
                          Hex(value, 2) + At(wordAddress));
  bufferCount_ = value + 1u;
  bufferFilled_ = 0;
  phase_ = Phase::kBufferData;
}

void FlashChip::BufferData(std::uint32_t wordAddress, std::uint16_t word) {
  // The first word's address is where the buffer goes.
  if (bufferFilled_ == 0) bufferFirst_ = wordAddress;
  const std::uint32_t index = wordAddress - bufferFirst_;
  if (!InSetupBlock(wordAddress) || wordAddress < bufferFirst_ || index >= bufferCount_)
    return RefuseSequence("data of a buffer of " + std::to_string(bufferCount_) + " words outside it" +
                          At(wordAddress));
  const std::uint32_t bit = 1u << index;
  if ((bufferFilled_ & bit) != 0) return RefuseSequence("data of a buffer twice" + At(wordAddress));
  bufferFilled_ |= bit;
  buffer_[index] = word;
  if (bufferFilled_ == (1u << bufferCount_) - 1) phase_ = Phase::kBufferConfirm;
}

void FlashChip::EraseConfirm(std::uint32_t wordAddress, std::uint8_t value, std::int64_t now, FaultPlan* faults) {
  if (value != kConfirm || !InSetupBlock(wordAddress))
    return RefuseSequence("confirm of an erase of block " + std::to_string(setupBlock_) + " expected, got " +
                          Hex(value, 2) + At(wordAddress));
  phase_ = Phase::kCommand;
  if ((registers_.lockBits & BlockBit(setupBlock_)) != 0) {
    registers_.errorBits |= kEraseError | kBlockLocked;
    return;
  }
  Outcome outcome = Outcome::kGood;
  if (faults != nullptr) {
    if (faults->Strikes(Fault::kEraseFails)) outcome = Outcome::kFails;
    if (faults->Strikes(Fault::kEraseStuck)) outcome = Outcome::kStuck;
  }
  Start(Kind::kErase, outcome, now, kEraseNanoseconds);
  operation_.wordAddress = setupBlock_ * FlashMemory::kBlockWords;
  operation_.wordCount = FlashMemory::kBlockWords;
}

/// Programs `bufferCount_` words of `buffer_` from `bufferFirst_` on.
void FlashChip::StartProgram(std::int64_t now, std::int64_t duration, FaultPlan* faults) {
  phase_ = Phase::kCommand;
  const std::uint32_t block = bufferFirst_ / FlashMemory::kBlockWords;
  if ((registers_.lockBits & BlockBit(block)) != 0) {
    registers_.errorBits |= kProgramError | kBlockLocked;
    return;
  }
  for (std::uint32_t i = 0; i < bufferCount_; ++i) {
    const std::uint16_t old = memory_.Word(bufferFirst_ + i);
    if ((buffer_[i] & ~old) == 0) continue;
    registers_.errorBits |= kProgramError;
    return Refuse("programming " + Hex(buffer_[i], 4) + " over " + Hex(old, 4) + " would set bits" +
                  At(bufferFirst_ + i));
  }
  Outcome outcome = Outcome::kGood;
  if (faults != nullptr) {
    if (faults->Strikes(Fault::kProgramFails)) outcome = Outcome::kFails;
    if (faults->Strikes(Fault::kProgramStuck)) outcome = Outcome::kStuck;
  }
  Start(Kind::kProgram, outcome, now, duration);
  operation_.wordAddress = bufferFirst_;
  operation_.wordCount = bufferCount_;
}

void FlashChip::LockConfirm(std::uint32_t wordAddress, std::uint8_t value, std::int64_t now) {
  if ((value != kLockBlock && value != kConfirm) || !InSetupBlock(wordAddress))
    return RefuseSequence("lock or unlock of block " + std::to_string(setupBlock_) + " expected, got " + Hex(value, 2) +
                          At(wordAddress));
  phase_ = Phase::kCommand;
  if (value == kLockBlock)
    Start(Kind::kSetLock, Outcome::kGood, now, kSetLockNanoseconds);
  else
    Start(Kind::kClearLocks, Outcome::kGood, now, kClearLocksNanoseconds);
}

void FlashChip::ProtectionData(std::uint32_t wordAddress, std::uint16_t word, std::int64_t now) {
  const std::uint32_t index = wordAddress - kProtectionFirst;
  if (wordAddress < kProtectionFirst || index >= registers_.protection.size())
    return RefuseSequence("data of a protection register outside it" + At(wordAddress));
  phase_ = Phase::kCommand;
  const bool factory = index >= 1 && index < kFactoryWordsEnd;
  const bool userLocked = (registers_.protection[0] & kUserWordsUnlocked) == 0;
  if (factory || (index >= kFactoryWordsEnd && userLocked)) {
    registers_.errorBits |= kProgramError | kBlockLocked;
    return;
  }
  if ((word & ~registers_.protection[index]) != 0) {
    registers_.errorBits |= kProgramError;
    return Refuse("programming " + Hex(word, 4) + " over " + Hex(registers_.protection[index], 4) +
                  " would set bits of a protection register" + At(wordAddress));
  }
  buffer_[0] = word;
  Start(Kind::kProtection, Outcome::kGood, now, kWordProgramNanoseconds);
  operation_.wordAddress = index;
}

void FlashChip::Start(Kind kind, Outcome outcome, std::int64_t now, std::int64_t duration) {
  operation_ = {.kind = kind, .outcome = outcome, .startNanoseconds = now, .endNanoseconds = now + duration};
}

void FlashChip::ProgramFirstWords(std::uint32_t wordCount) {
  for (std::uint32_t i = 0; i < wordCount; ++i)
    memory_.SetWord(operation_.wordAddress + i, buffer_[i]);
}

void FlashChip::EndOperation() {
  const bool fails = operation_.outcome == Outcome::kFails;
  switch (operation_.kind) {
    case Kind::kNone:
      return;
    case Kind::kErase:
      memory_.Fill(operation_.wordAddress, operation_.wordCount, fails ? 0 : 0xFFFF);
      if (fails) registers_.errorBits |= kEraseError;
      break;
    case Kind::kProgram:
      ProgramFirstWords(fails ? operation_.wordCount / 2 : operation_.wordCount);
      if (fails) registers_.errorBits |= kProgramError;
      break;
    case Kind::kSetLock:
      registers_.lockBits |= BlockBit(setupBlock_);
      break;
    case Kind::kClearLocks:
      registers_.lockBits = 0;
      break;
    case Kind::kProtection:
      registers_.protection[operation_.wordAddress] = buffer_[0];
      break;
  }
  registers_.hung = operation_.outcome == Outcome::kStuck;
  operation_.kind = Kind::kNone;
}

void FlashChip::PowerLoss(std::int64_t nowNanoseconds) {
  EndWhatIsOver(nowNanoseconds);
  const std::int64_t elapsed = nowNanoseconds - operation_.startNanoseconds;
  const std::int64_t duration = operation_.endNanoseconds - operation_.startNanoseconds;
  if (operation_.kind == Kind::kErase) {
    // Twice the block's words in the whole time: once to zeros, once to ones.
    const auto steps = static_cast<std::uint32_t>(elapsed * 2 * operation_.wordCount / duration);
    const bool secondHalf = steps > operation_.wordCount;
    memory_.Fill(operation_.wordAddress, secondHalf ? operation_.wordCount : steps, 0);
    if (secondHalf) memory_.Fill(operation_.wordAddress, steps - operation_.wordCount, 0xFFFF);
  } else if (operation_.kind == Kind::kProgram) {
    ProgramFirstWords(static_cast<std::uint32_t>(elapsed * operation_.wordCount / duration));
  }
  operation_.kind = Kind::kNone;
  phase_ = Phase::kCommand;
  bufferRefused_ = false;
  registers_.readMode = FlashReadMode::kArray;
  registers_.errorBits = 0;
  registers_.hung = false;
}

void FlashChip::Settle() {
  if (operation_.kind != Kind::kNone) EndOperation();
  if (phase_ != Phase::kCommand)
    RefuseSequence("a command sequence in block " + std::to_string(setupBlock_) + " was left open");
  bufferRefused_ = false;
}

}  // namespace simulator
