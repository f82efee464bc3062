#pragma once

#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "talcpath.h"

/// Packets as text, so that an expected packet reads like a table and a wrong one shows in a failure.
///
///     EXPECT_EQ(Hex(packet), "0B 0B 00 04 80 03 00 00");
namespace test_support {

using Bytes = std::vector<std::uint8_t>;

inline std::string Hex(const Bytes& bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    char pair[4];
    std::snprintf(pair, sizeof pair, "%s%02X", text.empty() ? "" : " ", byte);
    text += pair;
  }
  return text;
}

inline Bytes PacketOf(const TalcPath::TalcByteCode& byteCode) {
  const std::uint8_t* buffer = nullptr;
  if (!byteCode.GetPacketByteCodeBuffer(&buffer)) return {};
  return {buffer, buffer + byteCode.GetSize()};
}

inline std::string Hex(const TalcPath::TalcByteCode& byteCode) {
  return Hex(PacketOf(byteCode));
}

/// The bytes of byte pairs parted by blanks.
inline Bytes FromHex(std::string_view text) {
  Bytes bytes;
  for (std::size_t at = 0; at + 2 <= text.size(); at += 3) {
    if (at + 2 < text.size() && text[at + 2] != ' ') throw std::invalid_argument(std::string(text));
    bytes.push_back(static_cast<std::uint8_t>(std::stoul(std::string(text.substr(at, 2)), nullptr, 16)));
  }
  return bytes;
}

inline Bytes operator+(Bytes first, const Bytes& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

}  // namespace test_support
