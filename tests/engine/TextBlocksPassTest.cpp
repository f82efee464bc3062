// One pass over the blocks of text that the program carries.

#include <gtest/gtest.h>

#include "EngineFixture.h"
#include "RecordingProcessor.h"

namespace {

using namespace engine_test;
using TalcPathPrivate::ProcessTextBlocks;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TextBlocksPassTest : public EngineTest {
 protected:
  bool Pass(const char* type = "RT_TCD_FILE") { return ProcessTextBlocks(type, processor_, isFound_); }

  RecordingProcessor processor_;
  bool isFound_ = true;
};

TEST_F(TextBlocksPassTest, FindsNothingWithoutBlocks) {
  EXPECT_TRUE(Pass());
  EXPECT_FALSE(isFound_);
  EXPECT_THAT(processor_.names, IsEmpty());
}

TEST_F(TextBlocksPassTest, HandsOutEachBlockInTheOrderOfTheListWithABlankBehindIt) {
  blocks_.Add("b", "second;");
  blocks_.Add("a", std::string("fir\0st", 6));
  blocks_.Add("c", " ");
  isFound_ = false;
  EXPECT_TRUE(Pass());
  EXPECT_TRUE(isFound_);
  EXPECT_THAT(processor_.names, ElementsAre("b", "a", "c"));
  EXPECT_THAT(processor_.texts, ElementsAre("second; ", std::string("fir\0st ", 7), "  "));
  EXPECT_TRUE(processor_.isReadWrite);
}

TEST_F(TextBlocksPassTest, TakesOnlyTheTypeThatIsAskedFor) {
  blocks_.Add("a", "text");
  EXPECT_TRUE(Pass("RT_HWC_FILE"));
  EXPECT_TRUE(isFound_);
  EXPECT_THAT(processor_.names, ElementsAre("Test.hwc"));
  processor_.names.clear();
  EXPECT_TRUE(Pass("RT_OTHER"));
  EXPECT_FALSE(isFound_);
  EXPECT_THAT(processor_.names, IsEmpty());
}

TEST_F(TextBlocksPassTest, CountsAnEmptyFirstBlockAsNoneFound) {
  blocks_.Add("a", "");
  blocks_.Add("b", "text");
  EXPECT_TRUE(Pass());
  EXPECT_FALSE(isFound_);
  EXPECT_THAT(processor_.names, IsEmpty());
  EXPECT_THAT(blocks_.Asked(), ElementsAre("a"));
}

TEST_F(TextBlocksPassTest, CountsAnUnreadableFirstBlockAsNoneFound) {
  blocks_.AddUnreadable("a");
  blocks_.Add("b", "text");
  EXPECT_TRUE(Pass());
  EXPECT_FALSE(isFound_);
  EXPECT_THAT(processor_.names, IsEmpty());
}

TEST_F(TextBlocksPassTest, EndsAtABlockThatCannotBeHad) {
  for (const bool isEmpty : {false, true}) {
    blocks_.RemoveAll();
    processor_.names.clear();
    blocks_.Add("a", "text");
    if (isEmpty)
      blocks_.Add("b", "");
    else
      blocks_.AddUnreadable("b");
    blocks_.Add("c", "text");
    EXPECT_TRUE(Pass());
    EXPECT_TRUE(isFound_);
    EXPECT_THAT(processor_.names, ElementsAre("a"));
  }
}

TEST_F(TextBlocksPassTest, StopsAtABlockThatIsRefused) {
  blocks_.Add("a", "text");
  blocks_.Add("b", "text");
  blocks_.Add("c", "text");
  processor_.refused = "b";
  EXPECT_FALSE(Pass());
  EXPECT_TRUE(isFound_);
  EXPECT_THAT(processor_.names, ElementsAre("a", "b"));
}

TEST_F(TextBlocksPassTest, LogsNothing) {
  SetFlags(true, true);
  blocks_.Add("a", "text");
  EXPECT_TRUE(Pass());
  EXPECT_EQ(TakeLog(), "");
}

// An unreadable first block counts as none, so that the directories are read in its place. It is meant.
TEST_F(TextBlocksPassTest, LeadsToTheDirectoriesWhenTheFirstBlockCannotBeHad) {
  for (const bool isEmpty : {false, true}) {
    blocks_.RemoveAll();
    if (isEmpty)
      blocks_.Add("a", "");
    else
      blocks_.AddUnreadable("a");
    blocks_.Add("b", "Foo Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 1 ;");
    EXPECT_FALSE(TalcPath::TalcPathInit());
    EXPECT_EQ(TakeLog(),
              "\n\nTalcPath Initialization failed to find any Talc commands!!!!!!!"
              "\n>>> FAILED to initialize TalcPath <<<");
  }
  EXPECT_THAT(files_.Asked(), ElementsAre("./", "./"));
}

TEST_F(TextBlocksPassTest, ReadsWhatIsBeforeABlockThatCannotBeHad) {
  blocks_.Add("a", "Foo Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 1 ;");
  blocks_.AddUnreadable("b");
  blocks_.Add("c", "Bar Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 2 ;");
  EXPECT_TRUE(TalcPath::TalcPathInit());
  EXPECT_EQ(TalcPathPrivate::DefinedCommands()->size(), 1u);
  EXPECT_THAT(files_.Asked(), IsEmpty());
}

TEST_F(TextBlocksPassTest, ParsesEachBlockUnderItsName) {
  TalcPathPrivate::ParseFileProcessor parser;
  EXPECT_STREQ(parser.TaskName(), "Parsing Talc Command Definition Files");
  blocks_.Add("Good", "Foo Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 1 ;");
  EXPECT_TRUE(ProcessTextBlocks("RT_TCD_FILE", parser, isFound_));
  EXPECT_EQ(TalcPathPrivate::DefinedCommands()->size(), 1u);
  blocks_.Add("Bad", "Foo Tal ;");
  EXPECT_FALSE(ProcessTextBlocks("RT_TCD_FILE", parser, isFound_));
}

}  // namespace
