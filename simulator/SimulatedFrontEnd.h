#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/FrontEnd.h"

namespace simulator {

/// One message as a front end's window received it.
struct ReceivedMessage {
  std::uint32_t message;
  std::uintptr_t wParam;
  std::uintptr_t kind;
  std::vector<std::uint8_t> bytes;
};

/// A desktop without windows, until a test puts one up that keeps all it is sent.
///
///     frontEnd.Open("Title");   // in code page 1252
///     ...
///     frontEnd.received().at(0).bytes
class SimulatedFrontEnd : public platform::FrontEnd {
 public:
  /// Puts up the one window of this desktop, in place of the one before.
  void Open(std::string title);
  void Close();
  const std::vector<ReceivedMessage>& received() const { return received_; }

  /// Looks by title alone; there is no window of any class by name.
  platform::WindowHandle FindWindowA(const char* className, const char* title) override;
  /// Returns 1, as a receiver that has understood; 0 for a window that is not up, and for a record without bytes.
  std::intptr_t SendMessageA(platform::WindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                             const platform::CopyData& lParam) override;

 private:
  platform::WindowHandle window_ = 0;
  platform::WindowHandle lastWindow_ = 0x10000;
  std::string title_;
  std::vector<ReceivedMessage> received_;
};

}  // namespace simulator
