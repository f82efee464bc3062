#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Platform.h"

/// One embedded dictionary, whose text a test sets.
class OneDictionary final : public platform::TextBlocks {
 public:
  explicit OneDictionary(std::string dictionary) : text(std::move(dictionary)) {}

  std::vector<std::string> List(std::string_view) override { return {"dictionary"}; }
  std::optional<std::string_view> Bytes(std::string_view, std::string_view) override { return text; }

  std::string text;
};
