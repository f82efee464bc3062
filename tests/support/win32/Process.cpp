#include "support/Process.h"

#include <windows.h>

#include <cctype>
#include <map>
#include <system_error>

#include "support/TempFolder.h"

namespace test_support {
namespace {

[[noreturn]] void Fail(const std::string& what) {
  throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

class OwnedHandle {
 public:
  explicit OwnedHandle(HANDLE handle) : handle_(handle) {}
  ~OwnedHandle() { CloseHandle(handle_); }
  OwnedHandle(const OwnedHandle&) = delete;
  OwnedHandle& operator=(const OwnedHandle&) = delete;

  HANDLE get() const { return handle_; }

 private:
  HANDLE handle_;
};

/// Opens a file that the program inherits. It writes to files rather than pipes, so nobody waits for anybody.
HANDLE OpenStream(const std::string& path, DWORD access, DWORD creation) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  const HANDLE file = CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, creation,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) Fail(path);
  return file;
}

/// One word of a command line, so that the program's runtime reads it as it was: backslashes count only before a quote.
std::string Quoted(const std::string& word) {
  if (!word.empty() && word.find_first_of(" \t\"") == std::string::npos) return word;
  std::string text = "\"";
  std::size_t backslashes = 0;
  for (const char character : word) {
    if (character == '"') text.append(backslashes + 1, '\\');
    backslashes = character == '\\' ? backslashes + 1 : 0;
    text += character;
  }
  return text.append(backslashes, '\\') + "\"";
}

/// `first`, and of the test's own environment what `first` does not name, as one block. Names have no case.
std::string EnvironmentBlock(const std::vector<std::string>& first) {
  std::map<std::string, std::string> entries;
  const auto add = [&entries](const std::string& entry) {
    std::string name = entry.substr(0, entry.find('=', 1));
    for (char& letter : name)
      letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    entries.emplace(name, entry);
  };
  for (const std::string& entry : first)
    add(entry);
  char* const own = GetEnvironmentStringsA();
  for (const char* entry = own; *entry != '\0'; entry += std::string(entry).size() + 1)
    add(entry);
  FreeEnvironmentStringsA(own);
  std::string block;
  for (const auto& [name, entry] : entries)
    block += entry + '\0';
  return block + '\0';
}

/// What the program wrote, with the line ends of the tests.
std::string TextOf(const TempFolder& folder, const char* name) {
  std::string text = folder.ReadText(name);
  for (std::size_t at = text.find("\r\n"); at != std::string::npos; at = text.find("\r\n", at))
    text.erase(at, 1);
  return text;
}

}  // namespace

ProcessResult RunProcess(const std::string& program, const std::vector<std::string>& arguments,
                         const ProcessOptions& options) {
  const TempFolder streams;
  PROCESS_INFORMATION process{};
  {
    const OwnedHandle input(OpenStream(streams.Write("in", options.standardInput), GENERIC_READ, OPEN_EXISTING));
    const OwnedHandle output(OpenStream(streams.File("out"), GENERIC_WRITE, CREATE_NEW));
    const OwnedHandle error(OpenStream(streams.File("err"), GENERIC_WRITE, CREATE_NEW));
    std::string commandLine = Quoted(program);
    for (const std::string& argument : arguments)
      commandLine += " " + Quoted(argument);
    std::string environment = EnvironmentBlock(options.environment);
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input.get();
    startup.hStdOutput = output.get();
    startup.hStdError = error.get();
    const char* const folder = options.workingDirectory.empty() ? nullptr : options.workingDirectory.c_str();
    const auto start = [&] {
      return CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, environment.data(), folder,
                            &startup, &process) != FALSE;
    };
    // Wine refuses a start out of thousands with an error of its own, and takes the same one the next time.
    bool started = start();
    for (int again = 0; !started && GetLastError() == ERROR_INTERNAL_ERROR && again < 5; ++again)
      started = start();
    if (!started) Fail(program);
  }
  const OwnedHandle thread(process.hThread);
  const OwnedHandle running(process.hProcess);
  WaitForSingleObject(running.get(), INFINITE);
  DWORD exitCode = 0;
  if (GetExitCodeProcess(running.get(), &exitCode) == FALSE) Fail(program);
  return {static_cast<int>(exitCode & 0xFF), TextOf(streams, "out"), TextOf(streams, "err")};
}

}  // namespace test_support
