#pragma once

#include <filesystem>
#include <string>

#if defined(_WIN32)
#include <windows.h>
#endif

namespace test_support {

/// A file that a folder lists and nobody can open, whoever runs the test: a link that leads nowhere or, on Windows, a
/// file that is kept by somebody else for as long as this lives.
class UnopenableFile {
 public:
#if defined(_WIN32)
  explicit UnopenableFile(const std::string& path)
      : owner_(CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr)) {}
  ~UnopenableFile() {
    CloseHandle(owner_);
  }
#else
  explicit UnopenableFile(const std::string& path) {
    std::filesystem::create_symlink(path + ".nowhere", path);
  }
#endif
  UnopenableFile(const UnopenableFile&) = delete;
  UnopenableFile& operator=(const UnopenableFile&) = delete;

#if defined(_WIN32)
 private:
  HANDLE owner_;
#endif
};

}  // namespace test_support
