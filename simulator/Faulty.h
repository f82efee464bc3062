#pragma once

#include <cstdint>

#include "simulator/Faults.h"
#include "simulator/WrappedPlatform.h"

namespace simulator {

/// Devices that fail where a plan says so.
class FaultyDevices : public WrappedDevices {
 public:
  FaultyDevices(platform::Devices& inner, FaultPlan& plan) : WrappedDevices(inner), plan_(plan) {}

  /// True once the plug is pulled.
  bool IsDead() const { return dead_; }

  platform::Handle SetupDiGetClassDevsA(const platform::Guid& interfaceClass, std::uint32_t flags) override;
  bool SetupDiEnumDeviceInterfaces(platform::Handle set, const platform::Guid& interfaceClass, std::uint32_t index,
                                   platform::InterfaceData& data) override;
  bool SetupDiGetDeviceInterfaceDetailA(platform::Handle set, platform::InterfaceData& data,
                                        platform::InterfaceDetail* detail, std::uint32_t detailSize,
                                        std::uint32_t* requiredSize) override;
  platform::Handle CreateFileA(const char* path, std::uint32_t access, std::uint32_t share, std::uint32_t creation,
                               std::uint32_t attributes) override;
  bool DeviceIoControl(platform::Handle device, std::uint32_t code, const void* in, std::uint32_t inLength, void* out,
                       std::uint32_t outLength, std::uint32_t& returned, platform::Handle event) override;

 protected:
  std::uint32_t ReadRegister(std::uint64_t window, platform::RegisterTrap& inner, std::uint32_t offset) override;
  void WriteRegister(std::uint64_t window, platform::RegisterTrap& inner, std::uint32_t offset,
                     std::uint32_t value) override;

 private:
  bool GetMemoryMap(platform::Handle device, std::uint32_t code, const void* in, std::uint32_t inLength, void* out,
                    std::uint32_t outLength, std::uint32_t& returned, platform::Handle event);
  bool MapRegisters(platform::Handle device, std::uint32_t code, const void* in, std::uint32_t inLength, void* out,
                    std::uint32_t outLength, std::uint32_t& returned, platform::Handle event);

  bool TransactTalc(platform::Handle device, std::uint32_t code, const void* in, std::uint32_t inLength, void* out,
                    std::uint32_t outLength, std::uint32_t& returned, platform::Handle event);
  /// Counts a write to hardware, and throws at the one where the plug is pulled.
  void MayPullThePlug();

  FaultPlan& plan_;
  bool dead_ = false;
};

/// A wrapper that fails set-up calls, openings, control calls and register accesses as a plan says, and pulls the plug
/// by throwing `PowerCut`. From then on nothing reaches a board: reads give all ones, writes vanish, calls fail. Faults
/// inside the hardware are not here: it asks the same plan itself.
///
///     FaultPlan plan;
///     plan.Add(ParseFault("power-cut@1000"));
///     bench.UseFaults(&plan);
///     Faulty faulty(bench.platform(), plan);
class Faulty : public WrappedPlatform {
 public:
  /// `inner` and `plan` must outlive this object.
  Faulty(platform::Platform& inner, FaultPlan& plan) : WrappedPlatform(inner), devices_(inner.devices(), plan) {}
  FaultyDevices& devices() override { return devices_; }

 private:
  FaultyDevices devices_;
};

}  // namespace simulator
