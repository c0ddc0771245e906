// What all window classes of this library's controls have in common: how they are registered, the codes of their
// command message, and how they talk to their parent. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

// The one command message of the chart, the instruments and the views. The low byte of wParam is the operation; lParam
// is always an address, and each control tests it before use. Numeric value 1027.
inline constexpr UINT kControlCommand = WM_USER + 3;

// Flag bits of the command's wParam.
inline constexpr WPARAM kCommandRead = 0x8000;    // copy the item out to the address in lParam
inline constexpr WPARAM kCommandRemove = 0x4000;  // remove or switch off
inline constexpr WPARAM kCommandRedraw = 0x0100;  // repaint at once if something changed

// Registers (non-zero flag) or unregisters `name`: redrawn on size changes, double clicks, known to the whole process,
// no extra bytes, arrow cursor, and no background of its own. Returns 0 only when registering fails.
BOOL RegisterControlClass(HINSTANCE instance, const char* name, WNDPROC procedure, BOOL registerIt);

// Posts WM_COMMAND to the parent: the control's id in the low word, `code` in the high word, the control in lParam.
void PostNotification(HWND control, WORD code);

// Invalidates the whole window, erasing, and paints it before returning.
void RepaintNow(HWND window);

}  // namespace kv
