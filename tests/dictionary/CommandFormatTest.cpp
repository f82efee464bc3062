// What each kind of definition answers to the operations that vary, and what all have in common.

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "DictionaryFixture.h"
#include "FormatProbe.h"

namespace {

using TalcPathPrivate::CommandFormat;
using TalcPathPrivate::CommandType;
using TalcPathPrivate::MetaCommandFormat;
using TalcPathPrivate::TokenStream;

class CommandFormatTest : public DictionaryTest {};

template <typename Format>
bool ReadsTypeBlock(Format& format, std::string_view block) {
  TokenStream stream(block);
  return format.ReadCommandTypeBlock(stream);
}

TEST_F(CommandFormatTest, OrdinaryCommandReadsItsThreeCodes) {
  probe::Talc format;
  EXPECT_TRUE(ReadsTypeBlock(format, "CommandTypeMajor AUDIO CommandTypeMinor 5 Function 7"));
  EXPECT_EQ(format.commandType, (CommandType{.major = CommandType::Major::AUDIO, .minor = 5, .function = 7}));
}

TEST_F(CommandFormatTest, OrdinaryCommandKeepsTheCodesThatItReadBeforeAFault) {
  probe::Talc major;
  EXPECT_FALSE(ReadsTypeBlock(major, "CommandTypeMajor AUDIO CommandTypeMinor 64 Function 7"));
  EXPECT_EQ(major.commandType, (CommandType{.major = CommandType::Major::AUDIO, .minor = -1, .function = -1}));
  probe::Talc minor;
  EXPECT_FALSE(ReadsTypeBlock(minor, "CommandTypeMajor AUDIO CommandTypeMinor 5 Function abc"));
  EXPECT_EQ(minor.commandType, (CommandType{.major = CommandType::Major::AUDIO, .minor = 5, .function = -1}));
  probe::Talc none;
  EXPECT_FALSE(ReadsTypeBlock(none, "CommandTypeMajor RADIO CommandTypeMinor 5 Function 7"));
  EXPECT_EQ(none.commandType, CommandType());
}

TEST_F(CommandFormatTest, DiagnosticCommandReadsItsOpcode) {
  probe::Diag format;
  EXPECT_EQ(format.diagOpcode, 0);
  EXPECT_TRUE(ReadsTypeBlock(format, "DiagOpcode 255"));
  EXPECT_EQ(format.diagOpcode, 255);
}

TEST_F(CommandFormatTest, MetaCommandReadsItsThreeNames) {
  MetaCommandFormat format;
  EXPECT_TRUE(ReadsTypeBlock(format, "Start A Repeat B Stop C"));
  EXPECT_EQ(format.GetStartCommand(), "A");
  EXPECT_EQ(format.GetRepeatCommand(), "B");
  EXPECT_EQ(format.GetStopCommand(), "C");
}

TEST_F(CommandFormatTest, OnlyTheMetaCommandSaysThatItIsOne) {
  EXPECT_FALSE(probe::Talc().IsMetaCommandFormat());
  EXPECT_FALSE(probe::Diag().IsMetaCommandFormat());
  EXPECT_TRUE(MetaCommandFormat().IsMetaCommandFormat());
}

TEST_F(CommandFormatTest, OnlyTheDiagnosticCommandSaysThatItIsOne) {
  EXPECT_FALSE(probe::Talc().IsDiagCommandFormat());
  EXPECT_TRUE(probe::Diag().IsDiagCommandFormat());
  EXPECT_FALSE(MetaCommandFormat().IsDiagCommandFormat());
}

TEST_F(CommandFormatTest, OnlyTheOrdinaryCommandKeepsATimeOut) {
  probe::Talc talc;
  EXPECT_EQ(talc.GetOverrideTimeoutMillisec(), 0u);
  talc.SetOverrideTimeoutMillisec(4294967295);
  EXPECT_EQ(talc.GetOverrideTimeoutMillisec(), 4294967295u);
  talc.SetOverrideTimeoutMillisec(0);
  EXPECT_EQ(talc.GetOverrideTimeoutMillisec(), 0u);
  probe::Diag diag;
  diag.SetOverrideTimeoutMillisec(5);
  EXPECT_EQ(diag.GetOverrideTimeoutMillisec(), 0u);
  MetaCommandFormat meta;
  meta.SetOverrideTimeoutMillisec(5);
  EXPECT_EQ(meta.GetOverrideTimeoutMillisec(), 0u);
}

TEST_F(CommandFormatTest, OnlyCommandsWithAPacketKeepTheLengthFlag) {
  probe::Talc talc;
  probe::Diag diag;
  MetaCommandFormat meta;
  for (CommandFormat* const format : {static_cast<CommandFormat*>(&talc), static_cast<CommandFormat*>(&diag)}) {
    EXPECT_FALSE(format->HasVariableLengthData());
    format->SetHasVariableLengthData(true);
    EXPECT_TRUE(format->HasVariableLengthData());
    format->SetHasVariableLengthData(false);
    EXPECT_FALSE(format->HasVariableLengthData());
  }
  meta.SetHasVariableLengthData(true);
  EXPECT_FALSE(meta.HasVariableLengthData());
}

TEST_F(CommandFormatTest, OnlyCommandsWithAPacketHaveCodesAndADataDefinition) {
  EXPECT_TRUE(probe::Talc().HasCommandCodes());
  EXPECT_TRUE(probe::Diag().HasCommandCodes());
  EXPECT_FALSE(MetaCommandFormat().HasCommandCodes());
  EXPECT_TRUE(probe::Talc().HasDataDefinition());
  EXPECT_TRUE(probe::Diag().HasDataDefinition());
  EXPECT_FALSE(MetaCommandFormat().HasDataDefinition());
}

TEST_F(CommandFormatTest, ComputesSizesOfAFixedPacket) {
  probe::Talc talc;
  talc.parameters = {probe::Parameter("A", "UINT8", true), probe::Parameter("B", "INT32")};
  EXPECT_TRUE(talc.PrecomputePacketSizes());
  EXPECT_EQ(talc.packetSizes.sendSize, 13u);
  EXPECT_EQ(talc.packetSizes.requestSize, 9u);
  probe::Diag diag;
  diag.parameters = talc.parameters;
  EXPECT_TRUE(diag.PrecomputePacketSizes());
  EXPECT_EQ(diag.packetSizes.sendSize, 41u);
  EXPECT_EQ(diag.packetSizes.requestSize, 37u);
  EXPECT_EQ(log(), "");
}

TEST_F(CommandFormatTest, ComputesNothingUnderTheLengthFlag) {
  SetVerbose(true);
  probe::Talc talc;
  talc.parameters = {probe::Parameter("A", "nonsense")};
  talc.hasVariableLengthData = true;
  EXPECT_TRUE(talc.PrecomputePacketSizes());
  EXPECT_EQ(talc.packetSizes.sendSize, 0u);
  EXPECT_EQ(log(), "");
}

TEST_F(CommandFormatTest, MetaCommandHasNothingToCompute) {
  SetVerbose(true);
  MetaCommandFormat meta;
  probe::Read(meta, "Baz", "Start A Repeat B Stop C DataName D DataType BYTES ");
  meta.Parameters().push_back(probe::Parameter("E", "nonsense"));
  ClearLog();
  EXPECT_TRUE(meta.PrecomputePacketSizes());
  EXPECT_EQ(log(), "");
}

TEST_F(CommandFormatTest, TellsAlwaysThatASizeCannotBeComputed) {
  probe::Talc talc;
  talc.name = "Foo";
  talc.parameters = {probe::Parameter("A", "BYTES")};  // without the flag
  const std::string line =
      "\n\nERROR - Talc Command : Foo Has Fixed-Size Parameter Data but could not precompute packet sizes and data "
      "offsets ";
  EXPECT_FALSE(talc.PrecomputePacketSizes());
  EXPECT_EQ(log(), line);
  ClearLog();
  SetVerbose(true);
  EXPECT_FALSE(talc.PrecomputePacketSizes());
  EXPECT_EQ(log(), "\nMust have Talc Command to compile in order to compute lengths for BYTES parameter : A" + line);
}

TEST_F(CommandFormatTest, TellsOfAnUnknownTypeUnderTheVerboseFlag) {
  SetVerbose(true);
  probe::Diag diag;
  diag.name = "Bar";
  diag.parameters = {probe::Parameter("A", "int8")};
  EXPECT_FALSE(diag.PrecomputePacketSizes());
  EXPECT_EQ(log(),
            "\nParameter Size error - param name : A"
            "\n\nERROR - Talc Command : Bar Has Fixed-Size Parameter Data but could not precompute packet sizes and "
            "data offsets ");
}

TEST_F(CommandFormatTest, KeepsSymbolsInTheirOrder) {
  SetVerbose(true);
  probe::Talc format;
  EXPECT_EQ(format.GetNumSymbols(), 0u);
  EXPECT_TRUE(format.AddSymbol("Zeta", -5));
  EXPECT_TRUE(format.AddSymbol("Alpha", 5));
  EXPECT_TRUE(format.AddSymbol("zeta", 5));
  EXPECT_EQ(format.GetNumSymbols(), 3u);
  EXPECT_EQ(probe::SymbolsOf(format), "Zeta -5, Alpha 5, zeta 5");
  EXPECT_EQ(log(), "");
}

TEST_F(CommandFormatTest, RefusesASecondSymbolOfAName) {
  probe::Talc format;
  EXPECT_TRUE(format.AddSymbol("On", 1));
  EXPECT_FALSE(format.AddSymbol("On", 2));
  EXPECT_EQ(log(), "");
  SetVerbose(true);
  EXPECT_FALSE(format.AddSymbol("On", 1));
  EXPECT_EQ(log(), "\nError - Symbolic Constant duplicate name");
  EXPECT_EQ(probe::SymbolsOf(format), "On 1");
}

TEST_F(CommandFormatTest, FindsTheFirstSymbolOfExactlyThatName) {
  probe::Talc format;
  format.symbols = {{"On", 1}, {"Off", 0}, {"On", 7}};
  std::int32_t value = 99;
  EXPECT_TRUE(format.GetSymbolValue("On", value));
  EXPECT_EQ(value, 1);
  value = 99;
  EXPECT_FALSE(format.GetSymbolValue("on", value));
  EXPECT_FALSE(format.GetSymbolValue("O", value));
  EXPECT_FALSE(format.GetSymbolValue("", value));
  EXPECT_EQ(value, 99);
}

TEST_F(CommandFormatTest, GivesNoSymbolOutsideItsCount) {
  probe::Talc format;
  format.symbols = {{"On", 1}};
  std::string name = "kept";
  std::int32_t value = 99;
  EXPECT_FALSE(format.GetSymbolByIndex(-1, name, value));
  EXPECT_FALSE(format.GetSymbolByIndex(1, name, value));
  EXPECT_EQ(name, "kept");
  EXPECT_EQ(value, 99);
  EXPECT_TRUE(format.GetSymbolByIndex(0, name, value));
  EXPECT_EQ(name, "On");
  EXPECT_EQ(value, 1);
}

TEST_F(CommandFormatTest, FindsTheFirstParameterOfExactlyThatName) {
  probe::Talc format;
  format.parameters = {probe::Parameter("A", "INT8"), probe::Parameter("B", "INT16"), probe::Parameter("A", "INT32")};
  EXPECT_EQ(format.GetNumParameters(), 3u);
  EXPECT_TRUE(format.HasParameter("A"));
  EXPECT_FALSE(format.HasParameter("a"));
  EXPECT_FALSE(format.HasParameter(""));
  std::string type = "kept";
  EXPECT_FALSE(format.GetParameterDataType("C", type));
  EXPECT_EQ(type, "kept");
  EXPECT_TRUE(format.GetParameterDataType("A", type));
  EXPECT_EQ(type, "INT8");
}

TEST_F(CommandFormatTest, GivesNoParameterOutsideItsCount) {
  probe::Diag format;
  format.parameters = {probe::Parameter("A", "INT8"), probe::Parameter("B", "BYTES", true)};
  std::string name = "kept";
  std::string type = "kept";
  bool isRequired = false;
  EXPECT_FALSE(format.GetParameterByIndex(-1, name, type, isRequired));
  EXPECT_FALSE(format.GetParameterByIndex(2, name, type, isRequired));
  EXPECT_EQ(name + type, "keptkept");
  EXPECT_TRUE(format.GetParameterByIndex(1, name, type, isRequired));
  EXPECT_EQ(name, "B");
  EXPECT_EQ(type, "BYTES");
  EXPECT_TRUE(isRequired);
}

TEST_F(CommandFormatTest, ReadsOneParameterAfterTheOther) {
  probe::Talc format;
  TokenStream stream("DataName A RD DataType INT8 DataName B DataType BYTES Symbol On 1 ");
  bool done = false;
  bool sendOnly = false;
  EXPECT_TRUE(format.ReadParameterOrSymbol(stream, done, sendOnly));
  EXPECT_FALSE(done);
  EXPECT_FALSE(sendOnly);
  EXPECT_FALSE(format.HasVariableLengthData());
  EXPECT_TRUE(format.ReadParameterOrSymbol(stream, done, sendOnly));
  EXPECT_FALSE(done);
  EXPECT_TRUE(sendOnly);
  EXPECT_TRUE(format.HasVariableLengthData());
  EXPECT_TRUE(format.ReadParameterOrSymbol(stream, done, sendOnly));
  EXPECT_FALSE(done);
  EXPECT_TRUE(format.ReadParameterOrSymbol(stream, done, sendOnly));
  EXPECT_TRUE(done);
  EXPECT_EQ(probe::ParametersOf(format), "A INT8 RD, B BYTES");
  EXPECT_EQ(probe::SymbolsOf(format), "On 1");
}

TEST_F(CommandFormatTest, RefusesARequiredParameterWhenToldOfASendOnlyOne) {
  // Reading a definition never tells it so; whoever reads parameter by parameter can.
  probe::Talc format;
  bool done = false;
  bool sendOnly = true;
  TokenStream quiet("DataName A RD DataType INT8 ");
  EXPECT_FALSE(format.ReadParameterOrSymbol(quiet, done, sendOnly));
  EXPECT_EQ(log(), "");
  SetVerbose(true);
  TokenStream verbose("DataName A RD DataType INT8 ");
  EXPECT_FALSE(format.ReadParameterOrSymbol(verbose, done, sendOnly));
  EXPECT_EQ(log(), "\nError - Found a parameter needed for RequestData AFTER a send-only parameter");
  EXPECT_EQ(format.GetNumParameters(), 0u);
}

}  // namespace
