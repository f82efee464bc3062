#include "simulator/FlashImage.h"

#include <algorithm>
#include <string>
#include <vector>

#include "simulator/HexText.h"
#include "simulator/LittleEndian.h"
#include "simulator/RbiFile.h"
#include "simulator/SeededBytes.h"

namespace simulator {
namespace {

constexpr std::uint32_t kBlockBytes = FlashMemory::kBlockWords * 2;
constexpr std::uint32_t kTopBlockInImage = kImageSizeBytes - kBlockBytes;
/// Not a multiple of a block or of a word, so that the end of an old image shows.
constexpr std::size_t kInstalledImageBytes = 0x40003;

constexpr std::uint32_t kFormatWordAddress = 0x1FFFFD;
constexpr std::uint32_t kLocationWordAddress = 0x1FFFFE;
constexpr std::uint16_t kOldFormat = 4;
constexpr std::uint32_t kNewFormatBits = 0x80000;
constexpr std::uint32_t kStampReadBytes = 1024;

void PutByte(FlashMemory& flash, std::uint32_t byteAddress, std::uint8_t value) {
  const std::uint16_t old = flash.Word(byteAddress / 2);
  const bool high = byteAddress % 2 != 0;
  flash.SetWord(byteAddress / 2,
                static_cast<std::uint16_t>(high ? (old & 0x00FF) | value << 8 : (old & 0xFF00) | value));
}

std::uint8_t GetByte(const FlashMemory& flash, std::uint32_t byteAddress) {
  const std::uint16_t word = flash.Word(byteAddress / 2);
  return static_cast<std::uint8_t>(byteAddress % 2 != 0 ? word >> 8 : word);
}

/// The top block behind the image: stamp text, terminator, the container's header from offset 12 on, zeros, version
/// word and pointer.
void WriteStamp(FlashMemory& flash, std::string_view fileName, std::string_view partId, std::uint16_t version) {
  const std::string text = " Filename:     " + std::string(fileName) +
                           "\n Installer:    FACTORY - bench\n Install Date: Mon Jan  1 00:00:00 2018\n";
  std::vector<std::uint8_t> header = MakeRbiHeader(partId, version);
  header.erase(header.begin(), header.begin() + 12);
  const std::size_t stampOffset = (0x1FFF5 - text.size() - header.size()) & ~std::size_t{1};

  std::vector<std::uint8_t> tail(kBlockBytes - stampOffset, 0);
  std::copy(text.begin(), text.end(), tail.begin());
  std::copy(header.begin(), header.end(), tail.begin() + static_cast<std::ptrdiff_t>(text.size()) + 1);
  Put32(&tail[tail.size() - 8], version | kNewFormatBits);
  Put32(&tail[tail.size() - 4], static_cast<std::uint32_t>(stampOffset) + kTopBlockInImage);

  auto at = static_cast<std::uint32_t>(kImageFirstByte + kTopBlockInImage + stampOffset);
  for (const std::uint8_t byte : tail)
    PutByte(flash, at++, byte);
}

}  // namespace

FlashMemory MakeInstalledFlash(std::string_view fileName, std::string_view partId, std::uint16_t version,
                               std::uint64_t seed) {
  FlashMemory flash;
  std::uint32_t at = kImageFirstByte;
  for (const std::uint8_t byte : SeededBytes(seed, "installed " + std::string(partId), kInstalledImageBytes))
    PutByte(flash, at++, byte);
  WriteStamp(flash, fileName, partId, version);
  return flash;
}

std::optional<std::uint16_t> StoredVersion(const FlashMemory& flash) {
  const std::uint32_t location =
      flash.Word(kLocationWordAddress) | static_cast<std::uint32_t>(flash.Word(kLocationWordAddress + 1)) << 16;
  if (location == 0 || location > 0x7FFFFFFF) return std::nullopt;
  const bool old = flash.Word(kFormatWordAddress) == kOldFormat;
  const std::uint64_t first = old ? std::uint64_t{location} * 2 : std::uint64_t{location} + kImageFirstByte;
  const std::uint64_t end = std::min<std::uint64_t>(first + kStampReadBytes, kImageFirstByte + kImageSizeBytes);

  const auto byteAt = [&](std::uint64_t at) { return GetByte(flash, static_cast<std::uint32_t>(at)); };
  std::uint64_t at = first;
  while (at < end && byteAt(at) != 0)
    ++at;
  // Behind the text's terminator stands the copy of the header: "R" and four digits first.
  if (at + 6 > end || byteAt(at + 1) != 'R') return 0;
  std::string digits;
  for (std::uint64_t digit = at + 2; digit < at + 6; ++digit)
    digits.push_back(static_cast<char>(byteAt(digit)));
  return static_cast<std::uint16_t>(ParseHex(digits, 4).value_or(0));
}

}  // namespace simulator
