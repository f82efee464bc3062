#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <ostream>

#include "simulator/Bench.h"
#include "simulator/WrappedPlatform.h"

namespace simulator {

/// Devices that draw what happens on the JTAG ports.
class WaveformDevices : public WrappedDevices {
 public:
  WaveformDevices(platform::Devices& inner, Bench& bench, std::ostream& vcd);

 protected:
  std::uint32_t ReadRegister(std::uint64_t window, platform::RegisterTrap& inner, std::uint32_t offset) override;
  void WriteRegister(std::uint64_t window, platform::RegisterTrap& inner, std::uint32_t offset,
                     std::uint32_t value) override;

 private:
  /// What was last written of a card's signals.
  struct Drawn {
    std::uint32_t pins = 0;
    TapState tapState = TapState::kTestLogicReset;
    std::optional<std::uint32_t> fifoStatus;
  };

  void WriteHeader();
  /// The card of a window, as an index into the bench's cards; nothing for any other window.
  std::optional<std::size_t> CardAt(std::uint64_t window) const;
  HostCard& CardOf(std::size_t index) { return *bench_.card(*kHostCards[index]); }
  void DrawPort(std::size_t index);
  void DrawFifoStatus(std::size_t index, std::uint32_t status);
  /// The time of the changes that follow, unless it stands there already.
  void WriteTime();

  Bench& bench_;
  std::ostream& vcd_;
  std::array<Drawn, 2> drawn_;
  std::int64_t writtenNanoseconds_ = 0;
};

/// A wrapper that writes a waveform in the VCD format, which ordinary viewers open: a scope for each host card of the
/// bench with the wires tck, tms, tdi, tdo and enable, the state of the TAP by its code, and on the card with the FIFOs
/// their status as it was read. Times are nanoseconds of the bench's clock. The pins are sampled on the card behind
/// each access of its JTAG port; what did not change is not written.
///
///     std::ofstream vcd("run.vcd");
///     Waveform waveform(bench.platform(), bench, vcd);
///     platform::ScopedPlatform current(waveform);
class Waveform : public WrappedPlatform {
 public:
  /// `inner`, `bench` and `vcd` must outlive this object; whether the stream took all of it is for its owner to see.
  Waveform(platform::Platform& inner, Bench& bench, std::ostream& vcd)
      : WrappedPlatform(inner), devices_(inner.devices(), bench, vcd) {}
  WaveformDevices& devices() override { return devices_; }

 private:
  WaveformDevices devices_;
};

}  // namespace simulator
