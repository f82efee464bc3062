#include "simulator/Vpd.h"

#include <algorithm>
#include <stdexcept>

#include "simulator/LittleEndian.h"

namespace simulator {
namespace {

constexpr std::uint8_t kProductName = 0x82;
constexpr std::uint8_t kFields = 0x90;
constexpr std::uint8_t kEnd = 0x78;

// The first byte of a resource: a large one has a length of two bytes behind it, a small one has its length in it.
constexpr std::uint8_t kLarge = 0x80;
constexpr std::uint8_t kSmallTag = 0xF8;
constexpr std::uint8_t kSmallLength = 0x07;
constexpr std::size_t kLargeHeadBytes = 3;
/// Keyword and length.
constexpr std::size_t kFieldHeadBytes = 3;

void AddLargeResource(std::vector<std::uint8_t>& area, std::uint8_t tag, const std::vector<std::uint8_t>& content) {
  if (content.size() > kVpdAreaBytes) throw std::length_error("VPD resource too long");
  area.push_back(tag);
  area.push_back(static_cast<std::uint8_t>(content.size()));
  area.push_back(static_cast<std::uint8_t>(content.size() >> 8));
  area.insert(area.end(), content.begin(), content.end());
}

}  // namespace

std::vector<std::uint8_t> MakeVpdBlock(const std::string& product,
                                       const std::vector<std::vector<VpdField>>& resources) {
  std::vector<std::uint8_t> bytes;
  AddLargeResource(bytes, kProductName, {product.begin(), product.end()});
  for (const auto& fields : resources) {
    std::vector<std::uint8_t> content;
    for (const auto& [keyword, text] : fields) {
      if (keyword.size() != 2 || text.size() > 255) throw std::length_error("VPD field too long");
      content.insert(content.end(), keyword.begin(), keyword.end());
      content.push_back(static_cast<std::uint8_t>(text.size()));
      content.insert(content.end(), text.begin(), text.end());
    }
    AddLargeResource(bytes, kFields, content);
  }
  bytes.push_back(kEnd);
  if (bytes.size() > kVpdAreaBytes) throw std::length_error("VPD area too long");
  return bytes;
}

std::optional<std::string> FindVpdField(std::span<const std::uint8_t> block, std::string_view keyword) {
  while (!block.empty()) {
    const std::uint8_t tag = block[0];
    if ((tag & kSmallTag) == kEnd) break;
    const bool isLarge = (tag & kLarge) != 0;
    if (isLarge && block.size() < kLargeHeadBytes) break;
    const std::size_t head = isLarge ? kLargeHeadBytes : 1;
    const std::size_t length = isLarge ? Get16(&block[1]) : tag & kSmallLength;
    if (length > block.size() - head) break;
    std::span<const std::uint8_t> fields =
        tag == kFields ? block.subspan(head, length) : std::span<const std::uint8_t>();
    while (fields.size() >= kFieldHeadBytes && fields[2] <= fields.size() - kFieldHeadBytes) {
      const std::string name(fields.begin(), fields.begin() + 2);
      const std::span<const std::uint8_t> text = fields.subspan(kFieldHeadBytes, fields[2]);
      if (name == keyword) return std::string(text.begin(), text.end());
      fields = fields.subspan(kFieldHeadBytes + text.size());
    }
    block = block.subspan(head + length);
  }
  return std::nullopt;
}

VpdArea MakeVpdArea(const std::string& product, const std::vector<std::vector<VpdField>>& resources) {
  const std::vector<std::uint8_t> bytes = MakeVpdBlock(product, resources);
  VpdArea area{};
  std::copy(bytes.begin(), bytes.end(), area.begin());
  return area;
}

}  // namespace simulator
