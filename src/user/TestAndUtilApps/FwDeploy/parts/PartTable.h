#pragma once

#include <array>
#include <cstdint>

/// One kind of part that can be installed. The texts live as long as the program.
struct PartDescription {
  const char* name;  ///< the row's name, also the command line's word for it
  const char* id;    ///< the part id that its file bears, four characters
  std::int32_t minMajor;
  std::int32_t minMinor;
  std::int32_t maxMajor;
  std::int32_t maxMinor;
  const char* fileName;   ///< relative to the working directory; an option can put another in its place
  std::uint8_t show = 0;  ///< takes part in the version table
  std::uint8_t load = 0;  ///< is selected for installing
};

/// A part that was found on the hardware in this run.
struct PartLocation {
  PartDescription* part;
  std::int32_t major;  ///< board function revision found
  std::int32_t minor;
  std::uint32_t current;   ///< version now on the part
  char suffix[32];         ///< decoration behind `current`, with its dash; empty if none
  std::uint32_t expected;  ///< version that this installer ships; 0: no expectation
};

/// A function revision as one number, the way in which revisions are compared. (So 1.1000 is 2.0.)
constexpr std::int64_t RevisionNumber(std::int32_t major, std::int32_t minor) {
  return std::int64_t{major} * 1000 + minor;
}

/// Whether a board function revision is one that the part is made for, both ends included.
constexpr bool IsRevisionInRange(const PartDescription& part, std::int32_t major, std::int32_t minor) {
  const std::int64_t revision = RevisionNumber(major, minor);
  return RevisionNumber(part.minMajor, part.minMinor) <= revision &&
         revision <= RevisionNumber(part.maxMajor, part.maxMinor);
}

/// A row of the part table, as it stands before any option.
struct PartRow {
  const char* name;
  const char* id;
  std::int32_t minMajor, minMinor;
  std::int32_t maxMajor, maxMinor;
  const char* fileName;
};

/// Everything that can be installed, in the order in which options, usage and version table go through it. Rows that
/// share an id are separate on purpose: a card or module can be there twice.
extern const std::array<PartRow, 28> kPartRows;
