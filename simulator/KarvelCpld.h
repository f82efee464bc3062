#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "simulator/Faults.h"
#include "simulator/KarvelCells.h"
#include "simulator/ProtocolErrors.h"
#include "simulator/ShiftRegister.h"
#include "simulator/TapMachine.h"

namespace simulator {

/// A strict model of a host card's Karvel CPLD behind the port word that carries its JTAG pins. What it refuses has no
/// effect and goes into `errors()` as a text. docs/karvel-cpld.md has its instructions, registers and times.
///
/// A rising TCK samples TMS and TDI as they were before, and moves the TAP; TDO changes and updates take place at the
/// falling one. Time is handed in with each write, in nanoseconds that never go back. An erase or a program begins when
/// Run-Test/Idle is entered and takes effect when its time is over; the TAP must stay there that long. A copy is a part
/// of its own.
///
///     cpld.WritePort(KarvelCpld::kEnable, now);
///     cpld.WritePort(KarvelCpld::kEnable | KarvelCpld::kTck, now);   // TMS 0: on to Run-Test/Idle
class KarvelCpld {
 public:
  // The port word. All but TDO are driven by the card.
  static constexpr std::uint32_t kTck = 0x01;
  static constexpr std::uint32_t kTms = 0x02;
  static constexpr std::uint32_t kTdi = 0x04;
  static constexpr std::uint32_t kEnable = 0x08;
  static constexpr std::uint32_t kTdo = 0x10;

  static constexpr std::int64_t kEraseNanoseconds = 80'000'000;
  static constexpr std::int64_t kRowNanoseconds = 2'000'000;
  static constexpr std::int64_t kUsercodeNanoseconds = 2'000'000;
  static constexpr std::int64_t kDoneNanoseconds = 1'000'000;

  /// A part after power-up, all pins low.
  explicit KarvelCpld(const KarvelCells& cells = {}) : cells_(cells) {}

  /// The pins as they were last driven, and TDO.
  std::uint32_t ReadPort(std::int64_t nowNanoseconds, FaultPlan* faults = nullptr);
  /// Drives all pins at once. With a plan, asks it about faults of this part.
  void WritePort(std::uint32_t value, std::int64_t nowNanoseconds, FaultPlan* faults = nullptr);

  /// Loses power and gets it back, the pins low and the TAP reset. An erase in flight has erased the first half of the
  /// rows, the USERCODE and the done mark; a row in flight has its first half; USERCODE and done mark in flight are not
  /// programmed.
  void PowerLoss(std::int64_t nowNanoseconds);
  /// Lets an operation in flight come to its end, and takes all pins low. Programming enable that was left high is a
  /// protocol error.
  void Settle();

  /// The pins and TDO, as `ReadPort` gives them, without an access.
  std::uint32_t Pins() const { return pins_ | (Tdo() ? kTdo : 0); }
  TapState tapState() const { return tap_.state(); }

  /// Cells as they are, without regard to what is in flight: for who makes, keeps or damages parts.
  KarvelCells& cells() { return cells_; }
  const KarvelCells& cells() const { return cells_; }
  ProtocolErrors& errors() { return errors_; }
  const ProtocolErrors& errors() const { return errors_; }

 private:
  /// In the order of the table of instructions.
  enum class Instruction : std::uint8_t {
    kBypass,
    kIdcode,
    kUsercode,
    kEnable,
    kDisable,
    kErase,
    kAddress,
    kProgramRow,
    kReadRow,
    kProgramUsercode,
    kProgramDone,
  };
  struct InstructionEntry;
  static const InstructionEntry kInstructions[];
  static const InstructionEntry& EntryOf(Instruction instruction);

  /// What is in flight; the data of a program stand in the shift register.
  struct Operation {
    Instruction instruction;
    bool fails;
    std::int64_t startNanoseconds;
    std::int64_t endNanoseconds;
  };

  bool Tdo() const { return tdoLow_ ? false : unplugged_ || tdo_; }
  void BeginAccess(std::int64_t now, FaultPlan* faults);
  void Rise(bool tms, bool tdi, std::int64_t now, FaultPlan* faults);
  void Fall();
  void CaptureData();
  void UpdateInstruction();
  void UpdateData();
  void SelectRow();
  void Start(std::int64_t now, FaultPlan* faults);
  void EndWhatIsOver(std::int64_t now) {
    if (operation_ && now >= operation_->endNanoseconds) EndOperation();
  }
  void EndOperation();
  void AbortOperation();
  void RefuseAbort(std::int64_t now);
  /// Programs the first bytes of the selected row.
  void ProgramRow(std::size_t bytes);
  void ResetLogic();
  void ResetTap();
  void Refuse(std::string text);

  KarvelCells cells_;
  ProtocolErrors errors_;
  TapMachine tap_;
  ShiftRegister shift_;
  Instruction instruction_ = Instruction::kIdcode;
  std::uint32_t pins_ = 0;
  bool tdo_ = true;
  /// The last rising edge was taken, so that the falling one counts.
  bool clockIsHigh_ = false;
  bool programmingMode_ = false;
  /// An update has just made an operation due: it begins if Run-Test/Idle comes next.
  bool isDue_ = false;
  std::optional<std::uint8_t> selectedRow_;
  std::optional<Operation> operation_;
  // Faults, which last for a run.
  bool unplugged_ = false;
  bool tdoLow_ = false;
};

}  // namespace simulator
