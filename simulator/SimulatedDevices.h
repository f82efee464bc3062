#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/Devices.h"
#include "simulator/SimulatedDevice.h"

namespace simulator {

/// What a handle stands for.
enum class HandleKind { kDeviceSet, kDevice, kEvent, kRegistryKey };

/// The system's registry of devices, with the boards that are plugged in. Takes the set-up calls, openings and control
/// calls as the system would, with its error codes: size fields must hold the named constants, handles must be open and
/// of the right kind, an index behind the last device ends an enumeration. Handles are never used twice.
class SimulatedDevices : public platform::Devices {
 public:
  /// Plugs a board in behind those of its class that are there. `device` must outlive the registry.
  void Add(const platform::Guid& interfaceClass, std::string path, SimulatedDevice& device);
  /// How many handles of a kind are open.
  std::size_t OpenHandles(HandleKind kind) const;

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
  std::uint32_t GetLastError() override { return lastError_; }
  std::string FormatMessageA(std::uint32_t code) override;
  platform::RegisterTrap* TrapAt(std::uint64_t address) override;

 private:
  struct Entry {
    platform::Guid interfaceClass;
    std::string path;
    SimulatedDevice* device;
  };
  struct OpenHandle {
    HandleKind kind;
    platform::Guid interfaceClass{};    ///< of a set
    SimulatedDevice* device = nullptr;  ///< of a device
  };

  bool Fail(std::uint32_t code);
  const OpenHandle* Find(platform::Handle handle, HandleKind kind) const;
  platform::Handle New(const OpenHandle& handle);
  bool Close(platform::Handle handle, std::initializer_list<HandleKind> kinds);
  /// The `index`-th device of a class, counted from 0, as a place in `entries_` from 1 on; 0 for none.
  std::uint32_t PlaceOf(const platform::Guid& interfaceClass, std::uint32_t index) const;

  std::vector<Entry> entries_;
  std::map<platform::Handle, OpenHandle> handles_;
  platform::Handle nextHandle_ = 0x1C4;
  std::uint32_t lastError_ = 0;
};

}  // namespace simulator
