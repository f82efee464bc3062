#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace simulator {

/// The states of a test access port, with the codes that the standard's users know.
enum class TapState : std::uint8_t {
  kExit2Dr = 0x0,
  kExit1Dr = 0x1,
  kShiftDr = 0x2,
  kPauseDr = 0x3,
  kSelectIr = 0x4,
  kUpdateDr = 0x5,
  kCaptureDr = 0x6,
  kSelectDr = 0x7,
  kExit2Ir = 0x8,
  kExit1Ir = 0x9,
  kShiftIr = 0xA,
  kPauseIr = 0xB,
  kRunTestIdle = 0xC,
  kUpdateIr = 0xD,
  kCaptureIr = 0xE,
  kTestLogicReset = 0xF,
};

/// The state machine of IEEE 1149.1, as a value. It is in Test-Logic-Reset at first.
///
///     TapMachine tap;
///     tap.Clock(false);
///     tap.state() == TapState::kRunTestIdle;
class TapMachine {
 public:
  explicit TapMachine(TapState state = TapState::kTestLogicReset) : state_(state) {}

  TapState state() const { return state_; }
  /// One rising edge of TCK.
  void Clock(bool tms) { state_ = kNext[static_cast<std::size_t>(state_)][tms ? 1 : 0]; }

 private:
  /// By the code of the state: where TMS 0 leads, and TMS 1.
  static constexpr std::array<std::array<TapState, 2>, 16> kNext{{
      {TapState::kShiftDr, TapState::kUpdateDr},            // Exit2-DR
      {TapState::kPauseDr, TapState::kUpdateDr},            // Exit1-DR
      {TapState::kShiftDr, TapState::kExit1Dr},             // Shift-DR
      {TapState::kPauseDr, TapState::kExit2Dr},             // Pause-DR
      {TapState::kCaptureIr, TapState::kTestLogicReset},    // Select-IR
      {TapState::kRunTestIdle, TapState::kSelectDr},        // Update-DR
      {TapState::kShiftDr, TapState::kExit1Dr},             // Capture-DR
      {TapState::kCaptureDr, TapState::kSelectIr},          // Select-DR
      {TapState::kShiftIr, TapState::kUpdateIr},            // Exit2-IR
      {TapState::kPauseIr, TapState::kUpdateIr},            // Exit1-IR
      {TapState::kShiftIr, TapState::kExit1Ir},             // Shift-IR
      {TapState::kPauseIr, TapState::kExit2Ir},             // Pause-IR
      {TapState::kRunTestIdle, TapState::kSelectDr},        // Run-Test/Idle
      {TapState::kRunTestIdle, TapState::kSelectDr},        // Update-IR
      {TapState::kShiftIr, TapState::kExit1Ir},             // Capture-IR
      {TapState::kRunTestIdle, TapState::kTestLogicReset},  // Test-Logic-Reset
  }};

  TapState state_;
};

}  // namespace simulator
