// Where capabilities come from at the start, and what a stop takes away.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "caps/CapsState.h"
#include "CapsPlatform.h"
#include "dictionary/Log.h"
#include "support/ScopedWorkingFolder.h"
#include "support/TempFolder.h"
#include "talccapsmanager.h"

namespace {

using caps_test::Lines;
using TalcPath::TalcHWCapsHandle;
using TalcPath::TalcHWCapsManager;
using TalcPathPrivate::capsState;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kParseLine = "\n\nERROR - Failed To Successfully parse Hardware Capabilities file : ";
const std::string kDuplicateLine = "\n\nERROR - Duplicate HardwareTypeID in file : ";
const std::string kNobodyLine = "\nTalcHWCapsManager::CreateMyHWCaps No HWCaps file found setting to NULL";

class CapsStartTest : public caps_test::CapsPlatformTest {
 protected:
  bool Start(const char* directory = nullptr) { return TalcPathPrivate::StartCapabilities(directory, nullptr); }

  /// In the order of names.
  static Lines Types() {
    Lines types;
    for (const auto& [type, caps] : capsState.types)
      types.push_back(type);
    return types;
  }
  static std::int32_t NumberOf(const char* type, const char* property) {
    std::int32_t number = -1;
    TalcHWCapsManager::GetByName(type).GetPropertyAsInteger(property, &number);
    return number;
  }
  /// A file of a folder that is there, and its place in the listing.
  void Write(const std::string& name, const std::string& text) {
    folder_.Write(name, text);
    List(name);
  }
  void List(const std::string& name, bool isDirectory = false) {
    entries_.push_back({name, isDirectory});
    files_.Add(Folder(), entries_);
  }
  std::string Folder() const { return folder_.Path().string() + "/"; }
  bool StartInFolder() { return Start(Folder().c_str()); }

 private:
  test_support::TempFolder folder_;
  std::vector<platform::DirectoryEntry> entries_;
};

// ---- Blocks

TEST_F(CapsStartTest, ReadsTheBlocksInTheOrderOfTheList) {
  blocks_.Add("Second", "HardwareType B ; Property P INTEGER 2 ;");
  blocks_.Add("First", "HardwareType A ; Property P INTEGER 1 ;");
  EXPECT_TRUE(Start());
  EXPECT_THAT(blocks_.Asked(), ElementsAre("Second", "First"));
  EXPECT_THAT(Types(), ElementsAre("A", "B"));
  EXPECT_EQ(NumberOf("A", "P"), 1);
  EXPECT_EQ(NumberOf("B", "P"), 2);
  EXPECT_EQ(log(), "");
}

TEST_F(CapsStartTest, ReadsNoDirectoryWhenThereIsABlock) {
  blocks_.Add("A", "HardwareType A ;");
  Write("b.hwc", "HardwareType B ;");
  EXPECT_TRUE(StartInFolder());
  EXPECT_THAT(files_.Asked(), IsEmpty());
  EXPECT_THAT(Types(), ElementsAre("A"));
}

TEST_F(CapsStartTest, StopsAtAFaultyBlockAndReadsNoDirectory) {
  blocks_.Add("A", "HardwareType A ;");
  blocks_.Add("Faulty", "HardwareType F ; Nonsense ;");
  blocks_.Add("B", "HardwareType B ;");
  Write("c.hwc", "HardwareType C ;");
  EXPECT_FALSE(StartInFolder());
  EXPECT_THAT(blocks_.Asked(), ElementsAre("A", "Faulty"));
  EXPECT_THAT(files_.Asked(), IsEmpty());
  EXPECT_THAT(Types(), ElementsAre("A"));
  EXPECT_EQ(log(), kParseLine + "Faulty");
}

TEST_F(CapsStartTest, FailsForAFaultyFirstBlock) {
  blocks_.Add("Faulty", "Nonsense ;");
  EXPECT_FALSE(Start());
  EXPECT_THAT(files_.Asked(), IsEmpty());
  EXPECT_THAT(Types(), IsEmpty());
}

TEST_F(CapsStartTest, EndsWithSuccessAtABlockThatCannotBeHad) {
  blocks_.Add("A", "HardwareType A ;");
  blocks_.AddUnreadable("Gone");
  blocks_.Add("Faulty", "Nonsense ;");
  EXPECT_TRUE(Start());
  EXPECT_THAT(Types(), ElementsAre("A"));
  EXPECT_THAT(files_.Asked(), IsEmpty());
}

TEST_F(CapsStartTest, ReadsTheDirectoryWhenNoBlockCanBeHad) {
  blocks_.AddUnreadable("Gone");
  blocks_.Add("A", "HardwareType A ;");
  Write("b.hwc", "HardwareType B ;");
  EXPECT_TRUE(StartInFolder());
  EXPECT_THAT(Types(), ElementsAre("B"));
}

// ---- The variable

TEST_F(CapsStartTest, ReadsDirectoriesInPlaceOfBlocksForTwoWordsOnly) {
  struct Case {
    std::optional<std::string> value;
    bool isOn;
  };
  blocks_.Add("A", "HardwareType A ;");
  Write("b.hwc", "HardwareType B ;");
  for (const Case& each : std::vector<Case>{{"TRUE", true},
                                            {"true", true},
                                            {" TRUE and more", true},
                                            {"\ttrue", true},
                                            {"true\n", true},
                                            {"TRUE TRUE", true},
                                            {std::nullopt, false},
                                            {"", false},
                                            {" ", false},
                                            {"True", false},
                                            {"tRUE", false},
                                            {"1", false},
                                            {"yes", false},
                                            {"TRUEx", false},
                                            {"TRU", false},
                                            {"true,", false},
                                            {"and TRUE", false}}) {
    SCOPED_TRACE(each.value.value_or("not set"));
    files_.readDirectories = each.value;
    EXPECT_TRUE(StartInFolder());
    EXPECT_THAT(Types(), ElementsAre(each.isOn ? "B" : "A"));
  }
  EXPECT_EQ(log(), "");
}

TEST_F(CapsStartTest, AsksForNoBlockUnderTheVariable) {
  blocks_.Add("Faulty", "Nonsense ;");
  files_.readDirectories = "TRUE";
  EXPECT_TRUE(Start());
  EXPECT_THAT(blocks_.Asked(), IsEmpty());
  EXPECT_THAT(files_.Asked(), ElementsAre("./"));
}

TEST_F(CapsStartTest, StandsWithoutCapabilitiesUnderTheVariableInADirectoryWithout) {
  blocks_.Add("A", "HardwareType A ;");
  files_.readDirectories = "TRUE";
  Write("readme.txt", "Nonsense ;");
  EXPECT_TRUE(StartInFolder());
  EXPECT_THAT(Types(), IsEmpty());
  EXPECT_EQ(log(), "");
}

// ---- Directories

TEST_F(CapsStartTest, ReadsTheFilesInTheOrderOfTheListing) {
  Write("b.hwc", "HardwareType B ; Property P INTEGER 2 ;");
  Write("a.hwc", "HardwareType A ; Property P INTEGER 1 ;");
  List("missing.hwc");
  Write("faulty.hwc", "Nonsense ;");
  Write("c.hwc", "HardwareType C ;");
  EXPECT_FALSE(StartInFolder());
  EXPECT_THAT(Types(), ElementsAre("", "A", "B"));
  EXPECT_EQ(NumberOf("A", "P"), 1);
  EXPECT_EQ(NumberOf("B", "P"), 2);
  EXPECT_EQ(log(), kParseLine + Folder() + "faulty.hwc");
}

TEST_F(CapsStartTest, KeepsAFileThatCannotBeOpenedAsOneWithNothingInIt) {
  List("missing.hwc");
  EXPECT_TRUE(StartInFolder());
  EXPECT_THAT(Types(), ElementsAre(""));
  EXPECT_EQ(TalcHWCapsManager::GetByName("").GetName(), "");
  EXPECT_EQ(TalcHWCapsManager::GetByName("").GetPropertyCount(), 0u);
  EXPECT_EQ(log(), "");
}

TEST_F(CapsStartTest, ReadsTheWorkingDirectoryWhenNoneIsGiven) {
  const test_support::TempFolder folder;
  folder.Write("w.hwc", "HardwareType W ;");
  const test_support::ScopedWorkingFolder scope(folder.Path());
  files_.Add("./", {{"w.hwc", false}});
  EXPECT_TRUE(Start());
  EXPECT_THAT(files_.Asked(), ElementsAre("./"));
  EXPECT_THAT(Types(), ElementsAre("W"));
}

TEST_F(CapsStartTest, ReadsOnlyTheDirectoryThatIsGiven) {
  files_.Add("./", {{"w.hwc", false}});
  Write("a.hwc", "HardwareType A ;");
  EXPECT_TRUE(StartInFolder());
  EXPECT_THAT(files_.Asked(), ElementsAre(Folder()));
  EXPECT_THAT(Types(), ElementsAre("A"));
}

TEST_F(CapsStartTest, EndsThePathWithOneSlashUnlessItIsEmpty) {
  for (const char* const directory : {"caps", "caps/", "caps//", ""})
    EXPECT_TRUE(Start(directory)) << directory;
  EXPECT_THAT(files_.Asked(), ElementsAre("caps/", "caps/", "caps//", ""));
}

TEST_F(CapsStartTest, TakesFilesByTheEndOfTheirNamesCaseSensitively) {
  for (const char* const name : {"A.HWC", "b.Hwc", "c.hwC", "d.hwc.txt", "e.hwc ", "fhwc", "g.hwcs", "h.tcd", "hwc"})
    Write(name, "Nonsense ;");
  Write(".hwc", "HardwareType Bare ;");
  Write("X.Y.hwc", "HardwareType Dotted ;");
  EXPECT_TRUE(StartInFolder());
  EXPECT_THAT(Types(), ElementsAre("Bare", "Dotted"));
}

TEST_F(CapsStartTest, PassesOverFolders) {
  List("folder.hwc", true);
  Write("a.hwc", "HardwareType A ;");
  EXPECT_TRUE(StartInFolder());
  EXPECT_THAT(Types(), ElementsAre("A"));
}

TEST_F(CapsStartTest, HasNoCapabilitiesFromADirectoryThatCannotBeListed) {
  EXPECT_TRUE(Start("nowhere"));
  EXPECT_THAT(Types(), IsEmpty());
  EXPECT_EQ(log(), "");
}

TEST_F(CapsStartTest, SaysNothingOfADirectory) {
  for (const bool isVerbose : {false, true}) {
    TalcPathPrivate::logState.verbose = isVerbose;
    TalcPathPrivate::logState.trace = isVerbose;
    if (!isVerbose) Write("a.hwc", "HardwareType A ;");
    EXPECT_TRUE(StartInFolder());
    EXPECT_THAT(Types(), ElementsAre("A"));
    EXPECT_EQ(log(), "");
  }
}

// ---- Types

TEST_F(CapsStartTest, RefusesASecondTextOfAType) {
  blocks_.Add("One", "HardwareType T ; Property P INTEGER 1 ;");
  blocks_.Add("Two", "HardwareType T ; Property P INTEGER 2 ;");
  blocks_.Add("Three", "HardwareType U ;");
  EXPECT_FALSE(Start());
  EXPECT_EQ(log(), kDuplicateLine + "Two HardwareTypeID : T");
  EXPECT_THAT(Types(), ElementsAre("T"));
  EXPECT_EQ(NumberOf("T", "P"), 1);
}

TEST_F(CapsStartTest, RefusesTheSameTextUnderAnotherName) {
  const std::string text = "HardwareType T ;";
  blocks_.Add("One", text);
  blocks_.Add("Again", text);
  EXPECT_FALSE(Start());
  EXPECT_EQ(log(), kDuplicateLine + "Again HardwareTypeID : T");
}

TEST_F(CapsStartTest, RefusesASecondFileOfAType) {
  Write("one.hwc", "HardwareType T ;");
  Write("two.hwc", "HardwareType T ;");
  EXPECT_FALSE(StartInFolder());
  EXPECT_EQ(log(), kDuplicateLine + Folder() + "two.hwc HardwareTypeID : T");
}

TEST_F(CapsStartTest, TellsTypesApartByCase) {
  blocks_.Add("One", "HardwareType T ;");
  blocks_.Add("Two", "HardwareType t ;");
  EXPECT_TRUE(Start());
  EXPECT_THAT(Types(), ElementsAre("T", "t"));
}

TEST_F(CapsStartTest, KeepsATextWithoutATypeUnderTheEmptyName) {
  blocks_.Add("Typeless", "Property P INTEGER 5 ;");
  EXPECT_TRUE(Start());
  EXPECT_THAT(Types(), ElementsAre(""));
  EXPECT_EQ(NumberOf("", "P"), 5);
  blocks_.Add("Other", "Property Q INTEGER 6 ;");
  EXPECT_FALSE(Start());
  EXPECT_EQ(log(), kDuplicateLine + "Other HardwareTypeID : ");
}

// ---- Starting and stopping again

TEST_F(CapsStartTest, FreesWhatWasLoadedBefore) {
  blocks_.Add("A", "HardwareType A ;");
  ASSERT_TRUE(Start());
  const std::weak_ptr<TalcPathPrivate::TalcHWCaps> kept = capsState.types.at("A");
  ASSERT_TRUE(Start());
  EXPECT_THAT(Types(), ElementsAre("A"));
  EXPECT_TRUE(kept.expired());
  EXPECT_EQ(log(), "");
  blocks_.RemoveAll();
  blocks_.Add("B", "HardwareType B ;");
  ASSERT_TRUE(Start());
  EXPECT_THAT(Types(), ElementsAre("B"));
  EXPECT_EQ(TalcHWCapsManager::GetByName("A").GetName(), "EMPTY");
}

TEST_F(CapsStartTest, FreesWhatWasLoadedBeforeAlsoWhenItFails) {
  blocks_.Add("A", "HardwareType A ;");
  ASSERT_TRUE(Start());
  blocks_.RemoveAll();
  blocks_.Add("Faulty", "Nonsense ;");
  EXPECT_FALSE(Start());
  EXPECT_THAT(Types(), IsEmpty());
}

TEST_F(CapsStartTest, LendsTheExecutionUntilTheStop) {
  static int count;
  count = 0;
  const auto execute = [](TalcPath::TalcCommand&) {
    ++count;
    return false;
  };
  ASSERT_TRUE(TalcPathPrivate::StartCapabilities(nullptr, execute));
  TalcHWCapsManager::Get();
  EXPECT_EQ(count, 1);
  TalcPathPrivate::StopCapabilities();
  TalcHWCapsManager::Get().FindMyCapabilities();
  EXPECT_EQ(count, 1);
}

TEST_F(CapsStartTest, StopsTwice) {
  blocks_.Add("A", "HardwareType A ;");
  ASSERT_TRUE(Start());
  EXPECT_TRUE(TalcPathPrivate::StopCapabilities());
  EXPECT_THAT(Types(), IsEmpty());
  EXPECT_TRUE(TalcPathPrivate::StopCapabilities());
  EXPECT_EQ(log(), "");
}

TEST_F(CapsStartTest, ForgetsAtTheStopWhatHardwareWasMet) {
  blocks_.Add("A", "HardwareType A ;");
  ASSERT_TRUE(Start());
  const TalcHWCapsHandle caps = TalcHWCapsManager::GetByName("A");
  TalcPathPrivate::AddTalcHWCapsToMap(7, &caps);
  TalcHWCapsHandle known;
  ASSERT_TRUE(TalcHWCapsManager::GetByConduitId(7, &known));
  TalcPathPrivate::StopCapabilities();
  EXPECT_FALSE(TalcHWCapsManager::GetByConduitId(7, &known));
}

TEST_F(CapsStartTest, LetsTheManagerFindTheNewCapabilities) {
  blocks_.Add("Old", "HardwareType NULL ; Property P INTEGER 1 ;");
  ASSERT_TRUE(Start());
  std::int32_t number = 0;
  EXPECT_TRUE(TalcHWCapsManager::Get().GetInteger("P", &number));
  EXPECT_EQ(number, 1);
  EXPECT_EQ(log(), kNobodyLine);
  TalcPathPrivate::StopCapabilities();
  EXPECT_FALSE(TalcHWCapsManager::Get().GetInteger("P", &number));
  EXPECT_EQ(TalcHWCapsManager::Get().GetMyCapabilities().GetName(), "EMPTY");
  blocks_.RemoveAll();
  blocks_.Add("New", "HardwareType NULL ; Property P INTEGER 2 ;");
  ASSERT_TRUE(Start());
  EXPECT_TRUE(TalcHWCapsManager::Get().GetInteger("P", &number));
  EXPECT_EQ(number, 2);
}

}  // namespace
