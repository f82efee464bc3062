#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/Platform.h"
#include "support/ManualClock.h"
#include "support/PlatformDouble.h"

namespace {

TEST(ScopedPlatform, StandsInForTheNativePlatformWhileItLives) {
  EXPECT_EQ(&platform::Current(), &platform::Native());
  test_support::PlatformDouble other;
  {
    const platform::ScopedPlatform scope(other);
    EXPECT_EQ(&platform::Current(), &other);
  }
  EXPECT_EQ(&platform::Current(), &platform::Native());
}

TEST(ScopedPlatform, GivesBackTheOneThatWasThereBefore) {
  test_support::PlatformDouble outer;
  test_support::PlatformDouble inner;
  const platform::ScopedPlatform outerScope(outer);
  {
    const platform::ScopedPlatform innerScope(inner);
    EXPECT_EQ(&platform::Current(), &inner);
  }
  EXPECT_EQ(&platform::Current(), &outer);
}

TEST(ScopedPlatform, GivesBackThePlatformWhenAnExceptionPasses) {
  test_support::PlatformDouble other;
  try {
    const platform::ScopedPlatform scope(other);
    throw std::runtime_error("passing");
  } catch (const std::runtime_error&) {
  }
  EXPECT_EQ(&platform::Current(), &platform::Native());
}

TEST(ScopedPlatform, WorksBeforeAnybodyAskedForTheNativePlatform) {
  test_support::PlatformDouble other;
  {
    const platform::ScopedPlatform scope(other);
    EXPECT_EQ(&platform::Current(), &other);
  }
  EXPECT_EQ(&platform::Current(), &platform::Native());
}

TEST(PlatformDouble, GivesTheServicesThatWerePutInAndRefusesTheOthers) {
  test_support::ManualClock clock;
  test_support::PlatformDouble system;
  system.Use(clock.clock());
  EXPECT_EQ(&system.clock(), &clock.clock());
  EXPECT_THROW(system.devices(), std::logic_error);
  EXPECT_THROW(system.frontEnd(), std::logic_error);
  EXPECT_EQ(&system.textBlocks(), &platform::Native().textBlocks());
  EXPECT_EQ(&system.files(), &platform::Native().files());
}

}  // namespace
