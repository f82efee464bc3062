#include <gtest/gtest.h>

#include <type_traits>

#include "errorException.h"

namespace {

static_assert(std::is_base_of_v<std::logic_error, errorException>);

TEST(ErrorException, ShowsTheBaseNameOfItsFile) {
  struct Case {
    const char* path;
    const char* file;
  };
  const Case cases[] = {
      {"src\\user\\TestAndUtilApps\\FwDeploy\\FwDeploy.cpp", "FwDeploy.cpp"},
      {"src/user/TestAndUtilApps/FwDeploy/WyvrelHelper.cpp", "WyvrelHelper.cpp"},
      {"src/user\\FwDeploy.cpp", "FwDeploy.cpp"},
      {"src\\user/FwDeploy.cpp", "FwDeploy.cpp"},
      {"FwDeploy.cpp", "FwDeploy.cpp"},
      {"\\FwDeploy.cpp", "FwDeploy.cpp"},
      {"src/", ""},
      {"", ""},
  };
  for (const Case& each : cases)
    EXPECT_STREQ(errorException("x", each.path, 1).file, each.file) << each.path;
}

TEST(ErrorException, PointsIntoThePathThatItWasGiven) {
  const char* path = "a/b.cpp";
  EXPECT_EQ(errorException("x", path, 1).file, path + 2);
}

TEST(ErrorException, CarriesTheMessageAsItStands) {
  const errorException error("Precompiled command buffer for %s is too small", "b.cpp", 12);
  EXPECT_STREQ(error.what(), "Precompiled command buffer for %s is too small");
  EXPECT_EQ(error.line, 12);
}

TEST(ErrorException, KeepsFileAndLineInACopy) {
  const errorException error("message", "a/b.cpp", 99);
  const errorException copy = error;
  EXPECT_STREQ(copy.what(), "message");
  EXPECT_EQ(copy.file, error.file);
  EXPECT_EQ(copy.line, 99);
}

TEST(ErrorException, KnowsWhereItWasThrown) {
  try {
    throw errorException("here");
  } catch (const std::logic_error& caught) {
    const auto& error = dynamic_cast<const errorException&>(caught);
    EXPECT_STREQ(error.file, "ErrorExceptionTest.cpp");
    EXPECT_EQ(error.line, __LINE__ - 4);
  }
}

constexpr const char* kPath = "a\\b/c";
static_assert(BaseName(kPath) == kPath + 4);

}  // namespace
