#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "platform/Devices.h"

/// Kernel drivers that expect an exact sequence of calls, each written out with all its arguments, and that answer each
/// as told. A call that is missing, extra, out of order or has another argument fails the test and says which.
///
///     test_support::StrictDevices devices;
///     devices.Expect({{"CloseHandle 0x11", Fails()},
///                     {"DeviceIoControl 0x12 code 0xaa010008 in [] out 8", Answers({2, 0, 0, 0, 5, 0, 0, 0})}});
///
/// The texts are those of `StrictDevices`'s operations below: numbers that are handles, codes or addresses in
/// hexadecimal, sizes and indexes in decimal, records byte by byte. After a failure the rest of the script is forgotten
/// and every call fails.
namespace test_support {

/// What a call does. The fields that a call has no use for are left out.
struct DeviceAnswer {
  std::uint64_t result = 1;                ///< a handle, an error code, or 1 and 0 for true and false
  std::vector<std::uint8_t> bytes = {};    ///< written to the record or path that the caller gave room for
  std::optional<std::uint32_t> size = {};  ///< the needed or the returned size; left alone when absent
  std::string text = {};
  platform::RegisterTrap* trap = nullptr;
};

inline DeviceAnswer Succeeds() {
  return {};
}
inline DeviceAnswer Fails() {
  return {.result = 0};
}
/// Hands out a handle, or tells an error code.
inline DeviceAnswer Gives(std::uint64_t value) {
  return {.result = value};
}
/// The first of the two calls for a path: fails, and tells the size.
inline DeviceAnswer Needs(std::uint32_t sizeBytes) {
  return {.result = 0, .size = sizeBytes};
}
/// The second of the two calls: these characters, with a terminator only if the text has one.
inline DeviceAnswer GivesPath(const std::string& path) {
  return {.bytes = {path.begin(), path.end()}};
}
/// A control call that answers these bytes and tells their number, or another one.
inline DeviceAnswer Answers(const std::vector<std::uint8_t>& bytes) {
  return {.bytes = bytes, .size = static_cast<std::uint32_t>(bytes.size())};
}
inline DeviceAnswer Answers(const std::vector<std::uint8_t>& bytes, std::uint32_t returned) {
  return {.bytes = bytes, .size = returned};
}
/// A control call that fails after it told a size.
inline DeviceAnswer FailsTelling(std::uint32_t returned) {
  return {.result = 0, .size = returned};
}
inline DeviceAnswer Says(const std::string& text) {
  return {.text = text};
}
inline DeviceAnswer TrapIs(platform::RegisterTrap& trap) {
  return {.trap = &trap};
}

struct DeviceCall {
  std::string call;
  DeviceAnswer answer;
};

using DeviceScript = std::vector<DeviceCall>;

class StrictDevices final : public platform::Devices {
 public:
  StrictDevices() = default;
  /// Fails the test when calls are left over.
  ~StrictDevices() override {
    if (std::uncaught_exceptions() == 0) ExpectDone();
  }
  StrictDevices(const StrictDevices&) = delete;
  StrictDevices& operator=(const StrictDevices&) = delete;

  /// Appends to what is expected.
  void Expect(const DeviceScript& script) { script_.insert(script_.end(), script.begin(), script.end()); }

  /// Fails the test unless every expected call was made.
  void ExpectDone() {
    if (next_ < script_.size())
      ADD_FAILURE() << script_.size() - next_ << " device calls were not made, the first of them number " << next_
                    << ": " << script_[next_].call;
    next_ = script_.size();
  }

  platform::Handle SetupDiGetClassDevsA(const platform::Guid& interfaceClass, std::uint32_t flags) override {
    return Take("SetupDiGetClassDevsA " + Text(interfaceClass) + " flags " + std::to_string(flags)).result;
  }

  bool SetupDiEnumDeviceInterfaces(platform::Handle set, const platform::Guid& interfaceClass, std::uint32_t index,
                                   platform::InterfaceData& data) override {
    const DeviceAnswer answer = Take("SetupDiEnumDeviceInterfaces " + Hex(set) + " " + Text(interfaceClass) +
                                     " index " + std::to_string(index) + " size " + std::to_string(data.size));
    data.reserved = kInterfaceMark;
    return answer.result != 0;
  }

  bool SetupDiGetDeviceInterfaceDetailA(platform::Handle set, platform::InterfaceData& data,
                                        platform::InterfaceDetail* detail, std::uint32_t detailSize,
                                        std::uint32_t* requiredSize) override {
    std::string call = "SetupDiGetDeviceInterfaceDetailA " + Hex(set) + " room " + std::to_string(detailSize);
    if (detail != nullptr) call += " size " + std::to_string(detail->size);
    if (data.reserved != kInterfaceMark || data.size != 28) call += " of an interface that was not enumerated";
    const DeviceAnswer answer = Take(call);
    if (requiredSize != nullptr && answer.size) *requiredSize = *answer.size;
    if (detail != nullptr) Put(answer.bytes, detail->path, detailSize - sizeof detail->size);
    return answer.result != 0;
  }

  bool SetupDiEnumDeviceInfo(platform::Handle set, std::uint32_t index, platform::DeviceInfo& info) override {
    const DeviceAnswer answer = Take("SetupDiEnumDeviceInfo " + Hex(set) + " index " + std::to_string(index) +
                                     " size " + std::to_string(info.size));
    info.reserved = kDeviceMark;
    return answer.result != 0;
  }

  platform::Handle SetupDiOpenDevRegKey(platform::Handle set, platform::DeviceInfo& info, std::uint32_t scope,
                                        std::uint32_t hardwareProfile, std::uint32_t keyType,
                                        std::uint32_t access) override {
    std::string call = "SetupDiOpenDevRegKey " + Hex(set) + " scope " + std::to_string(scope) + " profile " +
                       std::to_string(hardwareProfile) + " type " + std::to_string(keyType) + " access " + Hex(access);
    if (info.reserved != kDeviceMark || info.size != 28) call += " of a device that was not enumerated";
    return Take(call).result;
  }

  bool SetupDiDestroyDeviceInfoList(platform::Handle set) override {
    return Take("SetupDiDestroyDeviceInfoList " + Hex(set)).result != 0;
  }

  platform::Handle CreateFileA(const char* path, std::uint32_t access, std::uint32_t share, std::uint32_t creation,
                               std::uint32_t attributes) override {
    return Take("CreateFileA " + std::string(path) + " access " + Hex(access) + " share " + std::to_string(share) +
                " creation " + std::to_string(creation) + " attributes " + std::to_string(attributes))
        .result;
  }

  bool CloseHandle(platform::Handle handle) override { return Take("CloseHandle " + Hex(handle)).result != 0; }

  bool RegCloseKey(platform::Handle key) override { return Take("RegCloseKey " + Hex(key)).result != 0; }

  bool DeviceIoControl(platform::Handle device, std::uint32_t code, const void* in, std::uint32_t inLength, void* out,
                       std::uint32_t outLength, std::uint32_t& returned, platform::Handle event) override {
    std::string call = "DeviceIoControl " + Hex(device) + " code " + Hex(code) + " in " + Text(in, inLength) + " out " +
                       std::to_string(outLength);
    if (event != 0) call += " event " + Hex(event);
    const DeviceAnswer answer = Take(call);
    Put(answer.bytes, out, outLength);
    if (answer.size) returned = *answer.size;
    return answer.result != 0;
  }

  platform::Handle CreateEventA(bool manualReset, bool initialState) override {
    return Take(std::string("CreateEventA") + (manualReset ? " manual" : " automatic") +
                (initialState ? " set" : " not set"))
        .result;
  }

  std::uint32_t GetLastError() override { return static_cast<std::uint32_t>(Take("GetLastError").result); }

  std::string FormatMessageA(std::uint32_t code) override { return Take("FormatMessageA " + Hex(code)).text; }

  platform::RegisterTrap* TrapAt(std::uint64_t address) override { return Take("TrapAt " + Hex(address)).trap; }

 private:
  /// Put into the records that are enumerated, to be met again in the calls that take these records.
  static constexpr std::uintptr_t kInterfaceMark = 0x1DF;
  static constexpr std::uintptr_t kDeviceMark = 0x1DE;

  DeviceAnswer Take(const std::string& made) {
    if (next_ < script_.size() && script_[next_].call == made) return script_[next_++].answer;
    if (!failed_)
      ADD_FAILURE() << "device call " << next_ << " is " << made << "\n  expected "
                    << (next_ < script_.size() ? script_[next_].call : "none");
    failed_ = true;
    next_ = script_.size();
    return Fails();
  }

  static void Put(const std::vector<std::uint8_t>& bytes, void* to, std::size_t room) {
    if (bytes.size() > room)
      ADD_FAILURE() << "the script answers " << bytes.size() << " bytes, the caller has " << room;
    if (!bytes.empty() && bytes.size() <= room) std::memcpy(to, bytes.data(), bytes.size());
  }

  static std::string Hex(std::uint64_t value) {
    char text[24];
    std::snprintf(text, sizeof text, "%#llx", static_cast<unsigned long long>(value));
    return text;
  }

  static std::string Text(const platform::Guid& guid) {
    char text[40];
    std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", guid.data1, guid.data2,
                  guid.data3, guid.data4[0], guid.data4[1], guid.data4[2], guid.data4[3], guid.data4[4], guid.data4[5],
                  guid.data4[6], guid.data4[7]);
    return text;
  }

  static std::string Text(const void* record, std::uint32_t lengthBytes) {
    if (record == nullptr) return lengthBytes == 0 ? "[]" : "a null record of " + std::to_string(lengthBytes);
    std::string text = "[";
    for (std::uint32_t i = 0; i < lengthBytes; ++i) {
      char byte[4];
      std::snprintf(byte, sizeof byte, i == 0 ? "%02x" : " %02x", static_cast<const std::uint8_t*>(record)[i]);
      text += byte;
    }
    return text + "]";
  }

  DeviceScript script_;
  std::size_t next_ = 0;
  bool failed_ = false;
};

}  // namespace test_support
