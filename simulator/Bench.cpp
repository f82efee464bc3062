#include "simulator/Bench.h"

#include <utility>

#include "simulator/FlashImage.h"

namespace simulator {
namespace {

/// The Karvel's revision is bits 16 to 23 of its version word.
std::optional<std::uint16_t> KarvelRevision(std::uint32_t versionWord) {
  if (versionWord == KarvelCells::kNoVersion) return std::nullopt;
  return static_cast<std::uint16_t>(versionWord >> 16 & 0xFF);
}

void AddErrors(std::vector<std::string>& texts, const ProtocolErrors& errors) {
  texts.insert(texts.end(), errors.texts().begin(), errors.texts().end());
  const std::uint64_t left = errors.total() - errors.texts().size();
  if (left > 0) texts.push_back("and " + std::to_string(left) + " more");
}

void AddBoxRows(std::vector<PartRow>& rows, const VeltraBoxState& box) {
  for (const BoxPart& part : kBoxParts) {
    PartRow row{std::string(part.name), box.running.Of(part), box.stored.Of(part), {}};
    if (part.isOptional && row.running == 0 && row.stored == 0) continue;
    // It is the firmware that speaks for the box.
    if (part.kind == PartKind::kFirmware) AddErrors(row.errors, box.errors);
    rows.push_back(std::move(row));
  }
}

void AddUnitRows(std::vector<PartRow>& rows, const MorvakUnitState& unit) {
  const std::size_t first = rows.size();
  for (const MorvakVersion& version : kMorvakVersions) {
    const MorvakTexts::Text running = unit.running.Of(version.number);
    const MorvakTexts::Text stored = unit.stored.Of(version.number);
    if (!running && !stored) continue;
    rows.push_back(
        {MorvakRowName(version, unit.model, unit.boards), VersionInText(running), VersionInText(stored), {}});
  }
  // What it refused stands in the firmware's row, also where no part tells a version.
  if (first == rows.size() && unit.errors.total() > 0) rows.push_back({"pico", std::nullopt, std::nullopt, {}});
  if (first < rows.size()) AddErrors(rows[first].errors, unit.errors);
}

}  // namespace

Bench::Bench(BenchState state) : clock_(state.clockNanoseconds), platform_(clock_) {
  for (std::size_t i = 0; i < cards_.size(); ++i) {
    if (!state.cards[i]) continue;
    const Board& board = *kHostCards[i];
    cards_[i] = std::make_unique<HostCard>(board, *std::move(state.cards[i]), clock_);
    platform_.devices().Add(board.interfaceClass, std::string(board.devicePath), *cards_[i]);
  }
  if (state.box) {
    box_ = std::make_unique<VeltraBox>(*std::move(state.box));
    if (HostCard* const boxCard = card(kBelmaraBoard)) boxCard->Connect(box_.get());
  }
  if (state.unit) {
    unit_ = std::make_unique<MorvakUnit>(*std::move(state.unit), clock_);
    platform_.devices().Add(kMorvakBoard.interfaceClass, std::string(kMorvakBoard.devicePath), *unit_);
  }
}

HostCard* Bench::card(const Board& board) {
  for (const auto& card : cards_)
    if (card != nullptr && &card->board() == &board) return card.get();
  return nullptr;
}

void Bench::UseFaults(FaultPlan* faults) {
  for (const auto& card : cards_)
    if (card != nullptr) card->UseFaults(faults);
  if (unit_ != nullptr) unit_->UseFaults(faults);
}

void Bench::PowerCycle() {
  for (const auto& card : cards_) {
    if (card == nullptr) continue;
    card->CatchUp();
    card->state().PowerCycle(clock_.NowNanoseconds());
  }
  if (box_ != nullptr) box_->PowerCycle(clock_.NowNanoseconds());
  if (unit_ != nullptr) unit_->state().PowerCycle(clock_.NowNanoseconds());
}

BenchState Bench::Copy() const {
  BenchState state;
  state.clockNanoseconds = clock_.NowNanoseconds();
  for (std::size_t i = 0; i < cards_.size(); ++i) {
    if (cards_[i] == nullptr) continue;
    cards_[i]->CatchUp();
    state.cards[i] = std::as_const(*cards_[i]).state();
  }
  if (box_ != nullptr) state.box = std::as_const(*box_).state();
  if (unit_ != nullptr) state.unit = std::as_const(*unit_).state();
  return state;
}

BenchState Bench::State() const {
  BenchState state = Copy();
  for (auto& card : state.cards) {
    if (!card) continue;
    card->flash.Settle();
    card->karvel.Settle();
  }
  std::optional<VeltraBox> box;
  if (box_ != nullptr) box = *box_;
  for (std::size_t i = 0; i < state.cards.size(); ++i)
    if (state.cards[i] && kHostCards[i]->hasBoxFifo) state.cards[i]->fifo.Settle(box ? &*box : nullptr);
  if (box) {
    box->state().Settle();
    state.box = box->state();
  }
  if (state.unit) state.unit->Settle();
  return state;
}

BenchState Bench::StateAfterPowerLoss() const {
  BenchState state = Copy();
  for (auto& card : state.cards)
    if (card) card->PowerCycle(state.clockNanoseconds);
  if (state.box) state.box->PowerCycle(state.clockNanoseconds);
  if (state.unit) state.unit->PowerCycle(state.clockNanoseconds);
  return state;
}

std::vector<PartRow> Bench::Rows() const {
  return RowsOf(State());
}

std::vector<PartRow> RowsOf(const BenchState& state) {
  std::vector<PartRow> rows;
  for (std::size_t i = 0; i < state.cards.size(); ++i) {
    if (!state.cards[i]) continue;
    const HostCardState& card = *state.cards[i];
    const std::string name(kHostCards[i]->name);
    PartRow flash{name, card.flashRunning, StoredVersion(card.flash.memory()), {}};
    AddErrors(flash.errors, card.errors);
    AddErrors(flash.errors, card.fifo.errors());
    AddErrors(flash.errors, card.flash.errors());
    rows.push_back(std::move(flash));
    // The Karvel of a card goes by the card's first letter.
    PartRow karvel{name.substr(0, 1) + "karvel",
                   KarvelRevision(card.karvelRunning),
                   KarvelRevision(card.karvel.cells().VersionWord()),
                   {}};
    AddErrors(karvel.errors, card.karvel.errors());
    rows.push_back(std::move(karvel));
  }
  if (state.box) AddBoxRows(rows, *state.box);
  if (state.unit) AddUnitRows(rows, *state.unit);
  return rows;
}

}  // namespace simulator
