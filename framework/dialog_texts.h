// Texts of an open dialog, replaced from a dialog template: how a dialog changes its language. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

// Sets the caption of `dialog` and the texts of its controls from the dialog template (classic or extended) of that
// name, or MAKEINTRESOURCEW id, in `module`. Controls are found by their id; those with id -1, with no text or with a
// resource number in place of a text, and those that the dialog does not have, keep what they show, and so does a
// caption that is empty in the template.
//
// Returns 0 when the window or the template does not exist or the template ends too early; texts found up to there are
// set.
BOOL SetDialogTexts(HWND dialog, HINSTANCE module, const wchar_t* templateName);

}  // namespace kv
