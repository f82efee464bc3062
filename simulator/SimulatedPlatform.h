#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Platform.h"
#include "simulator/SimulatedDevices.h"
#include "simulator/SimulatedFrontEnd.h"
#include "simulator/VirtualClock.h"

namespace simulator {

/// Real directories, and an environment that a test sets.
class SimulatedFiles : public platform::Files {
 public:
  /// The variables, unless the real ones show through.
  std::map<std::string, std::string> environment;

  /// Shows the process's own environment from now on.
  void ShowRealEnvironment() { realEnvironment_ = true; }

  std::optional<std::vector<platform::DirectoryEntry>> ListDirectory(const std::string& directory) override;
  std::optional<std::string> GetEnvironmentVariableA(const char* name) override;

 private:
  bool realEnvironment_ = false;
};

/// A computer with simulated boards: a registry of devices, a virtual clock, a desktop, an environment. With nothing
/// added it has no devices and no windows. Directories and embedded texts are the program's own.
///
///     VirtualClock clock;
///     SimulatedPlatform platform(clock);
///     platform.devices().Add(kBelmaraBoard.interfaceClass, std::string(kBelmaraBoard.devicePath), card);
///     platform::ScopedPlatform current(platform);
class SimulatedPlatform : public platform::Platform {
 public:
  /// `clock` must outlive the platform.
  explicit SimulatedPlatform(VirtualClock& clock) : clock_(clock) {}

  SimulatedDevices& devices() override { return devices_; }
  VirtualClock& clock() override { return clock_; }
  SimulatedFrontEnd& frontEnd() override { return frontEnd_; }
  platform::TextBlocks& textBlocks() override { return platform::Native().textBlocks(); }
  SimulatedFiles& files() override { return files_; }

 private:
  VirtualClock& clock_;
  SimulatedDevices devices_;
  SimulatedFrontEnd frontEnd_;
  SimulatedFiles files_;
};

}  // namespace simulator
