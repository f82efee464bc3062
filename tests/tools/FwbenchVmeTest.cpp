#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "support/Process.h"
#include "support/TempFolder.h"

// `fwbench vme`: the trace of files played against a port that a test, or a person, makes up.

namespace {

using test_support::ProcessResult;
using test_support::RunProcess;

/// "08 0a": a line for each store.
std::string Stores(const std::string& pins) {
  std::istringstream words(pins);
  std::string lines;
  for (std::string word; words >> word;)
    lines += "W " + word + "\n";
  return lines;
}

/// From low pins: enable, and the six clocks that lead to reset.
const std::string kEnter = Stores(
    "08"
    " 0a 0b 0a 0a 0a 0b 0a 0a 0a 0b 0a 0a 0a 0b 0a 0a 0a 0b 0a 0a 0a 0b 0a 0a"
    " 0a 08");

const std::string kResetToIdle = Stores("08 09 08 08 08 08");

const std::string kIdleToShiftDr = Stores(
    "0a 0b 0a 0a 08 09 08 08 0a 0b 0a 0a 08 09 08 08 08 08"
    " 0a 0b 0a 0a 08 09 08 08 08 08");

/// With TDI high, as the last bit left it.
const std::string kShiftDrToDrPause = Stores("0e 0f 0e 0e 0c 0d 0c 0c 08 08");

/// From drpause: reset, the wait of a millisecond three times over with its percentage, and disable.
const std::string kLeave =
    Stores("0a 0b 0a 0a 0a 0b 0a 0a 0a 0b 0a 0a 0a 0b 0a 0a 0a 0b 0a 0a 0a 08") + "D 3\nP 0%\\n\n" + Stores("00");

class FwbenchVme : public testing::Test {
 protected:
  /// A container with the shortest header, and a VME file in it.
  std::string Write(const std::string& name, const std::string& byteCode) {
    return folder_.Write(name, std::string("ORBO.RBI\0\0\0\x0C__VME2.0", 20) + byteCode);
  }

  ProcessResult Play(const std::vector<std::string>& files, const std::string& tdo) {
    std::vector<std::string> words{"vme"};
    words.insert(words.end(), files.begin(), files.end());
    words.insert(words.end(), {"--tdo", tdo, "--trace", folder_.File("trace")});
    return RunProcess(FWBENCH_PROGRAM, words);
  }

  std::string Trace() {
    std::ifstream file(folder_.File("trace"), std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
  }

  /// Idle; then three bits of SDR, 101, whose answer is to be 010.
  std::string Compare() {
    return Write("compare.rbi", std::string("\xF2\x19\x08\x10\x01\x12\x03\x13\xA0\x14\x40\x70\x7F", 13));
  }

  test_support::TempFolder folder_;
};

TEST_F(FwbenchVme, TheTraceHasEachStoreReadDelayTextAndResult) {
  const ProcessResult run = Play({Compare()}, "0");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.standardOutput + run.standardError, "");
  EXPECT_EQ(Trace(), kEnter + kResetToIdle + kIdleToShiftDr +       //
                         "R 0\n" + Stores("0c 0d 0c 0c") + "R 0\n"  //
                         + Stores("08 09 08 08") + "R 0\n" + Stores("0c") + kShiftDrToDrPause + kLeave + "RESULT -1\n");
}

TEST_F(FwbenchVme, TdoReadsAsItIsTold) {
  ASSERT_EQ(Play({Compare()}, "1").exitCode, 0);
  EXPECT_NE(Trace().find("R 1\n" + Stores("0c 0d 0c 0c") + "R 1\n" + Stores("08 09 08 08") + "R 1\n"),
            std::string::npos);
}

// 1103527590, 377401575, 662824084, 1147902781, 2035015474, 368800899, 1508029952, 486256185: bit 16 of each.
TEST_F(FwbenchVme, RandomTdoIsTheGeneratorsSixteenthBit) {
  const std::string file = Write("read.rbi", std::string("\xF2\x19\x08\x10\x01\x12\x08\x13\x00\x14\x00\x70\x7F", 13));
  ASSERT_EQ(Play({file}, "random:1").exitCode, 0);
  std::istringstream trace(Trace());
  std::string reads;
  for (std::string line; std::getline(trace, line);)
    if (line.starts_with("R ")) reads += line.substr(2);
  EXPECT_EQ(reads, "00111101");
}

TEST_F(FwbenchVme, FilesAreOneProcess) {
  // The size of the buffers, and the last shift's data that an answer is compared with, are those of the first file;
  // so are the random bits, which go on.
  const std::string again = Write("again.rbi", std::string("\xF2\x10\x01\x12\x03\x13\xA0\x18\x70\x7F", 10));
  ASSERT_EQ(Play({Compare(), again}, "random:1").exitCode, 0);
  const std::string trace = Trace();
  const std::size_t second = trace.find("RESULT -1\n") + 10;
  EXPECT_EQ(trace.substr(second), kEnter + kResetToIdle + kIdleToShiftDr + "R 1\n" + Stores("0c 0d 0c 0c") + "R 1\n" +
                                      Stores("08 09 08 08") + "R 1\n" + Stores("0c") + kShiftDrToDrPause + kLeave +
                                      "RESULT -1\n");
}

TEST_F(FwbenchVme, DelaysAreTheFinalMilliseconds) {
  // 500 us; 5 ms; none; 65,533 ms.
  const std::string file =
      Write("wait.rbi", std::string("\xF2\x1A\xF4\x03\x1A\x85\x80\x02\x1A\x80\x80\x02\x1A\xFF\xFF\x03", 16));
  ASSERT_EQ(Play({file}, "0").exitCode, 0);
  const std::string trace = Trace();
  EXPECT_EQ(trace.substr(trace.find('D')),
            "D 3\nP 0%\\n\nD 15\nD 0\nD 32765\nP Reached end of file/n\n" +
                Stores("0a 0b 0a 0a 0a 0b 0a 0a 0a 0b 0a 0a 0a 0b 0a 0a 0a 0b 0a 0a 0a 0b 0a 0a 0a 08") + "D 3\n" +
                Stores("00") + "RESULT 0\n");
}

TEST_F(FwbenchVme, FilesThatAreNoneHaveAResultToo) {
  const std::string foreign = folder_.Write("foreign.rbi", "ORBX");
  const std::string plain = Write("bad.rbi", "\xF0");
  ASSERT_EQ(Play({folder_.File("nothing.rbi"), foreign, plain}, "0").exitCode, 0);
  EXPECT_EQ(Trace(), "RESULT -2\nP RBI Header Error\\n\\r\nRESULT -3\nRESULT -3\n");
}

TEST_F(FwbenchVme, BadUsageIsSaid) {
  const std::string file = Compare();
  const std::string trace = folder_.File("trace");
  const struct {
    std::vector<std::string> words;
    const char* said;
  } cases[] = {
      {{"vme", file, "--trace", trace}, "--tdo is required"},
      {{"vme", file, "--tdo", "0"}, "--trace is required"},
      {{"vme", "--tdo", "0", "--trace", trace}, "FILE is required"},
      {{"vme", file, "--tdo", "2", "--trace", trace}, "what TDO reads is 0, 1 or random:SEED"},
      {{"vme", file, "--tdo", "random:", "--trace", trace}, "what TDO reads is 0, 1 or random:SEED"},
      {{"vme", file, "--tdo", "random:-1", "--trace", trace}, "what TDO reads is 0, 1 or random:SEED"},
      {{"vme", file, "--tdo", "random:18446744073709551616", "--trace", trace},
       "what TDO reads is 0, 1 or random:SEED"},
      {{"vme", file, "--tdo", "0", "--trace", trace, "--", "-all"}, "only run takes arguments behind --"},
  };
  for (const auto& each : cases) {
    const ProcessResult run = RunProcess(FWBENCH_PROGRAM, each.words);
    EXPECT_EQ(run.exitCode, 2) << each.said;
    EXPECT_NE(run.standardError.find(each.said), std::string::npos) << run.standardError;
  }
}

#if !defined(_WIN32)  // which has no shell, and no device that is always full
TEST_F(FwbenchVme, ATraceThatIsNotWholeIsAFailure) {
  const ProcessResult run = RunProcess(FWBENCH_PROGRAM, {"vme", Compare(), "--tdo", "0", "--trace", "/dev/full"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.standardError, "fwbench: /dev/full: the trace could not be written to its end\n");
  EXPECT_EQ(RunProcess(FWBENCH_PROGRAM, {"vme", Compare(), "--tdo", "0", "--trace", ""}).exitCode, 2);
}
#endif

TEST_F(FwbenchVme, ATraceThatCannotBeWrittenIsAFailure) {
  const ProcessResult run =
      RunProcess(FWBENCH_PROGRAM, {"vme", Compare(), "--tdo", "0", "--trace", folder_.File("nowhere/trace")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_NE(run.standardError.find(folder_.File("nowhere/trace") + ": cannot be written"), std::string::npos)
      << run.standardError;
}

}  // namespace
