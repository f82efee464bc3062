// A front end of the firmware installer: shows what FwDeploy tells while it runs. Start it, then FwDeploy.
//
//   frontend [--log FILE] [--hold PART FILE] [--exit-after-restart]

#include <windows.h>

#include <cstdio>
#include <stdexcept>
#include <string>

#include "Window.h"

namespace {

bool ReadOptions(int count, char** arguments, frontend::Options& options) {
  for (int i = 1; i < count; ++i) {
    const std::string argument = arguments[i];
    const int values = count - i - 1;
    if (argument == "--log" && values >= 1) {
      options.log = arguments[++i];
    } else if (argument == "--hold" && values >= 2) {
      options.heldPart = arguments[++i];
      options.hold = arguments[++i];
    } else if (argument == "--exit-after-restart") {
      options.exitAfterRestart = true;
    } else {
      return false;
    }
  }
  return true;
}

}  // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  frontend::Options options;
  if (!ReadOptions(__argc, __argv, options)) {
    std::fprintf(stderr, "usage: frontend [--log FILE] [--hold PART FILE] [--exit-after-restart]\n");
    return 2;
  }
  try {
    frontend::Window(options).Run();
  } catch (const std::runtime_error& failure) {
    std::fprintf(stderr, "frontend: %s\n", failure.what());
    return 1;
  }
  return 0;
}
