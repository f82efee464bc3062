#pragma once

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/Files.h"

/// An environment of just the variables that a test sets, and no directories.
class FakeEnvironment final : public platform::Files {
 public:
  std::map<std::string, std::string> variables;
  /// What was asked for, in order.
  std::vector<std::string> asked;

  std::optional<std::string> GetEnvironmentVariableA(const char* name) override {
    asked.emplace_back(name);
    const auto variable = variables.find(name);
    if (variable == variables.end()) return std::nullopt;
    return variable->second;
  }
  std::optional<std::vector<platform::DirectoryEntry>> ListDirectory(const std::string& directory) override {
    throw std::logic_error("the code under test listed the directory " + directory);
  }
};
