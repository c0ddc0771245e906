// kvExtList: a long list whose rows are measured and drawn by its parent. It stores no items; it knows how many rows
// there are, how high one is and how wide they are drawn. One redraw asks for a header row and one screenful of rows,
// however long the list is, and goes into an off-screen surface; scrolling sideways only shifts the surface.
// Main thread only.
//
// In a DPI-aware host: the rows are as high as the parent says when it is asked (a silent parent gets 17 pixels), a
// step to the side is 17 pixels at every DPI, and the bars are the system's.
//
// Messages:
//   LB_SETCOUNT             wParam: the number of rows, unsigned, at most 2^32 - 1; paints
//   LB_RESETCONTENT         no rows; paints
//   LB_SETHORIZONTALEXTENT  wParam: the surface width in pixels, at most 16,384; a negative one counts as 0. It begins
//                           as the client width and does not follow the window. With 0 nothing is drawn; paints
//   WM_HSCROLL, WM_VSCROLL  move the offsets and paint. The offsets may pass both ends: the surface is then drawn
//                           farther right or lower down. Only the bars hold their position within their range
// They return 0. The scroll bars are brought up to date by WM_SIZE, by scrolling and by a released left button,
// but not by the list box messages.
//
// The parent is sent, as by an owner-drawn list box but with the control type 0 and no item data:
//   WM_MEASUREITEM  before each redraw, with a height of 17; a height that is 0 or negative afterwards counts as 17
//   WM_DRAWITEM     with rows: the header (item -1, at the top), then each row on view, across the whole surface. The
//                   surface has been filled with the window colour
// While it draws, the parent may change, resize or destroy the list: a changed list is redrawn after that, at the next
// WM_PAINT. Both requests are valid until the parent returns, whatever becomes of the list.
//
// In a mirrored list (WS_EX_LAYOUTRTL) x = 0 of the surface is at the right, as in its window.
//
// Screen readers (WM_GETOBJECT) get a list with its window text as the name and, as the value, the selected row and the
// number of rows ("3 / 1000"), or without a selection the rows on view ("1 - 20 / 1000"). What a row says only the
// parent knows: it may put that into the list's window text when the selection moves.
#pragma once

#include <windows.h>

namespace kv {

inline constexpr char kExtendedListClass[] = "kvExtList";
inline constexpr UINT kHeaderRow = static_cast<UINT>(-1);  // DRAWITEMSTRUCT::itemID of the header

// Registers (non-zero flag) or unregisters the class. Returns 0 only when registering fails.
BOOL RegisterExtendedListClass(HINSTANCE instance, BOOL registerIt);

// The lists' own key below HKEY_CURRENT_USER. A list makes it when the left button is released and when it is
// destroyed, and stores nothing in it: the key is for the host's settings of the list.
inline constexpr char kExtendedListSettingsPath[] = "Software\\korvel\\WindowPositions\\ExtendedListWindows";

// Opens the settings key and closes it again. Returns 0 when it does not exist or cannot be opened.
BOOL OpenExtendedListSettings();

}  // namespace kv
