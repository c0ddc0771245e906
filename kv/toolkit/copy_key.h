// Keyboard access to controls that show an image. Private to the toolkit. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

// If the control is a display instrument or a horizon that is a tab stop, it shows the focus, gets it by a click,
// copies itself with Ctrl+C, and its dialog is sent kControlCopied.
void AddCopyKey(HWND control);

}  // namespace kv
