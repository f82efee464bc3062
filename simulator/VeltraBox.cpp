#include "simulator/VeltraBox.h"

#include <algorithm>
#include <string_view>

#include "simulator/HexText.h"

namespace simulator {
namespace {

// Bytes of a packet, and what stands in them.
constexpr std::uint32_t kMark = 0x0B0B;
constexpr std::size_t kFunctionAt = 5;
constexpr std::size_t kReservedAt = 6;
constexpr std::size_t kStatusAt = 7;
constexpr std::size_t kHeaderBytes = 8;
/// Mark and length, which the length does not count.
constexpr std::size_t kUncountedBytes = 4;
constexpr std::uint32_t kShortestLength = 4;
constexpr std::uint8_t kSystem = 0x80;
constexpr std::uint8_t kRequest = 0x01;

constexpr std::uint8_t kSuccess = 0;
constexpr std::uint8_t kFail = 1;
constexpr std::uint8_t kNotSupported = 2;

constexpr std::uint8_t kContainerFileType = 3;
/// Codes that no program command has.
constexpr std::uint8_t kWrongFunction = 0x06;

// The head of a firmware container.
constexpr std::string_view kContainerMagic = "ORBO.RBI";
constexpr std::size_t kContainerLengthAt = 8;
constexpr std::size_t kContainerVersionAt = 13;
constexpr std::size_t kContainerIdAt = 18;
constexpr std::size_t kContainerHeadBytes = 22;

enum class Task { kTellVersions, kTellVpd, kStart, kData, kProgram };

/// A command that the box knows.
struct CommandRow {
  std::uint8_t function;  ///< byte 5 of its packets
  std::string_view name;
  Task task;
  BoxPartKind kind;   ///< what a download is for
  std::size_t bytes;  ///< of the packet; of a data command, without its data
};

constexpr CommandRow kCommands[] = {
    {0x03, "HWConfigFB", Task::kTellVersions, {}, 8},
    {0x35, "VPDInfo", Task::kTellVpd, {}, 10},
    {0x06, "StartFPGADownload", Task::kStart, BoxPartKind::kFpga, 14},
    {0x08, "FPGADownload", Task::kData, BoxPartKind::kFpga, 10},
    {0x0A, "ProgramFPGA", Task::kProgram, BoxPartKind::kFpga, 8},
    {0x0C, "StartFirmwareDownload", Task::kStart, BoxPartKind::kFirmware, 14},
    {0x0E, "FirmwareDownload", Task::kData, BoxPartKind::kFirmware, 14},
    {0x10, "ProgramFirmware", Task::kProgram, BoxPartKind::kFirmware, 8},
    {0x12, "StartCPLDDownload", Task::kStart, BoxPartKind::kCpld, 14},
    {0x14, "CPLDDownload", Task::kData, BoxPartKind::kCpld, 10},
    {0x16, "ProgramCPLD", Task::kProgram, BoxPartKind::kCpld, 8},
};

constexpr struct {
  Fault fault;
  std::uint8_t status;
} kStatusFaults[] = {
    {Fault::kBoxStatusFail, 1},      {Fault::kBoxStatusNotSupported, 2}, {Fault::kBoxStatusTransmit, 240},
    {Fault::kBoxStatusTimeOut, 255}, {Fault::kBoxStatusUnknown, 7},
};

std::uint32_t BigEndian(std::span<const std::uint8_t> bytes) {
  std::uint32_t value = 0;
  for (const std::uint8_t byte : bytes)
    value = value << 8 | byte;
  return value;
}

void AddWord(std::vector<std::uint8_t>& bytes, std::uint32_t word) {
  for (const int shift : {24, 16, 8, 0})
    bytes.push_back(static_cast<std::uint8_t>(word >> shift));
}

std::string_view Text(std::span<const std::uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// The status that a fault puts in the place of the box's own.
std::optional<std::uint8_t> FaultStatus(FaultPlan* faults) {
  std::optional<std::uint8_t> status;
  for (const auto& row : kStatusFaults)
    if (Strikes(faults, row.fault)) status = row.status;
  return status;
}

}  // namespace

/// A command on its way through the box.
struct VeltraBox::Command {
  std::span<const std::uint8_t> packet;
  std::int64_t nowNanoseconds;
  FaultPlan* faults;
  const CommandRow* row;  ///< null for a command that the box does not know

  std::string Name() const {
    return row != nullptr ? std::string(row->name) : "command " + Hex(BigEndian(packet.subspan(4, 2)), 4);
  }
};

void VeltraBoxState::PowerCycle(std::int64_t nowNanoseconds) {
  if (burn && nowNanoseconds < burn->endNanoseconds) burn.reset();
  Settle();
  running = stored;
}

void VeltraBoxState::Settle() {
  if (burn) stored.Set(*burn->part, burn->version);
  burn.reset();
  transfer.reset();
  packet.clear();
  skipsWords = false;
  answers.clear();
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
    const std::uint32_t length = word & 0xFFFF;
    if (word >> 16 != kMark) return DropWord("a packet begins with " + Hex(word, 8));
    if (length < kShortestLength || length + kUncountedBytes > kPacketBytes)
      return DropWord("a packet announces " + std::to_string(length) + " bytes");
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
  const auto* const row = std::find_if(std::begin(kCommands), std::end(kCommands), [&](const CommandRow& known) {
    return whole[4] == kSystem && whole[kFunctionAt] == known.function;
  });
  Obey({whole, nowNanoseconds, faults, row == std::end(kCommands) ? nullptr : row});
}

std::vector<std::uint32_t> VeltraBox::TakeAnswer() {
  std::vector<std::uint32_t> words = std::move(state_.answers.front().words);
  state_.answers.erase(state_.answers.begin());
  return words;
}

void VeltraBox::Obey(const Command& command) {
  const bool isLost = Strikes(command.faults, Fault::kBoxSilent);
  const bool goesOff = Strikes(command.faults, Fault::kBoxOff);
  const std::optional<std::uint8_t> faultStatus = FaultStatus(command.faults);
  if (goesOff) {
    PowerCycle(command.nowNanoseconds);
    isSwitchedOff_ = true;
    return;
  }
  if (isLost) return;
  if (state_.burn && command.nowNanoseconds >= state_.burn->endNanoseconds) {
    state_.stored.Set(*state_.burn->part, state_.burn->version);
    state_.burn.reset();
  }
  if (faultStatus) {
    state_.transfer.reset();
    return Answer(command, *faultStatus, command.nowNanoseconds + kAnswerNanoseconds);
  }

  const std::span<const std::uint8_t> packet = command.packet;
  if (packet[kReservedAt] != 0 || packet[kStatusAt] != 0)
    return Refuse(command, "bytes 6 and 7 are " + Hex(BigEndian(packet.subspan(kReservedAt, 2)), 4), kFail);
  if (state_.burn) return Refuse(command, "a part is being programmed", kFail);
  if (command.row == nullptr) return Refuse(command, "is not known", kNotSupported);
  const bool isData = command.row->task == Task::kData;
  if (isData ? packet.size() < command.row->bytes : packet.size() != command.row->bytes)
    return Refuse(command, "a packet of " + std::to_string(packet.size()) + " bytes", kFail);
  switch (command.row->task) {
    case Task::kTellVersions:
      return TellVersions(command);
    case Task::kTellVpd:
      return TellVpd(command);
    case Task::kStart:
      return Start(command);
    case Task::kData:
      return Data(command);
    case Task::kProgram:
      return Program(command);
  }
}

void VeltraBox::TellVersions(const Command& command) {
  const BoxVersions& versions = state_.running;
  std::vector<std::uint8_t> values(versions.revisions.begin(), versions.revisions.end());
  values.insert(values.end(), versions.firmwareRev.begin(), versions.firmwareRev.end());
  Answer(command, kSuccess, command.nowNanoseconds + kAnswerNanoseconds, values);
}

void VeltraBox::TellVpd(const Command& command) {
  const std::span<const std::uint8_t> board = command.packet.subspan(kHeaderBytes, 2);
  const std::uint32_t number = BigEndian(board);
  if (number >= state_.vpd.size() || !state_.vpd[number]) return;
  const std::vector<std::uint8_t>& vpd = *state_.vpd[number];
  std::vector<std::uint8_t> values(board.begin(), board.end());
  values.push_back(static_cast<std::uint8_t>(vpd.size() >> 8));
  values.push_back(static_cast<std::uint8_t>(vpd.size()));
  values.insert(values.end(), vpd.begin(), vpd.end());
  Answer(command, kSuccess, command.nowNanoseconds + kAnswerNanoseconds, values);
}

void VeltraBox::Start(const Command& command) {
  std::uint8_t number = command.packet[kHeaderBytes];
  std::uint8_t fileType = command.packet[kHeaderBytes + 1];
  // Only the firmware's command has the file type in front.
  if (command.row->kind == BoxPartKind::kFirmware) std::swap(number, fileType);
  if (fileType != kContainerFileType) return Refuse(command, "file type " + std::to_string(fileType), kFail);
  const BoxPart* const part = FindBoxPart(command.row->kind, number);
  if (part == nullptr) return Refuse(command, "there is no part " + std::to_string(number), kFail);
  state_.transfer = {part, BigEndian(command.packet.subspan(kHeaderBytes + 2, 4)), 0, {}};
  Answer(command, kSuccess, command.nowNanoseconds + kAnswerNanoseconds);
}

void VeltraBox::Data(const Command& command) {
  if (Strikes(command.faults, Fault::kTransferRefused)) {
    state_.transfer.reset();
    return Answer(command, kFail, command.nowNanoseconds + kAnswerNanoseconds);
  }
  const std::span<const std::uint8_t> data = command.packet.subspan(command.row->bytes);
  const std::uint32_t length = BigEndian(command.packet.subspan(command.row->bytes - 2, 2));
  if (!state_.transfer || state_.transfer->part->kind != command.row->kind)
    return Refuse(command, "no such download was started", kFail);
  if (command.row->kind == BoxPartKind::kFirmware) {
    const std::uint32_t address = BigEndian(command.packet.subspan(kHeaderBytes, 4));
    if (address != 0) return Refuse(command, "the address is " + Hex(address, 8), kFail);
  }
  if (length != data.size())
    return Refuse(command, "length " + std::to_string(length) + " of " + std::to_string(data.size()) + " bytes", kFail);
  if (length > kDataBytes) return Refuse(command, std::to_string(length) + " bytes at once", kFail);
  BoxTransfer& transfer = *state_.transfer;
  if (length > transfer.announcedBytes - transfer.receivedBytes)
    return Refuse(command, "more than the announced " + std::to_string(transfer.announcedBytes) + " bytes", kFail);
  const std::size_t looked = std::min(kContainerHeadBytes - transfer.head.size(), data.size());
  transfer.head.insert(transfer.head.end(), data.begin(), data.begin() + static_cast<std::ptrdiff_t>(looked));
  transfer.receivedBytes += length;
  Answer(command, kSuccess, command.nowNanoseconds + kAnswerNanoseconds + length * kDataByteNanoseconds);
}

void VeltraBox::Program(const Command& command) {
  if (Strikes(command.faults, Fault::kProgramAnswerWrong)) {
    state_.transfer.reset();
    std::vector<std::uint8_t> other(command.packet.begin(), command.packet.end());
    other[kFunctionAt] = kWrongFunction;
    return Answer({other, command.nowNanoseconds, command.faults, command.row}, kSuccess,
                  command.nowNanoseconds + kAnswerNanoseconds);
  }
  if (!state_.transfer || state_.transfer->part->kind != command.row->kind)
    return Refuse(command, "no such download was started", kFail);
  const BoxTransfer& transfer = *state_.transfer;
  if (transfer.receivedBytes != transfer.announcedBytes)
    return Refuse(command,
                  "only " + std::to_string(transfer.receivedBytes) + " of " + std::to_string(transfer.announcedBytes) +
                      " bytes have come",
                  kFail);
  const std::optional<std::uint16_t> version = VersionOfTransfer(command);
  if (!version) return;
  const std::int64_t perByte =
      transfer.part->kind == BoxPartKind::kCpld ? kBurnCpldByteNanoseconds : kBurnByteNanoseconds;
  const std::int64_t end = command.nowNanoseconds + kBurnNanoseconds + transfer.announcedBytes * perByte;
  state_.burn = {transfer.part, *version, end};
  state_.transfer.reset();
  Answer(command, kSuccess, end);
}

/// Refuses an image that its part cannot take.
std::optional<std::uint16_t> VeltraBox::VersionOfTransfer(const Command& command) {
  const BoxTransfer& transfer = *state_.transfer;
  const std::span<const std::uint8_t> head = transfer.head;
  const auto refuse = [&](const std::string& text) {
    Refuse(command, text, kFail);
    return std::nullopt;
  };
  const bool isContainer = Text(head).starts_with(kContainerMagic);
  if (transfer.part->kind == BoxPartKind::kCpld) {
    if (isContainer) return refuse("a container in the place of its payload");
    return head.size() < 2 ? std::uint16_t{0} : static_cast<std::uint16_t>(BigEndian(head.first(2)));
  }
  if (!isContainer || head.size() < kContainerHeadBytes) return refuse("no container");
  const std::uint32_t headerBytes = BigEndian(head.subspan(kContainerLengthAt, 4));
  if (headerBytes < kContainerHeadBytes || headerBytes > transfer.announcedBytes)
    return refuse("the container's header has " + std::to_string(headerBytes) + " bytes");
  const std::string_view id = Text(head.subspan(kContainerIdAt, 4));
  if (id != transfer.part->id) return refuse("the container is not one for " + std::string(transfer.part->id));
  const auto version = ParseHex(Text(head.subspan(kContainerVersionAt, 4)), 4);
  if (!version) return refuse("the container has no version");
  return static_cast<std::uint16_t>(*version);
}

void VeltraBox::DropWord(std::string text) {
  state_.packet.clear();
  state_.skipsWords = true;
  state_.errors.Add("box: " + std::move(text));
}

void VeltraBox::Refuse(const Command& command, const std::string& text, std::uint8_t status) {
  state_.transfer.reset();
  state_.errors.Add("box: " + command.Name() + ": " + text);
  Answer(command, status, command.nowNanoseconds + kAnswerNanoseconds);
}

void VeltraBox::Answer(const Command& command, std::uint8_t status, std::int64_t startNanoseconds,
                       std::span<const std::uint8_t> values) {
  const std::uint8_t function = command.packet[kFunctionAt];
  if ((function & kRequest) != 0 && Strikes(command.faults, Fault::kBoxValuesMissing)) values = {};
  std::uint32_t mark = kMark;
  auto length = static_cast<std::uint32_t>(kHeaderBytes - kUncountedBytes + values.size());
  std::vector<std::uint8_t> bytes = {0, 0, 0, 0, command.packet[4], function, 0, status};
  bytes.insert(bytes.end(), values.begin(), values.end());
  bytes.resize((bytes.size() + 3) / 4 * 4);

  if (Strikes(command.faults, Fault::kBoxLate)) startNanoseconds += kLateNanoseconds;
  if (Strikes(command.faults, Fault::kBoxNoHeader)) mark = 0;
  if (Strikes(command.faults, Fault::kBoxLengthLow)) length = kShortestLength - 1;
  if (Strikes(command.faults, Fault::kBoxLengthHigh)) length = kAnswerBodyBytes + 1;
  BoxAnswer answer{startNanoseconds, {mark << 16 | length}};
  for (std::size_t at = 4; at < bytes.size(); at += 4) {
    if (Strikes(command.faults, Fault::kBoxReplyCut)) break;
    answer.words.push_back(BigEndian(std::span(bytes).subspan(at, 4)));
  }
  const auto later = std::find_if(state_.answers.begin(), state_.answers.end(),
                                  [&](const BoxAnswer& other) { return other.startNanoseconds > startNanoseconds; });
  state_.answers.insert(later, std::move(answer));
}

}  // namespace simulator
