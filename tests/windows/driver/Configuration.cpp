#include "Configuration.h"

#include <windows.h>

#include <sstream>
#include <system_error>

namespace benchdriver {
namespace {

constexpr wchar_t kAttachment[] = L"Attachment";
constexpr wchar_t kBench[] = L"Bench";
constexpr wchar_t kTrace[] = L"Trace";
constexpr wchar_t kFaults[] = L"Faults";
constexpr wchar_t kSpeed[] = L"Speed";

std::wstring Key() {
  return L"System\\CurrentControlSet\\Services\\" + std::wstring(kServiceName) + L"\\Parameters";
}

void Check(LSTATUS status) {
  if (status != ERROR_SUCCESS) throw std::system_error(status, std::system_category(), "the driver's parameters");
}

std::uint32_t LoadNumber(const wchar_t* name) {
  DWORD number = 0;
  DWORD sizeBytes = sizeof number;
  Check(RegGetValueW(HKEY_LOCAL_MACHINE, Key().c_str(), name, RRF_RT_REG_DWORD, nullptr, &number, &sizeBytes));
  return number;
}

std::wstring LoadText(const wchar_t* name) {
  DWORD sizeBytes = 0;
  Check(RegGetValueW(HKEY_LOCAL_MACHINE, Key().c_str(), name, RRF_RT_REG_SZ, nullptr, nullptr, &sizeBytes));
  std::wstring text(sizeBytes / sizeof(wchar_t), L'\0');
  Check(RegGetValueW(HKEY_LOCAL_MACHINE, Key().c_str(), name, RRF_RT_REG_SZ, nullptr, text.data(), &sizeBytes));
  return text.c_str();
}

void Save(const wchar_t* name, std::uint32_t number) {
  Check(RegSetKeyValueW(HKEY_LOCAL_MACHINE, Key().c_str(), name, REG_DWORD, &number, sizeof number));
}

void Save(const wchar_t* name, const std::wstring& text) {
  const auto sizeBytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
  Check(RegSetKeyValueW(HKEY_LOCAL_MACHINE, Key().c_str(), name, REG_SZ, text.c_str(), sizeBytes));
}

}  // namespace

Configuration LoadConfiguration() {
  Configuration configuration;
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, Key().c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return configuration;
  RegCloseKey(key);
  configuration.attachment = LoadNumber(kAttachment);
  configuration.bench = LoadText(kBench);
  configuration.trace = LoadText(kTrace);
  configuration.speed = LoadNumber(kSpeed);
  // No fault's name has a blank in it.
  std::wistringstream faults(LoadText(kFaults));
  for (std::wstring fault; faults >> fault;)
    configuration.faults.push_back(std::filesystem::path(fault).string());
  return configuration;
}

void SaveConfiguration(const Configuration& configuration) {
  std::string faults;
  for (const std::string& fault : configuration.faults)
    faults += fault + ' ';
  Save(kBench, configuration.bench.wstring());
  Save(kTrace, configuration.trace.wstring());
  Save(kFaults, std::wstring(faults.begin(), faults.end()));
  Save(kSpeed, configuration.speed);
  Save(kAttachment, configuration.attachment);
}

}  // namespace benchdriver
