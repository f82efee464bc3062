// The packets that talctool makes of a meta command, by hand.

#include "TalctoolFixture.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;

class TalctoolMeta : public Talctool {
 protected:
  TalctoolMeta() {
    folder_.Write("meta.tcd",
                  "Begin Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 1\nDataName TotalSize DataType "
                  "UINT32\n;\n"
                  "Part Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 2\nDataName Data DataType BYTES\n;\n"
                  "End Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 3\n;\n"
                  "Load Meta Start Begin Repeat Part Stop End\nDataName Kind DataType UINT16\nDataName Image DataType "
                  "BYTES\n;\n"
                  "Nothing Meta Start Begin Repeat Part Stop End\n;\n"
                  "Broken Meta Start Begin Repeat Part Stop Gone\n;\n");
  }
  std::string Made(const std::string& questions) const { return Output({"meta", "--tcd", "meta.tcd"}, questions); }
};

/// Sends two bytes of their own and these, which are hexadecimal text.
std::string Load(const std::string& image) {
  return R"({"name":"Load","values":[["Kind","UINT16",513],["Image","BYTES",")" + image + "\"]]}\n";
}

constexpr char kFailed[] = "{\"ok\":false}\n";
constexpr char kBad[] = "{\"error\":\"bad input\"}\n";

TEST_F(TalctoolMeta, MakesThePacketsInTheirOrder) {
  EXPECT_EQ(Made(Load("0aFf")),
            R"({"ok":true,"packets":["0b0b00088002000000000004","0b0b00088004000002010aff","0b0b000480060000"]})"
            "\n");
  EXPECT_EQ(Made(R"({"name":"Nothing","values":[]})"),
            R"({"ok":true,"packets":["0b0b00088002000000000000","0b0b000480060000"]})"
            "\n");
}

TEST_F(TalctoolMeta, CutsALongTransfer) {
  std::string image;
  for (int i = 0; i < 4998; ++i)
    image += i < 2038 ? "a1" : i < 4078 ? "a2" : "a3";
  const auto bytes = [](int count, const std::string& pair) {
    std::string text;
    for (int i = 0; i < count; ++i)
      text += pair;
    return text;
  };
  EXPECT_EQ(Made(Load(image)), R"({"ok":true,"packets":["0b0b00088002000000001388","0b0b07fc800400000201)" +
                                   bytes(2038, "a1") + R"(","0b0b07fc80040000)" + bytes(2040, "a2") +
                                   R"(","0b0b039c80040000)" + bytes(920, "a3") + "\",\"0b0b000480060000\"]}\n");
}

TEST_F(TalctoolMeta, HasNoPacketsWhereNotAllCanBeMade) {
  EXPECT_EQ(Made(R"({"name":"Load","values":[["Image","BYTES","00"]]})"), kFailed);
  EXPECT_EQ(Made(R"({"name":"Load","values":[["Kind","UINT16",1]]})"), kFailed);
  EXPECT_EQ(Made(Load("")), kFailed);
  // The cut of the image ends with a full packet, behind which nothing is left for the last one.
  EXPECT_EQ(Made(Load(std::string(2 * 4078, '0'))), kFailed);
  EXPECT_EQ(Made(R"({"name":"Broken","values":[]})"), kFailed);
}

TEST_F(TalctoolMeta, MakesNothingOfOtherCommands) {
  for (const std::string name : {"Begin", "Pong", "", "Load\\u0000", "load"})
    EXPECT_EQ(Made("{\"name\":\"" + name + R"(","values":[]})"), kFailed) << name;
}

TEST_F(TalctoolMeta, TellsOfAnException) {
  const std::string text = "{\"exception\":\"bad_variant_cast: failed conversion using variant_cast\",\"ok\":false}\n";
  EXPECT_EQ(Made(R"({"name":"Load","values":[["Kind","INT16",1],["Image","BYTES","00"]]})"), text);
  EXPECT_EQ(Made(R"({"name":"Load","values":[["Kind","UINT16",1],["Image","SYMBOL","x"]]})"), text);
}

TEST_F(TalctoolMeta, RefusesBadLinesAndGoesOn) {
  const std::string good = R"({"name":"Broken","values":[]})";
  for (const std::string bad :
       {"", "x", "{}", "[]", "null", R"({"name":"Load"})", R"({"values":[]})", R"({"name":1,"values":[]})",
        R"({"name":"Load","values":{}})", R"({"name":"Load","values":[["Kind","UINT16"]]})",
        R"({"name":"Load","values":[["Kind","UINT16",65536]]})", R"({"name":"Load","values":[["Image","BYTES","0"]]})"})
    EXPECT_EQ(Made(good + "\n" + bad + "\n" + good), std::string(kFailed) + kBad + kFailed) << bad;
}

TEST_F(TalctoolMeta, TakesNoDirection) {
  EXPECT_EQ(Made(R"({"name":"Nothing","direction":"request","values":[]})"), Made(R"({"name":"Nothing","values":[]})"));
}

TEST_F(TalctoolMeta, AnswersNothingToNoInput) {
  EXPECT_EQ(Made(""), "");
}

TEST_F(TalctoolMeta, StandsBesideCompileInTheUsage) {
  EXPECT_THAT(Output({"--help"}), HasSubstr("\n  meta "));
  EXPECT_THAT(Output({"meta", "--help"}), HasSubstr("Usage: talctool"));
}

TEST_F(TalctoolMeta, TellsTheStepsUnderTheTraceFlag) {
  const auto run = Run({"meta", "--trace", "--tcd", "meta.tcd"}, R"({"name":"Broken","values":[]})");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.standardOutput, kFailed);
  EXPECT_THAT(run.standardError, HasSubstr("\nMetaCommand ERROR - StopCommand packet compilation failed"));
}

TEST_F(TalctoolMeta, HasNoMetaCommandInTheDictionariesOfTheProgram) {
  EXPECT_EQ(Output({"meta"}, R"({"name":"VPDInfo","values":[]})"), kFailed);
}

TEST_F(TalctoolMeta, ExitsWith1WhereNoCommandIsDefined) {
  folder_.Write("empty.tcd", "");
  const auto run = Run({"meta", "--tcd", "empty.tcd"}, Load("00"));
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.standardOutput, "");
  EXPECT_THAT(run.standardError, EndsWith("\ntalctool: no command is defined\n"));
}

#if !defined(_WIN32)  // which has no shell, and no device that is always full
TEST_F(TalctoolMeta, ExitsWith1WhereItsOutputCannotBeWritten) {
  const auto run = RunInShell("echo | \"$0\" meta --tcd meta.tcd >/dev/full");
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.standardError, "talctool: cannot write to standard output\n");
}
#endif

}  // namespace
