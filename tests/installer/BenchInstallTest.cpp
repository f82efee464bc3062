#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "BenchRun.h"
#include "support/ScopedWorkingFolder.h"

// Whole runs against a simulated bench, of which the host cards are programmed: what the user sees, what a front end is
// told, and what the cards hold then.

namespace {

using simulator::BenchState;
using simulator::HostCards;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr char kHeading[] =
    "   Part Name   Board Fn Rev   Current Flash   Expected Flash\n"
    "   ---------   ------------   -------------   --------------\n";

/// The box of a new bench.
constexpr char kBoxRows[] =
    "   pelgrimar      02.01           0218           0220\n"
    "      fwcore      02.01           0224-b         0225\n"
    "      tulmen      02.01           0001           0002\n"
    "      vulmen      02.01           00e1           0001\n"
    "     tolmarn      02.01           0230           0232\n"
    "       ulmen      02.01           001b           001c\n";

class BenchInstall : public testing::Test {
 protected:
  BenchInstall() : inside_(folder_.Path()) {}

  /// Files of the versions that the program expects, of one block each.
  void WriteBothFiles() {
    folder_.Write("BLMX0202.rbi", Container("BLMX", "1161", "first"));
    folder_.Write("DVUX0202.rbi", Container("DVUX", "1161", "second"));
  }

  BenchState state_ = simulator::MakeBench({});
  test_support::TempFolder folder_;

 private:
  test_support::ScopedWorkingFolder inside_;
};

TEST_F(BenchInstall, WithoutArgumentsShowsTheVersionsAndTouchesNothing) {
  const BenchState before = state_;
  const InstallerRun run = RunOnBench(state_, {});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out, std::string(kHeading) +
                         "     belmara      02.01           1160           1161\n"
                         "        dovu      02.01           1160           1161\n"
                         "     bkarvel      02.01           0016           N/A\n"
                         "     dkarvel      02.01           0016           N/A\n" +
                         kBoxRows + "Press 'Enter' to exit.\n");
  EXPECT_EQ(run.err, "");
  for (std::size_t card : {0u, 1u})
    EXPECT_EQ(state_.cards[card]->flash.memory(), before.cards[card]->flash.memory());
}

TEST_F(BenchInstall, AllBringsBothCardsToTheExpectedVersion) {
  WriteBothFiles();
  const InstallerRun run = RunOnBench(state_, {"-all"});
  EXPECT_EQ(run.exitCode, 2);
  // Each block takes longer than the 1.5 seconds between reports, so that the load comes to report its 100 percent.
  EXPECT_EQ(run.out,
            "belmara\nLoading\n100%\nProgramming\n100%\nDone\n"
            "dovu\nLoading\n100%\nProgramming\n100%\nDone\n"
            "To complete installation, power cycle your CPU.\n"
            "Press 'Enter' to exit.\n");
  EXPECT_EQ(run.err, "");
  PowerCycle(state_);
  EXPECT_EQ(RunOnBench(state_, {"-version", "-nopause"}).out,
            std::string(kHeading) +
                "     belmara      02.01           1161           1161\n"
                "        dovu      02.01           1161           1161\n"
                "     bkarvel      02.01           0016           N/A\n"
                "     dkarvel      02.01           0016           N/A\n" +
                kBoxRows);
  EXPECT_THAT(ProtocolErrors(state_), IsEmpty());
}

TEST_F(BenchInstall, TheSecondRunFindsNothingToDo) {
  WriteBothFiles();
  ASSERT_EQ(RunOnBench(state_, {"-all", "-nopause"}).exitCode, 2);
  const InstallerRun again = RunOnBench(state_, {"-all"});
  EXPECT_EQ(again.exitCode, 0);
  EXPECT_EQ(again.out, "belmara does not need to be loaded\ndovu does not need to be loaded\nPress 'Enter' to exit.\n");
}

TEST_F(BenchInstall, UpdateTellsWhatItReplaces) {
  folder_.Write("BLMX0202.rbi", Container("BLMX", "0999", "older"));
  folder_.Write("DVUX0202.rbi", Container("DVUX", "1160", "the same"));
  const InstallerRun run = RunOnBench(state_, {"-all", "-update", "-nofussy", "-noprogress", "-nopause"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.out,
            "Replacing belmara version 1160 with new version 999\n"
            "dovu is already at version 1160\n"
            "Replaced belmara version 1160 with new version 999\n");
  EXPECT_EQ(run.err, "");
}

TEST_F(BenchInstall, ProgressLinesStandBetweenReplacingAndReplaced) {
  folder_.Write("b.rbi", Container("BLMX", "2000", "newer"));
  const InstallerRun run = RunOnBench(state_, {"-update", "b.rbi", "-nopause"});
  EXPECT_EQ(run.out,
            "Replacing belmara version 1160 with new version 2000\n"
            "belmara\nLoading\n100%\nProgramming\n100%\nDone\n"
            "Replaced belmara version 1160 with new version 2000\n");
}

TEST_F(BenchInstall, AFileByNameIsInstalledWhateverItsVersion) {
  folder_.Write("d.rbi", Container("DVUX", "1160", "once more"));
  const InstallerRun run = RunOnBench(state_, {"d.rbi", "-nopause", "-noprogress"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.out, "");
}

TEST_F(BenchInstall, AWrongVersionIsFatalWhenItsTurnComes) {
  folder_.Write("BLMX0202.rbi", Container("BLMX", "1161", "first"));
  folder_.Write("DVUX0202.rbi", Container("DVUX", "1162", "second"));
  const InstallerRun run = RunOnBench(state_, {"-all"});
  EXPECT_EQ(run.exitCode, -1) << "the first card's bit of the result is lost";
  EXPECT_EQ(run.out,
            "belmara\nLoading\n100%\nProgramming\n100%\nDone\n"
            "An error has occurred. Installation may not be complete.\n"
            "Press 'Enter' to exit.\n");
  EXPECT_EQ(WithoutLineNumber(run.err),
            "FwDeploy failed: RBI file is not the correct version for this installer File: FwDeploy.cpp Line: #\n");
  PowerCycle(state_);
  EXPECT_EQ(simulator::RowsOf(state_)[0].running, 0x1161) << "what was programmed stays programmed";
}

TEST_F(BenchInstall, AFileOfAnotherPartIsRefused) {
  folder_.Write("d.rbi", Container("DVUX", "1161"));
  const InstallerRun run = RunOnBench(state_, {"-belmara", "d.rbi", "-nopause"});
  EXPECT_EQ(run.exitCode, -1);
  EXPECT_EQ(WithoutLineNumber(run.err),
            "FwDeploy failed: Required RBI file is missing or not usable File: FwDeploy.cpp Line: #\n");
}

TEST_F(BenchInstall, AKarvelIsSkippedSilently) {
  folder_.Write("KRVL0101.rbi", Container("KRVL", "0016"));
  const InstallerRun fussy = RunOnBench(state_, {"-bkarvel", "-nopause"});
  EXPECT_EQ(fussy.exitCode, 0);
  EXPECT_EQ(fussy.out + fussy.err, "");
}

TEST_F(BenchInstall, WithTheFirstCardAloneTheSecondIsNotMissed) {
  state_ = simulator::MakeBench({.hostCards = HostCards::kBelmara});
  const InstallerRun run = RunOnBench(state_, {"-nopause", "-version"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out, std::string(kHeading) +
                         "     belmara      02.01           1160           1161\n"
                         "     bkarvel      02.01           0016           N/A\n" +
                         kBoxRows);
  EXPECT_EQ(run.err, "");
}

TEST_F(BenchInstall, WithTheSecondCardAloneTheBoxIsOutOfReachAndTheCardIsNot) {
  state_ = simulator::MakeBench({.hostCards = HostCards::kDovu});
  WriteBothFiles();
  const InstallerRun run = RunOnBench(state_, {"-all", "-nopause", "-noprogress"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.err, "There is no Belmara card (driver not loaded?), so Veltra BOB is inaccessible.\n");
}

TEST_F(BenchInstall, WithoutCardsThereIsNoHardware) {
  state_ = simulator::MakeBench({.hostCards = HostCards::kNone});
  const InstallerRun run = RunOnBench(state_, {"-nopause"});
  EXPECT_EQ(run.exitCode, -1);
  EXPECT_EQ(WithoutLineNumber(run.err),
            "FwDeploy failed: Could access neither Veltra nor Orbo QX hardware\n File: FwDeploy.cpp Line: #\n");
}

TEST_F(BenchInstall, HardwareThatIsLeftOutIsNotLookedAt) {
  const InstallerRun run = RunOnBench(state_, {"-nopause", "-noveltra"});
  EXPECT_EQ(run.exitCode, -1);
  EXPECT_EQ(RunOnBench(state_, {"-nopause", "-noorboqx"}).exitCode, 0);
}

TEST_F(BenchInstall, HelpPrintsNoTableAndAsksForEnter) {
  const InstallerRun run = RunOnBench(state_, {"-help"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out.find("Part Name"), std::string::npos);
  const std::string tail = "\t-jqxpwry -nojqxpwry\nPress 'Enter' to exit.\n";
  EXPECT_EQ(run.out.substr(run.out.size() - tail.size()), tail);
}

/// A little-endian number of a record.
std::uint32_t NumberAt(const simulator::ReceivedMessage& message, std::size_t offset) {
  return message.bytes[offset] | message.bytes[offset + 1] << 8 | message.bytes[offset + 2] << 16 |
         static_cast<std::uint32_t>(message.bytes[offset + 3]) << 24;
}

/// A record as a front end would read it.
std::string Read(const simulator::ReceivedMessage& message) {
  const auto text = [&](std::size_t offset) {
    return std::string(reinterpret_cast<const char*>(message.bytes.data()) + offset);
  };
  if (message.message != 74 || message.wParam != 0) return "foreign message";
  if (message.kind == 82 && message.bytes.size() == 524)
    return text(0) + " " + text(260) + " " + std::to_string(NumberAt(message, 520));
  if (message.kind == 42 && message.bytes.size() == 268)
    return text(0) + " has " + std::to_string(NumberAt(message, 260)) + " of " + std::to_string(NumberAt(message, 264));
  if (message.kind == 102 && message.bytes.size() == 8)
    return "restart " + std::to_string(NumberAt(message, 0)) + " " + std::to_string(NumberAt(message, 4));
  return "foreign record";
}

std::vector<std::string> Read(const std::vector<simulator::ReceivedMessage>& messages) {
  std::vector<std::string> texts;
  for (const simulator::ReceivedMessage& message : messages)
    texts.push_back(Read(message));
  return texts;
}

/// 0x1160 is 4448, 0x218 is 536, and so on.
const std::vector<std::string> kVersionRecords = {
    "belmara has 4448 of 4449", "dovu has 4448 of 4449", "pelgrimar has 536 of 544", "fwcore has 548 of 549",
    "tulmen has 1 of 2",        "vulmen has 225 of 1",   "tolmarn has 560 of 562",   "ulmen has 27 of 28"};

TEST_F(BenchInstall, AFrontEndIsToldEverything) {
  WriteBothFiles();
  std::vector<simulator::ReceivedMessage> received;
  RunOnBench(state_, {"-version", "-belmara", "-nopause"}, {}, &received);
  // The Karvels have no expectation, and so no record.
  std::vector<std::string> expected = kVersionRecords;
  expected.insert(expected.end(), {"belmara Loading 0", "belmara Loading 100", "belmara Programming 0",
                                   "belmara Programming 100", "belmara Done 100", "restart 1 0"});
  EXPECT_THAT(Read(received), ElementsAreArray(expected));
}

TEST_F(BenchInstall, NoprogressSilencesProgressRecordsOnly) {
  WriteBothFiles();
  std::vector<simulator::ReceivedMessage> received;
  RunOnBench(state_, {"-version", "-belmara", "-nopause", "-noprogress"}, {}, &received);
  std::vector<std::string> expected = kVersionRecords;
  expected.push_back("restart 1 0");
  EXPECT_THAT(Read(received), ElementsAreArray(expected));
}

TEST_F(BenchInstall, AFailedRunAsksForNoRestart) {
  std::vector<simulator::ReceivedMessage> received;
  EXPECT_EQ(RunOnBench(state_, {"-belmara", "-nopause"}, {}, &received).exitCode, -1);
  EXPECT_THAT(Read(received), ElementsAre("restart 0 0"));
}

TEST_F(BenchInstall, AFrontEndChangesNothingOnTheConsole) {
  WriteBothFiles();
  BenchState other = state_;
  std::vector<simulator::ReceivedMessage> received;
  const InstallerRun with = RunOnBench(state_, {"-all", "-version"}, {}, &received);
  const InstallerRun without = RunOnBench(other, {"-all", "-version"});
  EXPECT_EQ(with.out, without.out);
  EXPECT_EQ(with.err, without.err);
  EXPECT_EQ(with.exitCode, without.exitCode);
}

// A CPLD of 3,000 bytes burns for 6.02 seconds. Each question takes a second, and every other one brings a report:
// 2, 4 and 6 seconds of 180 estimated ones.
TEST_F(BenchInstall, ALongBurnShowsItsTimeInPercentOfTheEstimate) {
  folder_.Write("TULM0002.rbi", Container("TULM", "0002", std::string("\0\2", 2) + std::string(2998, 't')));
  std::vector<simulator::ReceivedMessage> received;
  const InstallerRun run = RunOnBench(state_, {"-tulmen"}, {}, &received);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.out,
            "tulmen\nLoading\nProgramming\n1%\n2%\n3%\n100%\nDone\n"
            "To complete installation, power cycle your Veltra Kore.\n"
            "Press 'Enter' to exit.\n");
  EXPECT_EQ(run.err, "");
  EXPECT_THAT(Read(received),
              ElementsAre("tulmen Loading 0", "tulmen Programming 0", "tulmen Programming 1", "tulmen Programming 2",
                          "tulmen Programming 3", "tulmen Programming 100", "tulmen Done 100", "restart 0 1"));
  EXPECT_THAT(ProtocolErrors(state_), IsEmpty());
}

TEST_F(BenchInstall, CardsAndBoxInOneRunGoCardsFirst) {
  WriteBothFiles();
  folder_.Write("ULMN0101.rbi", Container("ULMN", "001c", std::string("\0\x1c", 2)));
  folder_.Write("PLGR0201.rbi", Container("PLGR", "0220", "image"));
  const InstallerRun run = RunOnBench(state_, {"-all"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_EQ(run.out,
            "belmara\nLoading\n100%\nProgramming\n100%\nDone\n"
            "dovu\nLoading\n100%\nProgramming\n100%\nDone\n"
            "pelgrimar\nLoading\nProgramming\n100%\nDone\n"
            "ulmen\nLoading\nProgramming\n100%\nDone\n"
            "To complete installation, power cycle your CPU and your Veltra Kore.\n"
            "Press 'Enter' to exit.\n");
  EXPECT_THAT(ProtocolErrors(state_), IsEmpty());
}

// The length of the header, which is not sent, lies behind the end of the file. The part has a version of 0 then.
TEST_F(BenchInstall, ACpldFileOfNothingButAHeaderIsSentAsNothing) {
  std::string file = Container("ULMN", "001c", "payload");
  file[11] = 99;
  folder_.Write("ULMN0101.rbi", file);
  const InstallerRun run = RunOnBench(state_, {"-ulmen", "-nopause", "-noprogress"});
  EXPECT_EQ(run.exitCode, 1);
  for (const simulator::PartRow& row : simulator::RowsOf(state_)) {
    if (row.part == "ulmen") {
      EXPECT_EQ(row.stored, 0);
    }
  }
}

}  // namespace
