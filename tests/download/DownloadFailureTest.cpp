#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ostream>

#include "DownloadDriverFixture.h"
#include "support/AllocatedBytes.h"
#include "support/FailingAllocation.h"

namespace {

using test_support::AllocatedBytes;
using testing::ElementsAre;
using testing::IsEmpty;

class DownloadFailure : public DownloadDriverFixture {
 protected:
  /// Downloads, and checks that nothing is left behind: no descriptor, and no memory of the size of the payload.
  std::string CleanFailureOf(const TargetScript& script) {
    const std::size_t descriptors = test_support::OpenDescriptors();
    const std::size_t bytes = AllocatedBytes();
    const std::string failure = FailureOf(script);
    target.reset();  // it holds what it got
    EXPECT_EQ(test_support::OpenDescriptors(), descriptors);
    EXPECT_LT(AllocatedBytes(), bytes + kPayloadBytes / 2);
    return failure;
  }

  static constexpr std::size_t kPayloadBytes = 1'000'000;
  static constexpr std::uint32_t kChunkBytes = 400'000;
};

TEST_F(DownloadFailure, MissingFile) {
  EXPECT_EQ(CleanFailureOf({}), "Could not open file to download");
  EXPECT_THAT(journal, IsEmpty());
}

TEST_F(DownloadFailure, DirectoryInPlaceOfTheFile) {
  std::filesystem::create_directory(folder.File(kFileName));
  EXPECT_EQ(CleanFailureOf({}), "Could not open file to download");
  EXPECT_THAT(journal, IsEmpty());
}

#if !defined(_WIN32)  // where no file name leads to a pipe
TEST_F(DownloadFailure, FileThatCannotBeSought) {
  ASSERT_EQ(mkfifo(kFileName, 0600), 0);
  const int otherEnd = open(kFileName, O_RDWR);  // or else opening it would wait for a writer
  ASSERT_GE(otherEnd, 0);
  EXPECT_EQ(CleanFailureOf({}), "Could not read entire program memory from disk");
  EXPECT_THAT(journal, ElementsAre("GetPayloadOffset part.rbi"));
  close(otherEnd);
}
#endif

TEST_F(DownloadFailure, NoMemoryForTheFile) {
  WriteZeros(kPayloadBytes);
  const test_support::FailingAllocation first(1);
  EXPECT_EQ(CleanFailureOf({}), "Could not allocate program memory");
  EXPECT_TRUE(first.Happened());
  EXPECT_THAT(journal, ElementsAre("GetPayloadOffset part.rbi"));
}

TEST_F(DownloadFailure, NoMemoryForAnEmptyPayload) {
  Write("");
  const test_support::FailingAllocation first(1);
  EXPECT_EQ(CleanFailureOf({}), "Could not allocate program memory");
}

#if !defined(_WIN32)  // where such a file has no length that the C library could tell
TEST_F(DownloadFailure, FileTooLargeForItsNumbers) {
  WriteZeros(std::uintmax_t{1} << 31);
  EXPECT_EQ(CleanFailureOf({}), "Could not allocate program memory");
  EXPECT_THAT(journal, ElementsAre("GetPayloadOffset part.rbi"));
}
#endif

TEST_F(DownloadFailure, FileThatShrinksWhileItIsRead) {
  WriteZeros(kPayloadBytes);
  const test_support::AtAllocation shrink(
      1, [this] { std::filesystem::resize_file(folder.File(kFileName), kPayloadBytes / 2); });
  EXPECT_EQ(CleanFailureOf({}), "Could not read entire program memory from disk");
  EXPECT_TRUE(shrink.Happened());
  EXPECT_THAT(journal, ElementsAre("GetPayloadOffset part.rbi"));
}

TEST_F(DownloadFailure, NoneForAFileThatGrowsWhileItIsRead) {
  WriteZeros(10);
  const test_support::AtAllocation grow(1, [this] { std::filesystem::resize_file(folder.File(kFileName), 20); });
  EXPECT_EQ(FailureOf({.chunkSizeBytes = 100}), "no failure");
  EXPECT_TRUE(grow.Happened());
  EXPECT_THAT(target->ChunkLengths(), ElementsAre(10));
}

struct TargetFailureCase {
  const char* operation;
  std::size_t call;
  /// What was to be seen of the download until then.
  std::vector<std::string> journal;
};

void PrintTo(const TargetFailureCase& failure, std::ostream* out) {
  *out << failure.operation << ' ' << failure.call;
}

class TargetFailure : public DownloadFailure, public testing::WithParamInterface<TargetFailureCase> {};

TEST_P(TargetFailure, IsPassedOnWithNothingLeftBehind) {
  WriteZeros(kPayloadBytes);
  const TargetScript script{.chunkSizeBytes = kChunkBytes,
                            .payloadOffset = 100'000,
                            .pollTimes = {0, 0, 0},
                            .failing = GetParam().operation,
                            .failingCall = GetParam().call};
  EXPECT_EQ(CleanFailureOf(script), ScriptedTarget::kFailure);
  EXPECT_EQ(journal, GetParam().journal);
}

const std::vector<std::string> kUpToLoading = {"GetPayloadOffset part.rbi", "record belmara Loading 0", "> Loading\n",
                                               "StartDownload 900000"};

std::vector<std::string> Then(std::vector<std::string> journal, const std::vector<std::string>& more) {
  journal.insert(journal.end(), more.begin(), more.end());
  return journal;
}

const std::vector<std::string> kUpToTheFirstChunk = Then(kUpToLoading, {"DownloadChunk 400000 bytes"});
const std::vector<std::string> kUpToTheLastChunk =
    Then(kUpToTheFirstChunk, {"DownloadChunk 400000 bytes", "DownloadChunk 100000 bytes"});
const std::vector<std::string> kUpToProgramming =
    Then(kUpToTheLastChunk, {"> Programming\n", "record belmara Programming 0", "StartProgram"});

const TargetFailureCase kTargetFailureCases[] = {
    {"GetPayloadOffset", 1, {"GetPayloadOffset part.rbi"}},
    {"StartDownload", 1, kUpToLoading},
    {"DownloadChunk", 1, kUpToTheFirstChunk},
    {"DownloadChunk", 3, kUpToTheLastChunk},
    {"StartProgram", 1, kUpToProgramming},
    {"PollProgram", 1, Then(kUpToProgramming, {"PollProgram"})},
    {"PollProgram", 3, Then(kUpToProgramming, {"PollProgram", "PollProgram", "PollProgram"})},
};

INSTANTIATE_TEST_SUITE_P(InEachOperation, TargetFailure, testing::ValuesIn(kTargetFailureCases),
                         [](const auto& named) { return named.param.operation + std::to_string(named.param.call); });

TEST_F(DownloadFailure, CarriesItsPlace) {
  PartDescription part{"belmara", "BLMX", 0, 0, 2, 2, kFileName};
  PartLocation location{};
  location.part = &part;
  ScriptedTarget untouched({}, clock, [](const std::string&) {});
  try {
    DownloadDriver(false, location, kEstimateMicroseconds, untouched);
    FAIL() << "a missing file went through";
  } catch (const errorException& error) {
    EXPECT_STREQ(error.file, "DownloadDriver.cpp");
    EXPECT_GT(error.line, 0);
  }
}

TEST_F(DownloadFailure, OfTheTargetKeepsItsOwnPlace) {
  Write("0123");
  try {
    Download(false, {.failing = "StartProgram"});
    FAIL() << "the target's failure was swallowed";
  } catch (const errorException& error) {
    EXPECT_STREQ(error.file, "target.cpp");
    EXPECT_EQ(error.line, 12);
  }
}

}  // namespace
