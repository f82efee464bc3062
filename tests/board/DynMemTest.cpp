#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>

#include "board/DynMem.h"
#include "support/CapturedOutput.h"
#include "support/FailingAllocation.h"
#include "support/PlatformDouble.h"
#include "support/StrictDevices.h"

// The buffers that go to the second line's driver by address, and the pool that they come from.

namespace {

using test_support::CapturedOutput;
using test_support::FailingAllocation;

constexpr platform::Handle kDevice = 0x31;
constexpr char kTooLarge[] = "memory allocation is too large: 4097 requested 4096 is max available\n";
constexpr char kNoMemory[] = "DynMem failed to allocate memory!\n";

/// Fails on any call of the driver that was not expected.
class BufferTest : public ::testing::Test {
 protected:
  BufferTest() { system.Use(devices); }

  template <typename T>
  static T* At(std::uint64_t address) {
    return reinterpret_cast<T*>(static_cast<std::uintptr_t>(address));
  }

  /// The driver is told to let go of an address.
  static test_support::DeviceScript Releases(std::uint64_t address, const test_support::DeviceAnswer& answer) {
    std::string record;
    for (int shift = 0; shift < 64; shift += 8) {
      char byte[4];
      std::snprintf(byte, sizeof byte, shift == 0 ? "%02x" : " %02x", static_cast<unsigned>(address >> shift & 0xFF));
      record += byte;
    }
    return {{"DeviceIoControl 0x31 code 0xaa010050 in [" + record + "] out 0", answer}};
  }

  test_support::StrictDevices devices;
  test_support::PlatformDouble system;
  platform::ScopedPlatform scope{system};
  CapturedOutput captured;
};

// ---- The pool

class PoolTest : public BufferTest {
 protected:
  struct Block {
    void* user;
    void* kernel;
  };

  /// Both addresses are that of `untouched` when the pool sets none.
  Block Allocate(std::size_t sizeBytes) {
    Block block{&untouched, &untouched};
    pool.Allocate(sizeBytes, block.user, block.kernel);
    return block;
  }

  int untouched = 0;
  kernelMappedMemory pool{kDevice};
};

TEST_F(PoolTest, HasFourBlocksOf4096BytesInARow) {
  std::uint8_t* first = nullptr;
  for (int i = 0; i < 4; ++i) {
    const Block block = Allocate(1);
    EXPECT_EQ(block.user, block.kernel) << "the driver is told the process's address";
    if (i == 0) first = static_cast<std::uint8_t*>(block.user);
    EXPECT_EQ(block.user, first + 4096 * i);
    std::memset(block.user, i, 4096);
  }
  EXPECT_EQ(pool.device, kDevice);
  EXPECT_EQ(captured.out(), "");
}

TEST_F(PoolTest, HasNothingToSayWhenItIsDry) {
  for (int i = 0; i < 4; ++i)
    Allocate(4096);
  const Block fifth = Allocate(1);
  EXPECT_EQ(fifth.user, &untouched);
  EXPECT_EQ(fifth.kernel, &untouched);
  EXPECT_EQ(captured.out(), "");
}

TEST_F(PoolTest, GivesOutTheFirstBlockThatIsFree) {
  Allocate(1);
  const Block second = Allocate(1);
  const Block third = Allocate(1);
  pool.Free(third.user);
  pool.Free(second.user);
  EXPECT_EQ(Allocate(1).user, second.user);
  EXPECT_EQ(Allocate(1).user, third.user);
}

TEST_F(PoolTest, RefusesWhatNoBlockHolds) {
  EXPECT_NE(Allocate(4096).user, &untouched);
  EXPECT_EQ(captured.out(), "");
  const Block block = Allocate(4097);
  EXPECT_EQ(block.user, nullptr);
  EXPECT_EQ(block.kernel, nullptr);
  EXPECT_EQ(captured.out(), kTooLarge);
}

TEST_F(PoolTest, TakesOnlyTheStartOfABlockBack) {
  Block blocks[4];
  for (Block& block : blocks)
    block = Allocate(4096);
  auto* const start = static_cast<std::uint8_t*>(blocks[0].user);
  for (const void* const other : {static_cast<const void*>(start + 1), static_cast<const void*>(start + 4095),
                                  static_cast<const void*>(start + 4 * 4096), static_cast<const void*>(&untouched),
                                  static_cast<const void*>(nullptr)}) {
    pool.Free(other);
    EXPECT_EQ(Allocate(1).user, &untouched);
  }
  pool.Free(start);
  EXPECT_EQ(Allocate(1).user, start);
}

TEST_F(BufferTest, APoolWithoutMemoryIsDry) {
  const FailingAllocation none(1);
  kernelMappedMemory pool(kDevice);
  EXPECT_TRUE(none.Happened());
  unsigned char buffer[4] = {};
  const DynMem<unsigned char> block(kDevice, &pool, buffer, sizeof buffer, kDynMemPlain);
  EXPECT_EQ(block.GetUserAddress(), 0u);
  EXPECT_EQ(captured.out(), kNoMemory);
}

// ---- A copy on the heap

class HeapCopy : public BufferTest {
 protected:
  char buffer[4] = {'a', 'b', 'c', 'd'};
};

TEST_F(HeapCopy, HoldsTheCallersBytes) {
  const DynMem<char> copy(kDevice, buffer, sizeof buffer, kDynMemPlain);
  EXPECT_NE(At<char>(copy.GetUserAddress()), buffer);
  EXPECT_EQ(std::string(At<char>(copy.GetUserAddress()), 4), "abcd");
}

TEST_F(HeapCopy, DoesWhatItsFlagsSay) {
  struct Case {
    std::uint32_t flags;
    bool isKnownToDriver;
    const char* bufferAfterwards;
  };
  for (const Case& each : {Case{0, false, "abcd"}, {1, true, "abcd"}, {2, false, "wxyd"}, {3, true, "wxyd"}}) {
    SCOPED_TRACE(each.flags);
    std::memcpy(buffer, "abcd", sizeof buffer);
    {
      const DynMem<char> copy(kDevice, buffer, 3, each.flags);
      std::memcpy(At<char>(copy.GetUserAddress()), "wxy", 3);
      EXPECT_EQ(std::string(buffer, 4), "abcd") << "before its end";
      EXPECT_EQ(copy.GetKernelAddress(), each.isKnownToDriver ? copy.GetUserAddress() : 0u);
      if (each.isKnownToDriver) devices.Expect(Releases(copy.GetUserAddress(), test_support::Succeeds()));
    }
    devices.ExpectDone();
    EXPECT_EQ(std::string(buffer, 4), each.bufferAfterwards);
  }
  EXPECT_EQ(captured.out(), "");
}

TEST_F(HeapCopy, SaysOneWordWhenTheDriverDoesNotLetGo) {
  {
    const DynMem<char> copy(kDevice, buffer, sizeof buffer, kDynMemKnownToDriver);
    devices.Expect(Releases(copy.GetUserAddress(), test_support::Fails()));
  }
  EXPECT_EQ(captured.out(), "blah");
  EXPECT_EQ(captured.err(), "");
}

TEST_F(HeapCopy, IsNotReleasedAtADriverThatIsNotThere) {
  const DynMem<char> copy(0, buffer, sizeof buffer, kDynMemKnownToDriver);
  EXPECT_NE(copy.GetKernelAddress(), 0u);
}

TEST_F(HeapCopy, IsNothingWithoutACallersBuffer) {
  const FailingAllocation first(1);
  {
    const DynMem<char> copy(kDevice, nullptr, 4, kDynMemKnownToDriver | kDynMemCopyBack);
    EXPECT_EQ(copy.GetUserAddress(), 0u);
    EXPECT_EQ(copy.GetKernelAddress(), 0u);
  }
  EXPECT_FALSE(first.Happened()) << "memory was taken";
  EXPECT_EQ(captured.out(), "");
}

TEST_F(HeapCopy, CopiesNothingOfNoBytes) {
  {
    const DynMem<char> copy(kDevice, buffer, 0, kDynMemCopyBack);
    EXPECT_EQ(copy.GetKernelAddress(), 0u);
  }
  EXPECT_EQ(std::string(buffer, 4), "abcd");
}

TEST_F(HeapCopy, StandsWithoutMemory) {
  {
    const FailingAllocation none(1);
    const DynMem<char> copy(kDevice, buffer, sizeof buffer, kDynMemKnownToDriver | kDynMemCopyBack);
    EXPECT_TRUE(none.Happened());
    EXPECT_EQ(copy.GetUserAddress(), 0u);
    EXPECT_EQ(copy.GetKernelAddress(), 0u);
  }
  EXPECT_EQ(std::string(buffer, 4), "abcd");
  EXPECT_EQ(captured.out(), "");
}

// ---- A block of the pool

class PoolBlock : public PoolTest {
 protected:
  unsigned char buffer[4097] = {'a', 'b', 'c', 'd'};
};

// The driver is never told, whatever the flags.
TEST_F(PoolBlock, DoesWhatItsFlagsSayAndGoesBack) {
  struct Case {
    std::uint32_t flags;
    const char* bufferAfterwards;
  };
  std::uint64_t first = 0;
  for (const Case& each : {Case{0, "abcd"}, {1, "abcd"}, {2, "wxyd"}, {3, "wxyd"}}) {
    SCOPED_TRACE(each.flags);
    std::memcpy(buffer, "abcd", 4);
    {
      const DynMem<unsigned char> block(kDevice, &pool, buffer, 3, each.flags);
      ASSERT_NE(block.GetUserAddress(), 0u);
      EXPECT_EQ(block.GetKernelAddress(), block.GetUserAddress());
      if (first == 0) first = block.GetUserAddress();
      EXPECT_EQ(block.GetUserAddress(), first) << "the block was not taken back";
      EXPECT_EQ(std::memcmp(At<char>(block.GetUserAddress()), "abc", 3), 0);
      std::memcpy(At<char>(block.GetUserAddress()), "wxyz", 4);
      EXPECT_EQ(std::memcmp(buffer, "abcd", 4), 0) << "before its end";
    }
    EXPECT_EQ(std::memcmp(buffer, each.bufferAfterwards, 4), 0);
  }
  EXPECT_EQ(captured.out(), "");
}

TEST_F(PoolBlock, HoldsExactly4096Bytes) {
  buffer[4095] = 0x95;
  buffer[4096] = 0x96;
  {
    const DynMem<unsigned char> block(kDevice, &pool, buffer, 4096, kDynMemCopyBack);
    auto* const bytes = At<std::uint8_t>(block.GetUserAddress());
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(bytes[4095], 0x95);
    bytes[4095] = 0x59;
  }
  EXPECT_EQ(buffer[4095], 0x59);
  EXPECT_EQ(buffer[4096], 0x96);
  EXPECT_EQ(captured.out(), "");
}

TEST_F(PoolBlock, StandsWithoutMemoryForOneByteMore) {
  {
    const DynMem<unsigned char> block(kDevice, &pool, buffer, 4097, kDynMemCopyBack);
    EXPECT_EQ(block.GetUserAddress(), 0u);
    EXPECT_EQ(block.GetKernelAddress(), 0u);
  }
  EXPECT_EQ(captured.out(), std::string(kTooLarge) + kNoMemory);
  EXPECT_EQ(buffer[0], 'a');
}

TEST_F(PoolBlock, StandsWithoutMemoryAsTheFifth) {
  {
    std::optional<DynMem<unsigned char>> blocks[4];
    for (auto& block : blocks) {
      block.emplace(kDevice, &pool, buffer, 4u, kDynMemPlain);
      EXPECT_NE(block->GetUserAddress(), 0u);
    }
    EXPECT_EQ(captured.out(), "");
    const DynMem<unsigned char> fifth(kDevice, &pool, buffer, 4, kDynMemCopyBack);
    EXPECT_EQ(fifth.GetUserAddress(), 0u);
    EXPECT_EQ(fifth.GetKernelAddress(), 0u);
    EXPECT_EQ(captured.out(), kNoMemory);
  }
  EXPECT_EQ(std::memcmp(buffer, "abcd", 4), 0);
  const DynMem<unsigned char> again(kDevice, &pool, buffer, 4, kDynMemPlain);
  EXPECT_NE(again.GetUserAddress(), 0u);
}

TEST_F(PoolBlock, IsNoneForNoBytes) {
  {
    const DynMem<unsigned char> none(kDevice, &pool, buffer, 0, kDynMemCopyBack);
    EXPECT_EQ(none.GetUserAddress(), 0u);
    EXPECT_EQ(none.GetKernelAddress(), 0u);
  }
  EXPECT_EQ(captured.out(), "");
  for (int i = 0; i < 4; ++i)
    EXPECT_NE(Allocate(1).user, &untouched) << "block " << i;
}

// A known weakness: what is lent without a buffer is gone for good.
TEST_F(PoolBlock, StaysTakenWithoutACallersBuffer) {
  for (int i = 0; i < 4; ++i) {
    const DynMem<unsigned char> block(kDevice, &pool, nullptr, 4, kDynMemCopyBack);
    EXPECT_NE(block.GetUserAddress(), 0u);
  }
  EXPECT_EQ(captured.out(), "");
  const DynMem<unsigned char> fifth(kDevice, &pool, buffer, 4, kDynMemPlain);
  EXPECT_EQ(fifth.GetUserAddress(), 0u);
  EXPECT_EQ(captured.out(), kNoMemory);
}

}  // namespace
