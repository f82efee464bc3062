#include "KarvelCpldFixture.h"

using testing::Each;
using testing::ElementsAre;

namespace {

class KarvelCpldProgram : public KarvelCpldTest {
 protected:
  void SetUp() override {
    Connect();
    EnterProgramming();
  }
  /// A programmed part of which nothing is erased.
  const simulator::KarvelCells shelf = simulator::MakeShelfKarvel(0x00160000);
  const Bytes kData = {0x00, 0x17, 0x00, 0x00, 0x80, 0x01, 0xA5, 0x5A, 0x10, 0x20, 0x30, 0x40, 0x50, 0x60, 0x70, 0x81};
};

TEST_F(KarvelCpldProgram, ErasesAllInItsTime) {
  Load(kErase);
  now += 79'999'999;
  Write(kEnable);
  EXPECT_EQ(cpld.cells(), shelf);
  now += 1;
  Write(kEnable);
  for (std::size_t row = 0; row < 64; ++row)
    EXPECT_THAT(Row(row), Each(0xFF)) << row;
  EXPECT_THAT(cpld.cells().usercode, Each(0xFF));
  EXPECT_FALSE(cpld.cells().done);
  ExpectNoErrors();
}

TEST_F(KarvelCpldProgram, MayLeaveIdleAtTheEndOfTheTime) {
  Load(kErase);
  now += 80'000'000;
  Move("1");
  EXPECT_EQ(cpld.cells(), simulator::KarvelCells());
  ExpectNoErrors();
}

TEST_F(KarvelCpldProgram, MayClockInIdleMeanwhile) {
  Load(kErase);
  Move("000");
  now += 79'999'999;
  Move("000");
  EXPECT_EQ(cpld.cells(), shelf);
  now += 1;
  Move("0");
  EXPECT_EQ(cpld.cells(), simulator::KarvelCells());
  Move("000");
  now += 80'000'000;
  ExpectNoErrors();
}

TEST_F(KarvelCpldProgram, StartsFromPauseToo) {
  Move("1100");
  ShiftBits("00000011");
  Move("0");
  EXPECT_EQ(State(), 0xB);
  now += 80'000'000;
  EXPECT_EQ(cpld.cells(), shelf);
  Move("110");
  EXPECT_EQ(State(), 0xC);
  now += 80'000'000;
  Write(kEnable);
  EXPECT_EQ(cpld.cells(), simulator::KarvelCells());
  ExpectNoErrors();
}

TEST_F(KarvelCpldProgram, DoesNotStartWhereIdleDoesNotFollow) {
  Move("1100");
  ShiftBits("00000011");
  Move("1101");
  EXPECT_EQ(State(), 0x1) << "by Select-DR and Capture-DR";
  Move("10");
  EXPECT_EQ(State(), 0xC);
  now += 80'000'000;
  Move("1");
  EXPECT_EQ(cpld.cells(), shelf);
  ExpectNoErrors();
}

TEST_F(KarvelCpldProgram, DoesNotStartWhereEnableFallsInBetween) {
  Move("1100");
  ShiftBits("00000011");
  Move("1");
  EXPECT_EQ(State(), 0xD);
  Write(0);
  Connect();
  EXPECT_EQ(State(), 0xC);
  now += 80'000'000;
  Move("1");
  EXPECT_EQ(cpld.cells(), shelf);
  ExpectNoErrors();
}

TEST_F(KarvelCpldProgram, StartsOncePerInstruction) {
  Erase();
  Move("1101");
  Move("10");
  EXPECT_EQ(State(), 0xC) << "back in idle, with ERASE still loaded";
  Move("1");
  ExpectNoErrors();
}

TEST_F(KarvelCpldProgram, ProgramsARowInItsTime) {
  Erase();
  ProgramRow(5, kData);
  now += 1'999'999;
  Write(kEnable);
  EXPECT_THAT(Row(5), Each(0xFF));
  now += 1;
  Move("1");
  EXPECT_EQ(Row(5), kData);
  EXPECT_THAT(Row(4), Each(0xFF));
  EXPECT_THAT(Row(6), Each(0xFF));
  ExpectNoErrors();
}

TEST_F(KarvelCpldProgram, SelectsRowZeroByTheLastBit) {
  Erase();
  Load(kAddress);
  ScanData({0, 0, 0, 0, 0, 0, 0, 1});
  Load(kProgramRow);
  ScanData(kData);
  now += 2'000'000;
  Load(kAddress);
  ScanData({0x80, 0, 0, 0, 0, 0, 0, 0});
  Load(kProgramRow);
  ScanData(Bytes(16, 0x63));
  now += 2'000'000;
  Load(kAddress);
  ScanData({0, 0, 0, 0, 0, 0, 2, 0});
  Load(kProgramRow);
  ScanData(Bytes(16, 0x09));
  now += 2'000'000;
  Write(kEnable);
  EXPECT_EQ(Row(0), kData);
  EXPECT_THAT(Row(63), Each(0x63));
  EXPECT_THAT(Row(9), Each(0x09));
  ExpectNoErrors();
}

TEST_F(KarvelCpldProgram, ReadsTheSelectedRow) {
  const Bytes first = ReadRow(0);
  EXPECT_THAT(Bytes(first.begin(), first.begin() + 4), ElementsAre(0x00, 0x16, 0x00, 0x00));
  EXPECT_EQ(ReadRow(63), Row(63));
  EXPECT_EQ(ScanData(Bytes(16, 0xAA)), Row(63)) << "what is shifted in is ignored";
  EXPECT_EQ(ScanData(Bytes(16, 0x55)), Row(63));
  EXPECT_EQ(cpld.cells(), shelf);
  ExpectNoErrors();
}

TEST_F(KarvelCpldProgram, ReadsBackWhatItProgrammed) {
  Erase();
  ProgramRow(31, kData);
  now += 2'000'000;
  EXPECT_EQ(ReadRow(31), kData);
  EXPECT_EQ(ReadRow(30), Bytes(16, 0xFF));
  ExpectNoErrors();
}

TEST_F(KarvelCpldProgram, TakesARowOfOnesForStillErased) {
  Erase();
  ProgramRow(1, Bytes(16, 0xFF));
  now += 2'000'000;
  ProgramRow(1, kData);
  now += 2'000'000;
  EXPECT_EQ(ReadRow(1), kData);
  ExpectNoErrors();
}

TEST_F(KarvelCpldProgram, ProgramsUsercodeInItsTime) {
  Erase();
  Load(kProgramUsercode);
  ScanData({'K', 'V', 0x00, 0x17});
  now += 1'999'999;
  Write(kEnable);
  EXPECT_THAT(cpld.cells().usercode, Each(0xFF));
  now += 1;
  Load(kUsercode);
  EXPECT_THAT(ScanData({0, 0, 0, 0}), ElementsAre('K', 'V', 0x00, 0x17));
  ExpectNoErrors();
}

TEST_F(KarvelCpldProgram, ProgramsDoneInItsTime) {
  Erase();
  Load(kProgramDone);
  now += 999'999;
  Write(kEnable);
  EXPECT_FALSE(cpld.cells().done);
  now += 1;
  Write(kEnable);
  EXPECT_TRUE(cpld.cells().done);
  ExpectNoErrors();
}

TEST_F(KarvelCpldProgram, TellsTheVersionOfRowZeroWhenItIsDone) {
  EXPECT_EQ(cpld.cells().VersionWord(), 0x00160000u);
  Erase();
  ProgramRow(0, {0x12, 0x34, 0x56, 0x78, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF});
  now += 2'000'000;
  Write(kEnable);
  EXPECT_EQ(cpld.cells().VersionWord(), 0xFFFFFFFFu);
  Load(kProgramDone);
  now += 1'000'000;
  Write(kEnable);
  EXPECT_EQ(cpld.cells().VersionWord(), 0x12345678u);
}

TEST_F(KarvelCpldProgram, LeavesProgrammingModeByDisable) {
  Load(kLeave);
  Load(kErase);
  ExpectError("karvel: ERASE outside programming mode");
}

TEST_F(KarvelCpldProgram, LeavesProgrammingModeInReset) {
  SelectRow(3);
  Move("111");
  EXPECT_EQ(State(), 0xF);
  Move("0");
  Load(kProgramDone);
  ExpectError("karvel: PROGRAM DONE outside programming mode");
  EnterProgramming();
  Load(kReadRow);
  ScanData(Bytes(16, 0));
  EXPECT_EQ(Errors().back(), "karvel: READ ROW without a selected row");
}

// What is interrupted.

TEST_F(KarvelCpldProgram, LeavesAnAbortedEraseHalfDone) {
  Load(kErase);
  now += 79'999'999;
  Move("1");
  ExpectError("karvel: ERASE aborted after 79999999 of 80000000 ns");
  for (std::size_t row = 0; row < 64; ++row)
    EXPECT_EQ(cpld.cells().rows[row], (row < 32 ? simulator::KarvelCells() : shelf).rows[row]) << row;
  EXPECT_THAT(cpld.cells().usercode, Each(0xFF));
  EXPECT_FALSE(cpld.cells().done);
  now += 80'000'000;
  Move("1");
  EXPECT_EQ(cpld.cells().rows[63], shelf.rows[63]) << "it does not go on";
}

TEST_F(KarvelCpldProgram, LeavesAnAbortedRowHalfProgrammed) {
  Erase();
  ProgramRow(2, kData);
  now += 1'999'999;
  Move("1");
  ExpectError("karvel: PROGRAM ROW aborted after 1999999 of 2000000 ns");
  EXPECT_THAT(Row(2), ElementsAre(0x00, 0x17, 0x00, 0x00, 0x80, 0x01, 0xA5, 0x5A, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                  0xFF, 0xFF));
}

TEST_F(KarvelCpldProgram, LeavesAnAbortedUsercodeErased) {
  Erase();
  Load(kProgramUsercode);
  ScanData({1, 2, 3, 4});
  Move("1");
  ExpectError("karvel: PROGRAM USERCODE aborted after 0 of 2000000 ns");
  EXPECT_THAT(cpld.cells().usercode, Each(0xFF));
}

TEST_F(KarvelCpldProgram, LeavesAnAbortedDoneUnprogrammed) {
  Erase();
  Load(kProgramDone);
  now += 999'999;
  Move("1");
  ExpectError("karvel: PROGRAM DONE aborted after 999999 of 1000000 ns");
  EXPECT_FALSE(cpld.cells().done);
}

TEST_F(KarvelCpldProgram, AbortsWhenEnableFalls) {
  Erase();
  ProgramRow(2, kData);
  now += 1'000;
  Write(0);
  ExpectError("karvel: PROGRAM ROW aborted after 1000 of 2000000 ns");
  EXPECT_EQ(Row(2)[7], 0x5A);
  EXPECT_EQ(Row(2)[8], 0xFF);
}

TEST_F(KarvelCpldProgram, DoesNotMindEnableFallingAtTheEndOfTheTime) {
  Erase();
  ProgramRow(2, kData);
  now += 2'000'000;
  Write(0);
  ExpectNoErrors();
  EXPECT_EQ(Row(2), kData);
}

TEST_F(KarvelCpldProgram, AbortsSilentlyAtAPowerLoss) {
  Load(kErase);
  now += 79'999'999;
  simulator::KarvelCpld cut = cpld;
  cut.PowerLoss(now);
  EXPECT_EQ(cut.cells().rows[31], simulator::KarvelCells().rows[0]);
  EXPECT_EQ(cut.cells().rows[32], shelf.rows[32]);
  EXPECT_FALSE(cut.cells().done);
  EXPECT_EQ(cut.ReadPort(now), 0x10u) << "all pins low";
  EXPECT_EQ(static_cast<int>(cut.tapState()), 0xF);
  EXPECT_EQ(cut.errors().total(), 0u);

  simulator::KarvelCpld over = cpld;
  over.PowerLoss(now + 1);
  EXPECT_EQ(over.cells(), simulator::KarvelCells());
}

TEST_F(KarvelCpldProgram, ForgetsItsModeAtAPowerLoss) {
  SelectRow(3);
  cpld.PowerLoss(now);
  Connect();
  Load(kErase);
  ExpectError("karvel: ERASE outside programming mode");
}

TEST_F(KarvelCpldProgram, EndsWhatIsInFlightWhenItIsKept) {
  Load(kErase);
  Write(0x08);
  simulator::KarvelCpld kept = cpld;
  kept.Settle();
  EXPECT_EQ(kept.cells(), simulator::KarvelCells());
  EXPECT_THAT(kept.errors().texts(), ElementsAre("karvel: programming enable was left high"));
  EXPECT_EQ(kept.ReadPort(now), 0x10u);
  EXPECT_EQ(static_cast<int>(kept.tapState()), 0xF);

  Move("111");
  cpld = simulator::KarvelCpld(shelf);
  Connect();
  Write(0);
  cpld.Settle();
  ExpectNoErrors();
  EXPECT_EQ(cpld.cells(), shelf);
}

}  // namespace
