#include "board/VeltraHelper.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

#include "board/DeviceDiscovery.h"
#include "board/DriverRecords.h"
#include "board/MicroClock.h"
#include "errorException.h"
#include "platform/Platform.h"

namespace {

// Register window of a host card, byte offsets.
constexpr std::uint32_t kVpdArea = 0x02000;
constexpr std::uint32_t kKarvelVersion = 0x04000;
constexpr std::uint32_t kFlashAddress = 0x04008;
constexpr std::uint32_t kFifoStatus = 0x80000;
constexpr std::uint32_t kReplyFifo = 0x80210;
constexpr std::uint32_t kCommandData = 0x80380;
constexpr std::uint32_t kCommandControl = 0x80384;
constexpr std::uint32_t kJtagPort = 0x80400;

// Bits of the FIFO status.
constexpr std::uint32_t kCommandRoomForRun = 0x0100;
constexpr std::uint32_t kCommandFull = 0x0200;
constexpr std::uint32_t kReplyEmpty = 0x1000;
constexpr std::uint32_t kReplyHoldsRun = 0x2000;

constexpr std::uint32_t kFirstWord = 0x80000020;
constexpr std::uint32_t kLaterWord = 0x80000000;

/// A run is the word whose status check saw its bit, and this many unchecked ones behind it. Reads across the bus are
/// the slow part of a download.
constexpr unsigned kUncheckedWords = 15;

constexpr std::uint32_t kReplyMark = 0x0B0B;
constexpr std::uint32_t kHeaderBytes = 4;
constexpr std::uint32_t kShortestBody = 4;
constexpr std::uint32_t kLongestBody = 2048;

constexpr std::int64_t kWaitMicroseconds = 16;
constexpr std::int64_t kWaitInReplyMicroseconds = 8;
constexpr std::int64_t kWaitInFlushMicroseconds = 100;
constexpr std::uint32_t kFlushAtOpenMicroseconds = 5000;

/// The status is never read alone: what was read is written back at once.
std::uint32_t ReadStatus(const platform::RegisterWindow& registers) {
  const std::uint32_t status = registers.Read(kFifoStatus);
  registers.Write(kFifoStatus, status);
  return status;
}

/// Packets are big-endian by words, and the first byte of the stream is the most significant one of its word.
std::uint32_t HostOrder(std::uint32_t word) {
  if constexpr (std::endian::native == std::endian::little) word = __builtin_bswap32(word);
  return word;
}

std::uint32_t PopReplyWord(const platform::RegisterWindow& registers) {
  const std::uint32_t word = registers.Read(kReplyFifo);
  registers.Write(kReplyFifo, 0);
  return word;
}

void StoreWord(std::uint8_t* at, std::uint32_t word) {
  word = HostOrder(word);
  std::memcpy(at, &word, sizeof word);
}

std::int64_t Microseconds(std::uint32_t low, std::uint32_t high) {
  const std::uint64_t all = std::uint64_t{high} << 32 | low;
  constexpr std::uint64_t kLongest = std::numeric_limits<std::int64_t>::max();
  return static_cast<std::int64_t>(all < kLongest ? all : kLongest);
}

}  // namespace

VeltraHelper::~VeltraHelper() {
  for (const Card* card : {&belmara_, &dovu_})
    if (card->handle != 0) platform::Current().devices().CloseHandle(card->handle);
}

bool VeltraHelper::Open() {
  OpenCard(belmara_, GUID_BelmaraDevice);
  if (belmara_.handle != 0) TransactBoBCommand(nullptr, 0, nullptr, nullptr, kFlushAtOpenMicroseconds, 0);
  if (openMode == OpenMode::kMorvakElseBothHostCards || openMode == OpenMode::kHostCards)
    OpenCard(dovu_, GUID_DovuDevice);

  const bool haveBelmara = belmara_.handle != 0;
  const bool haveDovu = dovu_.handle != 0;
  if (haveBelmara && haveDovu)
    boardKind = BoardKind::kBothHostCards;
  else if (haveBelmara)
    boardKind = BoardKind::kBelmaraOnly;
  else if (haveDovu)
    boardKind = BoardKind::kDovuOnly;
  return haveBelmara || haveDovu;
}

void VeltraHelper::OpenCard(Card& card, const platform::Guid& guid) {
  card.handle = OpenDeviceViaGuid(guid, 0);
  if (card.handle == 0) return;
  card.registers = MapBoardRegisters(card.handle);
  card.flash.Attach(card.registers.From(kFlashAddress));
}

void VeltraHelper::GetBoardVPD(const char* board, std::uint8_t (&buffer)[kBoardVpdBytes]) {
  const Card* card = nullptr;
  // Unlike everywhere else, the case of the name does not matter here.
  const char initial = board == nullptr ? 'b' : board[0];
  if (initial == 'b' || initial == 'B') card = &belmara_;
  if (initial == 'd' || initial == 'D') card = &dovu_;
  if (card == nullptr || !card->registers) return;

  for (std::uint32_t i = 0; i < kBoardVpdBytes; i += 4) {
    const std::uint32_t word = card->registers.Read(kVpdArea + i);
    for (std::uint32_t byte = 0; byte < 4; ++byte)
      buffer[i + byte] = static_cast<std::uint8_t>(word >> 8 * byte);
  }
}

VeltraHelper::Card& VeltraHelper::CardNamed(const char* board) {
  return board[0] == 'd' ? dovu_ : belmara_;
}

C28FxJ3A* VeltraHelper::GetC28FxJ3A(const char* board) {
  Card& card = CardNamed(board);
  return card.registers ? &card.flash : nullptr;
}

platform::RegisterWindow VeltraHelper::GetKarvelProgramAddr(const char* board) {
  const Card& card = CardNamed(board);
  return card.registers ? card.registers.From(kJtagPort) : platform::RegisterWindow();
}

platform::RegisterWindow VeltraHelper::GetKarvelVersion(const char* board) {
  const Card& card = CardNamed(board);
  return card.registers ? card.registers.From(kKarvelVersion) : platform::RegisterWindow();
}

HwcStatus VeltraHelper::IOCTL_TransactBoBCommand(const std::uint8_t* command, std::uint32_t commandLengthBytes,
                                                 std::uint8_t* reply, std::uint32_t* replyLengthBytes,
                                                 std::uint32_t timeoutLow, std::uint32_t timeoutHigh) {
  // The words stand for every exchange, though only one kind of them flushes.
  if (!belmara_.registers) throw errorException("No Belmara, nothing to flush");
  const std::int64_t timeout = Microseconds(timeoutLow, timeoutHigh);
  if (command != nullptr) SendWords(command, commandLengthBytes, timeout);
  // Only on request: a command that follows one that timed out takes the late reply for its own. Meant so.
  if (command == nullptr && reply == nullptr) FlushReplyFifo(timeout);
  if (reply == nullptr || replyLengthBytes == nullptr) return kHWCerr_None;
  return ReceiveReply(reply, replyLengthBytes, timeout);
}

/// Reads the status until `busyBit` of it is clear or the time is up. Returns the last status; `status` is the one
/// before.
std::uint32_t VeltraHelper::PollStatus(std::uint32_t status, std::uint32_t busyBit, std::int64_t stepMicroseconds,
                                       std::int64_t timeoutMicroseconds) {
  timer_.Restart();
  for (std::int64_t elapsed = 0; elapsed < timeoutMicroseconds; elapsed = timer_.Elapsed()) {
    MicroWait(stepMicroseconds);
    status = ReadStatus(belmara_.registers);
    if ((status & busyBit) == 0) break;
  }
  return status;
}

void VeltraHelper::SendWords(const std::uint8_t* command, std::uint32_t lengthBytes, std::int64_t timeoutMicroseconds) {
  const platform::RegisterWindow registers = belmara_.registers;
  std::uint32_t control = kFirstWord;
  const auto send = [&](std::uint32_t word) {
    registers.Write(kCommandData, HostOrder(word));
    registers.Write(kCommandControl, control);
    control = kLaterWord;
  };
  const std::uint8_t* const wholeWordsEnd = command + (lengthBytes - lengthBytes % 4);
  const std::uint8_t* const end = command + lengthBytes;
  while (command < end) {
    const std::uint32_t status = ReadStatus(registers);
    // Both bits of the one value count: a FIFO with room for a run can still say that it is full.
    const std::size_t words = (status & kCommandRoomForRun) != 0 ? 1 + kUncheckedWords : 1;
    if ((status & kCommandFull) != 0 &&
        (PollStatus(status, kCommandFull, kWaitMicroseconds, timeoutMicroseconds) & kCommandFull) != 0)
      throw errorException("BOB Communications error, timeout writing command fifo");
    const std::uint8_t* const runEnd =
        command + std::min<std::size_t>(words * 4, static_cast<std::size_t>(end - command));
    for (; command < std::min(runEnd, wholeWordsEnd); command += 4) {
      std::uint32_t word;
      std::memcpy(&word, command, sizeof word);
      send(word);
    }
    if (command == runEnd) continue;
    // A last word that is not whole ends in zeros.
    std::uint32_t word = 0;
    std::memcpy(&word, command, static_cast<std::size_t>(end - command));
    send(word);
    command = end;
  }
}

HwcStatus VeltraHelper::ReceiveReply(std::uint8_t* reply, std::uint32_t* replyLengthBytes,
                                     std::int64_t timeoutMicroseconds) {
  const platform::RegisterWindow registers = belmara_.registers;
  PollStatus(ReadStatus(registers), kReplyEmpty, kWaitMicroseconds, timeoutMicroseconds);
  // One more look decides, also where there was no time to wait.
  if ((ReadStatus(registers) & kReplyEmpty) != 0) return kHWCerr_CommandTimeout;

  const std::uint32_t header = PopReplyWord(registers);
  StoreWord(reply, header);
  if (header >> 16 != kReplyMark) {
    FlushReplyFifo(timeoutMicroseconds);
    throw errorException("BOB Communications error, missing reply header");
  }
  const std::uint32_t length = header & 0xFFFF;
  if (length < kShortestBody || length > kLongestBody) {
    FlushReplyFifo(timeoutMicroseconds);
    throw errorException("BOB Communications error, bad reply length");
  }
  unsigned run = 0;
  for (std::uint32_t i = 0; i < length; i += 4) {
    if (run == 0) {
      const std::uint32_t status = ReadStatus(registers);
      if ((status & kReplyHoldsRun) != 0) run = kUncheckedWords;
      if ((status & kReplyEmpty) != 0 &&
          (PollStatus(status, kReplyEmpty, kWaitInReplyMicroseconds, timeoutMicroseconds) & kReplyEmpty) != 0)
        throw errorException("BOB Communications error, timeout while reading reply");
    } else {
      --run;
    }
    StoreWord(reply + kHeaderBytes + i, PopReplyWord(registers));
  }
  *replyLengthBytes = length + kHeaderBytes;
  return kHWCerr_None;
}

/// Throws replies away until the FIFO has been empty for a while or the time is up. True if it ended empty.
bool VeltraHelper::FlushReplyFifo(std::int64_t timeoutMicroseconds) {
  const platform::RegisterWindow registers = belmara_.registers;
  if (!registers) return true;
  std::uint32_t status = ReadStatus(registers);
  timer_.Restart();
  for (std::int64_t elapsed = 0; elapsed < timeoutMicroseconds; elapsed = timer_.Elapsed()) {
    if ((status & kReplyEmpty) != 0) {
      // A box that is still talking may only have paused.
      MicroWait(kWaitInFlushMicroseconds);
      status = ReadStatus(registers);
      if ((status & kReplyEmpty) != 0) break;
    }
    registers.Write(kReplyFifo, 0);
    status = ReadStatus(registers);
  }
  return (status & kReplyEmpty) != 0;
}
