// What playing a VME file costs the host: bits of SDR data shifted a second, from a file, plain and compressed, with
// and without a compare of TDO, as a multiple of its floor, a plain loop over the same bits in memory with the same
// stores and loads of the port. The port is plain memory, which reads as the pins that were last driven, TDO low.
//
// Every wait is over at the next look at the clock used here, so that none is measured. The last lines of the output
// are the ratios, of the fastest of several repetitions of each.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "board/VmePlayer.h"
#include "FastestReporter.h"
#include "simulator/SimulatedPlatform.h"

namespace {

constexpr std::uint32_t kAllBits = 1 << 20;
constexpr std::uint32_t kShiftBits = 1 << 15;
constexpr std::uint32_t kShiftBytes = kShiftBits / 8;

using Bytes = std::vector<std::uint8_t>;

// Of static life: the compiler drops accesses to memory that nobody else sees, volatile or not.
alignas(64) std::uint32_t port;

class CountingPort final : public platform::RegisterTrap {
 public:
  std::uint32_t Read(std::uint32_t) override {
    ++reads;
    return 0;
  }
  void Write(std::uint32_t, std::uint32_t) override { ++writes; }

  std::uint64_t reads = 0;
  std::uint64_t writes = 0;
};

/// How the data of a file stand in it.
enum class Packing { kPlain, kRuns, kBitMap };
/// Whether the file has TDO data, of zeros.
enum class Compare { kNo, kYes };

struct Kind {
  const char* name;
  const char* text;
  Packing packing;
  Compare compare;
};

constexpr Kind kKinds[] = {
    {"send_plain", "SDR, plain", Packing::kPlain, Compare::kNo},
    {"send_runs", "SDR, compressed as runs", Packing::kRuns, Compare::kNo},
    {"send_bit_map", "SDR, compressed as bit map", Packing::kBitMap, Compare::kNo},
    {"compare_plain", "SDR with compare, plain", Packing::kPlain, Compare::kYes},
    {"compare_runs", "SDR with compare, compressed as runs", Packing::kRuns, Compare::kYes},
    {"compare_bit_map", "SDR with compare, compressed as bit map", Packing::kBitMap, Compare::kYes},
};

/// One shift's data: half of it zeros, in rows of eight.
Bytes Data() {
  Bytes data(kShiftBytes);
  for (std::uint32_t i = 0; i < kShiftBytes; ++i)
    data[i] = i / 8 % 2 == 0 ? static_cast<std::uint8_t>(i * 40503u >> 8 | 1) : std::uint8_t{0};
  return data;
}

void AppendNumber(Bytes& file, std::uint32_t number) {
  for (; number > 0x7F; number >>= 7)
    file.push_back(static_cast<std::uint8_t>(number | 0x80));
  file.push_back(static_cast<std::uint8_t>(number));
}

void AppendRuns(Bytes& file, const Bytes& data) {
  file.push_back(1);
  for (std::size_t i = 0; i < data.size(); ++i) {
    file.push_back(data[i]);
    if (data[i] != 0) continue;
    std::uint32_t more = 0;
    for (; i + 1 < data.size() && data[i + 1] == 0; ++i)
      ++more;
    AppendNumber(file, more);
  }
}

void AppendBitMap(Bytes& file, const Bytes& data) {
  file.push_back(0xFF);
  file.push_back(0);
  unsigned bits = 0, left = 8;
  const auto put = [&](unsigned value, unsigned count) {
    while (count-- > 0) {
      bits = bits << 1 | (value >> count & 1);
      if (--left != 0) continue;
      file.push_back(static_cast<std::uint8_t>(bits));
      left = 8;
    }
  };
  for (const std::uint8_t byte : data)
    byte == 0 ? put(0, 1) : put(0x100u | byte, 9);
  while (left != 8)
    put(0, 1);
}

void AppendData(Bytes& file, std::uint8_t opcode, const Bytes& data, Packing packing) {
  file.push_back(opcode);
  if (packing == Packing::kRuns)
    AppendRuns(file, data);
  else if (packing == Packing::kBitMap)
    AppendBitMap(file, data);
  else
    file.insert(file.end(), data.begin(), data.end());
}

/// Shifts all bits from drpause to drpause.
Bytes MakeFile(const Kind& kind) {
  const std::string header("ORBO.RBI\0\0\0\x0C__VME2.0", 20);
  Bytes file(header.begin(), header.end());
  file.push_back(kind.packing == Packing::kPlain ? 0xF2 : 0xF1);
  file.push_back(0x19);
  AppendNumber(file, kShiftBits);
  for (std::uint32_t bits = 0; bits < kAllBits; bits += kShiftBits) {
    file.push_back(0x12);
    AppendNumber(file, kShiftBits);
    AppendData(file, 0x13, Data(), kind.packing);
    if (kind.compare == Compare::kYes) AppendData(file, 0x14, Bytes(kShiftBytes), kind.packing);
    file.push_back(0x70);
  }
  file.push_back(0x7F);
  return file;
}

class TempFile {
 public:
  explicit TempFile(const Bytes& bytes)
      : path_((std::filesystem::temp_directory_path() / "fwdeploy_vme_benchmark.rbi").string()) {
    std::ofstream file(path_, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  }
  ~TempFile() { std::filesystem::remove(path_); }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;
  const char* path() const { return path_.c_str(); }

 private:
  std::string path_;
};

/// The current platform, with a clock whose next look ends every wait.
class System {
 public:
  System() : platform_(clock_), current_(platform_) { clock_.SetReadNanoseconds(1'000'000'000); }

 private:
  simulator::VirtualClock clock_;
  simulator::SimulatedPlatform platform_;
  platform::ScopedPlatform current_;
};

/// The accesses of the shifts, and nothing else.
template <typename Load, typename Store>
void ShiftFloor(const Bytes& data, Compare compare, Load load, Store store) {
  constexpr std::uint32_t kTck = 1, kTdi = 4, kEnable = 8, kTdo = 0x10;
  std::uint32_t errors = 0;
  for (std::uint32_t all = 0; all < kAllBits; all += kShiftBits) {
    for (const std::uint8_t byte : data) {
      for (int bit = 7; bit >= 0; --bit) {
        const std::uint32_t pins = kEnable | (byte >> bit & 1u) * kTdi;
        if (compare == Compare::kYes) errors += (load() & kTdo) != 0;
        store(pins);
        store(pins | kTck);
        store(pins);
        store(pins);
      }
    }
  }
  benchmark::DoNotOptimize(errors);
}

void Play(benchmark::State& state, const Kind& kind) {
  const System system;
  const TempFile file(MakeFile(kind));
  VmePlayer player([](const char*) {});
  player.port.Connect(platform::RegisterWindow(reinterpret_cast<std::uintptr_t>(&port)));
  for (auto _ : state)
    if (player.PlayVmeFile(file.path()) != 0) state.SkipWithError("the file did not play");
  state.counters["bits"] = benchmark::Counter(kAllBits, benchmark::Counter::kIsIterationInvariantRate);
}

void PlayFloor(benchmark::State& state, Compare compare) {
  const Bytes data = Data();
  auto* const memory = static_cast<volatile std::uint32_t*>(&port);
  for (auto _ : state)
    ShiftFloor(
        data, compare, [&] { return *memory; }, [&](std::uint32_t pins) { *memory = pins; });
  state.counters["bits"] = benchmark::Counter(kAllBits, benchmark::Counter::kIsIterationInvariantRate);
}

/// A floor with other accesses than the player's would make the ratio meaningless. Moves of the TAP come on top.
bool FloorMakesThePlayersAccesses() {
  const System system;
  for (const Kind& kind : kKinds) {
    const TempFile file(MakeFile(kind));
    CountingPort counted, floor;
    VmePlayer player([](const char*) {});
    player.port.Connect(platform::RegisterWindow(1, &counted));
    if (player.PlayVmeFile(file.path()) != 0) return false;
    ShiftFloor(
        Data(), kind.compare, [&] { return floor.Read(0); }, [&](std::uint32_t pins) { floor.Write(0, pins); });
    if (counted.reads != floor.reads || counted.writes < floor.writes - 3 * (kAllBits / kShiftBits) ||
        counted.writes > floor.writes + floor.writes / 1000)
      return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  if (!FloorMakesThePlayersAccesses()) {
    std::fprintf(stderr, "The player's accesses are no longer those of the floor; change VmeBenchmark.cpp.\n");
    return 1;
  }
  FastestReporter reporter;
  AddRepeated("send_floor", [](benchmark::State& state) { PlayFloor(state, Compare::kNo); });
  AddRepeated("compare_floor", [](benchmark::State& state) { PlayFloor(state, Compare::kYes); });
  for (const Kind& kind : kKinds)
    AddRepeated(kind.name, [&](benchmark::State& state) { Play(state, kind); });
  benchmark::RunSpecifiedBenchmarks(&reporter);
  std::printf("\n");
  for (const Kind& kind : kKinds)
    reporter.PrintRatio(std::string("1 Mbit of ") + kind.text, kind.name,
                        kind.compare == Compare::kYes ? "compare_floor" : "send_floor", "the floor");
  return 0;
}
