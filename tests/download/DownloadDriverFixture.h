#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "download/DownloadDriver.h"
#include "ScriptedTarget.h"
#include "support/CapturedOutput.h"
#include "support/OpenDescriptors.h"
#include "support/PlatformDouble.h"
#include "support/RecordingFrontEnd.h"
#include "support/ScopedWorkingFolder.h"
#include "support/TempFolder.h"

/// One download of the file "part.rbi" to a scripted target, with a journal of all that can be seen of it, in order:
///
///     GetPayloadOffset part.rbi     a call of the target
///     record belmara Loading 0      a record to the front end
///     > Loading\n                   a line on standard output
///
/// Time stands still but for what the script lets go by.
class DownloadDriverFixture : public testing::Test {
 protected:
  static constexpr char kFileName[] = "part.rbi";
  static constexpr std::int64_t kEstimateMicroseconds = 30'000'000;

  DownloadDriverFixture() {
    clock.SetStepTicks(0);
    system.Use(clock.clock());
    system.Use(frontEnd);
    frontEnd.OnRecord([this](const test_support::SentRecord& record) { Note(RecordText(record)); });
    // Whatever the test runs on: what is not flushed stays in the buffer.
    std::fflush(stdout);
    std::setvbuf(stdout, nullptr, _IOFBF, BUFSIZ);
  }

  /// Downloads and returns the journal. `target` stays for inspection.
  const std::vector<std::string>& Download(bool progress, const TargetScript& script,
                                           std::int64_t estimateMicroseconds = kEstimateMicroseconds) {
    PartDescription part{"belmara", "BLMX", 0, 0, 2, 2, kFileName};
    PartLocation location{};
    location.part = &part;
    target = std::make_unique<ScriptedTarget>(script, clock, [this](const std::string& call) {
      Note(call);
      if (call.starts_with("StartDownload")) descriptorsWhileSending = test_support::OpenDescriptors();
    });
    DownloadDriver(progress, location, estimateMicroseconds, *target);
    NoteOutput();
    return journal;
  }

  /// The same for a download that fails; returns the text of its `errorException`.
  std::string FailureOf(const TargetScript& script) {
    try {
      Download(true, script);
    } catch (const errorException& error) {
      NoteOutput();
      return error.what();
    }
    return "no failure";
  }

  void Write(const std::string& content) { folder.Write(kFileName, content); }
  /// A file of zeros that takes no room on the disk.
  void WriteZeros(std::uintmax_t sizeBytes) {
    Write("");
    std::filesystem::resize_file(folder.File(kFileName), sizeBytes);
  }

  test_support::ManualClock clock;
  test_support::RecordingFrontEnd frontEnd;
  test_support::PlatformDouble system;
  platform::ScopedPlatform scope{system};
  test_support::TempFolder folder;
  test_support::ScopedWorkingFolder workingFolder{folder.Path()};

  std::vector<std::string> journal;
  std::unique_ptr<ScriptedTarget> target;
  test_support::CapturedOutput captured;
  std::size_t descriptorsWhileSending = 0;
  /// With this off the journal shows output only once the driver itself has flushed it.
  bool flushForJournal = true;

 private:
  void Note(const std::string& event) {
    NoteOutput();
    journal.push_back(event);
  }

  void NoteOutput() {
    const std::string text = (flushForJournal ? captured.out() : captured.OutUnflushed()).substr(outputLength_);
    if (text.empty()) return;
    outputLength_ += text.size();
    for (std::size_t start = 0, next = 0; start < text.size(); start = next) {
      next = std::min(text.find('\n', start), text.size() - 1) + 1;
      journal.push_back("> " + text.substr(start, next - start));
    }
  }

  static std::string RecordText(const test_support::SentRecord& record) {
    EXPECT_EQ(record.kind, 82u);
    const char* const bytes = reinterpret_cast<const char*>(record.bytes.data());
    std::uint32_t percent = 0;
    for (const std::size_t at : {523u, 522u, 521u, 520u})
      percent = percent << 8 | record.bytes.at(at);
    return std::string("record ") + bytes + " " + (bytes + 260) + " " +
           std::to_string(static_cast<std::int32_t>(percent));
  }

  std::size_t outputLength_ = 0;
};
