#pragma once

#include <cstdint>

// What a graphical front end is told while the installer runs. The front end is looked up anew for every record;
// without one nothing happens, and nothing that goes wrong here is reported. Sending waits for the receiver.
//
// All records are little-endian; text fields have 260 bytes and are cut to 259 characters and a terminator.

/// Record 82, 524 bytes: part name at 0, phase at 260, percent at 520. `percent` may exceed 100.
void NotifyProgress(const char* name, const char* phase, std::int32_t percent);

/// Record 42, 268 bytes: part name at 0, version on the part at 260, version that this installer ships at 264.
void NotifyVersion(const char* name, std::uint32_t current, std::uint32_t expected);

/// Record 102, 8 bytes: whether the computer must be restarted, and whether the box must be power-cycled; 1 or 0.
void NotifyRestart(std::uint32_t cpuRestart, std::uint32_t boxPowerCycle);
