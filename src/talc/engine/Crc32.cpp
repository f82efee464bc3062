#include "engine/Crc32.h"

#include <array>
#include <cstddef>

namespace TalcPathPrivate {
namespace {

constexpr std::uint32_t kPolynomial = 0xEDB88320;  // 0x04C11DB7, its bits reversed

using Table = std::array<std::uint32_t, 256>;

/// What the division makes of each byte. Made once, by the compiler.
constexpr Table kTable = [] {
  Table table{};
  for (std::uint32_t byte = 0; byte < table.size(); ++byte) {
    std::uint32_t rest = byte;
    for (int bit = 0; bit < 8; ++bit)
      rest = (rest & 1) != 0 ? rest >> 1 ^ kPolynomial : rest >> 1;
    table[byte] = rest;
  }
  return table;
}();

}  // namespace

void Crc32::Add(std::span<const char> bytes) {
  for (const char byte : bytes)
    running_ = running_ >> 8 ^ kTable[(running_ ^ static_cast<unsigned char>(byte)) & 0xFF];
}

}  // namespace TalcPathPrivate
