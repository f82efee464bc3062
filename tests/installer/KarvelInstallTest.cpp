#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <span>

#include "BenchRun.h"
#include "simulator/BenchDescription.h"
#include "simulator/FirmwareFiles.h"
#include "simulator/KarvelProgram.h"
#include "simulator/RbiFile.h"
#include "support/ScopedWorkingFolder.h"

// Whole runs that play a VME file on the CPLD of a host card: what the user sees, and what the CPLD holds then.

namespace {

using simulator::BenchState;
using simulator::HostCards;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kFailed[] = "FwDeploy failed: ";
constexpr char kPlace[] = " File: FwDeploy.cpp Line: #\n";

class KarvelInstall : public testing::Test {
 protected:
  KarvelInstall() : inside_(folder_.Path()) {
    for (const simulator::FirmwareFile& file : simulator::ReleaseFiles())
      if (file.name == "KRVL0101.rbi") simulator::WriteFirmwareFiles(folder_.Path(), {file}, 1);
  }

  void WriteFile(const std::string& name, const std::vector<std::uint8_t>& bytes) {
    folder_.Write(name, std::string(bytes.begin(), bytes.end()));
  }

  const simulator::KarvelCells& Cells(std::size_t card) const { return state_.cards[card]->karvel.cells(); }

  BenchState state_ = simulator::MakeBench({});
  test_support::TempFolder folder_;

 private:
  test_support::ScopedWorkingFolder inside_;
};

TEST_F(KarvelInstall, TheFirstCardsCpldHoldsTheFileAndRunsItBehindAPowerCycle) {
  const InstallerRun run = RunOnBench(state_, {"-bkarvel", "-nofussy", "-nopause"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.out.substr(0, run.out.find("0%")),
            "bkarvel\nProgramming Belmara Karvel\n\r"
            "USERCODE verification failed.  Continue programming......\n\n");
  EXPECT_EQ(run.err, "");
  EXPECT_THAT(ProtocolErrors(state_), IsEmpty());

  EXPECT_EQ(Cells(0).rows, (std::array<simulator::KarvelRow, 64>{}, [] {
              std::array<simulator::KarvelRow, 64> rows{};
              const auto made = simulator::MakeKarvelRows(0x00170000, 1);
              std::copy(made.begin(), made.end(), rows.begin());
              return rows;
            }()));
  EXPECT_EQ(Cells(0).usercode, (simulator::KarvelUsercode{'K', 'V', 0x00, 0x17}));
  EXPECT_TRUE(Cells(0).done);
  EXPECT_EQ(simulator::RowsOf(state_)[1].running, 0x16) << "not before the power cycle";
  PowerCycle(state_);
  EXPECT_EQ(simulator::RowsOf(state_)[1].running, 0x17);
  EXPECT_THAT(RunOnBench(state_, {"-version", "-nopause"}).out,
              testing::HasSubstr("     bkarvel      02.01           0017           N/A\n"
                                 "     dkarvel      02.01           0016           N/A\n"));
}

TEST_F(KarvelInstall, PercentagesCountTheWaitsOfTheFileFromNothingOn) {
  const InstallerRun run = RunOnBench(state_, {"-bkarvel", "-nofussy", "-nopause"});
  std::string expected;
  for (int percent = 0; run.out.find(std::to_string(percent) + "%\n") != std::string::npos; percent += 10)
    expected += std::to_string(percent) + "%\n";
  EXPECT_EQ(run.out.substr(run.out.find("0%")), expected);
  EXPECT_GT(expected.size(), 10u) << "a program of 64 rows waits more than 38 times";
}

TEST_F(KarvelInstall, ThePercentagesAreThereWithoutProgress) {
  const InstallerRun run = RunOnBench(state_, {"-bkarvel", "-nofussy", "-nopause", "-noprogress"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.out.substr(0, run.out.find("0%")),
            "Programming Belmara Karvel\n\rUSERCODE verification failed.  Continue programming......\n\n");
}

TEST_F(KarvelInstall, NoFrontEndIsTold) {
  std::vector<simulator::ReceivedMessage> received;
  ASSERT_EQ(RunOnBench(state_, {"-bkarvel", "-nofussy", "-nopause"}, {}, &received).exitCode, 2);
  ASSERT_EQ(received.size(), 1u) << "of the restart, and of nothing else";
  EXPECT_EQ(received[0].kind, 102u);
  EXPECT_THAT(received[0].bytes, ElementsAre(1, 0, 0, 0, 0, 0, 0, 0));
}

TEST_F(KarvelInstall, AFileThatIsThereAlreadyIsAnErrorWithCodeOne) {
  ASSERT_EQ(RunOnBench(state_, {"-bkarvel", "-nofussy", "-nopause"}).exitCode, 2);
  const simulator::KarvelCells programmed = Cells(0);
  for (const bool hasPowerCycle : {false, true}) {
    if (hasPowerCycle) PowerCycle(state_);
    const InstallerRun again = RunOnBench(state_, {"-bkarvel", "-nofussy", "-nopause"});
    EXPECT_EQ(again.exitCode, -1);
    EXPECT_EQ(again.out,
              "bkarvel\nProgramming Belmara Karvel\n\r"
              "USERCODE verification passed.  Programming aborted. \n\n0%\n");
    EXPECT_EQ(WithoutLineNumber(again.err),
              std::string(kFailed) + "Belmara Karvel Programming Error... Error Code: 1" + kPlace);
    EXPECT_EQ(Cells(0), programmed);
  }
  EXPECT_THAT(ProtocolErrors(state_), IsEmpty());
}

TEST_F(KarvelInstall, UpdateSparesTheError) {
  ASSERT_EQ(RunOnBench(state_, {"-bkarvel", "-nofussy", "-nopause"}).exitCode, 2);
  PowerCycle(state_);
  const InstallerRun again = RunOnBench(state_, {"-bkarvel", "-nofussy", "-update", "-nopause"});
  EXPECT_EQ(again.exitCode, 0);
  EXPECT_EQ(again.out, "bkarvel is already at version 17\n");
}

TEST_F(KarvelInstall, BothCardsTakeTheSameFileInOneRun) {
  const InstallerRun run = RunOnBench(state_, {"KRVL0101.rbi", "-nopause"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.out, testing::HasSubstr("bkarvel\nProgramming Belmara Karvel\n\r"));
  const std::size_t second = run.out.find("dkarvel\nProgramming Dovu Karvel\n\r");
  ASSERT_NE(second, std::string::npos);
  EXPECT_THAT(run.out.substr(second), testing::HasSubstr("\n\n0%\n10%\n")) << "each file begins at 0";
  EXPECT_EQ(Cells(0), Cells(1));
  EXPECT_EQ(Cells(0).VersionWord(), 0x00170000u);
  EXPECT_THAT(ProtocolErrors(state_), IsEmpty());
}

TEST_F(KarvelInstall, TheSecondCardsErrorsBearItsName) {
  ASSERT_EQ(RunOnBench(state_, {"-dkarvel", "-nofussy", "-nopause"}).exitCode, 2);
  EXPECT_EQ(WithoutLineNumber(RunOnBench(state_, {"-dkarvel", "-nofussy", "-nopause"}).err),
            std::string(kFailed) + "Dovu Karvel Programming Error... Error Code: 1" + kPlace);
}

TEST_F(KarvelInstall, ASecondCardThatIsNotThereIsPassedOver) {
  state_ = simulator::MakeBench({.hostCards = HostCards::kBelmara});
  const InstallerRun alone = RunOnBench(state_, {"-dkarvel", "-nofussy", "-nopause"});
  EXPECT_EQ(alone.exitCode, 0);
  EXPECT_EQ(alone.out + alone.err, "");
  const InstallerRun run = RunOnBench(state_, {"-bkarvel", "-dkarvel", "-nofussy", "-nopause", "-noprogress"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.out, testing::Not(testing::HasSubstr("Dovu")));
}

TEST_F(KarvelInstall, ByDefaultItIsLeftAloneInSilence) {
  const InstallerRun run = RunOnBench(state_, {"-bkarvel", "-nopause"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out + run.err, "");
}

// ---- Early artwork

struct ArtworkCase {
  const char* artwork;
  std::uint16_t fileVersion;
  bool isTaken;
};

void PrintTo(const ArtworkCase& c, std::ostream* stream) {
  *stream << "artwork " << c.artwork << " and file " << c.fileVersion;
}

class KarvelArtwork : public KarvelInstall, public testing::WithParamInterface<ArtworkCase> {};

TEST_P(KarvelArtwork, EarlyOnesTakeNoNewFile) {
  const ArtworkCase& c = GetParam();
  state_ = simulator::ParseBenchDescription(std::string(R"({"veltra":{"belmara":{"vpd":{"ZA":")") + c.artwork +
                                            R"(","ZB":"1","ZC":"0"},"flash":"1160","karvel":"00150000"}}})")
               .state;
  const auto rows = simulator::MakeKarvelRows(std::uint32_t{c.fileVersion} << 16, 1);
  WriteFile("KRVL0101.rbi", simulator::MakeRbi("KRVL", c.fileVersion,
                                               simulator::MakeKarvelProgram(std::span(rows).first(1), {1, 2, 3, 4})));
  const InstallerRun run = RunOnBench(state_, {"-bkarvel", "-nofussy", "-nopause", "-noprogress"});
  EXPECT_EQ(run.err, "Veltra BOB is inaccessable, and cannot be loaded.  Is BOB turned off?\n");
  EXPECT_EQ(run.exitCode, c.isTaken ? 2 : 0);
  EXPECT_EQ(run.out.empty(), !c.isTaken);
  PowerCycle(state_);
  EXPECT_EQ(simulator::RowsOf(state_)[1].running, c.isTaken ? c.fileVersion : 0x15);
}

INSTANTIATE_TEST_SUITE_P(All, KarvelArtwork,
                         testing::Values(ArtworkCase{"3", 0x17, false}, ArtworkCase{"0", 0x17, false},
                                         ArtworkCase{"3", 0x16, true}, ArtworkCase{"4", 0x17, true},
                                         ArtworkCase{"3", 0xFF, false}, ArtworkCase{"F", 0xFF, true}));

// ---- Files that are none

struct FileCase {
  const char* what;
  std::string payload;
  const char* out;
  const char* code;
};

void PrintTo(const FileCase& c, std::ostream* stream) {
  *stream << c.what;
}

class KarvelFile : public KarvelInstall, public testing::WithParamInterface<FileCase> {};

TEST_P(KarvelFile, EndsWithItsCode) {
  folder_.Write("bad.rbi", Container("KRVL", "0017", GetParam().payload));
  const simulator::KarvelCells before = Cells(0);
  const InstallerRun run = RunOnBench(state_, {"-bkarvel", "bad.rbi", "-nofussy", "-noprogress", "-nopause"});
  EXPECT_EQ(run.exitCode, -1);
  EXPECT_EQ(run.out, std::string("Programming Belmara Karvel\n\r") + GetParam().out);
  EXPECT_EQ(WithoutLineNumber(run.err),
            std::string(kFailed) + "Belmara Karvel Programming Error... Error Code: " + GetParam().code + kPlace);
  EXPECT_EQ(Cells(0), before);
  // The port is as it was found, for the next run.
  EXPECT_EQ(state_.cards[0]->karvel.Pins() & simulator::KarvelCpld::kEnable, 0u);
  ASSERT_EQ(RunOnBench(state_, {"-bkarvel", "-nofussy", "-nopause"}).exitCode, 2);
}

INSTANTIATE_TEST_SUITE_P(All, KarvelFile,
                         testing::Values(FileCase{"another magic", "__VME3.0\xF2\x7F", "", "-3"},
                                         FileCase{"no compression byte", "__VME2.0\xF0\x7F", "", "-3"},
                                         FileCase{"an opcode that is none", "__VME2.0\xF2\x01", "0%\n", "-4"},
                                         FileCase{"a heap and nothing more", "__VME2.0\xF2\x32\x60\x03\x7F", "0%\n",
                                                  "96"}));

TEST_F(KarvelInstall, AFileThatEndsBeforeItsPayloadIsNoVmeFile) {
  folder_.Write("bad.rbi", Container("KRVL", "0017"));
  const InstallerRun run = RunOnBench(state_, {"-bkarvel", "bad.rbi", "-nofussy", "-noprogress", "-nopause"});
  EXPECT_EQ(run.exitCode, -1);
  EXPECT_THAT(run.out, testing::StartsWith("Programming Belmara Karvel\n\rReached end of file/n"));
  EXPECT_EQ(WithoutLineNumber(run.err),
            std::string(kFailed) + "Belmara Karvel Programming Error... Error Code: -3" + kPlace);
}

TEST_F(KarvelInstall, AnEmptyProgramChangesNothingAndCounts) {
  folder_.Write("empty.rbi", Container("KRVL", "0017", "__VME2.0\xF2"));
  const simulator::KarvelCells before = Cells(0);
  const InstallerRun run = RunOnBench(state_, {"-bkarvel", "empty.rbi", "-nofussy", "-noprogress", "-nopause"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.out, "Programming Belmara Karvel\n\rReached end of file/n0%\n");
  EXPECT_EQ(Cells(0), before);
  EXPECT_THAT(ProtocolErrors(state_), IsEmpty());
}

}  // namespace
