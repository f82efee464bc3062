#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "board/MorvakHelper.h"
#include "DriverScripts.h"
#include "errorException.h"
#include "support/CapturedOutput.h"

namespace {

using namespace driver_scripts;

constexpr std::uint64_t kHandle = 0x31;
const std::string kModelCall = "DeviceIoControl 0x31 code 0xaa010008 in [] out 8";

class MorvakHelperTest : public ::testing::Test {
 protected:
  MorvakHelperTest() { system.Use(devices); }

  test_support::StrictDevices devices;
  test_support::PlatformDouble system;
  platform::ScopedPlatform scope{system};
};

TEST_F(MorvakHelperTest, IsSilentWhenTheHardwareIsNotThere) {
  devices.Expect(IsAbsent(kMorvak));
  test_support::CapturedOutput captured;
  MorvakHelper helper(OpenMode::kMorvak);
  EXPECT_FALSE(helper.Open());
  EXPECT_FALSE(helper.HasTalcPath());
  EXPECT_EQ(static_cast<int>(helper.boardKind), 8);
  EXPECT_EQ(captured.out() + captured.err(), "");
}

TEST_F(MorvakHelperTest, HasNothingToCloseAfterAnInvalidHandle) {
  devices.Expect(OpensMorvak(~std::uint64_t{0}));
  MorvakHelper helper(OpenMode::kMorvak);
  EXPECT_FALSE(helper.Open());
  EXPECT_FALSE(helper.HasTalcPath());
}

TEST_F(MorvakHelperTest, KnowsTwoModels) {
  const std::vector<std::pair<std::uint8_t, int>> cases = {{4, 5}, {5, 7}, {6, 8}, {0, 8}, {3, 8}, {255, 8}};
  for (const auto& [model, boardKind] : cases) {
    SCOPED_TRACE(::testing::Message() << "model " << int{model});
    devices.Expect(OpensMorvak(kHandle));
    devices.Expect(TellsModel(kHandle, 2, model));
    devices.Expect(Closes(kHandle));
    {
      MorvakHelper helper(OpenMode::kMorvak);
      EXPECT_TRUE(helper.Open());
      EXPECT_EQ(static_cast<int>(helper.boardKind), boardKind);
      EXPECT_TRUE(helper.HasTalcPath());
      EXPECT_STREQ(helper.GetPrompt(), "MorvakTalc> ");
    }
    devices.ExpectDone();
  }
}

// The length of the answer is not looked at: what did not come is 0.
TEST_F(MorvakHelperTest, TakesAShortAnswerForAModelThatItDoesNotKnow) {
  devices.Expect(OpensMorvak(kHandle));
  devices.Expect({{kModelCall, Answers({2, 0, 0, 0}, 4)}});
  devices.Expect(Closes(kHandle));
  MorvakHelper helper(OpenMode::kMorvak);
  EXPECT_TRUE(helper.Open());
  EXPECT_EQ(static_cast<int>(helper.boardKind), 8);
}

TEST_F(MorvakHelperTest, ThrowsWhenTheModelIsNotToldAndClosesTheDevice) {
  devices.Expect(OpensMorvak(kHandle));
  devices.Expect({{kModelCall, Fails()}});
  MorvakHelper helper(OpenMode::kMorvak);
  try {
    helper.Open();
    ADD_FAILURE() << "nothing was thrown";
  } catch (const errorException& error) {
    EXPECT_STREQ(error.what(), "MorvakHelper::Open can't get Morvak model - ioctl failed.");
    EXPECT_STREQ(error.file, "MorvakHelper.cpp");
  }
  EXPECT_EQ(static_cast<int>(helper.boardKind), 8);
  devices.ExpectDone();
  devices.Expect(Closes(kHandle));
}

TEST_F(MorvakHelperTest, GoesWithoutAWordWhenItsCloseFails) {
  devices.Expect(OpensMorvak(kHandle));
  devices.Expect(TellsModel(kHandle, 2, 5));
  devices.Expect({{"CloseHandle 0x31", Fails()}});
  test_support::CapturedOutput captured;
  {
    MorvakHelper helper(OpenMode::kMorvak);
    helper.Open();
  }
  EXPECT_EQ(captured.out() + captured.err(), "");
}

TEST_F(MorvakHelperTest, HasNoHostCardResources) {
  MorvakHelper helper(OpenMode::kMorvak);
  EXPECT_THROW(helper.GetC28FxJ3A("belmara"), errorException);
  EXPECT_THROW(helper.GetKarvelProgramAddr("belmara"), errorException);
  EXPECT_THROW(helper.GetKarvelVersion("belmara"), errorException);
}

// ---- IsCodecPresent

class MorvakCodecs : public MorvakHelperTest {
 protected:
  MorvakCodecs() {
    devices.Expect(OpensMorvak(kHandle));
    devices.Expect(TellsModel(kHandle, 2, 5));
    helper->Open();
    devices.ExpectDone();
  }
  ~MorvakCodecs() override { devices.Expect(Closes(kHandle)); }

  const std::unique_ptr<MorvakHelper> helper = std::make_unique<MorvakHelper>(OpenMode::kMorvak);
};

DeviceScript QueriesModule(const std::string& slotBytes, const std::vector<std::uint8_t>& answer) {
  return {{"DeviceIoControl 0x31 code 0xaa010054 in [" + slotBytes + "] out 8", Answers(answer)}};
}

TEST_F(MorvakCodecs, RefusesASlotThatDoesNotExistWithoutAskingTheDriver) {
  for (const std::int32_t slot : {-1, 3, 100}) {
    SCOPED_TRACE(slot);
    try {
      helper->IsCodecPresent(slot);
      ADD_FAILURE() << "nothing was thrown";
    } catch (const errorException& error) {
      EXPECT_STREQ(error.what(), "MorvakHelper: Query of invalid codec.");
      EXPECT_STREQ(error.file, "MorvakHelper.cpp");
    }
  }
}

TEST_F(MorvakCodecs, HasNoCodecWhenTheDriverDoesNotTellItsSlots) {
  for (const std::int32_t slot : {0, 1, 2}) {
    devices.Expect({{kModelCall, Fails()}});
    EXPECT_FALSE(helper->IsCodecPresent(slot));
  }
}

TEST_F(MorvakCodecs, AreAskedForAccordingToTheNumberOfSlots) {
  struct Case {
    std::uint8_t codecSlots;
    std::int32_t slot;
    const char* askedFor;  ///< null: the driver is not asked a second time
  };
  // The slots 0 and 2 are two names of one module.
  const Case cases[] = {
      {0, 0, nullptr},       {0, 1, nullptr},       {0, 2, nullptr},        //
      {1, 0, "00 00 00 00"}, {1, 1, nullptr},       {1, 2, "00 00 00 00"},  //
      {2, 0, "00 00 00 00"}, {2, 1, "01 00 00 00"}, {2, 2, "00 00 00 00"},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(::testing::Message() << int{each.codecSlots} << " slots, slot " << each.slot);
    devices.Expect(TellsModel(kHandle, each.codecSlots, 5));
    if (each.askedFor != nullptr) devices.Expect(QueriesModule(each.askedFor, {1, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(helper->IsCodecPresent(each.slot), each.askedFor != nullptr);
    devices.ExpectDone();
  }
}

TEST_F(MorvakCodecs, ThrowWhenTheDriverTellsOfMoreThanTwoSlots) {
  for (const std::vector<std::uint8_t>& slots : {std::vector<std::uint8_t>{3, 0, 0, 0, 5, 0, 0, 0},
                                                 {2, 1, 0, 0, 5, 0, 0, 0},
                                                 {255, 255, 255, 255, 5, 0, 0, 0}}) {
    devices.Expect({{kModelCall, Answers(slots)}});
    try {
      helper->IsCodecPresent(0);
      ADD_FAILURE() << "nothing was thrown";
    } catch (const errorException& error) {
      EXPECT_STREQ(error.what(), "MorvakHelper: Invalid number of codec slots.");
      EXPECT_STREQ(error.file, "MorvakHelper.cpp");
    }
    devices.ExpectDone();
  }
}

TEST_F(MorvakCodecs, AreThereInTwoStates) {
  struct Case {
    std::vector<std::uint8_t> answer;
    bool isPresent;
  };
  const std::vector<Case> cases = {
      {{0, 0, 0, 0, 1, 0, 0, 0}, false},    {{1, 0, 0, 0, 0, 0, 0, 0}, true},
      {{2, 0, 0, 0, 9, 9, 9, 9}, true},     {{3, 0, 0, 0, 1, 0, 0, 0}, false},
      {{1, 1, 0, 0, 0, 0, 0, 0}, false},    {{0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0}, false},
      {{1, 0, 0, 0x80, 0, 0, 0, 0}, false},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(::testing::PrintToString(each.answer));
    devices.Expect(TellsModel(kHandle, 2, 5));
    devices.Expect(QueriesModule("01 00 00 00", each.answer));
    EXPECT_EQ(helper->IsCodecPresent(1), each.isPresent);
    devices.ExpectDone();
  }
}

TEST_F(MorvakCodecs, AreAbsentWhenTheDriverDoesNotAnswer) {
  devices.Expect(TellsModel(kHandle, 2, 5));
  devices.Expect({{"DeviceIoControl 0x31 code 0xaa010054 in [01 00 00 00] out 8", Fails()}});
  EXPECT_FALSE(helper->IsCodecPresent(1));
}

TEST_F(MorvakHelperTest, HasNoCodecsWhileItIsNotOpen) {
  devices.Expect({{"DeviceIoControl 0 code 0xaa010008 in [] out 8", Fails()}});
  MorvakHelper helper(OpenMode::kMorvak);
  EXPECT_FALSE(helper.IsCodecPresent(0));
}

}  // namespace
