// Runs inside the program under test: catches its loads from and stores to register windows, which nothing is mapped
// at, and has the driver carry them out.

#include <windows.h>

#include <cstdio>
#include <mutex>

#include "RegisterInstruction.h"
#include "WindowMailbox.h"

namespace {

using benchdriver::WindowMailbox;

constexpr DWORD64 kWriteFault = 1;
/// Yields between two looks at whether the driver still lives.
constexpr unsigned kYieldsBetweenLooks = 256;
constexpr std::uint32_t kNoDevice = 0xFFFFFFFF;

/// Threads take turns; no handler waits for long.
class SpinLock {
 public:
  void lock() {
    while (isTaken_.test_and_set(std::memory_order_acquire))
      YieldProcessor();
  }
  void unlock() { isTaken_.clear(std::memory_order_release); }

 private:
  std::atomic_flag isTaken_;
};

WindowMailbox* mailbox = nullptr;
HANDLE driver = nullptr;
SpinLock turn;

/// Waits until at most so many accesses are not carried out yet. False when the driver is gone: then the board is too.
bool WaitUntilLeft(std::uint32_t accesses) {
  const std::uint32_t asked = mailbox->asked.load(std::memory_order_relaxed);
  for (unsigned waits = 0; asked - mailbox->done.load(std::memory_order_acquire) > accesses; ++waits) {
    if (waits < benchdriver::kSpins) {
      YieldProcessor();
      continue;
    }
    SwitchToThread();
    if (waits % kYieldsBetweenLooks == 0 && WaitForSingleObject(driver, 0) != WAIT_TIMEOUT) return false;
  }
  return true;
}

/// A window as the driver has it.
class RemoteWindow : public platform::RegisterTrap {
 public:
  explicit RemoteWindow(std::uint32_t window) : window_(window) {}
  std::uint32_t Read(std::uint32_t offset) override {
    return Ask({window_, offset, false, 0}) && WaitUntilLeft(0) ? mailbox->read : kNoDevice;
  }
  void Write(std::uint32_t offset, std::uint32_t value) override { Ask({window_, offset, true, value}); }

 private:
  /// False when the driver is gone.
  static bool Ask(const WindowMailbox::Access& access) {
    if (!WaitUntilLeft(WindowMailbox::kRingAccesses - 1)) return false;
    const std::uint32_t asked = mailbox->asked.load(std::memory_order_relaxed);
    mailbox->accesses[asked % WindowMailbox::kRingAccesses] = access;
    mailbox->asked.store(asked + 1, std::memory_order_release);
    return true;
  }

  std::uint32_t window_;
};

std::optional<std::uint32_t> WindowAt(std::uint64_t address) {
  const std::uint32_t count = mailbox->windowCount.load(std::memory_order_acquire);
  for (std::uint32_t i = 0; i < count; ++i)
    if (address - mailbox->windows[i].address < mailbox->windows[i].sizeBytes) return i;
  return std::nullopt;
}

/// An access that is not known must not pass for one that is.
void Complain(std::span<const std::uint8_t> code) {
  std::fprintf(stderr, "benchwindow: an access to a register window by an unknown instruction:");
  for (const std::uint8_t byte : code)
    std::fprintf(stderr, " %02x", byte);
  std::fprintf(stderr, "\n");
  std::fflush(stderr);
}

LONG CALLBACK OnException(EXCEPTION_POINTERS* exception) {
  const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
  if (record.ExceptionCode != EXCEPTION_ACCESS_VIOLATION || record.ExceptionInformation[0] > kWriteFault)
    return EXCEPTION_CONTINUE_SEARCH;
  const std::uint64_t address = record.ExceptionInformation[1];
  const auto window = WindowAt(address);
  if (!window) return EXCEPTION_CONTINUE_SEARCH;

  CONTEXT& context = *exception->ContextRecord;
  const std::span code(reinterpret_cast<const std::uint8_t*>(context.Rip), benchdriver::kInstructionBytes);
  const auto instruction = benchdriver::DecodeRegisterInstruction(code);
  if (!instruction) {
    Complain(code);
    return EXCEPTION_CONTINUE_SEARCH;
  }
  const std::scoped_lock mine(turn);
  RemoteWindow remote(*window);
  // The context has the general registers in the order of their numbers.
  const std::span<std::uint64_t, 16> registers(&context.Rax, 16);
  const auto offset = static_cast<std::uint32_t>(address - mailbox->windows[*window].address);
  context.EFlags = benchdriver::Execute(*instruction, remote, offset, registers, context.EFlags);
  context.Rip += instruction->lengthBytes;
  return EXCEPTION_CONTINUE_EXECUTION;
}

bool Start() {
  const std::wstring name = benchdriver::MailboxName(GetCurrentProcessId());
  const HANDLE mapping = OpenFileMappingW(FILE_MAP_WRITE, FALSE, name.c_str());
  if (mapping == nullptr) return false;
  mailbox = static_cast<WindowMailbox*>(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, sizeof(WindowMailbox)));
  CloseHandle(mapping);
  if (mailbox == nullptr) return false;
  driver = OpenProcess(SYNCHRONIZE, FALSE, mailbox->driverProcess);
  return driver != nullptr && AddVectoredExceptionHandler(TRUE, OnException) != nullptr;
}

}  // namespace

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void*) {
  return reason != DLL_PROCESS_ATTACH || Start() ? TRUE : FALSE;
}
