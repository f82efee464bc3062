#pragma once

#include <cstdint>

#include "board/MicroClock.h"

/// Time since a moment, in microseconds. Starts with its construction.
class ElapsedTimer {
 public:
  void Restart() { start_ = MicroClock(); }
  std::int64_t Elapsed() const { return MicroClock() - start_; }

 private:
  std::int64_t start_ = MicroClock();
};
