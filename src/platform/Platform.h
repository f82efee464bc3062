#pragma once

#include "platform/Clock.h"
#include "platform/Devices.h"
#include "platform/Files.h"
#include "platform/FrontEnd.h"
#include "platform/TextBlocks.h"

namespace platform {

/// All that the program asks of the operating system, gathered. There is one current platform in the process: the
/// native one from the start, another while a `ScopedPlatform` lives.
///
///     std::int64_t ticks = 0;
///     platform::Current().clock().QueryPerformanceCounter(ticks);
class Platform {
 public:
  virtual ~Platform() = default;
  virtual Devices& devices() = 0;
  virtual Clock& clock() = 0;
  virtual FrontEnd& frontEnd() = 0;
  virtual TextBlocks& textBlocks() = 0;
  virtual Files& files() = 0;
};

/// The real operating system. Each build has one.
Platform& Native();

namespace internal {
inline Platform* current = nullptr;
}

inline Platform& Current() {
  if (internal::current == nullptr) internal::current = &Native();
  return *internal::current;
}

/// Puts another platform in the place of the current one while it lives. The platform must outlive it.
class ScopedPlatform {
 public:
  explicit ScopedPlatform(Platform& platform) : previous_(internal::current) { internal::current = &platform; }
  ~ScopedPlatform() { internal::current = previous_; }
  ScopedPlatform(const ScopedPlatform&) = delete;
  ScopedPlatform& operator=(const ScopedPlatform&) = delete;

 private:
  Platform* previous_;
};

}  // namespace platform
