#include "Window.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <utility>

#include "RecordLine.h"

namespace frontend {
namespace {

/// In code page 1252; 0xAE is the registered sign. So class, window and texts are all of the ANSI kind.
constexpr char kTitle[] = "Orbo\xAE Veltra Kore";
constexpr char kClassName[] = "VeltraKoreFrontEnd";

std::string RestartText(const Restart& restart) {
  if (restart.cpuRestart != 0 && restart.boxPowerCycle != 0) return "Power-cycle your computer and your Veltra Kore.";
  if (restart.cpuRestart != 0) return "Power-cycle your computer.";
  if (restart.boxPowerCycle != 0) return "Power-cycle your Veltra Kore.";
  // Also after a failure, and where parts of several sides were installed.
  return "The installer asks for no restart. Its last lines and its exit code tell more.";
}

/// Handles what is waiting, so that the window stays alive. Returns false when the program is to end.
bool HandleWaitingMessages() {
  MSG message;
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (message.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(message.wParam));
      return false;
    }
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
  return true;
}

bool Exists(const std::string& path) {
  return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.find_last_of("/\\");
  return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

}  // namespace

Window::Window(const Options& options) : options_(options) {
  const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES};
  InitCommonControlsEx(&controls);
  WNDCLASSA windowClass{};
  windowClass.lpfnWndProc = Procedure;
  windowClass.hInstance = GetModuleHandleA(nullptr);
  windowClass.hCursor = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW));
  windowClass.lpszClassName = kClassName;
  RegisterClassA(&windowClass);
  window_ = CreateWindowExA(0, kClassName, kTitle, WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT, 620, 440, nullptr,
                            nullptr, windowClass.hInstance, this);
  if (window_ == nullptr) throw std::runtime_error("the window cannot be made");
  parts_.emplace(window_);
  status_ =
      CreateWindowExA(0, STATUSCLASSNAMEA, "", WS_CHILD | WS_VISIBLE, 0, 0, 0, 0, window_, nullptr, nullptr, nullptr);
  Say("Waiting for the installer.");
  FitChildren();
  ShowWindow(window_, SW_SHOWNORMAL);
  // The last step, so that the file tells that the window can be found.
  if (options.log.empty()) return;
  log_.open(options.log, std::ios::binary | std::ios::app);
  if (!log_) throw std::runtime_error(options.log + " cannot be written");
}

void Window::Run() {
  MSG message;
  while (GetMessageA(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
}

LRESULT CALLBACK Window::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    const auto* created = reinterpret_cast<const CREATESTRUCTA*>(lParam);
    SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(created->lpCreateParams));
    static_cast<Window*>(created->lpCreateParams)->window_ = window;
  }
  auto* self = reinterpret_cast<Window*>(GetWindowLongPtrA(window, GWLP_USERDATA));
  // Some messages come before the first one above.
  return self != nullptr ? self->Handle(message, wParam, lParam) : DefWindowProcA(window, message, wParam, lParam);
}

LRESULT Window::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_COPYDATA:
      if (!parts_) return FALSE;  // a window can be found while it is being made
      return Receive(*reinterpret_cast<const COPYDATASTRUCT*>(lParam));
    case WM_NOTIFY:
      if (parts_ && reinterpret_cast<const NMHDR*>(lParam)->hwndFrom == parts_->Handle() &&
          reinterpret_cast<const NMHDR*>(lParam)->code == static_cast<UINT>(NM_CUSTOMDRAW))
        return parts_->OnDraw(*reinterpret_cast<const NMLVCUSTOMDRAW*>(lParam));
      break;
    case WM_SIZE:
      if (parts_) FitChildren();
      return 0;
    case WM_DESTROY:
      PostQuitMessage(0);
      return 0;
    default:
      break;
  }
  return DefWindowProcA(window_, message, wParam, lParam);
}

bool Window::Receive(const COPYDATASTRUCT& data) {
  const std::span bytes(static_cast<const std::uint8_t*>(data.lpData), data.lpData != nullptr ? data.cbData : 0);
  const Record record = DecodeRecord(data.dwData, bytes);
  std::visit([this](const auto& shown) { Show(shown); }, record);
  UpdateWindow(parts_->Handle());
  if (log_.is_open()) log_ << RecordLine(data.dwData, bytes, record) << '\n' << std::flush;

  const auto* progress = std::get_if<Progress>(&record);
  if (progress != nullptr && progress->part == options_.heldPart && progress->percent >= 50) Hold();
  return !std::holds_alternative<Refused>(record);
}

void Window::Show(const Progress& progress) {
  BeginRun();
  parts_->Show(progress);
  Say(progress.part + ": " + progress.phase);
}

void Window::Show(const Version& version) {
  BeginRun();
  parts_->Show(version);
}

void Window::Show(const Restart& restart) {
  BeginRun();
  isRunOver_ = true;
  Say(RestartText(restart));
  if (options_.exitAfterRestart) PostMessageA(window_, WM_CLOSE, 0, 0);
}

/// What comes behind a restart record belongs to the installer's next run.
void Window::BeginRun() {
  if (!isRunOver_) return;
  isRunOver_ = false;
  parts_->Clear();
}

void Window::Say(const std::string& text) {
  SendMessageA(status_, SB_SETTEXTA, 0, reinterpret_cast<LPARAM>(text.c_str()));
  UpdateWindow(status_);
}

/// The installer waits as long as its record is not answered, so that one can look at the middle of an install.
void Window::Hold() {
  const std::string path = std::exchange(options_.hold, {});
  if (path.empty()) return;
  HANDLE change = FindFirstChangeNotificationA(FolderOf(path).c_str(), FALSE, FILE_NOTIFY_CHANGE_FILE_NAME);
  if (change == INVALID_HANDLE_VALUE) return;
  while (HandleWaitingMessages() && Exists(path)) {
    if (MsgWaitForMultipleObjects(1, &change, FALSE, INFINITE, QS_ALLINPUT) == WAIT_OBJECT_0)
      FindNextChangeNotification(change);
  }
  FindCloseChangeNotification(change);
}

void Window::FitChildren() {
  SendMessageA(status_, WM_SIZE, 0, 0);
  RECT area;
  RECT bottom;
  GetClientRect(window_, &area);
  GetWindowRect(status_, &bottom);
  MoveWindow(parts_->Handle(), 0, 0, area.right, area.bottom - (bottom.bottom - bottom.top), TRUE);
}

}  // namespace frontend
