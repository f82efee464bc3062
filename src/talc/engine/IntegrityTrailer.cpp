#include "engine/IntegrityTrailer.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <istream>
#include <optional>
#include <string>

#include "dictionary/Log.h"
#include "engine/Crc32.h"
#include "engine/Library.h"
#include "talcpath.h"

namespace TalcPathPrivate {
namespace {

constexpr std::int64_t kBlockSize = 512;
using Block = std::array<char, kBlockSize>;

/// Reads up to a whole block. What a shorter one does not fill stays as it was.
std::int64_t ReadBlock(std::istream& stream, Block& block) {
  stream.read(block.data(), kBlockSize);
  return stream.gcount();
}

void Add(Crc32& crc, const Block& block, std::int64_t count) {
  crc.Add({block.data(), static_cast<std::size_t>(count)});
}

std::uint32_t CrcToEnd(std::istream& stream) {
  Crc32 crc;
  crc.Start();
  Block block;
  while (const std::int64_t count = ReadBlock(stream, block))
    Add(crc, block, count);
  crc.Finish();
  return crc.Running();
}

/// The position of the second "$" from the end.
std::optional<std::int64_t> FindOpeningMark(std::istream& stream) {
  int marks = 0;
  for (std::int64_t behind = 1; stream.seekg(-behind, std::ios::end); ++behind)
    if (stream.peek() == '$' && ++marks == 2) return stream.tellg();
  return std::nullopt;
}

/// Adds what the check covers, from the start of the stream. The limit is not lessened by what was taken already: each
/// block from the one that exceeds it on counts as limit bytes, those that its read did not fill included.
void AddUpTo(std::int64_t limit, std::istream& stream, Crc32& crc) {
  Block block{};
  std::int64_t total = 0;
  while (std::int64_t count = ReadBlock(stream, block)) {
    total += count;
    if (total > limit) count = std::min(limit, kBlockSize);
    if (count < 1) return;
    Add(crc, block, count);
  }
}

bool GenerateCRCs(const char* directory) {
  GenCRCFileProcessor generator;
  LogAlways("\n WARNING - GENERATING NEW CRCs FOR TCD Files");
  bool isGood = true;
  if (!ProcessDirectory("./", generator)) {
    isGood = false;
    LogAlways("\n\nTalcPath failed to generate CRCs for TCD files in current directory");
  }
  if (directory != nullptr && !ProcessDirectory(directory, generator)) {
    isGood = false;
    LogAlways("\n\nTalcPath failed to generate CRCs for TCD files in directory : ", directory);
  }
  return isGood;
}

}  // namespace

bool GenCRCFileProcessor::Process(std::istream&, std::string_view name) {
  LogVerbose("\nGenerating CRC on Talc Command Definition File : ", name, "\n");
  std::fstream file{std::string(name)};
  file.seekp(0, std::ios::end) << "\n#";
  file.seekg(0);
  file.flush();
  if (!file) return false;  // not opened, or not written: the clearing below would forget it
  const std::uint32_t crc = CrcToEnd(file);
  file.clear();  // of the end that was met
  file.seekp(0, std::ios::end).flush() << "$ " << std::to_string(crc) << " $ ";
  file.close();
  return file.good();
}

bool CRCCheckProcessor::Process(std::istream& stream, std::string_view name) {
  LogVerbose("\nChecking CRC on Talc Command Definition File : ", name);
  const auto openingMark = FindOpeningMark(stream);
  if (!openingMark) return false;
  std::uint32_t expected = 0;
  stream.seekg(*openingMark + 1) >> expected;
  stream.clear();  // of a number that could not be read
  stream.seekg(0);

  Crc32 crc;
  crc.SetExpected(expected);
  crc.Start();
  // One less than the mark's position: the "#" before the mark is not covered. It is meant, as is AddUpTo.
  AddUpTo(*openingMark - 1, stream, crc);
  crc.Finish();
  if (crc.IsEqual())
    LogVerbose("\nValid CRC on Talc Command Definition File : ", name, "\n");
  else
    LogAlways("\nBAD CRC on Talc Command Definition File : ", name, "\n");
  return crc.IsEqual();
}

}  // namespace TalcPathPrivate

namespace TalcPath {

using TalcPathPrivate::LogAlways;
using TalcPathPrivate::LogVerbose;

bool TalcPathGenerateCRCs(const char* directory) {
  TalcPathPrivate::logState.verbose = true;
  if (!TalcPathPrivate::RunCatchingAll([&] { return TalcPathPrivate::GenerateCRCs(directory); })) {
    LogAlways("\n>>> FAILED to generate CRCs <<<");
    return false;
  }
  LogVerbose("\n<->Finished generating CRCs - no errors.");
  return true;
}

}  // namespace TalcPath
