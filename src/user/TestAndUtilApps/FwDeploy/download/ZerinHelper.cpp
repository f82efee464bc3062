#include "download/ZerinHelper.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "board/C28FxJ3A.h"
#include "container/RbiContainer.h"
#include "container/ScanHex.h"
#include "errorException.h"
#include "platform/Platform.h"

namespace {

constexpr char kWriteFailed[] = "Error writing Zerin flash ROM";

void PutLittleEndian(std::uint8_t* at, std::uint32_t value) {
  for (int byte = 0; byte < 4; ++byte)
    at[byte] = static_cast<std::uint8_t>(value >> 8 * byte);
}

/// The version in a header copy: the four digits behind its tag. A copy that is too short for them has version 0.
std::uint32_t VersionInCopy(const std::uint8_t* copy, std::int64_t copyLength) {
  constexpr std::int64_t kTagAndDigits = 1 + 4;
  std::uint32_t version = 0;
  if (copyLength >= kTagAndDigits) ScanHex32(std::string(copy + 1, copy + kTagAndDigits).c_str(), version);
  return version;
}

}  // namespace

ZerinHelper::ZerinHelper(C28FxJ3A* flash, std::uint32_t baseWord)
    : DownloadHelper(kImageBlockBytes), flash_(flash), baseWord_(baseWord), currentByte_(baseWord * 2) {}

std::uint32_t ZerinHelper::GetPayloadOffset(std::FILE* file, const char* fileName) {
  std::uint32_t headerLength = 0;
  const bool hasLength = ReadRbiHeaderLength(file, headerLength);
  const std::int64_t copyLength = std::int64_t{headerLength} - kRbiBytesBeforeCopy;
  const std::string text = FormatInstallerStamp(fileName, platform::Current().files(), platform::Current().clock());
  const std::int64_t stampEnd = kStampEnd - static_cast<std::int64_t>(text.size()) - copyLength;
  // The stamp starts on a word, and stays inside its block whatever the file says.
  if (!hasLength || copyLength < 0 || stampEnd < 0) throw errorException("RBI file header is not usable");
  const auto stampOffset = static_cast<std::uint32_t>(stampEnd) & ~1u;

  std::fill_n(block_.begin(), stampOffset, std::uint8_t{0xFF});
  std::fill(block_.begin() + stampOffset, block_.end(), std::uint8_t{0});
  std::memcpy(block_.data() + stampOffset, text.c_str(), text.size() + 1);
  std::uint8_t* const copy = block_.data() + stampOffset + text.size() + 1;
  // The file stands behind the header length, where the copy begins. What it lacks stays zero.
  static_cast<void>(std::fread(copy, 1, static_cast<std::size_t>(copyLength), file));

  PutLittleEndian(block_.data() + kVersionWordOffset, VersionInCopy(copy, copyLength) | kStampFormatBits);
  PutLittleEndian(block_.data() + kStampLocationOffset, stampOffset + kTopBlockOffset);
  return headerLength;
}

void ZerinHelper::StartDownload(std::uint32_t) {
  currentByte_ = baseWord_ * 2;
}

void ZerinHelper::DownloadChunk(const std::uint8_t* data, std::uint32_t lengthBytes) {
  if (lengthBytes > kImageBlockBytes) throw errorException(kWriteFailed);
  if (currentByte_ == TopBlockByte()) {
    // The image's last block and the stamp share this block; image data that is long enough wins.
    std::memcpy(block_.data(), data, lengthBytes);
    WriteBlock(block_);
  } else {
    Block padded;
    std::memcpy(padded.data(), data, lengthBytes);
    std::fill(padded.begin() + lengthBytes, padded.end(), std::uint8_t{0xFF});
    WriteBlock(padded);
  }
  currentByte_ += kImageBlockBytes;
}

bool ZerinHelper::StartProgram() {
  if (currentByte_ > TopBlockByte()) return true;  // the stamp went out with the image's last block
  currentByte_ = TopBlockByte();
  WriteBlock(block_);
  return true;
}

void ZerinHelper::WriteBlock(const Block& block) {
  std::uint16_t words[kImageBlockBytes / 2];
  std::memcpy(words, block.data(), sizeof words);
  if (flash_ == nullptr || !flash_->ProgramBlock(currentByte_ / 2, words)) throw errorException(kWriteFailed);
}
