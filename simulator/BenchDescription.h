#pragma once

#include <string_view>
#include <vector>

#include "simulator/Bench.h"
#include "simulator/FirmwareFiles.h"

namespace simulator {

/// A bench of odd hardware, as a text describes it: what is plugged in, and all files of its firmware folder.
struct BenchDescription {
  BenchState state;
  std::vector<FirmwareFile> files;
};

/// Longest payload and raw file that a description may ask for.
inline constexpr std::size_t kLongestDescribedFile = std::size_t{64} << 20;

/// Reads a description, one JSON object (its keys are in docs/bench.md). Throws `BenchError` for text that is no JSON,
/// a key that is unknown or stands twice, a value of a wrong type or outside its limits, and hardware that is not
/// simulated; the text names the key.
BenchDescription ParseBenchDescription(std::string_view text);

}  // namespace simulator
