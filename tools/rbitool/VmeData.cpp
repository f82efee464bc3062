#include "VmeData.h"

#include <algorithm>

namespace vme_script {
namespace {

unsigned NibbleAt(std::string_view data, std::size_t position) {
  const auto byte = static_cast<std::uint8_t>(data[position / 2]);
  return position % 2 == 0 ? byte >> 4 : byte & 0x0Fu;
}

/// Half bytes that follow each other, the high half of each byte first.
class NibbleRow {
 public:
  void Append(unsigned nibble) {
    if (isHigh_) bytes_ += '\0';
    bytes_.back() = static_cast<char>(static_cast<std::uint8_t>(bytes_.back()) | (isHigh_ ? nibble << 4 : nibble));
    isHigh_ = !isHigh_;
  }
  const std::string& Bytes() const { return bytes_; }

 private:
  std::string bytes_;
  bool isHigh_ = true;
};

/// Bits that follow each other, the top bit of each byte first.
class BitRow {
 public:
  void Append(unsigned value, int bits) {
    while (--bits >= 0) {
      if (used_ == 0) bytes_ += '\0';
      bytes_.back() = static_cast<char>(static_cast<std::uint8_t>(bytes_.back()) | (value >> bits & 1u) << (7 - used_));
      used_ = (used_ + 1) % 8;
    }
  }
  const std::string& Bytes() const { return bytes_; }

 private:
  std::string bytes_;
  int used_ = 0;
};

/// Of each run of `fill` the first byte stands there, and then how many more there are.
std::string Runs(char fill, std::string_view data) {
  std::string bytes;
  for (std::size_t at = 0; at < data.size(); ++at) {
    bytes += data[at];
    if (data[at] != fill) continue;
    const std::size_t first = at;
    while (at + 1 < data.size() && data[at + 1] == fill)
      ++at;
    AppendNumber(bytes, static_cast<std::uint16_t>(at - first));
  }
  return bytes;
}

std::string Bitmap(std::uint8_t fill, std::string_view data) {
  BitRow row;
  for (const char c : data) {
    const auto byte = static_cast<std::uint8_t>(c);
    if (byte == fill)
      row.Append(0, 1);
    else
      row.Append(0x100u | byte, 9);
  }
  return static_cast<char>(fill) + row.Bytes();
}

std::string Pattern(std::size_t length, std::string_view data) {
  NibbleRow row;
  // A pattern that is longer than the data leaves no trace in them.
  for (std::size_t position = 0; position < length; ++position)
    row.Append(length <= 2 * data.size() ? NibbleAt(data, position) : 0);
  return row.Bytes();
}

std::string EncodeBody(const Form& form, std::string_view data) {
  switch (form.kind) {
    case FormKind::plain:
      break;
    case FormKind::zeros:
      return Runs('\x00', data);
    case FormKind::ones:
      return Runs('\xFF', data);
    case FormKind::bitmap:
      return Bitmap(form.parameter, data);
    case FormKind::nibbles:
      return Pattern(form.parameter, data);
  }
  return std::string(data);
}

}  // namespace

void AppendNumber(std::string& bytes, std::uint16_t number) {
  unsigned rest = number;
  for (; rest > 0x7F; rest >>= 7)
    bytes += static_cast<char>(0x80u | (rest & 0x7F));
  bytes += static_cast<char>(rest);
}

std::uint8_t KindByte(const Form& form) {
  switch (form.kind) {
    case FormKind::plain:
      break;
    case FormKind::zeros:
      return 1;
    case FormKind::ones:
      return 2;
    case FormKind::bitmap:
      return 0xFF;
    case FormKind::nibbles:
      return form.parameter;
  }
  return 0;
}

std::string EncodeBlock(const Form& form, std::string_view data) {
  return static_cast<char>(KindByte(form)) + EncodeBody(form, data);
}

std::optional<Misfit> FindMisfit(const Form& form, std::string_view data) {
  if (form.kind != FormKind::nibbles) return std::nullopt;
  const std::size_t repeated = 2 * data.size() / form.parameter * form.parameter;
  NibbleRow row;
  for (std::size_t position = 0; position < 2 * data.size(); ++position)
    row.Append(position < repeated ? NibbleAt(data, position % form.parameter) : 0);
  const auto [misfit, other] = std::mismatch(data.begin(), data.end(), row.Bytes().begin());
  if (misfit == data.end()) return std::nullopt;
  return Misfit{static_cast<std::size_t>(misfit - data.begin()), static_cast<std::uint8_t>(*other)};
}

}  // namespace vme_script
