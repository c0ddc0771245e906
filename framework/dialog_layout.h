// Proportional layout: the controls of a dialog whose ids lie in a range keep their place and size in proportion to its
// client area, and their fonts are remade to match. Capture the layout once after the dialog is created, apply it
// whenever the size has changed. All sizes in pixels. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

// Slot 0 of a layout is the dialog's client rectangle at capture (left, top, right, bottom, the first two being 0).
// Slot n is the n-th control of the range in child-window order: its place in the dialog and its size; a combo box has
// the height of its selection field, because its window's height includes the list.
struct LayoutSlot {
  LONG x, y, width, height;
};
static_assert(sizeof(LayoutSlot) == 16);

// Fills `slots`, one slot more than the range has controls. There is no size argument: slots are filled as long as
// their memory is writable, so what lies behind an array that is too short is overwritten. Where the memory ends
// earlier, later controls get no slot and are not scaled. Returns 0 when the dialog does not exist or slot 0 cannot be
// written.
BOOL CaptureLayout(HWND dialog, LayoutSlot* slots, int firstId, int lastId);

// The slot number of a control, from 1; -1 when the range or the dialog does not have it.
int LayoutSlotOf(HWND dialog, int firstId, int lastId, int id);

// Scales the controls of the range from their captured slots into the dialog's present client area. The margins (where
// toolbar and status bar are) do not scale. Stores the scales where their outputs can be written. `redraw` repaints the
// whole dialog with its controls at the end. Without it the caller has to: the controls are moved without a repaint,
// and in a dialog with WS_CLIPCHILDREN invalidating the dialog does not reach them (RedrawWindow with RDW_ALLCHILDREN
// does).
//
// A client area as small as the margins scales everything to nothing; a captured area as small as the margins gives no
// proportion, and the controls then keep their captured size (scale 1).
//
// Fonts: each pass gives the controls new ones of "Arial Unicode MS" and deletes those it replaced (other than stock
// fonts, up to 1,024 a pass), whoever made them: the dialog's own template font goes with the first pass, so every
// control that shows text should lie in the range or have a font of its own. A static or button without a text keeps
// its font, which the pass deletes if other controls shared it; given a text later, it shows it in the system's font
// until the next pass. A blank for a text avoids that. Multi-line edits get the system's stock font, at one size for
// all scales; list boxes and controls of other kinds keep what they have.
//
// In a DPI-aware host: places and sizes follow the captured ones, whatever their DPI. Fonts are 14 pixels high at scale
// 1, and combo boxes 512 with their lists, at every DPI.
//
// Returns 0 when the dialog does not exist or slot 0 cannot be read.
BOOL ApplyLayout(HWND dialog, int bottomMargin, int leftMargin, int topMargin, int firstId, int lastId,
                 const LayoutSlot* slots, float* scaleX, float* scaleY, BOOL redraw);

// Answers WM_SIZING: keeps the dragged rectangle at least that large by moving the dragged edge (WMSZ_LEFT..
// WMSZ_BOTTOMRIGHT). Returns 1 when it changed the rectangle.
BOOL LimitSizing(UINT edge, RECT* window, int minimumWidth, int minimumHeight);

}  // namespace kv
