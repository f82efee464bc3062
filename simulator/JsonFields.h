#pragma once

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// Reads one JSON value; refuses a key that stands twice in an object. Throws `BenchError` with the place of the fault.
nlohmann::json ParseJson(std::string_view text);

/// The error of a key, as "a.b.c: message", in one line whatever the key holds.
[[noreturn]] void FailAt(const std::string& path, const std::string& message);

/// One JSON object that is taken apart key by key. A key that is missing and one that holds null are the same. Every
/// operation throws `BenchError`, with the key's path in front, for a value of another type or outside its limits; and
/// `Finish`, called last, for a key that nobody asked for.
///
///     JsonFields card(value, "veltra.belmara");
///     const auto version = card.HexNumber("flash", 4);
///     card.Finish();
class JsonFields {
 public:
  /// `value` must outlive this object. Its own path is empty for the outermost object.
  JsonFields(const nlohmann::json& value, std::string path);

  const std::string& path() const { return path_; }
  std::string PathOf(const std::string& key) const { return path_.empty() ? key : path_ + "." + key; }
  /// The value, or null where there is none.
  const nlohmann::json* Value(const std::string& key);
  std::optional<JsonFields> Object(const std::string& key);
  std::optional<std::string> Text(const std::string& key);
  /// Hexadecimal text of one to `maxDigits` digits.
  std::optional<std::uint64_t> HexNumber(const std::string& key, std::size_t maxDigits);
  /// Hexadecimal text, two digits a byte.
  std::optional<std::vector<std::uint8_t>> HexBytes(const std::string& key);
  /// A number without sign or fraction, at most `greatest`.
  std::optional<std::uint64_t> Number(const std::string& key, std::uint64_t greatest);
  std::optional<bool> Flag(const std::string& key);
  /// A list of such numbers.
  std::optional<std::vector<std::uint64_t>> Numbers(const std::string& key, std::uint64_t greatest);
  std::optional<std::vector<std::string>> Texts(const std::string& key);
  /// The keys that are there with a value, in order.
  std::vector<std::string> Keys() const;
  /// Fails for a key that is missing.
  template <typename Type>
  Type Needed(const std::string& key, std::optional<Type> value) const {
    if (!value) FailAt(PathOf(key), "is missing");
    return *std::move(value);
  }
  void Finish() const;

 private:
  const nlohmann::json& value_;
  std::string path_;
  std::set<std::string> asked_;
};

}  // namespace simulator
