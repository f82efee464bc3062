#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

namespace benchdriver {

/// How the accesses to register windows travel from a program to the driver: memory that both have mapped. The program
/// puts accesses into a ring and counts them, the driver carries them out in order and counts too. Writes are posted,
/// as on the bus: the program goes on at once. For a read it waits until the driver has come that far. There is one
/// mailbox for each program.
struct WindowMailbox {
  static constexpr std::uint32_t kMostWindows = 8;
  /// A power of two, so that the counts can wrap.
  static constexpr std::uint32_t kRingAccesses = 256;

  struct Window {
    std::uint64_t address;  ///< in the program
    std::uint64_t sizeBytes;
  };

  struct Access {
    std::uint32_t window;
    std::uint32_t offset;
    std::uint32_t isWrite;
    std::uint32_t written;
  };

  /// The driver's, constant while there are windows.
  std::uint32_t driverProcess;
  std::atomic<std::uint32_t> windowCount;
  Window windows[kMostWindows];

  /// The program's.
  alignas(64) std::atomic<std::uint32_t> asked;
  alignas(64) Access accesses[kRingAccesses];

  /// The driver's.
  alignas(64) std::atomic<std::uint32_t> done;
  std::uint32_t read;
};

/// Neither side rests at once when there is nothing for it: the next access follows within a microsecond.
inline constexpr unsigned kSpins = 2'000;

/// The mapping's name; drivers and programs run in different sessions.
inline std::wstring MailboxName(std::uint32_t programProcess) {
  return L"Global\\fwbench-window-" + std::to_wstring(programProcess);
}

}  // namespace benchdriver
