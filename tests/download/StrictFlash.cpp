#include "StrictFlash.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr std::uint32_t kReady = 0x80;
constexpr std::uint32_t kEraseError = 0x20;
constexpr std::uint32_t kProgramError = 0x10;

}  // namespace

void StrictFlash::Put(std::uint32_t wordAddress, const std::vector<std::uint16_t>& words) {
  for (const std::uint16_t word : words) {
    BlockAt(wordAddress)[wordAddress % kBlockWords] = word;
    ++wordAddress;
  }
}

void StrictFlash::PutBytes(std::uint32_t byteAddress, const std::vector<std::uint8_t>& bytes) {
  for (const std::uint8_t byte : bytes) {
    std::uint16_t& word = BlockAt(byteAddress / 2)[byteAddress / 2 % kBlockWords];
    const bool isHigh = byteAddress % 2 != 0;
    word = static_cast<std::uint16_t>(isHigh ? (word & 0x00FF) | byte << 8 : (word & 0xFF00) | byte);
    ++byteAddress;
  }
}

std::uint16_t StrictFlash::Word(std::uint32_t wordAddress) const {
  const auto block = blocks_.find(wordAddress / kBlockWords);
  return block == blocks_.end() ? 0xFFFF : block->second[wordAddress % kBlockWords];
}

std::vector<std::uint8_t> StrictFlash::Bytes(std::uint32_t byteAddress, std::size_t lengthBytes) const {
  std::vector<std::uint8_t> bytes;
  for (std::uint32_t at = byteAddress; bytes.size() < lengthBytes; ++at)
    bytes.push_back(static_cast<std::uint8_t>(at % 2 == 0 ? Word(at / 2) : Word(at / 2) >> 8));
  return bytes;
}

std::uint32_t StrictFlash::Read(std::uint32_t offset) {
  if (offset != 4) Refuse("read of register", offset);
  if (state_ != State::kArray) {
    // The status is also shown between the write-buffer command and its count: that is how the buffer is waited for.
    if (state_ != State::kStatus && state_ != State::kRunCount) Refuse("read inside a command at", address_);
    return status_;
  }
  if (address_ >= kDeviceWords) {
    Refuse("read at", address_);
    return 0;
  }
  const std::uint32_t even = address_ & ~1u;
  wordsRead_ += 2;
  return Word(even) | static_cast<std::uint32_t>(Word(even + 1)) << 16;
}

void StrictFlash::Write(std::uint32_t offset, std::uint32_t value) {
  if (offset == 0)
    address_ = value;
  else if (offset != 4)
    Refuse("write of register", offset);
  else if (address_ >= kDeviceWords)
    Refuse("command at", address_);
  else
    Command(value);
}

StrictFlash::Block& StrictFlash::BlockAt(std::uint32_t wordAddress) {
  Block& block = blocks_[wordAddress / kBlockWords];
  block.resize(kBlockWords, 0xFFFF);
  return block;
}

void StrictFlash::Command(std::uint32_t value) {
  switch (state_) {
    case State::kEraseSetup:
      if (value == 0xD0 && address_ == start_)
        Erase();
      else
        Refuse("no confirmation of the erase, but", value);
      state_ = State::kStatus;
      return;
    case State::kRunCount:
      if (value != 0x0F0F || address_ != start_) Refuse("no count of 16 words, but", value);
      run_.clear();
      state_ = State::kRunData;
      return;
    case State::kRunData:
      TakeRunWord(value);
      return;
    case State::kRunConfirm:
      if (value == 0xD0 && address_ == start_)
        Program();
      else
        Refuse("no confirmation of the run, but", value);
      state_ = State::kStatus;
      return;
    case State::kArray:
    case State::kStatus:
      break;
  }
  start_ = address_;
  if (value == 0xFF)
    state_ = State::kArray;
  else if (value == 0x70)
    state_ = State::kStatus;
  else if (value == 0x50)
    status_ = kReady;  // the mode stays
  else if (value == 0x20)
    state_ = State::kEraseSetup;
  else if (value == 0xE8E8)
    state_ = State::kRunCount;
  else
    Refuse("unknown command", value);
}

void StrictFlash::TakeRunWord(std::uint32_t value) {
  if (address_ != start_ + run_.size()) Refuse("data word outside its run at", address_);
  if (value > 0xFFFF) Refuse("data word", value);
  run_.push_back(static_cast<std::uint16_t>(value));
  if (run_.size() == kRunWords) state_ = State::kRunConfirm;
}

void StrictFlash::Erase() {
  if (start_ % kBlockWords != 0) Refuse("erase inside a block at", start_);
  if (start_ == failingErase_) {
    status_ |= kEraseError;
    return;
  }
  Block& block = BlockAt(start_);
  std::fill(block.begin(), block.end(), std::uint16_t{0xFFFF});
  erased_.push_back(start_);
}

void StrictFlash::Program() {
  if (start_ % kRunWords != 0) Refuse("run across a boundary at", start_);
  if (start_ == failingProgram_) {
    status_ |= kProgramError;
    return;
  }
  Block& block = BlockAt(start_);
  for (std::uint32_t i = 0; i < kRunWords; ++i) {
    std::uint16_t& word = block[start_ % kBlockWords + i];
    if ((run_[i] & ~word) != 0) Refuse("bits from 0 to 1 at", start_ + i);
    word &= run_[i];
  }
  programmed_.push_back(start_);
}

void StrictFlash::Refuse(const std::string& what, std::uint32_t value) {
  char number[16];
  std::snprintf(number, sizeof number, " %06X\n", value);
  errors_ += what + number;
}
