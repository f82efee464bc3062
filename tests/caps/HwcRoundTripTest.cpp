// What was written reads back as the same capabilities.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <sstream>
#include <string>
#include <string_view>

#include "CapsFixture.h"

namespace {

using caps_test::Block;
using caps_test::BlocksOf;
using caps_test::Lines;
using caps_test::NumberBlock;
using caps_test::OverridesOf;
using caps_test::PropertiesOf;
using caps_test::Range;
using caps_test::SymbolBlock;
using caps_test::TablesOf;
using caps_test::TalcHWCaps;
using caps_test::TextList;
using caps_test::ValuesOf;
using caps_test::Variant;
using testing::ElementsAre;

class HwcRoundTripTest : public caps_test::CapsTest {
 protected:
  static std::string Written(const TalcHWCaps& caps) {
    std::ostringstream stream;
    EXPECT_TRUE(TalcPathPrivate::WriteHwc(caps, caps.hardwareType, stream));
    return stream.str();
  }
  /// The two may list properties and values in another order, since the text goes by blocks.
  static void ExpectSame(const TalcHWCaps& one, const TalcHWCaps& other) {
    EXPECT_EQ(one.hardwareType, other.hardwareType);
    EXPECT_EQ(OverridesOf(one), OverridesOf(other));
    EXPECT_EQ(BlocksOf(one), BlocksOf(other));
    EXPECT_THAT(PropertiesOf(one), testing::UnorderedElementsAreArray(PropertiesOf(other)));
    EXPECT_THAT(ValuesOf(one), testing::UnorderedElementsAreArray(ValuesOf(other)));
  }
};

TEST_F(HwcRoundTripTest, GivesBackOneOfEverything) {
  caps_.hardwareType = "Trelvane";
  caps_.overrideTimeouts = {{"Video", 1500}, {"Nothing", 4294967295}};
  Block both = SymbolBlock("Both", "Video", "Side", "Gain");
  ASSERT_TRUE(both.AddIntegerCondition("Audio", "Level", -2147483647 - 1));
  caps_.AppendBlock(both);
  const Block& unnamed = caps_.AppendBlock(NumberBlock("", "Probe", "Address", 2147483647));
  ASSERT_TRUE(caps_.AddProperty("Text", Variant(std::string("a_b")), both));
  ASSERT_TRUE(caps_.AddProperty("Number", Variant(std::int32_t{-310}), Block()));
  ASSERT_TRUE(caps_.AddCommandValue("Video", "Value", Variant(Range(-1, 255)), unnamed));
  ASSERT_TRUE(caps_.AddCommandValue("Video", "Control", Variant(TextList{"Hue", "Gain"}), Block()));

  TalcHWCaps read;
  EXPECT_TRUE(Read(read, Written(caps_)));
  EXPECT_THAT(
      TablesOf(read),
      ElementsAre("Trelvane", "Nothing 4294967295", "Video 1500", "Both {Audio Level -2147483648, Video Side -4 Gain}",
                  " {Probe Address 2147483647}", "default: Number -310", "Both: Text 'a_b'",
                  "default: Video Control [Hue Gain]", "{Probe Address 2147483647}: Video Value -1..255"));
  EXPECT_EQ(Written(read), Written(caps_));
  EXPECT_EQ(log(), "");
}

TEST_F(HwcRoundTripTest, GivesBackCapabilitiesWithoutAnything) {
  caps_.hardwareType = "Trelvane";
  TalcHWCaps read;
  EXPECT_TRUE(Read(read, Written(caps_)));
  EXPECT_THAT(TablesOf(read), ElementsAre("Trelvane"));
}

TEST_F(HwcRoundTripTest, GoesByBlocksWhateverTheOrderOfTheFile) {
  EXPECT_TRUE(
      Read("ConditionBlockBegin ; ConditionKeyname K ; Condition Video Side INTEGER 1 ; ConditionBlockEnd ;"
           "CommandValues A B Range 0 1 ; Property P INTEGER 1 ; ConditionBlockBegin ; ConditionBlockEnd ;"
           "CommandValues A B Range 0 2 ; Property P INTEGER 2 ; CmdOverrideTimeout A 1 ; HardwareType T ;"));
  TalcHWCaps read;
  EXPECT_TRUE(Read(read, Written(caps_)));
  EXPECT_THAT(TablesOf(read), ElementsAre("T", "A 1", "K {Video Side 1}", "default: P 2", "K: P 1", "default: A B 0..2",
                                          "K: A B 0..1"));
}

/// Capabilities by chance, all of which the language can say: each block has conditions that no other has.
class Generator {
 public:
  explicit Generator(std::uint32_t seed) : random_(seed) {}

  void Fill(TalcHWCaps& caps) {
    caps.hardwareType = Word();
    for (std::size_t n = Below(4); n > 0; --n)
      caps.overrideTimeouts[Word()] = static_cast<std::uint32_t>(random_());
    for (std::size_t n = Below(8); n > 0; --n) {
      Block block = SomeBlock(n);
      if (caps.FindSameBlock(block) == nullptr) caps.AppendBlock(block);
    }
    // In any order, and some more than once, which changes nothing.
    for (std::size_t n = Below(30); n > 0; --n)
      caps.AddProperty(Word(), SomeProperty(), AnyBlock(caps));
    for (std::size_t n = Below(30); n > 0; --n)
      AddValue(caps, AnyBlock(caps));
  }

 private:
  std::size_t Below(std::size_t limit) { return random_() % limit; }
  bool Flag() { return Below(2) == 0; }
  std::int32_t Number() {
    constexpr std::int32_t kOften[] = {0, 1, -1, 2147483647, -2147483647 - 1};
    return Flag() ? kOften[Below(std::size(kOften))] : static_cast<std::int32_t>(random_());
  }
  /// Of any characters but white space and ";".
  std::string Word() {
    std::string word;
    do {
      const auto c = static_cast<char>(Flag() ? 'a' + Below(3) : Below(256));
      if (c != ' ' && c != ';' && (c < '\t' || c > '\r')) word += c;
    } while (word.empty() || Below(3) != 0);
    return word;
  }
  std::string VideoSymbol() {
    constexpr const char* kSymbols[] = {"Input", "Output", "Hue", "Tint", "Gain"};
    return kSymbols[Below(std::size(kSymbols))];
  }
  /// `n` makes its name the only one.
  Block SomeBlock(std::size_t n) {
    Block block;
    if (Flag()) block.keyname = Word() + std::to_string(n);
    for (const char* const parameter : {"Side", "Control", "Value"}) {
      if (Flag()) continue;
      EXPECT_TRUE(Flag() ? block.AddSymbolCondition("Video", parameter, VideoSymbol())
                         : block.AddIntegerCondition("Video", parameter, Number()));
    }
    if (Flag() || block.ConditionCount() == 0) {
      EXPECT_TRUE(block.AddIntegerCondition("Audio", "Level", Number()));
    }
    return block;
  }
  Variant SomeProperty() { return Flag() ? Variant(Word()) : Variant(Number()); }
  const Block& AnyBlock(const TalcHWCaps& caps) {
    const std::size_t n = Below(caps.Blocks().size() + 1);
    return n == 0 ? caps.DefaultBlock() : *caps.Blocks()[n - 1];
  }
  void AddValue(TalcHWCaps& caps, const Block& block) {
    if (Flag()) {
      const std::int32_t low = Number();
      caps.AddCommandValue(Word(), Word(), Variant(Range(low, Number())), block);
      return;
    }
    TextList symbols;
    for (std::size_t n = Below(4) + 1; n > 0; --n)
      symbols.push_back(VideoSymbol());
    caps.AddCommandValue("Video", Word(), Variant(symbols), block);
  }

  std::mt19937 random_;
};

TEST_F(HwcRoundTripTest, GivesBackWhatWasGenerated) {
  std::size_t values = 0;
  std::size_t blocks = 0;
  for (std::uint32_t seed = 1; seed <= 1000; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    TalcHWCaps caps;
    Generator(seed).Fill(caps);
    const std::string text = Written(caps);
    TalcHWCaps read;
    ASSERT_TRUE(Read(read, text));
    ExpectSame(read, caps);
    ASSERT_EQ(Written(read), text);
    if (HasFailure()) return;
    values += caps.OverallCmdParamCount() + caps.OverallPropertyCount();
    blocks += caps.Blocks().size();
  }
  EXPECT_GT(values, 10'000u);
  EXPECT_GT(blocks, 1'000u);
}

}  // namespace
