#include "ContainerFile.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <limits>
#include <stdexcept>

namespace {

constexpr std::string_view kMagic = "ORBO.RBI";
constexpr std::size_t kFixedHeaderBytes = 22;

void AppendBigEndian32(std::string& bytes, std::uint32_t number) {
  for (int shift = 24; shift >= 0; shift -= 8)
    bytes += static_cast<char>(number >> shift & 0xFF);
}

}  // namespace

std::string BuildContainer(std::string_view partId, std::uint16_t version, std::string_view taggedText,
                           std::string_view payload) {
  if (taggedText.size() > std::numeric_limits<std::uint32_t>::max() - kFixedHeaderBytes)
    throw std::runtime_error("the tagged text does not fit a header");
  char revision[8];
  std::snprintf(revision, sizeof(revision), "R%04X;", static_cast<unsigned>(version));
  std::string container(kMagic);
  AppendBigEndian32(container, static_cast<std::uint32_t>(kFixedHeaderBytes + taggedText.size()));
  container.append(revision).append(partId).append(taggedText).append(payload);
  return container;
}

bool IsPartId(std::string_view text) {
  return text.size() == 4 && std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

std::optional<std::uint16_t> ParseVersion(std::string_view text) {
  std::uint16_t version = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, version, 16);
  if (text.size() > 4 || error != std::errc() || stop != end) return std::nullopt;
  return version;
}
