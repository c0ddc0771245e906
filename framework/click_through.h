// Mouse input that falls through a decoration to the control beneath it. Main thread only.
//
// In a DPI-aware host: places are the pixels that the host sees; nothing depends on the DPI.
#pragma once

#include <windows.h>

namespace kv {

// Hands a mouse message of `window`, or a WM_COMMAND, on to the visible siblings under the mouse cursor that take input
// (buttons, edits, combo boxes, list boxes, tree views), looked for in z-order.
//
//   WM_LBUTTONDOWN                  the first of them: a button is clicked (BM_CLICK), any other gets the message
//   WM_MOUSEMOVE, the other         the first of them gets the keyboard focus and the message
//   button-down and button-up
//   any other (double clicks,       each of them gets the message with wParam and lParam unchanged
//   WM_COMMAND)
//
// In the first two cases lParam is the address of a POINT with the cursor in the sibling's client coordinates, valid
// during the call, and the result is the sibling's. Otherwise the result is 1. Each sibling is visited at most once;
// one that destroys itself ends the walk. `window` itself may be gone afterwards.
LRESULT PassClickThrough(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace kv
