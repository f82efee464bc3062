#include "support/Process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>

extern char** environ;

namespace test_support {
namespace {

void Check(int error, const char* what) {
  if (error != 0) throw std::system_error(error, std::generic_category(), what);
}

/// A file without a name. The program writes to files rather than pipes, so nobody waits for anybody.
class MemoryFile {
 public:
  explicit MemoryFile(const std::string& content = {}) : descriptor_(memfd_create("stream", MFD_CLOEXEC)) {
    if (descriptor_ < 0) Check(errno, "memfd_create");
    for (std::size_t written = 0; written < content.size();) {
      const ssize_t count = write(descriptor_, content.data() + written, content.size() - written);
      if (count < 0) Check(errno, "write");
      written += static_cast<std::size_t>(count);
    }
    lseek(descriptor_, 0, SEEK_SET);
  }
  ~MemoryFile() { close(descriptor_); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  int Descriptor() const { return descriptor_; }

  std::string Content() const {
    std::string content;
    char part[4096];
    while (true) {
      const ssize_t count = pread(descriptor_, part, sizeof(part), static_cast<off_t>(content.size()));
      if (count < 0) Check(errno, "pread");
      if (count == 0) return content;
      content.append(part, static_cast<std::size_t>(count));
    }
  }

 private:
  int descriptor_;
};

class FileActions {
 public:
  FileActions() { Check(posix_spawn_file_actions_init(&actions_), "posix_spawn_file_actions_init"); }
  ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;

  void Duplicate(int from, int to) {
    Check(posix_spawn_file_actions_adddup2(&actions_, from, to), "posix_spawn_file_actions_adddup2");
  }
  void ChangeFolder(const std::string& folder) {
    Check(posix_spawn_file_actions_addchdir_np(&actions_, folder.c_str()), "posix_spawn_file_actions_addchdir_np");
  }
  const posix_spawn_file_actions_t* Get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_;
};

/// `first`, and of the test's own environment what `first` does not name.
std::vector<std::string> MergedEnvironment(const std::vector<std::string>& first) {
  std::vector<std::string> merged = first;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string text = *entry;
    const std::string assignment = text.substr(0, text.find('=')) + "=";
    bool isNamed = false;
    for (const std::string& own : first)
      isNamed = isNamed || own.starts_with(assignment);
    if (!isNamed) merged.push_back(text);
  }
  return merged;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts)
    pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

ProcessResult RunProcess(const std::string& program, const std::vector<std::string>& arguments,
                         const ProcessOptions& options) {
  const MemoryFile input(options.standardInput);
  const MemoryFile output;
  const MemoryFile error;
  FileActions actions;
  actions.Duplicate(input.Descriptor(), STDIN_FILENO);
  actions.Duplicate(output.Descriptor(), STDOUT_FILENO);
  actions.Duplicate(error.Descriptor(), STDERR_FILENO);
  if (!options.workingDirectory.empty()) actions.ChangeFolder(options.workingDirectory);

  std::vector<std::string> words = {program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<std::string> environment = MergedEnvironment(options.environment);
  pid_t child = 0;
  Check(posix_spawnp(&child, program.c_str(), actions.Get(), nullptr, Pointers(words).data(),
                     Pointers(environment).data()),
        program.c_str());

  int status = 0;
  while (waitpid(child, &status, 0) < 0)
    if (errno != EINTR) Check(errno, "waitpid");
  const int exitCode = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  return {exitCode, output.Content(), error.Content()};
}

}  // namespace test_support
