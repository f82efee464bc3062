// Any flash as one with a stamp, against a plain second reading of it. The input is the format word and the stamp's
// location, little-endian, and bytes that fill the flash again and again from its first byte on.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string>

#include "board/C28FxJ3A.h"
#include "download/InstallerStamp.h"
#include "FuzzInput.h"

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kPrefixBytes = 6;
constexpr std::uint32_t kImageAreaStart = 0x200000;
constexpr std::uint32_t kImageAreaEnd = 0x400000;
constexpr std::uint32_t kFormatByte = kImageAreaEnd - 6;

std::uint32_t LittleEndian(Bytes bytes) {
  std::uint32_t number = 0;
  for (std::size_t i = bytes.size(); i-- > 0;)
    number = number << 8 | bytes[i];
  return number;
}

/// What stands in flash at a byte address.
std::uint8_t ByteAt(Bytes input, std::uint32_t byteAddress) {
  if (byteAddress >= kFormatByte && byteAddress < kImageAreaEnd) return input[byteAddress - kFormatByte];
  const Bytes content = input.subspan(kPrefixBytes);
  return content.empty() ? 0xFF : content[byteAddress % content.size()];
}

/// The flash's registers. Takes the read array command, and no other.
class Flash : public platform::RegisterTrap {
 public:
  explicit Flash(Bytes input) : input_(input) {}

  std::size_t Reads() const { return reads_; }

  std::uint32_t Read(std::uint32_t offset) override {
    Require(offset == 4 && isArray_ && wordAddress_ < C28FxJ3A::kDeviceWords);
    ++reads_;
    const std::uint32_t at = wordAddress_ / 2 * 4;
    const std::uint8_t pair[] = {ByteAt(input_, at), ByteAt(input_, at + 1), ByteAt(input_, at + 2),
                                 ByteAt(input_, at + 3)};
    return LittleEndian(pair);
  }
  void Write(std::uint32_t offset, std::uint32_t value) override {
    if (offset == 0) {
      wordAddress_ = value;
    } else {
      Require(offset == 4 && value == 0xFF);
      isArray_ = true;
    }
  }

 private:
  const Bytes input_;
  std::uint32_t wordAddress_ = 0;
  bool isArray_ = false;
  std::size_t reads_ = 0;
};

std::uint32_t ExpectedVersion(Bytes input) {
  const std::uint32_t format = LittleEndian(input.first<2>());
  const std::uint32_t location = LittleEndian(input.subspan<2, 4>());
  if (location == 0 || location > 0x7FFFFFFF) return 0;
  const std::uint64_t start = format == 4 ? std::uint64_t{location} * 2 : std::uint64_t{location} + kImageAreaStart;
  if (start >= kImageAreaEnd) return 0;

  // Whole words are read, at most 1,024 bytes of them. What was not read is zero.
  const auto firstByte = static_cast<std::uint32_t>(start & ~std::uint64_t{1});
  const std::size_t length = std::min<std::size_t>(1024, kImageAreaEnd - static_cast<std::size_t>(start)) / 2 * 2;
  std::string text(1024, '\0');
  for (std::uint32_t i = 0; i < length; ++i)
    text[i] = static_cast<char>(ByteAt(input, firstByte + i));
  const std::size_t end = text.find('\0', start % 2);
  if (end == std::string::npos || end + 6 > text.size()) return 0;
  unsigned version = 0;
  std::sscanf(text.substr(end + 2, 4).c_str(), "%x", &version);
  return version;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < kPrefixBytes) return 0;
  const Bytes input(data, size);
  Flash trap(input);
  C28FxJ3A flash;
  flash.Attach(platform::RegisterWindow(0x4008, &trap));
  Require(ReadStampedVersion(flash) == ExpectedVersion(input));
  Require(trap.Reads() <= 2 + 513);
  return 0;
}
