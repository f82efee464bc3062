#include "board/DynMem.h"

#include <cinttypes>

kernelMappedMemory::kernelMappedMemory(platform::Handle deviceHandle)
    : device(deviceHandle), pool_(new (std::nothrow) std::uint8_t[kBlocks * kBlockBytes]) {}

void kernelMappedMemory::Allocate(std::size_t sizeBytes, void*& userAddress, void*& kernelAddress) {
  if (sizeBytes > kBlockBytes) {
    std::printf("memory allocation is too large: %" PRId32 " requested %d is max available\n",
                static_cast<std::int32_t>(sizeBytes), static_cast<int>(kBlockBytes));
    userAddress = kernelAddress = nullptr;
    return;
  }
  if (!pool_) return;
  for (std::size_t i = 0; i < kBlocks; ++i) {
    if (inUse_[i]) continue;
    inUse_[i] = true;
    userAddress = kernelAddress = Block(i);
    return;
  }
}

void kernelMappedMemory::Free(const void* userAddress) {
  for (std::size_t i = 0; i < kBlocks; ++i)
    if (pool_ && Block(i) == userAddress) inUse_[i] = false;
}
