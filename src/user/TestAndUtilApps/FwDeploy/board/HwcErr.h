#pragma once

#include <cstdint>

/// Status words of the board layer; 0 is success. Callers of the command operations only ever see the time-out: the
/// others stay inside the board layer or become exceptions.
enum HwcStatus : std::uint32_t {
  kHWCerr_None = 0,
  kHWCerr_CommandTimeout = 0x8A030012,  ///< no reply arrived within the time-out
  kHWCerr_OutOfMemory = 0x8A030025,     ///< memory allocation failed in device discovery
  kHWCerr_DeviceIoError = 0x8A030026,   ///< discovery, control call or close failed
  kHWCerr_BadHandle = 0x8A030031,       ///< a null handle was given
  kHWCerr_BadArgument = 0x8A030034,     ///< an unknown device kind was given
  kHWCerr_NoDevice = 0x8A030046,        ///< the transport is not open
  kHWCerr_BobCommsError = 0x8A03028E,   ///< the FIFO protocol broke down
};
