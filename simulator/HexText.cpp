#include "simulator/HexText.h"

#include <algorithm>

namespace simulator {
namespace {

constexpr char kDigits[] = "0123456789abcdef";

int DigitValue(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  return -1;
}

}  // namespace

std::string Hex(std::uint64_t value, std::size_t digits) {
  std::string text;
  for (; value != 0 || text.size() < digits || text.empty(); value >>= 4)
    text.push_back(kDigits[value & 15]);
  return {text.rbegin(), text.rend()};
}

std::optional<std::uint64_t> ParseHex(std::string_view text, std::size_t maxDigits) {
  if (text.empty() || text.size() > maxDigits || text.size() > 16) return std::nullopt;
  std::uint64_t value = 0;
  for (const char digit : text) {
    const int digitValue = DigitValue(digit);
    if (digitValue < 0) return std::nullopt;
    value = value << 4 | static_cast<std::uint64_t>(digitValue);
  }
  return value;
}

std::optional<std::uint16_t> ParseDottedVersion(std::string_view text) {
  const std::size_t dot = text.find('.');
  if (dot == std::string_view::npos) return std::nullopt;
  const std::string_view behind = text.substr(dot + 1);
  const auto isDigit = [](char letter) { return DigitValue(letter) >= 0; };
  const auto digits =
      static_cast<std::size_t>(std::find_if_not(behind.begin(), behind.end(), isDigit) - behind.begin());
  const auto major = ParseHex(text.substr(0, dot), 2);
  const auto minor = ParseHex(behind.substr(0, digits), 2);
  if (!major || !minor) return std::nullopt;
  return static_cast<std::uint16_t>(*major << 8 | *minor);
}

std::string HexOfBytes(std::span<const std::uint8_t> bytes) {
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const std::uint8_t byte : bytes) {
    text.push_back(kDigits[byte >> 4]);
    text.push_back(kDigits[byte & 15]);
  }
  return text;
}

std::optional<std::vector<std::uint8_t>> ParseHexBytes(std::string_view text) {
  if (text.size() % 2 != 0) return std::nullopt;
  std::vector<std::uint8_t> bytes;
  bytes.reserve(text.size() / 2);
  for (std::size_t at = 0; at < text.size(); at += 2) {
    const int high = DigitValue(text[at]);
    const int low = DigitValue(text[at + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes.push_back(static_cast<std::uint8_t>(high << 4 | low));
  }
  return bytes;
}

}  // namespace simulator
