#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "download/DownloadHelper.h"
#include "errorException.h"
#include "support/ManualClock.h"

/// What a download does to its target, and what the target makes of it.
struct TargetScript {
  std::uint32_t chunkSizeBytes = 4;
  /// Without one the base class answers.
  std::optional<std::uint32_t> payloadOffset = {};
  /// Microseconds that go by in each operation. Chunks and polls that are not listed take none.
  std::int64_t payloadOffsetTime = 0;
  std::vector<std::int64_t> chunkTimes = {};
  std::int64_t startProgramTime = 0;
  /// The last of these polls finishes the programming; without any, `StartProgram` does.
  std::vector<std::int64_t> pollTimes = {};
  /// Name of the operation that throws, at its `failingCall`th call.
  std::string failing = {};
  std::size_t failingCall = 1;
};

/// A download target that does as its script says and tells every call to `onCall`, before the call has an effect.
class ScriptedTarget final : public DownloadHelper {
 public:
  static constexpr char kFailure[] = "The target failed";

  ScriptedTarget(TargetScript script, test_support::ManualClock& clock, std::function<void(std::string)> onCall)
      : DownloadHelper(script.chunkSizeBytes), script_(std::move(script)), clock_(clock), onCall_(std::move(onCall)) {}

  /// All that was sent, in one piece.
  const std::string& Received() const { return received_; }
  /// The lengths in which it was sent.
  const std::vector<std::uint32_t>& ChunkLengths() const { return chunkLengths_; }
  std::size_t Polls() const { return polls_; }

  std::uint32_t GetPayloadOffset(std::FILE* file, const char* fileName) override {
    Enter("GetPayloadOffset", std::string("GetPayloadOffset ") + fileName, 1, script_.payloadOffsetTime);
    return script_.payloadOffset ? *script_.payloadOffset : DownloadHelper::GetPayloadOffset(file, fileName);
  }
  void StartDownload(std::uint32_t sizeBytes) override {
    Enter("StartDownload", "StartDownload " + std::to_string(sizeBytes), 1, 0);
  }
  void DownloadChunk(const std::uint8_t* data, std::uint32_t lengthBytes) override {
    const std::string text(data, data + lengthBytes);
    const std::string shown = lengthBytes <= 16 ? text : std::to_string(lengthBytes) + " bytes";
    const std::size_t index = chunkLengths_.size();
    chunkLengths_.push_back(lengthBytes);
    received_ += text;
    Enter("DownloadChunk", "DownloadChunk " + shown, index + 1,
          index < script_.chunkTimes.size() ? script_.chunkTimes[index] : 0);
  }
  bool StartProgram() override {
    Enter("StartProgram", "StartProgram", 1, script_.startProgramTime);
    return script_.pollTimes.empty();
  }
  bool PollProgram() override {
    const std::size_t index = polls_++;
    Enter("PollProgram", "PollProgram", index + 1, script_.pollTimes.at(index));
    return polls_ == script_.pollTimes.size();
  }

 private:
  void Enter(const std::string& operation, const std::string& shown, std::size_t call, std::int64_t microseconds) {
    onCall_(shown);
    clock_.AdvanceTicks(microseconds * (test_support::ManualClock::kTicksPerSecond / 1'000'000));
    if (operation == script_.failing && call == script_.failingCall) throw errorException(kFailure, "target.cpp", 12);
  }

  const TargetScript script_;
  test_support::ManualClock& clock_;
  const std::function<void(std::string)> onCall_;
  std::string received_;
  std::vector<std::uint32_t> chunkLengths_;
  std::size_t polls_ = 0;
};
