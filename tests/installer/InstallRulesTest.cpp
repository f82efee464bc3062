#include <gtest/gtest.h>

#include "BenchRun.h"
#include "errorException.h"
#include "FakeHostCards.h"
#include "ParsedInstaller.h"
#include "support/CapturedOutput.h"
#include "support/ScopedWorkingFolder.h"
#include "support/TempFolder.h"

// Which parts the rules let through. A part on hardware that fails at its first command stands in for all of them:
// being let through shows as that failure.

namespace {

constexpr char kLetThrough[] = "InstallRulesTest.cpp: let through";

/// Fails as soon as a download begins.
class FailsAtOnce : public FakeHostCards {
 public:
  HwcStatus TransactCommand(TalcPath::TalcCommand&) override { throw errorException("let through"); }
};

/// Runs the install loop; the mask as text, or the failure.
std::string Install(Installer& installer) {
  try {
    FailsAtOnce morvak;
    return std::to_string(installer.InstallParts(nullptr, &morvak));
  } catch (const errorException& failure) {
    return std::string(failure.file) + ": " + failure.what();
  }
}

struct RuleCase {
  const char* what;
  const char* options;  // "f" fussy, "u" update
  const char* fileVersion;
  std::uint32_t current;
  std::uint32_t expected;
  const char* result;
  const char* out;
  bool staysSelected;
};

class Rules : public testing::TestWithParam<RuleCase> {};

TEST_P(Rules, DecideByVersions) {
  const RuleCase& c = GetParam();
  const test_support::TempFolder folder;
  const test_support::ScopedWorkingFolder inside(folder.Path());
  folder.Write("PICO.rbi", Container("PICO", c.fileVersion));
  const std::string options = c.options;
  ParsedInstaller parsed({"-pico", "-noprogress", options.find('f') != std::string::npos ? "-fussy" : "-nofussy",
                          options.find('u') != std::string::npos ? "-update" : "-noupdate"});
  parsed.installer.RegisterPartLocation("pico", "PICO", 1, 0, c.current, "", c.expected);
  test_support::CapturedOutput output;
  EXPECT_EQ(Install(parsed.installer), c.result) << c.what;
  EXPECT_EQ(output.out(), c.out) << c.what;
  EXPECT_EQ(output.err(), "") << c.what;
  EXPECT_EQ(parsed.Row(12).load, c.staysSelected ? 1 : 0) << c.what;
}

constexpr char kWrongVersion[] = "FwDeploy.cpp: RBI file is not the correct version for this installer";

INSTANTIATE_TEST_SUITE_P(
    Fussy, Rules,
    testing::Values(RuleCase{"no expectation: skipped without a word", "f", "0123", 0x10, 0, "0", "", false},
                    RuleCase{"no expectation comes before a wrong version", "f", "0999", 0x10, 0, "0", "", false},
                    RuleCase{"another version is fatal", "f", "0124", 0x10, 0x123, kWrongVersion, "", false},
                    RuleCase{"also one that the part has", "f", "0010", 0x10, 0x123, kWrongVersion, "", false},
                    RuleCase{"the part has it", "f", "0123", 0x123, 0x123, "0", "pico does not need to be loaded\n",
                             false},
                    RuleCase{"the part has another", "f", "0123", 0x10, 0x123, kLetThrough, "", true},
                    RuleCase{"the part has a newer one", "f", "0123", 0x200, 0x123, kLetThrough, "", true}));

INSTANTIATE_TEST_SUITE_P(Update, Rules,
                         testing::Values(RuleCase{"the part has it", "u", "1b2c", 0x1B2C, 0x123, "0",
                                                  "pico is already at version 1b2c\n", false},
                                         RuleCase{"a newer file", "u", "0200", 0x10, 0x123, kLetThrough,
                                                  "Replacing pico version 10 with new version 200\n", true},
                                         RuleCase{"an older file too", "u", "0001", 0xABC, 0x123, kLetThrough,
                                                  "Replacing pico version abc with new version 1\n", true},
                                         RuleCase{"expected or not", "u", "0200", 0x10, 0, kLetThrough,
                                                  "Replacing pico version 10 with new version 200\n", true}));

INSTANTIATE_TEST_SUITE_P(FussyUpdate, Rules,
                         testing::Values(RuleCase{"fussy speaks first", "fu", "0123", 0x123, 0x123, "0",
                                                  "pico does not need to be loaded\n", false},
                                         RuleCase{"a wrong version stays fatal", "fu", "0124", 0x10, 0x123,
                                                  kWrongVersion, "", false},
                                         RuleCase{"both agree", "fu", "0123", 0x10, 0x123, kLetThrough,
                                                  "Replacing pico version 10 with new version 123\n", true}));

INSTANTIATE_TEST_SUITE_P(
    Neither, Rules,
    testing::Values(RuleCase{"every file is programmed", "", "0007", 0x10, 0x123, kLetThrough, "", true},
                    RuleCase{"the same version again too", "", "0010", 0x10, 0x123, kLetThrough, "", true}));

TEST(InstallRules, AMissingOrForeignFileIsFatal) {
  const test_support::TempFolder folder;
  const test_support::ScopedWorkingFolder inside(folder.Path());
  folder.Write("foreign.rbi", Container("XNDR", "0123"));
  folder.Write("junk.rbi", "neither magic nor anything");
  folder.Write("short.rbi", "ORBO.RBI");
  const struct {
    const char* file;
    const char* err;
  } cases[] = {
    {"absent.rbi", "Unable to open file absent.rbi\n"},
    {"foreign.rbi", ""},
    {"junk.rbi", "File junk.rbi missing RBI file header\n"},
#if !defined(_WIN32)  // where a folder is not opened at all
    {".", "File . missing RBI file header\n"},
#endif
    {"short.rbi", ""}
  };
  for (const auto& c : cases) {
    ParsedInstaller parsed({"-pico", c.file});
    parsed.installer.RegisterPartLocation("pico", "PICO", 1, 0, 0x10, "", 0x123);
    test_support::CapturedOutput output;
    EXPECT_EQ(Install(parsed.installer), "FwDeploy.cpp: Required RBI file is missing or not usable") << c.file;
    EXPECT_EQ(output.err(), c.err) << c.file;
    EXPECT_EQ(parsed.Row(12).load, 0) << c.file;
  }
}

TEST(InstallRules, APartThatIsNotSelectedIsNotLookedAt) {
  ParsedInstaller parsed({"-dovu"});
  parsed.installer.RegisterPartLocation("pico", "PICO", 1, 0, 0x10, "", 0x123);
  test_support::CapturedOutput output;
  EXPECT_EQ(Install(parsed.installer), "0");
  EXPECT_EQ(output.out() + output.err(), "");
}

TEST(InstallRules, APartThatIsSelectedAndWasNotFoundStaysSilent) {
  ParsedInstaller parsed({"-pico", "absent.rbi"});
  test_support::CapturedOutput output;
  EXPECT_EQ(Install(parsed.installer), "0");
  EXPECT_EQ(output.out() + output.err(), "");
}

TEST(InstallRules, TheNameIsPrintedBeforeTheAlgorithmIsChosen) {
  const test_support::TempFolder folder;
  const test_support::ScopedWorkingFolder inside(folder.Path());
  folder.Write("file.rbi", Container("NEWP", "0016"));
  Installer installer;
  installer.AddPartDescription({"newpart", "NEWP", 1, 0, 1, 0, "file.rbi"});
  const char* const arguments[] = {"-newpart", "-nofussy"};
  installer.ParseOption(1, arguments);
  installer.ParseOption(1, arguments + 1);
  ASSERT_TRUE(installer.RegisterPartLocation("newpart", "NEWP", 1, 0, 0x10, "", 0));
  test_support::CapturedOutput output;
  EXPECT_EQ(Install(installer), "FwDeploy.cpp: No download algorithm for selected part");
  EXPECT_EQ(output.out(), "newpart\n");
}

}  // namespace
