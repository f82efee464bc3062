#pragma once

#include <windows.h>

#include <fstream>
#include <optional>
#include <string>

#include "PartList.h"
#include "Records.h"

namespace frontend {

struct Options {
  std::string log;                ///< file that each record is appended to as a line of JSON; none if empty
  std::string heldPart;           ///< part whose install is held in the middle
  std::string hold;               ///< file that must go for it to go on; none if empty
  bool exitAfterRestart = false;  ///< end with the run's last record
};

/// The window that FwDeploy looks for, by its title alone. A record is answered when it is shown and logged: until then
/// the installer stands still, so nothing here may take long.
class Window {
 public:
  /// Throws std::runtime_error when the log cannot be written or the window cannot be made.
  explicit Window(const Options& options);
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  /// Handles messages until the window is closed.
  void Run();

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);

  bool Receive(const COPYDATASTRUCT& data);
  void Show(const Progress& progress);
  void Show(const Version& version);
  void Show(const Restart& restart);
  void Show(const Refused&) {}
  void BeginRun();
  void Say(const std::string& text);
  void Hold();
  void FitChildren();

  Options options_;
  std::ofstream log_;
  HWND window_ = nullptr;
  HWND status_ = nullptr;
  std::optional<PartList> parts_;
  bool isRunOver_ = false;
};

}  // namespace frontend
