#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <functional>

#include "FaultWalk.h"

// Bad days of the box: each fault at each place where it can strike while all its parts are installed. Every run ends
// by itself and says why, and after a power cycle another run puts everything right.

namespace {

using simulator::BenchState;

enum class Kind { kConfig, kVpd, kStart, kData, kProgram };

/// One exchange of a whole install.
struct Exchange {
  Kind kind;
  const char* part;   ///< or the board that is asked for
  const char* group;  ///< of the message
};

/// All of them in order. The first FPGA's image takes two data commands, the others one.
const std::vector<Exchange> kInstall = {
    {Kind::kConfig, "", ""},
    {Kind::kVpd, "VPD_Brox, for device pelgrimar", ""},
    {Kind::kVpd, "VPD_Brox, for device fwcore", ""},
    {Kind::kVpd, "VPD_Fenrok, for device tulmen", ""},
    {Kind::kVpd, "VPD_Jorl, for device vulmen", ""},
    {Kind::kVpd, "VPD_Jorl, for device tolmarn", ""},
    {Kind::kVpd, "VPD_Brox, for device ulmen", ""},
    {Kind::kStart, "pelgrimar", "FPGA"},
    {Kind::kData, "pelgrimar", "FPGA"},
    {Kind::kData, "pelgrimar", "FPGA"},
    {Kind::kProgram, "pelgrimar", "FPGA"},
    {Kind::kStart, "fwcore", "firmware"},
    {Kind::kData, "fwcore", "firmware"},
    {Kind::kProgram, "fwcore", "firmware"},
    {Kind::kStart, "tulmen", "CPLD"},
    {Kind::kData, "tulmen", "CPLD"},
    {Kind::kProgram, "tulmen", "CPLD"},
    {Kind::kStart, "vulmen", "CPLD"},
    {Kind::kData, "vulmen", "CPLD"},
    {Kind::kProgram, "vulmen", "CPLD"},
    {Kind::kStart, "tolmarn", "FPGA"},
    {Kind::kData, "tolmarn", "FPGA"},
    {Kind::kProgram, "tolmarn", "FPGA"},
    {Kind::kStart, "ulmen", "CPLD"},
    {Kind::kData, "ulmen", "CPLD"},
    {Kind::kProgram, "ulmen", "CPLD"},
};

const Ending kInstalled{1, ""};

/// No answer within a second.
Ending TimedOut(const Exchange& exchange) {
  constexpr char kHelpers[] = "BoxDownloadHelpers.cpp";
  const std::string group = exchange.group;
  switch (exchange.kind) {
    case Kind::kConfig:
      return {0, "Veltra BOB is inaccessable, and cannot be loaded.  Is BOB turned off?\n"};
    case Kind::kVpd:
      return {-1, std::string("Error: VPDInfo TALC command failed for ") + exchange.part + "\n" +
                      FailureLine("Unable to get VPD information", "VersionDiscovery.cpp")};
    case Kind::kStart:
      return Fails("Could not start " + (group == "CPLD" ? "Trelvane " + group : group) + " download", kHelpers);
    case Kind::kData:
      return Fails("Failed " + group + " download command", kHelpers);
    case Kind::kProgram:
      break;
  }
  return kWaitsForEver;
}

Ending Late(const Exchange& exchange) {
  return exchange.kind == Kind::kProgram ? kInstalled : TimedOut(exchange);
}

class BoxFaults : public FaultWalk {
 protected:
  BoxFaults()
      : FaultWalk({simulator::MakeBench({.hostCards = simulator::HostCards::kBelmara}),
                   {"-all", "-nopause", "-noprogress", "-noorboqx"},
                   1,
                   {{"pelgrimar", 0x220},
                    {"fwcore", 0x225},
                    {"tulmen", 2},
                    {"vulmen", 1},
                    {"tolmarn", 0x232},
                    {"ulmen", 0x1C}},
                   "power-cut@150000"}) {
    // Two data commands for the one image, and one for each of the others.
    folder_.Write("PLGR0201.rbi", Container("PLGR", "0220", std::string(1990, 'p')));
    folder_.Write("BROX0201.rbi", Container("BROX", "0225", "firmware"));
    folder_.Write("TULM0002.rbi", Container("TULM", "0002", std::string("\0\2 tulmen", 9)));
    folder_.Write("VULM0101.rbi", Container("VULM", "0001", std::string("\0\1 vulmen", 9)));
    folder_.Write("TLM_0104.rbi", Container("TLM_", "0232", "tolmarn"));
    folder_.Write("ULMN0101.rbi", Container("ULMN", "001c", std::string("\0\x1c ulmen", 8)));
  }

  /// A fault that can strike every exchange.
  void WalkExchanges(const std::string& name, const std::function<Ending(const Exchange&)>& expected) {
    Walk(name, kInstall.size(), [&](std::size_t place) { return expected(kInstall[place]); });
  }
};

constexpr char kTransport[] = "VeltraHelper.cpp";
constexpr char kCore[] = "WyvrelHelper.cpp";

TEST_F(BoxFaults, NoAnswer) {
  WalkExchanges("box-silent", TimedOut);
}

TEST_F(BoxFaults, SwitchedOff) {
  WalkExchanges("box-off", TimedOut);
}

TEST_F(BoxFaults, ALateAnswer) {
  WalkExchanges("box-late", Late);
}

TEST_F(BoxFaults, AnAnswerWithoutItsHeader) {
  WalkExchanges("box-no-header",
                [](const Exchange&) { return Fails("BOB Communications error, missing reply header", kTransport); });
}

TEST_F(BoxFaults, AnAnswerOfABadLength) {
  const auto expected = [](const Exchange&) { return Fails("BOB Communications error, bad reply length", kTransport); };
  WalkExchanges("box-length-low", expected);
  WalkExchanges("box-length-high", expected);
}

TEST_F(BoxFaults, ABadStatus) {
  const auto bad = [](const Exchange&) { return Fails("Bad BOB status", kCore); };
  WalkExchanges("box-status-fail", bad);
  WalkExchanges("box-status-transmit", bad);
  WalkExchanges("box-status-time-out", bad);
  WalkExchanges("box-status-unknown", bad);
  WalkExchanges("box-status-not-supported",
                [](const Exchange&) { return Fails("Unsupported BOB command or parameters", kCore); });
}

TEST_F(BoxFaults, AnAnswerWithoutItsValues) {
  Walk("box-values-missing", 7,
       [](std::size_t) { return Fails("Talc error decompiling the returned Talc byte code packet.", kCore); });
}

TEST_F(BoxFaults, AnAnswerThatStopsInTheMiddle) {
  // The versions are 4 + 12 + 6 bytes, the VPD of the three boards 8 and 56, 53 and 51, and all other answers 4 bytes.
  constexpr std::size_t kWords = 6 + 3 * 16 + 16 + 2 * 15 + 19;
  Walk("box-reply-cut", kWords,
       [](std::size_t) { return Fails("BOB Communications error, timeout while reading reply", kTransport); });
}

TEST_F(BoxFaults, ATransferThatIsRefusedInTheMiddle) {
  Walk("transfer-refused", 7, [](std::size_t) { return Fails("Bad BOB status", kCore); });
}

// Nothing in an answer tells which command it is for, so this one goes unnoticed, and the part stays as it was.
TEST_F(BoxFaults, AWrongAnswerToTheProgramCommand) {
  Walk("program-answer-wrong", 6, [](std::size_t) { return kInstalled; });
  BenchState state = install_.fresh;
  Run(state, {"program-answer-wrong@1"}, install_.arguments);
  for (const simulator::PartRow& row : simulator::RowsOf(state)) {
    if (row.part == "pelgrimar") {
      EXPECT_EQ(row.stored, 0x218);
    }
    if (row.part == "fwcore") {
      EXPECT_EQ(row.stored, 0x225);
    }
  }
}

TEST_F(BoxFaults, ACommandFifoThatStaysFull) {
  // Of a command's bytes: 8, 6 times 10; start 14, data 10 and the image (firmware 14), program 8.
  constexpr std::size_t kWords =
      2 + 6 * 3 + (4 + 495 + 13 + 2) + (4 + 11 + 2) + (4 + 5 + 2) + (4 + 5 + 2) + (4 + 10 + 2) + (4 + 5 + 2);
  // After the last two words nobody looks any more.
  Walk("command-fifo-full", kWords, [](std::size_t place) {
    return place + 2 < kWords ? Fails("BOB Communications error, timeout writing command fifo", kTransport)
                              : kInstalled;
  });
}

TEST_F(BoxFaults, StaleRepliesBeforeTheFlush) {
  Walk("stale-replies", 1, [](std::size_t) { return kInstalled; });
}

// What no fault of the box covers: any single access to the card's registers that does not take place, while one part
// is installed. Whatever comes of it, the run ends, or waits for a burn that never began, and says a word that is
// known.
class BoxAccessFaults : public BoxFaults, public testing::WithParamInterface<int> {};

constexpr int kShards = 4;

TEST_P(BoxAccessFaults, EndInAMessageThatIsKnown) {
  const std::vector<const char*> arguments = {"-fwcore", "-nopause", "-noprogress", "-noorboqx"};
  const std::vector<std::string> known = {
      FailureLine("BOB Communications error, timeout writing command fifo", kTransport),
      FailureLine("BOB Communications error, missing reply header", kTransport),
      FailureLine("BOB Communications error, bad reply length", kTransport),
      FailureLine("BOB Communications error, timeout while reading reply", kTransport),
      FailureLine("Talc error decompiling the returned Talc byte code packet.", kCore),
      FailureLine("Unsupported BOB command or parameters", kCore),
      FailureLine("Bad BOB status", kCore),
      FailureLine("kHWCerr_UnexpectedObjectTypeError", kCore),
      FailureLine("Unable to get VPD information", "VersionDiscovery.cpp"),
      FailureLine("Unable to decode Zerin major VPD information", "VersionDiscovery.cpp"),
      FailureLine("Unable to decode Zerin minor VPD information", "VersionDiscovery.cpp"),
      FailureLine("Unable to decode Belmara artwork information", "VersionDiscovery.cpp"),
      FailureLine("Unable to decode major VPD information", "VersionDiscovery.cpp"),
      FailureLine("Unable to decode minor VPD information", "VersionDiscovery.cpp"),
      FailureLine("Could not start firmware download", "BoxDownloadHelpers.cpp"),
      FailureLine("Failed firmware download command", "BoxDownloadHelpers.cpp"),
  };
  for (const char* const name : {"read-lost", "write-lost", "power-cut"}) {
    const std::size_t places = Places(name, arguments);
    std::size_t struck = 0;
    std::size_t endless = 0;
    for (std::size_t place = static_cast<std::size_t>(GetParam()); place < places; place += kShards) {
      BenchState state = install_.fresh;
      const std::string fault = std::string(name) + "@" + std::to_string(place + 1);
      const Ending ending = Run(state, {fault, install_.endsWaiting}, arguments);
      if (name == std::string("power-cut")) {
        EXPECT_EQ(ending.exitCode, kWaitsForEver.exitCode) << fault;
      } else if (ending.exitCode == -1) {
        const std::size_t at = ending.err.find("FwDeploy failed: ");
        ASSERT_NE(at, std::string::npos) << fault << ": " << ending.err;
        EXPECT_EQ(std::count(known.begin(), known.end(), ending.err.substr(at)), 1) << fault << ": " << ending.err;
      } else if (ending.exitCode == kWaitsForEver.exitCode) {
        ++endless;
      } else {
        EXPECT_TRUE(ending.exitCode == 0 || ending.exitCode == 1) << fault << ": " << ending.exitCode;
      }
      ExpectMended(state, fault);
      if (HasFailure()) return;
      ++struck;
    }
    std::printf(
        "fault walk: %s, shard %d of %d, struck %zu of %zu accesses of a firmware install, %zu of which then "
        "waited for a burn\n",
        name, GetParam() + 1, kShards, struck, places, endless);
  }
}

INSTANTIATE_TEST_SUITE_P(EveryAccess, BoxAccessFaults, testing::Range(0, kShards));

}  // namespace
