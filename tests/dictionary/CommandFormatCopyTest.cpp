// Copies are lopsided: what is constructed from another definition has less than what is assigned from it. It is meant.

#include <gtest/gtest.h>

#include <string>

#include "DictionaryFixture.h"
#include "FormatProbe.h"

namespace {

using TalcPathPrivate::CommandType;
using TalcPathPrivate::MetaCommandFormat;

const CommandType kType = {.major = CommandType::Major::AUDIO, .minor = 5, .function = 7};

template <typename Format>
void FillData(Format& format, const std::string& name) {
  format.name = name;
  format.parameters = {probe::Parameter(name + "A", "UINT8", true), probe::Parameter(name + "B", "UINT16")};
  format.symbols = {{name + "On", 1}};
  format.documentation = name + " words ";
  format.definitionFile = name + ".tcd";
  format.hasVariableLengthData = true;
  format.packetSizes = {.sendSize = 1, .sendPayloadSize = 2, .requestSize = 3, .requestPayloadSize = 4};
}

void Fill(probe::Talc& format, const std::string& name) {
  FillData(format, name);
  format.commandType = kType;
  format.overrideTimeoutMillisec = 1000;
}

void Fill(probe::Diag& format, const std::string& name) {
  FillData(format, name);
  format.diagOpcode = 50;
}

template <typename Format>
void ExpectSizes(const Format& format) {
  EXPECT_TRUE(format.hasVariableLengthData);
  EXPECT_EQ(format.packetSizes.sendSize, 1u);
  EXPECT_EQ(format.packetSizes.sendPayloadSize, 2u);
  EXPECT_EQ(format.packetSizes.requestSize, 3u);
  EXPECT_EQ(format.packetSizes.requestPayloadSize, 4u);
}

template <typename Format>
void ExpectNothingOfTheRoot(const Format& format) {
  EXPECT_EQ(format.name, "");
  EXPECT_EQ(probe::ParametersOf(format), "");
  EXPECT_EQ(probe::SymbolsOf(format), "");
  EXPECT_EQ(format.documentation, "");
  EXPECT_EQ(format.definitionFile, "");
}

TEST(CommandFormatCopy, ConstructsAnOrdinaryCommandWithoutNameAndParameters) {
  probe::Talc foo;
  Fill(foo, "Foo");
  const probe::Talc copy(foo);
  ExpectNothingOfTheRoot(copy);
  ExpectSizes(copy);
  EXPECT_EQ(copy.commandType, kType);
  EXPECT_EQ(copy.overrideTimeoutMillisec, 1000u);
}

TEST(CommandFormatCopy, ConstructsADiagnosticCommandWithoutNameAndParameters) {
  probe::Diag foo;
  Fill(foo, "Foo");
  const probe::Diag copy(foo);
  ExpectNothingOfTheRoot(copy);
  ExpectSizes(copy);
  EXPECT_EQ(copy.diagOpcode, 50);
}

TEST(CommandFormatCopy, AssignsNameAndParametersOfAnOrdinaryCommand) {
  probe::Talc foo;
  Fill(foo, "Foo");
  probe::Talc copy;
  copy.name = "Bar";
  copy.symbols = {{"BarOn", 1}};
  copy.documentation = "Bar words ";
  copy.definitionFile = "Bar.tcd";
  copy = foo;
  EXPECT_EQ(copy.name, "Foo");
  EXPECT_EQ(probe::ParametersOf(copy), "FooA UINT8 RD, FooB UINT16");
  ExpectSizes(copy);
  EXPECT_EQ(copy.commandType, kType);
  EXPECT_EQ(copy.overrideTimeoutMillisec, 1000u);
  // These stay as they were.
  EXPECT_EQ(probe::SymbolsOf(copy), "BarOn 1");
  EXPECT_EQ(copy.documentation, "Bar words ");
  EXPECT_EQ(copy.definitionFile, "Bar.tcd");
}

TEST(CommandFormatCopy, AssignsNameAndParametersOfADiagnosticCommand) {
  probe::Diag foo;
  Fill(foo, "Foo");
  probe::Diag copy;
  copy = foo;
  EXPECT_EQ(copy.name, "Foo");
  EXPECT_EQ(probe::ParametersOf(copy), "FooA UINT8 RD, FooB UINT16");
  ExpectSizes(copy);
  EXPECT_EQ(copy.diagOpcode, 50);
  EXPECT_EQ(probe::SymbolsOf(copy), "");
  EXPECT_EQ(copy.documentation, "");
  EXPECT_EQ(copy.definitionFile, "");
}

TEST(CommandFormatCopy, ConstructsAMetaCommandWithNameAndParameters) {
  MetaCommandFormat foo;
  probe::Read(foo, "Foo", "Start A Repeat B Stop C DataName D RD DataType BYTES Symbol On 1 ");
  foo.SetDefinitionFile("foo.tcd");
  const MetaCommandFormat copy(foo);
  EXPECT_EQ(probe::Summary(copy), "Foo: Meta A B C {D BYTES RD} {}");
  TalcPathPrivate::ErrorList errors;
  EXPECT_FALSE(copy.Validate(errors));
  EXPECT_EQ(errors, TalcPathPrivate::ErrorList{"Talc Command Definition file not specified"});
}

TEST(CommandFormatCopy, AssignsNameAndParametersOfAMetaCommand) {
  MetaCommandFormat foo;
  probe::Read(foo, "Foo", "Start A Repeat B Stop C DataName D RD DataType BYTES Symbol On 1 ");
  MetaCommandFormat copy;
  copy.AddSymbol("BarOn", 2);
  copy.SetDefinitionFile("bar.tcd");
  copy = foo;
  EXPECT_EQ(probe::Summary(copy), "Foo: Meta A B C {D BYTES RD} {BarOn 2}");
  TalcPathPrivate::ErrorList errors;
  EXPECT_TRUE(copy.Validate(errors));
}

TEST(CommandFormatCopy, KeepsAllOfACommandThatIsAssignedToItself) {
  probe::Talc talc;
  Fill(talc, "Foo");
  const probe::Talc& sameTalc = talc;
  talc = sameTalc;
  EXPECT_EQ(probe::Summary(talc), "Foo: AUDIO 5 7 {FooA UINT8 RD, FooB UINT16} {FooOn 1}");
  EXPECT_EQ(talc.documentation, "Foo words ");
  EXPECT_EQ(talc.definitionFile, "Foo.tcd");
  EXPECT_EQ(talc.overrideTimeoutMillisec, 1000u);
  ExpectSizes(talc);
  probe::Diag diag;
  Fill(diag, "Bar");
  const probe::Diag& sameDiag = diag;
  diag = sameDiag;
  EXPECT_EQ(probe::Summary(diag), "Bar: Diag 50 {BarA UINT8 RD, BarB UINT16} {BarOn 1}");
  MetaCommandFormat meta;
  probe::Read(meta, "Baz", "Start A Repeat B Stop C Symbol On 1 ");
  const MetaCommandFormat& sameMeta = meta;
  meta = sameMeta;
  EXPECT_EQ(probe::Summary(meta), "Baz: Meta A B C {} {On 1}");
}

TEST(CommandFormatClear, EmptiesAnOrdinaryCommandButForRequestSizesAndTimeOut) {
  probe::Talc talc;
  Fill(talc, "Foo");
  talc.Clear();
  ExpectNothingOfTheRoot(talc);
  EXPECT_FALSE(talc.hasVariableLengthData);
  EXPECT_EQ(talc.packetSizes.sendSize, 0u);
  EXPECT_EQ(talc.packetSizes.sendPayloadSize, 0u);
  EXPECT_EQ(talc.commandType, CommandType());
  EXPECT_EQ(talc.packetSizes.requestSize, 3u);
  EXPECT_EQ(talc.packetSizes.requestPayloadSize, 4u);
  EXPECT_EQ(talc.overrideTimeoutMillisec, 1000u);
}

TEST(CommandFormatClear, LeavesTheOpcodeOfADiagnosticCommand) {
  probe::Diag diag;
  Fill(diag, "Foo");
  diag.Clear();
  ExpectNothingOfTheRoot(diag);
  EXPECT_FALSE(diag.hasVariableLengthData);
  EXPECT_EQ(diag.packetSizes.sendSize, 0u);
  EXPECT_EQ(diag.packetSizes.sendPayloadSize, 0u);
  EXPECT_EQ(diag.packetSizes.requestSize, 3u);
  EXPECT_EQ(diag.packetSizes.requestPayloadSize, 4u);
  EXPECT_EQ(diag.diagOpcode, 50);
}

TEST(CommandFormatClear, EmptiesAMetaCommand) {
  MetaCommandFormat meta;
  probe::Read(meta, "Baz", "Start A Repeat B Stop C DataName D DataType BYTES Symbol On 1 ");
  meta.Clear();
  EXPECT_EQ(probe::Summary(meta), ": Meta    {} {}");
}

}  // namespace
