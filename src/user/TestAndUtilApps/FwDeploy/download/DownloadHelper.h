#pragma once

#include <cstdint>
#include <cstdio>

/// The one shape of a download: what differs between kinds of target when a file is sent to one. `DownloadDriver` calls
/// the operations in the order in which they stand here, for one file only. All of them fail by `errorException`, with
/// the target left as the failed step left it.
class DownloadHelper {
 public:
  explicit DownloadHelper(std::uint32_t chunkSizeBytes) : chunkSize(chunkSizeBytes) {}
  DownloadHelper(const DownloadHelper&) = delete;
  DownloadHelper& operator=(const DownloadHelper&) = delete;

  /// The offset in the file at which sending starts; 0, the whole file, unless told otherwise. The file is open for
  /// reading and stands anywhere; it may be moved.
  virtual std::uint32_t GetPayloadOffset(std::FILE* file, const char* fileName);
  /// Announces the number of bytes that will be sent, which may be 0.
  virtual void StartDownload(std::uint32_t sizeBytes) = 0;
  /// Takes the next bytes, `chunkSize` of them or, the last time, fewer. Never called with none.
  virtual void DownloadChunk(const std::uint8_t* data, std::uint32_t lengthBytes) = 0;
  /// Makes the target burn what it got. Returns true if that is already done.
  virtual bool StartProgram() = 0;
  /// Returns true once the burning is done; paces itself.
  virtual bool PollProgram() = 0;
  virtual ~DownloadHelper() = default;

  /// The most bytes that one `DownloadChunk` takes; not 0.
  const std::uint32_t chunkSize;
};
