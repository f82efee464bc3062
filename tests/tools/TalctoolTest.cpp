// What all calls of talctool have in common: the command line, the dictionaries that it names, the library's log.

#include <filesystem>

#include "support/FolderFault.h"
#include "TalctoolFixture.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* kCalls[] = {"check", "validate", "write", "header", "dump", "compile", "decompile", "text"};

/// A dictionary whose second definition is faulty, so that the third is not read.
constexpr char kHalfGood[] =
    "Good Talc CommandTypeMajor VIDEO CommandTypeMinor 1 Function 1\n;\n"
    "Bad Diag DiagOpcode 256\n;\n"
    "Lost Talc CommandTypeMajor VIDEO CommandTypeMinor 1 Function 2\n;\n";

TEST_F(Talctool, TellsItsUsageAndVersion) {
  std::vector<std::vector<std::string>> helps = {{"--help"}, {"-h"}};
  for (const char* call : kCalls)
    helps.push_back({call, "--help"});
  for (const auto& arguments : helps) {
    const std::string help = Output(arguments);
    EXPECT_THAT(help, HasSubstr("Usage: talctool")) << testing::PrintToString(arguments);
  }
  EXPECT_EQ(Output({"--version"}), "talctool " PROJECT_VERSION "\n");
}

TEST_F(Talctool, NamesEveryCallInItsUsage) {
  const std::string help = Output({"--help"});
  for (const char* call : kCalls)
    EXPECT_THAT(help, HasSubstr("\n  " + std::string(call) + " "));
}

TEST_F(Talctool, ExitsWith2AndALineOnBadUsage) {
  std::filesystem::create_directory(folder_.Path() / "folder");
  const std::vector<std::vector<std::string>> badUsages = {
      {},
      {"bogus"},
      {"--bogus"},
      {"--tcd", "small.tcd"},
      {"--verbose"},
      {"check", "small.tcd"},
      {"check", "--bogus"},
      {"check", "validate"},
      {"check", "check"},
      {"check", "--tcd"},
      {"--tcd", "check"},
      {"check", "--verbose=maybe"},
      {"check", "--tcd", ""},
      {"check", "--tcd", "absent.tcd"},
      {"check", "--tcd", "folder"},
      {"check", "--tcd", "small.tcd", "absent.tcd"},
      {"check", "--tcd", "small.tcd", "--tcd", "absent.tcd"},
      {"compile", "--tcd", "absent.tcd"},
      {"crc"},
      {"crc", "add"},
      {"crc", "check", "absent.tcd"},
      {"caps"},
      {"caps", "--hwc", "absent.hwc"},
  };
  for (const auto& arguments : badUsages) {
    const auto run = Run(arguments);
    EXPECT_EQ(run.exitCode, 2) << testing::PrintToString(arguments);
    EXPECT_EQ(run.standardOutput, "") << testing::PrintToString(arguments);
    EXPECT_THAT(run.standardError, AllOf(StartsWith("talctool: "), IsOneLine()));
  }
}

TEST_F(Talctool, NamesTheFileThatItCannotRead) {
  std::filesystem::create_directory(folder_.Path() / "folder");
  EXPECT_EQ(Run({"check", "--tcd", "small.tcd", "absent.tcd"}).standardError,
            "talctool: cannot read absent.tcd: No such file or directory\n");
  EXPECT_EQ(Run({"check", "--tcd", "folder"}).standardError,
            "talctool: cannot read folder: " + test_support::FolderFault() + "\n");
}

TEST_F(Talctool, ReadsNoDictionaryBeforeAllFilesAreThere) {
  folder_.Write("bad.tcd", "Bad Diag DiagOpcode 256\n;");
  const auto run = Run({"check", "--verbose", "--tcd", "bad.tcd", "absent.tcd"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.standardError, "talctool: cannot read absent.tcd: No such file or directory\n");
}

TEST_F(Talctool, TakesItsOptionsBeforeAndBehindTheCall) {
  folder_.Write("one.tcd", "One Diag DiagOpcode 1\n;");
  folder_.Write("two.tcd", "Two Diag DiagOpcode 2\n;");
  folder_.Write("three.tcd", "Three Diag DiagOpcode 3\n;");
  const std::string expected =
      "{\"errors\":[],\"name\":\"One\"}\n"
      "{\"errors\":[],\"name\":\"Three\"}\n"
      "{\"errors\":[],\"name\":\"Two\"}\n";
  const std::vector<std::vector<std::string>> forms = {
      {"validate", "--tcd", "one.tcd", "two.tcd", "three.tcd"},
      {"--tcd", "one.tcd", "two.tcd", "three.tcd", "validate"},
      {"--tcd", "one.tcd", "validate", "--tcd", "two.tcd", "three.tcd"},
      {"validate", "--tcd=one.tcd", "--tcd=two.tcd", "--tcd", "three.tcd"},
  };
  for (const auto& arguments : forms)
    EXPECT_EQ(Output(arguments), expected) << testing::PrintToString(arguments);

  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"--verbose", "validate"},
                                                    {"validate", "--verbose"},
                                                    {"validate", "--trace"},
                                                    {"--trace", "validate", "--verbose"},
                                                    {"--verbose", "--verbose", "validate"}}) {
    const auto run = Run(arguments);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.standardError, HasSubstr("\n<-> Initializing TalcPath...\n")) << testing::PrintToString(arguments);
  }
}

TEST_F(Talctool, ReadsFilesInTheirOrderIntoOneSetOfTables) {
  folder_.Write("first.tcd", "Same Diag DiagOpcode 1\n;");
  folder_.Write("second.tcd", "Same Diag DiagOpcode 2\n;");
  const auto run = Run({"check", "--tcd", "second.tcd", "first.tcd"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.standardOutput,
              StartsWith("{\"file\":\"second.tcd\",\"ok\":true}\n{\"file\":\"first.tcd\",\"ok\":false}\n"));
  EXPECT_THAT(run.standardOutput, HasSubstr("\"opcode\":2"));
}

TEST_F(Talctool, FindsNoDictionaryInTheFolderBesideTheFilesThatAreNamed) {
  folder_.Write("other.tcd", "Other Diag DiagOpcode 1\n;");
  EXPECT_THAT(OfSmall("validate"), Not(HasSubstr("Other")));
  EXPECT_THAT(Output({"validate"}), Not(HasSubstr("\"Other\"")));
}

TEST_F(Talctool, WorksOnWhatAFaultyFileDefinedAndExitsWith1) {
  folder_.Write("half.tcd", kHalfGood);
  folder_.Write("next.tcd", "Next Diag DiagOpcode 7\n;");
  for (const char* call : kCalls) {
    const auto run = Run({call, "--tcd", "half.tcd", "next.tcd"});
    EXPECT_EQ(run.exitCode, 1) << call;
    EXPECT_THAT(run.standardError, EndsWith("\ntalctool: faulty dictionary: half.tcd\n")) << call;
  }
  EXPECT_EQ(Run({"validate", "--tcd", "half.tcd", "next.tcd"}).standardOutput,
            "{\"errors\":[],\"name\":\"Good\"}\n{\"errors\":[],\"name\":\"Next\"}\n");
  EXPECT_EQ(Run({"compile", "--tcd", "half.tcd", "next.tcd"}, R"({"name":"Good","direction":"send","values":[]})"
                                                              "\n"
                                                              R"({"name":"Lost","direction":"send","values":[]})")
                .standardOutput,
            "{\"ok\":true,\"packet\":\"0b0b000401020000\"}\n"
            "{\"ok\":false,\"status\":\"kTPCommandFormatNotFound\"}\n");
}

TEST_F(Talctool, LogsUnderTheFilesBaseName) {
  folder_.Write("deep/half.tcd", kHalfGood);
  const auto run = Run({"validate", "--tcd", "deep/half.tcd"});
  EXPECT_EQ(run.standardError,
            "\n\nERROR Failed to read CommandType Block - Command Name: Bad"
            "\n\nERROR - Failed To Successfully parse Talc Command Definition file : half.tcd"
            "\ntalctool: faulty dictionary: deep/half.tcd\n");
}

TEST_F(Talctool, TellsMoreOfTheReadingUnderTheVerboseFlag) {
  folder_.Write("deep/one.tcd", "One Diag DiagOpcode 1\n;");
  for (const char* option : {"--verbose", "--trace"}) {
    const auto run = Run({"validate", option, "--tcd", "deep/one.tcd"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.standardOutput, "{\"errors\":[],\"name\":\"One\"}\n");
    EXPECT_THAT(run.standardError, StartsWith("\nParsing Talc Command Definition File : one.tcd\n"));
    EXPECT_THAT(run.standardError, HasSubstr("\n\nFinished Parsing Talc Command Definition File : one.tcd\n"));
    EXPECT_THAT(run.standardError, EndsWith("\n<->Finished initializing TalcPath - no errors.\n"));
  }
}

TEST_F(Talctool, TellsThePacketsStepsUnderTheTraceFlagAlone) {
  const std::string question = R"({"name":"Ping","direction":"send","values":[]})";
  constexpr char kStep[] = "\nBEGIN - Bytecode Compilation ";
  const auto verbose = Run({"compile", "--verbose", "--tcd", "small.tcd"}, question);
  const auto trace = Run({"compile", "--trace", "--tcd", "small.tcd"}, question);
  EXPECT_THAT(verbose.standardError, Not(HasSubstr(kStep)));
  EXPECT_THAT(trace.standardError, HasSubstr(kStep));
  EXPECT_EQ(trace.standardOutput, verbose.standardOutput);
}

TEST_F(Talctool, ExitsWith1WhereNoCommandIsDefined) {
  folder_.Write("empty.tcd", "");
  folder_.Write("comment.tcd", "# nothing ;\n");
  for (const char* call : kCalls) {
    const auto run = Run({call, "--tcd", "empty.tcd", "comment.tcd"}, "{}\n");
    EXPECT_EQ(run.exitCode, 1) << call;
    EXPECT_THAT(run.standardError, EndsWith("\ntalctool: no command is defined\n")) << call;
    EXPECT_EQ(run.standardOutput, std::string(call) != "check" ? ""
                                                               : "{\"file\":\"empty.tcd\",\"ok\":true}\n"
                                                                 "{\"file\":\"comment.tcd\",\"ok\":true}\n");
  }
}

#if !defined(_WIN32)  // which has no shell, and no device that is always full
TEST_F(Talctool, ExitsWith1WhereItsOutputCannotBeWritten) {
  for (const std::string call : {"check", "validate", "write", "header", "dump"}) {
    const auto run = RunInShell("exec \"$0\" " + call + " >/dev/full");
    EXPECT_EQ(run.exitCode, 1) << call;
    EXPECT_EQ(run.standardError, "talctool: cannot write to standard output\n");
  }
  for (const std::string call : {"compile", "decompile", "text"}) {
    const auto run = RunInShell("echo | \"$0\" " + call + " >/dev/full");
    EXPECT_EQ(run.exitCode, 1) << call;
    EXPECT_EQ(run.standardError, "talctool: cannot write to standard output\n");
  }
}

TEST_F(Talctool, ExitsWith1WhereItsInputCannotBeRead) {
  const auto run = RunInShell("exec \"$0\" compile <.");
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.standardError, "talctool: cannot read standard input\n");
}
#endif

}  // namespace
