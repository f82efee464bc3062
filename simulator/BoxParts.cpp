#include "simulator/BoxParts.h"

#include <algorithm>

#include "simulator/HexText.h"

namespace simulator {
const BoxPart* FindBoxPart(PartKind kind, std::uint8_t number) {
  const auto* const part = std::find_if(std::begin(kBoxParts), std::end(kBoxParts), [&](const BoxPart& candidate) {
    return candidate.kind == kind && candidate.number == number;
  });
  return part == std::end(kBoxParts) ? nullptr : part;
}

const BoxPart* FindBoxPart(std::string_view id) {
  const auto* const part = std::find_if(std::begin(kBoxParts), std::end(kBoxParts),
                                        [&](const BoxPart& candidate) { return candidate.Takes(id); });
  return part == std::end(kBoxParts) ? nullptr : part;
}

std::optional<std::uint16_t> BoxVersions::Of(const BoxPart& part) const {
  if (part.kind == PartKind::kFirmware) return ParseDottedVersion(firmwareRev);
  return static_cast<std::uint16_t>(revisions.at(part.firstRevision) << 8 | revisions.at(part.firstRevision + 1));
}

void BoxVersions::Set(const BoxPart& part, std::uint16_t version) {
  const auto major = static_cast<std::uint8_t>(version >> 8);
  const auto minor = static_cast<std::uint8_t>(version);
  if (part.kind == PartKind::kFirmware) {
    firmwareRev = Hex(major, 1) + "." + Hex(minor, 2);
    return;
  }
  revisions.at(part.firstRevision) = major;
  revisions.at(part.firstRevision + 1) = minor;
}

}  // namespace simulator
