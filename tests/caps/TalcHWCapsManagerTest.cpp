// Who answers a question: the provider, hardware that was met, or the attached one.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "caps/CapsState.h"
#include "caps/TalcHWCaps.h"
#include "CapsPlatform.h"
#include "talccaps.h"
#include "talccapsmanager.h"

namespace {

using caps_test::Lines;
using TalcPath::TalcHWCapsCondition;
using TalcPath::TalcHWCapsHandle;
using TalcPath::TalcHWCapsManager;
using TalcPath::TalcHWCapsOverrideProvider;
using testing::ElementsAre;
using testing::IsEmpty;

/// Says the same to all questions, true or not, and writes each down. What it says must count only when it is true.
class Provider final : public TalcHWCapsOverrideProvider {
 public:
  bool answers = true;
  bool truth = true;
  std::int32_t number = 5;
  std::string text = "provided";
  Lines questions;
  const TalcHWCapsCondition* condition = nullptr;

  bool QueryBoolean(const char* property, bool& result, const TalcHWCapsCondition* asked,
                    std::uint32_t conduitId) override {
    result = truth;
    return Answer("boolean", property, asked, conduitId);
  }
  bool QueryInteger(const char* property, std::int32_t& result, const TalcHWCapsCondition* asked,
                    std::uint32_t conduitId) override {
    result = number;
    return Answer("integer", property, asked, conduitId);
  }
  bool QueryString(const char* property, char* buffer, std::uint32_t size, const TalcHWCapsCondition* asked,
                   std::uint32_t conduitId) override {
    EXPECT_EQ(std::string(buffer, size), std::string(size, '\0'));
    std::memcpy(buffer, text.data(), std::min<std::size_t>(text.size(), size - 1));
    return Answer("string", property, asked, conduitId);
  }

 private:
  bool Answer(const char* kind, const char* property, const TalcHWCapsCondition* asked, std::uint32_t conduitId) {
    questions.push_back(std::string(kind) + " " + property + " " + std::to_string(conduitId));
    condition = asked;
    return answers;
  }
};

constexpr std::uint32_t kMet = 77;
constexpr std::uint32_t kUnknown = 78;

/// The attached hardware has the capabilities of the type "NULL"; other hardware, of the type "Met", was met.
class TalcHWCapsManagerTest : public caps_test::CapsPlatformTest {
 protected:
  void Start(const std::string& attached, const std::string& met = "") {
    blocks_.RemoveAll();
    blocks_.Add("Attached", "HardwareType NULL ;" + attached);
    blocks_.Add("Met", "HardwareType Met ;" + met);
    ASSERT_TRUE(TalcPathPrivate::StartCapabilities(nullptr, nullptr)) << log();
    const TalcHWCapsHandle caps = TalcHWCapsManager::GetByName("Met");
    TalcPathPrivate::AddTalcHWCapsToMap(kMet, &caps);
  }
  static TalcHWCapsManager& Manager() { return TalcHWCapsManager::Get(); }

  static bool Truth(std::uint32_t conduitId = 0, const TalcHWCapsCondition* condition = nullptr) {
    return Manager().GetBoolean("P", condition, conduitId);
  }
  /// The number as text, or "none"; then nothing was stored.
  static std::string Number(std::uint32_t conduitId = 0, const TalcHWCapsCondition* condition = nullptr) {
    std::int32_t number = -99;
    if (Manager().GetInteger("P", &number, condition, conduitId)) return std::to_string(number);
    EXPECT_EQ(number, -99);
    return "none";
  }
  /// The text, or "none"; then the buffer holds zeros.
  static std::string Text(std::uint32_t conduitId = 0, const TalcHWCapsCondition* condition = nullptr) {
    std::string buffer(20, '#');
    const bool isGood = Manager().GetString("P", buffer.data(), 20, condition, conduitId);
    if (isGood) return buffer.c_str();
    EXPECT_EQ(buffer, std::string(20, '\0'));
    return "none";
  }
  static TalcHWCapsCondition Input() {
    TalcHWCapsCondition condition;
    EXPECT_TRUE(condition.AddSymbolCondition("Video", "Side", "Input"));
    return condition;
  }
};

const std::string kUnderInput = "ConditionBlockBegin ; Condition Video Side SYMBOL Input ; ConditionBlockEnd ;";

// ---- Finding

int questionCount;
bool CountQuestion(TalcPath::TalcCommand&) {
  ++questionCount;
  return false;
}

TEST_F(TalcHWCapsManagerTest, AsksTheHardwareAtItsFirstUseAndWhenToldTo) {
  questionCount = 0;
  ASSERT_TRUE(TalcPathPrivate::StartCapabilities(nullptr, CountQuestion));
  EXPECT_EQ(questionCount, 0);
  TalcHWCapsManager& manager = Manager();
  EXPECT_EQ(questionCount, 1);
  EXPECT_EQ(&Manager(), &manager);
  EXPECT_EQ(manager.GetMyCapabilities().GetName(), "EMPTY");
  EXPECT_EQ(&manager.GetMyCapabilities(), &manager.GetMyCapabilities());
  Truth();
  EXPECT_EQ(questionCount, 1);
  manager.FindMyCapabilities();
  EXPECT_EQ(questionCount, 2);
  manager.GetMyCapabilities();
  EXPECT_EQ(questionCount, 2);
}

TEST_F(TalcHWCapsManagerTest, AsksNobodyForCapabilitiesByName) {
  questionCount = 0;
  blocks_.Add("T", "HardwareType T ;");
  ASSERT_TRUE(TalcPathPrivate::StartCapabilities(nullptr, CountQuestion));
  EXPECT_EQ(TalcHWCapsManager::GetByName("T").GetName(), "T");
  EXPECT_EQ(TalcHWCapsManager::GetByName("t").GetName(), "EMPTY");
  EXPECT_EQ(TalcHWCapsManager::GetByName("").GetName(), "EMPTY");
  TalcHWCapsHandle caps;
  EXPECT_FALSE(TalcHWCapsManager::GetByConduitId(1, &caps));
  EXPECT_EQ(questionCount, 0);
  EXPECT_EQ(TalcPathPrivate::capsState.manager, nullptr);
}

TEST_F(TalcHWCapsManagerTest, IsNewAfterItsEnd) {
  questionCount = 0;
  ASSERT_TRUE(TalcPathPrivate::StartCapabilities(nullptr, CountQuestion));
  Provider provider;
  Manager().SetOverrideProvider(&provider, 1);
  EXPECT_TRUE(Truth());
  TalcPathPrivate::FreeCapsManager();
  EXPECT_EQ(questionCount, 1);
  EXPECT_FALSE(Truth());
  EXPECT_EQ(questionCount, 2);
  EXPECT_EQ(provider.questions.size(), 1u);
  TalcPathPrivate::FreeCapsManager();
  TalcPathPrivate::FreeCapsManager();
}

TEST_F(TalcHWCapsManagerTest, KeepsItsProviderOverFindingAndStop) {
  Start("");
  Provider provider;
  Manager().SetOverrideProvider(&provider, 1);
  Manager().FindMyCapabilities();
  EXPECT_TRUE(Truth());
  TalcPathPrivate::StopCapabilities();
  EXPECT_TRUE(Truth());
}

TEST_F(TalcHWCapsManagerTest, GivesHardwareThatWasMetIntoAHandle) {
  Start("", "Property P INTEGER 4 ;");
  TalcHWCapsHandle caps;
  EXPECT_FALSE(TalcHWCapsManager::GetByConduitId(kUnknown, &caps));
  EXPECT_FALSE(TalcHWCapsManager::GetByConduitId(0, &caps));
  EXPECT_EQ(caps.GetName(), "EMPTY");
  EXPECT_FALSE(TalcHWCapsManager::GetByConduitId(kMet, nullptr));
  EXPECT_TRUE(TalcHWCapsManager::GetByConduitId(kMet, &caps));
  EXPECT_EQ(caps.GetName(), "Met");
  EXPECT_EQ(caps.GetPropertyCount(), 1u);
}

// ---- The provider

// Those who derive from it are compiled apart, so that the slots are a promise. The first word of such a pointer counts
// bytes.
TEST_F(TalcHWCapsManagerTest, AsksAProviderByTheOrderOfItsSlots) {
  const auto slotOf = [](auto operation) { return std::bit_cast<std::array<std::uintptr_t, 2>>(operation)[0]; };
  const std::uintptr_t boolean = slotOf(&TalcHWCapsOverrideProvider::QueryBoolean);
  // The destructor before it takes two slots.
  EXPECT_EQ(boolean / sizeof(void*), 2u);
  EXPECT_EQ(slotOf(&TalcHWCapsOverrideProvider::QueryInteger), boolean + sizeof(void*));
  EXPECT_EQ(slotOf(&TalcHWCapsOverrideProvider::QueryString), boolean + 2 * sizeof(void*));
}

TEST_F(TalcHWCapsManagerTest, AsksAProviderForTheAttachedHardwareAndForItsOwn) {
  Start("");
  for (const std::uint32_t own : {0u, 9u, 0xFFFFFFFFu}) {
    Provider provider;
    Manager().SetOverrideProvider(&provider, own);
    for (const std::uint32_t id : {0u, 9u, 10u, kMet, 0xFFFFFFFFu}) {
      SCOPED_TRACE(std::to_string(id) + " to " + std::to_string(own));
      provider.questions.clear();
      const bool isIts = id == 0 || id == own;
      EXPECT_EQ(Truth(id), isIts);
      EXPECT_EQ(Number(id), isIts ? "5" : "none");
      EXPECT_EQ(Text(id), isIts ? "provided" : "none");
      const std::string number = std::to_string(id);
      if (isIts)
        EXPECT_THAT(provider.questions,
                    ElementsAre("boolean P " + number, "integer P " + number, "string P " + number));
      else
        EXPECT_THAT(provider.questions, IsEmpty());
    }
    Manager().SetOverrideProvider(nullptr, own);
    EXPECT_FALSE(Truth());
  }
}

TEST_F(TalcHWCapsManagerTest, HandsTheConditionToTheProvider) {
  Start("");
  Provider provider;
  Manager().SetOverrideProvider(&provider, 9);
  const TalcHWCapsCondition condition;
  Truth(0, &condition);
  EXPECT_EQ(provider.condition, &condition);
  Truth();
  EXPECT_EQ(provider.condition, nullptr);
  Number(0, &condition);
  EXPECT_EQ(provider.condition, &condition);
  Number();
  EXPECT_EQ(provider.condition, nullptr);
  Text(0, &condition);
  EXPECT_EQ(provider.condition, &condition);
}

TEST_F(TalcHWCapsManagerTest, TakesAProvidersAnswerInPlaceOfItsOwn) {
  Provider provider;
  provider.truth = false;
  for (const std::uint32_t id : {0u, kMet}) {
    Start("Property P STRING TRUE ;", "Property P STRING TRUE ;");
    Manager().SetOverrideProvider(&provider, kMet);
    EXPECT_FALSE(Truth(id));
    EXPECT_EQ(Text(id), "provided");
    Start("Property P INTEGER 1 ;", "Property P INTEGER 2 ;");
    EXPECT_EQ(Number(id), "5");
    EXPECT_TRUE(Manager().GetInteger("P", nullptr, nullptr, id));
  }
}

TEST_F(TalcHWCapsManagerTest, AnswersItselfWhatAProviderDoesNot) {
  Provider provider;
  provider.answers = false;
  Start("Property P STRING attached ;", "Property P STRING met ;");
  Manager().SetOverrideProvider(&provider, kMet);
  EXPECT_FALSE(Truth());
  EXPECT_EQ(Text(), "attached");
  EXPECT_EQ(Text(kMet), "met");
  EXPECT_EQ(Number(), "none");
  Start("Property P INTEGER 1 ;", "Property P INTEGER 2 ;");
  EXPECT_EQ(Number(), "1");
  EXPECT_EQ(Number(kMet), "2");
  EXPECT_EQ(Text(), "none");
  EXPECT_EQ(provider.questions.size(), 7u);
}

// ---- Booleans

TEST_F(TalcHWCapsManagerTest, TakesThreeWordsForTrue) {
  for (const char* const word : {"TRUE", "true", "True"}) {
    Start(std::string("Property P STRING ") + word + " ;");
    EXPECT_TRUE(Truth()) << word;
  }
  for (const char* const word :
       {"FALSE", "tRUE", "TRUe", "TrUE", "TRU", "TRUE1", "TRUETRUE", "T", "1", "yes", "\"TRUE\""}) {
    Start(std::string("Property P STRING ") + word + " ;");
    EXPECT_FALSE(Truth()) << word;
  }
}

TEST_F(TalcHWCapsManagerTest, TakesNoWordWithABlankForTrue) {
  Start("");
  TalcPathPrivate::TalcHWCaps& caps = *TalcPathPrivate::capsState.types.at("NULL");
  for (const char* const text : {"TRUE ", " TRUE", "true\t", ""}) {
    ASSERT_TRUE(caps.SetProperty("P", TalcPathPrivate::Variant(std::string(text)), caps.DefaultBlock()));
    EXPECT_FALSE(Truth()) << text;
  }
}

TEST_F(TalcHWCapsManagerTest, TakesNothingElseForTrue) {
  Start("Property P INTEGER 1 ;");
  EXPECT_FALSE(Truth());
  Start("Property Q STRING TRUE ;");
  EXPECT_FALSE(Truth());
  EXPECT_FALSE(Manager().GetBoolean(""));
  for (const std::size_t length : {127u, 128u, 129u, 1000u}) {
    Start("Property P STRING " + std::string(length, 'T') + " ;");
    EXPECT_FALSE(Truth()) << length;
  }
}

TEST_F(TalcHWCapsManagerTest, AnswersTruthForHardwareThatWasMet) {
  Start("Property P STRING TRUE ;", "Property P STRING FALSE ;");
  EXPECT_FALSE(Truth(kMet));
  EXPECT_TRUE(Truth(kUnknown));
  EXPECT_TRUE(Truth());
  Start("Property P STRING FALSE ;", "Property P STRING TRUE ;");
  EXPECT_TRUE(Truth(kMet));
  EXPECT_FALSE(Truth(kUnknown));
  EXPECT_FALSE(Truth());
}

TEST_F(TalcHWCapsManagerTest, AnswersTruthByTheAttachedHardwareForAWordThatIsMissing) {
  Start("Property P STRING TRUE ;", "Property P INTEGER 0 ;");
  EXPECT_TRUE(Truth(kMet));
  Start("Property P STRING TRUE ;");
  EXPECT_TRUE(Truth(kMet));
  Start("Property P INTEGER 1 ;", "Property P INTEGER 1 ;");
  EXPECT_FALSE(Truth(kMet));
}

TEST_F(TalcHWCapsManagerTest, AnswersUnderTheConditionThatIsGiven) {
  const TalcHWCapsCondition input = Input();
  Start("Property P STRING TRUE ;");
  EXPECT_FALSE(Truth(0, &input));
  EXPECT_EQ(Text(0, &input), "none");
  Start(kUnderInput + "Property P STRING TRUE ;", "Property P STRING FALSE ;");
  EXPECT_FALSE(Truth());
  EXPECT_TRUE(Truth(0, &input));
  EXPECT_FALSE(Truth(kMet));
  EXPECT_TRUE(Truth(kMet, &input));
  EXPECT_EQ(Text(kMet, &input), "TRUE");
  Start("Property P STRING TRUE ;", kUnderInput + "Property P STRING FALSE ;");
  EXPECT_TRUE(Truth(kMet));
  EXPECT_FALSE(Truth(kMet, &input));
  EXPECT_EQ(Text(kMet, &input), "FALSE");
  Start("Property P INTEGER 1 ;" + kUnderInput + "Property P INTEGER 2 ;", kUnderInput + "Property P INTEGER 3 ;");
  EXPECT_EQ(Number(), "1");
  EXPECT_EQ(Number(0, &input), "2");
  EXPECT_EQ(Number(kMet, &input), "3");
  EXPECT_EQ(Number(kMet), "none");
}

// ---- Integers

TEST_F(TalcHWCapsManagerTest, AnswersNumbersOfTheAttachedHardware) {
  Start("Property P INTEGER -2147483648 ;");
  EXPECT_EQ(Number(), "-2147483648");
  EXPECT_EQ(Number(kUnknown), "-2147483648");
  EXPECT_TRUE(Manager().GetInteger("P", nullptr));
  EXPECT_FALSE(Manager().GetInteger("Q", nullptr));
  Start("Property P STRING 5 ;");
  EXPECT_EQ(Number(), "none");
}

// The attached hardware does not stand in for a number, as it does for words. It is meant.
TEST_F(TalcHWCapsManagerTest, AnswersNoNumberThatHardwareThatWasMetDoesNotHave) {
  Start("Property P INTEGER 1 ;", "Property P INTEGER 2 ;");
  EXPECT_EQ(Number(kMet), "2");
  EXPECT_TRUE(Manager().GetInteger("P", nullptr, nullptr, kMet));
  Start("Property P INTEGER 1 ;", "Property P STRING 2 ;");
  EXPECT_EQ(Number(kMet), "none");
  Start("Property P INTEGER 1 ;");
  EXPECT_EQ(Number(kMet), "none");
  EXPECT_FALSE(Manager().GetInteger("P", nullptr, nullptr, kMet));
}

// ---- Strings

TEST_F(TalcHWCapsManagerTest, AnswersTextsForHardwareThatWasMet) {
  Start("Property P STRING attached ;", "Property P STRING met ;");
  EXPECT_EQ(Text(), "attached");
  EXPECT_EQ(Text(kMet), "met");
  EXPECT_EQ(Text(kUnknown), "attached");
  Start("Property P STRING attached ;", "Property P INTEGER 1 ;");
  EXPECT_EQ(Text(kMet), "attached");
  Start("Property P INTEGER 1 ;", "Property P STRING met ;");
  EXPECT_EQ(Text(kMet), "met");
  EXPECT_EQ(Text(), "none");
}

}  // namespace
