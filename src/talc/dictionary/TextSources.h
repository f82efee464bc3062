#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

/// Where the library's texts come from: blocks that the program carries, and files of a directory.
namespace TalcPathPrivate {

/// What is done with each text; `name` is that of its block or file. False stops the pass.
using TextReader = std::function<bool(std::istream& stream, std::string_view name)>;

/// Hands each embedded block of a type over, in the order in which the platform lists them. `isFound` is set at the
/// first. A block that is empty or cannot be had ends the pass, which is a success.
bool ReadTextBlocks(std::string_view type, const TextReader& read, bool& isFound);

/// The path of a directory with one "/" at its end, unless it is empty.
std::string DirectoryPath(std::string path);

/// Hands each file of a directory over whose name has that ending, in the order of the listing. `path` is as
/// `DirectoryPath` gives it. False when a file was refused. A directory that cannot be listed has no files.
bool ReadFiles(const std::string& path, std::string_view ending, const TextReader& read);

}  // namespace TalcPathPrivate
