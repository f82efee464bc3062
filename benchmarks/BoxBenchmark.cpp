// What a download into the box costs the host: the time for sending a payload as FPGA data commands, compile of each
// command and reading of each answer's bytes included, as a multiple of its floor, a plain loop that byte-swaps the
// same number of words, stores each and its control word, and loads and stores the status once every 16 words.
//
// The registers are plain memory. Memory cannot answer, since popping a reply word overwrites it, so the answer's bytes
// are handed in behind the FIFO: what is left out is the polling and the three words of each answer, of which the floor
// has nothing either. Another row takes them in: the whole road on a trap that is as thin as a trap can be, with a
// floor that makes the very same accesses through the same trap.
//
// Every wait is over at the next look at the clock used here, so that none is measured. The last lines of the output
// are the ratios, of the fastest of several repetitions of each, and the memory that a whole download of a file takes.

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "board/VeltraHelper.h"
#include "download/BoxDownloadHelpers.h"
#include "download/DownloadDriver.h"
#include "FastestReporter.h"
#include "simulator/Boards.h"
#include "simulator/MappedCard.h"
#include "simulator/SimulatedPlatform.h"

namespace {

constexpr std::size_t kMebibyte = std::size_t{1} << 20;
constexpr std::uint32_t kStatus = 0x80000;
constexpr std::uint32_t kReply = 0x80210;
constexpr std::uint32_t kData = 0x80380;
constexpr std::uint32_t kControl = 0x80384;

/// Room for a run in the command FIFO; nothing in the reply FIFO.
constexpr std::uint32_t kReady = 0x1100;
/// An answer of the box to a data command: success, and nothing more.
constexpr std::uint8_t kAnswer[] = {0x0B, 0x0B, 0x00, 0x04, 0x80, 0x08, 0x00, 0x00};

constexpr std::uint32_t kChunkBytes = 1970;
/// Header, length and data of one command.
constexpr std::uint32_t kPacketBytes = 8 + 2 + kChunkBytes;

// Of static life: the compiler drops accesses to memory that nobody else sees, volatile or not.
alignas(64) std::uint8_t window[simulator::MappedCard::kWindowBytes];

/// Memory behind a trap, with a box that has answered as soon as it is asked.
class AnsweringBox final : public platform::RegisterTrap {
 public:
  std::uint32_t Read(std::uint32_t offset) override {
    ++reads;
    if (offset == kStatus) return isAnswering ? 0x0100 : kReady;
    return nextIsHeader ? 0x0B0B0004 : 0x80080000;
  }
  void Write(std::uint32_t offset, std::uint32_t value) override {
    ++writes;
    *reinterpret_cast<volatile std::uint32_t*>(window + offset) = value;
    if (offset == kReply) nextIsHeader = !nextIsHeader;
  }

  bool isAnswering = false;
  bool nextIsHeader = true;
  std::uint64_t reads = 0;
  std::uint64_t writes = 0;
};

/// The transport, on memory that cannot answer.
class MemoryHelper final : public VeltraHelper {
 public:
  MemoryHelper() : VeltraHelper(OpenMode::kBelmaraAlone) {}

  HwcStatus IOCTL_TransactBoBCommand(const std::uint8_t* command, std::uint32_t commandLengthBytes, std::uint8_t* reply,
                                     std::uint32_t* replyLengthBytes, std::uint32_t timeoutLow,
                                     std::uint32_t timeoutHigh) override {
    if (reply == nullptr)
      return VeltraHelper::IOCTL_TransactBoBCommand(nullptr, 0, nullptr, nullptr, timeoutLow, timeoutHigh);
    VeltraHelper::IOCTL_TransactBoBCommand(command, commandLengthBytes, nullptr, nullptr, timeoutLow, timeoutHigh);
    std::memcpy(reply, kAnswer, sizeof kAnswer);
    *replyLengthBytes = sizeof kAnswer;
    return kHWCerr_None;
  }
};

class System {
 public:
  explicit System(platform::RegisterTrap* trap)
      : card_(reinterpret_cast<std::uintptr_t>(&window[0]), trap), platform_(clock_), current_(platform_) {
    clock_.SetReadNanoseconds(1'000'000);
    platform_.devices().Add(simulator::kBelmaraBoard.interfaceClass, std::string(simulator::kBelmaraBoard.devicePath),
                            card_);
    const std::uint32_t ready = kReady;
    std::memcpy(window + kStatus, &ready, sizeof ready);
  }

 private:
  simulator::MappedCard card_;
  simulator::VirtualClock clock_;
  simulator::SimulatedPlatform platform_;
  platform::ScopedPlatform current_;
};

void SendAll(BobFPGAHelper& helper, const std::vector<std::uint8_t>& payload) {
  for (std::size_t sent = 0; sent < payload.size();) {
    const auto length = static_cast<std::uint32_t>(std::min<std::size_t>(kChunkBytes, payload.size() - sent));
    helper.DownloadChunk(payload.data() + sent, length);
    sent += length;
  }
}

volatile std::uint32_t& Register(std::uint32_t offset) {
  return *reinterpret_cast<volatile std::uint32_t*>(window + offset);
}

/// The accesses of one data command to plain memory. `bytes` stands for the packet.
void SendFloor(const std::uint8_t* bytes, std::uint32_t packetBytes) {
  std::uint32_t control = 0x80000020;
  for (std::uint32_t i = 0; i < packetBytes; i += 4) {
    if (i % 64 == 0) Register(kStatus) = Register(kStatus);
    std::uint32_t word = 0;
    std::memcpy(&word, bytes + i, sizeof word);
    Register(kData) = __builtin_bswap32(word);
    Register(kControl) = control;
    control = 0x80000000;
  }
}

/// The same through a trap, and the accesses of the answer behind it.
void ExchangeFloor(platform::RegisterWindow registers, const std::uint8_t* bytes, std::uint32_t packetBytes) {
  const auto status = [&] { registers.Write(kStatus, registers.Read(kStatus)); };
  const auto pop = [&] {
    benchmark::DoNotOptimize(registers.Read(kReply));
    registers.Write(kReply, 0);
  };
  std::uint32_t control = 0x80000020;
  for (std::uint32_t i = 0; i < packetBytes; i += 4) {
    if (i % 64 == 0) status();
    std::uint32_t word = 0;
    std::memcpy(&word, bytes + i, sizeof word);
    registers.Write(kData, __builtin_bswap32(word));
    registers.Write(kControl, control);
    control = 0x80000000;
  }
  status();
  status();
  status();
  pop();
  status();
  pop();
}

/// Calls `send` with a place to read from and the length for each packet of the payload. The payload has room behind
/// its end for the last packet's headers.
template <typename Send>
void ForEachPacket(const std::vector<std::uint8_t>& payload, std::size_t payloadBytes, Send send) {
  for (std::size_t sent = 0; sent < payloadBytes; sent += kChunkBytes) {
    const std::size_t length = std::min<std::size_t>(kChunkBytes, payloadBytes - sent);
    send(payload.data() + sent, static_cast<std::uint32_t>(length + kPacketBytes - kChunkBytes));
  }
}

std::vector<std::uint8_t> Payload(std::size_t bytes) {
  std::vector<std::uint8_t> payload(bytes);
  for (std::size_t i = 0; i < bytes; ++i)
    payload[i] = static_cast<std::uint8_t>(i * 40503u >> 8);
  return payload;
}

constexpr std::size_t kRoomBehind = 16;

void Send(benchmark::State& state, std::size_t payloadBytes) {
  const System system(nullptr);
  MemoryHelper board;
  board.Open();
  BobFPGAHelper helper(board, 0);
  const auto payload = Payload(payloadBytes);
  for (auto _ : state)
    SendAll(helper, payload);
}

void SendFloor(benchmark::State& state, std::size_t payloadBytes) {
  const auto payload = Payload(payloadBytes + kRoomBehind);
  for (auto _ : state)
    ForEachPacket(payload, payloadBytes,
                  [](const std::uint8_t* bytes, std::uint32_t length) { SendFloor(bytes, length); });
}

void Exchange(benchmark::State& state, std::size_t payloadBytes) {
  AnsweringBox box;
  const System system(&box);
  VeltraHelper board(OpenMode::kBelmaraAlone);
  board.Open();
  box.isAnswering = true;
  BobFPGAHelper helper(board, 0);
  const auto payload = Payload(payloadBytes);
  for (auto _ : state)
    SendAll(helper, payload);
}

void ExchangeFloor(benchmark::State& state, std::size_t payloadBytes) {
  AnsweringBox box;
  box.isAnswering = true;
  const platform::RegisterWindow registers(reinterpret_cast<std::uintptr_t>(&window[0]), &box);
  const auto payload = Payload(payloadBytes + kRoomBehind);
  for (auto _ : state)
    ForEachPacket(payload, payloadBytes,
                  [&](const std::uint8_t* bytes, std::uint32_t length) { ExchangeFloor(registers, bytes, length); });
}

/// A floor with other accesses than the helper's would make the ratio meaningless.
bool FloorsMakeTheHelpersAccesses() {
  constexpr std::size_t kBytes = 10 * kChunkBytes + 331;
  AnsweringBox box, floorBox;
  const System system(&box);
  VeltraHelper board(OpenMode::kBelmaraAlone);
  board.Open();
  box.isAnswering = floorBox.isAnswering = true;
  box.reads = box.writes = 0;
  BobFPGAHelper helper(board, 0);
  SendAll(helper, Payload(kBytes));
  const auto payload = Payload(kBytes + kRoomBehind);
  const platform::RegisterWindow registers(reinterpret_cast<std::uintptr_t>(&window[0]), &floorBox);
  ForEachPacket(payload, kBytes,
                [&](const std::uint8_t* bytes, std::uint32_t length) { ExchangeFloor(registers, bytes, length); });
  return box.reads == floorBox.reads && box.writes == floorBox.writes;
}

double PeakMebibytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
}

/// Downloads a file as the installer does, in a process that has done little else, and prints its peak memory.
void PrintMemory(std::size_t fileBytes) {
  const std::filesystem::path path = std::filesystem::temp_directory_path() / "fwdeploy_box_benchmark.rbi";
  {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "wb"), std::fclose);
    const std::vector<std::uint8_t> block(64 * 1024, 0x5A);
    for (std::size_t written = 0; file != nullptr && written < fileBytes; written += block.size())
      std::fwrite(block.data(), 1, block.size(), file.get());
  }
  const System system(nullptr);
  MemoryHelper board;
  board.Open();
  BobFPGAHelper helper(board, 0);
  const std::string name = path.string();
  PartDescription part{"pelgrimar", "PLGR", 0, 0, 2, 3, name.c_str()};
  const PartLocation location{&part, 0, 0, 0, {}, 0};
  const double before = PeakMebibytes();
  DownloadDriver(false, location, 1, helper);
  const double file = static_cast<double>(fileBytes) / kMebibyte;
  std::printf("memory: a download of a file of %.0f MiB takes a peak of %.1f MiB, %.1f MiB more than before\n", file,
              PeakMebibytes(), PeakMebibytes() - before);
  std::filesystem::remove(path);
}

struct Size {
  const char* text;
  std::size_t bytes;
};
constexpr Size kSizes[] = {{"1 MiB", kMebibyte}, {"16 MiB", 16 * kMebibyte}};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  if (!FloorsMakeTheHelpersAccesses()) {
    std::fprintf(stderr,
                 "The transport's register accesses are no longer those of the floor; change BoxBenchmark.cpp.\n");
    return 1;
  }
  PrintMemory(16 * kMebibyte);

  FastestReporter reporter;
  const auto name = [](const char* what, const Size& size) { return std::string(what) + "/" + size.text; };
  for (const Size& size : kSizes) {
    AddRepeated(name("fpga_download", size), [&](benchmark::State& state) { Send(state, size.bytes); });
    AddRepeated(name("fpga_download_floor", size), [&](benchmark::State& state) { SendFloor(state, size.bytes); });
    AddRepeated(name("fpga_download_answered", size), [&](benchmark::State& state) { Exchange(state, size.bytes); });
    AddRepeated(name("fpga_download_answered_floor", size),
                [&](benchmark::State& state) { ExchangeFloor(state, size.bytes); });
  }
  benchmark::RunSpecifiedBenchmarks(&reporter);
  std::printf("\n");
  for (const Size& size : kSizes) {
    const std::string text = std::string("FPGA download of ") + size.text;
    reporter.PrintRatio(text, name("fpga_download", size), name("fpga_download_floor", size), "the floor");
    reporter.PrintRatio(text + " with its answers, on a trap", name("fpga_download_answered", size),
                        name("fpga_download_answered_floor", size), "the floor on the same trap");
  }
  reporter.PrintRatio("FPGA download, 16 MiB to 1 MiB", name("fpga_download", kSizes[1]),
                      name("fpga_download", kSizes[0]), "the time");
  return 0;
}
