#pragma once

#include <array>
#include <cstdint>

#include "download/DownloadHelper.h"
#include "download/InstallerStamp.h"

class C28FxJ3A;

/// Programs an image into a host card's parallel flash, from the bottom of the image area upward, and the installer
/// stamp last. A run that stops before leaves the old stamp or none, never a new one over half an image.
///
/// An image that is too long is not noticed before it reaches the end of the flash.
class ZerinHelper : public DownloadHelper {
 public:
  /// The flash belongs to the caller; null fails at the first block. `baseWord` is the word address of the image area.
  ZerinHelper(C28FxJ3A* flash, std::uint32_t baseWord);

  /// Makes the stamp as well, from the file's header and name. Throws when the header's length leaves no room for the
  /// stamp in its block or is shorter than a header is; nothing was written then.
  std::uint32_t GetPayloadOffset(std::FILE* file, const char* fileName) override;
  void StartDownload(std::uint32_t sizeBytes) override;
  void DownloadChunk(const std::uint8_t* data, std::uint32_t lengthBytes) override;
  bool StartProgram() override;
  bool PollProgram() override { return true; }

 private:
  using Block = std::array<std::uint8_t, kImageBlockBytes>;

  std::uint32_t TopBlockByte() const { return baseWord_ * 2 + kTopBlockOffset; }
  void WriteBlock(const Block& block);

  C28FxJ3A* const flash_;
  const std::uint32_t baseWord_;
  Block block_{};              ///< the top block as it will be in flash
  std::uint32_t currentByte_;  ///< byte address of the next block, in flash
};
