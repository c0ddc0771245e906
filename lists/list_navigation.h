// Makes an extended list usable by hand: keys, wheel, one selected row, and scroll bars that are right and end with the
// last row. Opt-in: a list without it behaves as lists/extended_list.h says. Main thread only.
//
// With navigation a list
//   - moves its selected row by the arrow keys, Page Up and Page Down (a page is the whole rows in view), Home and End,
//     and keeps it in view; the left and right arrows scroll sideways;
//   - scrolls by the wheel as many rows as the system says, sideways with Shift or by a horizontal wheel;
//   - selects the row that is clicked;
//   - scrolls within its ends only, vertically by whole rows, and is drawn as wide as the window, or as wide as
//     LB_SETHORIZONTALEXTENT says if that is more;
//   - brings its bars and offsets up to date by itself: when the navigation is added, when the list is resized, and
//     when LB_SETCOUNT, LB_RESETCONTENT or LB_SETHORIZONTALEXTENT change it. Each of these sends WM_MEASUREITEM. When
//     the parent's result changes, call RedrawList.
// Bars, and what can be reached, end at 2^31 pixels: 126 million rows of 17.
//
// WM_DRAWITEM of the selected row has the itemState ODS_SELECTED, and ODS_FOCUS too while the list has the focus.
//
// Notifications, posted to the parent as WM_COMMAND with the list in lParam:
//   LBN_SELCHANGE  the user selected another row
//   LBN_DBLCLK     the user double-clicked a row, which is the selected one
//   kListHeader    the user clicked the header: ListHeaderX says where
#pragma once

#include <windows.h>

#include "lists/extended_list.h"

namespace kv {

inline constexpr UINT kNoRow = static_cast<UINT>(-2);
inline constexpr WORD kListHeader = 0x100;

// Adds the navigation, once for the list's life. Returns 0 for a window that is no extended list.
BOOL AddListNavigation(HWND list);

// The following work with any extended list, those about the selected row with a navigated one only. They return
// kNoRow or 0 for other windows.

// The row at a place in client coordinates: kHeaderRow on the header, kNoRow below the last row. The place need not be
// within the window's width.
UINT ListRowAt(HWND list, POINT place);

// Makes `row` the first one below the header; with navigation, as far as the list's end allows. Repaints.
BOOL ScrollListTo(HWND list, UINT row);

// Asks for the row height again, brings the bars up to date and draws every row in view again. To be called when the
// contents of rows have changed.
BOOL RedrawList(HWND list);

// Selects a row and scrolls as little as shows it, or selects none (kNoRow). Sends no notification. Returns 0 for a row
// that the list does not have. A list that becomes too short for its selected row has none.
BOOL SelectListRow(HWND list, UINT row);
UINT SelectedListRow(HWND list);

// Where the header was pressed last, in pixels from the left edge of the row.
LONG ListHeaderX(HWND list);

}  // namespace kv
