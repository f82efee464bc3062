#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace platform {

/// One entry of a directory.
struct DirectoryEntry {
  std::string name;
  bool isDirectory;
};

/// Directories and the environment.
class Files {
 public:
  virtual ~Files() = default;

  /// The entries of a directory without "." and "..", in name order, or nothing when it cannot be read.
  virtual std::optional<std::vector<DirectoryEntry>> ListDirectory(const std::string& directory) = 0;
  /// An environment variable's value, or nothing when it is not set.
  virtual std::optional<std::string> GetEnvironmentVariableA(const char* name) = 0;
};

}  // namespace platform
