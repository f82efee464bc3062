#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/Faults.h"

namespace simulator {

/// How a part is loaded.
enum class PartKind : std::uint8_t { kFpga, kFirmware, kCpld };

/// What a command is about.
enum class Task : std::uint8_t { kTellVersions, kTellPartVersion, kTellVpd, kDiagnose, kStart, kData, kProgram };

/// A command that a device knows.
struct CommandRow {
  std::uint16_t codes;  ///< bytes 4 and 5 of its packets
  std::string_view name;
  Task task;
  PartKind kind;      ///< what a download is for
  std::size_t bytes;  ///< of the packet; of a data command, without its data
};

// Of a packet: what it begins with, and where the rest stands.
inline constexpr std::uint16_t kPacketMark = 0x0B0B;
inline constexpr std::size_t kFunctionAt = 5;
inline constexpr std::size_t kReservedAt = 6;
inline constexpr std::size_t kPacketHeaderBytes = 8;
/// Mark and length, which the length does not count.
inline constexpr std::size_t kUncountedBytes = 4;
inline constexpr std::size_t kShortestLength = 4;
inline constexpr std::size_t kPacketBytes = 2048;

inline constexpr std::uint8_t kSuccess = 0;
inline constexpr std::uint8_t kFail = 1;
inline constexpr std::uint8_t kNotSupported = 2;

/// From a packet's end to its answer.
inline constexpr std::int64_t kAnswerNanoseconds = 300'000;

std::uint32_t BigEndian(std::span<const std::uint8_t> bytes);
/// What is wrong with the mark and length in a packet's first four bytes, empty where nothing is.
std::string FramingFault(std::uint32_t firstWord);

/// A whole packet on its way through a device.
struct Command {
  std::span<const std::uint8_t> packet;
  std::int64_t nowNanoseconds = 0;
  FaultPlan* faults = nullptr;
  const CommandRow* row = nullptr;  ///< null for a command that the device does not know
  /// The status that a fault puts in the place of the device's own.
  std::optional<std::uint8_t> faultStatus;

  std::span<const std::uint8_t> Values() const { return packet.subspan(kPacketHeaderBytes); }
  std::string Name() const;
};

/// Finds the row of a packet among those of downloads and `own`, and asks the plan for a status.
Command ReadCommand(std::span<const std::uint8_t> packet, std::span<const CommandRow> own, std::int64_t nowNanoseconds,
                    FaultPlan* faults);

/// What comes of a command.
struct Outcome {
  std::uint8_t status = kSuccess;
  std::int64_t answerNanoseconds = 0;
  std::vector<std::uint8_t> values;
  std::string refusal;                          ///< what was wrong, empty where nothing was
  std::optional<std::uint8_t> answersFunction;  ///< of another command, by a fault
};

/// The command was obeyed, and is answered in the ordinary time or `delayNanoseconds` later.
Outcome Done(const Command& command, std::int64_t delayNanoseconds = 0);
Outcome Refusal(const Command& command, const std::string& text, std::uint8_t status = kFail);

/// What keeps a device from looking at a command any further: a fault's status, bytes that no packet has, a part that
/// is being programmed.
std::optional<Outcome> Objection(const Command& command, bool isBurning);
/// The VPD of the board that a command names; no answer for one that is not there.
std::optional<Outcome> TellVpd(const Command& command,
                               std::span<const std::optional<std::vector<std::uint8_t>>> boards);

/// The answer's packet.
std::vector<std::uint8_t> AnswerPacket(const Command& command, const Outcome& outcome);

}  // namespace simulator
