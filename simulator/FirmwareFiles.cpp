#include "simulator/FirmwareFiles.h"

#include "simulator/RbiFile.h"
#include "simulator/SeededBytes.h"
#include "simulator/WholeFile.h"

namespace simulator {
namespace {

struct ReleaseRow {
  const char* fileName;
  const char* partId;
  std::uint16_t version;
  std::size_t payloadBytes;
};

/// Payloads end inside a flash block, one of them inside a word.
constexpr ReleaseRow kRelease[] = {
    {"BLMX0202.rbi", "BLMX", 0x1161, 1'258'291},
    {"DVUX0202.rbi", "DVUX", 0x1161, 1'214'530},
};

}  // namespace

std::vector<FirmwareFile> ReleaseFiles() {
  std::vector<FirmwareFile> files;
  for (const ReleaseRow& row : kRelease)
    files.push_back({row.fileName, RbiContent{row.partId, row.version, row.payloadBytes}});
  return files;
}

std::vector<std::uint8_t> BytesOf(const FirmwareFile& file, std::uint64_t seed) {
  if (const auto* bytes = std::get_if<std::vector<std::uint8_t>>(&file.content)) return *bytes;
  const auto& rbi = std::get<RbiContent>(file.content);
  return MakeRbi(rbi.partId, rbi.version, SeededBytes(seed, "payload " + file.name, rbi.payloadBytes));
}

void WriteFirmwareFiles(const std::filesystem::path& folder, const std::vector<FirmwareFile>& files,
                        std::uint64_t seed) {
  for (const FirmwareFile& file : files)
    WriteWholeFile(folder / file.name, BytesOf(file, seed));
}

}  // namespace simulator
