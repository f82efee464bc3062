#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/Downloads.h"

namespace simulator {

/// A version that the Orbo QX tells, as a text.
struct MorvakVersion {
  std::string_view symbol;  ///< the dictionary's name of its number
  std::uint16_t number;     ///< by which a request names it
};

/// All of them, in the order in which everything lists them.
inline constexpr MorvakVersion kMorvakVersions[] = {
    {"MorvakFirmware", 0},
    {"MorvakFPGA", 1},
    {"MorvakTesk", 2},
    {"MorvakPower", 10},
    {"MorvakCodec1FPGA", 3},
    {"MorvakCodec1VCID", 7},
    {"MorvakCodec2FPGA", 5},
    {"MorvakCodec2VCID", 8},
    {"MorvakCodec1CPLD", 4},
    {"MorvakCodec2CPLD", 6},
    {"MorvakFirmwareSafe", 9},
    {"MorvakFPGASafe", 11},
    {"MorvakCodec1Firmware", 12},
    {"MorvakCodec2Firmware", 13},
};
inline constexpr std::size_t kMorvakVersionCount = std::size(kMorvakVersions);

/// A part of the Orbo QX that can be loaded.
struct MorvakPart : LoadablePart {
  std::uint16_t version;  ///< number of the version that it tells
};

inline constexpr MorvakPart kMorvakParts[] = {
    {{PartKind::kFirmware, 0, kContainerFile, "PICO"}, 0},
    {{PartKind::kFpga, 0, kContainerFile, "XNDR YRVL YRVX QNDL"}, 1},
    {{PartKind::kFpga, 1, kContainerFile, "ENCD ENSC SPCR"}, 3},
    {{PartKind::kFpga, 2, kContainerFile, "ENCD ENSC SPCR"}, 5},
    {{PartKind::kFpga, 3, kContainerFile, "ENVC"}, 7},
    {{PartKind::kFpga, 4, kContainerFile, "ENVC"}, 8},
    {{PartKind::kCpld, 0, kBinaryFile, "TSKP"}, 2},
    {{PartKind::kCpld, 1, kBinaryFile, "VQPW VQPX JQPW JQPX JQPY"}, 10},
};

/// The part of this kind and number, or null.
const MorvakPart* FindMorvakPart(PartKind kind, std::uint8_t number);
/// The first part that takes this container id, or null.
const MorvakPart* FindMorvakPart(std::string_view id);

/// What the whole unit runs, or holds for the next power-up: the text of each version, nothing for what is not there.
class MorvakTexts {
 public:
  using Text = std::optional<std::string>;

  /// The text of a version by its number; for a number that there is not, nothing.
  Text Of(std::uint16_t number) const;
  /// Sets the text of a number that there is.
  void Set(std::uint16_t number, Text text);

  friend bool operator==(const MorvakTexts&, const MorvakTexts&) = default;

 private:
  std::array<Text, kMorvakVersionCount> texts_;
};

/// Major and minor in a version text, "0102abc" or "01.02 abc", as major times 256 plus minor; nothing in any other.
std::optional<std::uint16_t> VersionInText(const MorvakTexts::Text& text);

/// The VPD of a unit's boards, by number.
using MorvakBoards = std::map<std::uint32_t, std::vector<std::uint8_t>>;

/// What people call the part behind a version: it goes by the unit's model and by the part numbers in the VPD of boards
/// 0 (the unit itself), 2 and 3 (its codecs). The version's symbol where these give no name.
std::string MorvakRowName(const MorvakVersion& version, std::uint32_t model, const MorvakBoards& boards);

}  // namespace simulator
