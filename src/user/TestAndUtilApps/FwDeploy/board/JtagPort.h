#pragma once

#include <cstdint>

#include "platform/RegisterWindow.h"

/// States of the TAP that a road leads to, by the numbers that stand in VME files.
enum TapState : std::uint8_t {
  kTapReset = 0,
  kTapIdle = 1,
  kTapIrPause = 2,
  kTapDrPause = 3,
  kTapShiftIr = 4,
  kTapShiftDr = 5,
};

/// The JTAG port of a host card: a 32-bit register whose low bits are the pins of the CPLD on it. Every access is an
/// access of the register; the speed of TCK is that of these accesses.
///
///     port.Connect(registers.From(0x80400));
///     port.SetPin(JtagPort::kEnable, true);
///     port.MoveTap(kTapReset);
///
/// The port has no failure of its own. Without a CPLD, TDO reads as a constant.
class JtagPort {
 public:
  // Pins by their bits in the register.
  static constexpr std::uint8_t kTck = 0x01;
  static constexpr std::uint8_t kTms = 0x02;
  static constexpr std::uint8_t kTdi = 0x04;
  static constexpr std::uint8_t kEnable = 0x08;
  static constexpr std::uint8_t kTdo = 0x10;

  static constexpr std::uint16_t kDefaultFrequency = 1000;

  /// The register that is written and read from now on. All other operations need one; pins and TAP state stay.
  void Connect(const platform::RegisterWindow& port) { port_ = port; }

  /// Drives the pins of `mask`, and leaves the others as they are.
  void SetPin(std::uint8_t mask, bool isHigh);
  /// 0 or 1.
  int ReadTdoPin() const;
  /// One pulse of TCK. The low phase has twice as many writes as the high one.
  void PulseClock();
  void PulseClocks(std::uint16_t count);
  /// Goes to a state by the road that the table has for these two states; reset is reached from everywhere. Where the
  /// TAP is in the state already nothing is clocked, but for reset. False, with no pin touched, when there is no road.
  bool MoveTap(std::uint8_t state);

  /// How long pulses are: below 1000 each write of a pulse is repeated 1000 / `frequency` + 2 times. False for 0, which
  /// has no meaning and changes nothing.
  bool SetFrequency(std::uint16_t frequency);

  std::uint8_t pinShadow() const { return pinShadow_; }
  std::uint8_t tapState() const { return tapState_; }

  /// Calls `drive` with an object that has `SetPin`, `ReadTdoPin` and `PulseClock` as above: the way to make many
  /// accesses in a row. It is of one type for a register that is memory and pulses of the usual length, so that nothing
  /// but the accesses is left of a loop, and of another for all else.
  template <typename Drive>
  void Burst(Drive&& drive) {
    volatile std::uint32_t* const memory = port_.Memory();
    if (memory != nullptr && highWrites_ == 1)
      Run(Pins<MemoryRegister>(*this, MemoryRegister{memory}), drive);
    else
      Run(Pins<AnyRegister>(*this, AnyRegister{port_, highWrites_}), drive);
  }

 private:
  /// A register that is memory.
  struct MemoryRegister {
    volatile std::uint32_t* memory;
    static constexpr std::uint32_t highWrites = 1;
    std::uint32_t Read() const { return *memory; }
    void Write(std::uint32_t value) const { *memory = value; }
  };
  struct AnyRegister {
    platform::RegisterWindow port;
    std::uint32_t highWrites;
    std::uint32_t Read() const { return port.Read(0); }
    void Write(std::uint32_t value) const { port.Write(0, value); }
  };

  /// The pins during a burst: a copy, which a compiler can keep in a register between the accesses. The port takes it
  /// over at the end, also when an access throws.
  template <typename Register>
  class Pins {
   public:
    Pins(JtagPort& owner, Register reg) : owner_(owner), register_(reg), pins_(owner.pinShadow_) {}
    ~Pins() { owner_.pinShadow_ = static_cast<std::uint8_t>(pins_); }
    Pins(const Pins&) = delete;
    Pins& operator=(const Pins&) = delete;

    void SetPin(std::uint8_t mask, bool isHigh) { Drive((pins_ & ~std::uint32_t{mask}) | (isHigh ? mask : 0u), 1); }
    int ReadTdoPin() const { return (register_.Read() & kTdo) != 0 ? 1 : 0; }
    /// The low phase has twice as many writes as the high one, and is meant to.
    void PulseClock() {
      const std::uint32_t low = pins_ & ~std::uint32_t{kTck};
      Drive(low | kTck, register_.highWrites);
      Drive(low, 2 * register_.highWrites);
    }

   private:
    void Drive(std::uint32_t pins, std::uint32_t writes) {
      pins_ = pins;
      for (; writes > 0; --writes)
        register_.Write(pins);
    }

    JtagPort& owner_;
    const Register register_;
    std::uint32_t pins_;
  };

  template <typename AnyPins, typename Drive>
  static void Run(AnyPins&& pins, Drive& drive) {
    drive(pins);
  }

  platform::RegisterWindow port_;
  /// The pins as they were last driven.
  std::uint8_t pinShadow_ = 0;
  /// The state that the TAP is in as far as this program knows.
  std::uint8_t tapState_ = kTapReset;
  /// Writes of the high phase of a pulse.
  std::uint32_t highWrites_ = 1;
};
