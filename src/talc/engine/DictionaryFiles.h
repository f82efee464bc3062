#pragma once

#include <iosfwd>
#include <string_view>

namespace TalcPathPrivate {

/// What is done with each dictionary text that is found. The operations stand in the order of their slots.
class TCDFileProcessor {
 public:
  virtual ~TCDFileProcessor() = default;
  /// For the log.
  virtual const char* TaskName() const = 0;
  /// False stops the pass.
  virtual bool Process(std::istream& stream, std::string_view name) = 0;
};

/// Reads the text into the tables of defined commands.
class ParseFileProcessor final : public TCDFileProcessor {
 public:
  const char* TaskName() const override { return "Parsing Talc Command Definition Files"; }
  bool Process(std::istream& stream, std::string_view name) override;
};

/// Hands each embedded block of a type to the processor, as `ReadTextBlocks` does.
bool ProcessTextBlocks(std::string_view type, TCDFileProcessor& processor, bool& isFound);

/// Hands each file "*.tcd" of a directory to the processor, in the order of the listing. False for a null path, and
/// when the processor refused a file. A directory that cannot be listed has no files.
bool ProcessDirectory(const char* path, TCDFileProcessor& processor);

}  // namespace TalcPathPrivate
