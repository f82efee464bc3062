#pragma once

#include "FastestReporter.h"

/// The benchmarks of the Talc library come in pieces, each of which adds its benchmarks before the run and prints its
/// ratios behind it. The library is started with the embedded texts while they run.
///
/// A floor is a plain loop with the same memory accesses; the peer is what a user would take in the library's place,
/// protobuf with schemas that are loaded at run time.

void AddStartBenchmarks();
void PrintStartRatios(const FastestReporter& reporter);

void AddCapsBenchmarks();
void PrintCapsRatios(const FastestReporter& reporter);

void AddExecuteBenchmarks();
void PrintExecuteRatios(const FastestReporter& reporter);

void AddPacketBenchmarks();
void PrintPacketRatios(const FastestReporter& reporter);
