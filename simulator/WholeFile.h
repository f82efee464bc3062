#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace simulator {

/// The bytes of a regular file of at most `limitBytes`. Throws `BenchError` when it is missing, no regular file,
/// longer, or cannot be read.
std::string ReadWholeFile(const std::filesystem::path& path, std::uintmax_t limitBytes);

/// Writes a file, in place of one that is there. Throws `BenchError` when that fails; what it wrote so far is removed.
void WriteWholeFile(const std::filesystem::path& path, std::span<const std::uint8_t> bytes);

/// The same beside the file, and then a rename: under `path` is always either the whole old file or the whole new one.
void ReplaceFile(const std::filesystem::path& path, std::span<const std::uint8_t> bytes);

/// The bytes of a text, which must outlive the result.
inline std::span<const std::uint8_t> AsBytes(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

}  // namespace simulator
