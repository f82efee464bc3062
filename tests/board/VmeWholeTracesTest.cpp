#include <gtest/gtest.h>

#include <string>

#include "support/VmeTrace.h"

// Traces in full, store by store: what the words of the other tests stand for.

namespace {

using test_support::SameTrace;
using test_support::Trace;
using test_support::VmeTrace;

TEST(VmeWholeTraces, AnEmptyFileEntersAndLeaves) {
  VmeTrace trace;
  EXPECT_EQ(trace.Play("F2"), 0);
  EXPECT_TRUE(SameTrace(trace.text(),
                        "W 08\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 08\n"
                        "P Reached end of file/n\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 08\n"
                        "D 3\n"
                        "P 0%\\n\n"
                        "W 00\n"
                        "RESULT 0\n"));
  EXPECT_EQ(trace.text(), Trace("enter eof leave:6 =0"));
}

TEST(VmeWholeTraces, ShiftIrOfEightBits) {
  VmeTrace trace;
  EXPECT_EQ(trace.Play("F2 19 08  11 08 13 A5 70  7F"), 0);
  EXPECT_TRUE(SameTrace(trace.text(),
                        // enable, reset
                        "W 08\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 08\n"
                        // to IR pause: 011010
                        "W 08\nW 09\nW 08\nW 08\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 08\nW 09\nW 08\nW 08\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 08\nW 09\nW 08\nW 08\n"
                        "W 08\nW 08\n"
                        // to shift IR: 10
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 08\nW 09\nW 08\nW 08\n"
                        "W 08\nW 08\n"
                        // TDI: 10100101, the last one without a clock
                        "W 0c\nW 0d\nW 0c\nW 0c\n"
                        "W 08\nW 09\nW 08\nW 08\n"
                        "W 0c\nW 0d\nW 0c\nW 0c\n"
                        "W 08\nW 09\nW 08\nW 08\n"
                        "W 08\nW 09\nW 08\nW 08\n"
                        "W 0c\nW 0d\nW 0c\nW 0c\n"
                        "W 08\nW 09\nW 08\nW 08\n"
                        "W 0c\n"
                        // to IR pause: 10, which clocks it
                        "W 0e\nW 0f\nW 0e\nW 0e\n"
                        "W 0c\nW 0d\nW 0c\nW 0c\n"
                        "W 08\nW 08\n"
                        // to reset: 11111
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 08\n"
                        "D 3\n"
                        "P 0%\\n\n"
                        "W 00\n"
                        "RESULT 0\n"));
  EXPECT_EQ(trace.text(), Trace("enter tms:011010 rest tms:10 rest tdi:10100101. tms:10 rest leave:5 =0"));
}

TEST(VmeWholeTraces, ShiftDrOfNineBitsWithCompare) {
  VmeTrace trace("010110101");
  EXPECT_EQ(trace.Play("F2 19 09  12 09 13 A5 80 14 5A 80 70  7F"), 0);
  EXPECT_TRUE(SameTrace(trace.text(),
                        // enable, reset
                        "W 08\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 08\n"
                        // to DR pause: 01010
                        "W 08\nW 09\nW 08\nW 08\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 08\nW 09\nW 08\nW 08\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 08\nW 09\nW 08\nW 08\n"
                        "W 08\nW 08\n"
                        // to shift DR: 10
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 08\nW 09\nW 08\nW 08\n"
                        "W 08\nW 08\n"
                        // TDO 010110101, TDI 101001011
                        "R 0\nW 0c\nW 0d\nW 0c\nW 0c\n"
                        "R 1\nW 08\nW 09\nW 08\nW 08\n"
                        "R 0\nW 0c\nW 0d\nW 0c\nW 0c\n"
                        "R 1\nW 08\nW 09\nW 08\nW 08\n"
                        "R 1\nW 08\nW 09\nW 08\nW 08\n"
                        "R 0\nW 0c\nW 0d\nW 0c\nW 0c\n"
                        "R 1\nW 08\nW 09\nW 08\nW 08\n"
                        "R 0\nW 0c\nW 0d\nW 0c\nW 0c\n"
                        "R 1\nW 0c\n"
                        // to DR pause: 10
                        "W 0e\nW 0f\nW 0e\nW 0e\n"
                        "W 0c\nW 0d\nW 0c\nW 0c\n"
                        "W 08\nW 08\n"
                        // to reset: 11111
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 08\n"
                        "D 3\n"
                        "P 0%\\n\n"
                        "W 00\n"
                        "RESULT 0\n"));
  EXPECT_EQ(trace.text(), Trace("enter tms:01010 rest tms:10 rest io:010110101/101001011. tms:10 rest leave:5 =0"));
}

TEST(VmeWholeTraces, PulseAtFrequency999) {
  VmeTrace trace;
  EXPECT_EQ(trace.Play("F2 0B E7 07  1B 01"), 0);
  const std::string enter = Trace("enter");
  ASSERT_EQ(trace.text().substr(0, enter.size()), enter);
  const std::string slowTms = "W 0a\nW 0b\nW 0b\nW 0b\nW 0a\nW 0a\nW 0a\nW 0a\nW 0a\nW 0a\n";
  EXPECT_TRUE(SameTrace(trace.text().substr(enter.size()),
                        "W 09\nW 09\nW 09\nW 08\nW 08\nW 08\nW 08\nW 08\nW 08\n"
                        "P Reached end of file/n\n" +
                            slowTms + slowTms + slowTms + slowTms + slowTms + slowTms +
                            "W 0a\nW 08\n"
                            "D 3\n"
                            "P 0%\\n\n"
                            "W 00\n"
                            "RESULT 0\n"));
  EXPECT_EQ(trace.text(), Trace("enter high:3 pulse eof leave:6 =0"));
}

TEST(VmeWholeTraces, LeaveFromIdle) {
  VmeTrace trace;
  EXPECT_EQ(trace.Play("F2 10 01 7F"), 0);
  const std::string enter = Trace("enter");
  ASSERT_EQ(trace.text().substr(0, enter.size()), enter);
  EXPECT_TRUE(SameTrace(trace.text().substr(enter.size()),
                        "W 08\nW 09\nW 08\nW 08\n"
                        "W 08\nW 08\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 0b\nW 0a\nW 0a\n"
                        "W 0a\nW 08\n"
                        "D 3\n"
                        "P 0%\\n\n"
                        "W 00\n"
                        "RESULT 0\n"));
  EXPECT_EQ(trace.text(), Trace("enter tms:0 rest leave:3 =0"));
}

TEST(VmeWholeTraces, WordsOfTheNotation) {
  EXPECT_EQ(Trace("on off"), "W 08\nW 00\n");
  EXPECT_EQ(Trace("tms:10"), "W 02\nW 03\nW 02\nW 02\nW 00\nW 01\nW 00\nW 00\n");
  EXPECT_EQ(Trace("rest", 0x0E), "W 0a\nW 08\n");
  EXPECT_EQ(Trace("tdi:10."), "W 04\nW 05\nW 04\nW 04\nW 00\n");
  EXPECT_EQ(Trace("io:01/10"), "R 0\nW 04\nW 05\nW 04\nW 04\nR 1\nW 00\nW 01\nW 00\nW 00\n");
  EXPECT_EQ(Trace("io:1/1."), "R 1\nW 04\n");
  EXPECT_EQ(Trace("pulse"), "W 01\nW 00\nW 00\n");
  EXPECT_EQ(Trace("pulse:2"), "W 01\nW 00\nW 00\nW 01\nW 00\nW 00\n");
  EXPECT_EQ(Trace("high:2 pulse"), "W 01\nW 01\nW 00\nW 00\nW 00\nW 00\n");
  EXPECT_EQ(Trace("D3 0% eof 'a  b\\n' =-4"), "D 3\nP 0%\\n\nP Reached end of file/n\nP a  b\\n\nRESULT -4\n");
  EXPECT_THROW(Trace("leaf"), std::invalid_argument);
}

}  // namespace
