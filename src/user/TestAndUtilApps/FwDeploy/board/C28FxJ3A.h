#pragma once

#include <cstdint>

#include "board/FlashTimers.h"
#include "platform/RegisterWindow.h"

/// What `ReadIdentity` finds. Words are in the byte order of the host, protection data with the low byte first.
struct FlashIdentity {
  std::uint16_t manufacturer;
  std::uint16_t deviceCode;
  std::uint8_t lockBits[8];  ///< one bit a block: block `i` is bit `i % 8` of byte `i / 8`
  std::uint8_t unused[8];    ///< stays 0
  std::uint32_t factoryPartUnlocked;
  std::uint8_t factoryData[8];
  std::uint32_t userPartUnlocked;
  std::uint8_t userData[8];
};
static_assert(sizeof(FlashIdentity) == 44);

/// Driver of a host card's parallel flash, a chip of the StrataFlash J3 family behind a pair of 32-bit registers: the
/// word address of the next access at offset 0, command or data at offset 4. A read of the data register gives two
/// words, that of the even address in the low half and that of the next odd one in the high half.
///
///     flash.Attach(registers.From(0x4008));
///     flash.Read(2, 0x100000, words);
///     if (!flash.ProgramBlock(0x30000, block)) tellWhy(flash.eraseReport, flash.programReport);
///
/// All addresses and counts are in 16-bit words. Nothing throws; no operation touches a register while no window is
/// attached. Without a performance counter every deadline counts as passed, so that no loop runs for ever. One thread.
class C28FxJ3A {
 public:
  static constexpr std::uint32_t kDeviceWords = 0x400000;
  static constexpr std::uint32_t kBlockWords = 0x10000;  ///< the unit of erasing
  static constexpr std::uint32_t kRunWords = 16;         ///< the unit of programming

  /// What a read of the chip gives.
  enum class Mode : std::uint32_t {
    kNotAttached = 0,
    kUnknown = 1,
    kReadArray = 2,
    kReadIdentifier = 3,
    kReadQuery = 4,
    kReadStatus = 5,
  };

  /// The last erase and the last program run.
  FlashTimers eraseReport;
  FlashTimers programReport;

  /// Takes the register pair. Empty detaches; the window that is attached already changes nothing, so that what is
  /// known of the chip's mode stays known.
  void Attach(platform::RegisterWindow newWindow);
  void Detach();

  /// Puts the chip in a read mode; nothing is written when it is believed to be in that mode already, unless `force`.
  /// `kUnknown` writes nothing, `kNotAttached` detaches.
  /// Returns false for a mode that does not exist, and without a window for every mode but `kNotAttached`.
  bool SetMode(Mode newMode, bool force);
  /// The chip's status byte: 0x80 is ready without error. Sends the read status command if needed or with `force`.
  /// Returns 0 without a window.
  std::uint32_t ReadStatus(bool force);
  /// Waits until the chip is ready, for 1 to 100000 ms: values outside are clamped. Returns false if it never was, or
  /// at once without a window.
  bool WaitReady(std::int32_t timeoutMilliseconds);
  /// Waits up to 2000 ms for the chip and clears its error bits. Returns false, with nothing cleared, if it never was
  /// ready.
  ///
  /// Afterwards the chip is believed to be in read array mode although no such command was sent: this is meant. A
  /// `Read` that follows finds the chip in the mode in which it really is; a `SetMode` with `force` puts it right.
  bool ClearStatus();

  /// Reads `wordCount` words from `wordAddress` on into the caller's array, fewer if the device ends before. Does
  /// nothing for a null array, a count below 1 or an address outside the device. Without a window the words are 0.
  void Read(std::int32_t wordCount, std::uint32_t wordAddress, std::uint16_t* destination);
  /// Reads in a given mode, one register read a word; otherwise as `Read`. Does nothing for `kNotAttached` or a mode
  /// that does not exist.
  void ReadInMode(std::int32_t wordCount, Mode readMode, std::uint32_t wordAddress, std::uint16_t* destination);
  /// Reads who the chip is and what is locked, and ends in read array mode. Returns false without a window; the record
  /// then says nothing.
  bool ReadIdentity(FlashIdentity& record);

  /// Erases the block at `wordAddress`, a multiple of `kBlockWords` inside the device: all its bits become 1. Waits at
  /// most 2000 ms for the chip to become ready and 2000 ms for the erase; after a failure, twice 2000 ms more.
  ///
  /// Returns false for another address (its status was cleared and nothing erased), when the chip did not finish in
  /// time, and for an error that its status did not show before; `eraseReport` says which, and the block's content is
  /// then unknown. Ends in read status mode, after a failure without recovery as `ClearStatus` leaves it.
  bool EraseBlock(std::uint32_t wordAddress);
  /// Programs the 16 words at `words` to `wordAddress`, a multiple of `kRunWords` inside the device. Waits at most
  /// 2000 ms for the chip to become ready, 50 ms for its write buffer and 50 ms for completion, 2000 ms more after a
  /// success and twice that after a failure. Does not read back.
  ///
  /// Returns false for another address (the chip's status was cleared and nothing programmed), when the chip did not
  /// answer in time, and for any status but 0x80; `programReport` says which, and the words of the run are then
  /// unknown. A success leaves the chip as `ClearStatus` does, and so in truth in read status mode.
  bool ProgramRun(std::uint32_t wordAddress, const std::uint16_t* words);
  /// Erases the block at `wordAddress` and programs it with the 65536 words at `words`. Does not read back. Returns
  /// false at the first failure, of which the reports tell.
  bool ProgramBlock(std::uint32_t wordAddress, const std::uint16_t* words);

 private:
  void WriteAt(std::uint32_t wordAddress, std::uint32_t value);
  std::uint16_t ReadWordAt(std::uint32_t wordAddress);
  void Begin(FlashTimers& report);
  void NoteStatusBefore(FlashTimers& report);
  bool Fail(FlashTimers& report, bool timedOut);
  bool Recover(std::uint32_t statusBefore);

  Mode mode = Mode::kNotAttached;
  platform::RegisterWindow window;
};
