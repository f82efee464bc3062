// The worked example of the page on front ends. FRONT_END_PAGE is the path of docs/front-end.md.

#include <frontend/RecordLine.h>
#include <frontend/Records.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "parts/Notification.h"
#include "support/HexBlock.h"
#include "support/PageBlock.h"
#include "support/PlatformDouble.h"
#include "support/RecordingFrontEnd.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

class FrontEndPage : public testing::Test {
 protected:
  FrontEndPage() : page_(test_support::ReadHexBlock(FRONT_END_PAGE)) {}

  void SetUp() override { ASSERT_EQ(page_.size(), 268u + 8u); }

  Bytes Version() const { return {page_.begin(), page_.begin() + 268}; }
  Bytes Restart() const { return {page_.begin() + 268, page_.end()}; }

 private:
  const Bytes page_;
};

TEST_F(FrontEndPage, ShowsWhatIsDecoded) {
  EXPECT_EQ(frontend::DecodeRecord(42, Version()), frontend::Record(frontend::Version{"tulmen", 1, 2}));
  EXPECT_EQ(frontend::DecodeRecord(102, Restart()), frontend::Record(frontend::Restart{0, 1}));
}

TEST_F(FrontEndPage, ShowsWhatTheInstallerSends) {
  test_support::RecordingFrontEnd receiver;
  test_support::PlatformDouble system;
  system.Use(receiver);
  const platform::ScopedPlatform scope(system);
  NotifyVersion("tulmen", 1, 2);
  NotifyRestart(0, 1);
  ASSERT_EQ(receiver.Sent().size(), 2u);
  EXPECT_EQ(receiver.Sent()[0].bytes, Version());
  EXPECT_EQ(receiver.Sent()[1].bytes, Restart());
}

TEST_F(FrontEndPage, ShowsTheLog) {
  const std::vector<std::string> lines = test_support::LinesOnThePage(FRONT_END_PAGE, "json");
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0], frontend::RecordLine(102, Restart(), frontend::DecodeRecord(102, Restart())));
  const Bytes wrong = {0x00, 0xFF, 0x41};
  EXPECT_EQ(lines[1], frontend::RecordLine(102, wrong, frontend::DecodeRecord(102, wrong)));
}

}  // namespace
