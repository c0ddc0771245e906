// Columns for an extended list (lists/extended_list.h): draws header and rows, and tells which column's header was
// clicked. Main thread only.
#pragma once

#include <windows.h>

#include <span>
#include <string>

namespace kv {

struct ListColumn {
  const wchar_t* title;
  int width;             // in proportion to the others: together they are as wide as the list is drawn
  UINT align = DT_LEFT;  // or DT_RIGHT, DT_CENTER
};

// The text of a cell. Called while a row is drawn.
using ListCellText = std::wstring (*)(UINT row, int column);

// Which column the rows are sorted by, for the mark in its header; none: -1.
struct ListSorting {
  int column = -1;
  bool descending = false;
};

// Answers WM_DRAWITEM for a list: draws the header, or one row, whose font follows its height. Rows are shaded by
// turns, and the selected one has the system's colours.
void DrawListRow(const DRAWITEMSTRUCT& item, std::span<const ListColumn> columns, ListCellText text,
                 ListSorting sorting = {});

// The column whose header was clicked, once kListHeader of lists/list_navigation.h has said so; -1 when there is none.
int ClickedListColumn(HWND list, std::span<const ListColumn> columns);

// The sorting after a click on a column's header: ascending at first, then the other way round. -1 changes nothing.
ListSorting NextSorting(ListSorting former, int column);

}  // namespace kv
