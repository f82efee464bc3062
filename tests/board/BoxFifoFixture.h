#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "board/VeltraHelper.h"
#include "BoxFifoScripts.h"
#include "DriverScripts.h"
#include "support/FailureOf.h"
#include "support/ManualClock.h"
#include "support/PacketText.h"

/// Registers that do something before each access goes on to others.
class WatchedRegisters final : public platform::RegisterTrap {
 public:
  explicit WatchedRegisters(platform::RegisterTrap& registers) : registers_(registers) {}
  void OnAccess(std::function<void()> action) { onAccess_ = std::move(action); }

  std::uint32_t Read(std::uint32_t offset) override {
    if (onAccess_) onAccess_();
    return registers_.Read(offset);
  }
  void Write(std::uint32_t offset, std::uint32_t value) override {
    if (onAccess_) onAccess_();
    registers_.Write(offset, value);
  }

 private:
  platform::RegisterTrap& registers_;
  std::function<void()> onAccess_;
};

/// An opened helper of one card, whose registers expect scripts of FIFO accesses. `registers` is silent at first.
///
/// The clock moves by a microsecond each time it is read.
class BoxFifoFixture : public testing::Test {
 protected:
  static constexpr std::int64_t kTicksPerMicrosecond = test_support::ManualClock::kTicksPerSecond / 1'000'000;
  static constexpr std::uint64_t kHandle = 0x11;

  BoxFifoFixture() {
    SetClockStep(1);
    devices.Expect(driver_scripts::OpensCard(driver_scripts::kBelmara, kHandle));
    devices.Expect(driver_scripts::MapsRegisters(kHandle, watched));
    registers.Expect(box_fifo::EmptyFlush());
    helper.Open();
    devices.ExpectDone();
    registers.ExpectDone();
    devices.Expect(driver_scripts::Closes(kHandle));
  }

  void SetClockStep(std::int64_t microseconds) { clock.SetStepTicks(microseconds * kTicksPerMicrosecond); }

  /// Sends and does not wait for a reply.
  HwcStatus Send(const test_support::Bytes& command, std::uint32_t timeoutLow = 1'000'000,
                 std::uint32_t timeoutHigh = 0) {
    return helper.TransactBoBCommand(command.data(), static_cast<std::uint32_t>(command.size()), nullptr, nullptr,
                                     timeoutLow, timeoutHigh);
  }
  /// Waits for a reply and keeps it in `reply` and `replyLength`, which tells of no room before.
  HwcStatus Receive(std::uint32_t timeoutLow = 1'000'000, std::uint32_t timeoutHigh = 0) {
    reply.assign(kReplyRoomBytes, 0x5A);
    replyLength = 0;
    return helper.TransactBoBCommand(nullptr, 0, reply.data(), &replyLength, timeoutLow, timeoutHigh);
  }
  HwcStatus Flush(std::uint32_t timeoutLow = 5000, std::uint32_t timeoutHigh = 0) {
    return helper.TransactBoBCommand(nullptr, 0, nullptr, nullptr, timeoutLow, timeoutHigh);
  }

  /// The first bytes of `reply`.
  test_support::Bytes ReplyBytes(std::ptrdiff_t count) const { return {reply.begin(), reply.begin() + count}; }

  /// The microseconds between one access and the next, as far as there are any: the waits, and a few for the looks at
  /// the clock around each.
  std::vector<std::int64_t> PausesOf(const std::function<void()>& operation) {
    std::vector<std::int64_t> pauses;
    std::int64_t last = clock.Ticks();
    bool isFirst = true;
    watched.OnAccess([&] {
      if (!isFirst && clock.Ticks() != last) pauses.push_back((clock.Ticks() - last) / kTicksPerMicrosecond);
      isFirst = false;
      last = clock.Ticks();
    });
    operation();
    watched.OnAccess({});
    return pauses;
  }

  test_support::ScriptedRegisters registers;
  WatchedRegisters watched{registers};
  test_support::ManualClock clock;
  test_support::StrictDevices devices;
  test_support::Bytes reply;
  std::uint32_t replyLength = 0;

 private:
  test_support::PlatformDouble system_;
  platform::ScopedPlatform scope_{(system_.Use(devices), system_.Use(clock.clock()), system_)};
  // A helper's destructor may throw, a test's may not.
  const std::unique_ptr<VeltraHelper> owner_ = std::make_unique<VeltraHelper>(OpenMode::kBelmaraAlone);

 protected:
  VeltraHelper& helper = *owner_;
};
