#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "board/CreateWyvrelHelper.h"
#include "BoxFifoScripts.h"
#include "DriverScripts.h"
#include "errorException.h"
#include "support/ManualClock.h"
#include "support/ScriptedRegisters.h"

namespace {

using namespace driver_scripts;

constexpr std::uint64_t kBelmaraHandle = 0x11;
constexpr std::uint64_t kDovuHandle = 0x12;
constexpr std::uint64_t kMorvakHandle = 0x31;

class CreateWyvrelHelperTest : public ::testing::Test {
 protected:
  CreateWyvrelHelperTest() {
    system.Use(devices);
    system.Use(clock.clock());
  }

  /// What the message of the exception is that comes out of the factory.
  static std::string MessageOf(OpenMode mode) {
    try {
      CreateWyvrelHelper(mode);
    } catch (const errorException& error) {
      return error.what();
    }
    return "nothing was thrown";
  }

  test_support::ScriptedRegisters belmara;
  test_support::ScriptedRegisters dovu;
  test_support::ManualClock clock;
  test_support::StrictDevices devices;
  test_support::PlatformDouble system;
  platform::ScopedPlatform scope{system};
};

/// Its reply FIFO is empty, which is looked at.
DeviceScript OpensBelmara(test_support::ScriptedRegisters& registers) {
  registers.Expect(box_fifo::EmptyFlush());
  return Join(OpensCard(kBelmara, kBelmaraHandle), MapsRegisters(kBelmaraHandle, registers, 0x20));
}
DeviceScript OpensDovu(platform::RegisterTrap& registers) {
  return Join(OpensCard(kDovu, kDovuHandle), MapsRegisters(kDovuHandle, registers, 0x30));
}

// It is opened once: opening it again would lose the first handle.
TEST_F(CreateWyvrelHelperTest, GivesSecondLineHardwareFirstInModes0And1) {
  for (const int mode : {0, 1}) {
    SCOPED_TRACE(mode);
    devices.Expect(OpensMorvak(kMorvakHandle));
    devices.Expect(TellsModel(kMorvakHandle, 2, 5));
    const auto helper = CreateWyvrelHelper(OpenMode{mode});
    ASSERT_NE(helper, nullptr);
    EXPECT_STREQ(helper->GetPrompt(), "MorvakTalc> ");
    EXPECT_EQ(static_cast<int>(helper->boardKind), 7);
    devices.ExpectDone();
    devices.Expect(Closes(kMorvakHandle));
  }
}

TEST_F(CreateWyvrelHelperTest, FallsBackToTheHostCardsOfItsMode) {
  struct Case {
    int mode;
    bool looksForDovu;
    int boardKind;
  };
  for (const Case& each : {Case{0, true, 0}, Case{1, false, 1}}) {
    SCOPED_TRACE(each.mode);
    devices.Expect(IsAbsent(kMorvak));
    devices.Expect(OpensBelmara(belmara));
    if (each.looksForDovu) devices.Expect(OpensDovu(dovu));
    const auto helper = CreateWyvrelHelper(OpenMode{each.mode});
    ASSERT_NE(helper, nullptr);
    EXPECT_STREQ(helper->GetPrompt(), "VeltraTalc> ");
    EXPECT_EQ(static_cast<int>(helper->boardKind), each.boardKind);
    devices.ExpectDone();
    devices.Expect(Closes(kBelmaraHandle));
    if (each.looksForDovu) devices.Expect(Closes(kDovuHandle));
  }
}

TEST_F(CreateWyvrelHelperTest, GivesHostCardsAloneInModes2And3) {
  for (const int mode : {2, 3}) {
    SCOPED_TRACE(mode);
    devices.Expect(OpensBelmara(belmara));
    if (mode == 2) devices.Expect(IsAbsent(kDovu));
    const auto helper = CreateWyvrelHelper(OpenMode{mode});
    ASSERT_NE(helper, nullptr);
    auto* specific = dynamic_cast<VeltraSpecificHelper*>(helper.get());
    ASSERT_NE(specific, nullptr);
    EXPECT_NE(specific->GetC28FxJ3A("belmara"), nullptr);
    devices.ExpectDone();
    devices.Expect(Closes(kBelmaraHandle));
  }
}

TEST_F(CreateWyvrelHelperTest, GivesSecondLineHardwareAloneInEveryOtherMode) {
  for (const int mode : {4, 5, 17, -1}) {
    SCOPED_TRACE(mode);
    devices.Expect(OpensMorvak(kMorvakHandle));
    devices.Expect(TellsModel(kMorvakHandle, 2, 4));
    const auto helper = CreateWyvrelHelper(OpenMode{mode});
    ASSERT_NE(helper, nullptr);
    EXPECT_STREQ(helper->GetPrompt(), "MorvakTalc> ");
    devices.ExpectDone();
    devices.Expect(Closes(kMorvakHandle));
  }
}

TEST_F(CreateWyvrelHelperTest, GivesNothingWhenNothingIsThere) {
  struct Case {
    int mode;
    std::vector<std::string> lookedFor;
  };
  const std::vector<Case> cases = {
      {0, {kMorvak, kBelmara, kDovu}},
      {1, {kMorvak, kBelmara}},
      {2, {kBelmara, kDovu}},
      {3, {kBelmara}},
      {4, {kMorvak}},
      {5, {kMorvak}},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.mode);
    for (const std::string& guid : each.lookedFor)
      devices.Expect(IsAbsent(guid));
    EXPECT_EQ(CreateWyvrelHelper(OpenMode{each.mode}), nullptr);
    devices.ExpectDone();
  }
}

TEST_F(CreateWyvrelHelperTest, ClosesSecondLineHardwareThatIsBrokenAndDoesNotFallBack) {
  for (const int mode : {0, 1, 4}) {
    SCOPED_TRACE(mode);
    devices.Expect(OpensMorvak(kMorvakHandle));
    devices.Expect({{"DeviceIoControl 0x31 code 0xaa010008 in [] out 8", Fails()}});
    devices.Expect(Closes(kMorvakHandle));
    EXPECT_EQ(MessageOf(OpenMode{mode}), "MorvakHelper::Open can't get Morvak model - ioctl failed.");
    devices.ExpectDone();
  }
}

// The first close belongs to the failed mapping, the second to the helper that goes.
TEST_F(CreateWyvrelHelperTest, ClosesAHostCardThatIsBroken) {
  for (const int mode : {0, 1, 2, 3}) {
    SCOPED_TRACE(mode);
    if (mode < 2) devices.Expect(IsAbsent(kMorvak));
    devices.Expect(OpensCard(kBelmara, kBelmaraHandle));
    devices.Expect(FailsToMap(kBelmaraHandle));
    devices.Expect({{"CloseHandle 0x11", Fails()}});
    EXPECT_EQ(MessageOf(OpenMode{mode}), "can't fetch board memory map");
    devices.ExpectDone();
  }
}

TEST_F(CreateWyvrelHelperTest, ClosesTheFirstCardWhenTheSecondIsBroken) {
  devices.Expect(OpensBelmara(belmara));
  devices.Expect(OpensCard(kDovu, kDovuHandle));
  devices.Expect(FailsToMap(kDovuHandle));
  devices.Expect({{"CloseHandle 0x11", Succeeds()}, {"CloseHandle 0x12", Fails()}});
  EXPECT_EQ(MessageOf(OpenMode::kHostCards), "can't fetch board memory map");
}

}  // namespace
