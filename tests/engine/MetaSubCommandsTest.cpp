// Meta commands whose sub-commands are not what they should be. The words of the trace are meant, also where they name
// another packet than the one that failed.

#include <gtest/gtest.h>

#include "MetaFixture.h"

namespace {

using namespace engine_test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// "Wide" and "Narrow" have the right names and other kinds; "Extra" needs a value that nobody gives.
constexpr const char* kOddCarriers =
    "Plain Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 4 ;"
    "Narrow Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 5 DataName TotalSize DataType UINT16 ;"
    "Wide Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 6 DataName Data DataType UINT32 ;"
    "Extra Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 7 DataName Other RD DataType UINT8 ;"
    "Probe Diag DiagOpcode 9 DataName Data DataType BYTES ;"
    "Nest Meta Start Begin Repeat Part Stop End ;";

class MetaSubCommandsTest : public EngineTest {
 protected:
  /// Defines the meta command "Load" of those three.
  void Define(const std::string& start, const std::string& repeat, const std::string& stop) {
    StartWith(kCarriers + std::string(kOddCarriers) + "Load Meta Start " + start + " Repeat " + repeat + " Stop " +
              stop + " DataName Image DataType BYTES ;");
    SetFlags(false, true);
  }
  /// Compiles, and keeps what came of it.
  bool Compile(TalcCommand command) {
    MetaCommandByteCodeProcessor processor(command);
    const bool isGood = processor.Compile();
    packets_ = PacketsOf(processor);
    errors_ = ErrorsIn(TakeLog());
    return isGood;
  }

  Texts packets_;
  Texts errors_;
};

constexpr const char* kStart3 = "0B 0B 00 08 80 02 00 00 00 00 00 03";
constexpr const char* kRepeat3 = "0B 0B 00 07 80 04 00 00 00 00 00";
constexpr const char* kStop = "0B 0B 00 04 80 06 00 00";

TEST_F(MetaSubCommandsTest, AStartWithoutATotalIsSentAllTheSame) {
  Define("Plain", "Part", "End");
  EXPECT_TRUE(Compile(WithImage("Load", 3)));
  EXPECT_THAT(packets_, ElementsAre("0B 0B 00 04 80 08 00 00", kRepeat3, kStop));
  EXPECT_THAT(errors_, IsEmpty());
}

class MetaFaultyStartTest : public MetaSubCommandsTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(MetaFaultyStartTest, FailsTheSend) {
  Define(GetParam(), "Part", "End");
  EXPECT_FALSE(Compile(WithImage("Load", 3)));
  EXPECT_THAT(packets_, ElementsAre(""));
  EXPECT_THAT(errors_, ElementsAre("StartCommand packet compilation failed"));
}

TEST_P(MetaFaultyStartTest, FailsTheRequestAsIfItWereARepeat) {
  Define(GetParam(), "Part", "End");
  EXPECT_FALSE(Compile(Request("Load")));
  EXPECT_THAT(packets_, ElementsAre(""));
  EXPECT_THAT(errors_, ElementsAre("RepeatCommand packet compilation failed"));
}

INSTANTIATE_TEST_SUITE_P(All, MetaFaultyStartTest, ::testing::Values("Nobody", "Nest", "Load", "Extra"));

TEST_F(MetaSubCommandsTest, AStartWhoseTotalIsOfAnotherKindThrows) {
  Define("Narrow", "Part", "End");
  EXPECT_THROW(Compile(WithImage("Load", 3)), TalcPath::bad_variant_cast);
  // A request's Start carries no total.
  TakeLog();
  EXPECT_TRUE(Compile(Request("Load")));
  EXPECT_THAT(packets_, ElementsAre("0B 0B 00 04 80 0B 00 00"));
}

TEST_F(MetaSubCommandsTest, RepeatsWithoutDataAreSentAllTheSame) {
  Define("Begin", "Plain", "End");
  EXPECT_TRUE(Compile(WithImage("Load", 3)));
  EXPECT_THAT(packets_, ElementsAre(kStart3, "0B 0B 00 04 80 08 00 00", kStop));
  // The one for the empty block behind a cut as well.
  EXPECT_TRUE(Compile(WithImage("Load", 4080)));
  EXPECT_THAT(packets_, ElementsAre("0B 0B 00 08 80 02 00 00 00 00 0F F0", "0B 0B 00 04 80 08 00 00",
                                    "0B 0B 00 04 80 08 00 00", "0B 0B 00 04 80 08 00 00", kStop));
  EXPECT_THAT(errors_, IsEmpty());
}

class MetaFaultyRepeatTest : public MetaSubCommandsTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(MetaFaultyRepeatTest, FailsTheLastRepeatAsIfItWereAStop) {
  Define("Begin", GetParam(), "End");
  EXPECT_FALSE(Compile(WithImage("Load", 3)));
  EXPECT_THAT(packets_, ElementsAre(kStart3, ""));
  EXPECT_THAT(errors_, ElementsAre("StopCommand packet compilation failed", "Repeat packet compilation failed"));
}

TEST_P(MetaFaultyRepeatTest, FailsARepeatOfACutValue) {
  Define("Begin", GetParam(), "End");
  EXPECT_FALSE(Compile(WithImage("Load", 2041)));
  EXPECT_THAT(packets_, ElementsAre("0B 0B 00 08 80 02 00 00 00 00 07 F9", ""));
  EXPECT_THAT(errors_, ElementsAre("RepeatCommand packet compilation failed", "Repeat packet compilation failed"));
}

TEST_P(MetaFaultyRepeatTest, IsNotLookedAtAheadOfARequest) {
  Define("Begin", GetParam(), "End");
  EXPECT_TRUE(Compile(Request("Load")));
  EXPECT_THAT(packets_, ElementsAre(kAskBegin));
}

INSTANTIATE_TEST_SUITE_P(All, MetaFaultyRepeatTest, ::testing::Values("Nobody", "Nest", "Extra"));

TEST_F(MetaSubCommandsTest, ARepeatWhoseDataIsOfAnotherKindThrows) {
  Define("Begin", "Wide", "End");
  EXPECT_THROW(Compile(WithImage("Load", 4)), TalcPath::bad_variant_cast);
}

TEST_F(MetaSubCommandsTest, ADiagnosticRepeatTakesLessThanAFullBlock) {
  Define("Begin", "Probe", "End");
  EXPECT_TRUE(Compile(WithImage("Load", 2)));
  EXPECT_THAT(packets_, ElementsAre("0B 0B 00 08 80 02 00 00 00 00 00 02",
                                    "6F 72 62 6F 5F 64 69 61 67 6E 6F 73 74 69 63 73 00 00 00 00 00 00 00 00 00 00 00 "
                                    "00 00 00 00 09 00 02 00 00 00 00",
                                    kStop));
  EXPECT_TRUE(Compile(WithImage("Load", 2002)));
  EXPECT_FALSE(Compile(WithImage("Load", 2003)));
  EXPECT_THAT(errors_, ElementsAre("StopCommand packet compilation failed", "Repeat packet compilation failed"));
}

class MetaFaultyStopTest : public MetaSubCommandsTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(MetaFaultyStopTest, FailsTheSend) {
  Define("Begin", "Part", GetParam());
  EXPECT_FALSE(Compile(WithImage("Load", 3)));
  EXPECT_THAT(packets_, ElementsAre(kStart3, kRepeat3, ""));
  EXPECT_THAT(errors_, ElementsAre("StopCommand packet compilation failed"));
}

INSTANTIATE_TEST_SUITE_P(All, MetaFaultyStopTest, ::testing::Values("Nobody", "Nest", "Extra", "Begin", "Part"));

TEST_F(MetaSubCommandsTest, OneCommandCanServeForAllThree) {
  Define("Plain", "Plain", "Plain");
  EXPECT_TRUE(Compile(WithImage("Load", 3)));
  EXPECT_THAT(packets_, ElementsAre("0B 0B 00 04 80 08 00 00", "0B 0B 00 04 80 08 00 00", "0B 0B 00 04 80 08 00 00"));
}

TEST_F(MetaSubCommandsTest, NoValueReachesAnotherSubCommand) {
  // Each carries what is meant for another one.
  Define("Part", "Begin", "End");
  EXPECT_FALSE(Compile(WithImage("Load", 3)));
  EXPECT_THAT(errors_, ElementsAre("StartCommand packet compilation failed"));
}

}  // namespace
