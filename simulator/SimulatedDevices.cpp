#include "simulator/SimulatedDevices.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>

#include "simulator/SystemErrors.h"

namespace simulator {
namespace {

/// Devices that are present, by device interface.
constexpr std::uint32_t kPresentInterfaces = 18;
constexpr std::uint32_t kInterfaceActive = 1;
constexpr std::uint32_t kOpenExisting = 3;
constexpr std::uint32_t kScopeGlobal = 1;
constexpr std::uint32_t kDeviceKey = 1;
constexpr std::uint32_t kDriverKey = 2;
constexpr platform::Handle kHandleStep = 4;

}  // namespace

void SimulatedDevices::Add(const platform::Guid& interfaceClass, std::string path, SimulatedDevice& device) {
  entries_.push_back({interfaceClass, std::move(path), &device});
}

std::size_t SimulatedDevices::OpenHandles(HandleKind kind) const {
  return static_cast<std::size_t>(
      std::count_if(handles_.begin(), handles_.end(), [&](const auto& open) { return open.second.kind == kind; }));
}

bool SimulatedDevices::Fail(std::uint32_t code) {
  lastError_ = code;
  return false;
}

const SimulatedDevices::OpenHandle* SimulatedDevices::Find(platform::Handle handle, HandleKind kind) const {
  const auto at = handles_.find(handle);
  return at != handles_.end() && at->second.kind == kind ? &at->second : nullptr;
}

platform::Handle SimulatedDevices::New(const OpenHandle& handle) {
  const platform::Handle value = nextHandle_;
  nextHandle_ += kHandleStep;
  handles_.emplace(value, handle);
  return value;
}

bool SimulatedDevices::Close(platform::Handle handle, std::initializer_list<HandleKind> kinds) {
  for (const HandleKind kind : kinds)
    if (Find(handle, kind) != nullptr) return handles_.erase(handle) == 1;
  return Fail(kErrorInvalidHandle);
}

std::uint32_t SimulatedDevices::PlaceOf(const platform::Guid& interfaceClass, std::uint32_t index) const {
  for (std::uint32_t place = 0; place < entries_.size(); ++place)
    if (entries_[place].interfaceClass == interfaceClass && index-- == 0) return place + 1;
  return 0;
}

platform::Handle SimulatedDevices::SetupDiGetClassDevsA(const platform::Guid& interfaceClass, std::uint32_t flags) {
  if (flags != kPresentInterfaces) {
    Fail(kErrorInvalidFlags);
    return platform::kInvalidHandle;
  }
  return New({.kind = HandleKind::kDeviceSet, .interfaceClass = interfaceClass});
}

bool SimulatedDevices::SetupDiEnumDeviceInterfaces(platform::Handle set, const platform::Guid& interfaceClass,
                                                   std::uint32_t index, platform::InterfaceData& data) {
  const OpenHandle* const open = Find(set, HandleKind::kDeviceSet);
  if (open == nullptr) return Fail(kErrorInvalidHandle);
  if (data.size != platform::kInterfaceDataSize) return Fail(kErrorInvalidUserBuffer);
  const std::uint32_t place = open->interfaceClass == interfaceClass ? PlaceOf(interfaceClass, index) : 0;
  if (place == 0) return Fail(kErrorNoMoreItems);
  data.interfaceClass = interfaceClass;
  data.flags = kInterfaceActive;
  data.reserved = place;
  return true;
}

bool SimulatedDevices::SetupDiGetDeviceInterfaceDetailA(platform::Handle set, platform::InterfaceData& data,
                                                        platform::InterfaceDetail* detail, std::uint32_t detailSize,
                                                        std::uint32_t* requiredSize) {
  if (Find(set, HandleKind::kDeviceSet) == nullptr) return Fail(kErrorInvalidHandle);
  if (data.size != platform::kInterfaceDataSize || data.reserved == 0 || data.reserved > entries_.size())
    return Fail(kErrorInvalidParameter);
  const std::string& path = entries_[data.reserved - 1].path;
  const auto required = static_cast<std::uint32_t>(offsetof(platform::InterfaceDetail, path) + path.size() + 1);
  if (detail == nullptr ? detailSize != 0 : detailSize < platform::kInterfaceDetailSize)
    return Fail(kErrorInvalidUserBuffer);
  if (requiredSize != nullptr) *requiredSize = required;
  if (detailSize < required) return Fail(kErrorInsufficientBuffer);
  if (detail->size != platform::kInterfaceDetailSize) return Fail(kErrorInvalidUserBuffer);
  auto* const bytes = reinterpret_cast<char*>(detail);
  std::memcpy(bytes + offsetof(platform::InterfaceDetail, path), path.c_str(), path.size() + 1);
  return true;
}

bool SimulatedDevices::SetupDiEnumDeviceInfo(platform::Handle set, std::uint32_t index, platform::DeviceInfo& info) {
  const OpenHandle* const open = Find(set, HandleKind::kDeviceSet);
  if (open == nullptr) return Fail(kErrorInvalidHandle);
  if (info.size != platform::kDeviceInfoSize) return Fail(kErrorInvalidUserBuffer);
  const std::uint32_t place = PlaceOf(open->interfaceClass, index);
  if (place == 0) return Fail(kErrorNoMoreItems);
  info.setupClass = open->interfaceClass;
  info.instance = place;
  info.reserved = place;
  return true;
}

platform::Handle SimulatedDevices::SetupDiOpenDevRegKey(platform::Handle set, platform::DeviceInfo& info,
                                                        std::uint32_t scope, std::uint32_t hardwareProfile,
                                                        std::uint32_t keyType, std::uint32_t access) {
  std::uint32_t error = kErrorSuccess;
  if (Find(set, HandleKind::kDeviceSet) == nullptr)
    error = kErrorInvalidHandle;
  else if (info.size != platform::kDeviceInfoSize || info.reserved == 0 || info.reserved > entries_.size())
    error = kErrorInvalidParameter;
  else if (scope != kScopeGlobal || hardwareProfile != 0 || (keyType != kDeviceKey && keyType != kDriverKey) ||
           access == 0)
    error = kErrorInvalidFlags;
  if (error != kErrorSuccess) {
    Fail(error);
    return platform::kInvalidHandle;
  }
  return New({.kind = HandleKind::kRegistryKey});
}

bool SimulatedDevices::SetupDiDestroyDeviceInfoList(platform::Handle set) {
  return Close(set, {HandleKind::kDeviceSet});
}

platform::Handle SimulatedDevices::CreateFileA(const char* path, std::uint32_t access, std::uint32_t,
                                               std::uint32_t creation, std::uint32_t) {
  const auto entry = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& candidate) { return path != nullptr && candidate.path == path; });
  if (entry == entries_.end() || creation != kOpenExisting || access == 0) {
    Fail(entry == entries_.end() ? kErrorFileNotFound : kErrorInvalidParameter);
    return platform::kInvalidHandle;
  }
  return New({.kind = HandleKind::kDevice, .device = entry->device});
}

bool SimulatedDevices::CloseHandle(platform::Handle handle) {
  return Close(handle, {HandleKind::kDevice, HandleKind::kEvent});
}

bool SimulatedDevices::RegCloseKey(platform::Handle key) {
  return Close(key, {HandleKind::kRegistryKey});
}

bool SimulatedDevices::DeviceIoControl(platform::Handle device, std::uint32_t code, const void* in,
                                       std::uint32_t inLength, void* out, std::uint32_t outLength,
                                       std::uint32_t& returned, platform::Handle event) {
  const OpenHandle* const open = Find(device, HandleKind::kDevice);
  if (open == nullptr || (event != 0 && Find(event, HandleKind::kEvent) == nullptr)) return Fail(kErrorInvalidHandle);
  if ((in == nullptr && inLength != 0) || (out == nullptr && outLength != 0)) return Fail(kErrorNoAccess);
  const std::uint32_t error = open->device->Control(code, {static_cast<const std::uint8_t*>(in), inLength},
                                                    {static_cast<std::uint8_t*>(out), outLength}, returned);
  return error == kErrorSuccess || Fail(error);
}

platform::Handle SimulatedDevices::CreateEventA(bool, bool) {
  return New({.kind = HandleKind::kEvent});
}

std::string SimulatedDevices::FormatMessageA(std::uint32_t code) {
  return SystemErrorText(code);
}

platform::RegisterTrap* SimulatedDevices::TrapAt(std::uint64_t address) {
  for (const Entry& entry : entries_)
    if (platform::RegisterTrap* trap = entry.device->TrapAt(address)) return trap;
  return nullptr;
}

}  // namespace simulator
