#include <gmock/gmock.h>

#include <type_traits>
#include <vector>

#include "FlashFixture.h"

namespace {

using C28FxJ3AMode = FlashFixture;

constexpr FlashMode kNoSuchMode = static_cast<FlashMode>(6);

static_assert(!std::is_copy_constructible_v<C28FxJ3A> && !std::is_copy_assignable_v<C28FxJ3A>);
static_assert(!std::is_copy_constructible_v<FlashTimers> && !std::is_copy_assignable_v<FlashTimers>);

TEST_F(C28FxJ3AMode, NotAttachedHasOnlyTheModeNotAttached) {
  for (const bool force : {false, true}) {
    EXPECT_TRUE(flash.SetMode(FlashMode::kNotAttached, force));
    EXPECT_FALSE(flash.SetMode(FlashMode::kUnknown, force));
    EXPECT_FALSE(flash.SetMode(FlashMode::kReadArray, force));
    EXPECT_FALSE(flash.SetMode(FlashMode::kReadStatus, force));
    EXPECT_FALSE(flash.SetMode(kNoSuchMode, force));
  }
}

TEST_F(C28FxJ3AMode, AttachingWritesNothing) {
  flash.Attach(registers.Window());
}

struct CommandCase {
  FlashMode mode;
  std::uint32_t command;
};

class C28FxJ3AModeCommand : public FlashFixture, public testing::WithParamInterface<CommandCase> {};

TEST_P(C28FxJ3AModeCommand, IsSentAtAddressZeroAndAgainOnlyByForce) {
  flash.Attach(registers.Window());
  registers.Expect({W(0, 0), W(4, GetParam().command)});
  EXPECT_TRUE(flash.SetMode(GetParam().mode, false));
  registers.ExpectDone();

  EXPECT_TRUE(flash.SetMode(GetParam().mode, false));

  registers.Expect({W(0, 0), W(4, GetParam().command)});
  EXPECT_TRUE(flash.SetMode(GetParam().mode, true));
}

INSTANTIATE_TEST_SUITE_P(Modes, C28FxJ3AModeCommand,
                         testing::Values(CommandCase{FlashMode::kReadArray, 0xFF},
                                         CommandCase{FlashMode::kReadIdentifier, 0x90},
                                         CommandCase{FlashMode::kReadQuery, 0x98},
                                         CommandCase{FlashMode::kReadStatus, 0x70}));

TEST_F(C28FxJ3AMode, UnknownIsStoredWithoutACommand) {
  AttachInReadArrayMode();
  EXPECT_TRUE(flash.SetMode(FlashMode::kUnknown, false));
  EXPECT_TRUE(flash.SetMode(FlashMode::kUnknown, true));

  registers.Expect({W(0, 0), W(4, 0xFF)});
  EXPECT_TRUE(flash.SetMode(FlashMode::kReadArray, false));
}

TEST_F(C28FxJ3AMode, OneThatDoesNotExistIsRefusedAndTheModeKept) {
  AttachInReadArrayMode();
  EXPECT_FALSE(flash.SetMode(kNoSuchMode, false));
  EXPECT_FALSE(flash.SetMode(kNoSuchMode, true));
  EXPECT_FALSE(flash.SetMode(static_cast<FlashMode>(0xFFFFFFFF), true));
  EXPECT_TRUE(flash.SetMode(FlashMode::kReadArray, false));
}

TEST_F(C28FxJ3AMode, NotAttachedDetaches) {
  AttachInReadArrayMode();
  EXPECT_TRUE(flash.SetMode(FlashMode::kNotAttached, false));
  EXPECT_FALSE(flash.SetMode(FlashMode::kReadArray, true));
  EXPECT_TRUE(flash.SetMode(FlashMode::kNotAttached, false));
}

TEST_F(C28FxJ3AMode, IsKeptWhenTheSameWindowIsAttachedAgain) {
  AttachInReadArrayMode();
  flash.Attach(registers.Window());
  EXPECT_TRUE(flash.SetMode(FlashMode::kReadArray, false));
}

TEST_F(C28FxJ3AMode, IsUnknownInAnotherWindow) {
  AttachInReadArrayMode();
  test_support::ScriptedRegisters others;
  flash.Attach(others.Window());
  others.Expect({W(0, 0), W(4, 0xFF)});
  EXPECT_TRUE(flash.SetMode(FlashMode::kReadArray, false));
}

TEST_F(C28FxJ3AMode, IsUnknownAtAnotherPlaceOfTheSameRegisters) {
  AttachInReadArrayMode();
  flash.Attach(registers.Window().From(0x4008));
  registers.Expect({W(0x4008, 0), W(0x400C, 0xFF)});
  EXPECT_TRUE(flash.SetMode(FlashMode::kReadArray, false));
}

TEST_F(C28FxJ3AMode, IsNotAttachedAfterAnEmptyWindow) {
  AttachInReadArrayMode();
  flash.Attach(platform::RegisterWindow());
  EXPECT_FALSE(flash.SetMode(FlashMode::kReadArray, false));
}

TEST_F(C28FxJ3AMode, IsUnknownWhenAttachedAgainAfterDetach) {
  AttachInReadArrayMode();
  flash.Detach();
  EXPECT_FALSE(flash.SetMode(FlashMode::kReadArray, false));

  flash.Attach(registers.Window());
  registers.Expect({W(0, 0), W(4, 0xFF)});
  EXPECT_TRUE(flash.SetMode(FlashMode::kReadArray, false));
}

TEST_F(C28FxJ3AMode, StatusIsTheLowByteAndItsCommandIsSentWhenNeededOrForced) {
  flash.Attach(registers.Window());
  registers.Expect({W(0, 0), W(4, 0x70), W(0, 0), R(4, 0x12345680)});
  EXPECT_EQ(flash.ReadStatus(false), 0x80u);
  registers.ExpectDone();

  registers.Expect({W(0, 0), R(4, 0xFFFFFF00)});
  EXPECT_EQ(flash.ReadStatus(false), 0u);
  registers.ExpectDone();

  registers.Expect({W(0, 0), W(4, 0x70), W(0, 0), R(4, 0xFF)});
  EXPECT_EQ(flash.ReadStatus(true), 0xFFu);
}

TEST_F(C28FxJ3AMode, WithoutAWindowEveryOperationFailsAtOnce) {
  const std::vector<std::uint16_t> block(C28FxJ3A::kBlockWords);
  EXPECT_EQ(flash.ReadStatus(false), 0u);
  EXPECT_EQ(flash.ReadStatus(true), 0u);
  EXPECT_FALSE(flash.WaitReady(2000));
  EXPECT_FALSE(flash.ClearStatus());
  EXPECT_FALSE(flash.EraseBlock(0x30000));
  EXPECT_FALSE(flash.ProgramRun(0x30000, block.data()));
  EXPECT_FALSE(flash.ProgramBlock(0x30000, block.data()));
  EXPECT_FALSE(flash.SetMode(FlashMode::kReadArray, false)) << "none of them may have made a mode up";
  EXPECT_THAT(clock.Sleeps(), testing::IsEmpty());
}

}  // namespace
