#include "Records.h"

#include <algorithm>
#include <cstddef>
#include <optional>

namespace frontend {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kTextBytes = 260;
constexpr std::size_t kNumberBytes = 4;

constexpr std::size_t kProgressBytes = 2 * kTextBytes + kNumberBytes;
constexpr std::size_t kVersionBytes = kTextBytes + 2 * kNumberBytes;
constexpr std::size_t kRestartBytes = 2 * kNumberBytes;

/// The text up to its terminator; nothing if it has none.
std::optional<std::string> TextAt(Bytes bytes, std::size_t offset) {
  const Bytes field = bytes.subspan(offset, kTextBytes);
  const auto end = std::find(field.begin(), field.end(), std::uint8_t{0});
  if (end == field.end()) return std::nullopt;
  return std::string(field.begin(), end);
}

std::uint32_t NumberAt(Bytes bytes, std::size_t offset) {
  const Bytes field = bytes.subspan(offset, kNumberBytes);
  return field[0] | std::uint32_t{field[1]} << 8 | std::uint32_t{field[2]} << 16 | std::uint32_t{field[3]} << 24;
}

Record DecodeProgress(Bytes bytes) {
  const auto part = TextAt(bytes, 0);
  const auto phase = TextAt(bytes, kTextBytes);
  if (!part) return Refused{"the part has no terminator"};
  if (!phase) return Refused{"the phase has no terminator"};
  return Progress{*part, *phase, static_cast<std::int32_t>(NumberAt(bytes, 2 * kTextBytes))};
}

Record DecodeVersion(Bytes bytes) {
  const auto part = TextAt(bytes, 0);
  if (!part) return Refused{"the part has no terminator"};
  return Version{*part, NumberAt(bytes, kTextBytes), NumberAt(bytes, kTextBytes + kNumberBytes)};
}

Record DecodeRestart(Bytes bytes) {
  return Restart{NumberAt(bytes, 0), NumberAt(bytes, kNumberBytes)};
}

struct Layout {
  std::uint64_t kind;
  std::size_t sizeBytes;
  Record (*decode)(Bytes);
};

constexpr Layout kLayouts[] = {
    {kVersionKind, kVersionBytes, DecodeVersion},
    {kProgressKind, kProgressBytes, DecodeProgress},
    {kRestartKind, kRestartBytes, DecodeRestart},
};

}  // namespace

Record DecodeRecord(std::uint64_t kind, std::span<const std::uint8_t> bytes) {
  for (const Layout& layout : kLayouts) {
    if (layout.kind != kind) continue;
    if (bytes.size() == layout.sizeBytes) return layout.decode(bytes);
    return Refused{"has " + std::to_string(bytes.size()) + " bytes, not " + std::to_string(layout.sizeBytes)};
  }
  return Refused{"unknown kind"};
}

}  // namespace frontend
