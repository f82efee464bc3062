#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "errorException.h"
#include "ParsedInstaller.h"
#include "support/FailingAllocation.h"

namespace {

template <typename Action>
std::string Failure(Action action) {
  try {
    action();
  } catch (const errorException& failure) {
    return std::string(failure.file) + ": " + failure.what();
  }
  return "no failure";
}

struct RangeCase {
  std::int32_t major;
  std::int32_t minor;
  bool isIn;
};

class RevisionRange : public testing::TestWithParam<RangeCase> {};

// The range of belmara ends at 2.2.
TEST_P(RevisionRange, BothEndsBelongToIt) {
  ParsedInstaller parsed;
  const RangeCase& c = GetParam();
  EXPECT_EQ(parsed.installer.RegisterPartLocation("belmara", "BLMX", c.major, c.minor, 0, "", 0), c.isIn)
      << c.major << "." << c.minor;
  EXPECT_EQ(parsed.installer.locationCount(), c.isIn ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(Each, RevisionRange,
                         testing::Values(RangeCase{0, 0, true}, RangeCase{1, 1, true}, RangeCase{2, 2, true},
                                         RangeCase{2, 3, false}, RangeCase{3, 0, false}, RangeCase{0, -1, false},
                                         RangeCase{255, 255, false},
                                         // Compared as major times 1000 plus minor: these are 2.0, 2.2 and 2.3.
                                         RangeCase{1, 1000, true}, RangeCase{1, 1002, true}, RangeCase{1, 1003, false},
                                         RangeCase{2147483647, 2147483647, false}));

TEST(PartList, ALocationKeepsWhatItWasFoundWith) {
  ParsedInstaller parsed;
  ASSERT_TRUE(parsed.installer.RegisterPartLocation("dovu", "DVUX", 1, 2, 0x1160, "abc", 0x1161));
  const PartLocation& found = parsed.installer.location(0);
  EXPECT_EQ(found.part, &parsed.Row(2));
  EXPECT_EQ(found.major, 1);
  EXPECT_EQ(found.minor, 2);
  EXPECT_EQ(found.current, 0x1160u);
  EXPECT_STREQ(found.suffix, "-abc");
  EXPECT_EQ(found.expected, 0x1161u);
}

TEST(PartList, NameAndIdMustBothBeTheRows) {
  ParsedInstaller parsed;
  EXPECT_FALSE(parsed.installer.RegisterPartLocation("dovu", "BLMX", 1, 0, 0, "", 0));
  EXPECT_FALSE(parsed.installer.RegisterPartLocation("Dovu", "DVUX", 1, 0, 0, "", 0));
  EXPECT_FALSE(parsed.installer.RegisterPartLocation("dkarve", "KRVL", 1, 0, 0, "", 0));
  EXPECT_EQ(parsed.installer.locationCount(), 0);
}

TEST(PartList, EveryRowThatFitsGetsALocation) {
  ParsedInstaller parsed;
  parsed.installer.AddPartDescription({"dovu", "DVUX", 0, 0, 0, 9, "old.rbi"});
  parsed.installer.AddPartDescription({"dovu", "DVUX", 0, 0, 9, 0, "new.rbi"});
  EXPECT_TRUE(parsed.installer.RegisterPartLocation("dovu", "DVUX", 1, 0, 0, "", 0));
  ASSERT_EQ(parsed.installer.locationCount(), 2);
  EXPECT_EQ(parsed.installer.location(0).part, &parsed.Row(2));
  EXPECT_EQ(parsed.installer.location(1).part, &parsed.Row(30));
}

struct SuffixCase {
  const char* text;
  const char* suffix;
};

class Suffix : public testing::TestWithParam<SuffixCase> {};

TEST_P(Suffix, SaysSomethingOrIsDropped) {
  ParsedInstaller parsed;
  ASSERT_TRUE(parsed.installer.RegisterPartLocation("pico", "PICO", 1, 0, 0, GetParam().text, 0));
  EXPECT_STREQ(parsed.installer.location(0).suffix, GetParam().suffix);
}

INSTANTIATE_TEST_SUITE_P(
    Each, Suffix,
    testing::Values(SuffixCase{nullptr, ""}, SuffixCase{"", ""}, SuffixCase{" ", ""}, SuffixCase{"0", ""},
                    SuffixCase{"0. 0.0", ""}, SuffixCase{"a", "-a"}, SuffixCase{"00b", "-00b"},
                    SuffixCase{" .1", "- .1"},
                    // 31 characters and the terminator is all that there is room for.
                    SuffixCase{"123456789012345678901234567890", "-123456789012345678901234567890"},
                    SuffixCase{"1234567890123456789012345678901234567890", "-123456789012345678901234567890"}));

TEST(PartList, TakesAHundredDescriptionsAndNoMore) {
  Installer installer;
  for (int i = 0; i < 100; ++i)
    installer.AddPartDescription({"pico", "PICO", 0, 0, 1, 1, "PICO.rbi"});
  EXPECT_EQ(Failure([&] {
              installer.AddPartDescription({"pico", "PICO", 0, 0, 1, 1, "PICO.rbi"});
            }),
            "FwDeploy.cpp: Too many part descriptions");
  EXPECT_EQ(installer.descriptionCount(), 100);
}

TEST(PartList, TakesAHundredLocationsAndNoMore) {
  ParsedInstaller parsed;
  for (int i = 0; i < 100; ++i)
    parsed.installer.RegisterPartLocation("pico", "PICO", 1, 0, 0, "", 0);
  EXPECT_EQ(Failure([&] { parsed.installer.RegisterPartLocation("pico", "PICO", 1, 0, 0, "", 0); }),
            "FwDeploy.cpp: Too many parts locations");
  EXPECT_EQ(parsed.installer.locationCount(), 100);
}

TEST(PartList, SaysWhenMemoryRunsOut) {
  ParsedInstaller parsed;
  EXPECT_EQ(Failure([&] {
              const test_support::FailingAllocation next(1);
              parsed.installer.AddPartDescription({"pico", "PICO", 0, 0, 1, 1, "PICO.rbi"});
            }),
            "FwDeploy.cpp: Out of memory constructing PartDescription");
  EXPECT_EQ(Failure([&] {
              const test_support::FailingAllocation next(1);
              parsed.installer.RegisterPartLocation("pico", "PICO", 1, 0, 0, "", 0);
            }),
            "FwDeploy.cpp: Out of memory constructing PartLocation");
  EXPECT_EQ(parsed.installer.descriptionCount(), 28);
  EXPECT_EQ(parsed.installer.locationCount(), 0);
}

}  // namespace
