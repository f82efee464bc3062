#include "board/DeviceDiscovery.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <memory>
#include <new>
#include <utility>

#include "board/DriverRecords.h"
#include "errorException.h"
#include "platform/Platform.h"

namespace {

using platform::Devices;
using platform::Handle;

constexpr std::uint32_t kPresentDeviceInterfaces = 18;  // DIGCF_PRESENT | DIGCF_DEVICEINTERFACE
constexpr std::uint32_t kReadWriteAccess = 0xC0000000;
constexpr std::uint32_t kShareReadWrite = 3;
constexpr std::uint32_t kOpenExisting = 3;
constexpr std::uint32_t kNormalAttributes = 128;
constexpr std::uint32_t kGlobalScope = 1;
constexpr std::uint32_t kDriverKeyType = 2;
constexpr std::uint32_t kDeviceKeyType = 1;
constexpr std::uint32_t kKeyReadWrite = 0x2001F;

/// More than the record of the longest path that a system has. A size beyond it is damaged.
constexpr std::uint32_t kLargestDetailBytes = 0x10000;

/// What a driver that does not touch its answer's length leaves there.
constexpr std::uint32_t kNothingReturned = 99999;

Devices& TheDevices() {
  return platform::Current().devices();
}

void ReportLastError(const char* message) {
  TheDevices().GetLastError();
  std::printf("%s\n", message);
  // Read again on purpose: what is shown is the code that stands after the message went out.
  const std::uint32_t code = TheDevices().GetLastError();
  if (code == 0) return;
  std::printf("\t%08" PRIx32 "\t%s\n", code, TheDevices().FormatMessageA(code).c_str());
}

/// A set of devices that is given back when it goes.
class DeviceSet {
 public:
  explicit DeviceSet(const platform::Guid& guid)
      : set_(TheDevices().SetupDiGetClassDevsA(guid, kPresentDeviceInterfaces)) {}
  ~DeviceSet() {
    if (IsValid()) TheDevices().SetupDiDestroyDeviceInfoList(set_);
  }
  DeviceSet(const DeviceSet&) = delete;
  DeviceSet& operator=(const DeviceSet&) = delete;

  bool IsValid() const { return set_ != platform::kInvalidHandle; }
  Handle get() const { return set_; }

 private:
  Handle set_;
};

enum class Search { kFound, kAbsent, kOutOfMemory, kNoDetail };

/// The path of a device, or why there is none.
struct DevicePath {
  Search outcome;
  std::unique_ptr<unsigned char[]> detail;

  const char* text() const { return reinterpret_cast<const platform::InterfaceDetail*>(detail.get())->path; }
};

DevicePath FindDevicePath(const DeviceSet& set, const platform::Guid& guid, std::uint32_t index) {
  if (!set.IsValid()) return {Search::kAbsent, nullptr};

  platform::InterfaceData data;
  data.size = platform::kInterfaceDataSize;
  if (!TheDevices().SetupDiEnumDeviceInterfaces(set.get(), guid, index, data)) return {Search::kAbsent, nullptr};

  // The first call has no buffer and fails, as it must: it is asked for the size alone.
  std::uint32_t needed = 0;
  TheDevices().SetupDiGetDeviceInterfaceDetailA(set.get(), data, nullptr, 0, &needed);
  if (needed > kLargestDetailBytes) return {Search::kOutOfMemory, nullptr};
  needed = std::max<std::uint32_t>(needed, sizeof(platform::InterfaceDetail));
  // One zero byte more than is told to anyone: the path ends inside the buffer, whatever the system writes.
  std::unique_ptr<unsigned char[]> buffer(new (std::nothrow) unsigned char[std::size_t{needed} + 1]());
  if (!buffer) return {Search::kOutOfMemory, nullptr};

  auto* detail = reinterpret_cast<platform::InterfaceDetail*>(buffer.get());
  detail->size = platform::kInterfaceDetailSize;
  if (!TheDevices().SetupDiGetDeviceInterfaceDetailA(set.get(), data, detail, needed, nullptr))
    return {Search::kNoDetail, nullptr};
  return {Search::kFound, std::move(buffer)};
}

Handle OpenPath(const char* path) {
  return TheDevices().CreateFileA(path, kReadWriteAccess, kShareReadWrite, kOpenExisting, kNormalAttributes);
}

/// The steps that opening a device and opening its registry key share, up to the device's own record.
HwcStatus FindMorvak(const DeviceSet& set, const DevicePath& path, std::uint32_t index, platform::DeviceInfo& info) {
  if (path.outcome == Search::kOutOfMemory) return kHWCerr_OutOfMemory;
  if (path.outcome != Search::kFound) return kHWCerr_DeviceIoError;
  info.size = platform::kDeviceInfoSize;
  if (!TheDevices().SetupDiEnumDeviceInfo(set.get(), index, info)) return kHWCerr_DeviceIoError;
  return kHWCerr_None;
}

}  // namespace

platform::Handle OpenDeviceViaGuid(const platform::Guid& guid, std::uint32_t index) {
  const DeviceSet set(guid);
  const DevicePath path = FindDevicePath(set, guid, index);
  switch (path.outcome) {
    case Search::kFound:
      return OpenPath(path.text());
    case Search::kOutOfMemory:
      ReportLastError("OpenDeviceViaGuid(): can't malloc");
      return 0;
    case Search::kNoDetail:
      ReportLastError("OpenDeviceViaGuid(): can't get device interface detail");
      return 0;
    case Search::kAbsent:
      break;
  }
  return 0;
}

HwcStatus OpenMorvakDevice(DeviceKind kind, std::uint32_t index, platform::Handle& handleOut) {
  const platform::Guid* guid = nullptr;
  switch (kind) {
    case DeviceKind::kBelmara:
      guid = &GUID_BelmaraDevice;
      break;
    case DeviceKind::kDovu:
      guid = &GUID_DovuDevice;
      break;
    case DeviceKind::kMorvak:
      guid = &GUID_MorvakDevice;
      break;
  }
  if (guid == nullptr) return kHWCerr_BadArgument;

  const DeviceSet set(*guid);
  const DevicePath path = FindDevicePath(set, *guid, index);
  platform::DeviceInfo info;
  const HwcStatus status = FindMorvak(set, path, index, info);
  if (status != kHWCerr_None) return status;
  const platform::Handle handle = OpenPath(path.text());
  if (handle == platform::kInvalidHandle) return kHWCerr_DeviceIoError;
  handleOut = handle;
  return kHWCerr_None;
}

HwcStatus OpenMorvakRegKey(std::uint32_t index, RegKeyKind kind, platform::Handle& keyOut) {
  if (kind != RegKeyKind::kDriver && kind != RegKeyKind::kDevice) return kHWCerr_BadArgument;

  const DeviceSet set(GUID_MorvakDevice);
  const DevicePath path = FindDevicePath(set, GUID_MorvakDevice, index);
  platform::DeviceInfo info;
  const HwcStatus status = FindMorvak(set, path, index, info);
  if (status != kHWCerr_None) return status;
  const std::uint32_t keyType = kind == RegKeyKind::kDriver ? kDriverKeyType : kDeviceKeyType;
  const Handle key = TheDevices().SetupDiOpenDevRegKey(set.get(), info, kGlobalScope, 0, keyType, kKeyReadWrite);
  if (key == platform::kInvalidHandle) return kHWCerr_DeviceIoError;
  keyOut = key;
  return kHWCerr_None;
}

HwcStatus CloseMorvakRegKey(platform::Handle key) {
  if (key == 0) return kHWCerr_BadHandle;
  TheDevices().RegCloseKey(key);
  return kHWCerr_None;
}

HwcStatus CloseMorvakDevice(platform::Handle handle) {
  if (handle == 0) return kHWCerr_BadHandle;
  return TheDevices().CloseHandle(handle) ? kHWCerr_None : kHWCerr_DeviceIoError;
}

HwcStatus MorvakIoControl(platform::Handle handle, std::uint32_t code, const void* in, std::uint32_t inLength,
                          void* out, std::uint32_t outLength, std::uint32_t& returned) {
  std::uint32_t bytesReturned = kNothingReturned;
  const bool succeeded = TheDevices().DeviceIoControl(handle, code, in, inLength, out, outLength, bytesReturned, 0);
  returned = bytesReturned;
  return succeeded ? kHWCerr_None : kHWCerr_DeviceIoError;
}

platform::RegisterWindow MapBoardRegisters(platform::Handle handle) {
  Devices& devices = TheDevices();
  // The event lives as long as the process. Nobody waits on it: the handle is not an overlapped one.
  const Handle event = devices.CreateEventA(true, false);

  SegmentMap map{};
  std::uint32_t returned = 0;
  if (!devices.DeviceIoControl(handle, IOCTL_GetBoardMemoryMap, nullptr, 0, &map, sizeof map, returned, event)) {
    devices.CloseHandle(handle);
    throw errorException("can't fetch board memory map");
  }
  if (returned != sizeof map) {
    devices.CloseHandle(handle);
    throw errorException("bad return from fetching memory map");
  }

  const MapRegsIn request{0, map.registerWindowSize};
  MapRegsOut result{};
  returned = 0;
  if (!devices.DeviceIoControl(handle, IOCTL_MapMemory, &request, sizeof request, &result, sizeof result, returned,
                               event)) {
    devices.CloseHandle(handle);
    throw errorException("can't map registers");
  }
  if (returned != sizeof result) {
    devices.CloseHandle(handle);
    throw errorException("bad return from mapping");
  }
  // The driver's sign for a mapping that failed is a zero in the low half of either value.
  if (static_cast<std::uint32_t>(result.address) == 0 || static_cast<std::uint32_t>(result.second) == 0) {
    devices.CloseHandle(handle);
    throw errorException("couldn't map registers");
  }
  return platform::RegisterWindow(result.address, devices.TrapAt(result.address));
}
