// The lists of observers, which are alike for all three kinds.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "ObserverProbes.h"
#include "ScriptedTalcTransport.h"

namespace {

using namespace engine_test;

template <typename ProbeType>
class ObserverListTest : public TransportTest {
 protected:
  using Probe = ProbeType;

  ObserverListTest() {
    StartWith(kDictionary);
    TalcPath::TalcPathRegisterTransport(&transport_, 1);
  }

  /// Executes a command and gives what the observers noted.
  Journal Calls() {
    transport_.Expect({{kGood}});
    TalcCommand ping("Ping");
    EXPECT_EQ(Execute(ping), kSucceeded);
    Journal calls;
    for (const std::string& line : TakeJournal())
      if (line.starts_with("observer ")) calls.push_back(line.substr(9));
    return calls;
  }

  Probe a_{journal_, "observer A"};
  Probe b_{journal_, "observer B"};
  Probe c_{journal_, "observer C"};
};

using Kinds = ::testing::Types<PreCompileProbe, ExchangeProbe, CompletionProbe>;
TYPED_TEST_SUITE(ObserverListTest, Kinds);

TYPED_TEST(ObserverListTest, RefusesNone) {
  EXPECT_FALSE(TypeParam::Remove(nullptr));
  EXPECT_FALSE(TypeParam::Add(nullptr));
  EXPECT_FALSE(TypeParam::Remove(nullptr));
  EXPECT_EQ(this->Calls(), Journal{});
}

TYPED_TEST(ObserverListTest, CallsInTheOrderOfAdding) {
  EXPECT_TRUE(TypeParam::Add(&this->c_));
  EXPECT_TRUE(TypeParam::Add(&this->a_));
  EXPECT_TRUE(TypeParam::Add(&this->b_));
  EXPECT_EQ(this->Calls(), (Journal{"C Ping", "A Ping", "B Ping"}));
  EXPECT_EQ(this->Calls(), (Journal{"C Ping", "A Ping", "B Ping"}));
}

TYPED_TEST(ObserverListTest, RefusesOneThatItHas) {
  EXPECT_TRUE(TypeParam::Add(&this->a_));
  EXPECT_TRUE(TypeParam::Add(&this->b_));
  EXPECT_FALSE(TypeParam::Add(&this->a_));
  EXPECT_FALSE(TypeParam::Add(&this->b_));
  EXPECT_EQ(this->Calls(), (Journal{"A Ping", "B Ping"}));
}

TYPED_TEST(ObserverListTest, RemovesOnlyWhatItHas) {
  EXPECT_FALSE(TypeParam::Remove(&this->a_));  // before any was added
  EXPECT_TRUE(TypeParam::Add(&this->b_));
  EXPECT_FALSE(TypeParam::Remove(&this->a_));
  EXPECT_EQ(this->Calls(), (Journal{"B Ping"}));
  EXPECT_TRUE(TypeParam::Remove(&this->b_));
  EXPECT_FALSE(TypeParam::Remove(&this->b_));
  EXPECT_EQ(this->Calls(), Journal{});
}

TYPED_TEST(ObserverListTest, TakesOneAgainBehindTheOthers) {
  EXPECT_TRUE(TypeParam::Add(&this->a_));
  EXPECT_TRUE(TypeParam::Add(&this->b_));
  EXPECT_TRUE(TypeParam::Remove(&this->a_));
  EXPECT_EQ(this->Calls(), (Journal{"B Ping"}));
  EXPECT_TRUE(TypeParam::Add(&this->a_));
  EXPECT_EQ(this->Calls(), (Journal{"B Ping", "A Ping"}));
}

TYPED_TEST(ObserverListTest, OutlastsAStopOfTheLibrary) {
  EXPECT_TRUE(TypeParam::Add(&this->a_));
  EXPECT_TRUE(TypeParam::Add(&this->b_));
  ASSERT_TRUE(TalcPath::TalcPathTerminate());
  EXPECT_FALSE(TypeParam::Add(&this->a_));
  EXPECT_TRUE(TypeParam::Add(&this->c_));
  ASSERT_TRUE(TalcPath::TalcPathInit());
  ASSERT_TRUE(TalcPath::TalcPathRegisterTransport(&this->transport_, 1));
  EXPECT_EQ(this->Calls(), (Journal{"A Ping", "B Ping", "C Ping"}));
}

class ObserverKinds : public TransportTest {};

TEST_F(ObserverKinds, HaveListsOfTheirOwn) {
  PreCompileProbe early(journal_, "early");
  ExchangeProbe swap(journal_, "swap");
  CompletionProbe late(journal_, "late");
  EXPECT_TRUE(PreCompileProbe::Add(&early));
  EXPECT_TRUE(ExchangeProbe::Add(&swap));
  EXPECT_TRUE(CompletionProbe::Add(&late));
  EXPECT_TRUE(ExchangeProbe::Remove(&swap));
  EXPECT_FALSE(PreCompileProbe::Add(&early));
  EXPECT_FALSE(CompletionProbe::Add(&late));
}

TYPED_TEST(ObserverListTest, OneMayRemoveItselfWhileItIsCalled) {
  for (TypeParam* const each : {&this->a_, &this->b_, &this->c_}) {
    ASSERT_TRUE(TypeParam::Add(each));
    each->onCall = [each] { EXPECT_TRUE(TypeParam::Remove(each)); };
  }
  EXPECT_EQ(this->Calls(), (Journal{"A Ping", "B Ping", "C Ping"}));
  EXPECT_EQ(this->Calls(), Journal{});
}

TYPED_TEST(ObserverListTest, OneThatIsRemovedMeanwhileIsNotCalled) {
  for (TypeParam* const each : {&this->a_, &this->b_, &this->c_})
    ASSERT_TRUE(TypeParam::Add(each));
  this->a_.onCall = [this] { TypeParam::Remove(&this->b_); };
  EXPECT_EQ(this->Calls(), (Journal{"A Ping", "C Ping"}));
  EXPECT_EQ(this->Calls(), (Journal{"A Ping", "C Ping"}));
}

TYPED_TEST(ObserverListTest, OneThatWasCalledMayBeRemovedMeanwhile) {
  for (TypeParam* const each : {&this->a_, &this->b_, &this->c_})
    ASSERT_TRUE(TypeParam::Add(each));
  this->b_.onCall = [this] { TypeParam::Remove(&this->a_); };
  EXPECT_EQ(this->Calls(), (Journal{"A Ping", "B Ping", "C Ping"}));
  EXPECT_EQ(this->Calls(), (Journal{"B Ping", "C Ping"}));
}

TYPED_TEST(ObserverListTest, AllMayBeRemovedMeanwhile) {
  for (TypeParam* const each : {&this->a_, &this->b_, &this->c_})
    ASSERT_TRUE(TypeParam::Add(each));
  this->a_.onCall = [this] {
    for (TypeParam* const each : {&this->a_, &this->b_, &this->c_})
      EXPECT_TRUE(TypeParam::Remove(each));
  };
  EXPECT_EQ(this->Calls(), (Journal{"A Ping"}));
  EXPECT_EQ(this->Calls(), Journal{});
}

TYPED_TEST(ObserverListTest, OneThatIsDestroyedMeanwhileIsNotTouched) {
  auto next = std::make_unique<TypeParam>(this->journal_, "observer next");
  ASSERT_TRUE(TypeParam::Add(&this->a_));
  ASSERT_TRUE(TypeParam::Add(next.get()));
  ASSERT_TRUE(TypeParam::Add(&this->c_));
  this->a_.onCall = [&next] { next.reset(); };
  EXPECT_EQ(this->Calls(), (Journal{"A Ping", "C Ping"}));
}

TYPED_TEST(ObserverListTest, OnesThatAreAddedMeanwhileAreCalledFromTheNextTimeOn) {
  ASSERT_TRUE(TypeParam::Add(&this->a_));
  this->a_.onCall = [this] {
    TypeParam::Add(&this->b_);
    TypeParam::Add(&this->c_);
  };
  EXPECT_EQ(this->Calls(), (Journal{"A Ping"}));
  EXPECT_EQ(this->Calls(), (Journal{"A Ping", "B Ping", "C Ping"}));
}

}  // namespace
