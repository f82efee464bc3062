#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

#include "board/DeviceDiscovery.h"
#include "board/DriverRecords.h"
#include "platform/Devices.h"

// Buffers that are handed to the second line's driver by address. Nothing here throws: memory that cannot be had is a
// line on standard output and a null pointer.

/// Gives out memory that a driver can be told the address of.
class MemAllocator {
 public:
  virtual ~MemAllocator() = default;
  /// Sets both addresses of a block of at least `sizeBytes`: the process's and the driver's. Both are null after a
  /// request that is too large, and as they were when no block is free.
  virtual void Allocate(std::size_t sizeBytes, void*& userAddress, void*& kernelAddress) = 0;
  /// Takes a block back by the process's address of its start; any other address is ignored.
  virtual void Free(const void* userAddress) = 0;
};

/// Four blocks of 4096 bytes. Enough for a command and its reply at one time; the two addresses of a block are equal,
/// as the pool is plain process memory.
class kernelMappedMemory : public MemAllocator {
 public:
  static constexpr std::size_t kBlocks = 4;
  static constexpr std::size_t kBlockBytes = 4096;

  explicit kernelMappedMemory(platform::Handle device);
  kernelMappedMemory(const kernelMappedMemory&) = delete;
  kernelMappedMemory& operator=(const kernelMappedMemory&) = delete;

  void Allocate(std::size_t sizeBytes, void*& userAddress, void*& kernelAddress) override;
  void Free(const void* userAddress) override;

  /// The handle that it was made with, whether still open or not.
  const platform::Handle device;

 private:
  std::uint8_t* Block(std::size_t index) const { return pool_.get() + index * kBlockBytes; }

  std::unique_ptr<std::uint8_t[]> pool_;
  bool inUse_[kBlocks] = {};
};

/// What a `DynMem` does beside being a copy. Values are bits.
enum DynMemFlags : std::uint32_t {
  kDynMemPlain = 0,
  kDynMemKnownToDriver = 1,  ///< the driver gets the address, and is told to release it
  kDynMemCopyBack = 2,       ///< the bytes go back to the caller's buffer at the end
};

/// A copy of a caller's buffer for the time of one control call. `T` is char or unsigned char.
///
///     DynMem<char> copy(device, buffer, 8192, kDynMemCopyBack);
///     record.bufferAddress = copy.GetUserAddress();
///     ...                                        // the call; behind the scope the result is in `buffer`
template <typename T>
class DynMem {
 public:
  /// A copy on the heap. Nothing is copied for a null `callerBuffer`.
  DynMem(platform::Handle device, T* callerBuffer, std::size_t sizeBytes, std::uint32_t flags)
      : device_(device), sizeBytes_(sizeBytes), callerBuffer_(callerBuffer), flags_(flags) {
    if (callerBuffer == nullptr) return;
    data_ = new (std::nothrow) T[sizeBytes];
    if (data_ != nullptr) std::memcpy(data_, callerBuffer, sizeBytes);
    if ((flags & kDynMemKnownToDriver) != 0) kernelAddress_ = data_;
  }

  /// A block of the allocator's, with a copy of the caller's bytes if there is a caller's buffer. `callerBuffer` must
  /// be there for the block to be taken back.
  DynMem(platform::Handle device, MemAllocator* allocator, T* callerBuffer, std::size_t sizeBytes, std::uint32_t flags)
      : device_(device), sizeBytes_(sizeBytes), callerBuffer_(callerBuffer), flags_(flags), allocator_(allocator) {
    if (sizeBytes == 0) return;
    void* user = nullptr;
    allocator->Allocate(sizeBytes, user, kernelAddress_);
    data_ = static_cast<T*>(user);
    if (data_ == nullptr) {
      std::fputs("DynMem failed to allocate memory!\n", stdout);
      return;
    }
    if (callerBuffer != nullptr) std::memcpy(data_, callerBuffer, sizeBytes);
  }

  /// Copies back also when the call in between failed.
  virtual ~DynMem() {
    // Whoever lends no buffer gets no block back either: a known weakness, on which nothing here relies.
    if (callerBuffer_ == nullptr) return;
    if ((flags_ & kDynMemCopyBack) != 0 && data_ != nullptr) std::memcpy(callerBuffer_, data_, sizeBytes_);
    if ((flags_ & kDynMemKnownToDriver) != 0 && allocator_ == nullptr) ReleaseAtDriver();
    if (allocator_ != nullptr)
      allocator_->Free(data_);
    else
      delete[] data_;
  }
  DynMem(const DynMem&) = delete;
  DynMem& operator=(const DynMem&) = delete;

  std::uint64_t GetUserAddress() const { return reinterpret_cast<std::uintptr_t>(data_); }
  std::uint64_t GetKernelAddress() const { return reinterpret_cast<std::uintptr_t>(kernelAddress_); }

 private:
  void ReleaseAtDriver() {
    if (device_ == 0 || kernelAddress_ == nullptr) return;
    const std::uint64_t address = GetKernelAddress();
    std::uint32_t returned = 0;
    if (MorvakIoControl(device_, IOCTL_ReleaseBuffer, &address, sizeof address, nullptr, 0, returned) != kHWCerr_None)
      std::fputs("blah", stdout);  // all that was ever said of it
  }

  const platform::Handle device_;
  const std::size_t sizeBytes_;
  T* const callerBuffer_;
  const std::uint32_t flags_;
  MemAllocator* const allocator_ = nullptr;
  T* data_ = nullptr;
  void* kernelAddress_ = nullptr;
};
