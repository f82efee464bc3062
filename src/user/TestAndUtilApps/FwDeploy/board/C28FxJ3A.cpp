#include "board/C28FxJ3A.h"

#include <algorithm>

#include "platform/Platform.h"

namespace {

constexpr std::uint32_t kAddressRegister = 0;
constexpr std::uint32_t kDataRegister = 4;

constexpr std::uint32_t kReadArrayCommand = 0xFF;
constexpr std::uint32_t kReadIdentifierCommand = 0x90;
constexpr std::uint32_t kReadQueryCommand = 0x98;
constexpr std::uint32_t kReadStatusCommand = 0x70;
constexpr std::uint32_t kClearStatusCommand = 0x50;
constexpr std::uint32_t kEraseSetupCommand = 0x20;
constexpr std::uint32_t kConfirmCommand = 0xD0;
constexpr std::uint32_t kWriteToBufferCommand = 0xE8E8;
constexpr std::uint32_t kSixteenWordsCommand = 0x0F0F;  // The word count minus one, in both bytes.

constexpr std::uint32_t kStatusByte = 0xFF;
constexpr std::uint32_t kReady = 0x80;
constexpr std::uint32_t kErrorBits = 0x7F;

constexpr std::uint32_t kBlockAddressBits = C28FxJ3A::kDeviceWords - C28FxJ3A::kBlockWords;
constexpr std::uint32_t kRunAddressBits = C28FxJ3A::kDeviceWords - C28FxJ3A::kRunWords;

constexpr std::int32_t kReportMarks = 10;
constexpr std::int32_t kTimedErasePolls = 4;

constexpr std::int32_t kClearStatusMilliseconds = 2000;
constexpr std::uint32_t kEraseMilliseconds = 2000;
constexpr std::uint32_t kBufferFreeMilliseconds = 50;
constexpr std::uint32_t kProgramMilliseconds = 50;

constexpr std::uint32_t kErasePollMilliseconds = 20;
constexpr std::uint32_t kReadyPollMilliseconds = 1;

void Sleep(std::uint32_t milliseconds) {
  platform::Current().clock().Sleep(milliseconds);
}

bool HasCounter() {
  platform::Clock& clock = platform::Current().clock();
  std::int64_t ticksPerSecond = 0;
  std::int64_t ticks = 0;
  return clock.QueryPerformanceFrequency(ticksPerSecond) && ticksPerSecond > 0 && clock.QueryPerformanceCounter(ticks);
}

/// The deadline of one polling loop, from its making on. It is kept in the mark list, where it stays for inspection.
class Deadline {
 public:
  Deadline(CPerformanceList& list, std::uint32_t milliseconds) : list_(list), hasCounter_(HasCounter()) {
    list_.SetMilliTimeout(milliseconds, -1);
  }
  /// Without a counter the list's own deadline would never pass, and a chip that stays busy would hang the program.
  bool Passed() { return !hasCounter_ || list_.TimedOut(); }

 private:
  CPerformanceList& list_;
  bool hasCounter_;
};

bool IsReady(std::uint32_t status) {
  return (status & kReady) != 0;
}

bool HasNewErrors(std::uint32_t status, std::uint32_t statusBefore) {
  return (status & ~statusBefore & kErrorBits) != 0;
}

bool IsReadable(std::int32_t wordCount, std::uint32_t wordAddress, const std::uint16_t* destination) {
  return destination != nullptr && wordCount >= 1 && wordAddress < C28FxJ3A::kDeviceWords;
}

std::uint32_t ClippedCount(std::int32_t wordCount, std::uint32_t wordAddress) {
  return std::min(static_cast<std::uint32_t>(wordCount), C28FxJ3A::kDeviceWords - wordAddress);
}

std::uint16_t LowWord(std::uint32_t data) {
  return static_cast<std::uint16_t>(data);
}
std::uint16_t HighWord(std::uint32_t data) {
  return static_cast<std::uint16_t>(data >> 16);
}

}  // namespace

void C28FxJ3A::Attach(platform::RegisterWindow newWindow) {
  if (!newWindow) {
    Detach();
  } else if (newWindow != window) {
    mode = Mode::kUnknown;
    window = newWindow;
  }
}

void C28FxJ3A::Detach() {
  mode = Mode::kNotAttached;
  window = {};
}

bool C28FxJ3A::SetMode(Mode newMode, bool force) {
  if (mode == Mode::kNotAttached) return newMode == Mode::kNotAttached;
  if (newMode == mode && !force) return true;
  switch (newMode) {
    case Mode::kNotAttached:
      Detach();
      break;
    case Mode::kUnknown:
      break;
    case Mode::kReadArray:
      WriteAt(0, kReadArrayCommand);
      break;
    case Mode::kReadIdentifier:
      WriteAt(0, kReadIdentifierCommand);
      break;
    case Mode::kReadQuery:
      WriteAt(0, kReadQueryCommand);
      break;
    case Mode::kReadStatus:
      WriteAt(0, kReadStatusCommand);
      break;
    default:
      return false;
  }
  mode = newMode;
  return true;
}

std::uint32_t C28FxJ3A::ReadStatus(bool force) {
  if (!SetMode(Mode::kReadStatus, force)) return 0;
  window.Write(kAddressRegister, 0);
  return window.Read(kDataRegister) & kStatusByte;
}

bool C28FxJ3A::WaitReady(std::int32_t timeoutMilliseconds) {
  if (!window) return false;
  if (IsReady(ReadStatus(true))) return true;
  CPerformanceList timer;
  Deadline deadline(timer, static_cast<std::uint32_t>(std::clamp(timeoutMilliseconds, 1, 100000)));
  for (;;) {
    const bool timedOut = deadline.Passed();
    if (IsReady(ReadStatus(true))) return true;
    if (timedOut) return IsReady(ReadStatus(true));
    Sleep(kReadyPollMilliseconds);
  }
}

bool C28FxJ3A::ClearStatus() {
  if (!WaitReady(kClearStatusMilliseconds)) return false;
  WriteAt(0, kClearStatusCommand);
  mode = Mode::kReadArray;  // Without a read array command: meant, see the header.
  return true;
}

void C28FxJ3A::Read(std::int32_t wordCount, std::uint32_t wordAddress, std::uint16_t* destination) {
  if (!IsReadable(wordCount, wordAddress, destination)) return;
  std::uint32_t left = ClippedCount(wordCount, wordAddress);
  if (!SetMode(Mode::kReadArray, false)) {
    std::fill_n(destination, left, std::uint16_t{0});
    return;
  }
  if (wordAddress % 2 != 0) {
    window.Write(kAddressRegister, wordAddress - 1);
    *destination++ = HighWord(window.Read(kDataRegister));
    ++wordAddress;
    --left;
  }
  for (; left >= 2; left -= 2, wordAddress += 2) {
    window.Write(kAddressRegister, wordAddress);
    const std::uint32_t data = window.Read(kDataRegister);
    *destination++ = LowWord(data);
    *destination++ = HighWord(data);
  }
  if (left == 1) {
    window.Write(kAddressRegister, wordAddress);
    *destination = LowWord(window.Read(kDataRegister));
  }
}

void C28FxJ3A::ReadInMode(std::int32_t wordCount, Mode readMode, std::uint32_t wordAddress,
                          std::uint16_t* destination) {
  if (readMode < Mode::kUnknown || readMode > Mode::kReadStatus) return;
  if (!IsReadable(wordCount, wordAddress, destination)) return;
  const std::uint32_t count = ClippedCount(wordCount, wordAddress);
  if (!SetMode(readMode, false)) {
    std::fill_n(destination, count, std::uint16_t{0});
    return;
  }
  for (std::uint32_t i = 0; i < count; ++i)
    destination[i] = ReadWordAt(wordAddress + i);
}

bool C28FxJ3A::ReadIdentity(FlashIdentity& record) {
  const auto readWords = [this](std::int32_t count, std::uint32_t wordAddress, std::uint16_t* words) {
    ReadInMode(count, Mode::kReadIdentifier, wordAddress, words);
  };
  const auto readBytes = [&readWords](std::uint32_t wordAddress, std::uint8_t* bytes) {
    std::uint16_t words[2] = {};
    readWords(2, wordAddress, words);
    for (const std::uint16_t word : words) {
      *bytes++ = static_cast<std::uint8_t>(word);
      *bytes++ = static_cast<std::uint8_t>(word >> 8);
    }
  };
  record = {};

  SetMode(Mode::kReadIdentifier, true);
  readWords(1, 0, &record.manufacturer);
  readWords(1, 1, &record.deviceCode);

  for (std::uint32_t block = 0; block < kDeviceWords / kBlockWords; ++block) {
    SetMode(Mode::kReadIdentifier, true);
    std::uint16_t lock = 0;
    readWords(1, 2 + block * kBlockWords, &lock);
    record.lockBits[block / 8] |= static_cast<std::uint8_t>((lock & 1) << (block % 8));
  }

  std::uint16_t protection = 0;
  readWords(1, 128, &protection);
  record.factoryPartUnlocked = (protection & 1) == 0 ? 1 : 0;
  readBytes(130, record.factoryData);
  readBytes(132, record.factoryData + 4);
  record.userPartUnlocked = (protection & 2) == 0 ? 1 : 0;
  readBytes(134, record.userData);
  readBytes(138, record.userData + 4);  // 138 and not 136: meant.

  return SetMode(Mode::kReadArray, true);
}

bool C28FxJ3A::EraseBlock(std::uint32_t wordAddress) {
  Begin(eraseReport);
  if (!window || (wordAddress & ~kBlockAddressBits) != 0) return false;
  NoteStatusBefore(eraseReport);

  WriteAt(wordAddress, kEraseSetupCommand);
  WriteAt(wordAddress, kConfirmCommand);
  eraseReport.marks.Mark();
  Deadline deadline(eraseReport.marks, kEraseMilliseconds);
  SetMode(Mode::kReadStatus, true);
  window.Write(kAddressRegister, 0);

  std::uint32_t status = 0;
  bool timedOut = false;
  for (std::int32_t timedPolls = 0;;) {
    Sleep(kErasePollMilliseconds);
    timedOut = deadline.Passed();
    if (timedPolls < kTimedErasePolls) {
      eraseReport.marks.Mark();
      status = window.Read(kDataRegister);
      eraseReport.marks.Mark();
      ++timedPolls;
    } else {
      status = window.Read(kDataRegister);
    }
    if (IsReady(status)) timedOut = false;
    if (IsReady(status) || timedOut) break;
  }
  eraseReport.marks.Mark();
  status &= kStatusByte;
  eraseReport.statusAfter = status;

  // Errors that the chip had before are not held against the erase.
  if (!timedOut && !HasNewErrors(status, eraseReport.statusBefore)) return true;
  return Fail(eraseReport, timedOut);
}

bool C28FxJ3A::ProgramRun(std::uint32_t wordAddress, const std::uint16_t* words) {
  Begin(programReport);
  if (!window || (wordAddress & ~kRunAddressBits) != 0) return false;
  NoteStatusBefore(programReport);

  // The command is repeated until the buffer is free.
  WriteAt(wordAddress, kWriteToBufferCommand);
  Deadline bufferDeadline(programReport.marks, kBufferFreeMilliseconds);
  programReport.marks.Mark();
  mode = Mode::kUnknown;
  std::uint32_t status = 0;
  bool timedOut = false;
  for (;;) {
    timedOut = bufferDeadline.Passed();
    window.Write(kAddressRegister, wordAddress);
    status = window.Read(kDataRegister);
    if (IsReady(status)) timedOut = false;
    if (IsReady(status) || timedOut) break;
    Sleep(0);
    WriteAt(wordAddress, kWriteToBufferCommand);
  }
  programReport.marks.Mark();
  status &= kStatusByte;
  programReport.statusAfter = status;
  if (timedOut || status != kReady) return Fail(programReport, timedOut);

  WriteAt(wordAddress, kSixteenWordsCommand);
  for (std::uint32_t i = 0; i < kRunWords; ++i)
    WriteAt(wordAddress + i, words[i]);
  WriteAt(wordAddress, kConfirmCommand);

  Deadline programDeadline(programReport.marks, kProgramMilliseconds);
  programReport.marks.Mark();
  for (;;) {
    WriteAt(wordAddress, kReadStatusCommand);
    mode = Mode::kReadStatus;
    timedOut = programDeadline.Passed();
    window.Write(kAddressRegister, wordAddress);
    status = window.Read(kDataRegister);
    if (IsReady(status)) timedOut = false;
    if (IsReady(status) || timedOut) break;
    Sleep(0);
  }
  programReport.marks.Mark();
  status &= kStatusByte;
  programReport.statusAfter = status;
  if (timedOut || status != kReady) return Fail(programReport, timedOut);
  ClearStatus();
  return true;
}

bool C28FxJ3A::ProgramBlock(std::uint32_t wordAddress, const std::uint16_t* words) {
  if (!EraseBlock(wordAddress)) return false;
  for (std::uint32_t offset = 0; offset < kBlockWords; offset += kRunWords)
    if (!ProgramRun(wordAddress + offset, words + offset)) return false;
  return true;
}

/// Gives the chip a command or a word at an address.
void C28FxJ3A::WriteAt(std::uint32_t wordAddress, std::uint32_t value) {
  window.Write(kAddressRegister, wordAddress);
  window.Write(kDataRegister, value);
}

std::uint16_t C28FxJ3A::ReadWordAt(std::uint32_t wordAddress) {
  window.Write(kAddressRegister, wordAddress);
  const std::uint32_t data = window.Read(kDataRegister);
  return wordAddress % 2 == 0 ? LowWord(data) : HighWord(data);
}

/// Empties the report's marks and clears the chip's status, for what that brings: an operation does not depend on it.
void C28FxJ3A::Begin(FlashTimers& report) {
  report.marks.Init(kReportMarks);
  ClearStatus();
}

void C28FxJ3A::NoteStatusBefore(FlashTimers& report) {
  report.statusBefore = ReadStatus(true);
  report.statusAfter = report.statusBefore;
  report.result = report.statusBefore == kReady ? FlashResult::kCleanStart : FlashResult::kErrorsAtStart;
}

/// Ends an operation that failed: tries to bring the chip back and says in the report how that went. Returns false.
bool C28FxJ3A::Fail(FlashTimers& report, bool timedOut) {
  const bool recovered = Recover(report.statusBefore);
  if (timedOut)
    report.result = FlashResult::kTimedOut;
  else
    report.result = recovered ? FlashResult::kFailedRecovered : FlashResult::kFailedUnrecovered;
  return false;
}

bool C28FxJ3A::Recover(std::uint32_t statusBefore) {
  ClearStatus();
  const std::uint32_t status = ReadStatus(true);
  if (IsReady(status) && !HasNewErrors(status, statusBefore)) return true;
  Sleep(1);
  ClearStatus();
  return false;
}
