// The capabilities' part in the library's start and stop.

#include <gtest/gtest.h>

#include <stdexcept>

#include "EngineFixture.h"

namespace {

using namespace engine_test;
using TalcPath::TalcHWCapsHandle;
using TalcPath::TalcHWCapsManager;
using TalcPath::TalcPathInit;
using TalcPath::TalcPathTerminate;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* kFoo = "Foo Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 1 Symbol On 1 ;";
constexpr const char* kBoxCapabilities = "HardwareType Box ; CmdOverrideTimeout Foo 700 ;";
constexpr const char* kCapabilitiesFailed = "\n\nTalcPath Hardware Capabilities FAILED to initialize!!!!!!!";
constexpr const char* kMisspelt = "\n\nTalcPath initialized Hardware Capabilites";
constexpr const char* kFailed = "\n>>> FAILED to initialize TalcPath <<<";
constexpr const char* kNotParsed = "\n\nERROR - Failed To Successfully parse Hardware Capabilities file : ";

class CapabilitiesStartTest : public EngineTest {
 protected:
  CapabilitiesStartTest() { blocks_.Add("Foo.tcd", kFoo); }
};

TEST_F(CapabilitiesStartTest, AreReadBehindTheDictionaries) {
  blocks_.RemoveCapabilities();
  blocks_.AddCapabilities("Box.hwc", "HardwareType Box ; CommandValues Foo Level Symbol On ;");
  EXPECT_TRUE(TalcPathInit());
  EXPECT_EQ(TakeLog(), "");
  const TalcHWCapsHandle caps = TalcHWCapsManager::GetByName("Box");
  EXPECT_EQ(caps.GetHardwareType(), "Box");
  EXPECT_TRUE(caps.AreCommandValuesSymbols("Foo", "Level"));
}

TEST_F(CapabilitiesStartTest, OfTheProgramFitItsDictionaries) {
  StartWithEmbedded();
  const TalcHWCapsHandle caps = TalcHWCapsManager::GetByName("Trelvane");
  EXPECT_EQ(caps.GetName(), "Trelvane");
  EXPECT_EQ(caps.GetNamedBlockCount(), 101u);
  EXPECT_EQ(caps.GetPropertyCount(), 36u);
}

TEST_F(CapabilitiesStartTest, OfTheProgramAreReadWithoutAWord) {
  system_.Use(platform::Native().textBlocks());
  EXPECT_TRUE(TalcPathInit());
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(CapabilitiesStartTest, ThatAreFaultyFailTheStart) {
  blocks_.AddCapabilities("Faulty.hwc", "HardwareType Faulty ; CommandValues Bar Level Symbol On ;");
  EXPECT_FALSE(TalcPathInit());
  EXPECT_EQ(TakeLog(), std::string(kNotParsed) + "Faulty.hwc" + kCapabilitiesFailed + kFailed);
  EXPECT_FALSE(TalcPathPrivate::IsInitialized());
  EXPECT_THAT(files_.Asked(), IsEmpty());
}

TEST_F(CapabilitiesStartTest, ThatAreFaultyAreNotToldToBeInitialized) {
  SetFlags(true, false);
  blocks_.AddCapabilities("Faulty.hwc", "Nonsense ;");
  EXPECT_FALSE(TalcPathInit());
  const std::string log = TakeLog();
  EXPECT_THAT(log, EndsWith(std::string(kNotParsed) + "Faulty.hwc" + kCapabilitiesFailed + kFailed));
  EXPECT_THAT(log, Not(HasSubstr(kMisspelt)));
}

TEST_F(CapabilitiesStartTest, AreNotReadBehindAFaultyDictionary) {
  blocks_.Add("Faulty.tcd", "Faulty Tal ;");
  blocks_.AddCapabilities("Box.hwc", kBoxCapabilities);
  EXPECT_FALSE(TalcPathInit());
  EXPECT_EQ(TalcHWCapsManager::GetByName("Box").GetName(), "EMPTY");
  EXPECT_THAT(TakeLog(), Not(HasSubstr(kCapabilitiesFailed)));
}

TEST_F(CapabilitiesStartTest, AreLookedForInTheWorkingDirectoryByAProgramThatCarriesNone) {
  blocks_.RemoveCapabilities();
  SetFlags(true, false);
  EXPECT_TRUE(TalcPathInit());
  EXPECT_THAT(files_.Asked(), ElementsAre("./"));
  // The line tells of dictionaries alone. It is meant.
  EXPECT_THAT(TakeLog(), Not(HasSubstr("Processing directory")));
}

TEST_F(CapabilitiesStartTest, AreLookedForInTheDirectoryThatWasSetAlone) {
  blocks_.RemoveCapabilities();
  ASSERT_TRUE(TalcPath::TalcPathSetDirectory("there"));
  EXPECT_TRUE(TalcPathInit());
  EXPECT_THAT(files_.Asked(), ElementsAre("there/"));
}

TEST_F(CapabilitiesStartTest, AreLookedForInTheWorkingDirectoryWhenTheOneThatWasSetIsEmpty) {
  blocks_.RemoveCapabilities();
  TalcPath::TalcPathSetDirectory("");
  EXPECT_TRUE(TalcPathInit());
  EXPECT_THAT(files_.Asked(), ElementsAre("./"));
}

TEST_F(CapabilitiesStartTest, InDirectoriesAreAMatterOfTheVariableAndDictionariesAreNot) {
  files_.readDirectories = "TRUE";
  blocks_.AddCapabilities("Box.hwc", kBoxCapabilities);
  EXPECT_TRUE(TalcPathInit());
  EXPECT_THAT(files_.Asked(), ElementsAre("./"));  // for capabilities
  EXPECT_EQ(TalcHWCapsManager::GetByName("Box").GetName(), "EMPTY");
  EXPECT_EQ(TalcPathPrivate::DefinedCommands()->size(), 1u);
}

TEST_F(CapabilitiesStartTest, ThatThrowFailTheStart) {
  blocks_.OnBytes([](std::string_view name) {
    if (name == "Test.hwc") throw std::runtime_error("the block is gone");
  });
  EXPECT_FALSE(TalcPathInit());
  EXPECT_EQ(TakeLog(), std::string("\n\nException while Initializing TalcPath : the block is gone") + kFailed);
}

TEST_F(CapabilitiesStartTest, GoAtTheStop) {
  blocks_.AddCapabilities("Box.hwc", kBoxCapabilities);
  ASSERT_TRUE(TalcPathInit());
  const TalcHWCapsHandle before = TalcHWCapsManager::GetByName("Box");
  ASSERT_TRUE(before.HasOverrideTimeout("Foo"));
  ASSERT_TRUE(TalcPathTerminate());
  EXPECT_FALSE(before.HasOverrideTimeout("Foo"));
  EXPECT_EQ(TalcHWCapsManager::GetByName("Box").GetName(), "EMPTY");
}

TEST_F(CapabilitiesStartTest, AreReadAgainAtTheNextStart) {
  blocks_.AddCapabilities("Box.hwc", kBoxCapabilities);
  for (int round = 0; round < 3; ++round) {
    EXPECT_TRUE(TalcPathInit());
    EXPECT_TRUE(TalcHWCapsManager::GetByName("Box").HasOverrideTimeout("Foo"));
    EXPECT_TRUE(TalcPathTerminate());
    EXPECT_EQ(TakeLog(), "");
  }
}

// Time-outs are not in force before they are applied, which is done when a transport is selected.
TEST_F(CapabilitiesStartTest, LeaveTimeOutsAsTheyAre) {
  blocks_.AddCapabilities("Box.hwc", kBoxCapabilities);
  ASSERT_TRUE(TalcPathInit());
  EXPECT_EQ(TalcPath::GetOverrideTimeoutMillisec(TalcCommand("Foo")), 0u);
  EXPECT_TRUE(TalcHWCapsManager::GetByName("Box").ApplyOverrideTimeouts());
  EXPECT_EQ(TalcPath::GetOverrideTimeoutMillisec(TalcCommand("Foo")), 700u);
}

TEST_F(CapabilitiesStartTest, TheManagerGoesAtTheStop) {
  ASSERT_TRUE(TalcPathInit());
  EXPECT_EQ(TalcHWCapsManager::Get().GetMyCapabilities().GetName(), "EMPTY");
  EXPECT_EQ(TakeLog(), "\nTalcHWCapsManager::CreateMyHWCaps No HWCaps file found setting to NULL");
  TalcHWCapsManager::Get();
  EXPECT_EQ(TakeLog(), "");
  ASSERT_TRUE(TalcPathTerminate());
  ASSERT_TRUE(TalcPathInit());
  TalcHWCapsManager::Get();
  EXPECT_EQ(TakeLog(), "\nTalcHWCapsManager::CreateMyHWCaps No HWCaps file found setting to NULL");
}

}  // namespace
