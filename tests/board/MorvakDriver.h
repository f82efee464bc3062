#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "board/HwcErr.h"
#include "platform/Devices.h"
#include "support/PacketText.h"

/// What the driver does with one exchange.
struct TalcAnswer {
  test_support::Bytes reply = {};  ///< written from the reply's address on, where there is one
  std::uint32_t status = kHWCerr_None;
  std::uint32_t returned = 8;
  bool succeeds = true;
};

/// What the driver does with one read of VPD.
struct VpdAnswer {
  test_support::Bytes area = {};  ///< written from the buffer's address on, where there is one
  bool succeeds = true;
};

/// The driver of the second line as far as it follows addresses: an exchange and a read of VPD, whose records say where
/// to read and where to write. Every other call goes to the devices that it stands in front of.
///
///     MorvakDriver driver(devices);
///     driver.talcAnswers = {{.reply = FromHex("0B 0B 00 04 80 0A 00 00")}};
///     helper.IOCTL_TransactBoBCommand(...);
///     EXPECT_EQ(Hex(driver.talcCalls.at(0).command), "0B 0B 00 04 80 0A 00 00");
///
/// A call for which there is no answer left fails the test, and so does an answer that nobody came for.
class MorvakDriver final : public platform::Devices {
 public:
  struct TalcCall {
    platform::Handle device;
    test_support::Bytes record;
    test_support::Bytes command;      ///< none without an address
    test_support::Bytes replyBefore;  ///< the first four bytes; none without an address
  };
  struct VpdCall {
    platform::Handle device;
    test_support::Bytes record;
    test_support::Bytes areaBefore;  ///< none without an address
  };

  static constexpr std::size_t kVpdBytes = 8192;

  explicit MorvakDriver(platform::Devices& others) : others_(others) {}
  ~MorvakDriver() override {
    EXPECT_EQ(talcCalls.size(), talcAnswers.size()) << "exchanges";
    EXPECT_EQ(vpdCalls.size(), vpdAnswers.size()) << "reads of VPD";
  }
  MorvakDriver(const MorvakDriver&) = delete;
  MorvakDriver& operator=(const MorvakDriver&) = delete;

  std::vector<TalcAnswer> talcAnswers;
  std::vector<VpdAnswer> vpdAnswers;
  std::vector<TalcCall> talcCalls;
  std::vector<VpdCall> vpdCalls;

  bool DeviceIoControl(platform::Handle device, std::uint32_t code, const void* in, std::uint32_t inLength, void* out,
                       std::uint32_t outLength, std::uint32_t& returned, platform::Handle event) override {
    const auto* const bytes = static_cast<const std::uint8_t*>(in);
    const test_support::Bytes record(bytes, bytes + inLength);
    if (code == 0xAA010038 && inLength == 28 && outLength == 8 && event == 0)
      return Exchange(device, record, out, returned);
    if (code == 0xAA010044 && inLength == 16 && outLength == 4 && event == 0)
      return ReadVpd(device, record, out, returned);
    return others_.DeviceIoControl(device, code, in, inLength, out, outLength, returned, event);
  }

  platform::Handle SetupDiGetClassDevsA(const platform::Guid& interfaceClass, std::uint32_t flags) override {
    return others_.SetupDiGetClassDevsA(interfaceClass, flags);
  }
  bool SetupDiEnumDeviceInterfaces(platform::Handle set, const platform::Guid& interfaceClass, std::uint32_t index,
                                   platform::InterfaceData& data) override {
    return others_.SetupDiEnumDeviceInterfaces(set, interfaceClass, index, data);
  }
  bool SetupDiGetDeviceInterfaceDetailA(platform::Handle set, platform::InterfaceData& data,
                                        platform::InterfaceDetail* detail, std::uint32_t detailSize,
                                        std::uint32_t* requiredSize) override {
    return others_.SetupDiGetDeviceInterfaceDetailA(set, data, detail, detailSize, requiredSize);
  }
  bool SetupDiEnumDeviceInfo(platform::Handle set, std::uint32_t index, platform::DeviceInfo& info) override {
    return others_.SetupDiEnumDeviceInfo(set, index, info);
  }
  platform::Handle SetupDiOpenDevRegKey(platform::Handle set, platform::DeviceInfo& info, std::uint32_t scope,
                                        std::uint32_t hardwareProfile, std::uint32_t keyType,
                                        std::uint32_t access) override {
    return others_.SetupDiOpenDevRegKey(set, info, scope, hardwareProfile, keyType, access);
  }
  bool SetupDiDestroyDeviceInfoList(platform::Handle set) override { return others_.SetupDiDestroyDeviceInfoList(set); }
  platform::Handle CreateFileA(const char* path, std::uint32_t access, std::uint32_t share, std::uint32_t creation,
                               std::uint32_t attributes) override {
    return others_.CreateFileA(path, access, share, creation, attributes);
  }
  bool CloseHandle(platform::Handle handle) override { return others_.CloseHandle(handle); }
  bool RegCloseKey(platform::Handle key) override { return others_.RegCloseKey(key); }
  platform::Handle CreateEventA(bool manualReset, bool initialState) override {
    return others_.CreateEventA(manualReset, initialState);
  }
  std::uint32_t GetLastError() override { return others_.GetLastError(); }
  std::string FormatMessageA(std::uint32_t code) override { return others_.FormatMessageA(code); }
  platform::RegisterTrap* TrapAt(std::uint64_t address) override { return others_.TrapAt(address); }

 private:
  bool Exchange(platform::Handle device, const test_support::Bytes& record, void* out, std::uint32_t& returned) {
    const std::uint8_t* const command = At(record, 0);
    std::uint8_t* const reply = At(record, 8);
    TalcCall call{device, record, {}, {}};
    if (command != nullptr) call.command.assign(command, command + Number(record, 16, 4));
    if (reply != nullptr) call.replyBefore.assign(reply, reply + 4);
    talcCalls.push_back(call);
    if (talcCalls.size() > talcAnswers.size()) return Refuse("exchange");

    const TalcAnswer& answer = talcAnswers[talcCalls.size() - 1];
    Write(answer.reply, reply);
    // The second word means nothing.
    const std::uint32_t words[] = {answer.status, 0xEEEEEEEE};
    std::memcpy(out, words, sizeof words);
    returned = answer.returned;
    return answer.succeeds;
  }

  bool ReadVpd(platform::Handle device, const test_support::Bytes& record, void* out, std::uint32_t& returned) {
    std::uint8_t* const area = At(record, 0);
    VpdCall call{device, record, {}};
    if (area != nullptr) call.areaBefore.assign(area, area + kVpdBytes);
    vpdCalls.push_back(call);
    if (vpdCalls.size() > vpdAnswers.size()) return Refuse("read of VPD");

    const VpdAnswer& answer = vpdAnswers[vpdCalls.size() - 1];
    Write(answer.area, area);
    std::memset(out, 0xEE, 4);
    returned = 4;
    return answer.succeeds;
  }

  static bool Refuse(const char* what) {
    ADD_FAILURE() << "no " << what << " is expected";
    return false;
  }

  static std::uint64_t Number(const test_support::Bytes& record, std::size_t offset, std::size_t widthBytes) {
    std::uint64_t value = 0;
    for (std::size_t i = widthBytes; i-- > 0;)
      value = value << 8 | record[offset + i];
    return value;
  }
  static std::uint8_t* At(const test_support::Bytes& record, std::size_t offset) {
    return reinterpret_cast<std::uint8_t*>(static_cast<std::uintptr_t>(Number(record, offset, 8)));
  }
  static void Write(const test_support::Bytes& bytes, std::uint8_t* to) {
    if (to != nullptr && !bytes.empty()) std::memcpy(to, bytes.data(), bytes.size());
  }

  platform::Devices& others_;
};
