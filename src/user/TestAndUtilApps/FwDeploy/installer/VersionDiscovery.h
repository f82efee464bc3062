#pragma once

#include <cstdint>

#include "FwDeploy.h"

// Asking one part what it is and what it runs. Each query adds at most one location to the installer, and says on
// standard error when the part's board has a function revision that no row of the part table covers. An undecodable
// board is an `errorException`.

/// A host card's flash. Adds nothing, silently, when the card is absent.
void QueryFlashPart(Installer& installer, VeltraSpecificHelper& helper, const char* name, const char* id,
                    std::uint32_t expected);

/// A host card's Karvel CPLD. Adds nothing, silently, when the card is absent, and when the first card's artwork is too
/// old for a Karvel file that is selected: the part then does not exist for this run.
void QueryKarvelPart(Installer& installer, VeltraSpecificHelper& helper, const char* name, const char* id,
                     std::uint32_t expected);

/// A part that is reached by Talc commands, on the board of that name in the dictionary. `current` and `suffixText` are
/// what the part was found to run. A board that does not tell its VPD is an `errorException` behind a line on standard
/// error.
void QueryVpdPart(Installer& installer, WyvrelHelper& helper, const char* name, const char* id, const char* board,
                  std::uint32_t current, const char* suffixText, std::uint32_t expected);

/// What a part of the second line says that it runs.
struct PartRev {
  std::uint32_t major = 0;
  std::uint32_t minor = 0;
  /// What stands behind the version. A part that does not know its version leaves the text of the one before.
  char suffix[32] = {};

  bool IsThere() const { return major != 0 || minor != 0; }
  std::uint32_t Version() const { return (major << 8) + minor; }
};

/// Asks a part, by its symbol in the dictionary, what it runs. Version 0.0 when the part says "UNKNOWN", and behind a
/// line on standard error when it does not answer. A box that answers badly is an `errorException`.
void GetPartRev(WyvrelHelper& helper, const char* part, PartRev& rev);

/// The three numbers of a board's part number; those that a short text lacks keep these values.
struct BoardPartNumber {
  std::int32_t first = 9999;
  std::int32_t second = 99999;
  std::int32_t third = 99;
};

/// Reads the part number out of a board's VPD. Returns 0, 1 for a null argument, 5 when the board's VPD cannot be had
/// for whatever reason, or why the field could not be read (`VpdStatus`). `numbers` is only written on success.
std::int32_t ReadBoardPartNumber(WyvrelHelper* helper, const char* board, BoardPartNumber* numbers);
