#pragma once

#include <cstdint>

#include "board/HwcErr.h"
#include "platform/Devices.h"
#include "platform/RegisterWindow.h"

// Finding, opening and asking the devices of the two kernel drivers. Nothing above this file knows how a device is
// found. A device that is simply absent is no error and gives no message: most computers have one card only.
//
//     platform::Handle card = OpenDeviceViaGuid(GUID_BelmaraDevice, 0);
//     if (card != 0) platform::RegisterWindow registers = MapBoardRegisters(card);

/// What `OpenMorvakDevice` opens.
enum class DeviceKind : std::int32_t { kBelmara = 1, kDovu = 2, kMorvak = 3 };

/// Which registry key of a device `OpenMorvakRegKey` opens.
enum class RegKeyKind : std::int32_t { kDriver = 1, kDevice = 2 };

/// Opens the `index`-th present device of an interface class for reading and writing.
///
/// Returns a handle that the caller closes, or 0 when there is none. Says on standard output why when a device is there
/// but cannot be looked at. An open that fails gives `platform::kInvalidHandle`, which counts as an opened device: this
/// is meant, the first control call on it then tells the user what is wrong.
platform::Handle OpenDeviceViaGuid(const platform::Guid& guid, std::uint32_t index);

/// Opens the `index`-th device of a kind; the caller closes it with `CloseMorvakDevice`.
///
/// Returns 0, or `kHWCerr_BadArgument` without touching the system, `kHWCerr_OutOfMemory`, or `kHWCerr_DeviceIoError`
/// for everything else; `handleOut` is then unchanged. Prints nothing.
HwcStatus OpenMorvakDevice(DeviceKind kind, std::uint32_t index, platform::Handle& handleOut);

/// Opens a registry key of the `index`-th second-line device for reading and writing; the caller closes it with
/// `CloseMorvakRegKey`. Fails as `OpenMorvakDevice` does. (The order of the arguments differs on purpose.)
HwcStatus OpenMorvakRegKey(std::uint32_t index, RegKeyKind kind, platform::Handle& keyOut);

/// Returns `kHWCerr_BadHandle` for 0; else closes and returns 0, whatever the close reports.
HwcStatus CloseMorvakRegKey(platform::Handle key);

/// Returns `kHWCerr_BadHandle` for 0, `kHWCerr_DeviceIoError` when the close fails, else 0.
HwcStatus CloseMorvakDevice(platform::Handle handle);

/// Sends one control record. `returned` is the number of bytes that the driver says it answered, or 99999 from a driver
/// that says nothing, also after a failure. Returns 0 or `kHWCerr_DeviceIoError`.
HwcStatus MorvakIoControl(platform::Handle handle, std::uint32_t code, const void* in, std::uint32_t inLength,
                          void* out, std::uint32_t outLength, std::uint32_t& returned);

/// Maps a host card's registers into the process; the mapping ends with the handle.
///
/// Throws `errorException` when the driver refuses, answers short, or gives no usable address; the handle is closed
/// before. (Its owner closes it once more; the platform takes that.)
platform::RegisterWindow MapBoardRegisters(platform::Handle handle);
