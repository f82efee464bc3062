#include "simulator/KarvelCpld.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <utility>

#include "simulator/HexText.h"

namespace simulator {
namespace {

constexpr std::uint32_t kOutputs = KarvelCpld::kTck | KarvelCpld::kTms | KarvelCpld::kTdi | KarvelCpld::kEnable;
constexpr std::uint32_t kInstructionBits = 8;
/// What the instruction register captures: the standard wants a 1 as the first bit out and a 0 behind it; the next bit
/// is free for a status, and says here that the part is done.
constexpr std::uint8_t kNotDoneCapture[] = {0x80};
constexpr std::uint8_t kDoneCapture[] = {0xA0};
constexpr std::uint8_t kIdcodeBytes[] = {0x4B, 0x52, 0x56, 0x4C};
constexpr std::uint32_t kRowBits = sizeof(KarvelRow) * 8;

bool IsErased(std::span<const std::uint8_t> cells) {
  return std::all_of(cells.begin(), cells.end(), [](std::uint8_t byte) { return byte == 0xFF; });
}

/// Programming only clears bits.
void Program(std::span<std::uint8_t> cells, std::span<const std::uint8_t> data) {
  for (std::size_t i = 0; i < cells.size(); ++i)
    cells[i] &= data[i];
}

}  // namespace

struct KarvelCpld::InstructionEntry {
  std::uint8_t code;  ///< as it stands in a VME file, top bit first
  const char* name;
  std::uint32_t bits;  ///< of its data register; 1 is the bypass register, which takes any number
  bool needsProgrammingMode;
  std::int64_t nanoseconds;  ///< of the operation that it starts; 0 for none
};

const KarvelCpld::InstructionEntry KarvelCpld::kInstructions[] = {
    {0xFF, "BYPASS", 1, false, 0},
    {0x16, "IDCODE", 32, false, 0},
    {0x17, "USERCODE", 32, false, 0},
    {0x15, "ENABLE", 1, false, 0},
    {0x1E, "DISABLE", 1, false, 0},
    {0x03, "ERASE", 1, true, kEraseNanoseconds},
    {0x01, "ADDRESS", KarvelCells::kRowCount, true, 0},
    {0x67, "PROGRAM ROW", kRowBits, true, kRowNanoseconds},
    {0x2A, "READ ROW", kRowBits, true, 0},
    {0x1A, "PROGRAM USERCODE", 32, true, kUsercodeNanoseconds},
    {0x2F, "PROGRAM DONE", 1, true, kDoneNanoseconds},
};

const KarvelCpld::InstructionEntry& KarvelCpld::EntryOf(Instruction instruction) {
  return kInstructions[static_cast<std::size_t>(instruction)];
}

void KarvelCpld::Refuse(std::string text) {
  errors_.Add("karvel: " + std::move(text));
}

void KarvelCpld::BeginAccess(std::int64_t now, FaultPlan* faults) {
  EndWhatIsOver(now);
  if (!Strikes(faults, Fault::kKarvelUnplugged) || unplugged_) return;
  unplugged_ = true;
  ResetTap();
}

std::uint32_t KarvelCpld::ReadPort(std::int64_t nowNanoseconds, FaultPlan* faults) {
  BeginAccess(nowNanoseconds, faults);
  if (Strikes(faults, Fault::kKarvelTdoLow)) tdoLow_ = true;
  return Pins();
}

void KarvelCpld::WritePort(std::uint32_t value, std::int64_t nowNanoseconds, FaultPlan* faults) {
  BeginAccess(nowNanoseconds, faults);
  if ((value & ~kOutputs) != 0) return Refuse("write of " + Hex(value, 8) + ", which is more than the driven pins");
  const std::uint32_t before = std::exchange(pins_, value);
  if (unplugged_) return;
  const std::uint32_t changed = before ^ value;
  if ((changed & before & kEnable) != 0) {
    if (operation_) RefuseAbort(nowNanoseconds);
    ResetTap();
  }
  if ((changed & kTck) == 0) return;
  if ((value & kTck) == 0) {
    if (clockIsHigh_) Fall();
  } else if ((before & value & kEnable) == 0) {
    Refuse("TCK raised while programming enable is low");
  } else if ((changed & (kTms | kTdi)) != 0) {
    Refuse("TCK raised in the write that changes TMS or TDI");
  } else {
    Rise((value & kTms) != 0, (value & kTdi) != 0, nowNanoseconds, faults);
  }
}

void KarvelCpld::Rise(bool tms, bool tdi, std::int64_t now, FaultPlan* faults) {
  clockIsHigh_ = true;
  switch (tap_.state()) {
    case TapState::kShiftDr:
    case TapState::kShiftIr:
      shift_.Shift(tdi);
      break;
    case TapState::kCaptureDr:
      CaptureData();
      break;
    case TapState::kCaptureIr:
      shift_.Capture(cells_.done ? kDoneCapture : kNotDoneCapture, kInstructionBits);
      break;
    case TapState::kRunTestIdle:
      if (tms && operation_) {
        RefuseAbort(now);
        AbortOperation();
      }
      break;
    default:
      break;
  }
  tap_.Clock(tms);
  // Nothing but an update makes an operation due, so that this is the clock behind one.
  if (isDue_) {
    isDue_ = false;
    if (tap_.state() == TapState::kRunTestIdle) Start(now, faults);
  }
}

void KarvelCpld::Fall() {
  clockIsHigh_ = false;
  tdo_ = true;
  switch (tap_.state()) {
    case TapState::kShiftDr:
    case TapState::kShiftIr:
      tdo_ = shift_.Out();
      break;
    case TapState::kUpdateIr:
      UpdateInstruction();
      break;
    case TapState::kUpdateDr:
      UpdateData();
      break;
    case TapState::kTestLogicReset:
      ResetLogic();
      break;
    default:
      break;
  }
}

void KarvelCpld::CaptureData() {
  const std::uint32_t bits = EntryOf(instruction_).bits;
  switch (instruction_) {
    case Instruction::kIdcode:
      return shift_.Capture(kIdcodeBytes, bits);
    case Instruction::kUsercode:
      return shift_.Capture(cells_.usercode, bits);
    case Instruction::kReadRow:
      if (selectedRow_) return shift_.Capture(cells_.rows[*selectedRow_], bits);
      Refuse("READ ROW without a selected row");
      break;
    default:
      break;
  }
  shift_.Capture({}, bits);
}

void KarvelCpld::UpdateInstruction() {
  // Moves of the TAP pass through here too.
  if (shift_.Shifted() == 0) return;
  if (shift_.Shifted() != kInstructionBits)
    return Refuse("an instruction of " + std::to_string(shift_.Shifted()) + " bits instead of 8");
  const std::uint8_t code = shift_.Bytes()[0];
  const auto* const entry = std::find_if(std::begin(kInstructions), std::end(kInstructions),
                                         [&](const InstructionEntry& each) { return each.code == code; });
  instruction_ = Instruction::kBypass;
  if (entry == std::end(kInstructions)) return Refuse("unknown instruction " + Hex(code, 2));
  if (entry->needsProgrammingMode && !programmingMode_)
    return Refuse(std::string(entry->name) + " outside programming mode");
  instruction_ = static_cast<Instruction>(entry - std::begin(kInstructions));
  if (instruction_ == Instruction::kEnable) programmingMode_ = true;
  if (instruction_ == Instruction::kDisable) programmingMode_ = false;
  isDue_ = instruction_ == Instruction::kErase || instruction_ == Instruction::kProgramDone;
}

void KarvelCpld::UpdateData() {
  const InstructionEntry& entry = EntryOf(instruction_);
  if (shift_.Shifted() == 0 || entry.bits == 1) return;
  if (shift_.Shifted() != entry.bits)
    return Refuse(std::to_string(shift_.Shifted()) + " bits for " + entry.name + " instead of " +
                  std::to_string(entry.bits));
  if (instruction_ == Instruction::kAddress) SelectRow();
  isDue_ = instruction_ == Instruction::kProgramRow || instruction_ == Instruction::kProgramUsercode;
}

void KarvelCpld::SelectRow() {
  std::uint64_t select = 0;
  for (const std::uint8_t byte : shift_.Bytes())
    select = select << 8 | byte;
  selectedRow_.reset();
  if (!std::has_single_bit(select)) return Refuse("ADDRESS " + Hex(select, 16) + " does not select one row");
  selectedRow_ = static_cast<std::uint8_t>(std::countr_zero(select));
}

void KarvelCpld::Start(std::int64_t now, FaultPlan* faults) {
  bool fails = false;
  switch (instruction_) {
    case Instruction::kErase:
      fails = Strikes(faults, Fault::kKarvelEraseFails);
      break;
    case Instruction::kProgramRow:
      if (!selectedRow_) return Refuse("PROGRAM ROW without a selected row");
      if (!IsErased(cells_.rows[*selectedRow_]))
        return Refuse("PROGRAM ROW over row " + std::to_string(*selectedRow_) + ", which is not erased");
      fails = Strikes(faults, Fault::kKarvelRowFails);
      break;
    case Instruction::kProgramUsercode:
      if (!IsErased(cells_.usercode)) return Refuse("PROGRAM USERCODE over one that is not erased");
      break;
    default:
      break;
  }
  operation_ = Operation{instruction_, fails, now, now + EntryOf(instruction_).nanoseconds};
}

void KarvelCpld::ProgramRow(std::size_t bytes) {
  Program(std::span(cells_.rows[*selectedRow_]).first(bytes), shift_.Bytes());
}

void KarvelCpld::EndOperation() {
  const Operation ended = *std::exchange(operation_, std::nullopt);
  if (ended.fails) return;
  switch (ended.instruction) {
    case Instruction::kErase:
      cells_ = KarvelCells();
      break;
    case Instruction::kProgramRow:
      ProgramRow(sizeof(KarvelRow));
      break;
    case Instruction::kProgramUsercode:
      Program(cells_.usercode, shift_.Bytes());
      break;
    case Instruction::kProgramDone:
      cells_.done = true;
      break;
    default:
      break;
  }
}

void KarvelCpld::AbortOperation() {
  if (!operation_) return;
  const Operation aborted = *std::exchange(operation_, std::nullopt);
  if (aborted.fails) return;
  if (aborted.instruction == Instruction::kErase) {
    std::fill_n(cells_.rows.begin(), cells_.rows.size() / 2, KarvelCells().rows[0]);
    cells_.usercode = KarvelCells().usercode;
    cells_.done = false;
  } else if (aborted.instruction == Instruction::kProgramRow) {
    ProgramRow(sizeof(KarvelRow) / 2);
  }
}

void KarvelCpld::RefuseAbort(std::int64_t now) {
  Refuse(std::string(EntryOf(operation_->instruction).name) + " aborted after " +
         std::to_string(now - operation_->startNanoseconds) + " of " +
         std::to_string(operation_->endNanoseconds - operation_->startNanoseconds) + " ns");
}

void KarvelCpld::ResetLogic() {
  instruction_ = Instruction::kIdcode;
  programmingMode_ = false;
  selectedRow_.reset();
}

void KarvelCpld::ResetTap() {
  AbortOperation();
  ResetLogic();
  tap_ = TapMachine();
  tdo_ = true;
  clockIsHigh_ = false;
  isDue_ = false;
}

void KarvelCpld::PowerLoss(std::int64_t nowNanoseconds) {
  EndWhatIsOver(nowNanoseconds);
  ResetTap();
  pins_ = 0;
  unplugged_ = false;
  tdoLow_ = false;
}

void KarvelCpld::Settle() {
  if (operation_) EndOperation();
  if ((pins_ & kEnable) != 0) Refuse("programming enable was left high");
  ResetTap();
  pins_ = 0;
  unplugged_ = false;
  tdoLow_ = false;
}

}  // namespace simulator
