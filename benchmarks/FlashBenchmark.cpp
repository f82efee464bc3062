// What the flash driver costs beside the bare register accesses that it makes: the time for programming one 128 KiB
// block and for reading 1 MiB, each as a multiple of its floor, a plain loop with the same 32-bit volatile accesses to
// plain memory. Time does not pass on the clock used here, so that only the driver's own work is measured.
//
// Reading runs on plain memory throughout. Programming can't: commands go to the register from which the status is
// read, so memory would answer with the last command and the chip would never be ready. The driver therefore runs on a
// trap that is as thin as a trap can be, memory that reads as 0x80, and pays a virtual call for each access that real
// hardware does not take. The floor is measured a second time through the same trap, which shows the driver alone.
//
// The last lines of the output are the ratios. They are of the fastest of several repetitions of each.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "board/C28FxJ3A.h"
#include "FastestReporter.h"
#include "platform/Platform.h"

namespace {

constexpr std::uint32_t kReadWords = 0x80000;
constexpr std::uint32_t kBlockAddress = 0x30000;

class StoppedClock final : public platform::Platform, private platform::Clock {
 public:
  platform::Clock& clock() override { return *this; }
  platform::Devices& devices() override { std::abort(); }
  platform::FrontEnd& frontEnd() override { std::abort(); }
  platform::TextBlocks& textBlocks() override { std::abort(); }
  platform::Files& files() override { std::abort(); }

 private:
  bool QueryPerformanceCounter(std::int64_t& ticks) override {
    ticks = ++ticks_;
    return true;
  }
  bool QueryPerformanceFrequency(std::int64_t& ticksPerSecond) override {
    ticksPerSecond = 10'000'000;
    return true;
  }
  void Sleep(std::uint32_t) override {}
  std::uint32_t GetTickCount() override { std::abort(); }
  std::uint32_t timeBeginPeriod(std::uint32_t) override { std::abort(); }
  std::uint32_t timeEndPeriod(std::uint32_t) override { std::abort(); }
  std::uint32_t timeGetTime() override { std::abort(); }
  std::int64_t PresentTime() override { std::abort(); }

  std::int64_t ticks_ = 0;
};

// Of static life: the compiler drops accesses to a local that nobody else sees, volatile or not.
volatile std::uint32_t registerPair[2];

/// The register pair as plain memory.
struct Memory {
  static platform::RegisterWindow Window() {
    return platform::RegisterWindow(reinterpret_cast<std::uintptr_t>(&registerPair[0]));
  }
  static void Write(std::uint32_t offset, std::uint32_t value) { registerPair[offset / 4] = value; }
  static std::uint32_t Read(std::uint32_t offset) { return registerPair[offset / 4]; }
};

/// Memory behind a trap, which reads as a chip that is always ready.
class ReadyChip final : public platform::RegisterTrap {
 public:
  platform::RegisterWindow Window() { return platform::RegisterWindow(0x1000, this); }
  std::uint32_t Read(std::uint32_t offset) override {
    Memory::Read(offset);
    return 0x80;
  }
  void Write(std::uint32_t offset, std::uint32_t value) override { Memory::Write(offset, value); }
};

/// Always ready too, and remembers what was asked of it.
class AccessLog final : public platform::RegisterTrap {
 public:
  platform::RegisterWindow Window() { return platform::RegisterWindow(0x1000, this); }
  std::uint32_t Read(std::uint32_t offset) override {
    accesses.push_back(offset);
    return 0x80;
  }
  void Write(std::uint32_t offset, std::uint32_t value) override {
    accesses.push_back(std::uint64_t{1} << 63 | std::uint64_t{value} << 32 | offset);
  }

  std::vector<std::uint64_t> accesses;
};

/// The accesses of reading `kReadWords` words, the mode being set.
template <typename Registers>
void ReadFloor(Registers&& registers, std::uint16_t* words) {
  for (std::uint32_t address = 0; address < kReadWords; address += 2) {
    registers.Write(0, address);
    const std::uint32_t data = registers.Read(4);
    words[address] = static_cast<std::uint16_t>(data);
    words[address + 1] = static_cast<std::uint16_t>(data >> 16);
  }
}

template <typename Registers>
void WriteAt(Registers& registers, std::uint32_t address, std::uint32_t value) {
  registers.Write(0, address);
  registers.Write(4, value);
}

template <typename Registers>
void StatusRead(Registers& registers) {
  WriteAt(registers, 0, 0x70);
  registers.Write(0, 0);
  registers.Read(4);
}

template <typename Registers>
void StatusCleared(Registers& registers) {
  StatusRead(registers);
  WriteAt(registers, 0, 0x50);
}

/// The accesses of erasing and programming a block of a chip that is always ready.
template <typename Registers>
void ProgramFloor(Registers&& registers, const std::uint16_t* words) {
  StatusCleared(registers);
  StatusRead(registers);
  WriteAt(registers, kBlockAddress, 0x20);
  WriteAt(registers, kBlockAddress, 0xD0);
  StatusRead(registers);
  for (std::uint32_t address = kBlockAddress; address < kBlockAddress + C28FxJ3A::kBlockWords; address += 16) {
    StatusCleared(registers);
    StatusRead(registers);
    WriteAt(registers, address, 0xE8E8);
    registers.Write(0, address);
    registers.Read(4);
    WriteAt(registers, address, 0x0F0F);
    for (std::uint32_t i = 0; i < 16; ++i)
      WriteAt(registers, address + i, *words++);
    WriteAt(registers, address, 0xD0);
    WriteAt(registers, address, 0x70);
    registers.Write(0, address);
    registers.Read(4);
    StatusCleared(registers);
  }
}

std::vector<std::uint16_t> BlockWords() {
  std::vector<std::uint16_t> words(C28FxJ3A::kBlockWords);
  for (std::size_t i = 0; i < words.size(); ++i)
    words[i] = static_cast<std::uint16_t>(i * 40503u);
  return words;
}

const std::vector<std::uint16_t> blockWords = BlockWords();

/// A driver that has set the read mode, so that a read is nothing but its words.
void AttachForReading(C28FxJ3A& flash, platform::RegisterWindow window) {
  flash.Attach(window);
  flash.SetMode(C28FxJ3A::Mode::kReadArray, true);
}

void Read(benchmark::State& state) {
  C28FxJ3A flash;
  AttachForReading(flash, Memory::Window());
  std::vector<std::uint16_t> words(kReadWords);
  for (auto _ : state) {
    flash.Read(kReadWords, 0, words.data());
    benchmark::DoNotOptimize(words.data());
    benchmark::ClobberMemory();
  }
}

void ReadFloor(benchmark::State& state) {
  std::vector<std::uint16_t> words(kReadWords);
  for (auto _ : state) {
    ReadFloor(Memory(), words.data());
    benchmark::DoNotOptimize(words.data());
    benchmark::ClobberMemory();
  }
}

void Program(benchmark::State& state) {
  ReadyChip chip;
  C28FxJ3A flash;
  flash.Attach(chip.Window());
  for (auto _ : state)
    if (!flash.ProgramBlock(kBlockAddress, blockWords.data())) state.SkipWithError("the block was not programmed");
}

void ProgramFloor(benchmark::State& state) {
  Memory memory;
  for (auto _ : state)
    ProgramFloor(memory, blockWords.data());
}

void ProgramTrapFloor(benchmark::State& state) {
  ReadyChip chip;
  const platform::RegisterWindow window = chip.Window();
  for (auto _ : state)
    ProgramFloor(window, blockWords.data());
}

/// A floor with other accesses than the driver's would make the ratio meaningless.
bool FloorsMakeTheDriversAccesses() {
  AccessLog read, readFloor, program, programFloor;
  std::vector<std::uint16_t> words(kReadWords);
  C28FxJ3A flash;
  AttachForReading(flash, read.Window());
  read.accesses.clear();
  flash.Read(kReadWords, 0, words.data());
  ReadFloor(readFloor.Window(), words.data());

  flash.Attach(program.Window());
  flash.ProgramBlock(kBlockAddress, blockWords.data());
  ProgramFloor(programFloor.Window(), blockWords.data());
  return read.accesses == readFloor.accesses && program.accesses == programFloor.accesses;
}

constexpr char kRead[] = "read_1MiB";
constexpr char kReadFloor[] = "read_1MiB_floor";
constexpr char kProgram[] = "program_128KiB_block";
constexpr char kProgramFloor[] = "program_128KiB_block_floor";
constexpr char kProgramTrapFloor[] = "program_128KiB_block_floor_through_trap";

}  // namespace

int main(int argc, char** argv) {
  StoppedClock clock;
  platform::ScopedPlatform scope(clock);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  if (!FloorsMakeTheDriversAccesses()) {
    std::fprintf(stderr,
                 "The driver's register accesses are no longer those of the floor; change FlashBenchmark.cpp.\n");
    return 1;
  }

  const auto add = [](const char* name, void (*run)(benchmark::State&)) { AddRepeated(name, run); };
  add(kRead, Read);
  add(kReadFloor, ReadFloor);
  add(kProgram, Program);
  add(kProgramFloor, ProgramFloor);
  add(kProgramTrapFloor, ProgramTrapFloor);

  FastestReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  std::printf("\nProgramming runs on a trap that stands in for a ready chip, its floor on plain memory.\n");
  reporter.PrintRatio("read 1 MiB", kRead, kReadFloor, "the floor");
  reporter.PrintRatio("program 128 KiB block", kProgram, kProgramFloor, "the floor");
  reporter.PrintRatio("program 128 KiB block, its floor on the trap too", kProgram, kProgramTrapFloor, "the floor");
  return 0;
}
