#include <filesystem>

#include "TalctoolFixture.h"

// `talctool crc`: integrity trailers of dictionary files.

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

class TalctoolCrc : public Talctool {
 protected:
  TalctoolCrc() { folder_.Write("a.tcd", "A"); }
};

TEST_F(TalctoolCrc, AddsATrailer) {
  EXPECT_EQ(Output({"crc", "add", "a.tcd"}), "{\"file\":\"a.tcd\",\"ok\":true}\n");
  EXPECT_EQ(folder_.ReadText("a.tcd"), "A\n#$ 3599869725 $ ");
  EXPECT_EQ(Output({"crc", "add", "a.tcd"}), "{\"file\":\"a.tcd\",\"ok\":true}\n");
  EXPECT_EQ(folder_.ReadText("a.tcd"), "A\n#$ 3599869725 $ \n#$ 990479435 $ ");
}

TEST_F(TalctoolCrc, AcceptsATrailerThatDoesNotCoverItsCommentMark) {
  folder_.Write("valid.tcd", "A\n#$ 1215202725 $ ");
  EXPECT_EQ(Output({"crc", "check", "valid.tcd"}), "{\"file\":\"valid.tcd\",\"ok\":true}\n");
  EXPECT_EQ(folder_.ReadText("valid.tcd"), "A\n#$ 1215202725 $ ");
}

#if !defined(_WIN32)  // where the line end before the mark has the two bytes that differ
// What is written covers one byte more than what is checked. It is meant.
TEST_F(TalctoolCrc, WhatItAddsIsNotValid) {
  Output({"crc", "add", "a.tcd"});
  const auto run = Run({"crc", "check", "a.tcd"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.standardOutput, "{\"file\":\"a.tcd\",\"ok\":false}\n");
  EXPECT_EQ(run.standardError,
            "\nBAD CRC on Talc Command Definition File : a.tcd\n"
            "talctool: a.tcd: no valid trailer\n");
}
#endif

TEST_F(TalctoolCrc, AFileWithoutATrailerIsNotValid) {
  const auto run = Run({"crc", "check", "a.tcd"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.standardOutput, "{\"file\":\"a.tcd\",\"ok\":false}\n");
  EXPECT_EQ(run.standardError, "talctool: a.tcd: no valid trailer\n");
}

TEST_F(TalctoolCrc, ADictionaryWithTrailersReadsAsBefore) {
  const std::string before = OfSmall("check");
  Output({"crc", "add", "small.tcd"});
  Output({"crc", "add", "small.tcd"});
  EXPECT_EQ(OfSmall("check"), before);
}

TEST_F(TalctoolCrc, TellsThePathAsGivenAndLogsTheBaseName) {
  folder_.Write("deep/er/a\xE9.tcd", "A");
  const auto add = Run({"crc", "add", "--verbose", "deep/er/a\xE9.tcd"});
  EXPECT_EQ(add.exitCode, 0);
  EXPECT_EQ(add.standardOutput, "{\"file\":\"deep/er/a\\u00e9.tcd\",\"ok\":true}\n");
  EXPECT_EQ(add.standardError, "\nGenerating CRC on Talc Command Definition File : a\xE9.tcd\n");
  EXPECT_EQ(folder_.ReadText("deep/er/a\xE9.tcd"), "A\n#$ 3599869725 $ ");

  const std::string path = folder_.Path().string() + "/deep/er/a\xE9.tcd";
  folder_.Write("deep/er/a\xE9.tcd", "A\n#$ 1 $ ");
  const auto check = Run({"--verbose", "crc", "check", path});
  EXPECT_EQ(check.exitCode, 1);
  EXPECT_EQ(check.standardError,
            "\nChecking CRC on Talc Command Definition File : a\xE9.tcd"
            "\nBAD CRC on Talc Command Definition File : a\xE9.tcd\n"
            "talctool: " +
                path + ": no valid trailer\n");
}

TEST_F(TalctoolCrc, TakesAFileOfAnyName) {
  for (const char* const name : {"check", "add", "crc", "lamps.txt"}) {
    folder_.Write(name, "A");
    Output({"crc", "add", name});
    EXPECT_EQ(folder_.ReadText(name), "A\n#$ 3599869725 $ ");
  }
}

#if !defined(_WIN32)  // which has no shell, and no device that is always full
TEST_F(TalctoolCrc, ExitsWith1WhereTheTrailerCannotBeWritten) {
  // No shell's unit of the limit, of which one is allowed, is larger than the file. The output is well below.
  const std::string text(1024, 'x');
  folder_.Write("full.tcd", text);
  const auto run = RunInShell("trap '' XFSZ; ulimit -f 1; exec \"$0\" crc add full.tcd");
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.standardOutput, "{\"file\":\"full.tcd\",\"ok\":false}\n");
  EXPECT_EQ(run.standardError, "talctool: full.tcd: no trailer could be written\n");
  EXPECT_EQ(folder_.ReadText("full.tcd"), text);
}

TEST_F(TalctoolCrc, ExitsWith1WhereItsOutputCannotBeWritten) {
  const auto run = RunInShell("exec \"$0\" crc add a.tcd >/dev/full");
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.standardError, "talctool: cannot write to standard output\n");
}
#endif

TEST_F(TalctoolCrc, AFileThatCannotBeReadIsBadUsage) {
  std::filesystem::create_directory(folder_.Path() / "folder");
  for (const char* const call : {"add", "check"}) {
    for (const char* const name : {"absent.tcd", "folder", ""}) {
      const auto run = Run({"crc", call, name});
      EXPECT_EQ(run.exitCode, 2) << call << name;
      EXPECT_EQ(run.standardOutput, "");
      EXPECT_THAT(run.standardError, AllOf(StartsWith("talctool: cannot read "), IsOneLine()));
    }
  }
  EXPECT_FALSE(folder_.Has("absent.tcd"));
}

TEST_F(TalctoolCrc, ExitsWith2AndALineOnBadUsage) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"crc"},
                                                    {"crc", "bogus", "a.tcd"},
                                                    {"crc", "a.tcd"},
                                                    {"crc", "add"},
                                                    {"crc", "check"},
                                                    {"crc", "add", "a.tcd", "small.tcd"},
                                                    {"crc", "add", "check", "a.tcd"},
                                                    {"crc", "add", "--bogus", "a.tcd"},
                                                    {"add", "a.tcd"}}) {
    const auto run = Run(arguments);
    EXPECT_EQ(run.exitCode, 2) << testing::PrintToString(arguments);
    EXPECT_EQ(run.standardOutput, "");
    EXPECT_THAT(run.standardError, AllOf(StartsWith("talctool: "), IsOneLine()));
  }
  EXPECT_EQ(folder_.ReadText("a.tcd"), "A");
}

TEST_F(TalctoolCrc, TellsItsUsage) {
  EXPECT_THAT(Output({"--help"}), HasSubstr("\n  crc "));
  EXPECT_THAT(Output({"crc", "--help"}), AllOf(HasSubstr("\n  add "), HasSubstr("\n  check ")));
  EXPECT_THAT(Output({"crc", "add", "--help"}), HasSubstr("Usage: talctool crc add [OPTIONS] FILE"));
  EXPECT_THAT(Output({"crc", "check", "--help"}), HasSubstr("Usage: talctool crc check [OPTIONS] FILE"));
}

}  // namespace
