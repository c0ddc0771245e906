#include "kv/toolkit/list_columns.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>

#include "kv/framework/bounded_format.h"
#include "kv/framework/guards.h"
#include "kv/framework/painting.h"
#include "kv/lists/extended_list.h"
#include "kv/lists/list_navigation.h"
#include "kv/toolkit/appearance.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/scaled_dialog.h"

namespace kv {

namespace {

constexpr int kPadding = 6;
constexpr int kShadedRowPercent = 4, kColumnLinePercent = 15;

// The font of rows, cached while its properties do not change.
HFONT FontOf(int textPx, int weight, bool fixedPitch) {
  struct CachedFont {
    int textPx = 0, weight = 0;
    OwnedFont font;
  };
  static CachedFont cached[3];
  CachedFont& slot = cached[fixedPitch ? 2 : weight > FW_NORMAL];
  if (slot.textPx != textPx || slot.weight != weight) {
    slot.font = fixedPitch ? MakeFixedPitchFont(-textPx, weight) : MakeFont(-textPx, weight);
    slot.textPx = textPx;
    slot.weight = weight;
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

struct RowStyle {
  COLORREF ground, text;
  int weight;
};

RowStyle RowStyleOf(const DRAWITEMSTRUCT& item) {
  if (item.itemID == kHeaderRow) return {GetSysColor(COLOR_BTNFACE), GetSysColor(COLOR_BTNTEXT), FW_SEMIBOLD};
  if (item.itemState & ODS_SELECTED) return {GetSysColor(COLOR_HIGHLIGHT), GetSysColor(COLOR_HIGHLIGHTTEXT), FW_NORMAL};
  return {ListShade(item.itemID % 2 ? kShadedRowPercent : 0), GetSysColor(COLOR_WINDOWTEXT), FW_NORMAL};
}

}  // namespace

void DrawListRow(const DRAWITEMSTRUCT& item, std::span<const ListColumn> columns, const ListCellText& text,
                 ListSorting sorting, int textPx) {
  const bool isHeader = item.itemID == kHeaderRow;
  const RowStyle style = RowStyleOf(item);
  if (textPx <= 0) textPx = std::max<int>((item.rcItem.bottom - item.rcItem.top) * 3 / 5, 6);
  FillSolid(item.hDC, item.rcItem, style.ground);
  SetBkMode(item.hDC, TRANSPARENT);
  SetTextColor(item.hDC, style.text);
  VisitColumns(columns, item.rcItem.right, [&](int column, LONG left, LONG right) {
    RECT cell{left, item.rcItem.top, right, item.rcItem.bottom};
    if (isHeader) {
      DrawEdge(item.hDC, &cell, BDR_RAISEDINNER, BF_RECT);
    } else {
      FillSolid(item.hDC, {right - 1, cell.top, right, cell.bottom}, ListShade(kColumnLinePercent));
    }
    InflateRect(&cell, -kPadding, 0);
    if (isHeader && column == sorting.column) DrawSortMark(item.hDC, &cell, sorting.descending);
    const std::wstring shown = isHeader ? ListColumnTitle(columns[column]) : text(item.itemID, column);
    const SelectedObject font(item.hDC, FontOf(textPx, style.weight, columns[column].fixedPitch && !isHeader));
    // In a mirrored list DT_LEFT is at the right, where numbers are aligned, too.
    const UINT align = GetLayout(item.hDC) & LAYOUT_RTL ? columns[column].align & ~DT_RIGHT : columns[column].align;
    DrawFitted(item.hDC, shown, cell, align | DT_VCENTER | DT_SINGLELINE);
  });
}

std::wstring ListColumnTitle(const ListColumn& column) {
  if (column.titleText) return ResourceText(column.titleText);
  return IS_INTRESOURCE(column.title) ? ResourceText(LOWORD(column.title)) : column.title;
}

void NameListRow(HWND list, const std::wstring& name, std::span<const ListColumn> columns, const ListCellText& text,
                 const std::wstring& format) {
  const UINT row = SelectedListRow(list);
  std::wstring whole = name;
  wchar_t longer[1000];
  for (size_t i = 0; row != kNoRow && i < columns.size(); ++i) {
    const std::wstring title = ListColumnTitle(columns[i]);
    if (title.empty()) continue;
    FormatBounded(longer, sizeof(longer), format.c_str(), whole.c_str(), title.c_str(),
                  text(row, static_cast<int>(i)).c_str());
    whole = longer;
  }
  NameControl(GetParent(list), GetDlgCtrlID(list), whole.c_str());
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
