// The C header that talctool writes.

#include "TalctoolFixture.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class TalctoolHeader : public Talctool {
 protected:
  /// Compiles a source with every warning an error.
  void Compiles(const std::string& compiler, const std::vector<std::string>& language,
                const std::string& source) const {
    std::vector<std::string> arguments = language;
    for (const char* option : {"-Wall", "-Wextra", "-Werror", "-pedantic", "-fsyntax-only"})
      arguments.emplace_back(option);
    arguments.push_back(source);
    const auto run = test_support::RunProcess(compiler, arguments, {.workingDirectory = folder_.Path().string()});
    EXPECT_EQ(run.exitCode, 0) << testing::PrintToString(arguments) << "\n" << run.standardError;
    EXPECT_EQ(run.standardError, "");
  }
  void CompilesAsCAndCpp(const std::string& source) const {
    Compiles(TALCTOOL_C_COMPILER, {"-x", "c", "-std=c99"}, source);
    Compiles(TALCTOOL_CXX_COMPILER, {"-x", "c++"}, source);
  }
};

TEST_F(TalctoolHeader, HoldsCodesSymbolsAndDataOfEveryCommandInNameOrder) {
  const std::string header = OfSmall("header");
  EXPECT_THAT(header, StartsWith("/* "));
  const auto guard = header.find("#ifndef TALC_COMMANDS_H\n#define TALC_COMMANDS_H\n");
  ASSERT_NE(guard, std::string::npos);
  EXPECT_EQ(header.substr(guard + 48),
            "\n\n /* Codes of command Blob */"
            "\nenum BlobCommandCodes\n{\n\tkBoB_SetBlob = 254,\n\tkBoB_GetBlob = 255\n};"
            "\n\n /* Data for command Blob */"
            "\ntypedef struct _Blob\n{\n\tchar Kind;\n\tunsigned char Data[1]; /* variable length */\n} Blob, *PBlob;"
            "\n\n /* Codes of command Gain */"
            "\nenum GainCommandCodes\n{\n\tkBoB_SetGain = 10,\n\tkBoB_GetGain = 11\n};"
            "\n\n /* Enum constants for command Gain */"
            "\nenum GainEnumSymbols\n{\n\tk_Loud = 300,\n\tk_Quiet = -300\n};"
            "\n\n /* Data for command Gain */"
            "\ntypedef struct _Gain\n{\n\tunsigned char Channel;\n\tunsigned char Level_15_8; /* INT16 */"
            "\n\tunsigned char Level_7_0;\n} Gain, *PGain;"
            "\n\n /* Codes of command Ping */"
            "\nenum PingCommandCodes\n{\n\tkBoB_SetPing = 0,\n\tkBoB_GetPing = 1\n};"
            "\n\n /* Data for command Ping */\n/* Command has NO DATA */"
            "\n\n /* Codes of command Probe */"
            "\nenum ProbeCommandCodes\n{\n\tkDiag_Probe = 200\n};"
            "\n\n /* Data for command Probe */"
            "\ntypedef struct _Probe\n{\n\tunsigned char Wide_63_56; /* UINT64 */\n\tunsigned char Wide_55_48;"
            "\n\tunsigned char Wide_47_40;\n\tunsigned char Wide_39_32;\n\tunsigned char Wide_31_24;"
            "\n\tunsigned char Wide_23_16;\n\tunsigned char Wide_15_8;\n\tunsigned char Wide_7_0;\n} Probe, *PProbe;"
            "\n\n#endif\n");
}

TEST_F(TalctoolHeader, PassesOverMetaCommands) {
  EXPECT_THAT(OfSmall("header"), Not(HasSubstr("Load")));
  folder_.Write("meta.tcd", "Load Meta Start A Repeat B Stop C ;");
  EXPECT_THAT(Output({"header", "--tcd", "meta.tcd"}),
              AllOf(HasSubstr("#define TALC_COMMANDS_H"), Not(HasSubstr("Load")), EndsWith("\n#endif\n")));
}

TEST_F(TalctoolHeader, CompilesWithWarningsAsErrors) {
  folder_.Write("small.h", OfSmall("header"));
  folder_.Write("embedded.h", Output({"header"}));
  // ISO C forbids a source without a declaration, which is no fault of the header.
  for (const std::string header : {"small.h", "embedded.h"}) {
    folder_.Write("use.c", "#include \"" + header + "\"\nint used;\n");
    CompilesAsCAndCpp("use.c");
  }
}

TEST_F(TalctoolHeader, CanBeIncludedTwice) {
  folder_.Write("embedded.h", Output({"header"}));
  folder_.Write("use.c", "#include \"embedded.h\"\n#include \"embedded.h\"\nint used;\n");
  CompilesAsCAndCpp("use.c");
}

TEST_F(TalctoolHeader, LaysTheDataOutAsThePacketDoes) {
  folder_.Write("all.tcd",
                "All Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 1\n"
                "DataName A DataType INT8\nDataName B DataType UINT8\nDataName C DataType INT16\n"
                "DataName D DataType UINT16\nDataName E DataType INT32\nDataName F DataType UINT32\n"
                "DataName G DataType INT64\nDataName H DataType UINT64\nDataName I DataType BYTES\n"
                "Symbol Lowest -2147483648\nSymbol Highest 2147483647\n;");
  folder_.Write("all.h", Output({"header", "--tcd", "all.tcd"}));
  // An array of a negative size stops the compiler where a fact does not hold.
  folder_.Write("use.c",
                "#include <stddef.h>\n#include \"all.h\"\n"
                "#define HOLDS(name, fact) extern char name[(fact) ? 1 : -1]\n"
                "HOLDS(size, sizeof(All) == 31);\n"
                "HOLDS(e, offsetof(All, E_31_24) == 6);\n"
                "HOLDS(h, offsetof(All, H_7_0) == 29);\n"
                "HOLDS(i, offsetof(All, I) == 30);\n"
                "HOLDS(code, kBoB_GetAll == 3);\n"
                "HOLDS(symbols, k_Lowest == -2147483647 - 1 && k_Highest == 2147483647);\n");
  CompilesAsCAndCpp("use.c");
}

}  // namespace
