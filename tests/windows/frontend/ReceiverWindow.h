#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "TestDesktop.h"

namespace frontend_test {

struct Received {
  WPARAM wParam;
  std::uint64_t kind;
  std::vector<std::uint8_t> bytes;
};

/// A window with nothing but a title, which keeps each record that is sent to it. It lives on a thread of its own.
///
///     ReceiverWindow receiver(desktop, kTitle);
///     NotifyRestart(1, 0);
///     EXPECT_EQ(receiver.Records().at(0).kind, 102u);
class ReceiverWindow {
 public:
  /// Returns when the window can be found. `onRecord`, if there is one, is called on the window's thread with each
  /// record, before it is answered with `answer`.
  ReceiverWindow(const TestDesktop& desktop, const std::string& title, LRESULT answer = TRUE,
                 std::function<void()> onRecord = {});
  ReceiverWindow(const ReceiverWindow&) = delete;
  ReceiverWindow& operator=(const ReceiverWindow&) = delete;
  /// Returns when the window is gone.
  ~ReceiverWindow();

  std::vector<Received> Records() const;

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  HWND Create(const std::string& title);
  void Keep(WPARAM wParam, const COPYDATASTRUCT& data);

  const LRESULT answer_;
  const std::function<void()> onRecord_;
  mutable std::mutex mutex_;
  std::vector<Received> records_;
  HWND window_ = nullptr;
  std::thread thread_;
};

}  // namespace frontend_test
