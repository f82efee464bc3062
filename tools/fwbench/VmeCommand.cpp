// Plays VME files against a port that is no hardware, and writes down all that the player does.

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "board/VmePlayer.h"
#include "Command.h"
#include "platform/Platform.h"
#include "Record.h"
#include "simulator/WrappedPlatform.h"

namespace {

struct VmeOptions {
  std::vector<std::string> files;
  std::string tdo;
  std::string trace;
};

/// The bits that TDO gives, one a read.
using Tdo = std::function<bool()>;

/// "0", "1" or "random:SEED"; nothing for any other text.
std::optional<Tdo> ParseTdo(const std::string& text) {
  constexpr std::string_view kRandom = "random:";
  if (text == "0") return [] { return false; };
  if (text == "1") return [] { return true; };
  if (!text.starts_with(kRandom)) return std::nullopt;
  const std::optional<std::uint64_t> seed = ReadDecimal(std::string_view(text).substr(kRandom.size()));
  if (!seed) return std::nullopt;
  return [x = *seed]() mutable {
    x = (x * 1103515245 + 12345) % (std::uint64_t{1} << 31);
    return (x >> 16 & 1) != 0;
  };
}

std::string CheckTdo(const std::string& text) {
  return ParseTdo(text) ? "" : "what TDO reads is 0, 1 or random:SEED, SEED a decimal number of at most 64 bits";
}

/// The lines of a trace.
class Trace {
 public:
  explicit Trace(std::ostream& out) : out_(out) {}
  void Store(std::uint32_t value) {
    char line[8];
    std::snprintf(line, sizeof line, "W %02x\n", value & 0xFF);
    out_ << line;
  }
  void Read(bool tdo) { out_ << (tdo ? "R 1\n" : "R 0\n"); }
  void Delay(std::uint32_t milliseconds) { out_ << "D " << milliseconds << '\n'; }
  void Print(std::string_view text) { out_ << "P " << Escaped(text) << '\n'; }
  void Result(int code) { out_ << "RESULT " << code << '\n'; }

 private:
  static std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
      switch (c) {
        case '\n':
          escaped += "\\n";
          break;
        case '\r':
          escaped += "\\r";
          break;
        case '\\':
          escaped += "\\\\";
          break;
        default:
          escaped += c;
          break;
      }
    }
    return escaped;
  }

  std::ostream& out_;
};

class ScriptedPort : public platform::RegisterTrap {
 public:
  ScriptedPort(Tdo tdo, Trace& trace) : tdo_(std::move(tdo)), trace_(trace) {}
  std::uint32_t Read(std::uint32_t) override {
    const bool tdo = tdo_();
    trace_.Read(tdo);
    return tdo ? JtagPort::kTdo : 0;
  }
  void Write(std::uint32_t, std::uint32_t value) override { trace_.Store(value); }

 private:
  Tdo tdo_;
  Trace& trace_;
};

/// A timer that a wait spins on: it moves a millisecond a look behind the first, and says in the end how long it was.
class SpunClock : public simulator::WrappedClock {
 public:
  SpunClock(platform::Clock& inner, Trace& trace) : WrappedClock(inner), trace_(trace) {}
  std::uint32_t timeBeginPeriod(std::uint32_t) override {
    looks_ = 0;
    return 0;
  }
  std::uint32_t timeGetTime() override {
    ++looks_;
    return Now();
  }
  std::uint32_t timeEndPeriod(std::uint32_t) override {
    trace_.Delay(Now());
    return 0;
  }

 private:
  /// The first look is the start, and the second may find no time passed.
  std::uint32_t Now() const { return looks_ < 2 ? 0 : looks_ - 2; }

  Trace& trace_;
  std::uint32_t looks_ = 0;
};

class SpunPlatform : public simulator::WrappedPlatform {
 public:
  SpunPlatform(platform::Platform& inner, Trace& trace) : WrappedPlatform(inner), clock_(inner.clock(), trace) {}
  platform::Clock& clock() override { return clock_; }

 private:
  SpunClock clock_;
};

/// Any address: what is behind it is the trap.
constexpr std::uint64_t kPortAddress = 0x1000;

int Play(const VmeOptions& options) {
  Record record(options.trace, "the trace");
  Trace trace(record.stream());
  SpunPlatform spun(platform::Native(), trace);
  const platform::ScopedPlatform current(spun);
  ScriptedPort port(*ParseTdo(options.tdo), trace);
  VmePlayer player([&](const char* text) { trace.Print(text); });
  player.port.Connect(platform::RegisterWindow(kPortAddress, &port));
  for (const std::string& path : options.files)
    trace.Result(player.PlayVmeFile(path.c_str()));
  record.Close();
  return kDone;
}

}  // namespace

void AddVmeCommand(CLI::App& app, Action& action) {
  CLI::App* const command = app.add_subcommand("vme", "Play VME files, one after the other, against a scripted port");
  const auto options = std::make_shared<VmeOptions>();
  command->add_option("FILE", options->files, "Containers with VME files")->required();
  command->add_option("--tdo", options->tdo, "What TDO reads: 0, 1 or random:SEED")->required()->check(CheckTdo);
  command->add_option("--trace", options->trace, "Write what the player does to this file")
      ->required()
      ->check([](const std::string& path) { return path.empty() ? "a trace needs a name" : ""; });
  command->footer(
      "The trace has a line for each store (W and the pins), TDO read (R), delay (D, milliseconds) and printed text\n"
      "(P), in order, and RESULT with the code behind each file.");
  command->callback([options, &action] { action = [options] { return Play(*options); }; });
}
