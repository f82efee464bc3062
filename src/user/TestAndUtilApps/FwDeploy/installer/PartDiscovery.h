#pragma once

#include <cstdint>

#include "FwDeploy.h"

/// Asks everything on the first line what it runs, in the order in which it will be programmed: the host cards'
/// flashes, then their CPLDs, then the parts of the box. Options must be final: some parts depend on what is selected.
/// A box that is not there or silent is a line on standard error; one that answers badly is an `errorException`.
void DiscoverVeltraParts(Installer& installer, VeltraSpecificHelper& helper);

/// Asks everything on the second line what it runs. A part that does not answer is a line on standard error.
void DiscoverMorvakParts(Installer& installer, WyvrelHelper& helper);

/// The version that this release ships of a part, hexadecimal as all versions are; 0 where it ships none. Two numbers
/// are on record for some parts, and only the first counts.
constexpr std::uint32_t ExpectedRev(std::uint32_t first, std::uint32_t) {
  return first;
}
