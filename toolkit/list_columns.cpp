#include "toolkit/list_columns.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>

#include "framework/guards.h"
#include "framework/painting.h"
#include "lists/extended_list.h"
#include "lists/list_navigation.h"

namespace kv {

namespace {

constexpr int kPadding = 6;

// The window colour with so many thirty-seconds of its text's colour: in high contrast, too, the text reads on it.
COLORREF TintedWindow(int thirtySeconds) {
  COLORREF color = GetSysColor(COLOR_WINDOW);
  BlendColor(color, GetSysColor(COLOR_WINDOWTEXT), 32, thirtySeconds, &color);
  return color;
}

// The font of rows, kept from row to row while the height stays.
HFONT FontOf(LONG rowHeight, int weight) {
  struct Kept {
    LONG height = 0;
    OwnedFont font;
  };
  static Kept kept[2];
  Kept& slot = kept[weight > FW_NORMAL];
  const LONG height = std::max<LONG>(rowHeight * 3 / 4, 8);
  if (slot.height != height) {
    slot.font.Reset(CreateFontW(-height * 4 / 5, 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_TT_PRECIS,
                                CLIP_DEFAULT_PRECIS, PROOF_QUALITY, VARIABLE_PITCH | FF_SWISS, L"Arial Unicode MS"));
    slot.height = height;
  }
  return slot.font;
}

// Calls visit(column, left, right) for each column of a row of this width.
template <class Visit>
void VisitColumns(std::span<const ListColumn> columns, LONG rowWidth, Visit visit) {
  long long total = 0, before = 0;
  for (const ListColumn& column : columns) total += column.width;
  if (total <= 0) return;
  for (size_t i = 0; i < columns.size(); ++i) {
    const LONG left = static_cast<LONG>(before * rowWidth / total);
    before += columns[i].width;
    visit(static_cast<int>(i), left, static_cast<LONG>(before * rowWidth / total));
  }
}

// A triangle at the right end of a sorted column's title.
void DrawSortMark(HDC dc, RECT* cell, bool descending) {
  const LONG size = (cell->bottom - cell->top) / 5, x = cell->right - 2 * size;
  const LONG y = (cell->top + cell->bottom) / 2, tip = descending ? size / 2 + 1 : -size / 2 - 1;
  const POINT corners[] = {{x, y - tip}, {x + 2 * size, y - tip}, {x + size, y + tip}};
  const SelectedObject brush(dc, GetSysColorBrush(COLOR_BTNTEXT));
  const SelectedObject pen(dc, GetStockObject(NULL_PEN));
  Polygon(dc, corners, ARRAYSIZE(corners));
  cell->right = x - kPadding / 2;
}

struct RowLook {
  COLORREF ground, text;
  int weight;
};

RowLook LookOf(const DRAWITEMSTRUCT& item) {
  if (item.itemID == kHeaderRow) return {GetSysColor(COLOR_BTNFACE), GetSysColor(COLOR_BTNTEXT), FW_SEMIBOLD};
  if (item.itemState & ODS_SELECTED) return {GetSysColor(COLOR_HIGHLIGHT), GetSysColor(COLOR_HIGHLIGHTTEXT), FW_NORMAL};
  return {TintedWindow(item.itemID % 2), GetSysColor(COLOR_WINDOWTEXT), FW_NORMAL};
}

}  // namespace

void DrawListRow(const DRAWITEMSTRUCT& item, std::span<const ListColumn> columns, ListCellText text,
                 ListSorting sorting) {
  const bool isHeader = item.itemID == kHeaderRow;
  const RowLook look = LookOf(item);
  FillSolid(item.hDC, item.rcItem, look.ground);
  const SelectedObject font(item.hDC, FontOf(item.rcItem.bottom - item.rcItem.top, look.weight));
  SetBkMode(item.hDC, TRANSPARENT);
  SetTextColor(item.hDC, look.text);
  VisitColumns(columns, item.rcItem.right, [&](int column, LONG left, LONG right) {
    RECT cell{left, item.rcItem.top, right, item.rcItem.bottom};
    if (isHeader) {
      DrawEdge(item.hDC, &cell, BDR_RAISEDINNER, BF_RECT);
    } else {
      FillSolid(item.hDC, {right - 1, cell.top, right, cell.bottom}, TintedWindow(4));
    }
    InflateRect(&cell, -kPadding, 0);
    if (isHeader && column == sorting.column) DrawSortMark(item.hDC, &cell, sorting.descending);
    const std::wstring shown = isHeader ? columns[column].title : text(item.itemID, column);
    DrawTextW(item.hDC, shown.c_str(), static_cast<int>(shown.size()), &cell,
              columns[column].align | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
  });
}

int ClickedListColumn(HWND list, std::span<const ListColumn> columns) {
  SCROLLINFO bar{.cbSize = sizeof(bar), .fMask = SIF_RANGE};
  GetScrollInfo(list, SB_HORZ, &bar);
  const LONG x = ListHeaderX(list);
  int clicked = -1;
  VisitColumns(columns, bar.nMax + 1, [&](int column, LONG left, LONG right) {
    if (x >= left && x < right) clicked = column;
  });
  return clicked;
}

ListSorting NextSorting(ListSorting former, int column) {
  if (column < 0) return former;
  return {column, column == former.column && !former.descending};
}

}  // namespace kv
