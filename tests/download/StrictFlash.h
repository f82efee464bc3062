#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/RegisterWindow.h"

/// A host card's flash that is never busy and remembers what is programmed, behind its pair of registers. It knows the
/// erase and the write-buffer commands and no more, and notes as a protocol error whatever a chip would not take: a
/// data word outside its run, a run that crosses its boundary, a bit to be programmed from 0 to 1, an access outside
/// the device.
///
///     StrictFlash chip;
///     flash.Attach(chip.Window());
///     flash.ProgramBlock(0x100000, words);
///     EXPECT_EQ(chip.Word(0x100000), 0x1234);
///     EXPECT_EQ(chip.Errors(), "");
///
/// Addresses are in words. What was never programmed is erased.
class StrictFlash final : public platform::RegisterTrap {
 public:
  static constexpr std::uint32_t kDeviceWords = 0x400000;
  static constexpr std::uint32_t kBlockWords = 0x10000;
  static constexpr std::uint32_t kRunWords = 16;

  platform::RegisterWindow Window() { return platform::RegisterWindow(0x4008, this); }

  /// Content as it was before the test; needs no command.
  void Put(std::uint32_t wordAddress, const std::vector<std::uint16_t>& words);
  void PutBytes(std::uint32_t byteAddress, const std::vector<std::uint8_t>& bytes);
  std::uint16_t Word(std::uint32_t wordAddress) const;
  std::vector<std::uint8_t> Bytes(std::uint32_t byteAddress, std::size_t lengthBytes) const;

  /// The erase of this block, or the programming of this run, ends with an error from now on and changes nothing.
  void FailEraseAt(std::uint32_t wordAddress) { failingErase_ = wordAddress; }
  void FailProgramAt(std::uint32_t wordAddress) { failingProgram_ = wordAddress; }

  /// The blocks that were erased, in order.
  const std::vector<std::uint32_t>& Erased() const { return erased_; }
  /// The runs that were programmed, in order.
  const std::vector<std::uint32_t>& Programmed() const { return programmed_; }
  /// How many words were read from the array.
  std::size_t WordsRead() const { return wordsRead_; }
  /// Protocol errors, a line each.
  const std::string& Errors() const { return errors_; }

  std::uint32_t Read(std::uint32_t offset) override;
  void Write(std::uint32_t offset, std::uint32_t value) override;

 private:
  enum class State { kArray, kStatus, kEraseSetup, kRunCount, kRunData, kRunConfirm };

  using Block = std::vector<std::uint16_t>;

  Block& BlockAt(std::uint32_t wordAddress);
  void Command(std::uint32_t value);
  void TakeRunWord(std::uint32_t value);
  void Erase();
  void Program();
  void Refuse(const std::string& what, std::uint32_t value);

  std::map<std::uint32_t, Block> blocks_;
  State state_ = State::kStatus;  // unknown to the program, so it had better ask for another
  std::uint32_t status_ = 0x80;
  std::uint32_t address_ = 0;
  std::uint32_t start_ = 0;
  std::vector<std::uint16_t> run_;
  std::uint32_t failingErase_ = ~0u;
  std::uint32_t failingProgram_ = ~0u;
  std::vector<std::uint32_t> erased_;
  std::vector<std::uint32_t> programmed_;
  std::size_t wordsRead_ = 0;
  std::string errors_;
};
