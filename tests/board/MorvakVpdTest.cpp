#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

#include "board/MorvakHelper.h"
#include "DriverScripts.h"
#include "MorvakDriver.h"
#include "support/FailingAllocation.h"
#include "support/FailureOf.h"

// Reads of VPD from the second line's boards.

namespace {

using namespace driver_scripts;
using test_support::Bytes;
using test_support::FromHex;
using test_support::Hex;

constexpr std::uint64_t kHandle = 0x31;
constexpr char kNotRead[] = "MorvakHelper.cpp: MorvakHelper::GetBoardVPD can't get Morvak VPD - ioctl failed.";

class MorvakVpd : public ::testing::Test {
 protected:
  MorvakVpd() {
    system.Use(driver);
    devices.Expect(OpensMorvak(kHandle));
    devices.Expect(TellsModel(kHandle, 2, 5));
    helper = std::make_unique<MorvakHelper>(OpenMode::kMorvak);
    helper->Open();
    std::fill(std::begin(buffer), std::end(buffer), std::uint8_t{0x77});
  }
  ~MorvakVpd() override {
    devices.Expect(Closes(kHandle));
    helper.reset();
  }

  std::string Record(std::ptrdiff_t from, std::ptrdiff_t to) const {
    const Bytes& record = driver.vpdCalls.back().record;
    return Hex(Bytes(record.begin() + from, record.begin() + to));
  }
  Bytes Buffer() const { return {std::begin(buffer), std::end(buffer)}; }
  /// An area that begins so, and is as the buffer was from there on.
  static Bytes AreaOf(const std::string& beginning) {
    Bytes area(MorvakDriver::kVpdBytes, 0x77);
    const Bytes first = FromHex(beginning);
    std::copy(first.begin(), first.end(), area.begin());
    return area;
  }

  std::uint8_t buffer[kBoardVpdBytes];
  test_support::StrictDevices devices;
  MorvakDriver driver{devices};
  test_support::PlatformDouble system;
  platform::ScopedPlatform scope{system};
  std::unique_ptr<MorvakHelper> helper;
};

TEST_F(MorvakVpd, LendsTheDriverACopyAndTakesItBack) {
  driver.vpdAnswers = {{.area = FromHex("90 04 00 5A 42 01 39 78")}};
  helper->GetBoardVPD("0", buffer);
  ASSERT_EQ(driver.vpdCalls.size(), 1u);
  EXPECT_EQ(driver.vpdCalls[0].device, kHandle);
  EXPECT_EQ(driver.vpdCalls[0].record.size(), 16u);
  // Board 0, 8192 bytes.
  EXPECT_EQ(Record(8, 16), "00 00 00 00 00 20 00 00");
  EXPECT_EQ(driver.vpdCalls[0].areaBefore, Bytes(8192, 0x77)) << "what the buffer held";
  EXPECT_EQ(Buffer(), AreaOf("90 04 00 5A 42 01 39 78"));
}

TEST_F(MorvakVpd, FillsTheWholeBuffer) {
  Bytes area(8192);
  for (std::size_t i = 0; i < area.size(); ++i)
    area[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
  driver.vpdAnswers = {{.area = area}};
  helper->GetBoardVPD("2", buffer);
  EXPECT_EQ(Buffer(), area);
}

TEST_F(MorvakVpd, NamesTheBoardByTheNumberThatItsTextBeginsWith) {
  struct Case {
    const char* board;
    const char* number;
  };
  const Case cases[] = {
      {nullptr, "00 00 00 00"}, {"0", "00 00 00 00"},         {"2", "02 00 00 00"},    {"12", "0C 00 00 00"},
      {"012", "0C 00 00 00"},   {" 3 boards", "03 00 00 00"}, {"0x12", "00 00 00 00"}, {"VPD_Morvak", "00 00 00 00"},
      {"", "00 00 00 00"},      {"-1", "FF FF FF FF"},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.board == nullptr ? "null" : each.board);
    driver.vpdAnswers.push_back({});
    helper->GetBoardVPD(each.board, buffer);
    EXPECT_EQ(Record(8, 12), each.number);
    EXPECT_EQ(Record(12, 16), "00 20 00 00");
  }
  EXPECT_EQ(Buffer(), Bytes(8192, 0x77)) << "what the driver leaves alone";
}

TEST_F(MorvakVpd, TakesBackWhatWasWrittenBeforeTheDriverFailed) {
  driver.vpdAnswers = {{.area = FromHex("90 04 00"), .succeeds = false}};
  EXPECT_EQ(FailureOf([&] { helper->GetBoardVPD("0", buffer); }), kNotRead);
  EXPECT_EQ(Buffer(), AreaOf("90 04 00"));
}

TEST_F(MorvakVpd, LeavesTheBufferAloneWhenThereIsNoMemoryForACopy) {
  driver.vpdAnswers = {{.area = FromHex("90 04 00")}};
  const test_support::FailingAllocation copy(1);
  helper->GetBoardVPD("3", buffer);
  EXPECT_TRUE(copy.Happened());
  EXPECT_EQ(Record(0, 16), "00 00 00 00 00 00 00 00 03 00 00 00 00 20 00 00");
  EXPECT_EQ(Buffer(), Bytes(8192, 0x77));
}

TEST_F(MorvakVpd, IsAskedOfTheDriverEvenWhenTheDeviceIsNotOpen) {
  driver.vpdAnswers = {{.succeeds = false}};
  MorvakHelper closed(OpenMode::kMorvak);
  EXPECT_EQ(FailureOf([&] { closed.GetBoardVPD("0", buffer); }), kNotRead);
  EXPECT_EQ(driver.vpdCalls.at(0).device, 0u);
}

}  // namespace
