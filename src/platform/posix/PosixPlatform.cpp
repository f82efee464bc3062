#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>

#include "platform/EmbeddedBlocks.h"
#include "platform/Platform.h"

namespace platform {
namespace {

/// What the documented calls report where there is nothing to enumerate, no such file, no such handle.
constexpr std::uint32_t kErrorFileNotFound = 2;
constexpr std::uint32_t kErrorInvalidHandle = 6;
constexpr std::uint32_t kErrorNoMoreItems = 259;

/// A computer without the hardware: sets of devices can be made, and are empty.
class NoDevices : public Devices {
 public:
  Handle SetupDiGetClassDevsA(const Guid&, std::uint32_t) override { return kEmptySet; }
  bool SetupDiEnumDeviceInterfaces(Handle, const Guid&, std::uint32_t, InterfaceData&) override {
    return Fail(kErrorNoMoreItems);
  }
  bool SetupDiGetDeviceInterfaceDetailA(Handle, InterfaceData&, InterfaceDetail*, std::uint32_t,
                                        std::uint32_t*) override {
    return Fail(kErrorNoMoreItems);
  }
  bool SetupDiEnumDeviceInfo(Handle, std::uint32_t, DeviceInfo&) override { return Fail(kErrorNoMoreItems); }
  Handle SetupDiOpenDevRegKey(Handle, DeviceInfo&, std::uint32_t, std::uint32_t, std::uint32_t,
                              std::uint32_t) override {
    Fail(kErrorFileNotFound);
    return kInvalidHandle;
  }
  bool SetupDiDestroyDeviceInfoList(Handle set) override { return set == kEmptySet || Fail(kErrorInvalidHandle); }
  Handle CreateFileA(const char*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) override {
    Fail(kErrorFileNotFound);
    return kInvalidHandle;
  }
  bool CloseHandle(Handle) override { return Fail(kErrorInvalidHandle); }
  bool RegCloseKey(Handle) override { return Fail(kErrorInvalidHandle); }
  bool DeviceIoControl(Handle, std::uint32_t, const void*, std::uint32_t, void*, std::uint32_t, std::uint32_t&,
                       Handle) override {
    return Fail(kErrorInvalidHandle);
  }
  Handle CreateEventA(bool, bool) override { return 0; }
  std::uint32_t GetLastError() override { return lastError_; }
  std::string FormatMessageA(std::uint32_t) override { return {}; }
  RegisterTrap* TrapAt(std::uint64_t) override { return nullptr; }

 private:
  static constexpr Handle kEmptySet = 1;

  bool Fail(std::uint32_t code) {
    lastError_ = code;
    return false;
  }

  std::uint32_t lastError_ = 0;
};

class PosixClock : public Clock {
 public:
  bool QueryPerformanceCounter(std::int64_t& ticks) override {
    ticks = Nanoseconds() / kNanosecondsPerTick;
    return true;
  }
  bool QueryPerformanceFrequency(std::int64_t& ticksPerSecond) override {
    ticksPerSecond = kNanosecondsPerSecond / kNanosecondsPerTick;
    return true;
  }
  std::uint32_t GetTickCount() override { return static_cast<std::uint32_t>(Nanoseconds() / 1'000'000); }
  void Sleep(std::uint32_t milliseconds) override {
    timespec left{static_cast<time_t>(milliseconds / 1000), static_cast<long>(milliseconds % 1000) * 1'000'000};
    while (nanosleep(&left, &left) != 0) {
    }
  }
  std::uint32_t timeBeginPeriod(std::uint32_t) override { return 0; }
  std::uint32_t timeEndPeriod(std::uint32_t) override { return 0; }
  std::uint32_t timeGetTime() override { return GetTickCount(); }
  std::int64_t PresentTime() override { return time(nullptr); }

 private:
  static constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
  /// 10 MHz, the frequency that the other systems' counters have, so that roundings are the same everywhere.
  static constexpr std::int64_t kNanosecondsPerTick = 100;

  static std::int64_t Nanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::int64_t>(now.tv_sec) * kNanosecondsPerSecond + now.tv_nsec;
  }
};

class NoFrontEnd : public FrontEnd {
 public:
  WindowHandle FindWindowA(const char*, const char*) override { return 0; }
  std::intptr_t SendMessageA(WindowHandle, std::uint32_t, std::uintptr_t, const CopyData&) override { return 0; }
};

/// The blocks that the build put into the program.
class EmbeddedTextBlocks : public TextBlocks {
 public:
  std::vector<std::string> List(std::string_view type) override {
    std::vector<std::string> names;
    for (const EmbeddedBlock& block : EmbeddedBlocks())
      if (block.type == type) names.emplace_back(block.name);
    return names;
  }
  std::optional<std::string_view> Bytes(std::string_view type, std::string_view name) override {
    for (const EmbeddedBlock& block : EmbeddedBlocks())
      if (block.type == type && block.name == name) return block.bytes;
    return std::nullopt;
  }
};

class PosixFiles : public Files {
 public:
  std::optional<std::vector<DirectoryEntry>> ListDirectory(const std::string& directory) override {
    DIR* stream = opendir(directory.c_str());
    if (stream == nullptr) return std::nullopt;
    std::vector<DirectoryEntry> entries;
    while (const dirent* entry = readdir(stream)) {
      const std::string name = entry->d_name;
      if (name == "." || name == "..") continue;
      struct stat status {};
      const bool isDirectory = stat((directory + "/" + name).c_str(), &status) == 0 && S_ISDIR(status.st_mode);
      entries.push_back({name, isDirectory});
    }
    closedir(stream);
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    return entries;
  }

  std::optional<std::string> GetEnvironmentVariableA(const char* name) override {
    const char* value = getenv(name);
    if (value == nullptr) return std::nullopt;
    return value;
  }
};

class PosixPlatform : public Platform {
 public:
  Devices& devices() override { return devices_; }
  Clock& clock() override { return clock_; }
  FrontEnd& frontEnd() override { return frontEnd_; }
  TextBlocks& textBlocks() override { return textBlocks_; }
  Files& files() override { return files_; }

 private:
  NoDevices devices_;
  PosixClock clock_;
  NoFrontEnd frontEnd_;
  EmbeddedTextBlocks textBlocks_;
  PosixFiles files_;
};

}  // namespace

Platform& Native() {
  static PosixPlatform platform;
  return platform;
}

}  // namespace platform
