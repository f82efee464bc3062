// A question under a condition: which range a parameter may have, among 101 blocks, as the box has them, and among a
// hundred times as many. The floor goes through the numbers of the blocks' conditions in the same order.

#include <array>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "OtherTexts.h"
#include "TalcBenchmark.h"
#include "talcpath.h"

namespace {

constexpr int kFew = 101;
constexpr int kMany = 10100;

using Conditions = std::array<std::int32_t, 3>;

/// Those of the n-th block; no two blocks have the same ones.
Conditions ConditionsOf(int n) {
  return {n % 2, n % 7, n};
}

constexpr std::array<const char*, 3> kParameters = {"InputOrOutput", "Type", "Control"};

std::string CapabilitiesWith(int blocks) {
  std::ostringstream text;
  text << "HardwareType Many ;\n";
  for (int n = 0; n < blocks; ++n) {
    text << "ConditionBlockBegin ; ConditionKeyname Block" << n << " ;\n";
    for (std::size_t i = 0; i < kParameters.size(); ++i)
      text << "Condition VideoIOControl " << kParameters[i] << " INTEGER " << ConditionsOf(n)[i] << " ;\n";
    text << "ConditionBlockEnd ;\nCommandValues VideoIOControl Value Range 0 " << n << " ;\n";
  }
  return text.str();
}

std::vector<TalcPath::TalcHWCapsCondition> QueriesOf(int blocks) {
  std::vector<TalcPath::TalcHWCapsCondition> queries(static_cast<std::size_t>(blocks));
  for (int n = 0; n < blocks; ++n)
    for (std::size_t i = 0; i < kParameters.size(); ++i)
      if (!queries[static_cast<std::size_t>(n)].AddIntegerCondition("VideoIOControl", kParameters[i],
                                                                    ConditionsOf(n)[i]))
        std::abort();
  return queries;
}

/// Asks each block in turn, so that a figure is the middle of all.
void Ask(benchmark::State& state, int blocks) {
  OtherTexts system(EmbeddedDictionaries(), {CapabilitiesWith(blocks)});
  WhileStopped([&] {
    const platform::ScopedPlatform scope(system);
    if (!TalcPath::TalcPathInit()) std::abort();
    const TalcPath::TalcHWCapsHandle caps = TalcPath::TalcHWCapsManager::GetByName("Many");
    const std::vector<TalcPath::TalcHWCapsCondition> queries = QueriesOf(blocks);
    int n = 0;
    for (auto _ : state) {
      std::int32_t low = 0;
      std::int32_t high = 0;
      if (!caps.GetCommandParameterRange("VideoIOControl", "Value", &low, &high,
                                         &queries[static_cast<std::size_t>(n)]) ||
          high != n)
        std::abort();
      n = n + 1 == blocks ? 0 : n + 1;
    }
    TalcPath::TalcPathTerminate();
  });
}

void AskFloor(benchmark::State& state, int blocks) {
  struct Block {
    Conditions conditions;
    std::int32_t low;
    std::int32_t high;
  };
  std::vector<Block> list;
  for (int n = 0; n < blocks; ++n)
    list.push_back({ConditionsOf(n), 0, n});
  int n = 0;
  for (auto _ : state) {
    const Conditions wanted = ConditionsOf(n);
    for (const Block& block : list) {
      if (block.conditions != wanted) continue;
      benchmark::DoNotOptimize(block.high);
      break;
    }
    n = n + 1 == blocks ? 0 : n + 1;
  }
}

std::string Name(int blocks) {
  return "ask/" + std::to_string(blocks);
}

std::string FloorName(int blocks) {
  return "ask_floor/" + std::to_string(blocks);
}

}  // namespace

void AddCapsBenchmarks() {
  for (const int blocks : {kFew, kMany}) {
    AddRepeated(Name(blocks), [blocks](benchmark::State& state) { Ask(state, blocks); });
    AddRepeated(FloorName(blocks), [blocks](benchmark::State& state) { AskFloor(state, blocks); });
  }
}

void PrintCapsRatios(const FastestReporter& reporter) {
  for (const int blocks : {kFew, kMany})
    reporter.PrintRatio("ask under a condition among " + std::to_string(blocks) + " blocks", Name(blocks),
                        FloorName(blocks), "the floor");
  reporter.PrintRatio("ask under a condition among 10100 blocks", Name(kMany), Name(kFew), "among 101");
}
