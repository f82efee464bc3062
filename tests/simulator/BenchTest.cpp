#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulator/Bench.h"

using simulator::Bench;
using simulator::BenchState;
using simulator::HostCards;
using simulator::kBelmaraBoard;
using simulator::kDovuBoard;
using simulator::MakeBench;
using simulator::PartRow;

namespace {

/// A row as "part running stored errors".
std::vector<std::string> Shown(const std::vector<PartRow>& rows) {
  const auto version = [](const std::optional<std::uint16_t>& value) {
    return value ? std::to_string(*value) : std::string("-");
  };
  std::vector<std::string> texts;
  for (const PartRow& row : rows)
    texts.push_back(row.part + " " + version(row.running) + " " + version(row.stored) + " " +
                    std::to_string(row.errors.size()));
  return texts;
}

void FlashWrite(Bench& bench, std::uint32_t wordAddress, std::uint32_t value) {
  bench.card(kBelmaraBoard)->Write(0x4008, wordAddress);
  bench.card(kBelmaraBoard)->Write(0x400C, value);
}

void EraseTopBlock(Bench& bench) {
  FlashWrite(bench, 0x1F0000, 0x20);
  FlashWrite(bench, 0x1F0000, 0xD0);
}

TEST(MakeBench, PlugsInTheCardsThatAreAskedFor) {
  struct Case {
    HostCards cards;
    bool belmara;
    bool dovu;
  };
  for (const Case& c : {Case{HostCards::kBoth, true, true}, Case{HostCards::kBelmara, true, false},
                        Case{HostCards::kDovu, false, true}, Case{HostCards::kNone, false, false}}) {
    Bench bench(MakeBench({.hostCards = c.cards}));
    EXPECT_EQ(bench.card(kBelmaraBoard) != nullptr, c.belmara);
    EXPECT_EQ(bench.card(kDovuBoard) != nullptr, c.dovu);
    EXPECT_EQ(bench.platform().devices().TrapAt(kBelmaraBoard.windowAddress) != nullptr, c.belmara);
    EXPECT_EQ(bench.platform().devices().TrapAt(kDovuBoard.windowAddress) != nullptr, c.dovu);
    EXPECT_EQ(bench.Rows().size(), (c.belmara ? 2u : 0u) + (c.dovu ? 2u : 0u));
  }
}

TEST(MakeBench, StartsWithOlderVersions) {
  EXPECT_THAT(Shown(RowsOf(MakeBench({}))),
              testing::ElementsAre("belmara 4448 4448 0", "bkarvel 22 22 0", "dovu 4448 4448 0", "dkarvel 22 22 0"));
}

TEST(MakeBench, LabelsTheCardsInTwoResources) {
  const BenchState state = MakeBench({});
  const std::string vpd(state.cards[0]->vpd->begin(), state.cards[0]->vpd->end());
  EXPECT_EQ(vpd.substr(0, 20), std::string("\x82\x11\x00"
                                           "BELMARA HOST CARD",
                                           20));
  EXPECT_THAT(vpd, testing::HasSubstr(std::string("ZB\x01"
                                                  "2ZC\x01"
                                                  "1\x90")))
      << "function revision 2.1, the last of the first resource";
  EXPECT_THAT(vpd, testing::HasSubstr(std::string("ZA\x01"
                                                  "5")));
  EXPECT_THAT(vpd, testing::HasSubstr("1-10017-3"));
}

TEST(MakeBench, FollowsItsSeed) {
  const auto image = [](std::uint64_t seed) { return MakeBench({.seed = seed}).cards[1]->flash.memory(); };
  EXPECT_EQ(image(7), image(7));
  EXPECT_NE(image(7), image(8));
}

TEST(Bench, MeetsAProgramThroughItsPlatform) {
  Bench bench(MakeBench({.hostCards = HostCards::kDovu}));
  platform::Devices& devices = bench.platform().devices();
  const platform::Handle set = devices.SetupDiGetClassDevsA(kDovuBoard.interfaceClass, 18);
  platform::InterfaceData data{.size = 28};
  EXPECT_TRUE(devices.SetupDiEnumDeviceInterfaces(set, kDovuBoard.interfaceClass, 0, data));
  EXPECT_FALSE(devices.SetupDiEnumDeviceInterfaces(set, kBelmaraBoard.interfaceClass, 0, data));
  EXPECT_EQ(&bench.platform().clock(), &bench.clock());
  EXPECT_EQ(&bench.platform().frontEnd(), &bench.frontEnd());
}

TEST(Bench, RunsWhatIsStoredOnlyAfterAPowerCycle) {
  Bench bench(MakeBench({.hostCards = HostCards::kBelmara}));
  bench.card(kBelmaraBoard)->state().karvelStored = 0x00170000;
  EraseTopBlock(bench);
  bench.clock().Sleep(750);
  EXPECT_THAT(Shown(bench.Rows()), testing::ElementsAre("belmara 4448 - 0", "bkarvel 22 23 0"));
  bench.PowerCycle();
  EXPECT_THAT(Shown(bench.Rows()), testing::ElementsAre("belmara - - 0", "bkarvel 23 23 0"));
}

TEST(Bench, LeavesAnOperationHalfDoneAtAPowerLoss) {
  Bench bench(MakeBench({.hostCards = HostCards::kBelmara}));
  EraseTopBlock(bench);
  bench.clock().Sleep(100);
  const BenchState cut = bench.StateAfterPowerLoss();
  EXPECT_EQ(cut.cards[0]->flash.memory().Word(0x1F0000), 0);
  EXPECT_EQ(cut.cards[0]->flash.memory().Word(0x1FFFFE), 0xFF78) << "the pointer to the stamp still stands";
  EXPECT_EQ(cut.cards[0]->flashRunning, 0x1160);
  EXPECT_EQ(cut.clockNanoseconds, bench.clock().NowNanoseconds());
  // The bench itself goes on.
  EXPECT_EQ(bench.card(kBelmaraBoard)->state().flash.memory().Word(0x1F0000), 0xFFFF);
  EXPECT_EQ(bench.card(kBelmaraBoard)->Read(0x400C), 0u) << "still busy";
  bench.clock().Sleep(650);
  EXPECT_EQ(bench.card(kBelmaraBoard)->Read(0x400C), 0x00800080u);
  EXPECT_EQ(Bench(cut).card(kBelmaraBoard)->Read(0x400C), 0xFFFFFFFFu) << "word address 0, in array mode";
}

TEST(Bench, HasItsOperationsEndedWhenItIsKept) {
  Bench bench(MakeBench({.hostCards = HostCards::kBelmara}));
  EraseTopBlock(bench);
  const BenchState kept = bench.State();
  EXPECT_THAT(Shown(RowsOf(kept)), testing::ElementsAre("belmara 4448 - 0", "bkarvel 22 22 0"));
  EXPECT_EQ(bench.card(kBelmaraBoard)->Read(0x400C), 0u) << "the bench itself is still busy";
}

TEST(Bench, StartsAtTheTimeOfItsState) {
  Bench bench(MakeBench({}));
  bench.clock().Sleep(1234);
  EXPECT_EQ(Bench(bench.State()).clock().NowNanoseconds(), 1'234'000'000);
}

TEST(Bench, HandsAFaultPlanToItsChips) {
  simulator::FaultPlan plan;
  plan.Add(simulator::ParseFault("erase-fails"));
  Bench bench(MakeBench({}));
  bench.UseFaults(&plan);
  EraseTopBlock(bench);
  EXPECT_EQ(plan.Count(simulator::Fault::kEraseFails), 1u);
  bench.UseFaults(nullptr);
  bench.clock().Sleep(750);
  EXPECT_EQ(bench.card(kBelmaraBoard)->Read(0x400C), 0x00A000A0u);
}

TEST(Bench, ShowsTheErrorsOfCardAndFlash) {
  Bench bench(MakeBench({.hostCards = HostCards::kBelmara}));
  FlashWrite(bench, 0, 0x33);
  bench.card(kBelmaraBoard)->Read(0x4004);
  bench.PowerCycle();
  EXPECT_THAT(bench.Rows()[0].errors,
              testing::ElementsAre("card: read of register 04004", "flash: unknown command 33 at word address 000000"));
  for (int i = 0; i < 101; ++i)
    bench.card(kBelmaraBoard)->Read(0);
  const auto errors = bench.Rows()[0].errors;
  ASSERT_EQ(errors.size(), 102u);
  EXPECT_EQ(errors[100], "and 2 more");
  EXPECT_EQ(errors[101], "flash: unknown command 33 at word address 000000");
}

}  // namespace
