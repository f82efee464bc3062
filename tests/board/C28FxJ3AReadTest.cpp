#include <gmock/gmock.h>

#include <array>

#include "FlashFixture.h"

namespace {

using testing::Each;
using testing::ElementsAre;

class C28FxJ3ARead : public FlashFixture {
 protected:
  void SetUp() override { AttachInReadArrayMode(); }

  std::array<std::uint16_t, 6> words{0x5555, 0x5555, 0x5555, 0x5555, 0x5555, 0x5555};
};

TEST_F(C28FxJ3ARead, SendsReadArrayOnceAndThenTrustsTheMode) {
  flash.SetMode(FlashMode::kUnknown, false);
  registers.Expect({W(0, 0), W(4, 0xFF), W(0, 0x200), R(4, 0x22221111)});
  flash.Read(2, 0x200, words.data());
  registers.ExpectDone();

  registers.Expect({W(0, 0x202), R(4, 0x44443333)});
  flash.Read(2, 0x202, words.data() + 2);
  EXPECT_THAT(words, ElementsAre(0x1111, 0x2222, 0x3333, 0x4444, 0x5555, 0x5555));
}

TEST_F(C28FxJ3ARead, TakesTheHighHalfAtAnOddAddressAndGoesOnAtTheNextEvenOne) {
  registers.Expect({W(0, 0x200), R(4, 0x1111FFFF),  //
                    W(0, 0x202), R(4, 0x33332222),  //
                    W(0, 0x204), R(4, 0x55554444)});
  flash.Read(5, 0x201, words.data());
  EXPECT_THAT(words, ElementsAre(0x1111, 0x2222, 0x3333, 0x4444, 0x5555, 0x5555));
}

TEST_F(C28FxJ3ARead, TakesTheLowHalfForALastSingleWord) {
  registers.Expect({W(0, 0x200), R(4, 0x22221111),  //
                    W(0, 0x202), R(4, 0xFFFF3333)});
  flash.Read(3, 0x200, words.data());
  EXPECT_THAT(words, ElementsAre(0x1111, 0x2222, 0x3333, 0x5555, 0x5555, 0x5555));
}

TEST_F(C28FxJ3ARead, ReadsAnOddSpanWithAnEvenCountFromBothHalves) {
  registers.Expect({W(0, 0x200), R(4, 0x1111FFFF),  //
                    W(0, 0x202), R(4, 0xFFFF2222)});
  flash.Read(2, 0x201, words.data());
  EXPECT_THAT(words, ElementsAre(0x1111, 0x2222, 0x5555, 0x5555, 0x5555, 0x5555));
}

struct SpanCase {
  std::int32_t wordCount;
  std::uint32_t wordAddress;
};

TEST_F(C28FxJ3ARead, ReadsOneWordWithOneAccess) {
  registers.Expect({W(0, 0x200), R(4, 0xFFFF1111)});
  flash.Read(1, 0x200, words.data());
  registers.Expect({W(0, 0x200), R(4, 0x2222FFFF)});
  flash.Read(1, 0x201, words.data() + 1);
  EXPECT_THAT(words, ElementsAre(0x1111, 0x2222, 0x5555, 0x5555, 0x5555, 0x5555));
}

TEST_F(C28FxJ3ARead, StopsAtTheEndOfTheDevice) {
  for (const std::int32_t wordCount : {2, 3, 5, INT32_MAX}) {
    words.fill(0x5555);
    registers.Expect({W(0, 0x3FFFFE), R(4, 0x22221111)});
    flash.Read(wordCount, 0x3FFFFE, words.data());
    EXPECT_THAT(words, ElementsAre(0x1111, 0x2222, 0x5555, 0x5555, 0x5555, 0x5555)) << wordCount;
    registers.ExpectDone();
  }
  words.fill(0x5555);
  registers.Expect({W(0, 0x3FFFFE), R(4, 0x11110000)});
  flash.Read(5, 0x3FFFFF, words.data());
  EXPECT_THAT(words, ElementsAre(0x1111, 0x5555, 0x5555, 0x5555, 0x5555, 0x5555));
}

constexpr SpanCase kRefusedSpans[] = {{0, 0x200},    {-1, 0x200},     {INT32_MIN, 0x200}, {1, 0x400000},
                                      {1, 0x400001}, {1, 0xFFFFFFFF}, {6, 0x400000},      {INT32_MAX, 1u << 31}};

TEST_F(C28FxJ3ARead, RefusesSpansWithoutAnAccess) {
  flash.SetMode(FlashMode::kUnknown, false);
  for (const SpanCase& span : kRefusedSpans) {
    flash.Read(span.wordCount, span.wordAddress, words.data());
    flash.ReadInMode(span.wordCount, FlashMode::kReadQuery, span.wordAddress, words.data());
  }
  EXPECT_THAT(words, Each(0x5555));
}

TEST_F(C28FxJ3ARead, RefusesANullDestinationWithoutAnAccess) {
  flash.SetMode(FlashMode::kUnknown, false);
  flash.Read(4, 0x200, nullptr);
  flash.ReadInMode(4, FlashMode::kReadQuery, 0x200, nullptr);
}

TEST_F(C28FxJ3ARead, GivesZerosWithoutAWindowForTheClippedCountOnly) {
  flash.Detach();
  flash.Read(3, 0x201, words.data());
  EXPECT_THAT(words, ElementsAre(0, 0, 0, 0x5555, 0x5555, 0x5555));

  words.fill(0x5555);
  flash.Read(6, 0x3FFFFE, words.data());
  EXPECT_THAT(words, ElementsAre(0, 0, 0x5555, 0x5555, 0x5555, 0x5555));

  words.fill(0x5555);
  flash.ReadInMode(6, FlashMode::kReadIdentifier, 0x3FFFFD, words.data());
  EXPECT_THAT(words, ElementsAre(0, 0, 0, 0x5555, 0x5555, 0x5555));
}

TEST_F(C28FxJ3ARead, WorksOnMemoryWithoutATrap) {
  volatile std::uint32_t pair[2] = {0, 0};
  flash.Attach(platform::RegisterWindow(reinterpret_cast<std::uintptr_t>(&pair[0])));
  flash.Read(2, 0x123456, words.data());
  EXPECT_EQ(pair[0], 0x123456u);
  EXPECT_THAT(words, ElementsAre(0xFF, 0, 0x5555, 0x5555, 0x5555, 0x5555)) << "the command is what stands there";
}

TEST_F(C28FxJ3ARead, InAModeReadsWordByWord) {
  registers.Expect({W(0, 0), W(4, 0x98),           //
                    W(0, 0x11), R(4, 0x1111FFFF),  //
                    W(0, 0x12), R(4, 0xFFFF2222),  //
                    W(0, 0x13), R(4, 0x3333FFFF),  //
                    W(0, 0x14), R(4, 0xFFFF4444)});
  flash.ReadInMode(4, FlashMode::kReadQuery, 0x11, words.data());
  EXPECT_THAT(words, ElementsAre(0x1111, 0x2222, 0x3333, 0x4444, 0x5555, 0x5555));
}

TEST_F(C28FxJ3ARead, InAModeThatIsSetSendsNoCommand) {
  registers.Expect({W(0, 0), R(4, 0xFFFF1111)});
  flash.ReadInMode(1, FlashMode::kReadArray, 0, words.data());
  EXPECT_EQ(words[0], 0x1111);
}

TEST_F(C28FxJ3ARead, InModeUnknownTakesWhatTheChipGives) {
  registers.Expect({W(0, 0), R(4, 0xFFFF1111)});
  flash.ReadInMode(1, FlashMode::kUnknown, 0, words.data());
  EXPECT_EQ(words[0], 0x1111);
  registers.ExpectDone();

  registers.Expect(ReadAtZeroWithCommand());
  ReadAtZero();
}

TEST_F(C28FxJ3ARead, InAModeRefusesModesWithoutAnAccess) {
  flash.ReadInMode(4, FlashMode::kNotAttached, 0x200, words.data());
  flash.ReadInMode(4, static_cast<FlashMode>(6), 0x200, words.data());
  EXPECT_THAT(words, Each(0x5555));

  registers.Expect(ReadAtZeroWithoutCommand());
  ReadAtZero();  // Still attached, and in its mode.
}

TEST_F(C28FxJ3ARead, InAModeStopsAtTheEndOfTheDevice) {
  for (const std::int32_t wordCount : {3, 4, INT32_MAX}) {
    words.fill(0x5555);
    registers.Expect({W(0, 0x3FFFFD), R(4, 0x1111FFFF),  //
                      W(0, 0x3FFFFE), R(4, 0xFFFF2222),  //
                      W(0, 0x3FFFFF), R(4, 0x3333FFFF)});
    flash.ReadInMode(wordCount, FlashMode::kReadArray, 0x3FFFFD, words.data());
    EXPECT_THAT(words, ElementsAre(0x1111, 0x2222, 0x3333, 0x5555, 0x5555, 0x5555)) << wordCount;
    registers.ExpectDone();
  }
}

}  // namespace
