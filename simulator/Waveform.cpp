#include "simulator/Waveform.h"

#include <iterator>
#include <string_view>

namespace simulator {
namespace {

constexpr std::size_t kStateBits = 4;
constexpr std::size_t kStatusBits = 32;

struct Wire {
  std::uint32_t mask;
  std::string_view name;
};

constexpr Wire kWires[] = {
    {KarvelCpld::kTck, "tck"}, {KarvelCpld::kTms, "tms"},       {KarvelCpld::kTdi, "tdi"},
    {KarvelCpld::kTdo, "tdo"}, {KarvelCpld::kEnable, "enable"},
};

// The identifier of a signal is one character: the card's first one, and those of its signals behind it.
constexpr std::size_t kTapSignal = std::size(kWires);
constexpr std::size_t kStatusSignal = kTapSignal + 1;
constexpr std::size_t kSignals = kStatusSignal + 1;

char Identifier(std::size_t card, std::size_t signal) {
  return static_cast<char>('!' + card * kSignals + signal);
}

void WriteBit(std::ostream& vcd, bool value, char identifier) {
  vcd << (value ? '1' : '0') << identifier << '\n';
}

void WriteVector(std::ostream& vcd, std::uint32_t value, std::size_t bits, char identifier) {
  vcd << 'b';
  for (std::size_t bit = bits; bit > 0; --bit)
    vcd << (value >> (bit - 1) & 1);
  vcd << ' ' << identifier << '\n';
}

}  // namespace

WaveformDevices::WaveformDevices(platform::Devices& inner, Bench& bench, std::ostream& vcd)
    : WrappedDevices(inner), bench_(bench), vcd_(vcd) {
  WriteHeader();
}

void WaveformDevices::WriteHeader() {
  vcd_ << "$timescale 1 ns $end\n";
  for (std::size_t i = 0; i < drawn_.size(); ++i) {
    if (bench_.card(*kHostCards[i]) == nullptr) continue;
    vcd_ << "$scope module " << kHostCards[i]->name << " $end\n";
    for (std::size_t wire = 0; wire < std::size(kWires); ++wire)
      vcd_ << "$var wire 1 " << Identifier(i, wire) << ' ' << kWires[wire].name << " $end\n";
    vcd_ << "$var wire " << kStateBits << ' ' << Identifier(i, kTapSignal) << " tap_state [3:0] $end\n";
    if (kHostCards[i]->hasBoxFifo)
      vcd_ << "$var wire " << kStatusBits << ' ' << Identifier(i, kStatusSignal) << " fifo_status [31:0] $end\n";
    vcd_ << "$upscope $end\n";
  }
  writtenNanoseconds_ = bench_.clock().NowNanoseconds();
  vcd_ << "$enddefinitions $end\n#" << writtenNanoseconds_ << "\n$dumpvars\n";
  for (std::size_t i = 0; i < drawn_.size(); ++i) {
    if (bench_.card(*kHostCards[i]) == nullptr) continue;
    const KarvelCpld& karvel = CardOf(i).state().karvel;
    drawn_[i] = {karvel.Pins(), karvel.tapState(), std::nullopt};
    for (std::size_t wire = 0; wire < std::size(kWires); ++wire)
      WriteBit(vcd_, (drawn_[i].pins & kWires[wire].mask) != 0, Identifier(i, wire));
    WriteVector(vcd_, static_cast<std::uint32_t>(drawn_[i].tapState), kStateBits, Identifier(i, kTapSignal));
    // Not read yet, and so not known.
    if (kHostCards[i]->hasBoxFifo) vcd_ << "bx " << Identifier(i, kStatusSignal) << '\n';
  }
  vcd_ << "$end\n";
}

std::optional<std::size_t> WaveformDevices::CardAt(std::uint64_t window) const {
  for (std::size_t i = 0; i < drawn_.size(); ++i)
    if (kHostCards[i]->windowAddress == window && bench_.card(*kHostCards[i]) != nullptr) return i;
  return std::nullopt;
}

std::uint32_t WaveformDevices::ReadRegister(std::uint64_t window, platform::RegisterTrap& inner, std::uint32_t offset) {
  const std::uint32_t value = inner.Read(offset);
  if (offset != HostCard::kJtagPort && offset != BoxFifo::kStatus) return value;
  const auto card = CardAt(window);
  if (!card) return value;
  if (offset == HostCard::kJtagPort)
    DrawPort(*card);
  else if (kHostCards[*card]->hasBoxFifo)
    DrawFifoStatus(*card, value);
  return value;
}

void WaveformDevices::WriteRegister(std::uint64_t window, platform::RegisterTrap& inner, std::uint32_t offset,
                                    std::uint32_t value) {
  inner.Write(offset, value);
  if (offset != HostCard::kJtagPort) return;
  if (const auto card = CardAt(window)) DrawPort(*card);
}

void WaveformDevices::DrawPort(std::size_t index) {
  const KarvelCpld& karvel = CardOf(index).state().karvel;
  Drawn& drawn = drawn_[index];
  const std::uint32_t pins = karvel.Pins();
  const std::uint32_t changed = pins ^ drawn.pins;
  if (changed == 0 && karvel.tapState() == drawn.tapState) return;
  WriteTime();
  for (std::size_t wire = 0; wire < std::size(kWires); ++wire)
    if ((changed & kWires[wire].mask) != 0) WriteBit(vcd_, (pins & kWires[wire].mask) != 0, Identifier(index, wire));
  if (karvel.tapState() != drawn.tapState)
    WriteVector(vcd_, static_cast<std::uint32_t>(karvel.tapState()), kStateBits, Identifier(index, kTapSignal));
  drawn.pins = pins;
  drawn.tapState = karvel.tapState();
}

void WaveformDevices::DrawFifoStatus(std::size_t index, std::uint32_t status) {
  if (drawn_[index].fifoStatus == status) return;
  WriteTime();
  WriteVector(vcd_, status, kStatusBits, Identifier(index, kStatusSignal));
  drawn_[index].fifoStatus = status;
}

void WaveformDevices::WriteTime() {
  if (bench_.clock().NowNanoseconds() == writtenNanoseconds_) return;
  writtenNanoseconds_ = bench_.clock().NowNanoseconds();
  vcd_ << '#' << writtenNanoseconds_ << '\n';
}

}  // namespace simulator
