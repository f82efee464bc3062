#include <gmock/gmock.h>

#include "FlashFixture.h"
#include "PageScript.h"

// FLASH_PAGE is the path of docs/flash.md.

namespace {

class FlashPage : public FlashFixture {
 protected:
  void SetUp() override { flash.Attach(registers.Window()); }
};

TEST_F(FlashPage, ShowsTheAccessesOfAnErase) {
  const RegisterScript script = ScriptOnThePage(FLASH_PAGE, "erase");
  ASSERT_EQ(script.size(), 19u);
  registers.Expect(script);
  EXPECT_TRUE(flash.EraseBlock(0x30000));
  EXPECT_THAT(clock.Sleeps(), testing::ElementsAre(20, 20));
}

TEST_F(FlashPage, ShowsTheAccessesOfAProgramRun) {
  constexpr std::uint16_t kWords[16] = {0x1111, 0x2222, 0x3333, 0x4444, 0x5555, 0x6666, 0x7777, 0x8888,
                                        0x9999, 0xAAAA, 0xBBBB, 0xCCCC, 0xDDDD, 0xEEEE, 0xFFFF, 0x0000};
  const RegisterScript script = ScriptOnThePage(FLASH_PAGE, "program");
  ASSERT_EQ(script.size(), 60u);
  registers.Expect(script);
  EXPECT_TRUE(flash.ProgramRun(0x30000, kWords));
  EXPECT_THAT(clock.Sleeps(), testing::IsEmpty());
}

}  // namespace
