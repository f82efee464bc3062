#include "platform/win32/Win32Devices.h"

// clang-format off
#include <windows.h>  // first: the other needs its types
#include <setupapi.h>
// clang-format on

#include <cstring>
#include <memory>

namespace platform {
namespace {

static_assert(sizeof(Guid) == sizeof(GUID));
static_assert(offsetof(InterfaceDetail, path) == offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_A, DevicePath));
static_assert(sizeof(Handle) == sizeof(HANDLE));

GUID ToSystem(const Guid& guid) {
  GUID result;
  std::memcpy(&result, &guid, sizeof result);
  return result;
}

Guid FromSystem(const GUID& guid) {
  Guid result;
  std::memcpy(&result, &guid, sizeof result);
  return result;
}

HANDLE ToSystem(Handle handle) {
  return reinterpret_cast<HANDLE>(handle);
}

Handle FromSystem(const void* handle) {
  return reinterpret_cast<Handle>(handle);
}

/// The size field that this system demands where the caller gave the named one. Any other is passed on, for the system
/// to refuse.
template <typename Record>
DWORD SizeField(std::uint32_t size, std::uint32_t named) {
  return size == named ? static_cast<DWORD>(sizeof(Record)) : size;
}

SP_DEVICE_INTERFACE_DATA ToSystem(const InterfaceData& data) {
  return {SizeField<SP_DEVICE_INTERFACE_DATA>(data.size, kInterfaceDataSize), ToSystem(data.interfaceClass), data.flags,
          data.reserved};
}

SP_DEVINFO_DATA ToSystem(const DeviceInfo& info) {
  return {SizeField<SP_DEVINFO_DATA>(info.size, kDeviceInfoSize), ToSystem(info.setupClass), info.instance,
          info.reserved};
}

}  // namespace

Handle Win32Devices::SetupDiGetClassDevsA(const Guid& interfaceClass, std::uint32_t flags) {
  const GUID guid = ToSystem(interfaceClass);
  return FromSystem(::SetupDiGetClassDevsA(&guid, nullptr, nullptr, flags));
}

bool Win32Devices::SetupDiEnumDeviceInterfaces(Handle set, const Guid& interfaceClass, std::uint32_t index,
                                               InterfaceData& data) {
  const GUID guid = ToSystem(interfaceClass);
  SP_DEVICE_INTERFACE_DATA record = ToSystem(data);
  if (::SetupDiEnumDeviceInterfaces(ToSystem(set), nullptr, &guid, index, &record) == FALSE) return false;
  data.interfaceClass = FromSystem(record.InterfaceClassGuid);
  data.flags = record.Flags;
  data.reserved = record.Reserved;
  return true;
}

bool Win32Devices::SetupDiGetDeviceInterfaceDetailA(Handle set, InterfaceData& data, InterfaceDetail* detail,
                                                    std::uint32_t detailSize, std::uint32_t* requiredSize) {
  SP_DEVICE_INTERFACE_DATA record = ToSystem(data);
  auto* const systemDetail = reinterpret_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_A*>(detail);
  if (systemDetail != nullptr)
    systemDetail->cbSize = SizeField<SP_DEVICE_INTERFACE_DETAIL_DATA_A>(detail->size, kInterfaceDetailSize);
  DWORD required = requiredSize != nullptr ? *requiredSize : 0;
  const BOOL succeeded =
      ::SetupDiGetDeviceInterfaceDetailA(ToSystem(set), &record, systemDetail, detailSize, &required, nullptr);
  if (requiredSize != nullptr) *requiredSize = required;
  return succeeded != FALSE;
}

bool Win32Devices::SetupDiEnumDeviceInfo(Handle set, std::uint32_t index, DeviceInfo& info) {
  SP_DEVINFO_DATA record = ToSystem(info);
  if (::SetupDiEnumDeviceInfo(ToSystem(set), index, &record) == FALSE) return false;
  info.setupClass = FromSystem(record.ClassGuid);
  info.instance = record.DevInst;
  info.reserved = record.Reserved;
  return true;
}

Handle Win32Devices::SetupDiOpenDevRegKey(Handle set, DeviceInfo& info, std::uint32_t scope,
                                          std::uint32_t hardwareProfile, std::uint32_t keyType, std::uint32_t access) {
  SP_DEVINFO_DATA record = ToSystem(info);
  return FromSystem(::SetupDiOpenDevRegKey(ToSystem(set), &record, scope, hardwareProfile, keyType, access));
}

bool Win32Devices::SetupDiDestroyDeviceInfoList(Handle set) {
  return ::SetupDiDestroyDeviceInfoList(ToSystem(set)) != FALSE;
}

Handle Win32Devices::CreateFileA(const char* path, std::uint32_t access, std::uint32_t share, std::uint32_t creation,
                                 std::uint32_t attributes) {
  return FromSystem(::CreateFileA(path, access, share, nullptr, creation, attributes, nullptr));
}

bool Win32Devices::CloseHandle(Handle handle) {
  return ::CloseHandle(ToSystem(handle)) != FALSE;
}

bool Win32Devices::RegCloseKey(Handle key) {
  const LSTATUS status = ::RegCloseKey(reinterpret_cast<HKEY>(key));
  ::SetLastError(static_cast<DWORD>(status));
  return status == ERROR_SUCCESS;
}

bool Win32Devices::DeviceIoControl(Handle device, std::uint32_t code, const void* in, std::uint32_t inLength, void* out,
                                   std::uint32_t outLength, std::uint32_t& returned, Handle event) {
  OVERLAPPED overlapped{};
  overlapped.hEvent = ToSystem(event);
  DWORD bytesReturned = returned;
  // The system's declaration wants to write to the request, which none of its transfer methods used here does.
  const BOOL succeeded = ::DeviceIoControl(ToSystem(device), code, const_cast<void*>(in), inLength, out, outLength,
                                           &bytesReturned, event != 0 ? &overlapped : nullptr);
  returned = bytesReturned;
  return succeeded != FALSE;
}

Handle Win32Devices::CreateEventA(bool manualReset, bool initialState) {
  return FromSystem(::CreateEventA(nullptr, manualReset ? TRUE : FALSE, initialState ? TRUE : FALSE, nullptr));
}

std::uint32_t Win32Devices::GetLastError() {
  return ::GetLastError();
}

std::string Win32Devices::FormatMessageA(std::uint32_t code) {
  // The system allocates the text, in the user's own language.
  constexpr DWORD kFlags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM;
  constexpr DWORD kLanguage = MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT);
  char* allocated = nullptr;
  const DWORD length =
      ::FormatMessageA(kFlags, nullptr, code, kLanguage, reinterpret_cast<char*>(&allocated), 0, nullptr);
  const auto release = [](char* text) { ::HeapFree(::GetProcessHeap(), 0, text); };
  const std::unique_ptr<char, decltype(release)> text(allocated);
  return length == 0 ? std::string() : std::string(text.get(), length);
}

}  // namespace platform
