#include "simulator/SeededBytes.h"

namespace simulator {
namespace {

/// The splitmix64 generator.
std::uint64_t Next(std::uint64_t& state) {
  state += 0x9E3779B97F4A7C15;
  std::uint64_t mixed = state;
  mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
  mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
  return mixed ^ (mixed >> 31);
}

}  // namespace

std::vector<std::uint8_t> SeededBytes(std::uint64_t seed, std::string_view label, std::size_t sizeBytes) {
  std::uint64_t state = seed;
  for (const char letter : label)
    state = Next(state) ^ static_cast<std::uint8_t>(letter);
  std::vector<std::uint8_t> bytes(sizeBytes);
  std::uint64_t word = 0;
  for (std::size_t at = 0; at < sizeBytes; ++at) {
    if (at % 8 == 0) word = Next(state);
    bytes[at] = static_cast<std::uint8_t>(word >> (at % 8 * 8));
  }
  return bytes;
}

}  // namespace simulator
