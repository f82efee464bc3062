#pragma once

#include <cstdint>
#include <optional>

#include "ClientProcess.h"
#include "WindowServer.h"

namespace benchdriver {

/// A program that has boards open, with its register windows.
class Client {
 public:
  /// Throws `std::system_error` when the process cannot be opened.
  explicit Client(std::uint32_t processId) : process_(processId) {}

  const ClientProcess& process() const { return process_; }
  /// Throws `std::system_error` when the first window's mailbox cannot be made.
  WindowServer& windows() { return windows_ ? *windows_ : windows_.emplace(process_); }
  /// Waits until all that the program has written to its windows so far has arrived.
  void DrainWindows() {
    if (windows_) windows_->Drain();
  }

 private:
  const ClientProcess process_;
  std::optional<WindowServer> windows_;
};

}  // namespace benchdriver
