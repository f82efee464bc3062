#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <thread>

#include "ClientProcess.h"
#include "platform/RegisterWindow.h"
#include "WindowMailbox.h"

namespace benchdriver {

/// Gives one program register windows, and serves its accesses to them in a thread of its own.
///
///     WindowServer server(client);                       // throws std::system_error
///     std::uint64_t address = server.Add(trap, 0x100000);  // the program can use it from here on; 0 if it can't
class WindowServer {
 public:
  /// `client` must outlive the server.
  explicit WindowServer(const ClientProcess& client);
  /// Takes the windows away, after what was written to them has arrived.
  ~WindowServer();
  WindowServer(const WindowServer&) = delete;
  WindowServer& operator=(const WindowServer&) = delete;

  /// The address of a new window of the program. `trap` sees the accesses, from the server's thread, and must outlive
  /// the server.
  std::uint64_t Add(platform::RegisterTrap& trap, std::uint32_t sizeBytes);

  /// Waits until all that the program has written so far has arrived.
  void Drain();

 private:
  void Serve();
  void Do(const WindowMailbox::Access& access);

  const ClientProcess& client_;
  HANDLE mapping_ = nullptr;
  WindowMailbox* mailbox_ = nullptr;
  platform::RegisterTrap* traps_[WindowMailbox::kMostWindows] = {};
  std::atomic<bool> isEnding_ = false;
  std::thread thread_;
};

}  // namespace benchdriver
