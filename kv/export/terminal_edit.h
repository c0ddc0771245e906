// A rich edit control in the style of a terminal: green on black, fixed pitch. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

inline constexpr COLORREF kTerminalGreen = 0x80FF40;
inline constexpr COLORREF kTerminalBlack = 0x000000;

// Clears and styles a rich edit control of any version, including text that is added later, and enables its change,
// key, mouse and dropped-file notifications in addition to the present ones. Always returns 1; does nothing if `edit`
// is not a window.
BOOL styleTerminalEdit(HWND edit);

}  // namespace kv
