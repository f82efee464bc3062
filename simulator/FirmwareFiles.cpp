#include "simulator/FirmwareFiles.h"

#include "simulator/BoxParts.h"
#include "simulator/KarvelProgram.h"
#include "simulator/MorvakParts.h"
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
    {"SPCT.rbi", "SPCR", 0x000B, 301'411},       {"PICO.rbi", "PICO", 0x0123, 262'519},
    {"XNDR.rbi", "XNDR", 0x030F, 601'247},       {"YRVL.rbi", "YRVL", 0x0222, 603'113},
    {"YRVX.rbi", "YRVX", 0x0222, 598'687},       {"QNDL.rbi", "QNDL", 0x0100, 587'431},
    {"TSKP.rbi", "TSKP", 0x0010, 8'233},         {"ENCD.rbi", "ENCD", 0x0204, 701'479},
    {"ENSC.rbi", "ENSC", 0x0020, 655'211},       {"ENVC.rbi", "ENVC", 0x000A, 320'329},
    {"VQPW.rbi", "VQPW", 0x010A, 5'023},         {"VQPX.rbi", "VQPX", 0x010A, 5'039},
    {"JQPW.rbi", "JQPW", 0x010A, 5'077},         {"JQPX.rbi", "JQPX", 0x010A, 5'101},
    {"JQPY.rbi", "JQPY", 0x010A, 5'147},
};

constexpr const char* kKarvelFileName = "KRVL0101.rbi";
constexpr const char* kKarvelPartId = "KRVL";
constexpr std::uint16_t kKarvelVersion = 0x0017;

/// The version is in the word that the part tells of itself, and in its USERCODE.
std::vector<std::uint8_t> KarvelBytes(std::uint16_t version, std::uint64_t seed) {
  const auto rows = MakeKarvelRows(static_cast<std::uint32_t>(version) << 16, seed);
  const KarvelUsercode usercode = {'K', 'V', static_cast<std::uint8_t>(version >> 8),
                                   static_cast<std::uint8_t>(version)};
  return MakeRbi(kKarvelPartId, version, MakeKarvelProgram(rows, usercode));
}

bool IsForCpld(std::string_view partId) {
  const LoadablePart* part = FindBoxPart(partId);
  if (part == nullptr) part = FindMorvakPart(partId);
  return part != nullptr && part->kind == PartKind::kCpld;
}

}  // namespace

std::vector<FirmwareFile> ReleaseFiles() {
  std::vector<FirmwareFile> files;
  for (const ReleaseRow& row : kRelease)
    files.push_back({row.fileName, RbiContent{row.partId, row.version, row.payloadBytes}});
  files.push_back({kKarvelFileName, KarvelContent{kKarvelVersion}});
  return files;
}

std::vector<std::uint8_t> BytesOf(const FirmwareFile& file, std::uint64_t seed) {
  if (const auto* bytes = std::get_if<std::vector<std::uint8_t>>(&file.content)) return *bytes;
  if (const auto* karvel = std::get_if<KarvelContent>(&file.content)) return KarvelBytes(karvel->version, seed);
  const auto& rbi = std::get<RbiContent>(file.content);
  std::vector<std::uint8_t> payload = SeededBytes(seed, "payload " + file.name, rbi.payloadBytes);
  if (IsForCpld(rbi.partId) && payload.size() >= 2) {
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
