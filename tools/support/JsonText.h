#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>

/// JSON as the tools write it: a line an object, and bytes as the characters of the same number, since JSON texts are
/// not bytes.
///
///     std::cout << JsonLine({{"name", Latin1Text("\xE9")}});   // {"name":"\u00e9"}

nlohmann::json Latin1Text(std::string_view bytes);
/// The bytes of such a text; nothing when `text` is no text or holds a character above U+00FF.
std::optional<std::string> Latin1Bytes(const nlohmann::json& text);

/// Keys sorted, no blanks, ASCII only, with the line feed.
std::string JsonLine(const nlohmann::json& value);
