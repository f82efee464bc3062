#include "simulator/SimulatedFrontEnd.h"

#include <utility>

namespace simulator {

void SimulatedFrontEnd::Open(std::string title) {
  window_ = ++lastWindow_;
  title_ = std::move(title);
}

void SimulatedFrontEnd::Close() {
  window_ = 0;
}

platform::WindowHandle SimulatedFrontEnd::FindWindowA(const char* className, const char* title) {
  if (window_ == 0 || className != nullptr || title == nullptr || title_ != title) return 0;
  return window_;
}

std::intptr_t SimulatedFrontEnd::SendMessageA(platform::WindowHandle window, std::uint32_t message,
                                              std::uintptr_t wParam, const platform::CopyData& lParam) {
  if (window == 0 || window != window_ || (lParam.bytes == nullptr && lParam.sizeBytes != 0)) return 0;
  const auto* const bytes = static_cast<const std::uint8_t*>(lParam.bytes);
  received_.push_back({message, wParam, lParam.kind, {bytes, bytes + lParam.sizeBytes}});
  return 1;
}

}  // namespace simulator
