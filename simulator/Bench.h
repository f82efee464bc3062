#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "simulator/HostCard.h"
#include "simulator/MorvakUnit.h"
#include "simulator/SimulatedPlatform.h"
#include "simulator/VeltraBox.h"

namespace simulator {

/// All that a bench is at one moment, as a value: it copies in microseconds, and can be kept in a folder.
struct BenchState {
  std::int64_t clockNanoseconds = 0;
  /// The cards in the order of `kHostCards`; nothing where none is plugged in.
  std::array<std::optional<HostCardState>, 2> cards;
  /// The break-out box; nothing where there is none. It is connected to the first of the cards.
  std::optional<VeltraBoxState> box;
  /// The Orbo QX; nothing where there is none.
  std::optional<MorvakUnitState> unit;
};

/// One part of the hardware, as it is shown.
struct PartRow {
  std::string part;
  /// What it runs, and what it will run after the next power-up; nothing for an erased part.
  std::optional<std::uint16_t> running;
  std::optional<std::uint16_t> stored;
  /// What the part refused, as texts; if there was more, a last text says how much.
  std::vector<std::string> errors;
};

/// The hardware as a whole, alive in memory, and the platform through which a program meets it.
///
///     Bench bench(MakeBench({}));
///     {
///       platform::ScopedPlatform current(bench.platform());
///       ...                                          // run the program
///     }
///     Bench after(bench.StateAfterPowerLoss());      // what a plug pulled here and now would leave
class Bench {
 public:
  explicit Bench(BenchState state);
  Bench(const Bench&) = delete;
  Bench& operator=(const Bench&) = delete;

  SimulatedPlatform& platform() { return platform_; }
  VirtualClock& clock() { return clock_; }
  SimulatedFrontEnd& frontEnd() { return platform_.frontEnd(); }
  /// The card of this board, or null where none is plugged in.
  HostCard* card(const Board& board);
  /// The break-out box, or null where there is none.
  VeltraBox* box() { return box_.get(); }
  /// The Orbo QX, or null where there is none.
  MorvakUnit* unit() { return unit_.get(); }

  /// The plan that the hardware asks about its faults from now on; null for none. Must outlive its use.
  void UseFaults(FaultPlan* faults);

  /// Takes the power away at this moment and gives it back: operations in flight leave what they leave, and what is
  /// stored runs. The clock goes on.
  void PowerCycle();

  /// The bench some time later: operations in flight have come to their end, a download that was not programmed is
  /// given up, and answers of the box wait in the reply FIFO.
  BenchState State() const;
  /// The bench as a power cycle at this moment would leave it. The bench itself goes on undisturbed.
  BenchState StateAfterPowerLoss() const;

  /// A row for each part that is there.
  std::vector<PartRow> Rows() const;

 private:
  BenchState Copy() const;

  VirtualClock clock_;
  SimulatedPlatform platform_;
  std::array<std::unique_ptr<HostCard>, 2> cards_;
  std::unique_ptr<VeltraBox> box_;
  std::unique_ptr<MorvakUnit> unit_;
};

/// A row for each part of a bench that nobody uses at the moment.
std::vector<PartRow> RowsOf(const BenchState& state);

/// The host cards that a new bench gets.
enum class HostCards { kBoth, kBelmara, kDovu, kNone };

/// The break-out box that a new bench gets.
enum class BoxChoice { kOn, kOff, kNone };

/// The Orbo QX that a new bench gets, by its model.
enum class OrboQx { kModel4, kModel5, kNone };

struct BenchOptions {
  HostCards hostCards = HostCards::kBoth;
  BoxChoice box = BoxChoice::kOn;
  OrboQx orboQx = OrboQx::kNone;
  /// The same seed makes the same bench.
  std::uint64_t seed = 1;
};

/// A bench with cards, a box and an Orbo QX as they come from the shelf: all parts at versions older than this
/// release's.
BenchState MakeBench(const BenchOptions& options);

}  // namespace simulator
