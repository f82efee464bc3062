#include "simulator/VmeData.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace simulator {
namespace {

constexpr std::uint8_t kPlain = 0x00;
constexpr std::uint8_t kRunsOfZeros = 0x01;
constexpr std::uint8_t kRunsOfOnes = 0x02;
constexpr std::uint8_t kBitMap = 0xFF;
/// Other lengths leave a rest where they do not divide the data.
constexpr std::uint8_t kNibblePatterns[] = {4, 8, 16};

using Bytes = std::vector<std::uint8_t>;

Bytes Following(std::uint8_t kind, std::span<const std::uint8_t> data) {
  Bytes form(1 + data.size(), kind);
  std::copy(data.begin(), data.end(), form.begin() + 1);
  return form;
}

Bytes WithRuns(std::span<const std::uint8_t> data, std::uint8_t kind, std::uint8_t fill) {
  Bytes form = {kind};
  for (std::size_t at = 0; at < data.size();) {
    form.push_back(data[at]);
    if (data[at++] != fill) continue;
    std::uint32_t follow = 0;
    for (; at < data.size() && data[at] == fill; ++at)
      ++follow;
    const Bytes number = VmeNumber(follow);
    form.insert(form.end(), number.begin(), number.end());
  }
  return form;
}

std::uint8_t MostFrequent(std::span<const std::uint8_t> data) {
  std::array<std::size_t, 256> counts{};
  for (const std::uint8_t byte : data)
    ++counts[byte];
  return static_cast<std::uint8_t>(std::max_element(counts.begin(), counts.end()) - counts.begin());
}

Bytes AsBitMap(std::span<const std::uint8_t> data) {
  const std::uint8_t fill = MostFrequent(data);
  Bytes form = {kBitMap, fill};
  std::size_t bits = 0;
  const auto putBit = [&](bool bit) {
    if (bits % 8 == 0) form.push_back(0);
    if (bit) form.back() |= static_cast<std::uint8_t>(0x80 >> bits % 8);
    ++bits;
  };
  for (const std::uint8_t byte : data) {
    putBit(byte != fill);
    for (int bit = 7; byte != fill && bit >= 0; --bit)
      putBit((byte >> bit & 1) != 0);
  }
  return form;
}

bool Repeats(std::span<const std::uint8_t> data, std::size_t period) {
  if (data.size() <= period || data.size() % period != 0) return false;
  return std::equal(data.begin() + static_cast<std::ptrdiff_t>(period), data.end(), data.begin());
}

}  // namespace

Bytes VmeNumber(std::uint32_t value) {
  Bytes number;
  for (; value > 0x7F; value >>= 7)
    number.push_back(static_cast<std::uint8_t>(0x80 | (value & 0x7F)));
  number.push_back(static_cast<std::uint8_t>(value));
  return number;
}

Bytes CompressVmeData(std::span<const std::uint8_t> data) {
  Bytes shortest = Following(kPlain, data);
  const auto consider = [&](Bytes form) {
    if (form.size() < shortest.size()) shortest = std::move(form);
  };
  consider(WithRuns(data, kRunsOfZeros, 0x00));
  consider(WithRuns(data, kRunsOfOnes, 0xFF));
  consider(AsBitMap(data));
  for (const std::uint8_t nibbles : kNibblePatterns) {
    const std::size_t period = nibbles / 2u;
    if (Repeats(data, period)) consider(Following(nibbles, data.first(period)));
  }
  return shortest;
}

}  // namespace simulator
