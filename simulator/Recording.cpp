#include "simulator/Recording.h"

#include "simulator/Boards.h"
#include "simulator/HexText.h"
#include "simulator/HostCard.h"
#include "simulator/LittleEndian.h"
#include "simulator/SystemErrors.h"

namespace simulator {
namespace {

constexpr std::string_view kUnknownBoard = "unknown";
constexpr std::size_t kOffsetDigits = 5;
constexpr std::size_t kValueDigits = 8;

/// Digits first, into a buffer on the stack: a long run has ten million lines.
void WriteLine(std::ostream& trace, std::string_view board, char what, std::uint32_t first, std::size_t firstDigits,
               std::uint32_t second) {
  constexpr char kDigits[] = "0123456789abcdef";
  char line[32];
  char* at = line;
  const auto put = [&](std::uint32_t value, std::size_t digits) {
    *at++ = ' ';
    for (std::size_t left = digits; left > 0; --left)
      *at++ = kDigits[value >> ((left - 1) * 4) & 15];
  };
  *at++ = ' ';
  *at++ = what;
  put(first, firstDigits);
  put(second, kValueDigits);
  *at++ = '\n';
  trace.write(board.data(), static_cast<std::streamsize>(board.size()));
  trace.write(line, at - line);
}

std::string_view BoardOfPath(const char* path) {
  for (const Board* board : kBoards)
    if (path != nullptr && board->devicePath == path) return board->name;
  return kUnknownBoard;
}

std::string_view Find(const auto& names, const auto& key) {
  const auto at = names.find(key);
  return at == names.end() ? kUnknownBoard : at->second;
}

}  // namespace

platform::Handle RecordingDevices::CreateFileA(const char* path, std::uint32_t access, std::uint32_t share,
                                               std::uint32_t creation, std::uint32_t attributes) {
  const platform::Handle handle = WrappedDevices::CreateFileA(path, access, share, creation, attributes);
  // An invalid handle too: calls on it are still meant for this board.
  boards_[handle] = BoardOfPath(path);
  return handle;
}

bool RecordingDevices::DeviceIoControl(platform::Handle device, std::uint32_t code, const void* in,
                                       std::uint32_t inLength, void* out, std::uint32_t outLength,
                                       std::uint32_t& returned, platform::Handle event) {
  const bool succeeded = WrappedDevices::DeviceIoControl(device, code, in, inLength, out, outLength, returned, event);
  const std::string_view board = Find(boards_, device);
  WriteLine(trace_, board, 'C', code, kValueDigits, succeeded ? kErrorSuccess : GetLastError());
  if (succeeded && code == HostCard::kMapMemory && outLength >= 8)
    windows_[Get64(static_cast<const std::uint8_t*>(out))] = board;
  return succeeded;
}

std::uint32_t RecordingDevices::ReadRegister(std::uint64_t window, platform::RegisterTrap& inner,
                                             std::uint32_t offset) {
  const std::uint32_t value = inner.Read(offset);
  WriteLine(trace_, Find(windows_, window), 'R', offset, kOffsetDigits, value);
  return value;
}

void RecordingDevices::WriteRegister(std::uint64_t window, platform::RegisterTrap& inner, std::uint32_t offset,
                                     std::uint32_t value) {
  inner.Write(offset, value);
  WriteLine(trace_, Find(windows_, window), 'W', offset, kOffsetDigits, value);
}

}  // namespace simulator
