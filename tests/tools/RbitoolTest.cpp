// The program rbitool, run as a user runs it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/FolderFault.h"
#include "support/Process.h"
#include "support/TempFolder.h"

namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class Rbitool : public testing::Test {
 protected:
  test_support::ProcessResult Run(const std::vector<std::string>& arguments) const {
    return test_support::RunProcess(RBITOOL_PROGRAM, arguments, {.workingDirectory = folder_.Path().string()});
  }
  /// Runs a line of shell in which $0 is the program.
  test_support::ProcessResult RunInShell(const std::string& line) const {
    return test_support::RunProcess("sh", {"-c", line, RBITOOL_PROGRAM}, {.workingDirectory = folder_.Path().string()});
  }
  /// The line that `show` prints for a file of these bytes.
  std::string Shown(const std::string& bytes) const {
    folder_.Write("shown.rbi", bytes);
    const auto run = Run({"show", "shown.rbi"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.standardError, "");
    return run.standardOutput;
  }

  test_support::TempFolder folder_;
};

MATCHER(IsOneLine, "is one line") {
  return arg.find('\n') == arg.size() - 1 && arg.size() > 1;
}

TEST_F(Rbitool, MakesAContainerByteForByte) {
  folder_.Write("payload", "\0\xFF image\n"s);
  const auto run = Run(
      {"make", "out.rbi", "--id", "BLMX", "--version", "1161", "--payload", "payload", "--text", "S:demo;M:01.02;"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.standardOutput, "");
  EXPECT_EQ(run.standardError, "");
  EXPECT_EQ(folder_.ReadText("out.rbi"), "ORBO.RBI\0\0\0\x25R1161;BLMXS:demo;M:01.02;\0\xFF image\n"s);
  EXPECT_THAT(folder_.Names(), ElementsAre("out.rbi", "payload"));
}

TEST_F(Rbitool, MakesAHeaderOf22BytesWithoutText) {
  folder_.Write("payload", "");
  for (const std::vector<std::string>& text : {std::vector<std::string>{}, {"--text", ""}}) {
    std::vector<std::string> arguments = {"make", "out.rbi", "--id", "TLM_", "--version", "0", "--payload", "payload"};
    arguments.insert(arguments.end(), text.begin(), text.end());
    EXPECT_EQ(Run(arguments).exitCode, 0);
    EXPECT_EQ(folder_.ReadText("out.rbi"), "ORBO.RBI\0\0\0\x16R0000;TLM_"s);
  }
}

TEST_F(Rbitool, CountsALongTextInTheHeaderLength) {
  folder_.Write("payload", "p");
  const std::string text(0x1234, 't');
  EXPECT_EQ(Run({"make", "out.rbi", "--id", "BLMX", "--version", "1", "--payload", "payload", "--text", text}).exitCode,
            0);
  EXPECT_EQ(folder_.ReadText("out.rbi"), "ORBO.RBI\0\0\x12\x4AR0001;BLMX"s + text + "p");
}

TEST_F(Rbitool, WritesTheVersionAsFourUpperCaseDigits) {
  folder_.Write("payload", "");
  struct Version {
    std::string given, written;
  };
  for (const Version& version : {Version{"0", "0000"}, Version{"a", "000A"}, Version{"b0c", "0B0C"},
                                 Version{"ffff", "FFFF"}, Version{"1161", "1161"}}) {
    EXPECT_EQ(Run({"make", "out.rbi", "--id", "BLMX", "--version", version.given, "--payload", "payload"}).exitCode, 0);
    EXPECT_EQ(folder_.ReadText("out.rbi").substr(12, 6), "R" + version.written + ";");
  }
}

TEST_F(Rbitool, TakesAnyFourPrintableCharactersForAnId) {
  folder_.Write("payload", "");
  for (const std::string& id : {"    "s, "~!@#"s, "a\"b\\"s, "-a-b"s}) {
    EXPECT_EQ(Run({"make", "out.rbi", "--id=" + id, "--version", "1", "--payload", "payload"}).exitCode, 0) << id;
    EXPECT_EQ(folder_.ReadText("out.rbi").substr(18), id);
  }
}

#if !defined(_WIN32)  // where links take a right of their own
TEST_F(Rbitool, ReplacesAFileAndKeepsALinkToIt) {
  folder_.Write("payload", "new");
  folder_.Write("real.rbi", "an old file that is longer than the new one");
  std::filesystem::create_symlink("real.rbi", folder_.Path() / "link.rbi");
  EXPECT_EQ(Run({"make", "link.rbi", "--id", "BLMX", "--version", "1", "--payload", "payload"}).exitCode, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(folder_.Path() / "link.rbi"));
  EXPECT_EQ(folder_.ReadText("real.rbi"), "ORBO.RBI\0\0\0\x16R0001;BLMXnew"s);
}
#endif

TEST_F(Rbitool, CanWrapAFileInItself) {
  folder_.Write("file", "payload");
  EXPECT_EQ(Run({"make", "file", "--id", "BLMX", "--version", "1", "--payload", "file"}).exitCode, 0);
  EXPECT_EQ(folder_.ReadText("file"), "ORBO.RBI\0\0\0\x16R0001;BLMXpayload"s);
}

TEST_F(Rbitool, PassesOverAPartialFileOfAnotherRun) {
  folder_.Write("payload", "");
  folder_.Write("out.rbi.partial0", "of another run");
  EXPECT_EQ(Run({"make", "out.rbi", "--id", "BLMX", "--version", "1", "--payload", "payload"}).exitCode, 0);
  EXPECT_EQ(folder_.ReadText("out.rbi.partial0"), "of another run");
  EXPECT_THAT(folder_.Names(), ElementsAre("out.rbi", "out.rbi.partial0", "payload"));
}

#if !defined(_WIN32)  // which has no shell, and no device that is always full
// The limit on file sizes stands in for a full disk.
TEST_F(Rbitool, LeavesTheOldFileWhereTheNewOneCannotBeWritten) {
  folder_.Write("payload", std::string(2 << 20, 'p'));
  folder_.Write("out.rbi", "old");
  const auto run =
      RunInShell("trap '' XFSZ; ulimit -f 1024; exec \"$0\" make out.rbi --id BLMX --version 1 --payload payload");
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.standardError, StartsWith("rbitool: cannot write "));
  EXPECT_THAT(run.standardError, IsOneLine());
  EXPECT_EQ(folder_.ReadText("out.rbi"), "old");
  EXPECT_THAT(folder_.Names(), ElementsAre("out.rbi", "payload"));
}
#endif

struct FailedRun {
  std::vector<std::string> arguments;
  std::string complaint;
};

TEST_F(Rbitool, ExitsWith1AndALineWhereTheWorkFails) {
  folder_.Write("payload", "");
  folder_.Write("foreign", "no container");
  std::filesystem::create_directory(folder_.Path() / "folder");
  const auto make = [](const std::string& out, const std::string& payload) -> std::vector<std::string> {
    return {"make", out, "--id", "BLMX", "--version", "1", "--payload", payload};
  };
  for (const FailedRun& failed : {
         FailedRun{make("out.rbi", "absent"), "cannot read absent: No such file or directory"},
             FailedRun{make("out.rbi", "folder"), "cannot read folder: " + test_support::FolderFault()},
             FailedRun{make("nowhere/out.rbi", "payload"), "No such file or directory"},
             FailedRun{make("folder", "payload"), "cannot write folder: not an ordinary file"},
#if !defined(_WIN32)  // where a folder is not opened at all, and devices lie in no folder
             FailedRun{make("/dev/null", "payload"), "cannot write /dev/null: not an ordinary file"},
             FailedRun{{"show", "folder"}, "File folder missing RBI file header"},
#endif
             FailedRun{{"show", "absent"}, "Unable to open file absent"}, FailedRun {
           {"show", "foreign"}, "File foreign missing RBI file header"
         }
       }) {
    const auto run = Run(failed.arguments);
    EXPECT_EQ(run.exitCode, 1) << failed.complaint;
    EXPECT_EQ(run.standardOutput, "");
    EXPECT_THAT(run.standardError, HasSubstr(failed.complaint));
    EXPECT_THAT(run.standardError, IsOneLine());
  }
  EXPECT_THAT(folder_.Names(), ElementsAre("folder", "foreign", "payload"));
}

#if !defined(_WIN32)  // which has no shell, and no device that is always full
TEST_F(Rbitool, ExitsWith1WhereItsOutputCannotBeWritten) {
  folder_.Write("a.rbi", "ORBO.RBI\0\0\0\x16R0001;BLMX"s);
  const auto run = RunInShell("exec \"$0\" show a.rbi >/dev/full");
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.standardError, "rbitool: cannot write to standard output\n");
}
#endif

TEST_F(Rbitool, ExitsWith2AndALineOnBadUsage) {
  folder_.Write("payload", "");
  const auto make = [](const std::string& id, const std::string& version) -> std::vector<std::string> {
    return {"make", "out.rbi", "--id=" + id, "--version=" + version, "--payload", "payload"};
  };
  const std::vector<std::vector<std::string>> badUsages = {
      {},
      {"bogus"},
      {"--bogus"},
      {"make"},
      {"make", "out.rbi"},
      {"make", "out.rbi", "--id", "BLMX", "--version", "1"},
      {"make", "--id", "BLMX", "--version", "1", "--payload", "payload"},
      {"make", "out.rbi", "two.rbi", "--id", "BLMX", "--version", "1", "--payload", "payload"},
      {"make", "out.rbi", "--id", "BLMX", "--id", "DVUX", "--version", "1", "--payload", "payload"},
      {"make", "out.rbi", "--id", "BLMX", "--version", "1", "--payload", "payload", "--text"},
      make("BLM", "1"),
      make("BLMXX", "1"),
      make("BLM\n", "1"),
      make("BL\xC3\xA4", "1"),
      make("", "1"),
      make("BLMX", ""),
      make("BLMX", "12345"),
      make("BLMX", "12G4"),
      make("BLMX", "-1"),
      make("BLMX", "0x1"),
      make("BLMX", " 1"),
      {"show"},
      {"show", "a.rbi", "b.rbi"},
      {"show", "a.rbi", "--bogus"},
      {"show", "a.rbi", "make"},
  };
  for (const auto& arguments : badUsages) {
    const auto run = Run(arguments);
    EXPECT_EQ(run.exitCode, 2) << testing::PrintToString(arguments);
    EXPECT_EQ(run.standardOutput, "");
    EXPECT_THAT(run.standardError, StartsWith("rbitool: "));
    EXPECT_THAT(run.standardError, IsOneLine());
  }
  EXPECT_FALSE(folder_.Has("out.rbi"));
}

TEST_F(Rbitool, TellsItsUsageAndVersion) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--help"}, {"make", "--help"}, {"show", "--help"}}) {
    const auto run = Run(arguments);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.standardOutput, HasSubstr("Usage: rbitool"));
    EXPECT_EQ(run.standardError, "");
  }
  const auto run = Run({"--version"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.standardOutput, "rbitool " PROJECT_VERSION "\n");
  EXPECT_EQ(run.standardError, "");
}

TEST_F(Rbitool, ShowsWhatTheInstallerReads) {
  EXPECT_EQ(Shown("ORBO.RBI\0\0\0\x25R1161;BLMXS:demo;M:01.42;payload"s),
            R"({"header":37,"id":"BLMX","number":[1,42],"payload":7,"revision":"1161","string":"demo","version":4449})"
            "\n");
}

TEST_F(Rbitool, ShowsWhatIsAbsentAsNull) {
  EXPECT_EQ(Shown("ORBO.RBI\0\0\0\x16R0000;BLMXS:a;M:01.02"s),  // fields in the payload are none
            R"({"header":22,"id":"BLMX","number":null,"payload":11,"revision":"","string":null,"version":0})"
            "\n");
  EXPECT_EQ(Shown("ORBO.RBI\0\0\0\x16X00FF;BLMX"s),
            R"({"header":22,"id":"BLMX","number":null,"payload":0,"revision":null,"string":null,"version":255})"
            "\n");
  EXPECT_EQ(Shown("ORBO.RBI"s),
            R"({"header":null,"id":"","number":null,"payload":null,"revision":null,"string":null,"version":0})"
            "\n");
}

TEST_F(Rbitool, ShowsAHeaderThatIsLongerThanTheFile) {
  EXPECT_EQ(Shown("ORBO.RBI\xFF\xFF\xFF\xFFR-001;BLMXS:a;M:0"s),
            R"({"header":4294967295,"id":"BLMX","number":null,"payload":0,"revision":"-001","string":"a",)"
            R"("version":4294967295})"
            "\n");
}

TEST_F(Rbitool, ShowsBytesAsEscapedLatin1) {
  EXPECT_EQ(Shown("ORBO.RBI\0\0\0\x1DR\"1\\\xE9;\xC4\x7F\n\xFFS:\x80\xAE\x01;"s),
            R"({"header":29,"id":"\u00c4\u007f\n\u00ff","number":null,"payload":0,"revision":"\"1\\\u00e9",)"
            R"("string":"\u0080\u00ae\u0001","version":0})"
            "\n");
}

TEST_F(Rbitool, ShowsWhatItMade) {
  folder_.Write("payload", std::string(5000, '\0'));
  ASSERT_EQ(
      Run({"make", "out.rbi", "--id", "KRVL", "--version", "16", "--payload", "payload", "--text", "M:03.04;S:Karvel;"})
          .exitCode,
      0);
  const auto run = Run({"show", "out.rbi"});
  EXPECT_EQ(nlohmann::json::parse(run.standardOutput), nlohmann::json({{"id", "KRVL"},
                                                                       {"version", 0x16},
                                                                       {"header", 39},
                                                                       {"payload", 5000},
                                                                       {"revision", "16"},
                                                                       {"string", "Karvel"},
                                                                       {"number", {3, 4}}}));
}

}  // namespace
