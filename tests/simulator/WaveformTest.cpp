#include <gtest/gtest.h>

#include <sstream>

#include "simulator/Bench.h"
#include "simulator/Faulty.h"
#include "simulator/Waveform.h"

using simulator::Bench;
using simulator::HostCards;
using simulator::kBelmaraBoard;
using simulator::kDovuBoard;

namespace {

constexpr char kBothCards[] =
    "$timescale 1 ns $end\n"
    "$scope module belmara $end\n"
    "$var wire 1 ! tck $end\n"
    "$var wire 1 \" tms $end\n"
    "$var wire 1 # tdi $end\n"
    "$var wire 1 $ tdo $end\n"
    "$var wire 1 % enable $end\n"
    "$var wire 4 & tap_state [3:0] $end\n"
    "$var wire 32 ' fifo_status [31:0] $end\n"
    "$upscope $end\n"
    "$scope module dovu $end\n"
    "$var wire 1 ( tck $end\n"
    "$var wire 1 ) tms $end\n"
    "$var wire 1 * tdi $end\n"
    "$var wire 1 + tdo $end\n"
    "$var wire 1 , enable $end\n"
    "$var wire 4 - tap_state [3:0] $end\n"
    "$upscope $end\n"
    "$enddefinitions $end\n"
    "#0\n"
    "$dumpvars\n"
    "0!\n0\"\n0#\n1$\n0%\nb1111 &\nbx '\n"
    "0(\n0)\n0*\n1+\n0,\nb1111 -\n"
    "$end\n";

class WaveformTest : public testing::Test {
 protected:
  platform::RegisterTrap& Registers(const simulator::Board& board) {
    return *waveform.devices().TrapAt(board.windowAddress);
  }
  /// What was written behind the header.
  std::string Changes() const { return vcd.str().substr(sizeof kBothCards - 1); }

  Bench bench{simulator::MakeBench({})};
  simulator::FaultPlan plan;
  simulator::Faulty faulty{bench.platform(), plan};
  std::ostringstream vcd;
  simulator::Waveform waveform{faulty, bench, vcd};
};

TEST_F(WaveformTest, BeginsWithTheSignalsAndTheirValues) {
  EXPECT_EQ(vcd.str(), kBothCards);
}

TEST_F(WaveformTest, WritesTheChangesOfEachAccess) {
  auto& belmara = Registers(kBelmaraBoard);
  auto& dovu = Registers(kDovuBoard);
  belmara.Write(0x80400, 0x08);  // 250 ns: enable
  belmara.Write(0x80400, 0x08);
  belmara.Write(0x80400, 0x09);  // 750 ns: TCK, on to Run-Test/Idle
  EXPECT_EQ(belmara.Read(0x80400), 0x19u);
  belmara.Write(0x80400, 0x0A);  // 1250 ns: TCK low, TMS high
  dovu.Write(0x80400, 0x0C);     // 1500 ns
  belmara.Write(0x80400, 0x0B);  // 1750 ns: Select-DR
  EXPECT_EQ(Changes(),
            "#250\n1%\n"
            "#750\n1!\nb1100 &\n"
            "#1250\n0!\n1\"\n"
            "#1500\n1*\n1,\n"
            "#1750\n1!\nb0111 &\n");
}

TEST_F(WaveformTest, ShowsTdo) {
  auto& dovu = Registers(kDovuBoard);
  dovu.Write(0x80400, 0x08);
  // To Shift-DR, where IDCODE begins with a 0.
  for (const std::uint32_t pins : {0x08u, 0x0Au, 0x08u, 0x08u}) {
    dovu.Write(0x80400, pins);
    dovu.Write(0x80400, pins | 1);
    dovu.Write(0x80400, pins);
  }
  EXPECT_EQ(Changes(),
            "#250\n1,\n"
            "#750\n1(\nb1100 -\n#1000\n0(\n"
            "#1250\n1)\n#1500\n1(\nb0111 -\n#1750\n0(\n"
            "#2000\n0)\n#2250\n1(\nb0110 -\n#2500\n0(\n"
            "#3000\n1(\nb0010 -\n#3250\n0(\n0+\n");
}

TEST_F(WaveformTest, ShowsTheFifoStatusAsItWasRead) {
  auto& belmara = Registers(kBelmaraBoard);
  plan.Add(simulator::ParseFault("read-lost@3"));
  for (int i = 0; i < 3; ++i) {
    const std::uint32_t status = belmara.Read(0x80000);
    if (i < 2) belmara.Write(0x80000, status);
  }
  EXPECT_EQ(Changes(),
            "#250\nb00000000000000000001000100000000 '\n"
            "#1000\nb11111111111111111111111111111111 '\n");
}

TEST_F(WaveformTest, DrawsNothingElse) {
  auto& belmara = Registers(kBelmaraBoard);
  belmara.Read(0x04000);
  belmara.Write(0x04008, 0x100000);
  belmara.Read(0x0400C);
  Registers(kDovuBoard).Read(0x80000);
  EXPECT_EQ(Changes(), "");
}

TEST_F(WaveformTest, DrawsTheCardAndNotWhatWasSentToIt) {
  plan.Add(simulator::ParseFault("write-lost@1"));
  plan.Add(simulator::ParseFault("power-cut@3"));
  auto& belmara = Registers(kBelmaraBoard);
  belmara.Write(0x80400, 0x08);
  EXPECT_EQ(Changes(), "");
  belmara.Write(0x80400, 0x04);
  EXPECT_EQ(Changes(), "#250\n1#\n");
  EXPECT_THROW(belmara.Write(0x80400, 0x00), simulator::PowerCut);
  EXPECT_EQ(Changes(), "#250\n1#\n");
}

TEST_F(WaveformTest, LeavesEverythingElseAlone) {
  EXPECT_EQ(&waveform.clock(), &bench.clock());
  EXPECT_EQ(&waveform.frontEnd(), &bench.frontEnd());
  EXPECT_EQ(waveform.devices().TrapAt(0x1234), nullptr);
}

TEST(Waveform, HasTheCardsThatAreThereAndBeginsAtTheTimeOfTheBench) {
  Bench bench{simulator::MakeBench({.hostCards = HostCards::kDovu})};
  bench.clock().Advance(5'000'000'000'123);
  std::ostringstream vcd;
  simulator::Waveform waveform{bench.platform(), bench, vcd};
  bench.clock().Advance(7);
  waveform.devices().TrapAt(kDovuBoard.windowAddress)->Write(0x80400, 0x08);
  EXPECT_EQ(vcd.str(),
            "$timescale 1 ns $end\n"
            "$scope module dovu $end\n"
            "$var wire 1 ( tck $end\n"
            "$var wire 1 ) tms $end\n"
            "$var wire 1 * tdi $end\n"
            "$var wire 1 + tdo $end\n"
            "$var wire 1 , enable $end\n"
            "$var wire 4 - tap_state [3:0] $end\n"
            "$upscope $end\n"
            "$enddefinitions $end\n"
            "#5000000000123\n"
            "$dumpvars\n0(\n0)\n0*\n1+\n0,\nb1111 -\n$end\n"
            "#5000000000380\n1,\n");
}

TEST(Waveform, OfABenchWithoutCardsHasNoSignals) {
  Bench bench{simulator::MakeBench({.hostCards = HostCards::kNone})};
  std::ostringstream vcd;
  simulator::Waveform waveform{bench.platform(), bench, vcd};
  EXPECT_EQ(vcd.str(), "$timescale 1 ns $end\n$enddefinitions $end\n#0\n$dumpvars\n$end\n");
}

}  // namespace
