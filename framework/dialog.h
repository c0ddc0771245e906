// The window class of the framework's dialogs, the table of open modeless dialogs, and the set-up of two of their
// controls. Main thread only.
//
// In a DPI-aware host: a dialog is as large as the system makes it from its template's units and font; nothing is
// added.
#pragma once

#include <windows.h>

namespace kv {

// Dialog templates name this class. It is a dialog class in every respect but one: WM_ERASEBKGND returns 1 and paints
// nothing, so that the controls and the dialog's own WM_PAINT cover the client area without flicker.
inline constexpr char kDialogClass[] = "kvDialog";

// Registers (non-zero flag) or unregisters `kvDialog` for a module; icons 1 (large) and 2 (small) of that module are
// its icons. Returns 0 only when registering fails. The class brush, one for each registration, stays for good.
BOOL RegisterDialogClass(HINSTANCE instance, BOOL registerIt);

enum ModelessOperation {
  kModelessReset = 0,     // empties the table
  kModelessAdd = 1,       // takes the first free slot; 0 when all 256 are taken. A window may stand in it twice
  kModelessRemove = 2,    // frees the first slot that holds the window; 0 when none does
  kModelessDispatch = 3,  // offers the message to every live dialog; 1 if any took it
};

// The one table of modeless dialogs that the message loop consults. Dispatch offers the message to all dialogs, also
// after one took it, and skips destroyed windows without freeing their slots. `message` is used by dispatch only and
// tested for readability; `window` by add and remove only. Any other operation returns 0.
BOOL ModelessDialogs(HWND window, MSG* message, int operation);

// Controls of a dialog. Both functions return 0 when the window does not exist.

// Sets a trackbar's range and `intervals` + 1 evenly spaced ticks. Ticks count from 0, not from `minimum`: 10..50 in 4
// intervals has ticks 0, 10, 20, 30, 40. 0 intervals give one tick, at 0; a negative number gives none.
BOOL SetTrackbarTicks(HWND trackbar, int minimum, int maximum, int intervals);

// Sets range, page and position of a scroll bar control, which is disabled while there is nothing to scroll.
BOOL SetScrollBarControl(HWND scrollBar, int minimum, int maximum, UINT page, int position);

}  // namespace kv
