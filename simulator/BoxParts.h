#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace simulator {

/// How a part of the break-out box is loaded.
enum class BoxPartKind : std::uint8_t { kFpga, kFirmware, kCpld };

/// One part of the box that holds firmware of its own.
struct BoxPart {
  std::string_view name;
  std::string_view id;  ///< in its firmware containers
  BoxPartKind kind;
  std::uint8_t number;        ///< by which a download names it among those of its kind
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
    {"pelgrimar", "PLGR", BoxPartKind::kFpga, 0, 0, false},
    {"fwcore", "BROX", BoxPartKind::kFirmware, 0, kBoxRevisions, false},  // tells a text instead
    {"tulmen", "TULM", BoxPartKind::kCpld, 3, 4, true},
    {"vulmen", "VULM", BoxPartKind::kCpld, 4, 2, true},
    {"tolmarn", "TLM_", BoxPartKind::kFpga, 1, 6, true},
    {"ulmen", "ULMN", BoxPartKind::kCpld, 2, 8, false},
};

/// The boards of the box that may have VPD, in the order of their numbers.
inline constexpr std::string_view kBoxBoards[] = {"VPD_Brox", "VPD_Fenrok", "VPD_Jorl"};

/// The part of this kind and number, or null.
const BoxPart* FindBoxPart(BoxPartKind kind, std::uint8_t number);
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
