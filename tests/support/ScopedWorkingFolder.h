#pragma once

#include <filesystem>

namespace test_support {

/// Makes a folder the process's working directory while it lives, as the installer looks for its files there.
class ScopedWorkingFolder {
 public:
  explicit ScopedWorkingFolder(const std::filesystem::path& folder) : previous_(std::filesystem::current_path()) {
    std::filesystem::current_path(folder);
  }
  ~ScopedWorkingFolder() {
    std::error_code ignored;
    std::filesystem::current_path(previous_, ignored);
  }
  ScopedWorkingFolder(const ScopedWorkingFolder&) = delete;
  ScopedWorkingFolder& operator=(const ScopedWorkingFolder&) = delete;

 private:
  std::filesystem::path previous_;
};

}  // namespace test_support
