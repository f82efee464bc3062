#include "simulator/FirmwareFiles.h"

#include "simulator/BoxParts.h"
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

/// Payloads end inside a flash block or a piece of a download, and most of them inside a word.
constexpr ReleaseRow kRelease[] = {
    {"BLMX0202.rbi", "BLMX", 0x1161, 1'258'291}, {"DVUX0202.rbi", "DVUX", 0x1161, 1'214'530},
    {"PLGR0201.rbi", "PLGR", 0x0220, 1'203'457}, {"BROX0201.rbi", "BROX", 0x0225, 702'317},
    {"ULMN0101.rbi", "ULMN", 0x001C, 30'011},    {"TULM0002.rbi", "TULM", 0x0002, 29'989},
    {"VULM0101.rbi", "VULM", 0x0001, 30'323},    {"TLM_0104.rbi", "TLM_", 0x0232, 801'131},
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
  std::vector<std::uint8_t> payload = SeededBytes(seed, "payload " + file.name, rbi.payloadBytes);
  const BoxPart* const boxPart = FindBoxPart(rbi.partId);
  if (boxPart != nullptr && boxPart->kind == BoxPartKind::kCpld && payload.size() >= 2) {
    // These are sent without their header, so the image itself tells its version.
    payload[0] = static_cast<std::uint8_t>(rbi.version >> 8);
    payload[1] = static_cast<std::uint8_t>(rbi.version);
  }
  return MakeRbi(rbi.partId, rbi.version, payload);
}

void WriteFirmwareFiles(const std::filesystem::path& folder, const std::vector<FirmwareFile>& files,
                        std::uint64_t seed) {
  for (const FirmwareFile& file : files)
    WriteWholeFile(folder / file.name, BytesOf(file, seed));
}

}  // namespace simulator
