#include "PipedTransport.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstddef>
#include <vector>

extern char** environ;

namespace {

constexpr std::uint32_t kDefaultTimeoutMillisec = 5000;
/// The mark and the length field, which counts what stands behind it.
constexpr std::size_t kFrameBytes = 4;

using Clock = std::chrono::steady_clock;

enum class Outcome { kDone, kTimeOut, kGone };

bool WriteAll(int file, const std::uint8_t* bytes, std::size_t count) {
  while (count > 0) {
    const ssize_t written = write(file, bytes, count);
    if (written <= 0) return false;
    bytes += written;
    count -= static_cast<std::size_t>(written);
  }
  return true;
}

Outcome ReadAll(int file, std::uint8_t* bytes, std::size_t count, Clock::time_point deadline) {
  while (count > 0) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd ready{file, POLLIN, 0};
    if (left <= 0 || poll(&ready, 1, static_cast<int>(left)) == 0) return Outcome::kTimeOut;
    const ssize_t got = read(file, bytes, count);
    if (got <= 0) return Outcome::kGone;
    bytes += got;
    count -= static_cast<std::size_t>(got);
  }
  return Outcome::kDone;
}

/// Reads one packet, as long as it says that it is.
Outcome ReadPacket(int file, std::vector<std::uint8_t>& packet, Clock::time_point deadline) {
  packet.resize(kFrameBytes);
  const Outcome frame = ReadAll(file, packet.data(), kFrameBytes, deadline);
  if (frame != Outcome::kDone) return frame;
  packet.resize(kFrameBytes + static_cast<std::size_t>(packet[2] << 8 | packet[3]));
  return ReadAll(file, packet.data() + kFrameBytes, packet.size() - kFrameBytes, deadline);
}

}  // namespace

PipedTransport::PipedTransport(const char* program) {
  // A box that has gone is told by the write, not by the end of this program.
  std::signal(SIGPIPE, SIG_IGN);
  int toBox[2];
  int fromBox[2];
  if (pipe(toBox) != 0) return;
  if (pipe(fromBox) != 0) {
    close(toBox[0]);
    close(toBox[1]);
    return;
  }
  // The box has its own ends only, so that each side sees the other one close.
  fcntl(toBox[1], F_SETFD, FD_CLOEXEC);
  fcntl(fromBox[0], F_SETFD, FD_CLOEXEC);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, toBox[0], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, fromBox[1], STDOUT_FILENO);
  posix_spawn_file_actions_addclose(&actions, toBox[0]);
  posix_spawn_file_actions_addclose(&actions, fromBox[1]);
  char* const arguments[] = {const_cast<char*>(program), nullptr};
  pid_t process = -1;
  if (posix_spawn(&process, program, &actions, nullptr, arguments, environ) == 0) process_ = process;
  posix_spawn_file_actions_destroy(&actions);
  close(toBox[0]);
  close(fromBox[1]);
  toBox_ = toBox[1];
  fromBox_ = fromBox[0];
}

PipedTransport::~PipedTransport() {
  if (toBox_ >= 0) close(toBox_);
  if (fromBox_ >= 0) close(fromBox_);
  if (process_ > 0) waitpid(process_, nullptr, 0);
}

bool PipedTransport::Exchange(const char*, const TalcPath::TalcByteCode& packet, TalcPath::TalcByteCode& reply,
                              std::uint32_t timeoutMillisec) {
  const std::uint8_t* bytes = nullptr;
  if (!packet.GetPacketByteCodeBuffer(&bytes) || !WriteAll(toBox_, bytes, packet.GetSize())) return false;
  const std::uint32_t wait = timeoutMillisec != 0 ? timeoutMillisec : kDefaultTimeoutMillisec;
  std::vector<std::uint8_t> answer;
  const Outcome outcome = ReadPacket(fromBox_, answer, Clock::now() + std::chrono::milliseconds(wait));
  // What went wrong is told by the reply.
  if (outcome == Outcome::kTimeOut) reply.SetResponseTimeOut();
  return outcome == Outcome::kDone && reply.Set(answer.data(), static_cast<std::uint32_t>(answer.size()));
}
