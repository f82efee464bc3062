#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>

namespace frontend_test {

inline constexpr char kTitle[] = "Orbo\xAE Veltra Kore";

/// A desktop of the test's own, since windows are found by title: another test's windows, and those of a person at the
/// screen, are not on it. It is the present thread's for the rest of the thread; other threads have to `Enter` it.
class TestDesktop {
 public:
  TestDesktop() : name_("front-end-test-" + std::to_string(GetCurrentProcessId())) {
    desktop_ = CreateDesktopA(name_.c_str(), nullptr, nullptr, 0, GENERIC_ALL, nullptr);
    if (desktop_ == nullptr) throw std::runtime_error("no desktop can be made");
    Enter();
  }
  TestDesktop(const TestDesktop&) = delete;
  TestDesktop& operator=(const TestDesktop&) = delete;
  ~TestDesktop() { CloseDesktop(desktop_); }

  const std::string& Name() const { return name_; }

  /// Only for threads that have no window yet.
  void Enter() const {
    if (SetThreadDesktop(desktop_) == FALSE) throw std::runtime_error("a desktop cannot be entered");
  }

 private:
  std::string name_;
  HDESK desktop_;
};

}  // namespace frontend_test
