#include <gtest/gtest.h>

#include "simulator/BoxParts.h"

using simulator::BoxVersions;
using simulator::FindBoxPart;
using simulator::PartKind;

namespace {

TEST(BoxParts, AreFoundByKindAndNumberAndById) {
  struct Case {
    PartKind kind;
    std::uint8_t number;
    const char* id;
    const char* name;
  };
  for (const Case& c : {Case{PartKind::kFpga, 0, "PLGR", "pelgrimar"}, Case{PartKind::kFpga, 1, "TLM_", "tolmarn"},
                        Case{PartKind::kFirmware, 0, "BROX", "fwcore"}, Case{PartKind::kCpld, 2, "ULMN", "ulmen"},
                        Case{PartKind::kCpld, 3, "TULM", "tulmen"}, Case{PartKind::kCpld, 4, "VULM", "vulmen"}}) {
    ASSERT_NE(FindBoxPart(c.kind, c.number), nullptr) << c.name;
    EXPECT_EQ(FindBoxPart(c.kind, c.number)->name, c.name);
    EXPECT_EQ(FindBoxPart(c.kind, c.number), FindBoxPart(c.id));
  }
  EXPECT_EQ(FindBoxPart(PartKind::kFpga, 2), nullptr);
  EXPECT_EQ(FindBoxPart(PartKind::kCpld, 0), nullptr);
  EXPECT_EQ(FindBoxPart(PartKind::kFirmware, 1), nullptr);
  EXPECT_EQ(FindBoxPart("BLMX"), nullptr);
}

TEST(BoxVersions, KeepARevisionPairForEachPart) {
  struct Case {
    const char* id;
    std::size_t majorAt;
  };
  for (const Case& c : {Case{"PLGR", 0}, Case{"VULM", 2}, Case{"TULM", 4}, Case{"TLM_", 6}, Case{"ULMN", 8}}) {
    BoxVersions versions;
    versions.Set(*FindBoxPart(c.id), 0x1234);
    BoxVersions expected;
    expected.revisions[c.majorAt] = 0x12;
    expected.revisions[c.majorAt + 1] = 0x34;
    EXPECT_EQ(versions, expected) << c.id;
    EXPECT_EQ(versions.Of(*FindBoxPart(c.id)), 0x1234) << c.id;
  }
}

TEST(BoxVersions, HaveTheFirmwaresInItsText) {
  BoxVersions versions;
  versions.Set(*FindBoxPart("BROX"), 0x0225);
  EXPECT_EQ(versions.firmwareRev, "2.25");
  versions.Set(*FindBoxPart("BROX"), 0x1A05);
  EXPECT_EQ(versions.firmwareRev, "1a.05");
  const std::pair<const char*, std::optional<std::uint16_t>> cases[] = {
      {"2.25", 0x0225},        {"2.24 b", 0x0224},     {"1a.5", 0x1A05},         {"2.25x", 0x0225},
      {"02.0F-", 0x020F},      {"", std::nullopt},     {"225", std::nullopt},    {".25", std::nullopt},
      {"2.", std::nullopt},    {"2. 5", std::nullopt}, {" 2.25", std::nullopt},  {"100.25", std::nullopt},
      {"2.100", std::nullopt}, {"x.25", std::nullopt}, {"UNKNOWN", std::nullopt}};
  for (const auto& [text, version] : cases) {
    versions.firmwareRev = text;
    EXPECT_EQ(versions.Of(*FindBoxPart("BROX")), version) << text;
  }
}

}  // namespace
