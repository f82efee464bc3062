#include "simulator/Faulty.h"

#include <algorithm>

#include "simulator/HostCard.h"
#include "simulator/MorvakUnit.h"
#include "simulator/SystemErrors.h"

namespace simulator {
namespace {

/// Clears one 64-bit field of a record.
void ClearField(void* record, std::uint32_t recordLength, std::uint32_t fieldOffset) {
  if (recordLength >= fieldOffset + 8)
    std::fill_n(static_cast<std::uint8_t*>(record) + fieldOffset, 8, std::uint8_t{0});
}

}  // namespace

platform::Handle FaultyDevices::SetupDiGetClassDevsA(const platform::Guid& interfaceClass, std::uint32_t flags) {
  if (dead_ || plan_.Strikes(Fault::kClassSetFails)) return RefuseHandle(kErrorGeneralFailure);
  return WrappedDevices::SetupDiGetClassDevsA(interfaceClass, flags);
}

bool FaultyDevices::SetupDiEnumDeviceInterfaces(platform::Handle set, const platform::Guid& interfaceClass,
                                                std::uint32_t index, platform::InterfaceData& data) {
  if (dead_ || plan_.Strikes(Fault::kDeviceMissing)) return Refuse(kErrorNoMoreItems);
  return WrappedDevices::SetupDiEnumDeviceInterfaces(set, interfaceClass, index, data);
}

bool FaultyDevices::SetupDiGetDeviceInterfaceDetailA(platform::Handle set, platform::InterfaceData& data,
                                                     platform::InterfaceDetail* detail, std::uint32_t detailSize,
                                                     std::uint32_t* requiredSize) {
  // A question for the size alone fails anyway, and is not counted.
  if (dead_ || (detail != nullptr && plan_.Strikes(Fault::kInterfaceDetailFails))) return Refuse(kErrorGeneralFailure);
  return WrappedDevices::SetupDiGetDeviceInterfaceDetailA(set, data, detail, detailSize, requiredSize);
}

platform::Handle FaultyDevices::CreateFileA(const char* path, std::uint32_t access, std::uint32_t share,
                                            std::uint32_t creation, std::uint32_t attributes) {
  if (dead_ || plan_.Strikes(Fault::kOpenFails)) return RefuseHandle(kErrorGeneralFailure);
  return WrappedDevices::CreateFileA(path, access, share, creation, attributes);
}

bool FaultyDevices::DeviceIoControl(platform::Handle device, std::uint32_t code, const void* in, std::uint32_t inLength,
                                    void* out, std::uint32_t outLength, std::uint32_t& returned,
                                    platform::Handle event) {
  if (dead_ || plan_.Strikes(Fault::kControlFails)) return Refuse(kErrorGeneralFailure);
  switch (code) {
    case HostCard::kGetBoardMemoryMap:
      return GetMemoryMap(device, code, in, inLength, out, outLength, returned, event);
    case HostCard::kMapMemory:
      return MapRegisters(device, code, in, inLength, out, outLength, returned, event);
    case MorvakUnit::kTransactTalc:
      return TransactTalc(device, code, in, inLength, out, outLength, returned, event);
    case MorvakUnit::kGetModel:
      if (plan_.Strikes(Fault::kModelFails)) return Refuse(kErrorGeneralFailure);
      break;
    case MorvakUnit::kQueryCodecSlot:
      if (plan_.Strikes(Fault::kSlotFails)) return Refuse(kErrorGeneralFailure);
      break;
    case MorvakUnit::kReadVpd:
      if (plan_.Strikes(Fault::kVpdFails)) return Refuse(kErrorGeneralFailure);
      break;
    default:
      break;
  }
  return WrappedDevices::DeviceIoControl(device, code, in, inLength, out, outLength, returned, event);
}

bool FaultyDevices::GetMemoryMap(platform::Handle device, std::uint32_t code, const void* in, std::uint32_t inLength,
                                 void* out, std::uint32_t outLength, std::uint32_t& returned, platform::Handle event) {
  const bool fails = plan_.Strikes(Fault::kMemoryMapFails);
  const bool isShort = plan_.Strikes(Fault::kMemoryMapShort);
  if (fails) return Refuse(kErrorGeneralFailure);
  if (!WrappedDevices::DeviceIoControl(device, code, in, inLength, out, outLength, returned, event)) return false;
  if (isShort) --returned;
  return true;
}

bool FaultyDevices::MapRegisters(platform::Handle device, std::uint32_t code, const void* in, std::uint32_t inLength,
                                 void* out, std::uint32_t outLength, std::uint32_t& returned, platform::Handle event) {
  const bool fails = plan_.Strikes(Fault::kMapRegistersFails);
  const bool isShort = plan_.Strikes(Fault::kMapRegistersShort);
  const bool refused = plan_.Strikes(Fault::kMapRefused);
  const bool refusedSecond = plan_.Strikes(Fault::kMapRefusedSecond);
  if (fails) return Refuse(kErrorGeneralFailure);
  if (!WrappedDevices::DeviceIoControl(device, code, in, inLength, out, outLength, returned, event)) return false;
  if (isShort) --returned;
  if (refused) ClearField(out, outLength, 0);
  if (refusedSecond) ClearField(out, outLength, 8);
  return true;
}

bool FaultyDevices::TransactTalc(platform::Handle device, std::uint32_t code, const void* in, std::uint32_t inLength,
                                 void* out, std::uint32_t outLength, std::uint32_t& returned, platform::Handle event) {
  const bool fails = plan_.Strikes(Fault::kTalcFails);
  const bool isShort = plan_.Strikes(Fault::kTalcShort);
  MayPullThePlug();
  if (fails) return Refuse(kErrorGeneralFailure);
  if (!WrappedDevices::DeviceIoControl(device, code, in, inLength, out, outLength, returned, event)) return false;
  if (isShort) --returned;
  return true;
}

void FaultyDevices::MayPullThePlug() {
  if (!plan_.Strikes(Fault::kPowerCut)) return;
  dead_ = true;
  throw PowerCut{plan_.Count(Fault::kPowerCut)};
}

std::uint32_t FaultyDevices::ReadRegister(std::uint64_t, platform::RegisterTrap& inner, std::uint32_t offset) {
  if (dead_ || plan_.Strikes(Fault::kReadLost)) return 0xFFFFFFFF;
  return inner.Read(offset);
}

void FaultyDevices::WriteRegister(std::uint64_t, platform::RegisterTrap& inner, std::uint32_t offset,
                                  std::uint32_t value) {
  // Nothing is thrown a second time: whatever still writes does so while the first cut unwinds.
  if (dead_) return;
  const bool lost = plan_.Strikes(Fault::kWriteLost);
  MayPullThePlug();
  if (!lost) inner.Write(offset, value);
}

}  // namespace simulator
