#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>

#include "board/CreateWyvrelHelper.h"
#include "board/MorvakHelper.h"
#include "board/VeltraHelper.h"
#include "DriverScripts.h"
#include "support/FailingAllocation.h"
#include "support/ManualClock.h"

// A program of its own, since it stands in for the global new and delete.

namespace {

struct Watched {
  std::size_t sizeBytes = 0;
  void* object = nullptr;
};

bool isOn = false;
Watched watched[2];
const char* events[4];
std::size_t eventCount = 0;

void* Allocate(std::size_t sizeBytes) noexcept {
  void* memory = std::malloc(sizeBytes == 0 ? 1 : sizeBytes);
  for (std::size_t i = 0; isOn && i < 2; ++i) {
    if (watched[i].object != nullptr || watched[i].sizeBytes != sizeBytes) continue;
    watched[i].object = memory;
    events[eventCount++] = i == 0 ? "+1" : "+2";
  }
  return memory;
}

void Release(void* memory) noexcept {
  for (std::size_t i = 0; isOn && i < 2; ++i) {
    if (memory == nullptr || watched[i].object != memory) continue;
    watched[i] = {};  // Another object may come to the same address.
    events[eventCount++] = i == 0 ? "-1" : "-2";
  }
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

/// Watches two objects come and go on the heap, the first of each size to be allocated.
class ObjectWatch {
 public:
  ObjectWatch(std::size_t firstBytes, std::size_t secondBytes) {
    watched[0] = {firstBytes, nullptr};
    watched[1] = {secondBytes, nullptr};
    eventCount = 0;
    isOn = true;
  }
  ~ObjectWatch() { isOn = false; }
  ObjectWatch(const ObjectWatch&) = delete;
  ObjectWatch& operator=(const ObjectWatch&) = delete;

  /// "+1" for the object of the first size that came, "-1" when it went, "+2" and "-2" likewise. Ends the watch.
  std::string Events() {
    isOn = false;
    std::string text;
    for (std::size_t i = 0; i < eventCount; ++i) {
      if (i > 0) text += ' ';
      text += events[i];
    }
    return text;
  }
};

// So there is a helper at every moment.
TEST(HelperLifetimes, BuildTheFallBackBeforeTheFirstHelperGoes) {
  static_assert(sizeof(MorvakHelper) != sizeof(VeltraHelper));
  test_support::ManualClock clock;
  test_support::StrictDevices devices;
  test_support::PlatformDouble system;
  system.Use(devices);
  system.Use(clock.clock());
  const platform::ScopedPlatform scope(system);
  for (const std::string& guid : {driver_scripts::kMorvak, driver_scripts::kBelmara, driver_scripts::kDovu})
    devices.Expect(driver_scripts::IsAbsent(guid));

  // None is to fail: this links in the form of new that does not throw and comes down to the one above, so that what is
  // allocated either way is released in the same way.
  const test_support::FailingAllocation none(0);
  ObjectWatch watch(sizeof(MorvakHelper), sizeof(VeltraHelper));
  const auto helper = CreateWyvrelHelper(OpenMode::kMorvakElseBothHostCards);
  EXPECT_EQ(watch.Events(), "+1 +2 -1 -2");
  EXPECT_EQ(helper, nullptr);
}

}  // namespace
