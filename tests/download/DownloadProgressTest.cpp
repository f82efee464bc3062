#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "DownloadDriverFixture.h"

namespace {

using testing::Contains;
using testing::Not;

/// What a download shows of its percentages. Times are microseconds, the payload is of zeros.
struct ProgressCase {
  const char* what;
  std::uintmax_t payloadBytes = 10;
  TargetScript script = {};
  std::int64_t estimateMicroseconds = 30'000'000;
  /// The percentages of each phase, the closing 100 included.
  std::vector<const char*> loading = {};
  std::vector<const char*> programming = {};
};

void PrintTo(const ProgressCase& progress, std::ostream* out) {
  *out << progress.what;
}

class DownloadReports : public DownloadDriverFixture {
 protected:
  /// The journal without what the target was called for.
  std::vector<std::string> Reports() const {
    std::vector<std::string> reports;
    for (const std::string& entry : journal)
      if (entry.starts_with("record") || entry.starts_with(">")) reports.push_back(entry);
    return reports;
  }
};

class DownloadProgress : public DownloadReports, public testing::WithParamInterface<ProgressCase> {};

TEST_P(DownloadProgress, ShowsThesePercentages) {
  const ProgressCase& c = GetParam();
  WriteZeros(c.payloadBytes);
  Download(true, c.script, c.estimateMicroseconds);

  std::vector<std::string> expected = {"record belmara Loading 0", "> Loading\n"};
  for (const std::string percent : c.loading) {
    expected.push_back("record belmara Loading " + percent);
    expected.push_back("> " + percent + "%\n");
  }
  expected.push_back("> Programming\n");
  expected.push_back("record belmara Programming 0");
  for (const std::string percent : c.programming) {
    expected.push_back("record belmara Programming " + percent);
    expected.push_back("> " + percent + "%\n");
  }
  expected.push_back("record belmara Done 100");
  expected.push_back("> Done\n");
  EXPECT_EQ(Reports(), expected);
}

const ProgressCase kLoadingCases[] = {
    {.what = "VeryShortJob", .programming = {"100"}},
    {.what = "ExactlyTheInterval", .script = {.chunkTimes = {1'500'000}}, .programming = {"100"}},
    {.what = "OneMicrosecondMoreThanTheInterval",
     .script = {.chunkTimes = {1'500'001}},
     .loading = {"40"},
     .programming = {"100"}},
    {.what = "AddsUpTheTimeSinceTheLastReport",
     .script = {.chunkTimes = {1'500'000, 1}},
     .loading = {"80"},
     .programming = {"100"}},
    {.what = "CountsFromTheLastReport",
     .payloadBytes = 16,
     .script = {.chunkTimes = {1'600'000, 1'500'000, 1, 1'500'000}},
     .loading = {"25", "75"},
     .programming = {"100"}},
    {.what = "ReportsOnceForALongChunk",
     .payloadBytes = 12,
     .script = {.chunkTimes = {60'000'000}},
     .loading = {"33"},
     .programming = {"100"}},
    // A slow last chunk: the only way in which a load shows its 100.
    {.what = "SlowLastChunk", .script = {.chunkTimes = {0, 0, 1'500'001}}, .loading = {"100"}, .programming = {"100"}},
    // What is left over when the loop ends is told by no line of its own.
    {.what = "NoClosingLineForTheLoad",
     .script = {.chunkTimes = {1'600'000, 0, 0}},
     .loading = {"40"},
     .programming = {"100"}},
    // The first interval begins before the file is opened.
    {.what = "TheTimeOfOpeningCounts",
     .script = {.payloadOffset = 0, .payloadOffsetTime = 1'500'001},
     .loading = {"40"},
     .programming = {"100"}},
    // A product of 32 bits, and where it wraps.
    {.what = "LastPayloadThatDoesNotWrap",
     .payloadBytes = 21'474'836,
     .script = {.chunkSizeBytes = 21'474'836, .chunkTimes = {2'000'000}},
     .loading = {"100"},
     .programming = {"100"}},
    {.what = "FirstPayloadThatWraps",
     .payloadBytes = 21'474'837,
     .script = {.chunkSizeBytes = 21'474'836, .chunkTimes = {2'000'000, 2'000'000}},
     .loading = {"99", "-99"},
     .programming = {"100"}},
    {.what = "PayloadOf21500000Bytes",
     .payloadBytes = 21'500'000,
     .script = {.chunkSizeBytes = 21'400'000, .chunkTimes = {2'000'000, 2'000'000}},
     .loading = {"99", "-99"},
     .programming = {"100"}},
    {.what = "WrapsToAPositiveNumberAgain",
     .payloadBytes = 43'000'000,
     .script = {.chunkSizeBytes = 43'000'000, .chunkTimes = {2'000'000}},
     .loading = {"0"},
     .programming = {"100"}},
};

INSTANTIATE_TEST_SUITE_P(Loading, DownloadProgress, testing::ValuesIn(kLoadingCases),
                         [](const auto& named) { return std::string(named.param.what); });

const ProgressCase kProgrammingCases[] = {
    {.what = "ExactlyTheInterval", .script = {.pollTimes = {1'500'000, 0}}, .programming = {"100"}},
    {.what = "OneMicrosecondMoreThanTheInterval", .script = {.pollTimes = {1'500'001, 0}}, .programming = {"5", "100"}},
    {.what = "CountsFromTheLastReport",
     .script = {.pollTimes = {3'000'000, 1'500'000, 1'500'000, 0}},
     .programming = {"10", "20", "100"}},
    // The last poll's own time is never looked at.
    {.what = "SlowLastPoll", .script = {.pollTimes = {60'000'000}}, .programming = {"100"}},
    // Nor is that of a start that finishes the job.
    {.what = "SlowStartThatFinishes",
     .script = {.startProgramTime = 60'000'000},
     .estimateMicroseconds = 1,
     .programming = {"100"}},
    {.what = "SlowStart", .script = {.startProgramTime = 3'000'000, .pollTimes = {0}}, .programming = {"10", "100"}},
    {.what = "JustBelowTheEstimate",
     .script = {.pollTimes = {2'999'999, 0}},
     .estimateMicroseconds = 3'000'000,
     .programming = {"99", "100"}},
    {.what = "AtTheEstimate",
     .script = {.pollTimes = {3'000'000, 0}},
     .estimateMicroseconds = 3'000'000,
     .programming = {"100"}},
    {.what = "PastTheEstimate",
     .script = {.pollTimes = {3'000'001, 0}},
     .estimateMicroseconds = 3'000'000,
     .programming = {"100"}},
    {.what = "PastTheEstimateWithoutAReport",
     .script = {.pollTimes = {1'000'000, 0}},
     .estimateMicroseconds = 1'000'000,
     .programming = {}},
    {.what = "BeyondOneHundredPercent",
     .script = {.pollTimes = {3'000'000, 3'000'000, 0}},
     .estimateMicroseconds = 2'000'000,
     .programming = {"150", "300"}},
    {.what = "ProductOfMoreThan32Bits",
     .script = {.pollTimes = {50'000'000, 0}},
     .estimateMicroseconds = 180'000'000,
     .programming = {"27", "100"}},
    // Only the low 32 bits of a percentage are told.
    {.what = "PercentageThatIsNegativeIn32Bits",
     .script = {.pollTimes = {30'000'000, 0}},
     .estimateMicroseconds = 1,
     .programming = {"-1294967296"}},
    {.what = "PercentageOfMoreThan32Bits",
     .script = {.pollTimes = {42'949'673, 0}},
     .estimateMicroseconds = 1,
     .programming = {"4"}},
    // The tail of the load, from its last report on, counts as programming.
    {.what = "TheTailOfTheLoadCounts",
     .script = {.chunkTimes = {0, 0, 1'500'000}, .pollTimes = {1'500'000, 0}},
     .programming = {"10", "100"}},
    {.what = "TheLoadUpToItsLastReportDoesNotCount",
     .script = {.chunkTimes = {6'000'000, 1'500'000, 0}, .pollTimes = {1'500'000, 0}},
     .loading = {"40"},
     .programming = {"10", "100"}},
    {.what = "TheTailOfTheLoadAloneIsPastTheEstimate",
     .script = {.chunkTimes = {0, 0, 1'500'000}, .pollTimes = {0}},
     .estimateMicroseconds = 1'500'000,
     .programming = {}},
};

INSTANTIATE_TEST_SUITE_P(Programming, DownloadProgress, testing::ValuesIn(kProgrammingCases),
                         [](const auto& named) { return std::string(named.param.what); });

TEST_F(DownloadReports, CompareWholeMicroseconds) {
  Write("0123456789");
  // The interval ends 0.1 microseconds after its end by the clock's ticks.
  clock.AdvanceTicks(7);
  clock.SetStepTicks(1);
  Download(true, {.chunkTimes = {1'500'000}});
  EXPECT_THAT(Reports(), Not(Contains("> 40%\n")));
}

}  // namespace
