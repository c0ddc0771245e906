// Tool tips for the buttons of a toolbar or the controls of a dialog, from a table. Main thread only.
//
// In a DPI-aware host: the system draws the tips. Create a toolbar's again when its buttons change size with the
// DPI.
#pragma once

#include <windows.h>

namespace kv {

// One tool. For a toolbar, `id` is the button's command and the entry's position in the table must be the button's
// index, separators included; for a dialog, `id` is the control's id. `text` is a wide text, or a string resource's
// number in place of the address; null stands for the string resource numbered `id`. An empty text gives no tool, which
// is how a placeholder for a separator is written: {0, nullptr}.
struct TooltipEntry {
  UINT id;
  const wchar_t* text;
};
static_assert(sizeof(TooltipEntry) == 8);

// Texts are cut to this many characters, the terminator included.
inline constexpr int kTooltipCharacters = 1024;

// Creates the tooltip window of `owner`: a toolbar if its class is exactly "ToolbarWindow32", a dialog otherwise.
// String resources come from `instance`, or the owner's module when that is null. Button rectangles are taken once:
// buttons that move later keep their old tips' places. An id without a control still makes a tool, for no window.
//
// The window belongs to the top-level window of `owner` and goes with that. Null when `owner` is no window (nobody
// would destroy the tips), the table cannot be read or no window can be made.
HWND CreateTooltips(HINSTANCE instance, HWND owner, const TooltipEntry* entries, int count);

}  // namespace kv
