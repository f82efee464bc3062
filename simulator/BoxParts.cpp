#include "simulator/BoxParts.h"

#include <algorithm>

#include "simulator/HexText.h"

namespace simulator {
namespace {

constexpr std::string_view kHexDigits = "0123456789abcdefABCDEF";

/// "MAJOR.MINOR" at the start of a text.
std::optional<std::uint16_t> VersionInText(std::string_view text) {
  const std::size_t dot = text.find('.');
  if (dot == std::string_view::npos) return std::nullopt;
  const std::string_view behind = text.substr(dot + 1);
  const auto major = ParseHex(text.substr(0, dot), 2);
  const auto minor = ParseHex(behind.substr(0, behind.find_first_not_of(kHexDigits)), 2);
  if (!major || !minor) return std::nullopt;
  return static_cast<std::uint16_t>(*major << 8 | *minor);
}

}  // namespace

const BoxPart* FindBoxPart(BoxPartKind kind, std::uint8_t number) {
  const auto* const part = std::find_if(std::begin(kBoxParts), std::end(kBoxParts), [&](const BoxPart& candidate) {
    return candidate.kind == kind && candidate.number == number;
  });
  return part == std::end(kBoxParts) ? nullptr : part;
}

const BoxPart* FindBoxPart(std::string_view id) {
  const auto* const part = std::find_if(std::begin(kBoxParts), std::end(kBoxParts),
                                        [&](const BoxPart& candidate) { return candidate.id == id; });
  return part == std::end(kBoxParts) ? nullptr : part;
}

std::optional<std::uint16_t> BoxVersions::Of(const BoxPart& part) const {
  if (part.kind == BoxPartKind::kFirmware) return VersionInText(firmwareRev);
  return static_cast<std::uint16_t>(revisions.at(part.firstRevision) << 8 | revisions.at(part.firstRevision + 1));
}

void BoxVersions::Set(const BoxPart& part, std::uint16_t version) {
  const auto major = static_cast<std::uint8_t>(version >> 8);
  const auto minor = static_cast<std::uint8_t>(version);
  if (part.kind == BoxPartKind::kFirmware) {
    firmwareRev = Hex(major, 1) + "." + Hex(minor, 2);
    return;
  }
  revisions.at(part.firstRevision) = major;
  revisions.at(part.firstRevision + 1) = minor;
}

}  // namespace simulator
