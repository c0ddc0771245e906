// Columns for an extended list (kv/lists/extended_list.h): draws header and rows, and finds the column of a clicked
// header. Main thread only.
#pragma once

#include <windows.h>

#include <functional>
#include <span>
#include <string>

namespace kv {

struct ListColumn {
  const wchar_t* title;  // or MAKEINTRESOURCEW of a string resource, in the current language
  int width;             // relative to the other columns'; together they fill the list's drawn width
  UINT align = DT_LEFT;  // or DT_RIGHT, DT_CENTER
  bool fixedPitch = false;
  UINT titleText = 0;  // a string resource instead of `title`, for constexpr tables
};

// The column by which rows are sorted, for the mark in its header; -1: none.
struct ListSorting {
  int column = -1;
  bool descending = false;
};

// Returns the text of a cell. Called only during DrawListRow.
using ListCellText = std::function<std::wstring(UINT row, int column)>;

// Handles WM_DRAWITEM of a list: draws the header or one row. Rows have alternating shades, the selected row the
// system's selection colors. The text height is `textPx` pixels; 0: derived from the row height.
void DrawListRow(const DRAWITEMSTRUCT& item, std::span<const ListColumn> columns, const ListCellText& text,
                 ListSorting sorting = {}, int textPx = 0);

// A column's title in the current language.
std::wstring ListColumnTitle(const ListColumn& column);

// Sets the list's accessible name to `name` and, if a row is selected, its cells in columns that have a title: "List,
// Code: DE". `format` inserts the name so far, a title and a cell. Call it when another row is selected, and when the
// language has changed.
void NameListRow(HWND list, const std::wstring& name, std::span<const ListColumn> columns, const ListCellText& text,
                 const std::wstring& format = L"%s, %s: %s");

// The column whose header was clicked; -1: none. Call it on the notification kListHeader of kv/lists/list_navigation.h.
int ClickedListColumn(HWND list, std::span<const ListColumn> columns);

// The sorting after a click on a column's header: ascending, or reversed if it was sorted by that column already. -1
// changes nothing.
ListSorting NextSorting(ListSorting former, int column);

}  // namespace kv
