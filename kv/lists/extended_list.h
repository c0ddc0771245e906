// kvExtList: a long list whose rows are measured and drawn by its parent. It stores no items, only the number of rows,
// their height and the width of the surface they are drawn on. A redraw requests the header row and one screenful of
// rows, however long the list is, and draws into an off-screen surface; scrolling horizontally only shifts the surface.
// Main thread only.
//
// In a DPI-aware program, rows have the height that the parent returns (17 pixels if it does not), a horizontal step is
// 17 pixels at every DPI, and the bars are the system's.
//
// Messages:
//   LB_SETCOUNT             wParam: the number of rows, unsigned, at most 2^32 - 1; repaints
//   LB_RESETCONTENT         removes all rows; repaints
//   LB_SETHORIZONTALEXTENT  wParam: the surface width in pixels, at most 16,384; negative is 0. Initially the
//                           client width, which does not follow the window. With 0 nothing is drawn; repaints
//   WM_HSCROLL, WM_VSCROLL  change the offsets and repaint. Offsets may exceed both ends: the surface is then drawn
//                           further right or lower. Only the bars' positions are limited to their range
// They return 0. The scroll bars are updated by WM_SIZE, by scrolling and when the left button is released, but not by
// the list box messages.
//
// The parent receives, as from an owner-drawn list box, but with control type 0 and no item data:
//   WM_MEASUREITEM  before each redraw, with a height of 17; a result of 0 or less is replaced by 17
//   WM_DRAWITEM     with rows: the header (item -1, at the top), then each visible row, across the whole surface. The
//                   surface is filled with the window color before
// The parent may change, resize or destroy the list while it draws; a changed list is redrawn at the next WM_PAINT.
// Both structs are valid until the parent returns, even if the list is destroyed.
//
// In a mirrored list (WS_EX_LAYOUTRTL), x = 0 of the surface is at the right, as in the window.
//
// For screen readers (WM_GETOBJECT), a list with its window text as the name and, as the value, the selected row and
// the number of rows ("3 / 1000"), or without a selection the visible rows ("1 - 20 / 1000"). The contents of rows are
// known to the parent only, which may put them into the list's window text when the selection changes.
#pragma once

#include <windows.h>

namespace kv {

inline constexpr char kExtendedListClass[] = "kvExtList";
inline constexpr UINT kHeaderRow = static_cast<UINT>(-1);  // DRAWITEMSTRUCT::itemID of the header

// Registers (`registerIt` not 0) or unregisters the class. Returns 0 only when registering fails.
BOOL RegisterExtendedListClass(HINSTANCE instance, BOOL registerIt);

// The lists' key below HKEY_CURRENT_USER. A list creates it when the left button is released and when it is destroyed,
// and stores nothing in it: the key is for the program's settings.
inline constexpr char kExtendedListSettingsPath[] = "Software\\korvel\\WindowPositions\\ExtendedListWindows";

// Opens and closes the settings key. Returns 0 when it does not exist or cannot be opened.
BOOL OpenExtendedListSettings();

}  // namespace kv
