// Proportional layout: scales the controls of a dialog whose ids are in a range, and their fonts, with the dialog's
// client area. Capture the layout once after the dialog is created, and apply it when the size has changed. All sizes
// are in pixels. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

// Slot 0 of a layout is the dialog's client rectangle at capture (left, top, right, bottom; the first two are 0). Slot
// n is the position and size of the n-th control of the range in child-window order. For a combo box, height is that of
// the selection field, because its window's height includes the list.
struct LayoutSlot {
  LONG x, y, width, height;
};
static_assert(sizeof(LayoutSlot) == 16);

// Fills `slots`, which has one slot more than the range has controls. Quirk: there is no size argument. Slots are
// written as long as their memory is writable, so an array that is too short is overrun; controls beyond the writable
// memory get no slot and do not scale. Returns 0 when the dialog does not exist or slot 0 is not writable.
BOOL CaptureLayout(HWND dialog, LayoutSlot* slots, int firstId, int lastId);

// Returns the slot number of a control, from 1; -1 when the range or the dialog does not contain it.
int LayoutSlotOf(HWND dialog, int firstId, int lastId, int id);

// Scales the controls of the range from their captured slots to the present client area. The margins (for toolbar and
// status bar) do not scale. The scales are stored if their addresses are writable. `redraw` repaints the dialog and its
// controls at the end. Without it the caller must repaint: controls are moved without repainting, and in a dialog with
// WS_CLIPCHILDREN invalidating the dialog does not include them (use RedrawWindow with RDW_ALLCHILDREN).
//
// If the client area is as small as the margins, everything scales to zero. If the captured area was as small as the
// margins, the controls keep their captured size (scale 1).
//
// Fonts: each pass creates new fonts of "Arial Unicode MS" for the controls and deletes those it replaced, whoever
// created them (except stock fonts; up to 1,024 in a pass). This includes the dialog's template font, so every control
// that shows text should be in the range or have a font of its own. A static or button without text keeps its font,
// which is deleted if other controls shared it; a text set later is then drawn in the system font until the next pass.
// Give it a blank as text to avoid that. Multi-line edits get the system's stock font, which does not scale; list boxes
// and other kinds of controls keep their font.
//
// In a DPI-aware program, positions and sizes follow the captured ones at any DPI. Fonts are 14 pixels high at scale 1,
// and combo boxes with their lists 512 pixels, at every DPI.
//
// Returns 0 when the dialog does not exist or slot 0 is not readable.
BOOL ApplyLayout(HWND dialog, int bottomMargin, int leftMargin, int topMargin, int firstId, int lastId,
                 const LayoutSlot* slots, float* scaleX, float* scaleY, BOOL redraw);

// Handles WM_SIZING: enforces a minimum size by moving the dragged edge (WMSZ_LEFT..WMSZ_BOTTOMRIGHT). Returns 1 when
// it changed the rectangle.
BOOL LimitSizing(UINT edge, RECT* window, int minimumWidth, int minimumHeight);

}  // namespace kv
