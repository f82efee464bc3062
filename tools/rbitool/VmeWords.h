#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

#include "VmeData.h"

/// The words of the script language and the bytes they stand for.
namespace vme_script {

/// What follows the word of a statement.
enum class Operand {
  none,
  end,         ///< nothing, as it ends the play
  number,      ///< 0 to 65535
  byte,        ///< 0 to 255
  signedByte,  ///< -128 to 127
  state,       ///< a TAP state
  flow,        ///< flow bits, 0 to 65535, or a name
  wait,        ///< a time and its unit
  header,      ///< the bits in front of or behind those of a shift
  shift,       ///< a count of bits and blocks of data
  loop,        ///< a count of passes, statements, and what each pass takes from the file
  raw,         ///< bytes as they are
  container,   ///< id, version and text
  compressed,  ///< on or off
};

struct Statement {
  std::string_view word;
  std::uint8_t opcode;  ///< 0 where the statement does not begin with one
  Operand operand;
};

inline constexpr Statement kStatements[] = {
    {"enddr", 0x02, Operand::state},
    {"endir", 0x03, Operand::state},
    {"hir", 0x06, Operand::header},
    {"tir", 0x07, Operand::header},
    {"hdr", 0x08, Operand::header},
    {"tdr", 0x09, Operand::header},
    {"frequency", 0x0B, Operand::number},
    {"state", 0x10, Operand::state},
    {"sir", 0x11, Operand::shift},
    {"sdr", 0x12, Operand::shift},
    {"xsdr", 0x16, Operand::shift},
    {"mem", 0x19, Operand::number},
    {"wait", 0x1A, Operand::wait},
    {"tck", 0x1B, Operand::number},
    {"shr", 0x23, Operand::signedByte},
    {"shl", 0x24, Operand::signedByte},
    {"setflow", 0x30, Operand::flow},
    {"resetflow", 0x31, Operand::flow},
    {"vendor", 0x56, Operand::byte},
    {"endloop", 0x59, Operand::end},
    {"vues", 0x61, Operand::none},
    {"endvme", 0x7F, Operand::end},
    {"endfile", 0xFF, Operand::end},
    {"repeat", 0, Operand::loop},
    {"byte", 0, Operand::raw},
    {"container", 0, Operand::container},
    {"compressed", 0, Operand::compressed},
};

/// The blocks of a shift.
struct DataWord {
  std::string_view word;
  std::uint8_t opcode;
};

inline constexpr DataWord kDataWords[] = {{"tdi", 0x13}, {"tdo", 0x14}, {"mask", 0x15}, {"dmask", 0x62}};

/// Forms of a block in a compressed file.
struct FormWord {
  std::string_view word;
  FormKind kind;
};

inline constexpr FormWord kFormWords[] = {{"plain", FormKind::plain},
                                          {"zeros", FormKind::zeros},
                                          {"ones", FormKind::ones},
                                          {"bitmap", FormKind::bitmap},
                                          {"nibbles", FormKind::nibbles}};

struct StateWord {
  std::string_view word;
  std::uint8_t number;
};

inline constexpr StateWord kStateWords[] = {{"reset", 0},   {"idle", 1},    {"irpause", 2},
                                            {"drpause", 3}, {"shiftir", 4}, {"shiftdr", 5}};

/// The row of a word; null when the table has no such word.
template <typename Row, std::size_t count>
const Row* FindWord(const Row (&table)[count], std::string_view word) {
  const Row* const row =
      std::find_if(table, table + count, [&](const Row& candidate) { return candidate.word == word; });
  return row == table + count ? nullptr : row;
}

/// All words of a table, behind `words`.
template <typename Row, std::size_t count>
std::vector<std::string_view> WordsOf(const Row (&table)[count], std::vector<std::string_view> words = {}) {
  for (const Row& row : table)
    words.push_back(row.word);
  return words;
}

}  // namespace vme_script
