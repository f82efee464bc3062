#include "board/VmeDelay.h"

#include <string>

#include "platform/Platform.h"

namespace {

constexpr std::uint16_t kInMilliseconds = 0x8000;
constexpr std::uint32_t kCallsBetweenPercentages = 19;
constexpr std::uint32_t kTimerPeriodMilliseconds = 1;

/// The timer's resolution, raised while this lives.
class TimerPeriod {
 public:
  explicit TimerPeriod(platform::Clock& clock) : clock_(clock) { clock_.timeBeginPeriod(kTimerPeriodMilliseconds); }
  ~TimerPeriod() { clock_.timeEndPeriod(kTimerPeriodMilliseconds); }
  TimerPeriod(const TimerPeriod&) = delete;
  TimerPeriod& operator=(const TimerPeriod&) = delete;

 private:
  platform::Clock& clock_;
};

void Spin(std::uint16_t milliseconds) {
  platform::Clock& clock = platform::Current().clock();
  const TimerPeriod period(clock);
  const std::uint32_t start = clock.timeGetTime();
  while (clock.timeGetTime() - start < milliseconds) {
  }
}

}  // namespace

void VmeDelay::Wait(std::uint16_t value) {
  if (calls_ == 0) progressTenths_ = 0;
  std::uint32_t milliseconds = value / 1000;
  if ((value & kInMilliseconds) != 0)
    milliseconds = value & ~kInMilliseconds;
  else if (milliseconds == 0)
    milliseconds = 1;
  milliseconds *= delayPercent / 100u + 1;
  Spin(static_cast<std::uint16_t>(milliseconds));
  if (calls_ % kCallsBetweenPercentages == 0) {
    print_((std::to_string(progressTenths_ * 10) + "%\n").c_str());
    ++progressTenths_;
  }
  ++calls_;
}
