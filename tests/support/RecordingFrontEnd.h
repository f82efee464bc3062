#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/FrontEnd.h"

/// A front end that keeps every search for it and every record that it is sent.
///
///     test_support::RecordingFrontEnd frontEnd;
///     system.Use(frontEnd);
///     NotifyRestart(1, 0);
///     EXPECT_EQ(frontEnd.Sent().at(0).kind, 102u);
namespace test_support {

struct WindowSearch {
  std::optional<std::string> className;
  std::optional<std::string> title;
};

struct SentRecord {
  platform::WindowHandle window;
  std::uint32_t message;
  std::uintptr_t wParam;
  std::uintptr_t kind;
  std::vector<std::uint8_t> bytes;
};

class RecordingFrontEnd final : public platform::FrontEnd {
 public:
  /// What a search finds from now on; 0 is no window. There is one at the start.
  void SetWindow(platform::WindowHandle window) { window_ = window; }
  /// What a send answers.
  void SetAnswer(std::intptr_t answer) { answer_ = answer; }
  /// Is called with each record before the send returns.
  void OnRecord(std::function<void(const SentRecord&)> action) { onRecord_ = std::move(action); }

  const std::vector<WindowSearch>& Searches() const { return searches_; }
  const std::vector<SentRecord>& Sent() const { return sent_; }

  platform::WindowHandle FindWindowA(const char* className, const char* title) override {
    searches_.push_back({Copy(className), Copy(title)});
    return window_;
  }

  std::intptr_t SendMessageA(platform::WindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                             const platform::CopyData& lParam) override {
    const auto* bytes = static_cast<const std::uint8_t*>(lParam.bytes);
    sent_.push_back({window, message, wParam, lParam.kind, {bytes, bytes + lParam.sizeBytes}});
    if (onRecord_) onRecord_(sent_.back());
    return answer_;
  }

 private:
  static std::optional<std::string> Copy(const char* text) {
    if (text == nullptr) return std::nullopt;
    return text;
  }

  platform::WindowHandle window_ = 0x5678;
  std::intptr_t answer_ = 1;
  std::function<void(const SentRecord&)> onRecord_;
  std::vector<WindowSearch> searches_;
  std::vector<SentRecord> sent_;
};

}  // namespace test_support
