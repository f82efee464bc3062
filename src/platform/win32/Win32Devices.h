#pragma once

#include "platform/Devices.h"

namespace platform {

/// The system's own set-up, file and control calls.
class Win32Devices : public Devices {
 public:
  Handle SetupDiGetClassDevsA(const Guid& interfaceClass, std::uint32_t flags) override;
  bool SetupDiEnumDeviceInterfaces(Handle set, const Guid& interfaceClass, std::uint32_t index,
                                   InterfaceData& data) override;
  bool SetupDiGetDeviceInterfaceDetailA(Handle set, InterfaceData& data, InterfaceDetail* detail,
                                        std::uint32_t detailSize, std::uint32_t* requiredSize) override;
  bool SetupDiEnumDeviceInfo(Handle set, std::uint32_t index, DeviceInfo& info) override;
  Handle SetupDiOpenDevRegKey(Handle set, DeviceInfo& info, std::uint32_t scope, std::uint32_t hardwareProfile,
                              std::uint32_t keyType, std::uint32_t access) override;
  bool SetupDiDestroyDeviceInfoList(Handle set) override;
  Handle CreateFileA(const char* path, std::uint32_t access, std::uint32_t share, std::uint32_t creation,
                     std::uint32_t attributes) override;
  bool CloseHandle(Handle handle) override;
  bool RegCloseKey(Handle key) override;
  bool DeviceIoControl(Handle device, std::uint32_t code, const void* in, std::uint32_t inLength, void* out,
                       std::uint32_t outLength, std::uint32_t& returned, Handle event) override;
  Handle CreateEventA(bool manualReset, bool initialState) override;
  std::uint32_t GetLastError() override;
  std::string FormatMessageA(std::uint32_t code) override;
  /// Mapped registers are memory here, always.
  RegisterTrap* TrapAt(std::uint64_t) override { return nullptr; }
};

}  // namespace platform
