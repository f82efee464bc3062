#pragma once

#include <ostream>
#include <streambuf>
#include <string>

/// Points the library's log to standard error for as long as the object lives.
///
/// The library begins a line with its line feed and leaves the last one open. This closes it at its end, so that what
/// the tool itself says behind it has a line of its own.
class LogLines : private std::streambuf {
 public:
  enum class Detail { kFaults, kVerbose, kTrace };

  explicit LogLines(Detail detail);
  ~LogLines() override;
  LogLines(const LogLines&) = delete;
  LogLines& operator=(const LogLines&) = delete;

 private:
  int_type overflow(int_type character) override;
  std::streamsize xsputn(const char* text, std::streamsize length) override;

  std::ostream stream_{this};
  bool isLineOpen_ = false;
};
