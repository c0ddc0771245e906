// Keys that the dialog manager does not handle; kv/toolkit/scaled_dialog.h lists them. Private to the toolkit. Main
// thread only.
#pragma once

#include <windows.h>

namespace kv {

// Handles a message for the dialog or one of its controls; returns true if it is handled. May redirect the message to
// another window of the dialog. Keys for a hidden or disabled control with the focus go to the first control that
// accepts them: otherwise the dialog manager's search for an Alt key would never return to its start and not end.
bool TakeKey(HWND dialog, MSG* message);

// Returns true if the message is a key of the dialog's accelerator table; its command has been sent.
bool TakeAccelerator(HWND dialog, MSG* message);

}  // namespace kv
