#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "CommandValues.h"
#include "talcpath.h"

namespace {

using TalcPath::bad_variant_cast;
using TalcPath::TalcCommand;
using TalcPathPrivate::Bytes;
using test_support::BytesOf;
using test_support::Held;
using test_support::NamesOf;
using Names = std::vector<std::string>;

template <typename T>
using Setter = void (TalcCommand::*)(std::string_view name, T value);
template <typename T>
using Getter = bool (TalcCommand::*)(std::string_view name, T* value) const;

template <typename T>
void ExpectKeepsItsRange(Setter<T> set, Getter<T> get) {
  TalcCommand command;
  for (const T value : {std::numeric_limits<T>::min(), T{0}, T{1}, T{65}, std::numeric_limits<T>::max()}) {
    (command.*set)("X", value);
    T got = value == 0 ? 1 : 0;
    EXPECT_TRUE((command.*get)("X", &got));
    EXPECT_EQ(got, value);
    EXPECT_EQ(Held<T>(command, "X"), value);
  }
  EXPECT_EQ(NamesOf(command), Names{"X"});
}

TEST(TalcCommandValuesTest, IntegersKeepTheirWholeRange) {
  ExpectKeepsItsRange<std::int8_t>(&TalcCommand::SetInt8, &TalcCommand::GetInt8);
  ExpectKeepsItsRange<std::uint8_t>(&TalcCommand::SetUInt8, &TalcCommand::GetUInt8);
  ExpectKeepsItsRange<std::int16_t>(&TalcCommand::SetInt16, &TalcCommand::GetInt16);
  ExpectKeepsItsRange<std::uint16_t>(&TalcCommand::SetUInt16, &TalcCommand::GetUInt16);
  ExpectKeepsItsRange<std::int32_t>(&TalcCommand::SetInt32, &TalcCommand::GetInt32);
  ExpectKeepsItsRange<std::uint32_t>(&TalcCommand::SetUInt32, &TalcCommand::GetUInt32);
  ExpectKeepsItsRange<std::int64_t>(&TalcCommand::SetInt64, &TalcCommand::GetInt64);
  ExpectKeepsItsRange<std::uint64_t>(&TalcCommand::SetUInt64, &TalcCommand::GetUInt64);
}

/// Gets "X" in the one way or another, as 90 at first.
template <typename T, Getter<T> get>
bool GetX(const TalcCommand& command) {
  T value = 90;
  const bool isThere = (command.*get)("X", &value);
  EXPECT_EQ(value, isThere ? 1 : 90);
  return isThere;
}
bool GetXLength(const TalcCommand& command) {
  std::uint32_t length = 90;
  const bool isThere = command.GetBytesLength("X", &length);
  EXPECT_EQ(length, isThere ? 1U : 90U);
  return isThere;
}
bool GetXBytes(const TalcCommand& command) {
  std::uint8_t byte = 90;
  const bool isThere = command.GetBytes("X", &byte, 1, nullptr);
  EXPECT_EQ(byte, isThere ? 1 : 90);
  return isThere;
}

struct Kind {
  const char* word;
  void (*set)(TalcCommand& command);
  /// All ways to get the value that throw for another kind.
  std::vector<bool (*)(const TalcCommand& command)> get;
};
const std::vector<Kind>& Kinds() {
  static constexpr std::uint8_t kOne = 1;
  static const std::vector<Kind> kinds = {
      {"INT8", [](TalcCommand& c) { c.SetInt8("X", 1); }, {&GetX<std::int8_t, &TalcCommand::GetInt8>}},
      {"UINT8", [](TalcCommand& c) { c.SetUInt8("X", 1); }, {&GetX<std::uint8_t, &TalcCommand::GetUInt8>}},
      {"INT16", [](TalcCommand& c) { c.SetInt16("X", 1); }, {&GetX<std::int16_t, &TalcCommand::GetInt16>}},
      {"UINT16", [](TalcCommand& c) { c.SetUInt16("X", 1); }, {&GetX<std::uint16_t, &TalcCommand::GetUInt16>}},
      {"INT32", [](TalcCommand& c) { c.SetInt32("X", 1); }, {&GetX<std::int32_t, &TalcCommand::GetInt32>}},
      {"UINT32", [](TalcCommand& c) { c.SetUInt32("X", 1); }, {&GetX<std::uint32_t, &TalcCommand::GetUInt32>}},
      {"INT64", [](TalcCommand& c) { c.SetInt64("X", 1); }, {&GetX<std::int64_t, &TalcCommand::GetInt64>}},
      {"UINT64", [](TalcCommand& c) { c.SetUInt64("X", 1); }, {&GetX<std::uint64_t, &TalcCommand::GetUInt64>}},
      {"BYTES", [](TalcCommand& c) { c.SetBytes("X", &kOne, 1); }, {&GetXLength, &GetXBytes}},
      {"SYMBOL", [](TalcCommand& c) { c.SetSymbol("X", "\1"); }, {}},
  };
  return kinds;
}

TEST(TalcCommandValuesTest, GettersThrowForEveryOtherKind) {
  for (const Kind& held : Kinds()) {
    TalcCommand command;
    held.set(command);
    for (const Kind& asked : Kinds()) {
      SCOPED_TRACE(std::string(held.word) + " as " + asked.word);
      for (const auto get : asked.get) {
        if (&asked == &held)
          EXPECT_TRUE(get(command));
        else
          EXPECT_THROW(static_cast<void>(get(command)), bad_variant_cast);
      }
    }
  }
}

TEST(TalcCommandValuesTest, GettersAnswerFalseForANameThatWasNeverSet) {
  TalcCommand command;
  command.SetUInt8("Y", 1);
  for (const Kind& kind : Kinds())
    for (const auto get : kind.get)
      EXPECT_FALSE(get(command)) << kind.word;
}

TEST(TalcCommandValuesTest, GettersAnswerFalseForANullOutPointer) {
  TalcCommand command;
  command.SetUInt8("U", 1);
  command.SetInt64("I", 1);
  command.SetBytes("D", BytesOf("ab").data(), 2);
  command.SetSymbol("S", "On");
  EXPECT_FALSE(command.GetUInt8("U", nullptr));
  EXPECT_FALSE(command.GetInt64("I", nullptr));
  EXPECT_FALSE(command.GetBytesLength("D", nullptr));
  EXPECT_FALSE(command.GetBytes("D", nullptr, 2, nullptr));
  const std::uint8_t* bytes = nullptr;
  std::uint32_t length = 90;
  EXPECT_FALSE(command.GetBytesPointer("D", nullptr, &length));
  EXPECT_FALSE(command.GetBytesPointer("D", &bytes, nullptr));
  EXPECT_FALSE(command.GetSymbol("S", nullptr, 10));
}

TEST(TalcCommandValuesTest, SetAgainKeepsThePlaceAndMayChangeTheKind) {
  TalcCommand command;
  command.SetUInt8("X", 1);
  command.SetUInt8("Y", 2);
  command.SetSymbol("X", "On");
  EXPECT_EQ(NamesOf(command), (Names{"X", "Y"}));
  EXPECT_EQ(Held<std::string>(command, "X"), "On");
  for (const Kind& first : Kinds()) {
    for (const Kind& second : Kinds()) {
      first.set(command);
      second.set(command);
      SCOPED_TRACE(std::string(first.word) + ", then " + second.word);
      for (const auto get : second.get)
        EXPECT_TRUE(get(command));
      EXPECT_EQ(command.IsSymbol("X"), second.get.empty());
      EXPECT_EQ(NamesOf(command), (Names{"X", "Y"}));
    }
  }
}

TEST(TalcCommandValuesTest, BytesAreCopiedInAndOut) {
  Bytes source = BytesOf("abcd");
  TalcCommand command;
  command.SetBytes("D", source.data(), 4);
  source.assign(4, 'z');
  std::uint32_t length = 0;
  EXPECT_TRUE(command.GetBytesLength("D", &length));
  EXPECT_EQ(length, 4U);
  Bytes got(6, 0xEE);
  length = 0;
  EXPECT_TRUE(command.GetBytes("D", got.data(), 6, &length));
  EXPECT_EQ(length, 4U);
  EXPECT_EQ(got, BytesOf("abcd\xEE\xEE"));
}

TEST(TalcCommandValuesTest, BytesThatDoNotFitTellTheirLengthAndAreNotCopied) {
  TalcCommand command;
  command.SetBytes("D", BytesOf("abcd").data(), 4);
  for (const std::uint32_t capacity : {0U, 1U, 3U}) {
    Bytes got(4, 0xEE);
    std::uint32_t length = 0;
    EXPECT_FALSE(command.GetBytes("D", got.data(), capacity, &length)) << capacity;
    EXPECT_EQ(length, 4U);
    EXPECT_EQ(got, Bytes(4, 0xEE));
    EXPECT_FALSE(command.GetBytes("D", got.data(), capacity, nullptr)) << capacity;
  }
  Bytes got(4, 0xEE);
  EXPECT_TRUE(command.GetBytes("D", got.data(), 4, nullptr));
  EXPECT_EQ(got, BytesOf("abcd"));
}

TEST(TalcCommandValuesTest, EmptyBytesAreThereButHaveNoPointer) {
  const std::uint8_t byte = 1;
  struct Row {
    const std::uint8_t* bytes;
    std::uint32_t length;
  };
  // Null with a length is an empty value, too.
  for (const Row& row : {Row{&byte, 0}, Row{nullptr, 0}, Row{nullptr, 4}}) {
    TalcCommand command;
    command.SetBytes("D", row.bytes, row.length);
    EXPECT_TRUE(command.HasParameter("D"));
    std::uint32_t length = 90;
    EXPECT_TRUE(command.GetBytesLength("D", &length));
    EXPECT_EQ(length, 0U);
    std::uint8_t got = 0xEE;
    length = 90;
    EXPECT_TRUE(command.GetBytes("D", &got, 1, &length));
    EXPECT_EQ(length, 0U);
    EXPECT_EQ(got, 0xEE);
    EXPECT_TRUE(command.GetBytes("D", nullptr, 0, nullptr));
    const std::uint8_t* bytes = &byte;
    EXPECT_FALSE(command.GetBytesPointer("D", &bytes, &length));
  }
}

TEST(TalcCommandValuesTest, BytesPointerLivesUntilTheValueChanges) {
  TalcCommand command;
  command.SetBytes("D", BytesOf("abcd").data(), 4);
  const std::uint8_t* bytes = nullptr;
  std::uint32_t length = 0;
  ASSERT_TRUE(command.GetBytesPointer("D", &bytes, &length));
  for (int i = 0; i < 100; ++i)
    command.SetBytes("Other" + std::to_string(i), BytesOf("zz").data(), 2);
  ASSERT_EQ(length, 4U);
  EXPECT_EQ(Bytes(bytes, bytes + length), BytesOf("abcd"));

  // A part of the value itself is as good a source as any.
  command.SetBytes("D", bytes + 1, 2);
  EXPECT_EQ(Held<Bytes>(command, "D"), BytesOf("bc"));
}

TEST(TalcCommandValuesTest, BytesPointerNeverThrows) {
  for (const Kind& kind : Kinds()) {
    TalcCommand command;
    kind.set(command);
    const std::uint8_t* bytes = nullptr;
    std::uint32_t length = 90;
    const bool isBytes = kind.word == std::string("BYTES");
    EXPECT_EQ(command.GetBytesPointer("X", &bytes, &length), isBytes) << kind.word;
    EXPECT_EQ(length, isBytes ? 1U : 90U) << kind.word;
    EXPECT_FALSE(command.GetBytesPointer("Y", &bytes, &length));
  }
}

TEST(TalcCommandValuesTest, SymbolIsStoredOnlyWithOneTo254Characters) {
  struct Row {
    std::size_t length;
    bool isStored;
  };
  for (const Row& row : {Row{0, false}, Row{1, true}, Row{254, true}, Row{255, false}, Row{256, false}}) {
    const std::string symbol(row.length, 's');
    TalcCommand command;
    command.SetSymbol("New", symbol);
    EXPECT_EQ(command.HasParameter("New"), row.isStored) << row.length;
    // Without a report, and what was there stays, of whatever kind it is.
    command.SetUInt8("Old", 7);
    command.SetSymbol("Old", symbol);
    if (row.isStored)
      EXPECT_EQ(Held<std::string>(command, "Old"), symbol);
    else
      EXPECT_EQ(Held<std::uint8_t>(command, "Old"), 7) << row.length;
  }
}

TEST(TalcCommandValuesTest, SymbolIsHeldAsTextAndComparedExactly) {
  TalcCommand command;
  command.SetSymbol("S", "On");
  EXPECT_TRUE(command.IsSymbol("S"));
  EXPECT_TRUE(command.IsParameterEqualToSymbolName("S", "On"));
  for (const std::string other : {"on", "O", "One", "On ", ""})
    EXPECT_FALSE(command.IsParameterEqualToSymbolName("S", other)) << other;
  EXPECT_FALSE(command.IsSymbol("T"));
  EXPECT_FALSE(command.IsParameterEqualToSymbolName("T", "On"));
}

TEST(TalcCommandValuesTest, NoOtherKindIsASymbol) {
  for (const Kind& kind : Kinds()) {
    if (kind.get.empty()) continue;
    TalcCommand command;
    kind.set(command);
    char buffer[4] = "zzz";
    EXPECT_FALSE(command.IsSymbol("X")) << kind.word;
    EXPECT_FALSE(command.IsParameterEqualToSymbolName("X", "\1")) << kind.word;
    EXPECT_FALSE(command.GetSymbol("X", buffer, sizeof buffer)) << kind.word;
    EXPECT_STREQ(buffer, "zzz");
  }
}

TEST(TalcCommandValuesTest, SymbolFillsItsBufferWithZerosFirst) {
  struct Row {
    std::uint32_t capacity;
    bool isGiven;
    std::string buffer;
  };
  const Row rows[] = {
      {0, false, "zzzzzz"},
      {1, false, "zzzzzz"},
      {2, true, "Onzzzz"},  // No terminator, as is meant.
      {3, true, std::string("On\0zzz", 6)},
      {6, true, std::string("On\0\0\0\0", 6)},
  };
  TalcCommand command;
  command.SetSymbol("S", "On");
  for (const Row& row : rows) {
    std::string buffer = "zzzzzz";
    EXPECT_EQ(command.GetSymbol("S", buffer.data(), row.capacity), row.isGiven) << row.capacity;
    EXPECT_EQ(buffer, row.buffer) << row.capacity;
    EXPECT_FALSE(command.GetSymbol("T", buffer.data(), row.capacity)) << row.capacity;
    EXPECT_EQ(buffer, row.buffer) << row.capacity;
  }
}

}  // namespace
