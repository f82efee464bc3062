#include "support/JsonText.h"

#include <nlohmann/json.hpp>

nlohmann::json Latin1Text(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      text += c;
    } else {
      text += static_cast<char>(0xC0 | byte >> 6);
      text += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
  return text;
}

std::optional<std::string> Latin1Bytes(const nlohmann::json& text) {
  if (!text.is_string()) return std::nullopt;
  const auto& utf8 = text.get_ref<const std::string&>();
  std::string bytes;
  for (std::size_t at = 0; at < utf8.size(); ++at) {
    const auto lead = static_cast<unsigned char>(utf8[at]);
    if (lead < 0x80) {
      bytes += utf8[at];
      continue;
    }
    // The reader of the text saw to it that it is well formed: 0xC2 and 0xC3 lead a character below 0x100.
    if (lead > 0xC3) return std::nullopt;
    const auto trail = static_cast<unsigned char>(utf8.at(++at));
    bytes += static_cast<char>((lead & 0x03) << 6 | (trail & 0x3F));
  }
  return bytes;
}

std::string JsonLine(const nlohmann::json& value) {
  return value.dump(-1, ' ', true) + '\n';
}
