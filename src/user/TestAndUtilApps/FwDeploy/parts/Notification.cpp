#include "parts/Notification.h"

#include <cstddef>
#include <cstring>

#include "platform/Platform.h"

namespace {

/// The front end's title in code page 1252; 0xAE is the registered sign.
constexpr char kFrontEndTitle[] = "Orbo\xAE Veltra Kore";

constexpr std::uintptr_t kProgressRecord = 82;
constexpr std::uintptr_t kVersionRecord = 42;
constexpr std::uintptr_t kRestartRecord = 102;

struct TextField {
  char text[260];
};

struct ProgressRecord {
  TextField name;
  TextField phase;
  std::int32_t percent;
};
static_assert(sizeof(ProgressRecord) == 524 && offsetof(ProgressRecord, percent) == 520);

struct VersionRecord {
  TextField name;
  std::uint32_t current;
  std::uint32_t expected;
};
static_assert(sizeof(VersionRecord) == 268 && offsetof(VersionRecord, current) == 260);

struct RestartRecord {
  std::uint32_t cpuRestart;
  std::uint32_t boxPowerCycle;
};
static_assert(sizeof(RestartRecord) == 8);

/// The text cut to the field, terminated, and zeros behind it.
TextField Field(const char* text) {
  TextField field{};
  std::strncpy(field.text, text, sizeof field.text - 1);
  return field;
}

template <typename Record>
void Send(std::uintptr_t kind, const Record& record) {
  platform::FrontEnd& frontEnd = platform::Current().frontEnd();
  const platform::WindowHandle window = frontEnd.FindWindowA(nullptr, kFrontEndTitle);
  if (window == 0) return;
  frontEnd.SendMessageA(window, platform::kCopyDataMessage, 0, {kind, sizeof record, &record});
}

}  // namespace

void NotifyProgress(const char* name, const char* phase, std::int32_t percent) {
  Send(kProgressRecord, ProgressRecord{Field(name), Field(phase), percent});
}

void NotifyVersion(const char* name, std::uint32_t current, std::uint32_t expected) {
  Send(kVersionRecord, VersionRecord{Field(name), current, expected});
}

void NotifyRestart(std::uint32_t cpuRestart, std::uint32_t boxPowerCycle) {
  Send(kRestartRecord, RestartRecord{cpuRestart, boxPowerCycle});
}
