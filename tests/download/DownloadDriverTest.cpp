#include <bit>
#include <cstddef>
#include <ostream>

#include "download/DownloadDriver.h"
#include "DownloadDriverFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using DownloadDriverTest = DownloadDriverFixture;

TEST_F(DownloadDriverTest, TellsEachPhaseAndSendsTheFileInChunks) {
  Write("0123456789");
  const std::vector<std::string> expected = {
      "GetPayloadOffset part.rbi",
      "record belmara Loading 0",  // first the record, then the line
      "> Loading\n",
      "StartDownload 10",
      "DownloadChunk 0123",
      "DownloadChunk 4567",
      "record belmara Loading 80",
      "> 80%\n",
      "DownloadChunk 89",  // its true length
      "> Programming\n",   // first the line, then the record
      "record belmara Programming 0",
      "StartProgram",
      "PollProgram",
      "record belmara Programming 10",
      "> 10%\n",
      "PollProgram",
      "record belmara Programming 100",
      "> 100%\n",
      "record belmara Done 100",
      "> Done\n",
  };
  EXPECT_EQ(Download(true, {.chunkTimes = {0, 1'600'000}, .pollTimes = {3'000'000, 0}}), expected);
}

TEST_F(DownloadDriverTest, FlushesEachLine) {
  Write("0123");
  flushForJournal = false;
  const std::vector<std::string> expected = {
      "GetPayloadOffset part.rbi",
      "record belmara Loading 0",
      "> Loading\n",
      "StartDownload 4",
      "DownloadChunk 0123",
      "record belmara Loading 100",
      "> 100%\n",
      "record belmara Programming 0",  // its line is in the buffer by now, and is flushed only behind it
      "> Programming\n",
      "StartProgram",
      "PollProgram",
      "record belmara Programming 10",
      "> 10%\n",
      "PollProgram",
      "record belmara Programming 100",
      "> 100%\n",
      "record belmara Done 100",
      "> Done\n",
  };
  EXPECT_EQ(Download(true, {.chunkTimes = {1'600'000}, .pollTimes = {3'000'000, 0}}), expected);
}

TEST_F(DownloadDriverTest, SaysNothingWithoutProgressAndDoesTheSameWork) {
  Write("0123456789");
  const TargetScript script{.chunkTimes = {5'000'000, 5'000'000, 5'000'000}, .pollTimes = {5'000'000, 5'000'000, 0}};
  EXPECT_THAT(Download(false, script),
              ElementsAre("GetPayloadOffset part.rbi", "StartDownload 10", "DownloadChunk 0123", "DownloadChunk 4567",
                          "DownloadChunk 89", "StartProgram", "PollProgram", "PollProgram", "PollProgram"));
  EXPECT_THAT(frontEnd.Searches(), IsEmpty());
  EXPECT_EQ(captured.err(), "");
}

TEST_F(DownloadDriverTest, ReadsTheClockOnceWithoutProgress) {
  Write("0123456789");
  clock.SetStepTicks(1);
  Download(false, {.pollTimes = {0, 0, 0, 0, 0}});
  EXPECT_EQ(clock.Ticks(), 1);
}

TEST_F(DownloadDriverTest, ReadsTheClockOnceForEachChunkAndPollWithProgress) {
  Write("0123456789");
  clock.SetStepTicks(1);
  Download(true, {.pollTimes = {0, 0, 0, 0, 0}});
  EXPECT_EQ(clock.Ticks(), 1 + 3 + 5);
}

TEST_F(DownloadDriverTest, PrintsTheSameWithoutAFrontEnd) {
  Write("0123456789");
  frontEnd.SetWindow(0);
  EXPECT_THAT(Download(true, {.chunkTimes = {1'600'000}, .pollTimes = {3'000'000, 0}}),
              ElementsAre("GetPayloadOffset part.rbi", "> Loading\n", "StartDownload 10", "DownloadChunk 0123",
                          "> 40%\n", "DownloadChunk 4567", "DownloadChunk 89", "> Programming\n", "StartProgram",
                          "PollProgram", "> 10%\n", "PollProgram", "> 100%\n", "> Done\n"));
}

struct PayloadCase {
  const char* what;
  const char* content;
  std::uint32_t payloadOffset;
  std::vector<std::string> calls;
};

void PrintTo(const PayloadCase& payload, std::ostream* out) {
  *out << payload.what;
}

class DownloadPayload : public DownloadDriverFixture, public testing::WithParamInterface<PayloadCase> {};

TEST_P(DownloadPayload, IsSentFromTheOffsetToTheEndOfTheFile) {
  Write(GetParam().content);
  std::vector<std::string> expected = {"GetPayloadOffset part.rbi"};
  expected.insert(expected.end(), GetParam().calls.begin(), GetParam().calls.end());
  expected.push_back("StartProgram");
  EXPECT_EQ(Download(false, {.payloadOffset = GetParam().payloadOffset}), expected);
}

const PayloadCase kPayloadCases[] = {
    {"WholeFile", "01234", 0, {"StartDownload 5", "DownloadChunk 0123", "DownloadChunk 4"}},
    {"ShortLastChunk",
     "01234567890",
     2,
     {"StartDownload 9", "DownloadChunk 2345", "DownloadChunk 6789", "DownloadChunk 0"}},
    {"MultipleOfTheChunk", "0123456789", 2, {"StartDownload 8", "DownloadChunk 2345", "DownloadChunk 6789"}},
    {"ExactlyOneChunk", "0123", 0, {"StartDownload 4", "DownloadChunk 0123"}},
    {"LessThanAChunk", "0123456789", 7, {"StartDownload 3", "DownloadChunk 789"}},
    {"OneByte", "0123456789", 9, {"StartDownload 1", "DownloadChunk 9"}},
    {"EmptyFile", "", 0, {"StartDownload 0"}},
    {"NothingBehindTheOffset", "0123456789", 10, {"StartDownload 0"}},
    {"FileShorterThanTheOffset", "0123456789", 11, {"StartDownload 0"}},
    {"OffsetFarBeyondTheFile", "0123456789", 0x7FFFFFFF, {"StartDownload 0"}},
    {"OffsetOf31Bits", "0123456789", 0x80000000, {"StartDownload 0"}},
    {"LargestOffset", "0123456789", 0xFFFFFFFF, {"StartDownload 0"}},
};

INSTANTIATE_TEST_SUITE_P(Table, DownloadPayload, testing::ValuesIn(kPayloadCases),
                         [](const auto& named) { return std::string(named.param.what); });

TEST_F(DownloadDriverTest, SendsTheWholeFileUnlessTheTargetSaysOtherwise) {
  Write("0123456789");
  EXPECT_THAT(Download(false, {.chunkSizeBytes = 16}),
              ElementsAre("GetPayloadOffset part.rbi", "StartDownload 10", "DownloadChunk 0123456789", "StartProgram"));
}

TEST_F(DownloadDriverTest, SendsTheBytesAsTheyStandInTheFile) {
  std::string content;
  for (int i = 0; i < 100'000; ++i)
    content.push_back(static_cast<char>(i * 7 + i / 256));
  Write(content);
  Download(false, {.chunkSizeBytes = 1000, .payloadOffset = 23});
  EXPECT_EQ(target->Received(), content.substr(23));
  ASSERT_EQ(target->ChunkLengths().size(), 100u);
  EXPECT_EQ(target->ChunkLengths().back(), 977u);
}

TEST_F(DownloadDriverTest, AnEmptyPayloadGoesStraightToProgramming) {
  Write("");
  EXPECT_THAT(Download(true, {}),
              ElementsAre("GetPayloadOffset part.rbi", "record belmara Loading 0", "> Loading\n", "StartDownload 0",
                          "> Programming\n", "record belmara Programming 0", "StartProgram",
                          "record belmara Programming 100", "> 100%\n", "record belmara Done 100", "> Done\n"));
}

TEST_F(DownloadDriverTest, TheLargestChunkSizeTakesTheFileInOnePiece) {
  Write("0123456789");
  Download(false, {.chunkSizeBytes = 0xFFFFFFFF});
  EXPECT_THAT(target->ChunkLengths(), ElementsAre(10));
}

TEST_F(DownloadDriverTest, ClosesTheFileBeforeItSends) {
  Write("0123456789");
  const std::size_t before = test_support::OpenDescriptors();
  Download(true, {.pollTimes = {0}});
  EXPECT_EQ(descriptorsWhileSending, before);
  EXPECT_EQ(test_support::OpenDescriptors(), before);
}

TEST_F(DownloadDriverTest, PollsWithoutAnEndUntilTheTargetThrows) {
  Write("0123");
  const std::int64_t oneHour = 3'600'000'000;
  const std::vector<std::int64_t> pollTimes(10'000, oneHour);
  EXPECT_EQ(FailureOf({.pollTimes = pollTimes, .failing = "PollProgram", .failingCall = 9'999}),
            ScriptedTarget::kFailure);
  EXPECT_EQ(target->Polls(), 9'999u);
}

/// The place of a virtual operation in the table of its class, as a pointer to it tells in the C++ ABI of both
/// compilers.
template <typename Operation>
std::ptrdiff_t SlotOf(Operation operation) {
  struct Parts {
    std::ptrdiff_t place;
    std::ptrdiff_t adjustment;
  };
  return (std::bit_cast<Parts>(operation).place - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

TEST(DownloadHelper, HasItsOperationsInTheirOrderAndTheDestructorLast) {
  class WithOneMore : public DownloadHelper {
   public:
    virtual void Next() {}
  };
  EXPECT_EQ(SlotOf(&DownloadHelper::GetPayloadOffset), 0);
  EXPECT_EQ(SlotOf(&DownloadHelper::StartDownload), 1);
  EXPECT_EQ(SlotOf(&DownloadHelper::DownloadChunk), 2);
  EXPECT_EQ(SlotOf(&DownloadHelper::StartProgram), 3);
  EXPECT_EQ(SlotOf(&DownloadHelper::PollProgram), 4);
  // A destructor has two entries in this ABI, 5 and 6.
  EXPECT_EQ(SlotOf(&WithOneMore::Next), 7);
}

}  // namespace
