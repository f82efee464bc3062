#include "ReceiverWindow.h"

#include <future>
#include <utility>

namespace frontend_test {
namespace {

constexpr char kClassName[] = "FrontEndTestReceiver";

}  // namespace

ReceiverWindow::ReceiverWindow(const TestDesktop& desktop, const std::string& title, LRESULT answer,
                               std::function<void()> onRecord)
    : answer_(answer), onRecord_(std::move(onRecord)) {
  std::promise<HWND> made;
  thread_ = std::thread([&desktop, &title, &made, this] {
    desktop.Enter();
    made.set_value(Create(title));
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0)
      DispatchMessageA(&message);
  });
  window_ = made.get_future().get();
}

ReceiverWindow::~ReceiverWindow() {
  PostMessageA(window_, WM_CLOSE, 0, 0);
  thread_.join();
}

std::vector<Received> ReceiverWindow::Records() const {
  const std::lock_guard lock(mutex_);
  return records_;
}

HWND ReceiverWindow::Create(const std::string& title) {
  WNDCLASSA windowClass{};
  windowClass.lpfnWndProc = Procedure;
  windowClass.hInstance = GetModuleHandleA(nullptr);
  windowClass.lpszClassName = kClassName;
  RegisterClassA(&windowClass);  // fails harmlessly for the second window of a process
  return CreateWindowExA(0, kClassName, title.c_str(), WS_OVERLAPPEDWINDOW, 0, 0, 100, 100, nullptr, nullptr,
                         windowClass.hInstance, this);
}

LRESULT CALLBACK ReceiverWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* self = reinterpret_cast<ReceiverWindow*>(GetWindowLongPtrA(window, GWLP_USERDATA));
  if (message == WM_NCCREATE) {
    const void* receiver = reinterpret_cast<const CREATESTRUCTA*>(lParam)->lpCreateParams;
    SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(receiver));
  } else if (message == WM_COPYDATA) {
    self->Keep(wParam, *reinterpret_cast<const COPYDATASTRUCT*>(lParam));
    if (self->onRecord_) self->onRecord_();
    return self->answer_;
  } else if (message == WM_DESTROY) {
    PostQuitMessage(0);
  }
  return DefWindowProcA(window, message, wParam, lParam);
}

void ReceiverWindow::Keep(WPARAM wParam, const COPYDATASTRUCT& data) {
  const auto* bytes = static_cast<const std::uint8_t*>(data.lpData);
  const std::lock_guard lock(mutex_);
  records_.push_back({wParam, data.dwData, {bytes, bytes + data.cbData}});
}

}  // namespace frontend_test
