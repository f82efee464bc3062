#include "KarvelCpldFixture.h"

using testing::Each;
using testing::ElementsAre;

namespace {

class KarvelCpldRefusal : public KarvelCpldTest {
 protected:
  const simulator::KarvelCells shelf = simulator::MakeShelfKarvel(0x00160000);
};

TEST_F(KarvelCpldRefusal, OfMoreThanTheDrivenPins) {
  Write(kEnable);
  Write(0x10 | kEnable);
  Write(0x80000001 | kEnable);
  EXPECT_THAT(Errors(), ElementsAre("karvel: write of 00000018, which is more than the driven pins",
                                    "karvel: write of 80000009, which is more than the driven pins"));
  EXPECT_EQ(cpld.ReadPort(now), 0x18u) << "no pin has changed";
  EXPECT_EQ(State(), 0xF);
}

TEST_F(KarvelCpldRefusal, OfAClockWithoutEnable) {
  Write(kTck);
  Write(0);
  EXPECT_EQ(State(), 0xF);
  Write(kTck | kEnable);
  EXPECT_EQ(State(), 0xF) << "enable comes too late";
  EXPECT_THAT(Errors(), ElementsAre("karvel: TCK raised while programming enable is low",
                                    "karvel: TCK raised while programming enable is low"));
  Write(kEnable);
  Clock(false);
  EXPECT_EQ(State(), 0xC);
  Write(kTck);
  EXPECT_EQ(State(), 0xF) << "enable falls with the rising edge";
  EXPECT_EQ(cpld.errors().total(), 3u);
}

TEST_F(KarvelCpldRefusal, OfAClockWithoutSetupTime) {
  Connect();
  Write(kEnable | kTck | kTms);
  Write(kEnable | kTms);
  EXPECT_EQ(State(), 0xC);
  Write(kEnable | kTck | kTms | kTdi);
  EXPECT_EQ(State(), 0xC);
  EXPECT_THAT(Errors(), ElementsAre("karvel: TCK raised in the write that changes TMS or TDI",
                                    "karvel: TCK raised in the write that changes TMS or TDI"));
}

TEST_F(KarvelCpldRefusal, OfAClockDoesNotRepeatAnUpdate) {
  Connect();
  Move("1100");
  ShiftBits("10011001");
  Move("1");
  ExpectError("karvel: unknown instruction 99");
  Write(kEnable);
  Write(kEnable | kTck | kTms);
  Write(kEnable);
  EXPECT_EQ(State(), 0xD);
  EXPECT_EQ(cpld.errors().total(), 2u) << "the refused clock's falling edge is none";
}

TEST_F(KarvelCpldRefusal, OfAnUnknownInstructionMeansBypass) {
  Connect();
  Load(0x00);
  Load(0x11);
  EXPECT_THAT(Errors(), ElementsAre("karvel: unknown instruction 00", "karvel: unknown instruction 11"));
  EXPECT_EQ(ScanDataBits("101"), "010");
}

TEST_F(KarvelCpldRefusal, OfAnInstructionOfAnotherLength) {
  Connect();
  Load(kUsercode);
  ScanInstructionBits("0001011");
  ScanInstructionBits("000101100");
  EXPECT_THAT(Errors(), ElementsAre("karvel: an instruction of 7 bits instead of 8",
                                    "karvel: an instruction of 9 bits instead of 8"));
  EXPECT_THAT(ScanData({0, 0, 0, 0}), ElementsAre('B', 'N', 'C', 'H')) << "the old one is still loaded";
}

TEST_F(KarvelCpldRefusal, OfWhatNeedsProgrammingMode) {
  Connect();
  const struct {
    std::uint8_t instruction;
    const char* text;
  } cases[] = {{kErase, "karvel: ERASE outside programming mode"},
               {kAddress, "karvel: ADDRESS outside programming mode"},
               {kProgramRow, "karvel: PROGRAM ROW outside programming mode"},
               {kReadRow, "karvel: READ ROW outside programming mode"},
               {kProgramUsercode, "karvel: PROGRAM USERCODE outside programming mode"},
               {kProgramDone, "karvel: PROGRAM DONE outside programming mode"}};
  std::uint64_t errors = 0;
  for (const auto& each : cases) {
    Load(each.instruction);
    EXPECT_EQ(cpld.errors().total(), ++errors);
    EXPECT_EQ(Errors().back(), each.text);
    now += 80'000'000;
    EXPECT_EQ(ScanDataBits("101"), "010") << "bypass";
    now += 80'000'000;
    Move("0");
  }
  EXPECT_EQ(cpld.errors().total(), errors);
  EXPECT_EQ(cpld.cells(), shelf);
}

TEST_F(KarvelCpldRefusal, OfDataOfAnotherLength) {
  Connect();
  EnterProgramming();
  const struct {
    std::uint8_t instruction;
    std::size_t bits;
    const char* text;
  } cases[] = {{kIdcode, 31, "karvel: 31 bits for IDCODE instead of 32"},
               {kUsercode, 33, "karvel: 33 bits for USERCODE instead of 32"},
               {kAddress, 65, "karvel: 65 bits for ADDRESS instead of 64"},
               {kAddress, 1, "karvel: 1 bits for ADDRESS instead of 64"},
               {kProgramRow, 127, "karvel: 127 bits for PROGRAM ROW instead of 128"},
               {kProgramRow, 256, "karvel: 256 bits for PROGRAM ROW instead of 128"},
               {kProgramUsercode, 128, "karvel: 128 bits for PROGRAM USERCODE instead of 32"}};
  std::uint64_t errors = 0;
  for (const auto& each : cases) {
    Load(each.instruction);
    ScanDataBits(std::string(each.bits, '0'));
    EXPECT_EQ(cpld.errors().total(), ++errors) << each.text;
    EXPECT_EQ(Errors().back(), each.text);
    Move("0");
  }
  Move("1");
  EXPECT_EQ(cpld.errors().total(), errors) << "nothing was started that could be aborted";
  EXPECT_EQ(cpld.cells(), shelf);
}

TEST_F(KarvelCpldRefusal, OfReadingWithAnotherLength) {
  Connect();
  EnterProgramming();
  SelectRow(7);
  Load(kReadRow);
  EXPECT_EQ(ScanDataBits(std::string(120, '0')), BitsOf(Row(7)).substr(0, 120));
  ExpectError("karvel: 120 bits for READ ROW instead of 128");
}

TEST_F(KarvelCpldRefusal, OfAnAddressThatDoesNotSelectOneRow) {
  Connect();
  EnterProgramming();
  Erase();
  SelectRow(3);
  ScanData({0x80, 0, 0, 0, 0, 0, 0, 0x01});
  EXPECT_EQ(Errors().back(), "karvel: ADDRESS 8000000000000001 does not select one row");
  Load(kProgramRow);
  ScanData(Bytes(16, 0));
  EXPECT_EQ(Errors().back(), "karvel: PROGRAM ROW without a selected row");
  Load(kAddress);
  ScanData(Bytes(8, 0));
  EXPECT_EQ(Errors().back(), "karvel: ADDRESS 0000000000000000 does not select one row");
  Load(kReadRow);
  EXPECT_THAT(ScanData(Bytes(16, 0xFF)), Each(0));
  EXPECT_EQ(Errors().back(), "karvel: READ ROW without a selected row");
  EXPECT_EQ(cpld.errors().total(), 4u);
  EXPECT_EQ(cpld.cells(), simulator::KarvelCells());
}

TEST_F(KarvelCpldRefusal, OfARowThatIsNotErased) {
  Connect();
  EnterProgramming();
  ProgramRow(12, Bytes(16, 0x00));
  ExpectError("karvel: PROGRAM ROW over row 12, which is not erased");
  now += 2'000'000;
  Move("1");
  EXPECT_EQ(cpld.cells(), shelf);
  EXPECT_EQ(cpld.errors().total(), 1u) << "there is nothing to abort";
}

TEST_F(KarvelCpldRefusal, OfAUsercodeThatIsNotErased) {
  Connect();
  EnterProgramming();
  Load(kProgramUsercode);
  ScanData({0, 0, 0, 0});
  ExpectError("karvel: PROGRAM USERCODE over one that is not erased");
  now += 2'000'000;
  Move("1");
  EXPECT_EQ(cpld.cells(), shelf);
}

TEST_F(KarvelCpldRefusal, KeepsTheFirstHundredTexts) {
  for (int i = 0; i < 120; ++i)
    Write(0x10);
  EXPECT_EQ(Errors().size(), 100u);
  EXPECT_EQ(cpld.errors().total(), 120u);
}

}  // namespace
