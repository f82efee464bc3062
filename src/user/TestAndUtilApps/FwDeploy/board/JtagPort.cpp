#include "board/JtagPort.h"

namespace {

/// How TMS goes from one state to another: so many of the pattern's bits, from its top bit downward.
struct TapRoad {
  std::uint8_t from;
  std::uint8_t to;
  std::uint8_t pattern;
  std::uint8_t count;
};

constexpr TapRoad kTapTable[] = {
    {kTapReset, kTapReset, 0xFC, 6},     {kTapReset, kTapIdle, 0x00, 1},      {kTapReset, kTapDrPause, 0x50, 5},
    {kTapReset, kTapIrPause, 0x68, 6},   {kTapIdle, kTapReset, 0xE0, 3},      {kTapIdle, kTapDrPause, 0xA0, 4},
    {kTapIdle, kTapIrPause, 0xD0, 5},    {kTapDrPause, kTapReset, 0xF8, 5},   {kTapDrPause, kTapIdle, 0xC0, 3},
    {kTapDrPause, kTapIrPause, 0xF4, 7}, {kTapIrPause, kTapReset, 0xF8, 5},   {kTapIrPause, kTapIdle, 0xC0, 3},
    {kTapIrPause, kTapDrPause, 0xE8, 6}, {kTapDrPause, kTapShiftDr, 0x80, 2}, {kTapIrPause, kTapShiftDr, 0xE0, 5},
    {kTapShiftDr, kTapDrPause, 0x80, 2}, {kTapShiftDr, kTapIdle, 0xC0, 3},    {kTapIrPause, kTapShiftIr, 0x80, 2},
    {kTapShiftIr, kTapIrPause, 0x80, 2}, {kTapShiftIr, kTapIdle, 0xC0, 3},
};

/// Five clocks with TMS high lead to reset from every state, those without a road there included.
constexpr TapRoad kAnywhereToReset = {kTapReset, kTapReset, 0xF8, 5};

const TapRoad* FindRoad(std::uint8_t from, std::uint8_t to) {
  for (const TapRoad& road : kTapTable)
    if (road.from == from && road.to == to) return &road;
  return to == kTapReset ? &kAnywhereToReset : nullptr;
}

}  // namespace

void JtagPort::SetPin(std::uint8_t mask, bool isHigh) {
  Burst([&](auto& pins) { pins.SetPin(mask, isHigh); });
}

int JtagPort::ReadTdoPin() const {
  return (port_.Read(0) & kTdo) != 0 ? 1 : 0;
}

void JtagPort::PulseClock() {
  PulseClocks(1);
}

void JtagPort::PulseClocks(std::uint16_t count) {
  Burst([&](auto& pins) {
    for (; count > 0; --count)
      pins.PulseClock();
  });
}

bool JtagPort::MoveTap(std::uint8_t state) {
  if (tapState_ == state && state != kTapReset) return true;
  const TapRoad* const road = FindRoad(tapState_, state);
  if (road == nullptr) return false;
  tapState_ = state;
  Burst([&](auto& pins) {
    for (unsigned i = 0; i < road->count; ++i) {
      pins.SetPin(kTms, (road->pattern << i & 0x80) != 0);
      pins.PulseClock();
    }
    pins.SetPin(kTdi, false);
    pins.SetPin(kTms, false);
  });
  return true;
}

bool JtagPort::SetFrequency(std::uint16_t frequency) {
  if (frequency == 0) return false;
  highWrites_ = frequency >= kDefaultFrequency ? 1 : kDefaultFrequency / frequency + 2;
  return true;
}
