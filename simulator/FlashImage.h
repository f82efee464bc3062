#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "simulator/FlashMemory.h"

namespace simulator {

/// Where a host card's image lies in its flash: two megabytes from the second megaword on, the installer's stamp in the
/// top block, and a pointer to the stamp in the last four bytes.
inline constexpr std::uint32_t kImageFirstByte = 0x200000;
inline constexpr std::uint32_t kImageSizeBytes = 0x200000;

/// The flash of a card as an earlier installation left it: a seeded image, and a stamp of this version. `partId` has
/// four characters.
FlashMemory MakeInstalledFlash(std::string_view fileName, std::string_view partId, std::uint16_t version,
                               std::uint64_t seed);

/// The version in the stamp, which is what a card of this flash runs after its next power-up. Nothing where the flash
/// holds no pointer to a stamp, as in an erased one; 0 where the pointer does not lead to a whole stamp. Both layouts
/// are understood: the older one has format word 4.
std::optional<std::uint16_t> StoredVersion(const FlashMemory& flash);

}  // namespace simulator
