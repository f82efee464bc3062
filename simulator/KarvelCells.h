#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace simulator {

using KarvelRow = std::array<std::uint8_t, 16>;
using KarvelUsercode = std::array<std::uint8_t, 4>;

/// What a Karvel CPLD keeps without power, erased at first: all ones, and not done. Bytes stand as in a VME file, the
/// bit that is shifted first on top.
struct KarvelCells {
  static constexpr std::size_t kRowCount = 64;
  /// What the card reads of a part that does not run.
  static constexpr std::uint32_t kNoVersion = 0xFFFFFFFF;

  KarvelCells();

  std::array<KarvelRow, kRowCount> rows;
  KarvelUsercode usercode;
  /// The last thing to be programmed; without it the part does not run.
  bool done = false;

  /// The version word that the card reads after the next power-up: the first four bytes of row 0, most significant
  /// first, or `kNoVersion`.
  std::uint32_t VersionWord() const;

  friend bool operator==(const KarvelCells&, const KarvelCells&) = default;
};

/// The USERCODE of a part as it comes from the shelf: no file's.
inline constexpr KarvelUsercode kShelfUsercode = {'B', 'N', 'C', 'H'};

/// A part that runs, with this version word; all else in its rows looks random and is always the same.
KarvelCells MakeShelfKarvel(std::uint32_t versionWord);

}  // namespace simulator
