#pragma once

#include <cstdint>
#include <map>
#include <ostream>
#include <string_view>

#include "simulator/WrappedPlatform.h"

namespace simulator {

/// Devices that write down what reaches them.
class RecordingDevices : public WrappedDevices {
 public:
  RecordingDevices(platform::Devices& inner, std::ostream& trace) : WrappedDevices(inner), trace_(trace) {}

  platform::Handle CreateFileA(const char* path, std::uint32_t access, std::uint32_t share, std::uint32_t creation,
                               std::uint32_t attributes) override;
  bool DeviceIoControl(platform::Handle device, std::uint32_t code, const void* in, std::uint32_t inLength, void* out,
                       std::uint32_t outLength, std::uint32_t& returned, platform::Handle event) override;

 protected:
  std::uint32_t ReadRegister(std::uint64_t window, platform::RegisterTrap& inner, std::uint32_t offset) override;
  void WriteRegister(std::uint64_t window, platform::RegisterTrap& inner, std::uint32_t offset,
                     std::uint32_t value) override;

 private:
  std::ostream& trace_;
  std::map<platform::Handle, std::string_view> boards_;
  std::map<std::uint64_t, std::string_view> windows_;
};

/// A wrapper that writes the trace of a run, one line for each register access and control call, in order:
///
///     belmara C c1762080 00000000     a control call and its error, 0 for none
///     belmara W 04008 00100000        a write: register and value
///     belmara R 0400c 00800080        a read
///
/// An access that does not take place, as at a power cut, has no line. `inner` and `trace` must outlive this object;
/// whether the stream took all of it is for its owner to see.
class Recording : public WrappedPlatform {
 public:
  Recording(platform::Platform& inner, std::ostream& trace)
      : WrappedPlatform(inner), devices_(inner.devices(), trace) {}
  platform::Devices& devices() override { return devices_; }

 private:
  RecordingDevices devices_;
};

}  // namespace simulator
