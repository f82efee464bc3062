#include <windows.h>

#include <algorithm>
#include <ctime>

#include "platform/Platform.h"
#include "platform/win32/Win32Devices.h"

namespace platform {
namespace {

class Win32Clock : public Clock {
 public:
  bool QueryPerformanceCounter(std::int64_t& ticks) override {
    LARGE_INTEGER value;
    if (::QueryPerformanceCounter(&value) == FALSE) return false;
    ticks = value.QuadPart;
    return true;
  }
  bool QueryPerformanceFrequency(std::int64_t& ticksPerSecond) override {
    LARGE_INTEGER value;
    if (::QueryPerformanceFrequency(&value) == FALSE) return false;
    ticksPerSecond = value.QuadPart;
    return true;
  }
  std::uint32_t GetTickCount() override { return ::GetTickCount(); }
  void Sleep(std::uint32_t milliseconds) override { ::Sleep(milliseconds); }
  std::uint32_t timeBeginPeriod(std::uint32_t milliseconds) override { return ::timeBeginPeriod(milliseconds); }
  std::uint32_t timeEndPeriod(std::uint32_t milliseconds) override { return ::timeEndPeriod(milliseconds); }
  std::uint32_t timeGetTime() override { return ::timeGetTime(); }
  std::int64_t PresentTime() override { return std::time(nullptr); }
};

class Win32FrontEnd : public FrontEnd {
 public:
  WindowHandle FindWindowA(const char* className, const char* title) override {
    return reinterpret_cast<WindowHandle>(::FindWindowA(className, title));
  }
  std::intptr_t SendMessageA(WindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                             const CopyData& lParam) override {
    // The receiver gets a copy; the record's type alone wants to write.
    COPYDATASTRUCT record{lParam.kind, lParam.sizeBytes, const_cast<void*>(lParam.bytes)};
    return ::SendMessageA(reinterpret_cast<HWND>(window), message, wParam, reinterpret_cast<LPARAM>(&record));
  }
};

/// The program's resources.
class ResourceTextBlocks : public TextBlocks {
 public:
  std::vector<std::string> List(std::string_view type) override {
    std::vector<std::string> names;
    ::EnumResourceNamesA(nullptr, std::string(type).c_str(), &AddName, reinterpret_cast<LONG_PTR>(&names));
    // The system's own order is no promise, and the order of the dictionaries counts.
    std::sort(names.begin(), names.end());
    return names;
  }

  std::optional<std::string_view> Bytes(std::string_view type, std::string_view name) override {
    const HRSRC found = ::FindResourceA(nullptr, std::string(name).c_str(), std::string(type).c_str());
    if (found == nullptr) return std::nullopt;
    const HGLOBAL loaded = ::LoadResource(nullptr, found);
    if (loaded == nullptr) return std::nullopt;
    const void* const bytes = ::LockResource(loaded);
    if (bytes == nullptr) return std::nullopt;
    return std::string_view(static_cast<const char*>(bytes), ::SizeofResource(nullptr, found));
  }

 private:
  static BOOL CALLBACK AddName(HMODULE, LPCSTR, LPSTR name, LONG_PTR names) {
    // A resource that has a number for a name is found by the number's text.
    const std::string text = IS_INTRESOURCE(name) ? "#" + std::to_string(reinterpret_cast<ULONG_PTR>(name)) : name;
    reinterpret_cast<std::vector<std::string>*>(names)->push_back(text);
    return TRUE;
  }
};

class Win32Files : public Files {
 public:
  std::optional<std::vector<DirectoryEntry>> ListDirectory(const std::string& directory) override {
    if (directory.empty()) return std::nullopt;  // with the "/*" behind it that would be the root
    WIN32_FIND_DATAA found;
    const HANDLE search = ::FindFirstFileA((directory + "/*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return std::nullopt;
    std::vector<DirectoryEntry> entries;
    do {
      const std::string name = found.cFileName;
      if (name == "." || name == "..") continue;
      entries.push_back({name, (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0});
    } while (::FindNextFileA(search, &found) != FALSE);
    ::FindClose(search);
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    return entries;
  }

  std::optional<std::string> GetEnvironmentVariableA(const char* name) override {
    std::string value;
    for (;;) {
      // A variable with an empty value and one that is not set both give 0; the error code tells them apart.
      ::SetLastError(ERROR_SUCCESS);
      const DWORD length = ::GetEnvironmentVariableA(name, value.data(), static_cast<DWORD>(value.size()));
      if (length == 0 && ::GetLastError() == ERROR_ENVVAR_NOT_FOUND) return std::nullopt;
      const bool fits = length < value.size() || length == 0;
      value.resize(length);
      if (fits) return value;
    }
  }
};

class Win32Platform : public Platform {
 public:
  Devices& devices() override { return devices_; }
  Clock& clock() override { return clock_; }
  FrontEnd& frontEnd() override { return frontEnd_; }
  TextBlocks& textBlocks() override { return textBlocks_; }
  Files& files() override { return files_; }

 private:
  Win32Devices devices_;
  Win32Clock clock_;
  Win32FrontEnd frontEnd_;
  ResourceTextBlocks textBlocks_;
  Win32Files files_;
};

}  // namespace

Platform& Native() {
  static Win32Platform platform;
  return platform;
}

}  // namespace platform
