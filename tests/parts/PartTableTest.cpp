#include <gmock/gmock.h>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>

#include "parts/PartTable.h"

namespace {

struct Row {
  const char* name;
  const char* id;
  std::int32_t minMajor, minMinor;
  std::int32_t maxMajor, maxMinor;
  const char* fileName;
};

constexpr Row kExpectedRows[] = {
    {"belmara", "BLMX", 0, 0, 2, 2, "BLMX0202.rbi"},   {"dovu", "DVUX", 0, 0, 2, 2, "DVUX0202.rbi"},
    {"pelgrimar", "PLGR", 0, 0, 2, 3, "PLGR0201.rbi"}, {"fwcore", "BROX", 0, 0, 2, 3, "BROX0201.rbi"},
    {"ulmen", "ULMN", 0, 0, 2, 3, "ULMN0101.rbi"},     {"tulmen", "TULM", 0, 0, 2, 2, "TULM0002.rbi"},
    {"vulmen", "VULM", 0, 0, 2, 3, "VULM0101.rbi"},    {"tolmarn", "TLM_", 0, 0, 2, 3, "TLM_0104.rbi"},
    {"bkarvel", "KRVL", 0, 0, 2, 2, "KRVL0101.rbi"},   {"dkarvel", "KRVL", 0, 0, 2, 2, "KRVL0101.rbi"},
    {"spacer", "SPCR", 0, 0, 1, 1, "SPCT.rbi"},  // the file is SPCT, the id SPCR
    {"pico", "PICO", 0, 0, 1, 1, "PICO.rbi"},          {"xandrel", "XNDR", 0, 0, 1, 1, "XNDR.rbi"},
    {"yorvalen", "YRVL", 0, 0, 1, 1, "YRVL.rbi"},      {"yorvalenx", "YRVX", 0, 0, 1, 1, "YRVX.rbi"},
    {"qindel", "QNDL", 0, 0, 1, 1, "QNDL.rbi"},        {"teskpro", "TSKP", 0, 0, 1, 1, "TSKP.rbi"},
    {"enc1", "ENCD", 0, 0, 1, 1, "ENCD.rbi"},          {"enc1b", "ENSC", 0, 0, 1, 1, "ENSC.rbi"},
    {"vid1", "ENVC", 0, 0, 1, 1, "ENVC.rbi"},          {"enc2", "ENCD", 0, 0, 1, 1, "ENCD.rbi"},
    {"enc2b", "ENSC", 0, 0, 1, 1, "ENSC.rbi"},         {"vid2", "ENVC", 0, 0, 1, 1, "ENVC.rbi"},
    {"vqxpwr", "VQPW", 0, 0, 1, 1, "VQPW.rbi"},        {"vqxpwrx", "VQPX", 0, 0, 1, 1, "VQPX.rbi"},
    {"jqxpwr", "JQPW", 0, 0, 1, 1, "JQPW.rbi"},        {"jqxpwrx", "JQPX", 0, 0, 1, 1, "JQPX.rbi"},
    {"jqxpwry", "JQPY", 0, 0, 1, 1, "JQPY.rbi"},
};

TEST(PartTable, HasThe28RowsInTheirOrder) {
  ASSERT_EQ(kPartRows.size(), 28u);
  ASSERT_EQ(std::size(kExpectedRows), 28u);
  for (std::size_t i = 0; i < kPartRows.size(); ++i) {
    SCOPED_TRACE("row " + std::to_string(i + 1));
    EXPECT_STREQ(kPartRows[i].name, kExpectedRows[i].name);
    EXPECT_STREQ(kPartRows[i].id, kExpectedRows[i].id);
    EXPECT_EQ(kPartRows[i].minMajor, kExpectedRows[i].minMajor);
    EXPECT_EQ(kPartRows[i].minMinor, kExpectedRows[i].minMinor);
    EXPECT_EQ(kPartRows[i].maxMajor, kExpectedRows[i].maxMajor);
    EXPECT_EQ(kPartRows[i].maxMinor, kExpectedRows[i].maxMinor);
    EXPECT_STREQ(kPartRows[i].fileName, kExpectedRows[i].fileName);
  }
}

TEST(PartDescription, IsNeitherShownNorLoadedUntilToldSo) {
  const PartDescription part{"belmara", "BLMX", 0, 0, 2, 2, "BLMX0202.rbi"};
  EXPECT_EQ(part.show, 0);
  EXPECT_EQ(part.load, 0);
}

struct RevisionCase {
  const char* what;
  std::int32_t minMajor, minMinor;
  std::int32_t maxMajor, maxMinor;
  std::int32_t major, minor;
  bool isInRange;
};

void PrintTo(const RevisionCase& revision, std::ostream* out) {
  *out << revision.what;
}

class RevisionRange : public testing::TestWithParam<RevisionCase> {};

TEST_P(RevisionRange, ComparesRevisionsAsOneNumber) {
  const RevisionCase& c = GetParam();
  const PartDescription part{"belmara", "BLMX", c.minMajor, c.minMinor, c.maxMajor, c.maxMinor, "BLMX0202.rbi"};
  EXPECT_EQ(IsRevisionInRange(part, c.major, c.minor), c.isInRange);
}

constexpr RevisionCase kRevisionCases[] = {
    {"LowestOfAll", 0, 0, 2, 2, 0, 0, true},
    {"UpperEdge", 0, 0, 2, 2, 2, 2, true},
    {"OneMinorAbove", 0, 0, 2, 2, 2, 3, false},
    {"OneMajorAbove", 0, 0, 2, 2, 3, 0, false},
    {"LowerEdge", 1, 5, 2, 2, 1, 5, true},
    {"OneMinorBelow", 1, 5, 2, 2, 1, 4, false},
    {"GreatMinorUnderTheUpperEdge", 0, 0, 2, 2, 1, 999, true},
    {"OneThousandMinorsAreAMajor", 2, 0, 2, 0, 1, 1000, true},
    {"GreatMinorBeyondTheUpperEdge", 0, 0, 2, 2, 1, 1003, false},
    {"UnreadRevision", 0, 0, 2, 3, 255, 255, false},
    {"NegativeRevision", 0, 0, 2, 2, -1, 999, false},
    {"LargestNumbers", 0, 0, 2, 2, 0x7FFFFFFF, 0x7FFFFFFF, false},
    {"SmallestNumbers", 0, 0, 2, 2, -0x7FFFFFFF - 1, -0x7FFFFFFF - 1, false},
};

INSTANTIATE_TEST_SUITE_P(Table, RevisionRange, testing::ValuesIn(kRevisionCases),
                         [](const auto& named) { return named.param.what; });

}  // namespace
