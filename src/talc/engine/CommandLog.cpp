#include "engine/CommandLog.h"

#include <fstream>
#include <memory>
#include <string>

#include "platform/Platform.h"

namespace TalcPathPrivate {
namespace {

std::unique_ptr<std::ofstream> commandLog;

}  // namespace

void WriteToCommandLog(const TalcPath::TalcCommand& command) {
  if (commandLog == nullptr) return;
  *commandLog << "\n@time " << std::to_string(platform::Current().clock().GetTickCount()) << " ;" << command;
}

}  // namespace TalcPathPrivate

namespace TalcPath {

bool TalcPathOpenCommandLog(const char* path) {
  TalcPathCloseCommandLog();
  if (path == nullptr) return false;
  auto opened = std::make_unique<std::ofstream>(path);
  if (!opened->is_open()) return false;
  TalcPathPrivate::commandLog = std::move(opened);
  return true;
}

bool TalcPathCloseCommandLog() {
  TalcPathPrivate::commandLog.reset();
  return true;
}

}  // namespace TalcPath
