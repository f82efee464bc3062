// Selecting a transport, and the time-outs of the hardware behind it.

#include <gtest/gtest.h>

#include <stdexcept>

#include "ScriptedTalcTransport.h"

namespace {

using namespace engine_test;
using TalcPath::TalcHWCapsManager;
using TalcPath::TalcPathGetTransport;
using TalcPath::TalcPathRegisterTransport;
using TalcPath::TalcPathSelectTransport;

constexpr const char* kCommands =
    "HardwareTypeID Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 16 DataName TypeID DataType BYTES ;"
    "Ask Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 1 ;"
    "Put Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 2 ;"
    "Zap Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 3 ;";
constexpr const char* kBox =
    "HardwareType Box ; Property TalcConduitBaseID INTEGER 7 ; Property HasHardwareSubcompCount INTEGER 0 ;"
    "CmdOverrideTimeout Ask 700 ; CmdOverrideTimeout Put 4294967295 ;";
constexpr const char* kCrate =
    "HardwareType Crate ; Property TalcConduitBaseID INTEGER 8 ; Property HasHardwareSubcompCount INTEGER 0 ;"
    "CmdOverrideTimeout Zap 80 ;";
/// Its second command is one that no dictionary has.
constexpr const char* kSack =
    "HardwareType Sack ; Property TalcConduitBaseID INTEGER 9 ; Property HasHardwareSubcompCount INTEGER 0 ;"
    "CmdOverrideTimeout Ask 30 ; CmdOverrideTimeout Nowhere 40 ; CmdOverrideTimeout Zap 50 ;";
constexpr const char* kIsBox = "0B 0B 00 07 80 21 00 00 42 6F 78";
constexpr const char* kIsCrate = "0B 0B 00 09 80 21 00 00 43 72 61 74 65";
constexpr const char* kIsSack = "0B 0B 00 08 80 21 00 00 53 61 63 6B";
constexpr const char* kUnknownHardware = "\nTalcHWCapsManager::CreateMyHWCaps No HWCaps file found setting to NULL";

class SelectTransportTest : public TransportTest {
 protected:
  SelectTransportTest() {
    for (const char* const capabilities : {kBox, kCrate, kSack})
      blocks_.AddCapabilities(std::string(capabilities, 18), capabilities);
    StartWith(kCommands);
  }

  /// Those of Ask, Put and Zap.
  static std::vector<std::uint32_t> TimeOuts() {
    return {TalcPath::GetOverrideTimeoutMillisec(TalcCommand("Ask")),
            TalcPath::GetOverrideTimeoutMillisec(TalcCommand("Put")),
            TalcPath::GetOverrideTimeoutMillisec(TalcCommand("Zap"))};
  }
  static void SetTimeOuts(std::uint32_t milliseconds) {
    for (const char* const name : {"Ask", "Put", "Zap"})
      ASSERT_TRUE(TalcPath::SetOverrideTimeoutMillisec(name, milliseconds));
  }
  /// Makes the manager without asking anybody.
  void MakeManager() {
    TalcHWCapsManager::Get();
    TakeLog();
  }
  /// One question to a transport of that label, with its answer.
  static Journal Question(const std::string& label) {
    return {label + "lock", label + "exchange HardwareTypeID 0B 0B 00 04 80 21 00 00 timeout 0",
            label + "completed HardwareTypeID", label + "unlock"};
  }
  static Journal Joined(std::initializer_list<Journal> parts) {
    Journal all;
    for (const Journal& part : parts)
      all.insert(all.end(), part.begin(), part.end());
    return all;
  }

  ScriptedTalcTransport old_{journal_, "old "};
  ScriptedTalcTransport new_{journal_, "new "};
};

TEST_F(SelectTransportTest, PutsTheTimeOutsOfTheHardwareInForceInPlaceOfAllOthers) {
  MakeManager();
  ASSERT_TRUE(TalcPathRegisterTransport(&new_, 1));
  SetTimeOuts(5);
  new_.Expect({{kIsBox}, {kIsCrate}, {kIsSack}});
  EXPECT_TRUE(TalcPathSelectTransport(&new_));
  EXPECT_EQ(TimeOuts(), (std::vector<std::uint32_t>{700, 4294967295, 0}));
  EXPECT_EQ(TalcHWCapsManager::Get().GetMyCapabilities().GetName(), "Box");
  // The one that is current is asked anew.
  EXPECT_TRUE(TalcPathSelectTransport(&new_));
  EXPECT_EQ(TimeOuts(), (std::vector<std::uint32_t>{0, 0, 80}));
  EXPECT_EQ(TalcHWCapsManager::Get().GetMyCapabilities().GetName(), "Crate");
  // The first command that is not known ends it, and is no failure.
  EXPECT_TRUE(TalcPathSelectTransport(&new_));
  EXPECT_EQ(TimeOuts(), (std::vector<std::uint32_t>{30, 0, 0}));
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(SelectTransportTest, ChangesUnderTheOldLockThenAsksAndAppliesUnderTheNewOne) {
  MakeManager();
  ASSERT_TRUE(TalcPathRegisterTransport(&new_, 1));
  ASSERT_TRUE(TalcPathRegisterTransport(&old_, 2));
  new_.Expect({{kIsBox}});
  EXPECT_TRUE(TalcPathSelectTransport(&new_));
  EXPECT_EQ(TalcPathGetTransport(), &new_);
  EXPECT_EQ(TakeJournal(), Joined({{"old lock", "old unlock"}, Question("new "), {"new lock", "new unlock"}}));
}

TEST_F(SelectTransportTest, HoldsTheOldLockAroundTheChangeAlone) {
  MakeManager();
  ASSERT_TRUE(TalcPathRegisterTransport(&new_, 1));
  ASSERT_TRUE(TalcPathRegisterTransport(&old_, 2));
  old_.onLock = [this] { EXPECT_EQ(TalcPathGetTransport(), &old_); };
  old_.onUnlock = [this] { EXPECT_EQ(TalcPathGetTransport(), &new_); };
  new_.Expect({{kIsBox}});
  EXPECT_TRUE(TalcPathSelectTransport(&new_));
}

TEST_F(SelectTransportTest, ChangesTheTimeOutsUnderTheNewLockBehindTheQuestions) {
  MakeManager();
  ASSERT_TRUE(TalcPathRegisterTransport(&new_, 1));
  SetTimeOuts(5);
  std::vector<std::vector<std::uint32_t>> seen;
  new_.onLock = new_.onUnlock = [&] { seen.push_back(TimeOuts()); };
  new_.Expect({{kIsBox}});
  EXPECT_TRUE(TalcPathSelectTransport(&new_));
  const std::vector<std::uint32_t> before = {5, 5, 5};
  const std::vector<std::uint32_t> after = {700, 4294967295, 0};
  // The lock of the change, the question's, and the last one.
  EXPECT_EQ(seen, (std::vector{before, before, before, before, before, after}));
}

// Each of the two is to ask: the one that makes the manager, and the one that selects. It is meant.
TEST_F(SelectTransportTest, AManagerThatComesIntoBeingByItAsksTwice) {
  ASSERT_TRUE(TalcPathRegisterTransport(&new_, 1));
  ASSERT_TRUE(TalcPathRegisterTransport(&old_, 2));
  new_.Expect({{kIsBox}, {kIsCrate}});
  EXPECT_TRUE(TalcPathSelectTransport(&new_));
  EXPECT_EQ(TakeJournal(),
            Joined({{"old lock", "old unlock"}, Question("new "), Question("new "), {"new lock", "new unlock"}}));
  EXPECT_EQ(TimeOuts(), (std::vector<std::uint32_t>{0, 0, 80}));  // the second answer counts
}

TEST_F(SelectTransportTest, SelectsNone) {
  MakeManager();
  ASSERT_TRUE(TalcPathRegisterTransport(&old_, 1));
  SetTimeOuts(5);
  EXPECT_TRUE(TalcPathSelectTransport(nullptr));
  EXPECT_EQ(TalcPathGetTransport(), nullptr);
  EXPECT_EQ(TalcPath::TalcPathGetTransportById(1), &old_);
  EXPECT_EQ(TakeJournal(), (Journal{"old lock", "old unlock"}));
  EXPECT_EQ(TimeOuts(), (std::vector<std::uint32_t>{0, 0, 0}));
  EXPECT_EQ(TakeLog(), kUnknownHardware);
  EXPECT_TRUE(TalcPathSelectTransport(nullptr));
  EXPECT_EQ(TakeJournal(), Journal{});
  EXPECT_EQ(TakeLog(), kUnknownHardware);
}

TEST_F(SelectTransportTest, SelectsNoneAlsoBeforeAnyRegistration) {
  EXPECT_TRUE(TalcPathSelectTransport(nullptr));
  EXPECT_EQ(TalcPathGetTransport(), nullptr);
  EXPECT_EQ(TakeLog(), std::string(kUnknownHardware) + kUnknownHardware);
}

TEST_F(SelectTransportTest, RefusesOneThatIsNotRegistered) {
  MakeManager();
  ASSERT_TRUE(TalcPathRegisterTransport(&old_, 1));
  SetTimeOuts(5);
  EXPECT_FALSE(TalcPathSelectTransport(&new_));
  EXPECT_EQ(TalcPathGetTransport(), &old_);
  EXPECT_EQ(TakeJournal(), Journal{});
  EXPECT_EQ(TimeOuts(), (std::vector<std::uint32_t>{5, 5, 5}));
  EXPECT_EQ(TakeLog(), "");
  // Nor does a map that is empty again take everything.
  ASSERT_TRUE(TalcPath::TalcPathUnregisterTransport(&old_, 1));
  EXPECT_FALSE(TalcPathSelectTransport(&new_));
  EXPECT_FALSE(TalcPathSelectTransport(&old_));
}

TEST_F(SelectTransportTest, RefusesTheCurrentOneWhenItIsNotRegistered) {
  ASSERT_TRUE(TalcPathRegisterTransport(&old_, 1));
  ASSERT_FALSE(TalcPathRegisterTransport(&new_, 1));
  EXPECT_FALSE(TalcPathSelectTransport(&new_));
  EXPECT_EQ(TalcPathGetTransport(), &new_);
}

TEST_F(SelectTransportTest, FindsTheRegisteredOneByItselfAndNotByItsNumber) {
  MakeManager();
  ASSERT_TRUE(TalcPathRegisterTransport(&old_, 4));
  ASSERT_TRUE(TalcPathRegisterTransport(&new_, 0));
  ASSERT_TRUE(TalcPathRegisterTransport(&transport_, 2));
  new_.Expect({{kIsBox}});
  EXPECT_TRUE(TalcPathSelectTransport(&new_));
  old_.Expect({{kIsCrate}});
  EXPECT_TRUE(TalcPathSelectTransport(&old_));
  EXPECT_EQ(TalcPathGetTransport(), &old_);
  EXPECT_EQ(TimeOuts(), (std::vector<std::uint32_t>{0, 0, 80}));
}

TEST_F(SelectTransportTest, TakesAnyBeforeTheFirstRegistration) {
  MakeManager();
  new_.Expect({{kIsBox}});
  EXPECT_TRUE(TalcPathSelectTransport(&new_));
  EXPECT_EQ(TalcPathGetTransport(), &new_);
  EXPECT_EQ(TakeJournal(), Joined({Question("new "), {"new lock", "new unlock"}}));
  EXPECT_EQ(TimeOuts(), (std::vector<std::uint32_t>{700, 4294967295, 0}));
  EXPECT_EQ(TalcPath::TalcPathGetTransportCount(), 0u);
  // Selecting is no registration.
  old_.Expect({{kIsCrate}});
  EXPECT_TRUE(TalcPathSelectTransport(&old_));
  EXPECT_EQ(TakeJournal(), Joined({{"new lock", "new unlock"}, Question("old "), {"old lock", "old unlock"}}));
}

TEST_F(SelectTransportTest, HardwareThatDoesNotAnswerHasNoTimeOuts) {
  MakeManager();
  ASSERT_TRUE(TalcPathRegisterTransport(&new_, 1));
  for (const Answer& answer : {Answer{"", false}, Answer{"0B 0B 00 04 80 21 00 02"}, Answer{"0B 0B 00 04 80 21 00 00"},
                               Answer{kIsBox, false}}) {
    SetTimeOuts(5);
    new_.Expect({answer});
    EXPECT_TRUE(TalcPathSelectTransport(&new_));
    EXPECT_EQ(TimeOuts(), (std::vector<std::uint32_t>{0, 0, 0}));
    EXPECT_EQ(TakeLog(), kUnknownHardware);
  }
}

TEST_F(SelectTransportTest, HardwareThatIsNotKnownHasNoTimeOuts) {
  MakeManager();
  ASSERT_TRUE(TalcPathRegisterTransport(&new_, 1));
  SetTimeOuts(5);
  new_.Expect({{"0B 0B 00 06 80 21 00 00 42 6F"}});  // "Bo"
  EXPECT_TRUE(TalcPathSelectTransport(&new_));
  EXPECT_EQ(TimeOuts(), (std::vector<std::uint32_t>{0, 0, 0}));
}

TEST_F(SelectTransportTest, HoldsNoLockWhenTheTransportThrows) {
  MakeManager();
  ASSERT_TRUE(TalcPathRegisterTransport(&new_, 1));
  ASSERT_TRUE(TalcPathRegisterTransport(&old_, 2));
  SetTimeOuts(5);
  new_.Expect({{kIsBox, true, [] { throw std::runtime_error("gone"); }}});
  EXPECT_THROW(TalcPathSelectTransport(&new_), std::runtime_error);
  EXPECT_EQ(TakeJournal(), (Journal{"old lock", "old unlock", "new lock",
                                    "new exchange HardwareTypeID 0B 0B 00 04 80 21 00 00 timeout 0", "new unlock"}));
  EXPECT_EQ(TalcPathGetTransport(), &new_);
  EXPECT_EQ(TimeOuts(), (std::vector<std::uint32_t>{5, 5, 5}));
}

TEST_F(SelectTransportTest, NeedsNoStart) {
  ASSERT_TRUE(TalcPath::TalcPathTerminate());
  EXPECT_TRUE(TalcPathSelectTransport(&new_));
  EXPECT_EQ(TalcPathGetTransport(), &new_);
  EXPECT_EQ(TakeJournal(), (Journal{"new lock", "new unlock"}));
}

TEST_F(SelectTransportTest, TheTimeOutsReachTheNextExchange) {
  MakeManager();
  ASSERT_TRUE(TalcPathRegisterTransport(&new_, 1));
  new_.Expect({{kIsBox}, {"0B 0B 00 04 80 02 00 00"}});
  EXPECT_TRUE(TalcPathSelectTransport(&new_));
  TakeJournal();
  TalcCommand command("Ask");
  EXPECT_EQ(Execute(command), kSucceeded);
  EXPECT_EQ(TakeJournal(), (Journal{"new lock", "new exchange Ask 0B 0B 00 04 80 02 00 00 timeout 700",
                                    "new completed Ask", "new unlock"}));
}

}  // namespace
