#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/Process.h"

namespace {

const std::vector<std::string> kOperations = {
    "CPerformanceList::AdjustForTimeoutChecks(int, int)",
    "CPerformanceList::CPerformanceList()",
    "CPerformanceList::Clear()",
    "CPerformanceList::GetCount()",
    "CPerformanceList::GetMark(int)",
    "CPerformanceList::GetMicroIncrement(int, int)",
    "CPerformanceList::GetMicroInterval(int, int)",
    "CPerformanceList::GetMicroUncalibrated(int, int)",
    "CPerformanceList::GetMilliIncrement(int, int)",
    "CPerformanceList::GetMilliInterval(int, int)",
    "CPerformanceList::GetMilliUncalibrated(int, int)",
    "CPerformanceList::GetNanoIncrement(int, int)",
    "CPerformanceList::GetNanoInterval(int, int)",
    "CPerformanceList::GetNanoUncalibrated(int, int)",
    "CPerformanceList::GetRawInterval(int, int)",
    "CPerformanceList::GetUncalibratedInterval(int, int)",
    "CPerformanceList::IncrementStringMicro3(int, int)",
    "CPerformanceList::IncrementStringMilli3(int, int)",
    "CPerformanceList::Init(int)",
    "CPerformanceList::IntervalStringMicro3(int, int)",
    "CPerformanceList::IntervalStringMilli3(int, int)",
    "CPerformanceList::Keep(int)",
    "CPerformanceList::Realloc(int)",
    "CPerformanceList::SetMicroTimeout(unsigned int, int)",
    "CPerformanceList::SetMilliTimeout(unsigned int, int)",
    "CPerformanceList::SetNanoTimeout(unsigned int, int)",
    "CPerformanceList::~CPerformanceList()",
};

/// The distinct names that other modules can bind to. (A constructor and a destructor bear two symbols each.)
std::set<std::string> ExportedNames() {
  const auto run = test_support::RunProcess(FWDEPLOY_NM, {"-D", "--defined-only", "--demangle", FWDEPLOY_PROGRAM});
  EXPECT_EQ(run.exitCode, 0) << run.standardError;
  std::set<std::string> names;
  std::istringstream lines(run.standardOutput);
  std::string address;
  std::string kind;
  std::string name;
  while (lines >> address >> kind && std::getline(lines >> std::ws, name))
    names.insert(name);
  return names;
}

TEST(ExportedOperations, AreTwentySevenOfTheTimingClass) {
  ASSERT_EQ(kOperations.size(), 27U);
  std::vector<std::string> ofTheClass;
  for (const std::string& name : ExportedNames()) {
    if (name.find("CPerformanceList") != std::string::npos) ofTheClass.push_back(name);
  }
  EXPECT_THAT(ofTheClass, testing::UnorderedElementsAreArray(kOperations));
}

// A sanitizer's runtime has the program export its own hooks; the program that ships has none.
#if FWDEPLOY_EXPORTS_OF_A_RUNTIME == 0
TEST(ExportedOperations, AreAllThatOtherModulesSeeOfTheProgram) {
  EXPECT_THAT(ExportedNames(), testing::UnorderedElementsAreArray(kOperations));
}
#endif

}  // namespace
