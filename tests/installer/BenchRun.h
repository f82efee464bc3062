#pragma once

#include <string>
#include <vector>

#include "simulator/Bench.h"
#include "simulator/Faulty.h"
#include "support/InstallerRun.h"

/// A container with a 22-byte header.
inline std::string Container(const std::string& id, const std::string& version, const std::string& payload = "") {
  return std::string("ORBO.RBI\0\0\0\x16R", 13) + version + ";" + id + payload;
}

/// A front end's title, with the registered sign of code page 1252.
inline constexpr char kFrontEndTitle[] = "Orbo\xAE Veltra Kore";

/// Runs the program on a bench, in the current folder, with faults as `fwbench run --fault` takes them. The bench goes
/// on from where the run left it. With `received`, a front end is up, and what it was sent is put there.
inline InstallerRun RunOnBench(simulator::BenchState& state, const std::vector<const char*>& arguments,
                               const std::vector<std::string>& faults = {},
                               std::vector<simulator::ReceivedMessage>* received = nullptr) {
  simulator::Bench bench(state);
  if (received != nullptr) bench.frontEnd().Open(kFrontEndTitle);
  simulator::FaultPlan plan;
  for (const std::string& fault : faults)
    plan.Add(simulator::ParseFault(fault));
  bench.UseFaults(&plan);
  simulator::Faulty faulty(bench.platform(), plan);
  const platform::ScopedPlatform current(faulty);
  const InstallerRun run = RunInstaller(arguments);
  if (received != nullptr) *received = bench.frontEnd().received();
  state = bench.State();
  return run;
}

/// Turns the power off and on.
inline void PowerCycle(simulator::BenchState& state) {
  simulator::Bench bench(state);
  bench.PowerCycle();
  state = bench.State();
}

/// What the hardware objected to, of all parts together.
inline std::vector<std::string> ProtocolErrors(const simulator::BenchState& state) {
  std::vector<std::string> errors;
  for (const simulator::PartRow& row : simulator::RowsOf(state))
    for (const std::string& error : row.errors)
      errors.push_back(row.part + ": " + error);
  return errors;
}
