#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "BenchProcess.h"

// The CPLDs of a new bench, programmed by fwbench as people do it, and the waveform of it.

namespace {

using test_support::ProcessResult;
using test_support::RunProcess;

/// What a viewer reads out of a waveform.
struct Waveform {
  std::map<std::string, std::string> identifiers;  ///< by "scope.signal"
  std::vector<std::pair<std::uint64_t, std::pair<std::string, std::string>>> changes;
  bool timesRise = true;

  std::vector<std::string> ValuesOf(const std::string& signal) const {
    std::vector<std::string> values;
    for (const auto& [time, change] : changes)
      if (change.first == identifiers.at(signal)) values.push_back(change.second);
    return values;
  }
};

Waveform ReadWaveform(const std::string& path) {
  Waveform waveform;
  std::ifstream file(path);
  std::string scope;
  std::uint64_t time = 0;
  bool isFirst = true;
  for (std::string word; file >> word;) {
    if (word == "$scope") {
      file >> word >> scope;
    } else if (word == "$var") {
      std::string kind, bits, identifier, signal;
      file >> kind >> bits >> identifier >> signal;
      waveform.identifiers[scope + "." + signal] = identifier;
    } else if (word[0] == '#') {
      const std::uint64_t next = std::stoull(word.substr(1));
      waveform.timesRise = waveform.timesRise && (isFirst || next > time);
      time = next;
      isFirst = false;
    } else if (word[0] == 'b') {
      std::string identifier;
      file >> identifier;
      waveform.changes.push_back({time, {identifier, word.substr(1)}});
    } else if (word.size() == 2 && (word[0] == '0' || word[0] == '1' || word[0] == 'x')) {
      waveform.changes.push_back({time, {word.substr(1), word.substr(0, 1)}});
    }
  }
  return waveform;
}

class FwbenchKarvel : public BenchProcess {
 protected:
  void SetUp() override {
    const auto made = RunProcess(FWBENCH_PROGRAM, {"new", folder_.File("bench"), "--orbo-qx", "none"});
    ASSERT_EQ(made.exitCode, 0) << made.standardError;
  }
};

TEST_F(FwbenchKarvel, ANewBenchsFileProgramsTheFirstCardsCpldOnce) {
  const ProcessResult run = Run({"-bkarvel", "-nofussy", "-nopause"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.standardOutput.rfind("bkarvel\nProgramming Belmara Karvel\n\r"
                                     "USERCODE verification failed.  Continue programming......\n\n0%\n",
                                     0),
            0u);
  EXPECT_EQ(run.standardError, "");
  EXPECT_EQ(Shown("bkarvel"),
            (nlohmann::json{
                {"part", "bkarvel"}, {"running", "0016"}, {"stored", "0017"}, {"errors", nlohmann::json::array()}}));
  EXPECT_EQ(Shown("dkarvel")["stored"], "0016");
  PowerCycle();
  EXPECT_EQ(Shown("bkarvel")["running"], "0017");
  EXPECT_NE(Run({"-version", "-nopause"}).standardOutput.find("     bkarvel      02.01           0017           N/A\n"),
            std::string::npos);

  const ProcessResult again = Run({"-bkarvel", "-nofussy", "-nopause"});
  EXPECT_EQ(again.exitCode, 255);
  EXPECT_EQ(again.standardOutput,
            "bkarvel\nProgramming Belmara Karvel\n\r"
            "USERCODE verification passed.  Programming aborted. \n\n0%\n");
  EXPECT_EQ(again.standardError.rfind("FwDeploy failed: Belmara Karvel Programming Error... Error Code: 1 File: "
                                      "FwDeploy.cpp Line: ",
                                      0),
            0u);
}

TEST_F(FwbenchKarvel, TheWaveformShowsTheTapAtWork) {
  const std::string path = folder_.File("run.vcd");
  ASSERT_EQ(Run({"-bkarvel", "-nofussy", "-nopause"}, {"--vcd", path}).exitCode, 2);
  const Waveform waveform = ReadWaveform(path);
  EXPECT_TRUE(waveform.timesRise);
  for (const char* const signal : {"tck", "tms", "tdi", "tdo", "enable", "tap_state"})
    for (const char* const card : {"belmara.", "dovu."})
      ASSERT_TRUE(waveform.identifiers.contains(std::string(card) + signal)) << card << signal;

  EXPECT_EQ(waveform.ValuesOf("belmara.enable"), (std::vector<std::string>{"0", "1", "0"}));
  EXPECT_EQ(waveform.ValuesOf("belmara.tck").back(), "0");
  EXPECT_EQ(waveform.ValuesOf("dovu.tck"), (std::vector<std::string>{"0"})) << "nobody asked for the second card";
  const auto states = waveform.ValuesOf("belmara.tap_state");
  EXPECT_EQ(std::set<std::string>(states.begin(), states.end()).size(), 16u) << "all states of the TAP";
  EXPECT_EQ(states.front(), states.back()) << "from reset to reset";
  EXPECT_GT(waveform.ValuesOf("belmara.fifo_status").size(), 1u);
}

TEST_F(FwbenchKarvel, AWaveformThatCannotBeWrittenIsAFailureBeforeAnythingIsTouched) {
  const ProcessResult run = Run({"-bkarvel", "-nofussy", "-nopause"}, {"--vcd", folder_.File("nowhere/run.vcd")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_NE(run.standardError.find(folder_.File("nowhere/run.vcd") + ": cannot be written"), std::string::npos)
      << run.standardError;
  EXPECT_EQ(Shown("bkarvel")["stored"], "0016");
}

TEST_F(FwbenchKarvel, AnUnpluggedCpldFailsItsVerification) {
  for (const std::string fault : {"karvel-unplugged", "karvel-tdo-low"}) {
    const ProcessResult run = Run({"-bkarvel", "-nofussy", "-nopause"}, {"--fault", fault});
    EXPECT_EQ(run.exitCode, 255) << fault;
    EXPECT_EQ(run.standardOutput, "bkarvel\nProgramming Belmara Karvel\n\r0%\n") << fault;
    EXPECT_NE(run.standardError.find("Error Code: -1 "), std::string::npos) << run.standardError;
  }
}

}  // namespace
