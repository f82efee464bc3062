#pragma once

#include <cstdint>
#include <filesystem>
#include <ios>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// A folder that is there for as long as the object, with helpers for the files in it.
///
///     test_support::TempFolder folder;
///     folder.Write("a.rbi", bytes);
///     Open(folder.File("a.rbi").c_str());
///
/// Every operation throws std::runtime_error or std::filesystem::filesystem_error when the system refuses it.
namespace test_support {

class TempFolder {
 public:
  TempFolder();
  /// Removes the folder with all that is in it.
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::filesystem::path& Path() const { return path_; }
  /// The path of a file in the folder, whether it is there or not.
  std::string File(std::string_view name) const { return (path_ / name).make_preferred().string(); }

  /// Writes a file, in place of one that is there, and returns its path. `name` may lie in a subfolder, which is made.
  std::string Write(std::string_view name, std::string_view text) const;
  std::string Write(std::string_view name, std::span<const std::uint8_t> bytes) const;

  bool Has(std::string_view name) const { return std::filesystem::exists(path_ / name); }
  /// With a line feed alone at the end of each line, on Windows too.
  std::string ReadText(std::string_view name) const;
  std::vector<std::uint8_t> ReadBytes(std::string_view name) const;
  /// The names of what lies in the folder itself, sorted.
  std::vector<std::string> Names() const;

 private:
  std::string Read(std::string_view name, std::ios::openmode mode) const;

  std::filesystem::path path_;
};

}  // namespace test_support
