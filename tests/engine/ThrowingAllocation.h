#pragma once

/// Lets one allocation of the code that is linked into the test throw `std::bad_alloc`: those by `new T`, not those
/// inside the standard library. Keep its life short, the test's own allocations count too.
///
///     ThrowingAllocation third(3);
///     EXPECT_FALSE(TalcPathInit());  // its third allocation threw
namespace engine_test {

class ThrowingAllocation {
 public:
  /// The `nth` allocation from now on throws, counted from 1.
  explicit ThrowingAllocation(int nth);
  /// Nothing throws any more.
  ~ThrowingAllocation();
  ThrowingAllocation(const ThrowingAllocation&) = delete;
  ThrowingAllocation& operator=(const ThrowingAllocation&) = delete;

  /// True once the allocation has thrown.
  static bool Happened();
};

}  // namespace engine_test
