#include "simulator/VeltraBox.h"

#include <algorithm>

#include "simulator/HexText.h"

namespace simulator {
namespace {

/// What it knows beside downloads.
constexpr CommandRow kCommands[] = {
    {0x8003, "HWConfigFB", Task::kTellVersions, {}, 8},
    {0x8035, "VPDInfo", Task::kTellVpd, {}, 10},
};

void AddWord(std::vector<std::uint8_t>& bytes, std::uint32_t word) {
  for (const int shift : {24, 16, 8, 0})
    bytes.push_back(static_cast<std::uint8_t>(word >> shift));
}

}  // namespace

void VeltraBoxState::PowerCycle(std::int64_t nowNanoseconds) {
  EndBurn(nowNanoseconds);
  downloads.burn.reset();
  Settle();
  running = stored;
}

void VeltraBoxState::Settle() {
  EndBurn(VeltraBox::kNever);
  downloads.transfer.reset();
  packet.clear();
  skipsWords = false;
  answers.clear();
}

void VeltraBoxState::EndBurn(std::int64_t nowNanoseconds) {
  if (const auto burnt = downloads.TakeBurnt(nowNanoseconds))
    stored.Set(*FindBoxPart(burnt->part->kind, burnt->part->number), burnt->version);
}

void VeltraBox::PowerCycle(std::int64_t nowNanoseconds) {
  state_.PowerCycle(nowNanoseconds);
  isSwitchedOff_ = false;
}

void VeltraBox::Take(std::uint32_t word, bool isFirst, std::int64_t nowNanoseconds, FaultPlan* faults) {
  if (!state_.isOn || isSwitchedOff_) return;
  std::vector<std::uint8_t>& packet = state_.packet;
  if (isFirst) {
    if (!packet.empty()) DropWord("a packet begins inside another");
    state_.skipsWords = false;
    if (std::string fault = FramingFault(word); !fault.empty()) return DropWord(std::move(fault));
  } else if (packet.empty()) {
    if (!state_.skipsWords) DropWord("word " + Hex(word, 8) + " outside a packet");
    return;
  }
  AddWord(packet, word);
  const std::size_t size = kUncountedBytes + BigEndian(std::span(packet).subspan(2, 2));
  if (packet.size() < size) return;
  std::vector<std::uint8_t> whole = std::move(packet);
  packet.clear();
  whole.resize(size);
  Obey(whole, nowNanoseconds, faults);
}

std::vector<std::uint32_t> VeltraBox::TakeAnswer() {
  std::vector<std::uint32_t> words = std::move(state_.answers.front().words);
  state_.answers.erase(state_.answers.begin());
  return words;
}

void VeltraBox::Obey(std::span<const std::uint8_t> packet, std::int64_t nowNanoseconds, FaultPlan* faults) {
  const bool isLost = Strikes(faults, Fault::kBoxSilent);
  const bool goesOff = Strikes(faults, Fault::kBoxOff);
  const Command command = ReadCommand(packet, kCommands, nowNanoseconds, faults);
  if (goesOff) {
    PowerCycle(nowNanoseconds);
    isSwitchedOff_ = true;
    return;
  }
  if (isLost) return;
  state_.EndBurn(nowNanoseconds);
  const std::optional<Outcome> outcome = Answer(command);
  if (!outcome) return;
  if (outcome->status != kSuccess) state_.downloads.transfer.reset();
  if (!outcome->refusal.empty()) state_.errors.Add("box: " + outcome->refusal);
  Send(command, *outcome);
}

std::optional<Outcome> VeltraBox::Answer(const Command& command) {
  if (auto objection = Objection(command, state_.downloads.burn.has_value())) return objection;
  switch (command.row->task) {
    case Task::kTellVersions:
      return TellVersions(command);
    case Task::kTellVpd:
      return TellVpd(command, state_.vpd);
    default:
      return state_.downloads.Obey(command,
                                   [](PartKind kind, std::uint8_t number) { return FindBoxPart(kind, number); });
  }
}

Outcome VeltraBox::TellVersions(const Command& command) const {
  const BoxVersions& versions = state_.running;
  Outcome outcome = Done(command);
  outcome.values.assign(versions.revisions.begin(), versions.revisions.end());
  outcome.values.insert(outcome.values.end(), versions.firmwareRev.begin(), versions.firmwareRev.end());
  return outcome;
}

void VeltraBox::DropWord(std::string text) {
  state_.packet.clear();
  state_.skipsWords = true;
  state_.errors.Add("box: " + std::move(text));
}

void VeltraBox::Send(const Command& command, const Outcome& outcome) {
  std::vector<std::uint8_t> bytes = AnswerPacket(command, outcome);
  bytes.resize((bytes.size() + 3) / 4 * 4);
  std::int64_t start = outcome.answerNanoseconds;
  std::uint32_t first = BigEndian(std::span(bytes).first(4));
  if (Strikes(command.faults, Fault::kBoxLate)) start += kLateNanoseconds;
  if (Strikes(command.faults, Fault::kBoxNoHeader)) first &= 0xFFFF;
  if (Strikes(command.faults, Fault::kBoxLengthLow)) first = (first & 0xFFFF0000) | (kShortestLength - 1);
  if (Strikes(command.faults, Fault::kBoxLengthHigh)) first = (first & 0xFFFF0000) | (kAnswerBodyBytes + 1);
  BoxAnswer answer{start, {first}};
  for (std::size_t at = 4; at < bytes.size(); at += 4) {
    if (Strikes(command.faults, Fault::kBoxReplyCut)) break;
    answer.words.push_back(BigEndian(std::span(bytes).subspan(at, 4)));
  }
  const auto later = std::find_if(state_.answers.begin(), state_.answers.end(),
                                  [&](const BoxAnswer& other) { return other.startNanoseconds > start; });
  state_.answers.insert(later, std::move(answer));
}

}  // namespace simulator
