// Columns for an extended list (lists/extended_list.h): draws header and rows, and tells which column's header was
// clicked. Main thread only.
#pragma once

#include <windows.h>

#include <functional>
#include <span>
#include <string>

namespace kv {

struct ListColumn {
  const wchar_t* title;  // or MAKEINTRESOURCEW of a string resource, in the language that is shown
  int width;             // in proportion to the others: together they are as wide as the list is drawn
  UINT align = DT_LEFT;  // or DT_RIGHT, DT_CENTER
  bool fixedPitch = false;
};

// Which column the rows are sorted by, for the mark in its header; none: -1.
struct ListSorting {
  int column = -1;
  bool descending = false;
};

// The text of a cell. Called while a row is drawn; whatever it captures must be there then.
using ListCellText = std::function<std::wstring(UINT row, int column)>;

// Answers WM_DRAWITEM for a list: draws the header, or one row. Rows are shaded by turns, and the selected one has the
// system's colours. The characters are `textPx` pixels high; 0: as the row's height asks for.
void DrawListRow(const DRAWITEMSTRUCT& item, std::span<const ListColumn> columns, const ListCellText& text,
                 ListSorting sorting = {}, int textPx = 0);

// A column's title as it is shown.
std::wstring ListColumnTitle(const ListColumn& column);

// The column whose header was clicked, once kListHeader of lists/list_navigation.h has said so; -1 when there is none.
int ClickedListColumn(HWND list, std::span<const ListColumn> columns);

// The sorting after a click on a column's header: ascending at first, then the other way round. -1 changes nothing.
ListSorting NextSorting(ListSorting former, int column);

}  // namespace kv
