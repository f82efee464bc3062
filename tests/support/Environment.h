#pragma once

#include <cstdlib>

/// The process's own environment, under the names that each system has for it.
namespace test_support {

/// Sets a variable. An empty value removes it on Windows.
inline void SetVariable(const char* name, const char* value) {
#if defined(_WIN32)
  _putenv_s(name, value);
#else
  setenv(name, value, 1);
#endif
}

inline void RemoveVariable(const char* name) {
#if defined(_WIN32)
  _putenv_s(name, "");
#else
  unsetenv(name);
#endif
}

}  // namespace test_support
