#include "simulator/WholeFile.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>

#include "simulator/BenchError.h"

namespace simulator {

std::string ReadWholeFile(const std::filesystem::path& path, std::uintmax_t limitBytes) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error))
    throw BenchError(path.string() + ": " + (error ? error.message() : "is not a regular file"));
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (error) throw BenchError(path.string() + ": " + error.message());
  if (size > limitBytes)
    throw BenchError(path.string() + ": has " + std::to_string(size) + " bytes, more than the " +
                     std::to_string(limitBytes) + " that it may have");
  std::string bytes(size, '\0');
  std::ifstream file(path, std::ios::binary);
  file.read(bytes.data(), static_cast<std::streamsize>(size));
  if (!file) throw BenchError(path.string() + ": cannot be read");
  return bytes;
}

void WriteWholeFile(const std::filesystem::path& path, std::span<const std::uint8_t> bytes) {
  errno = 0;
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  const bool opened = file.is_open();
  file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (file) return;
  const std::string reason = errno != 0 ? std::strerror(errno) : "cannot be written";
  std::error_code ignored;
  if (opened) std::filesystem::remove(path, ignored);
  throw BenchError(path.string() + ": " + reason);
}

void ReplaceFile(const std::filesystem::path& path, std::span<const std::uint8_t> bytes) {
  std::filesystem::path aside = path;
  aside += ".new";
  WriteWholeFile(aside, bytes);
  std::error_code error;
  std::filesystem::rename(aside, path, error);
  if (!error) return;
  std::error_code ignored;
  std::filesystem::remove(aside, ignored);
  throw BenchError(path.string() + ": " + error.message());
}

}  // namespace simulator
