#include "support/PageBlock.h"
#include "TalctoolFixture.h"

// `talctool caps`: what a capabilities file holds.

namespace {

using testing::HasSubstr;
using testing::StartsWith;

class TalctoolCaps : public Talctool {
 protected:
  TalctoolCaps() {
    folder_.Write("box.hwc",
                  "# by hand ;\nHardwareType Box ;\n"
                  "CmdOverrideTimeout Gain 1500 ;\n"
                  "Property Zeta INTEGER -3 ;\nProperty Alpha STRING Two_Words;\n"
                  "CommandValues Gain Level Range -300 300 ;\n"
                  "ConditionBlockBegin ;\nConditionKeyname Second ;\n"
                  "Condition Gain Level SYMBOL Quiet;\nCondition Gain Channel INTEGER 2 ;\nConditionBlockEnd ;\n"
                  "Property UIName STRING Gain ;\n"
                  "CommandValues Gain Level Symbol Loud Quiet ;\nCommandValues Blob Kind Range 1 2 ;\n"
                  "ConditionBlockBegin ;\nCondition Blob Kind INTEGER 7 ;\nConditionBlockEnd ;\n");
  }

  test_support::ProcessResult Caps(const std::string& file) {
    return Run({"caps", "--tcd", "small.tcd", "--hwc", file});
  }
};

TEST_F(TalctoolCaps, TellsEverythingInMapOrder) {
  const auto run = Caps("box.hwc");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.standardError, "");
  EXPECT_EQ(
      run.standardOutput,
      R"x({"ok":true,"type":"Box"})x"
      "\n"
      R"x({"text":"\n# Generated Talc Hardware Capabilities file ;\n\nHardwareType\t\tBox ;)x"
      R"x(\n\n# BEGIN Command Override Timeout Values (Milliseconds) ; \nCmdOverrideTimeout\tGain\t1500 ;)x"
      R"x(\n\n# END   Command Override Timeout Values (Milliseconds) ; )x"
      R"x(\n\n# *** Properties & Command Parameter Defined Ranges *** ;\n)x"
      R"x(\n\n# Condition Block Active - lasts until next condition block ;\nConditionBlockBegin ;)x"
      R"x(\nConditionBlockEnd ;\n\n# Properties ;\n\nProperty\tAlpha\tSTRING\tTwo_Words ;\nProperty\tZeta\tINTEGER\t-3 ;)x"
      R"x(\n\n# Command Values ;\n\nCommandValues\tGain\tLevel\tRange\t-300\t300 ;)x"
      R"x(\n\n# Condition Block Active - lasts until next condition block ;\nConditionBlockBegin ;)x"
      R"x(\nConditionKeyname\tSecond ;\nCondition\tGain\tChannel\tINTEGER\t2 ;\nCondition\tGain\tLevel\tSYMBOL\tQuiet ;)x"
      R"x(\nConditionBlockEnd ;\n\n# Properties ;\n\nProperty\tUIName\tSTRING\tGain ;)x"
      R"x(\n\n# Command Values ;\n\nCommandValues\tBlob\tKind\tRange\t1\t2 ;)x"
      R"x(\nCommandValues\tGain\tLevel\tSymbol\tLoud Quiet  ;)x"
      R"x(\n\n# Condition Block Active - lasts until next condition block ;\nConditionBlockBegin ;)x"
      R"x(\nCondition\tBlob\tKind\tINTEGER\t7 ;\nConditionBlockEnd ;\n\n# Properties ;\n\n\n# Command Values ;\n"})x"
      "\n"
      R"x({"blockCount":2,"defaultPropertyCount":2})x"
      "\n"
      R"x({"conditions":[["Gain","Channel","",2],["Gain","Level","Quiet",-300]],"keyname":"Second",)x"
      R"x("properties":[["UIName","STRING","Gain"]],)x"
      R"x("values":[["Blob","Kind","Range",1,2],["Gain","Level","Symbol",["Loud","Quiet"]]]})x"
      "\n"
      R"x({"conditions":[["Blob","Kind","",7]],"keyname":"","properties":[],"values":[]})x"
      "\n");
}

TEST_F(TalctoolCaps, TheTextThatItTellsReadsBackToItself) {
  const std::string first = Output({"caps", "--tcd", "small.tcd", "--hwc", "box.hwc"});
  const std::size_t begin = first.find("{\"text\":\"") + 9;
  std::string text = first.substr(begin, first.find("\"}\n", begin) - begin);
  for (const auto& [escape, character] : {std::pair{"\\n", "\n"}, std::pair{"\\t", "\t"}})
    for (std::size_t at = text.find(escape); at != std::string::npos; at = text.find(escape, at))
      text.replace(at, 2, character);
  folder_.Write("again.hwc", text);
  EXPECT_EQ(Output({"caps", "--tcd", "small.tcd", "--hwc", "again.hwc"}), first);
}

TEST_F(TalctoolCaps, AnEmptyFileHasADefaultBlockAlone) {
  folder_.Write("empty.hwc", "");
  const auto run = Caps("empty.hwc");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.standardOutput, StartsWith("{\"ok\":true,\"type\":\"\"}\n"));
  EXPECT_THAT(run.standardOutput, HasSubstr("{\"blockCount\":0,\"defaultPropertyCount\":0}\n"));
}

TEST_F(TalctoolCaps, OfAFaultyFileOnlyTheFaultIsTold) {
  folder_.Write("bad.hwc", "HardwareType Box ;\nProperty Number INTEGER 3;\n");
  const auto run = Caps("bad.hwc");
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.standardOutput, "{\"ok\":false,\"type\":null}\n");
  EXPECT_EQ(run.standardError,
            "\n\nERROR - Failed To Successfully parse Hardware Capabilities file : bad.hwc\n"
            "talctool: bad.hwc: faulty capabilities\n");
}

TEST_F(TalctoolCaps, TheDictionaryDecidesAboutConditions) {
  const auto run = Run({"caps", "--hwc", "box.hwc"});
  EXPECT_EQ(run.exitCode, 1) << "the embedded dictionary has no Gain";
  EXPECT_EQ(run.standardOutput, "{\"ok\":false,\"type\":null}\n");
}

TEST_F(TalctoolCaps, ThePagesExampleHasThePagesBlock) {
  folder_.Write("page.hwc", test_support::TextOnThePage(CAPABILITIES_PAGE, "hwc"));
  const std::string block = test_support::TextOnThePage(CAPABILITIES_PAGE, "json");
  ASSERT_NE(block, "");
  EXPECT_THAT(Output({"caps", "--hwc", "page.hwc"}), testing::EndsWith("}\n" + block));
}

TEST_F(TalctoolCaps, BytesAreTheCharactersOfTheSameNumber) {
  folder_.Write("bytes.hwc", "HardwareType B\xE9 ;\n");
  EXPECT_THAT(Caps("bytes.hwc").standardOutput, StartsWith("{\"ok\":true,\"type\":\"B\\u00e9\"}\n"));
}

TEST_F(TalctoolCaps, AFileThatCannotBeReadIsBadUsage) {
  const auto absent = Caps("absent.hwc");
  EXPECT_EQ(absent.exitCode, 2);
  EXPECT_EQ(absent.standardOutput, "");
  EXPECT_THAT(absent.standardError, IsOneLine());
  const auto none = Run({"caps", "--tcd", "small.tcd"});
  EXPECT_EQ(none.exitCode, 2);
  EXPECT_THAT(none.standardError, HasSubstr("--hwc is required"));
}

}  // namespace
