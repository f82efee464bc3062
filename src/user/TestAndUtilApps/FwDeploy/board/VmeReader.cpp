#include "board/VmeReader.h"

#include <algorithm>

namespace {

/// In a loop: the rest of this block's data stands in the file.
constexpr std::uint8_t kFromFile = 0x55;

// Kinds of compressed data; any other number is the length of a pattern of nibbles.
constexpr std::uint8_t kNoRuns = 0;
constexpr std::uint8_t kRunsOfZeros = 1;
constexpr std::uint8_t kRunsOfOnes = 2;
constexpr std::uint8_t kBitMap = 0xFF;

}  // namespace

bool VmeReader::Open(const char* path) {
  file_.reset(std::fopen(path, "rb"));
  blockAt_ = blockEnd_ = 0;
  return file_ != nullptr;
}

bool VmeReader::FillBlock() {
  blockAt_ = 0;
  blockEnd_ = file_ == nullptr ? 0 : std::fread(block_.data(), 1, block_.size(), file_.get());
  return blockEnd_ != 0;
}

/// Says so when there is not.
bool VmeReader::HasMore() {
  if (FillBlock()) return true;
  print_("Reached end of file/n");  // a slash, and meant to be
  return false;
}

int VmeReader::NextHeapByte() {
  // One byte behind the heap's text can be read: a zero.
  if (vme_.heapIndex > vme_.heapSize || vme_.heapIndex >= vme_.heapData.size()) return -1;
  return vme_.heapData[vme_.heapIndex++];
}

int VmeReader::GetVmeByte() {
  const int byte = NextByte();
  return byte < 0 ? -1 : static_cast<std::int8_t>(byte);
}

std::uint16_t VmeReader::ReadVmeNumber() {
  std::uint32_t number = 0;
  unsigned shift = 0;
  int byte = 0;
  do {
    byte = NextByte();
    if (byte < 0) break;
    if (shift < 16) number |= static_cast<std::uint32_t>(byte & 0x7F) << shift;
    shift = std::min(shift + 7, 16u);
  } while ((byte & 0x80) != 0);
  return static_cast<std::uint16_t>(number);
}

void VmeReader::LeaveHeap(bool& isOffHeap) {
  vme_.dataType &= static_cast<std::uint16_t>(~VmeInterpreter::kFromHeap);
  isOffHeap = true;
}

void VmeReader::ReadVmeData(VmeBuffer& buffer) {
  const std::uint32_t bytes = (vme_.dataSize + 7u) / 8u;
  bool isOffHeap = false;
  if (!vme_.Has(VmeInterpreter::kCompressed)) {
    ReadBytes(buffer, bytes, false, 0, isOffHeap);
  } else {
    std::uint8_t kind = NextDataByte();
    if (kind == kFromFile && vme_.Has(VmeInterpreter::kFromHeap)) {
      LeaveHeap(isOffHeap);
      kind = NextDataByte();
    }
    switch (kind) {
      case kNoRuns:
        ReadBytes(buffer, bytes, false, 0, isOffHeap);
        break;
      case kRunsOfZeros:
        ReadBytes(buffer, bytes, true, 0x00, isOffHeap);
        break;
      case kRunsOfOnes:
        ReadBytes(buffer, bytes, true, 0xFF, isOffHeap);
        break;
      case kBitMap:
        ReadBitMap(buffer, bytes);
        break;
      default:
        ReadNibbles(buffer, bytes, kind);
        break;
    }
  }
  if (isOffHeap) vme_.dataType |= VmeInterpreter::kFromHeap;
}

void VmeReader::ReadBytes(VmeBuffer& buffer, std::uint32_t bytes, bool hasRuns, std::uint8_t fill, bool& isOffHeap) {
  const bool isCompressed = vme_.Has(VmeInterpreter::kCompressed);
  std::uint32_t i = 0;
  if (!hasRuns && !vme_.Has(VmeInterpreter::kFromHeap)) i = CopyFromFile(buffer, bytes);
  for (; i < bytes; ++i) {
    std::uint8_t byte = NextDataByte();
    // Plain data can go on in the file at any byte, once a block.
    if (byte == kFromFile && !isCompressed && !isOffHeap && vme_.Has(VmeInterpreter::kFromHeap)) {
      LeaveHeap(isOffHeap);
      byte = NextDataByte();
    }
    buffer[i] = byte;
    if (!hasRuns || byte != fill) continue;
    const std::uint32_t run = std::min<std::uint32_t>(ReadVmeNumber(), bytes - i - 1);
    std::fill_n(buffer.begin() + i + 1, run, fill);
    i += run;
  }
}

/// Copies bytes as they stand in the file, and returns how many there were.
std::uint32_t VmeReader::CopyFromFile(VmeBuffer& buffer, std::uint32_t bytes) {
  std::uint32_t copied = 0;
  while (copied < bytes && (blockAt_ != blockEnd_ || FillBlock())) {
    const auto part = std::min<std::size_t>(bytes - copied, blockEnd_ - blockAt_);
    std::copy_n(block_.begin() + static_cast<std::ptrdiff_t>(blockAt_), part, buffer.begin() + copied);
    blockAt_ += part;
    copied += static_cast<std::uint32_t>(part);
  }
  return copied;
}

/// A bit for each byte: 0 for the fill byte, 1 for one that follows, as eight further bits.
void VmeReader::ReadBitMap(VmeBuffer& buffer, std::uint32_t bytes) {
  const std::uint8_t fill = NextDataByte();
  std::uint32_t window = 0;  // bits that were read and not yet taken, the oldest on top
  unsigned bitsLeft = 0;
  const auto take = [&](unsigned bits) {
    if (bitsLeft < bits) {
      window = window << 8 | NextDataByte();
      bitsLeft += 8;
    }
    bitsLeft -= bits;
    return static_cast<std::uint8_t>(window >> bitsLeft & ((1u << bits) - 1));
  };
  for (std::uint32_t i = 0; i < bytes; ++i)
    buffer[i] = take(1) == 0 ? fill : take(8);
}

/// A pattern of nibbles, repeated as often as it fits whole; behind that zeros.
void VmeReader::ReadNibbles(VmeBuffer& buffer, std::uint32_t bytes, std::uint32_t patternNibbles) {
  std::fill(buffer.begin(), buffer.end(), std::uint8_t{0});
  const std::uint32_t end = bytes * 2 / patternNibbles * patternNibbles;
  std::uint8_t pair = 0;
  for (std::uint32_t n = 0; n < patternNibbles; ++n) {
    if (n % 2 == 0) pair = NextDataByte();
    const unsigned nibble = n % 2 == 0 ? pair >> 4 : pair & 0x0F;
    for (std::uint32_t at = n; at < end; at += patternNibbles)
      buffer[at / 2] = static_cast<std::uint8_t>(buffer[at / 2] | nibble << (at % 2 == 0 ? 4 : 0));
  }
}
