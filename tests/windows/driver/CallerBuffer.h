#pragma once

#include <cstdint>
#include <vector>

#include "ClientProcess.h"

namespace benchdriver {

/// A copy of a buffer that a caller names by its address, for a board that takes addresses of its own process.
class CallerBuffer {
 public:
  static constexpr std::uint32_t kMostBytes = 0x10000;

  /// `process` must outlive the buffer, `sizeBytes` is at most `kMostBytes`.
  CallerBuffer(const ClientProcess& process, std::uint64_t address, std::uint32_t sizeBytes);

  /// Copies the caller's bytes. False when they are not all there; no buffer, at address 0, is always there.
  bool Fetch();
  /// Where the copy is; 0 for no buffer.
  std::uint64_t LocalAddress() const;
  /// Writes what has changed back. False when the caller's memory does not take it.
  bool PutBack() const;

 private:
  const ClientProcess* process_;
  std::uint64_t address_;
  std::vector<std::uint8_t> before_;
  std::vector<std::uint8_t> bytes_;
};

}  // namespace benchdriver
