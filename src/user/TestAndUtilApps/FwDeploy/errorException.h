#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

#include "BaseName.h"

/// The one exception of the installer and the board layer. Carries the place where it was thrown, of which the user is
/// shown the file's base name and the line.
///
///     throw errorException("Could not open file to download");
class errorException : public std::logic_error {
 public:
  /// `path` is a text of static lifetime (the compiler's own by default) and may be separated by backslashes or
  /// slashes.
  explicit errorException(const std::string& message, const char* path = __builtin_FILE(),
                          std::int32_t atLine = __builtin_LINE())
      : std::logic_error(message), file(BaseName(path)), line(atLine) {}

  const char* file;
  std::int32_t line;
};
