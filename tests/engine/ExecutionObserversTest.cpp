// The observers of an execution: what they see, what they decide, and their lists.

#include <gtest/gtest.h>

#include <stdexcept>

#include "ObserverProbes.h"
#include "ScriptedTalcTransport.h"

namespace {

using namespace engine_test;
using TalcPath::TalcPathRegisterTransport;

void Store(TalcByteCode& reply, const std::string& hex) {
  const Bytes bytes = FromHex(hex);
  reply.Set(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
}

/// The library with a transport, and two observers of each kind that no list has yet.
class ExecutionObserversTest : public TransportTest {
 protected:
  ExecutionObserversTest() {
    StartWith(kDictionary);
    TalcPathRegisterTransport(&transport_, 1);
  }
  void AddAll() {
    ASSERT_TRUE(CompletionProbe::Add(&late_) && CompletionProbe::Add(&late2_) && ExchangeProbe::Add(&swap_) &&
                ExchangeProbe::Add(&swap2_) && PreCompileProbe::Add(&early_) && PreCompileProbe::Add(&early2_));
  }

  static constexpr const char* kText = "exchange Text 0B 0B 00 07 80 06 00 00 55 66 77 timeout 0";
  /// The first call executes another command, which the observers see, too.
  void ExecuteTextOnce() {
    if (std::exchange(isNested_, true)) return;
    TalcCommand text("Text");
    SetBytes(text, "Text", {0x55, 0x66, 0x77});
    EXPECT_EQ(Execute(text), kSucceeded);
  }

  bool isNested_ = false;
  PreCompileProbe early_{journal_, "early"};
  PreCompileProbe early2_{journal_, "early2"};
  ExchangeProbe swap_{journal_, "swap"};
  ExchangeProbe swap2_{journal_, "swap2"};
  CompletionProbe late_{journal_, "late"};
  CompletionProbe late2_{journal_, "late2"};
  TalcCommand ping_{"Ping"};
};

TEST_F(ExecutionObserversTest, AreCalledUnderTheLockAroundTheExchange) {
  AddAll();
  transport_.Expect({{kGood}});
  EXPECT_EQ(Execute(ping_), kSucceeded);
  EXPECT_EQ(TakeJournal(), (Journal{"lock", "early Ping", "early2 Ping", "swap Ping", "swap2 Ping", kPing,
                                    "completed Ping", "late Ping", "late2 Ping", "unlock"}));
  EXPECT_EQ(swap_.packetHex, "0B 0B 00 04 80 02 00 00");
  EXPECT_EQ(swap_.transport, &transport_);
}

TEST_F(ExecutionObserversTest, OfTheExchangeAreToldTheTransportOfTheCommand) {
  ScriptedTalcTransport current(journal_, "current ");
  ASSERT_TRUE(TalcPathRegisterTransport(&current, 2));
  ASSERT_TRUE(ExchangeProbe::Add(&swap_));
  ping_.SetTransportId(1);
  transport_.Expect({{kGood}});
  EXPECT_EQ(Execute(ping_), kSucceeded);
  EXPECT_EQ(swap_.transport, &transport_);
}

TEST_F(ExecutionObserversTest, AreNotCalledForWhatHasNoPacket) {
  AddAll();
  for (const char* const name : {"Text", "Nope", "Lamp", "Table"}) {
    TalcCommand command(name);
    EXPECT_FALSE(Execute(command).isGood) << name;
    EXPECT_EQ(TakeJournal(), (Journal{"lock", "unlock"})) << name;
  }
  // A packet that is handed over as it is, is no command.
  transport_.Expect({{kGood}});
  EXPECT_TRUE(TalcPath::TalcPathSendPacket("Ping", TalcByteCode(), nullptr, 0));
  EXPECT_EQ(TakeJournal(), (Journal{"lock", "exchange Ping  timeout 0", "unlock"}));
}

TEST_F(ExecutionObserversTest, OfTheCompletionAreNotCalledBehindAFailure) {
  ASSERT_TRUE(CompletionProbe::Add(&late_));
  for (const Answer& answer :
       {Answer{kGood, false}, Answer{"0B 0B 00 04 80 02 00 01"}, Answer{"0B 0B 00 04 80 02 00 FF"}, Answer{"0B"}}) {
    transport_.Expect({answer});
    EXPECT_FALSE(Execute(ping_).isGood);
    EXPECT_EQ(TakeJournal(), (Journal{"lock", kPing, "unlock"}));
  }
}

TEST_F(ExecutionObserversTest, BeforeTheExchangeCanStopACommandAsASuccess) {
  AddAll();
  early_.decide = [](TalcCommand&, bool& proceed, bool& result) {
    EXPECT_TRUE(result);
    proceed = false;
  };
  EXPECT_EQ(Execute(ping_), kSucceeded);
  EXPECT_EQ(TakeJournal(), (Journal{"lock", "early Ping", "completed Ping", "late Ping", "late2 Ping", "unlock"}));
}

TEST_F(ExecutionObserversTest, BeforeTheExchangeCanStopACommandAsAFailure) {
  AddAll();
  early2_.decide = [](TalcCommand& command, bool& proceed, bool& result) {
    proceed = false;
    result = false;
    command.SetStatus(TalcPath::kTPTimeOut);  // which does not stay
  };
  EXPECT_EQ(Execute(ping_), Failed(TalcPath::kTPFail));
  EXPECT_EQ(TakeJournal(), (Journal{"lock", "early Ping", "early2 Ping", "unlock"}));
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(ExecutionObserversTest, TheResultStaysForTheNextOneAndMeansNothingToACommandThatProceeds) {
  AddAll();
  early_.decide = [](TalcCommand&, bool&, bool& result) { result = false; };
  early2_.decide = [](TalcCommand&, bool& proceed, bool& result) {
    EXPECT_FALSE(result);
    proceed = false;
  };
  EXPECT_EQ(Execute(ping_), Failed(TalcPath::kTPFail));
  early2_.decide = nullptr;
  transport_.Expect({{kGood}});
  EXPECT_EQ(Execute(ping_), kSucceeded);
  // Each command begins with a success.
  early_.decide = [](TalcCommand&, bool& proceed, bool&) { proceed = false; };
  EXPECT_EQ(Execute(ping_), kSucceeded);
}

TEST_F(ExecutionObserversTest, BeforeTheExchangeSeeNumbersAndChangeNoPacket) {
  ASSERT_TRUE(PreCompileProbe::Add(&early_));
  TalcCommand command("Level");
  command.SetSymbol("Channel", "Left");
  command.SetUInt16("Level", 2);
  early_.decide = [](TalcCommand& seen, bool&, bool&) {
    std::uint8_t channel = 0;
    EXPECT_TRUE(seen.GetUInt8("Channel", &channel));
    EXPECT_EQ(channel, 1);
    seen.SetUInt16("Level", 3);
  };
  transport_.Expect({{"0B 0B 00 04 80 04 00 00"}});
  EXPECT_EQ(Execute(command), kSucceeded);
  EXPECT_EQ(TakeJournal()[2], "exchange Level 0B 0B 00 07 80 04 00 00 01 00 02 timeout 0");
}

TEST_F(ExecutionObserversTest, OfTheExchangeCanAnswerInPlaceOfTheTransport) {
  AddAll();
  swap_.decide = [](TalcByteCode& reply, bool& proceed, bool& handled) {
    EXPECT_EQ(Hex(reply), "");
    EXPECT_TRUE(handled);
    Store(reply, "0B 0B 00 07 80 05 00 00 09 AB CD");
    proceed = false;
  };
  TalcCommand command = Request("Level");
  command.SetUInt8("Channel", 7);
  EXPECT_EQ(Execute(command), kSucceeded);
  EXPECT_EQ(TakeJournal(), (Journal{"lock", "early Level", "early2 Level", "swap Level", "completed Level",
                                    "late Level", "late2 Level", "unlock"}));
  std::uint16_t level = 0;
  EXPECT_TRUE(command.GetUInt16("Level", &level));
  EXPECT_EQ(level, 0xABCD);
}

TEST_F(ExecutionObserversTest, OfTheExchangeAnswerWithAnyStatus) {
  AddAll();
  const std::pair<const char*, TalcPathStatus> cases[] = {
      {"", TalcPath::kTPPacketSizeError},
      {"0B 0B 00 04 80 02 00", TalcPath::kTPPacketSizeError},
      {"0B 0B 00 03 80 02 00 00", TalcPath::kTPInvalidTransportHeader},
      {"0B 0B 00 04 80 02 00 02", TalcPath::kTPNotSupported},
      {"0B 0B 00 04 80 02 00 F0", TalcPath::kTPTransmitFailure},
  };
  for (const auto& [answer, status] : cases) {
    swap_.decide = [&answer = answer](TalcByteCode& reply, bool& proceed, bool&) {
      Store(reply, answer);
      proceed = false;
    };
    EXPECT_EQ(Execute(ping_), Failed(status)) << answer;
    EXPECT_EQ(TakeJournal(), (Journal{"lock", "early Ping", "early2 Ping", "swap Ping", "unlock"}));
    EXPECT_EQ(TakeLog(), "");
  }
}

TEST_F(ExecutionObserversTest, ATimeOutThatAnObserverAnswersIsToldOf) {
  ASSERT_TRUE(ExchangeProbe::Add(&swap_));
  ASSERT_TRUE(TalcPath::SetOverrideTimeoutMillisec("Ping", 1500));
  swap_.decide = [](TalcByteCode& reply, bool& proceed, bool&) {
    reply.SetResponseTimeOut();
    proceed = false;
  };
  EXPECT_EQ(Execute(ping_), Failed(TalcPath::kTPTimeOut));
  EXPECT_EQ(TakeLog(), "\nTalc Command [Ping] timed out. Wait time [1500] 0 means default timeout");
}

// And nobody is told. It is meant.
TEST_F(ExecutionObserversTest, OfTheExchangeCanLetACommandSucceedAsItIs) {
  AddAll();
  swap_.decide = [](TalcByteCode& reply, bool& proceed, bool& handled) {
    Store(reply, "0B 0B 00 07 80 05 00 01 09 AB CD");
    proceed = false;
    handled = false;
  };
  TalcCommand command = Request("Level");
  command.SetUInt8("Channel", 7);
  EXPECT_EQ(Execute(command), kSucceeded);
  EXPECT_EQ(TakeJournal(), (Journal{"lock", "early Level", "early2 Level", "swap Level", "unlock"}));
  std::uint8_t channel = 0;
  EXPECT_TRUE(command.GetUInt8("Channel", &channel));
  EXPECT_EQ(channel, 7);
}

TEST_F(ExecutionObserversTest, HandledStaysForTheNextOneAndMeansNothingToACommandThatProceeds) {
  AddAll();
  swap_.decide = [](TalcByteCode&, bool&, bool& handled) { handled = false; };
  transport_.Expect({{"0B 0B 00 04 80 02 00 02"}});
  EXPECT_EQ(Execute(ping_), Failed(TalcPath::kTPNotSupported));
  swap2_.decide = [](TalcByteCode&, bool& proceed, bool& handled) {
    EXPECT_FALSE(handled);
    proceed = false;
  };
  EXPECT_EQ(Execute(ping_), kSucceeded);
}

TEST_F(ExecutionObserversTest, AReplyThatAnObserverLeavesMeetsTheTransport) {
  ASSERT_TRUE(ExchangeProbe::Add(&swap_));
  swap_.decide = [](TalcByteCode& reply, bool&, bool&) { reply.SetResponseFail(); };
  transport_.Expect({{""}, {kGood}});
  EXPECT_EQ(Execute(ping_), Failed(TalcPath::kTPFail));
  EXPECT_EQ(Execute(ping_), kSucceeded);
}

TEST_F(ExecutionObserversTest, OfTheExchangeAreOrderedByTheirKeys) {
  ExchangeProbe lowest(journal_, "lowest", -2147483647 - 1);
  ExchangeProbe minus(journal_, "minus", -1);
  ExchangeProbe first0(journal_, "first0", 0);
  ExchangeProbe second0(journal_, "second0", 0);
  ExchangeProbe third0(journal_, "third0", 0);
  ExchangeProbe one(journal_, "one", 1);
  ExchangeProbe highest(journal_, "highest", 2147483647);
  for (ExchangeProbe* const each : {&highest, &first0, &one, &lowest, &second0, &minus, &third0})
    ASSERT_TRUE(ExchangeProbe::Add(each));
  transport_.Expect({{kGood}});
  EXPECT_EQ(Execute(ping_), kSucceeded);
  EXPECT_EQ(TakeJournal(), (Journal{"lock", "lowest Ping", "minus Ping", "first0 Ping", "second0 Ping", "third0 Ping",
                                    "one Ping", "highest Ping", kPing, "completed Ping", "unlock"}));
}

TEST_F(ExecutionObserversTest, AKeyThatChangesCountsWhenTheNextOneIsAdded) {
  swap_.key = 1;
  swap2_.key = 2;
  ASSERT_TRUE(ExchangeProbe::Add(&swap_));
  ASSERT_TRUE(ExchangeProbe::Add(&swap2_));
  swap_.key = 3;
  transport_.Expect({{kGood}, {kGood}});
  EXPECT_EQ(Execute(ping_), kSucceeded);
  EXPECT_EQ(TakeJournal(), (Journal{"lock", "swap Ping", "swap2 Ping", kPing, "completed Ping", "unlock"}));
  ExchangeProbe third(journal_, "third", 0);
  ASSERT_TRUE(ExchangeProbe::Add(&third));
  EXPECT_EQ(Execute(ping_), kSucceeded);
  EXPECT_EQ(TakeJournal(),
            (Journal{"lock", "third Ping", "swap2 Ping", "swap Ping", kPing, "completed Ping", "unlock"}));
}

TEST_F(ExecutionObserversTest, OneThatThrowsLeavesNoLockBehind) {
  AddAll();
  const std::function<void()> gone = [] { throw std::runtime_error("gone"); };
  early_.onCall = gone;
  EXPECT_THROW(TalcPath::TalcPathExecute(ping_), std::runtime_error);
  EXPECT_EQ(TakeJournal(), (Journal{"lock", "early Ping", "unlock"}));
  early_.onCall = nullptr;
  swap_.onCall = gone;
  EXPECT_THROW(TalcPath::TalcPathExecute(ping_), std::runtime_error);
  EXPECT_EQ(TakeJournal(), (Journal{"lock", "early Ping", "early2 Ping", "swap Ping", "unlock"}));
  swap_.onCall = nullptr;
  late_.onCall = gone;
  transport_.Expect({{kGood}});
  EXPECT_THROW(TalcPath::TalcPathExecute(ping_), std::runtime_error);
  EXPECT_EQ(TakeJournal(), (Journal{"lock", "early Ping", "early2 Ping", "swap Ping", "swap2 Ping", kPing,
                                    "completed Ping", "late Ping", "unlock"}));
}

TEST_F(ExecutionObserversTest, AnExecutionWithinOneBeforeTheExchangeHasItsOwnPackets) {
  ASSERT_TRUE(PreCompileProbe::Add(&early_));
  early_.onCall = [this] { ExecuteTextOnce(); };
  transport_.Expect({{"0B 0B 00 04 80 06 00 00"}, {kGood}});
  EXPECT_EQ(Execute(ping_), kSucceeded);
  EXPECT_EQ(TakeJournal(), (Journal{"lock", "early Ping", "lock", "early Text", kText, "completed Text", "unlock",
                                    kPing, "completed Ping", "unlock"}));
}

TEST_F(ExecutionObserversTest, AnExecutionWithinOneOfTheExchangeHasItsOwnPackets) {
  ASSERT_TRUE(ExchangeProbe::Add(&swap_));
  swap_.decide = [this](TalcByteCode& reply, bool& proceed, bool&) {
    if (isNested_) return;
    Store(reply, "0B 0B 00 07 80 05 00 00 09 AB CD");
    ExecuteTextOnce();
    EXPECT_EQ(Hex(reply), "0B 0B 00 07 80 05 00 00 09 AB CD");
    proceed = false;
  };
  transport_.Expect({{"0B 0B 00 04 80 06 00 00"}});
  TalcCommand command = Request("Level");
  command.SetUInt8("Channel", 7);
  EXPECT_EQ(Execute(command), kSucceeded);
  EXPECT_EQ(TakeJournal(), (Journal{"lock", "swap Level", "lock", "swap Text", kText, "completed Text", "unlock",
                                    "completed Level", "unlock"}));
  std::uint16_t level = 0;
  EXPECT_TRUE(command.GetUInt16("Level", &level));
  EXPECT_EQ(level, 0xABCD);
}

TEST_F(ExecutionObserversTest, AnExecutionWithinOneOfTheCompletionIsLikeAnyOther) {
  ASSERT_TRUE(CompletionProbe::Add(&late_));
  late_.onCall = [this] { ExecuteTextOnce(); };
  transport_.Expect({{kGood}, {"0B 0B 00 04 80 06 00 00"}, {"", false}});
  EXPECT_EQ(Execute(ping_), kSucceeded);
  EXPECT_EQ(TakeJournal(), (Journal{"lock", kPing, "completed Ping", "late Ping", "lock", kText, "completed Text",
                                    "late Text", "unlock", "unlock"}));
  EXPECT_EQ(Execute(ping_), Failed(TalcPath::kTPFail));
}

}  // namespace
