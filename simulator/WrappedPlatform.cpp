#include "simulator/WrappedPlatform.h"

namespace simulator {

platform::Handle WrappedDevices::SetupDiGetClassDevsA(const platform::Guid& interfaceClass, std::uint32_t flags) {
  return Passed(inner_.SetupDiGetClassDevsA(interfaceClass, flags));
}

bool WrappedDevices::SetupDiEnumDeviceInterfaces(platform::Handle set, const platform::Guid& interfaceClass,
                                                 std::uint32_t index, platform::InterfaceData& data) {
  return Passed(inner_.SetupDiEnumDeviceInterfaces(set, interfaceClass, index, data));
}

bool WrappedDevices::SetupDiGetDeviceInterfaceDetailA(platform::Handle set, platform::InterfaceData& data,
                                                      platform::InterfaceDetail* detail, std::uint32_t detailSize,
                                                      std::uint32_t* requiredSize) {
  return Passed(inner_.SetupDiGetDeviceInterfaceDetailA(set, data, detail, detailSize, requiredSize));
}

bool WrappedDevices::SetupDiEnumDeviceInfo(platform::Handle set, std::uint32_t index, platform::DeviceInfo& info) {
  return Passed(inner_.SetupDiEnumDeviceInfo(set, index, info));
}

platform::Handle WrappedDevices::SetupDiOpenDevRegKey(platform::Handle set, platform::DeviceInfo& info,
                                                      std::uint32_t scope, std::uint32_t hardwareProfile,
                                                      std::uint32_t keyType, std::uint32_t access) {
  return Passed(inner_.SetupDiOpenDevRegKey(set, info, scope, hardwareProfile, keyType, access));
}

bool WrappedDevices::SetupDiDestroyDeviceInfoList(platform::Handle set) {
  return Passed(inner_.SetupDiDestroyDeviceInfoList(set));
}

platform::Handle WrappedDevices::CreateFileA(const char* path, std::uint32_t access, std::uint32_t share,
                                             std::uint32_t creation, std::uint32_t attributes) {
  return Passed(inner_.CreateFileA(path, access, share, creation, attributes));
}

bool WrappedDevices::CloseHandle(platform::Handle handle) {
  return Passed(inner_.CloseHandle(handle));
}

bool WrappedDevices::RegCloseKey(platform::Handle key) {
  return Passed(inner_.RegCloseKey(key));
}

bool WrappedDevices::DeviceIoControl(platform::Handle device, std::uint32_t code, const void* in,
                                     std::uint32_t inLength, void* out, std::uint32_t outLength,
                                     std::uint32_t& returned, platform::Handle event) {
  return Passed(inner_.DeviceIoControl(device, code, in, inLength, out, outLength, returned, event));
}

platform::Handle WrappedDevices::CreateEventA(bool manualReset, bool initialState) {
  return inner_.CreateEventA(manualReset, initialState);
}

std::uint32_t WrappedDevices::GetLastError() {
  return refusal_ ? *refusal_ : inner_.GetLastError();
}

std::string WrappedDevices::FormatMessageA(std::uint32_t code) {
  return inner_.FormatMessageA(code);
}

platform::RegisterTrap* WrappedDevices::TrapAt(std::uint64_t address) {
  platform::RegisterTrap* const inner = inner_.TrapAt(address);
  if (inner == nullptr) return nullptr;
  std::unique_ptr<Trap>& trap = traps_[address];
  if (trap == nullptr) trap = std::make_unique<Trap>(*this, address, *inner);
  return trap.get();
}

std::uint32_t WrappedDevices::ReadRegister(std::uint64_t, platform::RegisterTrap& inner, std::uint32_t offset) {
  return inner.Read(offset);
}

void WrappedDevices::WriteRegister(std::uint64_t, platform::RegisterTrap& inner, std::uint32_t offset,
                                   std::uint32_t value) {
  inner.Write(offset, value);
}

}  // namespace simulator
