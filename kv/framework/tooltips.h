// Tooltips for the buttons of a toolbar or the controls of a dialog, from a table. Main thread only.
//
// In a DPI-aware program, the system draws the tooltips. Recreate a toolbar's tooltips when the DPI changes the size of
// its buttons.
#pragma once

#include <windows.h>

namespace kv {

// One tool. For a toolbar, `id` is the button's command, and the entry's position in the table is the button's index,
// separators included. For a dialog, `id` is the control's id. `text` is a wide text, or MAKEINTRESOURCEW of a string
// resource; null means string resource `id`. An empty text adds no tool; write a separator as {0, nullptr}.
struct TooltipEntry {
  UINT id;
  const wchar_t* text;
};
static_assert(sizeof(TooltipEntry) == 8);

// Texts are truncated to this number of characters, terminator included.
inline constexpr int kTooltipCharacters = 1024;

// Creates the tooltip window of `owner`, which is treated as a toolbar if its class is exactly "ToolbarWindow32",
// otherwise as a dialog. String resources come from `instance`, or from the owner's module when that is null. The
// rectangles of toolbar buttons are read once, at creation. An id without a control still adds a tool, for no window.
//
// The tooltip window is owned by the top-level window of `owner` and destroyed with it. Returns null when `owner` is
// not a window, the table cannot be read or the window cannot be created.
HWND CreateTooltips(HINSTANCE instance, HWND owner, const TooltipEntry* entries, int count);

}  // namespace kv
