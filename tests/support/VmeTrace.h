#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "board/VmePlayer.h"
#include "platform/Platform.h"
#include "support/PlatformDouble.h"
#include "support/TempFolder.h"

/// What a VME player does with its port, its clock and the user's console, line by line:
///
///     W 0a          a store to the port
///     R 1           a read of it, by its TDO bit
///     D 3           a wait of so many milliseconds
///     P 0%\n        a text for the user, with C escapes
///     RESULT 0      the code that a file ended with
///
///     test_support::VmeTrace trace("1");              // TDO is always high
///     EXPECT_TRUE(trace.Plays("F2 1B 01 7F", "enter pulse leave:6 =0"));
namespace test_support {

/// The bytes of a hex text, in which blanks are free.
std::vector<std::uint8_t> HexBytes(std::string_view text);
/// The same text so many times.
std::string Times(std::size_t count, std::string_view text);
/// A VME file in the shortest container. `body` is a hex text: the kind of packing, and the byte code.
std::vector<std::uint8_t> VmeFile(std::string_view body);

/// The trace that some words stand for. The pins start as `pins` says. The words, parted by blanks:
///
///     on  off       the enable pin high, low: one store
///     tms:110       for each digit a store that drives TMS so, and a pulse
///     rest          TDI low, TMS low: two stores, the end of each move of the TAP
///     tdi:110       for each digit a store that drives TDI so, and a pulse; no pulse behind a digit with a dot:
///     tdi:110. io:01/11      for each pair of digits a read with the first one's TDO, a store of the second one on TDI
///     and a
///                   pulse; a dot at the end leaves the last pulse out: io:01/11.
///     pulse         TCK high, low, low: three stores; pulse:4 are four of them
///     high:3        from here on a pulse is three stores high and six low
///     D3            a wait
///     0%            a percentage and a line end
///     eof           the line at the end of the data
///     'text'        any text, as it stands in the trace
///     enter         on tms:111111 rest
///     leave:5       tms:11111 rest D3 0% off; with another number as many clocks
///     =-4           the result
std::string Trace(std::string_view words, std::uint8_t pins = 0);

/// Equal traces; if they are not, says where they part.
testing::AssertionResult SameTrace(const std::string& actual, const std::string& expected);

/// What the port throws when power fails.
struct PowerCut : std::runtime_error {
  PowerCut() : std::runtime_error("power cut") {}
};

/// A port, a clock and a console that write down what is done with them.
///
/// The port answers TDO as told, and any rubbish in the other 31 bits. The clock stands still from the first look of a
/// wait to the second, and goes on by a millisecond with each further one. It starts shortly before its numbers wrap.
class TraceRecorder final : private platform::RegisterTrap, private platform::Clock {
 public:
  /// `tdo` are the answers one by one; the last one stays for good.
  explicit TraceRecorder(std::string_view tdo = "0") : scope_((system_.Use(*this), system_)) { AnswerTdo(tdo); }
  TraceRecorder(const TraceRecorder&) = delete;
  TraceRecorder& operator=(const TraceRecorder&) = delete;

  void AnswerTdo(std::string_view tdo) {
    tdo_ = tdo;
    nextTdo_ = 0;
  }
  /// The access of this number from now on, counted from 0, throws `PowerCut`, once.
  void CutPowerAt(std::size_t access) { accessesLeft_ = access; }

  platform::RegisterWindow Window() { return platform::RegisterWindow(0x1000, this); }

  void Add(const std::string& line) { text_ += line + '\n'; }
  void AddText(std::string_view text) {
    std::string line = "P ";
    for (const char c : text) {
      if (c == '\n')
        line += "\\n";
      else if (c == '\r')
        line += "\\r";
      else
        line += c;
    }
    Add(line);
  }

  const std::string& text() const { return text_; }
  void Clear() { text_.clear(); }

 private:
  static constexpr std::size_t kNever = static_cast<std::size_t>(-1);

  void CountAccess(std::uint32_t offset) {
    EXPECT_EQ(offset, 0u) << "there is one port only";
    if (accessesLeft_ != kNever && accessesLeft_-- == 0) {
      accessesLeft_ = kNever;
      throw PowerCut();
    }
  }
  std::uint32_t Read(std::uint32_t offset) override {
    CountAccess(offset);
    const char bit = nextTdo_ < tdo_.size() ? tdo_[nextTdo_++] : tdo_.back();
    Add(std::string("R ") + bit);
    rubbish_ = rubbish_ * 1664525u + 1013904223u;
    return (rubbish_ & ~0x10u) | (bit == '1' ? 0x10u : 0u);
  }
  void Write(std::uint32_t offset, std::uint32_t value) override {
    CountAccess(offset);
    EXPECT_LE(value, 0x0Fu) << "a store drives the four pins and nothing else";
    char line[8];
    std::snprintf(line, sizeof line, "W %02x", value & 0xFF);
    Add(line);
  }

  std::uint32_t timeBeginPeriod(std::uint32_t milliseconds) override {
    EXPECT_EQ(milliseconds, 1u);
    EXPECT_FALSE(isPeriodOpen_);
    isPeriodOpen_ = true;
    looks_ = 0;
    return 0;
  }
  std::uint32_t timeEndPeriod(std::uint32_t milliseconds) override {
    EXPECT_EQ(milliseconds, 1u);
    EXPECT_TRUE(isPeriodOpen_);
    EXPECT_GE(looks_, 2u) << "a wait is seen to have passed";
    isPeriodOpen_ = false;
    Add("D " + std::to_string(now_ - firstLook_));
    return 0;
  }
  std::uint32_t timeGetTime() override {
    EXPECT_TRUE(isPeriodOpen_);
    if (looks_ == 0) firstLook_ = now_;
    if (looks_ > 1) ++now_;
    ++looks_;
    return now_;
  }
  bool QueryPerformanceCounter(std::int64_t&) override { throw std::logic_error("the counter is not for waits"); }
  bool QueryPerformanceFrequency(std::int64_t&) override { throw std::logic_error("the counter is not for waits"); }
  std::uint32_t GetTickCount() override { throw std::logic_error("the tick count is not for waits"); }
  void Sleep(std::uint32_t) override { throw std::logic_error("waits never give up the processor"); }
  std::int64_t PresentTime() override { throw std::logic_error("the calendar is not for waits"); }

  PlatformDouble system_;
  platform::ScopedPlatform scope_;
  std::string text_;
  std::string tdo_;
  std::size_t nextTdo_ = 0;
  std::size_t accessesLeft_ = kNever;
  std::uint32_t rubbish_ = 1;
  bool isPeriodOpen_ = false;
  std::size_t looks_ = 0;
  std::uint32_t firstLook_ = 0;
  std::uint32_t now_ = 0xFFFFFFF0;
};

/// A player of its own, which plays files one after the other.
class VmeTrace {
 public:
  explicit VmeTrace(std::string_view tdo = "0") : recorder(tdo) { player.port.Connect(recorder.Window()); }

  /// The code that a file ends with. `text` has its trace afterwards.
  int Play(std::string_view body) { return PlayBytes(VmeFile(body)); }
  int PlayBytes(const std::vector<std::uint8_t>& file) { return PlayPath(folder_.Write("file.rbi", file)); }
  int PlayPath(const std::string& path) {
    recorder.Clear();
    const int code = player.PlayVmeFile(path.c_str());
    recorder.Add("RESULT " + std::to_string(code));
    return code;
  }
  const std::string& text() const { return recorder.text(); }

  /// Plays a file, which must leave the trace of these words.
  testing::AssertionResult Plays(std::string_view body, std::string_view words) {
    const std::uint8_t pins = player.port.pinShadow();
    Play(body);
    return SameTrace(text(), Trace(words, pins));
  }

  TraceRecorder recorder;
  VmePlayer player{[this](const char* line) { recorder.AddText(line); }};

 private:
  TempFolder folder_;
};

}  // namespace test_support
