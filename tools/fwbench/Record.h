#pragma once

#include <fstream>
#include <ostream>
#include <stdexcept>
#include <string>

/// A file that a run is written down in, if it is asked for. Throws std::runtime_error, with a text for the user, when
/// it cannot be written.
///
///     Record trace(options.trace, "the trace");
///     if (trace.IsWanted()) trace.stream() << ...;
///     trace.Close();
class Record {
 public:
  /// An empty path asks for none. `what` names the content.
  Record(const std::string& path, const char* what) : path_(path), what_(what) {
    if (path.empty()) return;
    file_.open(path, std::ios::binary | std::ios::trunc);
    if (!file_) throw std::runtime_error(path + ": cannot be written");
  }
  bool IsWanted() const { return file_.is_open(); }
  std::ostream& stream() { return file_; }
  /// Throws when not all of it is there.
  void Close() {
    if (!IsWanted()) return;
    file_.close();
    if (!file_) throw std::runtime_error(path_ + ": " + what_ + " could not be written to its end");
  }

 private:
  const std::string path_;
  const char* const what_;
  std::ofstream file_;
};
