// How a dictionary is cut into blocks, and what ends it.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "DictionaryFixture.h"
#include "FormatProbe.h"
#include "support/TempFolder.h"

namespace {

using std::string_literals::operator""s;

const std::string kA = "A Diag DiagOpcode 1 ;";
const std::string kB = "B Diag DiagOpcode 2 ;";
const std::string kFinishedLog =
    "\nParsing Talc Command Definition File : test.tcd\n"
    "\n\nFinished Parsing Talc Command Definition File : test.tcd\n";

class TcdBlocksTest : public DictionaryTest {
 protected:
  /// The names of all defined commands.
  static std::string Names() {
    std::string names;
    for (const auto& [name, format] : *TalcPathPrivate::DefinedCommands())
      names += (names.empty() ? "" : " ") + name;
    return names;
  }
};

struct Dictionary {
  std::string label;
  std::string text;
  std::string names;
};

class TcdBlocks : public TcdBlocksTest, public testing::WithParamInterface<Dictionary> {};

TEST_P(TcdBlocks, AreReadWithoutAWord) {
  EXPECT_TRUE(Parse(GetParam().text));
  EXPECT_EQ(Names(), GetParam().names);
  EXPECT_EQ(log(), "");
}

/// A definition whose block is `length` characters long.
std::string DefinitionOfLength(const std::string& name, int opcode, std::size_t length) {
  const std::string text = name + " Diag DiagOpcode " + std::to_string(opcode);
  return text + std::string(length - text.size(), ' ') + ";";
}

std::string CommentOfLength(std::size_t length) {
  return "#" + std::string(length - 1, 'x') + ";";
}

std::string DocumentationOfLength(std::size_t length) {
  return "DOCUMENTATION" + std::string(length - 13, ' ') + ";";
}

const std::vector<Dictionary> kDictionaries = {
    {"Nothing", "", ""},
    {"NoBlock", "no block at all", ""},
    {"Two", kA + kB, "A B"},
    {"TwoOnLinesOfTheirOwn", kA + "\r\n" + kB + "\r\n", "A B"},
    {"OnlyComments", "# one ;\n# two\n ;#;", ""},
    {"TheEndMarkAsTheVeryLast", kA, "A"},

    // A comment reaches to the next ";", whatever lines there are between.
    {"AComment", "# comment ;" + kA, "A"},
    {"ACommentOfOneCharacter", "#;" + kA, "A"},
    {"ACommentWithoutABlank", "#comment;" + kA, "A"},
    {"ACommentBehindWhiteSpace", "\n\t # comment ;" + kA, "A"},
    {"ACommentOverLines", "# comment\n" + kA + kB, "B"},
    {"ACommentBetween", kA + "\r\n# comment ;\r\n" + kB, "A B"},
    {"ACommentOfManyMarks", "### ### ;" + kA, "A"},
    {"ACommentThatHoldsAnything", "# \0\xFF Foo Talc CommandTypeMajor ;"s + kA, "A"},

    {"ADocumentation", "DOCUMENTATION A What it is for. ;" + kA, "A"},
    {"ADocumentationOfNothing", "DOCUMENTATION;" + kA, "A"},
    {"ADocumentationOverLines", kA + "\n\nDOCUMENTATION\tA\nWords \n" + kB + kB, "A B"},
    {"ADocumentationLikeADefinition", "DOCUMENTATION Diag DiagOpcode 1 ;" + kA, "A"},
    {"ADocumentationTwice", "DOCUMENTATION A one ; DOCUMENTATION A two ;" + kA, "A"},

    // A block of white space ends the dictionary as its end does.
    {"ABlankBlock", kA + ";" + kB, "A"},
    {"ABlankBlockOfWhiteSpace", kA + " \t\r\n\v\f ;" + kB, "A"},
    {"ABlankBlockFirst", ";" + kA, ""},
    {"ABlankBlockBehindAComment", "# comment ;;" + kA, ""},
    {"ABlankBlockBeforeNonsense", ";nonsense;", ""},
    {"OnlyMarks", ";;;;;;", ""},
    {"AZeroByteInAComment", "#\0;"s + kA, "A"},

    // What stands behind the last ";" is no block.
    {"TextBehind", kA + "nonsense", "A"},
    {"ADefinitionBehind", kA + "B Diag DiagOpcode 2 ", "A"},
    {"AHugeTextBehind", kA + std::string(100000, 'x'), "A"},
    {"BytesBehind", kA + "\r\n\0\xFF\xFE\x01"s, "A"},

    {"LongestDefinition", DefinitionOfLength("A", 1, 8190) + kB, "A B"},
    {"TooLongDefinition", DefinitionOfLength("A", 1, 8191) + kB, ""},
    {"TooLongDefinitionBehind", kB + DefinitionOfLength("A", 1, 8191), "B"},
    {"TooLongByOneMore", DefinitionOfLength("A", 1, 8192) + kB, ""},
    {"LongestWithItsLineEnds", "\r\n" + DefinitionOfLength("A", 1, 8188) + kB, "A B"},
    {"TooLongWithItsLineEnds", "\r\n" + DefinitionOfLength("A", 1, 8189) + kB, ""},
    {"LongestComment", CommentOfLength(8190) + kA, "A"},
    {"TooLongComment", CommentOfLength(8191) + kA, ""},
    {"LongestDocumentation", DocumentationOfLength(8190) + kA, "A"},
    {"TooLongDocumentation", kB + DocumentationOfLength(8191) + kA, "B"},
    {"LongestBlankBlock", std::string(8190, ' ') + ";" + kA, ""},
    {"ManyLongestBlocks", CommentOfLength(8190) + DefinitionOfLength("A", 1, 8190) + DocumentationOfLength(8190) + kB,
     "A B"},
    {"AHugeBlock", kA + std::string(5'000'000, 'x') + ";" + kB, "A"},
    {"AHugeBlockOfWords", kA + "B Diag DiagOpcode 2" + std::string(1'000'000, '\n') + ";", "A"},
    {"AHugeTextWithoutAnEnd", std::string(5'000'000, '\0'), ""},
    {"TooLongAtTheEndOfTheText", kA + std::string(8191, 'x'), "A"},
};
INSTANTIATE_TEST_SUITE_P(Tcd, TcdBlocks, testing::ValuesIn(kDictionaries), probe::LabelOf<Dictionary>);

TEST_F(TcdBlocksTest, ReadsADictionaryInItsCanonicalForm) {
  EXPECT_TRUE(
      Parse("# TalcPath Dictionary Generated TCD File ; \r\n"
            "\r\n# TalcPath Dictionary generated ;\r\nA\r\nDiag\r\n\r\nDiagOpcode\t1\r\n\r\n"
            "DataName\tX\tRD\r\nDataType\tUINT8\r\nSymbol\tOn\t1\r\n;\r\n\r\n"
            "DOCUMENTATION\tA\r\nSwitches it \r\n;"
            "\r\n# TalcPath Dictionary generated ;\r\nB\r\nDiag\r\n\r\nDiagOpcode\t2\r\n\r\n;\r\n"));
  EXPECT_EQ(Names(), "A B");
  EXPECT_EQ(probe::Summary(*Find("A")), "A: Diag 1 {X UINT8 RD} {On 1}");
}

TEST_F(TcdBlocksTest, KeepsNoDocumentation) {
  EXPECT_TRUE(Parse(kA + "DOCUMENTATION A Some words about it. ;"));
  EXPECT_EQ(probe::Written(*Find("A")), "\n# TalcPath Dictionary generated ;\nA\nDiag\n\nDiagOpcode\t1\n\n;");
}

struct EarlyEnd {
  std::string label;
  std::string text;
};

class TcdBlocksEndEarly : public TcdBlocksTest, public testing::WithParamInterface<EarlyEnd> {};

TEST_P(TcdBlocksEndEarly, AsIfFinished) {
  SetVerbose(true);
  EXPECT_TRUE(Parse(GetParam().text));
  EXPECT_EQ(log(), kFinishedLog);
  EXPECT_EQ(Names(), "");
}

INSTANTIATE_TEST_SUITE_P(Tcd, TcdBlocksEndEarly,
                         testing::Values(EarlyEnd{"Nothing", ""}, EarlyEnd{"ABlankBlock", ";" + kA},
                                         EarlyEnd{"ATooLongBlock", CommentOfLength(8191) + kA},
                                         EarlyEnd{"NoBlock", "nonsense"}, EarlyEnd{"AComment", "# comment ;"}),
                         probe::LabelOf<EarlyEnd>);

std::string Rest(std::istream& stream) {
  stream.clear();
  return {std::istreambuf_iterator<char>(stream), {}};
}

TEST_F(TcdBlocksTest, LeavesTheStreamBehindTheFaultyDefinition) {
  std::istringstream stream(kA + "nonsense ;" + kB);
  EXPECT_FALSE(TalcPathPrivate::ParseTcdStream(stream, "test.tcd"));
  EXPECT_EQ(Rest(stream), kB);
}

TEST_F(TcdBlocksTest, LeavesTheStreamBehindTheBlankBlock) {
  std::istringstream stream(kA + " ;" + kB);
  EXPECT_TRUE(TalcPathPrivate::ParseTcdStream(stream, "test.tcd"));
  EXPECT_EQ(Rest(stream), kB);
}

TEST_F(TcdBlocksTest, TakesAFileThatIsNotThereForAnEmptyOne) {
  const test_support::TempFolder folder;
  std::ifstream stream(folder.File("missing.tcd"));
  EXPECT_TRUE(TalcPathPrivate::ParseTcdStream(stream, "missing.tcd"));
  EXPECT_EQ(Names(), "");
  EXPECT_EQ(log(), "");
}

TEST_F(TcdBlocksTest, ReadsAFile) {
  const test_support::TempFolder folder;
  std::ifstream stream(folder.Write("two.tcd", kA + "\r\n" + kB));
  EXPECT_TRUE(TalcPathPrivate::ParseTcdStream(stream, "two.tcd"));
  EXPECT_EQ(Names(), "A B");
}

}  // namespace
