#include "board/VmeShifter.h"

namespace {

std::uint8_t ByteAt(const VmeBuffer& buffer, std::uint32_t index) {
  return index < buffer.size() ? buffer[index] : std::uint8_t{0};
}

enum class Tdo { kIgnored, kRead };

/// Shifts one byte, or its first `bits` bits, of which all but the last are clocked and that one if it is said so.
/// Returns what came in, in the same places.
template <Tdo tdo, typename Pins>
std::uint8_t ShiftByte(Pins& pins, unsigned out, unsigned bits, bool isLastClocked) {
  unsigned in = 0;
  for (unsigned bit = 0; bit < bits; ++bit) {
    if constexpr (tdo == Tdo::kRead) in |= (pins.ReadTdoPin() != 0 ? 0x80u : 0u) >> bit;
    pins.SetPin(JtagPort::kTdi, (out << bit & 0x80) != 0);
    if (bit + 1 < bits || isLastClocked) pins.PulseClock();
  }
  return static_cast<std::uint8_t>(in);
}

/// Shifts the bytes that `out` gives for each byte's number, and hands each one that came in to `in`, with a mask of
/// the bits in it that were shifted.
template <Tdo tdo, typename Out, typename In>
void Shift(JtagPort& port, std::uint16_t bits, bool isLastClocked, Out out, In in) {
  if (bits == 0) return;
  const std::uint32_t last = (bits - 1u) / 8;
  const unsigned lastBits = bits - last * 8;
  port.Burst([&](auto& pins) {
    for (std::uint32_t i = 0; i < last; ++i)
      in(i, ShiftByte<tdo>(pins, out(i), 8, true), std::uint8_t{0xFF});
    in(last, ShiftByte<tdo>(pins, out(last), lastBits, isLastClocked), static_cast<std::uint8_t>(0xFF00 >> lastBits));
  });
}

}  // namespace

void VmeShifter::ShiftOut(const VmeBuffer& data, std::uint16_t bits, bool isLastClocked) {
  Shift<Tdo::kIgnored>(
      port_, bits, isLastClocked, [&](std::uint32_t i) { return ByteAt(data, i); },
      [](std::uint32_t, std::uint8_t, std::uint8_t) {});
}

void VmeShifter::BypassBits(std::uint8_t opcode, std::uint16_t bits) {
  const VmeBuffer& data = opcode == kVmeHir   ? vme_.hirData
                          : opcode == kVmeTir ? vme_.tirData
                          : opcode == kVmeHdr ? vme_.hdrData
                                              : vme_.tdrData;
  ShiftOut(data, bits, false);
}

int VmeShifter::SendBits(std::uint16_t bits) {
  ShiftOut(vme_.tdiData, bits, vme_.Flows(VmeInterpreter::kCascade));
  return kVmePass;
}

/// TDI data, if this shift has any.
std::uint8_t VmeShifter::TdiByte(std::uint32_t index) const {
  return vme_.Has(VmeInterpreter::kHasTdi) ? ByteAt(vme_.tdiData, index) : std::uint8_t{0};
}

int VmeShifter::ReadSaveBits(std::uint16_t bits) {
  const bool hasDmask = vme_.Has(VmeInterpreter::kHasDmask);
  // A file need not have given TDO data before.
  if (vme_.tdoData.size() < (bits + 7u) / 8u) vme_.tdoData.resize(bits / 8u + 2);
  Shift<Tdo::kRead>(
      port_, bits, false, [&](std::uint32_t i) { return TdiByte(i); },
      [&](std::uint32_t i, std::uint8_t in, std::uint8_t shifted) {
        const unsigned dmask = hasDmask ? ByteAt(vme_.dmaskData, i) : 0u;
        vme_.tdoData[i] = static_cast<std::uint8_t>(((TdiByte(i) & dmask) | (in & ~dmask)) & shifted);
      });
  return kVmePass;
}

int VmeShifter::ReadCompareBits(std::uint16_t bits) {
  if (bits == 0) return kVmePass;
  const bool hasTdo = vme_.Has(VmeInterpreter::kHasTdo);
  const bool hasMask = vme_.Has(VmeInterpreter::kHasMask);
  unsigned differences = 0;
  Shift<Tdo::kRead>(
      port_, bits, vme_.Flows(VmeInterpreter::kCascade), [&](std::uint32_t i) { return TdiByte(i); },
      [&](std::uint32_t i, std::uint8_t in, std::uint8_t shifted) {
        const unsigned mask = hasMask ? ByteAt(vme_.maskData, i) : 0xFFu;
        if (hasTdo) differences |= (in ^ ByteAt(vme_.tdoData, i)) & mask & shifted;
      });
  if (!vme_.Flows(VmeInterpreter::kVerifyUserCode)) return differences == 0 ? kVmePass : kVmeVerifyFailed;

  vme_.flowControl &= static_cast<std::uint16_t>(~VmeInterpreter::kVerifyUserCode);
  if (differences != 0) {
    print_("USERCODE verification failed.  Continue programming......\n\n");
    return kVmePass;
  }
  print_("USERCODE verification passed.  Programming aborted. \n\n");
  return kVmeUserCodePassed;
}
