#include "installer/VpdBlock.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

#include "container/ScanHex.h"

namespace {

/// Room in the work buffer beyond the block's own size.
constexpr std::int32_t kWorkExtraBytes = 288;

constexpr std::uint8_t kLargeResource = 0x80;
constexpr std::uint8_t kFieldsResource = 0x90;
constexpr std::uint8_t kEndMask = 0x78;
constexpr std::int32_t kLargeHeadBytes = 3;
/// Two keyword characters and the length.
constexpr std::int32_t kFieldHeadBytes = 3;

/// Walks the resources of a block from its first byte to its end or to an end resource, whichever comes first.
class ResourceWalk {
 public:
  explicit ResourceWalk(std::span<const std::uint8_t> block) : rest_(block) {}

  /// Goes to the next resource. False at the end, and where the next resource does not fit into what is left.
  bool Next() {
    if (rest_.empty()) return false;
    const std::uint8_t tag = rest_[0];
    std::size_t lengthBytes = 0;
    if (tag < kLargeResource) {
      if ((tag & kEndMask) == kEndMask) return false;
      lengthBytes = (tag & 7u) + 1u;
    } else {
      isDamaged_ = rest_.size() < kLargeHeadBytes;
      if (isDamaged_) return false;
      lengthBytes = kLargeHeadBytes + (rest_[1] | std::size_t{rest_[2]} << 8);
    }
    isDamaged_ = lengthBytes > rest_.size();
    if (isDamaged_) return false;
    resource_ = rest_.first(lengthBytes);
    rest_ = rest_.subspan(lengthBytes);
    return true;
  }

  std::span<const std::uint8_t> Resource() const { return resource_; }
  bool IsFields() const { return resource_[0] == kFieldsResource; }
  bool IsDamaged() const { return isDamaged_; }

 private:
  std::span<const std::uint8_t> rest_;
  std::span<const std::uint8_t> resource_;
  bool isDamaged_ = false;
};

/// Fills a buffer of fixed size from its start.
class Appender {
 public:
  explicit Appender(std::span<std::uint8_t> room) : room_(room) {}

  bool Append(std::span<const std::uint8_t> bytes) {
    if (bytes.size() > room_.size() - used_) return false;
    std::copy(bytes.begin(), bytes.end(), room_.begin() + static_cast<std::ptrdiff_t>(used_));
    used_ += bytes.size();
    return true;
  }
  std::size_t UsedBytes() const { return used_; }

 private:
  std::span<std::uint8_t> room_;
  std::size_t used_ = 0;
};

}  // namespace

VpdStatus VpdBlock::Create(std::int32_t sizeBytes) {
  if (sizeBytes < kMinimumSizeBytes || sizeBytes > kMaximumSizeBytes) return kVpdBadArgument;
  parsed_ = false;
  const auto blockBytes = static_cast<std::size_t>(sizeBytes);
  const auto workBytes = blockBytes + std::size_t{kWorkExtraBytes};
  if (sizeBytes != sizeBytes_) {
    sizeBytes_ = 0;
    block_.reset(new (std::nothrow) std::uint8_t[blockBytes]);
    work_.reset(new (std::nothrow) std::uint8_t[workBytes]);
    if (block_ == nullptr || work_ == nullptr) {
      block_.reset();
      work_.reset();
      return kVpdOutOfMemory;
    }
    sizeBytes_ = sizeBytes;
  }
  std::fill_n(block_.get(), blockBytes, std::uint8_t{0});
  std::fill_n(work_.get(), workBytes, std::uint8_t{0});
  return kVpdSuccess;
}

VpdStatus VpdBlock::Parse(std::span<const std::uint8_t> block) {
  parsed_ = false;
  if (sizeBytes_ == 0) return kVpdNotParsed;
  if (block.size() < static_cast<std::size_t>(sizeBytes_)) return kVpdBadArgument;
  std::copy_n(block.begin(), sizeBytes_, block_.get());
  const VpdStatus status = CollectResources();
  parsed_ = status == kVpdSuccess;
  return status;
}

/// Copies the block to the work buffer with all that are no fields first, and the fields as one resource behind them.
VpdStatus VpdBlock::CollectResources() {
  const std::span<const std::uint8_t> block(block_.get(), static_cast<std::size_t>(sizeBytes_));
  const std::span<std::uint8_t> work(work_.get(), static_cast<std::size_t>(sizeBytes_ + kWorkExtraBytes));
  std::fill(work.begin(), work.end(), std::uint8_t{0});
  Appender appender(work);

  ResourceWalk others(block);
  while (others.Next())
    if (!others.IsFields() && !appender.Append(others.Resource())) return kVpdDamagedBlock;
  if (others.IsDamaged()) return kVpdDamagedBlock;

  const std::size_t headOffset = appender.UsedBytes();
  if (!appender.Append(std::array<std::uint8_t, kLargeHeadBytes>{kFieldsResource, 0, 0})) return kVpdDamagedBlock;
  fieldsOffset_ = static_cast<std::int32_t>(appender.UsedBytes());

  ResourceWalk fields(block);
  while (fields.Next())
    if (fields.IsFields() && !appender.Append(fields.Resource().subspan(kLargeHeadBytes))) return kVpdDamagedBlock;

  workLengthBytes_ = static_cast<std::int32_t>(appender.UsedBytes());
  const std::int32_t fieldBytes = workLengthBytes_ - fieldsOffset_;
  work[headOffset + 1] = static_cast<std::uint8_t>(fieldBytes & 0xFF);
  work[headOffset + 2] = static_cast<std::uint8_t>(fieldBytes >> 8);
  return kVpdSuccess;
}

VpdStatus VpdBlock::GetField(std::string_view keyword, std::span<char> buffer, std::int32_t* lengthBytes) const {
  std::fill(buffer.begin(), buffer.end(), '\0');
  if (lengthBytes != nullptr) *lengthBytes = -1;
  if (keyword.size() < 2) return kVpdBadArgument;
  const std::array<std::uint8_t, 2> wanted{static_cast<std::uint8_t>(keyword[0]),
                                           static_cast<std::uint8_t>(keyword[1])};
  if (wanted[0] < 33 || wanted[1] < 33) return kVpdBadArgument;
  if (!parsed_) return kVpdNotParsed;

  const std::uint8_t* const work = work_.get();
  for (std::int32_t at = fieldsOffset_; at + kFieldHeadBytes <= workLengthBytes_;) {
    const std::int32_t fieldBytes = work[at + 2];
    const std::int32_t next = at + kFieldHeadBytes + fieldBytes;
    if (next > workLengthBytes_) break;
    if (work[at] == wanted[0] && work[at + 1] == wanted[1]) {
      if (lengthBytes != nullptr) *lengthBytes = fieldBytes;
      const std::size_t copied = std::min(buffer.size(), static_cast<std::size_t>(fieldBytes));
      std::copy_n(work + at + kFieldHeadBytes, copied, buffer.begin());
      return kVpdSuccess;
    }
    at = next;
  }
  return kVpdFieldNotFound;
}

VpdStatus ReadVpdField(std::span<const std::uint8_t> block, std::string_view keyword, std::span<char> buffer) {
  std::fill(buffer.begin(), buffer.end(), '\0');
  if (block.size() > static_cast<std::size_t>(VpdBlock::kMaximumSizeBytes)) return kVpdBadArgument;
  VpdBlock parsed;
  VpdStatus status = parsed.Create(static_cast<std::int32_t>(block.size()));
  if (status == kVpdSuccess) status = parsed.Parse(block);
  if (status == kVpdSuccess) status = parsed.GetField(keyword, buffer, nullptr);
  return status;
}

VpdStatus ReadVpdHexField(std::span<const std::uint8_t> block, std::string_view keyword, std::uint32_t& value) {
  constexpr std::size_t kCapacity = 16;
  std::array<char, kCapacity + 1> text{};  // one more, so that a field of full length ends, too
  const VpdStatus status = ReadVpdField(block, keyword, std::span(text).first<kCapacity>());
  if (status == kVpdSuccess) ScanHex32(text.data(), value);
  return status;
}
