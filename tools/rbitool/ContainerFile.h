#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

/// Makes firmware containers and puts them on disk.
///
///     WriteWhole("BLMX0202.rbi", BuildContainer("BLMX", 0x1161, "S:demo;", payload));
///
/// Every failure is a std::runtime_error with a text for the user.

/// The bytes of a container: the fixed header, `taggedText` as it stands, and the payload. The header ends where the
/// tagged text ends; nothing is padded. `partId` has four characters.
std::string BuildContainer(std::string_view partId, std::uint16_t version, std::string_view taggedText,
                           std::string_view payload);

/// The bytes of a file. Throws when it is no file that can be read to its end.
std::string ReadWhole(const std::filesystem::path& path);

/// Writes a file, whole or not at all: the bytes go to a new file beside it, which takes its place when it is complete.
/// On a failure a file that was there is as it was. Throws also when `path` is there and is no ordinary file.
void WriteWhole(const std::filesystem::path& path, std::string_view bytes);
