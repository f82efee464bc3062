#include "KarvelCpldFixture.h"

using testing::ElementsAre;

namespace {

TEST_F(KarvelCpldTest, PowersUpInResetWithItsPinsLow) {
  EXPECT_EQ(cpld.ReadPort(now), 0x10u) << "TDO is pulled up";
  EXPECT_EQ(State(), 0xF);
}

TEST_F(KarvelCpldTest, ReadsThePinsAsTheyWereDriven) {
  for (const std::uint32_t pins : {0x08u, 0x0Cu, 0x0Au, 0x0Eu, 0x0Fu, 0x0Eu, 0x02u, 0x06u, 0x00u}) {
    Write(pins);
    EXPECT_EQ(cpld.ReadPort(now), 0x10u | pins);
    EXPECT_EQ(cpld.Pins(), 0x10u | pins);
  }
  ExpectNoErrors();
}

TEST_F(KarvelCpldTest, MovesAtTheRisingEdgeAlone) {
  Write(kEnable);
  EXPECT_EQ(State(), 0xF);
  Write(kEnable | kTck);
  EXPECT_EQ(State(), 0xC);
  Write(kEnable | kTck);
  Write(kEnable | kTck | kTms);
  EXPECT_EQ(State(), 0xC) << "TMS may change while TCK is high";
  Write(kEnable | kTms);
  EXPECT_EQ(State(), 0xC);
  Write(kEnable | kTms);
  EXPECT_EQ(State(), 0xC);
  Write(kEnable | kTms | kTck);
  EXPECT_EQ(State(), 0x7);
  Write(kEnable);
  EXPECT_EQ(State(), 0x7) << "TMS may change with the falling edge";
  ExpectNoErrors();
}

TEST_F(KarvelCpldTest, ChangesTdoAtTheFallingEdge) {
  Connect();
  Move("10");
  EXPECT_TRUE(Tdo()) << "pulled up in Capture-DR";
  Write(kEnable | kTck);
  EXPECT_EQ(State(), 0x2);
  EXPECT_TRUE(Tdo()) << "still pulled up";
  Write(kEnable);
  EXPECT_FALSE(Tdo()) << "IDCODE begins with 0100";
  Write(kEnable | kTck);
  EXPECT_FALSE(Tdo());
  Write(kEnable);
  EXPECT_TRUE(Tdo());
  Clock(false);
  EXPECT_FALSE(Tdo());
  Write(kEnable | kTms);
  Write(kEnable | kTms | kTck);
  EXPECT_EQ(State(), 0x1);
  EXPECT_FALSE(Tdo());
  Write(kEnable | kTms);
  EXPECT_TRUE(Tdo()) << "pulled up in Exit1-DR";
}

TEST_F(KarvelCpldTest, SelectsIdcodeInReset) {
  Connect();
  EXPECT_THAT(ScanData({0, 0, 0, 0}), ElementsAre('K', 'R', 'V', 'L'));
  Load(kUsercode);
  Move("11111");
  EXPECT_EQ(State(), 0xF);
  Move("0");
  EXPECT_THAT(ScanData({0xFF, 0xFF, 0xFF, 0xFF}), ElementsAre(0x4B, 0x52, 0x56, 0x4C));
  ExpectNoErrors();
}

TEST_F(KarvelCpldTest, ReadsIdcodeAndUsercode) {
  Connect();
  Load(kUsercode);
  EXPECT_THAT(ScanData({0, 0, 0, 0}), ElementsAre('B', 'N', 'C', 'H'));
  Load(kIdcode);
  EXPECT_THAT(ScanData({0, 0, 0, 0}), ElementsAre('K', 'R', 'V', 'L'));
  Load(kUsercode);
  EXPECT_THAT(ScanData({1, 2, 3, 4}), ElementsAre('B', 'N', 'C', 'H'));
  EXPECT_THAT(ScanData({1, 2, 3, 4}), ElementsAre('B', 'N', 'C', 'H')) << "what went in changes nothing";
  ExpectNoErrors();
}

TEST_F(KarvelCpldTest, TellsWithEachInstructionThatItIsDone) {
  Connect();
  EXPECT_EQ(ScanInstructionBits("00010110"), "10100000");
  EXPECT_EQ(ScanInstructionBits("00010111"), "10100000");
  cpld.cells().done = false;
  EXPECT_EQ(ScanInstructionBits("00010110"), "10000000");
  ExpectNoErrors();
}

TEST_F(KarvelCpldTest, DelaysByOneBitInBypass) {
  Connect();
  for (const std::uint8_t instruction : {kBypass, kEnter, kLeave}) {
    Load(instruction);
    EXPECT_EQ(ScanDataBits("1101"), "0110");
    EXPECT_EQ(ScanDataBits("1"), "0") << "captures 0 again";
    EXPECT_EQ(ScanDataBits(std::string(200, '1')), "0" + std::string(199, '1'));
  }
  ExpectNoErrors();
}

TEST_F(KarvelCpldTest, CapturesZerosInRegistersThatAreNotRead) {
  Connect();
  EnterProgramming();
  Load(kAddress);
  EXPECT_EQ(ScanDataBits(std::string(63, '0') + "1"), std::string(64, '0'));
  Load(kProgramRow);
  Move("100");
  EXPECT_EQ(ShiftBits(std::string(128, '1')), std::string(128, '0'));
}

TEST_F(KarvelCpldTest, GoesOnWithAScanBehindAPause) {
  Connect();
  Move("1100");
  EXPECT_EQ(ShiftBits("0001"), "1010");
  Move("0001");
  EXPECT_EQ(State(), 0x8);
  Move("0");
  EXPECT_EQ(State(), 0xA);
  EXPECT_EQ(ShiftBits("0111"), "0000");
  Move("10");
  EXPECT_THAT(ScanData({0, 0, 0, 0}), ElementsAre('B', 'N', 'C', 'H')) << "0x17 was loaded";

  Move("1010");
  EXPECT_EQ(State(), 0x3) << "paused before the first bit";
  Move("10");
  EXPECT_EQ(ShiftBits("0000000000000000"), "0100001001001110");
  Move("010");
  EXPECT_EQ(ShiftBits("0000000000000000"), "0100001101001000");
  Move("10");
  ExpectNoErrors();
}

TEST_F(KarvelCpldTest, TakesAnUpdateWithoutBitsForAMove) {
  Connect();
  Load(kUsercode);
  Move("1101");
  Move("10");
  EXPECT_EQ(State(), 0xC);
  EXPECT_THAT(ScanData({0, 0, 0, 0}), ElementsAre('B', 'N', 'C', 'H')) << "the instruction is still there";
  Move("1010");
  Move("110");
  EXPECT_EQ(State(), 0xC);
  ExpectNoErrors();
}

TEST_F(KarvelCpldTest, ChangesTheInstructionAtTheFallingEdgeOfUpdate) {
  Connect();
  Move("1100");
  ShiftBits("00010111");
  Write(kEnable | kTms);
  Write(kEnable | kTms | kTck);
  EXPECT_EQ(State(), 0xD);
  Write(0);
  Write(kEnable);
  Move("0");
  EXPECT_THAT(ScanData({0, 0, 0, 0}), ElementsAre('K', 'R', 'V', 'L')) << "enable fell first";
}

TEST_F(KarvelCpldTest, IsResetWhenEnableFalls) {
  Connect();
  EnterProgramming();
  Load(kUsercode);
  Move("100");
  EXPECT_FALSE(Tdo());
  Write(0);
  EXPECT_EQ(State(), 0xF);
  EXPECT_TRUE(Tdo());
  Connect();
  EXPECT_THAT(ScanData({0, 0, 0, 0}), ElementsAre('K', 'R', 'V', 'L'));
  ExpectNoErrors();
  Load(kErase);
  ExpectError("karvel: ERASE outside programming mode");
}

TEST_F(KarvelCpldTest, IsAPartOfItsOwnAsACopy) {
  Connect();
  Move("100");
  simulator::KarvelCpld copy = cpld;
  EXPECT_EQ(BytesOf(ShiftBits(std::string(32, '0'))), (Bytes{'K', 'R', 'V', 'L'}));
  EXPECT_EQ(static_cast<int>(copy.tapState()), 0x2);
  EXPECT_EQ(copy.ReadPort(now) & 0x10, 0u) << "still at the first bit";
}

}  // namespace
