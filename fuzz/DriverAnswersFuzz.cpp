// Any answers of the system and the drivers to the search for devices, the map of a card's registers and the questions
// to second-line hardware. The input is a row of rounds: a byte that says what is done, then the answers in the order
// of the calls. What is missing at the end is 0.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "board/DeviceDiscovery.h"
#include "board/DriverRecords.h"
#include "board/MorvakHelper.h"
#include "errorException.h"
#include "FuzzInput.h"
#include "platform/Platform.h"

namespace {

using platform::Handle;
using platform::kInvalidHandle;

constexpr Handle kUntouched = 0x77;

class NoTrap : public platform::RegisterTrap {
 public:
  std::uint32_t Read(std::uint32_t) override { std::abort(); }
  void Write(std::uint32_t, std::uint32_t) override { std::abort(); }
};

/// Answers from the input, keeps count of what is open, and holds the callers to the order of the calls.
class AnyDevices : public platform::Devices {
 public:
  struct ControlCall {
    bool succeeded;
    std::uint32_t returned;
    std::vector<std::uint8_t> out;
  };

  explicit AnyDevices(Input& input) : input_(input) {}

  std::set<Handle> openSets;
  std::set<Handle> openHandles;
  std::set<Handle> openKeys;
  std::vector<ControlCall> controlCalls;
  int closes = 0;
  NoTrap trap;
  bool isTrapped = false;

  Handle SetupDiGetClassDevsA(const platform::Guid&, std::uint32_t flags) override {
    Require(flags == 18);
    return Open(openSets);
  }
  bool SetupDiEnumDeviceInterfaces(Handle set, const platform::Guid&, std::uint32_t,
                                   platform::InterfaceData& data) override {
    Require(openSets.contains(set) && data.size == 28);
    data.flags = input_.Byte();
    return input_.Flag();
  }
  bool SetupDiGetDeviceInterfaceDetailA(Handle set, platform::InterfaceData&, platform::InterfaceDetail* detail,
                                        std::uint32_t detailSize, std::uint32_t* requiredSize) override {
    Require(openSets.contains(set));
    if (detail == nullptr) {
      Require(detailSize == 0 && requiredSize != nullptr);
      if (input_.Flag()) *requiredSize = input_.Word();
      return input_.Flag();
    }
    Require(detailSize >= 5 && detail->size == 5);
    const bool succeeds = input_.Flag();
    pathRoom_ = detailSize - 4;
    char* path = reinterpret_cast<char*>(detail) + 4;
    // One length stands for the whole room, none of it zero.
    const std::uint8_t length = input_.Byte();
    if (length == 255)
      std::memset(path, 'x', pathRoom_);
    else
      Put(path, pathRoom_, length);
    return succeeds;
  }
  bool SetupDiEnumDeviceInfo(Handle set, std::uint32_t, platform::DeviceInfo& info) override {
    Require(openSets.contains(set) && info.size == 28);
    return input_.Flag();
  }
  Handle SetupDiOpenDevRegKey(Handle set, platform::DeviceInfo&, std::uint32_t, std::uint32_t, std::uint32_t keyType,
                              std::uint32_t) override {
    Require(openSets.contains(set) && (keyType == 1 || keyType == 2));
    return Open(openKeys);
  }
  bool SetupDiDestroyDeviceInfoList(Handle set) override {
    Require(openSets.erase(set) == 1);
    return input_.Flag();
  }
  Handle CreateFileA(const char* path, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) override {
    Require(std::strlen(path) <= pathRoom_);
    return Open(openHandles);
  }
  bool CloseHandle(Handle handle) override {
    ++closes;
    return openHandles.erase(handle) == 1 && input_.Flag();
  }
  bool RegCloseKey(Handle key) override {
    Require(openKeys.erase(key) == 1);
    return input_.Flag();
  }
  bool DeviceIoControl(Handle, std::uint32_t, const void* in, std::uint32_t inLength, void* out,
                       std::uint32_t outLength, std::uint32_t& returned, Handle) override {
    Require((in == nullptr) == (inLength == 0) && out != nullptr);
    const bool succeeds = input_.Flag();
    const std::uint8_t told = input_.Byte();
    if (told == 1) returned = outLength;
    if (told > 1) returned = input_.Word();
    Put(out, outLength, input_.Byte());
    const auto* bytes = static_cast<const std::uint8_t*>(out);
    controlCalls.push_back({succeeds, returned, {bytes, bytes + outLength}});
    return succeeds;
  }
  Handle CreateEventA(bool, bool) override { return input_.Byte(); }
  std::uint32_t GetLastError() override { return input_.Word(); }
  std::string FormatMessageA(std::uint32_t) override {
    const auto text = input_.Bytes(input_.Byte());
    return {text.begin(), text.end()};
  }
  platform::RegisterTrap* TrapAt(std::uint64_t) override {
    isTrapped = input_.Flag();
    return isTrapped ? &trap : nullptr;
  }

 private:
  /// A new handle, or one of the two that stand for none.
  Handle Open(std::set<Handle>& handles) {
    const std::uint8_t kind = input_.Byte();
    if (kind == 0) return kInvalidHandle;
    if (kind == 1 && &handles == &openHandles) return 0;
    handles.insert(++lastHandle_);
    return lastHandle_;
  }

  void Put(void* to, std::size_t room, std::size_t length) {
    const auto bytes = input_.Bytes(std::min(room, length));
    if (!bytes.empty()) std::memcpy(to, bytes.data(), bytes.size());
  }

  Input& input_;
  Handle lastHandle_ = 0x1000;
  std::size_t pathRoom_ = 0;
};

class AnySystem : public platform::Platform {
 public:
  explicit AnySystem(AnyDevices& devices) : devices_(devices) {}
  platform::Devices& devices() override { return devices_; }
  platform::Clock& clock() override { std::abort(); }
  platform::FrontEnd& frontEnd() override { std::abort(); }
  platform::TextBlocks& textBlocks() override { return platform::Native().textBlocks(); }
  platform::Files& files() override { return platform::Native().files(); }

 private:
  AnyDevices& devices_;
};

void OpenByGuid(AnyDevices& devices) {
  const Handle handle = OpenDeviceViaGuid(GUID_BelmaraDevice, 0);
  Require(handle == 0 || handle == kInvalidHandle || devices.openHandles.contains(handle));
  if (handle != 0) devices.CloseHandle(handle);
}

void OpenByKind(AnyDevices& devices, std::uint8_t kind) {
  Handle handle = kUntouched;
  const HwcStatus status = OpenMorvakDevice(static_cast<DeviceKind>(kind), 0, handle);
  Require((status == kHWCerr_BadArgument) == (kind < 1 || kind > 3));
  if (status != kHWCerr_None) {
    Require(handle == kUntouched && devices.openHandles.empty());
    return;
  }
  Require(handle != kInvalidHandle && (handle == 0 || devices.openHandles.contains(handle)));
  Require((CloseMorvakDevice(handle) == kHWCerr_BadHandle) == (handle == 0));
}

void OpenKey(AnyDevices& devices, std::uint8_t kind) {
  Handle key = kUntouched;
  const HwcStatus status = OpenMorvakRegKey(0, static_cast<RegKeyKind>(kind), key);
  Require((status == kHWCerr_BadArgument) == (kind < 1 || kind > 2));
  if (status != kHWCerr_None)
    Require(key == kUntouched);
  else
    Require(devices.openKeys.contains(key) && CloseMorvakRegKey(key) == kHWCerr_None);
}

std::uint32_t LowHalf(const std::vector<std::uint8_t>& record, std::size_t offset) {
  std::uint32_t value = 0;
  for (std::size_t i = 4; i-- > 0;)
    value = value << 8 | record[offset + i];
  return value;
}

/// Empty when the registers are mapped.
std::string ExpectedMapFailure(const std::vector<AnyDevices::ControlCall>& calls) {
  Require(!calls.empty() && calls.size() <= 2);
  if (!calls[0].succeeded) return "can't fetch board memory map";
  if (calls[0].returned != 96) return "bad return from fetching memory map";
  Require(calls.size() == 2);
  if (!calls[1].succeeded) return "can't map registers";
  if (calls[1].returned != 16) return "bad return from mapping";
  if (LowHalf(calls[1].out, 0) == 0 || LowHalf(calls[1].out, 8) == 0) return "couldn't map registers";
  return "";
}

void MapRegisters(AnyDevices& devices) {
  constexpr Handle kCard = 0x11;
  devices.openHandles.insert(kCard);
  std::string failure;
  platform::RegisterWindow window;
  try {
    window = MapBoardRegisters(kCard);
  } catch (const errorException& error) {
    failure = error.what();
  }
  Require(failure == ExpectedMapFailure(devices.controlCalls));
  Require(devices.closes == (failure.empty() ? 0 : 1));
  if (failure.empty()) {
    const std::vector<std::uint8_t>& answer = devices.controlCalls[1].out;
    const std::uint64_t address = std::uint64_t{LowHalf(answer, 4)} << 32 | LowHalf(answer, 0);
    Require(window == platform::RegisterWindow(address, devices.isTrapped ? &devices.trap : nullptr));
    devices.CloseHandle(kCard);
  }
}

void UseMorvak(AnyDevices& devices, Input& input) {
  bool isOpen = false;
  {
    MorvakHelper helper(OpenMode::kMorvak);
    try {
      isOpen = helper.Open();
      const auto slot = static_cast<std::int8_t>(input.Byte());
      const bool isPresent = isOpen && helper.IsCodecPresent(slot);
      Require(!isPresent || (slot >= 0 && slot <= 2));
    } catch (const errorException&) {
    }
    Require(static_cast<int>(helper.boardKind) == 8 || isOpen);
  }
  Require(devices.closes <= 1);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  // Any helper keeps the Talc library started, so that the dictionaries are not read for each input.
  static const MorvakHelper helper(OpenMode::kMorvak);
  // The lines about devices go nowhere.
  stdout = std::fopen("/dev/null", "w");
  return stdout == nullptr ? 1 : 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input({data, size});
  for (int round = 0; round < 8 && !input.AtEnd(); ++round) {
    AnyDevices devices(input);
    AnySystem system(devices);
    const platform::ScopedPlatform scope(system);
    const std::uint8_t what = input.Byte();
    switch (what % 5) {
      case 0:
        OpenByGuid(devices);
        break;
      case 1:
        OpenByKind(devices, input.Byte());
        break;
      case 2:
        OpenKey(devices, input.Byte());
        break;
      case 3:
        MapRegisters(devices);
        break;
      default:
        UseMorvak(devices, input);
        break;
    }
    Require(devices.openSets.empty() && devices.openHandles.empty() && devices.openKeys.empty());
  }
  return 0;
}
