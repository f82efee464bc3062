#include <gtest/gtest.h>

#include <algorithm>

#include "download/BoxDownloadHelpers.h"
#include "support/HexBlock.h"
#include "support/ManualClock.h"
#include "support/PlatformDouble.h"
#include "support/ScriptedTransport.h"

// ORBO_QX_PAGE is the path of docs/orbo-qx.md.

namespace {

using test_support::Bytes;

TEST(OrboQxPage, ShowsTheCommandsThatStartADownload) {
  const Bytes page = test_support::ReadHexBlock(ORBO_QX_PAGE);
  ASSERT_EQ(page.size(), 32u);
  const Bytes diagnostic(page.begin(), page.begin() + 18);
  const Bytes start(page.begin() + 18, page.end());
  test_support::ManualClock clock;
  test_support::PlatformDouble system;
  system.Use(clock.clock());
  const platform::ScopedPlatform scope(system);
  ScriptedTransport board;
  board.Expect({{.command = diagnostic, .reply = test_support::FromHex("0B 0B 00 04 C0 02 00 00")},
                {.command = start, .reply = test_support::FromHex("0B 0B 00 04 80 12 00 00")}});
  MorvakCPLDHelper helper(board, 1);
  helper.StartDownload(4096);
  EXPECT_EQ(clock.Sleeps(), std::vector<std::uint32_t>{500});
}

}  // namespace
