#include <gmock/gmock.h>

#include "BoxFifoFixture.h"
#include "PageScript.h"

// BOX_FIFO_PAGE is the path of docs/box-fifo.md.

namespace {

using test_support::FromHex;
using test_support::Hex;

using BoxFifoPage = BoxFifoFixture;

TEST_F(BoxFifoPage, ShowsTheAccessesOfAnExchange) {
  const test_support::RegisterScript script = ScriptOnThePage(BOX_FIFO_PAGE, "trace");
  ASSERT_EQ(script.size(), 36u);
  registers.Expect(script);
  const test_support::Bytes command = FromHex("0B 0B 00 06 80 35 00 00 00 02");
  reply.assign(kReplyRoomBytes, 0x5A);
  EXPECT_EQ(helper.TransactBoBCommand(command.data(), static_cast<std::uint32_t>(command.size()), reply.data(),
                                      &replyLength, 1'000'000, 0),
            kHWCerr_None);
  EXPECT_EQ(replyLength, 19u);
  EXPECT_EQ(Hex(ReplyBytes(19)), "0B 0B 00 0F 80 35 00 00 00 02 00 07 90 04 00 5A 42 01 39");
}

}  // namespace
