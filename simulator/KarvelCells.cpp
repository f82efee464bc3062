#include "simulator/KarvelCells.h"

#include <algorithm>

#include "simulator/SeededBytes.h"

namespace simulator {

KarvelCells::KarvelCells() {
  for (KarvelRow& row : rows)
    row.fill(0xFF);
  usercode.fill(0xFF);
}

std::uint32_t KarvelCells::VersionWord() const {
  if (!done) return kNoVersion;
  std::uint32_t word = 0;
  for (std::size_t i = 0; i < 4; ++i)
    word = word << 8 | rows[0][i];
  return word;
}

KarvelCells MakeShelfKarvel(std::uint32_t versionWord) {
  KarvelCells cells;
  auto from = SeededBytes(1, "shelf karvel", cells.rows.size() * sizeof(KarvelRow));
  for (std::size_t i = 0; i < 4; ++i)
    from[i] = static_cast<std::uint8_t>(versionWord >> (24 - i * 8));
  for (std::size_t row = 0; row < cells.rows.size(); ++row)
    std::copy_n(&from[row * sizeof(KarvelRow)], sizeof(KarvelRow), cells.rows[row].begin());
  cells.usercode = kShelfUsercode;
  cells.done = true;
  return cells;
}

}  // namespace simulator
