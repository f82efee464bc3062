#include <gmock/gmock.h>

#include <cstdint>
#include <string>

#include "board/VmeInterpreter.h"
#include "board/VmeShifter.h"
#include "support/VmeTrace.h"

namespace {

using test_support::SameTrace;
using test_support::Times;
using test_support::Trace;
using testing::ElementsAre;
using testing::IsEmpty;

using Vme = VmeInterpreter;

class VmeShifterTest : public testing::Test {
 protected:
  VmeShifterTest() { port.Connect(recorder.Window()); }

  /// What the trace of the shifts up to now is, in words; then starts a new one, with the pins low.
  testing::AssertionResult Traced(std::string_view words) {
    const std::string made = recorder.text();
    port.SetPin(0x0F, false);
    recorder.Clear();
    return SameTrace(made, Trace(words));
  }

  void Cascade() { vme.flowControl |= Vme::kCascade; }

  test_support::TraceRecorder recorder;
  JtagPort port;
  Vme vme;
  VmePrint print = [this](const char* text) { recorder.AddText(text); };
  VmeShifter shifter{port, vme, print};
};

TEST_F(VmeShifterTest, BypassTakesTheBufferOfItsOpcode) {
  vme.hirData = {0x80, 0x00};
  vme.tirData = {0x40, 0x00};
  vme.hdrData = {0x20, 0x00};
  vme.tdrData = {0x10, 0x00};
  shifter.BypassBits(0x06, 4);
  EXPECT_TRUE(Traced("tdi:1000."));
  shifter.BypassBits(0x07, 4);
  EXPECT_TRUE(Traced("tdi:0100."));
  shifter.BypassBits(0x08, 4);
  EXPECT_TRUE(Traced("tdi:0010."));
  shifter.BypassBits(0x09, 4);
  EXPECT_TRUE(Traced("tdi:0001."));
}

TEST_F(VmeShifterTest, BypassNeverClocksTheLastBit) {
  vme.hirData = {0xA5, 0x80, 0x00};
  for (int round = 0; round < 2; ++round) {
    shifter.BypassBits(0x06, 0);
    EXPECT_TRUE(Traced(""));
    shifter.BypassBits(0x06, 1);
    EXPECT_TRUE(Traced("tdi:1."));
    shifter.BypassBits(0x06, 8);
    EXPECT_TRUE(Traced("tdi:10100101."));
    shifter.BypassBits(0x06, 9);
    EXPECT_TRUE(Traced("tdi:101001011."));
    Cascade();
  }
}

TEST_F(VmeShifterTest, BypassWithoutDataIsZeros) {
  shifter.BypassBits(0x09, 3);
  EXPECT_TRUE(Traced("tdi:000."));
  vme.tdrData = {0xFF};
  shifter.BypassBits(0x09, 10);
  EXPECT_TRUE(Traced("tdi:1111111100."));
}

TEST_F(VmeShifterTest, SendLeavesTheLastBitToTheNextClock) {
  vme.tdiData = {0xA5, 0x80, 0x00};
  EXPECT_EQ(shifter.SendBits(0), 0);
  EXPECT_TRUE(Traced(""));
  EXPECT_EQ(shifter.SendBits(1), 0);
  EXPECT_TRUE(Traced("tdi:1."));
  EXPECT_EQ(shifter.SendBits(8), 0);
  EXPECT_TRUE(Traced("tdi:10100101."));
  EXPECT_EQ(shifter.SendBits(9), 0);
  EXPECT_TRUE(Traced("tdi:101001011."));
}

TEST_F(VmeShifterTest, SendClocksTheLastBitInACascade) {
  vme.tdiData = {0xA5, 0x80, 0x00};
  Cascade();
  EXPECT_EQ(shifter.SendBits(0), 0);
  EXPECT_TRUE(Traced(""));
  EXPECT_EQ(shifter.SendBits(1), 0);
  EXPECT_TRUE(Traced("tdi:1"));
  EXPECT_EQ(shifter.SendBits(8), 0);
  EXPECT_TRUE(Traced("tdi:10100101"));
  EXPECT_EQ(shifter.SendBits(9), 0);
  EXPECT_TRUE(Traced("tdi:101001011"));
}

TEST_F(VmeShifterTest, SendWithoutDataIsZeros) {
  EXPECT_EQ(shifter.SendBits(3), 0);
  EXPECT_TRUE(Traced("tdi:000."));
  vme.tdiData = {0xFF, 0x80};
  EXPECT_EQ(shifter.SendBits(20), 0);
  EXPECT_TRUE(Traced("tdi:11111111100000000000."));
}

TEST_F(VmeShifterTest, ReadSaveKeepsWhatComesIn) {
  for (int round = 0; round < 2; ++round) {  // the second one in a cascade, which makes no difference
    vme.dataType = Vme::kHasTdi | Vme::kHasDmask;
    vme.tdiData = {0xA5, 0x80, 0x00};
    vme.dmaskData = {0x00, 0x00, 0x00};
    vme.tdoData = {0xFF, 0xFF, 0xFF};
    recorder.AnswerTdo("010110100");
    EXPECT_EQ(shifter.ReadSaveBits(9), 0);
    EXPECT_TRUE(Traced("io:010110100/101001011."));
    EXPECT_THAT(vme.tdoData, ElementsAre(0x5A, 0x00, 0xFF));

    recorder.AnswerTdo("11000011");
    EXPECT_EQ(shifter.ReadSaveBits(8), 0);
    EXPECT_TRUE(Traced("io:11000011/10100101."));
    EXPECT_THAT(vme.tdoData, ElementsAre(0xC3, 0x00, 0xFF));

    recorder.AnswerTdo("1");
    EXPECT_EQ(shifter.ReadSaveBits(1), 0);
    EXPECT_TRUE(Traced("io:1/1."));
    EXPECT_THAT(vme.tdoData, ElementsAre(0x80, 0x00, 0xFF)) << "a byte is cleared with its first bit";

    EXPECT_EQ(shifter.ReadSaveBits(0), 0);
    EXPECT_TRUE(Traced(""));
    EXPECT_THAT(vme.tdoData, ElementsAre(0x80, 0x00, 0xFF));
    Cascade();
  }
}

TEST_F(VmeShifterTest, ReadSaveTakesTheTdiBitWhereDmaskHasAOne) {
  vme.dataType = Vme::kHasTdi | Vme::kHasDmask;
  vme.tdiData = {0xA5, 0x80, 0x00};
  vme.dmaskData = {0xF0, 0x80, 0x00};
  vme.tdoData = {0x00, 0x00, 0x00};
  recorder.AnswerTdo("010110100");
  EXPECT_EQ(shifter.ReadSaveBits(9), 0);
  EXPECT_TRUE(Traced("io:010110100/101001011."));
  EXPECT_THAT(vme.tdoData, ElementsAre(0xAA, 0x80, 0x00)) << "1010 of TDI, 1010 of TDO, 1 of TDI";
}

TEST_F(VmeShifterTest, ReadSaveLooksAtDataOnlyIfTheShiftHasThem) {
  vme.tdiData = {0xFF, 0xFF};
  vme.dmaskData = {0xF0, 0xFF};
  vme.tdoData = {0x00, 0x00};
  recorder.AnswerTdo("10011001");

  vme.dataType = Vme::kHasTdi;
  EXPECT_EQ(shifter.ReadSaveBits(8), 0);
  EXPECT_TRUE(Traced("io:10011001/11111111."));
  EXPECT_THAT(vme.tdoData, ElementsAre(0x99, 0x00)) << "no DMASK is DMASK 0";

  vme.dataType = Vme::kHasDmask;
  recorder.AnswerTdo("10011001");
  EXPECT_EQ(shifter.ReadSaveBits(8), 0);
  EXPECT_TRUE(Traced("io:10011001/00000000."));
  EXPECT_THAT(vme.tdoData, ElementsAre(0x09, 0x00)) << "0 where DMASK has the TDI bit";
}

TEST_F(VmeShifterTest, ReadSaveFindsZerosBehindTheDataAndMakesRoom) {
  vme.dataType = Vme::kHasTdi | Vme::kHasDmask;
  recorder.AnswerTdo("1");
  EXPECT_EQ(shifter.ReadSaveBits(9), 0);
  EXPECT_TRUE(Traced("io:111111111/000000000."));
  ASSERT_GE(vme.tdoData.size(), 2u);
  EXPECT_EQ(vme.tdoData[0], 0xFF);
  EXPECT_EQ(vme.tdoData[1], 0x80);
}

TEST_F(VmeShifterTest, ReadSaveOfNothingMakesNoBuffer) {
  EXPECT_EQ(shifter.ReadSaveBits(0), 0);
  EXPECT_TRUE(Traced(""));
  EXPECT_THAT(vme.tdoData, IsEmpty());
}

TEST_F(VmeShifterTest, CompareReadsBeforeItDrivesAndPassesEqualData) {
  vme.dataType = Vme::kHasTdi | Vme::kHasTdo;
  vme.tdiData = {0xA5, 0x80, 0x00};
  vme.tdoData = {0x5A, 0x80, 0x00};
  recorder.AnswerTdo("010110101");
  EXPECT_EQ(shifter.ReadCompareBits(9), 0);
  EXPECT_TRUE(Traced("io:010110101/101001011.")) << "eight clocks for nine bits";
  recorder.AnswerTdo("01011010");
  EXPECT_EQ(shifter.ReadCompareBits(8), 0);
  EXPECT_TRUE(Traced("io:01011010/10100101."));
  recorder.AnswerTdo("0");
  EXPECT_EQ(shifter.ReadCompareBits(1), 0);
  EXPECT_TRUE(Traced("io:0/1."));
  EXPECT_EQ(shifter.ReadCompareBits(0), 0);
  EXPECT_TRUE(Traced(""));
}

TEST_F(VmeShifterTest, CompareClocksTheLastBitInACascade) {
  Cascade();
  vme.dataType = Vme::kHasTdi | Vme::kHasTdo;
  vme.tdiData = {0xA5, 0x80, 0x00};
  vme.tdoData = {0x5A, 0x80, 0x00};
  recorder.AnswerTdo("010110101");
  EXPECT_EQ(shifter.ReadCompareBits(9), 0);
  EXPECT_TRUE(Traced("io:010110101/101001011"));
  recorder.AnswerTdo("0");
  EXPECT_EQ(shifter.ReadCompareBits(1), 0);
  EXPECT_TRUE(Traced("io:0/1"));
  EXPECT_EQ(shifter.ReadCompareBits(0), 0);
  EXPECT_TRUE(Traced(""));
}

TEST_F(VmeShifterTest, CompareFindsAWrongBitWhereverTheMaskHasAOne) {
  const VmeBuffer masks = {0xB3, 0x80};  // 10110011 1
  const std::string maskBits = "101100111";
  const std::string right = "010110101";
  vme.dataType = Vme::kHasTdo | Vme::kHasMask;
  vme.tdoData = {0x5A, 0x80, 0x00};
  for (std::size_t wrong = 0; wrong < 9; ++wrong) {
    std::string in = right;
    in[wrong] = in[wrong] == '0' ? '1' : '0';
    vme.dataType = Vme::kHasTdo | Vme::kHasMask;
    vme.maskData = masks;
    recorder.AnswerTdo(in);
    EXPECT_EQ(shifter.ReadCompareBits(9), maskBits[wrong] == '1' ? -1 : 0) << wrong;
    EXPECT_TRUE(Traced("io:" + in + "/000000000.")) << "the whole shift is made";

    vme.dataType = Vme::kHasTdo;  // a mask of an earlier shift does not count
    vme.maskData = {0x00, 0x00};
    recorder.AnswerTdo(in);
    EXPECT_EQ(shifter.ReadCompareBits(9), -1) << wrong;
    recorder.Clear();
    port.SetPin(0x0F, false);
    recorder.Clear();
  }
}

TEST_F(VmeShifterTest, CompareWithMaskZeroPassesWhateverComesIn) {
  vme.dataType = Vme::kHasTdo | Vme::kHasMask;
  vme.tdoData = {0x5A, 0xC3};
  vme.maskData = {0x00, 0x00};
  for (const char* in : {"0", "1", "0101101011000011", "1010010100111100"}) {
    recorder.AnswerTdo(in);
    EXPECT_EQ(shifter.ReadCompareBits(16), 0) << in;
  }
}

TEST_F(VmeShifterTest, CompareWithoutTdoDataNeverFails) {
  vme.dataType = Vme::kHasTdi | Vme::kHasMask;
  vme.tdiData = {0xC3, 0x00};
  vme.tdoData = {0xFF, 0xFF};
  vme.maskData = {0xFF, 0xFF};
  EXPECT_EQ(shifter.ReadCompareBits(8), 0);
  EXPECT_TRUE(Traced("io:00000000/11000011."));
}

TEST_F(VmeShifterTest, CompareWithoutTdiDataSendsZeros) {
  vme.dataType = Vme::kHasTdo;
  vme.tdiData = {0xFF, 0xFF};
  vme.tdoData = {0x00, 0x00};
  EXPECT_EQ(shifter.ReadCompareBits(4), 0);
  EXPECT_TRUE(Traced("io:0000/0000."));
}

TEST_F(VmeShifterTest, CompareFindsZerosBehindTheData) {
  vme.dataType = Vme::kHasTdi | Vme::kHasTdo;
  vme.tdiData = {0xFF};
  vme.tdoData = {0xFF};
  recorder.AnswerTdo("1111111100");
  EXPECT_EQ(shifter.ReadCompareBits(10), 0);
  EXPECT_TRUE(Traced("io:1111111100/1111111100."));
  recorder.AnswerTdo("1111111101");
  EXPECT_EQ(shifter.ReadCompareBits(10), -1);
}

TEST_F(VmeShifterTest, CompareCountsTheErrorsOfTheLongestShift) {
  vme.dataType = Vme::kHasTdo;
  vme.tdoData.assign(8192, 0xFF);
  EXPECT_EQ(shifter.ReadCompareBits(65535), -1);
  EXPECT_TRUE(Traced("io:" + Times(65535, "0") + "/" + Times(65535, "0") + "."));
}

TEST(VmeShifterOnMemory, ShiftsOnARegisterThatReadsBackWhatWasDriven) {
  volatile std::uint32_t words[3] = {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF};
  JtagPort port;
  port.Connect(platform::RegisterWindow(reinterpret_cast<std::uintptr_t>(&words[1])));
  port.SetPin(0x08, true);
  Vme vme;
  const VmePrint print = [](const char*) {};
  VmeShifter shifter(port, vme, print);
  vme.dataType = Vme::kHasTdi | Vme::kHasTdo | Vme::kHasDmask;
  vme.tdiData = {0xA5, 0x80};
  vme.tdoData = {0x00, 0x00};
  EXPECT_EQ(shifter.ReadCompareBits(9), 0);
  EXPECT_EQ(words[1], 0x0000000Cu) << "the last bit is a one";
  vme.tdoData = {0x00, 0x80};
  EXPECT_EQ(shifter.ReadCompareBits(9), -1);
  vme.dmaskData = {0xF0, 0x00};
  EXPECT_EQ(shifter.ReadSaveBits(9), 0);
  EXPECT_THAT(vme.tdoData, ElementsAre(0xA0, 0x00));
  EXPECT_EQ(shifter.SendBits(7), 0);
  EXPECT_EQ(words[1], 0x00000008u) << "the last bit is a zero";
  EXPECT_EQ(port.pinShadow(), 0x08);
  EXPECT_EQ(words[0], 0xFFFFFFFFu);
  EXPECT_EQ(words[2], 0xFFFFFFFFu);
}

class VmeUserCode : public VmeShifterTest {
 protected:
  /// One compare with FF of data that are all ones or all zeros.
  int Compare(bool isEqual) {
    vme.dataType = Vme::kHasTdo;
    vme.tdoData = {0xFF, 0x00, 0x00};
    recorder.AnswerTdo(isEqual ? "1" : "0");
    return shifter.ReadCompareBits(8);
  }
};

TEST_F(VmeUserCode, ThatDiffersIsSaidAndGoesOn) {
  vme.flowControl = Vme::kVerifyUserCode | 0x0108;
  EXPECT_EQ(Compare(false), 0);
  EXPECT_TRUE(
      Traced("io:00000000/00000000. "
             "'USERCODE verification failed.  Continue programming......\\n\\n'"));
  EXPECT_EQ(vme.flowControl, 0x0108);
}

TEST_F(VmeUserCode, ThatIsEqualIsSaidAndStops) {
  vme.flowControl = Vme::kVerifyUserCode | 0x0108;
  EXPECT_EQ(Compare(true), 1);
  EXPECT_TRUE(
      Traced("io:11111111/00000000. "
             "'USERCODE verification passed.  Programming aborted. \\n\\n'"));
  EXPECT_EQ(vme.flowControl, 0x0108);
}

TEST_F(VmeUserCode, IsNotSpokenOfInOtherCompares) {
  vme.flowControl = 0x0108;
  EXPECT_EQ(Compare(false), -1);
  EXPECT_TRUE(Traced("io:00000000/00000000."));
  EXPECT_EQ(Compare(true), 0);
  EXPECT_TRUE(Traced("io:11111111/00000000."));
  EXPECT_EQ(vme.flowControl, 0x0108);
}

TEST_F(VmeUserCode, IsDecidedOnce) {
  vme.flowControl = Vme::kVerifyUserCode;
  EXPECT_EQ(Compare(false), 0);
  EXPECT_EQ(Compare(false), -1);
  EXPECT_EQ(Compare(true), 0);
}

TEST_F(VmeUserCode, OfNoBitsIsNoDecision) {
  vme.flowControl = Vme::kVerifyUserCode;
  vme.dataType = Vme::kHasTdo;
  EXPECT_EQ(shifter.ReadCompareBits(0), 0);
  EXPECT_TRUE(Traced(""));
  EXPECT_EQ(vme.flowControl, Vme::kVerifyUserCode);
}

}  // namespace
