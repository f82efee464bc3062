// Any bytes as a VPD block, against a plain second reading of it. The input is two keyword characters, a byte for the
// caller's capacity, and the block.

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "FuzzInput.h"
#include "installer/VpdBlock.h"

namespace {

using Bytes = std::span<const std::uint8_t>;

/// The contents of all fields resources in a row, or nothing for a damaged block.
std::optional<std::string> FieldsOf(Bytes block) {
  std::string fields;
  std::size_t at = 0;
  while (at < block.size() && (block[at] & 0xF8) != 0x78) {
    const bool isLarge = block[at] >= 0x80;
    if (isLarge && at + 2 >= block.size()) return std::nullopt;
    const std::size_t next = isLarge ? at + 3 + block[at + 1] + 256u * block[at + 2] : at + 1 + block[at] % 8;
    if (next > block.size()) return std::nullopt;
    if (block[at] == 0x90)
      fields.append(block.begin() + static_cast<std::ptrdiff_t>(at + 3),
                    block.begin() + static_cast<std::ptrdiff_t>(next));
    at = next;
  }
  return fields;
}

std::optional<std::string> FindField(std::string_view fields, std::string_view keyword) {
  while (fields.size() >= 3) {
    const auto length = static_cast<std::uint8_t>(fields[2]);
    if (fields.size() < 3u + length) return std::nullopt;
    if (fields.substr(0, 2) == keyword) return std::string(fields.substr(3, length));
    fields.remove_prefix(3u + length);
  }
  return std::nullopt;
}

VpdStatus ExpectedStatus(Bytes block, std::string_view keyword, const std::optional<std::string>& fields,
                         const std::optional<std::string>& field) {
  if (block.size() < 2 || block.size() > 32480) return kVpdBadArgument;
  if (!fields) return kVpdDamagedBlock;
  for (const char c : keyword)
    if (static_cast<unsigned char>(c) < 33) return kVpdBadArgument;
  return field ? kVpdSuccess : kVpdFieldNotFound;
}

/// A second and a third block in the same object, the last one damaged.
void ParseAgain(Bytes block, std::string_view keyword) {
  VpdBlock parsed;
  if (parsed.Create(static_cast<std::int32_t>(block.size())) != kVpdSuccess) return;
  const VpdStatus first = parsed.Parse(block);
  Require(parsed.Parse(block) == first);
  Require(parsed.Create(static_cast<std::int32_t>(block.size())) == kVpdSuccess);
  Require(parsed.Parse(std::vector<std::uint8_t>(block.size(), 0xFF)) == kVpdDamagedBlock);
  std::int32_t lengthBytes = 0;
  Require(parsed.GetField(keyword, {}, &lengthBytes) != kVpdSuccess);
  Require(lengthBytes == -1);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 3) return 0;
  const std::string keyword(reinterpret_cast<const char*>(data), 2);
  const std::size_t capacity = data[2];
  const Bytes block(data + 3, size - 3);

  const auto fields = FieldsOf(block);
  const auto field = fields ? FindField(*fields, keyword) : std::nullopt;
  const VpdStatus expected = ExpectedStatus(block, keyword, fields, field);

  std::vector<char> buffer(capacity, '#');
  Require(ReadVpdField(block, keyword, buffer) == expected);
  std::string content = expected == kVpdSuccess ? *field : "";
  content.resize(capacity);
  Require(std::string_view(buffer.data(), buffer.size()) == content);

  std::uint32_t value = 0;
  Require(ReadVpdHexField(block, keyword, value) == expected);
  ParseAgain(block, keyword);
  return 0;
}
