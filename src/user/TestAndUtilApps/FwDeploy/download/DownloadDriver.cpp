#include "download/DownloadDriver.h"

#include <algorithm>
#include <cassert>
#include <cinttypes>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <memory>
#include <new>
#include <system_error>

#include "board/MicroClock.h"
#include "errorException.h"
#include "parts/Notification.h"

namespace {

constexpr std::int64_t kReportIntervalMicroseconds = 1'500'000;

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// A file's bytes from the helper's offset on.
struct Payload {
  std::unique_ptr<std::uint8_t[]> bytes;
  std::int32_t sizeBytes;
};

Payload ReadPayload(const char* fileName, DownloadHelper& helper) {
  File file(std::fopen(fileName, "rb"));
  // Some systems open a directory as well, and tell a size of their own invention.
  std::error_code unknown;
  if (!file || std::filesystem::is_directory(fileName, unknown))
    throw errorException("Could not open file to download");
  const std::uint32_t offset = helper.GetPayloadOffset(file.get(), fileName);

  constexpr char kUnreadable[] = "Could not read entire program memory from disk";
  if (std::fseek(file.get(), 0, SEEK_END) != 0) throw errorException(kUnreadable);
  const std::int64_t end = std::ftell(file.get());
  // A header that says it is longer than its file leaves an empty payload.
  const std::int64_t start = std::min<std::int64_t>(offset, end);
  if (end < 0 || std::fseek(file.get(), static_cast<long>(start), SEEK_SET) != 0) throw errorException(kUnreadable);
  const std::int64_t size = end - start;
  if (size > std::numeric_limits<std::int32_t>::max()) throw errorException("Could not allocate program memory");

  Payload payload{nullptr, static_cast<std::int32_t>(size)};
  payload.bytes.reset(new (std::nothrow) std::uint8_t[static_cast<std::size_t>(size)]);
  if (!payload.bytes) throw errorException("Could not allocate program memory");
  if (std::fread(payload.bytes.get(), 1, static_cast<std::size_t>(size), file.get()) != static_cast<std::size_t>(size))
    throw errorException(kUnreadable);
  return payload;
}

void PrintAndFlush(const char* line) {
  std::fputs(line, stdout);
  std::fflush(stdout);
}

void PrintPercent(std::int32_t percent) {
  std::printf("%" PRId32 "%%\n", percent);
  std::fflush(stdout);
}

/// The share of the payload that is sent. A product of 32 bits that wraps, as it always was: beyond some 20 MB the
/// percentages are nonsense, and the front ends know.
std::int32_t LoadPercent(std::int32_t sent, std::int32_t total) {
  const auto product = static_cast<std::int32_t>(static_cast<std::uint32_t>(sent) * 100u);
  return product / total;
}

}  // namespace

std::uint32_t DownloadHelper::GetPayloadOffset(std::FILE*, const char*) {
  return 0;
}

void DownloadDriver(bool progress, const PartLocation& location, std::int64_t estimateMicroseconds,
                    DownloadHelper& helper) {
  assert(estimateMicroseconds != 0 && helper.chunkSize != 0);
  const char* name = location.part->name;
  std::int64_t lastReport = MicroClock();
  const Payload payload = ReadPayload(location.part->fileName, helper);
  const std::int32_t total = payload.sizeBytes;

  auto chunk = static_cast<std::int64_t>(helper.chunkSize);
  if (progress) {
    NotifyProgress(name, "Loading", 0);
    PrintAndFlush("Loading\n");
  }
  helper.StartDownload(static_cast<std::uint32_t>(total));
  std::int32_t sent = 0;
  while (sent < total) {
    chunk = std::min<std::int64_t>(chunk, total - sent);
    helper.DownloadChunk(payload.bytes.get() + sent, static_cast<std::uint32_t>(chunk));
    sent += static_cast<std::int32_t>(chunk);
    if (!progress) continue;
    const std::int64_t now = MicroClock();
    if (now - lastReport > kReportIntervalMicroseconds) {
      const std::int32_t percent = LoadPercent(sent, total);
      NotifyProgress(name, "Loading", percent);
      PrintPercent(percent);
      lastReport = now;
    }
  }
  // Never true after the loop, and meant to stay: a load does not report its 100 percent, the next line says it.
  if (progress && sent < total) {
    NotifyProgress(name, "Loading", 100);
    PrintPercent(100);
  }

  // Here the line comes before the record, unlike above. Front ends have seen this order since the first release.
  if (progress) {
    std::fputs("Programming\n", stdout);
    NotifyProgress(name, "Programming", 0);
    std::fflush(stdout);
  }
  bool done = helper.StartProgram();
  // The last report of the load, not the present: the load's tail counts as programming time, on purpose.
  const std::int64_t programStart = lastReport;
  std::int64_t now = lastReport;
  while (!done) {
    if (progress) {
      now = MicroClock();
      if (now - lastReport > kReportIntervalMicroseconds) {
        const auto percent = static_cast<std::int32_t>((now - programStart) * 100 / estimateMicroseconds);
        NotifyProgress(name, "Programming", percent);
        PrintPercent(percent);
        lastReport = now;
      }
    }
    done = helper.PollProgram();
  }
  if (!progress) return;
  // A part that took longer than its estimate has already shown more than 100.
  if (now - programStart < estimateMicroseconds) {
    NotifyProgress(name, "Programming", 100);
    PrintPercent(100);
  }
  NotifyProgress(name, "Done", 100);
  PrintAndFlush("Done\n");
}
