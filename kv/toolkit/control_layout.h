// Places the controls of a dialog in proportion to its size, with texts of one size. Private to the toolkit. Main
// thread only.
#pragma once

#include <windows.h>

#include <climits>

#include "kv/toolkit/dialog_state.h"

namespace kv {

inline constexpr int kPageId = INT_MAX;  // of the window of a page; greater than every dialog's lastId

SIZE SizeOf(HWND window);
HFONT FontOf(HWND control);

// Scaling deletes the fonts that it replaces. Controls share the template's font, and some continue to use it: lists,
// controls outside the range. Therefore each scaled control first gets a copy.
void AssignFonts(HWND dialog);

// Stores the places of the template's controls. Call it once, when the dialog has them.
void CaptureControls(HWND dialog, DialogState& state);

// Places controls and sets their fonts for the dialog's current size.
void PlaceControls(HWND dialog, DialogState& state);

}  // namespace kv
