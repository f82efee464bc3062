// A command's whole road: compile, exchange, decompile, and what is told of it.

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

#include "dictionary/TalcCommandFormat.h"
#include "HandmadeFormats.h"
#include "ScriptedTalcTransport.h"
#include "support/TempFolder.h"

namespace {

using namespace engine_test;
using TalcPath::TalcPathRegisterTransport;

class ExecutionTest : public TransportTest {
 protected:
  ExecutionTest() {
    StartWith(kDictionary);
    TalcPathRegisterTransport(&transport_, 1);
  }

  static TalcCommand Level() {
    TalcCommand command("Level");
    command.SetUInt8("Channel", 7);
    command.SetUInt16("Level", 0x1234);
    return command;
  }

  const Journal untouched_ = {"lock", "unlock"};
  const Journal exchanged_ = {"lock", kPing, "unlock"};
  const Journal completed_ = {"lock", kPing, "completed Ping", "unlock"};
};

TEST_F(ExecutionTest, CarriesASendThereAndBack) {
  TalcCommand command = Level();
  transport_.Expect({{"0B 0B 00 04 80 04 00 00"}});
  EXPECT_EQ(Execute(command), kSucceeded);
  EXPECT_EQ(TakeJournal(), (Journal{"lock", "exchange Level 0B 0B 00 07 80 04 00 00 07 12 34 timeout 0",
                                    "completed Level", "unlock"}));
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(ExecutionTest, CarriesARequestThereAndItsValuesBack) {
  TalcCommand command = Request("Level");
  command.SetSymbol("Channel", "Left");
  command.SetUInt16("Level", 5);
  transport_.Expect({{"0B 0B 00 07 80 05 00 00 09 AB CD"}});
  EXPECT_EQ(Execute(command), kSucceeded);
  EXPECT_EQ(TakeJournal(),
            (Journal{"lock", "exchange Level 0B 0B 00 05 80 05 00 00 01 timeout 0", "completed Level", "unlock"}));
  std::uint8_t channel = 0;
  std::uint16_t level = 0;
  EXPECT_TRUE(command.GetUInt8("Channel", &channel));
  EXPECT_TRUE(command.GetUInt16("Level", &level));
  EXPECT_EQ(channel, 9);
  EXPECT_EQ(level, 0xABCD);
}

TEST_F(ExecutionTest, ReadsTheReplyOfASendForItsStatusAlone) {
  TalcCommand command = Level();
  transport_.Expect({{"0B 0B 00 07 80 04 00 00 09 AB CD"}});
  EXPECT_EQ(Execute(command), kSucceeded);
  std::uint16_t level = 0;
  EXPECT_TRUE(command.GetUInt16("Level", &level));
  EXPECT_EQ(level, 0x1234);
}

TEST_F(ExecutionTest, GivesTheStatusOfTheReply) {
  const std::pair<const char*, TalcPathStatus> cases[] = {
      {"01", TalcPath::kTPFail}, {"02", TalcPath::kTPNotSupported},    {"03", TalcPath::kTPFail},
      {"04", TalcPath::kTPFail}, {"F0", TalcPath::kTPTransmitFailure}, {"FE", TalcPath::kTPFail},
  };
  for (const auto& [byte, status] : cases) {
    TalcCommand command("Ping");
    transport_.Expect({{std::string("0B 0B 00 04 80 02 00 ") + byte}});
    EXPECT_EQ(Execute(command), Failed(status)) << byte;
    EXPECT_EQ(TakeJournal(), exchanged_) << byte;
    EXPECT_EQ(TakeLog(), "") << byte;
  }
}

TEST_F(ExecutionTest, TellsOfATimeOutWithTheTimeThatItWaited) {
  const std::pair<std::uint32_t, std::string> cases[] = {{0, "0"}, {1500, "1500"}, {4294967295, "4294967295"}};
  for (const auto& [milliseconds, text] : cases) {
    ASSERT_TRUE(TalcPath::SetOverrideTimeoutMillisec("Ping", milliseconds));
    TalcCommand command("Ping");
    transport_.Expect({{"0B 0B 00 04 80 02 00 FF"}});
    EXPECT_EQ(Execute(command), Failed(TalcPath::kTPTimeOut));
    EXPECT_EQ(TakeJournal(), (Journal{"lock", "exchange Ping 0B 0B 00 04 80 02 00 00 timeout " + text, "unlock"}));
    EXPECT_EQ(TakeLog(), "\nTalc Command [Ping] timed out. Wait time [" + text + "] 0 means default timeout");
  }
}

TEST_F(ExecutionTest, HandsTheTimeOutOfTheDefinitionOver) {
  ASSERT_TRUE(TalcPath::SetOverrideTimeoutMillisec("Ping", 900));
  ASSERT_TRUE(TalcPath::SetOverrideTimeoutMillisec("Level", 300));
  TalcCommand command("Ping");
  transport_.Expect({{kGood}});
  EXPECT_EQ(Execute(command), kSucceeded);
  EXPECT_EQ(TakeJournal(),
            (Journal{"lock", "exchange Ping 0B 0B 00 04 80 02 00 00 timeout 900", "completed Ping", "unlock"}));
}

TEST_F(ExecutionTest, AnExchangeThatDidNotWorkGivesTheStatusOfWhatItLeft) {
  const std::pair<const char*, TalcPathStatus> cases[] = {
      {"", TalcPath::kTPFail},
      {"0B 0B 00 04 80 02 00", TalcPath::kTPFail},
      {"0B 0C 00 04 80 02 00 00", TalcPath::kTPFail},
      // It contradicts itself.
      {"0B 0B 00 04 80 02 00 00", TalcPath::kTPTransmitFailure},
      {"0B 0B 00 04 80 02 00 01", TalcPath::kTPFail},
      {"0B 0B 00 04 80 02 00 02", TalcPath::kTPNotSupported},
      {"0B 0B 00 04 80 02 00 F0", TalcPath::kTPTransmitFailure},
      {"0B 0B 00 04 80 02 00 FF", TalcPath::kTPTimeOut},
  };
  for (const auto& [reply, status] : cases) {
    TalcCommand command("Ping");
    transport_.Expect({{reply, false}});
    EXPECT_EQ(Execute(command), Failed(status)) << reply;
    EXPECT_EQ(TakeJournal(), exchanged_) << reply;
    // Nor is a time-out told of that the transport knows of already.
    EXPECT_EQ(TakeLog(), "") << reply;
  }
}

TEST_F(ExecutionTest, AnExchangeThatDidNotWorkBringsNoValues) {
  TalcCommand command = Request("Level");
  command.SetUInt8("Channel", 7);
  transport_.Expect({{"0B 0B 00 07 80 05 00 00 09 AB CD", false}});
  EXPECT_EQ(Execute(command), Failed(TalcPath::kTPTransmitFailure));
  EXPECT_FALSE(command.HasParameter("Level"));
}

TEST_F(ExecutionTest, ACommandThatDoesNotCompileIsNotSent) {
  ASSERT_TRUE(Define(std::make_unique<TalcPathPrivate::TalcCommandFormat>(), "Unread"));
  TalcCommand unknownSymbol = Level();
  unknownSymbol.SetSymbol("Channel", "Right");
  TalcCommand missing("Level");
  missing.SetUInt8("Channel", 7);
  TalcCommand tooLong("Text");
  SetBytes(tooLong, "Text", Bytes(2041));
  const std::pair<TalcCommand, TalcPathStatus> cases[] = {
      {TalcCommand("Nope"), TalcPath::kTPCommandFormatNotFound},
      {TalcCommand(""), TalcPath::kTPCommandFormatNotFound},
      {TalcCommand("Text"), TalcPath::kTPPacketSizeError},
      {tooLong, TalcPath::kTPPacketSizeError},
      {unknownSymbol, TalcPath::kTPInvalidSymbolicConstant},
      {TalcCommand("Unread"), TalcPath::kTPInvalidCommandHeader},
      {missing, TalcPath::kTPCompileMissingParameterData},
  };
  for (auto [command, status] : cases) {
    EXPECT_EQ(Execute(command), Failed(status)) << command.GetName();
    EXPECT_EQ(TakeJournal(), untouched_) << command.GetName();
    EXPECT_EQ(TakeLog(), "") << command.GetName();
  }
}

TEST_F(ExecutionTest, TellsOfACommandThatIsNotDefinedUnderTheVerboseFlag) {
  SetFlags(true, false);
  TalcCommand command("Nope");
  Execute(command);
  EXPECT_EQ(TakeLog(),
            "\nIsMetaCommandFormat- Command format not found - Command : Nope"
            "\nIsDiagCommandFormat- Command format not found - Command : Nope"
            "\nConstructing ByteCode Compiler - Command format not found - Command : Nope");
}

TEST_F(ExecutionTest, AReplyThatCannotBeReadGivesTheReason) {
  const std::pair<const char*, TalcPathStatus> cases[] = {
      {"", TalcPath::kTPPacketSizeError},
      {"0B 0B 00 04 80 05 00", TalcPath::kTPPacketSizeError},
      {"0C 0B 00 07 80 05 00 00 09 AB CD", TalcPath::kTPInvalidTransportHeader},
      {"0B 0B 00 03 80 05 00 00 09 AB CD", TalcPath::kTPInvalidTransportHeader},
      {"0B 0B 00 07 80 05 00 00 09 AB", TalcPath::kTPDecompileMissingParameterData},
      {"0B 0B 00 04 80 05 00 00", TalcPath::kTPDecompileMissingParameterData},
  };
  for (const auto& [reply, status] : cases) {
    TalcCommand command = Request("Level");
    command.SetUInt8("Channel", 7);
    transport_.Expect({{reply}});
    EXPECT_EQ(Execute(command), Failed(status)) << reply;
    EXPECT_EQ(TakeJournal(), (Journal{"lock", "exchange Level 0B 0B 00 05 80 05 00 00 07 timeout 0", "unlock"}));
    EXPECT_EQ(TakeLog(), "");
  }
}

TEST_F(ExecutionTest, ACommandThatIsRenamedOnItsWayIsNotKnownWhenItsReplyIsRead) {
  TalcCommand command = Request("Ping");
  transport_.Expect({{"0B 0B 00 04 80 03 00 00", true, [&] { command.SetName("Nope"); }}});
  EXPECT_EQ(Execute(command), Failed(TalcPath::kTPCommandFormatNotFound));
  EXPECT_EQ(TakeJournal(), (Journal{"lock", "exchange Ping 0B 0B 00 04 80 03 00 00 timeout 0", "unlock"}));
}

TEST_F(ExecutionTest, NeedsATransport) {
  ASSERT_TRUE(TalcPath::TalcPathUnregisterTransport(&transport_, 1));
  for (const char* const name : {"Ping", "Lamp", "Table", "Nope", "Text"}) {
    TalcCommand command(name);
    EXPECT_EQ(Execute(command), Failed(kUntouchedStatus)) << name;
    command.SetTransportId(1);
    EXPECT_EQ(Execute(command), Failed(kUntouchedStatus)) << name;
  }
  EXPECT_EQ(TakeJournal(), Journal{});
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(ExecutionTest, ATransportThatNobodyKnowsFailsUnderTheLockOfTheCurrentOne) {
  for (const char* const name : {"Ping", "Lamp", "Table", "Nope"}) {
    TalcCommand command(name, 2);
    EXPECT_EQ(Execute(command), Failed(kUntouchedStatus)) << name;
    EXPECT_EQ(TakeJournal(), untouched_) << name;
  }
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(ExecutionTest, ACommandForAnotherTransportGoesThereUnderTheLockOfTheCurrentOne) {
  ScriptedTalcTransport current(journal_, "current ");
  ASSERT_TRUE(TalcPathRegisterTransport(&current, 2));
  TalcCommand command("Ping", 1);
  transport_.Expect({{kGood}});
  EXPECT_EQ(Execute(command), kSucceeded);
  EXPECT_EQ(TakeJournal(), (Journal{"current lock", kPing, "completed Ping", "current unlock"}));
  // Also where the current one is not registered itself.
  ASSERT_TRUE(TalcPath::TalcPathUnregisterTransport(&transport_, 2));
  transport_.Expect({{kGood}});
  EXPECT_EQ(Execute(command), kSucceeded);
  EXPECT_EQ(TakeJournal(), (Journal{"current lock", kPing, "completed Ping", "current unlock"}));
}

TEST_F(ExecutionTest, TheCurrentOneCanBeNamed) {
  TalcCommand command("Ping", 1);
  transport_.Expect({{kGood}});
  EXPECT_EQ(Execute(command), kSucceeded);
  EXPECT_EQ(TakeJournal(), completed_);
}

TEST_F(ExecutionTest, ADiagnosticCommandIsRefused) {
  for (TalcCommand command : {TalcCommand("Lamp"), Request("Lamp")}) {
    EXPECT_EQ(Execute(command), Failed(TalcPath::kTPAttemptedToExecuteDiagCommand));
    EXPECT_EQ(TakeJournal(), untouched_);
  }
  EXPECT_EQ(TakeLog(), "");
}

// The exchanges of a meta command carry no name, without which no packet is sent: none reaches the hardware. It is
// meant.
TEST_F(ExecutionTest, AMetaCommandFailsWithoutAnExchange) {
  for (TalcCommand command : {TalcCommand("Table"), Request("Table"), TalcCommand("Broken"), Request("Broken")}) {
    EXPECT_EQ(Execute(command), Failed(TalcPath::kTPFail)) << command.GetName();
    EXPECT_EQ(TakeJournal(), untouched_);
  }
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(ExecutionTest, LetsThroughWhatTheTransportThrowsAndHoldsNoLockThen) {
  TalcCommand command("Ping");
  transport_.Expect({{kGood, true, [] { throw std::runtime_error("gone"); }}});
  EXPECT_THROW(TalcPath::TalcPathExecute(command), std::runtime_error);
  EXPECT_EQ(TakeJournal(), exchanged_);
  transport_.Expect({{kGood, true, [] { throw 5; }}});
  EXPECT_THROW(TalcPath::TalcPathExecute(command), int);
  EXPECT_EQ(TakeJournal(), exchanged_);
  transport_.Expect({{kGood}});
  transport_.onCompleted = [] { throw std::runtime_error("gone"); };
  EXPECT_THROW(TalcPath::TalcPathExecute(command), std::runtime_error);
  EXPECT_EQ(TakeJournal(), completed_);
  // The library is as good as before.
  transport_.onCompleted = nullptr;
  transport_.Expect({{kGood}});
  EXPECT_EQ(Execute(command), kSucceeded);
  EXPECT_EQ(TakeJournal(), completed_);
}

TEST_F(ExecutionTest, LetsThroughAValueOfAnotherKindAndHoldsNoLockThen) {
  TalcCommand number = Level();
  number.SetUInt32("Level", 5);
  EXPECT_THROW(TalcPath::TalcPathExecute(number), TalcPath::bad_variant_cast);
  EXPECT_EQ(TakeJournal(), untouched_);
  TalcCommand text("Text");
  text.SetUInt8("Text", 5);
  EXPECT_THROW(TalcPath::TalcPathExecute(text), TalcPath::bad_variant_cast);
  EXPECT_EQ(TakeJournal(), untouched_);
}

TEST_F(ExecutionTest, BeginsWithAnEmptyReply) {
  TalcCommand command("Ping");
  transport_.Expect({{kGood}, {"", false}, {kGood}, {""}});
  EXPECT_EQ(Execute(command), kSucceeded);
  EXPECT_EQ(Execute(command), Failed(TalcPath::kTPFail));
  EXPECT_EQ(Execute(command), kSucceeded);
  EXPECT_EQ(Execute(command), Failed(TalcPath::kTPPacketSizeError));
}

TEST_F(ExecutionTest, BeginsWithAnEmptyReplyAlsoBehindOneThatThrew) {
  TalcCommand command("Ping");
  transport_.Expect({{kGood, true, [] { throw std::runtime_error("gone"); }}, {"", false}});
  EXPECT_THROW(TalcPath::TalcPathExecute(command), std::runtime_error);
  EXPECT_EQ(Execute(command), Failed(TalcPath::kTPFail));
}

TEST_F(ExecutionTest, WithinAnExchangeHasItsOwnPackets) {
  TalcCommand outer = Request("Level");
  outer.SetUInt8("Channel", 7);
  TalcCommand inner("Ping");
  TalcCommand innermost("Text");
  SetBytes(innermost, "Text", Bytes(4, 0x55));
  transport_.Expect({
      {"0B 0B 00 07 80 05 00 00 09 AB CD", true, [&] { EXPECT_EQ(Execute(inner), kSucceeded); }},
      {kGood, true, [&] { EXPECT_EQ(Execute(innermost), Failed(TalcPath::kTPNotSupported)); }},
      {"0B 0B 00 04 80 06 00 02"},
  });
  EXPECT_EQ(Execute(outer), kSucceeded);
  EXPECT_EQ(TakeJournal(), (Journal{"lock", "exchange Level 0B 0B 00 05 80 05 00 00 07 timeout 0", "lock", kPing,
                                    "lock", "exchange Text 0B 0B 00 08 80 06 00 00 55 55 55 55 timeout 0", "unlock",
                                    "completed Ping", "unlock", "completed Level", "unlock"}));
  std::uint16_t level = 0;
  EXPECT_TRUE(outer.GetUInt16("Level", &level));
  EXPECT_EQ(level, 0xABCD);
}

TEST_F(ExecutionTest, WithinAnExchangeDoesNotFindTheReplyOfTheOther) {
  TalcCommand outer("Ping");
  TalcCommand inner("Ping");
  transport_.Expect({{kGood, true, [&] { EXPECT_EQ(Execute(inner), Failed(TalcPath::kTPPacketSizeError)); }}, {""}});
  EXPECT_EQ(Execute(outer), kSucceeded);
}

TEST_F(ExecutionTest, WritesEachOrdinaryCommandToTheCommandLogBeforeItIsCompiled) {
  const test_support::TempFolder folder;
  ASSERT_TRUE(TalcPath::TalcPathOpenCommandLog(folder.File("log").c_str()));
  clock_.milliseconds = 12345;
  TalcCommand good = Level();
  good.SetSymbol("Channel", "Left");  // which the compile makes a number
  transport_.Expect({{"0B 0B 00 04 80 04 00 00"}});
  EXPECT_TRUE(Execute(good).isGood);
  clock_.milliseconds = 12346;
  for (TalcCommand command :
       {TalcCommand("Text"), TalcCommand("Nope"), TalcCommand("Lamp"), TalcCommand("Table"), TalcCommand("Ping", 2)})
    EXPECT_FALSE(Execute(command).isGood);
  TalcCommand wrong("Text");
  wrong.SetUInt8("Text", 5);
  EXPECT_THROW(TalcPath::TalcPathExecute(wrong), TalcPath::bad_variant_cast);
  TalcCommand packet("Ping");
  transport_.Expect({{kGood}});
  EXPECT_TRUE(TalcPath::TalcPathSendPacket("Ping", TalcByteCode(), nullptr, 0));
  ASSERT_TRUE(TalcPath::TalcPathUnregisterTransport(&transport_, 1));
  EXPECT_FALSE(Execute(packet).isGood);
  TalcPath::TalcPathCloseCommandLog();
  EXPECT_EQ(folder.ReadText("log"),
            "\n@time 12345 ;\ntalc send Level Channel SYMBOL Left Level UINT16 4660 . ;"
            "\n@time 12346 ;\ntalc send Text . ;"
            "\n@time 12346 ;\ntalc send Nope . ;"
            "\n@time 12346 ;\ntalc send Text Text UINT8 5 . ;");
}

TEST_F(ExecutionTest, WritesToTheCommandLogUnderTheLock) {
  const test_support::TempFolder folder;
  ASSERT_TRUE(TalcPath::TalcPathOpenCommandLog(folder.File("log").c_str()));
  const auto close = [] { TalcPath::TalcPathCloseCommandLog(); };
  transport_.onUnlock = close;
  TalcCommand first("Nope");
  Execute(first);
  EXPECT_EQ(folder.ReadText("log"), "\n@time 0 ;\ntalc send Nope . ;");
  ASSERT_TRUE(TalcPath::TalcPathOpenCommandLog(folder.File("log").c_str()));
  transport_.onLock = close;
  Execute(first);
  EXPECT_EQ(folder.ReadText("log"), "");
}

TEST_F(ExecutionTest, HoldsTheLockOfTheOneThatWasCurrentWhenItBegan) {
  ScriptedTalcTransport next(journal_, "next ");
  TalcCommand command("Ping");
  transport_.Expect({{kGood, true, [&] { TalcPathRegisterTransport(&next, 2); }}});
  EXPECT_EQ(Execute(command), kSucceeded);
  EXPECT_EQ(TakeJournal(), completed_);
  next.Expect({{kGood}});
  EXPECT_EQ(Execute(command), kSucceeded);
  EXPECT_EQ(TakeJournal(), (Journal{"next lock", std::string("next ") + kPing, "next completed Ping", "next unlock"}));
}

}  // namespace
