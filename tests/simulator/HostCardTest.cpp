#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "simulator/FlashImage.h"
#include "simulator/HostCard.h"

using simulator::HostCard;
using simulator::HostCardState;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class HostCardTest : public testing::Test {
 protected:
  static HostCardState State() {
    HostCardState state;
    simulator::VpdArea vpd{};
    vpd[0] = 0x11;
    vpd[1] = 0x22;
    vpd[2] = 0x33;
    vpd[3] = 0x44;
    vpd[8191] = 0x99;
    state.vpd = std::make_shared<const simulator::VpdArea>(vpd);
    state.karvelRunning = 0x00160000;
    state.karvel = simulator::KarvelCpld(simulator::MakeShelfKarvel(0x00170000));
    state.flash.memory().SetWord(0x100000, 0xBEEF);
    return state;
  }

  void FlashWrite(std::uint32_t wordAddress, std::uint32_t value) {
    card.Write(0x04008, wordAddress);
    card.Write(0x0400C, value);
  }
  const std::vector<std::string>& Errors() { return card.state().errors.texts(); }

  simulator::VirtualClock clock;
  HostCard card{simulator::kBelmaraBoard, State(), clock};
};

TEST_F(HostCardTest, ShowsItsVpdLowByteFirst) {
  EXPECT_EQ(card.Read(0x02000), 0x44332211u);
  EXPECT_EQ(card.Read(0x02004), 0u);
  EXPECT_EQ(card.Read(0x03FFC), 0x99000000u);
  EXPECT_THAT(Errors(), IsEmpty());
}

TEST_F(HostCardTest, ShowsTheRunningKarvelsVersion) {
  EXPECT_EQ(card.Read(0x04000), 0x00160000u);
}

TEST_F(HostCardTest, ReachesTheFlashThroughTheRegisterPair) {
  card.Write(0x04008, 0x100000);
  EXPECT_EQ(card.Read(0x0400C), 0xFFFFBEEFu);
  FlashWrite(0, 0x70);
  EXPECT_EQ(card.Read(0x0400C), 0x00800080u);
  EXPECT_THAT(Errors(), IsEmpty());
  EXPECT_THAT(card.state().flash.errors().texts(), IsEmpty());
}

TEST_F(HostCardTest, ReachesTheKarvelThroughTheJtagPort) {
  for (const simulator::Board* board : simulator::kHostCards) {
    HostCard each{*board, State(), clock};
    EXPECT_EQ(each.Read(0x80400), 0x10u);
    each.Write(0x80400, 0x08);
    each.Write(0x80400, 0x09);
    EXPECT_EQ(each.Read(0x80400), 0x19u);
    EXPECT_EQ(each.state().karvel.tapState(), simulator::TapState::kRunTestIdle);
    EXPECT_EQ(each.state().errors.total(), 0u);
    EXPECT_EQ(each.state().karvel.errors().total(), 0u);
    each.Write(0x80400, 0x10);
    EXPECT_EQ(each.state().errors.total(), 0u);
    EXPECT_THAT(each.state().karvel.errors().texts(),
                ElementsAre("karvel: write of 00000010, which is more than the driven pins"));
  }
}

TEST_F(HostCardTest, ProgramsTheKarvelInItsClocksTime) {
  card.state().karvel = simulator::KarvelCpld();
  // Enable; then ENABLE and PROGRAM DONE, both into Run-Test/Idle, with a clock for each digit of TMS and TDI.
  card.Write(0x80400, 0x08);
  const auto clockIn = [&](std::string_view tms, std::string_view tdi) {
    for (std::size_t i = 0; i < tms.size(); ++i) {
      const std::uint32_t pins = 0x08 | (tms[i] == '1' ? 0x02u : 0u) | (tdi[i] == '1' ? 0x04u : 0u);
      card.Write(0x80400, pins);
      card.Write(0x80400, pins | 0x01);
      card.Write(0x80400, pins);
    }
  };
  clockIn("011000000000110", "000000001010100");
  clockIn("11000000000110", "00000010111100");
  clock.Advance(999'999 - 250 - 250);
  card.Write(0x80400, 0x08);
  EXPECT_FALSE(card.state().karvel.cells().done) << "1 ns early";
  card.Write(0x80400, 0x08);
  EXPECT_TRUE(card.state().karvel.cells().done);
  EXPECT_EQ(card.state().karvel.errors().total(), 0u);
}

TEST_F(HostCardTest, AsksItsPlanAboutKarvelFaults) {
  simulator::FaultPlan plan;
  plan.Add(simulator::ParseFault("karvel-tdo-low"));
  card.UseFaults(&plan);
  card.Write(0x80400, 0x08);
  EXPECT_EQ(card.Read(0x80400), 0x08u);
  EXPECT_EQ(plan.Count(simulator::Fault::kKarvelUnplugged), 2u);
}

TEST_F(HostCardTest, RunsNoKarvelThatIsNotDone) {
  card.state().karvel.cells().done = false;
  EXPECT_EQ(card.Read(0x04000), 0x00160000u) << "what was loaded at power-up goes on";
  card.state().PowerCycle(clock.NowNanoseconds());
  EXPECT_EQ(card.Read(0x04000), 0xFFFFFFFFu);
}

TEST_F(HostCardTest, TakesAQuarterOfAMicrosecondAnAccess) {
  card.Read(0x02000);
  EXPECT_EQ(clock.NowNanoseconds(), 250);
  card.Write(0x04008, 0);
  EXPECT_EQ(clock.NowNanoseconds(), 500);
}

TEST_F(HostCardTest, ErasesInItsClocksTime) {
  FlashWrite(0x100000, 0x20);
  FlashWrite(0x100000, 0xD0);
  EXPECT_EQ(card.Read(0x0400C), 0u);
  clock.Sleep(750);
  EXPECT_EQ(card.Read(0x0400C), 0x00800080u);
  EXPECT_EQ(card.state().flash.memory().Word(0x100000), 0xFFFF);
}

TEST_F(HostCardTest, AsksItsPlanAboutFlashFaults) {
  simulator::FaultPlan plan;
  plan.Add(simulator::ParseFault("erase-fails"));
  card.UseFaults(&plan);
  FlashWrite(0x100000, 0x20);
  FlashWrite(0x100000, 0xD0);
  clock.Sleep(750);
  EXPECT_EQ(card.Read(0x0400C), 0x00A000A0u);
}

TEST_F(HostCardTest, RefusesReadsOfOtherRegisters) {
  const std::uint32_t refused[] = {0x00000, 0x01FFC, 0x02001, 0x02002, 0x04002, 0x04004, 0x04008,  0x0400D,   0x04010,
                                   0x7FFFC, 0x80004, 0x80214, 0x80388, 0x80402, 0x80404, 0x100000, 0xFFFFFFFC};
  for (const std::uint32_t offset : refused)
    EXPECT_EQ(card.Read(offset), 0xFFFFFFFFu) << std::hex << offset;
  EXPECT_EQ(card.state().errors.total(), std::size(refused));
  EXPECT_EQ(Errors()[0], "card: read of register 00000");
  EXPECT_EQ(Errors().back(), "card: read of register fffffffc");
}

TEST_F(HostCardTest, RefusesWritesOfOtherRegisters) {
  const std::uint32_t refused[] = {0x00000, 0x02000, 0x03FFC, 0x04000, 0x04004, 0x04009,
                                   0x0400E, 0x80004, 0x80388, 0x80401, 0x803FC, 0x80404};
  for (const std::uint32_t offset : refused)
    card.Write(offset, 0x12345678);
  EXPECT_EQ(card.state().errors.total(), std::size(refused));
  EXPECT_EQ(Errors()[1], "card: write of 12345678 to register 02000");
  EXPECT_EQ(card.Read(0x02000), 0x44332211u);
  EXPECT_EQ(card.Read(0x04000), 0x00160000u);
}

TEST_F(HostCardTest, HasTheFifosOfTheBoxOnOneBoardOnly) {
  EXPECT_EQ(card.Read(0x80000), 0x1100u) << "there also without a box";
  card.Write(0x80000, 0x1100);
  EXPECT_THAT(Errors(), IsEmpty());
  EXPECT_EQ(card.state().fifo.errors().total(), 0u);

  HostCard dovu{simulator::kDovuBoard, State(), clock};
  for (const std::uint32_t offset : {0x80000u, 0x80210u, 0x80380u, 0x80384u}) {
    EXPECT_EQ(dovu.Read(offset), 0xFFFFFFFFu);
    dovu.Write(offset, 0);
  }
  EXPECT_EQ(dovu.state().errors.total(), 8u);
  EXPECT_EQ(dovu.state().fifo.errors().total(), 0u);
}

TEST_F(HostCardTest, SpeaksToTheBoxInItsClocksTime) {
  simulator::VeltraBox box{{}};
  card.Connect(&box);
  for (const auto& [word, control] : {std::pair{0x0B0B0004u, 0x80000020u}, {0x80030000u, 0x80000000u}}) {
    card.Write(0x80380, word);
    card.Write(0x80384, control);
  }
  EXPECT_EQ(clock.NowNanoseconds(), 4 * 250);
  clock.Advance(300'000 + 2 * 4'000);
  EXPECT_EQ(card.Read(0x80210), 0x0B0B0010u);
  EXPECT_EQ(card.state().fifo.errors().total(), 0u);
}

TEST_F(HostCardTest, LosesWhatIsInTheFifosWithThePower) {
  card.state().fifo.AddStaleReplies();
  EXPECT_EQ(card.Read(0x80000) & 0x1000, 0u);
  card.state().PowerCycle(clock.NowNanoseconds());
  EXPECT_EQ(card.Read(0x80000) & 0x1000, 0x1000u);
  EXPECT_EQ(card.state().fifo.errors().total(), 0u);
}

TEST_F(HostCardTest, RunsWhatIsStoredAfterAPowerCycle) {
  HostCardState& state = card.state();
  EXPECT_EQ(state.flashRunning, std::nullopt);
  state.flash = simulator::FlashChip(simulator::MakeInstalledFlash("BLMX0202.rbi", "BLMX", 0x1160, 1));
  FlashWrite(0x3F0000, 0x20);
  state.PowerCycle(clock.NowNanoseconds());
  EXPECT_EQ(state.flashRunning, 0x1160);
  EXPECT_EQ(card.Read(0x04000), 0x00170000u);
  EXPECT_EQ(state.flashAddressRegister, 0u);
}

// The driver.

class HostCardDriver : public HostCardTest {
 protected:
  std::uint32_t Control(std::uint32_t code, const std::vector<std::uint8_t>& in) {
    return card.Control(code, in, out, returned);
  }
  std::vector<std::uint8_t> MapRequest(std::uint8_t start, std::uint32_t size) {
    std::vector<std::uint8_t> request(12, 0);
    request[0] = start;
    for (std::size_t i = 0; i < 4; ++i)
      request[8 + i] = static_cast<std::uint8_t>(size >> (i * 8));
    return request;
  }

  std::vector<std::uint8_t> out = std::vector<std::uint8_t>(200, 0xEE);
  std::uint32_t returned = 4711;
};

TEST_F(HostCardDriver, GivesTheMemoryMap) {
  EXPECT_EQ(Control(0xC1762080, {}), 0u);
  EXPECT_EQ(returned, 96u);
  EXPECT_THAT(std::vector<std::uint8_t>(out.begin(), out.begin() + 4), ElementsAre(0x00, 0x00, 0x10, 0x00))
      << "the register window is 1 MiB";
  EXPECT_EQ(out[96], 0xEE) << "not beyond the record";
}

TEST_F(HostCardDriver, MapsItsRegisters) {
  EXPECT_EQ(Control(0xC1762404, MapRequest(0, 0x100000)), 0u);
  EXPECT_EQ(returned, 16u);
  EXPECT_THAT(std::vector<std::uint8_t>(out.begin(), out.begin() + 8),
              ElementsAre(0x00, 0x00, 0x40, 0x4C, 0x32, 0x7B, 0x00, 0x00));
  EXPECT_NE(out[8] | out[9] | out[10] | out[11], 0) << "the low half of the second value";
  EXPECT_EQ(out[16], 0xEE);
  EXPECT_EQ(card.TrapAt(0x00007B324C400000), &card);
  EXPECT_EQ(card.TrapAt(0x00007B324C400004), nullptr);
  EXPECT_EQ(card.TrapAt(0), nullptr);
}

TEST_F(HostCardDriver, FindsStaleRepliesOnDemand) {
  simulator::FaultPlan plan;
  plan.Add(simulator::ParseFault("stale-replies@2"));
  card.UseFaults(&plan);
  Control(0xC1762404, MapRequest(0, 0x100000));
  EXPECT_TRUE(card.state().fifo.Replies().empty());
  Control(0xC1762404, MapRequest(1, 0x100000));
  EXPECT_TRUE(card.state().fifo.Replies().empty()) << "nothing was mapped";
  Control(0xC1762404, MapRequest(0, 0x100000));
  EXPECT_EQ(card.state().fifo.Replies().size(), 20u);
  EXPECT_EQ(card.Read(0x80210), 0x0B0B0049u) << "there at once";

  HostCard dovu{simulator::kDovuBoard, State(), clock};
  dovu.UseFaults(&plan);
  dovu.Control(0xC1762404, MapRequest(0, 0x100000), out, returned);
  EXPECT_EQ(plan.Count(simulator::Fault::kStaleReplies), 2u);
}

TEST_F(HostCardDriver, ExaminesTheRecords) {
  EXPECT_EQ(Control(0xC1762080, {0}), 87u) << "the memory map has no in record";
  EXPECT_EQ(Control(0xC1762404, {}), 87u);
  EXPECT_EQ(Control(0xC1762404, MapRequest(1, 0x100000)), 87u) << "start is 0";
  EXPECT_EQ(Control(0xC1762404, MapRequest(0, 0x0FFFFF)), 87u) << "size is the map's";
  std::vector<std::uint8_t> longer = MapRequest(0, 0x100000);
  longer.push_back(0);
  EXPECT_EQ(Control(0xC1762404, longer), 87u);
  out.resize(95);
  EXPECT_EQ(Control(0xC1762080, {}), 122u);
  out.resize(15);
  EXPECT_EQ(Control(0xC1762404, MapRequest(0, 0x100000)), 122u);
  EXPECT_EQ(Control(0xAA010038, {}), 1u) << "another driver's call";
  EXPECT_EQ(returned, 4711u);
  EXPECT_THAT(out, testing::Each(0xEE));
}

}  // namespace
