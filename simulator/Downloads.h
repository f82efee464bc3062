#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "simulator/TalcCommands.h"

namespace simulator {

/// What a download's start names.
inline constexpr std::uint8_t kBinaryFile = 2;
inline constexpr std::uint8_t kContainerFile = 3;

/// A part that takes firmware of its own.
struct LoadablePart {
  PartKind kind;
  std::uint8_t number;    ///< by which a download names it among those of its kind
  std::uint8_t fileType;  ///< that its start must name
  std::string_view ids;   ///< in its firmware containers, with a blank between two

  /// True for one of the ids.
  bool Takes(std::string_view id) const;
};

/// A download that was announced and not yet programmed.
struct Transfer {
  const LoadablePart* part = nullptr;
  std::uint32_t announcedBytes = 0;
  std::uint32_t receivedBytes = 0;
  /// The first bytes, as many as the device looks at.
  std::vector<std::uint8_t> head;
};

/// An image on its way into its part.
struct Burn {
  const LoadablePart* part = nullptr;
  std::uint16_t version = 0;
  std::int64_t endNanoseconds = 0;
};

/// What goes on in a device that is being loaded: first a transfer, then a burn. A start drops a transfer that is open,
/// and so does the device when it refuses anything. FPGAs and firmware take a container of theirs, whose header tells
/// the version; CPLDs take the payload alone, whose first two bytes are the version, most significant first.
///
///     Downloads downloads;
///     downloads.Obey(command, find);                     // start, data, program
///     if (const auto burnt = downloads.TakeBurnt(now))   // later: the image is in its part
///       stored.Set(*burnt->part, burnt->version);
struct Downloads {
  static constexpr std::int64_t kDataByteNanoseconds = 2'000;
  static constexpr std::int64_t kBurnNanoseconds = 20'000'000;
  static constexpr std::int64_t kBurnByteNanoseconds = 13'000;
  static constexpr std::int64_t kBurnCpldByteNanoseconds = 2'000'000;
  static constexpr std::size_t kDataBytes = 1970;

  /// The part of this kind and number, or null.
  using FindPart = std::function<const LoadablePart*(PartKind, std::uint8_t)>;

  std::optional<Transfer> transfer;
  std::optional<Burn> burn;

  /// Takes a command to start a download, for its data or to program it, of the right length.
  Outcome Obey(const Command& command, const FindPart& find);
  /// The burn that has ended by now, once.
  std::optional<Burn> TakeBurnt(std::int64_t nowNanoseconds);

 private:
  Outcome Start(const Command& command, const FindPart& find);
  Outcome Data(const Command& command);
  Outcome Program(const Command& command);
};

}  // namespace simulator
