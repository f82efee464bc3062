#include <gtest/gtest.h>

#include "ParsedInstaller.h"
#include "support/CapturedOutput.h"

namespace {

constexpr char kHeading[] =
    "   Part Name   Board Fn Rev   Current Flash   Expected Flash\n"
    "   ---------   ------------   -------------   --------------\n";

std::string Table(const Installer& installer) {
  test_support::CapturedOutput output;
  installer.PrintVersionTable();
  EXPECT_EQ(output.err(), "");
  return output.out();
}

TEST(VersionTable, HasItsHeadingWithoutAnyPart) {
  EXPECT_EQ(Table(ParsedInstaller({"-version"}).installer), kHeading);
}

TEST(VersionTable, ShowsAPartWithAndWithoutAnExpectation) {
  ParsedInstaller parsed({"-version"});
  parsed.installer.RegisterPartLocation("belmara", "BLMX", 2, 1, 0x1160, "", 0x1161);
  parsed.installer.RegisterPartLocation("bkarvel", "KRVL", 2, 1, 0x16, "", 0);
  EXPECT_EQ(Table(parsed.installer), std::string(kHeading) +
                                         "     belmara      02.01           1160           1161\n"
                                         "     bkarvel      02.01           0016           N/A\n");
}

TEST(VersionTable, RevisionsAreHexadecimalAndTheSuffixHasTenColumns) {
  ParsedInstaller parsed({"-version"});
  parsed.installer.AddPartDescription({"anamethatistoolong", "LONG", 0, 0, 999, 0, "x.rbi"});
  parsed.installer.RegisterPartLocation("anamethatistoolong", "LONG", 31, 171, 0xABCDE, "suffixofmanychars", 0x2);
  EXPECT_EQ(Table(parsed.installer),
            std::string(kHeading) + "anamethatist      1f.ab           abcde-suffixofm 0002\n");
}

TEST(VersionTable, TheRowOfTheSameNumberDecidesWhetherALocationIsShown) {
  // Location 0 is dovu, and is shown if row 0, belmara, is.
  ParsedInstaller parsed({"-dovu"});
  parsed.installer.RegisterPartLocation("dovu", "DVUX", 1, 0, 0x1160, "", 0x1161);
  EXPECT_EQ(Table(parsed.installer), kHeading);
  parsed.Parse({"-nodovu", "-belmara"});
  EXPECT_EQ(Table(parsed.installer), std::string(kHeading) + "        dovu      01.00           1160           1161\n");
}

TEST(VersionTable, ALocationBeyondTheLastRowIsNotShown) {
  Installer installer;
  installer.AddPartDescription({"pico", "PICO", 0, 0, 1, 1, "PICO.rbi"});
  const char* const args[] = {"-version"};
  installer.ParseOption(1, args);
  installer.RegisterPartLocation("pico", "PICO", 1, 0, 1, "", 0);
  installer.RegisterPartLocation("pico", "PICO", 1, 0, 2, "", 0);
  EXPECT_EQ(Table(installer), std::string(kHeading) + "        pico      01.00           0001           N/A\n");
}

}  // namespace
