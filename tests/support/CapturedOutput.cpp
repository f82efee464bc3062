#include "support/CapturedOutput.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <iostream>
#include <system_error>

namespace test_support {
namespace {

void FlushAll() {
  std::fflush(nullptr);
  std::cout.flush();
  std::cerr.flush();
}

void WriteAll(int descriptor, const std::string& text) {
  for (std::size_t written = 0; written < text.size();) {
    const ssize_t count = write(descriptor, text.data() + written, text.size() - written);
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
  file_ = Checked(memfd_create("captured", MFD_CLOEXEC), "memfd_create");
  Checked(dup2(file_, descriptor), "dup2");
}

CapturedOutput::Stream::~Stream() {
  const std::string text = Text();
  dup2(saved_, descriptor_);
  close(saved_);
  close(file_);
  if (::testing::Test::HasFailure()) WriteAll(descriptor_, text);
}

std::string CapturedOutput::Stream::Text() const {
  FlushAll();
  std::string text;
  char part[4096];
  while (true) {
    // By position: reading must not move the place where the next write goes.
    const ssize_t count = pread(file_, part, sizeof(part), static_cast<off_t>(text.size()));
    if (count <= 0) return text;
    text.append(part, static_cast<std::size_t>(count));
  }
}

}  // namespace test_support
