#pragma once

#include <filesystem>

namespace benchdriver {

/// Makes the service that the driver is, or gives it this driver if it is there. Throws `std::system_error`.
void InstallService(const std::filesystem::path& driver);
/// Starts the driver, or has the one that runs look for new devices and for those that are gone.
void StartOrReenumerate();
/// The same for a driver that may not run, or not be there at all.
void ReenumerateIfRunning();

}  // namespace benchdriver
