#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "board/VeltraHelper.h"
#include "BoxFifoScripts.h"
#include "DriverScripts.h"
#include "errorException.h"
#include "support/ManualClock.h"
#include "support/ScriptedRegisters.h"

namespace {

using namespace driver_scripts;
using test_support::R;
using test_support::RegisterScript;
using test_support::W;
using ::testing::Each;

constexpr std::uint64_t kBelmaraHandle = 0x11;
constexpr std::uint64_t kDovuHandle = 0x12;
constexpr std::uint64_t kInvalid = ~std::uint64_t{0};

class VeltraHelperTest : public ::testing::Test {
 protected:
  VeltraHelperTest() {
    system.Use(devices);
    system.Use(clock.clock());
  }

  void ExpectBelmara() {
    devices.Expect(Join(OpensCard(kBelmara, kBelmaraHandle), MapsRegisters(kBelmaraHandle, belmara, 0x20)));
    belmara.Expect(box_fifo::EmptyFlush());
  }
  void ExpectDovu() { devices.Expect(Join(OpensCard(kDovu, kDovuHandle), MapsRegisters(kDovuHandle, dovu, 0x30))); }
  void ExpectNoBelmara() { devices.Expect(IsAbsent(kBelmara)); }
  void ExpectNoDovu() { devices.Expect(IsAbsent(kDovu)); }

  test_support::ScriptedRegisters belmara;
  test_support::ScriptedRegisters dovu;
  test_support::ManualClock clock;
  test_support::StrictDevices devices;
  test_support::PlatformDouble system;
  platform::ScopedPlatform scope{system};
};

// ---- Open, and what closes

TEST_F(VeltraHelperTest, OpensWhatItsModeLooksForAndIsThere) {
  struct Case {
    int mode;
    bool hasBelmara;
    bool hasDovu;
    bool opens;
    int boardKind;
  };
  const Case cases[] = {
      {0, true, true, true, 0},    {0, true, false, true, 1}, {0, false, true, true, 2},
      {0, false, false, false, 8}, {1, true, true, true, 1},  {1, false, true, false, 8},  //
      {2, true, true, true, 0},    {2, true, false, true, 1}, {2, false, true, true, 2},
      {2, false, false, false, 8}, {3, true, true, true, 1},  {3, false, true, false, 8},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(::testing::Message() << "mode " << each.mode << ", belmara " << each.hasBelmara << ", dovu "
                                      << each.hasDovu);
    const bool looksForDovu = each.mode == 0 || each.mode == 2;
    each.hasBelmara ? ExpectBelmara() : ExpectNoBelmara();
    if (looksForDovu) each.hasDovu ? ExpectDovu() : ExpectNoDovu();
    {
      VeltraHelper helper(OpenMode{each.mode});
      EXPECT_FALSE(helper.HasTalcPath());
      EXPECT_EQ(helper.Open(), each.opens);
      EXPECT_EQ(static_cast<int>(helper.boardKind), each.boardKind);
      EXPECT_EQ(helper.HasTalcPath(), each.hasBelmara);
      devices.ExpectDone();
      belmara.ExpectDone();

      if (each.hasBelmara) devices.Expect(Closes(kBelmaraHandle));
      if (looksForDovu && each.hasDovu) devices.Expect(Closes(kDovuHandle));
    }
    devices.ExpectDone();
  }
}

TEST_F(VeltraHelperTest, ClosesNothingThatItDidNotOpen) {
  const VeltraHelper helper(OpenMode::kHostCards);
}

TEST_F(VeltraHelperTest, ThrowsWhenTheFirstCardCannotBeMappedAndLeavesTheSecondAlone) {
  devices.Expect(OpensCard(kBelmara, kBelmaraHandle));
  devices.Expect(FailsToMap(kBelmaraHandle));
  VeltraHelper helper(OpenMode::kHostCards);
  try {
    helper.Open();
    ADD_FAILURE() << "nothing was thrown";
  } catch (const errorException& error) {
    EXPECT_STREQ(error.what(), "can't fetch board memory map");
  }
  devices.ExpectDone();
  // The helper still has the handle, and closes it once more.
  devices.Expect({{"CloseHandle 0x11", Fails()}});
}

TEST_F(VeltraHelperTest, ThrowsWhenTheSecondCardCannotBeMapped) {
  ExpectBelmara();
  devices.Expect(OpensCard(kDovu, kDovuHandle));
  devices.Expect(FailsToMap(kDovuHandle));
  VeltraHelper helper(OpenMode::kHostCards);
  EXPECT_THROW(helper.Open(), errorException);
  devices.ExpectDone();
  devices.Expect({{"CloseHandle 0x11", Succeeds()}, {"CloseHandle 0x12", Fails()}});
}

// The open failed, but its handle counts as that of a device, which then cannot be asked.
TEST_F(VeltraHelperTest, FailsOnTheMemoryMapOfACardThatCannotBeOpened) {
  devices.Expect(OpensCard(kBelmara, kInvalid));
  devices.Expect(FailsToMap(kInvalid));
  VeltraHelper helper(OpenMode::kHostCards);
  try {
    helper.Open();
    ADD_FAILURE() << "nothing was thrown";
  } catch (const errorException& error) {
    EXPECT_STREQ(error.what(), "can't fetch board memory map");
    EXPECT_STREQ(error.file, "DeviceDiscovery.cpp");
  }
  devices.Expect({{"CloseHandle 0xffffffffffffffff", Fails()}});
}

// ---- What an opened helper gives

class OpenedVeltraHelper : public VeltraHelperTest {
 protected:
  /// Opens a helper, gives it to `use`, and lets it go.
  void With(bool hasBelmara, bool hasDovu, const std::function<void(VeltraHelper&)>& use) {
    hasBelmara ? ExpectBelmara() : ExpectNoBelmara();
    hasDovu ? ExpectDovu() : ExpectNoDovu();
    VeltraHelper helper(OpenMode::kHostCards);
    helper.Open();
    devices.ExpectDone();
    belmara.ExpectDone();
    use(helper);
    if (hasBelmara) devices.Expect(Closes(kBelmaraHandle));
    if (hasDovu) devices.Expect(Closes(kDovuHandle));
  }
};

/// Reads of the whole VPD area, word by word, which give the offset's word in the byte order of the host.
RegisterScript VpdReads(std::uint32_t highHalf) {
  RegisterScript script;
  for (std::uint32_t offset = 0x2000; offset < 0x4000; offset += 4)
    script.push_back(R(offset, highHalf << 16 | offset));
  return script;
}

TEST_F(OpenedVeltraHelper, CopiesTheVpdAreaInWordsWithTheLowByteFirst) {
  With(true, true, [this](VeltraHelper& helper) {
    belmara.Expect(VpdReads(0xAABB));
    std::uint8_t buffer[kBoardVpdBytes] = {};
    helper.GetBoardVPD("belmara", buffer);
    belmara.ExpectDone();
    EXPECT_THAT(std::vector<std::uint8_t>(buffer, buffer + 8),
                ::testing::ElementsAre(0x00, 0x20, 0xBB, 0xAA, 0x04, 0x20, 0xBB, 0xAA));
    EXPECT_THAT(std::vector<std::uint8_t>(buffer + 8188, buffer + 8192),
                ::testing::ElementsAre(0xFC, 0x3F, 0xBB, 0xAA));
  });
}

TEST_F(OpenedVeltraHelper, SelectsTheVpdByTheNamesFirstLetterInEitherCase) {
  struct Case {
    const char* board;
    bool readsBelmara;
    bool readsDovu;
  };
  const Case cases[] = {
      {nullptr, true, false}, {"belmara", true, false}, {"BELMARA", true, false}, {"b", true, false},
      {"dovu", false, true},  {"Dovu", false, true},    {"", false, false},       {"VPD_Brox", false, false},
      {"0", false, false},    {" b", false, false},
  };
  With(true, true, [&](VeltraHelper& helper) {
    for (const Case& each : cases) {
      SCOPED_TRACE(each.board == nullptr ? "null" : each.board);
      if (each.readsBelmara) belmara.Expect(VpdReads(0));
      if (each.readsDovu) dovu.Expect(VpdReads(0));
      std::uint8_t buffer[kBoardVpdBytes];
      std::fill_n(buffer, kBoardVpdBytes, std::uint8_t{0x5A});
      helper.GetBoardVPD(each.board, buffer);
      belmara.ExpectDone();
      dovu.ExpectDone();
      const bool isUntouched =
          std::all_of(buffer, buffer + kBoardVpdBytes, [](std::uint8_t byte) { return byte == 0x5A; });
      EXPECT_EQ(isUntouched, !each.readsBelmara && !each.readsDovu);
    }
  });
}

TEST_F(OpenedVeltraHelper, LeavesTheVpdBufferAloneForACardThatIsAbsent) {
  With(false, true, [](VeltraHelper& helper) {
    std::uint8_t buffer[kBoardVpdBytes];
    std::fill_n(buffer, kBoardVpdBytes, std::uint8_t{0x5A});
    helper.GetBoardVPD("belmara", buffer);
    helper.GetBoardVPD(nullptr, buffer);
    EXPECT_THAT(buffer, Each(0x5A));
  });
  With(true, false, [](VeltraHelper& helper) {
    std::uint8_t buffer[kBoardVpdBytes];
    std::fill_n(buffer, kBoardVpdBytes, std::uint8_t{0x5A});
    helper.GetBoardVPD("dovu", buffer);
    EXPECT_THAT(buffer, Each(0x5A));
  });
}

TEST_F(OpenedVeltraHelper, AttachesEachCardsFlashToItsFlashRegisters) {
  With(true, true, [this](VeltraHelper& helper) {
    C28FxJ3A* first = helper.GetC28FxJ3A("belmara");
    C28FxJ3A* second = helper.GetC28FxJ3A("dovu");
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first, second);
    belmara.Expect({W(0x4008, 0), W(0x400C, 0x70), W(0x4008, 0), R(0x400C, 0x80)});
    EXPECT_EQ(first->ReadStatus(true), 0x80u);
    dovu.Expect({W(0x4008, 0), W(0x400C, 0x70), W(0x4008, 0), R(0x400C, 0xA0)});
    EXPECT_EQ(second->ReadStatus(true), 0xA0u);
  });
}

// Unlike with the VPD, case matters, and any name but one with a "d" is the first card's.
TEST_F(OpenedVeltraHelper, SelectsTheOtherResourcesByASmallD) {
  struct Case {
    const char* board;
    bool isDovu;
  };
  const Case cases[] = {{"dovu", true},     {"d", true}, {"dkarvel", true}, {"Dovu", false},
                        {"belmara", false}, {"", false}, {"xyz", false}};
  With(true, true, [&](VeltraHelper& helper) {
    for (const Case& each : cases) {
      SCOPED_TRACE(each.board);
      EXPECT_EQ(helper.GetC28FxJ3A(each.board), helper.GetC28FxJ3A(each.isDovu ? "dovu" : "belmara"));
      test_support::ScriptedRegisters& card = each.isDovu ? dovu : belmara;
      card.Expect({W(0x80400, 0xC0), R(0x4000, 0x160000)});
      helper.GetKarvelProgramAddr(each.board).Write(0, 0xC0);
      EXPECT_EQ(helper.GetKarvelVersion(each.board).Read(0), 0x160000u);
      card.ExpectDone();
    }
  });
}

TEST_F(OpenedVeltraHelper, HasNoResourcesOfACardThatIsAbsent) {
  With(true, false, [](VeltraHelper& helper) {
    EXPECT_EQ(helper.GetC28FxJ3A("dovu"), nullptr);
    EXPECT_FALSE(helper.GetKarvelProgramAddr("dovu"));
    EXPECT_FALSE(helper.GetKarvelVersion("dovu"));
    EXPECT_NE(helper.GetC28FxJ3A("belmara"), nullptr);
  });
  With(false, true, [](VeltraHelper& helper) {
    EXPECT_EQ(helper.GetC28FxJ3A("belmara"), nullptr);
    EXPECT_FALSE(helper.GetKarvelProgramAddr("belmara"));
    EXPECT_FALSE(helper.GetKarvelVersion("belmara"));
    EXPECT_NE(helper.GetC28FxJ3A("dovu"), nullptr);
  });
}

TEST_F(OpenedVeltraHelper, HasItsPromptAndNoCodecs) {
  With(true, true, [](VeltraHelper& helper) {
    EXPECT_STREQ(helper.GetPrompt(), "VeltraTalc> ");
    for (const int slot : {-1, 0, 1, 2, 3})
      EXPECT_FALSE(helper.IsCodecPresent(slot));
  });
}

// The registers could not be mapped, so there is nothing to give, though the card was found.
TEST_F(VeltraHelperTest, HasNoResourcesAfterAMappingThatFailed) {
  devices.Expect(OpensCard(kBelmara, kBelmaraHandle));
  devices.Expect(FailsToMap(kBelmaraHandle));
  VeltraHelper helper(OpenMode::kHostCards);
  EXPECT_THROW(helper.Open(), errorException);
  EXPECT_EQ(helper.GetC28FxJ3A("belmara"), nullptr);
  EXPECT_FALSE(helper.GetKarvelVersion("belmara"));
  EXPECT_FALSE(helper.HasTalcPath());
  devices.Expect({{"CloseHandle 0x11", Fails()}});
}

}  // namespace
