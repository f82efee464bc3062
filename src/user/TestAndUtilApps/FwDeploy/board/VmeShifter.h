#pragma once

#include <cstdint>

#include "board/JtagPort.h"
#include "board/VmeInterpreter.h"
#include "board/VmePrint.h"

/// The ways in which a VME file's data go through the TAP. Bits go from the top bit of each byte downward. The last bit
/// of a shift is driven but not clocked, since the clock that leaves the shift state takes it along; in a cascade the
/// TAP stays, and most shifts clock it.
///
/// Data that are not there, or too short, are zeros.
class VmeShifter {
 public:
  /// All must outlive this object.
  VmeShifter(JtagPort& port, VmeInterpreter& interpreter, const VmePrint& print)
      : port_(port), vme_(interpreter), print_(print) {}

  /// Shifts the header or trailer of this opcode (HIR, TIR, HDR, TDR). The last bit is never clocked.
  void BypassBits(std::uint8_t opcode, std::uint16_t bits);
  /// Shifts TDI data out, those of an earlier shift if this one had none. 0.
  int SendBits(std::uint16_t bits);
  /// Shifts TDI data out and keeps, in TDO data, what came in; but the TDI bit where DMASK has a 1. The last bit is
  /// not clocked, in a cascade neither. 0.
  int ReadSaveBits(std::uint16_t bits);
  /// Shifts TDI data out and compares what comes in with TDO data, where MASK has a 1, or everywhere without one. 0
  /// for equal data and -1 for others. If the compare is marked as that of the USERCODE it says so to the user and
  /// takes the mark away: equal is 1, which stops the player, and different is 0.
  int ReadCompareBits(std::uint16_t bits);

 private:
  std::uint8_t TdiByte(std::uint32_t index) const;
  void ShiftOut(const VmeBuffer& data, std::uint16_t bits, bool isLastClocked);

  JtagPort& port_;
  VmeInterpreter& vme_;
  const VmePrint& print_;
};
