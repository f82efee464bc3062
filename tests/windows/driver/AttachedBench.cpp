#include "AttachedBench.h"

#include <algorithm>
#include <utility>

#include "platform/Platform.h"
#include "simulator/BenchFolder.h"
#include "simulator/LittleEndian.h"
#include "simulator/SystemErrors.h"

namespace benchdriver {
namespace {

// As programs open a device for reading and writing.
constexpr std::uint32_t kReadWrite = 0xC0000000;
constexpr std::uint32_t kShared = 3;
constexpr std::uint32_t kOpenExisting = 3;
constexpr std::uint32_t kNormalAttributes = 128;

std::int64_t Ticks() {
  std::int64_t ticks = 0;
  platform::Native().clock().QueryPerformanceCounter(ticks);
  return ticks;
}

}  // namespace

AttachedBench::Run::Run(simulator::BenchState state, simulator::FaultPlan& plan, std::ofstream& trace)
    : bench(std::move(state)),
      faulty(bench.platform(), plan),
      devices(trace.is_open() ? recording.emplace(faulty, trace).devices() : faulty.devices()),
      startNanoseconds(bench.clock().NowNanoseconds()),
      startTicks(Ticks()) {
  bench.UseFaults(&plan);
}

AttachedBench::AttachedBench(Configuration configuration) : configuration_(std::move(configuration)) {
  for (const std::string& fault : configuration_.faults)
    plan_.Add(simulator::ParseFault(fault));
  if (!configuration_.trace.empty()) trace_.open(configuration_.trace, std::ios::binary);
}

std::uint32_t AttachedBench::Open(std::size_t board, platform::Handle& handle) {
  const std::scoped_lock lock(mutex_);
  if (isPlugPulled_) return simulator::kErrorGeneralFailure;
  if (!run_) run_.emplace(simulator::LoadBench(configuration_.bench), plan_, trace_);
  FollowRealTime();
  handle = run_->devices.CreateFileA(simulator::kBoards[board]->devicePath.data(), kReadWrite, kShared, kOpenExisting,
                                     kNormalAttributes);
  return handle == platform::kInvalidHandle ? run_->devices.GetLastError() : simulator::kErrorSuccess;
}

std::uint32_t AttachedBench::Control(platform::Handle handle, Client& client, std::uint32_t code,
                                     std::span<const std::uint8_t> in, std::span<std::uint8_t> out,
                                     std::uint32_t& returned) {
  const std::scoped_lock lock(mutex_);
  FollowRealTime();
  try {
    if (!run_->devices.DeviceIoControl(handle, code, in.data(), static_cast<std::uint32_t>(in.size()), out.data(),
                                       static_cast<std::uint32_t>(out.size()), returned, 0))
      return run_->devices.GetLastError();
  } catch (const simulator::PowerCut&) {
    KeepWhatThePulledPlugLeaves();
    return simulator::kErrorGeneralFailure;
  }
  if (code == simulator::MappedCard::kMapMemory) MapWindow(client, out);
  return simulator::kErrorSuccess;
}

/// Puts the address of a window of the program in the place of the bench's own. A refused mapping stays one.
void AttachedBench::MapWindow(Client& client, std::span<std::uint8_t> result) {
  platform::RegisterTrap* const inner = run_->devices.TrapAt(simulator::Get64(&result[0]));
  if (inner == nullptr) return;
  SharedTrap& trap = *run_->traps.emplace_back(std::make_unique<SharedTrap>(*this, *inner));
  simulator::Put64(&result[0], client.windows().Add(trap, simulator::MappedCard::kWindowBytes));
}

void AttachedBench::Close(platform::Handle handle) {
  const std::scoped_lock lock(mutex_);
  run_->devices.CloseHandle(handle);
}

void AttachedBench::Save() {
  if (!run_) return;
  if (!isPlugPulled_) simulator::SaveBench(configuration_.bench, run_->bench.State());
  trace_.flush();
  run_.reset();
}

void AttachedBench::FollowRealTime() {
  simulator::VirtualClock& clock = run_->bench.clock();
  std::int64_t ticksPerSecond = 1;
  platform::Native().clock().QueryPerformanceFrequency(ticksPerSecond);
  const std::int64_t elapsed = (Ticks() - run_->startTicks) * 1'000'000'000 / ticksPerSecond;
  const std::int64_t now = run_->startNanoseconds + elapsed * configuration_.speed;
  clock.Advance(std::max<std::int64_t>(0, now - clock.NowNanoseconds()));
}

/// At once, while the operations in flight are still where the plug stopped them.
void AttachedBench::KeepWhatThePulledPlugLeaves() {
  isPlugPulled_ = true;
  simulator::SaveBench(configuration_.bench, run_->bench.StateAfterPowerLoss());
}

std::uint32_t AttachedBench::SharedTrap::Read(std::uint32_t offset) {
  const std::scoped_lock lock(bench_.mutex_);
  bench_.FollowRealTime();
  return inner_.Read(offset);
}

void AttachedBench::SharedTrap::Write(std::uint32_t offset, std::uint32_t value) {
  const std::scoped_lock lock(bench_.mutex_);
  bench_.FollowRealTime();
  try {
    inner_.Write(offset, value);
  } catch (const simulator::PowerCut&) {
    bench_.KeepWhatThePulledPlugLeaves();
  }
}

}  // namespace benchdriver
