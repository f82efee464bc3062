#pragma once

#include <string>

namespace test_support {

/// What the system says of a folder that is read as a file.
inline std::string FolderFault() {
#if defined(_WIN32)
  return "Permission denied";
#else
  return "Is a directory";
#endif
}

}  // namespace test_support
