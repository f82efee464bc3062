#include "board/VmePlayer.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <string_view>
#include <utility>

namespace {

constexpr std::string_view kContainerMagic = "ORBO.RBI";
constexpr std::string_view kVmeMagic = "__VME2.0";
/// Magic and length, in front of what a container's header may hold further.
constexpr std::uint32_t kContainerStartBytes = 12;

constexpr int kIsCompressed = 0xF1;
constexpr int kIsPlain = 0xF2;
/// Stands behind the byte code of a heap.
constexpr int kHeapCheck = 0x60;

/// A microsecond count, but no wait is below a millisecond.
constexpr std::uint16_t kShortWait = 1000;
/// Parts of vendor 3 are not ready when they say so.
constexpr int kVendorWithRetries = 3;
constexpr int kMostRetries = 30;

constexpr const char* kErrorTexts[] = {"pass",       "verification fail", "can't find the file", "wrong file type",
                                       "file error", "option error"};

/// The bytes of a shift of so many bits, and one more if they end with a byte, from one buffer to another. No source is
/// a source of zeros.
void CopyShift(const VmeBuffer& from, VmeBuffer& to, std::uint16_t bits) {
  const std::size_t bytes = std::min<std::size_t>(bits / 8u + 1, to.size());
  if (from.empty())
    std::fill_n(to.begin(), bytes, std::uint8_t{0});
  else
    std::copy_n(from.begin(), std::min(bytes, from.size()), to.begin());
}

}  // namespace

VmePlayer::VmePlayer(VmePrint print)
    : print_(std::move(print)), delay_(print_), reader_(interpreter, print_), shifter_(port, interpreter, print_) {}

std::int8_t VmePlayer::PlayVmeFile(const char* path) {
  delay_.BeginFile();
  if (!reader_.Open(path)) return kVmeNoFile;
  if (!NextBytesAre(kContainerMagic)) {
    print_("RBI Header Error\n\r");
    return kVmeWrongType;
  }
  if (!SkipContainerHeader() || !NextBytesAre(kVmeMagic)) return kVmeWrongType;
  interpreter.dataType = interpreter.flowControl = 0;
  const int packing = reader_.ReadFileByte();
  if (packing != kIsCompressed && packing != kIsPlain) return kVmeWrongType;
  if (packing == kIsCompressed) interpreter.dataType |= VmeInterpreter::kCompressed;

  EnterProgramming();
  int code = kVmePass;
  try {
    code = ProcessVme();
  } catch (const std::bad_alloc&) {
    code = kVmeFileError;
  }
  LeaveProgramming();
  reader_.Close();
  return static_cast<std::int8_t>(code);
}

bool VmePlayer::NextBytesAre(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [this](char c) { return reader_.ReadFileByte() == c; });
}

bool VmePlayer::SkipContainerHeader() {
  std::uint32_t headerBytes = 0;
  for (int i = 0; i < 4; ++i)
    headerBytes = headerBytes << 8 | static_cast<std::uint8_t>(reader_.ReadFileByte());
  if (headerBytes < kContainerStartBytes) return false;
  for (std::uint32_t left = headerBytes - kContainerStartBytes; left > 0; --left)
    if (reader_.ReadFileByte() < 0) return false;
  return true;
}

void VmePlayer::EnterProgramming() {
  port.SetPin(JtagPort::kEnable, true);
  port.MoveTap(kTapReset);
}

void VmePlayer::LeaveProgramming() {
  port.MoveTap(kTapReset);
  delay_.Wait(kShortWait);
  port.SetPin(JtagPort::kEnable, false);
}

int VmePlayer::ProcessVme() {
  int code = kVmePass;
  while (true) {
    const int opcode = reader_.GetVmeByte();
    // The end of the data is an end like others; so is the byte 0xFF.
    if (opcode < 0) return opcode == -1 ? code : kVmeFileError;
    switch (opcode) {
      case kVmeEndDr:
        interpreter.endDR = static_cast<std::uint8_t>(reader_.GetVmeByte());
        break;
      case kVmeEndIr:
        interpreter.endIR = static_cast<std::uint8_t>(reader_.GetVmeByte());
        break;
      case kVmeHir:
      case kVmeTir:
      case kVmeHdr:
      case kVmeTdr:
        code = SetHeaderTrailer(static_cast<std::uint8_t>(opcode));
        if (code != kVmePass) return code;
        break;
      case kVmeFrequency:
        if (!port.SetFrequency(reader_.ReadVmeNumber())) return kVmeFileError;
        break;
      case kVmeState:
        if (!port.MoveTap(static_cast<std::uint8_t>(reader_.GetVmeByte()))) return kVmeFileError;
        break;
      case kVmeSir:
      case kVmeSdr:
      case kVmeXsdr:
        code = ShiftVme(static_cast<std::uint8_t>(opcode));
        if (code != kVmePass) return code;
        break;
      case kVmeMem:
        interpreter.maxSize = reader_.ReadVmeNumber();
        break;
      case kVmeWait:
        delay_.Wait(reader_.ReadVmeNumber());
        break;
      case kVmeTck:
        port.PulseClocks(reader_.ReadVmeNumber());
        break;
      case kVmeShr:
        SetShift(VmeInterpreter::kShiftRight);
        break;
      case kVmeShl:
        SetShift(VmeInterpreter::kShiftLeft);
        break;
      case kVmeSetFlow:
        interpreter.flowControl |= reader_.ReadVmeNumber();
        break;
      case kVmeResetFlow:
        interpreter.flowControl &= static_cast<std::uint16_t>(~reader_.ReadVmeNumber());
        break;
      case kVmeHeap:
        // The check byte stays as the code until a shift or a loop has another. A file that ends before one fails with
        // 96, and is meant to.
        code = reader_.GetVmeByte();
        if (code != kHeapCheck) return kVmeFileError;
        interpreter.heapSize = reader_.ReadVmeNumber();
        interpreter.AllocVmeBuffer(kVmeHeap, interpreter.heapSize);
        break;
      case kVmeRepeat:
        code = RepeatLoop(reader_.ReadVmeNumber());
        if (code != kVmePass) return code;
        break;
      case kVmeVendor:
        if (const int vendor = reader_.GetVmeByte(); vendor >= 1 && vendor <= 3)
          interpreter.vendor = static_cast<std::uint8_t>(vendor);
        break;
      case kVmeVues:
        interpreter.flowControl |= VmeInterpreter::kVerifyUserCode;
        break;
      case kVmeEndLoop:
      case kVmeEndVme:
        return code;
      default:
        return kVmeFileError;
    }
  }
}

void VmePlayer::SetShift(std::uint16_t flowBit) {
  interpreter.flowControl |= flowBit;
  interpreter.shiftValue = static_cast<std::uint16_t>(interpreter.repeatLoops * reader_.GetVmeByte());
}

int VmePlayer::SetHeaderTrailer(std::uint8_t opcode) {
  const auto set = [&](std::uint16_t VmeInterpreter::*size, VmeBuffer VmeInterpreter::*data) {
    interpreter.*size = interpreter.dataSize;
    if (interpreter.dataSize == 0) return;
    interpreter.AllocVmeBuffer(opcode, interpreter.dataSize);
    reader_.ReadVmeData(interpreter.*data);
  };

  interpreter.dataSize = reader_.ReadVmeNumber();
  const auto compressedBit = static_cast<std::uint16_t>(interpreter.dataType & VmeInterpreter::kCompressed);
  if (interpreter.dataSize != 0) {
    reader_.GetVmeByte();  // an opcode that can only be TDI
    // These data are never packed.
    interpreter.dataType &= static_cast<std::uint16_t>(~VmeInterpreter::kCompressed);
  }
  switch (opcode) {
    case kVmeHir:
      set(&VmeInterpreter::hirSize, &VmeInterpreter::hirData);
      break;
    case kVmeTir:
      set(&VmeInterpreter::tirSize, &VmeInterpreter::tirData);
      break;
    case kVmeHdr:
      set(&VmeInterpreter::hdrSize, &VmeInterpreter::hdrData);
      break;
    default:
      set(&VmeInterpreter::tdrSize, &VmeInterpreter::tdrData);
      break;
  }
  interpreter.dataType |= compressedBit;
  if (interpreter.dataSize == 0) return kVmePass;
  return reader_.GetVmeByte() == kVmeContinue ? kVmePass : kVmeFileError;
}

int VmePlayer::RepeatLoop(std::uint16_t count) {
  interpreter.repeatLoops = 0;
  interpreter.shiftValue = 0;
  const std::uint16_t size = interpreter.heapSize;
  if (size == 0 || interpreter.heapData.size() < size) return kVmeFileError;
  for (std::uint16_t i = 0; i < size; ++i)
    interpreter.heapData[i] = static_cast<std::uint8_t>(reader_.GetVmeByte());
  if (interpreter.heapData[size - 1u] != kVmeEndLoop) return kVmeFileError;

  interpreter.flowControl |= VmeInterpreter::kRepeating;
  interpreter.dataType |= VmeInterpreter::kFromHeap;
  int code = kVmePass;
  // A passed USERCODE, which is positive, does not end a loop. Only the last pass counts; both are meant.
  for (std::uint32_t pass = 0; pass < count && code >= 0; ++pass) {
    interpreter.heapIndex = 0;
    code = ProcessVme();
    ++interpreter.repeatLoops;
  }
  // A loop in a loop takes these from the outer one as well.
  interpreter.flowControl &= static_cast<std::uint16_t>(~VmeInterpreter::kRepeating);
  interpreter.dataType &= static_cast<std::uint16_t>(~VmeInterpreter::kFromHeap);
  return code;
}

int VmePlayer::ShiftVme(std::uint8_t opcode) {
  interpreter.dataSize = reader_.ReadVmeNumber();
  interpreter.dataType &=
      static_cast<std::uint16_t>(~(VmeInterpreter::kExpress | VmeInterpreter::kSirActive | VmeInterpreter::kSdrActive));
  if (opcode == kVmeXsdr) interpreter.dataType |= VmeInterpreter::kExpress;
  const bool isSir = opcode == kVmeSir;
  interpreter.dataType |= isSir ? VmeInterpreter::kSirActive : VmeInterpreter::kSdrActive;
  if (!(isSir ? EnterShiftIr() : EnterShiftDr())) return kVmeFileError;
  if (!ReadDataBlocks()) return kVmeFileError;

  const int code = ShiftData();
  if (code == kVmeFileError) return code;
  // So that a following XTDO compares with what was shifted in here.
  if (!isSir && !interpreter.tdoData.empty()) CopyShift(interpreter.tdiData, interpreter.tdoData, interpreter.dataSize);
  const bool left = isSir ? LeaveShift(kVmeTir, interpreter.tirSize, interpreter.endIR)
                          : LeaveShift(kVmeTdr, interpreter.tdrSize, interpreter.endDR);
  return left ? code : kVmeFileError;
}

bool VmePlayer::EnterShiftIr() {
  if (interpreter.Flows(VmeInterpreter::kCascade)) return port.MoveTap(kTapShiftIr);
  if (!port.MoveTap(kTapIrPause) || !port.MoveTap(kTapShiftIr)) return false;
  if (interpreter.hirSize == 0) return true;
  shifter_.BypassBits(kVmeHir, interpreter.hirSize);
  port.PulseClock();
  return true;
}

bool VmePlayer::EnterShiftDr() {
  if (port.tapState() == kTapShiftDr) return true;
  const bool isCascade = interpreter.Flows(VmeInterpreter::kCascade);
  if (isCascade && port.tapState() != kTapDrPause) return port.MoveTap(kTapShiftDr);
  if (!port.MoveTap(kTapDrPause) || !port.MoveTap(kTapShiftDr)) return false;
  if (interpreter.hdrSize == 0) return true;
  shifter_.BypassBits(kVmeHdr, interpreter.hdrSize);
  port.PulseClock();
  return true;
}

/// The shift itself. `kVmeFileError` when the TAP could not go on its way.
int VmePlayer::ShiftData() {
  if (interpreter.Has(VmeInterpreter::kHasDmask)) return ReadModifyWrite();
  if (!interpreter.Has(VmeInterpreter::kHasTdo)) return shifter_.SendBits(interpreter.dataSize);
  const int code = shifter_.ReadCompareBits(interpreter.dataSize);
  return code == kVmeVerifyFailed && interpreter.vendor == kVendorWithRetries ? CompareAgain() : code;
}

/// Reads the data register, puts the masked bits in and shifts it back.
int VmePlayer::ReadModifyWrite() {
  shifter_.ReadSaveBits(interpreter.dataSize);
  if (interpreter.tdrSize != 0) {
    port.PulseClock();
    shifter_.BypassBits(kVmeTdr, interpreter.tdrSize);
  }
  if (!port.MoveTap(kTapDrPause) || !port.MoveTap(kTapShiftDr)) return kVmeFileError;
  if (interpreter.hdrSize != 0) {
    shifter_.BypassBits(kVmeHdr, interpreter.hdrSize);
    port.PulseClock();
  }
  // No file need have given TDI data so far.
  if (interpreter.tdiData.empty()) interpreter.tdiData.resize(interpreter.tdoData.size());
  CopyShift(interpreter.tdoData, interpreter.tdiData, interpreter.dataSize);
  interpreter.dataType &= static_cast<std::uint16_t>(~(VmeInterpreter::kHasDmask | VmeInterpreter::kHasTdo));
  return shifter_.SendBits(interpreter.dataSize);
}

/// The TAP ends each try in idle and is not taken back before the next compare, so that the retries see what TDO is
/// then. Parts of this vendor count on it.
int VmePlayer::CompareAgain() {
  int code = kVmeVerifyFailed;
  for (int i = 0; i < kMostRetries; ++i) {
    code = shifter_.ReadCompareBits(interpreter.dataSize);
    if (code == kVmePass) return code;
    if (!port.MoveTap(kTapDrPause)) return kVmeFileError;
    shifter_.BypassBits(kVmeTdr, interpreter.tdrSize);
    if (!port.MoveTap(interpreter.endDR) || !port.MoveTap(kTapIdle)) return kVmeFileError;
    delay_.Wait(kShortWait);
  }
  return code;
}

/// A cascade stays in its shift state.
bool VmePlayer::LeaveShift(std::uint8_t trailerOpcode, std::uint16_t trailerBits, std::uint8_t endState) {
  if (interpreter.Flows(VmeInterpreter::kCascade)) return true;
  if (trailerBits != 0) {
    port.PulseClock();
    shifter_.BypassBits(trailerOpcode, trailerBits);
  }
  return port.MoveTap(endState);
}

bool VmePlayer::ReadDataBlocks() {
  const auto heapBit = static_cast<std::uint16_t>(interpreter.dataType & VmeInterpreter::kFromHeap);
  interpreter.dataType &= static_cast<std::uint16_t>(
      ~(VmeInterpreter::kHasDmask | VmeInterpreter::kHasTdi | VmeInterpreter::kHasTdo | VmeInterpreter::kHasMask));
  while (true) {
    const int opcode = reader_.GetVmeByte();
    if (opcode < 0) {
      interpreter.dataType |= heapBit;
      return false;
    }
    // Before the opcode is judged: those of header, trailer and heap remake their buffers, and fail then. Meant to be.
    interpreter.AllocVmeBuffer(static_cast<std::uint8_t>(opcode), interpreter.maxSize);
    if (opcode == kVmeContinue) return true;
    if (!ReadBlock(static_cast<std::uint8_t>(opcode))) return false;
    if (opcode == kVmeTdi && !ShiftTdiData()) return false;
    interpreter.dataType |= heapBit;
  }
}

bool VmePlayer::ReadBlock(std::uint8_t opcode) {
  // A buffer can be too small for the shift: MEM may be missing, or the buffer be one of an earlier size.
  const auto read = [this](std::uint16_t flag, VmeBuffer& buffer) {
    interpreter.dataType |= flag;
    if ((interpreter.dataSize + 7u) / 8u > buffer.size()) return false;
    reader_.ReadVmeData(buffer);
    return true;
  };
  switch (opcode) {
    case kVmeTdi:
      return read(VmeInterpreter::kHasTdi, interpreter.tdiData);
    case kVmeTdo:
      return read(VmeInterpreter::kHasTdo, interpreter.tdoData);
    case kVmeMask:
      return read(VmeInterpreter::kHasMask, interpreter.maskData);
    case kVmeDmask:
      return read(VmeInterpreter::kHasDmask, interpreter.dmaskData);
    case kVmeXtdo:
      interpreter.dataType |= VmeInterpreter::kHasTdo;
      return (interpreter.dataSize + 7u) / 8u <= interpreter.tdoData.size();
    default:
      return false;  // XTDI too, though it has a buffer
  }
}

bool VmePlayer::ShiftTdiData() {
  const auto shift = [this](std::uint16_t flowBit, std::uint8_t direction) {
    if (!interpreter.Flows(flowBit)) return true;
    if (!DynamicShift(direction, interpreter.shiftValue)) return false;
    interpreter.flowControl &= static_cast<std::uint16_t>(~flowBit);
    return true;
  };
  return shift(VmeInterpreter::kShiftLeft, kVmeShl) && shift(VmeInterpreter::kShiftRight, kVmeShr);
}

/// Moves each set byte of the TDI data towards the first byte, bit by bit. False when one would leave the data.
bool VmePlayer::DynamicShift(std::uint8_t direction, std::uint16_t amount) {
  const bool isShr = direction == kVmeShr;
  const std::uint32_t bytes = (interpreter.dataSize + 7u) / 8u;
  for (std::uint32_t i = 0; i < bytes; ++i) {
    if (interpreter.tdiData[i] == 0) continue;
    for (std::uint32_t step = 0; step < amount; ++step) {
      const unsigned byte = interpreter.tdiData[i];
      interpreter.tdiData[i] = static_cast<std::uint8_t>(isShr ? byte << 1 : byte >> 1);
      if (interpreter.tdiData[i] != 0) continue;
      if (i == 0) return false;
      // SHL carries 8 into the byte in front, where 0x80 would go on cleanly. Files are made for the 8.
      interpreter.tdiData[--i] = isShr ? 1 : 8;
    }
  }
  return true;
}

VmePlayer& TheVmePlayer() {
  static VmePlayer player;
  return player;
}

const char* VmeErrorText(int code) {
  const bool hasText = code <= 0 && code > -static_cast<int>(std::size(kErrorTexts));
  return hasText ? kErrorTexts[-code] : nullptr;
}
