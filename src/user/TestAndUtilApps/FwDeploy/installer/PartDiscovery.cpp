#include "installer/PartDiscovery.h"

#include <cinttypes>
#include <cstdio>

#include "installer/VersionDiscovery.h"

namespace {

constexpr std::uint32_t kExpectedHostCard = 0x1161;
constexpr std::uint32_t kExpectedKarvel = 0;

/// What a box without the second FPGA's board is taken to run there when the user insists on it.
constexpr std::uint32_t kForcedTolmarnVersion = 0x202;

struct Revision {
  std::uint8_t major = 0;
  std::uint8_t minor = 0;

  bool IsThere() const { return major != 0 || minor != 0; }
  std::uint32_t Version() const { return static_cast<std::uint32_t>(major) << 8 | minor; }
};

/// What the box says that it runs, in its own order.
struct BoxConfiguration {
  Revision sparkwell;
  Revision dolmbrin;
  Revision tarnvald;
  Revision ravenshale;
  Revision tanbrook;
  char firmware[30] = {};  ///< a text, with a terminator behind the longest one
};

HwcStatus AskBox(WyvrelHelper& helper, BoxConfiguration& box) {
  return helper.ExecuteCommand("HWConfigFB",
                               {Argument::OutUInt8("SparkwellMajorRev", &box.sparkwell.major),
                                Argument::OutUInt8("SparkwellMinorRev", &box.sparkwell.minor),
                                Argument::OutUInt8("DolmbrinMajorRev", &box.dolmbrin.major),
                                Argument::OutUInt8("DolmbrinMinorRev", &box.dolmbrin.minor),
                                Argument::OutUInt8("TarnvaldMajorRev", &box.tarnvald.major),
                                Argument::OutUInt8("TarnvaldMinorRev", &box.tarnvald.minor),
                                Argument::OutUInt8("RavenshaleMajorRev", &box.ravenshale.major),
                                Argument::OutUInt8("RavenshaleMinorRev", &box.ravenshale.minor),
                                Argument::OutUInt8("TanbrookMajorRev", &box.tanbrook.major),
                                Argument::OutUInt8("TanbrookMinorRev", &box.tanbrook.minor),
                                Argument::OutBytes("FirmwareRev", box.firmware, sizeof box.firmware - 1)});
}

void DiscoverBoxParts(Installer& installer, WyvrelHelper& helper, const BoxConfiguration& box) {
  std::uint64_t firmwareMajor = 0;
  std::uint64_t firmwareMinor = 0;
  // A blank is a letter that is not shown. Hexadecimal digits right behind the minor number are taken for part of it.
  char letter[2] = " ";
  std::sscanf(box.firmware, "%16" SCNx64 ".%16" SCNx64 " %c", &firmwareMajor, &firmwareMinor, &letter[0]);
  const auto firmware = static_cast<std::uint32_t>((firmwareMajor << 8) + firmwareMinor);

  const auto query = [&](const char* name, const char* id, const char* board, std::uint32_t current,
                         std::uint32_t expected, const char* suffix = "") {
    QueryVpdPart(installer, helper, name, id, board, current, suffix, expected);
  };
  query("pelgrimar", "PLGR", "VPD_Brox", box.sparkwell.Version(), ExpectedRev(0x220, 0x22F));
  query("fwcore", "BROX", "VPD_Brox", firmware, ExpectedRev(0x225, 0x235), letter);
  if (box.tarnvald.IsThere()) query("tulmen", "TULM", "VPD_Fenrok", box.tarnvald.Version(), ExpectedRev(0x2, 0x11));
  // Both parts of this board hang on the one revision.
  if (box.dolmbrin.IsThere()) {
    query("vulmen", "VULM", "VPD_Jorl", box.dolmbrin.Version(), ExpectedRev(0x1, 0x10));
    query("tolmarn", "TLM_", "VPD_Jorl", box.ravenshale.Version(), ExpectedRev(0x232, 0x241));
  } else if (installer.forceTolmarn != 0) {
    query("tolmarn", "TLM_", "VPD_Brox", kForcedTolmarnVersion, ExpectedRev(0x232, 0x241));
  }
  query("ulmen", "ULMN", "VPD_Brox", box.tanbrook.Version(), ExpectedRev(0x1C, 0x2B));
}

}  // namespace

void DiscoverVeltraParts(Installer& installer, VeltraSpecificHelper& helper) {
  QueryFlashPart(installer, helper, "belmara", "BLMX", kExpectedHostCard);
  QueryFlashPart(installer, helper, "dovu", "DVUX", kExpectedHostCard);
  QueryKarvelPart(installer, helper, "bkarvel", "KRVL", kExpectedKarvel);
  QueryKarvelPart(installer, helper, "dkarvel", "KRVL", kExpectedKarvel);
  if (helper.GetC28FxJ3A("belmara") == nullptr) {
    std::fputs("There is no Belmara card (driver not loaded?), so Veltra BOB is inaccessible.\n", stderr);
    return;
  }
  BoxConfiguration box;
  if (AskBox(helper, box) != kHWCerr_None) {
    std::fputs("Veltra BOB is inaccessable, and cannot be loaded.  Is BOB turned off?\n", stderr);
    return;
  }
  DiscoverBoxParts(installer, helper, box);
}
