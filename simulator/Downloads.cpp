#include "simulator/Downloads.h"

#include <algorithm>
#include <string>
#include <utility>

#include "simulator/HexText.h"

namespace simulator {
namespace {

/// Codes that no program command has.
constexpr std::uint8_t kWrongFunction = 0x06;

// The head of a firmware container.
constexpr std::string_view kContainerMagic = "ORBO.RBI";
constexpr std::size_t kContainerLengthAt = 8;
constexpr std::size_t kContainerVersionAt = 13;
constexpr std::size_t kContainerIdAt = 18;
constexpr std::size_t kContainerHeadBytes = 22;
constexpr std::size_t kIdBytes = 4;

std::string_view Text(std::span<const std::uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// What an image is: its version, or why its part cannot take it.
struct Image {
  std::uint16_t version = 0;
  std::string fault;
};

Image LookAt(const Transfer& transfer) {
  const std::span<const std::uint8_t> head = transfer.head;
  const bool isContainer = Text(head).starts_with(kContainerMagic);
  if (transfer.part->kind == PartKind::kCpld) {
    if (isContainer) return {0, "a container in the place of its payload"};
    return {head.size() < 2 ? std::uint16_t{0} : static_cast<std::uint16_t>(BigEndian(head.first(2))), ""};
  }
  if (!isContainer || head.size() < kContainerHeadBytes) return {0, "no container"};
  const std::uint32_t headerBytes = BigEndian(head.subspan(kContainerLengthAt, 4));
  if (headerBytes < kContainerHeadBytes || headerBytes > transfer.announcedBytes)
    return {0, "the container's header has " + std::to_string(headerBytes) + " bytes"};
  if (!transfer.part->Takes(Text(head.subspan(kContainerIdAt, kIdBytes))))
    return {0, "the container is not one for " + std::string(transfer.part->ids)};
  const auto version = ParseHex(Text(head.subspan(kContainerVersionAt, 4)), 4);
  if (!version) return {0, "the container has no version"};
  return {static_cast<std::uint16_t>(*version), ""};
}

}  // namespace

bool LoadablePart::Takes(std::string_view id) const {
  if (id.size() != kIdBytes) return false;
  for (std::size_t at = 0; at < ids.size(); at += kIdBytes + 1)
    if (ids.substr(at, kIdBytes) == id) return true;
  return false;
}

Outcome Downloads::Obey(const Command& command, const FindPart& find) {
  switch (command.row->task) {
    case Task::kStart:
      return Start(command, find);
    case Task::kData:
      return Data(command);
    default:
      return Program(command);
  }
}

Outcome Downloads::Start(const Command& command, const FindPart& find) {
  std::uint8_t number = command.Values()[0];
  std::uint8_t fileType = command.Values()[1];
  // Only the firmware's command has the file type in front.
  if (command.row->kind == PartKind::kFirmware) std::swap(number, fileType);
  const LoadablePart* const part = find(command.row->kind, number);
  if (part == nullptr) return Refusal(command, "there is no part " + std::to_string(number));
  if (fileType != part->fileType) return Refusal(command, "file type " + std::to_string(fileType));
  transfer = {part, BigEndian(command.Values().subspan(2, 4)), 0, {}};
  return Done(command);
}

Outcome Downloads::Data(const Command& command) {
  if (Strikes(command.faults, Fault::kTransferRefused)) {
    Outcome outcome = Done(command);
    outcome.status = kFail;
    return outcome;
  }
  const std::span<const std::uint8_t> data = command.packet.subspan(command.row->bytes);
  const std::uint32_t length = BigEndian(command.packet.subspan(command.row->bytes - 2, 2));
  if (!transfer || transfer->part->kind != command.row->kind) return Refusal(command, "no such download was started");
  if (command.row->kind == PartKind::kFirmware) {
    const std::uint32_t address = BigEndian(command.Values().first(4));
    if (address != 0) return Refusal(command, "the address is " + Hex(address, 8));
  }
  if (length != data.size())
    return Refusal(command, "length " + std::to_string(length) + " of " + std::to_string(data.size()) + " bytes");
  if (length > kDataBytes) return Refusal(command, std::to_string(length) + " bytes at once");
  if (length > transfer->announcedBytes - transfer->receivedBytes)
    return Refusal(command, "more than the announced " + std::to_string(transfer->announcedBytes) + " bytes");
  const std::size_t looked = std::min(kContainerHeadBytes - transfer->head.size(), data.size());
  transfer->head.insert(transfer->head.end(), data.begin(), data.begin() + static_cast<std::ptrdiff_t>(looked));
  transfer->receivedBytes += length;
  return Done(command, length * kDataByteNanoseconds);
}

Outcome Downloads::Program(const Command& command) {
  if (Strikes(command.faults, Fault::kProgramAnswerWrong)) {
    transfer.reset();
    Outcome outcome = Done(command);
    outcome.answersFunction = kWrongFunction;
    return outcome;
  }
  if (!transfer || transfer->part->kind != command.row->kind) return Refusal(command, "no such download was started");
  if (transfer->receivedBytes != transfer->announcedBytes)
    return Refusal(command, "only " + std::to_string(transfer->receivedBytes) + " of " +
                                std::to_string(transfer->announcedBytes) + " bytes have come");
  const Image image = LookAt(*transfer);
  if (!image.fault.empty()) return Refusal(command, image.fault);
  const std::int64_t perByte =
      transfer->part->kind == PartKind::kCpld ? kBurnCpldByteNanoseconds : kBurnByteNanoseconds;
  burn = {transfer->part, image.version,
          command.nowNanoseconds + kBurnNanoseconds + transfer->announcedBytes * perByte};
  transfer.reset();
  Outcome outcome = Done(command);
  outcome.answerNanoseconds = burn->endNanoseconds;
  return outcome;
}

std::optional<Burn> Downloads::TakeBurnt(std::int64_t nowNanoseconds) {
  if (!burn || nowNanoseconds < burn->endNanoseconds) return std::nullopt;
  return std::exchange(burn, std::nullopt);
}

}  // namespace simulator
