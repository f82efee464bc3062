#pragma once

#include <string>

#include "support/TempFolder.h"

/// Takes what the process writes to standard output and standard error, as long as it lives.
///
///     test_support::CapturedOutput captured;
///     OpenDeviceViaGuid(GUID_BelmaraDevice, 0);
///     EXPECT_EQ(captured.out(), "");
///
/// It stands in for the file descriptors, so it sees what any library writes. A test that has failed gets its output
/// back at the end, since the reason of the failure may be part of it. One at a time.
namespace test_support {

class CapturedOutput {
 public:
  /// Throws std::system_error when the system has no descriptors left, and what `TempFolder` throws.
  CapturedOutput();
  ~CapturedOutput();
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;

  /// What was written to standard output since construction. Flushes first.
  std::string out() const { return out_.Text(); }
  /// The same without the flush: what the system has got so far.
  std::string OutUnflushed() const { return out_.Written(); }
  /// What was written to standard error since construction. Flushes first.
  std::string err() const { return err_.Text(); }

 private:
  class Stream {
   public:
    explicit Stream(int descriptor);
    ~Stream();
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
    std::string Text() const;
    std::string Written() const;

   private:
    const TempFolder folder_;
    const int descriptor_;
    int saved_;
  };

  Stream out_;
  Stream err_;
};

}  // namespace test_support
