#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "simulator/Bench.h"
#include "simulator/FirmwareFiles.h"

namespace simulator {

/// A bench in a folder: `hardware/` holds its state, one JSON file that names an image file for each flash by its
/// content, and `firmware/` is the folder in which a program runs. Everything throws `BenchError` when it fails.

/// Makes a bench. The folder must be new or empty; after a failure it is as it was.
void CreateBench(const std::filesystem::path& folder, const BenchState& state, const std::vector<FirmwareFile>& files,
                 std::uint64_t seed);

/// Reads the state. Refuses a folder that holds no bench, and state that is damaged in any way.
BenchState LoadBench(const std::filesystem::path& folder);

/// Puts a state in the place of the one that is kept. All at once: whatever interrupts it, either the old state or the
/// new one is there. Images that have not changed are not written. One program at a time may save to a folder.
void SaveBench(const std::filesystem::path& folder, const BenchState& state);

/// The folder in which a program runs.
std::filesystem::path FirmwareFolder(const std::filesystem::path& folder);

}  // namespace simulator
