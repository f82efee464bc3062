// rbitool vme, run as a user runs it, and the page about its files.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/HexBlock.h"
#include "support/PacketText.h"
#include "support/PageBlock.h"
#include "support/Process.h"
#include "support/TempFolder.h"

// VME_PAGE is the path of docs/vme.md.

namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class RbitoolVmeProgram : public testing::Test {
 protected:
  test_support::ProcessResult Run(const std::vector<std::string>& arguments) const {
    return test_support::RunProcess(RBITOOL_PROGRAM, arguments, {.workingDirectory = folder_.Path().string()});
  }
  /// The bytes of the file that the script makes.
  test_support::Bytes Assembled(const std::string& script) const {
    folder_.Write("script", script);
    const auto run = Run({"vme", "assembled.rbi", "--script", "script"});
    EXPECT_EQ(run.exitCode, 0) << script;
    EXPECT_EQ(run.standardError, "");
    return folder_.ReadBytes("assembled.rbi");
  }

  test_support::TempFolder folder_;
};

TEST_F(RbitoolVmeProgram, WritesTheContainerAndNothingElse) {
  folder_.Write("a.vme", "container KRVL 17 \"S:demo;\"\ntck 5\nendvme\n");
  const auto run = Run({"vme", "a.rbi", "--script", "a.vme"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.standardOutput, "");
  EXPECT_EQ(run.standardError, "");
  EXPECT_EQ(folder_.ReadText("a.rbi"), "ORBO.RBI\0\0\0\x1DR0017;KRVLS:demo;__VME2.0\xF2\x1B\x05\x7F"s);
  EXPECT_THAT(folder_.Names(), ElementsAre("a.rbi", "a.vme"));
  EXPECT_EQ(Run({"show", "a.rbi"}).standardOutput,
            R"({"header":29,"id":"KRVL","number":null,"payload":12,"revision":"17","string":"demo","version":23})"
            "\n");
}

TEST_F(RbitoolVmeProgram, LeavesTheOldFileWhenTheScriptIsWrong) {
  folder_.Write("a.vme", "mem 16\nsdr 16 tdi zeross 0000\n");
  folder_.Write("a.rbi", "old");
  const auto run = Run({"vme", "a.rbi", "--script", "a.vme"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.standardOutput, "");
  EXPECT_EQ(run.standardError,
            "a.vme:2:12: expected 2 bytes of data, found 'zeross'; did you mean 'zeros'?\n"
            "sdr 16 tdi zeross 0000\n"
            "           ^\n");
  EXPECT_EQ(folder_.ReadText("a.rbi"), "old");
  EXPECT_EQ(Run({"vme", "b.rbi", "--script", "a.vme"}).exitCode, 1);
  EXPECT_FALSE(folder_.Has("b.rbi"));
}

TEST_F(RbitoolVmeProgram, ExitsWith1WhereAFileCannotBeReadOrWritten) {
  folder_.Write("a.vme", "endvme");
  const auto unreadable = Run({"vme", "a.rbi", "--script", "absent.vme"});
  EXPECT_EQ(unreadable.exitCode, 1);
  EXPECT_EQ(unreadable.standardError, "rbitool: cannot read absent.vme: No such file or directory\n");
  const auto unwritable = Run({"vme", "nowhere/a.rbi", "--script", "a.vme"});
  EXPECT_EQ(unwritable.exitCode, 1);
  EXPECT_THAT(unwritable.standardError, StartsWith("rbitool: cannot write "));
  EXPECT_THAT(folder_.Names(), ElementsAre("a.vme"));
}

TEST_F(RbitoolVmeProgram, ExitsWith2OnBadUsage) {
  folder_.Write("a.vme", "endvme");
  const std::vector<std::vector<std::string>> badUsages = {
      {"vme"},
      {"vme", "a.rbi"},
      {"vme", "--script", "a.vme"},
      {"vme", "a.rbi", "--script"},
      {"vme", "a.rbi", "b.rbi", "--script", "a.vme"},
      {"vme", "a.rbi", "--script", "a.vme", "--script", "a.vme"},
      {"vme", "a.rbi", "--script", "a.vme", "--id", "KRVL"},
  };
  for (const auto& arguments : badUsages) {
    const auto run = Run(arguments);
    EXPECT_EQ(run.exitCode, 2) << testing::PrintToString(arguments);
    EXPECT_THAT(run.standardError, StartsWith("rbitool: "));
  }
  EXPECT_FALSE(folder_.Has("a.rbi"));
}

TEST_F(RbitoolVmeProgram, TellsItsUsage) {
  const auto run = Run({"vme", "--help"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.standardOutput, HasSubstr("rbitool vme [OPTIONS] OUT"));
}

class VmePage : public RbitoolVmeProgram {};

TEST_F(VmePage, ShowsTheBytesOfItsScript) {
  const std::string script = test_support::TextOnThePage(VME_PAGE, "vme");
  const test_support::Bytes bytes = test_support::ReadHexBlock(VME_PAGE);
  ASSERT_EQ(bytes.size(), 83u);
  EXPECT_EQ(test_support::Hex(Assembled(script)), test_support::Hex(bytes));
}

TEST_F(VmePage, ShowsTheBytesOfEachForm) {
  const std::vector<std::string> lines = test_support::LinesOnThePage(VME_PAGE, "forms");
  ASSERT_EQ(lines.size(), 6u);
  for (const std::string& line : lines) {
    const std::size_t bar = line.find('|');
    ASSERT_NE(bar, std::string::npos) << line;
    std::string digits = line.substr(bar + 1);
    digits.erase(std::remove(digits.begin(), digits.end(), ' '), digits.end());
    std::string expected;
    for (std::size_t at = 0; at < digits.size(); at += 2)
      expected += (at == 0 ? "" : " ") + digits.substr(at, 2);
    test_support::Bytes bytes = Assembled("compressed on " + line.substr(0, bar));
    bytes.erase(bytes.begin(), bytes.begin() + 31);
    EXPECT_EQ(test_support::Hex(bytes), expected) << line;
  }
}

TEST_F(VmePage, ShowsAnErrorAsItIsPrinted) {
  folder_.Write("karvel.vme", "compressed on\nmem 16\nsir 8 tdi 1D\nsdr 16 tdi zeroes 0000\n");
  std::string shown;
  std::ifstream page(VME_PAGE);
  for (std::string line; std::getline(page, line);)
    if (line.starts_with("    karvel.vme:"))
      for (int lines = 0; lines < 3; ++lines, std::getline(page, line))
        shown += line.substr(4) + "\n";
  EXPECT_EQ(Run({"vme", "a.rbi", "--script", "karvel.vme"}).standardError, shown);
}

}  // namespace
