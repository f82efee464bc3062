// The packets of meta commands: values laid end to end and cut.

#include <gtest/gtest.h>

#include "MetaFixture.h"

namespace {

using namespace engine_test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class MetaCompileTest : public EngineTest {
 protected:
  void Define(const std::string& metaCommands) { StartWith(kCarriers + metaCommands); }
};

struct Made {
  bool isGood = false;
  Texts packets;
};

Made Make(TalcCommand& command) {
  MetaCommandByteCodeProcessor processor(command);
  const bool isGood = processor.Compile();
  return {isGood, PacketsOf(processor)};
}

/// The packets of a command that compiles.
Texts PacketsFor(TalcCommand& command) {
  const Made made = Make(command);
  EXPECT_TRUE(made.isGood);
  return made.packets;
}

constexpr const char* kStop = "0B 0B 00 04 80 06 00 00";
/// A Repeat with 2040 bytes of data, and all of them behind a Start of 2040.
constexpr const char* kFullRepeat = "0B 0B 07 FC 80 04 00 00";
constexpr std::size_t kBlock = 2040;

/// Parameters N0, N1 and so on of eight bytes each.
std::string WideNumbers(int count) {
  std::string parameters;
  for (int i = 0; i < count; ++i)
    parameters += "DataName N" + std::to_string(i) + " DataType UINT64 ";
  return parameters;
}
/// Sets them so that together they are the numbered data.
void SetWideNumbers(TalcCommand& command, int count) {
  for (int i = 0; i < count; ++i) {
    std::uint64_t value = 0;
    for (const std::uint8_t byte : Numbered(static_cast<std::size_t>(i) * 8, 8))
      value = value << 8 | byte;
    command.SetUInt64("N" + std::to_string(i), value);
  }
}

TEST_F(MetaCompileTest, CutsFiveThousandBytesIntoThreeRepeats) {
  Define(Meta("Load", "DataName Image DataType BYTES "));
  TalcCommand command = WithImage("Load", 5000);
  EXPECT_THAT(PacketsFor(command),
              ElementsAre("0B 0B 00 08 80 02 00 00 00 00 13 88", WithNumbered(kFullRepeat, 0, 2040),
                          WithNumbered(kFullRepeat, 2040, 2040), WithNumbered("0B 0B 03 9C 80 04 00 00", 4080, 920),
                          "0B 0B 00 04 80 06 00 00"));
}

TEST_F(MetaCompileTest, LaysThreeNumbersIntoOneRepeat) {
  Define(Meta("Three", "DataName A DataType UINT32 DataName B DataType UINT32 DataName C DataType UINT32 "));
  TalcCommand command("Three");
  // The order is that of the definition.
  command.SetUInt32("C", 0x090A0B0C);
  command.SetUInt32("A", 0x01020304);
  command.SetUInt32("B", 0x05060708);
  EXPECT_THAT(PacketsFor(command),
              ElementsAre("0B 0B 00 08 80 02 00 00 00 00 00 0C",
                          "0B 0B 00 10 80 04 00 00 01 02 03 04 05 06 07 08 09 0A 0B 0C", "0B 0B 00 04 80 06 00 00"));
}

TEST_F(MetaCompileTest, LaysValuesOfEachKindMostSignificantByteFirst) {
  Define(Meta("All",
              "DataName A DataType INT8 DataName B DataType UINT8 DataName C DataType INT16 DataName D DataType UINT16 "
              "DataName E DataType INT32 DataName F DataType UINT32 DataName G DataType INT64 "
              "DataName H DataType UINT64 DataName I DataType BYTES "));
  TalcCommand command("All");
  command.SetInt8("A", -2);
  command.SetUInt8("B", 0x81);
  command.SetInt16("C", -3);
  command.SetUInt16("D", 0x8283);
  command.SetInt32("E", -4);
  command.SetUInt32("F", 0x84858687);
  command.SetInt64("G", -5);
  command.SetUInt64("H", 0x88898A8B8C8D8E8F);
  SetBytes(command, "I", {0, 0x3B, 0xFF});
  command.SetUInt8("NotDefined", 0x77);
  EXPECT_THAT(PacketsFor(command),
              ElementsAre("0B 0B 00 08 80 02 00 00 00 00 00 21",
                          "0B 0B 00 25 80 04 00 00 FE 81 FF FD 82 83 FF FF FF FC 84 85 86 87 FF FF FF FF FF FF FF FB "
                          "88 89 8A 8B 8C 8D 8E 8F 00 3B FF",
                          kStop));
}

TEST_F(MetaCompileTest, PutsAValueOfAFullBlockIntoOneRepeat) {
  Define(Meta("Load", "DataName Image DataType BYTES "));
  TalcCommand command = WithImage("Load", 2040);
  EXPECT_THAT(PacketsFor(command), ElementsAre("0B 0B 00 08 80 02 00 00 00 00 07 F8",
                                               WithNumbered("0B 0B 07 FC 80 04 00 00", 0, 2040), kStop));
}

struct Cut {
  std::size_t size;
  const char* total;
  std::size_t fullRepeats;
  const char* lastHeader;
  std::size_t lastSize;
};

TEST_F(MetaCompileTest, CutsBytesAtEachFullBlock) {
  Define(Meta("Load", "DataName Image DataType BYTES "));
  for (const Cut& cut : {
           Cut{1, "00 00 00 01", 0, "0B 0B 00 05 80 04 00 00", 1},
           Cut{2039, "00 00 07 F7", 0, "0B 0B 07 FB 80 04 00 00", 2039},
           Cut{2041, "00 00 07 F9", 1, "0B 0B 00 05 80 04 00 00", 1},
           Cut{4079, "00 00 0F EF", 1, "0B 0B 07 FB 80 04 00 00", 2039},
           Cut{4081, "00 00 0F F1", 2, "0B 0B 00 05 80 04 00 00", 1},
           Cut{65536, "00 01 00 00", 32, "0B 0B 01 04 80 04 00 00", 256},
       }) {
    Texts expected = {std::string("0B 0B 00 08 80 02 00 00 ") + cut.total};
    for (std::size_t n = 0; n < cut.fullRepeats; ++n)
      expected.push_back(WithNumbered(kFullRepeat, n * kBlock, kBlock));
    expected.push_back(WithNumbered(cut.lastHeader, cut.fullRepeats * kBlock, cut.lastSize));
    expected.push_back(kStop);
    TalcCommand command = WithImage("Load", cut.size);
    EXPECT_EQ(PacketsFor(command), expected) << cut.size;
  }
}

// The block that the cut has just emptied makes no packet. It is meant.
TEST_F(MetaCompileTest, FailsWhereACutValueEndsWithAFullBlock) {
  Define(Meta("Load", "DataName Image DataType BYTES "));
  TalcCommand command = WithImage("Load", 4080);
  const Made made = Make(command);
  EXPECT_FALSE(made.isGood);
  EXPECT_THAT(made.packets, ElementsAre("0B 0B 00 08 80 02 00 00 00 00 0F F0", WithNumbered(kFullRepeat, 0, 2040),
                                        WithNumbered(kFullRepeat, 2040, 2040), ""));
  TalcCommand longer = WithImage("Load", 6120);
  EXPECT_FALSE(Make(longer).isGood);
}

TEST_F(MetaCompileTest, CutsANumberWhereTheBlockEnds) {
  const std::string before = WideNumbers(254) + "DataName A DataType UINT32 ";
  const std::string last = "DataName Last DataType UINT32 ";
  const std::string one = "DataName S1 DataType UINT8 ";
  const std::string two = one + "DataName S2 DataType UINT8 ";
  Define(Meta("Fits", before + last) + Meta("OneOver", before + one + last) + Meta("TwoOver", before + two + last) +
         Meta("ThreeOver", before + two + "DataName S3 DataType UINT8 " + last));
  const auto make = [](const char* name, const Bytes& singles) {
    TalcCommand command(name);
    SetWideNumbers(command, 254);
    command.SetUInt32("A", 0x03F803F9);
    for (std::size_t i = 0; i < singles.size(); ++i)
      command.SetUInt8("S" + std::to_string(i + 1), singles[i]);
    command.SetUInt32("Last", 0xE1E2E3E4);
    return PacketsFor(command);
  };
  const std::string full = WithNumbered(kFullRepeat, 0, 2036);
  EXPECT_THAT(make("Fits", {}), ElementsAre("0B 0B 00 08 80 02 00 00 00 00 07 F8", full + " E1 E2 E3 E4", kStop));
  EXPECT_THAT(make("OneOver", {0xD1}), ElementsAre("0B 0B 00 08 80 02 00 00 00 00 07 F9", full + " D1 E1 E2 E3",
                                                   "0B 0B 00 05 80 04 00 00 E4", kStop));
  EXPECT_THAT(make("TwoOver", {0xD1, 0xD2}), ElementsAre("0B 0B 00 08 80 02 00 00 00 00 07 FA", full + " D1 D2 E1 E2",
                                                         "0B 0B 00 06 80 04 00 00 E3 E4", kStop));
  EXPECT_THAT(make("ThreeOver", {0xD1, 0xD2, 0xD3}),
              ElementsAre("0B 0B 00 08 80 02 00 00 00 00 07 FB", full + " D1 D2 D3 E1",
                          "0B 0B 00 07 80 04 00 00 E2 E3 E4", kStop));
}

TEST_F(MetaCompileTest, GoesOnBehindACutNumberWithOtherKinds) {
  Define(Meta("Mixed", WideNumbers(254) +
                           "DataName A DataType UINT32 DataName B DataType UINT16 DataName C DataType INT32 "
                           "DataName D DataType INT8 DataName Image DataType BYTES "));
  TalcCommand command("Mixed");
  SetWideNumbers(command, 254);
  command.SetUInt32("A", 0x03F803F9);
  command.SetUInt16("B", 0x03FA);
  command.SetInt32("C", -2);
  command.SetInt8("D", -3);
  SetBytes(command, "Image", Numbered(2043, 2040));
  EXPECT_THAT(PacketsFor(command),
              ElementsAre("0B 0B 00 08 80 02 00 00 00 00 0F F3", WithNumbered(kFullRepeat, 0, 2038) + " FF FF",
                          Hex(FromHex("0B 0B 07 FC 80 04 00 00 FF FE FD") + Numbered(2043, 2037)),
                          WithNumbered("0B 0B 00 07 80 04 00 00", 4080, 3), kStop));
}

TEST_F(MetaCompileTest, FillsTheRestOfABlockWithoutACut) {
  Define(Meta("Load", WideNumbers(254) + "DataName Image DataType BYTES "));
  TalcCommand command("Load");
  SetWideNumbers(command, 254);
  SetBytes(command, "Image", Numbered(2032, 8));
  EXPECT_THAT(PacketsFor(command),
              ElementsAre("0B 0B 00 08 80 02 00 00 00 00 07 F8", WithNumbered(kFullRepeat, 0, 2040), kStop));
  SetBytes(command, "Image", Numbered(2032, 9));
  EXPECT_THAT(PacketsFor(command),
              ElementsAre("0B 0B 00 08 80 02 00 00 00 00 07 F9", WithNumbered(kFullRepeat, 0, 2040),
                          WithNumbered("0B 0B 00 05 80 04 00 00", 2040, 1), kStop));
  // The cut ends with a full block, though the whole is not a multiple of one value's blocks.
  SetBytes(command, "Image", Numbered(2032, 2048));
  EXPECT_FALSE(Make(command).isGood);
}

TEST_F(MetaCompileTest, StartsANewBlockForAValueBehindAFullOne) {
  Define(Meta("Numbers", WideNumbers(255)) + Meta("Number", WideNumbers(255) + "DataName Last DataType INT16 ") +
         Meta("Load", WideNumbers(255) + "DataName Image DataType BYTES "));
  const std::string full = WithNumbered(kFullRepeat, 0, 2040);
  TalcCommand numbers("Numbers");
  SetWideNumbers(numbers, 255);
  EXPECT_THAT(PacketsFor(numbers), ElementsAre("0B 0B 00 08 80 02 00 00 00 00 07 F8", full, kStop));

  TalcCommand number("Number");
  SetWideNumbers(number, 255);
  number.SetInt16("Last", -2);
  EXPECT_THAT(PacketsFor(number),
              ElementsAre("0B 0B 00 08 80 02 00 00 00 00 07 FA", full, "0B 0B 00 06 80 04 00 00 FF FE", kStop));

  TalcCommand load("Load");
  SetWideNumbers(load, 255);
  SetBytes(load, "Image", Numbered(2040, 2041));
  EXPECT_THAT(PacketsFor(load),
              ElementsAre("0B 0B 00 08 80 02 00 00 00 00 0F F1", full, WithNumbered(kFullRepeat, 2040, 2040),
                          WithNumbered("0B 0B 00 05 80 04 00 00", 4080, 1), kStop));
  SetBytes(load, "Image", Numbered(2040, 2040));
  const Made made = Make(load);
  EXPECT_FALSE(made.isGood);
  EXPECT_THAT(made.packets,
              ElementsAre("0B 0B 00 08 80 02 00 00 00 00 0F F0", full, WithNumbered(kFullRepeat, 2040, 2040), ""));
}

TEST_F(MetaCompileTest, MakesNoRepeatWithoutParameters) {
  Define(Meta("Nothing", ""));
  TalcCommand command("Nothing");
  command.SetUInt8("NotDefined", 1);
  EXPECT_THAT(PacketsFor(command), ElementsAre("0B 0B 00 08 80 02 00 00 00 00 00 00", kStop));
}

TEST_F(MetaCompileTest, FailsWithATotalOf0WithoutBytes) {
  Define(Meta("Load", "DataName Kind DataType UINT16 DataName Image DataType BYTES "));
  TalcCommand command("Load");
  command.SetUInt16("Kind", 1);
  SetBytes(command, "Image", {1, 2, 3});
  EXPECT_TRUE(Make(command).isGood);

  // What the definition was laid out for before is forgotten.
  TalcCommand missing("Load");
  missing.SetUInt16("Kind", 1);
  const Made made = Make(missing);
  EXPECT_FALSE(made.isGood);
  EXPECT_THAT(made.packets, ElementsAre("0B 0B 00 08 80 02 00 00 00 00 00 00"));

  // An empty value is none either, but the total can be told.
  SetBytes(missing, "Image", {});
  const Made empty = Make(missing);
  EXPECT_FALSE(empty.isGood);
  EXPECT_THAT(empty.packets, ElementsAre("0B 0B 00 08 80 02 00 00 00 00 00 02"));
}

TEST_F(MetaCompileTest, FailsWithoutANumber) {
  Define(Meta("Two", "DataName A DataType UINT32 DataName B DataType UINT8 "));
  TalcCommand command("Two");
  command.SetUInt8("B", 1);
  const Made made = Make(command);
  EXPECT_FALSE(made.isGood);
  // A number has its size without a value.
  EXPECT_THAT(made.packets, ElementsAre("0B 0B 00 08 80 02 00 00 00 00 00 05"));
}

TEST_F(MetaCompileTest, FailsWithoutANumberThatIsCut) {
  Define(Meta("Number", WideNumbers(255) + "DataName Last DataType INT16 "));
  TalcCommand command("Number");
  SetWideNumbers(command, 255);
  const Made made = Make(command);
  EXPECT_FALSE(made.isGood);
  EXPECT_THAT(made.packets, ElementsAre("0B 0B 00 08 80 02 00 00 00 00 07 FA"));
}

TEST_F(MetaCompileTest, FailsForAParameterOfAnUnknownType) {
  Define(Meta("Two", "DataName A DataType UINT8 DataName B DataType UINT8 "));
  TalcPathPrivate::FindDefinedCommand("Two")->Parameters()[1].dataType = TalcPathPrivate::DataType("UINT24");
  TalcCommand command("Two");
  command.SetUInt8("A", 1);
  command.SetUInt8("B", 2);
  const Made made = Make(command);
  EXPECT_FALSE(made.isGood);
  EXPECT_THAT(made.packets, ElementsAre("0B 0B 00 08 80 02 00 00 00 00 00 00"));
}

TEST_F(MetaCompileTest, ThrowsForAValueOfAnotherKind) {
  Define(Meta("Load", "DataName Kind DataType UINT16 DataName Image DataType BYTES ") +
         Meta("Number", WideNumbers(255) + "DataName Last DataType INT16 "));
  TalcCommand number("Load");
  number.SetInt16("Kind", 1);
  SetBytes(number, "Image", {1});
  EXPECT_THROW(Make(number), TalcPath::bad_variant_cast);

  TalcCommand bytes("Load");
  bytes.SetUInt16("Kind", 1);
  bytes.SetUInt8("Image", 1);
  EXPECT_THROW(Make(bytes), TalcPath::bad_variant_cast);

  // A meta command's symbols are never turned into numbers.
  TalcCommand symbol("Load");
  symbol.SetSymbol("Kind", "kAny");
  SetBytes(symbol, "Image", {1});
  EXPECT_THROW(Make(symbol), TalcPath::bad_variant_cast);

  TalcCommand cut("Number");
  SetWideNumbers(cut, 255);
  cut.SetUInt16("Last", 1);
  EXPECT_THROW(Make(cut), TalcPath::bad_variant_cast);
}

TEST_F(MetaCompileTest, MakesOnlyTheStartOfARequestAhead) {
  Define(Meta("Load", "DataName Kind RD DataType UINT16 DataName Image DataType BYTES "));
  TalcCommand without = Request("Load");
  EXPECT_THAT(PacketsFor(without), ElementsAre("0B 0B 00 04 80 03 00 00"));
  // Not even what the definition marks for requests is carried, and so its kind does not matter.
  TalcCommand with = Request("Load");
  with.SetUInt8("Kind", 1);
  SetBytes(with, "Image", Numbered(0, 5000));
  EXPECT_THAT(PacketsFor(with), ElementsAre("0B 0B 00 04 80 03 00 00"));
}

TEST_F(MetaCompileTest, TakesMetaCommandsAlone) {
  Define("Probe Diag DiagOpcode 1 ;");
  for (const char* name : {"Nobody", "", "End", "Probe"}) {
    for (TalcCommand command : {TalcCommand(name), Request(name)}) {
      MetaCommandByteCodeProcessor processor(command);
      EXPECT_FALSE(processor.Compile()) << name;
      EXPECT_THAT(processor.Pairs(), IsEmpty());
      EXPECT_FALSE(processor.Execute()) << name;
    }
  }
}

}  // namespace
