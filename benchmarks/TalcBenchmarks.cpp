// What the Talc library costs: its start, questions about capabilities, packets in both directions, and execution. Each
// figure of the library stands beside a floor, a plain loop that makes the same memory accesses, or beside the part of
// it that cannot be left out; and the first ones beside a peer, protobuf with a schema that is loaded at run time. The
// last lines are the ratios, each of the fastest of several repetitions.

#include <cstdio>

#include "TalcBenchmark.h"
#include "talcpath.h"

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  if (!TalcPath::TalcPathInit()) return 1;
  AddStartBenchmarks();
  AddCapsBenchmarks();
  AddPacketBenchmarks();
  AddExecuteBenchmarks();
  FastestReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  std::printf("\n");
  PrintStartRatios(reporter);
  PrintCapsRatios(reporter);
  PrintPacketRatios(reporter);
  PrintExecuteRatios(reporter);
  return TalcPath::TalcPathTerminate() ? 0 : 1;
}
