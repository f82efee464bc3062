#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// Named blocks of text that are embedded in the program, grouped by type.
class TextBlocks {
 public:
  virtual ~TextBlocks() = default;

  /// The names of all blocks of a type, in their alphabetical order; empty when there are none.
  virtual std::vector<std::string> List(std::string_view type) = 0;
  /// The bytes of one block, which live as long as the program, or nothing when there is no such block.
  virtual std::optional<std::string_view> Bytes(std::string_view type, std::string_view name) = 0;
};

}  // namespace platform
