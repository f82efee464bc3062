#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/RegisterWindow.h"

/// A register window that expects an exact sequence of accesses and answers its reads. An access that is missing, extra
/// or out of order fails the test.
///
///     test_support::ScriptedRegisters registers;
///     registers.Expect({W(0, 0x30000), W(4, 0x70), R(4, 0x80)});
///     flash.Attach(registers.Window());
///     flash.ReadStatus(true);
///     registers.ExpectDone();
namespace test_support {

/// One 32-bit access. `offset` is in bytes; `value` is what is to be written, or what the read is answered with.
struct RegisterAccess {
  enum class Kind { kWrite, kRead };
  Kind kind;
  std::uint32_t offset;
  std::uint32_t value;
};

inline RegisterAccess W(std::uint32_t offset, std::uint32_t value) {
  return {RegisterAccess::Kind::kWrite, offset, value};
}
inline RegisterAccess R(std::uint32_t offset, std::uint32_t answer) {
  return {RegisterAccess::Kind::kRead, offset, answer};
}

using RegisterScript = std::vector<RegisterAccess>;

class ScriptedRegisters final : public platform::RegisterTrap {
 public:
  ScriptedRegisters() = default;
  /// Fails the test when accesses are left over.
  ~ScriptedRegisters() override {
    if (std::uncaught_exceptions() == 0) ExpectDone();
  }
  ScriptedRegisters(const ScriptedRegisters&) = delete;
  ScriptedRegisters& operator=(const ScriptedRegisters&) = delete;

  /// The window behind which these registers are. It must not outlive them.
  platform::RegisterWindow Window() { return platform::RegisterWindow(0x1000, this); }

  /// Appends to what is expected, `times` times over.
  void Expect(const RegisterScript& script, int times = 1) {
    for (int i = 0; i < times; ++i)
      script_.insert(script_.end(), script.begin(), script.end());
  }

  /// Fails the test unless every expected access was made, and forgets those that were not.
  void ExpectDone() {
    if (next_ < script_.size())
      ADD_FAILURE() << script_.size() - next_ << " register accesses were not made, the first of them "
                    << Text(script_[next_]) << " (number " << next_ << ")";
    script_.clear();
    next_ = 0;
  }

  std::uint32_t Read(std::uint32_t offset) override { return Take({RegisterAccess::Kind::kRead, offset, 0}).value; }
  void Write(std::uint32_t offset, std::uint32_t value) override {
    Take({RegisterAccess::Kind::kWrite, offset, value});
  }

 private:
  /// Throws on a mismatch as well, since code that polls would go on for ever.
  RegisterAccess Take(const RegisterAccess& made) {
    const bool isExpected = next_ < script_.size() && script_[next_].kind == made.kind &&
                            script_[next_].offset == made.offset &&
                            (made.kind == RegisterAccess::Kind::kRead || script_[next_].value == made.value);
    if (!isExpected) {
      const std::string expected = next_ < script_.size() ? Text(script_[next_]) : "none";
      const std::string message =
          "register access " + std::to_string(next_) + " is " + Text(made) + ", expected " + expected;
      script_.clear();
      next_ = 0;
      ADD_FAILURE() << message;
      throw std::logic_error(message);
    }
    return script_[next_++];
  }

  static std::string Text(const RegisterAccess& access) {
    char text[48];
    if (access.kind == RegisterAccess::Kind::kWrite)
      std::snprintf(text, sizeof text, "W(%#x, %#x)", access.offset, access.value);
    else
      std::snprintf(text, sizeof text, "R(%#x)", access.offset);
    return text;
  }

  RegisterScript script_;
  std::size_t next_ = 0;
};

}  // namespace test_support
