#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/Downloads.h"

namespace simulator {

/// One part of the break-out box that holds firmware of its own.
struct BoxPart : LoadablePart {
  std::string_view name;
  std::size_t firstRevision;  ///< place of its major revision in `BoxVersions::revisions`; the minor one follows
  bool isOptional;            ///< not in every box
};

/// The one-byte revisions that the box tells of itself, in the order of its answer.
inline constexpr std::string_view kBoxRevisionNames[] = {
    "SparkwellMajorRev", "SparkwellMinorRev", "DolmbrinMajorRev",   "DolmbrinMinorRev",
    "TarnvaldMajorRev",  "TarnvaldMinorRev",  "RavenshaleMajorRev", "RavenshaleMinorRev",
    "TanbrookMajorRev",  "TanbrookMinorRev",  "SalvikMajorRev",     "SalvikMinorRev",
};
inline constexpr std::size_t kBoxRevisions = std::size(kBoxRevisionNames);

/// The parts, in the order in which everything lists them.
inline constexpr BoxPart kBoxParts[] = {
    {{PartKind::kFpga, 0, kContainerFile, "PLGR"}, "pelgrimar", 0, false},
    {{PartKind::kFirmware, 0, kContainerFile, "BROX"}, "fwcore", kBoxRevisions, false},  // tells a text instead
    {{PartKind::kCpld, 3, kContainerFile, "TULM"}, "tulmen", 4, true},
    {{PartKind::kCpld, 4, kContainerFile, "VULM"}, "vulmen", 2, true},
    {{PartKind::kFpga, 1, kContainerFile, "TLM_"}, "tolmarn", 6, true},
    {{PartKind::kCpld, 2, kContainerFile, "ULMN"}, "ulmen", 8, false},
};

/// The boards of the box that may have VPD, in the order of their numbers.
inline constexpr std::string_view kBoxBoards[] = {"VPD_Brox", "VPD_Fenrok", "VPD_Jorl"};

/// The part of this kind and number, or null.
const BoxPart* FindBoxPart(PartKind kind, std::uint8_t number);
/// The part with this container id, or null.
const BoxPart* FindBoxPart(std::string_view id);

/// What all parts of the box run, or hold for the next power-up.
struct BoxVersions {
  /// Major and minor revisions, in the order of `kBoxRevisionNames`; 0.0 for a part that is absent.
  std::array<std::uint8_t, kBoxRevisions> revisions{};
  /// What the firmware tells of itself: "2.25 a" is version 0225 with a letter.
  std::string firmwareRev;

  /// Nothing where the firmware's text does not begin with two hexadecimal numbers of one or two digits and a dot
  /// between them.
  std::optional<std::uint16_t> Of(const BoxPart& part) const;
  void Set(const BoxPart& part, std::uint16_t version);

  friend bool operator==(const BoxVersions&, const BoxVersions&) = default;
};

}  // namespace simulator
