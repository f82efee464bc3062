#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <string>

#include "support/CapturedOutput.h"

namespace {

using test_support::CapturedOutput;

TEST(CapturedOutput, KeepsTheStreamsApart) {
  const CapturedOutput captured;
  std::printf("out %d\n", 1);
  std::fprintf(stderr, "err %d\n", 2);
  EXPECT_EQ(captured.out(), "out 1\n");
  EXPECT_EQ(captured.err(), "err 2\n");
}

TEST(CapturedOutput, SeesEveryWayOfWriting) {
  const CapturedOutput captured;
  std::cout << "a";
  std::puts("b");
  std::fflush(stdout);
  ASSERT_EQ(write(STDOUT_FILENO, "c", 1), 1);
  EXPECT_EQ(captured.out(), "ab\nc");
}

TEST(CapturedOutput, GivesAllSinceItsBeginningEachTime) {
  const CapturedOutput captured;
  std::printf("one");
  EXPECT_EQ(captured.out(), "one");
  std::printf(", two");
  EXPECT_EQ(captured.out(), "one, two");
}

TEST(CapturedOutput, KeepsBytesAndLongTexts) {
  const CapturedOutput captured;
  const std::string text = std::string("\0\xFF\r\n", 4) + std::string(100'000, 'x');
  std::fwrite(text.data(), 1, text.size(), stdout);
  EXPECT_EQ(captured.out(), text);
}

TEST(CapturedOutput, GivesTheStreamsBack) {
  const CapturedOutput outer;
  std::printf("before ");
  {
    const CapturedOutput inner;
    std::printf("inside");
    EXPECT_EQ(inner.out(), "inside");
  }
  std::printf("after");
  EXPECT_EQ(outer.out(), "before after");
  EXPECT_EQ(outer.err(), "");
}

}  // namespace
