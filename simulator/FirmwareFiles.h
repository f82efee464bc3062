#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <variant>
#include <vector>

namespace simulator {

/// A container to be made: its payload is seeded bytes.
struct RbiContent {
  std::string partId;  ///< four characters
  std::uint16_t version;
  std::size_t payloadBytes;
};

/// A container whose payload programs a Karvel, with seeded rows.
struct KarvelContent {
  std::uint16_t version;
};

/// One file of a bench's firmware folder: a container, or bytes as they are.
struct FirmwareFile {
  std::string name;
  std::variant<RbiContent, KarvelContent, std::vector<std::uint8_t>> content;
};

/// A container for each part that a bench can have, under its default name and at this release's version.
std::vector<FirmwareFile> ReleaseFiles();

/// The bytes of a file. Files of different names have different payloads.
std::vector<std::uint8_t> BytesOf(const FirmwareFile& file, std::uint64_t seed);

/// Writes files into an existing folder. Throws `BenchError` for one that cannot be written.
void WriteFirmwareFiles(const std::filesystem::path& folder, const std::vector<FirmwareFile>& files,
                        std::uint64_t seed);

}  // namespace simulator
