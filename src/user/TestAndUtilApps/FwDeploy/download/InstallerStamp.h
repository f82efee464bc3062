#pragma once

#include <cstdint>
#include <string>

#include "platform/Clock.h"
#include "platform/Files.h"

class C28FxJ3A;

// The record that an install leaves behind in a host card's flash: who installed what and when, the file's version,
// and, at the very end of the image area, where that record is. A card's version is read from it.
//
// Byte offsets in the image area's top block of 128 KiB:
//
//     stampOffset        text, terminated
//                        the file's RBI header from its offset 12 on: "R", four version digits, ...
//                        zeros
//     0x1FFF8            version word: the version OR 0x80000, so that its high half, the format word, is 8
//     0x1FFFC            stamp location: byte offset of the text in the image area
//
// Both words are little-endian.

inline constexpr std::uint32_t kImageBlockBytes = 0x20000;
/// The image area: its first word in the flash, and its size.
inline constexpr std::uint32_t kImageAreaWord = 0x100000;
inline constexpr std::uint32_t kImageAreaBytes = 0x200000;
/// The top block's offset in the image area.
inline constexpr std::uint32_t kTopBlockOffset = kImageAreaBytes - kImageBlockBytes;

/// Offsets in the top block.
inline constexpr std::uint32_t kVersionWordOffset = 0x1FFF8;
inline constexpr std::uint32_t kStampLocationOffset = 0x1FFFC;
/// How far text and header copy may reach, their terminators included.
inline constexpr std::uint32_t kStampEnd = 0x1FFF5;
/// What is ORed to the version to make the version word.
inline constexpr std::uint32_t kStampFormatBits = 0x80000;

/// Part of an RBI header that is not copied into the stamp: magic and header length.
inline constexpr std::uint32_t kRbiBytesBeforeCopy = 12;

/// The stamp's text. `fileName` is shown without its directory; user and domain come from the environment, the first 19
/// characters of each, or nothing where they are not set; the time is local, in the 25 characters of `ctime`.
std::string FormatInstallerStamp(const char* fileName, platform::Files& environment, platform::Clock& clock);

/// The version that a card's stamp tells, or 0 when there is no stamp, as in an erased flash, or none that can be read.
/// Leaves the flash in read array mode.
std::uint32_t ReadStampedVersion(C28FxJ3A& flash);
