#pragma once

#include <cstdint>

#include "board/VmePrint.h"

/// The waits of a VME file. They spin on the multimedia timer and never give up the processor.
class VmeDelay {
 public:
  /// How much longer than asked a file's waits take, in percent: three times as long.
  static constexpr std::uint16_t kFileDelayPercent = 200;

  /// `print` must outlive this object.
  explicit VmeDelay(const VmePrint& print) : print_(print) {}

  /// Starts the progress of a file.
  void BeginFile() {
    calls_ = 0;
    delayPercent = kFileDelayPercent;
  }
  /// Waits `value` microseconds, in whole milliseconds and at least one; with bit 15 set, as many milliseconds as the
  /// other bits say. Then `delayPercent` makes that longer, to at most 65,535 ms, beyond which it wraps. Each 19th call
  /// from the first on prints a percentage, ten more each time. It counts waits, whatever the file's length, and goes
  /// past 100.
  void Wait(std::uint16_t value);

  /// Added to each wait, in whole hundreds; 0 for none.
  std::uint16_t delayPercent = 0;

 private:
  const VmePrint& print_;
  std::uint32_t calls_ = 0;
  std::uint32_t progressTenths_ = 0;
};
