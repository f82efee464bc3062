#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "errorException.h"
#include "OneDictionary.h"
#include "platform/Platform.h"
#include "support/CapturedOutput.h"
#include "support/PlatformDouble.h"
#include "support/ScriptedTransport.h"
#include "talcpath.h"

// Helpers keep the Talc library started among them.

namespace {

/// Only a started library compiles; another one says so in its log, which is not of interest here.
bool IsStarted() {
  const test_support::CapturedOutput log;
  TalcPath::TalcCommand command("HWConfigFB");
  TalcPath::TalcByteCode packet;
  return TalcPath::TalcPathCompile(command, packet, nullptr, nullptr);
}

TEST(TalcUsers, AreNoneAtFirst) {
  EXPECT_FALSE(IsStarted());
}

class TalcUsersTest : public testing::Test {
 protected:
  test_support::PlatformDouble system;
  OneDictionary blocks{"HWConfigFB Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 1 ;"};
  platform::ScopedPlatform scope{(system.Use(blocks), system)};
};

TEST_F(TalcUsersTest, StartTheLibraryWithTheFirstHelperAndStopItWithTheLast) {
  test_support::CapturedOutput output;
  auto first = std::make_unique<ScriptedTransport>();
  EXPECT_TRUE(IsStarted());
  auto second = std::make_unique<ScriptedTransport>();
  first.reset();
  EXPECT_TRUE(IsStarted());
  second.reset();
  EXPECT_FALSE(IsStarted());
  // A second start of the library would have said that it was one.
  EXPECT_EQ(output.out() + output.err(), "");
}

TEST_F(TalcUsersTest, StartTheLibraryAnewAfterTheLastHelperWent) {
  for (int i = 0; i < 2; ++i) {
    const ScriptedTransport helper;
    EXPECT_TRUE(IsStarted());
  }
  EXPECT_FALSE(IsStarted());
}

TEST_F(TalcUsersTest, AreRefusedWhenTheLibraryDoesNotStartAndDoNotCountThen) {
  const std::string good = blocks.text;
  blocks.text = "HWConfigFB Nothing ;";
  {
    const test_support::CapturedOutput log;
    try {
      const ScriptedTransport helper;
      ADD_FAILURE() << "nothing was thrown";
    } catch (const errorException& error) {
      EXPECT_STREQ(error.what(), "TalcPath Failed to initialize.");
      EXPECT_STREQ(error.file, "WyvrelHelper.cpp");
    }
  }
  EXPECT_FALSE(IsStarted());
  blocks.text = good;
  const ScriptedTransport helper;
  EXPECT_TRUE(IsStarted());
}

}  // namespace
