#include "simulator/SimulatedPlatform.h"

namespace simulator {

std::optional<std::vector<platform::DirectoryEntry>> SimulatedFiles::ListDirectory(const std::string& directory) {
  return platform::Native().files().ListDirectory(directory);
}

std::optional<std::string> SimulatedFiles::GetEnvironmentVariableA(const char* name) {
  if (realEnvironment_) return platform::Native().files().GetEnvironmentVariableA(name);
  const auto variable = environment.find(name);
  if (variable == environment.end()) return std::nullopt;
  return variable->second;
}

}  // namespace simulator
