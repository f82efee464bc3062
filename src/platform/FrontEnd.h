#pragma once

#include <cstddef>
#include <cstdint>

namespace platform {

/// A window of a graphical front end; 0 is none.
using WindowHandle = std::uintptr_t;

/// The message that carries a record to another process's window.
inline constexpr std::uint32_t kCopyDataMessage = 74;

/// A record on its way to a window. The receiver sees a copy of the bytes.
struct CopyData {
  std::uintptr_t kind;
  std::uint32_t sizeBytes;
  const void* bytes;
};

/// The door to a front end on the same desktop.
class FrontEnd {
 public:
  virtual ~FrontEnd() = default;

  /// The top-level window with this title, in code page 1252, or 0. A null class name matches every class.
  virtual WindowHandle FindWindowA(const char* className, const char* title) = 0;
  /// Sends and waits for the receiver's answer.
  virtual std::intptr_t SendMessageA(WindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                                     const CopyData& lParam) = 0;
};

}  // namespace platform
