#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "simulator/Vpd.h"

using simulator::MakeVpdArea;
using simulator::VpdArea;

namespace {

TEST(MakeVpdBlock, EndsBehindItsEnd) {
  EXPECT_EQ(simulator::MakeVpdBlock("A", {{{"ZB", "2"}}}),
            (std::vector<std::uint8_t>{0x82, 0x01, 0x00, 'A', 0x90, 0x04, 0x00, 'Z', 'B', 0x01, '2', 0x78}));
}

TEST(FindVpdField, FindsTheFirstInAnyResource) {
  const std::vector<std::uint8_t> block = {0x82, 0x02, 0x00, 'P',  'N',                   // a product's name
                                           0x0A, 'x',  'x',                               // a small resource
                                           0x90, 0x05, 0x00, 'Z',  'B', 0x02, '1',  '0',  //
                                           0x90, 0x08, 0x00, 'P',  'N', 0x01, 'a',  'P', 'N', 1, 'b',  //
                                           0x78, 0x90, 0x04, 0x00, 'Z', 'Z',  0x01, 'c'};
  EXPECT_EQ(simulator::FindVpdField(block, "ZB"), "10");
  EXPECT_EQ(simulator::FindVpdField(block, "PN"), "a");
  EXPECT_EQ(simulator::FindVpdField(block, "ZZ"), std::nullopt) << "behind the end";
  EXPECT_EQ(simulator::FindVpdField(simulator::MakeVpdArea("", {{{"ZA", ""}}}), "ZA"), "");
}

TEST(FindVpdField, StopsWhereABlockIsDamaged) {
  const std::vector<std::uint8_t> block = {0x90, 0x04, 0x00, 'P', 'N', 0x01, 'a'};
  EXPECT_EQ(simulator::FindVpdField(block, "PN"), "a");
  for (std::size_t length = 0; length < block.size(); ++length)
    EXPECT_EQ(simulator::FindVpdField(std::span(block).first(length), "PN"), std::nullopt) << length;
  const std::vector<std::uint8_t> longField = {0x90, 0x04, 0x00, 'P', 'N', 0x02, 'a', 'b'};
  EXPECT_EQ(simulator::FindVpdField(longField, "PN"), std::nullopt) << "a field that leaves its resource";
  const std::vector<std::uint8_t> smallAtEnd = {0x0F, 'x'};
  EXPECT_EQ(simulator::FindVpdField(smallAtEnd, "PN"), std::nullopt);
}

TEST(MakeVpdArea, WritesProductFieldsAndEnd) {
  const VpdArea area = MakeVpdArea("AB", {{{"ZB", "2"}, {"PN", "1-2-3"}}, {{"ZA", ""}}});
  const std::string expected(
      "\x82\x02\x00"
      "AB"
      "\x90\x0C\x00"
      "ZB\x01"
      "2"
      "PN\x05"
      "1-2-3"
      "\x90\x03\x00"
      "ZA\x00"
      "\x78",
      27);
  EXPECT_EQ(std::string(area.begin(), area.begin() + 27), expected);
  EXPECT_TRUE(std::all_of(area.begin() + 27, area.end(), [](std::uint8_t byte) { return byte == 0; }));
}

TEST(MakeVpdArea, WritesLongResourcesLowByteFirst) {
  const VpdArea area = MakeVpdArea("", {{{"AA", std::string(255, 'x')}, {"BB", "y"}}});
  EXPECT_EQ(area[3], 0x90);
  EXPECT_EQ(area[4], 0x06) << "262 bytes";
  EXPECT_EQ(area[5], 0x01);
  EXPECT_EQ(area[8], 255);
}

TEST(MakeVpdArea, RefusesWhatDoesNotFit) {
  // 3 bytes of product, 3 of head, 31 fields of 258, 1 of 184, 1 of end: 8192 in all.
  std::vector<simulator::VpdField> full(31, {"AA", std::string(255, 'x')});
  full.push_back({"BB", std::string(184, 'y')});
  const VpdArea area = MakeVpdArea("", {full});
  EXPECT_EQ(area[8191], 0x78);
  full.back().second.push_back('y');
  EXPECT_THROW(MakeVpdArea("", {full}), std::length_error);
  EXPECT_THROW(MakeVpdArea("", {{{"AA", std::string(256, 'x')}}}), std::length_error);
  EXPECT_THROW(MakeVpdArea("", {{{"A", "x"}}}), std::length_error);
  EXPECT_THROW(MakeVpdArea(std::string(70'000, 'p'), {}), std::length_error);
}

}  // namespace
