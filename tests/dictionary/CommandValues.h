#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "dictionary/CommandContents.h"
#include "dictionary/Variant.h"
#include "talcpath.h"

/// What a command holds, seen past its getters.
namespace test_support {

/// The names of the values, in their order.
inline std::vector<std::string> NamesOf(const TalcPath::TalcCommand& command) {
  std::vector<std::string> names;
  for (const TalcPathPrivate::ParameterValue& parameter : TalcPath::ContentsOf(command)->parameters)
    names.push_back(parameter.name);
  return names;
}

/// The value of that name if it is held as exactly a T.
///
///     EXPECT_EQ(Held<std::uint8_t>(command, "Level"), 7);
template <typename T>
std::optional<T> Held(const TalcPath::TalcCommand& command, std::string_view name) {
  const T* const value = TalcPathPrivate::variant_cast<T>(TalcPath::ContentsOf(command)->parameters.Find(name));
  return value == nullptr ? std::nullopt : std::optional<T>(*value);
}

inline TalcPathPrivate::Bytes BytesOf(std::string_view text) {
  return {text.begin(), text.end()};
}

/// Expects a text that consists of `before`, the address of the low half of such a value, `between`, that of its high
/// half, and `behind`.
template <typename T>
void ExpectAddressesOfHalves(const std::string& text, const std::string& before, const std::string& between,
                             const std::string& behind, T value) {
  std::istringstream stream(text);
  const auto expectText = [&](const std::string& expected) {
    std::string got(expected.size(), ' ');
    stream.read(got.data(), static_cast<std::streamsize>(got.size()));
    ASSERT_EQ(got, expected) << text;
  };
  void* low = nullptr;
  void* high = nullptr;
  expectText(before);
  stream >> low;
  expectText(between);
  stream >> high;
  ASSERT_FALSE(stream.fail()) << text;
  ASSERT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}), behind) << text;
  EXPECT_EQ(static_cast<const char*>(high), static_cast<const char*>(low) + 4);
  T held = 0;
  std::memcpy(&held, low, sizeof held);
  EXPECT_EQ(held, value);
}

}  // namespace test_support
