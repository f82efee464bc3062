#include "simulator/JsonFields.h"

#include <utility>

#include "simulator/BenchError.h"
#include "simulator/HexText.h"

namespace simulator {
namespace {

using nlohmann::json;

/// A value as an error message shows it.
std::string Found(const json& value) {
  constexpr std::size_t kShown = 40;
  if (value.is_object()) return "an object";
  if (value.is_array()) return "a list";
  std::string text = value.dump(-1, ' ', true, json::error_handler_t::replace);
  if (text.size() > kShown) text = text.substr(0, kShown) + "...";
  return text;
}

[[noreturn]] void Expected(const std::string& path, const std::string& what, const json& value) {
  FailAt(path, "expected " + what + ", found " + Found(value));
}

}  // namespace

void FailAt(const std::string& path, const std::string& message) {
  std::string text = path.empty() ? message : path + ": " + message;
  for (char& letter : text)
    if (static_cast<unsigned char>(letter) < ' ') letter = '?';
  throw BenchError(text);
}

json ParseJson(std::string_view text) {
  std::vector<std::set<std::string>> open;
  const auto watch = [&open](int, json::parse_event_t event, json& value) {
    if (event == json::parse_event_t::object_start) open.emplace_back();
    if (event == json::parse_event_t::object_end) open.pop_back();
    if (event == json::parse_event_t::key && !open.back().insert(value.get<std::string>()).second)
      throw BenchError("the key " + Found(value) + " stands twice in one object");
    return true;
  };
  try {
    return json::parse(text, watch);
  } catch (const json::exception& error) {
    // The library's text begins with a code of its own in brackets.
    std::string reason = error.what();
    const std::size_t behind = reason.find("] ");
    throw BenchError("not readable as JSON: " + (behind == std::string::npos ? reason : reason.substr(behind + 2)));
  }
}

JsonFields::JsonFields(const json& value, std::string path) : value_(value), path_(std::move(path)) {
  if (!value.is_object()) Expected(path_, "an object", value);
}

const json* JsonFields::Value(const std::string& key) {
  asked_.insert(key);
  const auto at = value_.find(key);
  return at == value_.end() || at->is_null() ? nullptr : &*at;
}

std::optional<JsonFields> JsonFields::Object(const std::string& key) {
  const json* const value = Value(key);
  if (value == nullptr) return std::nullopt;
  return JsonFields(*value, PathOf(key));
}

std::optional<std::string> JsonFields::Text(const std::string& key) {
  const json* const value = Value(key);
  if (value == nullptr) return std::nullopt;
  if (!value->is_string()) Expected(PathOf(key), "a text", *value);
  return value->get<std::string>();
}

std::optional<std::uint64_t> JsonFields::HexNumber(const std::string& key, std::size_t maxDigits) {
  const json* const value = Value(key);
  if (value == nullptr) return std::nullopt;
  std::optional<std::uint64_t> number;
  if (value->is_string()) number = ParseHex(value->get_ref<const std::string&>(), maxDigits);
  if (!number) Expected(PathOf(key), "a text of 1 to " + std::to_string(maxDigits) + " hexadecimal digits", *value);
  return number;
}

std::optional<std::vector<std::uint8_t>> JsonFields::HexBytes(const std::string& key) {
  const json* const value = Value(key);
  if (value == nullptr) return std::nullopt;
  std::optional<std::vector<std::uint8_t>> bytes;
  if (value->is_string()) bytes = ParseHexBytes(value->get_ref<const std::string&>());
  if (!bytes) Expected(PathOf(key), "a text of two hexadecimal digits a byte", *value);
  return bytes;
}

std::optional<std::uint64_t> JsonFields::Number(const std::string& key, std::uint64_t greatest) {
  const json* const value = Value(key);
  if (value == nullptr) return std::nullopt;
  if (!value->is_number_unsigned() || value->get<std::uint64_t>() > greatest)
    Expected(PathOf(key), "a whole number from 0 to " + std::to_string(greatest), *value);
  return value->get<std::uint64_t>();
}

std::optional<bool> JsonFields::Flag(const std::string& key) {
  const json* const value = Value(key);
  if (value == nullptr) return std::nullopt;
  if (!value->is_boolean()) Expected(PathOf(key), "true or false", *value);
  return value->get<bool>();
}

std::optional<std::vector<std::uint64_t>> JsonFields::Numbers(const std::string& key, std::uint64_t greatest) {
  const json* const value = Value(key);
  if (value == nullptr) return std::nullopt;
  const std::string expected = "a list of whole numbers from 0 to " + std::to_string(greatest);
  if (!value->is_array()) Expected(PathOf(key), expected, *value);
  std::vector<std::uint64_t> numbers;
  for (const json& number : *value) {
    if (!number.is_number_unsigned() || number.get<std::uint64_t>() > greatest) Expected(PathOf(key), expected, number);
    numbers.push_back(number.get<std::uint64_t>());
  }
  return numbers;
}

std::optional<std::vector<std::string>> JsonFields::Texts(const std::string& key) {
  const json* const value = Value(key);
  if (value == nullptr) return std::nullopt;
  if (!value->is_array()) Expected(PathOf(key), "a list of texts", *value);
  std::vector<std::string> texts;
  for (const json& text : *value) {
    if (!text.is_string()) Expected(PathOf(key), "a list of texts", text);
    texts.push_back(text.get<std::string>());
  }
  return texts;
}

std::vector<std::string> JsonFields::Keys() const {
  std::vector<std::string> keys;
  for (const auto& [key, value] : value_.items())
    if (!value.is_null()) keys.push_back(key);
  return keys;
}

void JsonFields::Finish() const {
  for (const auto& [key, value] : value_.items())
    if (!asked_.contains(key)) FailAt(PathOf(key), "unknown key");
}

}  // namespace simulator
