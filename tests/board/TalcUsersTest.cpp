#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "errorException.h"
#include "platform/Platform.h"
#include "support/CapturedOutput.h"
#include "support/PlatformDouble.h"
#include "talcpath.h"
#include "WyvrelHelper.h"

// Helpers keep the Talc library started among them.

namespace {

/// A transport that has nothing of its own.
class BareHelper : public WyvrelHelperRep {
 public:
  BareHelper() : WyvrelHelperRep(OpenMode::kHostCards) {}
  bool Open() override { return true; }
  const char* GetPrompt() const override { return ""; }
  bool IsCodecPresent(std::int32_t) override { return false; }
};

/// One embedded dictionary, whose text a test sets.
class OneDictionary : public platform::TextBlocks {
 public:
  std::vector<std::string> List(std::string_view) override { return {"dictionary"}; }
  std::optional<std::string_view> Bytes(std::string_view, std::string_view) override { return text; }

  std::string text;
};

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
  TalcUsersTest() { blocks.text = "HWConfigFB Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 1 ;"; }

  test_support::PlatformDouble system;
  OneDictionary blocks;
  platform::ScopedPlatform scope{(system.Use(blocks), system)};
};

TEST_F(TalcUsersTest, StartTheLibraryWithTheFirstHelperAndStopItWithTheLast) {
  test_support::CapturedOutput output;
  auto first = std::make_unique<BareHelper>();
  EXPECT_TRUE(IsStarted());
  auto second = std::make_unique<BareHelper>();
  first.reset();
  EXPECT_TRUE(IsStarted());
  second.reset();
  EXPECT_FALSE(IsStarted());
  // A second start of the library would have said that it was one.
  EXPECT_EQ(output.out() + output.err(), "");
}

TEST_F(TalcUsersTest, StartTheLibraryAnewAfterTheLastHelperWent) {
  for (int i = 0; i < 2; ++i) {
    const BareHelper helper;
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
      const BareHelper helper;
      ADD_FAILURE() << "nothing was thrown";
    } catch (const errorException& error) {
      EXPECT_STREQ(error.what(), "TalcPath Failed to initialize.");
      EXPECT_STREQ(error.file, "WyvrelHelper.cpp");
    }
  }
  EXPECT_FALSE(IsStarted());
  blocks.text = good;
  const BareHelper helper;
  EXPECT_TRUE(IsStarted());
}

}  // namespace
