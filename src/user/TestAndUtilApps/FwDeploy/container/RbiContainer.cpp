#include "container/RbiContainer.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>

#include "container/ScanHex.h"

namespace {

constexpr std::string_view kMagic = "ORBO.RBI";
constexpr std::size_t kHeaderLengthOffset = 8;
constexpr std::size_t kRevisionTagOffset = 12;
constexpr std::size_t kVersionOffset = 13;
constexpr std::size_t kVersionLength = 4;
constexpr std::size_t kSeparatorOffset = 17;
constexpr std::size_t kPartIdOffset = 18;
constexpr std::size_t kPartIdLength = 4;
constexpr std::size_t kTagLength = 2;
constexpr std::size_t kMaximumStringLength = 19;
constexpr std::size_t kNumberFieldLength = 5;

/// Shared by the accessors, whichever buffer it was read from.
std::uint32_t rememberedHeaderLength = 0;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

std::uint32_t BigEndian32(std::span<const std::uint8_t, 4> bytes) {
  std::uint32_t number = 0;
  for (const std::uint8_t byte : bytes)
    number = number << 8 | byte;
  return number;
}

/// What of `buffer` the remembered header length covers, as text.
std::string_view HeaderText(std::span<const std::uint8_t> buffer) {
  const std::size_t lengthBytes = std::min<std::size_t>(buffer.size(), rememberedHeaderLength);
  return {reinterpret_cast<const char*>(buffer.data()), lengthBytes};
}

/// What stands behind the first `tag` in the header. The search begins at the magic, so a tag that the binary length
/// happens to spell is the field, too.
std::optional<std::string_view> FindField(std::span<const std::uint8_t> buffer, std::string_view tag) {
  if (!IsRbi(buffer)) return std::nullopt;
  const std::string_view header = HeaderText(buffer);
  const std::size_t at = header.find(tag);
  if (at == std::string_view::npos) return std::nullopt;
  return header.substr(at + kTagLength);
}

/// Two characters as a decimal number, read as far as they are one.
std::int32_t TwoDigits(std::string_view text) {
  if (text[0] == '+' || text[0] == '-' || text[0] == ' ') {
    if (text[1] < '0' || text[1] > '9') return 0;
    return text[0] == '-' ? '0' - text[1] : text[1] - '0';
  }
  std::int32_t number = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') break;
    number = number * 10 + (c - '0');
  }
  return number;
}

}  // namespace

bool ReadRbiHeader(const char* fileName, char (&partIdOut)[5], std::uint32_t& versionOut) {
  std::memcpy(partIdOut, "NONE", sizeof(partIdOut));
  versionOut = 0;

  std::array<std::uint8_t, 32> header{};
  {
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(fileName, "rb"));
    if (file == nullptr) {
      std::fprintf(stderr, "Unable to open file %s\n", fileName);
      return false;
    }
    // A short read is no failure: the rest stays zero.
    static_cast<void>(std::fread(header.data(), 1, header.size(), file.get()));
  }
  if (!IsRbi(header)) {
    std::fprintf(stderr, "File %s missing RBI file header\n", fileName);
    return false;
  }

  std::memcpy(partIdOut, header.data() + kPartIdOffset, kPartIdLength);
  header[kSeparatorOffset] = 0;
  ScanHex32(reinterpret_cast<const char*>(header.data()) + kVersionOffset, versionOut);
  return true;
}

bool ReadRbiHeaderLength(std::FILE* file, std::uint32_t& headerLengthBytes) {
  if (std::fseek(file, static_cast<long>(kHeaderLengthOffset), SEEK_SET) != 0) return false;
  std::array<std::uint8_t, 4> bytes{};
  for (std::uint8_t& byte : bytes) {
    const int read = std::fgetc(file);
    if (read == EOF) return false;
    byte = static_cast<std::uint8_t>(read);
  }
  headerLengthBytes = BigEndian32(bytes);
  return true;
}

bool IsRbi(std::span<const std::uint8_t> buffer) {
  return buffer.size() >= kMagic.size() && std::memcmp(buffer.data(), kMagic.data(), kMagic.size()) == 0;
}

bool ParseRbiHeader(std::span<const std::uint8_t> buffer) {
  if (!IsRbi(buffer) || buffer.size() < kHeaderLengthOffset + 4) return false;
  rememberedHeaderLength = BigEndian32(buffer.subspan<kHeaderLengthOffset, 4>());
  return true;
}

void ResetRbiHeader() {
  rememberedHeaderLength = 0;
}

std::uint32_t GetRbiHeaderLength() {
  return rememberedHeaderLength;
}

const std::uint8_t* GetRbiPayload(std::span<const std::uint8_t> buffer, std::uint32_t* sizeBytes) {
  if (!IsRbi(buffer)) return buffer.data();
  std::size_t containerBytes = buffer.size();
  if (sizeBytes != nullptr) containerBytes = std::min<std::size_t>(containerBytes, *sizeBytes);
  const std::size_t headerBytes = std::min<std::size_t>(containerBytes, rememberedHeaderLength);
  if (sizeBytes != nullptr) *sizeBytes = static_cast<std::uint32_t>(containerBytes - headerBytes);
  return buffer.data() + headerBytes;
}

int GetRbiRevision(std::span<const std::uint8_t> buffer, std::span<char, 4> revisionOut) {
  // Meant: a buffer without the magic is reported as a success that writes nothing.
  if (!IsRbi(buffer)) return 0;
  // A length of 13 is enough for the digits behind it to be read.
  if (rememberedHeaderLength < kVersionOffset || buffer.size() < kVersionOffset + kVersionLength) return -1;
  if (buffer[kRevisionTagOffset] != 'R') return -1;
  std::string_view digits(reinterpret_cast<const char*>(buffer.data()) + kVersionOffset, kVersionLength);
  digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
  std::copy(digits.begin(), digits.end(), revisionOut.begin());
  return 0;
}

int GetRbiStringField(std::span<const std::uint8_t> buffer, std::span<char, 19> textOut) {
  const auto field = FindField(buffer, "S:");
  if (!field) return -1;
  const std::size_t end = field->substr(0, kMaximumStringLength + 1).find(';');
  if (end == std::string_view::npos) return -1;
  std::copy_n(field->begin(), end, textOut.begin());
  return 0;
}

int GetRbiNumberField(std::span<const std::uint8_t> buffer, std::int32_t& firstOut, std::int32_t& secondOut) {
  const auto field = FindField(buffer, "M:");
  if (field && field->size() >= kNumberFieldLength) {
    firstOut = TwoDigits(field->substr(0, 2));
    secondOut = TwoDigits(field->substr(3, 2));
  }
  // Meant: there is no other result.
  return -1;
}
