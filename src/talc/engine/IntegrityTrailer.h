#pragma once

#include "engine/DictionaryFiles.h"

/// The trailer that a dictionary file can end in: a CRC-32 of what stands before it, behind a comment mark.
///
///     \n#$ 1234567890 $
///
/// It ends in a blank, without a line end and without a ";", so that the reader of dictionaries never comes to it.
/// docs/talc-dictionary.md shows one byte for byte.
///
/// What the check covers is not what the generator covers, so that a trailer of the generator does not check as valid,
/// save by chance. Starting the library checks nothing.
namespace TalcPathPrivate {

/// Writes a trailer behind all that a file holds, older trailers included. It covers all of that and its own "\n#".
class GenCRCFileProcessor final : public TCDFileProcessor {
 public:
  const char* TaskName() const override { return "Generating CRCs for Talc Command Definition Files"; }
  /// Works on the file of that name, whatever the stream is. False when the file cannot be opened for reading and
  /// writing, which leaves it as it was, and when the trailer could not be written, which can leave a part of it.
  bool Process(std::istream& stream, std::string_view name) override;
};

/// Compares a file's bytes with the number between its last two "$". Of a file of at most 512 bytes those up to, and
/// without, the one before the first of these marks count. Of a longer one whole blocks of 512 bytes count, also behind
/// the marks, the last ones as far as the buffer holds them.
class CRCCheckProcessor final : public TCDFileProcessor {
 public:
  const char* TaskName() const override { return "Checking CRCs for Talc Command Definition Files"; }
  /// The name is for the log alone. False, without a line in the log, when there are no two marks or the stream cannot
  /// be read; false with one when the CRC is another. A number that cannot be read counts as 0, one beyond 32 bits as
  /// 4294967295.
  bool Process(std::istream& stream, std::string_view name) override;
};

}  // namespace TalcPathPrivate
