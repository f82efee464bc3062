#include "dictionary/DataType.h"

#include <array>

#include "dictionary/SameName.h"

namespace TalcPathPrivate {
namespace {

struct Row {
  std::string_view word;
  std::int8_t wireSize;
};

/// In the order of `DataType::Kind`.
constexpr std::array<Row, 10> kRows{{{"INT8", 1},
                                     {"UINT8", 1},
                                     {"INT16", 2},
                                     {"UINT16", 2},
                                     {"INT32", 4},
                                     {"UINT32", 4},
                                     {"INT64", 8},
                                     {"UINT64", 8},
                                     {"BYTES", -1},
                                     {"", 0}}};

std::size_t RowOf(std::string_view word) {
  std::size_t row = 0;
  while (row + 1 < kRows.size() && !IsSameName(kRows[row].word, word))
    ++row;
  return row;
}

}  // namespace

DataType::DataType(std::string_view word) : word_(word) {
  const std::size_t row = RowOf(word);
  kind_ = static_cast<Kind>(row);
  wireSize_ = kRows[row].wireSize;
}

}  // namespace TalcPathPrivate
