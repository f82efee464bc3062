#include "installer/PartDiscovery.h"

#include <cstdio>

#include "installer/VersionDiscovery.h"

namespace {

/// The versions that this release ships, and 0 where it ships none. Hexadecimal, as all versions are.
constexpr std::uint32_t kExpectedHostCard = 0x1161;
constexpr std::uint32_t kExpectedKarvel = 0;

}  // namespace

void DiscoverVeltraParts(Installer& installer, VeltraSpecificHelper& helper) {
  QueryFlashPart(installer, helper, "belmara", "BLMX", kExpectedHostCard);
  QueryFlashPart(installer, helper, "dovu", "DVUX", kExpectedHostCard);
  QueryKarvelPart(installer, helper, "bkarvel", "KRVL", kExpectedKarvel);
  QueryKarvelPart(installer, helper, "dkarvel", "KRVL", kExpectedKarvel);
  if (helper.GetC28FxJ3A("belmara") == nullptr)
    std::fputs("There is no Belmara card (driver not loaded?), so Veltra BOB is inaccessible.\n", stderr);
}
