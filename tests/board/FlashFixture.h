#pragma once

#include <gmock/gmock.h>

#include <cstdint>
#include <initializer_list>

#include "board/C28FxJ3A.h"
#include "support/ManualClock.h"
#include "support/ScriptedRegisters.h"

using test_support::R;
using test_support::RegisterScript;
using test_support::W;

using FlashMode = C28FxJ3A::Mode;

/// Joins pieces of a register script.
inline RegisterScript Join(std::initializer_list<RegisterScript> pieces) {
  RegisterScript script;
  for (const RegisterScript& piece : pieces)
    script.insert(script.end(), piece.begin(), piece.end());
  return script;
}

/// A forced read of the status, answered with `status`.
inline RegisterScript StatusRead(std::uint32_t status) {
  return {W(0, 0), W(4, 0x70), W(0, 0), R(4, status)};
}

/// A clear status that finds the chip ready at once.
inline RegisterScript StatusCleared() {
  return {W(0, 0), W(4, 0x70), W(0, 0), R(4, 0x80), W(0, 0), W(4, 0x50)};
}

/// What shows that the chip is believed to be in another mode than read array, and what shows that it is not.
inline RegisterScript ReadAtZeroWithCommand() {
  return {W(0, 0), W(4, 0xFF), W(0, 0), R(4, 0)};
}
inline RegisterScript ReadAtZeroWithoutCommand() {
  return {W(0, 0), R(4, 0)};
}

/// Registers that take their time for each read.
class SlowRegisters : public platform::RegisterTrap {
 public:
  SlowRegisters(platform::RegisterTrap& inner, test_support::ManualClock& clock, std::int64_t readTicks)
      : inner_(inner), clock_(clock), readTicks_(readTicks) {}

  std::uint32_t Read(std::uint32_t offset) override {
    clock_.AdvanceTicks(readTicks_);
    return inner_.Read(offset);
  }
  void Write(std::uint32_t offset, std::uint32_t value) override { inner_.Write(offset, value); }

 private:
  platform::RegisterTrap& inner_;
  test_support::ManualClock& clock_;
  std::int64_t readTicks_;
};

/// A flash on scripted registers, in read array mode or not attached yet, and a clock that stands still but for sleeps
/// and 100 ns a read.
class FlashFixture : public testing::Test {
 protected:
  void AttachInReadArrayMode() {
    flash.Attach(registers.Window());
    registers.Expect({W(0, 0), W(4, 0xFF)});
    ASSERT_TRUE(flash.SetMode(FlashMode::kReadArray, false));
    registers.ExpectDone();
  }

  void ReadAtZero() {
    std::uint16_t word = 0;
    flash.Read(1, 0, &word);
  }

  test_support::ManualClock clock;
  platform::ScopedPlatform scope{clock};
  test_support::ScriptedRegisters registers;
  C28FxJ3A flash;
};
