#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// Files that are read and written as a whole. Every failure is a std::runtime_error with a text for the user.

/// The bytes of a file. Throws when it is no file that can be read to its end.
std::string ReadWhole(const std::filesystem::path& path);

/// Writes a file, whole or not at all: the bytes go to a new file beside it, which takes its place when it is complete.
/// On a failure a file that was there is as it was. Throws also when `path` is there and is no ordinary file.
void WriteWhole(const std::filesystem::path& path, std::string_view bytes);
