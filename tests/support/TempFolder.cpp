#include "support/TempFolder.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <system_error>

namespace test_support {

TempFolder::TempFolder() {
  std::random_device random;
  do
    path_ = std::filesystem::temp_directory_path() / ("fwdeploy-test-" + std::to_string(random()));
  while (!std::filesystem::create_directory(path_));
  std::filesystem::permissions(path_, std::filesystem::perms::owner_all);
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TempFolder::Write(std::string_view name, std::string_view text) const {
  const std::filesystem::path path = path_ / name;
  std::filesystem::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path.string());
  return path.string();
}

std::string TempFolder::Write(std::string_view name, std::span<const std::uint8_t> bytes) const {
  return Write(name, std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

std::string TempFolder::Read(std::string_view name, std::ios::openmode mode) const {
  const std::filesystem::path path = path_ / name;
  std::ifstream file(path, mode);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string TempFolder::ReadText(std::string_view name) const {
  return Read(name, std::ios::in);
}

std::vector<std::uint8_t> TempFolder::ReadBytes(std::string_view name) const {
  const std::string bytes = Read(name, std::ios::in | std::ios::binary);
  return {bytes.begin(), bytes.end()};
}

std::vector<std::string> TempFolder::Names() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path_))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace test_support
