#include "simulator/TalcCommands.h"

#include <algorithm>

#include "simulator/HexText.h"

namespace simulator {
namespace {

constexpr std::uint8_t kRequest = 0x01;

/// What every device that can be loaded knows.
constexpr CommandRow kDownloadCommands[] = {
    {0x8006, "StartFPGADownload", Task::kStart, PartKind::kFpga, 14},
    {0x8008, "FPGADownload", Task::kData, PartKind::kFpga, 10},
    {0x800A, "ProgramFPGA", Task::kProgram, PartKind::kFpga, 8},
    {0x800C, "StartFirmwareDownload", Task::kStart, PartKind::kFirmware, 14},
    {0x800E, "FirmwareDownload", Task::kData, PartKind::kFirmware, 14},
    {0x8010, "ProgramFirmware", Task::kProgram, PartKind::kFirmware, 8},
    {0x8012, "StartCPLDDownload", Task::kStart, PartKind::kCpld, 14},
    {0x8014, "CPLDDownload", Task::kData, PartKind::kCpld, 10},
    {0x8016, "ProgramCPLD", Task::kProgram, PartKind::kCpld, 8},
};

constexpr struct {
  Fault fault;
  std::uint8_t status;
} kStatusFaults[] = {
    {Fault::kBoxStatusFail, 1},      {Fault::kBoxStatusNotSupported, 2}, {Fault::kBoxStatusTransmit, 240},
    {Fault::kBoxStatusTimeOut, 255}, {Fault::kBoxStatusUnknown, 7},
};

const CommandRow* FindRow(std::span<const CommandRow> rows, std::uint32_t codes) {
  const auto row =
      std::find_if(rows.begin(), rows.end(), [&](const CommandRow& known) { return known.codes == codes; });
  return row == rows.end() ? nullptr : &*row;
}

}  // namespace

std::uint32_t BigEndian(std::span<const std::uint8_t> bytes) {
  std::uint32_t value = 0;
  for (const std::uint8_t byte : bytes)
    value = value << 8 | byte;
  return value;
}

std::string FramingFault(std::uint32_t firstWord) {
  const std::uint32_t length = firstWord & 0xFFFF;
  if (firstWord >> 16 != kPacketMark) return "a packet begins with " + Hex(firstWord, 8);
  if (length < kShortestLength || length + kUncountedBytes > kPacketBytes)
    return "a packet announces " + std::to_string(length) + " bytes";
  return {};
}

std::string Command::Name() const {
  return row != nullptr ? std::string(row->name) : "command " + Hex(BigEndian(packet.subspan(4, 2)), 4);
}

Command ReadCommand(std::span<const std::uint8_t> packet, std::span<const CommandRow> own, std::int64_t nowNanoseconds,
                    FaultPlan* faults) {
  Command command{packet, nowNanoseconds, faults, nullptr, std::nullopt};
  const std::uint32_t codes = BigEndian(packet.subspan(4, 2));
  command.row = FindRow(own, codes);
  if (command.row == nullptr) command.row = FindRow(kDownloadCommands, codes);
  for (const auto& row : kStatusFaults)
    if (Strikes(faults, row.fault)) command.faultStatus = row.status;
  return command;
}

Outcome Done(const Command& command, std::int64_t delayNanoseconds) {
  Outcome outcome;
  outcome.answerNanoseconds = command.nowNanoseconds + kAnswerNanoseconds + delayNanoseconds;
  return outcome;
}

Outcome Refusal(const Command& command, const std::string& text, std::uint8_t status) {
  Outcome outcome = Done(command);
  outcome.status = status;
  outcome.refusal = command.Name() + ": " + text;
  return outcome;
}

std::optional<Outcome> Objection(const Command& command, bool isBurning) {
  const std::span<const std::uint8_t> packet = command.packet;
  if (command.faultStatus) {
    Outcome outcome = Done(command);
    outcome.status = *command.faultStatus;
    return outcome;
  }
  const std::uint32_t reserved = BigEndian(packet.subspan(kReservedAt, 2));
  if (reserved != 0) return Refusal(command, "bytes 6 and 7 are " + Hex(reserved, 4));
  if (isBurning) return Refusal(command, "a part is being programmed");
  if (command.row == nullptr) return Refusal(command, "is not known", kNotSupported);
  const bool isData = command.row->task == Task::kData;
  if (isData ? packet.size() < command.row->bytes : packet.size() != command.row->bytes)
    return Refusal(command, "a packet of " + std::to_string(packet.size()) + " bytes");
  return std::nullopt;
}

std::optional<Outcome> TellVpd(const Command& command,
                               std::span<const std::optional<std::vector<std::uint8_t>>> boards) {
  const std::span<const std::uint8_t> board = command.Values();
  const std::uint32_t number = BigEndian(board);
  if (number >= boards.size() || !boards[number]) return std::nullopt;
  const std::vector<std::uint8_t>& vpd = *boards[number];
  Outcome outcome = Done(command);
  outcome.values.assign(board.begin(), board.end());
  outcome.values.push_back(static_cast<std::uint8_t>(vpd.size() >> 8));
  outcome.values.push_back(static_cast<std::uint8_t>(vpd.size()));
  outcome.values.insert(outcome.values.end(), vpd.begin(), vpd.end());
  return outcome;
}

std::vector<std::uint8_t> AnswerPacket(const Command& command, const Outcome& outcome) {
  const std::uint8_t function = outcome.answersFunction.value_or(command.packet[kFunctionAt]);
  std::span<const std::uint8_t> values = outcome.values;
  if ((function & kRequest) != 0 && Strikes(command.faults, Fault::kBoxValuesMissing)) values = {};
  const std::size_t length = kPacketHeaderBytes - kUncountedBytes + values.size();
  const std::uint8_t header[kPacketHeaderBytes] = {kPacketMark >> 8,
                                                   kPacketMark & 0xFF,
                                                   static_cast<std::uint8_t>(length >> 8),
                                                   static_cast<std::uint8_t>(length),
                                                   command.packet[4],
                                                   function,
                                                   0,
                                                   outcome.status};
  std::vector<std::uint8_t> packet(kPacketHeaderBytes + values.size());
  std::copy(values.begin(), values.end(), std::copy(std::begin(header), std::end(header), packet.begin()));
  return packet;
}

}  // namespace simulator
