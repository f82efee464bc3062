#include "VeltraBoxFixture.h"

// Each fault of the box, on its second event.

using simulator::Fault;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class VeltraBoxFault : public VeltraBoxDownload {
 protected:
  void Add(const char* fault) { plan.Add(simulator::ParseFault(fault)); }
};

TEST_F(VeltraBoxFault, Silent) {
  Add("box-silent@2");
  EXPECT_EQ(Exchange(kStartFpga), kStartFpgaDone);
  EXPECT_THAT(Exchange(FpgaData(kFpgaFile)), IsEmpty());
  EXPECT_EQ(Exchange(FpgaData(kFpgaFile)), kFpgaDataDone) << "nothing came of the lost one";
  EXPECT_EQ(plan.Count(Fault::kBoxSilent), 3u);
  ExpectNoErrors();
}

TEST_F(VeltraBoxFault, Off) {
  Add("box-off@2");
  box.state().stored.revisions[0] = 0x77;
  Send(kHwConfig);
  EXPECT_THAT(Exchange(kHwConfig), IsEmpty()) << "nor comes the answer to the first";
  EXPECT_THAT(Exchange(kHwConfig), IsEmpty());
  EXPECT_EQ(plan.Count(Fault::kBoxOff), 2u) << "nothing reaches it any more";
  // It is on again in another run, which meets the state alone.
  simulator::VeltraBox again(box.state());
  again.Take(0x0B0B0004, true, now);
  again.Take(0x80030000, false, now);
  EXPECT_EQ(again.TakeAnswer().at(2) >> 24, 0x77u) << "it lost its power";
  box.PowerCycle(now);
  EXPECT_THAT(Exchange(kHwConfig), testing::SizeIs(7));
}

TEST_F(VeltraBoxFault, OffWhileItBurns) {
  Add("box-off@4");
  DownloadFpga();
  Send(kProgramFpga);
  EXPECT_THAT(Exchange(kHwConfig), IsEmpty()) << "nor comes the answer of the burn";
  EXPECT_EQ(box.state().stored.revisions[1], 0x18);
}

TEST_F(VeltraBoxFault, Late) {
  Add("box-late@2");
  Send(kHwConfig);
  EXPECT_EQ(Delay(), 300'000);
  Answer();
  Send(kHwConfig);
  EXPECT_EQ(Delay(), 1'200'300'000);
}

TEST_F(VeltraBoxFault, ReplyCut) {
  Add("box-reply-cut@6");
  EXPECT_EQ(Exchange(kVpdOfBrox).size(), 5u) << "words 1 to 4 behind the first";
  EXPECT_THAT(Exchange(kVpdOfBrox), ElementsAre(0x0B0B000F, 0x80350000)) << "the sixth is missing";
  EXPECT_EQ(Exchange(kVpdOfBrox).size(), 5u);
}

TEST_F(VeltraBoxFault, NoHeader) {
  Add("box-no-header@2");
  EXPECT_EQ(Exchange(kHwConfig)[0], 0x0B0B0016u);
  EXPECT_EQ(Exchange(kHwConfig)[0], 0x00000016u);
}

TEST_F(VeltraBoxFault, LengthLowAndHigh) {
  Add("box-length-low@1");
  Add("box-length-high@2");
  EXPECT_EQ(Exchange(kHwConfig)[0], 0x0B0B0003u);
  EXPECT_EQ(Exchange(kHwConfig)[0], 0x0B0B0801u);
  EXPECT_EQ(Exchange(kHwConfig)[0], 0x0B0B0016u);
}

TEST_F(VeltraBoxFault, ValuesMissing) {
  Add("box-values-missing@2");
  EXPECT_EQ(Exchange(kStartFpga), kStartFpgaDone) << "no request";
  EXPECT_EQ(Exchange(kHwConfig).size(), 7u);
  EXPECT_THAT(Exchange(kVpdOfBrox), ElementsAre(0x0B0B0004, 0x80350000));
}

struct StatusFault {
  const char* fault;
  std::uint32_t status;
};

class VeltraBoxStatusFault : public VeltraBoxFault, public testing::WithParamInterface<StatusFault> {};

TEST_P(VeltraBoxStatusFault, RefusesAndDropsTheTransfer) {
  Add(GetParam().fault);
  DownloadFpga();
  EXPECT_THAT(Exchange(kHwConfig), ElementsAre(0x0B0B0004, 0x80030000 | GetParam().status));
  ExpectNoErrors();
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaRefused);
}

INSTANTIATE_TEST_SUITE_P(Each, VeltraBoxStatusFault,
                         testing::Values(StatusFault{"box-status-fail@3", 1},
                                         StatusFault{"box-status-not-supported@3", 2},
                                         StatusFault{"box-status-transmit@3", 0xF0},
                                         StatusFault{"box-status-time-out@3", 0xFF},
                                         StatusFault{"box-status-unknown@3", 7}));

TEST_F(VeltraBoxFault, TransferRefused) {
  Add("transfer-refused@2");
  Exchange(kStartFpga);
  EXPECT_EQ(Exchange(FpgaData({'O'})), kFpgaDataDone);
  Send(FpgaData({'R'}));
  EXPECT_EQ(Delay(), 300'000);
  EXPECT_EQ(Answer(), kFpgaDataRefused);
  ExpectNoErrors();
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaRefused);
  EXPECT_EQ(plan.Count(Fault::kTransferRefused), 2u);
}

TEST_F(VeltraBoxFault, ProgramAnswerWrong) {
  Add("program-answer-wrong@2");
  DownloadFpga();
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaDone);
  now += 1'000'000'000;
  DownloadFpga();
  box.state().stored.revisions[1] = 0x18;
  Send(kProgramFpga);
  EXPECT_EQ(Delay(), 300'000);
  EXPECT_THAT(Answer(), ElementsAre(0x0B0B0004, 0x80060000));
  box.PowerCycle(now + 1'000'000'000);
  EXPECT_EQ(box.state().stored.revisions[1], 0x18) << "nothing was programmed";
  ExpectNoErrors();
}

}  // namespace
