#include "support/CapturedOutput.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <iostream>
#include <system_error>

#if !defined(O_BINARY)
#define O_BINARY 0
#endif

namespace test_support {
namespace {

constexpr char kFileName[] = "captured";

void FlushAll() {
  std::fflush(nullptr);
  std::cout.flush();
  std::cerr.flush();
}

void WriteAll(int descriptor, const std::string& text) {
  for (std::size_t written = 0; written < text.size();) {
    const auto count = write(descriptor, text.data() + written, static_cast<unsigned>(text.size() - written));
    if (count <= 0) return;
    written += static_cast<std::size_t>(count);
  }
}

int Checked(int descriptor, const char* what) {
  if (descriptor < 0) throw std::system_error(errno, std::generic_category(), what);
  return descriptor;
}

}  // namespace

CapturedOutput::CapturedOutput() : out_(STDOUT_FILENO), err_(STDERR_FILENO) {}

CapturedOutput::~CapturedOutput() = default;

CapturedOutput::Stream::Stream(int descriptor) : descriptor_(descriptor) {
  FlushAll();
  saved_ = Checked(dup(descriptor), "dup");
  // A file that is not a text to the system: line feeds stay what they are.
  const int file =
      Checked(open(folder_.File(kFileName).c_str(), O_WRONLY | O_CREAT | O_APPEND | O_BINARY, 0600), "open");
  Checked(dup2(file, descriptor), "dup2");
  close(file);
}

CapturedOutput::Stream::~Stream() {
  const std::string text = Text();
  dup2(saved_, descriptor_);
  close(saved_);
  if (::testing::Test::HasFailure()) WriteAll(descriptor_, text);
}

std::string CapturedOutput::Stream::Text() const {
  FlushAll();
  return Written();
}

std::string CapturedOutput::Stream::Written() const {
  const std::vector<std::uint8_t> bytes = folder_.ReadBytes(kFileName);
  return {bytes.begin(), bytes.end()};
}

}  // namespace test_support
