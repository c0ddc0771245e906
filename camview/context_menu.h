// Context menus of the window's parts. Their items are commands of the menu bar, with its texts and keys. Main thread
// only.
#pragma once

#include <windows.h>

namespace camview {

// Handles WM_CONTEXTMENU of the window, for a control. `position`: lParam. Returns whether the control has a menu. A
// chosen command is posted; meanwhile the window may have been destroyed.
bool ShowContextMenu(HWND window, HWND control, LPARAM position);

}  // namespace camview
