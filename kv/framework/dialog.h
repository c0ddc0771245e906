// The window class of the framework's dialogs, the table of modeless dialogs, and helpers for two of their controls.
// Main thread only.
//
// In a DPI-aware program, a dialog has the size that the system computes from its template's units and font.
#pragma once

#include <windows.h>

namespace kv {

// The class to name in dialog templates. It differs from the system's dialog class in one respect: WM_ERASEBKGND
// returns 1 and paints nothing, so that the controls and the dialog's WM_PAINT cover the client area without flicker.
inline constexpr char kDialogClass[] = "kvDialog";

// Registers (`registerIt` not 0) or unregisters `kvDialog` for a module, whose icons 1 (large) and 2 (small) the class
// uses. Returns 0 only when registering fails. The class brush, one for each registration, is never deleted.
BOOL RegisterDialogClass(HINSTANCE instance, BOOL registerIt);

enum ModelessOperation {
  kModelessReset = 0,   // empties the table
  kModelessAdd = 1,     // stores the window in the first free slot, even if it has one already; 0 when all 256 are used
  kModelessRemove = 2,  // frees the first slot of the window; 0 when there is none
  kModelessDispatch = 3,  // offers the message to every existing dialog; 1 if any processed it
};

// The table of modeless dialogs that the message loop uses. Dispatch offers the message to all dialogs, even after one
// has processed it, and skips destroyed windows without freeing their slots. Only dispatch uses `message`, and tests
// that it is readable; only add and remove use `window`. Any other operation returns 0.
BOOL ModelessDialogs(HWND window, MSG* message, int operation);

// Helpers for controls. Both functions return 0 when the window does not exist.

// Sets a trackbar's range and `intervals` + 1 evenly spaced ticks. Ticks are counted from 0, not from `minimum`: 10..50
// in 4 intervals has ticks 0, 10, 20, 30, 40. 0 intervals give one tick, at 0; a negative number gives none.
BOOL SetTrackbarTicks(HWND trackbar, int minimum, int maximum, int intervals);

// Sets range, page and position of a scroll bar control, which is disabled while there is nothing to scroll.
BOOL SetScrollBarControl(HWND scrollBar, int minimum, int maximum, UINT page, int position);

}  // namespace kv
