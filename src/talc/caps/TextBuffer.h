#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

/// Texts for buffers of callers. A buffer's size counts the terminator.
namespace TalcPathPrivate {

/// Fills it with zeros. False for none, and for one of size 0.
inline bool ClearBuffer(char* buffer, std::uint32_t size) {
  if (buffer == nullptr || size < 1) return false;
  std::fill_n(buffer, size, '\0');
  return true;
}

/// Copies what fits into a buffer that is clear.
inline void CopyCut(std::string_view text, char* buffer, std::uint32_t size) {
  std::copy_n(text.begin(), std::min<std::size_t>(text.size(), size - 1), buffer);
}

/// Copies into a buffer that is clear, or answers false when the text does not fit.
inline bool CopyWhole(std::string_view text, char* buffer, std::uint32_t size) {
  if (text.size() > size - 1) return false;
  CopyCut(text, buffer, size);
  return true;
}

}  // namespace TalcPathPrivate
