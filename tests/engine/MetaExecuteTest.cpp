// Meta commands that send, and what both directions do without a road to hardware.

#include <gtest/gtest.h>

#include "MetaFixture.h"
#include "ScriptedTalcTransport.h"

namespace {

using namespace engine_test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kStart3 = "0B 0B 00 08 80 02 00 00 00 00 00 03";
constexpr const char* kRepeat3 = "0B 0B 00 07 80 04 00 00 00 00 00";
constexpr const char* kStop = "0B 0B 00 04 80 06 00 00";

class MetaSendTest : public EngineTest {
 protected:
  void SetUp() override {
    StartWith(kCarriers + Meta("Load", "DataName Image DataType BYTES ") + Meta("Nothing", "") +
              "Probe Diag DiagOpcode 9 ;"
              "Data9 Diag DiagOpcode 10 DataName Data DataType BYTES ;"
              "DiagStart Meta Start Probe Repeat Part Stop End DataName Image DataType BYTES ;"
              "DiagRepeat Meta Start Begin Repeat Data9 Stop End DataName Image DataType BYTES ;"
              "DiagStop Meta Start Begin Repeat Part Stop Probe DataName Image DataType BYTES ;"
              "NoStart Meta Start Nobody Repeat Part Stop Probe ;");
  }
};

/// The status that a command gets behind an execution that did not work.
TalcPathStatus StatusOfFailure(TalcCommand command, const std::vector<Event>& script) {
  ScriptedBox box(script);
  MetaCommandByteCodeProcessor processor(command, box.Road());
  EXPECT_TRUE(processor.Compile());
  EXPECT_FALSE(processor.Execute());
  processor.MergeStatuses(command);
  return command.GetStatus();
}

TEST_F(MetaSendTest, SendsThePacketsOneBehindTheOther) {
  TalcCommand command = WithImage("Load", 5000);
  EXPECT_TRUE(Carry(command, {
                                 {"0B 0B 00 08 80 02 00 00 00 00 13 88", kBegun},
                                 {WithNumbered("0B 0B 07 FC 80 04 00 00", 0, 2040), kTaken},
                                 {WithNumbered("0B 0B 07 FC 80 04 00 00", 2040, 2040), kTaken},
                                 {WithNumbered("0B 0B 03 9C 80 04 00 00", 4080, 920), kTaken},
                                 {"0B 0B 00 04 80 06 00 00", kEnded},
                             }));
  EXPECT_EQ(command.GetStatus(), TalcPath::kTPSuccess);
  // The values that were sent stay.
  EXPECT_EQ(BytesHex(command, "Image"), Hex(Numbered(0, 5000)));
}

TEST_F(MetaSendTest, MakesAllPacketsBeforeTheFirstIsSent) {
  TalcCommand command = WithImage("Load", 3);
  MetaCommandByteCodeProcessor* made = nullptr;
  std::vector<std::size_t> counts;
  MetaCommandByteCodeProcessor processor(command, [&](const TalcByteCode&, TalcByteCode& reply) {
    counts.push_back(made->Pairs().size());
    reply.SetResponseSuccess();
    return true;
  });
  made = &processor;
  EXPECT_TRUE(processor.Compile());
  EXPECT_TRUE(processor.Execute());
  EXPECT_THAT(counts, ElementsAre(3, 3, 3));
}

TEST_F(MetaSendTest, KeepsTheReplyBesideItsPacket) {
  TalcCommand command = WithImage("Load", 3);
  ScriptedBox box({{kStart3, kBegun}, {kRepeat3, kTaken}, {kStop, kEnded}});
  MetaCommandByteCodeProcessor processor(command, box.Road());
  EXPECT_TRUE(processor.Compile() && processor.Execute());
  Texts replies;
  for (const auto& pair : processor.Pairs())
    replies.push_back(Hex(pair->reply));
  EXPECT_THAT(replies, ElementsAre(kBegun, kTaken, kEnded));
}

// A diagnostic command takes a reply without a mark, which no other one does.
TEST_F(MetaSendTest, ReadsEachReplyAsItsOwnSubCommand) {
  const std::string header =
      "6F 72 62 6F 5F 64 69 61 67 6E 6F 73 74 69 63 73 00 00 00 00 00 00 00 00 00 00 00 00 00 00 ";
  const std::string probe = header + "00 09 00 00 00 00";
  const std::string diagReply = Hex(Bytes(36));

  TalcCommand start = WithImage("DiagStart", 3);
  EXPECT_TRUE(Carry(start, {{probe, diagReply}, {kRepeat3, kTaken}, {kStop, kEnded}}));
  EXPECT_TRUE(start.IsSuccess());
  TalcCommand repeat = WithImage("DiagRepeat", 1);
  EXPECT_TRUE(Carry(repeat, {{"0B 0B 00 08 80 02 00 00 00 00 00 01", kBegun},
                             {header + "00 0A 00 01 00 00 00", diagReply},
                             {kStop, kEnded}}));
  EXPECT_TRUE(repeat.IsSuccess());
  TalcCommand stop = WithImage("DiagStop", 3);
  EXPECT_TRUE(Carry(stop, {{kStart3, kBegun}, {kRepeat3, kTaken}, {probe, diagReply}}));
  EXPECT_TRUE(stop.IsSuccess());

  TalcCommand ordinary = WithImage("Load", 3);
  EXPECT_FALSE(Carry(ordinary, {{kStart3, diagReply}}));
  EXPECT_FALSE(Carry(ordinary, {{kStart3, kBegun}, {kRepeat3, diagReply}}));
  EXPECT_FALSE(Carry(ordinary, {{kStart3, kBegun}, {kRepeat3, kTaken}, {kStop, diagReply}}));
}

TEST_F(MetaSendTest, EndsWithTheFirstExchangeThatDoesNotWork) {
  SetFlags(false, true);
  TalcCommand command = WithImage("Load", 2041);
  const Event start = {"0B 0B 00 08 80 02 00 00 00 00 07 F9", kBegun};
  const Event first = {WithNumbered("0B 0B 07 FC 80 04 00 00", 0, 2040), kTaken};
  const Event second = {WithNumbered("0B 0B 00 05 80 04 00 00", 2040, 1), kTaken};
  const Event stop = {kStop, kEnded};
  // A good reply does not help.
  const auto failing = [](Event event) {
    event.isGood = false;
    return event;
  };
  EXPECT_FALSE(Carry(command, {failing(start)}));
  EXPECT_FALSE(Carry(command, {start, failing(first)}));
  EXPECT_FALSE(Carry(command, {start, first, failing(second)}));
  EXPECT_FALSE(Carry(command, {start, first, second, failing(stop)}));
  EXPECT_THAT(ErrorsIn(TakeLog()), IsEmpty());
  EXPECT_TRUE(Carry(command, {start, first, second, stop}));
}

TEST_F(MetaSendTest, EndsWithTheFirstReplyThatIsNoSuccess) {
  const TalcCommand command = WithImage("Load", 3);
  EXPECT_EQ(StatusOfFailure(command, {{kStart3, "0B 0B 00 04 80 02 00 02"}}), TalcPath::kTPNotSupported);
  EXPECT_EQ(StatusOfFailure(command, {{kStart3, kBegun}, {kRepeat3, "0B 0B 00 04 80 04 00 F0"}}),
            TalcPath::kTPTransmitFailure);
  EXPECT_EQ(StatusOfFailure(command, {{kStart3, kBegun}, {kRepeat3, kTaken}, {kStop, "0B 0B 00 04 80 06 00 FF"}}),
            TalcPath::kTPTimeOut);
  EXPECT_EQ(StatusOfFailure(command, {{kStart3, kBegun}, {kRepeat3, kTaken}, {kStop, "0B 0B 00 04 80 06 00 01"}}),
            TalcPath::kTPFail);
}

TEST_F(MetaSendTest, EndsWithTheFirstReplyThatCannotBeRead) {
  const TalcCommand command = WithImage("Load", 3);
  for (const char* reply : {"", "0B 0B 00 04 80 02 00", "0B 0C 00 04 80 02 00 00", "0B 0B 00 03 80 02 00 00"}) {
    EXPECT_EQ(StatusOfFailure(command, {{kStart3, reply}}), TalcPath::kTPFail) << reply;
    EXPECT_EQ(StatusOfFailure(command, {{kStart3, kBegun}, {kRepeat3, reply}}), TalcPath::kTPFail) << reply;
    EXPECT_EQ(StatusOfFailure(command, {{kStart3, kBegun}, {kRepeat3, kTaken}, {kStop, reply}}), TalcPath::kTPFail);
  }
}

TEST_F(MetaSendTest, TakesNoNoticeOfValuesInReplies) {
  TalcCommand command = WithImage("Load", 3);
  EXPECT_TRUE(Carry(command, {{kStart3, "0B 0B 00 08 80 02 00 00 00 00 00 63"},
                              {kRepeat3, "0B 0B 00 05 80 04 00 00 77"},
                              {kStop, "0B 0B 00 05 80 06 00 00 77"}}));
  EXPECT_TRUE(command.IsSuccess());
  EXPECT_EQ(BytesHex(command, "Image"), "00 00 00");
}

// Nobody has told what became of a Repeat. It is meant.
TEST_F(MetaSendTest, FailsInTheEndWithoutARepeat) {
  TalcCommand command("Nothing");
  command.SetStatus(TalcPath::kTPTimeOut);
  EXPECT_TRUE(Carry(command, {{"0B 0B 00 08 80 02 00 00 00 00 00 00", kBegun}, {kStop, kEnded}}));
  EXPECT_EQ(command.GetStatus(), TalcPath::kTPFail);
}

TEST_F(MetaSendTest, TakesASinglePairForTheStart) {
  // Its Start is not defined, so that all that is there is a pair without a packet. The Stop would not take the reply.
  TalcCommand command("NoStart");
  ScriptedBox box(std::vector<Event>{{"", "0B 0B 00 04 80 02 00 00"}});
  MetaCommandByteCodeProcessor processor(command, box.Road());
  EXPECT_FALSE(processor.Compile());
  EXPECT_EQ(processor.Pairs().size(), 1u);
  EXPECT_TRUE(processor.Execute());
  processor.MergeStatuses(command);
  EXPECT_EQ(command.GetStatus(), TalcPath::kTPFail);
}

TEST_F(MetaSendTest, ExecutesNothingThatWasNotCompiled) {
  for (TalcCommand command : {WithImage("Load", 3), Request("Load")}) {
    ScriptedBox box(std::vector<Event>{});
    MetaCommandByteCodeProcessor processor(command, box.Road());
    EXPECT_FALSE(processor.Execute());
  }
}

/// A transport that expects no packet.
class MetaWithoutNameTest : public MetaSendTest {
 protected:
  void SetUp() override {
    MetaSendTest::SetUp();
    ASSERT_TRUE(TalcPath::TalcPathRegisterTransport(&transport_, 1));
  }

  Journal journal_;
  ScriptedTalcTransport transport_{journal_};
};

TEST_F(MetaWithoutNameTest, NothingReachesTheTransport) {
  for (TalcCommand command : {WithImage("Load", 3), Request("Load")}) {
    MetaCommandByteCodeProcessor processor(command);
    EXPECT_TRUE(processor.Compile());
    EXPECT_FALSE(processor.Execute());
    EXPECT_EQ(processor.Pairs().front()->reply.GetSize(), 0u);
  }
  EXPECT_THAT(journal_, IsEmpty());
}

TEST_F(MetaWithoutNameTest, TheFirstExchangeFails) {
  SetFlags(false, true);
  TalcCommand request = Request("Load");
  MetaCommandByteCodeProcessor processor(request);
  EXPECT_TRUE(processor.Compile());
  TakeLog();
  EXPECT_FALSE(processor.Execute());
  EXPECT_EQ(TakeLog(), "\nMetaCommand ERROR - StartCommand packet execution failed");
  EXPECT_EQ(processor.Pairs().size(), 1u);

  TalcCommand send = WithImage("Load", 3);
  MetaCommandByteCodeProcessor sender(send);
  EXPECT_TRUE(sender.Compile());
  TakeLog();
  EXPECT_FALSE(sender.Execute());
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(MetaWithoutNameTest, AnExecutionFailsUnderTheTransportsLock) {
  for (TalcCommand command : {WithImage("Load", 3), Request("Load"), TalcCommand("Load")}) {
    command.SetStatus(TalcPath::kTPSuccess);
    journal_.clear();
    EXPECT_FALSE(TalcPath::TalcPathExecute(command));
    EXPECT_EQ(command.GetStatus(), TalcPath::kTPFail);
    EXPECT_THAT(journal_, ElementsAre("lock", "unlock"));
  }
}

}  // namespace
