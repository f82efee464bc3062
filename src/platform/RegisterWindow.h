#pragma once

#include <cstdint>

namespace platform {

/// A simulated register window: sees each 32-bit access to it. `offset` is in bytes from the window's start.
class RegisterTrap {
 public:
  virtual ~RegisterTrap() = default;
  virtual std::uint32_t Read(std::uint32_t offset) = 0;
  virtual void Write(std::uint32_t offset, std::uint32_t value) = 0;
};

/// A board's mapped registers, or the part of them from some register on. Copies freely; owns nothing.
///
///     RegisterWindow regs(address, devices.TrapAt(address));
///     RegisterWindow flash = regs.From(0x4008);
///     flash.Write(0, wordAddress);
///
/// Accesses are 32-bit and volatile, in program order. Neither they nor `From` check the offset against the window's
/// size: offsets are constants of the register map.
class RegisterWindow {
 public:
  /// No window.
  RegisterWindow() = default;
  /// The window at `address`; with a trap, the address is only a name and is never dereferenced.
  explicit RegisterWindow(std::uint64_t address, RegisterTrap* trap = nullptr)
      : address_(static_cast<std::uintptr_t>(address)), trap_(trap) {}

  /// True when there is a window.
  explicit operator bool() const { return address_ != 0; }
  friend bool operator==(const RegisterWindow&, const RegisterWindow&) = default;

  std::uint32_t Read(std::uint32_t offset) const {
    if (trap_ != nullptr) return trap_->Read(trapOffset_ + offset);
    return *reinterpret_cast<const volatile std::uint32_t*>(address_ + offset);
  }

  void Write(std::uint32_t offset, std::uint32_t value) const {
    if (trap_ != nullptr)
      trap_->Write(trapOffset_ + offset, value);
    else
      *reinterpret_cast<volatile std::uint32_t*>(address_ + offset) = value;
  }

  /// The first register, where it is memory: for loops of nothing but accesses. Null behind a trap, or without a
  /// window.
  volatile std::uint32_t* Memory() const {
    return trap_ != nullptr ? nullptr : reinterpret_cast<volatile std::uint32_t*>(address_);
  }

  /// The same registers, counted from `offset` on. No window has no parts.
  RegisterWindow From(std::uint32_t offset) const {
    if (address_ == 0) return {};
    RegisterWindow part = *this;
    part.address_ += offset;
    part.trapOffset_ += offset;
    return part;
  }

 private:
  std::uintptr_t address_ = 0;
  RegisterTrap* trap_ = nullptr;
  std::uint32_t trapOffset_ = 0;
};

}  // namespace platform
