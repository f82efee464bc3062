#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace simulator {

/// The cells of one flash chip: 64 blocks of 0x10000 words of 16 bits, all ones at first. Knows nothing of commands.
///
/// A copy shares its cells with the original until one of them writes, so that a whole chip copies in about a
/// microsecond however much it holds. Word addresses run from 0 to `kWordCount` - 1 and are not checked.
class FlashMemory {
 public:
  static constexpr std::uint32_t kBlockCount = 64;
  static constexpr std::uint32_t kBlockWords = 0x10000;
  static constexpr std::uint32_t kWordCount = kBlockCount * kBlockWords;
  static constexpr std::size_t kSizeBytes = std::size_t{kWordCount} * 2;

  FlashMemory();
  /// The cells of an image of exactly `kSizeBytes` bytes, words low byte first.
  static FlashMemory FromBytes(std::span<const std::uint8_t> image);
  std::vector<std::uint8_t> ToBytes() const;

  std::uint16_t Word(std::uint32_t wordAddress) const {
    const Block& block = *blocks_[wordAddress / kBlockWords];
    return (*block[wordAddress % kBlockWords / kPageWords])[wordAddress % kPageWords];
  }
  /// Sets a word to any value, as no chip could.
  void SetWord(std::uint32_t wordAddress, std::uint16_t value);
  /// Sets `wordCount` words to one value. The run must end inside the device.
  void Fill(std::uint32_t wordAddress, std::uint32_t wordCount, std::uint16_t value);

  friend bool operator==(const FlashMemory& a, const FlashMemory& b);

 private:
  static constexpr std::uint32_t kPageWords = 1024;
  static constexpr std::uint32_t kPagesPerBlock = kBlockWords / kPageWords;

  using Page = std::array<std::uint16_t, kPageWords>;
  using Block = std::array<std::shared_ptr<Page>, kPagesPerBlock>;

  static std::shared_ptr<Page> UniformPage(std::uint16_t value);
  static const std::shared_ptr<Block>& ErasedBlock();
  std::shared_ptr<Page>& OwnedSlot(std::uint32_t wordAddress);
  Page& OwnedPage(std::uint32_t wordAddress);

  std::array<std::shared_ptr<Block>, kBlockCount> blocks_;
};

}  // namespace simulator
