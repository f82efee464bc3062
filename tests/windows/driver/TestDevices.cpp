#include "TestDevices.h"

// clang-format off
#include <windows.h>  // first: the other needs its types
#include <setupapi.h>
// clang-format on

#include <algorithm>
#include <cstring>
#include <string>
#include <system_error>

#include "BoardIds.h"
#include "Configuration.h"

namespace benchdriver {
namespace {

/// Devices of no class of their own.
constexpr GUID kUnknownClass = {0x4D36E97E, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};

void Check(BOOL succeeded, const char* what) {
  if (succeeded == FALSE) throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

class DeviceSet {
 public:
  explicit DeviceSet(HDEVINFO set) : set_(set) { Check(set != INVALID_HANDLE_VALUE, "a set of devices"); }
  ~DeviceSet() { SetupDiDestroyDeviceInfoList(set_); }
  DeviceSet(const DeviceSet&) = delete;
  DeviceSet& operator=(const DeviceSet&) = delete;
  HDEVINFO get() const { return set_; }

 private:
  HDEVINFO set_;
};

GUID InterfaceClass(std::size_t board) {
  GUID guid;
  std::memcpy(&guid, &simulator::kBoards[board]->interfaceClass, sizeof guid);
  return guid;
}

std::wstring WideHardwareId(std::size_t board) {
  const std::u16string id = HardwareId(*simulator::kBoards[board]);
  return {id.begin(), id.end()};
}

std::wstring InstanceId(std::size_t board) {
  return WideHardwareId(board) + L"\\0000";
}

void SetProperty(HDEVINFO set, SP_DEVINFO_DATA& device, DWORD property, const std::wstring& text) {
  const auto* const bytes = reinterpret_cast<const BYTE*>(text.c_str());
  const auto sizeBytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
  Check(SetupDiSetDeviceRegistryPropertyW(set, &device, property, bytes, sizeBytes), "a device's property");
}

/// Makes the interface that a driver would make, without what it would put behind the name.
void MakeUnlinkedInterface(HDEVINFO set, SP_DEVINFO_DATA& device, std::size_t board) {
  const GUID guid = InterfaceClass(board);
  SP_DEVICE_INTERFACE_DATA data = {};
  data.cbSize = sizeof data;
  Check(SetupDiCreateDeviceInterfaceW(set, &device, &guid, nullptr, 0, &data), "a device interface");

  wchar_t guidText[39] = {};
  StringFromGUID2(guid, guidText, static_cast<int>(std::size(guidText)));
  std::wstring name = InstanceId(board);
  std::replace(name.begin(), name.end(), L'\\', L'#');
  const std::wstring key = L"System\\CurrentControlSet\\Control\\DeviceClasses\\" + std::wstring(guidText) + L"\\##?#" +
                           name + L"#" + guidText + L"\\#\\Control";
  // With this the system takes it for an interface that is switched on.
  const DWORD isLinked = 1;
  const LSTATUS status =
      RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), L"Linked", REG_DWORD, &isLinked, sizeof isLinked);
  if (status != ERROR_SUCCESS) throw std::system_error(status, std::system_category(), "a device interface");
}

}  // namespace

void MakeDevice(std::size_t board, Presence presence) {
  if (presence == Presence::kAbsent) return;
  const DeviceSet set(SetupDiCreateDeviceInfoList(&kUnknownClass, nullptr));
  SP_DEVINFO_DATA device = {};
  device.cbSize = sizeof device;
  Check(SetupDiCreateDeviceInfoW(set.get(), InstanceId(board).c_str(), &kUnknownClass, nullptr, nullptr, 0, &device),
        "a device");
  // A list of one string, with an empty one behind it.
  SetProperty(set.get(), device, SPDRP_HARDWAREID, WideHardwareId(board) + L'\0');
  if (presence == Presence::kServed) SetProperty(set.get(), device, SPDRP_SERVICE, kServiceName);
  Check(SetupDiCallClassInstaller(DIF_REGISTERDEVICE, set.get(), &device), "the device's registration");
  if (presence == Presence::kUnlinked) MakeUnlinkedInterface(set.get(), device, board);
}

void RemoveDevice(std::size_t board) {
  const DeviceSet set(SetupDiCreateDeviceInfoList(&kUnknownClass, nullptr));
  SP_DEVINFO_DATA device = {};
  device.cbSize = sizeof device;
  if (SetupDiOpenDeviceInfoW(set.get(), InstanceId(board).c_str(), nullptr, 0, &device) == FALSE) return;
  Check(SetupDiRemoveDevice(set.get(), &device), "the removal of a device");
}

bool IsFound(std::size_t board) {
  const GUID guid = InterfaceClass(board);
  const DeviceSet set(SetupDiGetClassDevsW(&guid, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE));
  SP_DEVICE_INTERFACE_DATA data = {};
  data.cbSize = sizeof data;
  return SetupDiEnumDeviceInterfaces(set.get(), nullptr, &guid, 0, &data) != FALSE;
}

}  // namespace benchdriver
