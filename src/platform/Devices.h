#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/RegisterWindow.h"

namespace platform {

/// An operating system handle: of a device, a device set, an event or a registry key. Pointer-sized.
using Handle = std::uintptr_t;

/// What a failed open or an invalid set is reported as: all bits set.
inline constexpr Handle kInvalidHandle = ~Handle{0};

/// A device interface class, in the field layout of the system's own identifier.
struct Guid {
  std::uint32_t data1;
  std::uint16_t data2;
  std::uint16_t data3;
  std::uint8_t data4[8];

  friend bool operator==(const Guid&, const Guid&) = default;
};

/// Size fields that a caller sets before a set-up call. They are the documented values of the 32-bit system; a back end
/// whose system demands others puts those in itself, since the records stay inside the process.
inline constexpr std::uint32_t kInterfaceDataSize = 28;
inline constexpr std::uint32_t kInterfaceDetailSize = 5;
inline constexpr std::uint32_t kDeviceInfoSize = 28;

/// One enumerated device interface. The caller sets `size`; the rest belongs to the back end.
struct InterfaceData {
  std::uint32_t size = 0;
  Guid interfaceClass{};
  std::uint32_t flags = 0;
  std::uintptr_t reserved = 0;
};

/// Head of the variable-length record that names a device's path. The path's text follows `size` at once, terminated.
struct InterfaceDetail {
  std::uint32_t size;
  char path[1];
};

/// One enumerated device. The caller sets `size`; the rest belongs to the back end.
struct DeviceInfo {
  std::uint32_t size = 0;
  Guid setupClass{};
  std::uint32_t instance = 0;
  std::uintptr_t reserved = 0;
};

/// The door to kernel drivers. Every operation bears the name, the arguments that vary and the meaning of the system
/// call of that name; what a failed one reports is in `GetLastError`.
///
///     Handle set = devices.SetupDiGetClassDevsA(guid, 18);
///     InterfaceData data{.size = kInterfaceDataSize};
///     if (devices.SetupDiEnumDeviceInterfaces(set, guid, 0, data)) ...
class Devices {
 public:
  virtual ~Devices() = default;

  /// Returns a set that the caller destroys, or `kInvalidHandle`.
  virtual Handle SetupDiGetClassDevsA(const Guid& interfaceClass, std::uint32_t flags) = 0;
  virtual bool SetupDiEnumDeviceInterfaces(Handle set, const Guid& interfaceClass, std::uint32_t index,
                                           InterfaceData& data) = 0;
  /// With a null `detail`, fails but reports the size that the record needs; else fills at most `detailSize` bytes.
  virtual bool SetupDiGetDeviceInterfaceDetailA(Handle set, InterfaceData& data, InterfaceDetail* detail,
                                                std::uint32_t detailSize, std::uint32_t* requiredSize) = 0;
  virtual bool SetupDiEnumDeviceInfo(Handle set, std::uint32_t index, DeviceInfo& info) = 0;
  /// Returns a key that the caller closes with `RegCloseKey`, or `kInvalidHandle`.
  virtual Handle SetupDiOpenDevRegKey(Handle set, DeviceInfo& info, std::uint32_t scope, std::uint32_t hardwareProfile,
                                      std::uint32_t keyType, std::uint32_t access) = 0;
  virtual bool SetupDiDestroyDeviceInfoList(Handle set) = 0;

  /// Returns a handle that the caller closes with `CloseHandle`, or `kInvalidHandle`.
  virtual Handle CreateFileA(const char* path, std::uint32_t access, std::uint32_t share, std::uint32_t creation,
                             std::uint32_t attributes) = 0;
  /// Returns false, and does nothing else, for a handle that is not open: closing one twice is harmless.
  virtual bool CloseHandle(Handle handle) = 0;
  virtual bool RegCloseKey(Handle key) = 0;
  /// Sends one record to a driver and takes its answer. `event` is the event of an OVERLAPPED record with zero offsets,
  /// or 0 for a call without one. `returned` is left alone by a driver that does not answer.
  virtual bool DeviceIoControl(Handle device, std::uint32_t code, const void* in, std::uint32_t inLength, void* out,
                               std::uint32_t outLength, std::uint32_t& returned, Handle event) = 0;
  virtual Handle CreateEventA(bool manualReset, bool initialState) = 0;

  virtual std::uint32_t GetLastError() = 0;
  /// The system's text for an error code, or an empty one when it has none. (The buffer that the system allocates for
  /// it and its release are the back end's business.)
  virtual std::string FormatMessageA(std::uint32_t code) = 0;

  /// The trap of the simulated register window at `address`, or null when that is memory to be accessed as it is.
  virtual RegisterTrap* TrapAt(std::uint64_t address) = 0;
};

}  // namespace platform
