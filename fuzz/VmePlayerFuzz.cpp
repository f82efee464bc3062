// Any bytes as VME files, two of them one after the other in one player. The input is a byte of choices, a byte that
// says where the first file ends, and the files' bytes; by a choice, each gets a container's header in front, behind
// which it is played.
//
// The work of an input is bounded: a file may ask for hours of it. The port goes away after some accesses, as it would
// with a pulled plug, and what asks for repeats and shifts without touching the port is made small in the input.

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "board/VmePlayer.h"
#include "FuzzInput.h"
#include "simulator/SimulatedPlatform.h"

namespace {

constexpr int kMostAccesses = 20'000;
constexpr std::string_view kHeader("ORBO.RBI\0\0\0\x0C__VME2.0", 20);

struct OutOfWork {};

/// Drives no other pins than there are, and reads as the input says.
class AnyPort final : public platform::RegisterTrap {
 public:
  explicit AnyPort(std::uint8_t choices) : choices_(choices) {}
  std::uint32_t Read(std::uint32_t offset) override {
    Count(offset);
    // Only one bit is the pin's.
    if ((choices_ & 2) != 0) return 0xFFFFFFEF;
    random_ = random_ * 1103515245 + 12345;
    return (choices_ & 4) != 0 ? 0x10 : random_ >> 12;
  }
  void Write(std::uint32_t offset, std::uint32_t value) override {
    Count(offset);
    Require((value & ~0x0Fu) == 0);
  }

 private:
  void Count(std::uint32_t offset) {
    Require(offset == 0);
    if (++accesses_ > kMostAccesses) throw OutOfWork();
  }

  const std::uint8_t choices_;
  std::uint32_t random_ = 1;
  int accesses_ = 0;
};

/// A file in memory that has a path.
class MemoryFile {
 public:
  MemoryFile() : file_(memfd_create("vme", 0)), path_("/proc/self/fd/" + std::to_string(file_)) { Require(file_ >= 0); }
  const char* Holding(const std::vector<std::uint8_t>& bytes) {
    Require(ftruncate(file_, 0) == 0);
    Require(pwrite(file_, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()));
    return path_.c_str();
  }

 private:
  const int file_;
  const std::string path_;
};

/// Loops of at most 127 passes, and shifts of at most 7 bits a pass.
std::vector<std::uint8_t> WithLittleWork(std::span<const std::uint8_t> bytes) {
  std::vector<std::uint8_t> little(bytes.begin(), bytes.end());
  for (std::size_t i = 0; i + 1 < little.size(); ++i) {
    if (little[i] == kVmeRepeat) little[i + 1] &= 0x7F;
    if ((little[i] == kVmeShr || little[i] == kVmeShl) && little[i + 1] < 0x80) little[i + 1] &= 7;
  }
  return little;
}

const std::set<int> kCodes = {kVmePass, kVmeUserCodePassed, kVmeVerifyFailed, kVmeWrongType, kVmeFileError, 96};

void Play(VmePlayer& player, std::span<const std::uint8_t> bytes, bool hasHeader) {
  static MemoryFile& file = *new MemoryFile;
  std::vector<std::uint8_t> whole = WithLittleWork(bytes);
  if (hasHeader) whole.insert(whole.begin(), kHeader.begin(), kHeader.end());
  const int code = player.PlayVmeFile(file.Holding(whole));
  Require(kCodes.contains(code));
  Require((code == kVmeWrongType) == player.HasFileOpen());
  Require(player.port.tapState() == kTapReset && (player.port.pinShadow() & JtagPort::kEnable) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static simulator::VirtualClock& clock = *new simulator::VirtualClock;
  static simulator::SimulatedPlatform& system = *new simulator::SimulatedPlatform(clock);
  clock.SetReadNanoseconds(100'000'000'000);  // a wait is over at the next look
  const platform::ScopedPlatform current(system);

  Input input({data, size});
  const std::uint8_t choices = input.Byte();
  const std::size_t firstBytes = std::size_t{input.Byte()} * 16;
  AnyPort port(choices);
  VmePlayer player([](const char* text) { Require(text != nullptr && *text != '\0'); });
  player.port.Connect(platform::RegisterWindow(0x1000, &port));
  try {
    Play(player, input.Bytes(firstBytes), (choices & 1) == 0);
    Play(player, input.Bytes(size), (choices & 8) == 0);
  } catch (const OutOfWork&) {
  }
  return 0;
}
