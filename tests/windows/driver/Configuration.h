#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace benchdriver {

/// The name of the service that the driver is.
inline constexpr wchar_t kServiceName[] = L"fwbench";

/// The name of an event that is set while no program has a board open and the bench is saved: programs end before their
/// boards are closed.
inline constexpr wchar_t kIdleEventName[] = L"Global\\fwbench-idle";

/// What the driver is told when a bench is attached. It is kept in the key `Parameters` of the service.
struct Configuration {
  /// Another one for each time that a bench is attached.
  std::uint32_t attachment = 0;
  std::filesystem::path bench;
  /// Where to write a trace; empty for none.
  std::filesystem::path trace;
  /// Faults by name, as `ParseFault` takes them.
  std::vector<std::string> faults;
  /// How many times as fast as real time the bench's clock runs, 1 to 1,000,000.
  std::uint32_t speed = 100;
};

inline constexpr std::uint32_t kFastestSpeed = 1'000'000;

/// Throw `std::system_error` when the key cannot be read or written. Without a key there is attachment 0.
Configuration LoadConfiguration();
void SaveConfiguration(const Configuration& configuration);

}  // namespace benchdriver
