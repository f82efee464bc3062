#include "JsonValues.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "dictionary/CommandContents.h"
#include "dictionary/Variant.h"
#include "Hex.h"
#include "support/JsonText.h"

namespace {

using TalcPath::TalcCommand;
using TalcPathPrivate::Bytes;
using TalcPathPrivate::CommandContents;
using TalcPathPrivate::ParameterValue;
using TalcPathPrivate::Variant;

template <typename T>
T IntegerOf(const Json& number) {
  // The parser holds what has no sign, and no fraction, without a sign.
  if (number.is_number_unsigned()) {
    const auto wide = number.get<std::uint64_t>();
    if (std::in_range<T>(wide)) return static_cast<T>(wide);
  } else if (number.is_number_integer()) {
    const auto wide = number.get<std::int64_t>();
    if (std::in_range<T>(wide)) return static_cast<T>(wide);
  }
  throw BadInput();
}

void SetBytes(TalcCommand& command, std::string_view name, const Json& text) {
  const auto bytes = FromHex(BytesOf(text));
  if (!bytes) throw BadInput();
  command.SetBytes(name, bytes->data(), static_cast<std::uint32_t>(bytes->size()));
}

void SetSymbol(TalcCommand& command, std::string_view name, const Json& text) {
  command.SetSymbol(name, BytesOf(text));
}

Json Tell(const Bytes& bytes) {
  return ToHex(bytes);
}
Json Tell(const std::string& symbol) {
  return Latin1Text(symbol);
}
template <typename T>
Json Tell(T number) {
  return number;
}

/// A kind of value: its type word, and both ways between a command and JSON.
struct Kind {
  const char* word;
  void (*set)(TalcCommand& command, std::string_view name, const Json& value);
  /// Nothing for a value of another kind.
  std::optional<Json> (*get)(const Variant& value);
};

template <typename T>
std::optional<Json> Get(const Variant& value) {
  const T* const held = value.As<T>();
  return held != nullptr ? std::optional(Tell(*held)) : std::nullopt;
}

template <typename T, void (TalcCommand::*kSetter)(std::string_view, T)>
constexpr Kind Integer(const char* word) {
  return {word,
          [](TalcCommand& command, std::string_view name, const Json& value) {
            (command.*kSetter)(name, IntegerOf<T>(value));
          },
          Get<T>};
}

constexpr Kind kKinds[] = {
    Integer<std::int8_t, &TalcCommand::SetInt8>("INT8"),
    Integer<std::uint8_t, &TalcCommand::SetUInt8>("UINT8"),
    Integer<std::int16_t, &TalcCommand::SetInt16>("INT16"),
    Integer<std::uint16_t, &TalcCommand::SetUInt16>("UINT16"),
    Integer<std::int32_t, &TalcCommand::SetInt32>("INT32"),
    Integer<std::uint32_t, &TalcCommand::SetUInt32>("UINT32"),
    Integer<std::int64_t, &TalcCommand::SetInt64>("INT64"),
    Integer<std::uint64_t, &TalcCommand::SetUInt64>("UINT64"),
    {"BYTES", SetBytes, Get<Bytes>},
    {"SYMBOL", SetSymbol, Get<std::string>},
};

void SetOne(TalcCommand& command, std::string_view name, std::string_view word, const Json& value) {
  for (const Kind& kind : kKinds)
    if (word == kind.word) return kind.set(command, name, value);
  throw BadInput();
}

Json Describe(const ParameterValue& parameter) {
  for (const Kind& kind : kKinds)
    if (auto value = kind.get(parameter.value))
      return Json::array({Latin1Text(parameter.name), kind.word, *std::move(value)});
  throw std::logic_error("a command holds a value of a kind that it has no setter for");
}

}  // namespace

void SetDirection(TalcCommand& command, const Json& question) {
  const std::string direction = TextMember(question, "direction");
  if (direction == "send")
    command.SetSendCommand();
  else if (direction == "request")
    command.SetRequestCommand();
  else
    throw BadInput();
}

void SetValues(TalcCommand& command, const Json& values) {
  if (!values.is_array()) throw BadInput();
  for (const Json& triple : values) {
    if (!triple.is_array() || triple.size() != 3) throw BadInput();
    SetOne(command, BytesOf(triple[0]), BytesOf(triple[1]), triple[2]);
  }
}

Json ValuesOf(const TalcCommand& command) {
  Json all = Json::array();
  if (const CommandContents* const contents = ContentsOf(command))
    for (const ParameterValue& parameter : contents->parameters)
      all.push_back(Describe(parameter));
  return all;
}
