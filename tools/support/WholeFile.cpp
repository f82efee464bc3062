#include "support/WholeFile.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <system_error>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#endif

namespace {

namespace fs = std::filesystem;

/// A partial file of this name may be left over from a run that was killed; the next name is taken then.
constexpr int kPartialNames = 100;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// Windows has paths of wide characters, and its C library no mode for a file that must be new.
#if defined(_WIN32)
File OpenToRead(const fs::path& path) {
  return File(_wfopen(path.c_str(), L"rb"));
}
File CreateNew(const fs::path& path) {
  const int descriptor = _wopen(path.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY, _S_IREAD | _S_IWRITE);
  return File(descriptor < 0 ? nullptr : _fdopen(descriptor, "wb"));
}
#else
File OpenToRead(const fs::path& path) {
  return File(std::fopen(path.c_str(), "rb"));
}
File CreateNew(const fs::path& path) {
  return File(std::fopen(path.c_str(), "wbx"));
}
#endif

[[noreturn]] void Fail(const std::string& what, const fs::path& path, int error) {
  throw std::runtime_error(what + " " + path.string() + ": " + std::generic_category().message(error));
}

/// A new file beside `target`; `path` gets its name.
File CreateBeside(const fs::path& target, fs::path& path) {
  for (int n = 0; n < kPartialNames; ++n) {
    path = target;
    path += ".partial" + std::to_string(n);
    if (File file = CreateNew(path)) return file;
    if (errno != EEXIST) break;
  }
  Fail("cannot write", target, errno);
}

/// Removes the partial file unless it has become the target.
class PartialFile {
 public:
  explicit PartialFile(const fs::path& target) : target_(target), file_(CreateBeside(target, path_)) {}
  ~PartialFile() {
    file_.reset();
    std::error_code ignored;
    if (!path_.empty()) fs::remove(path_, ignored);
  }
  PartialFile(const PartialFile&) = delete;
  PartialFile& operator=(const PartialFile&) = delete;

  void Write(std::string_view bytes) {
    if (std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size()) Fail("cannot write", target_, errno);
  }
  void TakeItsPlace() {
    if (std::fclose(file_.release()) != 0) Fail("cannot write", target_, errno);
    std::error_code error;
    fs::rename(path_, target_, error);
    if (error) Fail("cannot write", target_, error.value());
    path_.clear();
  }

 private:
  fs::path target_;
  fs::path path_;
  File file_;
};

}  // namespace

std::string ReadWhole(const fs::path& path) {
  const File file = OpenToRead(path);
  if (file == nullptr) Fail("cannot read", path, errno);
  std::string bytes;
  char part[65536];
  while (const std::size_t count = std::fread(part, 1, sizeof(part), file.get()))
    bytes.append(part, count);
  if (std::ferror(file.get()) != 0) Fail("cannot read", path, errno);
  return bytes;
}

void WriteWhole(const fs::path& path, std::string_view bytes) {
  std::error_code error;
  // Behind a link stands the file that is meant; the link stays.
  const fs::path target = fs::weakly_canonical(path, error);
  if (error) Fail("cannot write", path, error.value());
  if (fs::exists(target, error) && !fs::is_regular_file(target, error))
    throw std::runtime_error("cannot write " + path.string() + ": not an ordinary file");
  PartialFile file(target);
  file.Write(bytes);
  file.TakeItsPlace();
}
