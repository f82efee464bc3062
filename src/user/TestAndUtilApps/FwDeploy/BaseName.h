#pragma once

/// The part of a path behind the last backslash or slash. Points into `path`.
constexpr const char* BaseName(const char* path) {
  const char* name = path;
  for (const char* at = path; *at != '\0'; ++at)
    if (*at == '\\' || *at == '/') name = at + 1;
  return name;
}
