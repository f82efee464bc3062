#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <new>
#include <string>

#include "support/VmeTrace.h"

// A program of its own, since it stands in for the global new and delete.

namespace {

/// The size that is refused; 0 for none. Each test has one that nothing but a buffer of the player asks for.
std::size_t refusedBytes = 0;
bool wasRefused = false;

void* Allocate(std::size_t sizeBytes) noexcept {
  if (refusedBytes == 0 || sizeBytes != refusedBytes) return std::malloc(sizeBytes == 0 ? 1 : sizeBytes);
  wasRefused = true;
  return nullptr;
}

/// Not inlined: where it is, the compiler takes `free` for the wrong partner of `new`.
[[gnu::noinline]] void Release(void* memory) noexcept {
  std::free(memory);
}

}  // namespace

void* operator new(std::size_t sizeBytes) {
  void* memory = Allocate(sizeBytes);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept {
  Release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  Release(memory);
}

namespace {

using test_support::SameTrace;
using test_support::Times;
using test_support::Trace;
using test_support::VmeFile;
using test_support::VmeTrace;

const std::string kToShiftDr = "enter tms:01010 rest tms:10 rest ";

class VmeOutOfMemory : public testing::Test {
 protected:
  ~VmeOutOfMemory() override { refusedBytes = 0; }

  testing::AssertionResult PlaysWithout(std::size_t bytes, const std::string& body, const std::string& words) {
    const auto file = VmeFile(body);
    wasRefused = false;
    refusedBytes = bytes;
    trace.PlayBytes(file);
    refusedBytes = 0;
    if (!wasRefused) return testing::AssertionFailure() << "nothing was refused";
    return SameTrace(trace.text(), Trace(words));
  }

  VmeTrace trace;
};

TEST_F(VmeOutOfMemory, IsAFileErrorThatResetsAllTheSame) {
  // MEM 65533: 8193 bytes.
  EXPECT_TRUE(PlaysWithout(8193, "F2 19 FD FF 03 12 08 13 A5 70 7F", kToShiftDr + "leave:5 =-4"));
  EXPECT_FALSE(trace.player.HasFileOpen());
  EXPECT_TRUE(trace.Plays("F2 12 08 13 A5 70 7F", kToShiftDr + "tdi:10100101. tms:10 rest leave:5 =0"));
}

TEST_F(VmeOutOfMemory, ForAHeaderIsAFileErrorAndLeavesAHeaderOfZeros) {
  EXPECT_TRUE(PlaysWithout(8193, "F2 06 FD FF 03 13 A5 70 7F", "enter leave:6 =-4"));
  EXPECT_TRUE(trace.Plays("F2 19 08 11 01 13 80 70 7F", "enter tms:011010 rest tms:10 rest tdi:" + Times(65533, "0") +
                                                            ". pulse tdi:1. tms:10 rest leave:5 =0"));
}

TEST_F(VmeOutOfMemory, ForAHeapLeavesNoHeapForALoop) {
  EXPECT_TRUE(PlaysWithout(65537, "F2 32 60 FF FF 03 7F", "enter leave:6 =-4"));
  EXPECT_TRUE(trace.Plays("F2 33 01 59 7F", "enter leave:6 =-4"));
  EXPECT_TRUE(trace.Plays("F2 32 60 01 33 01 59 1B 01 7F", "enter pulse leave:6 =0"));
}

TEST_F(VmeOutOfMemory, InALoopEndsTheLoop) {
  EXPECT_TRUE(PlaysWithout(8193, "F2 32 60 07 33 03 1B 01 08 FD FF 03 59 7F", "enter pulse leave:6 =-4"));
  EXPECT_TRUE(trace.Plays("F2 1B 01 7F", "enter pulse leave:6 =0"));
}

}  // namespace
