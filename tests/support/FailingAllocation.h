#pragma once

#include <functional>

/// Lets one allocation of the code under test fail, of those that report a failure by a null pointer:
/// `new (std::nothrow) T` and `new (std::nothrow) T[n]`.
///
///     test_support::FailingAllocation second(2);
///     EXPECT_EQ(block.Create(100), kVpdOutOfMemory);  // its second buffer was refused
namespace test_support {

class FailingAllocation {
 public:
  /// The `nth` such allocation of the process from now on fails, counted from 1.
  explicit FailingAllocation(int nth);
  /// Nothing fails any more.
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  /// True once the allocation was refused.
  bool Happened() const;
};

/// Does something at the `nth` such allocation, right before it, which then succeeds: what a test has happen in the
/// middle of the code under test.
///
///     test_support::AtAllocation shrink(1, [&] { std::filesystem::resize_file(path, 10); });
class AtAllocation {
 public:
  AtAllocation(int nth, std::function<void()> action);
  /// Nothing is done any more.
  ~AtAllocation();
  AtAllocation(const AtAllocation&) = delete;
  AtAllocation& operator=(const AtAllocation&) = delete;

  /// True once the action was done.
  bool Happened() const;
};

}  // namespace test_support
