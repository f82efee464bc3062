#include "installer/VersionDiscovery.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "board/C28FxJ3A.h"
#include "container/RbiContainer.h"
#include "download/InstallerStamp.h"
#include "errorException.h"
#include "installer/VpdBlock.h"

namespace {

/// What a board's VPD says of the board. Starts as the queries always did, with values that no board has.
struct BoardVpd {
  std::uint8_t bytes[kBoardVpdBytes] = {};
  std::uint32_t major = 255;
  std::uint32_t minor = 255;
};

void ReadHostCardVpd(VeltraSpecificHelper& helper, const char* name, BoardVpd& vpd) {
  // A card that leaves the buffer alone is found out by the first field.
  helper.GetBoardVPD(name, vpd.bytes);
  if (ReadVpdHexField(vpd.bytes, "ZB", vpd.major) != kVpdSuccess)
    throw errorException("Unable to decode Zerin major VPD information");
  if (ReadVpdHexField(vpd.bytes, "ZC", vpd.minor) != kVpdSuccess)
    throw errorException("Unable to decode Zerin minor VPD information");
}

void RegisterPart(Installer& installer, const char* name, const char* id, const BoardVpd& vpd, std::uint32_t current,
                  const char* suffixText, std::uint32_t expected) {
  const auto major = static_cast<std::int32_t>(vpd.major);
  const auto minor = static_cast<std::int32_t>(vpd.minor);
  if (!installer.RegisterPartLocation(name, id, major, minor, current, suffixText, expected))
    std::fprintf(stderr, "The %s function rev %" PRId32 ".%" PRId32 " cannot be updated using this utility\n", name,
                 major, minor);
}

bool IsInRange(const PartDescription& part, const BoardVpd& vpd) {
  return IsRevisionInRange(part, static_cast<std::int32_t>(vpd.major), static_cast<std::int32_t>(vpd.minor));
}

/// Early artwork cannot take the newer Karvel images. Looks at the files that the user selected for the first card.
bool IsArtworkTooOldForSelectedKarvel(const Installer& installer, const BoardVpd& vpd, std::uint32_t artwork) {
  constexpr std::uint32_t kFirstArtworkForAllImages = 4;
  constexpr std::uint32_t kLastVersionForAllArtworks = 0x16;
  for (std::int32_t i = 0; i < installer.descriptionCount(); ++i) {
    const PartDescription& part = installer.description(i);
    if (std::strcmp(part.id, "KRVL") != 0 || part.name[0] != 'b' || part.load == 0 || !IsInRange(part, vpd)) continue;
    char partId[5];
    std::uint32_t fileVersion = 0;
    ReadRbiHeader(part.fileName, partId, fileVersion);  // a file that cannot be read counts as version 0
    if (artwork < kFirstArtworkForAllImages && fileVersion > kLastVersionForAllArtworks) return true;
  }
  return false;
}

}  // namespace

void QueryFlashPart(Installer& installer, VeltraSpecificHelper& helper, const char* name, const char* id,
                    std::uint32_t expected) {
  C28FxJ3A* const flash = helper.GetC28FxJ3A(name);
  if (flash == nullptr) return;
  BoardVpd vpd;
  ReadHostCardVpd(helper, name, vpd);
  RegisterPart(installer, name, id, vpd, ReadStampedVersion(*flash), "", expected);
}

void QueryKarvelPart(Installer& installer, VeltraSpecificHelper& helper, const char* name, const char* id,
                     std::uint32_t expected) {
  const platform::RegisterWindow karvelVersion = helper.GetKarvelVersion(name);
  if (!karvelVersion) return;
  BoardVpd vpd;
  ReadHostCardVpd(helper, name, vpd);
  if (name[0] == 'b') {
    std::uint32_t artwork = 255;
    if (ReadVpdHexField(vpd.bytes, "ZA", artwork) != kVpdSuccess)
      throw errorException("Unable to decode Belmara artwork information");
    if (IsArtworkTooOldForSelectedKarvel(installer, vpd, artwork)) return;
  }
  const std::uint32_t current = karvelVersion.Read(0) >> 16 & 0xFF;
  RegisterPart(installer, name, id, vpd, current, "", expected);
}

void QueryVpdPart(Installer& installer, WyvrelHelper& helper, const char* name, const char* id, const char* board,
                  std::uint32_t current, const char* suffixText, std::uint32_t expected) {
  constexpr std::uint32_t kLongestVpd = 1999;
  BoardVpd vpd;
  std::uint16_t size = 0;
  if (helper.ExecuteCommand("VPDInfo", {Argument::Symbol("Board", board), Argument::OutUInt16("VPDSize", &size),
                                        Argument::OutBytes("VPDInfo", vpd.bytes, kLongestVpd)}) != kHWCerr_None) {
    std::fprintf(stderr, "Error: VPDInfo TALC command failed for %s, for device %s\n", board, name);
    throw errorException("Unable to get VPD information");
  }
  // The size is what the box says; only as much as there was room for can be read.
  const std::span<const std::uint8_t> block(vpd.bytes, size <= kLongestVpd ? size : 0u);
  if (ReadVpdHexField(block, "ZB", vpd.major) != kVpdSuccess)
    throw errorException("Unable to decode major VPD information");
  if (ReadVpdHexField(block, "ZC", vpd.minor) != kVpdSuccess)
    throw errorException("Unable to decode minor VPD information");
  RegisterPart(installer, name, id, vpd, current, suffixText, expected);
}

void GetPartRev(WyvrelHelper& helper, const char* part, PartRev& rev) {
  constexpr std::uint32_t kLongestText = 31;
  rev.major = rev.minor = 0;
  char text[kLongestText + 1] = {};
  if (helper.ExecuteCommand("GetStringPartRev", {Argument::Symbol("PartID", part),
                                                 Argument::OutBytes("Version", text, kLongestText)}) != kHWCerr_None) {
    // Made and not thrown, on purpose: a part that does not answer is a line of warning and no more.
    [[maybe_unused]] const errorException unthrown("GetStringPartRev failed");
    std::fprintf(stderr, "GetStringPartRev for %s failed.\n", part);
  }
  if (std::strstr(text, "UNKNOWN") != nullptr) return;
  rev.suffix[0] = '\0';
  std::uint64_t major = 0;
  std::uint64_t minor = 0;
  // The widths of the numbers and the suffix only keep the scan inside its places. The character between them is
  // dropped where nobody looks.
  if (text[2] == '.')
    std::sscanf(text, "%16" SCNx64 ".%16" SCNx64 "%c%28s", &major, &minor, &rev.suffix[29], rev.suffix);
  else
    std::sscanf(text, "%2" SCNx64 "%2" SCNx64 "%28s", &major, &minor, rev.suffix);
  rev.major = static_cast<std::uint32_t>(major);
  rev.minor = static_cast<std::uint32_t>(minor);
}

std::int32_t ReadBoardPartNumber(WyvrelHelper* helper, const char* board, BoardPartNumber* numbers) {
  if (helper == nullptr || board == nullptr || numbers == nullptr) return kVpdBadArgument;
  std::uint8_t vpd[kBoardVpdBytes] = {};
  try {
    helper->GetBoardVPD(board, vpd);
  } catch (...) {
    // Whatever went wrong, the board then has no part number, and the run goes on without the parts that hang on it.
    return kVpdFieldNotFound;
  }
  char text[128 + 1] = {};
  const VpdStatus status = ReadVpdField(vpd, "PN", std::span<char>(text, 128));
  if (status != kVpdSuccess) return status;
  constexpr BoardPartNumber kMissing;
  std::int64_t first = kMissing.first, second = kMissing.second, third = kMissing.third;
  // The widths keep the scan inside 64 bits, whatever the field holds.
  std::sscanf(text, "%18" SCNd64 "-%18" SCNd64 "-%18" SCNd64, &first, &second, &third);
  *numbers = {static_cast<std::int32_t>(first), static_cast<std::int32_t>(second), static_cast<std::int32_t>(third)};
  return kVpdSuccess;
}
