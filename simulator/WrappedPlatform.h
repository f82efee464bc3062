#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platform/Platform.h"

namespace simulator {

/// A clock that hands every question on to another. The base of clocks that do something beside.
class WrappedClock : public platform::Clock {
 public:
  explicit WrappedClock(platform::Clock& inner) : inner_(inner) {}

  bool QueryPerformanceCounter(std::int64_t& ticks) override { return inner_.QueryPerformanceCounter(ticks); }
  bool QueryPerformanceFrequency(std::int64_t& ticksPerSecond) override {
    return inner_.QueryPerformanceFrequency(ticksPerSecond);
  }
  std::uint32_t GetTickCount() override { return inner_.GetTickCount(); }
  void Sleep(std::uint32_t milliseconds) override { inner_.Sleep(milliseconds); }
  std::uint32_t timeBeginPeriod(std::uint32_t milliseconds) override { return inner_.timeBeginPeriod(milliseconds); }
  std::uint32_t timeEndPeriod(std::uint32_t milliseconds) override { return inner_.timeEndPeriod(milliseconds); }
  std::uint32_t timeGetTime() override { return inner_.timeGetTime(); }
  std::int64_t PresentTime() override { return inner_.PresentTime(); }

 private:
  platform::Clock& inner_;
};

/// Devices that hand everything on to others, register accesses too. A wrapper overrides what it is about, and calls
/// this class's operation to go on:
///
///     void WriteRegister(std::uint64_t window, platform::RegisterTrap& inner, std::uint32_t offset,
///                        std::uint32_t value) override {
///       Count(window, offset);
///       inner.Write(offset, value);
///     }
class WrappedDevices : public platform::Devices {
 public:
  explicit WrappedDevices(platform::Devices& inner) : inner_(inner) {}
  WrappedDevices(const WrappedDevices&) = delete;
  WrappedDevices& operator=(const WrappedDevices&) = delete;

  platform::Handle SetupDiGetClassDevsA(const platform::Guid& interfaceClass, std::uint32_t flags) override;
  bool SetupDiEnumDeviceInterfaces(platform::Handle set, const platform::Guid& interfaceClass, std::uint32_t index,
                                   platform::InterfaceData& data) override;
  bool SetupDiGetDeviceInterfaceDetailA(platform::Handle set, platform::InterfaceData& data,
                                        platform::InterfaceDetail* detail, std::uint32_t detailSize,
                                        std::uint32_t* requiredSize) override;
  bool SetupDiEnumDeviceInfo(platform::Handle set, std::uint32_t index, platform::DeviceInfo& info) override;
  platform::Handle SetupDiOpenDevRegKey(platform::Handle set, platform::DeviceInfo& info, std::uint32_t scope,
                                        std::uint32_t hardwareProfile, std::uint32_t keyType,
                                        std::uint32_t access) override;
  bool SetupDiDestroyDeviceInfoList(platform::Handle set) override;
  platform::Handle CreateFileA(const char* path, std::uint32_t access, std::uint32_t share, std::uint32_t creation,
                               std::uint32_t attributes) override;
  bool CloseHandle(platform::Handle handle) override;
  bool RegCloseKey(platform::Handle key) override;
  bool DeviceIoControl(platform::Handle device, std::uint32_t code, const void* in, std::uint32_t inLength, void* out,
                       std::uint32_t outLength, std::uint32_t& returned, platform::Handle event) override;
  platform::Handle CreateEventA(bool manualReset, bool initialState) override;
  /// The error of the last failed call, whether `Refuse` or the inner devices failed it.
  std::uint32_t GetLastError() override;
  std::string FormatMessageA(std::uint32_t code) override;
  /// A trap that leads through `ReadRegister` and `WriteRegister`; it lives as long as this object.
  platform::RegisterTrap* TrapAt(std::uint64_t address) override;

 protected:
  /// One access to the window at address `window`, whose own trap is `inner`.
  virtual std::uint32_t ReadRegister(std::uint64_t window, platform::RegisterTrap& inner, std::uint32_t offset);
  virtual void WriteRegister(std::uint64_t window, platform::RegisterTrap& inner, std::uint32_t offset,
                             std::uint32_t value);

  /// Fails a call in place of the inner devices: `return Refuse(code);`
  bool Refuse(std::uint32_t error) {
    refusal_ = error;
    return false;
  }
  platform::Handle RefuseHandle(std::uint32_t error) {
    refusal_ = error;
    return platform::kInvalidHandle;
  }

 private:
  class Trap : public platform::RegisterTrap {
   public:
    Trap(WrappedDevices& owner, std::uint64_t window, platform::RegisterTrap& inner)
        : owner_(owner), window_(window), inner_(inner) {}
    std::uint32_t Read(std::uint32_t offset) override { return owner_.ReadRegister(window_, inner_, offset); }
    void Write(std::uint32_t offset, std::uint32_t value) override {
      owner_.WriteRegister(window_, inner_, offset, value);
    }

   private:
    WrappedDevices& owner_;
    std::uint64_t window_;
    platform::RegisterTrap& inner_;
  };

  /// A call that the inner devices failed has its error there.
  bool Passed(bool succeeded) {
    if (!succeeded) refusal_.reset();
    return succeeded;
  }
  platform::Handle Passed(platform::Handle handle) {
    if (handle == platform::kInvalidHandle) refusal_.reset();
    return handle;
  }

  platform::Devices& inner_;
  std::optional<std::uint32_t> refusal_;
  std::map<std::uint64_t, std::unique_ptr<Trap>> traps_;
};

/// A platform that hands everything on to another, which must outlive it. The base of the doors that stack:
/// `Recording(Faulty(Simulated))`. A wrapper overrides the services that it is about.
class WrappedPlatform : public platform::Platform {
 public:
  explicit WrappedPlatform(platform::Platform& inner) : inner_(inner) {}

  platform::Devices& devices() override { return inner_.devices(); }
  platform::Clock& clock() override { return inner_.clock(); }
  platform::FrontEnd& frontEnd() override { return inner_.frontEnd(); }
  platform::TextBlocks& textBlocks() override { return inner_.textBlocks(); }
  platform::Files& files() override { return inner_.files(); }

 private:
  platform::Platform& inner_;
};

}  // namespace simulator
