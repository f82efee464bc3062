#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "CommandValues.h"
#include "dictionary/CommandContents.h"

namespace {

using TalcPath::TalcCommand;
using TalcPathPrivate::Bytes;
using TalcPathPrivate::ParameterValue;
using TalcPathPrivate::ParameterValues;
using TalcPathPrivate::variant_cast;
using test_support::BytesOf;
using test_support::Held;
using test_support::NamesOf;
using Names = std::vector<std::string>;

Names NamesOf(const ParameterValues& values) {
  Names names;
  for (const ParameterValue& value : values)
    names.push_back(value.name);
  EXPECT_EQ(names.size(), values.Count());
  return names;
}

/// The value as text, with its kind; "none" for a name that is not there.
std::string TextOf(const ParameterValues& values, std::string_view name) {
  const auto* const value = values.Find(name);
  if (value == nullptr) return "none";
  if (const auto* const number = variant_cast<std::uint8_t>(value)) return "UINT8 " + std::to_string(*number);
  if (const auto* const number = variant_cast<std::int32_t>(value)) return "INT32 " + std::to_string(*number);
  if (const auto* const symbol = variant_cast<std::string>(value)) return "SYMBOL " + *symbol;
  if (const auto* const bytes = variant_cast<Bytes>(value)) return "BYTES " + std::string(bytes->begin(), bytes->end());
  return "unknown";
}

TEST(ParameterValuesTest, StandInTheOrderOfTheirFirstSetting) {
  ParameterValues values;
  EXPECT_EQ(NamesOf(values), Names());
  for (const char* name : {"C", "A", "B"})
    values.Set(name, std::uint8_t{1});
  values.Set("A", std::int32_t{-2});
  values.SetBytes("C", BytesOf("abc"));
  EXPECT_EQ(NamesOf(values), (Names{"C", "A", "B"}));
  EXPECT_EQ(TextOf(values, "C"), "BYTES abc");
  EXPECT_EQ(TextOf(values, "A"), "INT32 -2");
  EXPECT_EQ(TextOf(values, "B"), "UINT8 1");
  EXPECT_EQ(TextOf(values, "D"), "none");
}

TEST(ParameterValuesTest, ShowNothingOfWhatWasCleared) {
  ParameterValues values;
  values.Set("A", std::uint8_t{1});
  values.SetBytes("B", BytesOf("abc"));
  values.Clear();
  EXPECT_EQ(values.Count(), 0U);
  EXPECT_EQ(values.begin(), values.end());
  EXPECT_EQ(TextOf(values, "A"), "none");
  EXPECT_EQ(TextOf(values, "B"), "none");
}

TEST(ParameterValuesTest, TakeANewOrderAfterAClear) {
  const std::vector<Names> orders = {{"A", "B", "C"}, {"C", "A", "B"}, {"B", "C"},          {"A"}, {},
                                     {"D", "A"},      {"C", "B", "A"}, {"D", "E", "F", "A"}};
  for (const Names& first : orders) {
    for (const Names& second : orders) {
      ParameterValues values;
      for (const std::string& name : first)
        values.Set(name, std::uint8_t{1});
      values.Clear();
      for (const std::string& name : second) {
        EXPECT_EQ(TextOf(values, name), "none");
        values.Set(name, std::int32_t{2});
        EXPECT_EQ(TextOf(values, name), "INT32 2");
      }
      EXPECT_EQ(NamesOf(values), second);
    }
  }
}

TEST(ParameterValuesTest, TakeAnotherKindAfterAClear) {
  ParameterValues values;
  values.SetBytes("A", BytesOf("abcdef"));
  values.Clear();
  values.SetBytes("A", BytesOf("xy"));
  EXPECT_EQ(TextOf(values, "A"), "BYTES xy");
  values.Clear();
  values.Set("A", std::string("On"));
  EXPECT_EQ(TextOf(values, "A"), "SYMBOL On");
  values.Clear();
  values.SetBytes("A", {});
  EXPECT_EQ(TextOf(values, "A"), "BYTES ");
}

TEST(ParameterValuesTest, CopyOnlyWhatIsInUse) {
  ParameterValues values;
  for (const char* name : {"A", "B", "C"})
    values.SetBytes(name, BytesOf("old"));
  values.Clear();
  values.SetBytes("C", BytesOf("new"));
  ParameterValues copy(values);
  EXPECT_EQ(NamesOf(copy), Names{"C"});
  EXPECT_EQ(TextOf(copy, "A"), "none");
  copy.SetBytes("C", BytesOf("changed"));
  EXPECT_EQ(TextOf(values, "C"), "BYTES new");
  copy.Set("A", std::uint8_t{1});
  EXPECT_EQ(NamesOf(copy), (Names{"C", "A"}));
  EXPECT_EQ(NamesOf(values), Names{"C"});
}

TEST(ParameterValuesTest, OfAClearedCommandAnswerLikeThoseThatNeverWere) {
  TalcCommand command;
  command.SetUInt8("X", 1);
  command.SetSymbol("S", "On");
  command.SetBytes("D", BytesOf("abc").data(), 3);
  command.ClearParameters();
  std::uint16_t number = 90;
  EXPECT_FALSE(command.GetUInt16("X", &number));  // Held as another kind it would throw.
  EXPECT_FALSE(command.IsSymbol("S"));
  std::uint32_t length = 90;
  EXPECT_FALSE(command.GetBytesLength("D", &length));
  EXPECT_FALSE(command.GetBytesLength("X", &length));
  const std::uint8_t* bytes = nullptr;
  EXPECT_FALSE(command.GetBytesPointer("D", &bytes, &length));
  EXPECT_EQ(NamesOf(TalcCommand(command)), Names());
}

TEST(ParameterValuesTest, DoNotComeBackByASettingThatIsRefused) {
  TalcCommand command;
  command.SetSymbol("S", "On");
  command.ClearParameters();
  command.SetSymbol("S", "");
  command.SetSymbol("S", std::string(255, 's'));
  EXPECT_FALSE(command.HasParameter("S"));
  EXPECT_EQ(NamesOf(command), Names());
  command.SetUInt8("X", 1);
  EXPECT_FALSE(command.HasParameter("S"));
  EXPECT_EQ(NamesOf(command), Names{"X"});
}

TEST(ParameterValuesTest, LookUpsDoNotDisturbTheOrder) {
  ParameterValues values;
  for (const char* name : {"A", "B", "C", "D"})
    values.Set(name, std::uint8_t{1});
  values.Clear();
  EXPECT_EQ(TextOf(values, "D"), "none");  // The look-up may rest on a spare record.
  values.Set("B", std::uint8_t{2});
  EXPECT_EQ(TextOf(values, "D"), "none");
  EXPECT_EQ(TextOf(values, "B"), "UINT8 2");
  values.Set("E", std::uint8_t{3});
  values.Set("D", std::uint8_t{4});
  EXPECT_EQ(NamesOf(values), (Names{"B", "E", "D"}));
  EXPECT_EQ(TextOf(values, "E"), "UINT8 3");
  EXPECT_EQ(TextOf(values, "D"), "UINT8 4");
  EXPECT_EQ(TextOf(values, "A"), "none");
  EXPECT_EQ(TextOf(values, "C"), "none");
}

/// What a list of values is, done plainly.
class Plain {
 public:
  void Set(const std::string& name, const std::string& text) {
    for (auto& [held, value] : values_)
      if (held == name) return static_cast<void>(value = text);
    values_.emplace_back(name, text);
  }
  void Clear() { values_.clear(); }
  Names Lines() const {
    Names lines;
    for (const auto& [name, text] : values_)
      lines.push_back(name + " " + text);
    return lines;
  }

 private:
  std::vector<std::pair<std::string, std::string>> values_;
};

Names LinesOf(const ParameterValues& values) {
  Names lines;
  for (const std::string& name : NamesOf(values))
    lines.push_back(name + " " + TextOf(values, name));
  return lines;
}

TEST(ParameterValuesTest, BehaveLikeAPlainListThroughAnyUse) {
  constexpr std::uint32_t kSeed = 20'260'711;
  std::mt19937 random(kSeed);
  const Names names = {"A", "B", "C", "D", "E", "F"};
  ParameterValues values;
  Plain plain;
  for (int step = 0; step < 20'000; ++step) {
    SCOPED_TRACE("seed " + std::to_string(kSeed) + ", step " + std::to_string(step));
    const std::string& name = names[random() % names.size()];
    const std::string text(random() % 20, static_cast<char>('a' + random() % 26));
    const auto number = static_cast<std::uint8_t>(random());
    switch (random() % 8) {
      case 0:
        values.Clear();
        plain.Clear();
        break;
      case 1:
      case 2:
        values.Set(name, number);
        plain.Set(name, "UINT8 " + std::to_string(number));
        break;
      case 3:
        values.Set(name, std::int32_t{-1} - number);
        plain.Set(name, "INT32 " + std::to_string(-1 - number));
        break;
      case 4:
        values.Set(name, text);
        plain.Set(name, "SYMBOL " + text);
        break;
      case 5:
      case 6:
        values.SetBytes(name, BytesOf(text));
        plain.Set(name, "BYTES " + text);
        break;
      default:
        values.Find(name);
        ASSERT_EQ(LinesOf(ParameterValues(values)), plain.Lines());
        break;
    }
    ASSERT_EQ(LinesOf(values), plain.Lines());
  }
}

}  // namespace
