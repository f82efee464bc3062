#include "KarvelCpldFixture.h"

using simulator::Fault;
using simulator::ParseFault;
using testing::Each;
using testing::ElementsAre;

namespace {

class KarvelCpldFault : public KarvelCpldTest {
 protected:
  const simulator::KarvelCells shelf = simulator::MakeShelfKarvel(0x00160000);
  const Bytes kData = Bytes(16, 0x5A);
};

TEST_F(KarvelCpldFault, UnpluggedFromTheAccessOn) {
  plan.Add(ParseFault("karvel-unplugged@3"));
  Write(kEnable);
  Write(kEnable | kTck);
  EXPECT_EQ(State(), 0xC);
  Write(kEnable);
  EXPECT_EQ(State(), 0xF) << "without its pins the part is in reset";
  Move("0100");
  EXPECT_EQ(State(), 0xF);
  EXPECT_EQ(cpld.ReadPort(now, &plan), 0x18u) << "pins as the card drives them, TDO pulled up";
  EXPECT_EQ(plan.Count(Fault::kKarvelUnplugged), 3u + 4 * 3 + 1);
  ExpectNoErrors();
}

TEST_F(KarvelCpldFault, UnpluggedAtARead) {
  Connect();
  Move("100");
  plan.Add(ParseFault("karvel-unplugged"));
  EXPECT_TRUE(Tdo());
  EXPECT_EQ(State(), 0xF);
  EXPECT_EQ(ShiftBits("00000000"), "11111111");
  ExpectNoErrors();
}

TEST_F(KarvelCpldFault, UnpluggedInTheMiddleOfAnOperation) {
  Connect();
  EnterProgramming();
  Load(kErase);
  now += 1'000;
  plan.Add(ParseFault("karvel-unplugged"));
  Write(kEnable);
  now += 80'000'000;
  Write(kEnable);
  EXPECT_EQ(cpld.cells().rows[0], simulator::KarvelCells().rows[0]);
  EXPECT_EQ(cpld.cells().rows[32], shelf.rows[32]);
  ExpectNoErrors();
}

TEST_F(KarvelCpldFault, UnpluggedForTheRunOnly) {
  for (const bool powerLoss : {false, true}) {
    simulator::FaultPlan unplug;
    unplug.Add(ParseFault("karvel-unplugged"));
    cpld.WritePort(0, now, &unplug);
    if (powerLoss)
      cpld.PowerLoss(now);
    else
      cpld.Settle();
    Connect();
    EXPECT_THAT(ScanData({0, 0, 0, 0}), ElementsAre('K', 'R', 'V', 'L'));
    Write(0);
  }
  ExpectNoErrors();
}

TEST_F(KarvelCpldFault, TdoLowFromTheReadOn) {
  plan.Add(ParseFault("karvel-tdo-low@2"));
  Connect();
  EXPECT_TRUE(Tdo());
  EXPECT_FALSE(Tdo());
  EXPECT_EQ(cpld.Pins(), 0x08u);
  EXPECT_EQ(ScanData({0, 0, 0, 0}), Bytes(4, 0));
  EXPECT_EQ(plan.Count(Fault::kKarvelTdoLow), 34u) << "reads alone";
  Load(kUsercode);
  EXPECT_EQ(State(), 0xC) << "the part itself goes on";
  cpld.PowerLoss(now);
  EXPECT_EQ(cpld.Pins(), 0x10u);
  ExpectNoErrors();
}

TEST_F(KarvelCpldFault, EraseThatErasesNothing) {
  plan.Add(ParseFault("karvel-erase-fails@1"));
  Connect();
  EnterProgramming();
  Erase();
  Write(kEnable);
  EXPECT_EQ(cpld.cells(), shelf);
  Erase();
  Write(kEnable);
  EXPECT_EQ(cpld.cells(), simulator::KarvelCells());
  EXPECT_EQ(plan.Count(Fault::kKarvelEraseFails), 2u);
  ExpectNoErrors();
}

TEST_F(KarvelCpldFault, EraseThatErasesNothingAndIsAborted) {
  plan.Add(ParseFault("karvel-erase-fails"));
  Connect();
  EnterProgramming();
  Load(kErase);
  Move("1");
  ExpectError("karvel: ERASE aborted after 0 of 80000000 ns");
  EXPECT_EQ(cpld.cells(), shelf);
}

TEST_F(KarvelCpldFault, RowThatStaysErased) {
  plan.Add(ParseFault("karvel-row-fails@2"));
  Connect();
  EnterProgramming();
  Erase();
  for (const int row : {8, 9, 10}) {
    ProgramRow(row, kData);
    now += 2'000'000;
  }
  EXPECT_EQ(ReadRow(8), kData);
  EXPECT_THAT(ReadRow(9), Each(0xFF));
  EXPECT_EQ(ReadRow(10), kData);
  EXPECT_EQ(plan.Count(Fault::kKarvelRowFails), 3u);
  ExpectNoErrors();
}

TEST_F(KarvelCpldFault, RefusedOperationsAreNoEvents) {
  Connect();
  EnterProgramming();
  ProgramRow(8, kData);
  ExpectError("karvel: PROGRAM ROW over row 8, which is not erased");
  EXPECT_EQ(plan.Count(Fault::kKarvelRowFails), 0u);
}

}  // namespace
