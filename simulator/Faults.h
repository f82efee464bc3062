#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// All that can be made to go wrong on a bench. Each fault strikes events of one kind.
enum class Fault {
  kDeviceMissing,
  kClassSetFails,
  kInterfaceDetailFails,
  kOpenFails,
  kControlFails,
  kMemoryMapFails,
  kMemoryMapShort,
  kMapRegistersFails,
  kMapRegistersShort,
  kMapRefused,
  kMapRefusedSecond,
  kReadLost,
  kWriteLost,
  kEraseFails,
  kEraseStuck,
  kBufferBusy,
  kProgramFails,
  kProgramStuck,
  kKarvelUnplugged,
  kKarvelTdoLow,
  kKarvelEraseFails,
  kKarvelRowFails,
  kBoxSilent,
  kBoxOff,
  kBoxLate,
  kBoxReplyCut,
  kBoxNoHeader,
  kBoxLengthLow,
  kBoxLengthHigh,
  kBoxValuesMissing,
  kBoxStatusFail,
  kBoxStatusNotSupported,
  kBoxStatusTransmit,
  kBoxStatusTimeOut,
  kBoxStatusUnknown,
  kTransferRefused,
  kProgramAnswerWrong,
  kCommandFifoFull,
  kStaleReplies,
  kTalcFails,
  kTalcShort,
  kTalcTimeOut,
  kTalcUnwritten,
  kTalcBadHeader,
  kModelFails,
  kSlotsInvalid,
  kSlotFails,
  kVpdFails,
  kBoardVpdDamaged,
  kPartUnknown,
  kPowerCut,
};

/// One row of the table of faults.
struct FaultEntry {
  Fault fault;
  std::string_view name;
  std::string_view strikes;  ///< the kind of event that is counted
  std::string_view meaning;  ///< what a struck event does
  bool needsNumber;          ///< cannot strike every event
};

/// Every fault, in the order of the enumeration. A new one is a row here and the question at the place that it strikes.
std::span<const FaultEntry> FaultTable();

/// A fault as it is asked for: the `number`-th event from 1 on, or every one.
struct FaultRequest {
  Fault fault;
  std::optional<std::uint64_t> number;
};

/// Reads "NAME" or "NAME@N", N a decimal number from 1 on. Throws `std::invalid_argument`, whose text says what is
/// wrong with it, for an unknown name, a bad number, or a number that is missing where one is needed.
FaultRequest ParseFault(std::string_view text);

/// Counts events by kind, and says which of them a fault strikes. One plan serves a whole run.
///
///     FaultPlan plan;
///     plan.Add(ParseFault("erase-fails@2"));
///     plan.Strikes(Fault::kEraseFails);   // false
///     plan.Strikes(Fault::kEraseFails);   // true: the second erase
class FaultPlan {
 public:
  void Add(const FaultRequest& request) { requests_.push_back(request); }
  /// Counts one event of this fault's kind. True when it is struck.
  bool Strikes(Fault fault);
  /// How many events of this fault's kind there were.
  std::uint64_t Count(Fault fault) const { return counts_[static_cast<std::size_t>(fault)]; }

 private:
  std::vector<FaultRequest> requests_;
  std::array<std::uint64_t, static_cast<std::size_t>(Fault::kPowerCut) + 1> counts_{};
};

/// Asks a plan, if there is one.
inline bool Strikes(FaultPlan* plan, Fault fault) {
  return plan != nullptr && plan->Strikes(fault);
}

/// Thrown out of the register write or Talc call at which the plug is pulled. Derives from nothing, so that only a
/// handler that means it, or everything, catches it.
struct PowerCut {
  std::uint64_t write;  ///< the one that did not take place, from 1 on
};

}  // namespace simulator
