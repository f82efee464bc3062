// The installer as a process of its own, on a computer without the hardware: it starts, reads its dictionaries, finds
// no device and says so.

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <limits>

extern char** environ;

namespace {

constexpr int kRuns = 200;

struct Cost {
  double milliseconds = std::numeric_limits<double>::infinity();
  double peakMebibytes = 0;
};

/// False when the program could not be run to its end.
bool RunOnce(const char* program, char* const arguments[], Cost& cost) {
  posix_spawn_file_actions_t quiet;
  posix_spawn_file_actions_init(&quiet);
  for (const int descriptor : {STDOUT_FILENO, STDERR_FILENO})
    posix_spawn_file_actions_addopen(&quiet, descriptor, "/dev/null", O_WRONLY, 0);

  const auto before = std::chrono::steady_clock::now();
  pid_t child = 0;
  int status = 0;
  rusage usage{};
  const bool isRun = posix_spawn(&child, program, &quiet, nullptr, arguments, environ) == 0 &&
                     wait4(child, &status, 0, &usage) == child && WIFEXITED(status);
  const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - before;
  posix_spawn_file_actions_destroy(&quiet);
  cost = {.milliseconds = taken.count(), .peakMebibytes = static_cast<double>(usage.ru_maxrss) / 1024};
  return isRun;
}

/// The fastest of many runs.
bool Measure(const char* program, char* const arguments[], Cost& best) {
  best = {};
  for (int i = 0; i < kRuns; ++i) {
    Cost cost;
    if (!RunOnce(program, arguments, cost)) return false;
    best.milliseconds = std::min(best.milliseconds, cost.milliseconds);
    best.peakMebibytes = std::max(best.peakMebibytes, cost.peakMebibytes);
  }
  return true;
}

}  // namespace

int main() {
  char program[] = FWDEPLOY_PROGRAM;
  char noPause[] = "-nopause";
  char* const arguments[] = {program, noPause, nullptr};
  char nothing[] = "/bin/true";
  char* const nothingArguments[] = {nothing, nullptr};
  Cost whole;
  Cost floor;
  if (!Measure(program, arguments, whole) || !Measure(nothing, nothingArguments, floor)) {
    std::fprintf(stderr, "program_benchmark: a program could not be run\n");
    return 1;
  }
  std::printf("whole program without hardware: %.2f ms, %.1f MiB at most\n", whole.milliseconds, whole.peakMebibytes);
  std::printf("a program that does nothing:    %.2f ms, %.1f MiB at most\n", floor.milliseconds, floor.peakMebibytes);
  return 0;
}
