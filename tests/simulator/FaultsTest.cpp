#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <type_traits>

#include "simulator/Faults.h"

using simulator::Fault;
using simulator::FaultEntry;
using simulator::FaultPlan;
using simulator::FaultTable;
using simulator::ParseFault;

namespace {

TEST(FaultTable, HasARowForEachFaultInOrder) {
  std::set<std::string_view> names;
  for (std::size_t i = 0; i < FaultTable().size(); ++i) {
    const FaultEntry& entry = FaultTable()[i];
    EXPECT_EQ(entry.fault, static_cast<Fault>(i)) << entry.name;
    EXPECT_TRUE(names.insert(entry.name).second) << entry.name;
    EXPECT_FALSE(entry.strikes.empty());
    EXPECT_FALSE(entry.meaning.empty());
    EXPECT_EQ(entry.needsNumber, entry.name == "power-cut");
  }
  EXPECT_THAT(names, testing::IsSupersetOf(std::set<std::string_view>{"device-missing",
                                                                      "class-set-fails",
                                                                      "interface-detail-fails",
                                                                      "open-fails",
                                                                      "control-fails",
                                                                      "memory-map-fails",
                                                                      "memory-map-short",
                                                                      "map-registers-fails",
                                                                      "map-registers-short",
                                                                      "map-refused",
                                                                      "map-refused-second",
                                                                      "write-lost",
                                                                      "erase-fails",
                                                                      "erase-stuck",
                                                                      "buffer-busy",
                                                                      "program-fails",
                                                                      "program-stuck",
                                                                      "karvel-unplugged",
                                                                      "karvel-tdo-low",
                                                                      "karvel-erase-fails",
                                                                      "karvel-row-fails",
                                                                      "box-silent",
                                                                      "box-off",
                                                                      "box-late",
                                                                      "box-reply-cut",
                                                                      "box-no-header",
                                                                      "box-length-low",
                                                                      "box-length-high",
                                                                      "box-values-missing",
                                                                      "box-status-fail",
                                                                      "box-status-not-supported",
                                                                      "box-status-transmit",
                                                                      "box-status-time-out",
                                                                      "box-status-unknown",
                                                                      "transfer-refused",
                                                                      "program-answer-wrong",
                                                                      "command-fifo-full",
                                                                      "stale-replies",
                                                                      "talc-fails",
                                                                      "talc-short",
                                                                      "talc-time-out",
                                                                      "talc-unwritten",
                                                                      "talc-bad-header",
                                                                      "model-fails",
                                                                      "slots-invalid",
                                                                      "slot-fails",
                                                                      "vpd-fails",
                                                                      "board-vpd-damaged",
                                                                      "part-unknown",
                                                                      "power-cut"}));
}

TEST(ParseFault, ReadsEveryNameOfTheTable) {
  for (const FaultEntry& entry : FaultTable()) {
    const auto request = ParseFault(std::string(entry.name) + "@17");
    EXPECT_EQ(request.fault, entry.fault);
    EXPECT_EQ(request.number, 17u);
  }
  EXPECT_EQ(ParseFault("erase-fails").number, std::nullopt);
  EXPECT_EQ(ParseFault("erase-fails@18446744073709551615").number, ~std::uint64_t{0});
}

struct BadFault {
  const char* text;
  const char* complaint;
};

class ParseFaultRefuses : public testing::TestWithParam<BadFault> {};

TEST_P(ParseFaultRefuses, BadText) {
  try {
    ParseFault(GetParam().text);
    FAIL() << "accepted " << GetParam().text;
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(), GetParam().complaint);
  }
}

#define NEEDS_NUMBER(text)                                                       \
  BadFault {                                                                     \
    text, "the fault \"" text "\" needs a decimal number from 1 on behind its @" \
  }

INSTANTIATE_TEST_SUITE_P(
    Texts, ParseFaultRefuses,
    testing::Values(BadFault{"", "there is no fault \"\"; \"fwbench faults\" lists them"},
                    BadFault{"erase-fail", "there is no fault \"erase-fail\"; \"fwbench faults\" lists them"},
                    BadFault{"Erase-Fails@1", "there is no fault \"Erase-Fails\"; \"fwbench faults\" lists them"},
                    BadFault{"@1", "there is no fault \"\"; \"fwbench faults\" lists them"},
                    BadFault{"power-cut", "the fault power-cut needs a number: power-cut@N"},
                    NEEDS_NUMBER("erase-fails@"), NEEDS_NUMBER("erase-fails@0"), NEEDS_NUMBER("erase-fails@-1"),
                    NEEDS_NUMBER("erase-fails@+1"), NEEDS_NUMBER("erase-fails@1x"), NEEDS_NUMBER("erase-fails@ 1"),
                    NEEDS_NUMBER("erase-fails@0x10"), NEEDS_NUMBER("erase-fails@1@2"),
                    NEEDS_NUMBER("erase-fails@18446744073709551616"), NEEDS_NUMBER("power-cut@0")));

TEST(FaultPlan, StrikesTheEventOfItsNumber) {
  FaultPlan plan;
  plan.Add(ParseFault("erase-fails@2"));
  EXPECT_FALSE(plan.Strikes(Fault::kEraseFails));
  EXPECT_TRUE(plan.Strikes(Fault::kEraseFails));
  EXPECT_FALSE(plan.Strikes(Fault::kEraseFails));
  EXPECT_EQ(plan.Count(Fault::kEraseFails), 3u);
}

TEST(FaultPlan, StrikesEveryEventWithoutANumber) {
  FaultPlan plan;
  plan.Add(ParseFault("erase-fails"));
  for (int i = 0; i < 3; ++i)
    EXPECT_TRUE(plan.Strikes(Fault::kEraseFails));
}

TEST(FaultPlan, CountsEachKindForItself) {
  FaultPlan plan;
  plan.Add(ParseFault("erase-fails@2"));
  plan.Add(ParseFault("program-fails@1"));
  EXPECT_FALSE(plan.Strikes(Fault::kEraseFails));
  EXPECT_TRUE(plan.Strikes(Fault::kProgramFails));
  EXPECT_TRUE(plan.Strikes(Fault::kEraseFails));
  EXPECT_EQ(plan.Count(Fault::kProgramFails), 1u);
  EXPECT_EQ(plan.Count(Fault::kEraseStuck), 0u);
}

TEST(FaultPlan, TakesOneFaultSeveralTimes) {
  FaultPlan plan;
  plan.Add(ParseFault("write-lost@1"));
  plan.Add(ParseFault("write-lost@3"));
  EXPECT_TRUE(plan.Strikes(Fault::kWriteLost));
  EXPECT_FALSE(plan.Strikes(Fault::kWriteLost));
  EXPECT_TRUE(plan.Strikes(Fault::kWriteLost));
}

TEST(FaultPlan, NeedNotBeThere) {
  EXPECT_FALSE(simulator::Strikes(nullptr, Fault::kBoxSilent));
  FaultPlan plan;
  plan.Add(ParseFault("box-silent"));
  EXPECT_TRUE(simulator::Strikes(&plan, Fault::kBoxSilent));
  EXPECT_EQ(plan.Count(Fault::kBoxSilent), 1u);
}

TEST(FaultPlan, StrikesNothingWhenEmpty) {
  FaultPlan plan;
  for (const FaultEntry& entry : FaultTable())
    EXPECT_FALSE(plan.Strikes(entry.fault)) << entry.name;
}

// A handler of the program's own exceptions must not stop a power cut.
static_assert(!std::is_base_of_v<std::exception, simulator::PowerCut>);

}  // namespace
