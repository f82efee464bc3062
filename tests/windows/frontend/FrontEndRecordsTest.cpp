// What the installer tells, through the system's own windows and messages.

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <future>
#include <string>
#include <vector>

#include "parts/Notification.h"
#include "ReceiverWindow.h"
#include "support/CapturedOutput.h"
#include "TestDesktop.h"

namespace {

using frontend_test::kTitle;
using frontend_test::Received;
using frontend_test::ReceiverWindow;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using Bytes = std::vector<std::uint8_t>;

/// The bytes of a text and its terminator.
Bytes Terminated(const std::string& text) {
  Bytes bytes(text.begin(), text.end());
  bytes.push_back(0);
  return bytes;
}

/// What stands at the offset, as many bytes of it as there are in `expected`.
Bytes At(const Received& record, std::size_t offset, std::size_t length) {
  Bytes bytes = record.bytes;
  bytes.resize(std::max(bytes.size(), offset + length));
  return {bytes.begin() + static_cast<std::ptrdiff_t>(offset),
          bytes.begin() + static_cast<std::ptrdiff_t>(offset + length)};
}

void ExpectText(const Received& record, std::size_t offset, const std::string& text) {
  EXPECT_EQ(At(record, offset, text.size() + 1), Terminated(text));
}

class FrontEndWindow : public testing::Test {
 protected:
  const frontend_test::TestDesktop desktop;
};

TEST_F(FrontEndWindow, GetsProgressAs524Bytes) {
  const ReceiverWindow receiver(desktop, kTitle);
  NotifyProgress("belmara", "Programming", 300);
  ASSERT_THAT(receiver.Records(), SizeIs(1));
  const Received record = receiver.Records()[0];
  EXPECT_EQ(record.kind, 82u);
  EXPECT_THAT(record.bytes, SizeIs(524));
  ExpectText(record, 0, "belmara");
  ExpectText(record, 260, "Programming");
  EXPECT_THAT(At(record, 520, 4), ElementsAre(0x2C, 0x01, 0x00, 0x00));
}

TEST_F(FrontEndWindow, GetsAVersionAs268Bytes) {
  const ReceiverWindow receiver(desktop, kTitle);
  NotifyVersion("fwcore", 0x00001160, 0x89ABCDEF);
  ASSERT_THAT(receiver.Records(), SizeIs(1));
  const Received record = receiver.Records()[0];
  EXPECT_EQ(record.kind, 42u);
  EXPECT_THAT(record.bytes, SizeIs(268));
  ExpectText(record, 0, "fwcore");
  EXPECT_THAT(At(record, 260, 8), ElementsAre(0x60, 0x11, 0x00, 0x00, 0xEF, 0xCD, 0xAB, 0x89));
}

TEST_F(FrontEndWindow, GetsARestartAs8Bytes) {
  const ReceiverWindow receiver(desktop, kTitle);
  NotifyRestart(1, 0);
  NotifyRestart(0, 1);
  ASSERT_THAT(receiver.Records(), SizeIs(2));
  EXPECT_EQ(receiver.Records()[0].kind, 102u);
  EXPECT_THAT(receiver.Records()[0].bytes, ElementsAre(1, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(receiver.Records()[1].kind, 102u);
  EXPECT_THAT(receiver.Records()[1].bytes, ElementsAre(0, 0, 0, 0, 1, 0, 0, 0));
}

TEST_F(FrontEndWindow, GetsNoSender) {
  const ReceiverWindow receiver(desktop, kTitle);
  NotifyProgress("pico", "Done", 100);
  NotifyVersion("pico", 1, 2);
  NotifyRestart(0, 0);
  ASSERT_THAT(receiver.Records(), SizeIs(3));
  for (const Received& record : receiver.Records())
    EXPECT_EQ(record.wParam, 0u);
}

TEST_F(FrontEndWindow, IsFoundByTheRegisteredSignInOneByte) {
  const ReceiverWindow ascii(desktop, "Orbo Veltra Kore");
  const ReceiverWindow utf8(desktop, "Orbo\xC2\xAE Veltra Kore");
  const ReceiverWindow longer(desktop, "Orbo\xAE Veltra Kore 2");
  NotifyRestart(0, 0);
  EXPECT_THAT(ascii.Records(), IsEmpty());
  EXPECT_THAT(utf8.Records(), IsEmpty());
  EXPECT_THAT(longer.Records(), IsEmpty());
  const ReceiverWindow receiver(desktop, kTitle);
  NotifyRestart(0, 0);
  EXPECT_THAT(receiver.Records(), SizeIs(1));
}

TEST_F(FrontEndWindow, IsLookedUpAnewForEachRecord) {
  {
    const ReceiverWindow first(desktop, kTitle);
    NotifyVersion("first", 1, 2);
    ASSERT_THAT(first.Records(), SizeIs(1));
    ExpectText(first.Records()[0], 0, "first");
  }
  NotifyVersion("nobody", 1, 2);
  const ReceiverWindow second(desktop, kTitle);
  NotifyVersion("second", 1, 2);
  ASSERT_THAT(second.Records(), SizeIs(1));
  ExpectText(second.Records()[0], 0, "second");
}

TEST_F(FrontEndWindow, ThatIsMissingOrAnswersAnythingChangesNoOutput) {
  test_support::CapturedOutput captured;
  NotifyProgress("pico", "Loading", 0);
  NotifyVersion("pico", 1, 2);
  NotifyRestart(0, 0);
  for (const LRESULT answer : {0, 1, -1}) {
    const ReceiverWindow receiver(desktop, kTitle, answer);
    NotifyProgress("pico", "Loading", 0);
    NotifyVersion("pico", 1, 2);
    NotifyRestart(0, 0);
    EXPECT_THAT(receiver.Records(), SizeIs(3));
  }
  EXPECT_EQ(captured.out() + captured.err(), "");
}

TEST_F(FrontEndWindow, IsWaitedFor) {
  std::promise<void> received;
  std::promise<void> mayAnswer;
  const ReceiverWindow receiver(desktop, kTitle, TRUE, [&] {
    received.set_value();
    mayAnswer.get_future().wait();
  });
  const std::future<void> sent = std::async(std::launch::async, [this] {
    desktop.Enter();
    NotifyRestart(0, 0);
  });
  received.get_future().wait();
  EXPECT_EQ(sent.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
  mayAnswer.set_value();
  sent.wait();
}

class FrontEndWindowText : public FrontEndWindow, public testing::WithParamInterface<std::size_t> {};

TEST_P(FrontEndWindowText, IsCutTo259CharactersAndATerminator) {
  const ReceiverWindow receiver(desktop, kTitle);
  const std::string text(GetParam(), 'n');
  const std::string cut(std::min<std::size_t>(GetParam(), 259), 'n');
  NotifyProgress(text.c_str(), text.c_str(), -1);
  NotifyVersion(text.c_str(), 0xFFFFFFFF, 0xFFFFFFFF);

  ASSERT_THAT(receiver.Records(), SizeIs(2));
  const Received progress = receiver.Records()[0];
  EXPECT_THAT(progress.bytes, SizeIs(524));
  ExpectText(progress, 0, cut);
  ExpectText(progress, 260, cut);
  EXPECT_THAT(At(progress, 520, 4), ElementsAre(0xFF, 0xFF, 0xFF, 0xFF));
  const Received version = receiver.Records()[1];
  EXPECT_THAT(version.bytes, SizeIs(268));
  ExpectText(version, 0, cut);
  EXPECT_EQ(At(version, 260, 8), Bytes(8, 0xFF));
}

INSTANTIATE_TEST_SUITE_P(OfCharacters, FrontEndWindowText, testing::Values(0, 1, 258, 259, 260, 261, 300, 5000),
                         testing::PrintToStringParamName());

}  // namespace
