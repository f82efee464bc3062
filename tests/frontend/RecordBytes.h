#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// Records byte by byte, as they come to a front end.
namespace record_bytes {

using Bytes = std::vector<std::uint8_t>;

/// A text, its terminator, and up to 260 bytes what a sender happened to leave there.
inline Bytes Field(const std::string& text, std::uint8_t leftOver = 0xCC) {
  Bytes field(text.begin(), text.end());
  field.push_back(0);
  field.resize(260, leftOver);
  return field;
}

inline Bytes Join(const std::vector<Bytes>& pieces) {
  Bytes all;
  for (const Bytes& piece : pieces)
    all.insert(all.end(), piece.begin(), piece.end());
  return all;
}

}  // namespace record_bytes
