#pragma once

#include <string>

/// Each works on the integrity trailer of a dictionary file and tells of it on std::cout in a line of JSON:
///
///     {"file":"lamps.tcd","ok":true}
///
/// When that is false, std::runtime_error is thrown behind the line.

/// Writes a trailer behind what the file holds.
void AddCrc(const std::string& path);
/// Checks the file's last trailer. One of `AddCrc` is not valid, save by chance: see engine/IntegrityTrailer.h.
void CheckCrc(const std::string& path);
