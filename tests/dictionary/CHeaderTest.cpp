#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "DictionaryFixture.h"
#include "FormatProbe.h"

namespace {

using TalcPathPrivate::MetaCommandFormat;
using TalcPathPrivate::TalcDataCommandFormat;

std::string Codes(const TalcPathPrivate::CommandFormat& format, bool result) {
  std::ostringstream stream;
  EXPECT_EQ(format.WriteCommandCodes(stream), result);
  return stream.str();
}

std::string DataDefinition(const TalcPathPrivate::CommandFormat& format, bool result = true) {
  std::ostringstream stream;
  EXPECT_EQ(format.WriteDataDefinition(stream), result);
  return stream.str();
}

TEST(CHeaderCodes, AreTwoOfAnOrdinaryCommandWithACommaBetween) {
  probe::Talc format;
  format.name = "Foo";
  format.commandType.function = 23;
  EXPECT_EQ(Codes(format, true), "\n\tkBoB_SetFoo = 46,\n\tkBoB_GetFoo = 47");
  format.commandType.function = 0;
  EXPECT_EQ(Codes(format, true), "\n\tkBoB_SetFoo = 0,\n\tkBoB_GetFoo = 1");
  format.commandType.function = 127;
  EXPECT_EQ(Codes(format, true), "\n\tkBoB_SetFoo = 254,\n\tkBoB_GetFoo = 255");
}

TEST(CHeaderCodes, AreTheOpcodeOfADiagnosticCommand) {
  probe::Diag format;
  format.name = "Bar";
  format.diagOpcode = 132;
  EXPECT_EQ(Codes(format, true), "\n\tkDiag_Bar = 132");
}

TEST(CHeaderCodes, AreNoneOfAMetaCommand) {
  MetaCommandFormat format;
  probe::Read(format, "Baz", "Start A Repeat B Stop C ");
  EXPECT_EQ(Codes(format, false), "");
}

TEST(CHeaderCodes, AreNoneOfWhatAllCommandsWithAPacketShare) {
  probe::Talc format;
  std::ostringstream stream;
  EXPECT_TRUE(format.TalcDataCommandFormat::WriteCommandCodes(stream));
  EXPECT_EQ(stream.str(), "");
}

TEST(CHeaderCodes, AreDecimalInAnyStream) {
  probe::Talc format;
  format.name = "Foo";
  format.commandType.function = 23;
  std::ostringstream stream;
  stream << std::hex << std::showbase;
  EXPECT_TRUE(format.WriteCommandCodes(stream));
  EXPECT_EQ(stream.str(), "\n\tkBoB_SetFoo = 46,\n\tkBoB_GetFoo = 47");
}

TEST(CHeaderData, HasNoStructWithoutParameters) {
  probe::Talc format;
  format.name = "Foo";
  EXPECT_EQ(DataDefinition(format), "\n\n /* Data for command Foo */\n/* Command has NO DATA */");
}

TEST(CHeaderData, HasAStructOfTheParameters) {
  probe::Talc format;
  format.name = "Foo";
  format.parameters = {probe::Parameter("A", "UINT8", true), probe::Parameter("B", "INT16"),
                       probe::Parameter("C", "BYTES")};
  EXPECT_EQ(DataDefinition(format),
            "\n\n /* Data for command Foo */"
            "\ntypedef struct _Foo\n{"
            "\n\tunsigned char A;"
            "\n\tunsigned char B_15_8; /* INT16 */"
            "\n\tunsigned char B_7_0;"
            "\n\tunsigned char C[1]; /* variable length */"
            "\n} Foo, *PFoo;");
}

TEST(CHeaderData, HasAnEnumerationOfTheSymbols) {
  probe::Diag format;
  format.name = "Bar";
  format.parameters = {probe::Parameter("A", "INT8")};
  format.symbols = {{"On", 1}, {"Off", 0}, {"None", -1}};
  EXPECT_EQ(DataDefinition(format),
            "\n\n /* Enum constants for command Bar */"
            "\nenum BarEnumSymbols\n{"
            "\n\tk_On = 1,"
            "\n\tk_Off = 0,"
            "\n\tk_None = -1"
            "\n};"
            "\n\n /* Data for command Bar */"
            "\ntypedef struct _Bar\n{"
            "\n\tchar A;"
            "\n} Bar, *PBar;");
}

TEST(CHeaderData, HasSymbolsWithoutParameters) {
  probe::Talc format;
  format.name = "Foo";
  format.symbols = {{"On", 1}};
  EXPECT_EQ(DataDefinition(format),
            "\n\n /* Enum constants for command Foo */"
            "\nenum FooEnumSymbols\n{"
            "\n\tk_On = 1"
            "\n};"
            "\n\n /* Data for command Foo */"
            "\n/* Command has NO DATA */");
}

TEST(CHeaderData, EndsAtAnUnknownType) {
  probe::Talc format;
  format.name = "Foo";
  format.parameters = {probe::Parameter("A", "UINT8"), probe::Parameter("B", "uint8"), probe::Parameter("C", "UINT8")};
  EXPECT_EQ(DataDefinition(format, false),
            "\n\n /* Data for command Foo */"
            "\ntypedef struct _Foo\n{"
            "\n\tunsigned char A;");
}

TEST(CHeaderData, IsNoneOfAMetaCommand) {
  MetaCommandFormat format;
  probe::Read(format, "Baz", "Start A Repeat B Stop C DataName D DataType INT8 Symbol On 1 ");
  EXPECT_EQ(DataDefinition(format, false), "");
}

struct Field {
  std::string type;
  std::string text;
};

class CHeaderField : public testing::TestWithParam<Field> {};

TEST_P(CHeaderField, MirrorsTheWire) {
  std::ostringstream stream;
  EXPECT_TRUE(probe::Parameter("P", GetParam().type).WriteCHeaderField(stream));
  EXPECT_EQ(stream.str(), GetParam().text);
}

const std::vector<Field> kFields = {
    {"INT8", "\n\tchar P;"},
    {"UINT8", "\n\tunsigned char P;"},
    {"INT16",
     "\n\tunsigned char P_15_8; /* INT16 */"
     "\n\tunsigned char P_7_0;"},
    {"UINT16",
     "\n\tunsigned char P_15_8; /* UINT16 */"
     "\n\tunsigned char P_7_0;"},
    {"INT32",
     "\n\tunsigned char P_31_24; /* INT32 */"
     "\n\tunsigned char P_23_16;"
     "\n\tunsigned char P_15_8;"
     "\n\tunsigned char P_7_0;"},
    {"UINT32",
     "\n\tunsigned char P_31_24; /* UINT32 */"
     "\n\tunsigned char P_23_16;"
     "\n\tunsigned char P_15_8;"
     "\n\tunsigned char P_7_0;"},
    {"INT64",
     "\n\tunsigned char P_63_56; /* INT64 */"
     "\n\tunsigned char P_55_48;"
     "\n\tunsigned char P_47_40;"
     "\n\tunsigned char P_39_32;"
     "\n\tunsigned char P_31_24;"
     "\n\tunsigned char P_23_16;"
     "\n\tunsigned char P_15_8;"
     "\n\tunsigned char P_7_0;"},
    {"UINT64",
     "\n\tunsigned char P_63_56; /* UINT64 */"
     "\n\tunsigned char P_55_48;"
     "\n\tunsigned char P_47_40;"
     "\n\tunsigned char P_39_32;"
     "\n\tunsigned char P_31_24;"
     "\n\tunsigned char P_23_16;"
     "\n\tunsigned char P_15_8;"
     "\n\tunsigned char P_7_0;"},
    {"BYTES", "\n\tunsigned char P[1]; /* variable length */"},
};
INSTANTIATE_TEST_SUITE_P(CHeader, CHeaderField, testing::ValuesIn(kFields));

TEST(CHeaderFields, AreNoneOfAnUnknownType) {
  for (const char* const type : {"", "int8", "INT128", "SYMBOL", "BYTES "}) {
    std::ostringstream stream;
    EXPECT_FALSE(probe::Parameter("P", type).WriteCHeaderField(stream)) << type;
    EXPECT_EQ(stream.str(), "") << type;
  }
}

TEST(CHeaderFields, AreTheSameForARequiredParameter) {
  std::ostringstream stream;
  EXPECT_TRUE(probe::Parameter("P", "INT8", true).WriteCHeaderField(stream));
  EXPECT_EQ(stream.str(), "\n\tchar P;");
}

}  // namespace
