#include "Service.h"

#include <windows.h>

#include <system_error>

#include "Configuration.h"

namespace benchdriver {
namespace {

/// Has a driver look again for devices that have no bus.
constexpr DWORD kReenumerateRootDevices = 128;

[[noreturn]] void ThrowLastError(const char* what) {
  throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

class ServiceHandle {
 public:
  explicit ServiceHandle(SC_HANDLE handle) : handle_(handle) {}
  ~ServiceHandle() {
    if (handle_ != nullptr) CloseServiceHandle(handle_);
  }
  ServiceHandle(const ServiceHandle&) = delete;
  ServiceHandle& operator=(const ServiceHandle&) = delete;
  SC_HANDLE get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }

 private:
  SC_HANDLE handle_;
};

SC_HANDLE OpenManager() {
  const SC_HANDLE manager = OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
  if (manager == nullptr) ThrowLastError("the service manager");
  return manager;
}

bool Reenumerate(SC_HANDLE service) {
  SERVICE_STATUS status;
  return ControlService(service, kReenumerateRootDevices, &status) != FALSE;
}

}  // namespace

void InstallService(const std::filesystem::path& driver) {
  const ServiceHandle manager(OpenManager());
  const ServiceHandle service(OpenServiceW(manager.get(), kServiceName, SERVICE_ALL_ACCESS));
  if (service) {
    if (ChangeServiceConfigW(service.get(), SERVICE_NO_CHANGE, SERVICE_NO_CHANGE, SERVICE_NO_CHANGE, driver.c_str(),
                             nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) == FALSE)
      ThrowLastError("the change of the service");
    return;
  }
  const ServiceHandle made(CreateServiceW(manager.get(), kServiceName, kServiceName, SERVICE_ALL_ACCESS,
                                          SERVICE_KERNEL_DRIVER, SERVICE_DEMAND_START, SERVICE_ERROR_NORMAL,
                                          driver.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr));
  if (!made) ThrowLastError("the making of the service");
}

void StartOrReenumerate() {
  const ServiceHandle manager(OpenManager());
  const ServiceHandle service(OpenServiceW(manager.get(), kServiceName, SERVICE_ALL_ACCESS));
  if (!service) ThrowLastError("the service");
  if (StartServiceW(service.get(), 0, nullptr) != FALSE) return;
  if (GetLastError() != ERROR_SERVICE_ALREADY_RUNNING) ThrowLastError("the start of the driver");
  if (!Reenumerate(service.get())) ThrowLastError("the driver's look for devices");
}

void ReenumerateIfRunning() {
  const ServiceHandle manager(OpenManager());
  const ServiceHandle service(OpenServiceW(manager.get(), kServiceName, SERVICE_ALL_ACCESS));
  if (service && !Reenumerate(service.get()) && GetLastError() != ERROR_SERVICE_NOT_ACTIVE)
    ThrowLastError("the driver's look for devices");
}

}  // namespace benchdriver
