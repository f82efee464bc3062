#include "MorvakUnitFixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST_F(MorvakUnitDownload, LoadsAnFpga) {
  std::int64_t start = clock.NowNanoseconds();
  EXPECT_EQ(Exchange(kDiagnostic), kDiagnosticDone);
  EXPECT_EQ(NanosecondsSince(start), 300'000);
  clock.Sleep(500);
  start = clock.NowNanoseconds();
  EXPECT_EQ(Exchange(kStartFpga), kStartFpgaDone);
  EXPECT_EQ(NanosecondsSince(start), 300'000);
  start = clock.NowNanoseconds();
  EXPECT_EQ(Exchange(kFpgaData), kFpgaDataDone);
  EXPECT_EQ(NanosecondsSince(start), 300'000 + 24 * 2'000);
  start = clock.NowNanoseconds();
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaDone);
  EXPECT_EQ(NanosecondsSince(start), kFpgaBurn);
  const Bytes rev = {0x0B, 0x0B, 0x00, 0x06, 0x80, 0x55, 0x00, 0x00, 0x00, 0x01};
  EXPECT_THAT(Exchange(rev),
              ElementsAre(0x0B, 0x0B, 0x00, 0x0A, 0x80, 0x55, 0x00, 0x00, 0x00, 0x01, '0', '3', '0', 'e'))
      << "the old version runs";
  unit.state().PowerCycle(clock.NowNanoseconds());
  EXPECT_THAT(Exchange(rev),
              ElementsAre(0x0B, 0x0B, 0x00, 0x0A, 0x80, 0x55, 0x00, 0x00, 0x00, 0x01, '0', '3', '0', 'f'));
  ExpectNoErrors();
}

TEST_F(MorvakUnitDownload, LoadsEachFpgaWithEachOfItsContainers) {
  struct Case {
    std::uint8_t number;
    std::vector<std::string> ids;
    std::uint16_t version;
  };
  const Case cases[] = {{0, {"XNDR", "YRVL", "YRVX", "QNDL"}, 1},
                        {1, {"ENCD", "ENSC", "SPCR"}, 3},
                        {2, {"ENCD", "ENSC", "SPCR"}, 5},
                        {3, {"ENVC"}, 7},
                        {4, {"ENVC"}, 8}};
  for (const Case& c : cases)
    for (const std::string& id : c.ids) {
      unit.state().stored.Set(c.version, "0000");
      Diagnose();
      Exchange(With(kStartFpga, 8, c.number));
      Bytes data = kFpgaData;
      std::copy(id.begin(), id.end(), data.begin() + 28);
      Exchange(data);
      EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaDone) << int{c.number} << " " << id;
      unit.state().PowerCycle(clock.NowNanoseconds());
      EXPECT_EQ(Stored(c.version), "030f") << int{c.number} << " " << id;
    }
  ExpectNoErrors();
}

TEST_F(MorvakUnitDownload, LoadsTheFirmware) {
  Diagnose();
  EXPECT_THAT(Exchange({0x0B, 0x0B, 0x00, 0x0A, 0x80, 0x0C, 0x00, 0x00, 0x03, 0x00, 0x00, 0x00, 0x00, 0x16}),
              ElementsAre(0x0B, 0x0B, 0x00, 0x04, 0x80, 0x0C, 0x00, 0x00));
  EXPECT_THAT(Exchange({0x0B, 0x0B, 0x00, 0x20, 0x80, 0x0E, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                        0x00, 0x16, 'O',  'R',  'B',  'O',  '.',  'R',  'B',  'I',  0x00, 0x00,
                        0x00, 0x16, 'R',  '0',  '1',  '2',  '3',  ' ',  'P',  'I',  'C',  'O'}),
              ElementsAre(0x0B, 0x0B, 0x00, 0x04, 0x80, 0x0E, 0x00, 0x00));
  const std::int64_t start = clock.NowNanoseconds();
  EXPECT_THAT(Exchange({0x0B, 0x0B, 0x00, 0x04, 0x80, 0x10, 0x00, 0x00}),
              ElementsAre(0x0B, 0x0B, 0x00, 0x04, 0x80, 0x10, 0x00, 0x00));
  EXPECT_EQ(NanosecondsSince(start), 20'000'000 + 22 * 13'000);
  EXPECT_EQ(Exchange(kFirmwareRev), kFirmwareRevIs);
  EXPECT_EQ(Stored(0), "0123");
}

TEST_F(MorvakUnitDownload, LoadsACpldWithoutAHeader) {
  struct Case {
    std::uint8_t number;
    std::uint16_t version;
  };
  for (const Case& c : {Case{0, 2}, Case{1, 10}}) {
    Diagnose();
    EXPECT_THAT(Exchange(With(kStartCpld, 8, c.number)), ElementsAre(0x0B, 0x0B, 0x00, 0x04, 0x80, 0x12, 0x00, 0x00));
    EXPECT_THAT(Exchange(kCpldData), ElementsAre(0x0B, 0x0B, 0x00, 0x04, 0x80, 0x14, 0x00, 0x00));
    const std::int64_t start = clock.NowNanoseconds();
    EXPECT_THAT(Exchange(kProgramCpld), ElementsAre(0x0B, 0x0B, 0x00, 0x04, 0x80, 0x16, 0x00, 0x00));
    EXPECT_EQ(NanosecondsSince(start), 20'000'000 + 4 * 2'000'000);
    unit.state().PowerCycle(clock.NowNanoseconds());
    EXPECT_EQ(unit.state().running.Of(c.version), "0010") << "the first two bytes";
  }
  ExpectNoErrors();
}

// The diagnostic before a start.

TEST_F(MorvakUnitDownload, NeedsADiagnosticBeforeEachStart) {
  EXPECT_EQ(Exchange(kStartFpga), kStartFpgaRefused);
  ExpectError("StartFPGADownload: no diagnostic before it");
  Diagnose();
  EXPECT_EQ(Exchange(kStartFpga), kStartFpgaDone);
  EXPECT_EQ(Exchange(kStartFpga), kStartFpgaRefused) << "the first has used it up";
  EXPECT_EQ(Exchange(kFpgaData), kFpgaDataRefused) << "and the download is dropped";
  EXPECT_THAT(Exchange(kStartCpld), ElementsAre(0x0B, 0x0B, 0x00, 0x04, 0x80, 0x12, 0x00, 0x01));
  EXPECT_THAT(Exchange({0x0B, 0x0B, 0x00, 0x0A, 0x80, 0x0C, 0x00, 0x00, 0x03, 0x00, 0x00, 0x00, 0x00, 0x16}),
              ElementsAre(0x0B, 0x0B, 0x00, 0x04, 0x80, 0x0C, 0x00, 0x01));
}

TEST_F(MorvakUnitDownload, NeedsHalfASecondBehindTheDiagnostic) {
  const std::int64_t start = clock.NowNanoseconds();
  Exchange(kDiagnostic);
  clock.Advance(start + 500'000'000 - clock.NowNanoseconds() - 1);
  EXPECT_EQ(Exchange(kStartFpga), kStartFpgaRefused);
  ExpectError("StartFPGADownload: only 499999 us after the diagnostic");
  clock.Sleep(1'000);
  EXPECT_EQ(Exchange(kStartFpga), kStartFpgaRefused) << "used up";
  Exchange(kDiagnostic);
  clock.Advance(499'700'000);
  EXPECT_EQ(Exchange(kStartFpga), kStartFpgaDone) << "half a second to the nanosecond";
}

TEST_F(MorvakUnitDownload, CountsFromTheLastDiagnostic) {
  Diagnose();
  Exchange(kDiagnostic);
  EXPECT_EQ(Exchange(kStartFpga), kStartFpgaRefused);
}

TEST_F(MorvakUnitDownload, RefusesAnotherDiagnostic) {
  for (std::size_t at = 8; at < kDiagnostic.size(); ++at)
    EXPECT_THAT(Exchange(With(kDiagnostic, at, 0x55)), ElementsAre(0x0B, 0x0B, 0x00, 0x04, 0xC0, 0x02, 0x00, 0x01));
  EXPECT_EQ(Errors()[0], "morvak: Diagnostic: is not the one before a start");
  EXPECT_THAT(Exchange({0x0B, 0x0B, 0x00, 0x06, 0xC0, 0x02, 0x00, 0x00, 0x00, 0x00}),
              ElementsAre(0x0B, 0x0B, 0x00, 0x04, 0xC0, 0x02, 0x00, 0x01));
  EXPECT_EQ(Errors().back(), "morvak: Diagnostic: a packet of 10 bytes");
  clock.Sleep(1'000);
  EXPECT_EQ(Exchange(kStartFpga), kStartFpgaRefused);
}

TEST_F(MorvakUnitDownload, ForgetsADiagnosticAtAPowerCycleAndWhenItIsKept) {
  Diagnose();
  unit.state().PowerCycle(clock.NowNanoseconds());
  EXPECT_EQ(Exchange(kStartFpga), kStartFpgaRefused);
  Diagnose();
  unit.state().Settle();
  EXPECT_EQ(Exchange(kStartFpga), kStartFpgaRefused);
}

// Refusals.

TEST_F(MorvakUnitDownload, RefusesOtherStarts) {
  const auto start = [&](const Bytes& packet) {
    Diagnose();
    return Exchange(packet).at(7);
  };
  EXPECT_EQ(start(With(kStartFpga, 8, 5)), 1);
  EXPECT_EQ(start(With(kStartFpga, 9, 2)), 1);
  EXPECT_EQ(start(With(kStartCpld, 8, 2)), 1);
  EXPECT_EQ(start(With(kStartCpld, 9, 3)), 1);
  EXPECT_EQ(start({0x0B, 0x0B, 0x00, 0x0A, 0x80, 0x0C, 0x00, 0x00, 0x03, 0x06, 0x00, 0x00, 0x00, 0x16}), 1);
  EXPECT_THAT(Errors(),
              ElementsAre("morvak: StartFPGADownload: there is no part 5", "morvak: StartFPGADownload: file type 2",
                          "morvak: StartCPLDDownload: there is no part 2", "morvak: StartCPLDDownload: file type 3",
                          "morvak: StartFirmwareDownload: there is no part 6"));
}

TEST_F(MorvakUnitDownload, RefusesAContainerForAnotherPart) {
  for (const std::string id : {"ENCD", "PICO", "NDR "}) {
    Diagnose();
    Exchange(kStartFpga);
    Bytes data = kFpgaData;
    std::copy(id.begin(), id.end(), data.begin() + 28);
    Exchange(data);
    EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaRefused) << id;
    EXPECT_EQ(Errors().back(), "morvak: ProgramFPGA: the container is not one for XNDR YRVL YRVX QNDL");
  }
  EXPECT_EQ(Stored(1), "030e");
}

TEST_F(MorvakUnitDownload, RefusesAContainerForACpld) {
  Diagnose();
  Exchange(With(kStartCpld, 13, 8));
  Exchange({0x0B, 0x0B, 0x00, 0x0E, 0x80, 0x14, 0x00, 0x00, 0x00, 0x08, 'O', 'R', 'B', 'O', '.', 'R', 'B', 'I'});
  EXPECT_THAT(Exchange(kProgramCpld), ElementsAre(0x0B, 0x0B, 0x00, 0x04, 0x80, 0x16, 0x00, 0x01));
  ExpectError("ProgramCPLD: a container in the place of its payload");
}

TEST_F(MorvakUnitDownload, RefusesWhatWasNotAnnounced) {
  EXPECT_EQ(Exchange(kFpgaData), kFpgaDataRefused);
  DownloadFpga();
  EXPECT_EQ(Exchange(kFpgaData), kFpgaDataRefused);
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaRefused);
  EXPECT_THAT(Errors(), ElementsAre("morvak: FPGADownload: no such download was started",
                                    "morvak: FPGADownload: more than the announced 24 bytes",
                                    "morvak: ProgramFPGA: no such download was started"));
}

// The burn.

TEST_F(MorvakUnitDownload, AnswersAtTheEndOfALongBurn) {
  Diagnose();
  // A CPLD of 1,000 bytes takes 2.02 s.
  Exchange({0x0B, 0x0B, 0x00, 0x0A, 0x80, 0x12, 0x00, 0x00, 0x01, 0x02, 0x00, 0x00, 0x03, 0xE8});
  Bytes data = {0x0B, 0x0B, 0x03, 0xEE, 0x80, 0x14, 0x00, 0x00, 0x03, 0xE8, 0x01, 0x0A};
  data.resize(1010, 0x55);
  Exchange(data);
  const std::int64_t start = clock.NowNanoseconds();
  EXPECT_THAT(Exchange(kProgramCpld), IsEmpty());
  EXPECT_EQ(NanosecondsSince(start), 1'000'000'000);
  EXPECT_THAT(Exchange({}), IsEmpty());
  EXPECT_EQ(NanosecondsSince(start), 2'000'000'000);
  EXPECT_THAT(Exchange({}), ElementsAre(0x0B, 0x0B, 0x00, 0x04, 0x80, 0x16, 0x00, 0x00));
  EXPECT_EQ(NanosecondsSince(start), 2'020'000'000);
  unit.state().PowerCycle(clock.NowNanoseconds());
  EXPECT_EQ(unit.state().running.Of(10), "010a");
  ExpectNoErrors();
}

TEST_F(MorvakUnitDownload, RefusesEverythingWhileItBurns) {
  DownloadFpga();
  const std::int64_t start = clock.NowNanoseconds();
  EXPECT_THAT(Exchange(kProgramFpga, 0), IsEmpty());
  EXPECT_THAT(Exchange(kFirmwareRev), ElementsAre(0x0B, 0x0B, 0x00, 0x04, 0x80, 0x55, 0x00, 0x01));
  ExpectError("GetStringPartRev: a part is being programmed");
  EXPECT_EQ(Exchange({}), kProgramFpgaDone) << "the burn went on";
  EXPECT_EQ(NanosecondsSince(start), kFpgaBurn);
  EXPECT_EQ(Exchange(kFirmwareRev), kFirmwareRevIs);
}

TEST_F(MorvakUnitDownload, KeepsTheOldVersionWhenThePowerGoesBeforeTheEnd) {
  DownloadFpga();
  Exchange(kProgramFpga, 0);
  const std::int64_t end = clock.NowNanoseconds() + kFpgaBurn;
  simulator::MorvakUnitState early = unit.state();
  early.PowerCycle(end - 1);
  EXPECT_EQ(early.stored.Of(1), "030e");
  EXPECT_THAT(early.answers, IsEmpty()) << "nobody answers any more";
  EXPECT_FALSE(early.downloads.burn.has_value());
  unit.state().PowerCycle(end);
  EXPECT_EQ(Stored(1), "030f");
  EXPECT_EQ(unit.state().running, unit.state().stored);
}

TEST_F(MorvakUnitDownload, EndsItsBurnWhenItSettles) {
  DownloadFpga();
  Exchange(kProgramFpga, 0);
  unit.state().Settle();
  EXPECT_EQ(Stored(1), "030f");
  EXPECT_EQ(unit.state().running.Of(1), "030e");
  EXPECT_THAT(Exchange({}), IsEmpty());
  DownloadFpga();
  unit.state().Settle();
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaRefused) << "given up";
}

TEST_F(MorvakUnitDownload, PutsAPartThereThatHadNoVersion) {
  Diagnose();
  Exchange(With(kStartFpga, 8, 3));
  Bytes data = kFpgaData;
  const std::string id = "ENVC";
  std::copy(id.begin(), id.end(), data.begin() + 28);
  Exchange(data);
  EXPECT_EQ(Exchange(kProgramFpga), kProgramFpgaDone);
  unit.state().PowerCycle(clock.NowNanoseconds());
  EXPECT_EQ(unit.state().running.Of(7), "030f");
  ExpectNoErrors();
}

}  // namespace
