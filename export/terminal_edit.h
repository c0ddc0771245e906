// A rich edit control that looks like a terminal: green on black, fixed pitch. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

inline constexpr COLORREF kTerminalGreen = 0x80FF40;
inline constexpr COLORREF kTerminalBlack = 0x000000;

// Clears and styles a rich edit control (any version; text typed or set later keeps the style) and asks it for change,
// key, mouse and dropped-file notifications on top of those it already sends. Always 1; what is no window is left
// alone.
BOOL styleTerminalEdit(HWND edit);

}  // namespace kv
