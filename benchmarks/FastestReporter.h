#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <vector>

/// Registers a benchmark that runs ten times for a short time, so that some of the runs are not disturbed by what else
/// the machine does.
inline benchmark::internal::Benchmark* AddRepeated(const std::string& name,
                                                   const std::function<void(benchmark::State&)>& run) {
  return benchmark::RegisterBenchmark(name.c_str(), run)->Unit(benchmark::kMicrosecond)->MinTime(0.1)->Repetitions(10);
}

/// Prints what sums the repetitions of a benchmark up, and keeps the fastest of them.
class FastestReporter final : public benchmark::ConsoleReporter {
 public:
  FastestReporter() : ConsoleReporter(OO_Tabular) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    std::vector<Run> summary;
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Aggregate || run.error_occurred) summary.push_back(run);
      if (run.run_type == Run::RT_Aggregate || run.error_occurred) continue;
      const double seconds = run.cpu_accumulated_time / static_cast<double>(run.iterations);
      const auto [fastest, isNew] = fastest_.try_emplace(run.run_name.function_name, seconds);
      if (!isNew) fastest->second = std::min(fastest->second, seconds);
    }
    ConsoleReporter::ReportRuns(summary);
  }

  /// Prints "TEXT: X times UNIT" for two benchmarks, and nothing when one of them was filtered out.
  void PrintRatio(const std::string& text, const std::string& measured, const std::string& unit,
                  const char* unitText) const {
    const auto over = fastest_.find(measured);
    const auto under = fastest_.find(unit);
    if (over != fastest_.end() && under != fastest_.end())
      std::printf("%s: %.2f times %s\n", text.c_str(), over->second / under->second, unitText);
  }

 private:
  std::map<std::string, double> fastest_;
};
