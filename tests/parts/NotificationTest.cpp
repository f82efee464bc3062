#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "parts/Notification.h"
#include "support/CapturedOutput.h"
#include "support/PlatformDouble.h"
#include "support/RecordingFrontEnd.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using Bytes = std::vector<std::uint8_t>;

/// A text as it stands in a record: its characters, then zeros up to 260 bytes.
Bytes TextField(const std::string& text) {
  Bytes field(text.begin(), text.end());
  field.resize(260, 0);
  return field;
}

Bytes Join(const std::vector<Bytes>& pieces) {
  Bytes all;
  for (const Bytes& piece : pieces)
    all.insert(all.end(), piece.begin(), piece.end());
  return all;
}

class Notification : public testing::Test {
 protected:
  Notification() { system.Use(frontEnd); }

  const test_support::SentRecord& OnlyRecord() const {
    EXPECT_THAT(frontEnd.Sent(), SizeIs(1));
    return frontEnd.Sent().at(0);
  }

  test_support::RecordingFrontEnd frontEnd;
  test_support::PlatformDouble system;
  platform::ScopedPlatform scope{system};
};

TEST_F(Notification, ProgressIsRecord82WithNamePhaseAndPercent) {
  NotifyProgress("belmara", "Programming", 0x01020304);
  EXPECT_EQ(OnlyRecord().kind, 82u);
  EXPECT_THAT(OnlyRecord().bytes, SizeIs(524));
  EXPECT_EQ(OnlyRecord().bytes, Join({TextField("belmara"), TextField("Programming"), {0x04, 0x03, 0x02, 0x01}}));
}

TEST_F(Notification, ProgressCarriesPercentagesBeyond100AndBelow0AsTheyAre) {
  NotifyProgress("dovu", "Programming", 300);
  NotifyProgress("dovu", "Loading", -99);
  ASSERT_THAT(frontEnd.Sent(), SizeIs(2));
  EXPECT_EQ(frontEnd.Sent()[0].bytes, Join({TextField("dovu"), TextField("Programming"), {0x2C, 0x01, 0x00, 0x00}}));
  EXPECT_EQ(frontEnd.Sent()[1].bytes, Join({TextField("dovu"), TextField("Loading"), {0x9D, 0xFF, 0xFF, 0xFF}}));
}

TEST_F(Notification, VersionIsRecord42WithNameCurrentAndExpected) {
  NotifyVersion("fwcore", 0x00001160, 0x89ABCDEF);
  EXPECT_EQ(OnlyRecord().kind, 42u);
  EXPECT_THAT(OnlyRecord().bytes, SizeIs(268));
  EXPECT_EQ(OnlyRecord().bytes, Join({TextField("fwcore"), {0x60, 0x11, 0x00, 0x00}, {0xEF, 0xCD, 0xAB, 0x89}}));
}

TEST_F(Notification, RestartIsRecord102WithTwoFlags) {
  NotifyRestart(1, 0);
  NotifyRestart(0, 1);
  ASSERT_THAT(frontEnd.Sent(), SizeIs(2));
  EXPECT_EQ(frontEnd.Sent()[0].kind, 102u);
  EXPECT_THAT(frontEnd.Sent()[0].bytes, ElementsAre(1, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(frontEnd.Sent()[1].kind, 102u);
  EXPECT_THAT(frontEnd.Sent()[1].bytes, ElementsAre(0, 0, 0, 0, 1, 0, 0, 0));
}

void SendOneOfEach() {
  NotifyProgress("pico", "Done", 100);
  NotifyVersion("pico", 1, 2);
  NotifyRestart(0, 0);
}

TEST_F(Notification, GoesToTheWindowFoundAsCopyDataMessageWithoutAWParam) {
  frontEnd.SetWindow(0xABCD);
  SendOneOfEach();
  ASSERT_THAT(frontEnd.Sent(), SizeIs(3));
  for (const test_support::SentRecord& record : frontEnd.Sent()) {
    EXPECT_EQ(record.window, 0xABCDu);
    EXPECT_EQ(record.message, 74u);
    EXPECT_EQ(record.wParam, 0u);
  }
}

TEST_F(Notification, LooksForTheWindowByItsTitleAlone) {
  SendOneOfEach();
  ASSERT_THAT(frontEnd.Searches(), SizeIs(3));
  // The registered sign is one byte of code page 1252, not two of UTF-8.
  const std::string title("\x4F\x72\x62\x6F\xAE\x20\x56\x65\x6C\x74\x72\x61\x20\x4B\x6F\x72\x65", 17);
  for (const test_support::WindowSearch& search : frontEnd.Searches()) {
    EXPECT_EQ(search.className, std::nullopt);
    EXPECT_EQ(search.title, title);
  }
}

TEST_F(Notification, LooksForTheWindowAnewForEachRecord) {
  frontEnd.SetWindow(0x1111);
  NotifyRestart(0, 0);
  frontEnd.SetWindow(0);
  NotifyRestart(0, 0);
  frontEnd.SetWindow(0x2222);
  NotifyRestart(0, 0);
  EXPECT_THAT(frontEnd.Searches(), SizeIs(3));
  ASSERT_THAT(frontEnd.Sent(), SizeIs(2));
  EXPECT_EQ(frontEnd.Sent()[0].window, 0x1111u);
  EXPECT_EQ(frontEnd.Sent()[1].window, 0x2222u);
}

TEST_F(Notification, WithoutAWindowNothingIsSentOrSaid) {
  frontEnd.SetWindow(0);
  test_support::CapturedOutput captured;
  SendOneOfEach();
  EXPECT_THAT(frontEnd.Searches(), SizeIs(3));
  EXPECT_THAT(frontEnd.Sent(), IsEmpty());
  EXPECT_EQ(captured.out() + captured.err(), "");
}

TEST_F(Notification, AnAnswerOfTheReceiverChangesNothing) {
  test_support::CapturedOutput captured;
  for (const std::intptr_t answer : {0, -1, 1}) {
    frontEnd.SetAnswer(answer);
    SendOneOfEach();
  }
  EXPECT_THAT(frontEnd.Sent(), SizeIs(9));
  EXPECT_EQ(captured.out() + captured.err(), "");
}

class NotificationText : public Notification, public testing::WithParamInterface<std::size_t> {};

TEST_P(NotificationText, IsCutTo259CharactersAndATerminator) {
  const std::string text(GetParam(), 'n');
  const Bytes whole = TextField(std::string(std::min<std::size_t>(GetParam(), 259), 'n'));
  ASSERT_EQ(whole.back(), 0);

  NotifyProgress(text.c_str(), text.c_str(), -1);
  NotifyVersion(text.c_str(), 0xFFFFFFFF, 0xFFFFFFFF);

  ASSERT_THAT(frontEnd.Sent(), SizeIs(2));
  const Bytes ones = {0xFF, 0xFF, 0xFF, 0xFF};
  EXPECT_EQ(frontEnd.Sent()[0].bytes, Join({whole, whole, ones}));
  EXPECT_EQ(frontEnd.Sent()[1].bytes, Join({whole, ones, ones}));
}

INSTANTIATE_TEST_SUITE_P(OfCharacters, NotificationText, testing::Values(0, 1, 258, 259, 260, 261, 300, 5000),
                         testing::PrintToStringParamName());

}  // namespace
