#include "MorvakUnitFixture.h"

// Each fault of the unit itself, on its second event.

using simulator::Fault;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class MorvakUnitFault : public MorvakUnitDownload {
 protected:
  MorvakUnitFault() { unit.UseFaults(&plan); }
  void Add(const char* fault) { plan.Add(simulator::ParseFault(fault)); }

  simulator::FaultPlan plan;
};

TEST_F(MorvakUnitFault, TalcTimeOut) {
  Add("talc-time-out@2");
  EXPECT_EQ(Exchange(kDiagnostic), kDiagnosticDone);
  clock.Sleep(500);
  const std::int64_t start = clock.NowNanoseconds();
  EXPECT_THAT(Exchange(kStartFpga), IsEmpty());
  EXPECT_EQ(NanosecondsSince(start), 1'000'000'000);
  EXPECT_THAT(Exchange({}), IsEmpty()) << "the command was lost";
  EXPECT_EQ(Exchange(kStartFpga), kStartFpgaDone);
  EXPECT_EQ(plan.Count(Fault::kTalcTimeOut), 4u);
  ExpectNoErrors();
}

TEST_F(MorvakUnitFault, TalcTimeOutOfAQuestionForTheAnswer) {
  Add("talc-time-out@2");
  Exchange(kFirmwareRev, 0);
  EXPECT_THAT(Exchange({}), IsEmpty());
  EXPECT_EQ(Exchange({}), kFirmwareRevIs) << "it is still there";
}

TEST_F(MorvakUnitFault, TalcUnwritten) {
  Add("talc-unwritten@2");
  EXPECT_EQ(Exchange(kFirmwareRev), kFirmwareRevIs);
  EXPECT_EQ(Control(0xAA010038, TalcRecord(kFirmwareRev, kSecond), 8), 0u);
  EXPECT_THAT(out, ElementsAre(0, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(std::count(reply.begin(), reply.end(), 0xEE), 2049);
  EXPECT_THAT(Exchange({}), IsEmpty()) << "the answer is lost";
}

TEST_F(MorvakUnitFault, TalcBadHeader) {
  Add("talc-bad-header@2");
  EXPECT_EQ(Exchange(kFirmwareRev), kFirmwareRevIs);
  Bytes wrong = kFirmwareRevIs;
  wrong[0] = wrong[1] = 0x00;
  EXPECT_EQ(Exchange(kFirmwareRev), wrong);
  EXPECT_EQ(Exchange(kFirmwareRev), kFirmwareRevIs);
}

TEST_F(MorvakUnitFault, SlotsInvalid) {
  Add("slots-invalid@2");
  Control(0xAA010008, {}, 8);
  EXPECT_THAT(out, ElementsAre(2, 0, 0, 0, 4, 0, 0, 0));
  Control(0xAA010008, {}, 8);
  EXPECT_THAT(out, ElementsAre(3, 0, 0, 0, 4, 0, 0, 0));
}

TEST_F(MorvakUnitFault, BoardVpdDamaged) {
  Add("board-vpd-damaged@2");
  ReadVpd(0);
  EXPECT_THAT(Bytes(area.begin(), area.begin() + 4), ElementsAre(0x90, 0x05, 0x00, 'P'));
  EXPECT_EQ(ReadVpd(0), 0u);
  EXPECT_THAT(Bytes(area.begin(), area.begin() + 4), ElementsAre(0x90, 0xFF, 0xFF, 'P'));
}

TEST_F(MorvakUnitFault, PartUnknown) {
  Add("part-unknown@2");
  EXPECT_EQ(Exchange(kFirmwareRev), kFirmwareRevIs);
  Exchange({0x0B, 0x0B, 0x00, 0x06, 0x80, 0x55, 0x00, 0x00, 0x00, 0x03}, 0);
  EXPECT_EQ(plan.Count(Fault::kPartUnknown), 1u) << "an absent part has no text";
  EXPECT_THAT(Exchange(kFirmwareRev), ElementsAre(0x0B, 0x0B, 0x00, 0x0D, 0x80, 0x55, 0x00, 0x00, 0x00, 0x00, 'U', 'N',
                                                  'K', 'N', 'O', 'W', 'N'));
}

// What the box's faults do here.

struct StatusFault {
  const char* fault;
  std::uint8_t status;
};

class MorvakUnitStatusFault : public MorvakUnitFault, public testing::WithParamInterface<StatusFault> {};

TEST_P(MorvakUnitStatusFault, RefusesAndDropsTheTransfer) {
  Add(GetParam().fault);
  DownloadFpga();
  EXPECT_THAT(Exchange(kFirmwareRev), ElementsAre(0x0B, 0x0B, 0x00, 0x04, 0x80, 0x55, 0x00, GetParam().status));
  ExpectNoErrors();
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaRefused);
}

INSTANTIATE_TEST_SUITE_P(Each, MorvakUnitStatusFault,
                         testing::Values(StatusFault{"box-status-fail@4", 1},
                                         StatusFault{"box-status-not-supported@4", 2},
                                         StatusFault{"box-status-transmit@4", 0xF0},
                                         StatusFault{"box-status-time-out@4", 0xFF},
                                         StatusFault{"box-status-unknown@4", 7}));

TEST_F(MorvakUnitFault, TransferRefused) {
  Add("transfer-refused@2");
  DownloadFpga();
  EXPECT_EQ(Exchange(kFpgaData), kFpgaDataRefused);
  ExpectNoErrors();
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaRefused);
}

TEST_F(MorvakUnitFault, ProgramAnswerWrong) {
  Add("program-answer-wrong@1");
  DownloadFpga();
  EXPECT_EQ(Exchange(kProgramFpga), kStartFpgaDone);
  unit.state().Settle();
  EXPECT_EQ(Stored(1), "030e") << "nothing was programmed";
  ExpectNoErrors();
}

TEST_F(MorvakUnitFault, ValuesMissing) {
  Add("box-values-missing@2");
  EXPECT_EQ(Exchange(kDiagnostic), kDiagnosticDone) << "no request";
  EXPECT_EQ(Exchange(kFirmwareRev), kFirmwareRevIs);
  EXPECT_THAT(Exchange(kVpdInfo), ElementsAre(0x0B, 0x0B, 0x00, 0x04, 0x80, 0x35, 0x00, 0x00));
}

}  // namespace
