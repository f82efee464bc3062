#include "simulator/MorvakUnit.h"

#include <algorithm>

#include "simulator/HexText.h"
#include "simulator/LittleEndian.h"
#include "simulator/SystemErrors.h"
#include "simulator/Vpd.h"

namespace simulator {
namespace {

/// What it knows beside downloads.
constexpr CommandRow kCommands[] = {
    {0x8055, "GetStringPartRev", Task::kTellPartVersion, {}, 10},
    {0x8035, "VPDInfo", Task::kTellVpd, {}, 10},
    {0xC002, "Diagnostic", Task::kDiagnose, {}, 18},
};

/// Length and data of the one diagnostic that it takes.
constexpr std::uint8_t kDiagnostic[] = {0x00, 0x08, 0x62, 0x64, 0x00, 0x02, 0x00, 0x02, 0x00, 0x00};

/// The lengths of a control call's records.
struct ControlRow {
  std::uint32_t code;
  std::size_t inBytes;
  std::uint32_t outBytes;
};

constexpr ControlRow kControls[] = {
    {MorvakUnit::kGetModel, 0, 8},      {MorvakUnit::kTransactTalc, 28, 8},  {MorvakUnit::kReadVpd, 16, 4},
    {MorvakUnit::kReleaseBuffer, 8, 0}, {MorvakUnit::kQueryCodecSlot, 4, 8},
};

constexpr std::uint32_t kInvalidSlots = 3;
constexpr std::string_view kUnknownText = "UNKNOWN";
/// A fields resource that would be longer than any area.
constexpr std::uint8_t kDamagedResource[] = {0x90, 0xFF, 0xFF};

std::uint8_t* AtAddress(std::uint64_t address) {
  return reinterpret_cast<std::uint8_t*>(static_cast<std::uintptr_t>(address));
}

}  // namespace

void MorvakUnitState::PowerCycle(std::int64_t nowNanoseconds) {
  EndBurn(nowNanoseconds);
  downloads.burn.reset();
  Settle();
  running = stored;
}

void MorvakUnitState::Settle() {
  if (downloads.burn) EndBurn(downloads.burn->endNanoseconds);
  downloads.transfer.reset();
  diagnosticNanoseconds.reset();
  answers.clear();
}

void MorvakUnitState::EndBurn(std::int64_t nowNanoseconds) {
  const auto burnt = downloads.TakeBurnt(nowNanoseconds);
  if (!burnt) return;
  const MorvakPart& part = *FindMorvakPart(burnt->part->kind, burnt->part->number);
  stored.Set(part.version, Hex(burnt->version, 4));
}

std::uint32_t MorvakUnit::Control(std::uint32_t code, std::span<const std::uint8_t> in, std::span<std::uint8_t> out,
                                  std::uint32_t& returned) {
  const auto* const row = std::find_if(std::begin(kControls), std::end(kControls),
                                       [&](const ControlRow& known) { return known.code == code; });
  if (row == std::end(kControls)) return kErrorInvalidFunction;
  if (in.size() != row->inBytes) return kErrorInvalidParameter;
  if (out.size() < row->outBytes) return kErrorInsufficientBuffer;
  const std::span<std::uint8_t> record = out.first(row->outBytes);
  std::uint32_t error = kErrorSuccess;
  switch (code) {
    case kGetModel:
      error = TellModel(record);
      break;
    case kQueryCodecSlot:
      error = TellSlot(in, record);
      break;
    case kReadVpd:
      error = ReadVpd(in, record);
      break;
    case kTransactTalc:
      error = TransactTalc(in, record);
      break;
    default:
      // The driver knows no buffers of its own, so that there is nothing to release.
      break;
  }
  if (error == kErrorSuccess) returned = row->outBytes;
  return error;
}

std::uint32_t MorvakUnit::TellModel(std::span<std::uint8_t> out) {
  Put32(&out[0], Strikes(faults_, Fault::kSlotsInvalid) ? kInvalidSlots : state_.codecSlots);
  Put32(&out[4], state_.model);
  return kErrorSuccess;
}

std::uint32_t MorvakUnit::TellSlot(std::span<const std::uint8_t> in, std::span<std::uint8_t> out) const {
  const std::uint32_t slot = Get32(&in[0]);
  if (slot >= state_.codecSlots) return kErrorInvalidParameter;
  Put32(&out[0], slot < state_.codecState.size() ? state_.codecState[slot] : 0);
  Put32(&out[4], 0);
  return kErrorSuccess;
}

std::uint32_t MorvakUnit::ReadVpd(std::span<const std::uint8_t> in, std::span<std::uint8_t> out) {
  const std::uint64_t address = Get64(&in[0]);
  const auto board = state_.boards.find(Get32(&in[8]));
  const bool isDamaged = Strikes(faults_, Fault::kBoardVpdDamaged);
  if (Get32(&in[12]) != kVpdAreaBytes) return kErrorInvalidParameter;
  if (address == 0) return kErrorNoAccess;
  if (board == state_.boards.end()) return kErrorGeneralFailure;
  const std::span<std::uint8_t> area(AtAddress(address), kVpdAreaBytes);
  const auto end = std::copy(board->second.begin(), board->second.end(), area.begin());
  std::fill(end, area.end(), std::uint8_t{0});
  if (isDamaged) std::copy(std::begin(kDamagedResource), std::end(kDamagedResource), area.begin());
  Put32(&out[0], 0);
  return kErrorSuccess;
}

std::uint32_t MorvakUnit::TransactTalc(std::span<const std::uint8_t> in, std::span<std::uint8_t> out) {
  const std::uint64_t commandAddress = Get64(&in[0]);
  const std::uint64_t replyAddress = Get64(&in[8]);
  const std::uint32_t commandBytes = Get32(&in[16]);
  const std::uint32_t capacity = Get32(&in[20]);
  if ((commandAddress == 0) != (commandBytes == 0) || (replyAddress == 0 && capacity != 0)) return kErrorNoAccess;
  const bool isLost = Strikes(faults_, Fault::kTalcTimeOut);
  const bool isUnwritten = Strikes(faults_, Fault::kTalcUnwritten);
  const bool lacksMark = Strikes(faults_, Fault::kTalcBadHeader);

  if (commandBytes != 0 && !isLost) Take({AtAddress(commandAddress), commandBytes});
  auto answer = WaitForAnswer(Get32(&in[24]), isLost);
  Put32(&out[0], answer ? 0 : kCommandTimeout);
  Put32(&out[4], 0);
  if (!answer || isUnwritten) return kErrorSuccess;
  if (lacksMark) std::fill_n(answer->packet.begin(), 2, std::uint8_t{0});
  std::copy_n(answer->packet.begin(), std::min<std::size_t>(answer->packet.size(), capacity), AtAddress(replyAddress));
  return kErrorSuccess;
}

std::optional<MorvakAnswer> MorvakUnit::WaitForAnswer(std::uint32_t timeoutMicroseconds, bool isLost) {
  const std::int64_t now = clock_.NowNanoseconds();
  const std::int64_t last = now + std::int64_t{timeoutMicroseconds} * 1'000;
  std::vector<MorvakAnswer>& answers = state_.answers;
  if (isLost || answers.empty() || answers.front().thereNanoseconds > last) {
    clock_.Advance(last - now);
    return std::nullopt;
  }
  MorvakAnswer answer = std::move(answers.front());
  answers.erase(answers.begin());
  clock_.Advance(std::max<std::int64_t>(0, answer.thereNanoseconds - now));
  return answer;
}

void MorvakUnit::Take(std::span<const std::uint8_t> packet) {
  const std::int64_t now = clock_.NowNanoseconds();
  std::erase_if(state_.answers, [&](const MorvakAnswer& answer) { return answer.thereNanoseconds <= now; });
  std::string fault = "a packet of " + std::to_string(packet.size()) + " bytes";
  if (packet.size() >= kPacketHeaderBytes) {
    const std::uint32_t first = BigEndian(packet.first(4));
    const std::size_t size = (first & 0xFFFF) + kUncountedBytes;
    fault = FramingFault(first);
    if (fault.empty() && size != packet.size())
      fault = "a packet of " + std::to_string(size) + " bytes in " + std::to_string(packet.size());
  }
  if (!fault.empty()) return state_.errors.Add("morvak: " + fault);

  const Command command = ReadCommand(packet, kCommands, now, faults_);
  state_.EndBurn(now);
  const std::optional<Outcome> outcome = Answer(command);
  if (!outcome) return;
  if (outcome->status != kSuccess) state_.downloads.transfer.reset();
  if (!outcome->refusal.empty()) state_.errors.Add("morvak: " + outcome->refusal);
  const auto later = std::find_if(state_.answers.begin(), state_.answers.end(), [&](const MorvakAnswer& other) {
    return other.thereNanoseconds > outcome->answerNanoseconds;
  });
  state_.answers.insert(later, {outcome->answerNanoseconds, AnswerPacket(command, *outcome)});
}

std::optional<Outcome> MorvakUnit::Answer(const Command& command) {
  if (auto objection = Objection(command, state_.downloads.burn.has_value())) return objection;
  switch (command.row->task) {
    case Task::kTellPartVersion:
      return TellPartVersion(command);
    case Task::kTellVpd:
      return TellVpd(command, std::span(&state_.vpd, 1));
    case Task::kDiagnose:
      return Diagnose(command);
    case Task::kStart:
      return Start(command);
    default:
      return Load(command);
  }
}

std::optional<Outcome> MorvakUnit::TellPartVersion(const Command& command) const {
  const std::span<const std::uint8_t> number = command.Values();
  const MorvakTexts::Text text = state_.running.Of(static_cast<std::uint16_t>(BigEndian(number)));
  if (!text) return std::nullopt;
  const std::string_view told = Strikes(faults_, Fault::kPartUnknown) ? kUnknownText : std::string_view(*text);
  Outcome outcome = Done(command);
  outcome.values.assign(number.begin(), number.end());
  outcome.values.insert(outcome.values.end(), told.begin(), told.end());
  return outcome;
}

Outcome MorvakUnit::Diagnose(const Command& command) {
  if (!std::ranges::equal(command.Values(), kDiagnostic)) return Refusal(command, "is not the one before a start");
  state_.diagnosticNanoseconds = command.nowNanoseconds;
  return Done(command);
}

Outcome MorvakUnit::Start(const Command& command) {
  const auto diagnosed = std::exchange(state_.diagnosticNanoseconds, std::nullopt);
  if (!diagnosed) return Refusal(command, "no diagnostic before it");
  const std::int64_t since = command.nowNanoseconds - *diagnosed;
  if (since < kDiagnosticNanoseconds)
    return Refusal(command, "only " + std::to_string(since / 1'000) + " us after the diagnostic");
  return Load(command);
}

Outcome MorvakUnit::Load(const Command& command) {
  return state_.downloads.Obey(command,
                               [](PartKind kind, std::uint8_t number) { return FindMorvakPart(kind, number); });
}

}  // namespace simulator
