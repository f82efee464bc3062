// Meta commands that request: how the data is pulled, one Repeat behind the other.

#include <gtest/gtest.h>

#include <fstream>

#include "MetaFixture.h"

#if !defined(_WIN32)
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace {

using namespace engine_test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class MetaRequestTest : public EngineTest {
 protected:
  void SetUp() override {
    StartWith(kCarriers + Meta("Load", "DataName Image DataType BYTES ") +
              "Plain Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 4 ;"
              "Narrow Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 5 DataName TotalSize DataType UINT16 ;"
              "Extra Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 7 DataName Other RD DataType UINT8 ;"
              "PlainStart Meta Start Plain Repeat Part Stop End DataName Image DataType BYTES ;"
              "NarrowStart Meta Start Narrow Repeat Part Stop End DataName Image DataType BYTES ;"
              "ExtraRepeat Meta Start Begin Repeat Extra Stop End DataName Image DataType BYTES ;"
              "ExtraStop Meta Start Begin Repeat Part Stop Extra DataName Image DataType BYTES ;");
  }

  /// Carries "Load" to a box that sends this; gives the errors of the trace, and "done" behind a success.
  Texts Load(const std::vector<Event>& script) {
    TalcCommand command = Request("Load");
    SetFlags(false, true);
    TakeLog();
    const bool isGood = Carry(command, script);
    Texts told = ErrorsIn(TakeLog());
    if (isGood) told.emplace_back("done");
    EXPECT_EQ(command.HasParameter("Image"), isGood);
    return told;
  }
};

constexpr const char* kRepeatFailed = "RepeatCommand packet execution failed";

/// A Start that tells a total of 250.
const Event kBegin250 = {kAskBegin, "0B 0B 00 08 80 03 00 00 00 00 00 FA"};
Event BeginWith(const std::string& total) {
  return {kAskBegin, "0B 0B 00 08 80 03 00 00 " + total};
}
/// A Repeat that brings a hundred bytes from that place on.
Event Hundred(std::size_t at) {
  return {kAskPart, WithNumbered("0B 0B 00 68 80 05 00 00", at, 100)};
}
Event Part(const std::string& reply) {
  return {kAskPart, reply};
}
const Event kEnd = {kAskEnd, kAskEnd};
/// A Repeat's reply that brings nothing.
constexpr const char* kNoMore = "0B 0B 00 04 80 05 00 00";

TEST_F(MetaRequestTest, PullsUntilTheTotalIsThere) {
  TalcCommand command = Request("Load");
  EXPECT_TRUE(Carry(
      command, {kBegin250, Hundred(0), Hundred(100), Part(WithNumbered("0B 0B 00 36 80 05 00 00", 200, 50)), kEnd}));
  EXPECT_EQ(command.GetStatus(), TalcPath::kTPSuccess);
  EXPECT_EQ(BytesHex(command, "Image"), Hex(Numbered(0, 250)));
}

TEST_F(MetaRequestTest, PullsOnceWhereOneReplyBringsAll) {
  TalcCommand command = Request("Load");
  EXPECT_TRUE(Carry(command, {kBegin250, Part(WithNumbered("0B 0B 00 FE 80 05 00 00", 0, 250)), kEnd}));
  EXPECT_EQ(BytesHex(command, "Image"), Hex(Numbered(0, 250)));
}

TEST_F(MetaRequestTest, PullsSingleBytes) {
  TalcCommand command = Request("Load");
  EXPECT_TRUE(Carry(command, {BeginWith("00 00 00 03"), Part("0B 0B 00 05 80 05 00 00 A1"),
                              Part("0B 0B 00 05 80 05 00 00 A2"), Part("0B 0B 00 05 80 05 00 00 A3"), kEnd}));
  EXPECT_EQ(BytesHex(command, "Image"), "A1 A2 A3");
}

TEST_F(MetaRequestTest, PullsMoreThanFitsOnePacket) {
  TalcCommand command = Request("Load");
  EXPECT_TRUE(Carry(command, {BeginWith("00 00 13 88"), Part(WithNumbered("0B 0B 07 FC 80 05 00 00", 0, 2040)),
                              Part(WithNumbered("0B 0B 07 FC 80 05 00 00", 2040, 2040)),
                              Part(WithNumbered("0B 0B 03 9C 80 05 00 00", 4080, 920)), kEnd}));
  EXPECT_EQ(BytesHex(command, "Image"), Hex(Numbered(0, 5000)));
}

// Each event of the whole way, in its order: a packet is made right before it is sent, and the data is read in the end.
TEST_F(MetaRequestTest, GoesItsWayInOrder) {
  SetFlags(false, true);
  TalcCommand command = Request("Load");
  ScriptedBox box(
      {BeginWith("00 00 00 03"), Part("0B 0B 00 06 80 05 00 00 A1 A2"), Part("0B 0B 00 05 80 05 00 00 A3"), kEnd});
  MetaCommandByteCodeProcessor processor(command, [this, road = box.Road()](const auto& packet, auto& reply) {
    log_ << "\nSent " << Hex(packet) << "\n";
    return road(packet, reply);
  });
  EXPECT_TRUE(processor.Compile());
  EXPECT_TRUE(processor.Execute());
  Texts events;
  std::istringstream lines(TakeLog());
  for (std::string line; std::getline(lines, line);)
    if (line.starts_with("Sent") || line.starts_with("Constructing") || line.starts_with("\tReading") ||
        line.starts_with("EN") || line.starts_with("Meta"))
      events.push_back(line);
  std::erase(events, "END   - Talc Command Format");
  const std::string making = "Constructing ByteCode Compiler - Command : ";
  const std::string made = "END   - Bytecode Compilation";
  EXPECT_THAT(events,
              ElementsAre("Constructing MetaCommandByteCodeProcessor Compiler - Command : Load", making + "Begin", made,
                          "Sent 0B 0B 00 04 80 03 00 00", "\tReading Parameter : TotalSize Type : UINT32 NumBytes: 4",
                          making + "Part", made, "Sent 0B 0B 00 04 80 05 00 00", making + "Part", made,
                          "Sent 0B 0B 00 04 80 05 00 00", making + "End", made, "Sent 0B 0B 00 04 80 07 00 00",
                          "\tReading Parameter : Data Type : BYTES NumBytes: 2",
                          "\tReading Parameter : Data Type : BYTES NumBytes: 1",
                          "\tReading Parameter : Image Type : BYTES NumBytes: 3"));
  processor.MergeStatuses(command);
  EXPECT_EQ(command.GetStatus(), TalcPath::kTPSuccess);
  EXPECT_EQ(BytesHex(command, "Image"), "A1 A2 A3");
}

TEST_F(MetaRequestTest, EndsWithTheFirstExchangeThatDoesNotWork) {
  const auto failing = [](Event event) {
    event.isGood = false;
    return event;
  };
  EXPECT_THAT(Load({failing(kBegin250)}), ElementsAre("StartCommand packet execution failed"));
  EXPECT_THAT(Load({kBegin250, failing(Hundred(0))}), ElementsAre(kRepeatFailed));
  EXPECT_THAT(Load({kBegin250, Hundred(0), failing(Hundred(100))}), ElementsAre(kRepeatFailed));
  // Also for the reply that would have ended it.
  EXPECT_THAT(Load({BeginWith("00 00 00 64"), failing(Hundred(0))}), ElementsAre(kRepeatFailed));
  EXPECT_THAT(Load({BeginWith("00 00 00 64"), Hundred(0), failing(kEnd)}),
              ElementsAre("StopCommand packet execution failed"));
}

TEST_F(MetaRequestTest, EndsWithAStartThatCannotBeReadOrIsNoSuccess) {
  for (const char* reply :
       {"", "0B 0B 00 04 80 03 00", "0B 0C 00 08 80 03 00 00 00 00 00 FA", "0B 0B 00 08 80 03 00 02 00 00 00 FA",
        "0B 0B 00 08 80 03 00 00 00 00 00", "0B 0B 00 04 80 03 00 00"})
    EXPECT_THAT(Load({{kAskBegin, reply}}), IsEmpty()) << reply;
}

TEST_F(MetaRequestTest, EndsWithAStopThatCannotBeReadOrIsNoSuccess) {
  for (const char* reply : {"", "0B 0B 00 04 80 07 00", "0B 0C 00 04 80 07 00 00", "0B 0B 00 04 80 07 00 FF"})
    EXPECT_THAT(Load({BeginWith("00 00 00 64"), Hundred(0), {kAskEnd, reply}}), IsEmpty()) << reply;
}

TEST_F(MetaRequestTest, FindsARepeatThatWasNoSuccessOnlyBehindTheStop) {
  const Event unsupported = Part(WithNumbered("0B 0B 00 68 80 05 00 02", 0, 100));
  EXPECT_THAT(Load({BeginWith("00 00 00 64"), unsupported, kEnd}), IsEmpty());
  EXPECT_THAT(Load({BeginWith("00 00 00 C8"), unsupported, Hundred(100), kEnd}), IsEmpty());
}

TEST_F(MetaRequestTest, FailsWithoutATotal) {
  SetFlags(false, true);
  TalcCommand without = Request("PlainStart");
  EXPECT_FALSE(Carry(without, {{"0B 0B 00 04 80 09 00 00", "0B 0B 00 08 80 09 00 00 00 00 00 FA"}}));
  EXPECT_THAT(ErrorsIn(TakeLog()), ElementsAre("StartCommand packet could not get total data size"));
  TalcCommand narrow = Request("NarrowStart");
  EXPECT_FALSE(Carry(narrow, {{"0B 0B 00 04 80 0B 00 00", "0B 0B 00 06 80 0B 00 00 00 FA"}}));
  EXPECT_THAT(ErrorsIn(TakeLog()), ElementsAre("StartCommand packet could not get total data size"));
}

TEST_F(MetaRequestTest, FailsWhereARepeatOrTheStopCannotBeMade) {
  SetFlags(false, true);
  TalcCommand repeat = Request("ExtraRepeat");
  EXPECT_FALSE(Carry(repeat, {kBegin250}));
  EXPECT_THAT(ErrorsIn(TakeLog()), IsEmpty());
  TalcCommand stop = Request("ExtraStop");
  EXPECT_FALSE(Carry(stop, {BeginWith("00 00 00 64"), Hundred(0)}));
  EXPECT_THAT(ErrorsIn(TakeLog()), ElementsAre("StopCommand packet compilation failed"));
}

TEST_F(MetaRequestTest, FailsWhereRepliesBringMoreThanTheTotal) {
  EXPECT_THAT(Load({kBegin250, Hundred(0), Hundred(100), Hundred(200), kEnd}), IsEmpty());
  EXPECT_THAT(Load({BeginWith("00 00 00 63"), Hundred(0), kEnd}), IsEmpty());
}

TEST_F(MetaRequestTest, StopsPullingAtAReplyOf8BytesOrLess) {
  for (const char* reply : {kNoMore, "0B 0B 00 04 80 05 00", "0B", "", "0B 0C 00 04 80 05 00 00",
                            "0B 0B 00 03 80 05 00 00", "0B 0B 00 04 80 05 00 02"}) {
    EXPECT_THAT(Load({kBegin250, Part(reply), kEnd}), IsEmpty()) << reply;
    EXPECT_THAT(Load({kBegin250, Hundred(0), Part(reply), kEnd}), IsEmpty()) << reply;
  }
}

// It would be asked for without end.
TEST_F(MetaRequestTest, FailsForALongerReplyThatBringsNothing) {
  for (const char* reply : {"0B 0B 00 04 80 05 00 00 A1", "0B 0B 00 03 80 05 00 00 A1", "0B 0C 00 05 80 05 00 00 A1",
                            "0C 0B 00 68 80 05 00 00 A1"}) {
    EXPECT_THAT(Load({kBegin250, Part(reply)}), ElementsAre(kRepeatFailed)) << reply;
    EXPECT_THAT(Load({kBegin250, Hundred(0), Part(reply)}), ElementsAre(kRepeatFailed)) << reply;
  }
  // A bad mark and a bad length count below 0, and the total of 0 is not there.
  EXPECT_THAT(Load({BeginWith("00 00 00 00"), Part("0B 0C 00 05 80 05 00 00 A1")}), ElementsAre(kRepeatFailed));
  EXPECT_THAT(Load({BeginWith("00 00 00 00"), Part("0B 0B 00 03 80 05 00 00 A1")}), ElementsAre(kRepeatFailed));
}

TEST_F(MetaRequestTest, FailsForALengthThatSaysMoreThanThereIs) {
  // It counts as received, so that nothing more is asked for.
  EXPECT_THAT(Load({kBegin250, Part(WithNumbered("0B 0B 00 FE 80 05 00 00", 0, 249)), kEnd}), IsEmpty());
  EXPECT_THAT(Load({kBegin250, Part("0B 0B 00 FE 80 05 00 00"), kEnd}), IsEmpty());
  EXPECT_THAT(Load({kBegin250, Hundred(0), Part(WithNumbered("0B 0B 00 9A 80 05 00 00", 100, 1)), kEnd}), IsEmpty());
}

TEST_F(MetaRequestTest, TakesNoMoreThanTheLengthSays) {
  TalcCommand command = Request("Load");
  EXPECT_TRUE(Carry(command, {BeginWith("00 00 00 03"), Part("0B 0B 00 06 80 05 00 00 A1 A2 EE EE"),
                              Part("0B 0B 00 05 80 05 00 00 A3 EE"), kEnd}));
  EXPECT_EQ(BytesHex(command, "Image"), "A1 A2 A3");
}

TEST_F(MetaRequestTest, FailsForATotalOf0BehindOneRepeat) {
  EXPECT_THAT(Load({BeginWith("00 00 00 00"), Part(kNoMore), kEnd}), IsEmpty());
  EXPECT_THAT(Load({BeginWith("00 00 00 00"), Part("0B 0B 00 05 80 05 00 00 A1"), kEnd}), IsEmpty());
  EXPECT_THAT(Load({BeginWith("00 00 00 00"), Part("0B 0B 00 04 80 05 00 00 A1"), kEnd}), IsEmpty());
}

TEST_F(MetaRequestTest, TakesATotalOf1) {
  TalcCommand command = Request("Load");
  EXPECT_TRUE(Carry(command, {BeginWith("00 00 00 01"), Part("0B 0B 00 05 80 05 00 00 A1"), kEnd}));
  EXPECT_EQ(BytesHex(command, "Image"), "A1");
}

#if !defined(_WIN32)  // which has no such limit
/// Lets the process have no more than a GiB of memory beyond what it has, while this lives.
class MemoryLimit {
 public:
  MemoryLimit() {
    rlim_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    EXPECT_GT(pages, 0u);
    EXPECT_EQ(getrlimit(RLIMIT_AS, &old_), 0);
    rlimit limit = old_;
    limit.rlim_cur = pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + (rlim_t{1} << 30);
    EXPECT_EQ(setrlimit(RLIMIT_AS, &limit), 0);
  }
  ~MemoryLimit() { setrlimit(RLIMIT_AS, &old_); }
  MemoryLimit(const MemoryLimit&) = delete;
  MemoryLimit& operator=(const MemoryLimit&) = delete;

 private:
  rlimit old_{};
};

TEST_F(MetaRequestTest, TakesNoMemoryForATotalThatNeverComes) {
  const MemoryLimit limit;
  EXPECT_THAT(Load({BeginWith("FF FF FF FF"), Hundred(0), Hundred(100), Part(kNoMore), kEnd}), IsEmpty());
  EXPECT_THAT(Load({BeginWith("80 00 00 00"), Hundred(0), Part(kNoMore), kEnd}), IsEmpty());
}
#endif

}  // namespace
