#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "simulator/KarvelCells.h"

namespace simulator {

/// Content for all rows of a Karvel that runs with this version word: some rows look random, the others have what
/// compresses well. No row is erased. The same seed makes the same rows.
std::vector<KarvelRow> MakeKarvelRows(std::uint32_t versionWord, std::uint64_t seed);

/// The payload of a container whose VME program puts `rows`, 1 to 64 from row 0 on, and a USERCODE into a Karvel:
///
///     IDCODE must be the Karvel's, and USERCODE must not be this one yet
///     erase
///     program each row; read each row back
///     program DONE; the part says that it is
///     program USERCODE and read it back
///
/// A player that finds another part or other content ends with -1, and with 1 where the USERCODE is there already. Each
/// wait is long enough on a clock that counts in milliseconds.
///
///     const auto rows = MakeKarvelRows(0x00170000, seed);
///     MakeRbi("KRVL", 0x0017, MakeKarvelProgram(std::span(rows).first(2), {'K', 'V', 0x00, 0x17}));
std::vector<std::uint8_t> MakeKarvelProgram(std::span<const KarvelRow> rows, const KarvelUsercode& usercode);

}  // namespace simulator
