#include <gmock/gmock.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "FlashFixture.h"

// FLASH_PAGE is the path of docs/flash.md.

namespace {

/// The accesses in the fenced block of the page that is opened by "```" and `name`; empty if there is none.
RegisterScript ScriptOnThePage(const std::string& name) {
  RegisterScript script;
  std::ifstream page(FLASH_PAGE);
  std::string line;
  while (std::getline(page, line) && line != "```" + name)
    continue;
  while (std::getline(page, line) && line != "```") {
    char kind = 0;
    std::uint32_t offset = 0;
    std::uint32_t value = 0;
    if (std::sscanf(line.c_str(), "%c %x %8x", &kind, &offset, &value) != 3 || (kind != 'W' && kind != 'R')) {
      ADD_FAILURE() << "not an access: " << line;
      return {};
    }
    script.push_back(kind == 'W' ? W(offset, value) : R(offset, value));
  }
  return script;
}

class FlashPage : public FlashFixture {
 protected:
  void SetUp() override { flash.Attach(registers.Window()); }
};

TEST_F(FlashPage, ShowsTheAccessesOfAnErase) {
  const RegisterScript script = ScriptOnThePage("erase");
  ASSERT_EQ(script.size(), 19u);
  registers.Expect(script);
  EXPECT_TRUE(flash.EraseBlock(0x30000));
  EXPECT_THAT(clock.Sleeps(), testing::ElementsAre(20, 20));
}

TEST_F(FlashPage, ShowsTheAccessesOfAProgramRun) {
  constexpr std::uint16_t kWords[16] = {0x1111, 0x2222, 0x3333, 0x4444, 0x5555, 0x6666, 0x7777, 0x8888,
                                        0x9999, 0xAAAA, 0xBBBB, 0xCCCC, 0xDDDD, 0xEEEE, 0xFFFF, 0x0000};
  const RegisterScript script = ScriptOnThePage("program");
  ASSERT_EQ(script.size(), 60u);
  registers.Expect(script);
  EXPECT_TRUE(flash.ProgramRun(0x30000, kWords));
  EXPECT_THAT(clock.Sleeps(), testing::IsEmpty());
}

}  // namespace
