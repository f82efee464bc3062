// A command's whole road, through a transport that answers at once, beside its compile and its decompile alone, which
// use the same packet and reply again and again.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "TalcBenchmark.h"
#include "talcpath.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using TalcPath::TalcByteCode;
using TalcPath::TalcCommand;

struct Road {
  const char* name;
  TalcCommand command;
  Bytes reply;
};

/// A question of 10 bytes with 15 for an answer, and a download's 1,970 bytes, which are only acknowledged.
std::vector<Road> Roads() {
  TalcCommand small("VPDInfo");
  small.SetRequestCommand();
  small.SetUInt16("Board", 200);
  TalcCommand large("FPGADownload");
  const Bytes data(1970, 0x5A);
  large.SetUInt16("Length", 1970);
  large.SetBytes("TheDLData", data.data(), 1970);
  return {{"small", small, {0x0B, 0x0B, 0, 0x0B, 0x80, 0x35, 0, 0, 0, 0xC8, 0, 3, 'V', 'P', 'D'}},
          {"1970", large, {0x0B, 0x0B, 0, 4, 0x80, 0x08, 0, 0}}};
}

class QuickTransport final : public TalcPath::TalcTransport {
 public:
  explicit QuickTransport(const Bytes& reply) : reply_(reply) {}
  bool Exchange(const char*, const TalcByteCode& packet, TalcByteCode& reply, std::uint32_t) override {
    benchmark::DoNotOptimize(&packet);
    return reply.Set(reply_.data(), static_cast<std::uint32_t>(reply_.size()));
  }
  void CommandCompleted(const TalcCommand&) override {}
  void Lock() override {}
  void Unlock() override {}

 private:
  const Bytes& reply_;
};

void Execute(benchmark::State& state, const Road& road) {
  QuickTransport transport(road.reply);
  TalcPath::TalcPathRegisterTransport(&transport, 1);
  TalcCommand command = road.command;
  for (auto _ : state)
    if (!TalcPath::TalcPathExecute(command)) std::abort();
  TalcPath::TalcPathUnregisterTransport(&transport, 1);
}

void CompileAndDecompile(benchmark::State& state, const Road& road) {
  TalcCommand command = road.command;
  TalcByteCode packet;
  TalcByteCode reply;
  reply.Set(road.reply.data(), static_cast<std::uint32_t>(road.reply.size()));
  for (auto _ : state) {
    if (!TalcPath::TalcPathCompile(command, packet, nullptr, nullptr) ||
        !TalcPath::TalcPathDecompile(command, reply, nullptr, false))
      std::abort();
    benchmark::DoNotOptimize(packet);
  }
}

std::string ExecuteName(const char* road) {
  return std::string("execute/") + road;
}

std::string AloneName(const char* road) {
  return std::string("execute_alone/") + road;
}

}  // namespace

void AddExecuteBenchmarks() {
  for (const Road& road : Roads()) {
    AddRepeated(ExecuteName(road.name), [road](benchmark::State& state) { Execute(state, road); });
    AddRepeated(AloneName(road.name), [road](benchmark::State& state) { CompileAndDecompile(state, road); });
  }
}

void PrintExecuteRatios(const FastestReporter& reporter) {
  for (const Road& road : Roads())
    reporter.PrintRatio(std::string("execute, ") + road.name, ExecuteName(road.name), AloneName(road.name),
                        "compile and decompile alone");
}
