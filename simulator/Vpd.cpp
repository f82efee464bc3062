#include "simulator/Vpd.h"

#include <algorithm>
#include <stdexcept>

namespace simulator {
namespace {

constexpr std::uint8_t kProductName = 0x82;
constexpr std::uint8_t kFields = 0x90;
constexpr std::uint8_t kEnd = 0x78;

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

VpdArea MakeVpdArea(const std::string& product, const std::vector<std::vector<VpdField>>& resources) {
  const std::vector<std::uint8_t> bytes = MakeVpdBlock(product, resources);
  VpdArea area{};
  std::copy(bytes.begin(), bytes.end(), area.begin());
  return area;
}

}  // namespace simulator
