#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "support/PlatformDouble.h"
#include "support/StrictDevices.h"

/// What the drivers are asked, from the look for a device to the map of its registers, for tests whose subject comes
/// after that. All of it succeeds unless the name says otherwise.
///
///     devices.Expect(driver_scripts::OpensCard(kBelmara, 0x11));
///     devices.Expect(driver_scripts::MapsRegisters(0x11, "10 20 00 40 00 00 00 00", registers));
namespace driver_scripts {

using test_support::Answers;
using test_support::DeviceScript;
using test_support::Fails;
using test_support::Gives;
using test_support::GivesPath;
using test_support::Needs;
using test_support::Succeeds;
using test_support::TrapIs;

inline const std::string kBelmara = "{65703B92-7B12-41B3-9B07-9B131BAA364B}";
inline const std::string kDovu = "{02201D82-4779-40DE-BBD8-F14D9EF4D83E}";
inline const std::string kMorvak = "{5519CF2B-F6FC-4A48-9651-73DB09CF5091}";

inline std::string HexText(std::uint64_t value) {
  char text[24];
  std::snprintf(text, sizeof text, "%#llx", static_cast<unsigned long long>(value));
  return text;
}

/// A set is made, and it has no such device.
inline DeviceScript IsAbsent(const std::string& guid) {
  return {{"SetupDiGetClassDevsA " + guid + " flags 18", Gives(0x51)},
          {"SetupDiEnumDeviceInterfaces 0x51 " + guid + " index 0 size 28", Fails()},
          {"SetupDiDestroyDeviceInfoList 0x51", Succeeds()}};
}

/// The first device of the class has the path "\\?\x".
inline DeviceScript FindsPath(const std::string& guid, std::uint32_t index = 0) {
  return {{"SetupDiGetClassDevsA " + guid + " flags 18", Gives(0x51)},
          {"SetupDiEnumDeviceInterfaces 0x51 " + guid + " index " + std::to_string(index) + " size 28", Succeeds()},
          {"SetupDiGetDeviceInterfaceDetailA 0x51 room 0", Needs(10)},
          {"SetupDiGetDeviceInterfaceDetailA 0x51 room 10 size 5", GivesPath(std::string("\\\\?\\x\0", 6))}};
}

inline DeviceScript OpensPath(std::uint64_t handle) {
  return {{"CreateFileA \\\\?\\x access 0xc0000000 share 3 creation 3 attributes 128", Gives(handle)},
          {"SetupDiDestroyDeviceInfoList 0x51", Succeeds()}};
}

inline DeviceScript Join(DeviceScript first, const DeviceScript& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

inline DeviceScript OpensCard(const std::string& guid, std::uint64_t handle) {
  return Join(FindsPath(guid), OpensPath(handle));
}

/// Registers of 0x100000 bytes at 0x40002000, or another address whose low half is not 0.
inline DeviceScript MapsRegisters(std::uint64_t handle, platform::RegisterTrap& trap,
                                  std::uint8_t secondAddressByte = 0x20) {
  std::vector<std::uint8_t> map(96);
  map[2] = 0x10;
  const std::uint64_t address = 0x40000000u + 0x100u * secondAddressByte;
  return {{"CreateEventA manual not set", Gives(0xE1)},
          {"DeviceIoControl " + HexText(handle) + " code 0xc1762080 in [] out 96 event 0xe1", Answers(map)},
          {"DeviceIoControl " + HexText(handle) +
               " code 0xc1762404 in [00 00 00 00 00 00 00 00 00 00 10 00] out 16 event 0xe1",
           Answers({0x00, secondAddressByte, 0x00, 0x40, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0})},
          {"TrapAt " + HexText(address), TrapIs(trap)}};
}

/// The card's driver does not tell its memory map, whereupon the handle is closed for the first time.
inline DeviceScript FailsToMap(std::uint64_t handle) {
  return {{"CreateEventA manual not set", Gives(0xE1)},
          {"DeviceIoControl " + HexText(handle) + " code 0xc1762080 in [] out 96 event 0xe1", Fails()},
          {"CloseHandle " + HexText(handle), Succeeds()}};
}

inline DeviceScript OpensMorvak(std::uint64_t handle) {
  return Join(Join(FindsPath(kMorvak), {{"SetupDiEnumDeviceInfo 0x51 index 0 size 28", Succeeds()}}),
              OpensPath(handle));
}

/// The driver tells how many slots for codecs there are, and its model.
inline DeviceScript TellsModel(std::uint64_t handle, std::uint8_t codecSlots, std::uint8_t model) {
  return {{"DeviceIoControl " + HexText(handle) + " code 0xaa010008 in [] out 8",
           Answers({codecSlots, 0, 0, 0, model, 0, 0, 0})}};
}

inline DeviceScript Closes(std::uint64_t handle) {
  return {{"CloseHandle " + HexText(handle), Succeeds()}};
}

}  // namespace driver_scripts
