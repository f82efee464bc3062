#pragma once

#include <span>
#include <string_view>

namespace platform {

/// One text that is embedded in the program.
struct EmbeddedBlock {
  std::string_view type;
  std::string_view name;
  std::string_view bytes;
};

/// The texts of data/ in the order of their names. On systems whose programs carry such blocks as resources, the system
/// is asked instead.
std::span<const EmbeddedBlock> EmbeddedBlocks();

}  // namespace platform
