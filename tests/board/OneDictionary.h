#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Platform.h"

/// One embedded dictionary, whose text a test sets, and capabilities that say nothing.
class OneDictionary final : public platform::TextBlocks {
 public:
  explicit OneDictionary(std::string dictionary) : text(std::move(dictionary)) {}

  std::vector<std::string> List(std::string_view) override { return {"text"}; }
  std::optional<std::string_view> Bytes(std::string_view type, std::string_view) override {
    return type == "RT_TCD_FILE" ? std::string_view(text) : "# none ;";
  }

  std::string text;
};
