#pragma once

#include <cstdint>
#include <vector>

#include "board/JtagPort.h"

/// The byte codes of a VME file.
enum VmeOpcode : std::uint8_t {
  kVmeEndDr = 0x02,
  kVmeEndIr = 0x03,
  kVmeHir = 0x06,
  kVmeTir = 0x07,
  kVmeHdr = 0x08,
  kVmeTdr = 0x09,
  kVmeFrequency = 0x0B,
  kVmeState = 0x10,
  kVmeSir = 0x11,
  kVmeSdr = 0x12,
  kVmeTdi = 0x13,
  kVmeTdo = 0x14,
  kVmeMask = 0x15,
  kVmeXsdr = 0x16,
  kVmeXtdi = 0x17,
  kVmeXtdo = 0x18,
  kVmeMem = 0x19,
  kVmeWait = 0x1A,
  kVmeTck = 0x1B,
  kVmeShr = 0x23,
  kVmeShl = 0x24,
  kVmeSetFlow = 0x30,
  kVmeResetFlow = 0x31,
  kVmeHeap = 0x32,
  kVmeRepeat = 0x33,
  kVmeVendor = 0x56,
  kVmeEndLoop = 0x59,
  kVmeVues = 0x61,
  kVmeDmask = 0x62,
  kVmeContinue = 0x70,
  kVmeEndVme = 0x7F,
};

/// What a file ends with. Other numbers come out as well: 1 for a passed USERCODE, 96 for a heap that nothing used.
enum VmeCode : int {
  kVmePass = 0,
  kVmeVerifyFailed = -1,
  kVmeNoFile = -2,
  kVmeWrongType = -3,
  kVmeFileError = -4,
  kVmeUserCodePassed = 1,
};

/// A buffer of the player. Empty until a file first needs it; then always filled with zeros before anything is read
/// into it, and at least two bytes long.
using VmeBuffer = std::vector<std::uint8_t>;

/// All that the player knows, as a record. It outlives the files: what one leaves behind, the next one finds.
struct VmeInterpreter {
  // Bits of dataType.
  static constexpr std::uint16_t kExpress = 0x0001;
  static constexpr std::uint16_t kSirActive = 0x0002;
  static constexpr std::uint16_t kSdrActive = 0x0004;
  static constexpr std::uint16_t kCompressed = 0x0008;
  static constexpr std::uint16_t kHasTdi = 0x0010;
  static constexpr std::uint16_t kHasTdo = 0x0020;
  static constexpr std::uint16_t kHasMask = 0x0040;
  static constexpr std::uint16_t kFromHeap = 0x0080;
  static constexpr std::uint16_t kHasDmask = 0x8000;

  // Bits of flowControl.
  static constexpr std::uint16_t kCascade = 0x0002;
  static constexpr std::uint16_t kRepeating = 0x0008;
  static constexpr std::uint16_t kShiftRight = 0x0080;
  static constexpr std::uint16_t kShiftLeft = 0x0100;
  static constexpr std::uint16_t kVerifyUserCode = 0x0200;

  std::uint16_t dataType = 0;     ///< flags of the current data
  std::uint16_t flowControl = 0;  ///< flags of the running file
  std::uint16_t dataSize = 0;     ///< of the current shift, in bits
  std::uint16_t maxSize = 0;      ///< what TDI, TDO, MASK and DMASK buffers are made for, in bits

  std::uint16_t hirSize = 0;  ///< in bits, as the next three
  std::uint16_t tirSize = 0;
  std::uint16_t hdrSize = 0;
  std::uint16_t tdrSize = 0;
  VmeBuffer hirData, tirData, hdrData, tdrData;

  VmeBuffer tdiData, tdoData, maskData, dmaskData;
  /// The size that one of these four was last made for; one word for all of them, and meant to be.
  std::uint16_t previousSize = 0;

  VmeBuffer heapData;
  std::uint16_t heapSize = 0;  ///< in bytes
  /// Where the heap is read. Wider than the size, so that the end of the largest heap is an end.
  std::uint32_t heapIndex = 0;
  std::uint16_t repeatLoops = 0;  ///< passes of the running loop
  std::uint16_t shiftValue = 0;   ///< amount of the pending SHR or SHL

  std::uint8_t vendor = 0;
  std::uint8_t endDR = kTapDrPause;
  std::uint8_t endIR = kTapIrPause;

  bool Has(std::uint16_t dataTypeBit) const { return (dataType & dataTypeBit) != 0; }
  bool Flows(std::uint16_t flowBit) const { return (flowControl & flowBit) != 0; }

  /// Makes the buffer that an opcode fills: zeros, `size` / 8 + 2 bytes for `size` bits, or `size` + 2 bytes for a
  /// heap. TDI, TDO, MASK and DMASK stay as they are when they exist and the last of the four to be made had this size.
  /// Other opcodes have no buffer.
  void AllocVmeBuffer(std::uint8_t opcode, std::uint16_t size);
  /// Gives all buffers back. The installer has no use for it: they serve the next file.
  void FreeVmeBuffers();
};
