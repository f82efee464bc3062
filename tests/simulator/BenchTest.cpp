#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulator/Bench.h"

using simulator::Bench;
using simulator::BenchState;
using simulator::BoxChoice;
using simulator::HostCards;
using simulator::kBelmaraBoard;
using simulator::kDovuBoard;
using simulator::kMorvakBoard;
using simulator::MakeBench;
using simulator::OrboQx;
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
    Bench bench(MakeBench({.hostCards = c.cards, .box = BoxChoice::kNone}));
    EXPECT_EQ(bench.card(kBelmaraBoard) != nullptr, c.belmara);
    EXPECT_EQ(bench.card(kDovuBoard) != nullptr, c.dovu);
    EXPECT_EQ(bench.platform().devices().TrapAt(kBelmaraBoard.windowAddress) != nullptr, c.belmara);
    EXPECT_EQ(bench.platform().devices().TrapAt(kDovuBoard.windowAddress) != nullptr, c.dovu);
    EXPECT_EQ(bench.Rows().size(), (c.belmara ? 2u : 0u) + (c.dovu ? 2u : 0u));
  }
}

TEST(MakeBench, StartsWithOlderVersions) {
  EXPECT_THAT(Shown(RowsOf(MakeBench({}))),
              testing::ElementsAre("belmara 4448 4448 0", "bkarvel 22 22 0", "dovu 4448 4448 0", "dkarvel 22 22 0",
                                   "pelgrimar 536 536 0", "fwcore 548 548 0", "tulmen 1 1 0", "vulmen 225 225 0",
                                   "tolmarn 560 560 0", "ulmen 27 27 0"));
}

TEST(MakeBench, ConnectsTheBoxThatIsAskedFor) {
  EXPECT_TRUE(MakeBench({}).box->isOn);
  EXPECT_FALSE(MakeBench({.box = BoxChoice::kOff}).box->isOn);
  EXPECT_FALSE(MakeBench({.box = BoxChoice::kNone}).box.has_value());
  EXPECT_EQ(Bench(MakeBench({.box = BoxChoice::kNone})).box(), nullptr);
  EXPECT_TRUE(MakeBench({.hostCards = HostCards::kNone}).box->isOn) << "there, but nothing is connected to it";
}

TEST(MakeBench, TakesTheBoxFromTheShelf) {
  const simulator::VeltraBoxState box = *MakeBench({}).box;
  EXPECT_THAT(box.running.revisions,
              testing::ElementsAre(0x02, 0x18, 0x00, 0xE1, 0x00, 0x01, 0x02, 0x30, 0x00, 0x1B, 0x01, 0x00));
  EXPECT_EQ(box.running.firmwareRev, "2.24 b");
  EXPECT_EQ(box.stored, box.running);
  for (const auto& vpd : box.vpd) {
    const std::string text(vpd->begin(), vpd->end());
    EXPECT_THAT(text, testing::HasSubstr(std::string("ZB\x01"
                                                     "2ZC\x01"
                                                     "1")));
    EXPECT_THAT(text, testing::HasSubstr("PN"));
    EXPECT_THAT(text, testing::HasSubstr("SN"));
    EXPECT_LE(vpd->size(), 1'999u);
  }
  EXPECT_NE(box.vpd[0], box.vpd[1]);
}

TEST(MakeBench, PlugsInTheOrboQxThatIsAskedFor) {
  const auto rows = [](OrboQx choice) {
    return Shown(RowsOf(MakeBench({.hostCards = HostCards::kNone, .box = BoxChoice::kNone, .orboQx = choice})));
  };
  EXPECT_THAT(rows(OrboQx::kModel4),
              testing::ElementsAre("pico 288 288 0", "xandrel 782 782 0", "teskpro 15 15 0", "vqxpwr 265 265 0",
                                   "enc1 515 515 0", "vid1 9 9 0", "enc2b 31 31 0", "vid2 9 9 0"));
  EXPECT_THAT(rows(OrboQx::kModel5),
              testing::ElementsAre("pico 288 288 0", "yorvalen 545 545 0", "teskpro 15 15 0", "jqxpwry 265 265 0"));
  EXPECT_THAT(rows(OrboQx::kNone), testing::IsEmpty());
  EXPECT_EQ(Bench(MakeBench({})).unit(), nullptr);
}

TEST(MakeBench, TakesTheOrboQxFromTheShelf) {
  const simulator::MorvakUnitState unit = *MakeBench({.orboQx = OrboQx::kModel4}).unit;
  EXPECT_EQ(unit.model, 4u);
  EXPECT_EQ(unit.codecSlots, 2u);
  EXPECT_THAT(unit.codecState, testing::ElementsAre(1, 2));
  EXPECT_EQ(unit.running.Of(0), "0120b");
  EXPECT_EQ(unit.stored, unit.running);
  const std::string vpd(unit.vpd->begin(), unit.vpd->end());
  EXPECT_THAT(vpd, testing::HasSubstr("ZB\x01"
                                      "1ZC\x01"
                                      "1"));
  const auto partNumber = [](const simulator::MorvakUnitState& of, std::uint32_t board) {
    const std::string text(of.boards.at(board).begin(), of.boards.at(board).end());
    return text.substr(text.find("PN\x09") + 3, 9);
  };
  EXPECT_EQ(unit.boards.size(), 3u);
  EXPECT_EQ(partNumber(unit, 0), "1-20040-2");
  EXPECT_EQ(partNumber(unit, 2), "1-20035-1");
  EXPECT_EQ(partNumber(unit, 3), "1-20173-1");
  const simulator::MorvakUnitState other = *MakeBench({.orboQx = OrboQx::kModel5}).unit;
  EXPECT_EQ(other.model, 5u);
  EXPECT_EQ(other.codecSlots, 0u);
  EXPECT_EQ(other.boards.size(), 1u);
  EXPECT_EQ(partNumber(other, 0), "1-20046-2");
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

TEST(MakeBench, TakesTheKarvelsFromTheShelf) {
  const BenchState state = MakeBench({});
  for (const auto& card : state.cards) {
    EXPECT_EQ(card->karvelRunning, 0x00160000u);
    EXPECT_TRUE(card->karvel.cells().done);
    EXPECT_THAT(card->karvel.cells().usercode, testing::ElementsAre('B', 'N', 'C', 'H'));
    for (const simulator::KarvelRow& row : card->karvel.cells().rows)
      EXPECT_THAT(row, testing::Not(testing::Each(0xFF))) << "programmed, like all of it";
  }
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
  Bench bench(MakeBench({.hostCards = HostCards::kBelmara, .box = BoxChoice::kNone}));
  bench.card(kBelmaraBoard)->state().karvel.cells().rows[0] = {0x00, 0x17};
  EraseTopBlock(bench);
  bench.clock().Sleep(750);
  EXPECT_THAT(Shown(bench.Rows()), testing::ElementsAre("belmara 4448 - 0", "bkarvel 22 23 0"));
  bench.PowerCycle();
  EXPECT_THAT(Shown(bench.Rows()), testing::ElementsAre("belmara - - 0", "bkarvel 23 23 0"));
}

TEST(Bench, LeavesAnOperationHalfDoneAtAPowerLoss) {
  Bench bench(MakeBench({.hostCards = HostCards::kBelmara, .box = BoxChoice::kNone}));
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

TEST(Bench, ShowsAKarvelThatDoesNotRunAsErased) {
  Bench bench(MakeBench({.hostCards = HostCards::kDovu, .box = BoxChoice::kNone}));
  bench.card(kDovuBoard)->state().karvel.cells().done = false;
  EXPECT_THAT(Shown(bench.Rows()), testing::ElementsAre("dovu 4448 4448 0", "dkarvel 22 - 0"));
  bench.PowerCycle();
  EXPECT_THAT(Shown(bench.Rows()), testing::ElementsAre("dovu 4448 4448 0", "dkarvel - - 0"));
  bench.card(kDovuBoard)->state().karvel.cells().done = true;
  EXPECT_THAT(Shown(bench.Rows()), testing::ElementsAre("dovu 4448 4448 0", "dkarvel - 22 0"));
}

TEST(Bench, ShowsTheErrorsOfAKarvelInItsRow) {
  Bench bench(MakeBench({.hostCards = HostCards::kBelmara, .box = BoxChoice::kNone}));
  bench.card(kBelmaraBoard)->Write(0x80400, 0x10);
  EXPECT_THAT(bench.Rows()[0].errors, testing::IsEmpty());
  EXPECT_THAT(bench.Rows()[1].errors,
              testing::ElementsAre("karvel: write of 00000010, which is more than the driven pins"));
  for (int i = 0; i < 101; ++i)
    bench.card(kBelmaraBoard)->Write(0x80400, 0x10);
  EXPECT_EQ(bench.Rows()[1].errors.size(), 101u);
  EXPECT_EQ(bench.Rows()[1].errors.back(), "and 2 more");
}

TEST(Bench, ResetsTheKarvelsPortWhenItIsKept) {
  Bench bench(MakeBench({.hostCards = HostCards::kBelmara, .box = BoxChoice::kNone}));
  bench.card(kBelmaraBoard)->Write(0x80400, 0x08);
  EXPECT_EQ(bench.State().cards[0]->karvel.Pins(), 0x10u);
  EXPECT_THAT(bench.Rows()[1].errors, testing::ElementsAre("karvel: programming enable was left high"));
  EXPECT_EQ(bench.StateAfterPowerLoss().cards[0]->karvel.errors().total(), 0u);
  EXPECT_EQ(bench.card(kBelmaraBoard)->Read(0x80400), 0x18u) << "the bench itself goes on";
}

TEST(Bench, HasItsOperationsEndedWhenItIsKept) {
  Bench bench(MakeBench({.hostCards = HostCards::kBelmara, .box = BoxChoice::kNone}));
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
  Bench bench(MakeBench({.hostCards = HostCards::kBelmara, .box = BoxChoice::kNone}));
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

/// A bench whose box is in the middle of a conversation.
class BenchWithBox : public testing::Test {
 protected:
  void Write(std::uint32_t offset, std::uint32_t value) { bench.card(kBelmaraBoard)->Write(offset, value); }
  std::uint32_t Read(std::uint32_t offset) { return bench.card(kBelmaraBoard)->Read(offset); }
  std::uint32_t Status() {
    const std::uint32_t status = Read(0x80000);
    Write(0x80000, status);
    return status;
  }
  void Send(const std::vector<std::uint32_t>& words) {
    for (std::size_t i = 0; i < words.size(); ++i) {
      Write(0x80380, words[i]);
      Write(0x80384, i == 0 ? 0x80000020 : 0x80000000);
    }
  }
  /// Sends a command, waits a second, and drops its answer of two words.
  void Done(const std::vector<std::uint32_t>& words) {
    Send(words);
    bench.clock().Sleep(1'000);
    Write(0x80210, 0);
    Write(0x80210, 0);
  }
  void SendHwConfig() { Send({0x0B0B0004, 0x80030000}); }
  /// The CPLD ulmen at version 0123, with 2 bytes: a burn of 24 ms.
  void Download() {
    Done({0x0B0B000A, 0x80120000, 0x02030000, 0x00020000});
    Done({0x0B0B0008, 0x80140000, 0x00020123});
  }
  void StartProgram() { Send({0x0B0B0004, 0x80160000}); }
  /// The rows of firmware and ulmen.
  static std::vector<std::string> Box(const std::vector<PartRow>& rows) { return {Shown(rows)[3], Shown(rows)[7]}; }

  Bench bench{MakeBench({.hostCards = HostCards::kBelmara})};
};

TEST_F(BenchWithBox, ReachesItThroughTheFirstCard) {
  SendHwConfig();
  bench.clock().Sleep(1);
  EXPECT_EQ(Read(0x80210), 0x0B0B0016u);
  EXPECT_THAT(Box(bench.Rows()), testing::ElementsAre("fwcore 548 548 0", "ulmen 27 27 0"));
}

TEST_F(BenchWithBox, ShowsWhatTheBoxRefusedInTheFirmwaresRow) {
  Send({0x0B0B0004, 0x80550000});
  Read(0x80210);
  const auto rows = bench.Rows();
  EXPECT_THAT(rows[0].errors, testing::ElementsAre("fifo: read of an empty reply FIFO"));
  EXPECT_EQ(rows[3].part, "fwcore");
  EXPECT_THAT(rows[3].errors, testing::ElementsAre("box: command 8055: is not known"));
}

TEST_F(BenchWithBox, ShowsOptionalPartsWhereThereIsSomethingInThem) {
  BenchState state = MakeBench({.hostCards = HostCards::kNone});
  state.box->running = {};
  state.box->stored = {};
  EXPECT_THAT(Shown(RowsOf(state)), testing::ElementsAre("pelgrimar 0 0 0", "fwcore - - 0", "ulmen 0 0 0"));
  state.box->stored.revisions[7] = 1;
  state.box->running.revisions[4] = 1;
  EXPECT_THAT(Shown(RowsOf(state)), testing::ElementsAre("pelgrimar 0 0 0", "fwcore - - 0", "tulmen 256 0 0",
                                                         "tolmarn 0 1 0", "ulmen 0 0 0"));
}

TEST_F(BenchWithBox, RunsWhatWasBurntAfterAPowerCycle) {
  Download();
  StartProgram();
  bench.clock().Sleep(25);
  EXPECT_THAT(Box(bench.Rows()), testing::ElementsAre("fwcore 548 548 0", "ulmen 27 291 0"));
  bench.PowerCycle();
  EXPECT_THAT(Box(bench.Rows()), testing::ElementsAre("fwcore 548 548 0", "ulmen 291 291 0"));
  EXPECT_EQ(Status(), 0x1100u) << "the answer is gone";
}

TEST_F(BenchWithBox, HasItsBurnEndedWhenItIsKept) {
  Download();
  StartProgram();
  Bench later(bench.State());
  EXPECT_THAT(Box(later.Rows()), testing::ElementsAre("fwcore 548 548 0", "ulmen 27 291 0"));
  EXPECT_EQ(later.card(kBelmaraBoard)->Read(0x80210), 0x0B0B0004u) << "the answer waits";
  EXPECT_EQ(Status(), 0x1100u) << "the bench itself still burns";
}

TEST_F(BenchWithBox, LosesABurnWithThePower) {
  Download();
  StartProgram();
  bench.clock().Sleep(23);
  EXPECT_EQ(RowsOf(bench.StateAfterPowerLoss())[7].stored, 0x001B);
  EXPECT_FALSE(bench.StateAfterPowerLoss().box->downloads.burn.has_value());
  bench.clock().Sleep(2);
  EXPECT_EQ(RowsOf(bench.StateAfterPowerLoss())[7].running, 0x0123) << "although nobody looked";
}

TEST_F(BenchWithBox, GivesADownloadUpWhenItIsKept) {
  Download();
  Bench later(bench.State());
  EXPECT_FALSE(later.State().box->downloads.transfer.has_value());
  StartProgram();
  EXPECT_EQ(bench.State().box->stored.revisions[9], 0x23) << "the bench itself goes on";
}

TEST_F(BenchWithBox, IsNotHurtByHalfAPacketOfTheLastRun) {
  Send({0x0B0B0006, 0x80350000});
  bench.clock().Sleep(1);
  Bench later(bench.State());
  EXPECT_TRUE(later.State().box->packet.empty());
  EXPECT_EQ(later.Rows()[3].errors.size(), 0u);
}

TEST_F(BenchWithBox, HandsItsFaultPlanToTheBox) {
  simulator::FaultPlan plan;
  plan.Add(simulator::ParseFault("box-off"));
  bench.UseFaults(&plan);
  SendHwConfig();
  bench.clock().Sleep(10);
  EXPECT_EQ(Status(), 0x1100u);
  SendHwConfig();
  EXPECT_EQ(Bench(bench.State()).card(kBelmaraBoard)->Read(0x80210), 0xFFFFFFFFu) << "off to the end of the run";
  EXPECT_EQ(plan.Count(simulator::Fault::kBoxOff), 1u);
  EXPECT_TRUE(bench.State().box->isOn);
}

TEST_F(BenchWithBox, AsksItsPlanAboutWhatIsDueBeforeThePowerGoes) {
  simulator::FaultPlan plan;
  plan.Add(simulator::ParseFault("box-silent@3"));
  bench.UseFaults(&plan);
  Download();
  StartProgram();
  bench.clock().Sleep(1'000);
  EXPECT_EQ(RowsOf(bench.StateAfterPowerLoss())[7].running, 0x001B);
}

/// A bench with an Orbo QX, reached through its driver.
class BenchWithUnit : public testing::Test {
 protected:
  using Bytes = std::vector<std::uint8_t>;

  void SetUp() override {
    platform::Devices& devices = bench.platform().devices();
    const platform::Handle set = devices.SetupDiGetClassDevsA(kMorvakBoard.interfaceClass, 18);
    platform::InterfaceData data{.size = 28};
    platform::DeviceInfo info{.size = 28};
    EXPECT_TRUE(devices.SetupDiEnumDeviceInterfaces(set, kMorvakBoard.interfaceClass, 0, data));
    EXPECT_TRUE(devices.SetupDiEnumDeviceInfo(set, 0, info));
    device = devices.CreateFileA(std::string(kMorvakBoard.devicePath).c_str(), 0xC0000000, 3, 3, 128);
    EXPECT_NE(device, platform::kInvalidHandle);
  }
  /// Exchanges a packet and waits so long for its answer. True where it comes, and brings success.
  bool Exchange(const Bytes& packet, std::uint32_t timeoutMicroseconds = 1'000'000) {
    Bytes reply(2048, 0);
    Bytes in;
    const auto add = [&](std::uint64_t value, int bytes) {
      for (int i = 0; i < bytes; ++i)
        in.push_back(static_cast<std::uint8_t>(value >> (i * 8)));
    };
    add(reinterpret_cast<std::uintptr_t>(packet.data()), 8);
    add(reinterpret_cast<std::uintptr_t>(reply.data()), 8);
    add(packet.size(), 4);
    add(reply.size(), 4);
    add(timeoutMicroseconds, 4);
    std::uint8_t out[8] = {};
    std::uint32_t returned = 0;
    EXPECT_TRUE(bench.platform().devices().DeviceIoControl(device, 0xAA010038, in.data(), 28, out, 8, returned, 0));
    return reply[0] == 0x0B && reply[7] == 0;
  }
  /// The power CPLD at version 0123, with 2 bytes: a burn of 24 ms that is begun.
  void StartBurn() {
    Exchange(
        {0x0B, 0x0B, 0x00, 0x0E, 0xC0, 0x02, 0x00, 0x00, 0x00, 0x08, 0x62, 0x64, 0x00, 0x02, 0x00, 0x02, 0x00, 0x00});
    bench.clock().Sleep(500);
    EXPECT_TRUE(Exchange({0x0B, 0x0B, 0x00, 0x0A, 0x80, 0x12, 0x00, 0x00, 0x01, 0x02, 0x00, 0x00, 0x00, 0x02}));
    EXPECT_TRUE(Exchange({0x0B, 0x0B, 0x00, 0x08, 0x80, 0x14, 0x00, 0x00, 0x00, 0x02, 0x01, 0x23}));
    EXPECT_FALSE(Exchange({0x0B, 0x0B, 0x00, 0x04, 0x80, 0x16, 0x00, 0x00}, 0));
  }
  static std::string Power(const std::vector<PartRow>& rows) { return Shown(rows)[3]; }

  Bench bench{MakeBench({.hostCards = HostCards::kNone, .box = BoxChoice::kNone, .orboQx = OrboQx::kModel4})};
  platform::Handle device = 0;
};

TEST_F(BenchWithUnit, RunsWhatWasBurntAfterAPowerCycle) {
  StartBurn();
  bench.clock().Sleep(24);
  EXPECT_EQ(Power(bench.Rows()), "vqxpwr 265 291 0");
  bench.PowerCycle();
  EXPECT_EQ(Power(bench.Rows()), "vqxpwr 291 291 0");
}

TEST_F(BenchWithUnit, HasItsBurnEndedWhenItIsKept) {
  StartBurn();
  const BenchState kept = bench.State();
  EXPECT_EQ(Power(RowsOf(kept)), "vqxpwr 265 291 0");
  EXPECT_FALSE(kept.unit->downloads.burn.has_value());
  EXPECT_TRUE(bench.unit()->state().downloads.burn.has_value()) << "the bench itself still burns";
}

TEST_F(BenchWithUnit, LosesABurnWithThePower) {
  StartBurn();
  bench.clock().Sleep(23);
  EXPECT_EQ(Power(RowsOf(bench.StateAfterPowerLoss())), "vqxpwr 265 265 0");
  bench.clock().Sleep(1);
  EXPECT_EQ(Power(RowsOf(bench.StateAfterPowerLoss())), "vqxpwr 291 291 0");
}

TEST_F(BenchWithUnit, ShowsWhatTheUnitRefusedInItsFirstRow) {
  EXPECT_FALSE(Exchange({0x0B, 0x0B, 0x00, 0x04, 0x80, 0x03, 0x00, 0x00}));
  EXPECT_THAT(bench.Rows()[0].errors, testing::ElementsAre("morvak: command 8003: is not known"));
  EXPECT_EQ(bench.Rows()[0].part, "pico");
  BenchState state = bench.State();
  state.unit->running.Set(0, std::nullopt);
  state.unit->stored.Set(0, std::nullopt);
  EXPECT_THAT(Shown(RowsOf(state))[0], "xandrel 782 782 1");
  state.unit->running = {};
  state.unit->stored = {};
  EXPECT_THAT(Shown(RowsOf(state)), testing::ElementsAre("pico - - 1")) << "it has no part that tells anything";
  state.unit->errors = {};
  EXPECT_THAT(Shown(RowsOf(state)), testing::IsEmpty());
}

TEST_F(BenchWithUnit, ShowsAPartOfWhichOnlyOneTextIsThere) {
  BenchState state = bench.State();
  state.unit->running.Set(4, "UNKNOWN");
  state.unit->stored.Set(9, "01.02 x");
  const auto rows = Shown(RowsOf(state));
  EXPECT_THAT(std::vector<std::string>(rows.begin() + 8, rows.end()),
              testing::ElementsAre("MorvakCodec1CPLD - - 0", "MorvakFirmwareSafe - 258 0"));
}

TEST_F(BenchWithUnit, HandsItsFaultPlanToTheUnit) {
  simulator::FaultPlan plan;
  plan.Add(simulator::ParseFault("talc-bad-header"));
  bench.UseFaults(&plan);
  const Bytes request = {0x0B, 0x0B, 0x00, 0x06, 0x80, 0x35, 0x00, 0x00, 0x00, 0x00};
  EXPECT_FALSE(Exchange(request));
  bench.UseFaults(nullptr);
  EXPECT_TRUE(Exchange(request));
}

}  // namespace
