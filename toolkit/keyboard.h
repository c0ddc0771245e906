// Keys beyond those that the dialog manager knows; toolkit/scaled_dialog.h lists them. For the files of this folder
// only. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

// True when the message, which is for the dialog or one of its controls, is done with. It may be sent to another window
// of the dialog instead. Keys for a control that was hidden or disabled under the focus go to the first one that takes
// them: the dialog manager's search for an Alt key must never begin at a control that it does not come back to.
bool TakeKey(HWND dialog, MSG* message);

// True when the message is a key of the dialog's accelerator table, whose command has been sent.
bool TakeAccelerator(HWND dialog, MSG* message);

}  // namespace kv
