// Adds keyboard, wheel and selection to an extended list, and scroll bars that end with the last row. Optional: a list
// without it behaves as kv/lists/extended_list.h says. Main thread only.
//
// With navigation a list
//   - moves the selected row by the arrow keys, Page Up and Page Down (a page is the complete visible rows), Home and
//     End, and scrolls it into view; the left and right arrows scroll horizontally;
//   - scrolls by the wheel, by the number of rows in the system's settings, and horizontally with Shift or a
//     horizontal wheel;
//   - selects a row that is clicked;
//   - scrolls only within its range, vertically by complete rows, and is drawn as wide as the window or, if that is
//     more, as LB_SETHORIZONTALEXTENT sets;
//   - updates its bars and offsets when navigation is added, when the list is resized, and when LB_SETCOUNT,
//     LB_RESETCONTENT or LB_SETHORIZONTALEXTENT change it. Each of these sends WM_MEASUREITEM. When the parent's result
//     changes, call RedrawList.
// The range is limited to 2^31 pixels: 126 million rows of 17.
//
// In WM_DRAWITEM, the selected row has the itemState ODS_SELECTED, and ODS_FOCUS while the list has the focus.
//
// Notifications, posted to the parent as WM_COMMAND with the list in lParam:
//   LBN_SELCHANGE  the user selected another row
//   LBN_DBLCLK     the user double-clicked a row, which is selected
//   kListHeader    the user clicked the header at ListHeaderX
#pragma once

#include <windows.h>

#include "kv/lists/extended_list.h"

namespace kv {

inline constexpr UINT kNoRow = static_cast<UINT>(-2);
inline constexpr WORD kListHeader = 0x100;

// Adds navigation, until the list is destroyed. Returns 0 for a window that is not an extended list.
BOOL AddListNavigation(HWND list);

// The following functions accept any extended list; those about the selected row require navigation. They return kNoRow
// or 0 for other windows.

// Returns the row at a point in client coordinates: kHeaderRow on the header, kNoRow below the last row. The point may
// be outside the window's width.
UINT ListRowAt(HWND list, POINT point);

// Scrolls `row` to the first position below the header; with navigation, as far as the range allows. Repaints.
BOOL ScrollListTo(HWND list, UINT row);

// Requests the row height again, updates the bars and redraws all visible rows. Call when the contents of rows have
// changed.
BOOL RedrawList(HWND list);

// Selects a row and scrolls it into view, or selects none (kNoRow). Sends no notification. Returns 0 for a row beyond
// the end. When a list becomes too short for its selected row, none is selected.
BOOL SelectListRow(HWND list, UINT row);
UINT SelectedListRow(HWND list);

// Returns the x of the last click on the header, in pixels from the left edge of the row.
LONG ListHeaderX(HWND list);

}  // namespace kv
