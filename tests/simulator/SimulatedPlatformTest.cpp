#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "simulator/SimulatedPlatform.h"
#include "support/Environment.h"
#include "support/TempFolder.h"

using platform::CopyData;

namespace {

class SimulatedPlatformTest : public testing::Test {
 protected:
  simulator::VirtualClock clock;
  simulator::SimulatedPlatform platform{clock};
};

TEST_F(SimulatedPlatformTest, HasNoDevicesOrWindowsByItself) {
  const platform::Handle set = platform.devices().SetupDiGetClassDevsA({}, 18);
  platform::InterfaceData data{.size = 28};
  EXPECT_FALSE(platform.devices().SetupDiEnumDeviceInterfaces(set, {}, 0, data));
  EXPECT_EQ(platform.frontEnd().FindWindowA(nullptr, ""), 0u);
  EXPECT_EQ(&platform.clock(), &clock);
}

TEST_F(SimulatedPlatformTest, HasTheTextsThatAreEmbeddedInTheProgram) {
  EXPECT_EQ(&platform.textBlocks(), &platform::Native().textBlocks());
}

TEST_F(SimulatedPlatformTest, CanBeTheCurrentOne) {
  const platform::ScopedPlatform current(platform);
  platform::Current().clock().Sleep(1);
  EXPECT_EQ(clock.NowNanoseconds(), 1'000'000);
}

TEST_F(SimulatedPlatformTest, ShowsTheEnvironmentThatATestSets) {
  test_support::SetVariable("SIMULATED_PLATFORM_TEST", "real");
  EXPECT_EQ(platform.files().GetEnvironmentVariableA("SIMULATED_PLATFORM_TEST"), std::nullopt);
  platform.files().environment["SIMULATED_PLATFORM_TEST"] = "set";
  EXPECT_EQ(platform.files().GetEnvironmentVariableA("SIMULATED_PLATFORM_TEST"), "set");
  platform.files().ShowRealEnvironment();
  EXPECT_EQ(platform.files().GetEnvironmentVariableA("SIMULATED_PLATFORM_TEST"), "real");
  EXPECT_EQ(platform.files().GetEnvironmentVariableA("SIMULATED_PLATFORM_TEST_UNSET"), std::nullopt);
}

TEST_F(SimulatedPlatformTest, ListsRealDirectories) {
  const test_support::TempFolder folder;
  folder.Write("b.rbi", "b");
  folder.Write("a/inside", "a");
  const auto entries = platform.files().ListDirectory(folder.Path().string());
  ASSERT_TRUE(entries.has_value());
  ASSERT_EQ(entries->size(), 2u);
  EXPECT_EQ((*entries)[0].name, "a");
  EXPECT_TRUE((*entries)[0].isDirectory);
  EXPECT_EQ((*entries)[1].name, "b.rbi");
  EXPECT_EQ(platform.files().ListDirectory(folder.File("none")), std::nullopt);
}

TEST(SimulatedFrontEnd, KeepsWhatItsWindowIsSent) {
  simulator::SimulatedFrontEnd desktop;
  desktop.Open("Installer\xAE");
  const platform::WindowHandle window = desktop.FindWindowA(nullptr, "Installer\xAE");
  ASSERT_NE(window, 0u);
  const char record[] = {1, 0, 2};
  EXPECT_EQ(desktop.SendMessageA(window, platform::kCopyDataMessage, 7, CopyData{9, 3, record}), 1);
  ASSERT_EQ(desktop.received().size(), 1u);
  EXPECT_EQ(desktop.received()[0].message, 74u);
  EXPECT_EQ(desktop.received()[0].wParam, 7u);
  EXPECT_EQ(desktop.received()[0].kind, 9u);
  EXPECT_THAT(desktop.received()[0].bytes, testing::ElementsAre(1, 0, 2));
}

TEST(SimulatedFrontEnd, FindsItsWindowByTheWholeTitleAlone) {
  simulator::SimulatedFrontEnd desktop;
  EXPECT_EQ(desktop.FindWindowA(nullptr, "Title"), 0u);
  desktop.Open("Title");
  EXPECT_NE(desktop.FindWindowA(nullptr, "Title"), 0u);
  EXPECT_EQ(desktop.FindWindowA(nullptr, "title"), 0u);
  EXPECT_EQ(desktop.FindWindowA(nullptr, "Title "), 0u);
  EXPECT_EQ(desktop.FindWindowA(nullptr, nullptr), 0u);
  EXPECT_EQ(desktop.FindWindowA("Class", "Title"), 0u);
}

TEST(SimulatedFrontEnd, DropsWhatIsSentToAClosedWindow) {
  simulator::SimulatedFrontEnd desktop;
  desktop.Open("Title");
  const platform::WindowHandle window = desktop.FindWindowA(nullptr, "Title");
  desktop.Close();
  EXPECT_EQ(desktop.FindWindowA(nullptr, "Title"), 0u);
  EXPECT_EQ(desktop.SendMessageA(window, 74, 0, CopyData{0, 1, "x"}), 0);
  EXPECT_EQ(desktop.SendMessageA(0, 74, 0, CopyData{0, 1, "x"}), 0);
  desktop.Open("Title");
  EXPECT_NE(desktop.FindWindowA(nullptr, "Title"), window) << "a window of its own";
  EXPECT_EQ(desktop.SendMessageA(window, 74, 0, CopyData{0, 1, "x"}), 0);
  EXPECT_THAT(desktop.received(), testing::IsEmpty());
}

TEST(SimulatedFrontEnd, RefusesARecordWithoutBytes) {
  simulator::SimulatedFrontEnd desktop;
  desktop.Open("Title");
  const platform::WindowHandle window = desktop.FindWindowA(nullptr, "Title");
  EXPECT_EQ(desktop.SendMessageA(window, 74, 0, CopyData{0, 1, nullptr}), 0);
  EXPECT_EQ(desktop.SendMessageA(window, 74, 0, CopyData{0, 0, nullptr}), 1);
  EXPECT_EQ(desktop.received().size(), 1u);
}

}  // namespace
