#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

namespace caps_test {

/// A caller's buffer for a text: full of "?" at first, with more of them behind it that must stay.
///
///     GuardedBuffer buffer(5);
///     EXPECT_TRUE(caps.GetPropertyAsString("P", buffer.size(), buffer.data()));
///     EXPECT_EQ(buffer.Shown(), "ABC..");
class GuardedBuffer {
 public:
  explicit GuardedBuffer(std::uint32_t size) : size_(size), bytes_(size + kBehind.size(), '?') {}

  char* data() { return bytes_.data(); }
  std::uint32_t size() const { return size_; }
  /// All of it, with dots for zeros.
  std::string Shown() const {
    EXPECT_EQ(bytes_.substr(size_), kBehind) << "written behind the buffer";
    std::string shown = bytes_.substr(0, size_);
    std::replace(shown.begin(), shown.end(), '\0', '.');
    return shown;
  }

 private:
  inline static const std::string kBehind = "????????";

  std::uint32_t size_;
  std::string bytes_;
};

}  // namespace caps_test
