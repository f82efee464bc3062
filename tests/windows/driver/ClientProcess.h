#pragma once

#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <span>

namespace benchdriver {

/// The program on the other side of a driver call, by its process id. Throws `std::system_error` when it cannot be
/// opened.
class ClientProcess {
 public:
  explicit ClientProcess(std::uint32_t id);
  ~ClientProcess();
  ClientProcess(const ClientProcess&) = delete;
  ClientProcess& operator=(const ClientProcess&) = delete;

  std::uint32_t id() const { return id_; }

  /// Copy between the program's memory and this process's. False when not all of it is there.
  bool Read(std::uint64_t address, std::span<std::uint8_t> bytes) const;
  bool Write(std::uint64_t address, std::span<const std::uint8_t> bytes) const;

  /// Takes a range of addresses in the program that nothing is mapped at: each access is a fault. 0 when there is none.
  std::uint64_t ReserveAddresses(std::size_t sizeBytes) const;
  void ReleaseAddresses(std::uint64_t address) const;

  /// Has the program load a library, and waits until it has. False when it has not, or not in 10 s.
  bool LoadLibraryInto(const std::filesystem::path& library) const;

 private:
  std::uint32_t id_;
  HANDLE process_;
};

}  // namespace benchdriver
