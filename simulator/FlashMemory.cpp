#include "simulator/FlashMemory.h"

#include <algorithm>

#include "simulator/LittleEndian.h"

namespace simulator {

/// Pages of all ones and all zeros are shared by every chip: the static pointers here keep them from ever being the
/// only owner's, so they are never written.
std::shared_ptr<FlashMemory::Page> FlashMemory::UniformPage(std::uint16_t value) {
  const auto make = [](std::uint16_t word) {
    auto page = std::make_shared<Page>();
    page->fill(word);
    return page;
  };
  static const std::shared_ptr<Page> ones = make(0xFFFF);
  static const std::shared_ptr<Page> zeros = make(0);
  if (value == 0xFFFF) return ones;
  if (value == 0) return zeros;
  return make(value);
}

const std::shared_ptr<FlashMemory::Block>& FlashMemory::ErasedBlock() {
  static const std::shared_ptr<Block> erased = [] {
    auto block = std::make_shared<Block>();
    block->fill(UniformPage(0xFFFF));
    return block;
  }();
  return erased;
}

FlashMemory::FlashMemory() {
  blocks_.fill(ErasedBlock());
}

FlashMemory FlashMemory::FromBytes(std::span<const std::uint8_t> image) {
  FlashMemory memory;
  const std::shared_ptr<Page> ones = UniformPage(0xFFFF);
  for (std::uint32_t first = 0; first < kWordCount; first += kPageWords) {
    auto page = std::make_shared<Page>();
    for (std::uint32_t i = 0; i < kPageWords; ++i)
      (*page)[i] = Get16(&image[(std::size_t{first} + i) * 2]);
    if (*page != *ones) memory.OwnedSlot(first) = std::move(page);
  }
  return memory;
}

std::vector<std::uint8_t> FlashMemory::ToBytes() const {
  std::vector<std::uint8_t> image(kSizeBytes);
  std::uint8_t* at = image.data();
  for (const auto& block : blocks_)
    for (const auto& page : *block)
      for (const std::uint16_t word : *page) {
        Put16(at, word);
        at += 2;
      }
  return image;
}

std::shared_ptr<FlashMemory::Page>& FlashMemory::OwnedSlot(std::uint32_t wordAddress) {
  std::shared_ptr<Block>& block = blocks_[wordAddress / kBlockWords];
  if (block.use_count() != 1) block = std::make_shared<Block>(*block);
  return (*block)[wordAddress % kBlockWords / kPageWords];
}

FlashMemory::Page& FlashMemory::OwnedPage(std::uint32_t wordAddress) {
  std::shared_ptr<Page>& page = OwnedSlot(wordAddress);
  if (page.use_count() != 1) page = std::make_shared<Page>(*page);
  return *page;
}

void FlashMemory::SetWord(std::uint32_t wordAddress, std::uint16_t value) {
  OwnedPage(wordAddress)[wordAddress % kPageWords] = value;
}

void FlashMemory::Fill(std::uint32_t wordAddress, std::uint32_t wordCount, std::uint16_t value) {
  while (wordCount > 0) {
    const std::uint32_t inBlock = wordAddress % kBlockWords;
    const std::uint32_t inPage = wordAddress % kPageWords;
    std::uint32_t run = std::min(wordCount, kPageWords - inPage);
    if (inBlock == 0 && wordCount >= kBlockWords && value == 0xFFFF) {
      run = kBlockWords;
      blocks_[wordAddress / kBlockWords] = ErasedBlock();
    } else if (run == kPageWords) {
      OwnedSlot(wordAddress) = UniformPage(value);
    } else {
      Page& page = OwnedPage(wordAddress);
      std::fill_n(page.begin() + inPage, run, value);
    }
    wordAddress += run;
    wordCount -= run;
  }
}

bool operator==(const FlashMemory& a, const FlashMemory& b) {
  for (std::size_t i = 0; i < a.blocks_.size(); ++i) {
    if (a.blocks_[i] == b.blocks_[i]) continue;
    for (std::size_t p = 0; p < FlashMemory::kPagesPerBlock; ++p) {
      const auto& left = (*a.blocks_[i])[p];
      const auto& right = (*b.blocks_[i])[p];
      if (left != right && *left != *right) return false;
    }
  }
  return true;
}

}  // namespace simulator
