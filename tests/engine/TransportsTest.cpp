// The transports that the library knows, their locks, and packets that are handed to them as they are.

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

#include "ScriptedTalcTransport.h"

namespace {

using namespace engine_test;
using TalcPath::StackBasedMutexCaller;
using TalcPath::TalcPathGetNthTransport;
using TalcPath::TalcPathGetTransport;
using TalcPath::TalcPathGetTransportById;
using TalcPath::TalcPathGetTransportCount;
using TalcPath::TalcPathRegisterTransport;
using TalcPath::TalcPathSelectTransport;
using TalcPath::TalcPathSendPacket;
using TalcPath::TalcPathUnregisterTransport;
using TalcPath::TalcTransport;

class TransportsTest : public TransportTest {
 protected:
  TransportsTest() { StartWith(kDictionary); }
  // None of this is a matter of locks.
  ~TransportsTest() override { EXPECT_EQ(journal_, Journal{}); }

  ScriptedTalcTransport other_{journal_, "other "};
};

TEST_F(TransportsTest, AreNoneAtFirst) {
  EXPECT_EQ(TalcPathGetTransport(), nullptr);
  EXPECT_EQ(TalcPathGetTransportCount(), 0u);
  std::uint32_t id = 77;
  EXPECT_EQ(TalcPathGetNthTransport(1, &id), nullptr);
  EXPECT_EQ(id, 77u);
  EXPECT_EQ(TalcPathGetTransportById(1), nullptr);
}

TEST_F(TransportsTest, RegisteringMakesCurrent) {
  EXPECT_TRUE(TalcPathRegisterTransport(&transport_, 5));
  EXPECT_EQ(TalcPathGetTransport(), &transport_);
  EXPECT_EQ(TalcPathGetTransportById(5), &transport_);
  EXPECT_EQ(TalcPathGetTransportCount(), 1u);
  EXPECT_TRUE(TalcPathRegisterTransport(&other_, 3));
  EXPECT_EQ(TalcPathGetTransport(), &other_);
  EXPECT_EQ(TalcPathGetTransportById(3), &other_);
  EXPECT_EQ(TalcPathGetTransportById(5), &transport_);
  EXPECT_EQ(TalcPathGetTransportById(4), nullptr);
  EXPECT_EQ(TalcPathGetTransportCount(), 2u);
}

TEST_F(TransportsTest, ANumberThatIsTakenKeepsItsTransportAndTheNewOneIsStillCurrent) {
  ASSERT_TRUE(TalcPathRegisterTransport(&transport_, 5));
  EXPECT_FALSE(TalcPathRegisterTransport(&other_, 5));
  EXPECT_EQ(TalcPathGetTransport(), &other_);
  EXPECT_EQ(TalcPathGetTransportById(5), &transport_);
  EXPECT_EQ(TalcPathGetTransportCount(), 1u);
  EXPECT_FALSE(TalcPathRegisterTransport(&transport_, 5));
  EXPECT_EQ(TalcPathGetTransport(), &transport_);
}

TEST_F(TransportsTest, RegisteringNoneLeavesNoneCurrent) {
  ASSERT_TRUE(TalcPathRegisterTransport(&transport_, 5));
  EXPECT_FALSE(TalcPathRegisterTransport(nullptr, 6));
  EXPECT_EQ(TalcPathGetTransport(), nullptr);
  EXPECT_EQ(TalcPathGetTransportById(5), &transport_);
  EXPECT_EQ(TalcPathGetTransportById(6), nullptr);
  EXPECT_EQ(TalcPathGetTransportCount(), 1u);
}

TEST_F(TransportsTest, RegisteringNoneIsARegistrationAllTheSame) {
  EXPECT_FALSE(TalcPathUnregisterTransport(&transport_, 5));
  EXPECT_FALSE(TalcPathRegisterTransport(nullptr, 5));
  EXPECT_EQ(TalcPathGetTransportCount(), 0u);
  EXPECT_TRUE(TalcPathUnregisterTransport(&transport_, 5));
  // From now on only what is registered can be selected.
  EXPECT_FALSE(TalcPathSelectTransport(&transport_));
}

TEST_F(TransportsTest, OneCanHaveSeveralNumbers) {
  EXPECT_TRUE(TalcPathRegisterTransport(&transport_, 5));
  EXPECT_TRUE(TalcPathRegisterTransport(&transport_, 4294967295));
  EXPECT_EQ(TalcPathGetTransportById(5), &transport_);
  EXPECT_EQ(TalcPathGetTransportById(4294967295), &transport_);
  EXPECT_EQ(TalcPathGetTransportCount(), 2u);
}

TEST_F(TransportsTest, TheNumber0IsCountedAndNotFound) {
  EXPECT_TRUE(TalcPathRegisterTransport(&transport_, 0));
  EXPECT_EQ(TalcPathGetTransport(), &transport_);
  EXPECT_EQ(TalcPathGetTransportById(0), nullptr);
  EXPECT_EQ(TalcPathGetTransportCount(), 1u);
  std::uint32_t id = 77;
  EXPECT_EQ(TalcPathGetNthTransport(1, &id), &transport_);
  EXPECT_EQ(id, 0u);
  EXPECT_TRUE(TalcPathUnregisterTransport(&transport_, 0));
  EXPECT_EQ(TalcPathGetTransportCount(), 0u);
}

TEST_F(TransportsTest, AreCountedFromOneInTheOrderOfTheirNumbers) {
  ScriptedTalcTransport third(journal_, "third ");
  ASSERT_TRUE(TalcPathRegisterTransport(&transport_, 4294967295));
  ASSERT_TRUE(TalcPathRegisterTransport(&other_, 2));
  ASSERT_TRUE(TalcPathRegisterTransport(&third, 10));
  std::uint32_t id = 77;
  EXPECT_EQ(TalcPathGetNthTransport(1, &id), &other_);
  EXPECT_EQ(id, 2u);
  EXPECT_EQ(TalcPathGetNthTransport(2, &id), &third);
  EXPECT_EQ(id, 10u);
  EXPECT_EQ(TalcPathGetNthTransport(3, &id), &transport_);
  EXPECT_EQ(id, 4294967295u);
  EXPECT_EQ(TalcPathGetNthTransport(3, nullptr), &transport_);
  id = 77;
  for (const std::uint32_t beyond : {0u, 4u, 4294967295u}) {
    EXPECT_EQ(TalcPathGetNthTransport(beyond, &id), nullptr) << beyond;
    EXPECT_EQ(id, 77u) << beyond;
  }
}

TEST_F(TransportsTest, AreUnregisteredByNumber) {
  ASSERT_TRUE(TalcPathRegisterTransport(&transport_, 5));
  ASSERT_TRUE(TalcPathRegisterTransport(&other_, 6));
  EXPECT_TRUE(TalcPathUnregisterTransport(&transport_, 5));
  EXPECT_EQ(TalcPathGetTransportById(5), nullptr);
  EXPECT_EQ(TalcPathGetTransportById(6), &other_);
  EXPECT_EQ(TalcPathGetTransportCount(), 1u);
  EXPECT_EQ(TalcPathGetTransport(), &other_);
  EXPECT_TRUE(TalcPathRegisterTransport(&transport_, 5));
}

TEST_F(TransportsTest, UnregisteringTheCurrentOneLeavesNone) {
  ASSERT_TRUE(TalcPathRegisterTransport(&transport_, 5));
  ASSERT_TRUE(TalcPathRegisterTransport(&other_, 6));
  EXPECT_TRUE(TalcPathUnregisterTransport(&other_, 6));
  EXPECT_EQ(TalcPathGetTransport(), nullptr);
  EXPECT_EQ(TalcPathGetTransportById(5), &transport_);
}

// Number and transport are not compared. It is meant.
TEST_F(TransportsTest, UnregisteringTakesTheNumberOfAnotherOne) {
  ASSERT_TRUE(TalcPathRegisterTransport(&transport_, 5));
  ASSERT_TRUE(TalcPathRegisterTransport(&other_, 6));
  EXPECT_TRUE(TalcPathUnregisterTransport(&transport_, 6));
  EXPECT_EQ(TalcPathGetTransport(), &other_);  // which nobody has registered any more
  EXPECT_EQ(TalcPathGetTransportById(6), nullptr);
  EXPECT_TRUE(TalcPathUnregisterTransport(&other_, 5));
  EXPECT_EQ(TalcPathGetTransport(), nullptr);
  EXPECT_EQ(TalcPathGetTransportCount(), 0u);
}

TEST_F(TransportsTest, UnregisteringANumberThatNobodyHasChangesNothing) {
  ASSERT_TRUE(TalcPathRegisterTransport(&transport_, 5));
  EXPECT_TRUE(TalcPathUnregisterTransport(&transport_, 6));
  EXPECT_EQ(TalcPathGetTransport(), &transport_);
  EXPECT_EQ(TalcPathGetTransportById(5), &transport_);
}

TEST_F(TransportsTest, UnregisteringNoneIsRefused) {
  EXPECT_FALSE(TalcPathUnregisterTransport(nullptr, 5));
  ASSERT_TRUE(TalcPathRegisterTransport(&transport_, 5));
  EXPECT_FALSE(TalcPathUnregisterTransport(nullptr, 5));
  EXPECT_EQ(TalcPathGetTransportById(5), &transport_);
  EXPECT_FALSE(TalcPathUnregisterTransport(nullptr, 6));
}

TEST_F(TransportsTest, UnregisteringBeforeTheFirstRegistrationIsRefused) {
  EXPECT_FALSE(TalcPathUnregisterTransport(&transport_, 5));
  ASSERT_TRUE(TalcPathRegisterTransport(&transport_, 5));
  ASSERT_TRUE(TalcPathUnregisterTransport(&transport_, 5));
  EXPECT_TRUE(TalcPathUnregisterTransport(&transport_, 5));
}

TEST_F(TransportsTest, AllGoAtTheLastStop) {
  ASSERT_TRUE(TalcPath::TalcPathInit());
  ASSERT_TRUE(TalcPathRegisterTransport(&transport_, 5));
  ASSERT_TRUE(TalcPath::TalcPathTerminate());
  EXPECT_EQ(TalcPathGetTransport(), &transport_);
  EXPECT_EQ(TalcPathGetTransportById(5), &transport_);
  ASSERT_TRUE(TalcPath::TalcPathTerminate());
  EXPECT_EQ(TalcPathGetTransport(), nullptr);
  EXPECT_EQ(TalcPathGetTransportById(5), nullptr);
  EXPECT_EQ(TalcPathGetTransportCount(), 0u);
  // It is as before the first registration.
  EXPECT_FALSE(TalcPathUnregisterTransport(&transport_, 5));
}

TEST_F(TransportsTest, NeedNoStart) {
  ASSERT_TRUE(TalcPath::TalcPathTerminate());
  ASSERT_TRUE(TalcPathRegisterTransport(&transport_, 5));
  ASSERT_TRUE(TalcPath::TalcPathInit());
  EXPECT_EQ(TalcPathGetTransport(), &transport_);
  EXPECT_EQ(TalcPathGetTransportById(5), &transport_);
}

class StackBasedMutexCallerTest : public TransportTest {};

TEST_F(StackBasedMutexCallerTest, HoldsTheLockWhileItLives) {
  {
    const StackBasedMutexCaller lock(&transport_);
    EXPECT_EQ(TakeJournal(), Journal{"lock"});
  }
  EXPECT_EQ(TakeJournal(), Journal{"unlock"});
  const std::unique_ptr<StackBasedMutexCaller> onHeap = std::make_unique<StackBasedMutexCaller>(&transport_);
  EXPECT_EQ(TakeJournal(), Journal{"lock"});
}

TEST_F(StackBasedMutexCallerTest, ReleasesWhenSomethingIsThrown) {
  try {
    const StackBasedMutexCaller lock(&transport_);
    throw std::runtime_error("gone");
  } catch (const std::runtime_error&) {
    journal_.emplace_back("caught");
  }
  EXPECT_EQ(TakeJournal(), (Journal{"lock", "unlock", "caught"}));
}

TEST_F(StackBasedMutexCallerTest, DoesNothingWithoutATransport) {
  ASSERT_TRUE(TalcPathRegisterTransport(&transport_, 1));
  { const StackBasedMutexCaller lock(nullptr); }
  EXPECT_EQ(TakeJournal(), Journal{});
}

class SendPacketTest : public TransportTest {
 protected:
  SendPacketTest() {
    const Bytes bytes = FromHex("01 02 03");
    packet_.Set(bytes.data(), 3);
  }

  TalcByteCode packet_;
  TalcByteCode reply_;
};

TEST_F(SendPacketTest, HandsItOverAsItIsUnderTheLock) {
  ASSERT_TRUE(TalcPathRegisterTransport(&transport_, 1));
  transport_.Expect({{"0B 0B 00 05 80 21 00 00 42"}});
  EXPECT_TRUE(TalcPathSendPacket("Any name", packet_, &reply_, 4294967295));
  EXPECT_EQ(Hex(reply_), "0B 0B 00 05 80 21 00 00 42");
  EXPECT_EQ(TakeJournal(), (Journal{"lock", "exchange Any name 01 02 03 timeout 4294967295", "unlock"}));
}

TEST_F(SendPacketTest, TakesAnEmptyPacketAndAnEmptyName) {
  ASSERT_TRUE(TalcPathRegisterTransport(&transport_, 1));
  transport_.Expect({{kGood}});
  EXPECT_TRUE(TalcPathSendPacket("", TalcByteCode(), &reply_, 0));
  EXPECT_EQ(TakeJournal(), (Journal{"lock", "exchange   timeout 0", "unlock"}));
}

TEST_F(SendPacketTest, NeedsATransport) {
  EXPECT_FALSE(TalcPathSendPacket("Ping", packet_, &reply_, 0));
  EXPECT_FALSE(TalcPathSendPacket("Ping", packet_, nullptr, 0));
  EXPECT_EQ(Hex(reply_), "");
}

TEST_F(SendPacketTest, GoesToTheCurrentOne) {
  ScriptedTalcTransport other(journal_, "other ");
  ASSERT_TRUE(TalcPathRegisterTransport(&transport_, 1));
  ASSERT_TRUE(TalcPathRegisterTransport(&other, 2));
  other.Expect({{kGood}});
  EXPECT_TRUE(TalcPathSendPacket("Ping", packet_, &reply_, 0));
  EXPECT_EQ(TakeJournal(), (Journal{"other lock", "other exchange Ping 01 02 03 timeout 0", "other unlock"}));
}

TEST_F(SendPacketTest, WithoutANameIsRefusedWithoutAWordToTheTransport) {
  ASSERT_TRUE(TalcPathRegisterTransport(&transport_, 1));
  EXPECT_FALSE(TalcPathSendPacket(nullptr, packet_, &reply_, 0));
  EXPECT_EQ(TakeJournal(), Journal{});
}

TEST_F(SendPacketTest, IsAMatterOfTheReplysStatus) {
  ASSERT_TRUE(TalcPathRegisterTransport(&transport_, 1));
  const std::pair<const char*, bool> cases[] = {
      {"0B 0B 00 04 80 02 00 00", true},  {"0B 0B 00 04 80 02 00 01", false}, {"0B 0B 00 04 80 02 00 02", false},
      {"0B 0B 00 04 80 02 00 F0", false}, {"0B 0B 00 04 80 02 00 FF", false}, {"0B 0B 00 04 80 02 00 80", false},
      {"0B 0B 00 04 80 02 00", false},    {"0B 0C 00 04 80 02 00 00", false}, {"", false},
  };
  for (const auto& [reply, isGood] : cases) {
    for (TalcByteCode* const taker : {&reply_, static_cast<TalcByteCode*>(nullptr)}) {
      reply_.Clear();
      transport_.Expect({{reply}});
      EXPECT_EQ(TalcPathSendPacket("Ping", packet_, taker, 0), isGood) << reply;
      EXPECT_EQ(Hex(reply_), taker == nullptr ? "" : reply);
      EXPECT_EQ(TakeJournal(), (Journal{"lock", "exchange Ping 01 02 03 timeout 0", "unlock"}));
    }
  }
  // A time-out is for the caller to tell.
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(SendPacketTest, DoesNotSucceedWhenTheExchangeDidNotWhateverTheReplySays) {
  ASSERT_TRUE(TalcPathRegisterTransport(&transport_, 1));
  for (TalcByteCode* const taker : {&reply_, static_cast<TalcByteCode*>(nullptr)}) {
    transport_.Expect({{kGood, false}});
    EXPECT_FALSE(TalcPathSendPacket("Ping", packet_, taker, 0));
    EXPECT_EQ(TakeJournal(), (Journal{"lock", "exchange Ping 01 02 03 timeout 0", "unlock"}));
  }
  EXPECT_EQ(Hex(reply_), kGood);
}

TEST_F(SendPacketTest, LetsThroughWhatTheTransportThrowsAndHoldsNoLockThen) {
  ASSERT_TRUE(TalcPathRegisterTransport(&transport_, 1));
  transport_.Expect({{kGood, true, [] { throw std::runtime_error("gone"); }}});
  EXPECT_THROW(TalcPathSendPacket("Ping", packet_, &reply_, 0), std::runtime_error);
  EXPECT_EQ(TakeJournal(), (Journal{"lock", "exchange Ping 01 02 03 timeout 0", "unlock"}));
}

}  // namespace
