#include "PartList.h"

#include <algorithm>
#include <cstdio>

namespace frontend {
namespace {

/// More than there are parts. A sender that makes up names must not fill the memory.
constexpr std::size_t kMostRows = 100;

constexpr COLORREF kBarColour = RGB(0x7C, 0xC9, 0x96);

enum Column { kPart, kCurrent, kExpected, kPhase, kProgress };

struct Heading {
  const char* text;
  int width;
};
constexpr Heading kHeadings[] = {{"Part", 110}, {"Current", 80}, {"Expected", 80}, {"Phase", 110}, {"Progress", 214}};

std::string HexDigits(std::uint32_t version) {
  char text[9];
  std::snprintf(text, sizeof text, "%04x", static_cast<unsigned>(version));
  return text;
}

}  // namespace

PartList::PartList(HWND parent)
    : list_(CreateWindowExA(WS_EX_CLIENTEDGE, WC_LISTVIEWA, "", WS_CHILD | WS_VISIBLE | LVS_REPORT | LVS_NOSORTHEADER,
                            0, 0, 0, 0, parent, nullptr, nullptr, nullptr)) {
  SendMessageA(list_, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
  int index = 0;
  for (const Heading& heading : kHeadings) {
    LVCOLUMNA column{};
    column.mask = LVCF_TEXT | LVCF_WIDTH;
    column.pszText = const_cast<char*>(heading.text);
    column.cx = heading.width;
    SendMessageA(list_, LVM_INSERTCOLUMNA, static_cast<WPARAM>(index++), reinterpret_cast<LPARAM>(&column));
  }
}

void PartList::Show(const Version& version) {
  const int row = RowOf(version.part);
  if (row < 0) return;
  SetText(row, kCurrent, HexDigits(version.current));
  SetText(row, kExpected, HexDigits(version.expected));
}

void PartList::Show(const Progress& progress) {
  const int row = RowOf(progress.part);
  if (row < 0) return;
  rows_[static_cast<std::size_t>(row)].hasProgress = true;
  rows_[static_cast<std::size_t>(row)].percent = progress.percent;
  SetText(row, kPhase, progress.phase);
  SendMessageA(list_, LVM_REDRAWITEMS, static_cast<WPARAM>(row), row);
  SendMessageA(list_, LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
}

void PartList::Clear() {
  rows_.clear();
  SendMessageA(list_, LVM_DELETEALLITEMS, 0, 0);
}

int PartList::RowOf(const std::string& part) {
  const auto found = std::find_if(rows_.begin(), rows_.end(), [&](const Row& row) { return row.part == part; });
  if (found != rows_.end()) return static_cast<int>(found - rows_.begin());
  if (rows_.size() == kMostRows) return -1;

  LVITEMA item{};
  item.mask = LVIF_TEXT;
  item.iItem = static_cast<int>(rows_.size());
  item.pszText = const_cast<char*>(part.c_str());
  const auto row = static_cast<int>(SendMessageA(list_, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item)));
  if (row >= 0) rows_.push_back({part});
  return row;
}

void PartList::SetText(int row, int column, const std::string& text) {
  LVITEMA item{};
  item.iSubItem = column;
  item.pszText = const_cast<char*>(text.c_str());
  SendMessageA(list_, LVM_SETITEMTEXTA, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

LRESULT PartList::OnDraw(const NMLVCUSTOMDRAW& draw) const {
  switch (draw.nmcd.dwDrawStage) {
    case CDDS_PREPAINT:
      return CDRF_NOTIFYITEMDRAW;
    case CDDS_ITEMPREPAINT:
      return CDRF_NOTIFYSUBITEMDRAW;
    case CDDS_ITEMPREPAINT | CDDS_SUBITEM: {
      const std::size_t row = draw.nmcd.dwItemSpec;
      if (draw.iSubItem != kProgress || row >= rows_.size() || !rows_[row].hasProgress) return CDRF_DODEFAULT;
      DrawBar(draw, rows_[row]);
      return CDRF_SKIPDEFAULT;
    }
    default:
      return CDRF_DODEFAULT;
  }
}

void PartList::DrawBar(const NMLVCUSTOMDRAW& draw, const Row& row) const {
  RECT frame{};
  frame.top = kProgress;
  frame.left = LVIR_BOUNDS;
  SendMessageA(list_, LVM_GETSUBITEMRECT, draw.nmcd.dwItemSpec, reinterpret_cast<LPARAM>(&frame));
  InflateRect(&frame, -2, -2);

  // The bar stops at its ends; the number goes on.
  RECT bar = frame;
  bar.right = frame.left + (frame.right - frame.left) * std::clamp<LONG>(row.percent, 0, 100) / 100;
  const HBRUSH brush = CreateSolidBrush(kBarColour);
  FillRect(draw.nmcd.hdc, &frame, GetSysColorBrush(COLOR_WINDOW));
  FillRect(draw.nmcd.hdc, &bar, brush);
  FrameRect(draw.nmcd.hdc, &frame, brush);
  DeleteObject(brush);

  const std::string text = std::to_string(row.percent) + "%";
  SetBkMode(draw.nmcd.hdc, TRANSPARENT);
  SetTextColor(draw.nmcd.hdc, GetSysColor(COLOR_WINDOWTEXT));
  DrawTextA(draw.nmcd.hdc, text.c_str(), static_cast<int>(text.size()), &frame,
            DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
}

}  // namespace frontend
