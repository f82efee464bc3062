#pragma once

#include <windows.h>
// Needs the types of the one above.
#include <commctrl.h>

#include <cstddef>
#include <string>
#include <vector>

#include "Records.h"

namespace frontend {

/// The list of parts: a row each, which comes into being with the first record of the part.
class PartList {
 public:
  /// Makes the list as a child of `parent`, which hands on NM_CUSTOMDRAW to `OnDraw` and returns its result.
  explicit PartList(HWND parent);

  HWND Handle() const { return list_; }

  void Show(const Version& version);
  void Show(const Progress& progress);
  void Clear();

  /// Draws the progress bars.
  LRESULT OnDraw(const NMLVCUSTOMDRAW& draw) const;

 private:
  struct Row {
    std::string part;
    bool hasProgress = false;
    std::int32_t percent = 0;
  };

  /// The row of the part, a new one if it has none; -1 when the list is full.
  int RowOf(const std::string& part);
  void SetText(int row, int column, const std::string& text);
  void DrawBar(const NMLVCUSTOMDRAW& draw, const Row& row) const;

  HWND list_;
  std::vector<Row> rows_;
};

}  // namespace frontend
