#include <gmock/gmock.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "board/VmeDelay.h"
#include "support/CapturedOutput.h"
#include "support/VmeTrace.h"

namespace {

using test_support::SameTrace;
using test_support::Times;
using test_support::Trace;
using test_support::VmeTrace;
using testing::ElementsAreArray;

class VmeDelayTest : public testing::Test {
 protected:
  /// The milliseconds of a wait, as the trace has them.
  std::string Waited(std::uint16_t value) {
    recorder.Clear();
    delay.Wait(value);
    return recorder.text().substr(0, recorder.text().find('\n'));
  }

  test_support::TraceRecorder recorder;
  VmePrint print = [this](const char* text) { recorder.AddText(text); };
  VmeDelay delay{print};
};

TEST_F(VmeDelayTest, WaitsThriceAsLongAsAFileAsks) {
  delay.BeginFile();
  struct {
    std::uint16_t value;
    const char* wait;
  } constexpr kCases[] = {
      // microseconds, in whole milliseconds and at least one
      {0, "D 3"},
      {1, "D 3"},
      {500, "D 3"},
      {999, "D 3"},
      {1000, "D 3"},
      {1999, "D 3"},
      {2000, "D 6"},
      {32000, "D 96"},
      {32767, "D 96"},
      // milliseconds
      {0x8000, "D 0"},
      {0x8001, "D 3"},
      {0x8005, "D 15"},
      {0x83E8, "D 3000"},
      // 21845 * 3 = 65535, and what is above 16 bits is lost
      {0xD555, "D 65535"},
      {0xD556, "D 2"},
      {0xFFFE, "D 32762"},
      {0xFFFF, "D 32765"},
  };
  for (const auto& wait : kCases)
    EXPECT_EQ(Waited(wait.value), wait.wait) << wait.value;
}

TEST_F(VmeDelayTest, WaitsTheRawValueWithoutPercent) {
  ASSERT_EQ(delay.delayPercent, 0);
  EXPECT_EQ(Waited(0), "D 1");
  EXPECT_EQ(Waited(500), "D 1");
  EXPECT_EQ(Waited(32767), "D 32");
  EXPECT_EQ(Waited(0x8000), "D 0");
  EXPECT_EQ(Waited(0x8005), "D 5");
  EXPECT_EQ(Waited(0xFFFF), "D 32767");
}

TEST_F(VmeDelayTest, AddsWholeHundredsOfPercentAlone) {
  for (const auto& [percent, wait] : std::vector<std::pair<std::uint16_t, const char*>>{
           {1, "D 4"}, {99, "D 4"}, {100, "D 8"}, {199, "D 8"}, {200, "D 12"}, {300, "D 16"}, {65535, "D 2624"}}) {
    delay.delayPercent = percent;
    EXPECT_EQ(Waited(0x8004), wait) << percent;
  }
}

TEST_F(VmeDelayTest, SetsThePercentForEachFile) {
  delay.delayPercent = 7;
  delay.BeginFile();
  EXPECT_EQ(delay.delayPercent, 200);
}

TEST_F(VmeDelayTest, PrintsAPercentageBehindEveryNineteenthWaitFromTheFirstOn) {
  delay.BeginFile();
  std::vector<std::string> printed;
  for (int call = 1; call <= 400; ++call) {
    recorder.Clear();
    delay.Wait(0x8000);
    if (recorder.text() != "D 0\n") printed.push_back(std::to_string(call) + ": " + recorder.text());
  }
  EXPECT_THAT(printed,
              ElementsAreArray(
                  {"1: D 0\nP 0%\\n\n",     "20: D 0\nP 10%\\n\n",   "39: D 0\nP 20%\\n\n",   "58: D 0\nP 30%\\n\n",
                   "77: D 0\nP 40%\\n\n",   "96: D 0\nP 50%\\n\n",   "115: D 0\nP 60%\\n\n",  "134: D 0\nP 70%\\n\n",
                   "153: D 0\nP 80%\\n\n",  "172: D 0\nP 90%\\n\n",  "191: D 0\nP 100%\\n\n", "210: D 0\nP 110%\\n\n",
                   "229: D 0\nP 120%\\n\n", "248: D 0\nP 130%\\n\n", "267: D 0\nP 140%\\n\n", "286: D 0\nP 150%\\n\n",
                   "305: D 0\nP 160%\\n\n", "324: D 0\nP 170%\\n\n", "343: D 0\nP 180%\\n\n", "362: D 0\nP 190%\\n\n",
                   "381: D 0\nP 200%\\n\n", "400: D 0\nP 210%\\n\n"}));
}

TEST_F(VmeDelayTest, StartsAgainAtZeroPercentWithEachFile) {
  for (const int calls : {1, 2, 19, 20, 25}) {
    delay.BeginFile();
    recorder.Clear();
    delay.Wait(0x8000);
    EXPECT_EQ(recorder.text(), "D 0\nP 0%\\n\n");
    for (int i = 1; i < calls; ++i)
      delay.Wait(0x8000);
  }
}

TEST(VmeDelayInFiles, CountsTheWaitAtTheEndOfAFileAsWell) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F2 7F", "enter tms:111111 rest D3 0% off =0"));
  EXPECT_TRUE(trace.Plays("F2 1A 00 7F", "enter D3 0% tms:111111 rest D3 off =0"));
  EXPECT_TRUE(trace.Plays("F2" + Times(19, "1A 00") + "7F",
                          "enter D3 0%" + Times(18, " D3") + " tms:111111 rest D3 10% off =0"));
  EXPECT_TRUE(trace.Plays("F2 7F", "enter tms:111111 rest D3 0% off =0"));
}

TEST(VmeDelayInFiles, TakesBothFormsOfAWait) {
  VmeTrace trace;
  // 500, 0x8005, 0x8000 and 0xFFFF
  EXPECT_TRUE(trace.Plays("F2 1A F4 03  1A 85 80 02  1A 80 80 02  1A FF FF 03  7F",
                          "enter D3 0% D15 D0 D32765 tms:111111 rest D3 off =0"));
}

TEST(PrintToConsole, IsSeenAtOnce) {
  const test_support::CapturedOutput captured;
  PrintToConsole("10%\nhalf a line, and a %d that is none");
  EXPECT_EQ(captured.OutUnflushed(), "10%\nhalf a line, and a %d that is none");
}

}  // namespace
