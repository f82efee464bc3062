#include "VeltraBoxFixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// What a part holds for the next power-up.
std::optional<std::uint16_t> Stored(const simulator::VeltraBox& box, const char* id) {
  return box.state().stored.Of(*simulator::FindBoxPart(id));
}

TEST_F(VeltraBoxDownload, LoadsAnFpga) {
  Send(kStartFpga);
  EXPECT_EQ(Delay(), 300'000);
  EXPECT_EQ(Answer(), kStartFpgaDone);
  Send(FpgaData(kFpgaFile));
  EXPECT_EQ(Delay(), 300'000 + 24 * 2'000);
  EXPECT_EQ(Answer(), kFpgaDataDone);
  Send(kProgramFpga);
  EXPECT_EQ(Delay(), 20'000'000 + 24 * 13'000);
  now = box.NextAnswerNanoseconds();
  EXPECT_EQ(Answer(), kProgramFpgaDone);
  EXPECT_EQ(Exchange(kHwConfig)[2] >> 16, 0x0218u) << "the old version runs";
  EXPECT_EQ(Stored(box, "PLGR"), 0x0220);
  box.PowerCycle(now);
  EXPECT_EQ(Exchange(kHwConfig)[2] >> 16, 0x0220u);
  ExpectNoErrors();
}

TEST_F(VeltraBoxDownload, LoadsTheSecondFpga) {
  Bytes file = kFpgaFile;
  const Bytes id = {'T', 'L', 'M', '_'};
  std::copy(id.begin(), id.end(), file.begin() + 18);
  Exchange(With(kStartFpga, 8, 1));
  Exchange(FpgaData(file));
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaDone);
  box.PowerCycle(now + 30'000'000);
  EXPECT_EQ(Exchange(kHwConfig)[3], 0x00010220u);
}

TEST_F(VeltraBoxDownload, LoadsTheFirmware) {
  EXPECT_THAT(Exchange(kStartFirmware), ElementsAre(0x0B0B0004, 0x800C0000));
  Send({0x0B, 0x0B, 0x00, 0x22, 0x80, 0x0E, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x18, 'O', 'R', 'B', 'O',  '.',
        'R',  'B',  'I',  0x00, 0x00, 0x00, 0x16, 'R',  '0',  '2',  '2',  '5',  ' ',  'B',  'R', 'O', 'X', 0xAA, 0xBB});
  EXPECT_EQ(Delay(), 300'000 + 24 * 2'000);
  EXPECT_THAT(Answer(), ElementsAre(0x0B0B0004, 0x800E0000));
  Send(kProgramFirmware);
  EXPECT_EQ(Delay(), 20'000'000 + 24 * 13'000);
  now = box.NextAnswerNanoseconds();
  EXPECT_THAT(Answer(), ElementsAre(0x0B0B0004, 0x80100000));
  EXPECT_EQ(box.state().running.firmwareRev, "2.24 b");
  box.PowerCycle(now);
  EXPECT_EQ(box.state().running.firmwareRev, "2.25");
  ExpectNoErrors();
}

TEST_F(VeltraBoxDownload, LoadsACpldWithoutAHeader) {
  struct Case {
    std::uint8_t number;
    const char* id;
  };
  for (const Case& c : {Case{2, "ULMN"}, Case{3, "TULM"}, Case{4, "VULM"}}) {
    EXPECT_THAT(Exchange(With(kStartCpld, 8, c.number)), ElementsAre(0x0B0B0004, 0x80120000));
    EXPECT_THAT(Exchange(kCpldData), ElementsAre(0x0B0B0004, 0x80140000));
    Send(kProgramCpld);
    EXPECT_EQ(Delay(), 20'000'000 + 4 * 2'000'000);
    now = box.NextAnswerNanoseconds();
    EXPECT_THAT(Answer(), ElementsAre(0x0B0B0004, 0x80160000));
    box.PowerCycle(now);
    EXPECT_EQ(Stored(box, c.id), 0x011C) << "the first two bytes";
  }
  ExpectNoErrors();
}

TEST_F(VeltraBoxDownload, TakesACpldOfOneByteForVersionZero) {
  Exchange(With(kStartCpld, 13, 1));
  Exchange({0x0B, 0x0B, 0x00, 0x07, 0x80, 0x14, 0x00, 0x00, 0x00, 0x01, 0x55});
  Exchange(kProgramCpld);
  box.PowerCycle(now + 1'000'000'000);
  EXPECT_EQ(Stored(box, "ULMN"), 0x0000);
  ExpectNoErrors();
}

TEST_F(VeltraBoxDownload, TakesAFileInPieces) {
  Exchange(kStartFpga);
  for (std::size_t at = 0; at < kFpgaFile.size(); at += 5) {
    const Bytes piece(kFpgaFile.begin() + static_cast<std::ptrdiff_t>(at),
                      kFpgaFile.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(at + 5, 24)));
    EXPECT_EQ(Exchange(FpgaData(piece)), kFpgaDataDone);
  }
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaDone);
  ExpectNoErrors();
}

TEST_F(VeltraBoxDownload, TakesPiecesOf1970Bytes) {
  // 1,970 bytes are 07B2, and one more.
  Exchange({0x0B, 0x0B, 0x00, 0x0A, 0x80, 0x06, 0x00, 0x00, 0x00, 0x03, 0x00, 0x00, 0x0F, 0x70});
  EXPECT_EQ(Exchange(FpgaData(Bytes(1970, 0))), kFpgaDataDone);
  ExpectNoErrors();
  EXPECT_EQ(Exchange(FpgaData(Bytes(1971, 0))), kFpgaDataRefused);
  ExpectError("FPGADownload: 1971 bytes at once");
}

TEST_F(VeltraBoxDownload, AnswersQuestionsInTheMiddle) {
  Exchange(kStartFpga);
  EXPECT_THAT(Exchange(kHwConfig), testing::SizeIs(7));
  EXPECT_EQ(Exchange(FpgaData(kFpgaFile)), kFpgaDataDone);
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaDone);
}

TEST_F(VeltraBoxDownload, BeginsAgainWithASecondStart) {
  Exchange(kStartCpld);
  DownloadFpga();
  EXPECT_EQ(Exchange(kStartFpga), kStartFpgaDone);
  EXPECT_EQ(Exchange(FpgaData(kFpgaFile)), kFpgaDataDone) << "nothing is left of the first";
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaDone);
  ExpectNoErrors();
}

// Refusals: status 1, an error, and the transfer is gone.

struct RefusedStart {
  const char* name;
  std::size_t at;
  std::uint8_t value;
  const char* complaint;
};

class VeltraBoxRefusesStart : public VeltraBoxDownload, public testing::WithParamInterface<RefusedStart> {};

TEST_P(VeltraBoxRefusesStart, OfAnFpga) {
  Exchange(kStartFpga);
  EXPECT_THAT(Exchange(With(kStartFpga, GetParam().at, GetParam().value)), ElementsAre(0x0B0B0004, 0x80060001));
  ExpectError(GetParam().complaint);
  EXPECT_EQ(Exchange(FpgaData(kFpgaFile)), kFpgaDataRefused) << "the download that was open is dropped";
}

INSTANTIATE_TEST_SUITE_P(Kinds, VeltraBoxRefusesStart,
                         testing::Values(RefusedStart{"BinaryFile", 9, 2, "StartFPGADownload: file type 2"},
                                         RefusedStart{"NoFile", 9, 7, "StartFPGADownload: file type 7"},
                                         RefusedStart{"Cpld", 8, 2, "StartFPGADownload: there is no part 2"}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(VeltraBoxDownload, RefusesOtherStarts) {
  EXPECT_THAT(Exchange(With(kStartCpld, 8, 1)), ElementsAre(0x0B0B0004, 0x80120001));
  EXPECT_THAT(Exchange(With(kStartCpld, 8, 5)), ElementsAre(0x0B0B0004, 0x80120001));
  EXPECT_THAT(Exchange(With(kStartCpld, 9, 2)), ElementsAre(0x0B0B0004, 0x80120001));
  EXPECT_THAT(Exchange(With(kStartFirmware, 8, 0)), ElementsAre(0x0B0B0004, 0x800C0001));
  EXPECT_THAT(Exchange(With(kStartFirmware, 9, 1)), ElementsAre(0x0B0B0004, 0x800C0001));
  EXPECT_THAT(Errors(),
              ElementsAre("box: StartCPLDDownload: there is no part 1", "box: StartCPLDDownload: there is no part 5",
                          "box: StartCPLDDownload: file type 2", "box: StartFirmwareDownload: file type 0",
                          "box: StartFirmwareDownload: there is no part 1"));
}

TEST_F(VeltraBoxDownload, RefusesDataWithoutAStart) {
  EXPECT_EQ(Exchange(FpgaData(kFpgaFile)), kFpgaDataRefused);
  ExpectError("FPGADownload: no such download was started");
}

TEST_F(VeltraBoxDownload, RefusesDataOfAnotherKind) {
  Exchange(kStartFpga);
  EXPECT_THAT(Exchange(kCpldData), ElementsAre(0x0B0B0004, 0x80140001));
  ExpectError("CPLDDownload: no such download was started");
  EXPECT_EQ(Exchange(FpgaData(kFpgaFile)), kFpgaDataRefused) << "the download is dropped";
}

TEST_F(VeltraBoxDownload, RefusesALengthThatIsNotThatOfTheData) {
  Exchange(kStartFpga);
  EXPECT_EQ(Exchange(With(FpgaData({1, 2, 3, 4}), 9, 3)), kFpgaDataRefused);
  ExpectError("FPGADownload: length 3 of 4 bytes");
  Exchange(kStartFpga);
  EXPECT_EQ(Exchange(With(FpgaData({1, 2, 3, 4}), 8, 1)), kFpgaDataRefused);
}

TEST_F(VeltraBoxDownload, RefusesMoreThanWasAnnounced) {
  DownloadFpga();
  EXPECT_EQ(Exchange(FpgaData({1})), kFpgaDataRefused);
  ExpectError("FPGADownload: more than the announced 24 bytes");
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaRefused);
}

TEST_F(VeltraBoxDownload, RefusesFirmwareAtAnAddress) {
  Exchange(kStartFirmware);
  EXPECT_THAT(Exchange({0x0B, 0x0B, 0x00, 0x0B, 0x80, 0x0E, 0x00, 0x00, 0x00, 0x00, 0x07, 0xB2, 0x00, 0x01, 0x55}),
              ElementsAre(0x0B0B0004, 0x800E0001));
  ExpectError("FirmwareDownload: the address is 000007b2");
}

TEST_F(VeltraBoxDownload, RefusesToProgramWithoutADownload) {
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaRefused);
  ExpectError("ProgramFPGA: no such download was started");
}

TEST_F(VeltraBoxDownload, RefusesToProgramAnotherKind) {
  DownloadFpga();
  EXPECT_THAT(Exchange(kProgramFirmware), ElementsAre(0x0B0B0004, 0x80100001));
  ExpectError("ProgramFirmware: no such download was started");
}

TEST_F(VeltraBoxDownload, RefusesToProgramHalfAFile) {
  Exchange(kStartFpga);
  Exchange(FpgaData({'O', 'R', 'B', 'O'}));
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaRefused);
  ExpectError("ProgramFPGA: only 4 of 24 bytes have come");
  EXPECT_EQ(Exchange(FpgaData({1})), kFpgaDataRefused) << "the download is dropped";
}

TEST_F(VeltraBoxDownload, DropsADownloadAtAnyRefusal) {
  DownloadFpga();
  Exchange({0x0B, 0x0B, 0x00, 0x04, 0x80, 0x55, 0x00, 0x00});
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaRefused);
}

struct BadContainer {
  const char* name;
  std::size_t at;
  std::uint8_t value;
  const char* complaint;
};

class VeltraBoxRefusesContainer : public VeltraBoxDownload, public testing::WithParamInterface<BadContainer> {};

TEST_P(VeltraBoxRefusesContainer, WhenItIsProgrammed) {
  Exchange(kStartFpga);
  Exchange(FpgaData(With(kFpgaFile, GetParam().at, GetParam().value)));
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaRefused);
  ExpectError(GetParam().complaint);
  box.PowerCycle(now + 1'000'000'000);
  EXPECT_EQ(Stored(box, "PLGR"), 0x0218);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, VeltraBoxRefusesContainer,
    testing::Values(BadContainer{"Magic", 7, 'J', "ProgramFPGA: no container"},
                    BadContainer{"HeaderTooShort", 11, 21, "ProgramFPGA: the container's header has 21 bytes"},
                    BadContainer{"HeaderTooLong", 11, 25, "ProgramFPGA: the container's header has 25 bytes"},
                    BadContainer{"HeaderHuge", 8, 0x80, "ProgramFPGA: the container's header has 2147483670 bytes"},
                    BadContainer{"Id", 18, 'Q', "ProgramFPGA: the container is not one for PLGR"},
                    BadContainer{"Version", 16, 'x', "ProgramFPGA: the container has no version"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(VeltraBoxDownload, TakesAHeaderThatIsTheWholeFile) {
  Exchange(kStartFpga);
  Exchange(FpgaData(With(kFpgaFile, 11, 24)));
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaDone);
}

TEST_F(VeltraBoxDownload, RefusesFilesWithoutAWholeHeader) {
  Exchange(With(kStartFpga, 13, 21));
  Exchange(FpgaData(Bytes(kFpgaFile.begin(), kFpgaFile.begin() + 21)));
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaRefused);
  Exchange(With(kStartFpga, 13, 0));
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaRefused);
  EXPECT_THAT(Errors(), ElementsAre("box: ProgramFPGA: no container", "box: ProgramFPGA: no container"));
}

TEST_F(VeltraBoxDownload, RefusesAContainerForACpld) {
  Exchange(With(kStartCpld, 13, 8));
  Exchange({0x0B, 0x0B, 0x00, 0x0E, 0x80, 0x14, 0x00, 0x00, 0x00, 0x08, 'O', 'R', 'B', 'O', '.', 'R', 'B', 'I'});
  EXPECT_THAT(Exchange(kProgramCpld), ElementsAre(0x0B0B0004, 0x80160001));
  ExpectError("ProgramCPLD: a container in the place of its payload");
}

// The burn.

TEST_F(VeltraBoxDownload, RefusesEverythingWhileItBurns) {
  DownloadFpga();
  Send(kProgramFpga);
  now += 20'000'000 + 24 * 13'000 - 1;
  Send(kHwConfig);
  EXPECT_EQ(box.TakeAnswer(), kProgramFpgaDone);
  EXPECT_THAT(Answer(), ElementsAre(0x0B0B0004, 0x80030001)) << "0.3 ms later";
  ExpectError("HWConfigFB: a part is being programmed");
  EXPECT_EQ(Stored(box, "PLGR"), 0x0218);
  now += 1;
  EXPECT_THAT(Exchange(kHwConfig), testing::SizeIs(7));
  EXPECT_EQ(Stored(box, "PLGR"), 0x0220) << "the burn went on";
}

TEST_F(VeltraBoxDownload, AnswersARefusalBeforeTheBurnEnds) {
  DownloadFpga();
  Send(kProgramFpga);
  Send(kHwConfig);
  EXPECT_THAT(Answer(), ElementsAre(0x0B0B0004, 0x80030001));
  EXPECT_EQ(Answer(), kProgramFpgaDone);
}

TEST_F(VeltraBoxDownload, KeepsTheOldVersionWhenThePowerGoesBeforeTheEnd) {
  DownloadFpga();
  Send(kProgramFpga);
  const std::int64_t end = box.NextAnswerNanoseconds();
  simulator::VeltraBox early = box;
  early.PowerCycle(end - 1);
  EXPECT_EQ(Stored(early, "PLGR"), 0x0218);
  EXPECT_EQ(early.NextAnswerNanoseconds(), simulator::VeltraBox::kNever) << "nobody answers any more";
  box.PowerCycle(end);
  EXPECT_EQ(Stored(box, "PLGR"), 0x0220);
  EXPECT_EQ(box.state().running, box.state().stored);
}

TEST_F(VeltraBoxDownload, ForgetsADownloadAndHalfAPacketAtAPowerCycle) {
  DownloadFpga();
  Take(0x0B0B0006, true);
  Send(kHwConfig);
  box.state().errors = {};
  Take(0x0B0B0006, true);
  box.PowerCycle(now);
  EXPECT_THAT(Answer(), IsEmpty());
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaRefused);
  ExpectError("ProgramFPGA: no such download was started");
}

TEST_F(VeltraBoxDownload, EndsItsBurnWhenItSettles) {
  DownloadFpga();
  Send(kProgramFpga);
  box.state().Settle();
  EXPECT_EQ(Stored(box, "PLGR"), 0x0220);
  EXPECT_EQ(box.state().running.revisions[1], 0x18);
  DownloadFpga();
  box.state().Settle();
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaRefused) << "given up";
}

}  // namespace
