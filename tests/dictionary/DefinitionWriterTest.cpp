#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "DictionaryFixture.h"
#include "FormatProbe.h"

namespace {

const std::string kBanner = "\n# TalcPath Dictionary generated ;\n";

class DefinitionWriterTest : public DictionaryTest {
 protected:
  static std::string WrittenDocumentation(const std::string& documentation) {
    const std::string head = kBanner + "Foo\nDiag\n\nDiagOpcode\t0\n\n;";
    probe::Diag format;
    format.name = "Foo";
    format.documentation = documentation;
    const std::string text = probe::Written(format);
    EXPECT_TRUE(text.starts_with(head)) << text;
    return text.substr(std::min(text.size(), head.size()));
  }
};

TEST_F(DefinitionWriterTest, WritesAnOrdinaryCommand) {
  probe::Talc talc;
  talc.name = "Foo";
  talc.commandType = {.major = TalcPathPrivate::CommandType::Major::SYSTEM, .minor = 5, .function = 26};
  talc.parameters = {probe::Parameter("Board", "UINT16", true), probe::Parameter("Text", "BYTES")};
  talc.symbols = {{"On", 1}, {"Low", -2147483647 - 1}};
  EXPECT_EQ(probe::Written(talc), kBanner +
                                      "Foo\nTalc\n\nCommandTypeMajor\tSYSTEM\nCommandTypeMinor\t5\nFunction\t\t\t26\n"
                                      "\nDataName\tBoard\tRD\nDataType\tUINT16\nDataName\tText\nDataType\tBYTES"
                                      "\nSymbol\tOn\t1\nSymbol\tLow\t-2147483648\n;");
}

TEST_F(DefinitionWriterTest, WritesADiagnosticCommand) {
  probe::Diag format;
  format.name = "Bar";
  format.diagOpcode = 132;
  format.parameters = {probe::Parameter("A", "INT8")};
  format.symbols = {{"On", 1}};
  EXPECT_EQ(probe::Written(format),
            kBanner + "Bar\nDiag\n\nDiagOpcode\t132\n\nDataName\tA\nDataType\tINT8\nSymbol\tOn\t1\n;");
}

TEST_F(DefinitionWriterTest, WritesAMetaCommand) {
  TalcPathPrivate::MetaCommandFormat format;
  probe::Read(format, "Baz", "Start A Repeat B Stop C DataName D RD DataType BYTES Symbol On 1 ");
  EXPECT_EQ(probe::Written(format), kBanner +
                                        "Baz\nMeta\n\nStart\tA\nRepeat\tB\nStop\tC\n"
                                        "\nDataName\tD\tRD\nDataType\tBYTES\nSymbol\tOn\t1\n;");
}

TEST_F(DefinitionWriterTest, WritesACommandThatWasNeverRead) {
  EXPECT_EQ(probe::Written(probe::Talc()),
            kBanner + "\nTalc\n\nCommandTypeMajor\tDIAGNOSTIC\nCommandTypeMinor\t-1\nFunction\t\t\t-1\n\n;");
  EXPECT_EQ(probe::Written(TalcPathPrivate::MetaCommandFormat()), kBanner + "\nMeta\n\nStart\t\nRepeat\t\nStop\t\n\n;");
}

TEST_F(DefinitionWriterTest, WritesEachMajorType) {
  const std::vector<std::string> words = {"VIDEO", "AUDIO", "SYSTEM", "DIAGNOSTIC", "INVALID"};
  for (std::size_t i = 0; i < words.size(); ++i) {
    probe::Talc format;
    format.commandType.major = static_cast<TalcPathPrivate::CommandType::Major>(i);
    std::ostringstream stream;
    format.WriteCommandTypeBlock(stream);
    EXPECT_EQ(stream.str(), "\nTalc\n\nCommandTypeMajor\t" + words[i] + "\nCommandTypeMinor\t-1\nFunction\t\t\t-1\n");
  }
}

TEST_F(DefinitionWriterTest, WritesDecimalNumbersIntoAnyStream) {
  probe::Diag format;
  format.diagOpcode = 200;
  format.symbols = {{"A", 255}};
  std::ostringstream stream;
  stream << std::hex << std::showbase;
  format.WriteDefinition(stream);
  EXPECT_EQ(stream.str(), kBanner + "\nDiag\n\nDiagOpcode\t200\n\nSymbol\tA\t255\n;");
}

struct Documentation {
  std::string label;
  std::string text;
  std::string written;
};

class DocumentationWriter : public DefinitionWriterTest, public testing::WithParamInterface<Documentation> {};

TEST_P(DocumentationWriter, WritesWords) {
  EXPECT_EQ(WrittenDocumentation(GetParam().text), GetParam().written);
}

const std::string kDocumentationHead = "\n\nDOCUMENTATION\tFoo\n";
const std::string kTen = "1 2 3 4 5 6 7 8 9 10 ";

const std::vector<Documentation> kDocumentations = {
    {"NoneAtAll", "", ""},
    {"AllWordsWithABlankBehindThem", "one two three ", kDocumentationHead + "one two three \n;"},
    // The last word is lost where nothing stands behind it. It is meant: the texts in use end so.
    {"NotTheLastWordAtTheVeryEnd", "one two three", kDocumentationHead + "one two \n;"},
    {"NothingOfASingleWord", "one", kDocumentationHead + "\n;"},
    {"ASingleWordBeforeALineEnd", "one\n", kDocumentationHead + "one \n;"},
    {"NothingOfWhiteSpace", " \n\t ", kDocumentationHead + "\n;"},
    {"OneBlankForAnyWhiteSpace", "\r\n one\t\ttwo\v\fthree\r\n", kDocumentationHead + "one two three \n;"},
    {"NineWordsOnALine", "1 2 3 4 5 6 7 8 9 ", kDocumentationHead + "1 2 3 4 5 6 7 8 9 \n;"},
    {"ALineEndBehindTheTenthWord", kTen, kDocumentationHead + kTen + "\n\n;"},
    {"NineOfTenWords", "1 2 3 4 5 6 7 8 9 10", kDocumentationHead + "1 2 3 4 5 6 7 8 9 \n;"},
    {"TenOfElevenWords", kTen + "11", kDocumentationHead + kTen + "\n\n;"},
    {"ElevenWords", kTen + "11 ", kDocumentationHead + kTen + "\n11 \n;"},
    {"TwentyFiveWords", kTen + kTen + "a b c d e ", kDocumentationHead + kTen + "\n" + kTen + "\na b c d e \n;"},
    {"WordsOfAnyBytes", "\xE4\xF6 # DataName ", kDocumentationHead + "\xE4\xF6 # DataName \n;"},
};
INSTANTIATE_TEST_SUITE_P(DefinitionWriter, DocumentationWriter, testing::ValuesIn(kDocumentations),
                         probe::LabelOf<Documentation>);

TEST_F(DefinitionWriterTest, WritesWhatIsReadBackTheSame) {
  const std::string text =
      "Foo Talc CommandTypeMajor DIAGNOSTIC CommandTypeMinor 63 Function 127 DataName a RD DataType INT8 "
      "DataName b RD DataType UINT8 DataName c DataType INT16 DataName d DataType UINT16 DataName e DataType INT32 "
      "DataName f DataType UINT32 DataName g DataType INT64 DataName h DataType UINT64 DataName i DataType BYTES "
      "Symbol A -2147483648 Symbol B 2147483647 Symbol C 0 ;"
      "None Talc CommandTypeMajor VIDEO CommandTypeMinor 0 Function 0 ;"
      "Bar Diag DiagOpcode 255 DataName \xFF-\x01 RD DataType BYTES Symbol Only -1 ;"
      "Baz Meta Start A Repeat B Stop C DataName D DataType BYTES ;";
  ASSERT_TRUE(Parse(text));
  std::string written = "# TalcPath Dictionary Generated TCD File ; \n";
  std::vector<std::string> summaries;
  for (const auto& [name, format] : *TalcPathPrivate::DefinedCommands()) {
    summaries.push_back(probe::Summary(*format));
    written += probe::Written(*format);
  }
  ASSERT_EQ(summaries.size(), 4u);
  const auto types = *TalcPathPrivate::CommandTypes();
  const auto opcodes = *TalcPathPrivate::DiagOpcodes();

  TearDown();
  SetUp();
  ASSERT_TRUE(Parse(written));
  std::vector<std::string> readBack;
  std::string writtenAgain = "# TalcPath Dictionary Generated TCD File ; \n";
  for (const auto& [name, format] : *TalcPathPrivate::DefinedCommands()) {
    readBack.push_back(probe::Summary(*format));
    writtenAgain += probe::Written(*format);
  }
  EXPECT_EQ(readBack, summaries);
  EXPECT_EQ(*TalcPathPrivate::CommandTypes(), types);
  EXPECT_EQ(*TalcPathPrivate::DiagOpcodes(), opcodes);
  EXPECT_EQ(writtenAgain, written);
}

TEST_F(DefinitionWriterTest, WritesADocumentationThatTheReaderPassesOver) {
  probe::Diag format;
  format.name = "Foo";
  format.diagOpcode = 5;
  format.parameters = {probe::Parameter("A", "INT8")};
  format.documentation = "Foo Diag DiagOpcode 6 and more words than fit on one line ";
  EXPECT_TRUE(Parse(probe::Written(format) + "\nBar Diag DiagOpcode 6 ;"));
  EXPECT_EQ(probe::Summary(*Find("Foo")), "Foo: Diag 5 {A INT8} {}");
  EXPECT_NE(Find("Bar"), nullptr);
}

TEST_F(DefinitionWriterTest, KeepsALastParameterWithoutSymbolsWhenReadBack) {
  probe::Diag format;
  format.name = "Foo";
  format.parameters = {probe::Parameter("A", "INT8")};
  EXPECT_TRUE(Parse(probe::Written(format)));  // its line ends before the ";"
  EXPECT_EQ(probe::ParametersOf(*Find("Foo")), "A INT8");
}

}  // namespace
